// Reading a Jet file's tables through libmdb.

#include "jet/jet.h"

#include <mdbtools.h>

#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "jet/jetpages.h"
#include "jet/mdbrows.h"

namespace {

constexpr qint64 kJetVersionOffset = 0x14;

struct JetHeader {
    int version = 0;  // 3, 4, or 0 when the file is no Jet file
    qint64 pageSize = 0;
};

JetHeader ReadHeader(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QByteArray head = file.read(kJetVersionOffset + 1);
    if (head.size() <= kJetVersionOffset || !head.startsWith(QByteArray("\x00\x01\x00\x00", 4)) ||
        head.mid(4, 15) != "Standard Jet DB")
        return {};
    const int stored = static_cast<unsigned char>(head[kJetVersionOffset]);
    if (stored == 0) return {3, 2048};
    if (stored == 1) return {4, 4096};
    return {};
}

[[noreturn]] void Damaged(const QString& path) {
    throw jet::WriteError(jet::kErrorCorrupt,
                          "Cannot open database '" + path +
                              "'. It may not be a database that your application recognizes, or "
                              "the file may be corrupt.");
}

// libmdb's handle, closed however the reading ends.
struct MdbFileHandle {
    MdbHandle* mdb = nullptr;
    ~MdbFileHandle() {
        if (mdb) mdb_close(mdb);
    }
};

struct TableHandle {
    MdbTableDef* table = nullptr;
    ~TableHandle() {
        if (table) mdb_free_tabledef(table);
    }
};

jetfile::Column Describe(const MdbColumn& column, int jetVersion) {
    jetfile::Column described{QString::fromUtf8(column.name), jetfile::ColumnKind::Binary, 0};
    switch (column.col_type) {
        case MDB_BOOL:
            described.kind = jetfile::ColumnKind::Boolean;
            break;
        case MDB_BYTE:
            described.kind = jetfile::ColumnKind::Byte;
            break;
        case MDB_INT:
            described.kind = jetfile::ColumnKind::Integer;
            break;
        case MDB_LONGINT:
            described.kind = jetfile::ColumnKind::Long;
            break;
        case MDB_MONEY:
        case MDB_FLOAT:
        case MDB_DOUBLE:
        case MDB_NUMERIC:
            described.kind = jetfile::ColumnKind::Real;
            break;
        case MDB_DATETIME:
            described.kind = jetfile::ColumnKind::DateTime;
            break;
        case MDB_TEXT:
            described.kind = jetfile::ColumnKind::Text;
            // Jet 4 keeps text as two bytes a character.
            described.textWidth = jetVersion == 3 ? column.col_size : column.col_size / 2;
            break;
        case MDB_MEMO:
            described.kind = jetfile::ColumnKind::Memo;
            break;
        default:
            break;
    }
    return described;
}

// libmdb gives every value as text; the reader hands it on in its own type.
QVariant Converted(jetfile::ColumnKind kind, const char* text, int length) {
    using jetfile::ColumnKind;
    if (length <= 0) return QVariant();
    const QByteArray bytes(text, length);
    switch (kind) {
        case ColumnKind::Boolean:
        case ColumnKind::Byte:
        case ColumnKind::Integer:
        case ColumnKind::Long:
            return QVariant::fromValue<qint64>(bytes.trimmed().toLongLong());
        case ColumnKind::Real:
            return bytes.trimmed().toDouble();
        case ColumnKind::Text:
        case ColumnKind::Memo:
        case ColumnKind::DateTime:
            return QString::fromUtf8(bytes);
        case ColumnKind::Binary:
            break;
    }
    return bytes;
}

void ReadTable(
    MdbCatalogEntry* entry, int jetVersion, const QString& path,
    const std::function<void(const QString&, const std::vector<jetfile::Column>&)>& onTable,
    const std::function<void(const QVariantList&)>& onRow) {
    TableHandle handle{mdb_read_table(entry)};
    if (!handle.table || !mdb_read_columns(handle.table)) Damaged(path);
    MdbTableDef* table = handle.table;
    std::vector<jetfile::Column> columns;
    for (unsigned i = 0; i < table->num_cols; ++i)
        columns.push_back(
            Describe(*static_cast<MdbColumn*>(g_ptr_array_index(table->columns, i)), jetVersion));
    if (columns.empty()) return;
    onTable(QString::fromUtf8(entry->object_name), columns);
    const int bindSize = static_cast<int>(table->entry->mdb->bind_size);
    QVariantList values;
    ForEachMdbRow(table, [&](const MdbRowBuffers& row) {
        values.clear();
        for (size_t i = 0; i < columns.size(); ++i)
            values << Converted(columns[i].kind, row.bytes[i].data(),
                                std::clamp(row.lengths[i], 0, bindSize));
        onRow(values);
    });
}

}  // namespace

namespace jetfile {

bool HasJetSignature(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(19).mid(4) == "Standard Jet DB";
}

int JetVersion(const QString& path) {
    return ReadHeader(path).version;
}

void ReadTables(const QString& path,
                const std::function<void(const QString&, const std::vector<Column>&)>& table,
                const std::function<void(const QVariantList&)>& row) {
    if (!QFileInfo::exists(path))
        throw jet::WriteError(jet::kErrorFileNotFound, "Could not find file '" + path + "'.");
    jet::RecoverInterruptedCommit(path);
    const JetHeader header = ReadHeader(path);
    if (header.version == 0)
        throw jet::WriteError(jet::kErrorNotJet, "Unrecognized database format '" + path + "'.");
    // libmdb trusts the pages it is pointed at; a file cut short is refused before it reads.
    const qint64 size = QFileInfo(path).size();
    if (size < 3 * header.pageSize || size % header.pageSize != 0) Damaged(path);
    if (!LibmdbReadsSafely(path)) Damaged(path);

    MdbFileHandle file{mdb_open(QFile::encodeName(path).constData(), MDB_NOFLAGS)};
    if (!file.mdb) Damaged(path);
    mdb_set_date_fmt(file.mdb, "%Y-%m-%d %H:%M:%S");
    GPtrArray* catalog = mdb_read_catalog(file.mdb, MDB_TABLE);
    if (!catalog) Damaged(path);
    for (guint i = 0; i < catalog->len; ++i) {
        auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(catalog, i));
        const QString name = QString::fromUtf8(entry->object_name);
        if (entry->object_type != MDB_TABLE || name.startsWith("MSys", Qt::CaseInsensitive))
            continue;
        ReadTable(entry, header.version, path, table, row);
    }
}

}  // namespace jetfile
