#include "export/htmlcovers.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QUrl>

#include "store/shelfrecords.h"
#include "toolkit/vberror.h"

namespace {

const int kPathNotFound = 76;
const int kDeviceIOError = 57;

}  // namespace

HtmlCoverFolder::HtmlCoverFolder(const QString& pagePath) {
    const QFileInfo page(pagePath);
    const QString name = page.completeBaseName() + "_covers";
    folder_ = QDir(page.absoluteDir().filePath(name));
    if (!QDir().mkpath(folder_.path())) throw VbError(kPathNotFound, "Path not found");
    link_ = QString::fromUtf8(QUrl::toPercentEncoding(name));
}

QString HtmlCoverFolder::Cell(long idcd) {
    const QString open = "<td align=\"left\" valign=\"top\">";
    QByteArray thumbnail;
    try {
        thumbnail = ReadCoverThumbnail(idcd);
    } catch (const VbError&) {
        // A catalogue without the cover table: no title has a cover.
    }
    if (thumbnail.isEmpty()) return open + "</td>";
    const QString name = QString::number(idcd) + ".jpg";
    QFile file(folder_.filePath(name));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(thumbnail) != thumbnail.size() || !file.flush())
        throw VbError(kDeviceIOError, "Device I/O error");
    const QSize size = QImage::fromData(thumbnail).size();
    return open + "<img src=\"" + link_ + "/" + name + "\" width=\"" +
           QString::number(size.width()) + "\" height=\"" + QString::number(size.height()) +
           "\" alt=\"\"></td>";
}
