#pragma once

// Page-level access to a Jet 4 file for the program's own writer. Pages are read once and kept;
// changed pages are written back by Commit in an order that keeps the file readable if the
// process stops between two writes: new pages first, then the pages that point to them.
//
// Before a Commit overwrites anything it leaves a journal beside the file (its name + "-journal")
// with the file's committed length and the old content of every page it is about to change.
// A failed write puts that content back at once; a writer that never came back (killed,
// crashed) leaves the journal, and the next opening of the file puts it back then. Either way
// the file is in the state of its last whole Commit.

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <vector>

namespace jet {

constexpr int kPageSize = 4096;

// Page types of the first byte.
enum PageType : uint8_t {
    kDataPage = 0x01,
    kTableDefinitionPage = 0x02,
    kIntermediateIndexPage = 0x03,
    kLeafIndexPage = 0x04,
    kUsageMapPage = 0x05,
};

// The order in which changed pages reach the disk: whatever is pointed to before the pointer.
enum WriteStage {
    kStageNewPage = 0,
    kStageUsageMap = 1,
    kStageDataRow = 2,
    kStageIndexLeaf = 3,
    kStageIndexParent = 4,
    kStageTableDefinition = 5,
};

inline uint16_t ReadU16(const QByteArray& b, int at) {
    return uint16_t(uint8_t(b[at]) | uint8_t(b[at + 1]) << 8);
}
inline uint32_t ReadU32(const QByteArray& b, int at) {
    return uint32_t(ReadU16(b, at)) | uint32_t(ReadU16(b, at + 2)) << 16;
}
inline void WriteU16(QByteArray& b, int at, uint16_t v) {
    b[at] = char(v & 0xff);
    b[at + 1] = char(v >> 8);
}
inline void WriteU32(QByteArray& b, int at, uint32_t v) {
    WriteU16(b, at, uint16_t(v & 0xffff));
    WriteU16(b, at + 2, uint16_t(v >> 16));
}
inline uint32_t ReadU24BigEndian(const QByteArray& b, int at) {
    return uint32_t(uint8_t(b[at])) << 16 | uint32_t(uint8_t(b[at + 1])) << 8 | uint8_t(b[at + 2]);
}
inline uint32_t ReadU32BigEndian(const QByteArray& b, int at) {
    return uint32_t(uint8_t(b[at])) << 24 | ReadU24BigEndian(b, at + 1);
}
inline void AppendU32BigEndian(QByteArray& b, uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) b.append(char((v >> shift) & 0xff));
}

// Puts back what a Commit cut off by the end of its process had begun to change, when the file's
// journal says so. Does nothing when there is no journal, or while a writer holds the file.
void RecoverInterruptedCommit(const QString& path);

// Runs before every page write of a Commit; tests stop the writer there.
void SetPageWriteHook(std::function<void()> hook);

class PageFile {
  public:
    // Opens an existing Jet 4 file for writing. Refuses (VbError) a missing, read-only, locked or
    // truncated file, anything that is not Jet, and Jet 3, whose page layout is not written.
    explicit PageFile(const QString& path);
    ~PageFile();
    PageFile(const PageFile&) = delete;
    PageFile& operator=(const PageFile&) = delete;

    // The page as last changed in memory. Refuses a page number beyond the file.
    QByteArray& Page(uint32_t number);
    // A zeroed page at the end of the file, written at the next Commit before anything else.
    uint32_t AllocatePage();
    // Marks a page to be written at the next Commit, in the stage given.
    void MarkChanged(uint32_t number, WriteStage stage);
    // Writes the changed pages, stage by stage, then forgets the marks. On a failed write the
    // file is put back as it was before this Commit, and the WriteError tells why.
    void Commit();
    // Throws away changes not yet committed (after a refusal half way through a row).
    void Discard();
    // Several rows in one Commit: Checkpoint marks the end of one, and DiscardSinceCheckpoint
    // throws away what was changed after the last mark (or Commit) only.
    void Checkpoint();
    void DiscardSinceCheckpoint();
    uint32_t PageCount() const { return pageCount_; }

  private:
    void WriteJournal();
    void PutBackFromJournal();
    void ForgetJournal();

    int fd_ = -1;
    int journalFd_ = -1;
    QString journalPath_;
    QByteArray journal_;
    uint32_t pageCount_ = 0;
    uint32_t committedPageCount_ = 0;
    std::map<uint32_t, QByteArray> pages_;
    std::map<uint32_t, QByteArray> before_;
    std::map<uint32_t, int> changed_;
    std::map<uint32_t, QByteArray> beforeCheckpoint_;
    std::map<uint32_t, int> changedAtCheckpoint_;
    uint32_t checkpointPageCount_ = 0;
};

}  // namespace jet
