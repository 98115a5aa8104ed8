#include "store/passwordcheck.h"

#include <sqlite3.h>

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <QRegularExpression>

namespace passwordcheck {
namespace {

const char* const kCreateTable =
    "CREATE TABLE IF NOT EXISTS catalogue_password (salt BLOB NOT NULL, digest BLOB NOT NULL)";

QByteArray Digest(const QByteArray& salt, const QString& password) {
    return QCryptographicHash::hash(salt + password.toUtf8(), QCryptographicHash::Sha256);
}

bool HasCheck(sqlite3* db) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db,
                       "SELECT 1 FROM sqlite_master WHERE type = 'table' AND "
                       "name = 'catalogue_password'",
                       -1, &statement, nullptr);
    const bool found = statement && sqlite3_step(statement) == SQLITE_ROW;
    sqlite3_finalize(statement);
    return found;
}

}  // namespace

void Write(sqlite3* db, const QString& password) {
    sqlite3_exec(db, kCreateTable, nullptr, nullptr, nullptr);
    sqlite3_exec(db, "DELETE FROM catalogue_password", nullptr, nullptr, nullptr);
    QByteArray salt(16, '\0');
    QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(salt.data()), 4);
    const QByteArray digest = Digest(salt, password);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO catalogue_password (salt, digest) VALUES (?, ?)", -1,
                       &statement, nullptr);
    sqlite3_bind_blob(statement, 1, salt.constData(), static_cast<int>(salt.size()),
                      SQLITE_TRANSIENT);
    sqlite3_bind_blob(statement, 2, digest.constData(), static_cast<int>(digest.size()),
                      SQLITE_TRANSIENT);
    sqlite3_step(statement);
    sqlite3_finalize(statement);
}

bool Matches(sqlite3* db, const QString& password) {
    if (!HasCheck(db)) return true;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, "SELECT salt, digest FROM catalogue_password", -1, &statement,
                           nullptr) != SQLITE_OK)
        return false;
    bool matches = false;
    if (sqlite3_step(statement) == SQLITE_ROW) {
        const QByteArray salt(static_cast<const char*>(sqlite3_column_blob(statement, 0)),
                              sqlite3_column_bytes(statement, 0));
        const QByteArray digest(static_cast<const char*>(sqlite3_column_blob(statement, 1)),
                                sqlite3_column_bytes(statement, 1));
        matches = Digest(salt, password) == digest;
    }
    sqlite3_finalize(statement);
    return matches;
}

QString FromConnectString(const QString& connect) {
    // The password runs to the end of the string: it may itself hold ';' or '='.
    static const QRegularExpression pattern(
        ";pwd?=(.*)$",
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const auto match = pattern.match(connect);
    return match.hasMatch() ? match.captured(1) : QString();
}

}  // namespace passwordcheck
