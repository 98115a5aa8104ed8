// Opening recordsets: from a table name or a statement on a database, and from a recordset with
// its filter and sort.

#include "store/adaptedsql.h"
#include "store/dao_detail.h"
#include "store/sqltext.h"

using namespace dao_detail;

namespace {

QString Text(const char* text) {
    return text ? QString::fromUtf8(text) : QString();
}

void ReadColumns(RecordsetData& d, sqlite3_stmt* statement) {
    const int count = sqlite3_column_count(statement);
    for (int i = 0; i < count; ++i) {
        Column column;
        column.name = Text(sqlite3_column_name(statement, i));
        column.table = Text(sqlite3_column_table_name(statement, i));
        column.origin = Text(sqlite3_column_origin_name(statement, i));
        column.declaredType = Text(sqlite3_column_decltype(statement, i));
        if (!column.table.isEmpty()) {
            const char* declared = nullptr;
            int primaryKey = 0;
            sqlite3_table_column_metadata(
                d.connection->db, sqlite3_column_database_name(statement, i),
                sqlite3_column_table_name(statement, i), sqlite3_column_origin_name(statement, i),
                &declared, nullptr, nullptr, &primaryKey, nullptr);
            column.counter =
                primaryKey && Text(declared).compare("INTEGER", Qt::CaseInsensitive) == 0;
            d.qualifiedNames.insert((column.table + "." + column.origin).toLower(), i);
        }
        // Over a join a plain name may occur twice; it then reads the first such field.
        if (!d.plainNames.contains(column.name.toLower()))
            d.plainNames.insert(column.name.toLower(), i);
        d.columns.push_back(std::move(column));
    }
}

// Editing finds its rows by rowid: one hidden column per table that gives fields, after the
// fields. A statement that cannot carry them (grouped, distinct, aliased tables) stays as it is
// and cannot be edited.
sqlite3_stmt* WithRowids(RecordsetData& d, sqlite3_stmt* statement) {
    QStringList tables, columns;
    for (const Column& column : d.columns)
        if (!column.table.isEmpty() && !tables.contains(column.table, Qt::CaseInsensitive)) {
            tables << column.table;
            columns << Quoted(column.table) + ".rowid";
        }
    if (tables.isEmpty()) return statement;
    const QString extended = sqltext::WithExtraColumns(AdaptStatement(d.sql), columns);
    if (extended.isEmpty()) return statement;
    sqlite3_stmt* withRowids = nullptr;
    if (sqlite3_prepare_v2(d.connection->db, extended.toUtf8().constData(), -1, &withRowids,
                           nullptr) != SQLITE_OK ||
        sqlite3_column_count(withRowids) != static_cast<int>(d.columns.size() + tables.size())) {
        sqlite3_finalize(withRowids);
        return statement;
    }
    sqlite3_finalize(statement);
    const int first = static_cast<int>(d.columns.size());
    for (int t = 0; t < tables.size(); ++t) d.rowidTables.push_back(tables[t]);
    for (Column& column : d.columns)
        if (!column.table.isEmpty())
            column.rowidColumn = first + static_cast<int>(tables.indexOf(column.table));
    return withRowids;
}

bool IsTable(const Connection& connection, const QString& name, bool* view) {
    const QVariant kind = RunInternal(connection,
                                      "SELECT type FROM sqlite_master WHERE type IN ('table', "
                                      "'view') AND name = ? COLLATE NOCASE",
                                      {name})
                              .value(0);
    *view = kind.toString() == "view";
    return kind.isValid();
}

void Open(RecordsetData& d) {
    sqlite3_stmt* statement = PrepareOne(*d.connection, d.sql);
    if (sqlite3_column_count(statement) == 0) {
        sqlite3_finalize(statement);
        Raise(3219);
    }
    ReadColumns(d, statement);
    const bool editable =
        (d.type == dbOpenTable || d.type == dbOpenDynaset) && !(d.options & dbReadOnly);
    d.statement = editable ? WithRowids(d, statement) : statement;
    d.statementColumns = sqlite3_column_count(d.statement);
    d.connection->recordsets.push_back(&d);
    d.Start();
}

}  // namespace

std::unique_ptr<Recordset> Database::OpenRecordset(const QString& source, int type, int options) {
    if (!IsOpen()) Raise(3420);
    std::unique_ptr<Recordset> recordset(new Recordset);
    RecordsetData& d = *recordset->d;
    d.connection = connection_;
    d.source = source;
    d.options = options;
    d.sql = source;
    d.type = type == dbOpenDefault ? dbOpenDynaset : type;
    const QString table = sqltext::BareTableName(source);
    if (!table.isEmpty()) {
        bool view = false;
        if (!IsTable(*connection_, table, &view))
            Raise(3078, "The Microsoft Jet database engine cannot find the input table or query '" +
                            table +
                            "'. Make sure it exists and that its name is spelled correctly.");
        d.sql = "select * from " + Quoted(table);
        if ((type == dbOpenDefault || type == dbOpenTable) && !view) {
            d.type = dbOpenTable;
            d.table = table;
        }
    } else if (type == dbOpenTable) {
        Raise(3219);
    }
    Open(d);
    return recordset;
}

std::unique_ptr<Recordset> Recordset::OpenRecordset(int type, int options) {
    d->RequireOpen();
    std::unique_ptr<Recordset> recordset(new Recordset);
    RecordsetData& other = *recordset->d;
    other.connection = d->connection;
    other.sql = sqltext::WithFilterAndSort(d->sql, d->filter, d->sort);
    other.source = other.sql;
    other.options = options;
    other.type = type == dbOpenDefault || type == dbOpenTable ? dbOpenDynaset : type;
    Open(other);
    return recordset;
}
