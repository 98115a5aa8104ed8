// Editing through a recordset: AddNew or Edit, set fields, Update; and Delete. Rows are found by
// the rowids the recordset carries beside its fields.

#include "store/dao_detail.h"

using namespace dao_detail;

namespace dao_detail {

bool RecordsetData::Updatable() const {
    return !closed && connection && connection->db &&
           (!connection->jetCopy || connection->writer) &&
           (type == dbOpenTable || type == dbOpenDynaset) && !(options & dbReadOnly) &&
           !rowidTables.empty() && !sqlite3_db_readonly(connection->db, "main");
}

void RecordsetData::RequireUpdatable() const {
    RequireOpen();
    if (!Updatable()) Raise(jetObjectReadOnly);
}

QVariant RecordsetData::Read(int column) {
    if (editMode != EditMode::None && changed[column]) return pending[column];
    if (editMode == EditMode::Add)
        return columns[column].counter ? ReserveCounter(column) : QVariant();
    RequireCurrent();
    return CachedValue(column);
}

void RecordsetData::Write(int column, const QVariant& value) {
    RequireOpen();
    if (editMode == EditMode::None) Raise(jetUpdateWithoutAddNew);
    const Column& target = columns[column];
    if (target.rowidColumn < 0 || target.counter) Raise(3164);
    pending[column] = StoredForm(value);
    changed[column] = true;
}

QVariant RecordsetData::ReserveCounter(int column) {
    // The program reads the new key before Update; the row is then inserted with it.
    const QString table = columns[column].table;
    const bool hasSequence =
        RunInternal(*connection, "SELECT 1 FROM sqlite_master WHERE name = 'sqlite_sequence'")
            .value(0)
            .isValid();
    const QString sequence =
        hasSequence ? "(SELECT seq FROM sqlite_sequence WHERE name = ? COLLATE NOCASE)" : "?";
    const qint64 next = RunInternal(*connection,
                                    "SELECT max(coalesce(" + sequence + ", 0), coalesce((SELECT " +
                                        "max(rowid) FROM " + Quoted(table) + "), 0)) + 1",
                                    {hasSequence ? QVariant(table) : QVariant()})
                            .value(0)
                            .toLongLong();
    pending[column] = QVariant::fromValue<qint64>(next);
    changed[column] = true;
    return pending[column];
}

}  // namespace dao_detail

namespace {

void Run(const Connection& connection, const QString& sql) {
    RunInternal(connection, sql);
}

// Writes the changed fields of one table; returns the row's rowid.
QVariant WriteTable(RecordsetData& d, const QString& table, const QVariant& rowid) {
    const int tableRowid = d.RowidColumn(table);
    // The statement depends on which fields are written: their columns make its key.
    QByteArray key(1, d.editMode == EditMode::Add ? 'a' : 'e');
    key.append(reinterpret_cast<const char*>(&tableRowid), sizeof tableRowid);
    std::vector<QVariant> values;
    std::vector<int> fields;  // the first column of each field written, in the order of values
    std::vector<int> valueOfField(d.columns.size(), -1);
    for (size_t i = 0; i < d.columns.size(); ++i) {
        const Column& column = d.columns[i];
        if (!d.changed[i] || column.rowidColumn != tableRowid) continue;
        // The same column twice in the row ("title.*, title.nmcd") is written once, last value.
        int& slot = valueOfField[column.firstSameField];
        if (slot >= 0) {
            values[slot] = d.pending[i];
            continue;
        }
        slot = static_cast<int>(values.size());
        values.push_back(d.pending[i]);
        fields.push_back(column.firstSameField);
        key.append(reinterpret_cast<const char*>(&column.firstSameField),
                   sizeof column.firstSameField);
    }
    auto known = d.writeStatements.constFind(key);
    if (known == d.writeStatements.cend()) {
        QStringList names;
        for (const int field : fields) names << d.columns[field].quotedOrigin;
        QString sql;
        if (d.editMode == EditMode::Add)
            sql = names.isEmpty()
                      ? "INSERT INTO " + Quoted(table) + " DEFAULT VALUES"
                      : "INSERT INTO " + Quoted(table) + " (" + names.join(", ") + ") VALUES (" +
                            QStringList(names.size(), "?").join(", ") + ")";
        else
            sql =
                "UPDATE " + Quoted(table) + " SET " + names.join(" = ?, ") + " = ? WHERE rowid = ?";
        known = d.writeStatements.insert(key, sql);
    }
    if (d.editMode == EditMode::Add) {
        RunInternal(*d.connection, *known, values);
        return QVariant::fromValue<qint64>(sqlite3_last_insert_rowid(d.connection->db));
    }
    // A row missing from an outer join has no rowid: there is nothing to edit in that table.
    if (!rowid.isValid()) Raise(jetObjectReadOnly);
    values.push_back(rowid);
    RunInternal(*d.connection, *known, values);
    return rowid;
}

// Reads the written tables' fields back, so the cached row shows what the store holds.
void RefreshFields(RecordsetData& d, const QString& table, const QVariant& rowid,
                   std::vector<QVariant>& row) {
    const int tableRowid = d.RowidColumn(table);
    auto readBack = d.readBackStatements.constFind(tableRowid);
    if (readBack == d.readBackStatements.cend()) {
        QStringList names;
        std::vector<int> indexes;
        for (size_t i = 0; i < d.columns.size(); ++i)
            if (d.columns[i].rowidColumn == tableRowid) {
                names << d.columns[i].quotedOrigin;
                indexes.push_back(static_cast<int>(i));
            }
        readBack = d.readBackStatements.insert(
            tableRowid,
            {"SELECT " + names.join(", ") + " FROM " + Quoted(table) + " WHERE rowid = ?",
             indexes});
    }
    const QVariantList values = RunInternal(*d.connection, readBack->first, {rowid});
    for (size_t k = 0; k < readBack->second.size(); ++k)
        row[readBack->second[k]] = values.value(static_cast<qsizetype>(k));
    row[tableRowid] = rowid;
}

}  // namespace

