#include "store/jetpages.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "store/jetwriteerror.h"

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

}  // namespace

PageFile::PageFile(const QString& path) {
    const QByteArray native = path.toLocal8Bit();
    fd_ = ::open(native.constData(), O_RDWR | O_CLOEXEC);
    if (fd_ < 0) {
        const int error = errno;
        if (error == ENOENT) throw WriteError(kErrorFileNotFound, path + " was not found.");
        throw WriteError(kErrorCannotOpen, path + " cannot be opened for writing: " +
                                               QString::fromLocal8Bit(std::strerror(error)));
    }
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    if (::fcntl(fd_, F_OFD_SETLK, &lock) != 0) {
        ::close(fd_);
        throw WriteError(kErrorLocked, path + " is in use by another program.");
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
    pageCount_ = committedPageCount_ = uint32_t(info.st_size / kPageSize);
}

PageFile::~PageFile() {
    if (fd_ >= 0) {
        ::fsync(fd_);
        ::close(fd_);
    }
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

void PageFile::Commit() {
    for (int stage = kStageNewPage; stage <= kStageTableDefinition; ++stage) {
        for (const auto& [number, pageStage] : changed_) {
            if (pageStage != stage) continue;
            const QByteArray& page = pages_.at(number);
            if (::pwrite(fd_, page.constData(), kPageSize, off_t(number) * kPageSize) != kPageSize)
                throw WriteError(kErrorCannotOpen,
                                 QStringLiteral("Page %1 could not be written: %2")
                                     .arg(number)
                                     .arg(QString::fromLocal8Bit(std::strerror(errno))));
        }
    }
    changed_.clear();
    before_.clear();
    committedPageCount_ = pageCount_;
}

void PageFile::Discard() {
    for (auto& [number, page] : before_) {
        if (number < committedPageCount_) pages_[number] = page;
    }
    for (uint32_t number = committedPageCount_; number < pageCount_; ++number) pages_.erase(number);
    pageCount_ = committedPageCount_;
    changed_.clear();
    before_.clear();
}

}  // namespace jet
