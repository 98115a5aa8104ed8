#pragma once

// Images for the cover tests: plain JPEG and PNG of a given size, and the bad ones a cover
// must be refused for (a PNG that announces 30,000 x 30,000 pixels, a JPEG cut short).

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QtEndian>

namespace coverimages {

inline QByteArray Encoded(int width, int height, const char* format, QColor colour = Qt::darkCyan) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

inline QByteArray Jpeg(int width = 500, int height = 500) {
    return Encoded(width, height, "jpeg");
}

inline QByteArray Png(int width, int height) {
    return Encoded(width, height, "png");
}

inline quint32 Crc32(const QByteArray& bytes) {
    quint32 crc = 0xFFFFFFFFu;
    for (const char byte : bytes) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

inline QByteArray Chunk(const QByteArray& type, const QByteArray& data) {
    QByteArray length(4, 0);
    qToBigEndian<quint32>(static_cast<quint32>(data.size()), length.data());
    QByteArray crc(4, 0);
    qToBigEndian<quint32>(Crc32(type + data), crc.data());
    return length + type + data + crc;
}

// A grey PNG of width x height whose rows are all zero: tiny on disk, huge once decoded.
inline QByteArray PngBomb(int width = 30000, int height = 30000) {
    QByteArray header(13, 0);
    qToBigEndian<quint32>(static_cast<quint32>(width), header.data());
    qToBigEndian<quint32>(static_cast<quint32>(height), header.data() + 4);
    header[8] = 1;  // one bit a pixel, grey
    // A few rows of zeros are enough: the size alone must refuse it.
    const QByteArray rows(64 * (1 + (width + 7) / 8), 0);
    const QByteArray zlib = qCompress(rows).mid(4);
    return QByteArray("\x89PNG\r\n\x1a\n", 8) + Chunk("IHDR", header) + Chunk("IDAT", zlib) +
           Chunk("IEND", {});
}

// A JPEG that stops half-way.
inline QByteArray CutJpeg() {
    const QByteArray whole = Jpeg(400, 400);
    return whole.left(whole.size() / 2);
}

}  // namespace coverimages
