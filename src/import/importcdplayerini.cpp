// Titles from the default CD player's cdplayer.ini: one section a disc, named by the disc's
// TitleID in hexadecimal.

#include <array>
#include <cmath>

#include "import/frmImport.h"
#include "import/importvalues.h"
#include "store/catalogue.h"
#include "toolkit/mUtility.h"
#include "toolkit/msgbox.h"
#include "toolkit/vbconvert.h"
#include "toolkit/vberror.h"

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

}  // namespace

void frmImport::ImportCdPlayerIni() {
    QStringList lines;
    if (!ReadTextLines(IniPath, lines)) {
        ShowImportStopped(Check1[0]->text(), IniPath, 53, "File not found");
        return;
    }
    // First pass: the raw lines give the sections, in file order.
    std::array<QString, kMaxSections> sections;
    int count = 0;
    for (const QString& line : lines) {
        if (!line.startsWith('[') || line == "[CDDB]") continue;
        ++IniTried;
        if (count == kMaxSections) {
            IniTried = 0;
            ShowImportStopped(Check1[0]->text(), IniPath, 9,
                              "Subscript out of range: the file holds more than " +
                                  QString::number(kMaxSections) + " discs.");
            return;
        }
        sections[count++] = line.mid(1, line.size() - 2);
    }

    const ImportTransaction transaction;
    const long idtype = DefaultId(cmbDefType);
    const long idspecific = DefaultId(cmbDefSpecific);
    for (int s = 0; s < count; ++s) {
        const IniDisc disc{IniPath, sections[s]};
        long idvendor = 0;
        try {
            idvendor = AudioVendorId(disc.Value("artist"));
            auto title = gDatabase->OpenRecordset("title");
            title->AddNew();
            SetTitleFields(*title, disc, idvendor, idtype, idspecific);
            title->Fields("created").SetValue(TodayText());
            const long idcd = (*title)["idcd"].toLongLong();
            title->Update();
            AddTracks(disc, idcd);
        } catch (const VbError&) {
            if (!OverwriteTitles) {
                if (WarnTitles)
                    MsgBox("The cd with title '" + disc.Value("title") +
                               "' cannot be added and will be skipped." + "\r\r" +
                               "Most likely reason is that it allready existed in Velmora's "
                               "Database.",
                           vbExclamation, "Importing from " + Check1[0]->text());
                ++IniDuplicates;
                continue;
            }
            // Overwriting renews the title that has this TitleID, keeping its created date.
            // An error here has no further trap: the import stops with it.
            try {
                const qint32 titleId = HexLiteral(disc.section);
                auto title = gDatabase->OpenRecordset("select * from title where TitleID = " +
                                                      QString::number(titleId));
                const long idcd = (*title)["idcd"].toLongLong();
                title->Edit();
                SetTitleFields(*title, disc, idvendor, idtype, idspecific);
                title->Update();
                gDatabase->Execute("Delete from Tracks where idcd = " + QString::number(idcd));
                AddTracks(disc, idcd);
            } catch (const VbError& error) {
                ShowImportStopped(Check1[0]->text(), IniPath, error.Number, error.Description);
                return;
            }
        }
    }
}
