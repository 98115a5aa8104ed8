#include "disc/coverimage.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <algorithm>

namespace {

// JPEG's end-of-image marker: a body cut short lacks it, and Qt's JPEG reader would otherwise
// show the missing part grey without an error.
bool JpegIsWhole(const QByteArray& bytes) {
    const QByteArray tail = bytes.right(64);
    return tail.contains("\xFF\xD9");
}

QByteArray Encoded(const QImage& image, const char* format, int quality) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    return writer.write(image) ? bytes : QByteArray();
}

QImage OnWhite(const QImage& image) {
    if (!image.hasAlphaChannel()) return image;
    QImage flat(image.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    QPainter painter(&flat);
    painter.drawImage(0, 0, image);
    return flat;
}

QImage ScaledToLongSide(const QImage& image, int longSide) {
    if (std::max(image.width(), image.height()) <= longSide) return image;
    return image.scaled(longSide, longSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

}  // namespace

bool PrepareCover(const QByteArray& bytes, PreparedCover& cover, QString& problem) {
    QImageReader::setAllocationLimit(kCoverAllocationLimitMb);
    QByteArray data = bytes;
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format().toLower();
    if (format.isEmpty()) {
        problem = "The file is no image that Velmora can read (JPEG, PNG, WebP or GIF).";
        return false;
    }
    const QSize size = reader.size();
    if (!size.isValid() || size.isEmpty()) {
        problem = "The image's size cannot be read; the file is damaged.";
        return false;
    }
    if (size.width() > kCoverMaxSide || size.height() > kCoverMaxSide ||
        qint64(size.width()) * size.height() > kCoverMaxPixels) {
        problem = QString("The image is too large to be a cover (%1 x %2 pixels).")
                      .arg(size.width())
                      .arg(size.height());
        return false;
    }
    if (format == "jpeg" && !JpegIsWhole(bytes)) {
        problem = "The image is cut short; it was not stored.";
        return false;
    }
    QImage image;
    if (!reader.read(&image) || image.isNull()) {
        problem = "The image cannot be read: " + reader.errorString() + ".";
        return false;
    }
    const bool keptAsItCame = (format == "jpeg" || format == "png") &&
                              std::max(image.width(), image.height()) <= kCoverLongSide &&
                              reader.transformation() == QImageIOHandler::TransformationNone;
    if (keptAsItCame) {
        cover.image = bytes;
    } else {
        const QImage scaled = ScaledToLongSide(image, kCoverLongSide);
        cover.image =
            scaled.hasAlphaChannel() ? Encoded(scaled, "png", -1) : Encoded(scaled, "jpeg", 90);
    }
    cover.thumbnail = Encoded(OnWhite(ScaledToLongSide(image, kThumbnailLongSide)), "jpeg", 85);
    if (cover.image.isEmpty() || cover.thumbnail.isEmpty()) {
        problem = "The image could not be stored.";
        return false;
    }
    return true;
}
