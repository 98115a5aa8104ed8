#pragma once

#include <QString>
#include <QStringList>

// Small pieces the three importers share.

// The lines of a text file read as the players' Windows wrote it (UTF-8, else Windows-1252;
// CR LF or LF). False when the file cannot be read.
bool ReadTextLines(const QString& path, QStringList& lines);

// The vendor of the audio platform with this name, added when there is none; the id of the
// last one found when there are several. The name goes into the statement as it stands: an
// apostrophe breaks it, and the importer's trap takes the disc as refused.
long AudioVendorId(const QString& artist);

// Today as the catalogue stores dates.
QString TodayText();

// The box of an error that stops an importer: the file, the error's number and description.
void ShowImportStopped(const QString& source, const QString& file, int number,
                       const QString& description);

// One transaction of the catalogue around an import, for speed: a statement that fails undoes
// only itself, and every title that went in stays in when the transaction ends. Inside another
// import's transaction it does nothing.
class ImportTransaction {
  public:
    ImportTransaction();
    ~ImportTransaction();
    ImportTransaction(const ImportTransaction&) = delete;
    ImportTransaction& operator=(const ImportTransaction&) = delete;

  private:
    bool own_ = false;
};
