#include "jet/jetdatapage.h"

#include <vector>

#include "jet/jetpages.h"

namespace jet {

namespace {

constexpr int kFreeSpaceOffset = 2;
constexpr int kTableOffset = 4;
constexpr int kRowCountOffset = 12;
constexpr int kRowTableOffset = 14;

int LowestRowStart(const QByteArray& page) {
    int lowest = kPageSize;
    for (int i = 0; i < DataPageRowCount(page); ++i)
        lowest = std::min(lowest, ReadU16(page, kRowTableOffset + 2 * i) & 0x1fff);
    return lowest;
}

}  // namespace

RowSpan LocateRow(const QByteArray& dataPage, int row) {
    const int rowCount = DataPageRowCount(dataPage);
    if (row >= rowCount) return {};
    const int start = ReadU16(dataPage, kRowTableOffset + 2 * row) & 0x1fff;
    const int end =
        row == 0 ? kPageSize : ReadU16(dataPage, kRowTableOffset + 2 * (row - 1)) & 0x1fff;
    if (start < kRowTableOffset + 2 * rowCount || end > kPageSize || start > end) return {};
    return {start, end - start};
}

QByteArray NewDataPage(uint32_t tablePage) {
    QByteArray page(kPageSize, '\0');
    page[0] = char(kDataPage);
    page[1] = 0x01;
    WriteU16(page, kFreeSpaceOffset, uint16_t(kPageSize - kRowTableOffset));
    WriteU32(page, kTableOffset, tablePage);
    return page;
}

uint32_t DataPageTable(const QByteArray& page) {
    return ReadU32(page, kTableOffset);
}

int DataPageRowCount(const QByteArray& page) {
    return ReadU16(page, kRowCountOffset);
}

uint16_t RowFlags(const QByteArray& page, int row) {
    return ReadU16(page, kRowTableOffset + 2 * row) & 0xe000;
}

QByteArray RowBytes(const QByteArray& page, int row) {
    const RowSpan span = LocateRow(page, row);
    return page.mid(span.start, span.length);
}

bool AddRow(QByteArray& page, const QByteArray& bytes, uint16_t flags, int& row) {
    row = DataPageRowCount(page);
    const int start = LowestRowStart(page) - int(bytes.size());
    if (row >= kMaxRowsPerPage || start < kRowTableOffset + 2 * (row + 1)) return false;
    page.replace(start, bytes.size(), bytes);
    WriteU16(page, kRowTableOffset + 2 * row, uint16_t(start | flags));
    WriteU16(page, kRowCountOffset, uint16_t(row + 1));
    WriteU16(page, kFreeSpaceOffset, uint16_t(start - kRowTableOffset - 2 * (row + 1)));
    return true;
}

bool ReplaceRow(QByteArray& page, int row, const QByteArray& bytes, uint16_t flags) {
    const int count = DataPageRowCount(page);
    std::vector<QByteArray> rows;
    std::vector<uint16_t> rowFlags;
    int total = 0;
    for (int i = 0; i < count; ++i) {
        rows.push_back(i == row ? bytes : RowBytes(page, i));
        rowFlags.push_back(i == row ? flags : RowFlags(page, i));
        total += int(rows.back().size());
    }
    const int tableEnd = kRowTableOffset + 2 * count;
    if (kPageSize - total < tableEnd) return false;
    int end = kPageSize;
    for (int i = 0; i < count; ++i) {
        end -= int(rows[size_t(i)].size());
        page.replace(end, rows[size_t(i)].size(), rows[size_t(i)]);
        WriteU16(page, kRowTableOffset + 2 * i, uint16_t(end | rowFlags[size_t(i)]));
    }
    std::fill(page.begin() + tableEnd, page.begin() + end, '\0');
    WriteU16(page, kFreeSpaceOffset, uint16_t(end - tableEnd));
    return true;
}

}  // namespace jet
