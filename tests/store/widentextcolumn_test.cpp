// A catalogue from an older version, with a narrow label column, is brought up to the present
// width at start-up without losing a value.

#include <sqlite3.h>

#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/mGlobals.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "store/jettext.h"
#include "support/testsupport.h"
#include "toolkit/vbruntime.h"

namespace {

const QString kTwentyWide = "ABCDEFGHIJKLMNOPQRST";

// Rebuilds the label column of the file at 20 wide, as an older version made it, and files
// three titles: a full label, a Null label and the empty text mark.
void MakeNarrowLabelCatalogue(const QString& path, bool leaveTemporaryColumn) {
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
    if (leaveTemporaryColumn)
        QCOMPARE(sqlite3_exec(db, "ALTER TABLE title ADD COLUMN templabel TEXT(32)", nullptr,
                              nullptr, nullptr),
                 SQLITE_OK);
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

}  // namespace

class WidenTextColumnTest : public QObject {
    Q_OBJECT

  private slots:
    void narrowLabelIsWidenedOnceKeepingEveryValue() {
        TempProgramFolder folder;
        folder.installCatalogue();
        MakeNarrowLabelCatalogue(folder.file("data.gdb"), false);
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

    void wideLabelIsLeftInPlace() {
        TempProgramFolder folder;
        folder.installCatalogue();
        ScriptedDialogs dialogs;
        StartProgram();
        QVERIFY(gMainForm);
        QCOMPARE(gLenLabel, 32);
        QVERIFY(LastColumnOfTitle() != "label");
        EndProgram();
    }

    void leftoverTemporaryColumnEndsTheStart() {
        TempProgramFolder folder;
        folder.installCatalogue();
        MakeNarrowLabelCatalogue(folder.file("data.gdb"), true);
        ScriptedDialogs dialogs;
        StartProgram();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!gMainForm);
        QCOMPARE(dialogs.msgBoxes.size(), 2);
        QVERIFY(dialogs.msgBoxes[1].prompt.startsWith("Unable to load Velmora!. The database " +
                                                      folder.file("data.gdb")));
        QCOMPARE(dialogs.msgBoxes[1].flags, int(vbCritical));
        QVERIFY(QFile::exists(folder.file("data.gdb")));
    }
};

VELMORA_TEST_MAIN(WidenTextColumnTest)
#include "widentextcolumn_test.moc"
