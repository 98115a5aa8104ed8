// A Jet file read into an in-memory SQLite copy that the DAO layer works on.

#include "store/jetdatabase.h"

#include <QRegularExpression>

#include "jet/jet.h"
#include "store/dao_detail.h"
#include "store/jetlike.h"

using namespace dao_detail;

namespace {

JetWriterFactory writerFactory;

QString Declared(const jetfile::Column& column) {
    const QString quoted = Quoted(column.name);
    switch (column.kind) {
        case jetfile::ColumnKind::Boolean:
            return "BOOLEAN";
        case jetfile::ColumnKind::Byte:
            return "BYTE CHECK (" + quoted + " BETWEEN 0 AND 255)";
        case jetfile::ColumnKind::Integer:
            return "SMALLINT CHECK (" + quoted + " BETWEEN -32768 AND 32767)";
        case jetfile::ColumnKind::Long:
            return "LONG";
        case jetfile::ColumnKind::Real:
            return "DOUBLE";
        case jetfile::ColumnKind::DateTime:
            return "DATETIME";
        case jetfile::ColumnKind::Text:
            return QString("TEXT(%1) COLLATE NOCASE CONSTRAINT width_%2 CHECK (length(%3) <= %1)")
                .arg(column.textWidth)
                .arg(QString(column.name).remove(QRegularExpression("\\W")))
                .arg(quoted);
        case jetfile::ColumnKind::Memo:
            return "LONGTEXT COLLATE NOCASE";
        case jetfile::ColumnKind::Binary:
            break;
    }
    return "BLOB";
}

// Fills the copy table by table as the file's reader hands them over.
class CopyBuilder {
  public:
    explicit CopyBuilder(const Connection& connection) : connection_(connection) {}
    ~CopyBuilder() { sqlite3_finalize(insert_); }

    void StartTable(const QString& name, const std::vector<jetfile::Column>& columns) {
        EndTable();
        table_ = name;
        columns_ = columns;
        QStringList definitions, placeholders;
        for (const jetfile::Column& column : columns) {
            definitions << Quoted(column.name) + " " + Declared(column);
            placeholders << "?";
        }
        RunInternal(connection_,
                    "CREATE TABLE " + Quoted(name) + " (" + definitions.join(", ") + ")");
        const QString sql =
            "INSERT INTO " + Quoted(name) + " VALUES (" + placeholders.join(", ") + ")";
        if (sqlite3_prepare_v2(connection_.db, sql.toUtf8().constData(), -1, &insert_, nullptr) !=
            SQLITE_OK)
            RaiseSqlite(connection_);
    }

    void AddRow(const QVariantList& values) {
        for (qsizetype i = 0; i < values.size(); ++i) Bind(insert_, int(i) + 1, values[i]);
        if (sqlite3_step(insert_) != SQLITE_DONE) RaiseSqlite(connection_, insert_);
        sqlite3_reset(insert_);
    }

    // Rows are looked up one at a time by their long-integer keys (identities, references);
    // indexed, such a lookup does not read the whole table.
    void EndTable() {
        if (!insert_) return;
        sqlite3_finalize(insert_);
        insert_ = nullptr;
        for (const jetfile::Column& column : columns_)
            if (column.kind == jetfile::ColumnKind::Long)
                RunInternal(connection_, "CREATE INDEX " + Quoted(table_ + "\x1f" + column.name) +
                                             " ON " + Quoted(table_) + " (" + Quoted(column.name) +
                                             ")");
    }

  private:
    const Connection& connection_;
    QString table_;
    std::vector<jetfile::Column> columns_;
    sqlite3_stmt* insert_ = nullptr;
};

}  // namespace

void SetJetWriterFactory(JetWriterFactory factory) {
    writerFactory = std::move(factory);
}

namespace dao_detail {

std::shared_ptr<Connection> OpenJetCopy(const QString& path, bool readOnly) {
    auto connection = std::make_shared<Connection>();
    connection->path = path;
    connection->jetCopy = true;
    if (sqlite3_open_v2(":memory:", &connection->db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                        nullptr) != SQLITE_OK)
        RaiseSqlite(*connection);
    jetlike::Register(connection->db);
    RunInternal(*connection, "BEGIN");
    try {
        CopyBuilder copy(*connection);
        jetfile::ReadTables(
            path,
            [&](const QString& name, const std::vector<jetfile::Column>& columns) {
                copy.StartTable(name, columns);
            },
            [&](const QVariantList& values) { copy.AddRow(values); });
        copy.EndTable();
    } catch (const jet::WriteError& error) {
        Raise(error.Number, error.Description);
    }
    RunInternal(*connection, "COMMIT");
    if (!readOnly && writerFactory) connection->writer = writerFactory(path);
    return connection;
}

JetRowImage ReadRowImage(const Connection& connection, const QString& table,
                         const QVariant& rowid) {
    JetRowImage image;
    sqlite3_stmt* statement = nullptr;
    const QString sql = "SELECT * FROM " + Quoted(table) + " WHERE rowid = ?";
    if (sqlite3_prepare_v2(connection.db, sql.toUtf8().constData(), -1, &statement, nullptr) !=
        SQLITE_OK)
        RaiseSqlite(connection);
    Bind(statement, 1, rowid);
    const int columns = sqlite3_column_count(statement);
    for (int i = 0; i < columns; ++i)
        image.columns << QString::fromUtf8(sqlite3_column_name(statement, i));
    if (sqlite3_step(statement) == SQLITE_ROW) {
        const CachedRow row = CachedRow::FromStatement(statement, columns);
        for (int i = 0; i < columns; ++i) image.values << row.Value(i);
    }
    sqlite3_finalize(statement);
    return image;
}

}  // namespace dao_detail
