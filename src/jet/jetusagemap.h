#pragma once

// The page usage maps of a table or index: the inline form (a start page and a bitmap) and the
// reference form (pointers to whole bitmap pages), kept in a row of a data page.

#include <cstdint>
#include <vector>

#include "jet/jetpages.h"

namespace jet {

// The bytes of the row at a row pointer (page << 8 | row), as offset and length in its page.
struct RowSpan {
    int start = 0;
    int length = 0;
};
RowSpan LocateRow(const QByteArray& dataPage, int row);

std::vector<uint32_t> UsageMapPages(PageFile& file, uint32_t mapPointer);
// Sets or clears a page's bit, turning an inline map into the reference form when the page lies
// beyond what the inline bitmap covers.
void UsageMapSet(PageFile& file, uint32_t mapPointer, uint32_t page, bool used);

}  // namespace jet
