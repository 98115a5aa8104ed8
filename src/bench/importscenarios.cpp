#include "bench/importscenarios.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <functional>

#include "bench/deluxescenarios.h"
#include "import/frmImport.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "store/guardedfile.h"
#include "toolkit/GCommonDialog.h"
#include "toolkit/msgbox.h"
#include "toolkit/vberror.h"
#include "toolkit/vbruntime.h"

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

long ResidentKilobytes() {
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:")) return line.mid(6).trimmed().split(' ').value(0).toLong();
    return 0;
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
