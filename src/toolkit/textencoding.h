#pragma once

#include <QByteArray>
#include <QString>

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

QString FromWindows1252(const QByteArray& bytes);
// Characters the code page lacks become "?", as the platform's conversion gives them.
QByteArray ToWindows1252(const QString& text);
