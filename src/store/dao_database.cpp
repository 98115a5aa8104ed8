// Database: statements on one open catalogue file.

#include <QFileInfo>

#include "store/adaptedsql.h"
#include "store/dao_detail.h"
#include "store/sqltext.h"

namespace dao_detail {

Connection::~Connection() {
    Close();
}

void Connection::Close() {
    if (!db) return;
    // Every statement must be finalized, or SQLite keeps the file (and its lock) open.
    for (RecordsetData* recordset : recordsets) recordset->Detach();
    recordsets.clear();
    ForgetOpenPlans();
    for (sqlite3_stmt* statement : internalStatements) sqlite3_finalize(statement);
    internalStatements.clear();
    sqlite3_close(db);
    db = nullptr;
}

void Connection::ForgetOpenPlans() {
    for (const auto& plan : std::as_const(openPlans)) {
        plan->forgotten = true;
        for (sqlite3_stmt* statement : plan->idle) sqlite3_finalize(statement);
        plan->idle.clear();
    }
    openPlans.clear();
}

OpenPlan::~OpenPlan() {
    for (sqlite3_stmt* statement : idle) sqlite3_finalize(statement);
}

void OpenPlan::GiveBack(sqlite3_stmt* statement) {
    constexpr size_t kMostIdle = 2;
    if (forgotten || idle.size() >= kMostIdle) {
        sqlite3_finalize(statement);
        return;
    }
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    idle.push_back(statement);
}

sqlite3_stmt* PrepareOne(const Connection& connection, const QString& sql) {
    return PrepareAdapted(connection, AdaptStatement(sql).toUtf8());
}

sqlite3_stmt* PrepareAdapted(const Connection& connection, const QByteArray& text) {
    if (!connection.db) Raise(3420);
    sqlite3_stmt* statement = nullptr;
    const char* tail = nullptr;
    if (sqlite3_prepare_v2(connection.db, text.constData(), static_cast<int>(text.size()),
                           &statement, &tail) != SQLITE_OK)
        RaiseSqlite(connection);
    if (!statement) Raise(3129);
    if (!sqltext::OnlyBlanksAndSemicolons(tail)) {
        sqlite3_finalize(statement);
        Raise(jetCharactersAfterEnd);
    }
    return statement;
}

QVariantList RunInternal(const Connection& connection, const QString& sql,
                         const std::vector<QVariant>& values) {
    if (!connection.db) Raise(3420);
    constexpr qsizetype kMostKeptStatements = 64;
    sqlite3_stmt* statement = connection.internalStatements.value(sql);
    if (!statement) {
        if (sqlite3_prepare_v2(connection.db, sql.toUtf8().constData(), -1, &statement, nullptr) !=
            SQLITE_OK)
            RaiseSqlite(connection);
        if (connection.internalStatements.size() >= kMostKeptStatements) {
            for (sqlite3_stmt* kept : connection.internalStatements) sqlite3_finalize(kept);
            connection.internalStatements.clear();
        }
        connection.internalStatements.insert(sql, statement);
    }
    for (size_t i = 0; i < values.size(); ++i) Bind(statement, static_cast<int>(i) + 1, values[i]);
    const int result = sqlite3_step(statement);
    QVariantList first;
    if (result == SQLITE_ROW) {
        const int columns = sqlite3_column_count(statement);
        const CachedRow row = CachedRow::FromStatement(statement, columns);
        for (int i = 0; i < columns; ++i) first << row.Value(i);
    }
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        // The report finalizes the statement, so it is kept no longer.
        connection.internalStatements.remove(sql);
        RaiseSqlite(connection, statement);
    }
    // Reset at once, so that a kept statement holds no lock and no transaction open.
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    return first;
}

QString Quoted(const QString& identifier) {
    return '"' + QString(identifier).replace('"', "\"\"") + '"';
}

}  // namespace dao_detail

using namespace dao_detail;

