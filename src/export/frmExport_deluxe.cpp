// The audio titles into the Deluxe CD player's database. Like the cdplayer.ini writer it looks
// before it writes, by TitleID, and it goes further: each track is compared on its own. The file
// is another program's Jet database; its rows are written by the program's own Jet writer, a title
// with its tracks complete on disk before the next title starts.

#include <QCheckBox>

#include "export/exportsupport.h"
#include "export/frmExport.h"
#include "store/catalogue.h"
#include "store/dao.h"
#include "store/jetfilewriter.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

void SetTitleFields(Recordset& deluxeTitle, Recordset& titles, Recordset& vendor) {
    deluxeTitle.Fields("TitleID").SetValue(titles["TitleID"]);
    deluxeTitle.Fields("Artist").SetValue(vendor["nmvendor"]);
    deluxeTitle.Fields("Title").SetValue(titles["nmcd"]);
    deluxeTitle.Fields("NumTracks").SetValue(titles["NumTracks"]);
}

void ExportDeluxeTracks(Database& deluxe, Recordset& deluxeTracks, const QVariant& idcd,
                        const QVariant& titleId, bool overwrite, bool& tracksExisted) {
    const QString titleKey = titleId.toString();
    for (const auto tracks = OpenTitleTracks(idcd); !tracks->IsEOF(); tracks->MoveNext()) {
        const auto deluxeTrack =
            deluxe.OpenRecordset("select * from Tracks where TitleID = " + titleKey +
                                 " and TrackID= " + (*tracks)["TrackID"].toString());
        if (deluxeTrack->IsEOF()) {
            deluxeTracks.AddNew();
            deluxeTracks.Fields("TitleID").SetValue(titleId);
            deluxeTracks.Fields("TrackID").SetValue((*tracks)["TrackID"]);
            deluxeTracks.Fields("TrackName").SetValue((*tracks)["TrackName"]);
            deluxeTracks.Update();
        } else if (overwrite) {
            deluxeTrack->Edit();
            deluxeTrack->Fields("TrackName").SetValue((*tracks)["TrackName"]);
            deluxeTrack->Update();
        } else {
            tracksExisted = true;
        }
    }
}

}  // namespace

void frmExport::ExportToDeluxe(long& Count) {
    const ScopedJetFileWriter fileWriter;
    std::unique_ptr<Database> deluxe;
    std::unique_ptr<Recordset> deluxeTracks;
    try {
        deluxe = DBEngine::OpenDatabase(DeluxePath);
        deluxeTracks = deluxe->OpenRecordset("Tracks");
    } catch (const VbError&) {
        MsgBox(QString("There was a problem loading de database of the Deluxe CD-Player.") +
                   "\r\r" + "New titles cannot be added, please verify that the " +
                   "Deluxe-database is not missing or corrupted.",
               vbExclamation);
        return;
    }

    DeluxeExportDuplicates = 0;
    bool TracksExisted = false;
    Recordset& titles = *ExportRecordset;
    try {
        for (; !titles.IsEOF(); titles.MoveNext()) {
            ReportProgress("Exporting title", titles.AbsolutePosition() + 1, Count);
            if (!IsPlayerDisc(titles)) continue;
            const QVariant titleId = titles["TitleID"];
            ++DeluxeExportTried;
            const auto vendor = gDatabase->OpenRecordset(
                "select * from vendor where idplatform = 1 and idvendor = " +
                titles["title.idvendor"].toString());
            const QString titleKey = titleId.toString();
            const auto deluxeTitle =
                deluxe->OpenRecordset("select * from Titles where TitleID = " + titleKey);
            if (!deluxeTitle->IsEOF() && !OverwriteTitles) {
                if (WarnTitles)
                    MsgBox("The cd with title '" + NzText(titles["nmcd"]) +
                               "' cannot be copied and will be skipped.\r\rMost likely reason is "
                               "that it allready exists in the Deluxe database.",
                           vbExclamation, "Exporting to " + Check1[4]->text());
                ++DeluxeExportDuplicates;
                continue;
            }
            // A title and its tracks reach the file together: whatever stops the export leaves
            // the title with all its tracks or not at all, never with a count its rows lack.
            RunAsTransaction(*deluxe, [&] {
                if (deluxeTitle->IsEOF())
                    deluxeTitle->AddNew();
                else
                    deluxeTitle->Edit();
                SetTitleFields(*deluxeTitle, titles, *vendor);
                deluxeTitle->Update();
                ExportDeluxeTracks(*deluxe, *deluxeTracks, titles["idcd"], titleId, OverwriteTitles,
                                   TracksExisted);
            });
        }
    } catch (const VbError&) {
        MsgBox("An error occured during the process.", vbExclamation, "Unable to continue");
        return;
    }

    if (TracksExisted)
        MsgBox(
            "Some tracknames could not be added because they allready existed in the Deluxe "
            "Database.\r\nIf you wish to replace the tracknames in de Deluxe Database, you "
            "might want to select the option to overwrite duplicates.",
            vbInformation, "Some tracks allready existed in the Deluxe Database");
    if (ShowSummary)
        MsgBox("Tried to export " + QString::number(DeluxeExportTried) +
                   " title(s) to the Deluxe Database.\r\nOf those " +
                   QString::number(DeluxeExportDuplicates) + " went wrong because of duplicates.",
               vbInformation, "Export to Deluxe CD-Player Results");
}
