#include "store/rowcache.h"

#include <QDate>
#include <QDateTime>
#include <cstring>

namespace dao_detail {
namespace {

// Bytes that hold value as a sign-extended little-endian integer: 0 for zero, else 1, 2, 4 or 8.
quint32 IntegerSize(qint64 value) {
    if (value == 0) return 0;
    if (value >= INT8_MIN && value <= INT8_MAX) return 1;
    if (value >= INT16_MIN && value <= INT16_MAX) return 2;
    if (value >= INT32_MIN && value <= INT32_MAX) return 4;
    return 8;
}

}  // namespace

CachedRow CachedRow::Build(const Span* spans, int columns) {
    size_t total = columns * (1 + sizeof(quint32));
    for (int i = 0; i < columns; ++i) total += spans[i].size;
    CachedRow row;
    row.columns_ = columns;
    row.data_.reset(new char[total]);
    char* kinds = row.data_.get();
    char* ends = kinds + columns;
    char* bytes = ends + columns * sizeof(quint32);
    quint32 end = 0;
    for (int i = 0; i < columns; ++i) {
        kinds[i] = static_cast<char>(spans[i].kind);
        if (spans[i].size) std::memcpy(bytes + end, spans[i].bytes, spans[i].size);
        end += spans[i].size;
        std::memcpy(ends + i * sizeof(quint32), &end, sizeof end);
    }
    return row;
}

CachedRow::Span CachedRow::At(int column) const {
    const char* kinds = data_.get();
    const char* ends = kinds + columns_;
    const char* bytes = ends + columns_ * sizeof(quint32);
    quint32 start = 0, end = 0;
    if (column > 0) std::memcpy(&start, ends + (column - 1) * sizeof(quint32), sizeof start);
    std::memcpy(&end, ends + column * sizeof(quint32), sizeof end);
    return {static_cast<Kind>(kinds[column]), bytes + start, end - start};
}

CachedRow CachedRow::FromStatement(sqlite3_stmt* statement, int columns) {
    // Numbers are copied from here; text and blobs straight from SQLite, whose pointers stay
    // valid until the next step.
    thread_local std::vector<Span> spans;
    thread_local std::vector<qint64> numbers;
    spans.resize(columns);
    numbers.resize(columns);
    for (int i = 0; i < columns; ++i) {
        switch (sqlite3_column_type(statement, i)) {
            case SQLITE_INTEGER:
                numbers[i] = sqlite3_column_int64(statement, i);
                spans[i] = {kInteger, reinterpret_cast<const char*>(&numbers[i]),
                            IntegerSize(numbers[i])};
                break;
            case SQLITE_FLOAT: {
                const double value = sqlite3_column_double(statement, i);
                std::memcpy(&numbers[i], &value, sizeof value);
                spans[i] = {kReal, reinterpret_cast<const char*>(&numbers[i]), sizeof value};
                break;
            }
            case SQLITE_TEXT: {
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
                spans[i] = {kText, text, static_cast<quint32>(sqlite3_column_bytes(statement, i))};
                break;
            }
            case SQLITE_BLOB: {
                const auto* blob = static_cast<const char*>(sqlite3_column_blob(statement, i));
                spans[i] = {kBlob, blob, static_cast<quint32>(sqlite3_column_bytes(statement, i))};
                break;
            }
            default:
                spans[i] = {kNull, nullptr, 0};
                break;
        }
    }
    return Build(spans.data(), columns);
}

CachedRow CachedRow::FromValues(const std::vector<QVariant>& values) {
    const int columns = static_cast<int>(values.size());
    std::vector<QByteArray> bytes(columns);
    std::vector<qint64> numbers(columns);
    std::vector<Span> spans(columns);
    for (int i = 0; i < columns; ++i) {
        switch (values[i].typeId()) {
            case QMetaType::LongLong:
                numbers[i] = values[i].toLongLong();
                spans[i] = {kInteger, reinterpret_cast<const char*>(&numbers[i]),
                            IntegerSize(numbers[i])};
                break;
            case QMetaType::Double: {
                const double value = values[i].toDouble();
                std::memcpy(&numbers[i], &value, sizeof value);
                spans[i] = {kReal, reinterpret_cast<const char*>(&numbers[i]), sizeof value};
                break;
            }
            case QMetaType::QString:
            case QMetaType::QByteArray: {
                const bool text = values[i].typeId() == QMetaType::QString;
                bytes[i] = text ? values[i].toString().toUtf8() : values[i].toByteArray();
                spans[i] = {text ? kText : kBlob, bytes[i].constData(),
                            static_cast<quint32>(bytes[i].size())};
                break;
            }
            default:
                spans[i] = {kNull, nullptr, 0};
                break;
        }
    }
    return Build(spans.data(), columns);
}

QVariant CachedRow::Value(int column) const {
    const Span span = At(column);
    switch (span.kind) {
        case kInteger: {
            // Little-endian: the low bytes come first; the top byte gives the sign.
            qint64 value = 0;
            if (span.size) {
                std::memcpy(&value, span.bytes, span.size);
                const int unused = 64 - 8 * static_cast<int>(span.size);
                if (unused)
                    value = static_cast<qint64>(static_cast<quint64>(value) << unused) >> unused;
            }
            return QVariant::fromValue<qint64>(value);
        }
        case kReal: {
            double value;
            std::memcpy(&value, span.bytes, sizeof value);
            return value;
        }
        case kText:
            return QString::fromUtf8(span.bytes, span.size);
        case kBlob:
            return QByteArray(span.bytes, span.size);
        case kNull:
            break;
    }
    return QVariant();
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
