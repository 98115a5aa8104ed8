#include <QPainter>

#include "toolkit/controls/ctlGoldButton.h"
#include "toolkit/vb/vbruntime.h"

namespace {

constexpr quint32 kButtonFace = 0x8000000F;
constexpr quint32 kButtonShadow = 0x80000010;
constexpr quint32 kButtonHighlight = 0x80000014;
constexpr quint32 kDarkShadow = 0x80000015;
constexpr quint32 kLight = 0x80000016;

// The skin strip: five cells of 82 by 23 pixels, one under the other, each a 2-pixel frame
// around a body whose 19-pixel tile is repeated over the button.
constexpr int kCellHeight = 23;
constexpr int kCellRight = 80;
constexpr int kFrame = 2;
constexpr int kTile = 19;

// Cells for the rest and hover edge codes, and for the pressed ones; -1 draws nothing.
int UpCell(int edge) {
    switch (edge) {
        case ctlGoldButton::edgeRaised:
            return 3;
        case ctlGoldButton::edgeNone:
            return 0;
        case ctlGoldButton::edgeRaisedInner:
            return 1;
        default:
            return -1;
    }
}

int DownCell(int edge) {
    switch (edge) {
        case ctlGoldButton::edgeSunken:
            return 4;
        case ctlGoldButton::edgeSunkenOuter:
            return 2;
        default:
            return -1;
    }
}

// A rectangle given by its edges, the right and bottom ones excluded.
QRect Edges(int left, int top, int right, int bottom) {
    return QRect(QPoint(left, top), QPoint(right - 1, bottom - 1));
}

}  // namespace

void ctlGoldButton::DrawButton(bool bDown, bool bHover) {
    const int w = width();
    const int h = height();
    if (surface_.size() != size()) {
        surface_ = QImage(size(), QImage::Format_RGB32);
        surface_.setDotsPerMeterX(qRound(logicalDpiX() / 0.0254));
        surface_.setDotsPerMeterY(qRound(logicalDpiY() / 0.0254));
    }
    if (surface_.isNull()) return;
    QPainter painter(&surface_);
    painter.setFont(font());
    const QFontMetrics metrics(font(), &surface_);
    const int textW = metrics.size(Qt::TextShowMnemonic, caption_).width();

    painter.fillRect(surface_.rect(), Translated(kButtonFace));
    const bool skin = style_ == bsSkin && pSkinPic.present();
    if (skin) {
        // At rest the body follows the pressed edge code, not the resting one.
        const int cell = bHover && !bDown ? UpCell(onHover_) : DownCell(onDown_);
        if (cell >= 0) DrawSkinCentre(painter, cell);
    }

    const int picW = pBtnPic.present() ? pBtnPic.image.width() : 0;
    int flag = Qt::AlignLeft;
    int picX = 0;
    const bool crowded = picW + textW + 10 >= w;
    switch (alignment_) {
        case vbLeftJustify:
            picX = 4;
            break;
        case vbRightJustify:
            flag = Qt::AlignRight;
            picX = crowded ? 4 : w - textW - picW - 6;
            break;
        case vbCenter:
            flag = Qt::AlignHCenter;
            picX = crowded ? 4 : int(RoundToEven((w - textW) / 2.0 - picW + 6));
            break;
        default:
            break;
    }

    const bool hasPictures =
        pBtnPic.present() || pBtnPicHov.present() || pBtnPicDn.present() || pBtnPicDis.present();
    const int textFlags = flag | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextShowMnemonic;
    if (isEnabled()) {
        const int d = bDown ? 1 : 0;
        DrawCaption(painter, Edges(hasPictures ? picW + 7 + d : 4, 1 + d, w - 4 + d, h - 1 + d),
                    textFlags, Translated(textColor_));
    } else {
        // Twice, the light copy one pixel right and down of the dark one, for relief.
        DrawCaption(painter, Edges(hasPictures ? picW + 8 : 5, 4, w - 3, h - 2), textFlags,
                    Translated(skin ? skinHighlight_ : kButtonHighlight));
        DrawCaption(painter, Edges(hasPictures ? picW + 7 : 4, 2, w - 4, h - 2), textFlags,
                    Translated(skin ? skinDisabledText_ : kButtonShadow));
    }

    if (hasPictures) {
        QList<const PictureBox*> order = {&pBtnPic};
        int shift = 0;
        if (!isEnabled()) {
            order = {&pBtnPicDis, &pBtnPic};
        } else if (bHover) {
            order = {&pBtnPicHov, &pBtnPic};
        } else if (bDown) {
            order = {&pBtnPicDn, &pBtnPicHov, &pBtnPic};
            shift = 1;
        }
        for (const PictureBox* box : order) {
            if (!box->present()) continue;
            const int y = int(RoundToEven((h - box->image.height()) / 2.0 + 0.5));
            painter.drawImage(picX + shift, y + shift, box->image);
            break;
        }
    }

    const int edge = bDown ? onDown_ : bHover ? onHover_ : onUp_;
    if (!skin) {
        DrawEdge(painter, edge);
    } else {
        const int cell = bDown ? DownCell(edge) : UpCell(edge);
        if (cell >= 0) DrawSkinEdges(painter, cell);
    }
    // Forms are built in code, never on a design surface, so a flat button needs no outline.
    update();
}

