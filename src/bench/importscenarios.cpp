#include "bench/importscenarios.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <functional>

#include "bench/deluxescenarios.h"
#include "import/frmImport.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "store/guardedfile.h"
#include "toolkit/vb/GCommonDialog.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

namespace {

// The template as data.dll, and as data.gdb unless a catalogue to start from is given.
void InstallCatalogue(const QString& folder, const QString& catalogue = QString()) {
    const QString templatePath = VELMORA_TEMPLATE_PATH;
    for (const QString& name : {QString("data.dll"), QString("data.gdb")}) {
        const QString source =
            name == "data.gdb" && !catalogue.isEmpty() ? catalogue : templatePath;
        QFile::remove(folder + "/" + name);
        if (!QFile::copy(source, folder + "/" + name)) throw VbError(0, "Cannot copy " + source);
        QFile::setPermissions(folder + "/" + name, QFile::ReadOwner | QFile::WriteOwner);
    }
    // A scenario that ran the program before leaves its catalogue guarded at rest; opened here
    // without the start-up, the copy needs the usable header first.
    FlipDatabaseHeader(folder + "/data.gdb", kUnguardHeader);
    App.Path = folder;
    gDatabasePath = folder + "/data.gdb";
    gDatabasePassword = kDatabasePassword;
    OpenCatalogue();
    // The start-up reads the column widths that every name check of the importers relies on.
    ReadFieldSizes();
}

void CloseCatalogue() {
    gRecordset.reset();
    gDatabase->Close();
    gDatabase.reset();
}

void WriteFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw VbError(0, "Cannot write " + path);
}

QByteArray TabFile(int lines) {
    const QStringList platforms = {"Audio", "Video", "PC", "Macintosh", "Game console"};
    QByteArray text;
    for (int line = 0; line < lines; ++line) {
        QStringList tracks;
        for (int track = 1; track <= 12; ++track)
            tracks << QString("Track %1 of title %2").arg(track).arg(line);
        const QStringList columns = {platforms[line % 5],
                                     QString("Type %1").arg(line % 20),
                                     QString("Specific %1").arg(line % 7),
                                     QString("Vendor %1").arg(line % 500),
                                     QString("Title number %1").arg(line),
                                     QString("Medium %1").arg(line % 4),
                                     QString("L%1").arg(line),
                                     QString::number(line % 11),
                                     "README.TXT<NEWLINE>SETUP.EXE",
                                     QString::number(100000 + line),
                                     "12",
                                     "A memo<NEWLINE>on two lines",
                                     tracks.join("<NEWLINE>"),
                                     "1"};
        text += columns.join('\t').toUtf8() + "\r\n";
    }
    return text;
}

QByteArray CdPlayerIni(int sections) {
    QByteArray text = "[CDDB]\r\nversion=1\r\n";
    for (int section = 0; section < sections; ++section) {
        text += "[" + QByteArray::number(0x10000 + section, 16).toUpper() + "]\r\nEntryType=1\r\n";
        text += "artist=Artist " + QByteArray::number(section % 100) + "\r\n";
        text += "title=Album " + QByteArray::number(section) + "\r\nnumtracks=12\r\n";
        for (int track = 0; track < 12; ++track)
            text += QByteArray::number(track) + "=Song " + QByteArray::number(track) + "\r\n";
        text += "order=0 1 2 3 4 5 6 7 8 9 10 11\r\nnumplay=12\r\n";
    }
    return text;
}

// A figure of this process's /proc status in kB: VmRSS now, VmHWM the peak so far.
long StatusKilobytes(const QByteArray& field = "VmRSS:") {
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return line.mid(field.size()).trimmed().split(' ').value(0).toLong();
    return 0;
}

long ResidentKilobytes() {
    return StatusKilobytes();
}

const int kLargeTabDiscs = 1000;

// Data discs whose listings make the file about megabytes MB, written line by line.
void WriteLargeTabFile(const QString& path, int megabytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) throw VbError(0, "Cannot write " + path);
    const qint64 lineBytes = qint64(megabytes) * 1024 * 1024 / kLargeTabDiscs;
    for (int disc = 0; disc < kLargeTabDiscs; ++disc) {
        QByteArray listing;
        listing.reserve(lineBytes + 64);
        for (int entry = 0; listing.size() < lineBytes - 200; ++entry)
            listing += "SETUP\\DATA" + QByteArray::number(entry / 100) + "\\FILE" +
                       QByteArray::number(entry) + ".CAB<NEWLINE>";
        const QByteArray line =
            "PC\tApplications\tOffice\tVendor " + QByteArray::number(disc % 50) + "\tData disc " +
            QByteArray::number(disc) + "\tCD-R\t\t\t" + listing + "\t\t0\t\t\t1\r\n";
        if (file.write(line) != line.size()) throw VbError(0, "Cannot write " + path);
    }
}

double Milliseconds(const QElapsedTimer& timer) {
    return timer.nsecsElapsed() / 1e6;
}

void ChooseDefaults(frmImport& window) {
    window.cmbDefType->setCurrentIndex(0);
    window.cmbDefType_Click();
    window.cmbDefSpecific->setCurrentIndex(0);
}

