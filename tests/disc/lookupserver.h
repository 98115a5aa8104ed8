#pragma once

// A server on 127.0.0.1 that answers as the online databases and the update server do: each
// request gets the next scripted reply of the first route whose key is part of its target (the
// last reply repeats), or a 404. Replies can announce more than they send or no length at all,
// answer a Range with the rest of their body, send their body in small pieces, drip it a byte at
// a time, or fall silent once it is sent.

#include <QElapsedTimer>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace lookupserver {

struct Reply {
    QByteArray status = "200 OK";
    QByteArray body;
    QByteArray headers;
    // Content-Length when it differs from the body sent (a truncated answer).
    qint64 announced = -1;
    bool sendLength = true;
    // A 200 answers a Range with 206 and the body from where the Range starts.
    bool honourRange = false;
    // The connection stays open once the body is sent.
    bool stall = false;
    // One byte of the body every dripMs, when above 0.
    int dripMs = 0;
    // The body written and flushed this many bytes at a time, when above 0.
    qsizetype piece = 0;
};

inline Reply Status(const QByteArray& status, const QByteArray& headers = {}) {
    Reply reply;
    reply.status = status;
    reply.headers = headers;
    return reply;
}

inline Reply Body(const QByteArray& body) {
    Reply reply;
    reply.body = body;
    return reply;
}

class LookupServer : public QObject {
  public:
    LookupServer() {
        clock_.start();
        server_.listen(QHostAddress::LocalHost);
        connect(&server_, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = server_.nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Serve(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }

    QString url() const { return "http://127.0.0.1:" + QString::number(server_.serverPort()); }
    void answer(const QByteArray& key, const Reply& reply) {
        for (Route& route : routes_)
            if (route.key == key) return route.replies.append(reply);
        routes_.append({key, {reply}});
    }
    void clear() {
        routes_.clear();
        targets.clear();
        times.clear();
        ranges.clear();
    }

    QStringList targets;
    // The Range header of each request, empty when it had none.
    QStringList ranges;
    // Milliseconds since the server started, one a request.
    QList<qint64> times;
    QByteArray userAgent;

  private:
    struct Route {
        QByteArray key;
        QList<Reply> replies;
    };

    void Serve(QTcpSocket* socket) {
        QByteArray& request = pending_[socket];
        request += socket->readAll();
        if (!request.contains("\r\n\r\n")) return;
        const QList<QByteArray> lines = request.split('\n');
        const QByteArray target = lines.first().split(' ').value(1);
        QByteArray range;
        for (const QByteArray& line : lines) {
            if (line.toLower().startsWith("user-agent:")) userAgent = line.mid(11).trimmed();
            if (line.toLower().startsWith("range:")) range = line.mid(6).trimmed();
        }
        targets << QString::fromLatin1(target);
        ranges << QString::fromLatin1(range);
        times << clock_.elapsed();
        pending_.remove(socket);
        Reply reply = Status("404 Not Found");
        for (Route& route : routes_) {
            if (!target.contains(route.key)) continue;
            reply = route.replies.size() > 1 ? route.replies.takeFirst() : route.replies.first();
            break;
        }
        if (reply.honourRange && !range.isEmpty() && reply.status.startsWith("200")) {
            reply.status = "206 Partial Content";
            reply.body = reply.body.mid(range.mid(6).split('-').value(0).toLongLong());
        }
        const qint64 length = reply.announced >= 0 ? reply.announced : reply.body.size();
        socket->write("HTTP/1.1 " + reply.status + "\r\nConnection: close\r\n" +
                      (reply.sendLength ? "Content-Length: " + QByteArray::number(length) + "\r\n"
                                        : QByteArray()) +
                      reply.headers + "\r\n");
        if (reply.dripMs <= 0) {
            const qsizetype piece = reply.piece > 0 ? reply.piece : reply.body.size();
            for (qsizetype at = 0; at < reply.body.size(); at += piece) {
                socket->write(reply.body.mid(at, piece));
                socket->flush();
            }
            if (!reply.stall) socket->disconnectFromHost();
            return;
        }
        auto* drip = new QTimer(socket);
        QPointer<QTcpSocket> guarded(socket);
        connect(drip, &QTimer::timeout, socket, [guarded, body = reply.body, sent = 0]() mutable {
            if (!guarded || sent == body.size()) return;
            guarded->write(body.mid(sent++, 1));
        });
        drip->start(reply.dripMs);
    }

    QTcpServer server_;
    QElapsedTimer clock_;
    QList<Route> routes_;
    QHash<QTcpSocket*, QByteArray> pending_;
};

}  // namespace lookupserver
