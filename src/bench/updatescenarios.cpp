#include "bench/updatescenarios.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include "bench/benchboxes.h"
#include "toolkit/controls/AnimatedGifCtl.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"
#include "update/frmDownload.h"

std::vector<double> TimeSpinnerLoad(int runs) {
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        AnimatedGifCtl gif;
        QElapsedTimer timer;
        timer.start();
        gif.LoadGif(100);
        times.push_back(timer.nsecsElapsed() / 1e6);
        if (!gif.bValidGif() || gif.NumberofFrames() < 1)
            throw VbError(0, "the spinner did not load");
    }
    return times;
}

namespace {

// Serves one body to every request on 127.0.0.1, as a plain HTTP/1.1 server does.
class LoopbackServer : public QObject {
  public:
    explicit LoopbackServer(QByteArray body) : body_(std::move(body)) {
        server_.listen(QHostAddress::LocalHost);
        connect(&server_, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = server_.nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    request_[socket] += socket->readAll();
                    if (!request_[socket].contains("\r\n\r\n")) return;
                    request_.remove(socket);
                    socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
                                  QByteArray::number(body_.size()) + "\r\n\r\n" + body_);
                    socket->disconnectFromHost();
                });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    QString Url(const QString& path) const {
        return "http://127.0.0.1:" + QString::number(server_.serverPort()) + path;
    }

  private:
    QByteArray body_;
    QTcpServer server_;
    QHash<QTcpSocket*, QByteArray> request_;
};

}  // namespace

std::vector<double> TimeDownload(int megabytes, int runs) {
    QByteArray body(megabytes * 1024 * 1024, '\0');
    for (qsizetype i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    LoopbackServer server(body);
    BoxRecorder boxes(vbCancel);
    std::vector<double> times;
    for (int run = 0; run < runs && boxes.prompts.isEmpty(); ++run) {
        QTemporaryDir folder;
        const QString target = folder.filePath("update.bin");
        frmDownload window;
        bool succeeded = false;
        QElapsedTimer timer;
        timer.start();
        window.DownloadFile(server.Url("/update.bin"), target, "", "", true, succeeded);
        times.push_back(timer.nsecsElapsed() / 1e6);
        if (!succeeded || QFileInfo(target).size() != body.size())
            throw VbError(0, "the download did not arrive whole");
    }
    if (!boxes.prompts.isEmpty())
        throw VbError(0, "the download asked: " + boxes.prompts.join(" "));
    return times;
}
