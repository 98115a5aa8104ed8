// Two programs on one catalogue folder, as two processes: the second start, in either order and
// during the first one's exit, raises the first and never touches the catalogue.

#include <QProcess>
#include <QTemporaryDir>

#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/mGlobals.h"
#include "shell/submain.h"
#include "shell/terminationsignals.h"
#include "store/catalogue.h"
#include "support/testsupport.h"
#include "toolkit/vbruntime.h"

namespace {

QByteArray Head(const QString& path) {
    return ReadBytes(path, 15);
}

// The program itself, started as a process of its own on folder: it tells when it runs and
// every box it was asked, and ends on SIGTERM through its exit.
int RunProgram(const QString& folder) {
    App.Path = folder;
    QApplication::setQuitOnLastWindowClosed(false);
    SetMsgBoxResponder([](const MsgBoxCall& call) {
        std::printf("box: %s\n", qPrintable(call.prompt));
        std::fflush(stdout);
        return int(vbCancel);
    });
    TerminationSignals terminationSignals;
    // The start-up spins the event loop before the catalogue is open; the line comes once it is.
    auto* watch = new QTimer(qApp);
    QObject::connect(watch, &QTimer::timeout, [watch] {
        if (!gDatabase || !gMainForm || !gMainForm->isVisible()) return;
        watch->stop();
        std::printf("running\n");
        std::fflush(stdout);
    });
    watch->start(20);
    return SubMain();
}

// Starts the program on folder with a TMPDIR of its own.
std::unique_ptr<QProcess> StartProgramProcess(const QString& folder, const QString& temp) {
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", temp);
    process->setProcessEnvironment(environment);
    process->start(QCoreApplication::applicationFilePath(), {"--program", folder});
    return process;
}

}  // namespace

class InstanceTest : public QObject {
    Q_OBJECT
  private slots:
    void cleanup() {
        EndProgram();
        gSecondInstance = false;
    }

    void startWhileThisOneRunsRaisesItAndEnds() {
        TempProgramFolder folder;
        folder.installTemplate();
        ScriptedDialogs dialogs;
        frmMain* first = StartProgram();
        QVERIFY(first && gDatabase);
        first->showMinimized();
        const QByteArray running = Head(folder.file("data.gdb"));

        QTemporaryDir otherTemp;
        auto second = StartProgramProcess(folder.path(), otherTemp.path());
        QTRY_VERIFY_WITH_TIMEOUT(second->state() == QProcess::NotRunning, 20000);
        QCOMPARE(second->exitStatus(), QProcess::NormalExit);
        QCOMPARE(second->exitCode(), 0);
        QCOMPARE(second->readAllStandardOutput(), QByteArray());
        QTRY_VERIFY(!first->isMinimized());

        QCOMPARE(Head(folder.file("data.gdb")), running);
        QVERIFY(!QFile::exists(folder.file("data.compacted")));
        gDatabase->Execute("update platform set visible = true");
        EndProgram();
        QVERIFY(dialogs.msgBoxes.isEmpty());
        QCOMPARE(Head(folder.file("data.gdb")), QByteArray("SQLite format F"));
    }

    void startsWhileTheOtherRunsOrExitsLeaveItsCatalogueAlone() {
        TempProgramFolder folder;
        folder.installTemplate();
        QTemporaryDir otherTemp;
        auto first = StartProgramProcess(folder.path(), otherTemp.path());
        QTRY_VERIFY_WITH_TIMEOUT(first->canReadLine() || first->state() == QProcess::NotRunning,
                                 20000);
        QCOMPARE(first->readLine(), QByteArray("running\n"));

        ScriptedDialogs dialogs;
        QVERIFY(!StartProgram());
        QVERIFY(gSecondInstance);
        QVERIFY(!gDatabase);

        // Its exit compacts for at least 680 ms; every start meanwhile is a second one.
        first->terminate();
        int startsDuringExit = 0;
        while (first->state() != QProcess::NotRunning) {
            gSecondInstance = false;
            // The other may have ended before this process has heard of it; then the folder is
            // rightly free.
            if (StartProgram()) {
                QVERIFY2(first->state() == QProcess::NotRunning || first->waitForFinished(5000),
                         "a start during the other's exit took the catalogue");
                EndProgram();
                break;
            }
            QVERIFY2(gSecondInstance, "a start during the other's exit took the catalogue");
            QVERIFY(!gDatabase);
            ++startsDuringExit;
            QTest::qWait(40);
        }
        QVERIFY(startsDuringExit >= 2);
        QCOMPARE(first->exitCode(), 0);
        QCOMPARE(first->readAllStandardOutput(), QByteArray());
        QVERIFY(dialogs.msgBoxes.isEmpty());
        QCOMPARE(Head(folder.file("data.gdb")), QByteArray("SQLite format F"));
        QVERIFY(!QFile::exists(folder.file("data.compacted")));

        // Once it has ended, the folder is free.
        gSecondInstance = false;
        QVERIFY(StartProgram());
        QVERIFY(gDatabase);
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }
};

int main(int argc, char** argv) {
    testsupport::PrepareEnvironment();
    QApplication app(argc, argv);
    InitResources();
    if (argc == 3 && QByteArray(argv[1]) == "--program") return RunProgram(argv[2]);
    InstanceTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "instance_test.moc"
