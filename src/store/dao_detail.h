#pragma once

// The insides of the DAO-style layer, shared by its source files only.

#include <sqlite3.h>

#include <QHash>
#include <QString>
#include <memory>
#include <vector>

#include "store/dao.h"
#include "store/jetdatabase.h"
#include "store/rowcache.h"

namespace dao_detail {

struct OpenPlan;

struct Connection {
    sqlite3* db = nullptr;
    QString path;
    long recordsAffected = 0;
    // Open recordsets lose their statements when the database closes.
    std::vector<RecordsetData*> recordsets;
    // An in-memory copy of a Jet file; its changes reach the file through the writer, and
    // without one it refuses them.
    bool jetCopy = false;
    std::unique_ptr<JetWriter> writer;
    // BeginTrans calls not yet committed or rolled back. The first began the engine's
    // transaction when none was open (ownsTransaction), each further one is a savepoint in it.
    int transactionLevels = 0;
    bool ownsTransaction = false;
    // The layer's own statements (the writes of Update, the reads after them) come back for
    // every row of an import; each is prepared once per connection.
    mutable QHash<QString, sqlite3_stmt*> internalStatements;
    // What opening each statement learned, by its form with the compared values as parameters.
    QHash<QString, std::shared_ptr<OpenPlan>> openPlans;

    ~Connection();
    void Close();
    // After a change of the schema a plan may name fields that are gone or miss new ones.
    void ForgetOpenPlans();
};

struct Column {
    QString name;    // as the statement names it
    QString table;   // the table it comes from; empty for an expression
    QString origin;  // its name in that table
    QString quotedOrigin;
    QString declaredType;
    int rowidColumn = -1;     // statement column holding its table's rowid, -1 when unknown
    int firstSameField = -1;  // the first column of the row that names the same field
    bool counter = false;     // the table's INTEGER PRIMARY KEY
};

// A key of an order the recordset puts its rows in itself.
struct SortTerm {
    int column;
    bool descending;
    CachedRow::TextOrder textOrder;
};

// What opening a statement learns once: its fields and the text it is prepared from. Recordsets
// opened on it hand their prepared statements back when they close, for the next opening.
struct OpenPlan {
    QByteArray preparedText;
    // The statement's order by, when this layer sorts the rows itself and the prepared text
    // leaves the clause out.
    std::vector<SortTerm> sortTerms;
    std::vector<Column> columns;
    std::vector<QString> rowidTables;
    QHash<QString, int> qualifiedNames;
    QHash<QString, int> plainNames;
    int statementColumns = 0;
    std::vector<sqlite3_stmt*> idle;
    bool forgotten = false;

    ~OpenPlan();
    // A finished statement back for reuse, or finalized when the plan is forgotten.
    void GiveBack(sqlite3_stmt* statement);
};

enum class EditMode { None, Edit, Add };

struct RecordsetData {
    std::shared_ptr<Connection> connection;
    QString source;  // as the caller gave it
    QString sql;     // the statement as the recordset runs it, before the rowids are added
    QString table;   // of a table-type recordset
    int type = dbOpenDynaset;
    int options = 0;
    sqlite3_stmt* statement = nullptr;
    std::shared_ptr<OpenPlan> plan;
    int statementColumns = 0;  // the fields, then one rowid per table
    std::vector<Column> columns;
    std::vector<QString> rowidTables;  // the table of each rowid column, in order
    QHash<QString, int> qualifiedNames;
    QHash<QString, int> plainNames;

    // The rows visited, from the row numbered firstCached on. A forward-only recordset keeps
    // the current row alone: a walk over large memos or listings holds one at a time.
    std::vector<CachedRow> rows;
    long firstCached = 0;
    // A recordset that sorts its own rows reads them all at the start; they are taken from
    // here as the recordset moves on, so that it counts and moves as any other.
    std::vector<CachedRow> sortedAhead;
    size_t nextAhead = 0;
    bool exhausted = false;
    bool closed = false;
    long position = -1;  // current row; -1 before the first
    bool eof = false;
    bool currentDeleted = false;  // position then holds the row after the deleted one
    long tableCount = 0;

    QString filter;
    QString sort;
    EditMode editMode = EditMode::None;
    std::vector<QVariant> pending;
    std::vector<bool> changed;
    // The statements Update runs, by the fields it writes; a loop of AddNew and Update writes
    // the same fields every time.
    QHash<QByteArray, QString> writeStatements;
    QHash<int, std::pair<QString, std::vector<int>>> readBackStatements;

    ~RecordsetData();
    void Detach();

    void RequireOpen() const;
    void RequireCurrent() const;
    bool HasCurrent() const { return !eof && !currentDeleted && position >= 0; }
    // Steps the statement until row index exists; false when the rows end first.
    bool FetchTo(long index);
    // Rows read so far, those dropped by a forward-only recordset included.
    long FetchedCount() const { return firstCached + static_cast<long>(rows.size()); }
    // Going back is refused by a forward-only recordset once its first row is gone.
    void RequireCached(long index) const;
    void FetchAll();
    void Start();
    // Reads every row of the statement and sorts them by the plan's terms.
    void ReadAllSorted();
    // A row added through this recordset: it comes after the rows the recordset has still to
    // reach, as the rows of a finished statement end there.
    void AppendAdded(CachedRow row);
    QVariant CachedValue(int column) const;
    // The field as the program sees it: the edited value between AddNew or Edit and Update.
    QVariant Read(int column);
    void Write(int column, const QVariant& value);
    QVariant ReserveCounter(int column);
    bool Updatable() const;
    void RequireUpdatable() const;
    int RowidColumn(const QString& table) const;
};

// Records the error for DBEngine::Errors and throws it.
[[noreturn]] void Raise(int number, const QString& description = QString());
// Throws the connection's last SQLite error as Jet would report the same refusal, after
// finalizing the failed statement, if given.
[[noreturn]] void RaiseSqlite(const Connection& connection, sqlite3_stmt* failed = nullptr);

// Adapts the statement, prepares it and refuses a second statement after it.
sqlite3_stmt* PrepareOne(const Connection& connection, const QString& sql);
// Prepares a statement already adapted, refusing a second statement after it.
sqlite3_stmt* PrepareAdapted(const Connection& connection, const QByteArray& text);
// Runs a statement of the layer's own, with bound values; returns its first row, if any.
QVariantList RunInternal(const Connection& connection, const QString& sql,
                         const std::vector<QVariant>& values = {});
QString Quoted(const QString& identifier);

// Reads the Jet file at path into a new in-memory connection.
std::shared_ptr<Connection> OpenJetCopy(const QString& path, bool readOnly);
// Every column of one row of a table, by rowid.
struct JetRowImage {
    QStringList columns;
    QVariantList values;
};
JetRowImage ReadRowImage(const Connection& connection, const QString& table, const QVariant& rowid);

// Bytes of a number column, declared width of a text column.
int DeclaredSize(const QString& declaredType);

}  // namespace dao_detail
