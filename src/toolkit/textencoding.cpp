#include "toolkit/textencoding.h"

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
    QStringList lines;
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const auto decode = [&utf8](QByteArrayView line) {
        QString text = utf8(line);
        if (utf8.hasError()) {
            utf8.resetState();
            return FromWindows1252(line.toByteArray());
        }
        return text;
    };
    qsizetype start = bytes.startsWith(kBom) ? kBom.size() : 0;
    const qsizetype size = bytes.size();
    for (qsizetype at = start; at < size; ++at) {
        const char byte = bytes[at];
        if (byte != '\r' && byte != '\n') continue;
        lines << decode(QByteArrayView(bytes).sliced(start, at - start));
        if (byte == '\r' && at + 1 < size && bytes[at + 1] == '\n') ++at;
        start = at + 1;
    }
    if (start < size) lines << decode(QByteArrayView(bytes).sliced(start));
    return lines;
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
