// The lookups: the routines that add, rename and delete a platform, type, specific item,
// vendor or mediatype; and the maintenance window over them, with its lists, the picture
// buttons and keys, and its road from the main window and back.

#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>

#include "app/mGlobals.h"
#include "lookups/frmDatabase.h"
#include "lookups/lookupoperations.h"
#include "shell/frmMain.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "support/testsupport.h"

namespace {

const QString kCrLf = "\r\n";

long Rows(const QString& table, const QString& where = "1 = 1") {
    return Scalar("select count(*) from " + table + " where " + where).toLongLong();
}

// Every lookup table names its columns id<table> and nm<table>.
QString NameOf(const QString& table, long id) {
    return Scalar(QString("select nm%1 from %1 where id%1 = %2").arg(table).arg(id)).toString();
}

using Routine = std::function<QString(int, long, QString&)>;

QString Call(const Routine& routine, int action, long id, QString name = QString()) {
    return routine(action, id, name);
}

// The platform has no parent: its parent column "0" holds the parent 0 on every row.
struct Table {
    QString name, noun, parentField;
    Routine routine;
    long parent;
    int limit;
    bool treeAfterChange, listAfterChange, treeAfterDelete, listAfterDelete;
};

const QList<Table> kTables = {
    {"platform", "platform", "0", ModifyPlatform, 0, 50, true, false, true, true},
    {"mediatype", "mediatype", "iddevicetype", ModifyMediatype, 2, 50, false, false, false, false},
    {"type", "type", "idplatform", ModifyType, 3, 50, true, true, true, true},
    {"specific", "specific item", "idtype", ModifySpecific, 10, 50, false, true, false, true},
    {"vendor", "vendor", "idplatform", ModifyVendor, 3, 100, false, true, false, true},
};

QStringList Texts(QListWidget* list) {
    QStringList texts;
    for (int row = 0; row < list->count(); ++row) texts << list->item(row)->text();
    return texts;
}

}  // namespace

class LookupOperationsTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<TempProgramFolder> folder;

    void checkDirty(bool tree, bool list) {
        QCOMPARE(gTreeDirty, tree);
        QCOMPARE(gListDirty, list);
        gTreeDirty = gListDirty = false;
    }

  private slots:
    void init() {
        folder = std::make_unique<TempProgramFolder>();
        folder->openCatalogue();
        ReadFieldSizes();
        gTreeDirty = gListDirty = false;
    }
    void cleanup() { folder.reset(); }

    void everyTableAddsRenamesAndDeletes() {
        for (const Table& t : kTables) {
            ScriptedDialogs dialogs;
            // A wanted name skips the dialogue and is used up; a name may hold the separator.
            QString wanted = "Acme~Records";
            const QString added = t.routine(kLookupAdd, t.parent, wanted);
            const long id = LookupResultId(added);
            QVERIFY2(wanted.isEmpty() && dialogs.inputs.isEmpty(), qPrintable(t.name));
            QCOMPARE(LookupResultName(added), QString("Acme~Records"));
            QCOMPARE(Rows(t.name, QString("id%1 = %2 and nm%1 = 'Acme~Records' and %3 = %4")
                                      .arg(t.name, QString::number(id), t.parentField,
                                           QString::number(t.parent))),
                     1L);
            checkDirty(t.treeAfterChange, t.listAfterChange);

            // Names of exactly the limit pass, blanks around them do not count, case does.
            const QString full(t.limit, 'b'), limit = QString("(Max. length = %1)").arg(t.limit);
            dialogs.answerInput("  " + full + "  ");
            dialogs.answerInput(full.toUpper());
            const long boxed = LookupResultId(Call(t.routine, kLookupAdd, t.parent));
            QCOMPARE(Call(t.routine, kLookupRename, boxed, full),
                     QString::number(boxed) + "~" + full.toUpper());
            QCOMPARE(NameOf(t.name, boxed), full.toUpper());
            QCOMPARE(dialogs.inputs,
                     QList<InputBoxCall>(
                         {{"Please enter a name for this new " + t.noun + ":" + kCrLf + limit,
                           "Add " + t.noun, "New " + t.noun},
                          {"Please enter a new name for this " + t.noun + ":" + kCrLf + limit,
                           "Rename " + t.noun, full}}));
            checkDirty(t.treeAfterChange, t.listAfterChange);

            // Cancelled, blank, unchanged and unknown end in silence; one more than the limit
            // is refused, typed or wanted. Nothing is written either way.
            const long rows = Rows(t.name);
            dialogs.answerInput(QString());
            dialogs.answerInput("   ");
            dialogs.answerInput(full.toUpper() + " ");
            const QStringList silent = {Call(t.routine, kLookupAdd, t.parent),
                                        Call(t.routine, kLookupAdd, t.parent),
                                        Call(t.routine, kLookupRename, boxed, full.toUpper()),
                                        Call(t.routine, 0, boxed, full.toUpper())};
            QCOMPARE(silent.join(""), QString());
            dialogs.answerInput(full + "b");
            dialogs.answerInput(full + "b");
            wanted = full + "b";
            QCOMPARE(Call(t.routine, kLookupAdd, t.parent), QString());
            QCOMPARE(Call(t.routine, kLookupRename, boxed, full.toUpper()), QString());
            QCOMPARE(t.routine(kLookupAdd, t.parent, wanted), QString());
            QVERIFY(wanted.isEmpty());
            const QString tooLong = QString("Name is too long! Maximum length is %1.").arg(t.limit);
            QCOMPARE(dialogs.msgBoxes, Boxes(3, {tooLong, vbCritical, "Velmora"}));
            QCOMPARE(Rows(t.name), rows);
            QCOMPARE(NameOf(t.name, boxed), full.toUpper());
            checkDirty(false, false);

            if (t.name == "specific") continue;  // its count names a column title lacks
            dialogs.answerMsgBox(vbYes);
            dialogs.msgBoxes.clear();
            QCOMPARE(Call(t.routine, kLookupDelete, boxed, full), QString("0~"));
            QCOMPARE(dialogs.msgBoxes,
                     Boxes({{"Are you sure you want to delete the " + t.noun + " \"" + full + "\"?",
                             vbYesNoCancel + vbQuestion, "Confirm Delete"}}));
            QCOMPARE(Rows(t.name), rows - 1);
            checkDirty(t.treeAfterDelete, t.listAfterDelete);
        }
    }

    void deletingPlatforms() {
        ScriptedDialogs dialogs;
        for (long id = 1; id <= 5; ++id) {
            QCOMPARE(Call(ModifyPlatform, kLookupDelete, id, "Audio"), QString());
            QCOMPARE(dialogs.takeBoxes(),
                     Boxes({{"These folders cannot be deleted since they are a part of the "
                             "program.\r\nYou can however 'hide' this platform.",
                             vbInformation, "Unable to delete platform"}}));
        }
        QCOMPARE(Rows("platform", "idplatform <= 5"), 5L);

        const long platform = LookupResultId(Call(ModifyPlatform, kLookupAdd, 0, "Laserdisc"));
        QCOMPARE(platform, 6L);  // the first user platform, just past the reserved ones
        const long type = LookupResultId(Call(ModifyType, kLookupAdd, platform, "Features"));
        const long specific = LookupResultId(Call(ModifySpecific, kLookupAdd, type, "Wide"));
        const long vendor = LookupResultId(Call(ModifyVendor, kLookupAdd, platform, "Pioneer"));
        // Titles are written as plain SQL so that only the routines under test touch the lookups.
        AddTitle(*gDatabase, "t", platform, type, specific, vendor);
        AddTitle(*gDatabase, "t", platform, type, specific, vendor);
        AddTitle(*gDatabase, "t", 1, 2, 4, 1);
        const QString own = QString("idplatform = %1").arg(platform);
        gTreeDirty = gListDirty = false;

        // Cancel at the second question keeps everything.
        const MsgBoxCall confirm{"Are you sure you want to delete the platform \"Laserdisc\"?",
                                 vbYesNoCancel + vbQuestion, "Confirm Delete"};
        const MsgBoxCall found{
            "Found 2 CD-title(s) with platform \"Laserdisc\".\r\nDeleting this "
            "platform means that 2 CD-title(s) will be deleted too!\r\nDo you "
            "want to delete the 2 CD-title(s) as well?",
            vbYesNoCancel + vbExclamation, "Found related CD-tile(s) in Velmora's Database!"};
        dialogs.answerMsgBox(vbYes);
        dialogs.answerMsgBox(vbCancel);
        QCOMPARE(Call(ModifyPlatform, kLookupDelete, platform, "Laserdisc"), QString());
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({confirm,
                        found,
                        {"You didn't want the cd-title(s) deleted. As a consequence the platform "
                         "will not be deleted.",
                         vbInformation, "Unable to delete platform"}}));
        QCOMPARE(Rows("platform", own) + Rows("title", own), 3L);
        checkDirty(false, false);

        dialogs.answerMsgBox(vbYes);
        dialogs.answerMsgBox(vbYes);
        QCOMPARE(Call(ModifyPlatform, kLookupDelete, platform, "Laserdisc"), QString("0~"));
        QCOMPARE(dialogs.takeBoxes(), Boxes({confirm, found}));
        QCOMPARE(Rows("platform", own) + Rows("title", own) + Rows("type", own) +
                     Rows("vendor", own) + Rows("specific", QString("idtype = %1").arg(type)),
                 0L);
        QCOMPARE(Rows("title"), 1L);
        checkDirty(true, true);
    }
};

