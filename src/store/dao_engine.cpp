// DBEngine: opening catalogue files, compacting them and writing their password check.

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>

#include "jet/jet.h"
#include "store/dao_detail.h"
#include "store/jetlike.h"
#include "store/jettext.h"
#include "store/passwordcheck.h"
#include "toolkit/vb/longwork.h"

using namespace dao_detail;

namespace {

void Run(const Connection& connection, const char* sql) {
    if (sqlite3_exec(connection.db, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        RaiseSqlite(connection);
}

std::shared_ptr<Connection> Open(const QString& path, bool exclusive, bool readOnly) {
    if (!QFileInfo::exists(path)) Raise(jetCouldNotFindFile, "Could not find file '" + path + "'.");
    auto connection = std::make_shared<Connection>();
    connection->path = path;
    // One thread uses a connection, so SQLite's own locking would only cost time on every
    // column read of a large view.
    const int flags =
        (readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &connection->db, flags, nullptr) !=
        SQLITE_OK)
        RaiseSqlite(*connection);
    Run(*connection, "PRAGMA foreign_keys = ON");
    // The views sort the whole six-table join; a larger page cache keeps that sort in memory.
    Run(*connection, "PRAGMA cache_size = -65536");
    if (exclusive) {
        // Take the lock now rather than at the first write, so that no other process can open
        // the file in between.
        Run(*connection, "PRAGMA locking_mode = EXCLUSIVE");
        Run(*connection,
            readOnly ? "SELECT count(*) FROM sqlite_master" : "BEGIN EXCLUSIVE; COMMIT");
    } else {
        // Reading the schema tells at once whether this is a database at all.
        Run(*connection, "SELECT count(*) FROM sqlite_master");
    }
    jetlike::Register(connection->db);
    jettext::Register(connection->db);
    return connection;
}

// The engine calls this every few thousand steps of the copy; the report is the copy's size
// against the source's, which is what a compaction can say of how far it is.
struct CompactionProgress {
    QString source;
    QString target;
};

int ReportCompaction(void* context) {
    const auto* progress = static_cast<const CompactionProgress*>(context);
    ReportProgress("Compacting byte", QFileInfo(progress->target).size(),
                   qMax<qint64>(1, QFileInfo(progress->source).size()));
    return 0;
}

const int kCompactionStepsBetweenReports = 1000;

void RequirePassword(const Connection& connection, const QString& connect) {
    if (!passwordcheck::Matches(connection.db, passwordcheck::FromConnectString(connect)))
        Raise(jetNotValidPassword);
}

}  // namespace

std::unique_ptr<Database> DBEngine::OpenDatabase(const QString& path, bool exclusive, bool readOnly,
                                                 const QString& connect) {
    std::unique_ptr<Database> database(new Database);
    // The Deluxe CD player's database is a Jet file; the program's own files are SQLite.
    if (jetfile::HasJetSignature(path) || path.endsWith(".mdb", Qt::CaseInsensitive)) {
        database->connection_ = OpenJetCopy(path, readOnly);
        return database;
    }
    database->connection_ = Open(path, exclusive, readOnly);
    RequirePassword(*database->connection_, connect);
    return database;
}

void DBEngine::CompactDatabase(const QString& source, const QString& target, const QString&, int,
                               const QString& password) {
    // Locale and format belong to Jet; an SQLite file has one of each.
    if (QFileInfo::exists(target)) Raise(jetFileAlreadyExists);
    const auto connection = Open(source, true, false);
    RequirePassword(*connection, password);
    // The target is made here, empty, so that a failure below removes this call's own file and
    // never one that was there before.
    const int made = ::open(QFile::encodeName(target).constData(),
                            O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (made < 0) {
        if (errno == EEXIST) Raise(jetFileAlreadyExists);
        Raise(3043, "Disk or network error.");
    }
    ::close(made);
    CompactionProgress progress{source, target};
    try {
        // The target's indexes are built in this connection, with its text order.
        sqlite3_progress_handler(connection->db, kCompactionStepsBetweenReports, ReportCompaction,
                                 &progress);
        RunInternal(*connection, "VACUUM INTO ?", {target});
        sqlite3_progress_handler(connection->db, 0, nullptr, nullptr);
        EndProgress("Compacting byte");
        connection->Close();
        // The compacted file replaces the catalogue next: it must be on the disk before that.
        QFile written(target);
        if (!written.open(QIODevice::ReadWrite) || ::fsync(written.handle()) != 0)
            Raise(3043, "Disk or network error.");
    } catch (const VbError&) {
        EndProgress("Compacting byte");
        QFile::remove(target);
        throw;
    }
}

void DBEngine::SetDatabasePassword(const QString& path, const QString& password) {
    const auto connection = Open(path, true, false);
    passwordcheck::Write(connection->db, password);
}
