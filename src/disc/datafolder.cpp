#include <QDir>
#include <QStorageInfo>
#include <algorithm>
#include <filesystem>
#include <system_error>

#include "disc/datadisc.h"
#include "disc/discnames.h"

namespace fs = std::filesystem;

namespace {

QString DecodedPath(const fs::path& path) {
    return DecodeDiscText(QByteArray::fromStdString(path.native()));
}

void ListFolderInto(const fs::path& root, const fs::path& folder, QStringList& lines,
                    QStringList& unreadable) {
    std::error_code error;
    fs::directory_iterator entries(folder, error);
    if (error) {
        unreadable << DecodedPath(folder.lexically_relative(root));
        return;
    }
    for (const fs::directory_entry& entry : entries) {
        const fs::path relative = entry.path().lexically_relative(root);
        if (!entry.is_symlink(error) && entry.is_directory(error)) {
            ListFolderInto(root, entry.path(), lines, unreadable);
            continue;
        }
        // A link to a folder is not followed; a link to a file counts with its target's size.
        if (entry.is_directory(error)) continue;
        const std::uintmax_t size = entry.is_regular_file(error) ? entry.file_size(error) : 0;
        lines << ListingLine(DecodedPath(relative), error ? 0 : static_cast<qint64>(size));
    }
}

}  // namespace

QString ListingLine(const QString& path, qint64 size) {
    return path + " (" + QString::number(size) + " bytes)";
}

QString JoinListing(QStringList lines) {
    std::sort(lines.begin(), lines.end());
    return lines.join("\r\n");
}

bool ListDataFolder(const QString& folder, DataDisc& disc, QString& problem) {
    const QFileInfo info(folder);
    if (!info.isDir()) {
        problem = "\"" + folder + "\" is not a folder.";
        return false;
    }
    const fs::path root(QFile::encodeName(info.absoluteFilePath()).toStdString());
    std::error_code error;
    fs::directory_iterator probe(root, error);
    if (error) {
        problem = "\"" + folder + "\" cannot be read: " + QString::fromStdString(error.message());
        return false;
    }
    DataDisc read;
    QStringList lines;
    ListFolderInto(root, root, lines, read.unreadableFolders);
    read.files = lines.size();
    read.listing = JoinListing(lines);
    read.unreadableFolders.sort();
    const QStorageInfo storage(info.absoluteFilePath());
    read.capacity = static_cast<double>(storage.bytesTotal());
    read.freespace = static_cast<double>(storage.bytesAvailable());
    disc = read;
    return true;
}