// Times one import per run, each into a fresh copy of the catalogue (the template when none is
// given) with the window as the user leaves it; check throws when the run did not import
// everything.
std::vector<double> TimeFreshImports(int runs, const std::function<void(frmImport&)>& prepare,
                                     const std::function<void(frmImport&)>& import,
                                     const std::function<void(frmImport&)>& check,
                                     const QString& catalogue = QString()) {
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        QTemporaryDir folder;
        InstallCatalogue(folder.path(), catalogue);
        frmImport window;
        window.Form_Load();
        prepare(window);
        QElapsedTimer timer;
        timer.start();
        import(window);
        times.push_back(Milliseconds(timer));
        check(window);
        CloseCatalogue();
    }
    return times;
}

}  // namespace

std::vector<double> TimeTabImport(int lines, int runs, double* growthMegabytes) {
    QTemporaryDir dir;
    const QString path = dir.filePath("titles.txt");
    WriteFile(path, TabFile(lines));
    SetMsgBoxResponder(
        [](const MsgBoxCall& call) -> int { throw VbError(0, "unexpected box: " + call.prompt); });
    SetFileChooser([&path](const FileDialogCall&) {
        FileDialogAnswer answer;
        answer.filename = path;
        answer.filenames = {path};
        return answer;
    });
    *growthMegabytes = 0;
    long before = 0;
    const std::vector<double> times = TimeFreshImports(
        runs,
        [&before](frmImport& window) {
            window.ShowSummary = false;
            before = ResidentKilobytes();
        },
        [](frmImport& window) { window.ImportTabFile(); },
        [&](frmImport& window) {
            *growthMegabytes = std::max(*growthMegabytes, (ResidentKilobytes() - before) / 1024.0);
            if (window.TabTried != lines || window.TabFailed != 0)
                throw VbError(0, QString("%1 of %2 lines failed").arg(window.TabFailed).arg(lines));
        });
    SetFileChooser({});
    SetMsgBoxResponder({});
    return times;
}

std::vector<double> TimeCdPlayerIniImport(int sections, int runs) {
    QTemporaryDir prefix;
    qputenv("WINEPREFIX", prefix.path().toLocal8Bit());
    const QString windows = prefix.path() + "/drive_c/windows";
    QDir().mkpath(windows);
    WriteFile(windows + "/cdplayer.ini", CdPlayerIni(sections));
    const std::vector<double> times = TimeFreshImports(
        runs, ChooseDefaults, [](frmImport& window) { window.ImportCdPlayerIni(); },
        [sections](frmImport& window) {
            if (window.IniTried != sections || window.IniDuplicates != 0)
                throw VbError(
                    0, QString("%1 of %2 sections failed").arg(window.IniDuplicates).arg(sections));
        });
    qunsetenv("WINEPREFIX");
    return times;
}

std::vector<double> TimeDeluxeImport(int titles, int runs, const QString& catalogueFolder) {
    QTemporaryDir files;
    const QString path = MakeDeluxeFile(files.path(), titles);
    return TimeFreshImports(
        runs,
        [&path](frmImport& window) {
            ChooseDefaults(window);
            window.ShowSummary = false;
            window.DeluxePath = path;
        },
        [](frmImport& window) { window.ImportDeluxeDatabase(); },
        [titles](frmImport& window) {
            if (window.DeluxeTried != titles || window.DeluxeDuplicates != 0)
                throw VbError(0, QString("%1 of %2 titles failed")
                                     .arg(window.DeluxeDuplicates)
                                     .arg(window.DeluxeTried));
        },
        catalogueFolder.isEmpty() ? QString() : catalogueFolder + "/data.gdb");
}

int RunLargeTabImportChild(const QString& file, const QString& folder) {
    try {
        SetMsgBoxResponder([](const MsgBoxCall& call) -> int {
            throw VbError(0, "unexpected box: " + call.prompt);
        });
        SetFileChooser([&file](const FileDialogCall&) {
            FileDialogAnswer answer;
            answer.filename = file;
            answer.filenames = {file};
            return answer;
        });
        InstallCatalogue(folder);
        frmImport window;
        window.Form_Load();
        window.ShowSummary = false;
        QElapsedTimer timer;
        timer.start();
        window.ImportTabFile();
        const double milliseconds = Milliseconds(timer);
        if (window.TabTried != kLargeTabDiscs || window.TabFailed != 0)
            throw VbError(
                0, QString("%1 of %2 lines failed").arg(window.TabFailed).arg(window.TabTried));
        CloseCatalogue();
        QTextStream(stdout) << milliseconds << " " << StatusKilobytes("VmHWM:") << "\n";
        return 0;
    } catch (const VbError& error) {
        QTextStream(stderr) << error.Description << "\n";
        return 1;
    }
}

std::vector<double> TimeLargeTabImport(int megabytes, int runs, double& peakMegabytes) {
    QTemporaryDir dir;
    const QString path = dir.filePath("discs.txt");
    WriteLargeTabFile(path, megabytes);
    peakMegabytes = 0;
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        QTemporaryDir folder;
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {kLargeTabImportChild, path, folder.path()});
        if (!child.waitForFinished(-1) || child.exitCode() != 0)
            throw VbError(0, "the import child failed: " + child.readAllStandardError());
        const QList<QByteArray> figures = child.readAllStandardOutput().trimmed().split(' ');
        times.push_back(figures.value(0).toDouble());
        peakMegabytes = std::max(peakMegabytes, figures.value(1).toLong() / 1024.0);
    }
    return times;
}