class DatabaseWindowTest : public QObject {
    Q_OBJECT

  private:
    TempProgramFolder* folder_ = nullptr;
    ScriptedDialogs* dialogs_ = nullptr;
    frmDatabase* form_ = nullptr;

  private slots:
    void init() {
        folder_ = new TempProgramFolder;
        folder_->openCatalogue();
        dialogs_ = new ScriptedDialogs;
        gTreeDirty = false;
        gListDirty = false;
        form_ = new frmDatabase;
        form_->Form_Load();
    }

    void cleanup() {
        delete form_;
        delete dialogs_;
        folder_->closeCatalogue();
        delete folder_;
    }

    void deletesAndKeys() {
        // Deleting the last platform row selects the new last one, whose lists fill.
        dialogs_->answerInput("Zz last");
        form_->Picture_Click(frmDatabase::Platform, 1);
        dialogs_->answerMsgBox(vbYes);
        form_->Picture_Click(frmDatabase::Platform, 3);
        QCOMPARE(form_->cmbPlatform->currentText(), QString("Video"));
        QCOMPARE(form_->SelectedPlatformId, 2L);
        QCOMPARE(Texts(form_->lstType), QStringList({"Concert", "Documentary", "Movie"}));

        dialogs_->answerInput("Studio C");
        QTest::keyClick(form_->lstVendor, Qt::Key_Insert, Qt::ControlModifier);
        QCOMPARE(form_->lstVendor->currentItem()->text(), QString("Studio C"));

        // A deleted vendor leaves no selection: Ctrl-Delete once more asks nothing.
        dialogs_->answerMsgBox(vbYes);
        QTest::keyClick(form_->lstVendor, Qt::Key_Delete, Qt::ControlModifier);
        QVERIFY(!Texts(form_->lstVendor).contains("Studio C"));
        QCOMPARE(form_->lstVendor->currentRow(), -1);
        const qsizetype asked = dialogs_->msgBoxes.size();
        QTest::keyClick(form_->lstVendor, Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(dialogs_->msgBoxes.size(), asked);
    }
};

class DatabaseWindowRoadTest : public QObject {
    Q_OBJECT

  private slots:
    // A platform hidden from the tree comes back through the window, opened from the tree's
    // menu on its own node; the window selects what the node names and compacts on closing.
    void hiddenPlatformShownAgain() {
        TempProgramFolder folder;
        folder.installCatalogue();
        frmMain* form = StartProgram();
        QVERIFY(form);
        ScriptedDialogs dialogs;
        dialogs.answerMsgBox(vbYes);
        form->SelectNode(NodeWithKey("key3"));
        form->HideFolder(3, "PC");
        QVERIFY(!NodeWithKey("key3"));

        form->SelectNode(NodeWithKey("key1key4"));
        gSelectedIndex = form->NodeIndex(NodeWithKey("key1key4"));
        QString selected;
        testsupport::RejectNextModal([&](QWidget* window) {
            auto* maintenance = qobject_cast<frmDatabase*>(window);
            QVERIFY(maintenance);
            selected = maintenance->cmbPlatform->currentText() + "/" +
                       maintenance->lstType->currentItem()->text();
            maintenance->cmbPlatform->setCurrentIndex(maintenance->cmbPlatform->findText("PC"));
            maintenance->cmbPlatform_Click();
            maintenance->chkVisiblePlatform->click();
        });
        form->Toolbar1_ButtonClick("maintenance");
        QCOMPARE(selected, QString("Audio/Jazz"));
        QVERIFY(NodeWithKey("key3"));
        QVERIFY(!QFile::exists(folder.file("data.compacted")));
        QVERIFY(gDatabase && gDatabase->IsOpen());
        EndProgram();
    }
};

int main(int argc, char** argv) {
    testsupport::PrepareEnvironment();
    QApplication app(argc, argv);
    InitResources();
    LookupOperationsTest operations;
    DatabaseWindowTest window;
    DatabaseWindowRoadTest road;
    return QTest::qExec(&operations, argc, argv) | QTest::qExec(&window, argc, argv) |
           QTest::qExec(&road, argc, argv);
}
#include "lookups_test.moc"
