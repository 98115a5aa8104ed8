#include "jet/jetpages.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QFile>
#include <cerrno>
#include <cstring>

#include "jet/jetwriteerror.h"

namespace jet {

namespace {

constexpr int kVersionOffset = 0x14;
constexpr char kJetSignature[] = "Standard Jet DB";

QString FormatName(uint8_t version) {
    switch (version) {
        case 0:
            return QStringLiteral("Jet 3 (Access 97)");
        case 1:
            return QStringLiteral("Jet 4 (Access 2000)");
        default:
            return QStringLiteral("Access 2007 or later (ACE version %1)").arg(version);
    }
}

// The journal: a mark, the committed page count, the number of pages, then each page's number
// and old content, then a SHA-1 of all that. One cut short (its writer stopped while writing
// it) changed nothing yet, since no page is written before the whole journal is.
constexpr char kJournalMark[] = "VelJrnl1";
constexpr int kJournalHeaderSize = 16;
constexpr int kJournalEntrySize = 4 + kPageSize;
constexpr int kJournalHashSize = 20;

std::function<void()> pageWriteHook;

QString JournalPath(const QString& path) {
    return path + "-journal";
}

QString SystemError(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

int ErrorNumber(int error) {
    return error == ENOSPC || error == EFBIG || error == EDQUOT ? kErrorDiskFull : kErrorCannotOpen;
}

// A short write goes on with the rest, so that a full disk ends in the error that says so.
bool WriteAll(int fd, const char* data, qsizetype size, off_t at) {
    while (size > 0) {
        const ssize_t written = ::pwrite(fd, data, size_t(size), at);
        if (written <= 0) {
            if (written == 0) errno = ENOSPC;
            return false;
        }
        data += written;
        size -= written;
        at += written;
    }
    return true;
}

bool IsWholeJournal(const QByteArray& journal) {
    if (journal.size() < kJournalHeaderSize + kJournalHashSize ||
        !journal.startsWith(QByteArrayView(kJournalMark, 8)))
        return false;
    const qint64 pages = ReadU32(journal, 12);
    const QByteArray content = journal.left(journal.size() - kJournalHashSize);
    return journal.size() == kJournalHeaderSize + pages * kJournalEntrySize + kJournalHashSize &&
           QCryptographicHash::hash(content, QCryptographicHash::Sha1) ==
               journal.right(kJournalHashSize);
}

// Cuts the file back to the committed length and writes the old pages back, durably.
bool ApplyJournal(int fd, const QByteArray& journal) {
    bool ok = ::ftruncate(fd, off_t(ReadU32(journal, 8)) * kPageSize) == 0;
    const uint32_t pages = ReadU32(journal, 12);
    for (uint32_t i = 0; i < pages; ++i) {
        const int at = kJournalHeaderSize + int(i) * kJournalEntrySize;
        ok = WriteAll(fd, journal.constData() + at + 4, kPageSize,
                      off_t(ReadU32(journal, at)) * kPageSize) &&
             ok;
    }
    return ::fsync(fd) == 0 && ok;
}

// Replays the journal a stopped writer left, then removes it. Only a writer holding the file's
// lock may do this: the journal of a writer at work is no leftover.
void ReplayJournal(int fd, const QString& path) {
    QFile file(JournalPath(path));
    if (!file.exists()) return;
    if (!file.open(QIODevice::ReadOnly))
        throw WriteError(kErrorCannotOpen, path + " was left half written, and its journal " +
                                               file.fileName() +
                                               " cannot be read: " + file.errorString());
    const QByteArray journal = file.readAll();
    file.close();
    if (IsWholeJournal(journal) && !ApplyJournal(fd, journal))
        throw WriteError(
            kErrorCannotOpen,
            path + " was left half written and cannot be put back: " + SystemError(errno));
    file.remove();
}

bool LockForWriting(int fd) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return ::fcntl(fd, F_OFD_SETLK, &lock) == 0;
}

}  // namespace

void RecoverInterruptedCommit(const QString& path) {
    if (!QFile::exists(JournalPath(path))) return;
    const int fd = ::open(path.toLocal8Bit().constData(), O_RDWR | O_CLOEXEC);
    if (fd < 0) return;
    try {
        if (LockForWriting(fd)) ReplayJournal(fd, path);
    } catch (...) {
        ::close(fd);
        throw;
    }
    ::close(fd);
}

void SetPageWriteHook(std::function<void()> hook) {
    pageWriteHook = std::move(hook);
}

PageFile::PageFile(const QString& path) : journalPath_(JournalPath(path)) {
    const QByteArray native = path.toLocal8Bit();
    fd_ = ::open(native.constData(), O_RDWR | O_CLOEXEC);
    if (fd_ < 0) {
        const int error = errno;
        if (error == ENOENT) throw WriteError(kErrorFileNotFound, path + " was not found.");
        throw WriteError(kErrorCannotOpen, path + " cannot be opened for writing: " +
                                               QString::fromLocal8Bit(std::strerror(error)));
    }
    if (!LockForWriting(fd_)) {
        ::close(fd_);
        throw WriteError(kErrorLocked, path + " is in use by another program.");
    }
    try {
        ReplayJournal(fd_, path);
    } catch (...) {
        ::close(fd_);
        throw;
    }
    struct stat info {};
    ::fstat(fd_, &info);
    char header[kVersionOffset + 1] = {};
    const bool headerRead = ::pread(fd_, header, sizeof header, 0) == ssize_t(sizeof header);
    if (!headerRead || header[0] != 0 ||
        std::memcmp(header + 4, kJetSignature, sizeof kJetSignature - 1) != 0) {
        ::close(fd_);
        throw WriteError(kErrorNotJet, path + " is not a Jet database file.");
    }
    const uint8_t version = uint8_t(header[kVersionOffset]);
    if (version != 1) {
        ::close(fd_);
        throw WriteError(kErrorUnsupported, path + " is in the " + FormatName(version) +
                                                " format; only Jet 4 (Access 2000) files can be "
                                                "written.");
    }
    if (info.st_size % kPageSize != 0 || info.st_size < 3 * kPageSize) {
        ::close(fd_);
        throw WriteError(kErrorCorrupt, path + " is truncated or damaged.");
    }
    pageCount_ = committedPageCount_ = checkpointPageCount_ = uint32_t(info.st_size / kPageSize);
}

PageFile::~PageFile() {
    ::fsync(fd_);
    // The journal goes while the lock is still held, so that it can never be another writer's.
    if (journalFd_ >= 0) {
        struct stat info {};
        const bool empty = ::fstat(journalFd_, &info) == 0 && info.st_size == 0;
        ::close(journalFd_);
        if (empty) ::unlink(journalPath_.toLocal8Bit().constData());
    }
    ::close(fd_);
}

QByteArray& PageFile::Page(uint32_t number) {
    auto found = pages_.find(number);
    if (found == pages_.end()) {
        if (number >= pageCount_)
            throw WriteError(
                kErrorCorrupt,
                QStringLiteral("The file points to page %1, beyond its end.").arg(number));
        QByteArray page(kPageSize, '\0');
        if (::pread(fd_, page.data(), kPageSize, off_t(number) * kPageSize) != kPageSize)
            throw WriteError(kErrorCorrupt,
                             QStringLiteral("Page %1 of the file cannot be read.").arg(number));
        found = pages_.emplace(number, page).first;
    }
    before_.try_emplace(number, found->second);
    beforeCheckpoint_.try_emplace(number, found->second);
    return found->second;
}

uint32_t PageFile::AllocatePage() {
    const uint32_t number = pageCount_++;
    pages_[number] = QByteArray(kPageSize, '\0');
    changed_[number] = kStageNewPage;
    return number;
}

void PageFile::MarkChanged(uint32_t number, WriteStage stage) {
    if (number >= committedPageCount_) return;
    auto [entry, added] = changed_.try_emplace(number, stage);
    if (!added && entry->second < stage) entry->second = stage;
}

// The journal is not synced to the disk before the pages are written: that costs some
// milliseconds a row, and a Deluxe export writes thousands of rows. Against the end of the
// process it needs no sync, since the system keeps what was written; the file is synced when
// put back and when the writer closes.
void PageFile::WriteJournal() {
    journal_ = QByteArray(kJournalMark, 8);
    journal_.resize(kJournalHeaderSize);
    WriteU32(journal_, 8, committedPageCount_);
    uint32_t pages = 0;
    for (const auto& entry : changed_) {
        const uint32_t number = entry.first;
        if (number >= committedPageCount_) continue;
        QByteArray old(kJournalEntrySize, '\0');
        WriteU32(old, 0, number);
        if (::pread(fd_, old.data() + 4, kPageSize, off_t(number) * kPageSize) != kPageSize)
            throw WriteError(kErrorCorrupt,
                             QStringLiteral("Page %1 of the file cannot be read.").arg(number));
        journal_ += old;
        ++pages;
    }
    WriteU32(journal_, 12, pages);
    journal_ += QCryptographicHash::hash(journal_, QCryptographicHash::Sha1);
    if (journalFd_ < 0)
        journalFd_ =
            ::open(journalPath_.toLocal8Bit().constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (journalFd_ < 0 || !WriteAll(journalFd_, journal_.constData(), journal_.size(), 0)) {
        const int error = errno;
        // Nothing of the file was touched; a journal cut short is no journal.
        if (journalFd_ >= 0) ForgetJournal();
        throw WriteError(ErrorNumber(error), "The journal " + journalPath_ +
                                                 " could not be written: " + SystemError(error));
    }
}

void PageFile::ForgetJournal() {
    if (::ftruncate(journalFd_, 0) == 0) return;
    ::close(journalFd_);
    journalFd_ = -1;
    ::unlink(journalPath_.toLocal8Bit().constData());
}

void PageFile::PutBackFromJournal() {
    // When even this fails, the journal stays for the next opening to try again.
    if (ApplyJournal(fd_, journal_)) ForgetJournal();
}

void PageFile::Commit() {
    if (!changed_.empty()) {
        WriteJournal();
        for (int stage = kStageNewPage; stage <= kStageTableDefinition; ++stage) {
            for (const auto& [number, pageStage] : changed_) {
                if (pageStage != stage) continue;
                if (pageWriteHook) pageWriteHook();
                const QByteArray& page = pages_.at(number);
                if (!WriteAll(fd_, page.constData(), kPageSize, off_t(number) * kPageSize)) {
                    const int error = errno;
                    PutBackFromJournal();
                    throw WriteError(ErrorNumber(error),
                                     QStringLiteral("Page %1 could not be written: %2")
                                         .arg(number)
                                         .arg(SystemError(error)));
                }
            }
        }
        // The Commit is whole once its journal is gone.
        ForgetJournal();
    }
    changed_.clear();
    before_.clear();
    committedPageCount_ = pageCount_;
    Checkpoint();
}

void PageFile::Discard() {
    for (auto& [number, page] : before_) {
        if (number < committedPageCount_) pages_[number] = page;
    }
    for (uint32_t number = committedPageCount_; number < pageCount_; ++number) pages_.erase(number);
    pageCount_ = committedPageCount_;
    changed_.clear();
    before_.clear();
    Checkpoint();
}

void PageFile::Checkpoint() {
    beforeCheckpoint_.clear();
    changedAtCheckpoint_ = changed_;
    checkpointPageCount_ = pageCount_;
}

void PageFile::DiscardSinceCheckpoint() {
    for (auto& [number, page] : beforeCheckpoint_) {
        if (number < checkpointPageCount_) pages_[number] = page;
    }
    for (uint32_t number = checkpointPageCount_; number < pageCount_; ++number) {
        pages_.erase(number);
        before_.erase(number);
    }
    pageCount_ = checkpointPageCount_;
    changed_ = changedAtCheckpoint_;
    beforeCheckpoint_.clear();
}

}  // namespace jet
