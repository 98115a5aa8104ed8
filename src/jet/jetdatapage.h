#pragma once

// Rows on a Jet 4 data page: a table of row offsets after the header, the rows themselves
// packed from the end of the page towards it.

#include <QByteArray>
#include <cstdint>

namespace jet {

constexpr uint16_t kRowDeleted = 0x8000;   // also marks a row reached only through a pointer
constexpr uint16_t kRowOverflow = 0x4000;  // the row holds a pointer to where it now lives
constexpr int kMaxRowsPerPage = 255;       // an index entry has one byte for the row number

// The bytes of the row at a row pointer (page << 8 | row), as offset and length in its page.
struct RowSpan {
    int start = 0;
    int length = 0;
};
RowSpan LocateRow(const QByteArray& dataPage, int row);

QByteArray NewDataPage(uint32_t tablePage);
uint32_t DataPageTable(const QByteArray& page);
int DataPageRowCount(const QByteArray& page);
uint16_t RowFlags(const QByteArray& page, int row);
QByteArray RowBytes(const QByteArray& page, int row);
// Adds a row; false when the page has no room for it. The row number is returned in `row`.
bool AddRow(QByteArray& page, const QByteArray& bytes, uint16_t flags, int& row);
// Gives a row new bytes and flags, moving the page's other rows up or down to make it fit;
// false (and the page unchanged) when the page has no room.
bool ReplaceRow(QByteArray& page, int row, const QByteArray& bytes, uint16_t flags);

}  // namespace jet
