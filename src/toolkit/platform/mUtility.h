#pragma once

// toolkit/platform: this system where Windows had its own: registry, ini files, paths, encodings.

#include <QString>
#include <QUrl>
#include <functional>

// Folders, profile files and starting a document with its program.

// What ShellExecute answered: above 32 for success, else the reason.
enum StartDocumentResult {
    kStartFileNotFound = 2,
    kStartNoAssociation = 31,
    kStartDone = 42,
};

// Opens a file or an address with the desktop's program for it; returns a StartDocumentResult.
int StartDocument(const QString& document);

// Everything the program hands to the desktop goes through one opener, so tests can record
// what would be opened. An empty function restores QDesktopServices::openUrl.
using DocumentOpener = std::function<bool(const QUrl&)>;
void SetDocumentOpener(DocumentOpener opener);
bool OpenWithDesktop(const QUrl& url);

// The Windows folder of the user's Wine prefix, where Windows CD players keep cdplayer.ini.
QString GetWindowsDirectory();
// The Deluxe CD player's database as its ODBC data source "DeluxeCD" names it (DefaultDir and
// DBQ), found in the Wine prefix; the registry's "Err..." text when the source is missing.
QString DeluxeDatabasePath();
// The Windows folder + "/TEMP", whether it exists or not.
QString GetWindowsTempFolder();

// The value of a key in a Windows profile file, at most 255 characters; the default (without
// trailing blanks) when the file, section or key is missing.
QString ReadIniString(const QString& file, const QString& section, const QString& key,
                      const QString& defaultValue);
// Writes a key, creating file and section as needed. The caller's value has each CR and LF
// turned into a blank afterwards; the text written is the value as it came in. False when the
// file cannot be written.
bool WriteIniString(const QString& file, const QString& section, const QString& key,
                    QString& value);

// Holds the writes of WriteIniString in memory while it lives, so that a run of many writes
// writes each file once, atomically, at its end (Commit or destruction). Runs may nest; the
// outermost one writes.
class IniWriteRun {
  public:
    IniWriteRun();
    ~IniWriteRun();
    IniWriteRun(const IniWriteRun&) = delete;
    IniWriteRun& operator=(const IniWriteRun&) = delete;
    // False when a file could not be written (it is then left as it was).
    bool Commit();

  private:
    bool committed_ = false;
    bool ok_ = true;
};

// The system's temporary folder with one trailing "/".
QString GetTempFolder();
// A new, empty file in GetTempFolder named after the executable; empty when none can be made.
QString GetTempName();
