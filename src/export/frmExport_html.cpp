// The HTML page: the statistics of the selection at its top, then the titles grouped by
// platform with the chosen fields as table cells. The page's text is kept line for line as it
// always was, its missing closing tags included; values go in unescaped.

#include <QCheckBox>
#include <optional>

#include "export/exportsupport.h"
#include "export/frmExport.h"
#include "export/htmlcovers.h"
#include "loans/loanstore.h"
#include "store/catalogue.h"
#include "store/dao.h"
#include "toolkit/platform/mUtility.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const QString kHead =
    "<html><head><style TYPE=\"text/css\"><!--.subtitle {margin-top: -42px;margin-left: "
    "145px;margin-right: 10px;font-family: \"font2, Arial\";font-size: 30px;line-height: "
    "35px;text-align: left;color: #C0C040; }.title {margin-top: 15px;margin-left: "
    "15px;margin-right: 50px;font-family: \"font1, Arial Black\";font-size: 50px;line-height: "
    "40px;text-align: left;color: #000080; }.para3 {font-family: \"font1, Arial\";font-size: "
    "22px;font-style: italic;line-height: 25px;text-align: right;color: #000000; "
    "}--></style><title>Dorvik Software Velmora Generated Exportfile</title></head>";
const QString kBanner =
    "<body BGCOLOR=\"#FFFFC0\" topmargin=\"0\" leftmargin=\"0\" text=\"#777777\"><font "
    "face=\"Arial\"><div align=\"center\"><div class=\"title\" "
    "align=\"center\"><p>Velmora</p></div><div class=\"subtitle\" "
    "align=\"center\"><p>Exportfile</p></div><hr align=\"left\" width=\"95%\" noshade "
    "size=\"1\" color=\"#C0C040\"><div align=\"right\"><table border=\"0\" cellspacing=\"0\" "
    "cellpadding=\"0\" width=\"98%\"><tr><td><small><small><font color=\"#000000\">";
const QString kBannerEnd = "</font> title(s) in exportfile, ";
const QString kRating = "average rating: <font color=\"#000000\">";
const QString kRatingEnd = "</font></small></small>";
const QString kPlatforms =
    "<br><small><small>Number of different platforms: <font color=\"#000000\">";
const QString kPlatformsEnd =
    "</font></small></small><BR><BR></td></tr></table></div><hr align=\"left\" width=\"95%\" "
    "noshade size=\"1\" color=\"#C0C040\">";
const QString kPlatformOpen =
    "<div align=\"left\"><table border=\"0\" cellspacing=\"0\" cellpadding=\"0\" "
    "width=\"95%\"><tr><td><div class=\"para3\"><p>";
const QString kPlatformOpenEnd =
    "</p></div></td></tr></table><blockquote><p><font color=\"#000080\" "
    "face=\"Arial\"><big>CD title(s):</big></font><ul><table width=\"70%\">";
const QString kCellOpen = "<td align=\"left\" valign=\"top\"><small>";
const QString kCellClose = "</small></td>";
const QString kPlatformClose =
    "</table></ul></blockquote><hr align=\"left\" width=\"95%\" noshade size=\"1\" "
    "color=\"#C0C040\">";

constexpr int kListingPlatform = 3;

// The cells of index 9: the tracks of an audio title, the listing of a PC title.
void WriteTracksOrListing(ExportTextFile& page, Recordset& titles) {
    const int platform = titles["platform.idplatform"].toInt();
    if (platform == kAudioPlatform) {
        const QVariant numTracks = titles["NumTracks"];
        if (TrackCount(numTracks) <= 0) {
            page.WriteLine(kCellOpen + "0 tracks" + kCellClose);
            page.WriteLine(kCellOpen + kCellClose);
            return;
        }
        const auto tracks = OpenTitleTracks(titles["idcd"]);
        page.WriteLine(kCellOpen + numTracks.toString() + " tracks" + kCellClose);
        if (tracks->IsEOF()) {
            page.WriteLine(kCellOpen + kCellClose);
            page.WriteLine(kCellClose);
            return;
        }
        page.WriteLine(kCellOpen);
        for (; !tracks->IsEOF(); tracks->MoveNext())
            page.WriteLine(NzText((*tracks)["TrackName"]) + "<BR>");
        page.WriteLine(kCellClose);
    } else if (platform == kListingPlatform) {
        const QVariant listing = titles["listing"];
        if (!IsEmptyTextMark(listing))
            page.WriteLine(kCellOpen + NzText(listing).replace("\r\n", "<BR>") + kCellClose);
    }
}

