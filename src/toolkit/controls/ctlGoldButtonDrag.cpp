#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>

#include "toolkit/controls/ctlGoldButton.h"
#include "toolkit/vb/longwork.h"

namespace {

// Drag data whose formats may be announced with no data yet: the button is asked to render
// such a format through OLESetData only when a target reads it.
class DeferredDragData : public QMimeData {
  public:
    explicit DeferredDragData(ctlGoldButton* button) : button_(button) {}

  protected:
    QVariant retrieveData(const QString& mimeType, QMetaType type) const override {
        QVariant value = QMimeData::retrieveData(mimeType, type);
        if (button_ && hasFormat(mimeType) && value.toByteArray().isEmpty()) {
            emit button_->OLESetData(const_cast<DeferredDragData*>(this), mimeType);
            value = QMimeData::retrieveData(mimeType, type);
        }
        return value;
    }

  private:
    QPointer<ctlGoldButton> button_;
};

}  // namespace

void ctlGoldButton::OLEDrag() {
    auto* data = new DeferredDragData(this);
    Qt::DropActions allowed = Qt::CopyAction | Qt::MoveAction;
    emit OLEStartDrag(data, allowed);
    if (allowed == Qt::IgnoreAction || data->formats().isEmpty()) {
        delete data;
        return;
    }
    QPointer<QDrag> drag = new QDrag(this);
    drag->setMimeData(data);
    connect(drag, &QDrag::actionChanged, this, &ctlGoldButton::OLEGiveFeedback);
    Qt::DropAction effect = Qt::IgnoreAction;
    {
        // The drag runs a loop of its own; the window must still be there when it ends.
        const BusyScope dragging;
        effect = drag->exec(allowed);
    }
    if (drag) drag->deleteLater();
    emit OLECompleteDrag(effect);
}

// Drops reach the button only after setAcceptDrops(true); a handler accepts the proposed
// action to let the drop happen.
void ctlGoldButton::dragEnterEvent(QDragEnterEvent* event) {
    emit OLEDragOver(event, vbEnter);
}

void ctlGoldButton::dragMoveEvent(QDragMoveEvent* event) {
    emit OLEDragOver(event, vbOver);
}

void ctlGoldButton::dragLeaveEvent(QDragLeaveEvent*) {
    emit OLEDragOver(nullptr, vbLeave);
}

void ctlGoldButton::dropEvent(QDropEvent* event) {
    emit OLEDragDrop(event);
}
