// The Jet writer on damaged files: it must refuse them, never write out of bounds.

#include <unistd.h>

#include <QFile>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>

#include "store/jetwriter.h"
#include "toolkit/vberror.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static QTemporaryDir folder;
    const QString path = folder.filePath("fuzz.mdb");
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return 0;
        file.write(reinterpret_cast<const char*>(data), qint64(size));
    }
    try {
        jet::Writer writer(path);
        for (const QString table : {"Titles", "Tracks"}) {
            const jet::RowLocation row = writer.AppendRow(table, {1, "Artist", "Title", 2});
            writer.ChangeRow(table, row, {1, "Other", "Name", 3});
        }
    } catch (const VbError&) {
    }
    return 0;
}
