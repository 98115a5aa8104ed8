// velmora-bench: times the program's own code paths on synthetic catalogues.
//
//   velmora-bench [--runs N] [--list] [scenario...]
//
// Without scenarios every scenario runs. Each prints one line with the median of its runs.

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <ctime>
#include <functional>
#include <map>
#include <memory>

#include "app/mGlobals.h"
#include "bench/coverscenarios.h"
#include "bench/deluxescenarios.h"
#include "bench/discscenarios.h"
#include "bench/exportscenarios.h"
#include "bench/importscenarios.h"
#include "bench/loanscenarios.h"
#include "bench/lookupscenarios.h"
#include "bench/searchscenarios.h"
#include "bench/syntheticcatalogue.h"
#include "bench/updatescenarios.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/mGlobalFunctions.h"
#include "shell/submain.h"
#include "toolkit/controls/resources.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const int kDefaultRuns = 7;

// One program folder per catalogue size, built on first use.
class Catalogues {
  public:
    QString FolderFor(int titles) {
        auto& dir = folders_[titles];
        if (!dir) {
            dir = std::make_unique<QTemporaryDir>();
            BuildSyntheticCatalogue(dir->path(), titles);
        }
        return dir->path();
    }
    // The same, every title with a cover.
    QString FolderWithCoversFor(int titles) {
        auto& dir = coveredFolders_[titles];
        if (!dir) {
            dir = std::make_unique<QTemporaryDir>();
            BuildSyntheticCatalogue(dir->path(), titles);
            AddCoversToCatalogue(dir->path());
        }
        return dir->path();
    }

  private:
    std::map<int, std::unique_ptr<QTemporaryDir>> folders_;
    std::map<int, std::unique_ptr<QTemporaryDir>> coveredFolders_;
};

void StartProgram() {
    gSplashForm = nullptr;
    gMainForm = new frmMain();
    gMainForm->Form_Load();
}

