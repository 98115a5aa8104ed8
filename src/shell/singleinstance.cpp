#include "shell/singleinstance.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QLocalSocket>

namespace {

const QByteArray kRaiseRequest = "raise\n";

struct Claim {
    int descriptor = -1;
    // The window of this process that holds the folder now; the lock itself outlives it.
    const SingleInstance* owner = nullptr;
};

// The locks this process holds, by folder. They are never released: the kernel drops them when
// the process ends, however it ends, and not a moment earlier.
QHash<QString, Claim>& Claims() {
    static QHash<QString, Claim> claims;
    return claims;
}

// The lock's descriptor; -1 with held set when another process has it, -1 alone when the
// folder allows no lock file at all.
int LockFolder(const QString& folder, bool* held) {
    *held = false;
    const QByteArray path = QFile::encodeName(folder + "/velmora.lock");
    const int descriptor = ::open(path.constData(), O_RDONLY | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) return -1;
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        *held = errno == EWOULDBLOCK;
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

}  // namespace

SingleInstance::SingleInstance(const QString& folder, QObject* parent)
    : QObject(parent), folder_(QDir(folder).canonicalPath()) {
    // The socket lives in the abstract namespace, so its name depends on the folder and the
    // user alone, not on TMPDIR.
    const QByteArray key = folder_.toUtf8() + '\0' + QByteArray::number(::getuid());
    serverName_ =
        "velmora-" + QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex().left(24);
}

SingleInstance::~SingleInstance() {
    Release();
}

void SingleInstance::Release() {
    auto claim = Claims().find(folder_);
    if (claim != Claims().end() && claim->owner == this) claim->owner = nullptr;
    if (server_) server_->close();
}

bool SingleInstance::Claim() {
    auto claim = Claims().find(folder_);
    if (claim != Claims().end()) {
        if (claim->owner) return false;
        claim->owner = this;
        return true;
    }
    bool held = false;
    const int descriptor = LockFolder(folder_, &held);
    if (held) return false;
    // A folder that allows no lock file at all allows no catalogue either; the opening reports
    // what is wrong with it.
    Claims().insert(folder_, {descriptor, this});
    return true;
}

bool SingleInstance::AskPreviousInstanceToRaise() {
    QLocalSocket socket;
    socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    socket.connectToServer(serverName_);
    if (!socket.waitForConnected(500)) return false;
    socket.write(kRaiseRequest);
    socket.waitForBytesWritten(500);
    socket.disconnectFromServer();
    return true;
}

void SingleInstance::Listen(std::function<void()> onRaise) {
    server_ = new QLocalServer(this);
    server_->setSocketOptions(QLocalServer::AbstractNamespaceOption);
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
