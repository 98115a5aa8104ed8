#pragma once

#include <QDir>
#include <QString>

// The covers of an HTML page: each title's thumbnail as an image file in a folder beside the
// page ("<page>_covers/"), linked relatively, so that the page and its folder can be copied
// together.
class HtmlCoverFolder {
  public:
    // Makes the folder beside pagePath; raises when it cannot be made.
    explicit HtmlCoverFolder(const QString& pagePath);

    // The table cell of a title: its thumbnail, written into the folder, or an empty cell for a
    // title without a cover. Raises when the image cannot be written.
    QString Cell(long idcd);

    QString Path() const { return folder_.path(); }

  private:
    QDir folder_;
    // The folder as the page links it.
    QString link_;
};
