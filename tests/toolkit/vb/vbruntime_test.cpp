// What the program asks of the Visual Basic runtime, as this system gives it: the common file
// dialogs and the long-work rule.

#include "toolkit/vb/vbruntime.h"
#include "support/testsupport.h"
#include "toolkit/vb/cCommonDialog.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"

namespace {

// A dialog to choose a TAB file, as the import asks for one.
cCommonDialog TabFileDialog() {
    cCommonDialog dialog;
    dialog.DialogTitle = "Select a file";
    dialog.DefaultExt = "txt";
    dialog.flags = 6148;
    dialog.InitDir = "C:\\Program Files\\Velmora";
    dialog.Filter = "textfiles (*.txt)|*.txt|all files (*.*)|*.*";
    dialog.FilterIndex = 1;
    return dialog;
}

}  // namespace

class VbRuntimeTest : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

  private slots:
    void theChooserIsAskedWhatTheObjectHolds() {
        ScriptedDialogs dialogs;
        cCommonDialog open = TabFileDialog();
        dialogs.answerFile(dir.filePath("titles"));
        QVERIFY(open.ShowOpen());
        QCOMPARE(dialogs.fileDialogs.size(), 1);
        QVERIFY(!dialogs.fileDialogs.first().save);
        QCOMPARE(dialogs.fileDialogs.first().initDir, QString("C:/Program Files/Velmora"));
        // A name without an extension gets the default one; a name with one keeps it.
        QCOMPARE(open.Filename, dir.filePath("titles.txt"));
        QCOMPARE(open.FileTitle, QString("titles.txt"));
        dialogs.answerFile(dir.filePath("titles.csv"));
        QVERIFY(open.ShowOpen());
        QCOMPARE(open.Filename, dir.filePath("titles.csv"));
        QCOMPARE(dialogs.fileDialogs.last().filename, dir.filePath("titles.txt"));

        cCommonDialog save = TabFileDialog();
        save.flags = 0x9806;
        dialogs.answerFile(dir.filePath("out.html"));
        QVERIFY(save.ShowSave());
        QVERIFY(dialogs.fileDialogs.last().save);
        QVERIFY(dialogs.fileDialogs.last().flags & cdlOFNOverwritePrompt);
        QCOMPARE(save.Filename, dir.filePath("out.html"));
    }

    // The program told to end unloads its windows while one of them still asks something: the
    // dialog goes with its owner and answers as cancelled.
    void theOwnerMayGoWhileItsDialogIsOpen() {
        SetFileChooser({});
        SetMsgBoxResponder({});
        QTimer poll;
        QPointer<QWidget> owner;
        connect(&poll, &QTimer::timeout, [&] {
            if (QApplication::activeModalWidget()) delete owner.data();
        });
        poll.start(10);

        owner = new QWidget;
        owner->show();
        cCommonDialog open = TabFileDialog();
        open.hWnd = owner;
        QVERIFY(!open.ShowOpen());
        QVERIFY(!owner);

        owner = new QWidget;
        owner->show();
        QApplication::setActiveWindow(owner);
        QCOMPARE(MsgBox("Really?", vbYesNoCancel + vbQuestion, "Owner goes"), int(vbCancel));
        QVERIFY(!owner);
        testsupport::InstallUnscriptedResponders();
    }

    // A listener may free what the next one belongs to (it lets events through, and a window
    // goes): a listener removed during a report is not told any more.
    void listenersDuringAReport() {
        int second = 0;
        int told = 0;
        const int first = AddProgressListener(
            [&](const QString&, qint64, qint64) { RemoveProgressListener(second); });
        second = AddProgressListener([&](const QString&, qint64, qint64) { ++told; });
        ReportProgress("Testing step", 1, 2);
        RemoveProgressListener(first);
        QCOMPARE(told, 0);

        // An end asked for by a listener (a click let through, a signal) waits for the work
        // that reported: the catalogue is still in use under the report.
        bool ended = false;
        const int ender = AddProgressListener([&](const QString&, qint64, qint64) {
            QVERIFY(!EndProgramWhenIdle([&ended] { ended = true; }));
        });
        ReportProgress("Saving cover", 1, 3);
        RemoveProgressListener(ender);
        QVERIFY(!ended);
        QTRY_VERIFY(ended);
    }
};

VELMORA_TEST_MAIN(VbRuntimeTest)
#include "vbruntime_test.moc"
