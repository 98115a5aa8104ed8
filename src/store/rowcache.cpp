#include "store/rowcache.h"

#include <QDate>
#include <QDateTime>
#include <cstring>

namespace dao_detail {

CachedRow::Cell CachedRow::CellAt(int column) const {
    Cell cell;
    std::memcpy(&cell, data_.get() + column * sizeof(Cell), sizeof(Cell));
    return cell;
}

void CachedRow::SetCell(int column, const Cell& cell) {
    std::memcpy(data_.get() + column * sizeof(Cell), &cell, sizeof(Cell));
}

CachedRow CachedRow::FromStatement(sqlite3_stmt* statement, int columns) {
    // First pass sizes the row; the second copies. SQLite keeps the converted text between the
    // two calls, so asking twice costs nothing.
    size_t bytes = columns * sizeof(Cell);
    for (int i = 0; i < columns; ++i) {
        const int type = sqlite3_column_type(statement, i);
        if (type == SQLITE_TEXT) {
            sqlite3_column_text(statement, i);
            bytes += sqlite3_column_bytes(statement, i);
        } else if (type == SQLITE_BLOB) {
            sqlite3_column_blob(statement, i);
            bytes += sqlite3_column_bytes(statement, i);
        }
    }
    CachedRow row;
    row.data_.reset(new char[bytes]);
    size_t offset = columns * sizeof(Cell);
    for (int i = 0; i < columns; ++i) {
        Cell cell{0, 0, kNull};
        switch (sqlite3_column_type(statement, i)) {
            case SQLITE_INTEGER:
                cell = {sqlite3_column_int64(statement, i), 0, kInteger};
                break;
            case SQLITE_FLOAT: {
                const double value = sqlite3_column_double(statement, i);
                std::memcpy(&cell.payload, &value, sizeof value);
                cell.kind = kReal;
                break;
            }
            case SQLITE_TEXT:
            case SQLITE_BLOB: {
                const bool text = sqlite3_column_type(statement, i) == SQLITE_TEXT;
                const void* source =
                    text ? static_cast<const void*>(sqlite3_column_text(statement, i))
                         : sqlite3_column_blob(statement, i);
                const int size = sqlite3_column_bytes(statement, i);
                if (size > 0) std::memcpy(row.data_.get() + offset, source, size);
                cell = {static_cast<qint64>(offset), static_cast<quint32>(size),
                        text ? kText : kBlob};
                offset += size;
                break;
            }
            default:
                break;
        }
        row.SetCell(i, cell);
    }
    return row;
}

CachedRow CachedRow::FromValues(const std::vector<QVariant>& values) {
    const int columns = static_cast<int>(values.size());
    std::vector<QByteArray> bytes(columns);
    size_t total = columns * sizeof(Cell);
    for (int i = 0; i < columns; ++i) {
        const int type = values[i].typeId();
        if (type == QMetaType::QString) bytes[i] = values[i].toString().toUtf8();
        if (type == QMetaType::QByteArray) bytes[i] = values[i].toByteArray();
        total += bytes[i].size();
    }
    CachedRow row;
    row.data_.reset(new char[total]);
    size_t offset = columns * sizeof(Cell);
    for (int i = 0; i < columns; ++i) {
        Cell cell{0, 0, kNull};
        switch (values[i].typeId()) {
            case QMetaType::LongLong:
                cell = {values[i].toLongLong(), 0, kInteger};
                break;
            case QMetaType::Double: {
                const double value = values[i].toDouble();
                std::memcpy(&cell.payload, &value, sizeof value);
                cell.kind = kReal;
                break;
            }
            case QMetaType::QString:
            case QMetaType::QByteArray:
                std::memcpy(row.data_.get() + offset, bytes[i].constData(), bytes[i].size());
                cell = {static_cast<qint64>(offset), static_cast<quint32>(bytes[i].size()),
                        values[i].typeId() == QMetaType::QString ? kText : kBlob};
                offset += bytes[i].size();
                break;
            default:
                break;
        }
        row.SetCell(i, cell);
    }
    return row;
}

QVariant CachedRow::Value(int column) const {
    const Cell cell = CellAt(column);
    switch (cell.kind) {
        case kInteger:
            return QVariant::fromValue<qint64>(cell.payload);
        case kReal: {
            double value;
            std::memcpy(&value, &cell.payload, sizeof value);
            return value;
        }
        case kText:
            return QString::fromUtf8(data_.get() + cell.payload, cell.size);
        case kBlob:
            return QByteArray(data_.get() + cell.payload, cell.size);
        case kNull:
            break;
    }
    return QVariant();
}

bool CachedRow::IsNull(int column) const {
    return CellAt(column).kind == kNull;
}

QVariant StoredForm(const QVariant& value) {
    if (!value.isValid() || value.isNull()) return QVariant();
    switch (value.typeId()) {
        case QMetaType::Bool:
            return QVariant::fromValue<qint64>(value.toBool() ? 1 : 0);
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::ULong:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Char:
        case QMetaType::SChar:
        case QMetaType::UChar:
            return QVariant::fromValue<qint64>(value.toLongLong());
        case QMetaType::Double:
        case QMetaType::Float:
            return value.toDouble();
        case QMetaType::QByteArray:
            return value.toByteArray();
        case QMetaType::QDate:
            return value.toDate().toString(Qt::ISODate);
        case QMetaType::QDateTime:
            return value.toDateTime().toString(Qt::ISODate);
        default:
            return value.toString();
    }
}

void Bind(sqlite3_stmt* statement, int parameter, const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::LongLong:
            sqlite3_bind_int64(statement, parameter, value.toLongLong());
            break;
        case QMetaType::Double:
            sqlite3_bind_double(statement, parameter, value.toDouble());
            break;
        case QMetaType::QString: {
            const QByteArray text = value.toString().toUtf8();
            sqlite3_bind_text(statement, parameter, text.constData(), text.size(),
                              SQLITE_TRANSIENT);
            break;
        }
        case QMetaType::QByteArray: {
            const QByteArray blob = value.toByteArray();
            sqlite3_bind_blob(statement, parameter, blob.constData(), blob.size(),
                              SQLITE_TRANSIENT);
            break;
        }
        default:
            sqlite3_bind_null(statement, parameter);
            break;
    }
}

}  // namespace dao_detail
