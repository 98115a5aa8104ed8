#pragma once

// The page usage maps of a table or index: the inline form (a start page and a bitmap) and the
// reference form (pointers to whole bitmap pages), kept in a row of a data page.

#include <cstdint>
#include <vector>

#include "jet/jetpages.h"

namespace jet {

std::vector<uint32_t> UsageMapPages(PageFile& file, uint32_t mapPointer);
// Sets or clears a page's bit, turning an inline map into the reference form when the page lies
// beyond what the inline bitmap covers.
void UsageMapSet(PageFile& file, uint32_t mapPointer, uint32_t page, bool used);

}  // namespace jet
