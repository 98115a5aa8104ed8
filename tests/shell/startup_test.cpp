// A real start and exit of the program in a temporary program folder.

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QScreen>
#include <QStandardPaths>

#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/mGlobals.h"
#include "store/catalogue.h"
#include "store/guardedfile.h"
#include "store/passwordcheck.h"
#include "support/testsupport.h"
#include "toolkit/mRegistry.h"
#include "toolkit/vbruntime.h"

namespace {

QByteArray Head(const QString& path, int length = 100) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.read(length);
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
        TempProgramFolder& folder = *folder_;
        folder.installTemplate();
        QFile::copy(testsupport::HelpFolder() + "/velmora.html", folder.file("velmora.html"));
        const QFile::Permissions writable = QFile(folder.path()).permissions();
        QFile(folder.path()).setPermissions(writable & ~(QFile::WriteOwner | QFile::WriteUser));
        const QString dataFolder =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/velmora";
        ScriptedDialogs dialogs;

        QVERIFY(StartProgram());
        QVERIFY(gDatabase);
        QCOMPARE(gDatabasePath, dataFolder + "/data.gdb");
        EndProgram();
        QFile(folder.path()).setPermissions(writable);

        QVERIFY(dialogs.msgBoxes.isEmpty());
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::NoDotAndDotDot),
                 QStringList({"data.dll", "velmora.html"}));
        QCOMPARE(Head(dataFolder + "/data.gdb").left(15), QByteArray("SQLite format F"));
        QVERIFY(!QFile::exists(dataFolder + "/data.compacted"));
        QVERIFY(QFile::remove(dataFolder + "/data.gdb"));
    }

    void installsMissingCatalogueAndGuardsItAtExit() {
        TempProgramFolder& folder = *folder_;
        folder.installTemplate();
        ScriptedDialogs dialogs;

        frmMain* window = StartProgram();
        QVERIFY(window);
        QVERIFY(gDatabase);
        QVERIFY(dialogs.msgBoxes.isEmpty());
        QCOMPARE(gDatabasePath, folder.file("data.gdb"));
        QCOMPARE(GetAttr(gDatabasePath), int(vbArchive));
        QVERIFY(window->isVisible());
        QCOMPARE(gSplashForm->Status(), QString("Brings you only the best"));
        QVERIFY(gSplashForm->Timer->isActive());

        QVERIFY(Head(gDatabasePath).startsWith("SQLite format 3"));
        EndProgram();

        // The exit compacts the file and then changes exactly one byte of it to guard it.
        QVERIFY(!gDatabase);
        QVERIFY(!QFile::exists(folder.file("data.compacted")));
        const QByteArray closed = Head(folder.file("data.gdb"));
        QCOMPARE(closed.size(), 100);
        QCOMPARE(closed.at(14), char(0x46));
        FlipDatabaseHeader(folder.file("data.gdb"), kUnguardHeader);
        const QByteArray usable = Head(folder.file("data.gdb"));
        for (int offset = 0; offset < 100; ++offset)
            if (offset != 14) QCOMPARE(closed.at(offset), usable.at(offset));
        FlipDatabaseHeader(folder.file("data.gdb"), kGuardHeader);
        QCOMPARE(Head(folder.file("data.gdb")), closed);

        const QString key = "HKEY_LOCAL_MACHINE\\Software\\Dorvik Software\\Velmora";
        QCOMPARE(GetRegistryValue(key, "AppPath"), App.Path);
        QCOMPARE(GetRegistryValue(key, "CurrentVersionMajor"), QString::number(App.Major));

        // The guarded file opens again at the next start, and a crash-left usable file too.
        QVERIFY(StartProgram());
        QVERIFY(gDatabase);
        gDatabase->Close();
        gDatabase.reset();
        FlipDatabaseHeader(folder.file("data.gdb"), kUnguardHeader);
        gMainForm->SetMousePointer(vbArrow);
        gMainForm->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        FlipDatabaseHeader(folder.file("data.gdb"), kUnguardHeader);
        QVERIFY(StartProgram());
        QVERIFY(gDatabase);
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }

    void missingTemplateEndsWithTheInstallBox() {
        TempProgramFolder& folder = *folder_;
        ScriptedDialogs dialogs;

        QVERIFY(!StartProgram());
        QVERIFY(!gDatabase);
        QCOMPARE(dialogs.msgBoxes.size(), 2);
        QCOMPARE(dialogs.msgBoxes[0].prompt, "Database could not be installed, because the file " +
                                                 folder.file("data.dll") + " is missing.");
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Unable to initialize Velmora Database."));
        QCOMPARE(dialogs.msgBoxes[0].flags, int(vbCritical));
        // The exit still tries its compaction, which finds no file.
        QCOMPARE(dialogs.msgBoxes[1].title, QString("Error compacting database"));
        QVERIFY(dialogs.msgBoxes[1].prompt.startsWith("3024|"));
        QVERIFY(!QFile::exists(folder.file("data.gdb")));
        QVERIFY(!QFile::exists(folder.file("data.compacted")));
    }

    void readOnlyCatalogueAsksOnce() {
        TempProgramFolder& folder = *folder_;
        folder.installCatalogue();
        const QString path = folder.file("data.gdb");

        {
            SetAttr(path, vbReadOnly);
            ScriptedDialogs dialogs;
            dialogs.answerMsgBox(vbNo);
            QVERIFY(!StartProgram());
            QCOMPARE(dialogs.msgBoxes.size(), 3);
            QCOMPARE(dialogs.msgBoxes[0].prompt,
                     QString("Velmora cannot access the database in its current state. Do you "
                             "want Velmora to make it accessible?"));
            QCOMPARE(dialogs.msgBoxes[0].title, QString("Unable to access database"));
            QCOMPARE(dialogs.msgBoxes[0].flags, 35);
            QCOMPARE(dialogs.msgBoxes[1].prompt,
                     "Unable to open the database " + path + " since it is read-only.");
            QCOMPARE(dialogs.msgBoxes[1].flags, int(vbCritical));
            // The password is only assigned on the way to opening, so the exit's compaction of
            // the refused file is refused in turn; the guard still takes the file back.
            QCOMPARE(dialogs.msgBoxes[2].prompt, QString("3031|Not a valid password.\t"));
            QCOMPARE(dialogs.msgBoxes[2].title, QString("Error compacting database"));
            QCOMPARE(GetAttr(path), int(vbArchive));
            QCOMPARE(Head(path).left(15), QByteArray("SQLite format F"));
        }
        {
            SetAttr(path, vbReadOnly);
            ScriptedDialogs dialogs;
            dialogs.answerMsgBox(vbYes);
            QVERIFY(StartProgram());
            QCOMPARE(dialogs.msgBoxes.size(), 1);
            QVERIFY(gDatabase);
            QCOMPARE(GetAttr(path), int(vbArchive));
        }
    }

    void wrongPasswordShowsBothBoxesAndEnds() {
        TempProgramFolder& folder = *folder_;
        folder.installCatalogue();
        sqlite3* db = nullptr;
        QCOMPARE(sqlite3_open(folder.file("data.gdb").toUtf8().constData(), &db), SQLITE_OK);
        passwordcheck::Write(db, "someone else's password");
        sqlite3_close(db);

        ScriptedDialogs dialogs;
        QVERIFY(!StartProgram());
        QVERIFY(!gDatabase);
        QCOMPARE(dialogs.msgBoxes.size(), 3);
        QCOMPARE(dialogs.msgBoxes[0].prompt, QString("Not a valid password."));
        QCOMPARE(dialogs.msgBoxes[0].flags, 0);
        QCOMPARE(dialogs.msgBoxes[1].prompt,
                 "Unable to load Velmora!. The database " + folder.file("data.gdb") +
                     " might be inappropriate for this version or is corrupted.\r\nPlease see "
                     "the support-section on http://www.dorviksoftware.example for "
                     "troubleshooting.");
        QCOMPARE(dialogs.msgBoxes[1].flags, int(vbCritical));
        QCOMPARE(dialogs.msgBoxes[1].title, QString("Velmora"));
        // The exit compacts as usual, and the engine refuses the password there too.
        QCOMPARE(dialogs.msgBoxes[2].prompt, QString("3031|Not a valid password.\t"));
        QCOMPARE(dialogs.msgBoxes[2].title, QString("Error compacting database"));
        // The run still ends through the exit, which guards the file again.
        QCOMPARE(Head(folder.file("data.gdb")).at(14), char(0x46));
    }

    void secondInstanceRaisesTheFirstAndLeavesTheFileAlone() {
        TempProgramFolder& folder = *folder_;
        folder.installTemplate();
        ScriptedDialogs dialogs;

        frmMain* first = StartProgram();
        QVERIFY(first);
        first->showMinimized();
        const QByteArray running = Head(folder.file("data.gdb"));

        auto* second = new frmMain();
        gMainForm = second;
        second->Form_Load();
        QVERIFY(gSecondInstance);
        QVERIFY(second->IsUnloaded());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(Head(folder.file("data.gdb")), running);
        QTRY_VERIFY(!first->isMinimized());

        gSecondInstance = false;
        gMainForm = first;
    }

    void textColumnWiderThanAByteOverflowsAtStart() {
        TempProgramFolder& folder = *folder_;
        folder.openCatalogue();
        gDatabase->Execute("ALTER TABLE title ADD COLUMN templabel TEXT (300)");
        gDatabase->Execute("ALTER TABLE title DROP COLUMN label");
        gDatabase->Execute("ALTER TABLE title RENAME COLUMN templabel TO label");
        folder.closeCatalogue();
        ScriptedDialogs dialogs;

        QVERIFY(!StartProgram());
        QVERIFY(!gDatabase);
        QVERIFY(dialogs.msgBoxes.size() >= 2);
        QCOMPARE(dialogs.msgBoxes[0].prompt, QString("Overflow"));
        QVERIFY(dialogs.msgBoxes[1].prompt.startsWith("Unable to load Velmora!. The database "));
        QCOMPARE(Head(folder.file("data.gdb")).left(15), QByteArray("SQLite format F"));
    }

    void busyWindowRefusesToCloseAndKeepsItsLimits() {
        TempProgramFolder& folder = *folder_;
        folder.installTemplate();
        ScriptedDialogs dialogs;
        frmMain* window = StartProgram();
        QVERIFY(window);

        window->SetMousePointer(vbHourglass);
        QVERIFY(!window->close());
        QVERIFY(!window->IsUnloaded());
        window->SetMousePointer(vbArrow);

        const int screenHeight = window->screen()->geometry().height();
        window->move(window->x(), screenHeight * 95 / 100);
        QTRY_VERIFY(window->frameGeometry().top() <= screenHeight * 90 / 100);
        window->resize(window->width(), 10);
        QTRY_VERIFY(window->frameGeometry().height() * 15 >= 490);
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
};

VELMORA_TEST_MAIN(StartupTest)
#include "startup_test.moc"
