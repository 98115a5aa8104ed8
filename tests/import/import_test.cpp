#include <sqlite3.h>

#include "import/frmImport.h"
#include "store/catalogue.h"
#include "support/testsupport.h"
#include "toolkit/vb/longwork.h"

namespace {

const QString kIniSource = "Importing from Windows Default CD-player";

// The window as the user leaves it: Rock and its first specific item as defaults.
void ChooseDefaults(frmImport& window) {
    window.cmbDefType->setCurrentIndex(window.cmbDefType->findText("Rock"));
    window.cmbDefType_Click();
    window.cmbDefSpecific->setCurrentIndex(0);
}

// The steps long work reports, as "operation done/total".
class ProgressLog {
  public:
    ProgressLog()
        : handle_(AddProgressListener([this](const QString& operation, qint64 done, qint64 total) {
              steps << QString("%1 %2/%3").arg(operation).arg(done).arg(total);
          })) {}
    ~ProgressLog() { RemoveProgressListener(handle_); }
    ProgressLog(const ProgressLog&) = delete;
    ProgressLog& operator=(const ProgressLog&) = delete;

    QStringList steps;

  private:
    int handle_;
};

QByteArray TabRecord(const QByteArray& vendor, const QByteArray& title,
                     const QByteArray& numTracks = "0", const QByteArray& names = "") {
    return "Audio\tRock\tAlbum\t" + vendor + "\t" + title + "\tCD-R\t\t\t\t\t" + numTracks +
           "\t\t" + names + "\t1";
}

// Refuses every commit of the catalogue after the first few.
int RefuseCommit(void* allowed) {
    return --*static_cast<int*>(allowed) < 0;
}

// From the given step of an import on, the catalogue refuses every change, as one whose folder
// is read-only or whose disk is full does.
class CatalogueLockedAtStep {
  public:
    explicit CatalogueLockedAtStep(qint64 step)
        : handle_(AddProgressListener([step](const QString&, qint64 done, qint64) {
              if (done == step) SetQueryOnly(true);
          })) {}
    ~CatalogueLockedAtStep() {
        RemoveProgressListener(handle_);
        SetQueryOnly(false);
    }
    CatalogueLockedAtStep(const CatalogueLockedAtStep&) = delete;
    CatalogueLockedAtStep& operator=(const CatalogueLockedAtStep&) = delete;

  private:
    static void SetQueryOnly(bool on) {
        sqlite3_exec(gDatabase->Handle(), on ? "PRAGMA query_only = 1" : "PRAGMA query_only = 0",
                     nullptr, nullptr, nullptr);
    }
    int handle_;
};

const QString kReadOnly = "Error 3027: Cannot update. Database or object is read-only.";

}  // namespace

class ImportTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TempProgramFolder> folder;
    std::unique_ptr<QTemporaryDir> prefix;

    // The Windows default CD player's file in the Wine prefix; returns its path.
    QString WriteCdPlayerIni(const QByteArray& bytes) {
        QDir().mkpath(prefix->path() + "/drive_c/windows");
        const QString ini = prefix->path() + "/drive_c/windows/cdplayer.ini";
        WriteBytes(ini, bytes);
        return ini;
    }

  private slots:
    void init() {
        prefix = std::make_unique<QTemporaryDir>();
        qputenv("WINEPREFIX", prefix->path().toLocal8Bit());
        folder = std::make_unique<TempProgramFolder>();
        folder->openCatalogue();
    }
    void cleanup() {
        folder.reset();
        qunsetenv("WINEPREFIX");
    }

    void tabLinesMakeTheirLookupsAndTitles() {
        ScriptedDialogs dialogs;
        const QString path = folder->file("titles.txt");
        WriteBytes(
            path,
            "PC\tGames\tAction\tId Software\tDoom\tCD-ROM\tlabel\t5\tREADME<NEWLINE>"
            "DOOM.EXE\t\t0\tA memo\t\t2\r\n"
            "   \r\n\r\n"
            "Audio\tRock\tAlbum\tO'Brien\tIt's\tCD-R\t\t\t\t1234\t2\t\tOne<NEWLINE>Two\t\r\n"
            "Audio\tRock\tAlbum\tO'Brien\tThirteen\tCD-R\t\t\t\t\t0\t\t\n"
            "Audio\tRock\tAlbum\tO'Brien\tShort\tCD-R\t\t\t\t\t3\t\tOne<NEWLINE>Two\t1\n"
            "Audio\tRock\tAlbum\tO'Brien\tNaN\tCD-R\t\tfive\t\t\t0\t\t\t1\n"
            "Audio\tRock\tAlbum\tO'Brien\tSame id\tCD-R\t\t\t\t1234\t0\t\t\t1\n"
            "Audio\tRock\tAlbum\tCaf\xc3\xa9 \xe2\x80\x99\tBj\xc3\xb6rk\tCD-R\t\t\t\t\t0\t\t\t1\n");
        frmImport window;
        window.Form_Load();
        window.WarnTitles = true;
        dialogs.answerFile(path);
        window.ImportTabFile();
        QCOMPARE(window.TabTried, 7);
        QCOMPARE(window.TabFailed, 4);
        QCOMPARE(dialogs.msgBoxes.last(),
                 MsgBoxCall({"Tried to import 7 title(s) from TAB delimited file\r\nOf those 4 "
                             "went wrong.",
                             vbInformation, "Velmora"}));
        QVERIFY(dialogs.msgBoxes[0].prompt.startsWith("Error 9: "));

        QCOMPARE(Scalar("select nmcd from title where TitleID = 1234").toString(), QString("It's"));
        QCOMPARE(RowCount("vendor where nmvendor = 'O''Brien' and idplatform = 1"), 1L);
        QCOMPARE(RowCount("Tracks, title where Tracks.idcd = title.idcd and nmcd = 'It''s'"), 2L);
        QCOMPARE(Scalar("select listing || '|' || label || '|' || coalesce(TitleID, 'none') from "
                        "title where nmcd = 'Doom'")
                     .toString(),
                 QString("README\r\nDOOM.EXE|label|none"));
        QCOMPARE(Scalar("select memo from title where nmcd = 'It''s'").toString(),
                 QString(QChar(0)));
        QCOMPARE(Scalar("select nmvendor from vendor, title where vendor.idvendor = "
                        "title.idvendor and nmcd = 'Bj\u00f6rk'")
                     .toString(),
                 QString("Caf\u00e9 \u2019"));
        // The half-written title went, and the store took its track rows with it.
        QCOMPARE(RowCount("title where nmcd in ('Short', 'Thirteen', 'NaN', 'Same id')"), 0L);
        QCOMPARE(RowCount("Tracks where idcd not in (select idcd from title)"), 0L);
        QVERIFY(!gDatabase->InTransaction());
    }

    void tabLinesEndSpaceAndDecodeOneByOne() {
        ScriptedDialogs dialogs;
        ProgressLog progress;
        const QString path = folder->file("mixed.txt");
        // A bare CR ends a line; a line of TABs is a record; an empty column 12 names no
        // track; a UTF-8 line and a Windows-1252 line in one file are both read right.
        WriteBytes(path, TabRecord("Sigur R\xc3\xb3s", "Takk") + "\r" +
                             TabRecord("Caf\xe9", "Damaged") + "\r\n" + QByteArray(13, '\t') +
                             "\r\n   \n" + TabRecord("Nobody", "No names", "1") + "\n");
        frmImport window;
        window.Form_Load();
        dialogs.answerFile(path);
        window.ImportTabFile();
        QCOMPARE(window.TabTried, 4);
        QCOMPARE(RowCount("title where nmcd = 'No names'"), 0L);
        QCOMPARE(Scalar("select group_concat(nmvendor, '|') from (select nmvendor from vendor, "
                        "title where vendor.idvendor = title.idvendor and nmcd in ('Takk', "
                        "'Damaged') order by nmcd desc)")
                     .toString(),
                 QString("Sigur R\u00f3s|Caf\u00e9"));
        QCOMPARE(progress.steps,
                 QStringList({"Importing line 1/5", "Importing line 2/5", "Importing line 3/5",
                              "Importing line 4/5", "Importing line 5/5", "Importing line 0/0"}));
    }

    void aCommitThatFailsLosesOnlyItsBatch() {
        ScriptedDialogs dialogs;
        const QString path = folder->file("many.txt");
        QByteArray lines;
        for (int line = 0; line < 1200; ++line)
            lines += TabRecord("Vendor", "Title " + QByteArray::number(line)) + "\n";
        WriteBytes(path, lines);
        const long before = RowCount("title");
        int allowed = 1;
        sqlite3_commit_hook(gDatabase->Handle(), RefuseCommit, &allowed);
        frmImport window;
        window.Form_Load();
        dialogs.answerFile(path);
        window.ImportTabFile();
        sqlite3_commit_hook(gDatabase->Handle(), nullptr, nullptr);

        // The first batch stayed, the second went, the import stopped and said so, and the
        // summary after it counts only what stayed.
        const long kept = RowCount("title") - before;
        QVERIFY(kept > 0 && kept < 1200);
        QCOMPARE(long(window.TabTried - window.TabFailed), kept);
        const Boxes boxes = dialogs.takeBoxes();
        QCOMPARE(boxes.size(), 2);
        QVERIFY(boxes[0].prompt.startsWith("The import from " + path + " stopped.\r\nError "));
        QCOMPARE(boxes[0].title, QString("Importing from TAB delimited file"));
        QCOMPARE(boxes[1].prompt, "Tried to import " + QString::number(window.TabTried) +
                                      " title(s) from TAB delimited file\r\nOf those " +
                                      QString::number(window.TabFailed) + " went wrong.");
        QVERIFY(!gDatabase->InTransaction());
    }

    // An import stopped half-way counts as tried the titles it reached, and as gone wrong every
    // one of them that did not stay. A catalogue that cannot be written stops it at once, with
    // one box however many lines or lookups are left.
    void anImportStoppedHalfWayCountsWhatStayed() {
        ScriptedDialogs dialogs;
        // Overwriting, a new disc whose artist has an apostrophe cannot be renewed: the import
        // stops there, and the third disc is never read.
        const QString ini = WriteCdPlayerIni(
            "[A1]\r\nartist=Band\r\ntitle=One\r\nnumtracks=1\r\n"
            "[B2]\r\nartist=O'Brien\r\ntitle=Two\r\nnumtracks=1\r\n"
            "[C3]\r\nartist=Other\r\ntitle=Three\r\nnumtracks=1\r\n");
        const long before = RowCount("title");
        {
            frmImport window;
            window.Form_Load();
            ChooseDefaults(window);
            window.OverwriteTitles = true;
            window.ImportCdPlayerIni();
            QCOMPARE(
                dialogs.takeBoxes(),
                Boxes({{"The import from " + ini + " stopped.\r\nError 3021: No current record.",
                        vbCritical, kIniSource}}));
            QCOMPARE(window.IniTried, 2);
            QCOMPARE(window.IniDuplicates, 1);
            QCOMPARE(RowCount("title") - before, 1L);
        }

        // Runs one import on a window of its own with the catalogue refusing every change from
        // step on; check gets the window and the titles the import added.
        auto lockedAt = [](qint64 step, auto import, auto check) {
            const long start = RowCount("title");
            const CatalogueLockedAtStep locked(step);
            frmImport window;
            window.Form_Load();
            ChooseDefaults(window);
            (window.*import)();
            check(window, RowCount("title") - start);
        };

        // The catalogue refuses every change from the second disc on: one box, and the counts
        // match what is in it.
        const QString stoppedIni = "The import from " + ini + " stopped.\r\n" + kReadOnly;
        WriteBytes(ini,
                   "[D4]\r\nartist=Four\r\ntitle=Four\r\n[E5]\r\nartist=Five\r\n"
                   "title=Five\r\n[F6]\r\nartist=Six\r\ntitle=Six\r\n");
        lockedAt(2, &frmImport::ImportCdPlayerIni, [&](frmImport& window, long added) {
            QCOMPARE(dialogs.takeBoxes(), Boxes({{stoppedIni, vbCritical, kIniSource}}));
            QCOMPARE(window.IniTried, 2);
            QCOMPARE(long(window.IniTried - window.IniDuplicates), added);
        });

        InstallDeluxeDatabase(prefix->path());
        lockedAt(3, &frmImport::ImportDeluxeDatabase, [&](frmImport& window, long added) {
            const Boxes boxes = dialogs.takeBoxes();
            QCOMPARE(boxes.size(), 1);
            QCOMPARE(boxes[0].prompt,
                     "The import from " + window.DeluxePath + " stopped.\r\n" + kReadOnly);
            QCOMPARE(window.DeluxeTried, 3);
            QCOMPARE(long(window.DeluxeTried - window.DeluxeDuplicates), added);
        });

        // Every line names a vendor of its own; "Warn me" is off.
        const QString path = folder->file("vendors.txt");
        QByteArray lines;
        for (int line = 0; line < 50; ++line)
            lines += TabRecord("New vendor " + QByteArray::number(line),
                               "Line " + QByteArray::number(line)) +
                     "\n";
        WriteBytes(path, lines);
        dialogs.answerFile(path);
        lockedAt(4, &frmImport::ImportTabFile, [&](frmImport& window, long added) {
            QCOMPARE(window.TabTried, 4);
            QCOMPARE(window.TabFailed, 1);
            QCOMPARE(added, 3L);
            QCOMPARE(dialogs.takeBoxes(),
                     Boxes({{"The import from " + path + " stopped.\r\n" + kReadOnly, vbCritical,
                             "Importing from TAB delimited file"},
                            {"Tried to import 4 title(s) from TAB delimited file\r\nOf those 1 "
                             "went wrong.",
                             vbInformation, "Velmora"}}));
        });
        QVERIFY(!gDatabase->InTransaction());
    }

    void cdplayerIniSectionsBecomeAudioTitles() {
        ScriptedDialogs dialogs;
        const QString ini = WriteCdPlayerIni(
            "[CDDB]\r\nversion=1\r\n[1A2B]\r\nartist=Caf\xe9 Band\r\ntitle=First\r\n"
            "numtracks=3\r\n1=Named\r\n[FFFFFFFF]\r\nartist=Caf\xe9 Band\r\ntitle=Minus\r\n"
            "numtracks=1\r\n0=Only\r\n[77]\r\ntitle=No count\r\n[1a2b]\r\ntitle=Twice\r\n"
            "numtracks=1\r\n");
        frmImport window;
        window.Form_Load();
        QVERIFY(window.Check1[0]->isEnabled());
        QVERIFY(!window.Check1[1]->isEnabled());
        ChooseDefaults(window);
        window.WarnTitles = true;
        window.ImportCdPlayerIni();
        QCOMPARE(window.IniTried, 4);
        QCOMPARE(window.IniDuplicates, 2);
        Boxes skipped;
        for (const QString title : {"No count", "First"})
            skipped << MsgBoxCall{"The cd with title '" + title +
                                      "' cannot be added and will be skipped.\r\rMost likely "
                                      "reason is that it allready existed in Velmora's Database.",
                                  vbExclamation, kIniSource};
        QCOMPARE(dialogs.takeBoxes(), skipped);
        QStringList tracks;
        auto rs = gDatabase->OpenRecordset(
            "select TrackName from Tracks, title where Tracks.idcd = title.idcd and TitleID = "
            "6699 order by TrackID");
        for (; !rs->IsEOF(); rs->MoveNext()) tracks << rs->Fields(0).Value().toString();
        QCOMPARE(tracks, QStringList({"Track 1", "Named", "Track 3"}));
        QCOMPARE(Scalar("select nmcd from title where TitleID = -1").toString(), QString("Minus"));
        QCOMPARE(RowCount("vendor where nmvendor = 'Caf\u00e9 Band'"), 1L);
        // What the player's file does not tell takes the template's 0, so that the HTML page can
        // add up the ratings.
        QCOMPARE(
            RowCount("title where rating = 0 and capacity = 0 and freespace = 0 and price = 0"),
            2L);

        // More than 1000 discs: a box that names the file, nothing written.
        QByteArray many;
        for (int i = 0; i < 1001; ++i) many += "[" + QByteArray::number(i + 0x10000, 16) + "]\n";
        WriteBytes(ini, many);
        const long before = RowCount("title");
        frmImport full;
        full.Form_Load();
        ChooseDefaults(full);
        full.ImportCdPlayerIni();
        QCOMPARE(RowCount("title"), before);
        QCOMPARE(dialogs.msgBoxes.last(),
                 MsgBoxCall({"The import from " + ini +
                                 " stopped.\r\nError 9: Subscript out of range: the file holds "
                                 "more than 1000 discs.",
                             vbCritical, kIniSource}));

        // A file that cannot be read: the design's number and text, then the system's reason.
        QFile::remove(ini);
        full.ImportCdPlayerIni();
        QCOMPARE(dialogs.msgBoxes.last(),
                 MsgBoxCall({"The import from " + ini +
                                 " stopped.\r\nError 53: File not found (No such file or "
                                 "directory)",
                             vbCritical, kIniSource}));
    }

    void overwritingKeepsThePreviousDiscsVendor() {
        ScriptedDialogs dialogs;
        const QString ini = WriteCdPlayerIni(
            "[A1]\r\nartist=Band\r\ntitle=One\r\nnumtracks=1\r\n"
            "[B2]\r\nartist=O'Brien\r\ntitle=Two\r\nnumtracks=1\r\n"
            "[C3]\r\nartist=Other\r\ntitle=Three\r\nnumtracks=1\r\n");
        gDatabase->Execute(
            "insert into title (nmcd, nrcds, idvendor, idplatform, idtype, idspecific, "
            "idmediatype, TitleID) values ('Old', 1, 1, 1, 1, 1, 1, 178)");
        ProgressLog progress;
        frmImport window;
        window.Form_Load();
        ChooseDefaults(window);
        window.OverwriteTitles = true;
        window.ImportCdPlayerIni();
        QCOMPARE(dialogs.takeBoxes(), Boxes());
        QCOMPARE(Scalar("select nmvendor from vendor, title where vendor.idvendor = "
                        "title.idvendor and TitleID = 178")
                     .toString(),
                 QString("Band"));
        QCOMPARE(Scalar("select nmcd from title where TitleID = 178").toString(), QString("Two"));
        QCOMPARE(RowCount("title where TitleID = 195"), 1L);
        QCOMPARE(progress.steps, QStringList({"Importing title 1/3", "Importing title 2/3",
                                              "Importing title 3/3", "Importing title 0/0"}));
    }

    void deluxeDatabaseIsFoundAndRead() {
        ScriptedDialogs dialogs;
        const QString database = InstallDeluxeDatabase(prefix->path());
        ProgressLog progress;
        frmImport window;
        window.Form_Load();
        QVERIFY(window.Check1[1]->isEnabled());
        QCOMPARE(window.DeluxePath, database);
        ChooseDefaults(window);
        window.ImportDeluxeDatabase();
        QCOMPARE(window.DeluxeTried, 4);
        QCOMPARE(window.DeluxeDuplicates, 0);
        QCOMPARE(progress.steps,
                 QStringList({"Importing title 1/4", "Importing title 2/4", "Importing title 3/4",
                              "Importing title 4/4", "Importing title 0/0"}));
        QCOMPARE(RowCount("title where idplatform = 1 and TitleID in (1001, 1002, -5, 2147483647)"),
                 4L);
        QCOMPARE(RowCount("Tracks, title where Tracks.idcd = title.idcd and TitleID = 1001"), 3L);
        QCOMPARE(Scalar("select TrackName from Tracks, title where Tracks.idcd = title.idcd and "
                        "TitleID = 1002 and TrackID = 1")
                     .toString(),
                 QString("J\u00f3ga"));

        // A second run refuses every title and skips its track rows by NumTracks.
        const long tracks = RowCount("Tracks");
        frmImport again;
        again.Form_Load();
        ChooseDefaults(again);
        again.ImportDeluxeDatabase();
        QCOMPARE(again.DeluxeTried, 4);
        QCOMPARE(again.DeluxeDuplicates, 4);
        QCOMPARE(RowCount("Tracks"), tracks);
    }

    void theWindowChecksBeforeItImports() {
        ScriptedDialogs dialogs;
        frmImport window;
        window.Form_Load();
        // Until a type is chosen, the specific items of all audio types less each first row.
        QCOMPARE(window.cmbDefType->count(), 6);
        QCOMPARE(window.cmbDefSpecific->count(), 15 - 6);
        window.Check1[2]->setChecked(false);
        window.cmdOK_Click();
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({{"You should at least select one program or file to import cd's from",
                         vbInformation, "Select a program"}}));

        // A player's titles need both defaults, the type first.
        window.Check1[0]->setChecked(true);
        window.cmdOK_Click();
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({{"Please select a default type when importing CD-titles", vbInformation,
                         "Select a type first"}}));
        window.cmbDefType->setCurrentIndex(window.cmbDefType->findText("Rock"));
        window.cmbDefType_Click();
        window.cmdOK_Click();
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({{"Please select a default specific item when importing CD-titles",
                         vbInformation, "Select a specific item first"}}));
        window.Check1[0]->setChecked(false);

        // The TAB file alone needs no defaults; a cancelled dialog imports nothing.
        window.Check1[2]->setChecked(true);
        window.cmdOK_Click();
        QCOMPARE(dialogs.fileDialogs.size(), 1);
        QCOMPARE(window.result(), int(QDialog::Accepted));

        // A chosen file that is gone by the time it is read.
        const QString gone = folder->file("gone.txt");
        dialogs.answerFile(gone);
        window.ImportTabFile();
        QCOMPARE(dialogs.takeBoxes(), Boxes({{"Error 53: File not found: " + gone, vbCritical,
                                              "Error when importing from TAB delimited file"}}));
    }
};

VELMORA_TEST_MAIN(ImportTest)
#include "import_test.moc"
