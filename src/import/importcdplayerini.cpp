// Titles from the default CD player's cdplayer.ini: one section a disc, named by the disc's
// TitleID in hexadecimal.

#include <array>
#include <cmath>

#include "import/frmImport.h"
#include "import/importvalues.h"
#include "store/catalogue.h"
#include "toolkit/platform/mUtility.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbconvert.h"
#include "toolkit/vb/vberror.h"

namespace {

constexpr int kMaxSections = 1000;

// What the ini tells of one disc, read as the importer needs it.
struct IniDisc {
    QString file;
    QString section;
    QString Value(const QString& key, const QString& defaultValue = QString()) const {
        return ReadIniString(file, section, key, defaultValue);
    }
};

// The fields a disc gives its title, on adding and on overwriting alike.
void SetTitleFields(Recordset& title, const IniDisc& disc, long idvendor, long idtype,
                    long idspecific) {
    title.Fields("nmcd").SetValue(disc.Value("title"));
    title.Fields("nrcds").SetValue(1);
    title.Fields("idvendor").SetValue(QVariant::fromValue<qint64>(idvendor));
    title.Fields("idplatform").SetValue(1);
    title.Fields("idtype").SetValue(QVariant::fromValue<qint64>(idtype));
    title.Fields("idspecific").SetValue(QVariant::fromValue<qint64>(idspecific));
    title.Fields("idmediatype").SetValue(1);
    title.Fields("TitleID").SetValue(HexLiteral(disc.section));
    title.Fields("NumTracks").SetValue(CLngText(disc.Value("numtracks")));
    title.Fields("modified").SetValue(TodayText());
}

void AddTracks(const IniDisc& disc, long idcd) {
    const int count = static_cast<int>(std::floor(Val(disc.Value("numtracks", "1"))));
    auto tracks =
        gDatabase->OpenRecordset("select * from Tracks where idcd = " + QString::number(idcd));
    for (int i = 0; i < count; ++i) {
        tracks->AddNew();
        tracks->Fields("idcd").SetValue(QVariant::fromValue<qint64>(idcd));
        tracks->Fields("TrackID").SetValue(i);
        tracks->Fields("TrackName")
            .SetValue(disc.Value(QString::number(i), "Track " + QString::number(i + 1)));
        tracks->Update();
    }
}

// Adds one disc, or renews it when overwriting; true when it went in. An error of the renewal
// has no further trap and is thrown, as is one that every later disc would meet too.
bool ImportDisc(frmImport& window, const IniDisc& disc, long& idvendor, long idtype,
                long idspecific) {
    try {
        idvendor = AudioVendorId(disc.Value("artist"));
        auto title = gDatabase->OpenRecordset("title");
        title->AddNew();
        SetTitleFields(*title, disc, idvendor, idtype, idspecific);
        title->Fields("created").SetValue(TodayText());
        const long idcd = (*title)["idcd"].toLongLong();
        title->Update();
        AddTracks(disc, idcd);
        return true;
    } catch (const VbError& error) {
        if (CatalogueCannotBeWritten(error)) throw;
        if (!window.OverwriteTitles) {
            if (window.WarnTitles)
                MsgBox("The cd with title '" + disc.Value("title") +
                           "' cannot be added and will be skipped." + "\r\r" +
                           "Most likely reason is that it allready existed in Velmora's "
                           "Database.",
                       vbExclamation, "Importing from " + window.Check1[0]->text());
            return false;
        }
    }
    // Overwriting renews the title that has this TitleID, keeping its created date.
    const qint32 titleId = HexLiteral(disc.section);
    auto title =
        gDatabase->OpenRecordset("select * from title where TitleID = " + QString::number(titleId));
    const long idcd = (*title)["idcd"].toLongLong();
    title->Edit();
    SetTitleFields(*title, disc, idvendor, idtype, idspecific);
    title->Update();
    gDatabase->Execute("Delete from Tracks where idcd = " + QString::number(idcd));
    AddTracks(disc, idcd);
    return true;
}

}  // namespace

void frmImport::ImportCdPlayerIni() {
    QStringList lines;
    QString problem;
    if (!ReadTextLines(IniPath, lines, &problem)) {
        // The design's number and text, and the system's reason, which may not be a missing file.
        ShowImportStopped(Check1[0]->text(), IniPath, 53, "File not found (" + problem + ")");
        return;
    }
    // First pass: the raw lines give the sections, in file order.
    std::array<QString, kMaxSections> sections;
    int count = 0;
    for (const QString& line : lines) {
        if (!line.startsWith('[') || line == "[CDDB]") continue;
        if (count == kMaxSections) {
            ShowImportStopped(Check1[0]->text(), IniPath, 9,
                              "Subscript out of range: the file holds more than " +
                                  QString::number(kMaxSections) + " discs.");
            return;
        }
        sections[count++] = line.mid(1, line.size() - 2);
    }

    const long idtype = DefaultId(cmbDefType);
    const long idspecific = DefaultId(cmbDefSpecific);
    const QString progress = "Importing title";
    ImportBatches batches(Check1[0]->text(), IniPath);
    // Kept from disc to disc: a disc whose vendor cannot be found or made (an artist with an
    // apostrophe) is renewed with the previous disc's vendor when overwriting.
    long idvendor = 0;
    int reached = 0;
    for (int s = 0; s < count; ++s) {
        ReportProgress(progress, s + 1, count);
        ++reached;
        bool kept = false;
        try {
            kept = ImportDisc(*this, IniDisc{IniPath, sections[s]}, idvendor, idtype, idspecific);
        } catch (const VbError& error) {
            batches.Stop(error, false);
            break;
        }
        if (!batches.TitleDone(kept)) break;
    }
    EndProgress(progress);
    batches.Finish();
    // The summary counts the discs reached, and as gone wrong every one of them that did not
    // stay: refused, stopped on, or lost with a batch.
    IniTried += reached;
    IniDuplicates += reached - batches.Stayed();
}
