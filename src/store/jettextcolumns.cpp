#include "store/jettextcolumns.h"

#include <sqlite3.h>

#include <QRegularExpression>

#include "store/jettext.h"
#include "toolkit/vb/vberror.h"

namespace {

const QString kRebuiltTable = "velmora_rebuilt_table";

struct TextColumn {
    QString name;
    QString declaredType;
};

QString Scalar(Database& database, const QString& sql) {
    auto records = database.OpenRecordset(sql, dbOpenSnapshot);
    return records->IsEOF() ? QString() : records->Fields(0).Value().toString();
}

QStringList ColumnValues(Database& database, const QString& sql) {
    QStringList values;
    for (auto records = database.OpenRecordset(sql, dbOpenSnapshot); !records->IsEOF();
         records->MoveNext())
        values << records->Fields(0).Value().toString();
    return values;
}

QString Literal(const QString& text) {
    return "'" + QString(text).replace('\'', "''") + "'";
}

// The engine's own tables are its business; the like of this layer is Jet's, so no like here.
QStringList UserTables(Database& database) {
    return ColumnValues(
        database,
        "select name from sqlite_master where type = 'table' and substr(name, 1, 7) <> "
        "'sqlite_' order by name");
}

// The engine gives a column text affinity by these words in its declared type.
bool HoldsText(const QString& declaredType) {
    const QString type = declaredType.toUpper();
    return type.contains("CHAR") || type.contains("CLOB") || type.contains("TEXT");
}

std::vector<TextColumn> ColumnsWithoutJetOrder(Database& database, const QString& table) {
    std::vector<TextColumn> columns;
    auto info = database.OpenRecordset(
        "select name, type from pragma_table_info(" + Literal(table) + ")", dbOpenSnapshot);
    for (; !info->IsEOF(); info->MoveNext()) {
        const TextColumn column{info->Fields(0).Value().toString(),
                                info->Fields(1).Value().toString()};
        if (!HoldsText(column.declaredType)) continue;
        const char* collation = nullptr;
        sqlite3_table_column_metadata(database.Handle(), "main", table.toUtf8().constData(),
                                      column.name.toUtf8().constData(), nullptr, &collation,
                                      nullptr, nullptr, nullptr);
        if (!collation || qstricmp(collation, jettext::kCollation) != 0) columns.push_back(column);
    }
    return columns;
}

// The table's definition with the order declared behind the type of each column, and the
// name of the table that is built first.
QString RebuiltDefinition(const QString& definition, const QString& table,
                          const std::vector<TextColumn>& columns) {
    QString rebuilt = definition;
    for (const TextColumn& column : columns) {
        const QRegularExpression declaration(
            R"re(((?:^|[(,])\s*["`\[]?))re" + QRegularExpression::escape(column.name) +
                R"re((["`\]]?\s+))re" + QRegularExpression::escape(column.declaredType),
            QRegularExpression::CaseInsensitiveOption);
        rebuilt.replace(declaration, QString("\\1") + column.name + "\\2" + column.declaredType +
                                         " COLLATE " + jettext::kCollation);
    }
    const QRegularExpression header(
        R"(^\s*CREATE\s+TABLE\s+["`\[]?)" + QRegularExpression::escape(table) + R"(["`\]]?)",
        QRegularExpression::CaseInsensitiveOption);
    return rebuilt.replace(header, "CREATE TABLE " + kRebuiltTable);
}

void RebuildTable(Database& database, const QString& table,
                  const std::vector<TextColumn>& columns) {
    const QString name = Literal(table);
    const QString definition =
        Scalar(database, "select sql from sqlite_master where type = 'table' and name = " + name);
    const QStringList indexes =
        ColumnValues(database,
                     "select sql from sqlite_master where type in ('index', 'trigger') and "
                     "tbl_name = " +
                         name + " and sql is not null");
    const bool counted =
        !Scalar(database, "select name from sqlite_master where name = 'sqlite_sequence'")
             .isEmpty();
    const QString counter =
        counted ? Scalar(database, "select seq from sqlite_sequence where name = " + name)
                : QString();

    database.Execute(RebuiltDefinition(definition, table, columns));
    database.Execute("INSERT INTO " + kRebuiltTable + " SELECT * FROM \"" + table + "\"");
    database.Execute("DROP TABLE \"" + table + "\"");
    database.Execute("ALTER TABLE " + kRebuiltTable + " RENAME TO \"" + table + "\"");
    for (const QString& index : indexes) database.Execute(index);
    // A counter never goes back, also past rows deleted before the rebuild.
    if (!counter.isEmpty())
        database.Execute("UPDATE sqlite_sequence SET seq = max(seq, " + counter +
                         ") WHERE name = " + name);
}

}  // namespace

bool TextColumnsNeedJetOrder(Database& database) {
    for (const QString& table : UserTables(database))
        if (!ColumnsWithoutJetOrder(database, table).empty()) return true;
    return false;
}

void GiveTextColumnsJetOrder(Database& database) {
    // Dropping a table would otherwise take the rows of its dependants with it.
    database.Execute("PRAGMA foreign_keys = OFF");
    database.Execute("BEGIN");
    try {
        for (const QString& table : UserTables(database)) {
            const std::vector<TextColumn> columns = ColumnsWithoutJetOrder(database, table);
            if (!columns.empty()) RebuildTable(database, table, columns);
        }
        database.Execute("COMMIT");
    } catch (...) {
        // The first failure is the one to report; what the rollback says adds nothing.
        try {
            database.Execute("ROLLBACK");
        } catch (const VbError&) {
        }
        database.Execute("PRAGMA foreign_keys = ON");
        throw;
    }
    database.Execute("PRAGMA foreign_keys = ON");
}
