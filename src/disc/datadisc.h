#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

// The files of a data disc, one a line ("relative/path (size bytes)") in path order with CR LF
// between lines, and the medium's capacity and free space in bytes.
struct DataDisc {
    QString listing;
    qint64 files = 0;
    double capacity = 0;
    double freespace = 0;
    // Folders that could not be opened; the listing leaves them out.
    QStringList unreadableFolders;
};

// A mounted disc or any folder. Symbolic links are listed with the size of what they point at
// and never followed into folders, so loops end. Capacity and free space are those of the
// file system that holds the folder.
bool ListDataFolder(const QString& folder, DataDisc& disc, QString& problem);
// An ISO 9660 image, or a drive holding a data disc, with Rock Ridge or Joliet names where the
// image has them. Capacity is the volume's size; a written disc has no free space.
bool ListIsoImage(const QString& image, DataDisc& disc, QString& problem);

// One line of the listing.
QString ListingLine(const QString& path, qint64 size);
// Sorts the lines and joins them as the catalogue keeps a listing.
QString JoinListing(QStringList lines);
