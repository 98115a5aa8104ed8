#pragma once

// What the export writers share: a text file written line by line, and the reading of a
// title's tracks.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QVariant>
#include <memory>

class Recordset;

// A text file in UTF-8, replaced when it exists, whose lines end in CR LF. Every failure to
// open, write or close is raised as a VbError (75 access, 61 disk full), so that a writer's one
// trap catches it; what was written before stays on disc.
class ExportTextFile {
  public:
    ExportTextFile(const QString& path, bool byteOrderMark);
    ~ExportTextFile();

    void Write(const QString& text);
    void WriteLine(const QString& line = QString());
    // Writes what is pending and closes; raises when the file did not take all of it.
    void Close();

  private:
    void Flush();

    QFile file_;
    QByteArray pending_;
};

// The catalogue's audio platform, the one folder the CD players' files take titles from.
constexpr int kAudioPlatform = 1;

// The empty text mark, or a Null, or no number: a title without tracks.
int TrackCount(const QVariant& numTracks);
// True for the one character of code 0 that stands for an empty memo, label or listing.
bool IsEmptyTextMark(const QVariant& value);

// True for the current title when the CD players can take it: an audio title with an identity.
bool IsPlayerDisc(Recordset& titles);

// "select * from Tracks where idcd = " + idcd + " order by TrackID" on the catalogue.
std::unique_ptr<Recordset> OpenTitleTracks(const QVariant& idcd);
