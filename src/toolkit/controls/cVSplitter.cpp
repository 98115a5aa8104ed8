#include "toolkit/controls/cVSplitter.h"

#include <QFrame>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QRubberBand>
#include <QWidget>

#include "toolkit/vb/msgbox.h"

namespace {

// The classic window metrics the divider is measured by: the least width of a window, the
// width of a sizing frame and of a thin border.
constexpr int kMinWindowWidth = 112;
constexpr int kFrameWidth = 4;
constexpr int kBorderWidth = 1;

// A pane drawn with a sunken client edge overlaps the divider by its border.
bool HasClientEdge(const QWidget* pane) {
    const auto* frame = qobject_cast<const QFrame*>(pane);
    return frame && frame->frameShape() != QFrame::NoFrame &&
           frame->frameShadow() == QFrame::Sunken;
}

}  // namespace

cVSplitter::cVSplitter() = default;

cVSplitter::~cVSplitter() {
    delete ghostBar_;
}

bool cVSplitter::SetControls(QWidget* frm, QWidget* left, QWidget* right, QFrame* fra) {
    for (QWidget* pane : {left, right}) {
        if (!pane) {
            MsgBox("Pane must be a window (have a window handle).");
            return false;
        }
    }
    frmParent = frm;
    ctlLeft = left;
    ctlRight = right;
    fraSplit = fra;
    fraSplit->setAutoFillBackground(true);
    QPalette palette = fraSplit->palette();
    palette.setColor(QPalette::Window, palette.color(QPalette::Button));
    fraSplit->setPalette(palette);
    fraSplit->setCursor(Qt::SplitHCursor);
    fraSplit->raise();
    fraSplit->installEventFilter(this);
    frmParent->installEventFilter(this);
    ComputeMetrics();
    return true;
}

void cVSplitter::ComputeMetrics() {
    if (bWidth == 0) bWidth = kFrameWidth - kBorderWidth;
    lMinPane = (kMinWindowWidth - (2 * kFrameWidth + bWidth)) / 2;
    lBorder = HasClientEdge(ctlLeft) ? kBorderWidth : 0;
}

void cVSplitter::SetLeft(long value) {
    if (value < 0 || !fraSplit) return;
    fraSplit->move(int(value), fraSplit->y());
    lLeft = value;
    ResizePanes(true);
}

void cVSplitter::SetWidth(int value) {
    if (value == 0) return;
    bWidth = value;
    if (fraSplit) ComputeMetrics();
    ResizePanes(true);
}

void cVSplitter::SetTop(long value) {
    if (value < 0) return;
    lTop = value;
    ResizePanes(true);
}

void cVSplitter::SetHeightOffset(long value) {
    if (value < 0) return;
    lHeightOffset = value;
    ResizePanes(true);
}

QRubberBand* cVSplitter::GhostBar() const {
    return ghostBar_ && ghostBar_->isVisible() ? ghostBar_.data() : nullptr;
}

void cVSplitter::ResizePanes(bool bUpdate) {
    if (!frmParent || !fraSplit) return;
    const QRect client = frmParent->rect();
    if (!(fRatio > 0)) {
        if (lLeft == 0) lLeft = fraSplit->x();
        if (lFormWidth == 0) lFormWidth = client.width();
        // Kept for the record only: the divider keeps its pixel place when the window grows.
        if (lFormWidth > 0) fRatio = float(lLeft) / float(lFormWidth);
    }
    lRight = client.width();
    lBottom = client.height() - lHeightOffset;
    if (lBottom < lTop) return;
    LayoutPanes(bUpdate);
}

void cVSplitter::LayoutPanes(bool bUpdate) {
    const int height = int(lBottom - lTop);
    const QRect right(int(lLeft + bWidth - lBorder), int(lTop),
                      int(lRight - (lLeft + bWidth) + lBorder), height);
    const QRect left(0, int(lTop), int(lLeft + lBorder), height);
    // The pane that shrinks moves first, so that nothing ever overlaps.
    const bool rightFirst = lLeft >= lPrevLeft;
    QWidget* first = rightFirst ? ctlRight : ctlLeft;
    QWidget* second = rightFirst ? ctlLeft : ctlRight;
    first->setGeometry(rightFirst ? right : left);
    if (bUpdate) first->update();
    fraSplit->setGeometry(int(lLeft), int(lTop), bWidth, height);
    fraSplit->raise();
    if (bUpdate) fraSplit->update();
    second->setGeometry(rightFirst ? left : right);
    if (bUpdate) second->update();
    lPrevLeft = lLeft;
}

void cVSplitter::Clamp(int mouseX) {
    long x = fraSplit->x() + mouseX;
    x = std::max(x, lMinPane);
    x = std::min(x, lRight - (bWidth + lMinPane));
    lLeft = x;
}

void cVSplitter::DrawBar() {
    if (!ghostBar_) ghostBar_ = new QRubberBand(QRubberBand::Line, frmParent);
    if (ghostBar_->isVisible()) {
        ghostBar_->hide();
        return;
    }
    ghostBar_->setGeometry(int(lLeft), int(lTop), bWidth, int(lBottom - lTop));
    ghostBar_->show();
    ghostBar_->raise();
}

void cVSplitter::fraSplit_MouseDown(int mouseX) {
    hCapture = true;
    fraSplit->grabMouse();
    fraSplit->grabKeyboard();
    lFormWidth = frmParent->width();
    fRatio = 0;
    lStartLeft = lLeft;
    Clamp(mouseX);
    if (!bTrackSplit) DrawBar();
}

void cVSplitter::fraSplit_MouseMove(int mouseX) {
    if (!hCapture) return;
    if (!bTrackSplit) DrawBar();
    Clamp(mouseX);
    if (bTrackSplit)
        LayoutPanes(true);
    else
        DrawBar();
}

void cVSplitter::fraSplit_MouseUp(int mouseX) {
    if (!hCapture) return;
    if (!bTrackSplit && GhostBar()) DrawBar();
    fraSplit->releaseKeyboard();
    fraSplit->releaseMouse();
    hCapture = false;
    Clamp(mouseX);
    LayoutPanes(true);
}

void cVSplitter::CancelSplit() {
    if (!hCapture) return;
    fraSplit->releaseKeyboard();
    fraSplit->releaseMouse();
    if (!bTrackSplit && GhostBar()) DrawBar();
    lLeft = lStartLeft;
    LayoutPanes(true);
    hCapture = false;
}

bool cVSplitter::eventFilter(QObject* watched, QEvent* event) {
    if (watched == frmParent && event->type() == QEvent::Resize) {
        if (!frmParent->isMinimized()) ResizePanes(true);
        return false;
    }
    if (event->type() == QEvent::KeyPress && (watched == frmParent || watched == fraSplit)) {
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && hCapture) {
            CancelSplit();
            return true;
        }
        return false;
    }
    const QEvent::Type type = event->type();
    if (watched != fraSplit || (type != QEvent::MouseButtonPress && type != QEvent::MouseMove &&
                                type != QEvent::MouseButtonRelease))
        return false;
    const auto* mouse = static_cast<QMouseEvent*>(event);
    switch (type) {
        case QEvent::MouseButtonPress:
            if (mouse->button() == Qt::LeftButton) fraSplit_MouseDown(int(mouse->position().x()));
            return true;
        case QEvent::MouseMove:
            fraSplit_MouseMove(int(mouse->position().x()));
            return hCapture;
        case QEvent::MouseButtonRelease:
            if (mouse->button() == Qt::LeftButton) fraSplit_MouseUp(int(mouse->position().x()));
            return true;
        default:
            return false;
    }
}
