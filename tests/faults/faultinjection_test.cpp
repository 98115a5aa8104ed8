// Every long operation cut off by a full disk, SIGTERM or SIGKILL, at steps taken from its own
// progress (or from the rows or pages it writes): the program (or its next start) does not crash,
// the catalogue is whole and guarded, it holds exactly the titles the program said it kept, every
// title has all the tracks it counts, and the files the operation touched are whole. The title
// editor's save and the lookup operations are cut by a full disk and SIGKILL alone. Each cut runs
// in a child process, this program started again with "--child". VELMORA_FAULT_POINTS sets how many
// cut points of each kind an operation gets (default 1), VELMORA_FAULT_OPERATIONS which operations
// run (names as in kOperations, comma-separated).

#include <sqlite3.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QBuffer>
#include <QRadioButton>
#include <csignal>
#include <cstdio>

#include "app/mGlobals.h"
#include "disc/lookupserver.h"
#include "editor/frmEdit.h"
#include "editor/frmFetchCovers.h"
#include "editor/frmTracksListing.h"
#include "export/frmExport.h"
#include "import/frmImport.h"
#include "jet/jet.h"
#include "jet/jetcheck.h"
#include "loans/frmLend.h"
#include "lookups/lookupoperations.h"
#include "shell/frmMain.h"
#include "shell/mGlobalFunctions.h"
#include "shell/terminationsignals.h"
#include "store/catalogue.h"
#include "store/guardedfile.h"
#include "store/jetlike.h"
#include "store/jettext.h"
#include "store/shelftables.h"
#include "support/testsupport.h"
#include "toolkit/platform/mUtility.h"
#include "toolkit/vb/guardeddialog.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/vbruntime.h"
#include "update/frmDownload.h"

namespace {

enum class Cut { None, Full, Term, Kill };
const QStringList kCutNames = {"none", "full", "term", "kill"};

// What counts as a step of an operation, and so as a point to cut it at.
enum class Steps {
    Progress,       // its progress reports
    CatalogueRows,  // each row it writes to the catalogue, cascades included
    JetPages,       // each page the Jet writer writes
};

struct Operation {
    QString name;
    // The start of the progress reports that count as its steps.
    QString progress;
    // The file it writes, in the case's folder.
    QString target;
    Steps steps = Steps::Progress;
    // SIGTERM is no cut of this operation: it runs in a window the program's end closes.
    bool terminates = true;
};

const QString kIniFile = "wine/drive_c/windows/cdplayer.ini";
const QString kDeluxeFile = "wine/drive_c/Program Files/Plus!/DeluxeCD.mdb";

const QList<Operation> kOperations = {
    {"tab-import", "Importing", "data.gdb"},
    {"ini-import", "Importing", "data.gdb"},
    {"deluxe-import", "Importing", "data.gdb"},
    {"html-export", "Exporting", "out.html"},
    {"tab-export", "Exporting", "out.txt"},
    {"clipboard-export", "Exporting", "data.gdb"},
    {"ini-export", "Exporting", kIniFile},
    {"deluxe-export", "Exporting", kDeluxeFile, Steps::JetPages},
    {"download", "Downloading", "update.bin"},
    {"compact", "Compacting", "data.compacted"},
    {"title-save", "", "data.gdb", Steps::CatalogueRows, false},
    {"lookup-changes", "", "data.gdb", Steps::CatalogueRows, false},
    {"cover-fetch", "Fetching cover", "data.gdb"},
    {"cover-save", "Saving cover", "data.gdb"},
    {"lend", "Lending", "data.gdb"},
};

// The title the editor saves: three tracks that become sixty long ones, under a new name.
const long kEditedTitle = 150;
const int kEditedTracks = 60;
// The lookup operations rename type 1 and delete vendor 1, with every title and track.
const QString kRenamedType = "Pop renamed";

const int kCatalogueTitles = 300;
// The CD players' identity of the catalogue's titles starts here, above the Deluxe file's own.
const qint64 kFirstCatalogueTitleId = 0x500000;
const int kOtherIniDiscs = 40;
const int kDeluxeTitles = 200;
const QByteArray kDownloadBody = QByteArray(400 * 1024, 'v') + "end";
// The titles with a release and no cover, and the images the cover cases store: each stored
// cover is one of these, whole.
const int kReleaseTitles = 4;

QByteArray EncodedImage(int side, const char* format) {
    QImage image(side, side, QImage::Format_RGB32);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) image.setPixel(x, y, qRgb(x * 7 ^ y, y * 13 ^ x, x * y));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}
