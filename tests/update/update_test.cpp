// The download window against a local server (resumed, refused and cancelled transfers) and the
// live update that runs on it.

#include <cstdio>

#include "shell/frmMain.h"
#include "support/testsupport.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/vbruntime.h"
#include "update/frmDownload.h"
#include "update/mDownload.h"
#include "update/testhttpserver.h"

namespace {

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

HttpAnswer Answering(const QByteArray& statusLine) {
    HttpAnswer answer;
    answer.statusLine = statusLine;
    return answer;
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
        TestHttpServer server;
        qputenv("VELMORA_UPDATE_SERVER", server.url("").toLocal8Bit());
        App.Major = 2;
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
            server.files["/software/updates/velmora.ini"] =
                ServerIni(c.latestMajor, c.serverMinor, c.serverRevision, server.url("/u"));
            frmDownload form;
            QVERIFY(!form.Update());
            QCOMPARE(dialogs.msgBoxes, c.boxes);
            QCOMPARE(sUpdateProgram, tempFolder() + "/upd.sh");
        }
    }

    void theServersFileNameTouchesNothingOutsideTemp() {
        TestHttpServer server;
        qputenv("VELMORA_UPDATE_SERVER", server.url("").toLocal8Bit());
        App.Major = 2;
        App.Minor = 4;
        App.Revision = 0;
        QDir().mkpath(tempFolder());
        const QFile::Permissions folderMode = QFileInfo(tempFolder()).permissions();
        const QString victim = wine.filePath("drive_c/victim.txt");
        WriteBytes(victim, "mine");
        for (const QString& name :
             QStringList{"../victim.txt", "", "..", "sub/upd.sh", "..\\victim.txt"}) {
            ScriptedDialogs dialogs;
            server.files["/software/updates/velmora.ini"] =
                ServerIni(2, 9, 0, server.url("/u"), name);
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
        server.files["/software/updates/velmora.ini"] = ServerIni(2, 4, 0, server.url("/u"));
        frmDownload form;
        QVERIFY(!form.Update());
        QVERIFY(!QFileInfo(tempFolder() + "/upd.sh").isSymLink());
        QVERIFY(!QFileInfo(victim).permissions().testFlag(QFile::WriteOwner));
    }

    void theToolbarCommandFetchesStartsAndEnds() {
        TempProgramFolder folder;
        folder.installCatalogue();
        TestHttpServer server;
        qputenv("VELMORA_UPDATE_SERVER", server.url("").toLocal8Bit());
        const QString proof = wine.filePath("ran.txt");
        server.files["/software/updates/velmora.ini"] = ServerIni(2, 9, 0, server.url("/upd.sh"));
        server.files["/upd.sh"] = ("#!/bin/sh\necho updated > '" + proof + "'\n").toLocal8Bit();
        App.Major = 2;
        App.Minor = 4;
        App.Revision = 0;
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
        TestHttpServer server(Source(30000));
        HttpAnswer broken;
        broken.closeAfter = 10000;
        server.answers << broken << HttpAnswer{};
        const Transfer transfer = Download(server.url("/files/file.bin"), target());
        QVERIFY(transfer.succeeded);
        QCOMPARE(transfer.statusText, QString("Download completed!"));
        // Qt's network layer may send a request again on its own when the server closes the
        // connection under it; the program's own requests are the distinct ones.
        QStringList asked = server.ranges;
        asked.removeDuplicates();
        QCOMPARE(asked, QStringList({"bytes=0-", "bytes=5904-"}));
        QCOMPARE(ReadBytes(target()), server.body);
        QCOMPARE(dialogs.msgBoxes.size(), 1);
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Download Incomplete"));

        // Cancel on the same question leaves no partial file.
        dialogs.msgBoxes.clear();
        dialogs.answerMsgBox(vbCancel);
        server.answers = {broken};
        QVERIFY(!Download(server.url("/files/file.bin"), target()).succeeded);
        QVERIFY(!QFile::exists(target()));

        // Every byte arrived, but what stands on disc is shorter (another program replaced the
        // file mid-way): the download is not complete.
        dialogs.msgBoxes.clear();
        dialogs.answerMsgBox(vbCancel);
        server.answers = {HttpAnswer{}};
        bool replaced = false;
        const int listener =
            AddProgressListener([&](const QString& operation, qint64 done, qint64) {
                if (operation != "Downloading byte" || done < 15000 || replaced) return;
                replaced = true;
                WriteBytes(target() + ".other", "short");
                std::rename(QFile::encodeName(target() + ".other"), QFile::encodeName(target()));
            });
        const Transfer shortened = Download(server.url("/files/file.bin"), target());
        RemoveProgressListener(listener);
        QVERIFY(replaced);
        QVERIFY(!shortened.succeeded);
        QCOMPARE(dialogs.msgBoxes.size(), 1);
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Download Incomplete"));
    }

    void serverIgnoringRangesOnRetryAsksToStartOver() {
        TestHttpServer server(Source(20000));
        HttpAnswer broken;
        broken.closeAfter = 10000;
        HttpAnswer whole;
        whole.honourRange = false;
        {
            ScriptedDialogs dialogs;
            dialogs.answerMsgBox(vbRetry);
            dialogs.answerMsgBox(vbNo);
            server.answers = {broken, whole};
            QVERIFY(!Download(server.url("/a.bin"), target()).succeeded);
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
            server.answers = {broken, whole};
            QVERIFY(Download(server.url("/a.bin"), target()).succeeded);
            QCOMPARE(ReadBytes(target()), server.body);
        }
        // On the first pass a server without ranges is simply a whole file.
        ScriptedDialogs dialogs;
        server.answers = {whole};
        QVERIFY(Download(server.url("/a.bin"), target()).succeeded);
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }

    void refusingAnswersShowTheirBoxAndLeaveNothing() {
        TestHttpServer server(Source(3000));
        const QString url = server.url("/x.bin");
        QTcpServer closed;
        closed.listen(QHostAddress::LocalHost);
        const QString nowhere = "http://127.0.0.1:" + QString::number(closed.serverPort()) + "/x";
        closed.close();
        HttpAnswer noLength;
        noLength.sendLength = false;
        // A length beyond any number of bytes.
        HttpAnswer huge = Answering("HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999");
        huge.sendLength = false;
        huge.honourRange = false;
        // Lengths a 32-bit count cannot hold overflow rather than wrap.
        HttpAnswer fourGiB = huge;
        fourGiB.statusLine = "HTTP/1.1 200 OK\r\nContent-Length: 4294967296";
        // An empty prompt: no box; an empty address or file: the server's file and target().
        struct Case {
            HttpAnswer answer;
            QString prompt;
            int flags;
            QString title, url = {}, saveAs = {};
        };
        const QList<Case> cases = {
            {Answering("HTTP/1.1 204 No Content"), "Nothing to download!", vbInformation,
             "No Content"},
            {Answering("HTTP/1.1 401 Unauthorized"), "Authorization failed!", vbCritical,
             "Unauthorized"},
            {Answering("HTTP/1.1 404 Not Found"), "The file, \"" + url + "\" was not found!",
             vbCritical, "File Not Found"},
            {Answering("HTTP/1.1 299 Odd Thing"),
             "The server returned the following response:\r\nHTTP/1.1 299 Odd Thing\r", vbCritical,
             "Error Downloading File"},
            // No length: the call ends without a word.
            {noLength, "", 0, ""},
            {HttpAnswer(),
             "Cannot establish connection.\r\nCheck your Internet connection and try again.",
             vbExclamation, "Cannot Establish Connection", nowhere},
            {huge, "Error: Overflow occurred.", vbCritical, "Error Downloading File"},
            {fourGiB, "Error: Overflow occurred.", vbCritical, "Error Downloading File"},
            // /proc: a file system without a free byte.
            {HttpAnswer(),
             "There is not enough free space on disk for this file.\r\nPlease free up some disk "
             "space and try again.",
             vbCritical, "Insufficient Disk Space", url, "/proc/velmora/x.bin"},
        };
        for (const Case& c : cases) {
            ScriptedDialogs dialogs;
            server.answers = {c.answer};
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
            server.answers = {HttpAnswer{}};
            QVERIFY(!Download(server.url("/x.bin"), target()).succeeded);
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
