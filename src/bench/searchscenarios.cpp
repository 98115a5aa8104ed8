#include "bench/searchscenarios.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLineEdit>

#include "bench/benchboxes.h"
#include "bench/benchprogram.h"
#include "search/frmFind.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "store/catalogue.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

namespace {

using bench::ElapsedMilliseconds;
using bench::EndProgram;
using bench::StartProgram;

// Fills one box of the search window and presses its OK over the whole catalogue, as often as
// asked; every run must list something.
std::vector<double> TimeSearch(const QString& folder, int box, const QString& criterion, int runs) {
    StartProgram(folder);
    ShowFindWindow(gMainForm);
    gFindForm->Option1[2]->setChecked(true);
    gFindForm->Text1[box]->setText(criterion);
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        gFindForm->cmdSearch_Click();
        QCoreApplication::processEvents();
        times.push_back(ElapsedMilliseconds(timer));
        if (gMainForm->ListItemCount() == 0)
            throw VbError(0, "the search for " + criterion + " listed nothing");
    }
    EndProgram();
    return times;
}

}  // namespace

std::vector<double> TimeTitleSearch(const QString& folder, int runs) {
    return TimeSearch(folder, 0, "Velvet", runs);
}

std::vector<double> TimeTrackSearch(const QString& folder, int runs) {
    return TimeSearch(folder, 7, "Track 12", runs);
}

std::vector<double> TimeCompaction(const QString& folder, int runs) {
    StartProgram(folder);
    // A failing compaction asks nothing of anyone here: its box is noted and ends the scenario.
    BoxRecorder boxes(vbOK);
    std::vector<double> times;
    for (int run = 0; run < runs && boxes.prompts.isEmpty(); ++run) {
        QElapsedTimer timer;
        timer.start();
        CompactCatalogue(false, QString(), QString());
        times.push_back(ElapsedMilliseconds(timer));
        OpenCatalogue();
    }
    EndProgram();
    if (!boxes.prompts.isEmpty()) throw VbError(0, "compaction failed: " + boxes.prompts.join(" "));
    return times;
}