const QByteArray& FetchedCover() {
    static const QByteArray bytes = EncodedImage(500, "jpeg");
    return bytes;
}
const QByteArray& SavedCover() {
    static const QByteArray bytes = EncodedImage(1100, "png");
    return bytes;
}

void Say(const QString& line) {
    // Written at once and unbuffered: a SIGKILL must not take the last lines with it.
    const QByteArray bytes = (line + "\n").toUtf8();
    [[maybe_unused]] const ssize_t written =
        ::write(STDOUT_FILENO, bytes.constData(), bytes.size());
}

int AnswerFor(int flags) {
    switch (flags & 7) {
        case vbYesNo:
        case vbYesNoCancel:
            return vbYes;
        case vbRetryCancel:
            return vbCancel;
        case vbAbortRetryIgnore:
            return vbIgnore;
        default:
            return vbOK;
    }
}

void RunOperation(const QString& name, const QString& folder, ScriptedDialogs& dialogs) {
    if (name.endsWith("-import")) {
        GuardedDialog<frmImport> window(gMainForm);
        window->Form_Load();
        const int source = name == "ini-import" ? 0 : name == "deluxe-import" ? 1 : 2;
        for (int i = 0; i < 3; ++i) window->Check1[i]->setChecked(i == source);
        window->cmbDefType->setCurrentIndex(0);
        window->cmbDefType_Click();
        window->cmbDefSpecific->setCurrentIndex(0);
        dialogs.answerFile(folder + "/titles.txt");
        window->cmdOK_Click();
    } else if (name.endsWith("-export")) {
        GuardedDialog<frmExport> form(gMainForm);
        form->Form_Load();
        const QStringList destinations = {"html", "clipboard", "tab", "ini", "deluxe"};
        const int destination = destinations.indexOf(name.section('-', 0, 0));
        for (int i = 0; i < 5; ++i) form->Check1[i]->setChecked(i == destination);
        form->Option1[2]->setChecked(true);
        form->Check2[3]->setChecked(false);
        form->OpenHtmlAfterExport = false;
        dialogs.answerFile(folder + (destination == 0 ? "/out.html" : "/out.txt"));
        form->cmdOK_Click();
    } else if (name == "title-save") {
        ForceSelectNode(gMainForm->NodeIndex(NodeWithKey("key1")));
        gAddingTitle = false;
        gModifyingTitle = true;
        gCurrentTitleId = kEditedTitle;
        QPointer<frmEdit> form = gEditForm = new frmEdit(gMainForm);
        form->Form_Load();
        form->show();
        form->txtTitle->setText(QString("Album %1 edited").arg(kEditedTitle));
        QStringList tracks;
        for (int track = 0; track < kEditedTracks; ++track)
            tracks << QString("Long track %1 ").arg(track).leftJustified(150, 'x');
        QTimer::singleShot(0, [tracks] {
            auto* editor = qobject_cast<frmTracksListing*>(QApplication::activeModalWidget());
            editor->SetText(tracks.join("\r\n"));
            editor->cmdOK->click();
        });
        form->cmdTracks_Click();
        form->cmdOK_Click();
        // A save that failed leaves the form open; the user gives up.
        if (form) form->Unload();
    } else if (name == "lookup-changes") {
        QString type = "Pop";
        dialogs.answerInput(kRenamedType);
        ModifyType(kLookupRename, 1, type);
        QString vendor = "Various artists";
        ModifyVendor(kLookupDelete, 1, vendor);
    } else if (name == "cover-fetch") {
        QList<long> titles;
        for (int id = 1; id <= kCatalogueTitles; ++id) titles << id;
        FetchMissingCovers(titles, gMainForm);
    } else if (name == "cover-save") {
        gAddingTitle = false;
        gModifyingTitle = true;
        gCurrentTitleId = 1;
        // The base's titles came without dates, which the editor's save needs.
        gDatabase->Execute("update title set created = '2024-01-01' where idcd = 1");
        gEditForm = new frmEdit(gMainForm);
        gEditForm->Form_Load();
        gEditForm->TakeCoverImage(SavedCover(), QString(), "saved.png");
        gEditForm->cmdOK_Click();
        // A failed save leaves the editor open, as it does for the user.
        if (gEditForm) gEditForm->Unload();
    } else if (name == "lend") {
        // Every title at once, through the lend window's OK.
        QList<long> titles;
        for (int id = 1; id <= kCatalogueTitles; ++id) titles << id;
        GuardedDialog<frmLend> window(titles, QStringList(), gMainForm);
        window->cboBorrower->setEditText("Everyone");
        window->cmdOK_Click();
    } else if (name == "download") {
        GuardedDialog<frmDownload> download(gMainForm);
        bool succeeded = false;
        download->DownloadFile(qEnvironmentVariable("VELMORA_FAULT_URL") + "/update.bin",
                               folder + "/update.bin", QString(), QString(), false, succeeded);
        Say(QString("DOWNLOADED ") + (succeeded ? "1" : "0"));
    }
}

