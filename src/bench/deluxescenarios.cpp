#include "bench/deluxescenarios.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include "jet/jet.h"
#include "toolkit/vb/vberror.h"

namespace {

const int kTracksPerTitle = 12;

void AddTitles(jet::Writer& writer, int first, int count) {
    for (int id = first; id < first + count; ++id) {
        writer.AppendRow("Titles", {id * 7919, QStringLiteral("Artist %1").arg(id % 97),
                                    QStringLiteral("Album number %1").arg(id), kTracksPerTitle});
        for (int track = 0; track < kTracksPerTitle; ++track)
            writer.AppendRow("Tracks", {id * 7919, track,
                                        QStringLiteral("Track %1 of album %2").arg(track).arg(id)});
    }
}

}  // namespace

QString MakeDeluxeFile(const QString& folder, int titles) {
    const QString path = folder + "/deluxe.mdb";
    QFile::remove(path);
    if (!QFile::copy(QStringLiteral(VELMORA_FIXTURES_DIR "/jet/cd_pk.mdb"), path) ||
        !QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner))
        throw VbError(0, "the Deluxe test file cannot be copied");
    jet::Writer writer(path);
    AddTitles(writer, 1, titles - 4);
    return path;
}

std::vector<double> TimeDeluxeWrite(int runs) {
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        QTemporaryDir folder;
        const QString path = MakeDeluxeFile(folder.path(), 300);
        QElapsedTimer clock;
        clock.start();
        {
            jet::Writer writer(path);
            AddTitles(writer, 1000, 1000);
        }
        times.push_back(clock.nsecsElapsed() / 1e6);
    }
    return times;
}
