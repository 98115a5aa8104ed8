// Titles from the Deluxe CD player's Jet database: the join of its Titles and Tracks, one row a
// track, ordered by artist and disc.

#include <algorithm>

#include "import/frmImport.h"
#include "import/importvalues.h"
#include "store/catalogue.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

// No artist and no disc seen yet; neither value occurs in any database.
const QString kNoArtistYet = "qolvnspaht52x";
constexpr qint64 kNoTitleYet = -4543243;

void AddTrack(Recordset& tracks, long idcd, Recordset& rs) {
    tracks.AddNew();
    tracks.Fields("idcd").SetValue(QVariant::fromValue<qint64>(idcd));
    tracks.Fields("TrackID").SetValue(rs["TrackID"]);
    tracks.Fields("TrackName").SetValue(rs["TrackName"]);
    tracks.Update();
}

}  // namespace

void frmImport::ImportDeluxeDatabase() {
    std::unique_ptr<Database> deluxe;
    std::unique_ptr<Recordset> rs;
    long discCount = 0;
    try {
        deluxe = DBEngine::OpenDatabase(DeluxePath);
        rs = deluxe->OpenRecordset(
            "select * from Titles, Tracks where Titles.TitleID = Tracks.TitleID order by Artist, "
            "Titles.TitleID, TrackID");
        const auto discs = deluxe->OpenRecordset(
            "select distinct Titles.TitleID from Titles, Tracks where Titles.TitleID = "
            "Tracks.TitleID");
        if (!discs->IsEOF()) discs->MoveLast();
        discCount = discs->RecordCount();
    } catch (const VbError&) {
        MsgBox(QString("There was a problem loading de database of the Deluxe CD-Player.") +
                   "\r\r" + "New titles cannot be added, please verify that the " +
                   "Deluxe-database is not missing or corrupted.",
               vbExclamation);
        return;
    }

    try {
        // Catalogues made before the template had it get the index the loop reads through.
        gDatabase->Execute(
            "CREATE INDEX IF NOT EXISTS title_newest_by_platform ON title (idplatform, idcd)");
    } catch (const VbError& error) {
        ShowImportStopped(Check1[1]->text(), DeluxePath, error.Number, error.Description);
        return;
    }
    const QString progress = "Importing title";
    ImportBatches batches(Check1[1]->text(), DeluxePath);
    const long idtype = DefaultId(cmbDefType);
    const long idspecific = DefaultId(cmbDefSpecific);
    // The disc whose rows are being read, and whether it went in; a batch ends between discs
    // only.
    qint64 disc = kNoTitleYet;
    bool discKept = false;
    int reached = 0;
    try {
        auto tracks = gDatabase->OpenRecordset("Tracks");
        auto titles = gDatabase->OpenRecordset("title");
        QString previousArtist = kNoArtistYet;
        qint64 previousTitle = kNoTitleYet;
        long idvendor = 0;
        long idcd = 0;
        long discsSeen = 0;
        while (!rs->IsEOF()) {
            if (const qint64 rowDisc = (*rs)["Titles.TitleID"].toLongLong(); rowDisc != disc) {
                if (disc != kNoTitleYet && !batches.TitleDone(discKept)) break;
                disc = rowDisc;
                discKept = false;
                ++reached;
                ReportProgress(progress, ++discsSeen, discCount);
            }
            try {
                const QString artist = NzText((*rs)["Artist"]);
                if (artist != previousArtist) {
                    idvendor = AudioVendorId(artist);
                    previousArtist = artist;
                }
                const qint64 titleId = (*rs)["Titles.TitleID"].toLongLong();
                if (titleId != previousTitle) {
                    previousTitle = titleId;
                    titles->AddNew();
                    titles->Fields("nmcd").SetValue((*rs)["Title"]);
                    titles->Fields("nrcds").SetValue(1);
                    titles->Fields("idvendor").SetValue(QVariant::fromValue<qint64>(idvendor));
                    titles->Fields("idplatform").SetValue(1);
                    titles->Fields("idtype").SetValue(QVariant::fromValue<qint64>(idtype));
                    titles->Fields("idspecific").SetValue(QVariant::fromValue<qint64>(idspecific));
                    titles->Fields("idmediatype").SetValue(1);
                    titles->Fields("TitleID").SetValue(titleId);
                    titles->Fields("NumTracks").SetValue((*rs)["NumTracks"]);
                    titles->Fields("created").SetValue(TodayText());
                    titles->Fields("modified").SetValue(TodayText());
                    titles->Update();
                    // Read through the index of that order, one row only.
                    auto newest = gDatabase->OpenRecordset(
                        "select * from title where idplatform = 1 order by idcd desc",
                        dbOpenForwardOnly);
                    idcd = (*newest)["idcd"].toLongLong();
                    discKept = true;
                }
                AddTrack(*tracks, idcd, *rs);
            } catch (const VbError& error) {
                if (CatalogueCannotBeWritten(error)) throw;
                if (!OverwriteTitles) {
                    if (WarnTitles)
                        MsgBox("The cd with title '" + NzText((*rs)["Title"]) +
                                   "' cannot be added and will be skipped." + "\r\r" +
                                   "Most likely reason is that it allready existed in "
                                   "Velmora's Database.",
                               vbExclamation, "Importing from " + Check1[1]->text());
                    // Onto the disc's last track row, as its NumTracks tells. A count below 1
                    // would step back onto the same row for ever; it stays on the row.
                    const long position = rs->AbsolutePosition();
                    rs->SetAbsolutePosition(
                        std::max<long>(position, position + (*rs)["NumTracks"].toLongLong() - 1));
                    rs->MoveNext();
                    continue;
                }
                auto existing = gDatabase->OpenRecordset("Select * from title where TitleID = " +
                                                         NzText((*rs)["Titles.TitleID"]));
                existing->Edit();
                existing->Fields("nmcd").SetValue((*rs)["Title"]);
                existing->Fields("nrcds").SetValue(1);
                existing->Fields("idvendor").SetValue(QVariant::fromValue<qint64>(idvendor));
                existing->Fields("idplatform").SetValue(1);
                existing->Fields("idtype").SetValue(QVariant::fromValue<qint64>(idtype));
                existing->Fields("idspecific").SetValue(QVariant::fromValue<qint64>(idspecific));
                existing->Fields("idmediatype").SetValue(1);
                existing->Fields("NumTracks").SetValue((*rs)["NumTracks"]);
                existing->Fields("modified").SetValue(TodayText());
                existing->Update();
                idcd = (*existing)["idcd"].toLongLong();
                discKept = true;
                gDatabase->Execute("Delete from Tracks where idcd = " + QString::number(idcd));
                // Serves for adding only, for the rest of the run.
                tracks = gDatabase->OpenRecordset("select * from Tracks where idcd = 1");
                AddTrack(*tracks, idcd, *rs);
            }
            rs->MoveNext();
        }
        if (rs->IsEOF() && disc != kNoTitleYet) batches.TitleDone(discKept);
    } catch (const VbError& error) {
        // An error of the overwrite itself, or of a track row, has no further trap.
        batches.Stop(error, discKept);
    }
    EndProgress(progress);
    batches.Finish();
    // The summary counts the discs reached, and as gone wrong every one of them that did not
    // stay: refused, stopped on, or lost with a batch.
    DeluxeTried += reached;
    DeluxeDuplicates += reached - batches.Stayed();
}
