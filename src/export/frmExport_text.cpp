// The TAB-delimited file that the import reads again, and the boxed report on the clipboard.

#include <QCheckBox>
#include <QClipboard>
#include <QDateTime>
#include <QFile>
#include <QGuiApplication>

#include "export/exportsupport.h"
#include "export/frmExport.h"
#include "store/dao.h"
#include "toolkit/platform/mUtility.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const QString kNewLineToken = "<NEWLINE>";
constexpr int kListingPlatform = 3;

// Line ends inside a value become the token, whichever form they have: a line end left in
// would end the record.
QString WithNewLineTokens(QString text) {
    return text.replace("\r\n", kNewLineToken)
        .replace('\n', kNewLineToken)
        .replace('\r', kNewLineToken);
}

QString TrackNamesColumn(Recordset& titles) {
    if (TrackCount(titles["NumTracks"]) <= 0) return QString();
    const auto tracks = OpenTitleTracks(titles["idcd"]);
    QStringList names;
    for (; !tracks->IsEOF(); tracks->MoveNext()) names << NzText((*tracks)["TrackName"]);
    return names.join(kNewLineToken);
}

QString TabLine(Recordset& titles) {
    QString listing, memo, trackNames;
    if (titles["platform.idplatform"].toInt() == kAudioPlatform) {
        trackNames = TrackNamesColumn(titles);
    } else if (const QVariant value = titles["listing"]; !IsEmptyTextMark(value)) {
        listing = WithNewLineTokens(NzText(value));
    }
    if (const QVariant value = titles["memo"]; !IsEmptyTextMark(value))
        memo = WithNewLineTokens(NzText(value));
    const QStringList columns = {NzText(titles["nmplatform"]),
                                 NzText(titles["nmtype"]),
                                 NzText(titles["nmspecific"]),
                                 NzText(titles["nmvendor"]),
                                 NzText(titles["nmcd"]),
                                 NzText(titles["nmmediatype"]),
                                 NzText(titles["label"]),
                                 NzText(titles["rating"]),
                                 listing,
                                 NzText(titles["TitleID"]),
                                 NzText(titles["NumTracks"]),
                                 memo,
                                 trackNames,
                                 NzText(titles["nrcds"])};
    return columns.join('\t');
}

const QString kBoxLine = "+" + QString(30, '=') + "+";

// The labels of the report's lines, thirteen characters with one leading blank.
const std::array<std::pair<QString, QString>, 9> kReportLines = {{
    {" Category    ", "nmplatform"},
    {" Title       ", "nmcd"},
    {" By          ", "nmvendor"},
    {" Type        ", "nmtype"},
    {" Specific    ", "nmspecific"},
    {" Rating      ", "rating"},
    {" Label       ", "label"},
    {" Memo        ", "memo"},
    {" Nr cd's     ", "nrcds"},
}};

void WriteReportTracksOrListing(ExportTextFile& report, Recordset& titles) {
    const int platform = titles["platform.idplatform"].toInt();
    if (platform == kAudioPlatform) {
        const QVariant numTracks = titles["NumTracks"];
        if (TrackCount(numTracks) <= 0) return;
        const auto tracks = OpenTitleTracks(titles["idcd"]);
        report.WriteLine();
        report.WriteLine(" " + numTracks.toString() + " tracks");
        report.WriteLine();
        for (; !tracks->IsEOF(); tracks->MoveNext())
            report.WriteLine(" " + NzText((*tracks)["TrackName"]));
        report.WriteLine();
    } else if (platform == kListingPlatform) {
        const QVariant listing = titles["listing"];
        if (IsEmptyTextMark(listing)) return;
        report.WriteLine();
        report.WriteLine(NzText(listing));
        report.WriteLine();
    }
}

}  // namespace

void frmExport::ExportToTabFile(long& Count) {
    Recordset& titles = *ExportRecordset;
    titles.MoveLast();
    titles.MoveFirst();
    const QString name = AskSaveFileName("Export cd-titles to a TAB-delimited file", "txt",
                                         "Textfiles (*.txt)|*.txt|All Files (*.*)|*.*");
    if (name.isEmpty()) return;
    ExportFileName = name;
    try {
        ExportTextFile file(name, false);
        for (; !titles.IsEOF(); titles.MoveNext()) {
            ReportProgress("Exporting title", titles.AbsolutePosition() + 1, Count);
            file.WriteLine(TabLine(titles));
        }
        file.Close();
    } catch (const VbError&) {
        MsgBox("Could not export to file " + name + "!", vbExclamation);
        return;
    }
    if (ShowSummary) ShowFileSummary("Export to TAB-delimited File Results", Count);
}

void frmExport::ExportToClipboard(long& Count) {
    Recordset& titles = *ExportRecordset;
    const QString tempName = GetTempName();
    try {
        if (tempName.isEmpty()) throw VbError(75);
        QFile::remove(tempName);
        {
            ExportTextFile report(tempName, false);
            report.WriteLine("Output from Velmora's CD-organiser Engine (" + kMakerWebAddress +
                             ")");
            const QDateTime now = QDateTime::currentDateTime();
            report.WriteLine("Printdate and time: " + LongDate(now.date()) + " @ " +
                             now.time().toString("HH:mm"));
            report.WriteLine();
            report.WriteLine();
            for (; !titles.IsEOF(); titles.MoveNext()) {
                ReportProgress("Exporting title", titles.AbsolutePosition() + 1, Count);
                report.WriteLine(kBoxLine);
                report.WriteLine(" Number      " + QString::number(titles.AbsolutePosition() + 1) +
                                 " of " + QString::number(Count));
                report.WriteLine(kBoxLine);
                for (size_t index = 0; index < kReportLines.size(); ++index) {
                    if (!Check3[index]->isChecked()) continue;
                    const auto& [label, field] = kReportLines[index];
                    const QVariant value = titles[field];
                    report.WriteLine(
                        field == "memo" && IsEmptyTextMark(value) ? label : label + NzText(value));
                }
                if (Check3[9]->isChecked()) WriteReportTracksOrListing(report, titles);
                report.WriteLine();
            }
            report.Close();
        }
        QFile written(tempName);
        if (!written.open(QIODevice::ReadOnly)) throw VbError(75);
        // The desktop's clipboard takes text with the line ends of the system.
        const QString text = QString::fromUtf8(written.readAll()).replace("\r\n", "\n");
        written.close();
        QClipboard* clipboard = QGuiApplication::clipboard();
        clipboard->clear();
        clipboard->setText(text);
        if (ShowSummary)
            MsgBox(Count == 1
                       ? QString("1 title has been exported to the clipboard.")
                       : QString::number(Count) + " titles have been exported to the clipboard.",
                   vbInformation, "Export to Clipboard Results");
    } catch (const VbError& error) {
        MsgBox("Error " + QString::number(error.Number) + ": " + error.Description, vbExclamation,
               "Error exporting to clipboard");
    }
    if (!tempName.isEmpty() && QFile::exists(tempName)) QFile::remove(tempName);
}
