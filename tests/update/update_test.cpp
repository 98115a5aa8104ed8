#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "shell/frmMain.h"
#include "support/testsupport.h"
#include "toolkit/vbruntime.h"
#include "update/frmDownload.h"
#include "update/testhttpserver.h"

namespace {

QByteArray ServerIni(int latestMajor, int minor, int revision, const QString& programUrl) {
    return QString(
               "[LastRelease]\r\nLatestMajor=%1\r\nProductInfo=http://shop.example/v3\r\n"
               "[2Major]\r\nminor=%2\r\nrevision=%3\r\nURL=%4\r\nfilename=upd.sh\r\n")
        .arg(latestMajor)
        .arg(minor)
        .arg(revision)
        .arg(programUrl)
        .toLatin1();
}

}  // namespace

class UpdateTest : public QObject {
    Q_OBJECT

    QTemporaryDir wine;
    AppObject savedApp;
    QString tempFolder() const { return wine.filePath("drive_c/windows/TEMP"); }

  private slots:
    void initTestCase() {
        savedApp = App;
        QDir().mkpath(wine.filePath("drive_c/windows"));
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
        struct Case {
            int minor, revision, serverMinor, serverRevision, latestMajor;
            QStringList titles;
            QString firstPrompt;
        };
        const QList<Case> cases = {
            {4,
             0,
             4,
             1,
             2,
             {"Proceed with Live-Update?", "Live-Update"},
             "Update Velmora from version 2.4.0 to 2.4.1?"},
            {4,
             5,
             3,
             9,
             2,
             {"Live-Update"},
             "You allready have the latest version of release 2. Nothing to update."},
            {4,
             5,
             4,
             5,
             3,
             {"Live-Update", "Live-Update"},
             "You allready have the latest version of release 2. Nothing to update."},
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
            QStringList titles;
            for (const MsgBoxCall& call : dialogs.msgBoxes) titles << call.title;
            QCOMPARE(titles, c.titles);
            QCOMPARE(dialogs.msgBoxes[0].prompt, c.firstPrompt);
            QCOMPARE(sUpdateProgram, tempFolder() + "/upd.sh");
        }
        // The declined offer, then the new major's notice.
        ScriptedDialogs dialogs;
        dialogs.answerMsgBox(vbCancel);
        App.Minor = 4;
        App.Revision = 0;
        server.files["/software/updates/velmora.ini"] = ServerIni(3, 4, 1, server.url("/u"));
        frmDownload form;
        QVERIFY(!form.Update());
        QCOMPARE(dialogs.prompts(),
                 QStringList({"Update Velmora from version 2.4.0 to 2.4.1?",
                              "User doesn't want to update Velmora.",
                              "Version 3 has been released. You can download it manually from "
                              "our website at:\r\nhttp://shop.example/v3"}));
        QCOMPARE(dialogs.msgBoxes[1].flags, vbOKOnly);
    }

    void theToolbarCommandFetchesStartsAndEnds() {
        TempProgramFolder folder;
        folder.installCatalogue();
        TestHttpServer server;
        qputenv("VELMORA_UPDATE_SERVER", server.url("").toLocal8Bit());
        const QString proof = wine.filePath("ran.txt");
        server.files["/software/updates/velmora.ini"] = ServerIni(3, 9, 0, server.url("/upd.sh"));
        server.files["/upd.sh"] = ("#!/bin/sh\necho updated > '" + proof + "'\n").toLocal8Bit();
        App.Major = 2;
        App.Minor = 4;
        App.Revision = 0;
        frmMain* main = nullptr;
        {
            // The fetched program is gone before it can start (taken while the notice of the new
            // major was up): the program says so and keeps running.
            ScriptedDialogs dialogs;
            main = StartProgram();
            QVERIFY(main);
            SetMsgBoxResponder([&](const MsgBoxCall& call) {
                dialogs.msgBoxes.append(call);
                if (call.prompt.startsWith("Version 3")) QFile::remove(tempFolder() + "/upd.sh");
                return int(vbYes);
            });
            main->ToolbarButton("update")->trigger();
            QCOMPARE(dialogs.msgBoxes.size(), 3);
            QCOMPARE(dialogs.msgBoxes[2].prompt,
                     "The update routine could not succesfully download all nescessary files."
                     "\r\nPlease make sure that you have a connection to the internet and try the "
                     "update feature again.\r\nIf the problem persists, download the update from " +
                         kMakerWebAddress + " manually.");
            QCOMPARE(dialogs.msgBoxes[2].flags, int(vbExclamation));
            QCOMPARE(dialogs.msgBoxes[2].title, QString("Auto-Update"));
            QVERIFY(!main->IsUnloaded());
            QVERIFY(!QFile::exists(proof));
        }
        server.files["/software/updates/velmora.ini"] = ServerIni(2, 9, 0, server.url("/upd.sh"));
        ScriptedDialogs dialogs;
        dialogs.answerMsgBox(vbYes);
        QSignalSpy unloaded(main, &frmMain::Unloaded);
        main->ToolbarButton("update")->trigger();
        QTRY_VERIFY(QFile::exists(proof));
        QCOMPARE(unloaded.count(), 1);
        QVERIFY(QFileInfo(tempFolder() + "/upd.sh").isExecutable());
        QVERIFY(QFile::exists(tempFolder() + "/VELMORA.INI"));
        QCOMPARE(dialogs.prompts(), QStringList({"Update Velmora from version 2.4.0 to 2.9.0?"}));
    }
};

VELMORA_TEST_MAIN(UpdateTest)
#include "update_test.moc"
