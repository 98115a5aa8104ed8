// The export window over a running program: the choice of titles by tree node, the boxes of
// the driver and when the window stays open.

#include <QCheckBox>
#include <QRadioButton>

#include "app/mGlobals.h"
#include "export/exporttest.h"
#include "export/frmExport.h"
#include "shell/frmMain.h"
#include "toolkit/platform/mUtility.h"
#include "toolkit/vb/longwork.h"

using namespace exporttest;

class ExportWindowTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        qputenv("WINEPREFIX", QDir::tempPath().toUtf8() + "/velmora-no-wine");
        folder_ = std::make_unique<TempProgramFolder>();
        QVERIFY(folder_->startProgramWith(AddTitles));
    }

    void cleanup() {
        EndProgram();
        folder_.reset();
    }

    void selectionFollowsTheTreeNode() {
        ScriptedDialogs dialogs;
        // The node, the option of what to export, and the titles that gives.
        struct Case {
            QString key;
            int option;
            int titles;
        };
        const QList<Case> cases = {{"root", 0, 5},     {"key1", 0, 3}, {"key1key2", 0, 1},
                                   {"key1key2", 1, 3}, {"key3", 1, 1}, {"key3", 2, 5}};
        for (const Case& c : cases) {
            ClickTreeNode(c.key);
            frmExport form(gMainForm);
            form.Form_Load();
            form.Check1[0]->setChecked(false);
            form.Check1[2]->setChecked(true);
            form.Option1[c.option]->setChecked(true);
            dialogs.fileDialogs.clear();
            form.cmdOK_Click();
            QVERIFY2(form.ExportRecordset, qPrintable(c.key));
            QCOMPARE(dialogs.fileDialogs.size(), 1);
            form.ExportRecordset->MoveLast();
            QCOMPARE(int(form.ExportRecordset->RecordCount()), c.titles);
            QCOMPARE(form.result(), int(QDialog::Accepted));
        }
        QVERIFY(dialogs.msgBoxes.isEmpty());

        // The root with "Current platform" asks; only Yes exports everything.
        ClickTreeNode("root");
        for (int answer : {int(vbNo), int(vbYes)}) {
            frmExport form(gMainForm);
            form.Form_Load();
            form.Check1[0]->setChecked(false);
            form.Check1[2]->setChecked(true);
            form.Option1[1]->setChecked(true);
            dialogs.answerMsgBox(answer);
            dialogs.fileDialogs.clear();
            form.cmdOK_Click();
            QCOMPARE(dialogs.takeBoxes(),
                     Boxes({{"You selected to export one category, but you have more than one in "
                             "your view.\rDo you want to export all categories instead?",
                             vbYesNoCancel + vbExclamation, "Confirm"}}));
            QCOMPARE(dialogs.fileDialogs.size(), answer == vbYes ? 1 : 0);
            QCOMPARE(bool(form.ExportRecordset), answer == vbYes);
        }
    }

    void driverBoxesKeepTheWindowOpen() {
        ScriptedDialogs dialogs;
        frmExport form(gMainForm);
        form.Form_Load();
        form.show();

        // Only disabled destinations checked is no destination.
        form.Check1[0]->setChecked(false);
        form.Check1[3]->setChecked(true);
        form.cmdOK_Click();
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({{"Please select where you want to want to export your cd-titles to.",
                         vbCritical, "No destination given for export"}}));

        form.Check1[1]->setChecked(true);
        for (QCheckBox* field : form.Check3) field->setChecked(false);
        form.cmdOK_Click();
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({{"You want to export cd-titles, but didn't select any fields.\r\n\r\n"
                         "Please correct this before continuing.",
                         vbExclamation, "Fields"}}));

        // An empty folder: each file destination says so, and the window stays.
        gDatabase->Execute("delete from title");
        form.Check3[1]->setChecked(true);
        form.Check1[2]->setChecked(true);
        form.cmdOK_Click();
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({{"No titles to export.", vbExclamation, "Exporting titles to clipboard"},
                        {"No titles to export.", vbExclamation,
                         "Exporting titles to TAB-delimited file"}}));
        QVERIFY(dialogs.fileDialogs.isEmpty());
        QVERIFY(form.isVisible());
    }

    void twoDestinationsShareTheRowsAndAFailedWriterClosesAnyway() {
        ScriptedDialogs dialogs;
        bool busyWhileWriting = false;
        SetDocumentOpener([&busyWhileWriting](const QUrl&) {
            busyWhileWriting = ProgramIsBusy();
            return true;
        });
        ClickTreeNode("root");
        frmExport form(gMainForm);
        form.Form_Load();
        form.Check1[2]->setChecked(true);
        dialogs.answerFile(folder_->file("page.html"));
        dialogs.answerFile(folder_->path());
        form.show();
        QStringList progress;
        const int listener =
            AddProgressListener([&progress](const QString& operation, qint64 done, qint64 total) {
                progress << QString("%1 %2/%3").arg(operation).arg(done).arg(total);
            });
        form.cmdOK_Click();
        RemoveProgressListener(listener);
        SetDocumentOpener({});
        // Each title written is a step; each writer ends its steps, the failed one too.
        QCOMPARE(progress,
                 QStringList({"Exporting title 1/5", "Exporting title 2/5", "Exporting title 3/5",
                              "Exporting title 4/5", "Exporting title 5/5", "Exporting title 0/0",
                              "Exporting title 0/0"}));
        QCOMPARE(
            dialogs.takeBoxes(),
            Boxes(
                {{"5 titles have been exported to file '" + folder_->file("page.html") + "'.",
                  vbInformation, "Export to File Results"},
                 {"Could not export to file " + folder_->path() + "!", vbExclamation, "Velmora"}}));
        QCOMPARE(form.result(), int(QDialog::Accepted));
        QVERIFY(!form.isVisible());
        QVERIFY(busyWhileWriting && !ProgramIsBusy());
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
};

VELMORA_TEST_MAIN(ExportWindowTest)
#include "frmExport_test.moc"
