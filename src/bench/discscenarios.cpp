#include "bench/discscenarios.h"

#include <sys/resource.h>

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "app/mGlobals.h"
#include "bench/benchprogram.h"
#include "disc/audiodisc.h"
#include "disc/datadisc.h"
#include "editor/frmEdit.h"
#include "editor/frmTracksListing.h"
#include "shell/frmMain.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const int kTracks = 20;
const int kFiles = 50000;
const int kFolders = 500;

double PeakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0;
}

}  // namespace

QString WriteSilentCue(const QString& folder, const QString& name, int tracks, int minutesApart,
                       bool cdText) {
    QByteArray cue = cdText ? "TITLE \"Benchmark Album\"\nPERFORMER \"Benchmark Artist\"\n" : "";
    cue += "FILE \"" + name.toUtf8() + ".bin\" BINARY\n";
    for (int track = 0; track < tracks; ++track) {
        cue += QString("  TRACK %1 AUDIO\n").arg(track + 1, 2, 10, QChar('0')).toUtf8();
        if (cdText) cue += QString("    TITLE \"Song number %1\"\n").arg(track + 1).toUtf8();
        cue += QString("    INDEX 01 %1:00:00\n")
                   .arg(track * minutesApart, 2, 10, QChar('0'))
                   .toUtf8();
    }
    QFile file(folder + "/" + name + ".cue");
    file.open(QIODevice::WriteOnly);
    file.write(cue);
    QFile bin(folder + "/" + name + ".bin");
    bin.open(QIODevice::WriteOnly);
    bin.resize(qint64(tracks * minutesApart * 60 * 75) * 2352);  // sparse: silence costs no disk
    return file.fileName();
}

void OpenNewAudioTitle() {
    gAddingTitle = true;
    gModifyingTitle = false;
    gEditForm = new frmEdit(gMainForm);
    gEditForm->Form_Load();
    gEditForm->Combo1[0]->setCurrentIndex(gEditForm->Combo1[0]->findData(1));
}

std::vector<double> TimeReadAudioIntoEditor(const QString& folder, int runs) {
    QTemporaryDir images;
    const QString cue = WriteSilentCue(images.path(), "bench", kTracks, 3, true);
    SetDiscDriveLocator([cue] { return cue; });
    SetMsgBoxResponder(
        [](const MsgBoxCall& call) -> int { throw VbError(0, "unexpected box: " + call.prompt); });
    bench::StartProgram(folder);
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        OpenNewAudioTitle();
        QElapsedTimer clock;
        clock.start();
        gEditForm->cmdReadDisc_Click();
        times.push_back(clock.nsecsElapsed() / 1e6);
        if (!gEditForm->TracksListing() ||
            gEditForm->TracksListing()->Text().count("\r\n") != kTracks - 1)
            throw VbError(0, "the editor was not filled");
        gEditForm->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    bench::EndProgram();
    SetDiscDriveLocator({});
    SetMsgBoxResponder({});
    return times;
}

std::vector<double> TimeDataListing(bool iso, int runs, double& peakMegabytes) {
    QTemporaryDir work;
    const QString root = work.path() + "/disc";
    for (int folder = 0; folder < kFolders; ++folder) {
        const QString path = QString("%1/folder%2").arg(root).arg(folder, 3, 10, QChar('0'));
        QDir().mkpath(path);
        for (int file = 0; file < kFiles / kFolders; ++file) {
            QFile entry(QString("%1/file%2.dat").arg(path).arg(file, 3, 10, QChar('0')));
            entry.open(QIODevice::WriteOnly);
            entry.write("x");
        }
    }
    QString source = root;
    if (iso) {
        source = work.path() + "/disc.iso";
        QProcess xorriso;
        xorriso.start(QStandardPaths::findExecutable("xorriso"),
                      {"-as", "mkisofs", "-quiet", "-R", "-J", "-o", source, root});
        if (!xorriso.waitForFinished(600000) || xorriso.exitCode() != 0)
            throw VbError(0, "xorriso could not make the image");
    }
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        DataDisc disc;
        QString problem;
        QElapsedTimer clock;
        clock.start();
        const bool listed =
            iso ? ListIsoImage(source, disc, problem) : ListDataFolder(source, disc, problem);
        times.push_back(clock.nsecsElapsed() / 1e6);
        if (!listed || disc.files != kFiles) throw VbError(0, "listing failed: " + problem);
    }
    peakMegabytes = PeakMegabytes();
    return times;
}
