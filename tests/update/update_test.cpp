// The download window against a local server (resumed, refused and cancelled transfers) and the
// live update that runs on it.

#include <cstdio>

#include "disc/lookupserver.h"
#include "shell/frmMain.h"
#include "support/testsupport.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/vbruntime.h"
#include "update/frmDownload.h"
#include "update/mDownload.h"

using lookupserver::Body;
using lookupserver::LookupServer;
using lookupserver::Reply;
using lookupserver::Status;

namespace {

const QByteArray kServerIni = "/software/updates/velmora.ini";

QByteArray Source(int size) {
    QByteArray data(size, '\0');
    for (int i = 0; i < size; ++i) data[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    return data;
}

struct Transfer {
    bool succeeded = false;
    QString statusText;
};

Transfer Download(const QString& url, const QString& saveAs) {
    frmDownload form;
    Transfer result;
    form.DownloadFile(url, saveAs, "", "", true, result.succeeded);
    result.statusText = form.StatusLabel->text();
    return result;
}

// body, and from where a Range asks the rest of it.
Reply Resumable(const QByteArray& body) {
    Reply reply = Body(body);
    reply.honourRange = true;
    return reply;
}

// The first count bytes of body, announced whole: the connection breaks off there.
Reply BrokenOff(const QByteArray& body, int count) {
    Reply reply = Resumable(body.left(count));
    reply.announced = body.size();
    return reply;
}

QByteArray ServerIni(int latestMajor, int minor, int revision, const QString& programUrl,
                     const QString& fileName = "upd.sh") {
    return QString(
               "[LastRelease]\r\nLatestMajor=%1\r\nProductInfo=http://shop.example/v3\r\n"
               "[2Major]\r\nminor=%2\r\nrevision=%3\r\nURL=%4\r\nfilename=%5\r\n")
        .arg(latestMajor)
        .arg(minor)
        .arg(revision)
        .arg(programUrl, fileName)
        .toLatin1();
}

}  // namespace

class UpdateTest : public QObject {
    Q_OBJECT

    QTemporaryDir wine;
    AppObject savedApp;
    QString tempFolder() const { return wine.filePath("drive_c/windows/TEMP"); }
    QTemporaryDir dir;
    QString target() const { return dir.filePath("incoming/file.bin"); }

    // The running version 2.4.0, looking for its update at server.
    void RunAsVersion240Of(const LookupServer& server) {
        qputenv("VELMORA_UPDATE_SERVER", server.url().toLocal8Bit());
        App.Major = 2;
        App.Minor = 4;
        App.Revision = 0;
    }

  private slots:
    void initTestCase() {
        savedApp = App;
        // No Windows folder in the prefix, as on a machine without Wine: the update still runs.
        qputenv("WINEPREFIX", wine.path().toLocal8Bit());
    }
    void cleanupTestCase() {
        App = savedApp;
        qunsetenv("VELMORA_UPDATE_SERVER");
    }

    void versionsAreComparedWithinTheRunningMajor() {
        LookupServer server;
        RunAsVersion240Of(server);
        const MsgBoxCall offer{"Update Velmora from version 2.4.0 to 2.4.1?",
                               vbYesNoCancel + vbQuestion, "Proceed with Live-Update?"};
        const MsgBoxCall declined{"User doesn't want to update Velmora.", vbOKOnly, "Live-Update"};
        const MsgBoxCall latest{
            "You allready have the latest version of release 2. Nothing to update.", vbInformation,
            "Live-Update"};
        const MsgBoxCall newMajor{
            "Version 3 has been released. You can download it manually from our website at:\r\n"
            "http://shop.example/v3",
            vbInformation, "Live-Update"};
        // The running version, the server's version of the running major, the latest major.
        struct Case {
            int minor, revision, serverMinor, serverRevision, latestMajor;
            Boxes boxes;
        };
        const QList<Case> cases = {
            {4, 0, 4, 1, 2, {offer, declined}},
            {4, 5, 3, 9, 2, {latest}},
            {4, 5, 4, 5, 3, {latest, newMajor}},
        };
        for (const Case& c : cases) {
            ScriptedDialogs dialogs;
            dialogs.answerMsgBox(vbNo);
            App.Minor = c.minor;
            App.Revision = c.revision;
            server.clear();
            server.answer(kServerIni, Body(ServerIni(c.latestMajor, c.serverMinor, c.serverRevision,
                                                     server.url() + "/u")));
            frmDownload form;
            QVERIFY(!form.Update());
            QCOMPARE(dialogs.msgBoxes, c.boxes);
            QCOMPARE(sUpdateProgram, tempFolder() + "/upd.sh");
        }
    }

