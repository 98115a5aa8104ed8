#include "jet/jetusagemap.h"

#include "jet/jetdatapage.h"
#include "jet/jetwriteerror.h"

namespace jet {

namespace {

constexpr int kInlineHeaderSize = 5;
constexpr int kMapPageHeaderSize = 4;
constexpr uint32_t kPagesPerMapPage = (kPageSize - kMapPageHeaderSize) * 8;

struct MapRow {
    QByteArray* page;
    uint32_t pageNumber;
    RowSpan span;
};

MapRow FindMapRow(PageFile& file, uint32_t mapPointer) {
    const uint32_t pageNumber = mapPointer >> 8;
    QByteArray& page = file.Page(pageNumber);
    const RowSpan span = LocateRow(page, int(mapPointer & 0xff));
    if (uint8_t(page[0]) != kDataPage || span.length < kInlineHeaderSize)
        throw WriteError(kErrorCorrupt,
                         QStringLiteral("The usage map on page %1 is damaged.").arg(pageNumber));
    return {&page, pageNumber, span};
}

bool BitSet(const QByteArray& bytes, int at, uint32_t bit) {
    return bytes[at + int(bit / 8)] & (1 << (bit % 8));
}

void SetBit(QByteArray& bytes, int at, uint32_t bit, bool on) {
    char& byte = bytes[at + int(bit / 8)];
    byte = on ? char(byte | (1 << (bit % 8))) : char(byte & ~(1 << (bit % 8)));
}

void ReferenceMapSet(PageFile& file, const MapRow& map, uint32_t page, bool used) {
    const uint32_t slot = page / kPagesPerMapPage;
    const int pointerAt = map.span.start + 1 + int(slot) * 4;
    if (1 + int(slot + 1) * 4 > map.span.length)
        throw WriteError(
            kErrorUnsupported,
            QStringLiteral("Page %1 lies beyond what the usage map can hold.").arg(page));
    uint32_t mapPage = ReadU32(*map.page, pointerAt);
    if (mapPage == 0) {
        if (!used) return;
        mapPage = file.AllocatePage();
        QByteArray& fresh = file.Page(mapPage);
        fresh[0] = char(kUsageMapPage);
        fresh[1] = 0x01;
        WriteU32(*map.page, pointerAt, mapPage);
        file.MarkChanged(map.pageNumber, kStageUsageMap);
    }
    SetBit(file.Page(mapPage), kMapPageHeaderSize, page % kPagesPerMapPage, used);
    file.MarkChanged(mapPage, kStageUsageMap);
}

}  // namespace

std::vector<uint32_t> UsageMapPages(PageFile& file, uint32_t mapPointer) {
    const MapRow map = FindMapRow(file, mapPointer);
    const QByteArray& row = *map.page;
    std::vector<uint32_t> pages;
    if (row[map.span.start] == 0) {
        const uint32_t first = ReadU32(row, map.span.start + 1);
        const uint32_t bits = uint32_t(map.span.length - kInlineHeaderSize) * 8;
        for (uint32_t bit = 0; bit < bits; ++bit)
            if (BitSet(row, map.span.start + kInlineHeaderSize, bit)) pages.push_back(first + bit);
        return pages;
    }
    const int slotCount = (map.span.length - 1) / 4;
    for (int slot = 0; slot < slotCount; ++slot) {
        const uint32_t mapPage = ReadU32(row, map.span.start + 1 + 4 * slot);
        if (mapPage == 0) continue;
        const QByteArray& bitmap = file.Page(mapPage);
        for (uint32_t bit = 0; bit < kPagesPerMapPage; ++bit)
            if (BitSet(bitmap, kMapPageHeaderSize, bit))
                pages.push_back(uint32_t(slot) * kPagesPerMapPage + bit);
    }
    return pages;
}

void UsageMapSet(PageFile& file, uint32_t mapPointer, uint32_t page, bool used) {
    const MapRow map = FindMapRow(file, mapPointer);
    QByteArray& row = *map.page;
    const int at = map.span.start;
    if (row[at] != 0) {
        ReferenceMapSet(file, map, page, used);
        return;
    }
    const uint32_t first = ReadU32(row, at + 1);
    const uint32_t bits = uint32_t(map.span.length - kInlineHeaderSize) * 8;
    if (page >= first && page < first + bits) {
        SetBit(row, at + kInlineHeaderSize, page - first, used);
        file.MarkChanged(map.pageNumber, kStageUsageMap);
        return;
    }
    if (!used) return;
    // The inline bitmap cannot reach the page: rewrite the row in the reference form, same size.
    const std::vector<uint32_t> pages = UsageMapPages(file, mapPointer);
    row.replace(at, map.span.length, QByteArray(map.span.length, '\0'));
    row[at] = 0x01;
    file.MarkChanged(map.pageNumber, kStageUsageMap);
    for (uint32_t owned : pages) ReferenceMapSet(file, map, owned, true);
    ReferenceMapSet(file, map, page, true);
}

}  // namespace jet
