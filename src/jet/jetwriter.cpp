#include "jet/jetwriter.h"

#include <mdbtools.h>

#include <algorithm>

#include "jet/jet.h"
#include "jet/jetdatapage.h"
#include "jet/jetindex.h"
#include "jet/jetusagemap.h"
#include "jet/jetwriteerror.h"

namespace jet {

namespace {

std::map<QString, uint32_t> ReadTablePages(const QString& path) {
    std::map<QString, uint32_t> pages;
    if (!jetfile::LibmdbReadsSafely(path)) return pages;
    MdbHandle* mdb = mdb_open(path.toLocal8Bit().constData(), MDB_NOFLAGS);
    if (!mdb) return pages;
    if (mdb_read_catalog(mdb, MDB_TABLE)) {
        for (unsigned i = 0; i < mdb->num_catalog; ++i) {
            auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(mdb->catalog, i));
            if (entry->object_type == MDB_TABLE)
                pages[QString::fromUtf8(entry->object_name).toLower()] = uint32_t(entry->table_pg);
        }
    }
    mdb_close(mdb);
    return pages;
}

uint32_t RowPointer(RowLocation row) {
    return row.page << 8 | row.row;
}

bool IsNull(const QVariant& value) {
    return !value.isValid() || value.isNull();
}

}  // namespace

Writer::Writer(const QString& path) : path_(path), file_(std::make_unique<PageFile>(path)) {
    tablePages_ = ReadTablePages(path);
    if (tablePages_.empty())
        throw WriteError(kErrorCorrupt, path + " holds no tables that can be read.");
}

Writer::TableState& Writer::State(const QString& name) {
    const QString key = name.toLower();
    auto found = tables_.find(key);
    if (found != tables_.end()) return found->second;
    const auto page = tablePages_.find(key);
    if (page == tablePages_.end())
        throw WriteError(3078,
                         "The Microsoft Jet database engine cannot find the input table or "
                         "query '" +
                             name + "'.");
    TableState state;
    state.definition = TableDefinition::Read(*file_, page->second, name);
    for (uint32_t candidate : UsageMapPages(*file_, state.definition.freePagesMap))
        if (candidate < file_->PageCount()) state.freePages.push_back(candidate);
    return tables_.emplace(key, std::move(state)).first->second;
}

const TableDefinition& Writer::Table(const QString& name) {
    return State(name).definition;
}

std::vector<QVariant> Writer::ValuesByName(const QString& table, const QVariantHash& named) {
    const TableDefinition& definition = Table(table);
    std::vector<QVariant> values(definition.columns.size());
    for (auto value = named.begin(); value != named.end(); ++value) {
        const int column = definition.ColumnIndex(value.key());
        if (column < 0)
            throw WriteError(3265, "Item not found in this collection: " + value.key() + ".");
        values[size_t(column)] = value.value();
    }
    return values;
}

void Writer::RefuseDuplicates(const TableDefinition& table, const std::vector<QVariant>& values) {
    for (const Index& index : table.indexes) {
        const QByteArray key = EncodeIndexKey(table, index, values);
        if (!index.unique) continue;
        bool anyNull = false;
        for (const IndexColumn& part : index.columns)
            anyNull = anyNull || IsNull(values[size_t(part.column)]);
        if (!anyNull && IndexHasKey(*file_, index, key))
            throw WriteError(kErrorDuplicate,
                             "The changes you requested to the table were not successful because "
                             "they would create duplicate values in the index, primary key, or "
                             "relationship.  Change the data in the field or fields that contain "
                             "duplicate data, remove the index, or redefine the index to permit "
                             "duplicate entries and try again.");
    }
}

