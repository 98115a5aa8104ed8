#pragma once

// Walking the rows of a table through libmdb, for the copy the program works on and for the
// check that reads a file in a child process first.

#include <functional>
#include <vector>

// glib, which mdbtools.h includes inside its extern "C", needs the C++ headers seen first.
#include <mdbtools.h>

// The bytes libmdb gave each column of the current row, and their lengths.
struct MdbRowBuffers {
    std::vector<std::vector<char>> bytes;
    std::vector<int> lengths;
};

// Binds a buffer to every column and calls row for each row fetched. A damaged file may claim
// any number of rows; the walk stops at the count the table declares.
void ForEachMdbRow(MdbTableDef* table, const std::function<void(const MdbRowBuffers&)>& row);
