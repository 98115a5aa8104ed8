#include "bench/lookupscenarios.h"

#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include "app/mGlobals.h"
#include "bench/benchboxes.h"
#include "bench/benchprogram.h"
#include "bench/discscenarios.h"
#include "disc/audiodisc.h"
#include "disc/lookupsettings.h"
#include "disc/onlinediscids.h"
#include "editor/frmEdit.h"
#include "editor/frmLookup.h"
#include "editor/frmTracksListing.h"
#include "shell/frmMain.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const int kTracks = 12;

// Answers each request with the body of the first key found in its target, or a CDDB "no
// match"; with dripMs, a byte at a time.
class DatabaseServer : public QObject {
  public:
    DatabaseServer() {
        clock_.start();
        server_.listen(QHostAddress::LocalHost);
        connect(&server_, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = server_.nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { Serve(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    QString Url() const { return "http://127.0.0.1:" + QString::number(server_.serverPort()); }

    QList<std::pair<QByteArray, QByteArray>> bodies;
    int dripMs = 0;
    // When each request came, in milliseconds since the server started.
    QList<qint64> arrivals;

  private:
    void Serve(QTcpSocket* socket) {
        request_[socket] += socket->readAll();
        if (!request_[socket].contains("\r\n\r\n")) return;
        const QByteArray target = request_.take(socket).split(' ').value(1);
        arrivals << clock_.elapsed();
        QByteArray body = "202 No match found\r\n";
        for (const auto& [key, answer] : bodies)
            if (target.contains(key)) {
                body = answer;
                break;
            }
        socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
                      QByteArray::number(body.size()) + "\r\n\r\n");
        if (dripMs <= 0) {
            socket->write(body);
            socket->disconnectFromHost();
            return;
        }
        auto* drip = new QTimer(socket);
        connect(drip, &QTimer::timeout, socket, [socket, body, sent = 0]() mutable {
            if (sent < body.size()) socket->write(body.mid(sent++, 1));
        });
        drip->start(dripMs);
    }

    QTcpServer server_;
    QElapsedTimer clock_;
    QHash<QTcpSocket*, QByteArray> request_;
};

QByteArray Tracks() {
    QByteArray tracks;
    for (int track = 1; track <= kTracks; ++track)
        tracks += (track > 1 ? "," : "") +
                  QString("{\"position\":%1,\"title\":\"Song %1\"}").arg(track).toUtf8();
    return tracks;
}

QByteArray OneRelease(const QString& discId) {
    return "{\"releases\":[{\"id\":\"bench-release\",\"title\":\"Bench Album\",\"date\":\"2001\","
           "\"country\":\"GB\",\"artist-credit\":[{\"name\":\"Bench Artist\",\"joinphrase\":\"\"}],"
           "\"media\":[{\"position\":1,\"format\":\"CD\",\"discs\":[{\"id\":\"" +
           discId.toLatin1() + "\"}],\"tracks\":[" + Tracks() + "]}]}]}";
}

// Counts the paints of a widget and keeps the longest gap between two.
class PaintGaps : public QObject {
  public:
    double longest = 0;
    // The time since the last paint counts too: a window that stopped painting has a gap.
    double Longest() const {
        return clock_.isValid() ? std::max(longest, clock_.nsecsElapsed() / 1e6) : -1;
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            if (clock_.isValid()) longest = std::max(longest, clock_.nsecsElapsed() / 1e6);
            clock_.start();
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    QElapsedTimer clock_;
};

// Presses Use on the look-up window the timed command opens, as soon as it shows its choice.
void UseTheChoice(QTimer& confirm) {
    QObject::connect(&confirm, &QTimer::timeout, [&confirm] {
        auto* window = qobject_cast<frmLookup*>(QApplication::activeModalWidget());
        if (!window) return;
        confirm.stop();
        auto use = [window] { window->cmdUse->click(); };
        if (window->ChoiceIsShown())
            use();
        else
            QObject::connect(window, &frmLookup::ChoiceShown, window, use);
    });
    confirm.start(0);
}

// The editor the run filled is checked and closed.
void CloseFilledEditor(const BoxRecorder& boxes) {
    if (!gEditForm->TracksListing() ||
        !gEditForm->TracksListing()->Text().startsWith("Song 1\r\nSong 2"))
        throw VbError(0, "the editor was not filled: " + boxes.prompts.join(" "));
    gEditForm->Unload();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace

std::vector<double> TimeLookupIntoEditor(const QString& folder, int runs) {
    QTemporaryDir images;
    const QString cue = WriteSilentCue(images.path(), "plain", kTracks, 4, false);
    AudioDisc disc;
    QString problem;
    OnlineDiscIds ids;
    if (!ReadAudioDisc(cue, disc, problem) || !ComputeOnlineDiscIds(disc.toc, ids, problem))
        throw VbError(0, "the cue sheet could not be read: " + problem);
    DatabaseServer server;
    server.bodies = {{"/ws/2/discid/", OneRelease(ids.musicBrainzId)}};
    qputenv("VELMORA_MUSICBRAINZ_SERVER", server.Url().toLatin1());
    qputenv("VELMORA_GNUDB_SERVER", server.Url().toLatin1());
    SetDiscDriveLocator([cue] { return cue; });
    // The offer of a look-up after reading is declined: the click on Look up is timed.
    BoxRecorder boxes(vbNo);
    bench::StartProgram(folder);
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        OpenNewAudioTitle();
        gEditForm->cmdReadDisc_Click();
        // MusicBrainz allows one request a second; the wait is not the program's work.
        QThread::msleep(1100);
        QTimer confirm;
        UseTheChoice(confirm);
        QElapsedTimer clock;
        clock.start();
        gEditForm->cmdLookup_Click();
        times.push_back(clock.nsecsElapsed() / 1e6);
        CloseFilledEditor(boxes);
    }
    bench::EndProgram();
    SetDiscDriveLocator({});
    qunsetenv("VELMORA_MUSICBRAINZ_SERVER");
    qunsetenv("VELMORA_GNUDB_SERVER");
    return times;
}

std::vector<double> TimeBarcodeIntoEditor(const QString& folder, int runs) {
    const QByteArray credit = "[{\"name\":\"Bench Artist\",\"joinphrase\":\"\"}]";
    DatabaseServer server;
    server.bodies = {{"query=barcode:",
                      "{\"releases\":[{\"id\":\"bench-release\",\"title\":\"Bench Album\",\"date\":"
                      "\"2001\",\"country\":\"GB\",\"artist-credit\":" +
                          credit + ",\"media\":[{\"format\":\"CD\",\"track-count\":12}]}]}"},
                     {"/ws/2/release/bench-release",
                      "{\"id\":\"bench-release\",\"title\":\"Bench Album\",\"artist-credit\":" +
                          credit + ",\"media\":[{\"position\":1,\"tracks\":[" + Tracks() + "]}]}"}};
    qputenv("VELMORA_MUSICBRAINZ_SERVER", server.Url().toLatin1());
    // The cover asked for after Use finds none; it is not waited for.
    qputenv("VELMORA_COVERART_SERVER", server.Url().toLatin1());
    BoxRecorder boxes(vbOK);
    bench::StartProgram(folder);
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        OpenNewAudioTitle();
        gEditForm->txtBarcode->setText("036000291452");
        // MusicBrainz allows one request a second; the wait is not the program's work.
        QThread::msleep(1100);
        QTimer confirm;
        UseTheChoice(confirm);
        server.arrivals.clear();
        QElapsedTimer clock;
        clock.start();
        gEditForm->cmdBarcode_Click();
        const double total = clock.nsecsElapsed() / 1e6;
        // The second request waits out the pace after the first: the server's time.
        if (server.arrivals.size() < 2) throw VbError(0, "the release's tracks were not asked");
        times.push_back(total - (server.arrivals[1] - server.arrivals[0]));
        CloseFilledEditor(boxes);
    }
    bench::EndProgram();
    qunsetenv("VELMORA_MUSICBRAINZ_SERVER");
    qunsetenv("VELMORA_COVERART_SERVER");
    return times;
}

std::vector<double> TimeLookupRepaintGap(int runs) {
    DatabaseServer server;
    // Long enough to drip for more than the two seconds watched.
    server.bodies = {{"/ws/2/discid/", "{\"releases\":[]}" + QByteArray(100, ' ')}};
    server.dripMs = 50;
    OnlineDiscIds ids;
    QString problem;
    if (!ComputeOnlineDiscIds({{0, 13500, 24750}, 25500}, ids, problem)) throw VbError(0, problem);
    std::vector<double> gaps;
    for (int run = 0; run < runs; ++run) {
        QThread::msleep(1100);
        frmLookup window(ids, {server.Url(), server.Url(), "bench"});
        PaintGaps paints;
        window.barWaiting->installEventFilter(&paints);
        QTimer::singleShot(2000, window.cmdCancel, &QPushButton::click);
        window.Run();
        gaps.push_back(paints.Longest());
    }
    return gaps;
}
