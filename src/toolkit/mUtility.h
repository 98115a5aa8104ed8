#pragma once

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

// The system's temporary folder with one trailing "/".
QString GetTempFolder();
// A new, empty file in GetTempFolder named after the executable; empty when none can be made.
QString GetTempName();
