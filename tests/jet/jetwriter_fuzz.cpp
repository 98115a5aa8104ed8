// The Jet writer on damaged files: it must refuse them, never write out of bounds.

#include <unistd.h>

#include <QFile>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>

#include "jet/jet.h"

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
        const QVariantHash title = {
            {"TitleID", 1}, {"Artist", "Artist"}, {"Title", "Title"}, {"NumTracks", 2}};
        const QVariantHash track = {{"TitleID", 1}, {"TrackID", 0}, {"TrackName", "Name"}};
        for (const auto& [table, named] : {std::pair{"Titles", title}, {"Tracks", track}}) {
            const jet::RowLocation row = writer.AppendRow(table, writer.ValuesByName(table, named));
            QVariantHash changed = named;
            changed["TitleID"] = 2;
            writer.ChangeRow(table, row, writer.ValuesByName(table, changed));
        }
    } catch (const jet::WriteError&) {
    }
    return 0;
}
