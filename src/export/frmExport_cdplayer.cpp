// The audio titles into the default CD player's cdplayer.ini. The writer looks before it
// writes: a disc whose section already has a track count is left alone unless overwriting.
// The file is read once, changed in memory and written once; it replaces the old file only
// when it was read and then written completely.

#include <QCheckBox>

#include "export/exportsupport.h"
#include "export/frmExport.h"
#include "store/dao.h"
#include "toolkit/platform/mUtilityIni.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

// The disc's section: the identity as 32-bit hexadecimal, upper case, without leading zeros.
QString SectionOf(const QVariant& titleId) {
    return QString::number(static_cast<quint32>(titleId.toLongLong()), 16).toUpper();
}

// A line break would split the key's line in the file.
QString OnOneLine(QString value) {
    return value.replace('\r', ' ').replace('\n', ' ');
}

// Each statement's failure passes and the next one runs, so that a disc whose tracks cannot be
// read still gets its play order.
void WriteDisc(IniFile& ini, const QString& section, Recordset& titles) {
    QVariant numTracks;
    ResumeNext([&] { numTracks = titles["NumTracks"]; });
    ini.setValue(section, "EntryType", "1");
    ResumeNext([&] { ini.setValue(section, "artist", OnOneLine(NzText(titles["nmvendor"]))); });
    ResumeNext([&] { ini.setValue(section, "title", OnOneLine(NzText(titles["nmcd"]))); });
    ini.setValue(section, "numtracks", NzText(numTracks));
    ResumeNext([&] {
        for (const auto tracks = OpenTitleTracks(titles["idcd"]); !tracks->IsEOF();
             tracks->MoveNext())
            ini.setValue(section, NzText((*tracks)["TrackID"]),
                         OnOneLine(NzText((*tracks)["TrackName"])));
    });
    QStringList order;
    for (int track = 0; track < TrackCount(numTracks); ++track) order << QString::number(track);
    ini.setValue(section, "order", order.join(' '));
    ini.setValue(section, "numplay", NzText(numTracks));
}

}  // namespace

void frmExport::ExportToCdPlayerIni(long& Count) {
    Recordset& titles = *ExportRecordset;
    IniFile ini(IniPath);
    // A file that cannot be read would lose every other disc when written.
    if (!ini.readError().isEmpty()) {
        MsgBox("Could not export to file " + IniPath +
                   "!\r\n\r\nIt cannot be read: " + ini.readError(),
               vbExclamation);
        return;
    }
    for (long row = 0; row < Count && !titles.IsEOF(); ++row, titles.MoveNext()) {
        ReportProgress("Exporting title", row + 1, Count);
        if (!IsPlayerDisc(titles)) continue;
        const QString section = SectionOf(titles["TitleID"]);
        if (!OverwriteTitles && ini.value(section, "numtracks").value_or("no") != "no") {
            if (WarnTitles)
                MsgBox("The audio-cd named '" + NzText(titles["nmcd"]) +
                           "' allready existed in the " + Check1[3]->text() +
                           "\rThis file wil not be replaced: overwrite option not selected.",
                       vbInformation, "Duplicate found");
            ++IniExportDuplicates;
        } else {
            WriteDisc(ini, section, titles);
        }
        ++IniExportTried;
    }
    // Nothing of the old file is lost when the new one cannot be written completely.
    if (!ini.save()) MsgBox("Could not export to file " + IniPath + "!", vbExclamation);

    if (ShowSummary)
        MsgBox("Tried to export " + QString::number(IniExportTried) + " title(s) to " +
                   Check1[3]->text() + "\r\nOf those " + QString::number(IniExportDuplicates) +
                   " were skipped because of duplicates.",
               vbInformation);
}
