#pragma once

// A front cover as it comes from outside (a file, a web server, a dropped browser image) made
// fit to keep: decoded under a memory limit after its size has been checked, so that a
// decompression bomb, a truncated body or something that is no image is refused with a reason
// and nothing else happens.

#include <QByteArray>
#include <QString>

// Covers larger than this on their long side are scaled down to it.
inline constexpr int kCoverLongSide = 1200;
// The list's tooltip and the HTML page show this.
inline constexpr int kThumbnailLongSide = 96;
// Anything announcing more pixels than this is refused before it is decoded.
inline constexpr int kCoverMaxSide = 10000;
inline constexpr qint64 kCoverMaxPixels = 40'000'000;
// The decoder's own allocation limit, in megabytes.
inline constexpr int kCoverAllocationLimitMb = 256;

struct PreparedCover {
    // JPEG or PNG: the bytes as they came when they are either and small enough, else the
    // image scaled down (PNG when it has transparency, JPEG otherwise).
    QByteArray image;
    // JPEG of kThumbnailLongSide on the long side, on white.
    QByteArray thumbnail;
};

// False, with the reason for the user, when bytes are no image that can be kept.
bool PrepareCover(const QByteArray& bytes, PreparedCover& cover, QString& problem);
