// Feeds arbitrary bytes through the reading of a TAB file: decoding, lines, columns and the
// conversions of the numeric columns.

#include <QStringList>
#include <cstddef>
#include <cstdint>

#include "toolkit/platform/textencoding.h"
#include "toolkit/vb/vbconvert.h"
#include "toolkit/vb/vberror.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    for (const QString& line : DecodeLines(bytes)) {
        const QStringList columns = line.split('\t');
        for (const QString& column : columns) {
            try {
                CIntText(column);
            } catch (const VbError&) {
            }
            try {
                CLngText(column);
            } catch (const VbError&) {
            }
            try {
                CByteText(column);
            } catch (const VbError&) {
            }
            try {
                HexLiteral(column);
            } catch (const VbError&) {
            }
            Val(column);
            static_cast<void>(column.split("<NEWLINE>"));
        }
    }
    return 0;
}
