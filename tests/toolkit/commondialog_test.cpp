#include <QFileDialog>

#include "support/testsupport.h"
#include "toolkit/cCommonDialog.h"
#include "toolkit/msgbox.h"
#include "toolkit/vberror.h"

class CommonDialogTest : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

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

  private slots:
    void theChooserIsAskedWhatTheObjectHolds() {
        ScriptedDialogs dialogs;
        cCommonDialog open = TabFileDialog();
        dialogs.answerFile(dir.filePath("titles"));
        QVERIFY(open.ShowOpen());
        QCOMPARE(dialogs.fileDialogs.size(), 1);
        const FileDialogCall& asked = dialogs.fileDialogs.first();
        QVERIFY(!asked.save);
        QCOMPARE(asked.title, QString("Select a file"));
        QCOMPARE(asked.filter, QString("textfiles (*.txt)|*.txt|all files (*.*)|*.*"));
        QCOMPARE(asked.filterIndex, 1);
        QCOMPARE(asked.initDir, QString("C:/Program Files/Velmora"));
        QCOMPARE(asked.defaultExt, QString("txt"));
        QVERIFY(asked.flags & cdlOFNFileMustExist);
        QVERIFY(asked.flags & cdlOFNHideReadOnly);
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

    void aCancelEmptiesTheNameOrRaises() {
        ScriptedDialogs dialogs;
        cCommonDialog open = TabFileDialog();
        open.Filename = "suggested.txt";
        QVERIFY(!open.ShowOpen());
        QVERIFY(open.Filename.isEmpty());
        QCOMPARE(GCommonDialog::APIReturn, 0L);
        QCOMPARE(GCommonDialog::ExtendedError, 0L);

        open.CancelError = true;
        try {
            open.ShowSave();
            QFAIL("a cancel with CancelError set must raise");
        } catch (const VbError& error) {
            QCOMPARE(error.Number, cdlCancel);
            QCOMPARE(error.Description, QString("User selected cancel."));
            QCOMPARE(error.Source, QString(".cCommonDialog"));
        }
    }

    void filtersAndMultipleSelections() {
        QCOMPARE(
            GCommonDialog::NameFilters("Internetfiles (*.html,*.htm)|*.html;*.htm|"
                                       "All Files (*.*)|*.*|dangling"),
            QStringList({"Internetfiles (*.html,*.htm) (*.html *.htm)", "All Files (*.*) (*)"}));

        ScriptedDialogs dialogs;
        SetFileChooser([&](const FileDialogCall&) {
            FileDialogAnswer answer;
            answer.filenames = {dir.filePath("a.txt"), dir.filePath("b.txt")};
            answer.filename = answer.filenames.first();
            answer.filterIndex = 2;
            return answer;
        });
        cCommonDialog open = TabFileDialog();
        open.flags |= cdlOFNAllowMultiselect;
        QVERIFY(open.ShowOpen());
        QCOMPARE(open.FilterIndex, 2);
        QString folder;
        QStringList names;
        open.ParseMultiFileName(folder, names);
        QCOMPARE(folder, dir.path());
        QCOMPARE(names, QStringList({"a.txt", "b.txt"}));
        open.Filename = "/home/user/one.txt";
        open.ParseMultiFileName(folder, names);
        QCOMPARE(folder, QString("/home/user"));
        QCOMPARE(names, QStringList({"one.txt"}));
    }

    void withoutAChooserTheFileDialogShows() {
        SetFileChooser({});
        cCommonDialog open = TabFileDialog();
        open.InitDir = dir.path();
        QString title, folder;
        QStringList filters;
        QFileDialog::FileMode mode = QFileDialog::AnyFile;
        testsupport::RejectNextModal([&](QWidget* shown) {
            auto* fileDialog = qobject_cast<QFileDialog*>(shown);
            if (!fileDialog) return;
            title = fileDialog->windowTitle();
            filters = fileDialog->nameFilters();
            folder = fileDialog->directory().absolutePath();
            mode = fileDialog->fileMode();
        });
        QVERIFY(!open.ShowOpen());
        QCOMPARE(title, QString("Select a file"));
        QCOMPARE(filters, QStringList({"textfiles (*.txt) (*.txt)", "all files (*.*) (*)"}));
        QCOMPARE(folder, QDir(dir.path()).absolutePath());
        QCOMPARE(mode, QFileDialog::ExistingFile);
        testsupport::InstallUnscriptedResponders();
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
};

VELMORA_TEST_MAIN(CommonDialogTest)
#include "commondialog_test.moc"
