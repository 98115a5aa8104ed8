#include "jet/jettable.h"

#include <QDateTime>
#include <QtEndian>
#include <cmath>
#include <cstring>

#include "jet/jetwriteerror.h"

namespace jet {

namespace {

constexpr int kTableHeaderSize = 63;
constexpr int kRealIndexEntrySize = kIndexRowCountStride;
constexpr int kColumnEntrySize = 25;
constexpr int kRealIndexSize = 52;
constexpr int kLogicalIndexSize = 28;
constexpr int kMaxIndexColumns = 10;
constexpr int kContinuationHeaderSize = 8;
const QDateTime kJetEpoch(QDate(1899, 12, 30), QTime(0, 0));

// The definition's bytes, continuation pages joined without their headers.
QByteArray DefinitionBytes(PageFile& file, uint32_t page) {
    QByteArray bytes = file.Page(page);
    if (uint8_t(bytes[0]) != kTableDefinitionPage)
        throw WriteError(kErrorCorrupt,
                         QStringLiteral("Page %1 is not a table definition.").arg(page));
    int guard = 0;
    for (uint32_t next = ReadU32(bytes, 4); next != 0 && guard < 64; ++guard) {
        const QByteArray& more = file.Page(next);
        bytes.append(more.mid(kContinuationHeaderSize));
        next = ReadU32(more, 4);
    }
    return bytes;
}

void Require(bool condition, const QString& table) {
    if (!condition)
        throw WriteError(kErrorCorrupt, "The definition of table " + table + " is damaged.");
}

template <typename T>
void AppendLittleEndian(QByteArray& out, T value) {
    const T le = qToLittleEndian(value);
    out.append(reinterpret_cast<const char*>(&le), sizeof le);
}

QByteArray EncodeFixed(const Column& column, const QVariant& value) {
    QByteArray out;
    bool ok = true;
    switch (column.type) {
        case kByte: {
            const int v = value.toInt(&ok);
            ok = ok && v >= 0 && v <= 255;
            out.append(char(v));
            break;
        }
        case kInteger: {
            const int v = value.toInt(&ok);
            ok = ok && v >= -32768 && v <= 32767;
            AppendLittleEndian(out, int16_t(v));
            break;
        }
        case kLong: {
            const qlonglong v = value.toLongLong(&ok);
            ok = ok && v >= INT32_MIN && v <= INT32_MAX;
            AppendLittleEndian(out, int32_t(v));
            break;
        }
        case kCurrency:
            AppendLittleEndian(out, qint64(std::llround(value.toDouble(&ok) * 10000)));
            break;
        case kSingle:
            AppendLittleEndian(out, qFromLittleEndian(std::bit_cast<uint32_t>(value.toFloat(&ok))));
            break;
        case kDouble:
            AppendLittleEndian(out,
                               qFromLittleEndian(std::bit_cast<uint64_t>(value.toDouble(&ok))));
            break;
        case kDateTime: {
            const QDateTime when = value.toDateTime();
            ok = when.isValid();
            const double days = double(kJetEpoch.msecsTo(when)) / 86400000.0;
            AppendLittleEndian(out, std::bit_cast<uint64_t>(days));
            break;
        }
        default:
            throw WriteError(kErrorUnsupported,
                             "The column " + column.name + " has a type the writer cannot store.");
    }
    if (!ok)
        throw WriteError(
            kErrorDataConversion,
            "The value '" + value.toString() + "' does not fit the column " + column.name + ".");
    return out;
}

QVariant DecodeFixed(const Column& column, const char* at) {
    switch (column.type) {
        case kByte:
            return int(uint8_t(*at));
        case kInteger:
            return int(qFromLittleEndian<int16_t>(at));
        case kLong:
            return qFromLittleEndian<int32_t>(at);
        case kCurrency:
            return double(qFromLittleEndian<qint64>(at)) / 10000.0;
        case kSingle:
            return std::bit_cast<float>(qFromLittleEndian<uint32_t>(at));
        case kDouble:
            return std::bit_cast<double>(qFromLittleEndian<uint64_t>(at));
        case kDateTime:
            return kJetEpoch.addMSecs(
                qint64(std::bit_cast<double>(qFromLittleEndian<uint64_t>(at)) * 86400000.0));
        default:
            return QVariant();
    }
}

}  // namespace

TableDefinition TableDefinition::Read(PageFile& file, uint32_t page, const QString& name) {
    const QByteArray bytes = DefinitionBytes(file, page);
    TableDefinition table;
    table.name = name;
    table.page = page;
    Require(bytes.size() >= kTableHeaderSize, name);
    table.maxColumns = ReadU16(bytes, 41);
    table.varColumns = ReadU16(bytes, 43);
    const int columnCount = ReadU16(bytes, 45);
    const uint32_t logicalIndexCount = ReadU32(bytes, 47);
    const uint32_t realIndexCount = ReadU32(bytes, 51);
    table.ownedPagesMap = ReadU32(bytes, 55);
    table.freePagesMap = ReadU32(bytes, 59);
    Require(realIndexCount < 64 && logicalIndexCount < 64, name);

    int at = kTableHeaderSize + int(realIndexCount) * kRealIndexEntrySize;
    Require(at + columnCount * kColumnEntrySize <= bytes.size(), name);
    for (int i = 0; i < columnCount; ++i, at += kColumnEntrySize) {
        Column column;
        column.type = uint8_t(bytes[at]);
        column.number = ReadU16(bytes, at + 5);
        column.varIndex = ReadU16(bytes, at + 7);
        column.sortOrder = ReadU16(bytes, at + 11);
        column.sortVersion = uint8_t(bytes[at + 14]);
        column.flags = uint8_t(bytes[at + 15]);
        column.miscFlags = uint8_t(bytes[at + 16]);
        column.fixedOffset = ReadU16(bytes, at + 21);
        column.length = ReadU16(bytes, at + 23);
        table.columns.push_back(column);
    }
    for (Column& column : table.columns) {
        Require(at + 2 <= bytes.size(), name);
        const int length = ReadU16(bytes, at);
        Require(at + 2 + length <= bytes.size(), name);
        column.name = QString::fromUtf16(
            reinterpret_cast<const char16_t*>(bytes.constData() + at + 2), length / 2);
        at += 2 + length;
    }

    Require(at + int(realIndexCount) * kRealIndexSize <= bytes.size(), name);
    for (uint32_t i = 0; i < realIndexCount; ++i, at += kRealIndexSize) {
        Index index;
        for (int k = 0; k < kMaxIndexColumns; ++k) {
            const uint16_t number = ReadU16(bytes, at + 4 + 3 * k);
            if (number == 0xffff) continue;
            int position = -1;
            for (size_t c = 0; c < table.columns.size(); ++c)
                if (table.columns[c].number == number) position = int(c);
            Require(position >= 0, name);
            index.columns.push_back({position, bytes[at + 6 + 3 * k] != 0});
        }
        index.usageMapPointer = ReadU32(bytes, at + 34);
        index.rootPage = ReadU32(bytes, at + 38);
        index.unique = bytes[at + 46] & 0x01;
        table.indexes.push_back(index);
    }
    // The logical indexes carry the names, and the primary key, which is unique whatever the
    // flags of its physical index say.
    std::vector<std::pair<uint32_t, bool>> logical;
    Require(at + int(logicalIndexCount) * kLogicalIndexSize <= bytes.size(), name);
    for (uint32_t i = 0; i < logicalIndexCount; ++i, at += kLogicalIndexSize)
        logical.emplace_back(ReadU32(bytes, at + 8), bytes[at + 23] == 1);
    for (const auto& [real, primary] : logical) {
        Require(at + 2 <= bytes.size(), name);
        const int length = ReadU16(bytes, at);
        Require(at + 2 + length <= bytes.size(), name);
        const QString indexName = QString::fromUtf16(
            reinterpret_cast<const char16_t*>(bytes.constData() + at + 2), length / 2);
        at += 2 + length;
        if (real >= table.indexes.size()) continue;
        Index& index = table.indexes[real];
        if (index.name.isEmpty() || primary) index.name = indexName;
        index.unique = index.unique || primary;
    }
    return table;
}

int TableDefinition::ColumnIndex(const QString& name) const {
    for (size_t i = 0; i < columns.size(); ++i)
        if (columns[i].name.compare(name, Qt::CaseInsensitive) == 0) return int(i);
    return -1;
}

QByteArray EncodeText(const QString& text) {
    bool oneByte = text.size() > 2;
    for (QChar c : text) oneByte = oneByte && c.unicode() > 0 && c.unicode() < 0x100;
    QByteArray out;
    if (oneByte) {
        out.append("\xff\xfe", 2);
        for (QChar c : text) out.append(char(c.unicode()));
        return out;
    }
    for (QChar c : text) AppendLittleEndian(out, uint16_t(c.unicode()));
    return out;
}

QString DecodeText(const QByteArray& bytes) {
    QString text;
    if (bytes.startsWith("\xff\xfe")) {
        bool compressed = true;
        for (int i = 2; i < bytes.size();) {
            if (bytes[i] == 0) {
                compressed = !compressed;
                ++i;
            } else if (compressed) {
                text.append(QChar(uint8_t(bytes[i++])));
            } else if (i + 1 < bytes.size()) {
                text.append(QChar(ReadU16(bytes, i)));
                i += 2;
            } else {
                break;
            }
        }
        return text;
    }
    for (int i = 0; i + 1 < bytes.size(); i += 2) text.append(QChar(ReadU16(bytes, i)));
    return text;
}

QByteArray EncodeRow(const TableDefinition& table, const std::vector<QVariant>& values) {
    const int columnCount = std::max<int>(table.maxColumns, int(table.columns.size()));
    if (values.size() != table.columns.size())
        throw WriteError(kErrorUnsupported,
                         "The row does not have the columns of the table " + table.name + ".");
    int fixedSize = 0;
    int varSlots = 0;
    for (const Column& column : table.columns) {
        // A damaged definition may number a column past the row's null mask.
        if (column.number >= columnCount)
            throw WriteError(kErrorCorrupt,
                             "The definition of the table " + table.name + " is damaged.");
        if (column.type == kMemo || column.type == kOle)
            throw WriteError(kErrorUnsupported, "The column " + column.name +
                                                    " holds long values, which cannot be "
                                                    "written to this file.");
        if (column.IsFixed())
            fixedSize = std::max(fixedSize, column.fixedOffset + column.length);
        else
            varSlots = std::max(varSlots, column.varIndex + 1);
    }
    QByteArray nullMask((columnCount + 7) / 8, '\0');
    QByteArray row(2 + fixedSize, '\0');
    WriteU16(row, 0, uint16_t(columnCount));
    std::vector<QByteArray> varData(varSlots);
    for (size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        const QVariant& value = values[i];
        const bool present = value.isValid() && !value.isNull();
        if (column.type == kBoolean) {
            if (present && value.toBool())
                nullMask[column.number / 8] |= char(1 << (column.number % 8));
            continue;
        }
        if (!present) continue;
        nullMask[column.number / 8] |= char(1 << (column.number % 8));
        if (column.IsFixed()) {
            const QByteArray bytes = EncodeFixed(column, value);
            std::memcpy(row.data() + 2 + column.fixedOffset, bytes.constData(),
                        std::min<size_t>(bytes.size(), column.length));
        } else if (column.type == kText) {
            const QString text = value.toString();
            if (text.size() * 2 > column.length)
                throw WriteError(
                    kErrorFieldTooSmall,
                    "The field " + column.name + " is too small for the text '" + text + "'.");
            varData[column.varIndex] = EncodeText(text);
        } else if (column.type == kBinary) {
            const QByteArray bytes = value.toByteArray();
            if (bytes.size() > column.length)
                throw WriteError(kErrorFieldTooSmall,
                                 "The field " + column.name + " is too small.");
            varData[column.varIndex] = bytes;
        } else {
            throw WriteError(kErrorUnsupported,
                             "The column " + column.name + " has a type the writer cannot store.");
        }
    }
    std::vector<uint16_t> varOffsets;
    for (const QByteArray& data : varData) {
        varOffsets.push_back(uint16_t(row.size()));
        row.append(data);
    }
    if (varSlots > 0) {
        const uint16_t endOfData = uint16_t(row.size());
        QByteArray tail;
        AppendLittleEndian(tail, endOfData);
        for (auto offset = varOffsets.rbegin(); offset != varOffsets.rend(); ++offset)
            AppendLittleEndian(tail, *offset);
        AppendLittleEndian(tail, uint16_t(varSlots));
        row.append(tail);
    }
    row.append(nullMask);
    return row;
}

std::vector<QVariant> DecodeRow(const TableDefinition& table, const QByteArray& row) {
    std::vector<QVariant> values(table.columns.size());
    if (row.size() < 2) return values;
    const int columnCount = ReadU16(row, 0);
    const int maskSize = (columnCount + 7) / 8;
    const int maskAt = row.size() - maskSize;
    if (maskAt < 2) return values;
    const int varCount = ReadU16(row, maskAt - 2);
    for (size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        if (column.number >= columnCount) continue;
        const bool bit = row[maskAt + column.number / 8] & (1 << (column.number % 8));
        if (column.type == kBoolean) {
            values[i] = bit;
            continue;
        }
        if (!bit) continue;
        if (column.IsFixed()) {
            if (2 + column.fixedOffset + column.length <= maskAt)
                values[i] = DecodeFixed(column, row.constData() + 2 + column.fixedOffset);
            continue;
        }
        if (column.varIndex >= varCount) continue;
        const int tableAt = maskAt - 2 - 2 * (column.varIndex + 1);
        if (tableAt - 2 < 2) continue;
        const int start = ReadU16(row, tableAt);
        const int end = ReadU16(row, tableAt - 2);
        if (start > end || end > row.size()) continue;
        const QByteArray bytes = row.mid(start, end - start);
        values[i] = column.type == kText ? QVariant(DecodeText(bytes)) : QVariant(bytes);
    }
    return values;
}

}  // namespace jet
