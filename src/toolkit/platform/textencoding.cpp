#include "toolkit/platform/textencoding.h"

#include <QBuffer>
#include <QHash>
#include <QStringDecoder>
#include <array>

namespace {

// 0x80 to 0x9F; the five codes the code page leaves undefined map to the same code point.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

const QByteArray kBom("\xEF\xBB\xBF");

bool IsAscii(const QByteArray& bytes) {
    for (const char byte : bytes)
        if (static_cast<unsigned char>(byte) >= 0x80) return false;
    return true;
}

}  // namespace

QString FromWindows1252(const QByteArray& bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        *out++ = code >= 0x80 && code < 0xA0 ? QChar(kHighControls[code - 0x80]) : QChar(code);
    }
    return text;
}

QByteArray ToWindows1252(const QString& text) {
    static const QHash<char16_t, char> high = [] {
        QHash<char16_t, char> table;
        for (int i = 0; i < 32; ++i) table.insert(kHighControls[i], static_cast<char>(0x80 + i));
        return table;
    }();
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        if (code < 0x80 || (code >= 0xA0 && code <= 0xFF))
            bytes.append(static_cast<char>(code));
        else
            bytes.append(high.value(code, '?'));
    }
    return bytes;
}

DecodedText DecodeText(const QByteArray& bytes) {
    if (bytes.startsWith(kBom)) {
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        QString text = decoder(bytes.mid(kBom.size()));
        if (!decoder.hasError()) return {text, TextEncoding::Utf8WithBom};
    } else if (!IsAscii(bytes)) {
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        QString text = decoder(bytes);
        if (!decoder.hasError()) return {text, TextEncoding::Utf8};
    }
    return {FromWindows1252(bytes), TextEncoding::Windows1252};
}

QStringList DecodeLines(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    TextLineReader reader(buffer);
    QStringList lines;
    for (QString line; reader.Next(line);) lines << line;
    return lines;
}

bool TextLineReader::NextBytes(QByteArrayView& line) {
    while (at_ >= chunk_.size()) {
        // A line is never empty when it comes from the device: it holds at least its LF.
        chunk_ = device_.readLine();
        at_ = 0;
        if (chunk_.isEmpty()) return false;
        if (!started_ && chunk_.startsWith(kBom)) at_ = kBom.size();
        started_ = true;
    }
    const QByteArrayView rest = QByteArrayView(chunk_).sliced(at_);
    qsizetype end = 0;
    while (end < rest.size() && rest[end] != '\r' && rest[end] != '\n') ++end;
    line = rest.first(end);
    at_ += end + 1;
    if (end + 1 < rest.size() && rest[end] == '\r' && rest[end + 1] == '\n') ++at_;
    return true;
}

bool TextLineReader::Next(QString& line) {
    QByteArrayView bytes;
    if (!NextBytes(bytes)) return false;
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    line = utf8(bytes);
    if (utf8.hasError()) line = FromWindows1252(bytes.toByteArray());
    return true;
}

qint64 TextLineReader::CountRest() {
    qint64 count = 0;
    for (QByteArrayView bytes; NextBytes(bytes);) ++count;
    return count;
}

QByteArray EncodeText(const QString& text, TextEncoding encoding) {
    switch (encoding) {
        case TextEncoding::Utf8WithBom:
            return kBom + text.toUtf8();
        case TextEncoding::Utf8:
            return text.toUtf8();
        case TextEncoding::Windows1252:
            break;
    }
    return ToWindows1252(text);
}
