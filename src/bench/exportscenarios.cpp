#include "bench/exportscenarios.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include "bench/benchboxes.h"
#include "bench/coverscenarios.h"
#include "bench/deluxescenarios.h"
#include "bench/syntheticcatalogue.h"
#include "export/frmExport.h"
#include "lookups/viewqueries.h"
#include "store/catalogue.h"
#include "toolkit/vb/GCommonDialog.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

namespace {

// Every title becomes an audio disc with an identity of the CD players, so that every writer
// reads its twelve tracks.
void OpenAudioCatalogue(const QTemporaryDir& dir, int titles) {
    BuildSyntheticCatalogue(dir.path(), titles);
    gDatabasePath = dir.filePath("data.gdb");
    gDatabasePassword = kDatabasePassword;
    OpenCatalogue();
    gDatabase->Execute("update title set idplatform = 1, TitleID = idcd + 268435456");
}

void CloseCatalogue() {
    gRecordset.reset();
    gDatabase->Close();
    gDatabase.reset();
}

// A cdplayer.ini of discs other than the catalogue's, as a player keeps it.
QByteArray OtherDiscs(int discs) {
    QByteArray text;
    for (int disc = 0; disc < discs; ++disc) {
        text += "[" + QByteArray::number(0x70000000 + disc, 16).toUpper() +
                "]\r\nEntryType=1\r\nartist=Other artist " + QByteArray::number(disc) +
                "\r\ntitle=Other album\r\nnumtracks=12\r\n";
        for (int track = 0; track < 12; ++track)
            text += QByteArray::number(track) + "=Song " + QByteArray::number(track) + "\r\n";
        text += "order=0 1 2 3 4 5 6 7 8 9 10 11\r\nnumplay=12\r\n\r\n";
    }
    return text;
}

// Runs writer over every title of the catalogue as the export window's driver does; the
// chooser answers with a file in dir, and every box is noted and ends the scenario.
std::vector<double> TimeWriter(
    int titles, int runs, void (frmExport::*writer)(long&),
    const std::function<void(frmExport&, const QTemporaryDir&)>& prepare = {}) {
    QTemporaryDir dir;
    OpenAudioCatalogue(dir, titles);
    BoxRecorder boxes(vbOK);
    SetFileChooser([&dir](const FileDialogCall&) {
        FileDialogAnswer answer;
        answer.filename = dir.filePath("export");
        return answer;
    });
    frmExport form;
    form.Form_Load();
    form.ShowSummary = false;
    form.OpenHtmlAfterExport = false;
    for (QCheckBox* field : form.Check3) field->setChecked(true);
    std::vector<double> times;
    for (int run = 0; run < runs && boxes.prompts.isEmpty(); ++run) {
        if (prepare) prepare(form, dir);
        QElapsedTimer timer;
        timer.start();
        GetViewSQL("all", true, form.ExportRecordset, 0, 0, QString());
        form.ExportRecordset->MoveLast();
        long count = form.ExportRecordset->RecordCount();
        form.ExportRecordset->MoveFirst();
        (form.*writer)(count);
        times.push_back(timer.nsecsElapsed() / 1e6);
        if (count != titles) throw VbError(0, QString("%1 titles exported").arg(count));
    }
    SetFileChooser({});
    form.ExportRecordset.reset();
    CloseCatalogue();
    if (!boxes.prompts.isEmpty()) throw VbError(0, "the export failed: " + boxes.prompts.join(" "));
    return times;
}

}  // namespace

std::vector<double> TimeHtmlExport(int titles, int runs) {
    return TimeWriter(titles, runs, &frmExport::ExportToHtml);
}

std::vector<double> TimeHtmlExportWithCovers(int titles, int runs) {
    return TimeWriter(titles, runs, &frmExport::ExportToHtml,
                      [](frmExport& form, const QTemporaryDir& dir) {
                          if (!form.chkCovers->isChecked()) {
                              // The covers go in once, before the first timed run.
                              CloseCatalogue();
                              AddCoversToCatalogue(dir.path());
                              gDatabasePath = dir.filePath("data.gdb");
                              OpenCatalogue();
                              form.chkCovers->setChecked(true);
                          }
                      });
}

std::vector<double> TimeTabExport(int titles, int runs) {
    return TimeWriter(titles, runs, &frmExport::ExportToTabFile);
}

std::vector<double> TimeClipboardExport(int titles, int runs) {
    return TimeWriter(titles, runs, &frmExport::ExportToClipboard);
}

std::vector<double> TimeCdPlayerIniExport(int titles, int runs) {
    const QByteArray others = OtherDiscs(titles);
    return TimeWriter(titles, runs, &frmExport::ExportToCdPlayerIni,
                      [&others](frmExport& form, const QTemporaryDir& dir) {
                          form.IniPath = dir.filePath("cdplayer.ini");
                          QFile ini(form.IniPath);
                          if (!ini.open(QIODevice::WriteOnly) || ini.write(others) != others.size())
                              throw VbError(0, "cannot write " + form.IniPath);
                      });
}

std::vector<double> TimeDeluxeExport(int titles, int runs) {
    return TimeWriter(titles, runs, &frmExport::ExportToDeluxe,
                      [](frmExport& form, const QTemporaryDir& dir) {
                          // The Deluxe file takes artists of audio discs only.
                          gDatabase->Execute("update vendor set idplatform = 1");
                          form.DeluxePath = MakeDeluxeFile(dir.path(), 300);
                      });
}
