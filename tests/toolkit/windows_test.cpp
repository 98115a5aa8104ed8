// What the program asks of Windows and of the Visual Basic runtime, as this system gives it:
// profile (.ini) files and the common file dialogs.

#include "support/testsupport.h"
#include "toolkit/cCommonDialog.h"
#include "toolkit/longwork.h"
#include "toolkit/mUtility.h"
#include "toolkit/msgbox.h"
#include "toolkit/vberror.h"
#include "toolkit/vbruntime.h"

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

class WindowsTest : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

  private slots:
    void readsLikeTheWindowsProfileFunctions() {
        const QString path = dir.filePath("cdplayer.ini");
        WriteBytes(path,
                   "; written by hand\r\n[CDDB]\r\nversion=1\r\n\r\n[ 4A0B3C12 ]\r\n"
                   "EntryType=1\r\n  Artist =  The Band  \r\ntitle=\"  Quoted  \"\r\n"
                   "0='single'\r\n1=\"unbalanced\r\nbare\r\nnumtracks=\r\n"
                   "[4a0b3c12]\r\nartist=second section\r\n");
        QCOMPARE(ReadIniString(path, "4a0b3c12", "ARTIST", "x"), QString("The Band"));
        QCOMPARE(ReadIniString(path, "4A0B3C12", "title", "x"), QString("  Quoted  "));
        QCOMPARE(ReadIniString(path, "4A0B3C12", "0", "x"), QString("single"));
        QCOMPARE(ReadIniString(path, "4A0B3C12", "1", "x"), QString("\"unbalanced"));
        QCOMPARE(ReadIniString(path, "4A0B3C12", "bare", "x"), QString());
        QCOMPARE(ReadIniString(path, "4A0B3C12", "numtracks", "no"), QString());
        QCOMPARE(ReadIniString(path, "4A0B3C12", "order", "no"), QString("no"));
        QCOMPARE(ReadIniString(path, "4A0B3C12", "version", "no"), QString("no"));
        QCOMPARE(ReadIniString(path, "FFFFFFFF", "title", "Track 1  "), QString("Track 1"));
        QCOMPARE(ReadIniString(dir.filePath("absent.ini"), "CDDB", "version", "d"), QString("d"));

        // LF line ends and 8-bit text from Windows read as well.
        WriteBytes(path, "[Disc]\ntitle=Caf\xe9\n");
        QCOMPARE(ReadIniString(path, "Disc", "title", ""), QString("Caf\u00e9"));

        // Windows hands over no more than the 255 places of the reader's buffer.
        WriteBytes(path, "[Disc]\r\ntitle=" + QByteArray(300, 'x') + "\r\n");
        QCOMPARE(ReadIniString(path, "Disc", "title", ""), QString(255, 'x'));
    }

    void writingKeepsTheRestOfTheFile() {
        const QString path = dir.filePath("write.ini");
        WriteBytes(path,
                   "; keep me\r\n[1A]\r\nTitle=Old\r\nnumtracks=1\r\n\r\n[2B]\r\ntitle=Other\r\n");
        QString value = "New";
        QVERIFY(WriteIniString(path, "1a", "TITLE", value));
        value = "0 1";
        QVERIFY(WriteIniString(path, "1A", "order", value));
        value = "Fresh";
        QVERIFY(WriteIniString(path, "3C", "title", value));
        QCOMPARE(ReadBytes(path),
                 QByteArray("; keep me\r\n[1A]\r\nTitle=New\r\nnumtracks=1\r\norder=0 1\r\n\r\n"
                            "[2B]\r\ntitle=Other\r\n\r\n[3C]\r\ntitle=Fresh\r\n"));
        QCOMPARE(ReadIniString(path, "1A", "title", ""), QString("New"));
        QCOMPARE(ReadIniString(path, "2B", "title", ""), QString("Other"));

        const QString lfFile = dir.filePath("lfFile.ini");
        WriteBytes(lfFile, "[A]\nkey=1\n");
        value = "Caf\u00e9";
        QVERIFY(WriteIniString(lfFile, "A", "name", value));
        QCOMPARE(ReadBytes(lfFile), QByteArray("[A]\nkey=1\nname=Caf\xe9\n"));

        const QString windows = dir.filePath("ansi.ini");
        WriteBytes(windows, "[A]\r\nname=Caf\xe9\r\n");
        value = "\u00c9t\u00e9";
        QVERIFY(WriteIniString(windows, "A", "other", value));
        QCOMPARE(ReadBytes(windows), QByteArray("[A]\r\nname=Caf\xe9\r\nother=\xc9t\xe9\r\n"));

        // A UTF-8 file keeps its byte-order mark.
        const QString marked = dir.filePath("marked.ini");
        WriteBytes(marked, "\xEF\xBB\xBF[A]\r\nname=Caf\xc3\xa9\r\n");
        value = "\u00c9t\u00e9";
        QVERIFY(WriteIniString(marked, "A", "other", value));
        QCOMPARE(ReadBytes(marked),
                 QByteArray("\xEF\xBB\xBF[A]\r\nname=Caf\xc3\xa9\r\nother=\xc3\x89t\xc3\xa9\r\n"));

        const QString created = dir.filePath("new.ini");
        value = "1";
        QVERIFY(WriteIniString(created, "CDDB", "version", value));
        QCOMPARE(ReadBytes(created), QByteArray("[CDDB]\r\nversion=1\r\n"));

        value = "lost";
        QVERIFY(!WriteIniString(dir.filePath("no/such/folder.ini"), "A", "key", value));
    }

    void aWriteRunWritesEachFileOnceAtItsEnd() {
        const QString path = dir.filePath("run.ini");
        WriteBytes(path, "[Old]\r\nkey=1\r\n");
        {
            IniWriteRun run;
            for (int section = 0; section < 200; ++section)
                for (int key = 0; key < 10; ++key) {
                    QString value = QString("value %1").arg(key);
                    QVERIFY(WriteIniString(path, QString::number(section, 16), QString::number(key),
                                           value));
                }
            // Reads in the run see the writes; the file does not yet.
            QCOMPARE(ReadIniString(path, "c7", "9", ""), QString("value 9"));
            QCOMPARE(ReadBytes(path), QByteArray("[Old]\r\nkey=1\r\n"));
            QString broken = "first\r\nsecond=line";
            QVERIFY(WriteIniString(path, "Old", "key", broken));
            QCOMPARE(ReadIniString(path, "Old", "second", ""), QString("line"));
            QVERIFY(run.Commit());
        }
        const QByteArray written = ReadBytes(path);
        QVERIFY(
            written.startsWith("[Old]\r\nkey=first\r\nsecond=line\r\n\r\n[0]\r\n0=value 0\r\n"));
        QCOMPARE(written.count("\r\n9=value 9\r\n"), 200);
        QCOMPARE(ReadIniString(path, "C7", "9", ""), QString("value 9"));
    }

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

VELMORA_TEST_MAIN(WindowsTest)
#include "windows_test.moc"
