#include "disc/discnames.h"

#include <QStringDecoder>
#include <array>

namespace {

// Windows-1252 differs from Latin-1 only in 0x80..0x9F; the five unassigned codes stay as
// their C1 controls.
const std::array<char16_t, 32> kWindows1252High{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

QString DecodeDiscText(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString text = utf8.decode(bytes);
    if (!utf8.hasError()) return text;
    text.clear();
    text.reserve(bytes.size());
    for (char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        text += (code >= 0x80 && code < 0xA0) ? QChar(kWindows1252High[code - 0x80])
                                              : QChar(char16_t(code));
    }
    return text;
}
