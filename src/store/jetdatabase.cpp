// Reading a Jet file through libmdb into an in-memory SQLite copy that the DAO layer works on.

#include "store/jetdatabase.h"

#include <mdbtools.h>

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

#include "store/dao_detail.h"
#include "store/jetlike.h"
#include "store/jetpages.h"
#include "store/jetprobe.h"
#include "store/mdbrows.h"

using namespace dao_detail;

namespace {

JetWriterFactory writerFactory;

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

[[noreturn]] void NotAJetDatabase(const QString& path) {
    Raise(3343, "Unrecognized database format '" + path + "'.");
}

[[noreturn]] void Damaged(const QString& path) {
    Raise(3049, "Cannot open database '" + path +
                    "'. It may not be a database that your application recognizes, or the file "
                    "may be corrupt.");
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

struct MirrorColumn {
    QString name;
    int type = 0;
    QString declared;
};

MirrorColumn Describe(const MdbColumn& column, int jetVersion) {
    MirrorColumn mirror{QString::fromUtf8(column.name), column.col_type, QString()};
    const QString quoted = Quoted(mirror.name);
    switch (column.col_type) {
        case MDB_BOOL:
            mirror.declared = "BOOLEAN";
            break;
        case MDB_BYTE:
            mirror.declared = "BYTE CHECK (" + quoted + " BETWEEN 0 AND 255)";
            break;
        case MDB_INT:
            mirror.declared = "SMALLINT CHECK (" + quoted + " BETWEEN -32768 AND 32767)";
            break;
        case MDB_LONGINT:
            mirror.declared = "LONG";
            break;
        case MDB_MONEY:
        case MDB_FLOAT:
        case MDB_DOUBLE:
        case MDB_NUMERIC:
            mirror.declared = "DOUBLE";
            break;
        case MDB_DATETIME:
            mirror.declared = "DATETIME";
            break;
        case MDB_TEXT: {
            // Jet 4 keeps text as two bytes a character.
            const int width = jetVersion == 3 ? column.col_size : column.col_size / 2;
            mirror.declared = QString(
                                  "TEXT(%1) COLLATE NOCASE CONSTRAINT width_%2 CHECK "
                                  "(length(%3) <= %1)")
                                  .arg(width)
                                  .arg(QString(mirror.name).remove(QRegularExpression("\\W")))
                                  .arg(quoted);
            break;
        }
        case MDB_MEMO:
            mirror.declared = "LONGTEXT COLLATE NOCASE";
            break;
        default:
            mirror.declared = "BLOB";
            break;
    }
    return mirror;
}

// libmdb gives every value as text; the copy holds it in its own type.
QVariant Converted(const MirrorColumn& column, const char* text, int length) {
    if (length <= 0 && column.type != MDB_TEXT && column.type != MDB_MEMO) return QVariant();
    const QByteArray bytes(text, length);
    switch (column.type) {
        case MDB_BOOL:
        case MDB_BYTE:
        case MDB_INT:
        case MDB_LONGINT:
            return QVariant::fromValue<qint64>(bytes.trimmed().toLongLong());
        case MDB_MONEY:
        case MDB_FLOAT:
        case MDB_DOUBLE:
        case MDB_NUMERIC:
            return bytes.trimmed().toDouble();
        case MDB_TEXT:
        case MDB_MEMO:
        case MDB_DATETIME:
            return length <= 0 ? QVariant() : QVariant(QString::fromUtf8(bytes));
        default:
            return bytes;
    }
}

void Exec(const Connection& connection, const QString& sql) {
    RunInternal(connection, sql);
}

void CopyTable(const Connection& connection, MdbCatalogEntry* entry, int jetVersion,
               const QString& path) {
    TableHandle handle{mdb_read_table(entry)};
    if (!handle.table || !mdb_read_columns(handle.table)) Damaged(path);
    MdbTableDef* table = handle.table;
    const QString name = QString::fromUtf8(entry->object_name);

    std::vector<MirrorColumn> columns;
    QStringList definitions, placeholders;
    for (unsigned i = 0; i < table->num_cols; ++i) {
        const auto* column = static_cast<MdbColumn*>(g_ptr_array_index(table->columns, i));
        columns.push_back(Describe(*column, jetVersion));
        definitions << Quoted(columns.back().name) + " " + columns.back().declared;
        placeholders << "?";
    }
    if (columns.empty()) return;
    Exec(connection, "CREATE TABLE " + Quoted(name) + " (" + definitions.join(", ") + ")");

    sqlite3_stmt* insert = nullptr;
    const QString sql = "INSERT INTO " + Quoted(name) + " VALUES (" + placeholders.join(", ") + ")";
    if (sqlite3_prepare_v2(connection.db, sql.toUtf8().constData(), -1, &insert, nullptr) !=
        SQLITE_OK)
        RaiseSqlite(connection);
    const int bindSize = static_cast<int>(table->entry->mdb->bind_size);
    ForEachMdbRow(table, [&](const MdbRowBuffers& row) {
        for (size_t i = 0; i < columns.size(); ++i) {
            const int length = std::clamp(row.lengths[i], 0, bindSize);
            Bind(insert, static_cast<int>(i) + 1,
                 Converted(columns[i], row.bytes[i].data(), length));
        }
        if (sqlite3_step(insert) != SQLITE_DONE) RaiseSqlite(connection, insert);
        sqlite3_reset(insert);
    });
    sqlite3_finalize(insert);
    // Rows are looked up one at a time by their long-integer keys (identities, references);
    // indexed, such a lookup does not read the whole table.
    for (const MirrorColumn& column : columns)
        if (column.type == MDB_LONGINT)
            Exec(connection, "CREATE INDEX " + Quoted(name + "\x1f" + column.name) + " ON " +
                                 Quoted(name) + " (" + Quoted(column.name) + ")");
}

}  // namespace

void SetJetWriterFactory(JetWriterFactory factory) {
    writerFactory = std::move(factory);
}

namespace jetfile {

bool HasJetSignature(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(19).mid(4) == "Standard Jet DB";
}

int JetVersion(const QString& path) {
    return ReadHeader(path).version;
}

}  // namespace jetfile

namespace dao_detail {

std::shared_ptr<Connection> OpenJetCopy(const QString& path, bool readOnly) {
    if (!QFileInfo::exists(path)) Raise(jetCouldNotFindFile, "Could not find file '" + path + "'.");
    // A write of the program's that was cut off is undone before anything is read.
    jet::RecoverInterruptedCommit(path);
    const JetHeader header = ReadHeader(path);
    if (header.version == 0) NotAJetDatabase(path);
    // libmdb trusts the pages it is pointed at; a file cut short is refused before it reads.
    const qint64 size = QFileInfo(path).size();
    if (size < 3 * header.pageSize || size % header.pageSize != 0) Damaged(path);
    if (!jetfile::LibmdbReadsSafely(path)) Damaged(path);

    MdbFileHandle file{mdb_open(QFile::encodeName(path).constData(), MDB_NOFLAGS)};
    if (!file.mdb) Damaged(path);
    mdb_set_date_fmt(file.mdb, "%Y-%m-%d %H:%M:%S");
    GPtrArray* catalog = mdb_read_catalog(file.mdb, MDB_TABLE);
    if (!catalog) Damaged(path);

    auto connection = std::make_shared<Connection>();
    connection->path = path;
    connection->jetCopy = true;
    if (sqlite3_open_v2(":memory:", &connection->db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                        nullptr) != SQLITE_OK)
        RaiseSqlite(*connection);
    jetlike::Register(connection->db);
    Exec(*connection, "BEGIN");
    for (guint i = 0; i < catalog->len; ++i) {
        auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(catalog, i));
        const QString name = QString::fromUtf8(entry->object_name);
        if (entry->object_type != MDB_TABLE || name.startsWith("MSys", Qt::CaseInsensitive))
            continue;
        CopyTable(*connection, entry, header.version, path);
    }
    Exec(*connection, "COMMIT");
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