// The child: starts the program in folder, runs the operation, cuts it at its step'th report,
// and ends the program as Quit does (or, after SIGTERM, lets it end itself).
int RunChild(const QStringList& arguments) {
    const QString name = arguments[2];
    const QString folder = arguments[3];
    const Cut cut = Cut(kCutNames.indexOf(arguments[4]));
    const qint64 cutStep = arguments[5].toLongLong();
    const Operation* operation = nullptr;
    for (const Operation& candidate : kOperations)
        if (candidate.name == name) operation = &candidate;

    std::signal(SIGXFSZ, SIG_IGN);
    TerminationSignals terminationSignals;
    App.Path = folder;
    ScriptedDialogs dialogs;
    SetMsgBoxResponder([](const MsgBoxCall& call) {
        static const QRegularExpression lineEnds("[\r\n]+");
        Say(QString("BOX %1 %2 | %3")
                .arg(call.flags)
                .arg(call.title, call.prompt)
                .replace(lineEnds, " "));
        return AnswerFor(call.flags);
    });

    qint64 steps = 0;
    bool cutMade = false;
    std::function<void()> step = [&] {
        if (++steps != cutStep) return;
        cutMade = true;
        Say("CUT " + arguments[4]);
        if (cut == Cut::Full) {
            const rlim_t size = QFileInfo(folder + "/" + operation->target).size();
            const rlimit limit = {size, size};
            setrlimit(RLIMIT_FSIZE, &limit);
        } else if (cut == Cut::Term) {
            ::kill(::getpid(), SIGTERM);
        } else if (cut == Cut::Kill) {
            ::kill(::getpid(), SIGKILL);
        }
    };
    const Steps kind = operation ? operation->steps : Steps::Progress;
    AddProgressListener([&](const QString& what, qint64, qint64 total) {
        if (kind == Steps::Progress && operation && total > 0 &&
            what.startsWith(operation->progress))
            step();
    });
    if (kind == Steps::JetPages) jet::SetPageWriteHook(step);

    if (!StartProgram()) {
        Say("NOT STARTED");
        return 2;
    }
    if (kind == Steps::CatalogueRows)
        sqlite3_update_hook(
            gDatabase->Handle(),
            [](void* counted, int, const char*, const char*, sqlite3_int64) {
                (*static_cast<std::function<void()>*>(counted))();
            },
            &step);
    QObject::connect(gMainForm, &frmMain::Unloaded, qApp, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    RunOperation(name, folder, dialogs);
    if (kind == Steps::CatalogueRows && gDatabase)
        sqlite3_update_hook(gDatabase->Handle(), nullptr, nullptr);
    // After SIGTERM the program must end by itself once the work has returned; the compaction
    // is itself the end.
    if (gMainForm && (cut != Cut::Term || !cutMade)) gMainForm->Unload();
    QTimer::singleShot(30000, [] {
        Say("STILL RUNNING");
        ::_exit(3);
    });
    if (gMainForm) QApplication::exec();
    // The windows the exit let go of are freed before the leak check at the process's end.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Say(QString("STEPS %1").arg(steps));
    Say("ENDED");
    return 0;
}

// Far above the slowest operation under the sanitizers; only a hang reaches it.
constexpr int kChildTimeoutMs = 180000;

struct ChildRun {
    bool crashed = false;
    // Killed by the test after kChildTimeoutMs; counts as a crash everywhere.
    bool hung = false;
    int exitCode = 0;
    QString output;

    QStringList lines(const QString& start) const {
        QStringList found;
        for (const QString& line : output.split('\n'))
            if (line.startsWith(start)) found << line.mid(start.size());
        return found;
    }
    qint64 steps() const { return lines("STEPS ").value(0).toLongLong(); }
};

ChildRun Run(const QString& operation, const QString& folder, Cut cut, qint64 step,
             const QString& url) {
    QProcess child;
    // A child that is killed cannot clean up its temporary files: it works in a folder of its
    // own, which goes when it has ended.
    QTemporaryDir temp;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", temp.path());
    environment.insert("WINEPREFIX", folder + "/wine");
    environment.insert("VELMORA_FAULT_URL", url);
    environment.insert("VELMORA_COVERART_SERVER", url);
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::MergedChannels);
    QEventLoop loop;
    QObject::connect(&child, &QProcess::finished, &loop, &QEventLoop::quit);
    bool hung = false;
    QTimer::singleShot(kChildTimeoutMs, &child, [&] {
        hung = true;
        child.kill();
    });
    child.start(QCoreApplication::applicationFilePath(),
                {"--child", operation, folder, kCutNames[int(cut)], QString::number(step)});
    // The download's server answers from this process's loop while the child runs.
    loop.exec();
    ChildRun run;
    run.hung = hung;
    run.crashed = hung || child.exitStatus() == QProcess::CrashExit;
    run.exitCode = child.exitCode();
    run.output = QString::fromUtf8(child.readAll());
    if (hung) run.output += "\nHUNG: killed after " + QString::number(kChildTimeoutMs) + " ms";
    return run;
}

