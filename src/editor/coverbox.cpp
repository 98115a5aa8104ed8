#include "editor/coverbox.h"

#include <QBuffer>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QPainter>

CoverBox::CoverBox(QWidget* parent) : QFrame(parent) {
    setFrameShape(QFrame::StyledPanel);
    setAcceptDrops(true);
    setFixedSize(160, 160);
    spinner_.setInterval(80);
    connect(&spinner_, &QTimer::timeout, this, [this] {
        angle_ = (angle_ + 30) % 360;
        update();
    });
}

void CoverBox::SetCover(const QImage& image, const QString& text) {
    cover_ = image;
    text_ = text;
    update();
}

void CoverBox::SetBusy(bool busy) {
    if (busy)
        spinner_.start();
    else
        spinner_.stop();
    update();
}

void CoverBox::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRect inside = contentsRect().adjusted(4, 4, -4, -4);
    if (!cover_.isNull()) {
        const QSize shown = cover_.size().scaled(inside.size(), Qt::KeepAspectRatio);
        const QRect target(inside.center() - QPoint(shown.width() / 2, shown.height() / 2), shown);
        painter.drawImage(target, cover_);
    } else {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(inside, Qt::AlignCenter | Qt::TextWordWrap, text_);
    }
    if (spinner_.isActive()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(0x9A, 0x6B, 0x00), 3, Qt::SolidLine, Qt::RoundCap));
        const QRect ring(inside.right() - 22, inside.bottom() - 22, 18, 18);
        painter.drawArc(ring, -angle_ * 16, 270 * 16);
    }
}

void CoverBox::dragEnterEvent(QDragEnterEvent* event) {
    const QMimeData* data = event->mimeData();
    if (data->hasImage() || data->hasUrls()) event->acceptProposedAction();
}

void CoverBox::dropEvent(QDropEvent* event) {
    const QMimeData* data = event->mimeData();
    event->acceptProposedAction();
    // A browser gives the image itself; a file manager gives the file.
    for (const QUrl& url : data->urls()) {
        if (!url.isLocalFile()) continue;
        QFile file(url.toLocalFile());
        if (file.size() > kMaxDroppedBytes)
            return emit DropRefused("The file is larger than " +
                                    QString::number(kMaxDroppedBytes >> 20) + " MB.");
        if (!file.open(QIODevice::ReadOnly))
            return emit DropRefused("The file cannot be read: " + file.errorString() + ".");
        return emit Dropped(file.readAll(), QFileInfo(file).fileName());
    }
    if (data->hasImage()) {
        const QImage image = qvariant_cast<QImage>(data->imageData());
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        if (image.isNull() || !image.save(&buffer, "png"))
            return emit DropRefused("The dropped image cannot be read.");
        const QUrl from = data->hasUrls() ? data->urls().constFirst() : QUrl();
        return emit Dropped(bytes, from.isEmpty() ? QString("a dropped image") : from.toString());
    }
    emit DropRefused("Only an image file or an image can be dropped here.");
}
