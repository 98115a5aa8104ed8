#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <optional>

#include "toolkit/platform/textencoding.h"

// A Windows profile file kept as its own lines, so that a write changes one line and leaves
// every other line, comment and blank as it was. Matching follows the Windows profile
// functions: section and key names without case and without surrounding blanks, the first
// section and the first key of a name win, a value loses its surrounding blanks and one pair
// of matching quotes. Lines may end in CRLF or LF; a save keeps the file's own line end, and a
// new file gets CRLF as on Windows.
class IniFile {
  public:
    // Loads the file if it exists; a missing file is an empty profile. A file that exists but
    // cannot be read is empty too, and is never written (see readError).
    explicit IniFile(const QString& path);
    // Takes bytes as the file's content; a save writes them to path.
    IniFile(const QString& path, const QByteArray& bytes);

    bool hasSection(const QString& section) const;
    std::optional<QString> value(const QString& section, const QString& key) const;

    // Replaces the key's line, or adds the key at the end of its section, or adds the section
    // at the end of the file.
    void setValue(const QString& section, const QString& key, const QString& value);
    // Adds an empty section when there is none of that name.
    void addSection(const QString& section);

    // Writes the whole file; false when it cannot be written or could not be read (the file is
    // left as it was).
    bool save() const;
    // Why the file that exists could not be read; empty when it was read or is not there.
    QString readError() const { return readError_; }

  private:
    int sectionLine(const QString& section) const;
    // The line after the last line that belongs to the section starting at header.
    int sectionEnd(int header) const;
    int keyLine(int header, const QString& key) const;
    void insertLine(int at, const QString& line);
    void parse(const QByteArray& bytes);
    void indexSections();
    QString text() const;

    QString path_;
    QString readError_;
    QStringList lines_;
    QStringList lineEnds_;
    QString lineEnd_ = "\r\n";
    TextEncoding encoding_ = TextEncoding::Windows1252;
    // Folded section name -> line of its first header.
    QHash<QString, int> sections_;
};