void CopyFolder(const QString& from, const QString& to) {
    QDir().mkpath(to);
    for (const QFileInfo& entry :
         QDir(from).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (entry.isDir())
            CopyFolder(entry.filePath(), to + "/" + entry.fileName());
        else
            QFile::copy(entry.filePath(), to + "/" + entry.fileName());
    }
}

// What a look into the closed catalogue finds.
struct CatalogueState {
    QString integrity;
    long titles = -1;
    // Titles whose stored tracks do not number what the title says.
    long partialTitles = -1;
    long tracks = -1;
    long vendorOne = -1;
    QString typeOne;
    // Name and track count of the title the editor saves.
    QString editedTitle;
    // Covers that are not one of the images whole, or lack their thumbnail.
    long brokenCovers = -1;
    long openLoans = -1;
};

CatalogueState InspectCatalogue(const QString& folder) {
    const QString copy = folder + "/inspected.gdb";
    QFile::remove(copy);
    QFile::copy(folder + "/data.gdb", copy);
    FlipDatabaseHeader(copy, kUnguardHeader);
    CatalogueState state;
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(copy).constData(), &db, SQLITE_OPEN_READONLY, nullptr) ==
        SQLITE_OK) {
        // The indexes and checks are read with the catalogue's own text order and functions.
        jettext::Register(db);
        jetlike::Register(db);
        auto scalar = [db](const QByteArray& sql) {
            sqlite3_stmt* statement = nullptr;
            QString value;
            if (sqlite3_prepare_v2(db, sql.constData(), -1, &statement, nullptr) == SQLITE_OK &&
                sqlite3_step(statement) == SQLITE_ROW)
                value = QString::fromUtf8(
                    reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
            else
                value = QString::fromUtf8(sqlite3_errmsg(db));
            sqlite3_finalize(statement);
            return value;
        };
        state.integrity = scalar("PRAGMA integrity_check");
        state.titles = scalar("select count(*) from title").toLong();
        state.partialTitles =
            scalar(
                "select count(*) from title where idplatform = 1 and NumTracks <> (select "
                "count(*) from Tracks where Tracks.idcd = title.idcd)")
                .toLong();
        state.tracks = scalar("select count(*) from Tracks").toLong();
        state.vendorOne = scalar("select count(*) from vendor where idvendor = 1").toLong();
        state.typeOne = scalar("select nmtype from type where idtype = 1");
        state.editedTitle = scalar(QString("select nmcd || '|' || NumTracks from title where "
                                           "idcd = %1")
                                       .arg(kEditedTitle)
                                       .toUtf8()
                                       .constData());
        state.brokenCovers =
            scalar(QString("select count(*) from cover where thumbnail is null or length(image) "
                           "not in (%1, %2)")
                       .arg(FetchedCover().size())
                       .arg(SavedCover().size())
                       .toUtf8())
                .toLong();
        state.openLoans = scalar("select count(*) from loan where returned is null").toLong();
    }
    sqlite3_close(db);
    QFile::remove(copy);
    return state;
}

