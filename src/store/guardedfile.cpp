#include "store/guardedfile.h"

#include <QFile>
#include <QFileInfo>

#include "toolkit/vb/vberror.h"

namespace {
const QByteArray kGuardedSignature = "SQLite format F";
const QByteArray kUsableSignature = "SQLite format 3";
}  // namespace

int GetAttr(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists()) throw VbError(53);
    // Permission bits, not access(): the owner's write bit is what read-only means, also for root.
    return vbArchive | (info.permission(QFile::WriteOwner) ? 0 : vbReadOnly);
}

void SetAttr(const QString& path, int attributes) {
    if (!QFileInfo::exists(path)) throw VbError(53);
    QFile::Permissions permissions = QFile::permissions(path);
    permissions |= QFile::ReadOwner | QFile::ReadUser;
    if (attributes & vbReadOnly)
        permissions &= ~(QFile::WriteOwner | QFile::WriteUser);
    else
        permissions |= QFile::WriteOwner | QFile::WriteUser;
    if (!QFile::setPermissions(path, permissions)) throw VbError(75);
}

bool FileExists(const QString& path) {
    const QFileInfo info(path);
    return info.exists() && info.isFile();
}

void FlipDatabaseHeader(const QString& path, int mode) {
    const QByteArray& signature = mode == kGuardHeader ? kGuardedSignature : kUsableSignature;
    if (mode != kGuardHeader && mode != kUnguardHeader) return;
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite)) throw VbError(75, QString(), path);
    for (int offset = 0; offset < signature.size(); ++offset) {
        if (!file.seek(offset) || file.write(signature.constData() + offset, 1) != 1)
            throw VbError(75, QString(), path);
    }
    if (!file.flush()) throw VbError(75, QString(), path);
}
