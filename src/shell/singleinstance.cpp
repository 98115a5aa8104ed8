#include "shell/singleinstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>

namespace {
const QByteArray kRaiseRequest = "raise\n";
}

SingleInstance::SingleInstance(const QString& programFolder, QObject* parent) : QObject(parent) {
    const QByteArray folder = QDir(programFolder).canonicalPath().toUtf8();
    serverName_ =
        "velmora-" + QCryptographicHash::hash(folder, QCryptographicHash::Sha1).toHex().left(16);
}

bool SingleInstance::AskPreviousInstanceToRaise() {
    QLocalSocket socket;
    socket.connectToServer(serverName_);
    if (!socket.waitForConnected(500)) return false;
    socket.write(kRaiseRequest);
    socket.waitForBytesWritten(500);
    socket.disconnectFromServer();
    return true;
}

void SingleInstance::Listen(std::function<void()> onRaise) {
    // A server left behind by a crashed run would block the name.
    QLocalServer::removeServer(serverName_);
    server_ = new QLocalServer(this);
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    connect(server_, &QLocalServer::newConnection, this, [this, onRaise] {
        while (QLocalSocket* socket = server_->nextPendingConnection()) {
            connect(socket, &QLocalSocket::readyRead, socket, [socket, onRaise] {
                if (socket->readAll().startsWith(kRaiseRequest.trimmed())) onRaise();
            });
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    server_->listen(serverName_);
}