// The cut points of one kind: count steps spread over the operation's run, each kind shifted
// so that the kinds do not all meet the same step.
QList<qint64> CutSteps(qint64 steps, int count, int kind) {
    QList<qint64> points;
    for (int i = 0; i < count; ++i) {
        const qint64 step = 1 + (steps - 1) * (i * 3 + kind) / (count * 3);
        if (steps > 0 && !points.contains(step)) points << step;
    }
    return points;
}

}  // namespace

class FaultInjectionTest : public QObject {
    Q_OBJECT

    QTemporaryDir work;
    QString base;
    long baseTitles = 0;
    // The download's body goes in small pieces, so that the download reports many steps.
    lookupserver::LookupServer server;
    int pointsPerKind = qMax(1, qEnvironmentVariableIntValue("VELMORA_FAULT_POINTS"));
    int cuts = 0;
    QString failedCaseKept;

    // The program folder every case starts from: a guarded catalogue of audio titles with
    // their tracks and a PC title, a TAB file, a cdplayer.ini of other discs and a Deluxe
    // database.
    void MakeBase() {
        base = work.path() + "/base";
        TempProgramFolder folder;
        folder.openCatalogue();
        MakeShelfTables(*gDatabase);
        gDatabase->Execute("begin");
        for (int id = 1; id <= kCatalogueTitles; ++id) {
            gDatabase->Execute(
                QString("insert into title (idcd, nmcd, idvendor, idplatform, idtype, idspecific, "
                        "idmediatype, rating, label, listing, TitleID, NumTracks, memo, nrcds, "
                        "created) values (%1, 'Album %1', 1, 1, 1, 1, 1, 50, char(0), char(0), "
                        "%2, 3, 'memo %1', 1, '2001-02-03')")
                    .arg(id)
                    .arg(kFirstCatalogueTitleId + id));
            for (int track = 0; track < 3; ++track)
                gDatabase->Execute(
                    QString("insert into Tracks (idcd, TrackID, TrackName) values (%1, %2, "
                            "'Song %2 of %1')")
                        .arg(id)
                        .arg(track));
        }
        for (int id = 1; id <= kReleaseTitles; ++id)
            gDatabase->Execute(
                QString("insert into titlerelease (idcd, mbid) values (%1, 'release-%1')").arg(id));
        gDatabase->Execute("commit");
        baseTitles = RowCount("title");
        folder.closeCatalogue();
        CopyFolder(folder.path(), base);

        QByteArray tab;
        for (int line = 0; line < 2000; ++line)
            tab += "Audio\tRock\tAlbum\tBand " + QByteArray::number(line % 50) + "\tTab title " +
                   QByteArray::number(line) + "\tCD-R\t\t\t\t\t2\t\tOne<NEWLINE>Two\t1\r\n";
        WriteBytes(base + "/titles.txt", tab);

        QDir().mkpath(base + "/wine/drive_c/windows");
        QByteArray ini = "[CDDB]\r\nversion=1\r\n";
        for (int disc = 0; disc < kOtherIniDiscs; ++disc)
            ini += "[" + QByteArray::number(0x7A0000 + disc, 16) + "]\r\nartist=Other " +
                   QByteArray::number(disc) + "\r\ntitle=Kept " + QByteArray::number(disc) +
                   "\r\nnumtracks=1\r\n0=Only track\r\n";
        WriteBytes(base + "/" + kIniFile, ini);

        {
            jet::Writer writer(InstallDeluxeDatabase(base + "/wine"));
            for (int id = 1; id <= kDeluxeTitles; ++id) {
                writer.AppendRow("Titles", {id * 7919, QString("Deluxe artist %1").arg(id % 9),
                                            QString("Deluxe album %1").arg(id), 4});
                for (int track = 0; track < 4; ++track)
                    writer.AppendRow("Tracks", {id * 7919, track, QString("Track %1").arg(track)});
            }
        }
        // One run of the program leaves the catalogue as every exit does: compacted, guarded.
        const ChildRun run = Run("none", base, Cut::None, 0, server.url());
        QVERIFY2(!run.crashed && run.exitCode == 0, qPrintable(run.output));
    }

