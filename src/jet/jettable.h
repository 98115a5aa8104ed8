#pragma once

// A Jet 4 table definition as the writer needs it, and the encoding of one row of the table.

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <cstdint>
#include <vector>

#include "jet/jetpages.h"

namespace jet {

enum ColumnType : uint8_t {
    kBoolean = 0x01,
    kByte = 0x02,
    kInteger = 0x03,
    kLong = 0x04,
    kCurrency = 0x05,
    kSingle = 0x06,
    kDouble = 0x07,
    kDateTime = 0x08,
    kBinary = 0x09,
    kText = 0x0a,
    kOle = 0x0b,
    kMemo = 0x0c,
};

struct Column {
    QString name;
    uint8_t type = 0;
    uint16_t number = 0;       // position in the null mask
    uint16_t varIndex = 0;     // position in the row's table of variable offsets
    uint16_t fixedOffset = 0;  // position in the fixed part, after the column count
    uint16_t length = 0;       // bytes; text columns count two per character
    uint8_t flags = 0;
    uint8_t miscFlags = 0;
    uint16_t sortOrder = 0;
    uint8_t sortVersion = 0;

    bool IsFixed() const { return flags & 0x01; }
    bool IsAutoNumber() const { return flags & 0x04; }
};

struct IndexColumn {
    int column = 0;  // into TableDefinition::columns
    bool ascending = true;
};

struct Index {
    QString name;
    std::vector<IndexColumn> columns;
    uint32_t usageMapPointer = 0;
    uint32_t rootPage = 0;
    bool unique = false;
};

// A row's place: data page and row number on it.
struct RowLocation {
    uint32_t page = 0;
    uint8_t row = 0;
    bool operator==(const RowLocation&) const = default;
};

struct TableDefinition {
    QString name;
    uint32_t page = 0;
    uint16_t maxColumns = 0;
    uint16_t varColumns = 0;
    std::vector<Column> columns;
    std::vector<Index> indexes;
    uint32_t ownedPagesMap = 0;  // row pointers (page << 8 | row) to the two usage maps
    uint32_t freePagesMap = 0;

    // Reads the definition spread over the page and its continuation pages.
    static TableDefinition Read(PageFile& file, uint32_t page, const QString& name);
    int ColumnIndex(const QString& name) const;  // -1 when there is none
};

// Offsets in the first page of a table definition.
constexpr int kTableRowCountOffset = 16;
constexpr int kTableAutoNumberOffset = 20;
// Each physical index counts its rows in the block after the header.
constexpr int kIndexRowCountOffset = 67;
constexpr int kIndexRowCountStride = 12;

// The bytes of a row with these values (one per column, an invalid QVariant for Null). Refuses
// values the column cannot take, and long values, which the writer does not store.
QByteArray EncodeRow(const TableDefinition& table, const std::vector<QVariant>& values);
// The values of a stored row, for the columns the writer can encode.
std::vector<QVariant> DecodeRow(const TableDefinition& table, const QByteArray& row);

// Text as Jet 4 stores it: the compressed form when every character fits one byte, else UCS-2.
QByteArray EncodeText(const QString& text);
QString DecodeText(const QByteArray& bytes);

}  // namespace jet
