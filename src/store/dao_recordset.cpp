// Recordset: the rows of a statement, read as they are visited, and the fields of the current
// row.

#include <QRegularExpression>
#include <algorithm>

#include "store/dao_detail.h"
#include "toolkit/vb/sortbyruns.h"

using namespace dao_detail;

namespace dao_detail {

RecordsetData::~RecordsetData() {
    Detach();
    if (connection) std::erase(connection->recordsets, this);
}

void RecordsetData::Detach() {
    if (statement && plan && connection && connection->db)
        plan->GiveBack(statement);
    else
        sqlite3_finalize(statement);
    statement = nullptr;
    plan.reset();
    closed = true;
    editMode = EditMode::None;
}

void RecordsetData::RequireOpen() const {
    if (closed || !connection || !connection->db) Raise(3420);
}

void RecordsetData::RequireCurrent() const {
    if (currentDeleted) Raise(3167);
    if (!HasCurrent()) Raise(jetNoCurrentRecord);
}

bool RecordsetData::FetchTo(long index) {
    while (FetchedCount() <= index) {
        if (exhausted) return false;
        if (nextAhead < sortedAhead.size()) {
            rows.push_back(std::move(sortedAhead[nextAhead++]));
            if (nextAhead == sortedAhead.size()) {
                exhausted = true;
                sortedAhead.clear();
                nextAhead = 0;
            }
            continue;
        }
        if (!statement) return false;
        const int result = sqlite3_step(statement);
        if (result == SQLITE_ROW) {
            if (type == dbOpenForwardOnly) {
                firstCached = FetchedCount();
                rows.clear();
            }
            rows.push_back(CachedRow::FromStatement(statement, statementColumns));
        } else {
            exhausted = true;
            if (result != SQLITE_DONE) RaiseSqlite(*connection);
            sqlite3_reset(statement);
        }
    }
    return true;
}

void RecordsetData::FetchAll() {
    FetchTo(std::numeric_limits<long>::max() - 1);
}

void RecordsetData::RequireCached(long index) const {
    if (type == dbOpenForwardOnly && index < firstCached) Raise(3219);
}

void RecordsetData::ReadAllSorted() {
    std::vector<CachedRow> all;
    for (;;) {
        const int result = sqlite3_step(statement);
        if (result != SQLITE_ROW) {
            sqlite3_reset(statement);
            if (result != SQLITE_DONE) RaiseSqlite(*connection);
            break;
        }
        all.push_back(CachedRow::FromStatement(statement, statementColumns));
    }
    const std::vector<SortTerm>& terms = plan->sortTerms;
    SortByRuns(all, [&terms](const CachedRow& a, const CachedRow& b) {
        for (const SortTerm& term : terms) {
            const int order = CachedRow::Compare(a, b, term.column, term.textOrder);
            if (order != 0) return term.descending ? order > 0 : order < 0;
        }
        return false;
    });
    if (all.empty()) {
        exhausted = true;
        return;
    }
    rows.reserve(all.size());
    sortedAhead = std::move(all);
}

void RecordsetData::AppendAdded(CachedRow row) {
    // A statement still running may yet reach the new row itself; the rows read and sorted at
    // the start end with it, as a finished statement's do.
    if (exhausted)
        rows.push_back(std::move(row));
    else if (!sortedAhead.empty())
        sortedAhead.push_back(std::move(row));
}

void RecordsetData::Start() {
    rows.clear();
    firstCached = 0;
    sortedAhead.clear();
    nextAhead = 0;
    exhausted = false;
    position = -1;
    eof = false;
    currentDeleted = false;
    editMode = EditMode::None;
    if (type == dbOpenTable)
        tableCount =
            RunInternal(*connection, "select count(*) from " + Quoted(table)).value(0).toLongLong();
    if (plan && !plan->sortTerms.empty() && statement) ReadAllSorted();
    if (FetchTo(0))
        position = 0;
    else
        eof = true;
}

QVariant RecordsetData::CachedValue(int column) const {
    return rows[position - firstCached].Value(column);
}

int RecordsetData::RowidColumn(const QString& table) const {
    for (size_t t = 0; t < rowidTables.size(); ++t)
        if (rowidTables[t].compare(table, Qt::CaseInsensitive) == 0)
            return static_cast<int>(columns.size() + t);
    return -1;
}

int DeclaredSize(const QString& declaredType) {
    static const QRegularExpression shape(R"(^\s*([A-Za-z]+)\s*(?:\(\s*(\d+))?)");
    const auto match = shape.match(declaredType);
    if (!match.hasMatch()) return 0;
    const QString type = match.captured(1).toUpper();
    static const QStringList text = {"TEXT",     "VARCHAR", "CHAR",  "CHARACTER",
                                     "NVARCHAR", "NCHAR",   "STRING"};
    // Jet's TEXT without a width is 255 wide.
    if (text.contains(type)) return match.captured(2).isEmpty() ? 255 : match.captured(2).toInt();
    static const QHash<QString, int> bytes = {
        {"BYTE", 1},     {"TINYINT", 1},  {"BOOLEAN", 1},  {"BIT", 1},      {"YESNO", 1},
        {"LOGICAL", 1},  {"SMALLINT", 2}, {"SHORT", 2},    {"INTEGER", 4},  {"INT", 4},
        {"LONG", 4},     {"COUNTER", 4},  {"REAL", 4},     {"SINGLE", 4},   {"DOUBLE", 8},
        {"FLOAT", 8},    {"NUMBER", 8},   {"DATE", 8},     {"DATETIME", 8}, {"TIME", 8},
        {"CURRENCY", 8}, {"MONEY", 8},    {"TIMESTAMP", 8}};
    return bytes.value(type, 0);
}

}  // namespace dao_detail