    QString NewCase(const QString& name) {
        const QString folder = work.path() + "/" + name;
        CopyFolder(base, folder);
        return folder;
    }

    void CheckCase(const Operation& operation, const QString& folder, Cut cut, const ChildRun& run,
                   const QString& label) {
        const QString context = label + "\n" + run.output;
        if (cut == Cut::Kill)
            QVERIFY2(run.crashed && !run.hung && run.lines("CUT").size() == 1, qPrintable(context));
        else
            QVERIFY2(!run.crashed && run.exitCode == 0 && !run.lines("ENDED").isEmpty(),
                     qPrintable(context));

        // The next start finds everything in order, and leaves the catalogue at rest.
        const ChildRun next = Run("none", folder, Cut::None, 0, server.url());
        QVERIFY2(!next.crashed && next.exitCode == 0, qPrintable(label + "\n" + next.output));
        QCOMPARE(ReadBytes(folder + "/data.gdb", 15), QByteArray("SQLite format F"));
        const CatalogueState state = InspectCatalogue(folder);
        QVERIFY2(state.integrity == "ok", qPrintable(label + ": " + state.integrity));
        QVERIFY2(state.partialTitles == 0, qPrintable(label));
        const QStringList leftInTemp =
            QDir(QDir::tempPath()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        QVERIFY2(leftInTemp.isEmpty(), qPrintable(label + ": " + leftInTemp.join(' ')));
        QVERIFY2(state.brokenCovers == 0, qPrintable(label));

        // Imports: exactly what the summaries said stayed; a cut before the summary keeps whole
        // titles only.
        if (operation.name.endsWith("-import")) {
            static const QRegularExpression summary("Tried to import (\\d+) .*Of those (\\d+)");
            long kept = 0;
            bool summarised = false;
            for (const QString& line : run.lines("BOX 64 ")) {
                const auto match = summary.match(line);
                if (!match.hasMatch()) continue;
                summarised = true;
                kept += match.captured(1).toLong() - match.captured(2).toLong();
            }
            if (summarised) QCOMPARE(state.titles - baseTitles, kept);
            if (cut == Cut::Term) QVERIFY2(summarised, qPrintable(context));
            QVERIFY(state.titles >= baseTitles);
        } else if (operation.name == "lookup-changes") {
            // The vendor went with all its titles and their tracks, or stayed with all of them.
            QVERIFY2(state.titles == baseTitles
                         ? state.vendorOne == 1 && state.tracks == 3 * baseTitles
                         : state.titles == 0 && state.vendorOne == 0 && state.tracks == 0,
                     qPrintable(label));
            QVERIFY2(state.typeOne == "Pop" || state.typeOne == kRenamedType, qPrintable(label));
        } else {
            QCOMPARE(state.titles, baseTitles);
        }
        // The saved title is the old one with its three tracks or the new one with all of its.
        if (operation.name == "title-save")
            QVERIFY2(state.editedTitle == QString("Album %1|3").arg(kEditedTitle) ||
                         state.editedTitle ==
                             QString("Album %1 edited|%2").arg(kEditedTitle).arg(kEditedTracks),
                     qPrintable(label + ": " + state.editedTitle));

        const QString target = folder + "/" + operation.target;
        const QString referenceTarget =
            work.path() + "/reference-" + operation.name + "/" + operation.target;
        if (operation.name == "html-export" || operation.name == "tab-export") {
            const QByteArray written = ReadBytes(target);
            const QByteArray whole = ReadBytes(referenceTarget);
            if (cut == Cut::Term)
                QVERIFY2(written == whole, qPrintable(label));
            else
                QVERIFY2(whole.startsWith(written), qPrintable(label));
        } else if (operation.name == "ini-export") {
            for (int disc = 0; disc < kOtherIniDiscs; ++disc) {
                const QString section = QString::number(0x7A0000 + disc, 16);
                QCOMPARE(ReadIniString(target, section, "artist", ""),
                         QString("Other %1").arg(disc));
                QCOMPARE(ReadIniString(target, section, "title", ""), QString("Kept %1").arg(disc));
            }
            if (cut == Cut::Term) QCOMPARE(ReadBytes(target), ReadBytes(referenceTarget));
        } else if (operation.name == "deluxe-export") {
            // Readable by another program as the cut left it; then the program's own writer
            // opens it again (putting back what a cut-off commit began), page maps and indexes
            // and all, and every exported title has the tracks it counts.
            for (int reading = 0; reading < 2; ++reading) {
                if (reading == 1) jet::Writer reopened(target);
                int exitCode = -1;
                const QStringList titles = ExportedRows(target, "Titles", &exitCode);
                QVERIFY2(
                    exitCode == 0 && titles.join('\n').contains("Deluxe album 1\"") &&
                        titles.join('\n').contains(QString("Deluxe album %1\"").arg(kDeluxeTitles)),
                    qPrintable(label));
                if (reading == 0) continue;
                QHash<QString, int> said, stored;
                for (const QString& row : titles)
                    if (row.section(',', 0, 0).toLongLong() >= kFirstCatalogueTitleId)
                        said[row.section(',', 0, 0)] = row.section(',', -1).toInt();
                for (const QString& row : ExportedRows(target, "Tracks"))
                    ++stored[row.section(',', 0, 0)];
                for (auto title = said.cbegin(); title != said.cend(); ++title)
                    QVERIFY2(stored.value(title.key()) == title.value(),
                             qPrintable(label + ": title " + title.key()));
            }
        } else if (operation.name == "lend") {
            // All or none; a lending that was not cut by force ends whole.
            QVERIFY2(state.openLoans == 0 || state.openLoans == kCatalogueTitles,
                     qPrintable(label + ": " + QString::number(state.openLoans)));
            if (cut == Cut::Term) QCOMPARE(state.openLoans, long(kCatalogueTitles));
        } else if (operation.name == "download") {
            const QStringList said = run.lines("DOWNLOADED ");
            if (said.value(0) == "1" || cut == Cut::Term)
                QCOMPARE(ReadBytes(target), kDownloadBody);
        }
        ++cuts;
    }

  private slots:
    void cleanupTestCase() {
        // A failed case's folder stays for a look: the child's catalogue and files as it left them.
        if (!QTest::currentTestFailed() && failedCaseKept.isEmpty()) return;
        work.setAutoRemove(false);
        qInfo("the cases are kept in %s", qPrintable(work.path()));
    }

    void initTestCase() {
        QVERIFY(work.isValid());
        lookupserver::Reply download = lookupserver::Body(kDownloadBody);
        download.piece = 4096;
        server.answer("/update.bin", download);
        server.answer("/release/", lookupserver::Body(FetchedCover()));
        // The children's temporary folders are made in a folder that this test alone uses, so
        // that what they leave there can be seen.
        QVERIFY(QDir().mkpath(work.path() + "/temp"));
        qputenv("TMPDIR", QFile::encodeName(work.path() + "/temp"));
        MakeBase();
    }

    void everyOperationSurvivesItsCuts() {
        const QStringList only =
            qEnvironmentVariable("VELMORA_FAULT_OPERATIONS").split(',', Qt::SkipEmptyParts);
        for (const Operation& operation : kOperations) {
            if (!only.isEmpty() && !only.contains(operation.name)) continue;
            // The whole run gives the step count and the files a complete run leaves.
            const QString whole = NewCase("reference-" + operation.name);
            const ChildRun reference = Run(operation.name, whole, Cut::None, 0, server.url());
            QVERIFY2(!reference.crashed && reference.exitCode == 0, qPrintable(reference.output));
            const qint64 steps = reference.steps();
            QVERIFY2(steps > 2,
                     qPrintable(operation.name + " reported no steps\n" + reference.output));
            qInfo("%s: %lld steps", qPrintable(operation.name), steps);
            for (const Cut cut : {Cut::Full, Cut::Term, Cut::Kill}) {
                if (cut == Cut::Term && !operation.terminates) continue;
                for (const qint64 step : CutSteps(steps, pointsPerKind, int(cut))) {
                    const QString label = QString("%1 %2 at step %3 of %4")
                                              .arg(operation.name, kCutNames[int(cut)])
                                              .arg(step)
                                              .arg(steps);
                    const QString folder = NewCase(
                        QString("%1-%2-%3")
                            .arg(operation.name, kCutNames[int(cut)], QString::number(step)));
                    const ChildRun run = Run(operation.name, folder, cut, step, server.url());
                    CheckCase(operation, folder, cut, run, label);
                    if (QTest::currentTestFailed()) {
                        failedCaseKept = folder;
                        return;
                    }
                    QDir(folder).removeRecursively();
                }
            }
        }
        qInfo("%d cut points, 0 crashes, 0 losses", cuts);
    }
};

int main(int argc, char** argv) {
    testsupport::PrepareEnvironment();
    QApplication app(argc, argv);
    app.setAttribute(Qt::AA_Use96Dpi, true);
    InitResources();
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--child") return RunChild(arguments);
    // A long sweep runs for many minutes, past QtTest's watchdog of five; each child run is
    // bounded by its own time-out.
    if (qEnvironmentVariableIsSet("VELMORA_FAULT_POINTS") &&
        !qEnvironmentVariableIsSet("QTEST_FUNCTION_TIMEOUT"))
        qputenv("QTEST_FUNCTION_TIMEOUT", "86400000");
    FaultInjectionTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "faultinjection_test.moc"
