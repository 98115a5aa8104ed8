// A real start and exit of the program in a temporary program folder; the start's upgrade of a
// catalogue from an older version whose label column is narrow; and two programs on one
// catalogue folder, as two processes: a start while the other runs or exits never touches the
// catalogue.

#include <sqlite3.h>

#include "app/mGlobals.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/submain.h"
#include "shell/terminationsignals.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "store/guardedfile.h"
#include "store/jettext.h"
#include "support/testsupport.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const MsgBoxCall kPasswordRefusedAtExit{"3031|Not a valid password.\t", vbCritical,
                                        "Error compacting database"};

const QString kTwentyWide = "ABCDEFGHIJKLMNOPQRST";

// Rebuilds the label column of the file at 20 wide, as an older version made it, and files
// three titles: a full label, a Null label and the empty text mark.
void MakeNarrowLabelCatalogue(const QString& path) {
    sqlite3* db = nullptr;
    QCOMPARE(sqlite3_open(QFile::encodeName(path).constData(), &db), SQLITE_OK);
    jettext::Register(db);
    const char* script =
        "ALTER TABLE title DROP COLUMN label;"
        "ALTER TABLE title ADD COLUMN label TEXT(20) CONSTRAINT width_label CHECK "
        "(length(label) <= 20);"
        "INSERT INTO title (idcd, nmcd, idvendor, idplatform, idtype, idspecific, idmediatype, "
        "label) VALUES (1, 'Full', 1, 1, 1, 1, 1, 'ABCDEFGHIJKLMNOPQRST'),"
        "(2, 'Null', 1, 1, 1, 1, 1, NULL), (3, 'Mark', 1, 1, 1, 1, 1, char(0));";
    QCOMPARE(sqlite3_exec(db, script, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
}

// The labels in idcd order, and the width the file declares for the column.
QPair<QVariantList, int> Labels() {
    auto titles = gDatabase->OpenRecordset("select idcd, label from title order by idcd");
    QVariantList labels;
    const int width = titles->Fields("label").Size();
    for (; !titles->IsEOF(); titles->MoveNext()) labels << titles->Fields("label").Value();
    return {labels, width};
}

QString LastColumnOfTitle() {
    auto titles = gDatabase->OpenRecordset("select * from title");
    return titles->Fields(titles->FieldCount() - 1).Name();
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

class StartupTest : public QObject {
    Q_OBJECT
  private slots:
    void init() { folder_ = std::make_unique<TempProgramFolder>(); }

    void cleanup() {
        EndProgram();
        gSecondInstance = false;
        folder_.reset();
    }

    void readOnlyProgramFolderKeepsTheCatalogueInTheUsersDataFolder() {
        folder_->installTemplate();
        QFile::copy(testsupport::HelpFolder() + "/velmora.html", folder_->file("velmora.html"));
        const QFile::Permissions writable = QFile(folder_->path()).permissions();
        QFile(folder_->path()).setPermissions(writable & ~(QFile::WriteOwner | QFile::WriteUser));
        const QString dataFolder =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/velmora";
        ScriptedDialogs dialogs;

        QVERIFY(StartProgram());
        QVERIFY(gDatabase);
        QCOMPARE(gDatabasePath, dataFolder + "/data.gdb");
        EndProgram();
        QFile(folder_->path()).setPermissions(writable);

        QVERIFY(dialogs.msgBoxes.isEmpty());
        QCOMPARE(QDir(folder_->path()).entryList(QDir::Files | QDir::NoDotAndDotDot),
                 QStringList({"data.dll", "velmora.html"}));
        QCOMPARE(ReadBytes(dataFolder + "/data.gdb", 15), QByteArray("SQLite format F"));
        QVERIFY(!QFile::exists(dataFolder + "/data.compacted"));
        QVERIFY(QFile::remove(dataFolder + "/data.gdb"));

        // A catalogue beside the program moves to the user's folder once, with a box that
        // says where it now lives; the file beside the program is left as it was.
        folder_->openCatalogue();
        gDatabase->Execute(
            "insert into title (nmcd, nrcds, idvendor, idplatform, idtype, idspecific, "
            "idmediatype) values ('Kept', 1, 1, 1, 1, 1, 1)");
        folder_->closeCatalogue();
        const QByteArray beside = ReadBytes(folder_->file("data.gdb"));
        QFile(folder_->path()).setPermissions(writable & ~(QFile::WriteOwner | QFile::WriteUser));
        for (int start = 0; start < 2; ++start) {
            QVERIFY(StartProgram());
            QCOMPARE(gDatabasePath, dataFolder + "/data.gdb");
            QCOMPARE(RowCount("title where nmcd = 'Kept'"), 1L);
            gDatabase->Execute("update title set nmcd = 'Changed' where nmcd = 'Kept'");
            gDatabase->Execute("update title set nmcd = 'Kept' where nmcd = 'Changed'");
            EndProgram();
        }
        QFile(folder_->path()).setPermissions(writable);
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({{"Velmora may not write in its own folder " + folder_->path() + ".\r\n" +
                             "Your database was copied to " + dataFolder +
                             "/data.gdb and Velmora uses that copy from now on; the file beside "
                             "the program is no longer changed.",
                         vbInformation, "Database moved"}}));
        QCOMPARE(ReadBytes(folder_->file("data.gdb")), beside);
        QVERIFY(QFile::remove(dataFolder + "/data.gdb"));
    }

    void installsMissingCatalogueAndGuardsItAtExit() {
        folder_->installTemplate();
        ScriptedDialogs dialogs;

        frmMain* window = StartProgram();
        QVERIFY(window);
        QVERIFY(gDatabase);
        QVERIFY(dialogs.msgBoxes.isEmpty());
        QCOMPARE(gDatabasePath, folder_->file("data.gdb"));
        QCOMPARE(GetAttr(gDatabasePath), int(vbArchive));
        QVERIFY(window->isVisible());

        QVERIFY(ReadBytes(gDatabasePath, 100).startsWith("SQLite format 3"));
        // A catalogue made at the present width keeps its label column where it is.
        QCOMPARE(gLenLabel, 32);
        QVERIFY(LastColumnOfTitle() != "label");
        EndProgram();

        // The exit compacts the file and then changes exactly one byte of it to guard it.
        QVERIFY(!gDatabase);
        QVERIFY(!QFile::exists(folder_->file("data.compacted")));
        const QByteArray closed = ReadBytes(folder_->file("data.gdb"), 100);
        QCOMPARE(closed.size(), 100);
        QCOMPARE(closed.at(14), char(0x46));
        FlipDatabaseHeader(folder_->file("data.gdb"), kUnguardHeader);
        const QByteArray usable = ReadBytes(folder_->file("data.gdb"), 100);
        for (int offset = 0; offset < 100; ++offset)
            if (offset != 14) QCOMPARE(closed.at(offset), usable.at(offset));
        FlipDatabaseHeader(folder_->file("data.gdb"), kGuardHeader);
        QCOMPARE(ReadBytes(folder_->file("data.gdb"), 100), closed);

        // The guarded file opens again at the next start, and a crash-left usable file too.
        QVERIFY(StartProgram());
        QVERIFY(gDatabase);
        gDatabase->Close();
        gDatabase.reset();
        FlipDatabaseHeader(folder_->file("data.gdb"), kUnguardHeader);
        gMainForm->SetMousePointer(vbArrow);
        gMainForm->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        FlipDatabaseHeader(folder_->file("data.gdb"), kUnguardHeader);
        QVERIFY(StartProgram());
        QVERIFY(gDatabase);
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }

    void readOnlyCatalogueAsksOnce() {
        folder_->installCatalogue();
        const QString path = folder_->file("data.gdb");
        const MsgBoxCall accessible{
            "Velmora cannot access the database in its current state. Do "
            "you want Velmora to make it accessible?",
            vbYesNoCancel + vbQuestion, "Unable to access database"};
        {
            SetAttr(path, vbReadOnly);
            ScriptedDialogs dialogs;
            dialogs.answerMsgBox(vbNo);
            QVERIFY(!StartProgram());
            // The password is only assigned on the way to opening, so the exit's compaction of
            // the refused file is refused in turn; the guard still takes the file back.
            QCOMPARE(dialogs.takeBoxes(),
                     Boxes({accessible,
                            {"Unable to open the database " + path + " since it is read-only.",
                             vbCritical, "Unable to initialize Velmora Database."},
                            kPasswordRefusedAtExit}));
            QCOMPARE(GetAttr(path), int(vbArchive));
            QCOMPARE(ReadBytes(path, 15), QByteArray("SQLite format F"));
        }
        {
            SetAttr(path, vbReadOnly);
            ScriptedDialogs dialogs;
            dialogs.answerMsgBox(vbYes);
            QVERIFY(StartProgram());
            QCOMPARE(dialogs.takeBoxes(), Boxes({accessible}));
            QVERIFY(gDatabase);
            QCOMPARE(GetAttr(path), int(vbArchive));
        }
    }

    void narrowLabelIsWidenedOnceKeepingEveryValue() {
        folder_->installCatalogue();
        MakeNarrowLabelCatalogue(folder_->file("data.gdb"));
        ScriptedDialogs dialogs;

        StartProgram();
        QVERIFY2(gMainForm, qPrintable(dialogs.prompts().join(" / ")));
        // The editor keeps the old limit for this run; the file already has the new width.
        QCOMPARE(gLenLabel, 20);
        auto [labels, width] = Labels();
        QCOMPARE(width, 32);
        QCOMPARE(labels.size(), 3);
        QCOMPARE(labels[0].toString(), kTwentyWide);
        QVERIFY(labels[1].isNull());
        QCOMPARE(labels[2].toString(), kEmptyTextMark);
        QCOMPARE(LastColumnOfTitle(), QString("label"));
        QVERIFY_THROWS_EXCEPTION(VbError, gDatabase->OpenRecordset("select templabel from title"));
        gDatabase->Execute("update title set label = '" + kTwentyWide +
                           "123456789012' where idcd = 2");
        EndProgram();

        StartProgram();
        QVERIFY(gMainForm);
        QCOMPARE(gLenLabel, 32);
        std::tie(labels, width) = Labels();
        QCOMPARE(labels[1].toString(), kTwentyWide + "123456789012");
        QVERIFY(dialogs.msgBoxes.isEmpty());
        EndProgram();
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
};

class InstanceTest : public QObject {
    Q_OBJECT
  private slots:
    void cleanup() {
        EndProgram();
        gSecondInstance = false;
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
        QCOMPARE(ReadBytes(folder.file("data.gdb"), 15), QByteArray("SQLite format F"));
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
    app.setAttribute(Qt::AA_Use96Dpi, true);
    InitResources();
    if (argc == 3 && QByteArray(argv[1]) == "--program") return RunProgram(argv[2]);
    StartupTest startup;
    InstanceTest instances;
    return QTest::qExec(&startup, argc, argv) | QTest::qExec(&instances, argc, argv);
}
#include "startup_test.moc"
