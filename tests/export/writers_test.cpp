// The writers on a small catalogue: the HTML page, the TAB file, the clipboard report and
// cdplayer.ini, with what they ask, what they write and what they do when writing fails.

#include <sys/resource.h>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <csignal>

#include "export/exporttest.h"
#include "export/frmExport.h"
#include "toolkit/mUtility.h"
#include "toolkit/mUtilityIni.h"
#include "toolkit/vbruntime.h"

using namespace exporttest;

namespace {

QStringList Lines(const QByteArray& bytes) {
    QStringList lines = QString::fromUtf8(bytes).split("\r\n");
    if (lines.last().isEmpty()) lines.removeLast();
    return lines;
}

const QString kCellOpen = "<td align=\"left\" valign=\"top\"><small>";
const QString kCellClose = "</small></td>";

// The size limit of files this process writes, lowered for one block.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &saved_);
        rlimit lowered = saved_;
        lowered.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &lowered);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &saved_); }

  private:
    rlimit saved_{};
};

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
        Select(kAllTitles);
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
        ScriptedChooser chooser;
        const QString page = folder_->file("page.html");
        chooser.answers << page;
        Export(&frmExport::ExportToHtml);

        QCOMPARE(chooser.calls.size(), 1);
        const FileDialogCall& asked = chooser.calls[0];
        QCOMPARE(asked.title, QString("Enter a name for the HTML-file"));
        QCOMPARE(asked.defaultExt, QString("html"));
        QCOMPARE(asked.flags, 0x9806);
        QCOMPARE(asked.filter, QString("Internetfiles (*.html,*.htm)|*.html;*.htm"));
        QCOMPARE(asked.filterIndex, 1);
        QCOMPARE(asked.initDir, App.Path);

        const QByteArray bytes = ReadBytes(page);
        QVERIFY(bytes.startsWith("\xEF\xBB\xBF<html><head><style TYPE=\"text/css\">"));
        QVERIFY(bytes.endsWith("color=\"#C0C040\">\r\n"));
        QVERIFY(!bytes.contains("</body>") && !bytes.contains("</html>"));
        const QStringList lines = Lines(bytes.mid(3));
        QVERIFY(
            lines[0].endsWith("<title>Dorvik Software Velmora Generated Exportfile</title>"
                              "</head>"));
        QVERIFY(lines[1].endsWith("<font color=\"#000000\">5</font> title(s) in exportfile, "));
        // 80 + 50 + 91 + 40 + 65 = 326 over 5 titles.
        QCOMPARE(lines[2], QString("average rating: <font color=\"#000000\">65</font></small>"
                                   "</small>"));
        QVERIFY(
            lines[3].startsWith("<br><small><small>Number of different platforms: <font "
                                "color=\"#000000\">3</font>"));

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
        // Three platforms, each opened once and closed once, in the order of the rows.
        const QStringList headings = lines.filter("<div class=\"para3\"><p>");
        QCOMPARE(headings.size(), 3);
        QVERIFY(headings[0].contains("<p>Audio</p>") && headings[2].contains("<p>Video</p>"));
        QCOMPARE(lines.filter("</table></ul></blockquote>").size(), 3);

        QCOMPARE(dialogs.msgBoxes.size(), 1);
        QCOMPARE(dialogs.msgBoxes[0].prompt, "5 titles have been exported to file '" + page + "'.");
        QCOMPARE(dialogs.msgBoxes[0].flags, int(vbInformation));
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Export to File Results"));
        QCOMPARE(opened_, QList<QUrl>({QUrl::fromLocalFile(page)}));
    }

    void htmlAverageRoundsHalfToEvenAndRatingLineIsOptional() {
        ScriptedDialogs dialogs;
        ScriptedChooser chooser;
        gDatabase->Execute("update title set rating = 53 where idcd = 2");
        // Homogénic and Zero Tracks: 133 / 2 = 66.5 goes to 66.
        Select(kAudioPair);
        chooser.answers << folder_->file("two.html");
        Export(&frmExport::ExportToHtml, 2);
        QCOMPARE(Lines(ReadBytes(folder_->file("two.html")).mid(3))[2],
                 QString("average rating: <font color=\"#000000\">66</font></small></small>"));

        form_->Check3[5]->setChecked(false);
        form_->ShowSummary = false;
        form_->OpenHtmlAfterExport = false;
        opened_.clear();
        Select(kAllTitles + " limit 1");
        chooser.answers << folder_->file("one.html");
        Export(&frmExport::ExportToHtml, 1);
        const QStringList lines = Lines(ReadBytes(folder_->file("one.html")).mid(3));
        QVERIFY(lines[2].startsWith("<br><small><small>Number of different platforms:"));
        QVERIFY(!lines.join("").contains("/100"));
        QCOMPARE(dialogs.msgBoxes.size(), 1);
        QVERIFY(opened_.isEmpty());

        form_->ShowSummary = true;
        chooser.answers << folder_->file("one.html");
        Export(&frmExport::ExportToHtml, 1);
        QCOMPARE(dialogs.msgBoxes.last().prompt,
                 "1 title has been exported to file '" + folder_->file("one.html") + "'.");
    }

    void fileWritersReportWhatCannotBeWritten() {
        ScriptedDialogs dialogs;
        ScriptedChooser chooser;
        const QString folderName = folder_->file("taken");
        QDir().mkpath(folderName);
        chooser.answers << folderName << folderName;
        Export(&frmExport::ExportToHtml);
        Export(&frmExport::ExportToTabFile);
        QCOMPARE(dialogs.prompts(), QStringList(2, "Could not export to file " + folderName + "!"));
        QCOMPARE(dialogs.msgBoxes[0].flags, int(vbExclamation));
        QVERIFY(opened_.isEmpty());

        // A cancelled chooser ends the writer without a word.
        Export(&frmExport::ExportToHtml);
        Export(&frmExport::ExportToTabFile);
        QCOMPARE(dialogs.msgBoxes.size(), 2);

        // A title without a rating stops the page's statistics.
        gDatabase->Execute("update title set rating = NULL where idcd = 5");
        Select(kAllTitles);
        chooser.answers << folder_->file("null.html");
        Export(&frmExport::ExportToHtml);
        QCOMPARE(dialogs.msgBoxes.last().prompt,
                 "Could not export to file " + folder_->file("null.html") + "!");
        gDatabase->Execute("update title set rating = 65 where idcd = 5");

        // A full disc: the file size limit stops the page part way.
        Select(kAllTitles);
        chooser.answers << folder_->file("full.html") << folder_->file("full.txt");
        {
            const FileSizeLimit limit(256);
            Export(&frmExport::ExportToHtml);
            Export(&frmExport::ExportToTabFile);
        }
        QCOMPARE(dialogs.prompts().mid(3),
                 QStringList({"Could not export to file " + folder_->file("full.html") + "!",
                              "Could not export to file " + folder_->file("full.txt") + "!"}));
        QVERIFY(opened_.isEmpty());
        const auto titles = gDatabase->OpenRecordset("select count(*) as n from title");
        QCOMPARE((*titles)["n"].toInt(), 5);
    }

    void tabFileHoldsFourteenColumnsWithTokens() {
        ScriptedDialogs dialogs;
        ScriptedChooser chooser;
        const QString name = folder_->file("titles.txt");
        chooser.answers << name;
        for (QCheckBox* field : form_->Check3) field->setChecked(false);
        Export(&frmExport::ExportToTabFile);

        const FileDialogCall& asked = chooser.calls[0];
        QCOMPARE(asked.title, QString("Export cd-titles to a TAB-delimited file"));
        QCOMPARE(asked.defaultExt, QString("txt"));
        QCOMPARE(asked.flags, 0x9806);
        QCOMPARE(asked.filter, QString("Textfiles (*.txt)|*.txt|All Files (*.*)|*.*"));

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
        QCOMPARE(dialogs.msgBoxes.size(), 1);
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Export to TAB-delimited File Results"));
        QCOMPARE(dialogs.msgBoxes[0].prompt, "5 titles have been exported to file '" + name + "'.");
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
        QVERIFY(
            text.contains(" Title       Zero Tracks\n By          Various artists\n Type  "
                          "      Rock\n Specific    Album\n Memo        \n Nr cd's     2\n\n"));
        QVERIFY(text.contains("\n\nsetup.exe\ndata\tfile.cab\n\n"));
        QVERIFY(text.contains(" Number      5 of 5"));
        QVERIFY(!text.contains("Category") && !text.contains("Rating") &&
                !text.contains("Menu music"));
        QCOMPARE(dialogs.prompts(), QStringList("5 titles have been exported to the clipboard."));
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Export to Clipboard Results"));
        QCOMPARE(QDir(temp).entryList(QDir::Files), QStringList());

        Select(kAllTitles + " limit 1");
        Export(&frmExport::ExportToClipboard, 1);
        QCOMPARE(dialogs.msgBoxes.last().prompt,
                 QString("1 title has been exported to the clipboard."));
        const QString single = QGuiApplication::clipboard()->text();
        QVERIFY(single.contains(" Number      1 of 1\n"));

        // No temporary file can be made: the clipboard keeps what it had.
        const QString notAFolder = folder_->file("plain");
        WriteFile(notAFolder, "x");
        qputenv("TMPDIR", notAFolder.toUtf8());
        Export(&frmExport::ExportToClipboard, 1);
        qunsetenv("TMPDIR");
        QCOMPARE(dialogs.msgBoxes.last().prompt, QString("Error 75: Path/File access error"));
        QCOMPARE(dialogs.msgBoxes.last().flags, int(vbExclamation));
        QCOMPARE(dialogs.msgBoxes.last().title, QString("Error exporting to clipboard"));
        QCOMPARE(QGuiApplication::clipboard()->text(), single);
    }

    void cdPlayerIniLooksFirstAndKeepsTheOldFile() {
        ScriptedDialogs dialogs;
        const QString ini = folder_->file("cdplayer.ini");
        WriteFile(ini,
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
        QCOMPARE(dialogs.prompts(),
                 QStringList({"The audio-cd named 'Homogénic' allready existed in the Windows "
                              "Default CD-player\rThis file wil not be replaced: overwrite option "
                              "not selected.",
                              "Tried to export 3 title(s) to Windows Default CD-player\r\nOf "
                              "those 1 were skipped because of duplicates."}));
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Duplicate found"));
        QCOMPARE(dialogs.msgBoxes[0].flags, int(vbInformation));
        QCOMPARE(dialogs.msgBoxes[1].flags, int(vbInformation));

        // Overwriting renews the keys in their places; track keys above the new count stay. A
        // file of plain ASCII is taken for the players' code page and stays in it.
        form_->OverwriteTitles = true;
        form_->ShowSummary = false;
        WriteFile(ini, "[1A2B3C]\r\n0=a\r\n1=b\r\n2=c\r\n3=d\r\nnumtracks=4\r\n");
        Export(&frmExport::ExportToCdPlayerIni);
        QVERIFY(ReadBytes(ini).startsWith(
            "[1A2B3C]\r\n0=J\xF3ga\r\n1=Bachelorette\r\n2=Hunter\r\n3=d\r\nnumtracks=3\r\n"
            "EntryType=1\r\nartist=Bj\xF6rk\r\ntitle=Homog\xE9nic\r\norder=0 1 "
            "2\r\nnumplay=3\r\n"));
    }

    void damagedOrUnwritableCdPlayerIniIsNeverCut() {
        ScriptedDialogs dialogs;
        form_->ShowSummary = false;
        const QString ini = folder_->file("cdplayer.ini");
        QByteArray damaged(100000, 'x');
        damaged += "\r\n";
        for (int i = 0; i < 256; ++i) damaged += char(i);
        WriteFile(ini, damaged);
        form_->IniPath = ini;
        Export(&frmExport::ExportToCdPlayerIni);
        const QByteArray after = ReadBytes(ini);
        // Only the line end of the stray line feed inside the binary part takes the file's form.
        QVERIFY(after.startsWith(damaged.left(100002 + 10)));
        QVERIFY(after.contains(damaged.mid(100002 + 11)));
        QVERIFY(after.contains("[1A2B3C]"));
        QVERIFY(dialogs.msgBoxes.isEmpty());

        // A full disc keeps the old file whole, and says so.
        WriteFile(ini, "[CDDB]\r\nkeep=me\r\n");
        {
            const FileSizeLimit limit(64);
            Export(&frmExport::ExportToCdPlayerIni);
        }
        QCOMPARE(ReadBytes(ini), QByteArray("[CDDB]\r\nkeep=me\r\n"));
        QCOMPARE(dialogs.prompts(), QStringList("Could not export to file " + ini + "!"));
    }

  private:
    const QString kAudioPair = kAllTitles.left(kAllTitles.indexOf(" order by")) +
                               " and title.idcd in (1, 2) order by platform.nmplatform";

    void Select(const QString& sql) {
        form_->ExportRecordset = gDatabase->OpenRecordset(sql, dbOpenDynaset, dbReadOnly);
    }

    void Export(void (frmExport::*writer)(long&), long count = 5) {
        form_->ExportRecordset->MoveFirst();
        (form_.get()->*writer)(count);
    }

    static void WriteFile(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }

    std::unique_ptr<TempProgramFolder> folder_;
    std::unique_ptr<frmExport> form_;
    QList<QUrl> opened_;
};

VELMORA_TEST_MAIN(WritersTest)
#include "writers_test.moc"
