// The writers on a small catalogue: the HTML page, the TAB file, the clipboard report,
// cdplayer.ini and the Deluxe CD player's database, with what they ask, what they write and what
// they do when writing fails. The Deluxe file is written by the program's own Jet writer and read
// back by mdbtools.

#include <sys/fsuid.h>
#include <unistd.h>

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>

#include "disc/coverimage.h"
#include "disc/coverimages.h"
#include "export/exporttest.h"
#include "export/frmExport.h"
#include "jet/jetcheck.h"
#include "store/shelfrecords.h"
#include "store/shelftables.h"
#include "toolkit/platform/mUtility.h"
#include "toolkit/platform/mUtilityIni.h"
#include "toolkit/vb/vbruntime.h"

using namespace exporttest;

namespace {

QStringList Lines(const QByteArray& bytes) {
    QStringList lines = QString::fromUtf8(bytes).split("\r\n");
    if (lines.last().isEmpty()) lines.removeLast();
    return lines;
}

const QString kCellOpen = "<td align=\"left\" valign=\"top\"><small>";
const QString kCellClose = "</small></td>";

// File permissions that bind this thread even when the tests run as root.
class ActingAsNobody {
  public:
    ActingAsNobody() {
        setfsgid(65534);
        setfsuid(65534);
    }
    ~ActingAsNobody() {
        setfsuid(getuid());
        setfsgid(getgid());
    }
};

// The Deluxe writer's closing box.
MsgBoxCall DeluxeSummary(int duplicates) {
    return {"Tried to export 3 title(s) to the Deluxe Database.\r\nOf those " +
                QString::number(duplicates) + " went wrong because of duplicates.",
            vbInformation, "Export to Deluxe CD-Player Results"};
}

}  // namespace

class WritersTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        folder_ = std::make_unique<TempProgramFolder>();
        folder_->openCatalogue();
        AddTitles();
        form_ = std::make_unique<frmExport>();
        form_->Form_Load();
        for (QCheckBox* field : form_->Check3) field->setChecked(true);
        Select(kTitleJoinInListOrder);
        form_->DeluxePath = folder_->file("DeluxeCD.mdb");
        QVERIFY(QFile::copy(FixturePath("deluxe/cd_pk.mdb"), form_->DeluxePath));
        QFile::setPermissions(form_->DeluxePath, QFile::ReadOwner | QFile::WriteOwner);
        opened_.clear();
        SetDocumentOpener([this](const QUrl& url) {
            opened_ << url;
            return true;
        });
    }

    void cleanup() {
        SetDocumentOpener({});
        form_.reset();
        folder_.reset();
    }

    void htmlPageKeepsItsLinesStatisticsAndCells() {
        ScriptedDialogs dialogs;
        const QString page = folder_->file("page.html");
        dialogs.answerFile(page);
        Export(&frmExport::ExportToHtml);

        const QByteArray bytes = ReadBytes(page);
        QVERIFY(bytes.startsWith("\xEF\xBB\xBF<html><head><style TYPE=\"text/css\">"));
        QVERIFY(bytes.endsWith("color=\"#C0C040\">\r\n"));
        QVERIFY(!bytes.contains("</body>") && !bytes.contains("</html>"));
        const QStringList lines = Lines(bytes.mid(3));
        QVERIFY(lines[1].endsWith("<font color=\"#000000\">5</font> title(s) in exportfile, "));

        // Homogénic: three tracks in one cell; Missing Tracks: the empty cell and the stray
        // close; Zero Tracks: "0 tracks" and an empty cell.
        const int homogenic = lines.indexOf("Homogénic");
        QVERIFY(homogenic > 0);
        QCOMPARE(lines.mid(homogenic - 1, 3), QStringList({kCellOpen, "Homogénic", kCellClose}));
        QCOMPARE(lines.mid(homogenic + 2, 3), QStringList({kCellOpen, "Björk", kCellClose}));
        QVERIFY(lines.contains(kCellOpen + "80/100" + kCellClose));
        // The memo goes in as it stands, its line end included.
        QVERIFY(lines.contains(kCellOpen + "Line one") &&
                lines.contains("x < y & \"z\"" + kCellClose));
        const int tracks = lines.indexOf(kCellOpen + "3 tracks" + kCellClose);
        QCOMPARE(lines.mid(tracks + 1, 6), QStringList({kCellOpen, "Jóga<BR>", "Bachelorette<BR>",
                                                        "Hunter<BR>", kCellClose, "</tr>"}));
        const int missing = lines.indexOf(kCellOpen + "2 tracks" + kCellClose);
        QCOMPARE(lines.mid(missing + 1, 3),
                 QStringList({kCellOpen + kCellClose, kCellClose, "</tr>"}));
        const int zero = lines.indexOf(kCellOpen + "0 tracks" + kCellClose);
        QCOMPARE(lines.mid(zero + 1, 2), QStringList({kCellOpen + kCellClose, "</tr>"}));
        // The PC title shows its listing, never its tracks; audio never shows a listing.
        QVERIFY(lines.contains(kCellOpen + "setup.exe<BR>data\tfile.cab" + kCellClose));
        QVERIFY(!bytes.contains("Menu music") && !bytes.contains("never shown"));

        QCOMPARE(dialogs.takeBoxes(), Boxes({{"5 titles have been exported to file '" + page + "'.",
                                              vbInformation, "Export to File Results"}}));
        QCOMPARE(opened_, QList<QUrl>({QUrl::fromLocalFile(page)}));

        // 80 + 50 + 91 + 40 + 67 = 328 over 5 titles: 65.6 rounds up.
        gDatabase->Execute("update title set rating = 67 where idcd = 5");
        Select(kTitleJoinInListOrder);
        const QString rounded = folder_->file("rounded.html");
        dialogs.answerFile(rounded);
        Export(&frmExport::ExportToHtml);
        QCOMPARE(Lines(ReadBytes(rounded).mid(3))[2],
                 QString("average rating: <font color=\"#000000\">66</font></small></small>"));
    }

    void htmlPageWithCoversBesideIt() {
        ScriptedDialogs dialogs;
        const QString plain = folder_->file("plain.html");
        dialogs.answerFile(plain);
        Export(&frmExport::ExportToHtml);
        const QByteArray before = ReadBytes(plain);

        MakeShelfTables(*gDatabase);
        PreparedCover prepared;
        QString problem;
        QVERIFY(PrepareCover(coverimages::Jpeg(200, 300), prepared, problem));
        WriteCover(1, {prepared.image, prepared.thumbnail, {}, "front.jpg", "2025-01-01"});
        // Without the box the page is what it was, covers or not.
        dialogs.answerFile(plain);
        Export(&frmExport::ExportToHtml);
        QCOMPARE(ReadBytes(plain), before);
        QVERIFY(!QFileInfo::exists(folder_->file("plain_covers")));

        const QString page = folder_->file("my page.html");
        form_->chkCovers->setChecked(true);
        dialogs.answerFile(page);
        Export(&frmExport::ExportToHtml);
        const QStringList lines = Lines(ReadBytes(page).mid(3));
        const QString empty = "<td align=\"left\" valign=\"top\"></td>";
        const int homogenic = lines.indexOf("Homogénic");
        QCOMPARE(lines.mid(homogenic - 3, 2),
                 QStringList({"<tr>",
                              "<td align=\"left\" valign=\"top\"><img "
                              "src=\"my%20page_covers/1.jpg\" width=\"64\" "
                              "height=\"96\" alt=\"\"></td>"}));
        QCOMPARE(lines.count(empty), 4);
        QCOMPARE(ReadBytes(folder_->file("my page_covers/1.jpg")), prepared.thumbnail);
        QCOMPARE(QDir(folder_->file("my page_covers")).entryList(QDir::Files).size(), 1);
        // Without the covers' lines the page is the plain one.
        QStringList withoutCovers = lines;
        withoutCovers.removeAt(homogenic - 2);
        withoutCovers.removeAll(empty);
        QCOMPARE(withoutCovers, Lines(before.mid(3)));
    }

    void fileWritersReportWhatCannotBeWritten() {
        ScriptedDialogs dialogs;
        const auto failed = [](const QString& name) {
            return MsgBoxCall{"Could not export to file " + name + "!", vbExclamation, "Velmora"};
        };
        const QString folderName = folder_->file("taken");
        QDir().mkpath(folderName);
        dialogs.answerFile(folderName);
        dialogs.answerFile(folderName);
        Export(&frmExport::ExportToHtml);
        Export(&frmExport::ExportToTabFile);
        QCOMPARE(dialogs.takeBoxes(), Boxes({failed(folderName), failed(folderName)}));

        // A cancelled chooser ends the writer without a word.
        Export(&frmExport::ExportToHtml);
        QVERIFY(dialogs.msgBoxes.isEmpty());

        // A title without a rating stops the page's statistics; the two lines written before
        // stay.
        gDatabase->Execute("update title set rating = NULL where idcd = 5");
        Select(kTitleJoinInListOrder);
        dialogs.answerFile(folder_->file("null.html"));
        Export(&frmExport::ExportToHtml);
        QCOMPARE(dialogs.takeBoxes(), Boxes({failed(folder_->file("null.html"))}));
        QCOMPARE(Lines(ReadBytes(folder_->file("null.html"))).size(), 2);
        gDatabase->Execute("update title set rating = 65 where idcd = 5");

        // Tracks that cannot be read stop the TAB file at the first audio title with tracks,
        // after the lines of the video and the PC title.
        form_->ExportRecordset.reset();
        gDatabase->Execute("drop table Tracks");
        Select(kTitleJoin + " order by platform.nmplatform desc, title.nmcd");
        dialogs.answerFile(folder_->file("cut.txt"));
        Export(&frmExport::ExportToTabFile);
        QCOMPARE(dialogs.takeBoxes(), Boxes({failed(folder_->file("cut.txt"))}));
        const QStringList cut = Lines(ReadBytes(folder_->file("cut.txt")));
        QCOMPARE(cut.size(), 2);
        QVERIFY(cut[0].contains("Nosferatu") && cut[1].contains("Café Tycoon"));
    }

    void tabFileHoldsFourteenColumnsWithTokens() {
        ScriptedDialogs dialogs;
        const QString name = folder_->file("titles.txt");
        dialogs.answerFile(name);
        for (QCheckBox* field : form_->Check3) field->setChecked(false);
        Export(&frmExport::ExportToTabFile);

        const QByteArray bytes = ReadBytes(name);
        QVERIFY(!bytes.startsWith("\xEF\xBB\xBF"));
        const QStringList lines = Lines(bytes);
        QCOMPARE(lines.size(), 5);
        const QString nul(QChar(0));
        QCOMPARE(lines[0], QString("Audio\tPop\tAlbum\tBjörk\tHomogénic\tCD-ROM\tHOMO1\t80\t\t"
                                   "1715004\t3\tLine one<NEWLINE>x < y & \"z\"\tJóga<NEWLINE>"
                                   "Bachelorette<NEWLINE>Hunter\t1"));
        QCOMPARE(lines[1], "Audio\tPop\tAlbum\tVarious artists\tMissing Tracks\tCD-ROM\t" + nul +
                               "\t40\t\t77\t2\t\t\t1");
        QCOMPARE(lines[2], "Audio\tRock\tAlbum\tVarious artists\tZero Tracks\tCD-R\t" + nul +
                               "\t50\t\t-1\t0\t\t\t2");
        // The TAB inside the listing is written as it stands and shifts that line's columns.
        QCOMPARE(lines[3],
                 QString("PC\tGames\tAction\tUnknown vendor\tCafé Tycoon\tCD-ROM\tCAFE\t91"
                         "\tsetup.exe<NEWLINE>data\tfile.cab\t\t2\t\t\t1"));
        QCOMPARE(lines[4].split('\t').size(), 14);
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({{"5 titles have been exported to file '" + name + "'.", vbInformation,
                         "Export to TAB-delimited File Results"}}));
    }

    void clipboardGetsTheBoxedReport() {
        ScriptedDialogs dialogs;
        for (int field : {0, 5, 6}) form_->Check3[field]->setChecked(false);
        const QString temp = folder_->file("tmp");
        QDir().mkpath(temp);
        qputenv("TMPDIR", temp.toUtf8());
        Export(&frmExport::ExportToClipboard);

        const QString text = QGuiApplication::clipboard()->text();
        QVERIFY(!text.contains('\r'));
        const QStringList lines = text.split('\n');
        QCOMPARE(lines[0], "Output from Velmora's CD-organiser Engine (" + kMakerWebAddress + ")");
        QVERIFY(
            lines[1].startsWith("Printdate and time: " + LongDate(QDate::currentDate()) + " @ "));
        QVERIFY(QRegularExpression(" @ ([01]\\d|2[0-3]):[0-5]\\d$").match(lines[1]).hasMatch());
        QCOMPARE(lines.mid(2, 16),
                 QStringList({"", "", "+==============================+", " Number      1 of 5",
                              "+==============================+", " Title       Homogénic",
                              " By          Björk", " Type        Pop", " Specific    Album",
                              " Memo        Line one", "x < y & \"z\"", " Nr cd's     1", "",
                              " 3 tracks", "", " Jóga"}));
        QVERIFY(text.contains("\n\nsetup.exe\ndata\tfile.cab\n\n"));
        QVERIFY(text.contains(" Number      5 of 5"));
        QVERIFY(!text.contains("Category") && !text.contains("Rating") &&
                !text.contains("Menu music"));
        QCOMPARE(dialogs.takeBoxes(), Boxes({{"5 titles have been exported to the clipboard.",
                                              vbInformation, "Export to Clipboard Results"}}));
        QCOMPARE(QDir(temp).entryList(QDir::Files), QStringList());
    }

    void cdPlayerIniLooksFirstAndKeepsTheOldFile() {
        ScriptedDialogs dialogs;
        const QString ini = folder_->file("cdplayer.ini");
        WriteBytes(ini,
                   "[cddb]\r\nkeep=me\r\n\r\n[1a2b3c]\r\nnumtracks=9\r\ntitle=Old\r\n\r\n"
                   "[4D]\r\nartist=Nobody\r\n");
        form_->IniPath = ini;
        form_->Check3[0]->setChecked(false);
        form_->WarnTitles = true;
        Export(&frmExport::ExportToCdPlayerIni);

        const QByteArray bytes = ReadBytes(ini);
        QVERIFY(
            bytes.startsWith("[cddb]\r\nkeep=me\r\n\r\n[1a2b3c]\r\nnumtracks=9\r\ntitle=Old"
                             "\r\n\r\n[4D]\r\n"));
        // 77 is 4D: its section had no track count, so it is extended (artist overwritten).
        QVERIFY(
            bytes.contains("[4D]\r\nartist=Various artists\r\nEntryType=1\r\ntitle=Missing "
                           "Tracks\r\nnumtracks=2\r\norder=0 1\r\nnumplay=2\r\n"));
        QVERIFY(
            bytes.contains("[FFFFFFFF]\r\nEntryType=1\r\nartist=Various artists\r\ntitle=Zero "
                           "Tracks\r\nnumtracks=0\r\norder=\r\nnumplay=0\r\n"));
        QVERIFY(!bytes.contains("Homogénic") && !bytes.contains("Café"));
        QCOMPARE(dialogs.takeBoxes(),
                 Boxes({{"The audio-cd named 'Homogénic' allready existed in the Windows Default "
                         "CD-player\rThis file wil not be replaced: overwrite option not selected.",
                         vbInformation, "Duplicate found"},
                        {"Tried to export 3 title(s) to Windows Default CD-player\r\nOf those 1 "
                         "were skipped because of duplicates.",
                         vbInformation, "Velmora"}}));

        // Overwriting renews the keys in their places; track keys above the new count stay. A
        // file of plain ASCII is taken for the players' code page and stays in it.
        form_->OverwriteTitles = true;
        form_->ShowSummary = false;
        WriteBytes(ini, "[1A2B3C]\r\n0=a\r\n1=b\r\n2=c\r\n3=d\r\nnumtracks=4\r\n");
        Export(&frmExport::ExportToCdPlayerIni);
        QVERIFY(ReadBytes(ini).startsWith(
            "[1A2B3C]\r\n0=J\xF3ga\r\n1=Bachelorette\r\n2=Hunter\r\n3=d\r\nnumtracks=3\r\n"
            "EntryType=1\r\nartist=Bj\xF6rk\r\ntitle=Homog\xE9nic\r\norder=0 1 "
            "2\r\nnumplay=3\r\n"));

        // Tracks that cannot be read cost the track keys alone.
        form_->ExportRecordset.reset();
        gDatabase->Execute("drop table Tracks");
        Select(kTitleJoinInListOrder);
        WriteBytes(ini, "");
        Export(&frmExport::ExportToCdPlayerIni);
        QVERIFY(ReadBytes(ini).startsWith(
            "[1A2B3C]\r\nEntryType=1\r\nartist=Bj\xF6rk\r\ntitle=Homog\xE9nic\r\n"
            "numtracks=3\r\norder=0 1 2\r\nnumplay=3\r\n"));
    }

    void damagedOrUnwritableCdPlayerIniIsNeverCut() {
        ScriptedDialogs dialogs;
        form_->ShowSummary = false;
        const QString ini = folder_->file("cdplayer.ini");
        QByteArray damaged(100000, 'x');
        damaged += "\r\n";
        for (int i = 0; i < 256; ++i) damaged += char(i);
        WriteBytes(ini, damaged);
        form_->IniPath = ini;
        Export(&frmExport::ExportToCdPlayerIni);
        const QByteArray after = ReadBytes(ini);
        // Only the line end of the stray line feed inside the binary part takes the file's form.
        QVERIFY(after.startsWith(damaged.left(100002 + 10)));
        QVERIFY(after.contains(damaged.mid(100002 + 11)));
        QVERIFY(after.contains("[1A2B3C]"));
        QVERIFY(dialogs.msgBoxes.isEmpty());

        WriteBytes(ini, "[CDDB]\r\nkeep=me\r\n");
        // A file that cannot be read is not taken for an empty one: a box, and no write.
        QFile::setPermissions(ini, QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther);
        QFile::setPermissions(folder_->path(), QFile::permissions(folder_->path()) |
                                                   QFile::WriteOther | QFile::ExeOther);
        {
            const ActingAsNobody nobody;
            Export(&frmExport::ExportToCdPlayerIni);
        }
        QCOMPARE(ReadBytes(ini), QByteArray("[CDDB]\r\nkeep=me\r\n"));
        QCOMPARE(dialogs.takeBoxes(), Boxes({{"Could not export to file " + ini +
                                                  "!\r\n\r\nIt cannot be read: Permission denied",
                                              vbExclamation, "Velmora"}}));
    }

    void newTitlesAndTracksAreAppendedAndDuplicatesSkipped() {
        ScriptedDialogs dialogs;
        form_->WarnTitles = true;
        Export(&frmExport::ExportToDeluxe);
        QCOMPARE(form_->DeluxeExportTried, qint16(3));
        QCOMPARE(form_->DeluxeExportDuplicates, qint16(0));
        QCOMPARE(dialogs.takeBoxes(), Boxes({DeluxeSummary(0)}));

        const QString path = form_->DeluxePath;
        QCOMPARE(CountedRows(path, "Titles"), 7L);
        QCOMPARE(CountedRows(path, "Tracks"), 11L);
        const QStringList titles = ExportedRows(path, "Titles");
        QVERIFY(titles.contains("1715004,\"Björk\",\"Homogénic\",3"));
        QVERIFY(titles.contains("77,\"Various artists\",\"Missing Tracks\",2"));
        QVERIFY(titles.contains("-1,\"Various artists\",\"Zero Tracks\",0"));
        QVERIFY(ExportedRows(path, "Tracks").contains("1715004,2,\"Hunter\""));

        // Again: every title is there, each is skipped with its warning, tracks unlooked at.
        const QByteArray before = ReadBytes(path);
        // A window counts from zero when it loads; this one exports a second time.
        form_->DeluxeExportTried = 0;
        Export(&frmExport::ExportToDeluxe);
        QCOMPARE(form_->DeluxeExportDuplicates, qint16(3));
        Boxes skipped;
        for (const char* name : {"Homogénic", "Missing Tracks", "Zero Tracks"})
            skipped << MsgBoxCall{"The cd with title '" + QString(name) +
                                      "' cannot be copied and will be skipped.\r\rMost likely "
                                      "reason is that it allready exists in the Deluxe database.",
                                  vbExclamation,
                                  "Exporting to Windows Deluxe CD-player (Plus! and 2000)"};
        QCOMPARE(dialogs.takeBoxes(), skipped << DeluxeSummary(3));
        QCOMPARE(ReadBytes(path), before);
    }

    void badFilesGetTheirBoxesAndStayAsTheyWere() {
        ScriptedDialogs dialogs;
        const QString path = form_->DeluxePath;
        const QByteArray whole = ReadBytes(path);
        const Boxes refused = {
            {"There was a problem loading de database of the Deluxe "
             "CD-Player.\r\rNew titles cannot be added, please verify that the "
             "Deluxe-database is not missing or corrupted.",
             vbExclamation, "Velmora"}};
        for (const QByteArray& damaged :
             {whole.left(whole.size() - 100), QByteArray("no jet"), whole.left(4096 * 3)}) {
            WriteBytes(path, damaged);
            Export(&frmExport::ExportToDeluxe);
            QCOMPARE(dialogs.takeBoxes(), refused);
            QCOMPARE(ReadBytes(path), damaged);
        }
        // A title whose artist is not on the audio platform stops the run.
        WriteBytes(path, whole);
        gDatabase->Execute("update title set idvendor = 4 where idcd = 1");
        form_->ExportRecordset->Requery();
        Export(&frmExport::ExportToDeluxe);
        QCOMPARE(
            dialogs.takeBoxes(),
            Boxes({{"An error occured during the process.", vbExclamation, "Unable to continue"}}));
    }

  private:
    void Select(const QString& sql) {
        form_->ExportRecordset = gDatabase->OpenRecordset(sql, dbOpenDynaset, dbReadOnly);
    }

    void Export(void (frmExport::*writer)(long&), long count = 5) {
        form_->ExportRecordset->MoveFirst();
        (form_.get()->*writer)(count);
    }

    std::unique_ptr<TempProgramFolder> folder_;
    std::unique_ptr<frmExport> form_;
    QList<QUrl> opened_;
};

VELMORA_TEST_MAIN(WritersTest)
#include "writers_test.moc"
