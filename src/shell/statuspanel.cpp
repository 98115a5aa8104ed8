#include "shell/statuspanel.h"

#include <QPainter>

StatusPanel::StatusPanel(QWidget* parent) : QFrame(parent) {
    setFrameShape(QFrame::StyledPanel);
    setFrameShadow(QFrame::Sunken);
}

void StatusPanel::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    // Only a panel without a fixed width needs the status bar to make room for its new text.
    if (minimumWidth() != maximumWidth()) updateGeometry();
    // One scheduled repaint shows the latest text; asking again before it ran costs time only.
    if (repaintPending_) return;
    repaintPending_ = true;
    update();
}

QSize StatusPanel::sizeHint() const {
    const int margin = 2 * frameWidth() + 14;
    return {fontMetrics().horizontalAdvance(text_) + margin, fontMetrics().height() + margin / 2};
}

void StatusPanel::paintEvent(QPaintEvent* event) {
    repaintPending_ = false;
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.drawText(contentsRect().adjusted(4, 0, -4, 0), Qt::AlignVCenter | Qt::AlignLeft,
                     fontMetrics().elidedText(text_, Qt::ElideRight, contentsRect().width() - 8));
}