// Drawn with the mnemonic underline, on one line, cut with "..." when it does not fit. A text
// colour that names none falls back to the palette's button text.
void ctlGoldButton::DrawCaption(QPainter& painter, const QRect& rect, int flags,
                                const QColor& color) {
    const QFontMetrics metrics(painter.font(), painter.device());
    const QString text =
        metrics.elidedText(caption_, Qt::ElideRight, rect.width(), Qt::TextShowMnemonic);
    painter.setPen(color.isValid() ? color : palette().color(QPalette::ButtonText));
    painter.drawText(rect, flags, text);
}

void ctlGoldButton::DrawSkinCentre(QPainter& painter, int iCell) {
    const QRect tile(3, kFrame + kCellHeight * iCell, kTile, kTile);
    for (int y = kFrame; y <= height() - kFrame; y += kTile) {
        for (int x = kFrame; x <= width() - kFrame; x += kTile) {
            painter.drawImage(QPoint(x, y), pSkinPic.image, tile);
        }
    }
}

void ctlGoldButton::DrawSkinEdges(QPainter& painter, int iCell) {
    const QImage& skin = pSkinPic.image;
    const int t = kCellHeight * iCell;
    const int b = kCellHeight * (iCell + 1) - kFrame;
    const int right = width() - kFrame;
    const int bottom = height() - kFrame;
    for (int x = kFrame; x <= right; x += kTile) {
        painter.drawImage(QPoint(x, 0), skin, QRect(kFrame, t, kTile, kFrame));
        painter.drawImage(QPoint(x, bottom), skin, QRect(kFrame, b, kTile, kFrame));
    }
    for (int y = kFrame; y <= bottom; y += kTile) {
        painter.drawImage(QPoint(0, y), skin, QRect(0, t + kFrame, kFrame, kTile));
        painter.drawImage(QPoint(right, y), skin, QRect(kCellRight, t + kFrame, kFrame, kTile));
    }
    const QSize corner(kFrame, kFrame);
    painter.drawImage(QPoint(0, 0), skin, QRect(QPoint(0, t), corner));
    painter.drawImage(QPoint(right, 0), skin, QRect(QPoint(kCellRight, t), corner));
    painter.drawImage(QPoint(0, bottom), skin, QRect(QPoint(0, b), corner));
    painter.drawImage(QPoint(right, bottom), skin, QRect(QPoint(kCellRight, b), corner));
}

// The classic 3D edges: up to two one-pixel rings, the outer border (bit 1 raised, bit 2
// sunken) outside the inner one (bit 4 raised, bit 8 sunken). A lone border takes the outer
// ring. The bottom-right colour owns the top-right and bottom-left corners.
void ctlGoldButton::DrawEdge(QPainter& painter, int edge) {
    struct Ring {
        quint32 topLeft;
        quint32 bottomRight;
    };
    QList<Ring> rings;
    switch (edge & 3) {
        case 1:
            rings.append({kLight, kDarkShadow});
            break;
        case 2:
            rings.append({kButtonShadow, kButtonHighlight});
            break;
        default:
            break;
    }
    switch ((edge >> 2) & 3) {
        case 1:
            rings.append({kButtonHighlight, kButtonShadow});
            break;
        case 2:
            rings.append({kDarkShadow, kLight});
            break;
        default:
            break;
    }
    for (int inset = 0; inset < rings.size(); ++inset) {
        const int l = inset;
        const int t = inset;
        const int r = width() - 1 - inset;
        const int b = height() - 1 - inset;
        if (r <= l || b <= t) break;
        const QColor topLeft = Translated(rings[inset].topLeft);
        const QColor bottomRight = Translated(rings[inset].bottomRight);
        painter.fillRect(QRect(l, t, r - l, 1), topLeft);
        painter.fillRect(QRect(l, t, 1, b - t), topLeft);
        painter.fillRect(QRect(l, b, r - l + 1, 1), bottomRight);
        painter.fillRect(QRect(r, t, 1, b - t + 1), bottomRight);
    }
}
