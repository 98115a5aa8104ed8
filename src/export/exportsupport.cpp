#include "export/exportsupport.h"

#include "app/mGlobals.h"
#include "store/catalogue.h"
#include "store/dao.h"
#include "toolkit/vb/vberror.h"

namespace {

// Lines gather here and go to the file in blocks of this size.
constexpr qsizetype kBlockSize = 1 << 16;

int FileError(const QFile& file) {
    return file.error() == QFileDevice::ResourceError ? 61 : 75;
}

}  // namespace

ExportTextFile::ExportTextFile(const QString& path, bool byteOrderMark) : file_(path) {
    if (!file_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        throw VbError(75);
    if (byteOrderMark) pending_ = "\xEF\xBB\xBF";
}

// A writer that stopped on an error still leaves on disc what it produced before it.
ExportTextFile::~ExportTextFile() {
    if (file_.isOpen()) file_.write(pending_);
    file_.close();
}

void ExportTextFile::Write(const QString& text) {
    pending_ += text.toUtf8();
    if (pending_.size() >= kBlockSize) Flush();
}

void ExportTextFile::WriteLine(const QString& line) {
    Write(line + "\r\n");
}

void ExportTextFile::Flush() {
    const qint64 written = file_.write(pending_);
    // What did reach the file is not written a second time by the destructor.
    if (written > 0) pending_.remove(0, written);
    if (!pending_.isEmpty()) throw VbError(FileError(file_));
}

void ExportTextFile::Close() {
    Flush();
    if (!file_.flush()) throw VbError(FileError(file_));
    file_.close();
}

int TrackCount(const QVariant& numTracks) {
    if (IsEmptyTextMark(numTracks)) return 0;
    bool number = false;
    const int count = numTracks.toInt(&number);
    return number ? count : 0;
}

bool IsEmptyTextMark(const QVariant& value) {
    return !value.isNull() && value.toString() == kEmptyTextMark;
}

std::unique_ptr<Recordset> OpenTitleTracks(const QVariant& idcd) {
    return gDatabase->OpenRecordset(
        "select * from Tracks where idcd = " + idcd.toString() + " order by TrackID",
        dbOpenSnapshot);
}

bool IsPlayerDisc(Recordset& titles) {
    const QVariant titleId = titles["TitleID"];
    return titles["title.idplatform"].toInt() == kAudioPlatform && !titleId.isNull() &&
           !IsEmptyTextMark(titleId);
}