RowLocation Writer::PlaceRow(TableState& table, const QByteArray& row, uint16_t slotFlags) {
    const TableDefinition& definition = table.definition;
    while (!table.freePages.empty()) {
        const uint32_t candidate = table.freePages.back();
        QByteArray& page = file_->Page(candidate);
        int number = 0;
        if (uint8_t(page[0]) == kDataPage && DataPageTable(page) == definition.page &&
            AddRow(page, row, slotFlags, number)) {
            file_->MarkChanged(candidate, kStageDataRow);
            return {candidate, uint8_t(number)};
        }
        table.freePages.pop_back();
    }
    const uint32_t fresh = file_->AllocatePage();
    QByteArray& page = file_->Page(fresh);
    page = NewDataPage(definition.page);
    int number = 0;
    if (!AddRow(page, row, slotFlags, number))
        throw WriteError(kErrorUnsupported,
                         "A row of table " + definition.name + " is too long for a page.");
    UsageMapSet(*file_, definition.ownedPagesMap, fresh, true);
    UsageMapSet(*file_, definition.freePagesMap, fresh, true);
    table.freePages.push_back(fresh);
    return {fresh, uint8_t(number)};
}

RowLocation Writer::AppendRow(const QString& tableName, std::vector<QVariant> values) {
    TableState& table = State(tableName);
    const TableDefinition& definition = table.definition;
    values.resize(definition.columns.size());
    QByteArray& header = file_->Page(definition.page);
    const uint32_t autoNumber = ReadU32(header, kTableAutoNumberOffset) + 1;
    bool usesAutoNumber = false;
    for (size_t i = 0; i < definition.columns.size(); ++i) {
        if (!definition.columns[i].IsAutoNumber()) continue;
        values[i] = qint64(int32_t(autoNumber));
        usesAutoNumber = true;
    }
    const QByteArray row = EncodeRow(definition, values);
    RefuseDuplicates(definition, values);
    try {
        const RowLocation location = PlaceRow(table, row, 0);
        for (const Index& index : definition.indexes)
            IndexInsert(*file_, index, EncodeIndexKey(definition, index, values), location);
        QByteArray& tableHeader = file_->Page(definition.page);
        WriteU32(tableHeader, kTableRowCountOffset, ReadU32(tableHeader, kTableRowCountOffset) + 1);
        if (usesAutoNumber) WriteU32(tableHeader, kTableAutoNumberOffset, autoNumber);
        for (size_t i = 0; i < definition.indexes.size(); ++i) {
            const int at = kIndexRowCountOffset + int(i) * kIndexRowCountStride;
            WriteU32(tableHeader, at, ReadU32(tableHeader, at) + 1);
        }
        file_->MarkChanged(definition.page, kStageTableDefinition);
        FinishRow();
        return location;
    } catch (...) {
        DropChanges(false);
        throw;
    }
}

void Writer::BeginUnit() {
    inUnit_ = true;
}

void Writer::EndUnit(bool keep) {
    if (!inUnit_) return;
    inUnit_ = false;
    if (!keep) {
        DropChanges(true);
        return;
    }
    try {
        file_->Commit();
    } catch (...) {
        DropChanges(true);
        throw;
    }
}

void Writer::FinishRow() {
    if (inUnit_)
        file_->Checkpoint();
    else
        file_->Commit();
}

void Writer::DropChanges(bool unit) {
    if (unit || !inUnit_)
        file_->Discard();
    else
        file_->DiscardSinceCheckpoint();
    for (auto& [name, table] : tables_)
        table.freePages = UsageMapPages(*file_, table.definition.freePagesMap);
}

RowLocation Writer::FollowOverflow(RowLocation row) {
    for (int hop = 0; hop < 4; ++hop) {
        const QByteArray& page = file_->Page(row.page);
        if (uint8_t(page[0]) != kDataPage || row.row >= DataPageRowCount(page))
            throw WriteError(
                kErrorCorrupt,
                QStringLiteral("There is no row %1 on page %2.").arg(row.row).arg(row.page));
        if (!(RowFlags(page, row.row) & kRowOverflow)) return row;
        const uint32_t pointer = ReadU32(RowBytes(page, row.row), 0);
        row = {pointer >> 8, uint8_t(pointer & 0xff)};
    }
    throw WriteError(kErrorCorrupt, "A row's overflow pointers go round in a circle.");
}

std::vector<QVariant> Writer::ReadRow(const QString& table, RowLocation row) {
    const TableDefinition& definition = Table(table);
    const RowLocation actual = FollowOverflow(row);
    return DecodeRow(definition, RowBytes(file_->Page(actual.page), actual.row));
}

