#include "bench/coverscenarios.h"

#include <sqlite3.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <QTextDocument>

#include "app/mGlobals.h"
#include "bench/syntheticcatalogue.h"
#include "disc/coverimage.h"
#include "shell/frmMain.h"
#include "shell/titlelistmodel.h"
#include "store/catalogue.h"
#include "store/shelfrecords.h"
#include "store/shelftables.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

namespace {

PreparedCover BenchCover() {
    // A smooth picture, as covers mostly are: some kilobytes, not the megabytes of noise.
    QImage image(300, 300, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * 255 / 300, y * 255 / 300, 128));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpeg", 85);
    PreparedCover cover;
    QString problem;
    if (!PrepareCover(bytes, cover, problem)) throw VbError(0, problem);
    return cover;
}

void OpenIn(const QString& folder) {
    gDatabasePath = folder + "/data.gdb";
    gDatabasePassword = kDatabasePassword;
    OpenCatalogue();
}

void Close() {
    gRecordset.reset();
    gDatabase->Close();
    gDatabase.reset();
}

}  // namespace

void AddCoversToCatalogue(const QString& folder) {
    const PreparedCover cover = BenchCover();
    OpenIn(folder);
    MakeShelfTables(*gDatabase);
    sqlite3* db = gDatabase->Handle();
    sqlite3_exec(db, "begin", nullptr, nullptr, nullptr);
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db,
                       "insert into cover (idcd, image, thumbnail, source, added) select idcd, "
                       "?, ?, 'bench.jpg', '2025-01-01' from title",
                       -1, &insert, nullptr);
    sqlite3_bind_blob(insert, 1, cover.image.constData(), int(cover.image.size()), SQLITE_STATIC);
    sqlite3_bind_blob(insert, 2, cover.thumbnail.constData(), int(cover.thumbnail.size()),
                      SQLITE_STATIC);
    const int stepped = sqlite3_step(insert);
    sqlite3_finalize(insert);
    sqlite3_exec(db, "commit", nullptr, nullptr, nullptr);
    Close();
    if (stepped != SQLITE_DONE) throw VbError(0, "the covers could not be added");
}

std::vector<double> TimeCoverToolTip(const QString& folder, int runs) {
    App.Path = folder;
    gMainForm = new frmMain();
    gMainForm->Form_Load();
    const TitleListModel* list = gMainForm->ListModel();
    if (!list || list->rowCount() == 0) throw VbError(0, "the program did not start");
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        const QModelIndex index = list->index(run % list->rowCount(), 0);
        QElapsedTimer clock;
        clock.start();
        QTextDocument tip;
        tip.setHtml(list->data(index, Qt::ToolTipRole).toString());
        const QSizeF size = tip.size();
        times.push_back(clock.nsecsElapsed() / 1e6);
        if (size.height() < kThumbnailLongSide) throw VbError(0, "the tooltip shows no cover");
    }
    gMainForm->SetMousePointer(vbArrow);
    gMainForm->Unload();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return times;
}

double CoverOverheadBytes(int covers) {
    QTemporaryDir dir;
    BuildSyntheticCatalogue(dir.path(), 1000);
    const PreparedCover cover = BenchCover();
    const QString file = dir.filePath("data.gdb");
    OpenIn(dir.path());
    MakeShelfTables(*gDatabase);
    Close();
    const qint64 before = QFileInfo(file).size();
    OpenIn(dir.path());
    for (int id = 1; id <= covers; ++id)
        WriteCover(id, {cover.image, cover.thumbnail, QString(), "bench.jpg", "2025-01-01"});
    Close();
    const qint64 grown = QFileInfo(file).size() - before;
    return double(grown - qint64(covers) * cover.image.size()) / covers;
}
