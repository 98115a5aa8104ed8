#pragma once

// The B-tree indexes of a Jet 4 table: key encoding, and the insertion of a row's entry into the
// leaf pages with their prefix compression and entry bitmap, splitting full pages and keeping
// the intermediate pages above them right.

#include <QByteArray>
#include <QVariant>
#include <vector>

#include "jet/jetpages.h"
#include "jet/jettable.h"

namespace jet {

// The sortable key of a row in an index (flag byte and value per column). Refuses column types
// and sort orders the writer does not encode.
QByteArray EncodeIndexKey(const TableDefinition& table, const Index& index,
                          const std::vector<QVariant>& values);
// Refuses, before anything is written, indexes the writer cannot keep.
void CheckIndexSupported(const TableDefinition& table, const Index& index);

// One index page decoded: its entries in full (prefix restored), each ending with the 4-byte row
// pointer and, on intermediate pages, the 4-byte child page.
struct IndexNode {
    uint32_t page = 0;
    QByteArray header;
    std::vector<QByteArray> entries;

    bool IsLeaf() const { return uint8_t(header[0]) == kLeafIndexPage; }
    uint32_t Previous() const { return ReadU32(header, 0x0c); }
    uint32_t Next() const { return ReadU32(header, 0x10); }
    uint32_t Tail() const { return ReadU32(header, 0x14); }
};
IndexNode ReadIndexNode(PageFile& file, uint32_t page);

// True when the index already holds a row with this key (rows with a Null key never clash).
bool IndexHasKey(PageFile& file, const Index& index, const QByteArray& key);
// Adds the entry of a row stored at the location.
void IndexInsert(PageFile& file, const Index& index, const QByteArray& key, RowLocation row);

}  // namespace jet