namespace {

// Values from the reader's copy and from the file's bytes may differ in type (a whole number
// read as a double, a date as text); they are equal when they mean the same.
bool SameValue(const QVariant& a, const QVariant& b) {
    if (IsNull(a) || IsNull(b)) return IsNull(a) && IsNull(b);
    bool aNumeric = false, bNumeric = false;
    const double aNumber = a.toDouble(&aNumeric), bNumber = b.toDouble(&bNumeric);
    if (aNumeric && bNumeric) return aNumber == bNumber;
    return a.toString() == b.toString();
}

}  // namespace

RowLocation Writer::FindRow(const QString& tableName, const std::vector<QVariant>& values) {
    const TableDefinition& definition = Table(tableName);
    for (uint32_t pageNumber : UsageMapPages(*file_, definition.ownedPagesMap)) {
        if (pageNumber >= file_->PageCount()) continue;
        const QByteArray& page = file_->Page(pageNumber);
        if (uint8_t(page[0]) != kDataPage || DataPageTable(page) != definition.page) continue;
        for (int row = 0; row < DataPageRowCount(page); ++row) {
            // A deleted row, or the far end of a moved one, is reached through its first place.
            if (RowFlags(page, row) & kRowDeleted) continue;
            const RowLocation location{pageNumber, uint8_t(row)};
            const RowLocation actual = FollowOverflow(location);
            const std::vector<QVariant> stored =
                DecodeRow(definition, RowBytes(file_->Page(actual.page), actual.row));
            bool same = stored.size() == values.size();
            for (size_t i = 0; same && i < values.size(); ++i)
                same = SameValue(stored[i], values[i]);
            if (same) return location;
        }
    }
    throw WriteError(kErrorCorrupt, "The row to change is no longer in table " + tableName + ".");
}

void Writer::ChangeRow(const QString& tableName, RowLocation row,
                       const std::vector<QVariant>& values) {
    TableState& table = State(tableName);
    const TableDefinition& definition = table.definition;
    const RowLocation actual = FollowOverflow(row);
    const QByteArray& current = file_->Page(actual.page);
    if ((RowFlags(current, actual.row) & kRowDeleted) && actual == row)
        throw WriteError(3167, "Record is deleted.");
    std::vector<QVariant> merged = values;
    merged.resize(definition.columns.size());
    const std::vector<QVariant> old = DecodeRow(definition, RowBytes(current, actual.row));
    for (size_t i = 0; i < definition.columns.size(); ++i)
        if (definition.columns[i].IsAutoNumber()) merged[i] = old[i];
    for (const Index& index : definition.indexes)
        if (EncodeIndexKey(definition, index, old) != EncodeIndexKey(definition, index, merged))
            throw WriteError(kErrorUnsupported, "The index " + index.name + " of table " +
                                                    definition.name +
                                                    " would change; this writer changes only "
                                                    "columns outside the table's indexes.");
    const QByteArray bytes = EncodeRow(definition, merged);
    try {
        const uint16_t keptFlags = RowFlags(current, actual.row) & kRowDeleted;
        QByteArray& page = file_->Page(actual.page);
        if (ReplaceRow(page, actual.row, bytes, keptFlags)) {
            file_->MarkChanged(actual.page, kStageDataRow);
        } else {
            // No room left on the page: the row moves, and its first place points to it.
            const RowLocation moved = PlaceRow(table, bytes, kRowDeleted);
            QByteArray pointer(4, '\0');
            WriteU32(pointer, 0, RowPointer(moved));
            QByteArray& first = file_->Page(row.page);
            if (!ReplaceRow(first, row.row, pointer, kRowOverflow))
                throw WriteError(kErrorCorrupt, "The row's page has no room for a pointer.");
            file_->MarkChanged(row.page, kStageTableDefinition);
            if (!(actual == row)) {
                QByteArray& abandoned = file_->Page(actual.page);
                ReplaceRow(abandoned, actual.row, QByteArray(), kRowDeleted);
                file_->MarkChanged(actual.page, kStageTableDefinition);
            }
        }
        FinishRow();
    } catch (...) {
        DropChanges(false);
        throw;
    }
}

}  // namespace jet