void WriteCells(ExportTextFile& page, Recordset& titles, int index) {
    auto oneLine = [&](const QString& value) { page.WriteLine(kCellOpen + value + kCellClose); };
    auto threeLines = [&](const QString& value) {
        page.WriteLine(kCellOpen);
        page.WriteLine(value);
        page.WriteLine(kCellClose);
    };
    switch (index) {
        case 1:
            threeLines(NzText(titles["nmcd"]));
            break;
        case 2:
            threeLines(NzText(titles["nmvendor"]));
            break;
        case 3:
            oneLine(NzText(titles["nmtype"]));
            break;
        case 4:
            oneLine(NzText(titles["nmspecific"]));
            break;
        case 5:
            oneLine(NzText(titles["rating"]) + "/100");
            break;
        case 6:
            oneLine(NzText(titles["label"]));
            break;
        case 7:
            oneLine(NzText(titles["memo"]));
            break;
        case 8:
            oneLine(NzText(titles["nrcds"]));
            break;
        case 9:
            WriteTracksOrListing(page, titles);
            break;
    }
}

}  // namespace

void frmExport::ExportToHtml(long& Count) {
    const QString name = AskSaveFileName("Enter a name for the HTML-file", "html",
                                         "Internetfiles (*.html,*.htm)|*.html;*.htm");
    if (name.isEmpty()) return;
    ExportFileName = name;
    Recordset& titles = *ExportRecordset;
    try {
        ExportTextFile page(name, true);
        page.WriteLine(kHead);
        page.WriteLine(kBanner + QString::number(Count) + kBannerEnd);

        qint32 ratingTotal = 0;
        qint16 platformCount = 0;
        QString lastPlatform;
        for (; !titles.IsEOF(); titles.MoveNext()) {
            const QVariant rating = titles["rating"];
            if (rating.isNull()) throw VbError(94);
            ratingTotal += rating.toInt();
            const QString platform = NzText(titles["nmplatform"]);
            if (platform != lastPlatform) {
                ++platformCount;
                lastPlatform = platform;
            }
        }
        titles.Requery();
        lastPlatform.clear();

        if (Check3[5]->isChecked())
            page.WriteLine(kRating +
                           QString::number(RoundToEven(double(ratingTotal) / double(Count))) +
                           kRatingEnd);
        page.WriteLine(kPlatforms + QString::number(platformCount) + kPlatformsEnd);
        std::optional<HtmlCoverFolder> covers;
        if (chkCovers->isChecked()) covers.emplace(name);

        const QHash<long, QString> lentTo =
            chkLentTo->isChecked() ? loans::LentToLines(*gDatabase) : QHash<long, QString>();
        int cells = 0;
        for (int index = 1; index < int(Check3.size()); ++index)
            cells += Check3[index]->isChecked();

        for (; !titles.IsEOF(); titles.MoveNext()) {
            ReportProgress("Exporting title", titles.AbsolutePosition() + 1, Count);
            const QString platform = NzText(titles["nmplatform"]);
            if (platform != lastPlatform) {
                if (!lastPlatform.isEmpty()) page.WriteLine(kPlatformClose);
                page.WriteLine(kPlatformOpen + platform + kPlatformOpenEnd);
                lastPlatform = platform;
            }
            page.WriteLine("<tr>");
            if (covers) page.WriteLine(covers->Cell(titles["idcd"].toLongLong()));
            for (int index = 1; index < int(Check3.size()); ++index)
                if (Check3[index]->isChecked()) WriteCells(page, titles, index);
            page.WriteLine("</tr>");
            const QString lent = lentTo.value(static_cast<long>(titles["idcd"].toLongLong()));
            if (!lent.isEmpty())
                page.WriteLine("<tr><td colspan=\"" + QString::number(qMax(cells, 1)) +
                               "\"><small><i>" + lent.toHtmlEscaped() + "</i></small></td></tr>");
        }
        page.WriteLine(kPlatformClose);
        page.Close();
    } catch (const VbError&) {
        MsgBox("Could not export to file " + name + "!", vbExclamation);
        return;
    }
    if (ShowSummary) ShowFileSummary("Export to File Results", Count);
    if (OpenHtmlAfterExport) StartDocument(name);
}

void frmExport::ShowFileSummary(const QString& caption, long count) {
    const QString text = count == 1
                             ? "1 title has been exported to file '"
                             : QString::number(count) + " titles have been exported to file '";
    MsgBox(text + ExportFileName + "'.", vbInformation, caption);
}