void EndProgram() {
    if (!gMainForm) return;
    gMainForm->SetMousePointer(vbArrow);
    gMainForm->Unload();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// The figures are taken both by the clock and as this thread's processor time: on a busy
// machine the second tells what the code itself costs.
struct Stopwatch {
    Stopwatch() {
        wall.start();
        cpuStart = CpuMilliseconds();
    }
    static double CpuMilliseconds() {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
    }
    double WallMilliseconds() const { return wall.nsecsElapsed() / 1e6; }
    double CpuElapsed() const { return CpuMilliseconds() - cpuStart; }

    QElapsedTimer wall;
    double cpuStart;
};

struct Times {
    std::vector<double> wall;
    std::vector<double> cpu;
    void Add(const Stopwatch& stopwatch) {
        wall.push_back(stopwatch.WallMilliseconds());
        cpu.push_back(stopwatch.CpuElapsed());
    }
};

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void Report(const QString& name, const Times& times) {
    QTextStream(stdout) << name << ": median " << QString::number(Median(times.wall), 'f', 1)
                        << " ms (" << times.wall.size() << " runs; processor time median "
                        << QString::number(Median(times.cpu), 'f', 1) << " ms)\n";
}

// Scenarios that take their own times give clock times only.
void Report(const QString& name, const std::vector<double>& wall) {
    QTextStream(stdout) << name << ": median " << QString::number(Median(wall), 'f', 1) << " ms ("
                        << wall.size() << " runs)\n";
}

// The list of the root folder is read again as a forced refresh does, up to its first paint.
void ReadRecordsRoot(Catalogues& catalogues, int titles, int runs, bool covers = false) {
    App.Path = covers ? catalogues.FolderWithCoversFor(titles) : catalogues.FolderFor(titles);
    StartProgram();
    if (!gMainForm || gMainForm->ListItemCount() == 0)
        throw VbError(0, "the program did not start");
    Times times;
    for (int run = 0; run < runs; ++run) {
        gSelectedIndex = 1;
        gSelectedKey = "root";
        gRequestedKey = "forcechange";
        const Stopwatch stopwatch;
        ReadRecords(-1);
        QCoreApplication::processEvents();
        times.Add(stopwatch);
        if (gMainForm->ListItemCount() != titles)
            throw VbError(0, QString("the root lists %1 titles").arg(gMainForm->ListItemCount()));
    }
    EndProgram();
    Report(QString("ReadRecords root %1 titles%2").arg(titles).arg(covers ? " with covers" : ""),
           times);
}

// From a new main window to its first filled and painted list, without the splash.
void StartUp(Catalogues& catalogues, int titles, int runs) {
    App.Path = catalogues.FolderFor(titles);
    Times times;
    for (int run = 0; run < runs; ++run) {
        const Stopwatch stopwatch;
        StartProgram();
        QCoreApplication::processEvents();
        times.Add(stopwatch);
        if (!gMainForm || gMainForm->MousePointer() != vbArrow)
            throw VbError(0, "the program did not finish its start-up");
        EndProgram();
    }
    Report(QString("Start-up to the first list %1 titles").arg(titles), times);
}

void ReportListing(bool iso, int runs) {
    double peak = 0;
    const std::vector<double> times = TimeDataListing(iso, runs, peak);
    Report(QString("Listing 50000 files from %1 (peak memory %2 MB)")
               .arg(iso ? "an ISO image" : "a folder")
               .arg(peak, 0, 'f', 1),
           times);
}

using Scenario = std::function<void(Catalogues&, int runs)>;

const std::vector<std::pair<QString, Scenario>>& Scenarios() {
    static const std::vector<std::pair<QString, Scenario>> scenarios = {
        {"readrecords-1000", [](Catalogues& c, int runs) { ReadRecordsRoot(c, 1000, runs); }},
        {"readrecords-32767", [](Catalogues& c, int runs) { ReadRecordsRoot(c, 32767, runs); }},
        {"readrecords-32767-covers",
         [](Catalogues& c, int runs) { ReadRecordsRoot(c, 32767, runs, true); }},
        {"startup-32767", [](Catalogues& c, int runs) { StartUp(c, 32767, runs); }},
        {"search-title-32767",
         [](Catalogues& c, int runs) {
             Report("Search by title 32767 titles", TimeTitleSearch(c.FolderFor(32767), runs));
         }},
        {"search-track-32767",
         [](Catalogues& c, int runs) {
             Report("Search by track name 32767 titles", TimeTrackSearch(c.FolderFor(32767), runs));
         }},
        {"lentout-2000-of-32767",
         [](Catalogues& c, int runs) {
             Report("\"Lent out\" folder, 2000 open loans among 32767 titles",
                    TimeLentOutFolder(c.FolderFor(32767), runs));
         }},
        {"loancount-2000-of-32767",
         [](Catalogues& c, int runs) {
             Report("Start-up loan count, 2000 open loans among 32767 titles",
                    TimeLoanCount(c.FolderFor(32767), runs));
         }},
        {"lend-500-of-32767",
         [](Catalogues& c, int runs) {
             Report("Lending 500 selected titles at once among 32767 titles",
                    TimeLendingSelected(c.FolderFor(32767), runs));
         }},
        {"import-tab-10000",
         [](Catalogues&, int runs) {
             double growth = 0;
             Report("TAB import 10000 lines", TimeTabImport(10000, runs, &growth));
             QTextStream(stdout) << "TAB import 10000 lines: process grew by at most "
                                 << QString::number(growth, 'f', 1) << " MB\n";
         }},
        {"import-tab-250mb",
         [](Catalogues&, int runs) {
             double peak = 0;
             // Each run imports a quarter of a gigabyte: three tell enough.
             const std::vector<double> times = TimeLargeTabImport(250, std::min(runs, 3), peak);
             Report(QString("TAB import 250 MB, 1000 data discs (peak memory %1 MB)")
                        .arg(peak, 0, 'f', 1),
                    times);
         }},
        {"import-cdplayer-1000",
         [](Catalogues&, int runs) {
             Report("cdplayer.ini import 1000 sections", TimeCdPlayerIniImport(1000, runs));
         }},
        {"import-deluxe-300",
         [](Catalogues&, int runs) {
             Report("Deluxe import 300 titles x 12 tracks", TimeDeluxeImport(300, runs));
         }},
        {"import-deluxe-300-into-32767",
         [](Catalogues& c, int runs) {
             Report("Deluxe import 300 titles x 12 tracks into 32767 titles",
                    TimeDeluxeImport(300, runs, c.FolderFor(32767)));
         }},
        {"download-20mib",
         [](Catalogues&, int runs) {
             Report("Download 20 MiB from a loopback server", TimeDownload(20, runs));
         }},
        {"gif-load-spinner",
         [](Catalogues&, int runs) {
             Report("Load the download window's spinner GIF", TimeSpinnerLoad(runs));
         }},
        {"readdisc-20-tracks",
         [](Catalogues& c, int runs) {
             Report("Read a 20-track CD-Text image into the editor",
                    TimeReadAudioIntoEditor(c.FolderFor(1000), runs));
         }},
        {"lookup-one-match",
         [](Catalogues& c, int runs) {
             Report("Look-up to filled editor, one match, loopback server",
                    TimeLookupIntoEditor(c.FolderFor(1000), runs));
         }},
        {"barcode-one-release",
         [](Catalogues& c, int runs) {
             Report("Barcode to filled editor, one release, loopback server, less the pace",
                    TimeBarcodeIntoEditor(c.FolderFor(1000), runs));
         }},
        {"cover-tooltip-1000",
         [](Catalogues& c, int runs) {
             Report("Tooltip of a title with a cover, 1000 titles with covers",
                    TimeCoverToolTip(c.FolderWithCoversFor(1000), runs));
         }},
        {"cover-growth-100",
         [](Catalogues&, int) {
             QTextStream(stdout) << "Catalogue growth per cover beyond the image's bytes: "
                                 << QString::number(CoverOverheadBytes(100), 'f', 0)
                                 << " bytes (100 covers)\n";
         }},
        {"export-html-covers-1000",
         [](Catalogues&, int runs) {
             Report("HTML export 1000 audio titles with covers",
                    TimeHtmlExportWithCovers(1000, runs));
         }},
        {"lookup-repaint-gap",
         [](Catalogues&, int runs) {
             Report("Longest gap between repaints of the look-up window, dripping server",
                    TimeLookupRepaintGap(std::min(runs, 3)));
         }},
        {"listing-folder-50000", [](Catalogues&, int runs) { ReportListing(false, runs); }},
        {"listing-iso-50000", [](Catalogues&, int runs) { ReportListing(true, runs); }},
        {"compaction-32767",
         [](Catalogues& c, int runs) {
             Report("Compaction 32767 titles", TimeCompaction(c.FolderFor(32767), runs));
         }},
        {"export-deluxe-1000",
         [](Catalogues&, int runs) {
             Report("Export 1000 titles x 12 tracks to a Deluxe file of 300 titles",
                    TimeDeluxeExport(1000, runs));
         }},
        {"deluxe-write-1000x12",
         [](Catalogues&, int runs) {
             Report("Deluxe file: 1000 titles x 12 tracks appended to 300 titles",
                    TimeDeluxeWrite(runs));
         }},
        {"export-html-32767",
         [](Catalogues&, int runs) {
             Report("HTML export 32767 audio titles", TimeHtmlExport(32767, runs));
         }},
        {"export-tab-32767",
         [](Catalogues&, int runs) {
             Report("TAB export 32767 audio titles", TimeTabExport(32767, runs));
         }},
        {"export-clipboard-10000",
         [](Catalogues&, int runs) {
             Report("Clipboard export 10000 audio titles", TimeClipboardExport(10000, runs));
         }},
        {"export-cdplayer-1000",
         [](Catalogues&, int runs) {
             Report("cdplayer.ini export 1000 audio titles into 1000 other discs",
                    TimeCdPlayerIniExport(1000, runs));
         }},
    };
    return scenarios;
}

int Usage() {
    QTextStream err(stderr);
    err << "usage: velmora-bench [--runs N] [--list] [scenario...]\nscenarios:";
    for (const auto& [name, scenario] : Scenarios()) err << " " << name;
    err << "\n";
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // Memory behaves as in the program itself.
    KeepFreedMemoryForReuse();
    QApplication app(argc, argv);
    InitResources();

    int runs = kDefaultRuns;
    QStringList chosen;
    const QStringList arguments = app.arguments().mid(1);
    if (arguments.value(0) == kLargeTabImportChild && arguments.size() == 3)
        return RunLargeTabImportChild(arguments[1], arguments[2]);
    for (int i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--runs" && i + 1 < arguments.size()) {
            runs = arguments[++i].toInt();
            if (runs < 1) return Usage();
        } else if (arguments[i] == "--list") {
            for (const auto& [name, scenario] : Scenarios()) QTextStream(stdout) << name << "\n";
            return 0;
        } else if (arguments[i].startsWith("-")) {
            return Usage();
        } else {
            chosen << arguments[i];
        }
    }
    for (const QString& name : chosen) {
        const auto& all = Scenarios();
        if (std::none_of(all.begin(), all.end(),
                         [&name](const auto& s) { return s.first == name; }))
            return Usage();
    }

    Catalogues catalogues;
    try {
        for (const auto& [name, scenario] : Scenarios())
            if (chosen.isEmpty() || chosen.contains(name)) scenario(catalogues, runs);
    } catch (const VbError& error) {
        QTextStream(stderr) << "velmora-bench: " << error.Description << "\n";
        return 1;
    }
    return 0;
}
