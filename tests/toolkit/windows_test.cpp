// What the program asks of Windows and of the Visual Basic runtime, as this system gives it:
// profile (.ini) files, the registry and the ODBC data sources under Wine, the Windows and
// temporary folders, documents opened by the desktop, the common file dialogs, and the runtime's
// formats and conversions.

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cmath>
#include <limits>

#include "support/testsupport.h"
#include "toolkit/cCommonDialog.h"
#include "toolkit/mHelp.h"
#include "toolkit/mRegistry.h"
#include "toolkit/mUtility.h"
#include "toolkit/msgbox.h"
#include "toolkit/vberror.h"
#include "toolkit/vbruntime.h"

namespace {

QString StorePath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           "/velmora/registry.ini";
}

QString OdbcPath() {
    return QDir::homePath() + "/.odbc.ini";
}

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
    QList<QUrl> opened;
    bool openerSucceeds = true;

  private slots:
    void init() {
        QFile::remove(StorePath());
        QFile::remove(OdbcPath());
        opened.clear();
        openerSucceeds = true;
        SetDocumentOpener([this](const QUrl& url) {
            opened << url;
            return openerSucceeds;
        });
    }
    void cleanup() { SetDocumentOpener({}); }

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
    }

    void valuesAreCutAt255Characters() {
        const QString path = dir.filePath("long.ini");
        const QString value = QString(250, 'a') + QString(50, 'b');
        WriteBytes(path, "[S]\nkey=" + value.toLatin1() + "\n");
        QCOMPARE(ReadIniString(path, "S", "key", ""), value.left(255));
        QCOMPARE(ReadIniString(path, "S", "missing", value), value.left(255));
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

        const QString created = dir.filePath("new.ini");
        value = "1";
        QVERIFY(WriteIniString(created, "CDDB", "version", value));
        QCOMPARE(ReadBytes(created), QByteArray("[CDDB]\r\nversion=1\r\n"));

        value = "lost";
        QVERIFY(!WriteIniString(dir.filePath("no/such/folder.ini"), "A", "key", value));
    }

    void lineBreaksBecomeBlanksInTheCallersValueOnly() {
        const QString path = dir.filePath("breaks.ini");
        QString value = "Side A\r\nSide B\n";
        QVERIFY(WriteIniString(path, "Disc", "title", value));
        QCOMPARE(value, QString("Side A  Side B "));
        QCOMPARE(ReadBytes(path), QByteArray("[Disc]\r\ntitle=Side A\r\nSide B\n\r\n"));
        QCOMPARE(ReadIniString(path, "Disc", "title", ""), QString("Side A"));
    }

    void encodingsAreReadAndKept() {
        // Windows-1252 has its own characters at 0x80 to 0x9F.
        const QString ansi = dir.filePath("cp1252.ini");
        WriteBytes(ansi,
                   "[Disc]\r\ntitle=L\x92uomo \x80 stra\xdf"
                   "e\r\n");
        QCOMPARE(ReadIniString(ansi, "Disc", "title", ""),
                 QString("L\u2019uomo \u20ac stra\u00dfe"));
        QString value = "Caf\u00e9 \u2019 \u4e2d";
        QVERIFY(WriteIniString(ansi, "Disc", "artist", value));
        QCOMPARE(ReadBytes(ansi), QByteArray("[Disc]\r\ntitle=L\x92uomo \x80 stra\xdf"
                                             "e\r\nartist=Caf\xe9 \x92 ?\r\n"));

        // UTF-8 stays UTF-8, with its byte-order mark when it had one.
        const QString utf8 = dir.filePath("utf8.ini");
        WriteBytes(utf8, "\xef\xbb\xbf[Disc]\ntitle=Bj\xc3\xb6rk\n");
        QCOMPARE(ReadIniString(utf8, "disc", "TITLE", ""), QString("Bj\u00f6rk"));
        value = "\u4e2d";
        QVERIFY(WriteIniString(utf8, "Disc", "artist", value));
        QCOMPARE(ReadBytes(utf8),
                 QByteArray("\xef\xbb\xbf[Disc]\ntitle=Bj\xc3\xb6rk\nartist=\xe4\xb8\xad\n"));
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

        // A folder that is not there fails at the write; the run writes nothing there.
        IniWriteRun run;
        QString value = "x";
        QVERIFY(!WriteIniString(dir.filePath("missing/run.ini"), "A", "b", value));
        QVERIFY(run.Commit());
    }

    void readsSeeChangesMadeBehindTheirBack() {
        const QString path = dir.filePath("changing.ini");
        WriteBytes(path, "[A]\nkey=first\n");
        QCOMPARE(ReadIniString(path, "A", "key", ""), QString("first"));
        WriteBytes(path, "[A]\nkey=the second\n");
        QCOMPARE(ReadIniString(path, "A", "key", ""), QString("the second"));
        QFile::remove(path);
        QCOMPARE(ReadIniString(path, "A", "key", "gone"), QString("gone"));
    }

    void rootKeyHandles() {
        QCOMPARE(RootKeyHandle("HKEY_CLASSES_ROOT"), 0x80000000u);
        QCOMPARE(RootKeyHandle("HKEY_CURRENT_USER"), 0x80000001u);
        QCOMPARE(RootKeyHandle("HKEY_LOCAL_MACHINE"), 0x80000002u);
        QCOMPARE(RootKeyHandle("HKEY_USERS"), 0x80000003u);
        QCOMPARE(RootKeyHandle("HKEY_PERFORMANCE_DATA"), 0x80000004u);
        QCOMPARE(RootKeyHandle("HKEY_CURRENT_CONFIG"), 0x80000005u);
        QCOMPARE(RootKeyHandle("HKEY_DYN_DATA"), 0x80000006u);
        QCOMPARE(RootKeyHandle("hkey_current_user"), 0u);
        QCOMPARE(RootKeyHandle("HKEY_ELSEWHERE"), 0u);
    }

    void parseKeySplitsAndWarnsAboutBadPaths() {
        ScriptedDialogs dialogs;
        QString key = "HKEY_LOCAL_MACHINE\\Software\\Dorvik Software\\Velmora";
        RegistryHandle root = 0;
        ParseKey(key, root);
        QCOMPARE(key, QString("Software\\Dorvik Software\\Velmora"));
        QCOMPARE(root, HKEY_LOCAL_MACHINE);
        key = "HKEY_USERS";
        ParseKey(key, root);
        QCOMPARE(key, QString());
        QCOMPARE(root, HKEY_USERS);
        QVERIFY(dialogs.msgBoxes.isEmpty());

        key = "HKEY_CURRENT_USER\\Software\\";
        ParseKey(key, root);
        QCOMPARE(key, QString("Software\\"));
        QCOMPARE(root, HKEY_CURRENT_USER);
        key = "Software\\Dorvik";
        ParseKey(key, root);
        QCOMPARE(root, 0u);
        QCOMPARE(dialogs.msgBoxes,
                 Boxes({{"Incorrect Format:\n\nHKEY_CURRENT_USER\\Software\\", vbOKOnly, "Velmora"},
                        {"Incorrect Format:\n\nSoftware\\Dorvik", vbOKOnly, "Velmora"}}));
    }

    void valuesGoThroughTheBuffer() {
        ScriptedDialogs dialogs;
        const QString path = "HKEY_LOCAL_MACHINE\\Software\\Dorvik Software\\Velmora";
        RegistryHandle handle = 0;
        CreateRegistryKey(handle, path);
        QCOMPARE(LastRegistryResult(), 0L);
        QVERIFY(handle != 0);
        RegistryHandle again = 0;
        CreateRegistryKey(again, "HKEY_LOCAL_MACHINE\\SOFTWARE\\Dorvik Software\\Velmora");
        QCOMPARE(again, handle);

        SetRegistryValue(handle, "AppPath", "/opt/velmora", REG_SZ);
        SetRegistryValue(handle, "Empty", "", REG_SZ);
        SetRegistryValue(handle, "Padded", "  two blanks before, one after ", REG_SZ);
        SetRegistryValue(handle, "Long", QString(300, 'x'), REG_SZ);
        SetRegistryValue(handle, "Longest", QString(254, 'x'), REG_SZ);
        SetRegistryValue(handle, "TooLong", QString(255, 'x'), REG_SZ);
        QCOMPARE(LastRegistryResult(), 0L);

        QCOMPARE(GetRegistryValue(path, "AppPath"), QString("/opt/velmora"));
        QCOMPARE(GetRegistryValue(path, "apppath"), QString("/opt/velmora"));
        QCOMPARE(GetRegistryValue(path, "Empty"), QString());
        QCOMPARE(GetRegistryValue(path, "Padded"), QString("two blanks before, one after "));
        // The value and its terminator must fit the 255 places of the buffer, or Windows
        // refuses to read it (more data than the buffer holds).
        QCOMPARE(GetRegistryValue(path, "Longest"), QString(254, 'x'));
        QCOMPARE(GetRegistryValue(path, "TooLong"), QString("Error"));
        QCOMPARE(LastRegistryResult(), 234L);
        QCOMPARE(GetRegistryValue(path, "Long"), QString("Error"));

        QCOMPARE(GetRegistryValue(path, "Missing"), QString("Error"));
        QCOMPARE(LastRegistryResult(), 2L);
        QCOMPARE(GetRegistryValue(path + "\\Deeper", "AppPath"), QString("Error"));
        QCOMPARE(GetRegistryValue("HKEY_NOWHERE\\Software", "AppPath"), QString("Error"));
        QVERIFY(dialogs.msgBoxes.isEmpty());

        QFile store(StorePath());
        QVERIFY(store.open(QIODevice::ReadOnly));
        QVERIFY(
            store.readAll().contains("[HKEY_LOCAL_MACHINE\\Software\\Dorvik Software\\Velmora]"));
    }

    void trailingBackslashWarnsAndCarriesOn() {
        ScriptedDialogs dialogs;
        RegistryHandle handle = 0;
        CreateRegistryKey(handle, "HKEY_CURRENT_USER\\Software\\Dorvik");
        SetRegistryValue(handle, "Name", "value", REG_SZ);
        QCOMPARE(GetRegistryValue("HKEY_CURRENT_USER\\Software\\Dorvik\\", "Name"),
                 QString("value"));
        QCOMPARE(dialogs.msgBoxes,
                 Boxes({{"Incorrect Format:\n\nHKEY_CURRENT_USER\\Software\\Dorvik\\", vbOKOnly,
                         "Velmora"}}));
    }

    void odbcSourcesComeFromTheUsersOdbcIni() {
        WriteBytes(
            OdbcPath(),
            "[ODBC Data Sources]\nDeluxeCD = Microsoft Access Driver\n\n[DeluxeCD]\n"
            "Driver      = MDBTools\nDBQ         = deluxecd.mdb\nDefaultDir  = /home/me/cd\n");
        const QString key = "HKEY_CURRENT_USER\\Software\\ODBC\\ODBC.INI\\DeluxeCD";
        QCOMPARE(GetRegistryValue(key, "DBQ"), QString("deluxecd.mdb"));
        QCOMPARE(GetRegistryValue(key, "DefaultDir"), QString("/home/me/cd"));
        QCOMPARE(GetRegistryValue("HKEY_CURRENT_USER\\Software\\ODBC\\ODBC.INI\\Other", "DBQ"),
                 QString("Error"));
        QCOMPARE(GetRegistryValue("HKEY_LOCAL_MACHINE\\Software\\ODBC\\ODBC.INI\\DeluxeCD", "DBQ"),
                 QString("Error"));
        QVERIFY(!QFile::exists(StorePath()));
    }

    void withoutAnOdbcSectionTheWinePrefixRegistryAnswers() {
        QTemporaryDir prefix;
        qputenv("WINEPREFIX", prefix.path().toLocal8Bit());
        WriteBytes(prefix.filePath("user.reg"),
                   "WINE REGISTRY Version 2\n;; All keys relative to \\\\User\\\\S-1-5-21\n\n"
                   "[Software\\\\ODBC\\\\ODBC.INI\\\\DeluxeCD] 1700000000\n#time=1d9\n"
                   "\"DBQ\"=\"Deluxe\\\\deluxecd.mdb\"\n"
                   "\"DefaultDir\"=\"C:\\\\Program Files\\\\Plus! \\\"CD\\\" Caf\\x00e9\"\n"
                   "\"Flags\"=dword:00000001\n\n[Software\\\\Other]\n\"DBQ\"=\"no\"\n");
        const QString key = "HKEY_CURRENT_USER\\Software\\ODBC\\ODBC.INI\\deluxecd";
        QCOMPARE(GetRegistryValue(key, "dbq"), QString("Deluxe\\deluxecd.mdb"));
        QCOMPARE(GetRegistryValue(key, "DefaultDir"),
                 QString("C:\\Program Files\\Plus! \"CD\" Caf\u00e9"));
        QCOMPARE(GetRegistryValue(key, "Flags"), QString("Error"));
        // The user's own data source comes first.
        WriteBytes(OdbcPath(), "[DeluxeCD]\nDBQ = own.mdb\n");
        QCOMPARE(GetRegistryValue(key, "DBQ"), QString("own.mdb"));
        QCOMPARE(GetRegistryValue(key, "DefaultDir"), QString("Error"));
        qunsetenv("WINEPREFIX");
    }

    void failuresAndMessageTexts() {
        SetRegistryValue(4711, "Name", "value", REG_SZ);
        QCOMPARE(LastRegistryResult(), 6L);
        SetRegistryValue(HKEY_CURRENT_USER, "Name", "value", 4);
        QCOMPARE(RegistryErrorText(LastRegistryResult()), QString("Invalid Parameter"));
        QCOMPARE(RegistryErrorText(1009), QString("The Registry Database is corrupt!"));
        QCOMPARE(RegistryErrorText(234),
                 QString("There is more data than the buffer has been allocated to hold."));
        QCOMPARE(RegistryErrorText(6), QString("Undefined Error Code:  6"));
    }

    void windowsFoldersComeFromTheWinePrefix() {
        qputenv("WINEPREFIX", "/srv/wine/cd/");
        QCOMPARE(GetWindowsDirectory(), QString("/srv/wine/cd/drive_c/windows"));
        QCOMPARE(GetWindowsTempFolder(), QString("/srv/wine/cd/drive_c/windows/TEMP"));
        qunsetenv("WINEPREFIX");
        QCOMPARE(GetWindowsDirectory(), QDir::homePath() + "/.wine/drive_c/windows");
        QVERIFY(!QFileInfo::exists(GetWindowsTempFolder()));
    }

    void windowsPathsAreFoundInThePrefixWithoutRegardToCase() {
        QTemporaryDir prefix;
        qputenv("WINEPREFIX", prefix.path().toLocal8Bit());
        QVERIFY(QDir().mkpath(prefix.filePath("drive_c/Program Files/Plus!/Deluxe CD")));
        QCOMPARE(WindowsPathInPrefix("c:\\program files\\PLUS!\\deluxe cd\\new.mdb"),
                 prefix.path() + "/drive_c/Program Files/Plus!/Deluxe CD/new.mdb");
        QVERIFY(QDir().mkpath(prefix.filePath("dosdevices")));
        QVERIFY(QFile::link("../drive_c", prefix.filePath("dosdevices/c:")));
        QCOMPARE(WindowsPathInPrefix("C:/Program Files\\"),
                 prefix.path() + "/dosdevices/c:/Program Files");
        QCOMPARE(WindowsPathInPrefix("D:\\cd.mdb"), prefix.path() + "/dosdevices/d:/cd.mdb");
        QCOMPARE(WindowsPathInPrefix("/home/me/cd.mdb"), QString("/home/me/cd.mdb"));
        qunsetenv("WINEPREFIX");
    }

    void temporaryFilesAreNewAndNamedAfterTheProgram() {
        QCOMPARE(GetTempFolder(), QDir::tempPath() + "/");
        const QString first = GetTempName();
        const QString second = GetTempName();
        QVERIFY(first != second);
        for (const QString& name : {first, second}) {
            const QFileInfo file(name);
            QVERIFY(file.exists());
            QCOMPARE(file.size(), 0);
            QCOMPARE(file.absolutePath() + "/", GetTempFolder());
            QVERIFY(file.fileName().startsWith(App.EXEName));
            QFile::remove(name);
        }
    }

    void documentsAndHelpGoToTheDesktop() {
        const QString manual = dir.filePath("velmora.html");
        WriteBytes(manual, {});

        QCOMPARE(StartDocument("http://www.dorviksoftware.example/velmora"), int(kStartDone));
        QCOMPARE(StartDocument("mailto:support@dorviksoftware.example"), int(kStartDone));
        QCOMPARE(StartDocument(QString(manual).replace('/', '\\')), int(kStartDone));
        QCOMPARE(StartDocument(dir.filePath("missing.html")), int(kStartFileNotFound));
        QVERIFY(ShowHelpContents(manual) != 0);
        QCOMPARE(ShowHelpContents(dir.filePath("missing.html")), 0);
        QCOMPARE(opened, QList<QUrl>({QUrl("http://www.dorviksoftware.example/velmora"),
                                      QUrl("mailto:support@dorviksoftware.example"),
                                      QUrl::fromLocalFile(manual), QUrl::fromLocalFile(manual)}));

        openerSucceeds = false;
        QCOMPARE(StartDocument(manual), int(kStartNoAssociation));
        QCOMPARE(ShowHelpContents(manual), 0);
    }

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

    void formatPatterns_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("expected");
        const struct {
            const char* name;
            double value;
            const char *pattern, *expected;
        } rows[] = {
            {"count padded", 5.0, "00000", "00005"},
            {"count wider than pattern", 123456.0, "00000", "123456"},
            {"negative count", -42.0, "00000", "-00042"},
            {"count rounds half away", 12.5, "00000", "00013"},
            {"size zero", 0.0, "###0", "0"},
            {"size rounds up", 1234.5, "###0", "1235"},
            {"negative size rounds away", -1234.5, "###0", "-1235"},
            {"size below one", 0.4, "###0", "0"},
            {"one decimal", 3.25, "###0.0", "3.3"},
            {"one decimal zero", 0.0, "###0.0", "0.0"},
            {"one decimal keeps zero", 1024.04, "###0.0", "1024.0"},
            {"one decimal negative", -7.25, "###0.0", "-7.3"},
            {"one decimal small", 0.05, "###0.0", "0.1"},
            {"percent half", 0.5, "##0%", "50%"},
            {"percent rounds", 0.125, "##0%", "13%"},
            {"percent whole", 1.0, "##0%", "100%"},
            {"percent zero", 0.0, "##0%", "0%"},
            {"percent negative", -0.25, "##0%", "-25%"},
            {"digit half up", 2.5, "0", "3"},
            {"digit half away negative", -2.5, "0", "-3"},
            {"digit zero", 0.0, "0", "0"},
            {"two places", 7.0, "#0", "7"},
            {"two places zero", 0.0, "#0", "0"},
            {"two places rounds", 10.5, "#0", "11"},
            {"two places negative", -0.6, "#0", "-1"},
        };
        for (const auto& row : rows)
            QTest::newRow(row.name) << row.value << QString(row.pattern) << QString(row.expected);
    }

    void formatPatterns() {
        QFETCH(double, value);
        QFETCH(QString, pattern);
        QFETCH(QString, expected);
        QCOMPARE(Format(value, pattern), expected);
    }

    void conversionsRoundToEven() {
        QCOMPARE(RoundToEven(2.5), 2);
        QCOMPARE(RoundToEven(3.5), 4);
        QCOMPARE(RoundToEven(-2.5), -2);
        QCOMPARE(RoundToEven(0.5), 0);
        QCOMPARE(RoundToEven(-1.5), -2);
        QCOMPARE(RoundToEven(2.6), 3);
        QCOMPARE(CInt(32767.4), 32767);
        QCOMPARE(CInt(-32768.5), -32768);
        QCOMPARE(CByte(254.5), 254);
        QCOMPARE(CByte(-0.5), 0);
    }

    void conversionsOverflowWithError6() {
        QCOMPARE(ErrorNumber([] { CInt(32767.5); }), 6);
        QCOMPARE(ErrorNumber([] { CInt(-32769); }), 6);
        QCOMPARE(ErrorNumber([] { CInt(1e30); }), 6);
        QCOMPARE(ErrorNumber([] { CInt(std::numeric_limits<double>::quiet_NaN()); }), 6);
        QCOMPARE(ErrorNumber([] { CByte(255.5); }), 6);
        QCOMPARE(ErrorNumber([] { CByte(-0.6); }), 6);
        QCOMPARE(ErrorNumber([] { CByte(-1e30); }), 6);
        QCOMPARE(ErrorNumber([] { RoundToEven(1e19); }), 6);
        QCOMPARE(Refusal([] { CInt(40000); }), QString("6 Overflow"));
    }

    void foldersGetOneTrailingSlash() {
        QCOMPARE(AddBackslash("/opt/velmora"), QString("/opt/velmora/"));
        QCOMPARE(AddBackslash("/opt/velmora/"), QString("/opt/velmora/"));
        QCOMPARE(AddBackslash("C:\\Program Files\\Velmora"), QString("C:/Program Files/Velmora/"));
    }
};

VELMORA_TEST_MAIN(WindowsTest)
#include "windows_test.moc"
