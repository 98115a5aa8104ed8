// Feeds arbitrary bytes to the profile file reader, then reads and writes keys in it as the
// CD player import and export do.

#include <cstddef>
#include <cstdint>

#include <QRegularExpression>

#include "toolkit/platform/mUtilityIni.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    IniFile ini(QString(), bytes);
    const QString text = DecodeText(bytes).text;
    // Names taken from the input itself reach the sections and keys it holds.
    const QStringList words = text.split(QRegularExpression("[\\r\\n=\\[\\]]"), Qt::SkipEmptyParts);
    for (qsizetype i = 0; i + 1 < words.size() && i < 64; i += 2) {
        ini.hasSection(words[i]);
        ini.value(words[i], words[i + 1]);
        ini.setValue(words[i], words[i + 1], words.value(i + 2));
    }
    ini.value("CDDB", "numtracks");
    ini.setValue("Disc", "title", "line\r\nbreak=1");
    return 0;
}
