// Compaction of the catalogue at exit: the compacted copy, the refusal of a leftover temporary
// file, a catalogue reached through a symbolic link, and the reopening after a failure.

#include <sqlite3.h>

#include "app/mGlobals.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "store/catalogue.h"
#include "store/guardedfile.h"
#include "support/testsupport.h"
#include "toolkit/vb/vbruntime.h"

namespace {

void AddTitle(int idcd, const QString& memo) {
    gDatabase->Execute(
        "insert into title (idcd, nmcd, idvendor, idplatform, idtype, idspecific, idmediatype, "
        "memo) values (" +
        QString::number(idcd) + ", 'Title " + QString::number(idcd) + "', 1, 1, 1, 1, 1, '" + memo +
        "')");
}

}  // namespace

class CompactionTest : public QObject {
    Q_OBJECT

  private slots:
    void compactIntoMakesASmallerCopy() {
        TempProgramFolder folder;
        folder.openCatalogue();
        const QString memo(2000, QChar('m'));
        for (int idcd = 1; idcd <= 400; ++idcd) AddTitle(idcd, memo);
        gDatabase->Execute("delete from title where idcd > 10");
        folder.closeCatalogue();

        const QString target = folder.file("data.compacted");
        QCOMPARE(CompactInto(gDatabasePath, target, gDatabasePassword), QString());
        QVERIFY(QFileInfo(target).size() < QFileInfo(gDatabasePath).size());

        gDatabase = DBEngine::OpenDatabase(target, true, false, ";pwd=" + gDatabasePassword);
        QCOMPARE(RowCount("title"), 10L);
        folder.closeCatalogue();
        QVERIFY_THROWS_EXCEPTION(VbError,
                                 DBEngine::OpenDatabase(target, true, false, ";pwd=another"));
    }

    void leftoverTemporaryFileFailsEveryExitAndKeepsTheCatalogue() {
        TempProgramFolder folder;
        folder.installCatalogue();
        const QString leftover = folder.file("data.compacted");
        WriteBytes(leftover, "partial");
        ScriptedDialogs dialogs;
        for (int run = 1; run <= 2; ++run) {
            StartProgram();
            QVERIFY(gMainForm);
            QCOMPARE(RowCount("title"), long(run - 1));
            AddTitle(run, "kept");
            EndProgram();

            QCOMPARE(dialogs.msgBoxes.size(), run);
            const MsgBoxCall& box = dialogs.msgBoxes.last();
            QVERIFY2(box.prompt.startsWith("3204|"), qPrintable(box.prompt));
            QCOMPARE(ReadBytes(folder.file("data.gdb"), 15), QByteArray("SQLite format F"));
            QCOMPARE(ReadBytes(leftover), QByteArray("partial"));
        }
    }

    void symbolicLinkStaysALinkToTheCompactedGuardedTarget() {
        TempProgramFolder folder;
        folder.installTemplate();
        QTemporaryDir synced;
        const QString target = synced.filePath("discs.gdb");
        QVERIFY(QFile::copy(folder.file("data.dll"), target));
        const QFile::Permissions permissions =
            QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
        QVERIFY(QFile::setPermissions(target, permissions));
        QVERIFY(QFile::link(target, folder.file("data.gdb")));

        ScriptedDialogs dialogs;
        QVERIFY(StartProgram());
        QVERIFY(gDatabase);
        AddTitle(1, "kept through the link");
        EndProgram();

        QVERIFY(dialogs.msgBoxes.isEmpty());
        QVERIFY(QFileInfo(folder.file("data.gdb")).isSymLink());
        QCOMPARE(QFileInfo(folder.file("data.gdb")).symLinkTarget(), target);
        QCOMPARE(ReadBytes(target, 15), QByteArray("SQLite format F"));
        // Owner, group and others; Qt's "user" bits repeat the owner's for the test's own user.
        QCOMPARE(QFile::permissions(target) & QFile::Permissions(0x7077), permissions);
        QVERIFY(!QFile::exists(folder.file("data.compacted")));
        QVERIFY(!QFile::exists(synced.filePath("data.compacted")));
        QVERIFY(StartProgram());
        QCOMPARE(RowCount("title"), 1L);
        EndProgram();
        QVERIFY(QFileInfo(folder.file("data.gdb")).isSymLink());
    }

    void failedReopenAsksUntilTheCatalogueIsOpenAgain() {
        TempProgramFolder folder;
        folder.openCatalogue();
        AddTitle(1, "one");
        gViewSQL = "Select * from title";
        folder.closeCatalogue();
        // Another holder of the file makes the compaction and the reopening fail.
        sqlite3* holder = nullptr;
        QCOMPARE(sqlite3_open(gDatabasePath.toUtf8().constData(), &holder), SQLITE_OK);
        QCOMPARE(sqlite3_exec(holder, "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; COMMIT",
                              nullptr, nullptr, nullptr),
                 SQLITE_OK);
        QList<MsgBoxCall> boxes;
        SetMsgBoxResponder([&](const MsgBoxCall& call) {
            boxes.append(call);
            if (call.flags != (vbRetryCancel | vbCritical)) return int(vbOK);
            if (boxes.size() == 3) {
                sqlite3_close(holder);
                holder = nullptr;
            }
            return int(vbRetry);
        });
        CompactCatalogue(true, "idcd > 0", QString());
        testsupport::InstallUnscriptedResponders();
        if (holder) sqlite3_close(holder);

        QCOMPARE(boxes.size(), 3);
        for (int retry = 1; retry <= 2; ++retry)
            QVERIFY2(boxes[retry].prompt.startsWith(
                         "Velmora could not open its database again after compacting it.\r\n"),
                     qPrintable(boxes[retry].prompt));
        QVERIFY(gDatabase && gRecordset);
        QCOMPARE(gRecordset->Filter(), QString("idcd > 0"));
        QCOMPARE(RowCount("title"), 1L);
    }
};

VELMORA_TEST_MAIN(CompactionTest)
#include "compaction_test.moc"