Database::Database() = default;

Database::~Database() {
    Close();
}

void Database::Execute(const QString& sql, int) {
    if (!IsOpen()) Raise(3420);
    // A Jet file changes only row by row through its writer; a statement would change the copy
    // alone.
    if (connection_->jetCopy) Raise(jetObjectReadOnly);
    sqlite3_stmt* statement = PrepareOne(*connection_, sql);
    // A statement that changes the schema may report a column too; a select only reads.
    if (sqlite3_stmt_readonly(statement) && sqlite3_column_count(statement) > 0) {
        sqlite3_finalize(statement);
        Raise(3065);
    }
    const QByteArray verb = QByteArray(sqlite3_sql(statement)).trimmed().left(6).toLower();
    const bool changesRows = verb == "insert" || verb == "update" || verb == "delete";
    const int result = sqlite3_step(statement);
    if (!changesRows) connection_->ForgetOpenPlans();
    if (result != SQLITE_DONE) RaiseSqlite(*connection_, statement);
    sqlite3_finalize(statement);
    connection_->recordsAffected = sqlite3_changes(connection_->db);
}

namespace {

QString SavepointName(int level) {
    return "dao_trans_" + QString::number(level);
}

[[noreturn]] void RaiseNoTransaction() {
    Raise(3034,
          "You tried to commit or rollback a transaction without first beginning a transaction.");
}

}  // namespace

void Database::BeginTrans() {
    if (!IsOpen()) Raise(3420);
    Connection& connection = *connection_;
    if (!InTransaction()) {
        // Levels left open over a transaction the engine undid by itself are gone with it.
        RunInternal(connection, "BEGIN");
        connection.transactionLevels = 0;
        connection.ownsTransaction = true;
        if (connection.writer) connection.writer->BeginUnit();
    } else {
        if (connection.transactionLevels == 0) connection.ownsTransaction = false;
        RunInternal(connection, "SAVEPOINT " + SavepointName(connection.transactionLevels + 1));
    }
    ++connection.transactionLevels;
}

void Database::CommitTrans() {
    if (!IsOpen()) Raise(3420);
    Connection& connection = *connection_;
    if (connection.transactionLevels == 0 || !InTransaction()) RaiseNoTransaction();
    if (connection.transactionLevels == 1 && connection.ownsTransaction) {
        // The file takes the writes first: when it refuses them, the copy can still undo them.
        if (connection.writer) connection.writer->EndUnit(true);
        RunInternal(connection, "COMMIT");
    } else {
        RunInternal(connection, "RELEASE " + SavepointName(connection.transactionLevels));
    }
    --connection.transactionLevels;
}

void Database::Rollback() {
    if (!IsOpen()) Raise(3420);
    Connection& connection = *connection_;
    if (connection.transactionLevels == 0) RaiseNoTransaction();
    const int level = connection.transactionLevels--;
    const bool outermost = level == 1 && connection.ownsTransaction;
    // The transaction may have changed the schema the plans were made on.
    connection.ForgetOpenPlans();
    if (outermost && connection.writer) connection.writer->EndUnit(false);
    if (!InTransaction()) return;
    if (outermost) {
        RunInternal(connection, "ROLLBACK");
    } else {
        RunInternal(connection, "ROLLBACK TO " + SavepointName(level));
        RunInternal(connection, "RELEASE " + SavepointName(level));
    }
}

bool Database::InTransaction() const {
    return IsOpen() && !sqlite3_get_autocommit(connection_->db);
}

long Database::RecordsAffected() const {
    return connection_ ? connection_->recordsAffected : 0;
}

void Database::Close() {
    if (connection_) connection_->Close();
}

bool Database::IsOpen() const {
    return connection_ && connection_->db;
}

QString Database::Name() const {
    return connection_ ? connection_->path : QString();
}

sqlite3* Database::Handle() const {
    return connection_ ? connection_->db : nullptr;
}
