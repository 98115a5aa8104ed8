#pragma once

// The rows of the shelf tables (store/shelftables.h) of one title, read and written on
// gDatabase. The writes take part in whatever transaction the caller has open.

#include <QByteArray>
#include <QString>

struct TitleRelease {
    // The MusicBrainz release the title was named from.
    QString mbid;
    // The digits of the barcode on the case.
    QString barcode;
    bool IsEmpty() const { return mbid.isEmpty() && barcode.isEmpty(); }
};

TitleRelease ReadTitleRelease(long idcd);
// Writes the title's row, or removes it when the release is empty.
void WriteTitleRelease(long idcd, const TitleRelease& release);

struct TitleCover {
    // JPEG or PNG, at most kCoverLongSide pixels on its long side.
    QByteArray image;
    // JPEG, kThumbnailLongSide pixels on its long side.
    QByteArray thumbnail;
    // The release it was fetched for; empty for a file.
    QString mbid;
    // The address it was fetched from, or the file's name.
    QString source;
    // ISO date of when it was taken.
    QString added;
    bool IsEmpty() const { return image.isEmpty(); }
};

TitleCover ReadCover(long idcd);
// The thumbnail alone: what the list shows never reads the image.
QByteArray ReadCoverThumbnail(long idcd);
// Writes the title's cover as one row, or removes it when the cover is empty.
void WriteCover(long idcd, const TitleCover& cover);
