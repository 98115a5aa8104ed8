#pragma once

#include <QList>
#include <QTcpServer>
#include <QTcpSocket>

// A small HTTP server on 127.0.0.1 that answers each request with the next scripted behaviour
// (the last one repeats) and records the Range header of every request.
struct HttpAnswer {
    QByteArray statusLine = "HTTP/1.1 200 OK";
    bool honourRange = true;
    bool sendLength = true;
    int extraBytes = 0;   // sent behind the announced body
    int closeAfter = -1;  // body bytes sent before the connection goes
    int stallAfter = -1;  // body bytes sent before the server goes silent
};

class TestHttpServer : public QObject {
  public:
    explicit TestHttpServer(QByteArray body = {}) : body(std::move(body)) {
        server.listen(QHostAddress::LocalHost);
        connect(&server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = server.nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Serve(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }

    QString url(const QString& path) const {
        return "http://127.0.0.1:" + QString::number(server.serverPort()) + path;
    }

    QByteArray body;
    // Paths with a body of their own; others get body.
    QHash<QByteArray, QByteArray> files;
    QList<HttpAnswer> answers;
    QStringList ranges;
    QStringList paths;

  private:
    void Serve(QTcpSocket* socket) {
        QByteArray& request = pending_[socket];
        request += socket->readAll();
        if (!request.contains("\r\n\r\n")) return;
        const QList<QByteArray> lines = request.split('\n');
        const QByteArray path = lines.first().split(' ').value(1);
        paths << QString::fromLatin1(path);
        qint64 from = 0;
        QString range;
        for (const QByteArray& line : lines)
            if (line.toLower().startsWith("range:")) {
                range = QString::fromLatin1(line.mid(6).trimmed());
                from = range.mid(6).section('-', 0, 0).toLongLong();
            }
        ranges << range;
        pending_.remove(socket);
        const HttpAnswer answer = answers.size() > 1  ? answers.takeFirst()
                                  : answers.isEmpty() ? HttpAnswer{}
                                                      : answers.first();
        const QByteArray& content = files.contains(path) ? files[path] : body;
        QByteArray statusLine = answer.statusLine;
        QByteArray sent = content;
        if (answer.honourRange && !range.isEmpty() && statusLine.contains(" 200 ")) {
            statusLine = "HTTP/1.1 206 Partial Content";
            sent = content.mid(from);
        }
        QByteArray head = statusLine + "\r\nConnection: close\r\n";
        if (answer.sendLength)
            head += "Content-Length: " + QByteArray::number(sent.size()) + "\r\n";
        head += "\r\n";
        sent += QByteArray(answer.extraBytes, 'x');
        if (answer.closeAfter >= 0) sent = sent.left(answer.closeAfter);
        if (answer.stallAfter >= 0) sent = sent.left(answer.stallAfter);
        socket->write(head + sent);
        if (answer.stallAfter < 0) socket->disconnectFromHost();
    }

    QTcpServer server;
    QHash<QTcpSocket*, QByteArray> pending_;
};
