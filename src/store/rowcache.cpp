#include "store/rowcache.h"

#include <QDate>
#include <QDateTime>
#include <cstring>
#include <string_view>

#include "store/jettext.h"

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
    size_t byteCount = 0;
    for (int i = 0; i < columns; ++i) byteCount += spans[i].size;
    CachedRow row;
    row.columns_ = columns;
    row.wideOffsets_ = byteCount > 0xFFFF;
    const size_t offsetSize = row.wideOffsets_ ? sizeof(quint32) : sizeof(quint16);
    row.data_.reset(new char[columns * (1 + offsetSize) + byteCount]);
    char* kinds = row.data_.get();
    char* ends = kinds + columns;
    char* bytes = ends + columns * offsetSize;
    quint32 end = 0;
    for (int i = 0; i < columns; ++i) {
        kinds[i] = static_cast<char>(spans[i].kind);
        if (spans[i].size) std::memcpy(bytes + end, spans[i].bytes, spans[i].size);
        end += spans[i].size;
        if (row.wideOffsets_) {
            std::memcpy(ends + i * offsetSize, &end, offsetSize);
        } else {
            const auto narrow = static_cast<quint16>(end);
            std::memcpy(ends + i * offsetSize, &narrow, offsetSize);
        }
    }
    return row;
}

CachedRow::Span CachedRow::At(int column) const {
    const size_t offsetSize = wideOffsets_ ? sizeof(quint32) : sizeof(quint16);
    const char* kinds = data_.get();
    const char* ends = kinds + columns_;
    const char* bytes = ends + columns_ * offsetSize;
    const auto offset = [&](int at) -> quint32 {
        if (wideOffsets_) {
            quint32 value;
            std::memcpy(&value, ends + at * offsetSize, sizeof value);
            return value;
        }
        quint16 value;
        std::memcpy(&value, ends + at * offsetSize, sizeof value);
        return value;
    };
    const quint32 start = column > 0 ? offset(column - 1) : 0;
    const quint32 end = offset(column);
    return {static_cast<Kind>(kinds[column]), bytes + start, end - start};
}

CachedRow CachedRow::FromStatement(sqlite3_stmt* statement, int columns) {
    // Numbers are copied from here; text and blobs straight from SQLite, whose pointers stay
    // valid until the next step. Each column is fetched once as a value: the column calls would
    // check the statement again for every type, number and length, which shows in large fills.
    // Text is read through the blob accessor, which hands over the bytes as they are.
    thread_local std::vector<Span> spans;
    thread_local std::vector<qint64> numbers;
    spans.resize(columns);
    numbers.resize(columns);
    for (int i = 0; i < columns; ++i) {
        sqlite3_value* value = sqlite3_column_value(statement, i);
        switch (sqlite3_value_type(value)) {
            case SQLITE_INTEGER:
                numbers[i] = sqlite3_value_int64(value);
                spans[i] = {kInteger, reinterpret_cast<const char*>(&numbers[i]),
                            IntegerSize(numbers[i])};
                break;
            case SQLITE_FLOAT: {
                const double real = sqlite3_value_double(value);
                std::memcpy(&numbers[i], &real, sizeof real);
                spans[i] = {kReal, reinterpret_cast<const char*>(&numbers[i]), sizeof real};
                break;
            }
            case SQLITE_TEXT:
            case SQLITE_BLOB: {
                const Kind kind = sqlite3_value_type(value) == SQLITE_TEXT ? kText : kBlob;
                const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
                spans[i] = {kind, bytes, static_cast<quint32>(sqlite3_value_bytes(value))};
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

int CachedRow::Compare(const CachedRow& a, const CachedRow& b, int column, TextOrder order) {
    const Span left = a.At(column);
    const Span right = b.At(column);
    const auto rank = [](Kind kind) {
        switch (kind) {
            case kNull:
                return 0;
            case kInteger:
            case kReal:
                return 1;
            case kText:
                return 2;
            case kBlob:
                return 3;
        }
        return 0;
    };
    if (rank(left.kind) != rank(right.kind)) return rank(left.kind) < rank(right.kind) ? -1 : 1;
    const auto sign = [](auto difference) { return (difference > 0) - (difference < 0); };
    switch (left.kind) {
        case kNull:
            return 0;
        case kInteger:
        case kReal: {
            const QVariant x = a.Value(column);
            const QVariant y = b.Value(column);
            if (left.kind == kInteger && right.kind == kInteger) {
                const qint64 p = x.toLongLong();
                const qint64 q = y.toLongLong();
                return p < q ? -1 : p > q ? 1 : 0;
            }
            // A whole number against a real, as SQLite weighs them: exactly, in long double.
            const long double p = left.kind == kInteger ? static_cast<long double>(x.toLongLong())
                                                        : static_cast<long double>(x.toDouble());
            const long double q = right.kind == kInteger ? static_cast<long double>(y.toLongLong())
                                                         : static_cast<long double>(y.toDouble());
            return p < q ? -1 : p > q ? 1 : 0;
        }
        case kText: {
            const std::string_view x(left.bytes, left.size);
            const std::string_view y(right.bytes, right.size);
            if (order == TextOrder::Jet) return jettext::CompareUtf8(x, y);
            if (order == TextOrder::NoCase) {
                const size_t common = std::min(x.size(), y.size());
                const int byLetters =
                    sqlite3_strnicmp(x.data(), y.data(), static_cast<int>(common));
                if (byLetters != 0) return sign(byLetters);
                return sign(static_cast<qint64>(x.size()) - static_cast<qint64>(y.size()));
            }
            return sign(x.compare(y));
        }
        case kBlob:
            return sign(std::string_view(left.bytes, left.size)
                            .compare(std::string_view(right.bytes, right.size)));
    }
    return 0;
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