void Recordset::AddNew() {
    d->RequireUpdatable();
    d->editMode = EditMode::Add;
    d->pending.assign(d->columns.size(), QVariant());
    d->changed.assign(d->columns.size(), false);
}

void Recordset::Edit() {
    d->RequireUpdatable();
    d->RequireCurrent();
    d->editMode = EditMode::Edit;
    d->pending.assign(d->columns.size(), QVariant());
    d->changed.assign(d->columns.size(), false);
}

void Recordset::CancelUpdate() {
    if (d->editMode == EditMode::None) Raise(jetUpdateWithoutAddNew);
    d->editMode = EditMode::None;
}

void Recordset::Update() {
    d->RequireOpen();
    if (d->editMode == EditMode::None) Raise(jetUpdateWithoutAddNew);
    const bool adding = d->editMode == EditMode::Add;
    QStringList tables;
    for (size_t i = 0; i < d->columns.size(); ++i)
        if (d->changed[i] && !tables.contains(d->columns[i].table, Qt::CaseInsensitive))
            tables << d->columns[i].table;
    if (adding && tables.isEmpty()) tables << d->rowidTables.front();

    std::vector<QVariant> row(d->statementColumns);
    for (int i = 0; i < d->statementColumns; ++i)
        row[i] = adding ? (i < FieldCount() ? d->pending[i] : QVariant()) : d->CachedValue(i);
    // A row that spans tables is written whole or not at all, and so is a row of a Jet file
    // whose writer refuses it.
    JetWriter* writer = d->connection->writer.get();
    const bool several = tables.size() > 1 || writer;
    if (several) Run(*d->connection, "SAVEPOINT dao_update");
    try {
        for (const QString& table : tables) {
            JetRowChange change;
            if (writer && !adding) {
                const JetRowImage before =
                    ReadRowImage(*d->connection, table, row[d->RowidColumn(table)]);
                change.before = before.values;
            }
            const QVariant rowid = WriteTable(*d, table, row[d->RowidColumn(table)]);
            RefreshFields(*d, table, rowid, row);
            if (writer) {
                const JetRowImage after = ReadRowImage(*d->connection, table, rowid);
                change.kind = adding ? JetRowChange::Added : JetRowChange::Changed;
                change.table = table;
                change.columns = after.columns;
                change.after = after.values;
                writer->Apply(change);
            }
        }
    } catch (const VbError&) {
        if (several) {
            Run(*d->connection, "ROLLBACK TO dao_update");
            Run(*d->connection, "RELEASE dao_update");
        }
        throw;
    }
    if (several) Run(*d->connection, "RELEASE dao_update");

    d->editMode = EditMode::None;
    if (!adding) {
        d->rows[d->position] = CachedRow::FromValues(row);
        return;
    }
    if (d->type == dbOpenTable) ++d->tableCount;
    d->AppendAdded(CachedRow::FromValues(row));
}

void Recordset::Delete() {
    d->RequireUpdatable();
    d->RequireCurrent();
    d->editMode = EditMode::None;
    // Over a join the row of the first table goes; the store's cascades take the rest.
    const QString table = d->rowidTables.front();
    const QVariant rowid = d->CachedValue(d->RowidColumn(table));
    if (JetWriter* writer = d->connection->writer.get()) {
        const JetRowImage before = ReadRowImage(*d->connection, table, rowid);
        Run(*d->connection, "SAVEPOINT dao_delete");
        try {
            RunInternal(*d->connection, "DELETE FROM " + Quoted(table) + " WHERE rowid = ?",
                        {rowid});
            writer->Apply({JetRowChange::Deleted, table, before.columns, before.values, {}});
        } catch (const VbError&) {
            Run(*d->connection, "ROLLBACK TO dao_delete");
            Run(*d->connection, "RELEASE dao_delete");
            throw;
        }
        Run(*d->connection, "RELEASE dao_delete");
    } else {
        RunInternal(*d->connection, "DELETE FROM " + Quoted(table) + " WHERE rowid = ?", {rowid});
    }
    d->rows.erase(d->rows.begin() + d->position);
    d->currentDeleted = true;
    if (d->type == dbOpenTable) --d->tableCount;
}

bool Recordset::Updatable() const {
    return d->Updatable();
}
