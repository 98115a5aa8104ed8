// The maintenance window: its lists and their cascade, the visible check box, the picture
// buttons and keys, and its road from the main window and back.

#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QToolButton>

#include "lookups/frmDatabase.h"
#include "shell/frmMain.h"
#include "shell/mGlobals.h"
#include "store/catalogue.h"
#include "support/testsupport.h"

namespace {

QVariant Value(const QString& sql) {
    auto rows = gDatabase->OpenRecordset(sql, dbOpenSnapshot);
    return rows->IsEOF() ? QVariant() : rows->Fields(0).Value();
}

QStringList Texts(QListWidget* list) {
    QStringList texts;
    for (int row = 0; row < list->count(); ++row) texts << list->item(row)->text();
    return texts;
}

}  // namespace

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

    void fillsAndCascade() {
        QCOMPARE(form_->cmbPlatform->currentText(), QString("Audio"));
        QCOMPARE(form_->SelectedPlatformId, 1L);
        QCOMPARE(Texts(form_->lstType).first(), QString("Classical"));
        QCOMPARE(Texts(form_->lstSpecific), QStringList({"Chamber music", "Opera", "Symphony"}));
        QCOMPARE(form_->lstVendor->count(), 2);
        QCOMPARE(form_->cmbMediatype->currentIndex(), 0);
        QVERIFY(form_->chkVisiblePlatform->isChecked());
        QCOMPARE(form_->PictureButton(frmDatabase::Vendor, 2)->toolTip(),
                 QString("Delete the selected vendor / artist"));

        // The selected type clicked again does not fill its specific items again.
        form_->lstType_Click();
        form_->lstSpecific->item(0)->setText("marked");
        form_->lstType_Click();
        QCOMPARE(form_->lstSpecific->item(0)->text(), QString("marked"));

        // A platform without types leaves both lists empty; a specific item has no parent.
        dialogs_->answerInput("Zebra discs");
        form_->Picture_Click(frmDatabase::Platform, 1);
        QCOMPARE(form_->cmbPlatform->currentText(), QString("Zebra discs"));
        QCOMPARE(form_->lstType->count(), 0);
        QCOMPARE(form_->lstSpecific->count(), 0);
        QCOMPARE(form_->lstVendor->count(), 0);
        form_->Picture_Click(frmDatabase::Specific, 1);
        QCOMPARE(dialogs_->inputs.size(), 1);
    }

    void visibleCheckBox() {
        gDatabase->Execute(
            "insert into title (nmcd, idplatform, idtype, idmediatype) values "
            "('kept', 2, 7, 1)");
        form_->cmbPlatform->setCurrentIndex(form_->cmbPlatform->findText("Video"));
        form_->cmbPlatform_Click();
        QVERIFY(!gTreeDirty && !gListDirty);
        form_->chkVisiblePlatform->click();
        QCOMPARE(Value("select visible from platform where idplatform = 2").toBool(), false);
        QVERIFY(gTreeDirty && gListDirty);
        QCOMPARE(Value("select count(*) from title where idplatform = 2").toInt(), 1);

        // Loading a hidden platform sets the box without writing it back.
        gTreeDirty = gListDirty = false;
        form_->cmbPlatform->setCurrentIndex(0);
        form_->cmbPlatform_Click();
        form_->cmbPlatform->setCurrentIndex(form_->cmbPlatform->findText("Video"));
        form_->cmbPlatform_Click();
        QVERIFY(!form_->chkVisiblePlatform->isChecked());
        QVERIFY(!gTreeDirty && !gListDirty);
        QCOMPARE(Value("select visible from platform where idplatform = 2").toBool(), false);
        form_->chkVisiblePlatform->click();
        QCOMPARE(Value("select visible from platform where idplatform = 2").toBool(), true);

        // A platform deleted behind the window's back has no row to write to.
        dialogs_->answerInput("Zebra discs");
        form_->Picture_Click(frmDatabase::Platform, 1);
        gDatabase->Execute("delete from platform where nmplatform = 'Zebra discs'");
        form_->chkVisiblePlatform->click();
        QCOMPARE(dialogs_->prompts(), QStringList("3021: No current record."));
        QCOMPARE(dialogs_->msgBoxes[0].flags, int(vbOKOnly));
        QCOMPARE(dialogs_->msgBoxes[0].title, QString("Error setting platform visibility"));
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

        // Keys act at key-up, and only after a key-down in the same list.
        QTest::keyRelease(form_->lstVendor, Qt::Key_Insert, Qt::ControlModifier);
        QCOMPARE(dialogs_->inputs.size(), 1);
        dialogs_->answerInput("Studio B");
        QTest::keyPress(form_->lstVendor, Qt::Key_Insert, Qt::ControlModifier);
        QCOMPARE(dialogs_->inputs.size(), 1);
        QTest::keyRelease(form_->lstVendor, Qt::Key_Insert, Qt::ControlModifier);
        QCOMPARE(form_->lstVendor->currentItem()->text(), QString("Studio B"));
        dialogs_->answerInput("Studio C");
        QTest::keyClick(form_->lstVendor, Qt::Key_F2);
        QCOMPARE(form_->lstVendor->currentItem()->text(), QString("Studio C"));
        QTest::keyClick(form_->lstVendor, Qt::Key_F2, Qt::ShiftModifier);
        QCOMPARE(dialogs_->inputs.size(), 3);

        // A deleted vendor leaves no selection: Ctrl-Delete once more asks nothing.
        dialogs_->answerMsgBox(vbYes);
        QTest::keyClick(form_->lstVendor, Qt::Key_Delete, Qt::ControlModifier);
        QVERIFY(!Texts(form_->lstVendor).contains("Studio C"));
        QCOMPARE(form_->lstVendor->currentRow(), -1);
        const qsizetype asked = dialogs_->msgBoxes.size();
        QTest::keyClick(form_->lstVendor, Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(dialogs_->msgBoxes.size(), asked);

        // A mediatype change marks the list dirty here.
        gListDirty = false;
        dialogs_->answerInput("Blu-ray");
        QTest::keyClick(form_->cmbMediatype, Qt::Key_Insert, Qt::ControlModifier);
        QCOMPARE(form_->cmbMediatype->currentText(), QString("Blu-ray"));
        QVERIFY(gListDirty);
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
    DatabaseWindowTest window;
    DatabaseWindowRoadTest road;
    return QTest::qExec(&window, argc, argv) | QTest::qExec(&road, argc, argv);
}
#include "frmDatabase_test.moc"
