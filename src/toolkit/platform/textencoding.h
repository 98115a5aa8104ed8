#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <QStringList>

// Text files from the CD players' Windows: UTF-8 when the bytes are valid UTF-8 (with or
// without a byte-order mark), otherwise Windows-1252.

enum class TextEncoding {
    Windows1252,
    Utf8,
    Utf8WithBom,
};

struct DecodedText {
    QString text;
    TextEncoding encoding = TextEncoding::Windows1252;
};

// A file of plain ASCII could be either; it is taken as Windows-1252, the players' code page,
// so that text written into it later stays readable to them.
DecodedText DecodeText(const QByteArray& bytes);
QByteArray EncodeText(const QString& text, TextEncoding encoding);

// The lines of a text file made line by line, as a TAB file often is (lines pasted together
// from several programs): each line that is valid UTF-8 is UTF-8, any other Windows-1252. A
// line ends at CR LF, at a CR alone or at an LF alone; a byte-order mark at the start is
// dropped. A last line without its end counts; an empty file has no lines.
QStringList DecodeLines(const QByteArray& bytes);

// The lines of DecodeLines read from a device one at a time, so that a file of any size needs
// the memory of its longest line only.
class TextLineReader {
  public:
    // The device is open for reading and stays the caller's.
    explicit TextLineReader(QIODevice& device) : device_(device) {}
    // The next line; false after the last one.
    bool Next(QString& line);
    // The lines left from here to the end, counted without decoding them.
    qint64 CountRest();

  private:
    bool NextBytes(QByteArrayView& line);

    QIODevice& device_;
    // What the device gave up to its next LF, less the lines already taken from it.
    QByteArray chunk_;
    qsizetype at_ = 0;
    bool started_ = false;
};

QString FromWindows1252(const QByteArray& bytes);
// Characters the code page lacks become "?", as the platform's conversion gives them.
QByteArray ToWindows1252(const QString& text);
