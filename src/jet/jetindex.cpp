#include "jet/jetindex.h"

#include <cstring>

#include "jet/jetusagemap.h"
#include "jet/jetwriteerror.h"

namespace jet {

namespace {

constexpr int kFreeSpaceOffset = 0x02;
constexpr int kPreviousOffset = 0x0c;
constexpr int kNextOffset = 0x10;
constexpr int kTailOffset = 0x14;
constexpr int kPrefixLengthOffset = 0x18;
constexpr int kBitmapOffset = 0x1b;
constexpr int kEntriesOffset = 0x1e0;
constexpr int kEntrySpace = kPageSize - kEntriesOffset;
constexpr int kRowPointerSize = 4;
constexpr int kChildPointerSize = 4;

int Compare(const QByteArray& a, const QByteArray& b) {
    const int common = std::min(a.size(), b.size());
    const int result = std::memcmp(a.constData(), b.constData(), size_t(common));
    if (result != 0) return result;
    return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

// The part of an entry that orders it: key and row pointer, without an intermediate page's
// child pointer.
QByteArray SortPart(const IndexNode& node, const QByteArray& entry) {
    return node.IsLeaf() ? entry : entry.left(entry.size() - kChildPointerSize);
}

uint32_t ChildPage(const QByteArray& entry) {
    return ReadU32BigEndian(entry, entry.size() - kChildPointerSize);
}

QByteArray RowPointer(RowLocation row) {
    QByteArray bytes;
    AppendU32BigEndian(bytes, row.page << 8 | row.row);
    return bytes;
}

QByteArray ParentEntry(const IndexNode& child) {
    QByteArray entry = SortPart(child, child.entries.back());
    AppendU32BigEndian(entry, child.page);
    return entry;
}

int EncodedSize(const IndexNode& node, QByteArray* prefixOut = nullptr) {
    if (node.entries.empty()) return 0;
    const int pointers = node.IsLeaf() ? kRowPointerSize : kRowPointerSize + kChildPointerSize;
    const QByteArray& first = node.entries.front();
    const QByteArray& last = node.entries.back();
    int prefix = 0;
    int limit = int(first.size()) - pointers;
    for (const QByteArray& entry : node.entries)
        limit = std::min(limit, int(entry.size()) - pointers);
    while (prefix < limit && first[prefix] == last[prefix]) ++prefix;
    if (prefixOut) *prefixOut = first.left(prefix);
    int size = int(first.size());
    for (size_t i = 1; i < node.entries.size(); ++i) size += int(node.entries[i].size()) - prefix;
    return size;
}

bool Fits(const IndexNode& node) {
    return EncodedSize(node) <= kEntrySpace;
}

void WriteIndexNode(PageFile& file, const IndexNode& node, WriteStage stage) {
    QByteArray prefix;
    const int size = EncodedSize(node, &prefix);
    QByteArray page(kPageSize, '\0');
    page.replace(0, kBitmapOffset, node.header);
    WriteU16(page, kFreeSpaceOffset, uint16_t(kEntrySpace - size));
    WriteU16(page, kPrefixLengthOffset, uint16_t(prefix.size()));
    int at = kEntriesOffset;
    for (size_t i = 0; i < node.entries.size(); ++i) {
        const QByteArray stored = i == 0 ? node.entries[i] : node.entries[i].mid(prefix.size());
        page.replace(at, stored.size(), stored);
        at += int(stored.size());
        const int bit = at - kEntriesOffset;
        page[kBitmapOffset + bit / 8] = char(page[kBitmapOffset + bit / 8] | (1 << (bit % 8)));
    }
    file.Page(node.page) = page;
    file.MarkChanged(node.page, stage);
}

IndexNode NewSibling(PageFile& file, const Index& index, const IndexNode& like) {
    IndexNode node;
    node.page = file.AllocatePage();
    node.header = like.header;
    WriteU32(node.header, kPreviousOffset, 0);
    WriteU32(node.header, kNextOffset, 0);
    WriteU32(node.header, kTailOffset, 0);
    UsageMapSet(file, index.usageMapPointer, node.page, true);
    return node;
}

struct PathStep {
    IndexNode node;
    int entry;  // the entry followed down, or -1 when the tail pointer was
};

// The pages from the root down to the leaf where the probe belongs.
std::vector<PathStep> Descend(PageFile& file, const Index& index, const QByteArray& probe) {
    std::vector<PathStep> path;
    IndexNode node = ReadIndexNode(file, index.rootPage);
    for (int depth = 0; !node.IsLeaf(); ++depth) {
        if (depth > 16 || (node.entries.empty() && node.Tail() == 0))
            throw WriteError(kErrorCorrupt, "The index " + index.name + " is damaged.");
        int chosen = -1;
        for (size_t i = 0; i < node.entries.size() && chosen < 0; ++i)
            if (Compare(SortPart(node, node.entries[i]), probe) >= 0) chosen = int(i);
        uint32_t child = 0;
        if (chosen >= 0) {
            child = ChildPage(node.entries[size_t(chosen)]);
        } else if (node.Tail() != 0) {
            child = node.Tail();
        } else {
            chosen = int(node.entries.size()) - 1;
            child = ChildPage(node.entries.back());
        }
        path.push_back({node, chosen});
        node = ReadIndexNode(file, child);
    }
    path.push_back({node, -1});
    return path;
}

size_t InsertPosition(const IndexNode& node, const QByteArray& sortPart) {
    size_t position = 0;
    while (position < node.entries.size() &&
           Compare(SortPart(node, node.entries[position]), sortPart) < 0)
        ++position;
    return position;
}

// Splits a full page in two. A root keeps its page number and becomes the parent of both.
void Split(PageFile& file, const Index& index, std::vector<PathStep>& path, size_t level,
           bool appendedAtEnd);

// After a page's entries changed: write it, splitting when full, and keep its parent's entry
// for it (which carries the page's last entry) right.
void Store(PageFile& file, const Index& index, std::vector<PathStep>& path, size_t level,
           bool lastChanged, bool appendedAtEnd) {
    IndexNode& node = path[level].node;
    if (!Fits(node)) {
        Split(file, index, path, level, appendedAtEnd);
        return;
    }
    WriteIndexNode(file, node, node.IsLeaf() ? kStageIndexLeaf : kStageIndexParent);
    if (!lastChanged || level == 0) return;
    PathStep& parent = path[level - 1];
    if (parent.entry < 0) return;  // reached through the tail pointer: no entry to keep
    parent.node.entries[size_t(parent.entry)] = ParentEntry(node);
    Store(file, index, path, level - 1, size_t(parent.entry) + 1 == parent.node.entries.size(),
          false);
}

void Split(PageFile& file, const Index& index, std::vector<PathStep>& path, size_t level,
           bool appendedAtEnd) {
    IndexNode& node = path[level].node;
    std::vector<QByteArray>& entries = node.entries;
    // Rows added in key order fill pages: the new last entry alone moves to the new page.
    size_t keep = entries.size() - 1;
    if (!appendedAtEnd || node.Next() != 0 ||
        !Fits(IndexNode{node.page, node.header, {entries.begin(), entries.end() - 1}})) {
        int total = 0;
        for (const QByteArray& entry : entries) total += int(entry.size());
        int left = 0;
        keep = 0;
        while (keep + 1 < entries.size() && left + int(entries[keep].size()) <= total / 2)
            left += int(entries[keep++].size());
        keep = std::max<size_t>(keep, 1);
    }
    IndexNode right = NewSibling(file, index, node);
    right.entries.assign(entries.begin() + long(keep), entries.end());
    if (!node.IsLeaf()) WriteU32(right.header, kTailOffset, node.Tail());

    if (level == 0) {
        IndexNode left = NewSibling(file, index, node);
        left.entries.assign(entries.begin(), entries.begin() + long(keep));
        WriteU32(left.header, kNextOffset, right.page);
        WriteU32(right.header, kPreviousOffset, left.page);
        WriteIndexNode(file, left, kStageNewPage);
        WriteIndexNode(file, right, kStageNewPage);
        node.header[0] = char(kIntermediateIndexPage);
        WriteU32(node.header, kPreviousOffset, 0);
        WriteU32(node.header, kNextOffset, 0);
        WriteU32(node.header, kTailOffset, 0);
        node.entries = {ParentEntry(left), ParentEntry(right)};
        WriteIndexNode(file, node, kStageIndexParent);
        return;
    }

    WriteU32(right.header, kPreviousOffset, node.page);
    WriteU32(right.header, kNextOffset, node.Next());
    if (node.Next() != 0) {
        IndexNode following = ReadIndexNode(file, node.Next());
        WriteU32(following.header, kPreviousOffset, right.page);
        WriteIndexNode(file, following, following.IsLeaf() ? kStageIndexLeaf : kStageIndexParent);
    }
    entries.resize(keep);
    WriteU32(node.header, kNextOffset, right.page);
    if (!node.IsLeaf()) WriteU32(node.header, kTailOffset, 0);
    WriteIndexNode(file, right, kStageNewPage);
    WriteIndexNode(file, node, node.IsLeaf() ? kStageIndexLeaf : kStageIndexParent);

    PathStep& parent = path[level - 1];
    std::vector<QByteArray>& above = parent.node.entries;
    bool lastChanged = false;
    if (parent.entry < 0) {
        // The split page was the parent's tail: both halves become ordinary entries.
        above.push_back(ParentEntry(node));
        above.push_back(ParentEntry(right));
        WriteU32(parent.node.header, kTailOffset, 0);
    } else {
        const size_t at = size_t(parent.entry);
        above[at] = ParentEntry(node);
        above.insert(above.begin() + long(at) + 1, ParentEntry(right));
        lastChanged = at + 2 == above.size();
    }
    Store(file, index, path, level - 1, lastChanged, lastChanged);
}

}  // namespace

IndexNode ReadIndexNode(PageFile& file, uint32_t page) {
    const QByteArray& bytes = file.Page(page);
    const uint8_t type = uint8_t(bytes[0]);
    if (type != kLeafIndexPage && type != kIntermediateIndexPage)
        throw WriteError(kErrorCorrupt, QStringLiteral("Page %1 is not an index page.").arg(page));
    IndexNode node;
    node.page = page;
    node.header = bytes.left(kBitmapOffset);
    const int prefixLength = ReadU16(bytes, kPrefixLengthOffset);
    int start = kEntriesOffset;
    QByteArray prefix;
    for (int bit = 0; bit <= kEntrySpace; ++bit) {
        if (bit % 8 == 0 && bytes[kBitmapOffset + bit / 8] == 0) {
            bit += 7;
            continue;
        }
        if (!(bytes[kBitmapOffset + bit / 8] & (1 << (bit % 8)))) continue;
        const int end = kEntriesOffset + bit;
        QByteArray entry = bytes.mid(start, end - start);
        if (node.entries.empty()) {
            if (prefixLength > entry.size())
                throw WriteError(kErrorCorrupt,
                                 QStringLiteral("Index page %1 is damaged.").arg(page));
            prefix = entry.left(prefixLength);
        } else {
            entry.prepend(prefix);
        }
        const int pointers =
            type == kLeafIndexPage ? kRowPointerSize : kRowPointerSize + kChildPointerSize;
        if (entry.size() <= pointers)
            throw WriteError(kErrorCorrupt, QStringLiteral("Index page %1 is damaged.").arg(page));
        node.entries.push_back(entry);
        start = end;
    }
    return node;
}

bool IndexHasKey(PageFile& file, const Index& index, const QByteArray& key) {
    const QByteArray probe = key + QByteArray(kRowPointerSize, '\0');
    std::vector<PathStep> path = Descend(file, index, probe);
    IndexNode leaf = path.back().node;
    size_t position = InsertPosition(leaf, probe);
    for (int guard = 0; position == leaf.entries.size() && leaf.Next() != 0 && guard < 4; ++guard) {
        leaf = ReadIndexNode(file, leaf.Next());
        position = 0;
    }
    if (position >= leaf.entries.size()) return false;
    const QByteArray& found = leaf.entries[position];
    return found.size() == key.size() + kRowPointerSize && found.startsWith(key);
}

void IndexInsert(PageFile& file, const Index& index, const QByteArray& key, RowLocation row) {
    const QByteArray entry = key + RowPointer(row);
    std::vector<PathStep> path = Descend(file, index, entry);
    IndexNode& leaf = path.back().node;
    const size_t position = InsertPosition(leaf, entry);
    leaf.entries.insert(leaf.entries.begin() + long(position), entry);
    const bool last = position + 1 == leaf.entries.size();
    Store(file, index, path, path.size() - 1, last, last);
}

}  // namespace jet