    void theServersFileNameTouchesNothingOutsideTemp() {
        LookupServer server;
        RunAsVersion240Of(server);
        QDir().mkpath(tempFolder());
        const QFile::Permissions folderMode = QFileInfo(tempFolder()).permissions();
        const QString victim = wine.filePath("drive_c/victim.txt");
        WriteBytes(victim, "mine");
        for (const QString& name :
             QStringList{"../victim.txt", "", "..", "sub/upd.sh", "..\\victim.txt"}) {
            ScriptedDialogs dialogs;
            server.clear();
            server.answer(kServerIni, Body(ServerIni(2, 9, 0, server.url() + "/u", name)));
            frmDownload form;
            QVERIFY(!form.Update());
            QCOMPARE(dialogs.msgBoxes, Boxes({{"Error: Bad file name or number occurred.",
                                               vbCritical, "Error Downloading File"}}));
            QCOMPARE(ReadBytes(victim), QByteArray("mine"));
            QCOMPARE(QFileInfo(tempFolder()).permissions(), folderMode);
        }
        // An old program that is a link goes without its target being touched.
        QFile::setPermissions(victim, QFile::ReadOwner);
        QVERIFY(QFile::link(victim, tempFolder() + "/upd.sh"));
        ScriptedDialogs dialogs;
        server.clear();
        server.answer(kServerIni, Body(ServerIni(2, 4, 0, server.url() + "/u")));
        frmDownload form;
        QVERIFY(!form.Update());
        QVERIFY(!QFileInfo(tempFolder() + "/upd.sh").isSymLink());
        QVERIFY(!QFileInfo(victim).permissions().testFlag(QFile::WriteOwner));
    }

    void theToolbarCommandFetchesStartsAndEnds() {
        TempProgramFolder folder;
        folder.installCatalogue();
        LookupServer server;
        RunAsVersion240Of(server);
        const QString proof = wine.filePath("ran.txt");
        server.answer(kServerIni, Body(ServerIni(2, 9, 0, server.url() + "/upd.sh")));
        server.answer("/upd.sh",
                      Body(("#!/bin/sh\necho updated > '" + proof + "'\n").toLocal8Bit()));
        frmMain* main = StartProgram();
        QVERIFY(main);
        ScriptedDialogs dialogs;
        dialogs.answerMsgBox(vbYes);
        QSignalSpy unloaded(main, &frmMain::Unloaded);
        main->ToolbarButton("update")->trigger();
        QTRY_VERIFY(QFile::exists(proof));
        QCOMPARE(unloaded.count(), 1);
        QVERIFY(QFileInfo(tempFolder() + "/upd.sh").isExecutable());
        QVERIFY(QFile::exists(tempFolder() + "/VELMORA.INI"));
        QCOMPARE(dialogs.msgBoxes,
                 Boxes({{"Update Velmora from version 2.4.0 to 2.9.0?", vbYesNoCancel + vbQuestion,
                         "Proceed with Live-Update?"}}));
    }

    void resumedTransferAsksForTheLastGoodRangeAndEndsWhole() {
        ScriptedDialogs dialogs;
        dialogs.answerMsgBox(vbRetry);
        const QByteArray source = Source(30000);
        LookupServer server;
        server.answer("/file.bin", BrokenOff(source, 10000));
        server.answer("/file.bin", Resumable(source));
        const Transfer transfer = Download(server.url() + "/files/file.bin", target());
        QVERIFY(transfer.succeeded);
        QCOMPARE(transfer.statusText, QString("Download completed!"));
        // Qt's network layer may send a request again on its own when the server closes the
        // connection under it; the program's own requests are the distinct ones.
        QStringList asked = server.ranges;
        asked.removeDuplicates();
        QCOMPARE(asked, QStringList({"bytes=0-", "bytes=5904-"}));
        QCOMPARE(ReadBytes(target()), source);
        QCOMPARE(dialogs.msgBoxes.size(), 1);
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Download Incomplete"));

        // Cancel on the same question leaves no partial file.
        dialogs.msgBoxes.clear();
        dialogs.answerMsgBox(vbCancel);
        server.clear();
        server.answer("/file.bin", BrokenOff(source, 10000));
        QVERIFY(!Download(server.url() + "/files/file.bin", target()).succeeded);
        QVERIFY(!QFile::exists(target()));

        // Every byte arrived, but what stands on disc is shorter (another program replaced the
        // file mid-way): the download is not complete.
        dialogs.msgBoxes.clear();
        dialogs.answerMsgBox(vbCancel);
        server.clear();
        server.answer("/file.bin", Resumable(source));
        bool replaced = false;
        const int listener =
            AddProgressListener([&](const QString& operation, qint64 done, qint64) {
                if (operation != "Downloading byte" || done < 15000 || replaced) return;
                replaced = true;
                WriteBytes(target() + ".other", "short");
                std::rename(QFile::encodeName(target() + ".other"), QFile::encodeName(target()));
            });
        const Transfer shortened = Download(server.url() + "/files/file.bin", target());
        RemoveProgressListener(listener);
        QVERIFY(replaced);
        QVERIFY(!shortened.succeeded);
        QCOMPARE(dialogs.msgBoxes.size(), 1);
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Download Incomplete"));
    }

