#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTemporaryDir>
#include <QTimer>

#include "support/testsupport.h"
#include "toolkit/vbruntime.h"
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

QByteArray FileBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

class DownloadTest : public QObject {
    Q_OBJECT

    QTemporaryDir dir;
    QString target() const { return dir.filePath("incoming/file.bin"); }

  private slots:
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
        QCOMPARE(server.ranges, QStringList({"bytes=0-", "bytes=5904-"}));
        QCOMPARE(FileBytes(target()), server.body);
        QCOMPARE(dialogs.msgBoxes.size(), 1);
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Download Incomplete"));
        QCOMPARE(dialogs.msgBoxes[0].flags, vbRetryCancel + vbExclamation);
        QVERIFY(dialogs.msgBoxes[0].prompt.startsWith("The connection with the server was reset."));

        // Cancel on the same question leaves no partial file.
        dialogs.msgBoxes.clear();
        dialogs.answerMsgBox(vbCancel);
        server.answers = {broken};
        QVERIFY(!Download(server.url("/files/file.bin"), target()).succeeded);
        QVERIFY(!QFile::exists(target()));
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
            QCOMPARE(dialogs.msgBoxes[1].prompt,
                     QString("The server is unable to resume this download.\r\rDo you want to "
                             "continue anyway?"));
            QCOMPARE(dialogs.msgBoxes[1].title, QString("Unable to Resume Download"));
            QCOMPARE(dialogs.msgBoxes[1].flags, vbYesNo + vbExclamation);
            QVERIFY(!QFile::exists(target()));
        }
        {
            ScriptedDialogs dialogs;
            dialogs.answerMsgBox(vbRetry);
            dialogs.answerMsgBox(vbYes);
            server.answers = {broken, whole};
            QVERIFY(Download(server.url("/a.bin"), target()).succeeded);
            QCOMPARE(FileBytes(target()), server.body);
        }
        // On the first pass a server without ranges is simply a whole file.
        ScriptedDialogs dialogs;
        server.answers = {whole};
        QVERIFY(Download(server.url("/a.bin"), target()).succeeded);
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }

    void refusingAnswersShowTheirBoxAndLeaveNothing() {
        TestHttpServer server(Source(3000));
        struct Case {
            QByteArray statusLine;
            QString title;
            QString prompt;
        };
        const QList<Case> cases = {
            {"HTTP/1.1 204 No Content", "No Content", "Nothing to download!"},
            {"HTTP/1.1 401 Unauthorized", "Unauthorized", "Authorization failed!"},
            {"HTTP/1.1 404 Not Found", "File Not Found",
             "The file, \"" + server.url("/x.bin") + "\" was not found!"},
            {"HTTP/1.1 299 Odd Thing", "Error Downloading File",
             "The server returned the following response:\r\nHTTP/1.1 299 Odd Thing\r"},
        };
        for (const Case& c : cases) {
            ScriptedDialogs dialogs;
            HttpAnswer answer;
            answer.statusLine = c.statusLine;
            server.answers = {answer};
            QVERIFY(!Download(server.url("/x.bin"), target()).succeeded);
            QCOMPARE(dialogs.msgBoxes.size(), 1);
            QCOMPARE(dialogs.msgBoxes[0].title, c.title);
            QCOMPARE(dialogs.msgBoxes[0].prompt, c.prompt);
            QVERIFY(!QFile::exists(target()));
        }
        {
            // No length: the call ends without a word.
            ScriptedDialogs dialogs;
            HttpAnswer answer;
            answer.sendLength = false;
            server.answers = {answer};
            QVERIFY(!Download(server.url("/x.bin"), target()).succeeded);
            QVERIFY(dialogs.msgBoxes.isEmpty());
        }
        {
            ScriptedDialogs dialogs;
            QTcpServer closed;
            closed.listen(QHostAddress::LocalHost);
            const QString url = "http://127.0.0.1:" + QString::number(closed.serverPort()) + "/";
            closed.close();
            QVERIFY(!Download(url + "x.bin", target()).succeeded);
            QCOMPARE(dialogs.msgBoxes.size(), 1);
            QCOMPARE(dialogs.msgBoxes[0].title, QString("Cannot Establish Connection"));
        }
        {
            // A length beyond any number of bytes.
            ScriptedDialogs dialogs;
            HttpAnswer answer;
            answer.statusLine = "HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999";
            answer.sendLength = false;
            answer.honourRange = false;
            server.answers = {answer};
            QVERIFY(!Download(server.url("/x.bin"), target()).succeeded);
            QCOMPARE(dialogs.prompts(), QStringList("Error: Overflow occurred."));
            QCOMPARE(dialogs.msgBoxes[0].title, QString("Error Downloading File"));
            QVERIFY(!QFile::exists(target()));
        }
        {
            // /proc: a file system without a free byte.
            ScriptedDialogs dialogs;
            server.answers = {HttpAnswer{}};
            QVERIFY(!Download(server.url("/x.bin"), "/proc/velmora/x.bin").succeeded);
            QCOMPARE(dialogs.prompts(),
                     QStringList("There is not enough free space on disk for this file.\r\nPlease "
                                 "free up some disk space and try again."));
            QCOMPARE(dialogs.msgBoxes[0].title, QString("Insufficient Disk Space"));
        }
        {
            // A destination that cannot be opened: its error, then the offer to resume, declined.
            ScriptedDialogs dialogs;
            QDir().mkpath(target());
            QFile folder(target());
            QVERIFY(!folder.open(QIODevice::ReadWrite));
            server.answers = {HttpAnswer{}};
            QVERIFY(!Download(server.url("/x.bin"), target()).succeeded);
            QCOMPARE(dialogs.prompts(),
                     QStringList({"Cannot write file to disk.\r\nError 75: " + folder.errorString(),
                                  "The connection with the server was reset.\r\nClick \"Retry\" "
                                  "to resume downloading the file.\r(Approximate time remaining: "
                                  "0 sec)\r\nClick \"Cancel\" to cancel downloading the file."}));
            QCOMPARE(dialogs.msgBoxes[0].title, QString("Error Downloading File"));
            QCOMPARE(dialogs.msgBoxes[1].title, QString("Download Incomplete"));
            QVERIFY(QDir().rmdir(target()));
        }
    }

    void cancelStopsAStalledTransfer() {
        TestHttpServer server(Source(50000));
        HttpAnswer stalled;
        stalled.stallAfter = 8000;
        for (bool byEscape : {false, true}) {
            ScriptedDialogs dialogs;
            server.answers = {stalled};
            frmDownload form;
            bool succeeded = true;
            QTimer::singleShot(300, &form, [&form, byEscape] {
                if (byEscape)
                    QTest::keyClick(&form, Qt::Key_Escape);
                else
                    form.CancelButton->click();
            });
            form.DownloadFile(server.url("/big.bin"), target(), "", "", true, succeeded);
            QVERIFY(!succeeded);
            QVERIFY(form.bCancel);
            QCOMPARE(form.StatusLabel->text(), QString("Cancelling..."));
            QVERIFY(!form.AnimatedGifCtl1->TimerRunning());
            QVERIFY(!QFile::exists(target()));
            QVERIFY(dialogs.msgBoxes.isEmpty());
        }
    }

    void progressShowsBytesRateAndCaption() {
        ScriptedDialogs dialogs;
        TestHttpServer server(Source(5000));
        frmDownload form;
        bool succeeded = false;
        form.DownloadFile(server.url("/dir/file.bin"), target(), "", "", true, succeeded);
        QVERIFY(succeeded);
        QCOMPARE(form.windowTitle(), QString("100% of file.bin Completed"));
        QVERIFY(form.TimeLabel->text().endsWith("(5 KB of 5 KB copied)"));
        QVERIFY(form.RateLabel->text().endsWith("/Sec"));
        QCOMPARE(form.SourceLabel->text(), QString("file.bin from 127.0.0.1"));
        QCOMPARE(form.ProgressBar->value(), 5000);
    }

    void formattingAndPathRoutines() {
        QCOMPARE(FormatFileSize(0), QString("0 bytes"));
        QCOMPARE(FormatFileSize(1023), QString("1023 bytes"));
        QCOMPARE(FormatFileSize(1023.5), QString());
        QCOMPARE(FormatFileSize(1024), QString("1 KB"));
        QCOMPARE(FormatFileSize(1048575), QString("1024 KB"));
        QCOMPARE(FormatFileSize(1048576), QString("1.0 MB"));
        QCOMPARE(FormatFileSize(1536, "###.0"), QString("1.5 KB"));
        QCOMPARE(FormatFileSize(3.5 * 1073741824.0), QString("3.5 GB"));
        QCOMPARE(FormatFileSize(-1), QString());
        QCOMPARE(FormatTimeLeft(0), QString("0 sec"));
        QCOMPARE(FormatTimeLeft(59), QString("59 sec"));
        QCOMPARE(FormatTimeLeft(59.5f), QString("0 hr 1 min"));
        QCOMPARE(FormatTimeLeft(150.5f), QString("2 min 30 sec"));
        QCOMPARE(FormatTimeLeft(3600), QString("1 hr 0 min"));
        QCOMPARE(FormatTimeLeft(5430), QString("1 hr 30 min"));
        QCOMPARE(SplitPath("a/b/c.ini", true, true), QString("c.ini"));
        QCOMPARE(SplitPath("a/b/c.ini", false, true), QString("a/b/"));
        QCOMPARE(SplitPath("c:\\x\\y.exe", true, false), QString("y.exe"));
        QCOMPARE(SplitPath("plain", false, true), QString("plain"));
        QVERIFY(DiskFreeBytes(dir.filePath("not/yet/made")) > 0);

        QLabel label;
        label.setFixedWidth(80);
        const QString longText = QString("averyveryverylongname").repeated(5);
        const QString fitted = FitText(&label, longText);
        QVERIFY(fitted.contains("..."));
        QVERIFY(fitted.size() < longText.size());
        QVERIFY(fitted.startsWith("aver"));
        QVERIFY(fitted.endsWith("name"));
        QCOMPARE(FitText(&label, "ok"), QString("ok"));
    }
};

VELMORA_TEST_MAIN(DownloadTest)
#include "download_test.moc"
