#pragma once

// A server on 127.0.0.1 that answers as the online databases do: each request gets the next
// scripted reply of the first route whose key is part of its target (the last reply repeats),
// or a 404. Replies can announce more than they send, or drip their body a byte at a time.

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
    // One byte of the body every dripMs, when above 0.
    int dripMs = 0;
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
    }

    QStringList targets;
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
        for (const QByteArray& line : lines)
            if (line.toLower().startsWith("user-agent:")) userAgent = line.mid(11).trimmed();
        targets << QString::fromLatin1(target);
        times << clock_.elapsed();
        pending_.remove(socket);
        Reply reply = Status("404 Not Found");
        for (Route& route : routes_) {
            if (!target.contains(route.key)) continue;
            reply = route.replies.size() > 1 ? route.replies.takeFirst() : route.replies.first();
            break;
        }
        const qint64 length = reply.announced >= 0 ? reply.announced : reply.body.size();
        socket->write("HTTP/1.1 " + reply.status + "\r\nConnection: close\r\nContent-Length: " +
                      QByteArray::number(length) + "\r\n" + reply.headers + "\r\n");
        if (reply.dripMs <= 0) {
            socket->write(reply.body);
            socket->disconnectFromHost();
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