    void serverIgnoringRangesOnRetryAsksToStartOver() {
        const QByteArray source = Source(20000);
        LookupServer server;
        // Broken off at first, then whole whatever the Range asks.
        const auto breakThenIgnoreRanges = [&] {
            server.clear();
            server.answer("/a.bin", BrokenOff(source, 10000));
            server.answer("/a.bin", Body(source));
        };
        {
            ScriptedDialogs dialogs;
            dialogs.answerMsgBox(vbRetry);
            dialogs.answerMsgBox(vbNo);
            breakThenIgnoreRanges();
            QVERIFY(!Download(server.url() + "/a.bin", target()).succeeded);
            QCOMPARE(dialogs.msgBoxes.size(), 2);
            QCOMPARE(dialogs.msgBoxes[1],
                     MsgBoxCall({"The server is unable to resume this download.\r\rDo you want to "
                                 "continue anyway?",
                                 vbYesNo + vbExclamation, "Unable to Resume Download"}));
            QVERIFY(!QFile::exists(target()));
        }
        {
            ScriptedDialogs dialogs;
            dialogs.answerMsgBox(vbRetry);
            dialogs.answerMsgBox(vbYes);
            breakThenIgnoreRanges();
            QVERIFY(Download(server.url() + "/a.bin", target()).succeeded);
            QCOMPARE(ReadBytes(target()), source);
        }
        // On the first pass a server without ranges is simply a whole file.
        ScriptedDialogs dialogs;
        server.clear();
        server.answer("/a.bin", Body(source));
        QVERIFY(Download(server.url() + "/a.bin", target()).succeeded);
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }

    void refusingAnswersShowTheirBoxAndLeaveNothing() {
        const QByteArray source = Source(3000);
        LookupServer server;
        const QString url = server.url() + "/x.bin";
        QTcpServer closed;
        closed.listen(QHostAddress::LocalHost);
        const QString nowhere = "http://127.0.0.1:" + QString::number(closed.serverPort()) + "/x";
        closed.close();
        Reply noLength = Resumable(source);
        noLength.sendLength = false;
        // A length beyond any number of bytes.
        Reply huge = Body(source);
        huge.sendLength = false;
        huge.headers = "Content-Length: 99999999999999999999\r\n";
        // Lengths a 32-bit count cannot hold overflow rather than wrap.
        Reply fourGiB = huge;
        fourGiB.headers = "Content-Length: 4294967296\r\n";
        // An empty prompt: no box; an empty address or file: the server's file and target().
        struct Case {
            Reply answer;
            QString prompt;
            int flags;
            QString title, url = {}, saveAs = {};
        };
        const QList<Case> cases = {
            {Status("404 Not Found"), "The file, \"" + url + "\" was not found!", vbCritical,
             "File Not Found"},
            {Status("299 Odd Thing"),
             "The server returned the following response:\r\nHTTP/1.1 299 Odd Thing\r", vbCritical,
             "Error Downloading File"},
            // No length: the call ends without a word.
            {noLength, "", 0, ""},
            {Resumable(source),
             "Cannot establish connection.\r\nCheck your Internet connection and try again.",
             vbExclamation, "Cannot Establish Connection", nowhere},
            {huge, "Error: Overflow occurred.", vbCritical, "Error Downloading File"},
            {fourGiB, "Error: Overflow occurred.", vbCritical, "Error Downloading File"},
            // /proc: a file system without a free byte.
            {Resumable(source),
             "There is not enough free space on disk for this file.\r\nPlease free up some disk "
             "space and try again.",
             vbCritical, "Insufficient Disk Space", url, "/proc/velmora/x.bin"},
        };
        for (const Case& c : cases) {
            ScriptedDialogs dialogs;
            server.clear();
            server.answer("/x.bin", c.answer);
            QVERIFY(
                !Download(c.url.isEmpty() ? url : c.url, c.saveAs.isEmpty() ? target() : c.saveAs)
                     .succeeded);
            QCOMPARE(dialogs.msgBoxes,
                     c.prompt.isEmpty() ? Boxes() : Boxes({{c.prompt, c.flags, c.title}}));
            QVERIFY(!QFile::exists(target()));
        }
        {
            // A destination that cannot be opened: its error, then the offer to resume, declined.
            ScriptedDialogs dialogs;
            QDir().mkpath(target());
            QFile folder(target());
            QVERIFY(!folder.open(QIODevice::ReadWrite));
            server.clear();
            server.answer("/x.bin", Resumable(source));
            QVERIFY(!Download(url, target()).succeeded);
            QCOMPARE(dialogs.msgBoxes,
                     Boxes({{"Cannot write file to disk.\r\nError 75: " + folder.errorString(),
                             vbCritical, "Error Downloading File"},
                            {"The connection with the server was reset.\r\nClick \"Retry\" to "
                             "resume downloading the file.\r(Approximate time remaining: 0 "
                             "sec)\r\nClick \"Cancel\" to cancel downloading the file.",
                             vbRetryCancel + vbExclamation, "Download Incomplete"}}));
            QVERIFY(QDir().rmdir(target()));
        }
    }
};

VELMORA_TEST_MAIN(UpdateTest)
#include "update_test.moc"