Recordset::Recordset() : d(std::make_unique<RecordsetData>()) {}

Recordset::~Recordset() = default;

bool Recordset::IsBOF() const {
    return d->position < 0;
}

bool Recordset::IsEOF() const {
    return d->eof;
}

void Recordset::MoveFirst() {
    d->RequireOpen();
    d->editMode = EditMode::None;
    d->RequireCached(0);
    if (!d->FetchTo(0)) Raise(jetNoCurrentRecord);
    d->position = 0;
    d->eof = false;
    d->currentDeleted = false;
}

void Recordset::MoveLast() {
    d->RequireOpen();
    d->editMode = EditMode::None;
    d->FetchAll();
    if (d->FetchedCount() == 0) Raise(jetNoCurrentRecord);
    d->position = d->FetchedCount() - 1;
    d->eof = false;
    d->currentDeleted = false;
}

void Recordset::MoveNext() {
    d->RequireOpen();
    if (d->eof) Raise(jetNoCurrentRecord);
    d->editMode = EditMode::None;
    // After a delete the row that took the deleted one's place is the next.
    const long target = d->currentDeleted ? d->position : d->position + 1;
    d->currentDeleted = false;
    if (d->FetchTo(target)) {
        d->position = target;
    } else {
        d->position = d->FetchedCount();
        d->eof = true;
    }
}

void Recordset::MovePrevious() {
    d->RequireOpen();
    // A forward-only walk never goes back, not even to a row it still holds.
    if (d->type == dbOpenForwardOnly) Raise(3219);
    if (d->position < 0) Raise(jetNoCurrentRecord);
    d->RequireCached(d->position - 1);
    d->editMode = EditMode::None;
    d->position -= 1;
    d->eof = false;
    d->currentDeleted = false;
}

long Recordset::RecordCount() const {
    return d->type == dbOpenTable ? d->tableCount : d->FetchedCount();
}

long Recordset::AbsolutePosition() const {
    return d->HasCurrent() ? d->position : -1;
}

void Recordset::SetAbsolutePosition(long position) {
    d->RequireOpen();
    if (position < 0 || !d->FetchTo(position)) Raise(3001);
    d->RequireCached(position);
    d->editMode = EditMode::None;
    d->position = position;
    d->eof = false;
    d->currentDeleted = false;
}

Field Recordset::Fields(int index) {
    if (index < 0 || index >= FieldCount()) Raise(jetItemNotFound);
    return Field(this, index);
}

Field Recordset::Fields(const QString& name) {
    const QString key = name.toLower();
    int index = d->qualifiedNames.value(key, -1);
    if (index < 0) index = d->plainNames.value(key, -1);
    if (index < 0) Raise(jetItemNotFound);
    return Field(this, index);
}

int Recordset::FieldCount() const {
    return static_cast<int>(d->columns.size());
}

void Recordset::Requery() {
    d->RequireOpen();
    sqlite3_reset(d->statement);
    d->Start();
}

QString Recordset::Filter() const {
    return d->filter;
}

void Recordset::SetFilter(const QString& filter) {
    d->filter = filter;
}

QString Recordset::Sort() const {
    return d->sort;
}

void Recordset::SetSort(const QString& sort) {
    d->sort = sort;
}

QString Recordset::SQL() const {
    return d->source;
}

int Recordset::Type() const {
    return d->type;
}

void Recordset::Close() {
    d->Detach();
    if (d->connection) std::erase(d->connection->recordsets, d.get());
}

QVariant Field::Value() const {
    return recordset_->d->Read(index_);
}

void Field::SetValue(const QVariant& value) const {
    recordset_->d->Write(index_, value);
}

int Field::Size() const {
    return DeclaredSize(recordset_->d->columns[index_].declaredType);
}

QString Field::Name() const {
    return recordset_->d->columns[index_].name;
}

QString Field::QualifiedName() const {
    const Column& column = recordset_->d->columns[index_];
    return column.table.isEmpty() ? column.name : column.table + "." + column.origin;
}
