#include "toolkit/vb/keyupguard.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QWidget>

namespace keyupguard {
namespace {

class KeyDownWatcher : public QObject {
  public:
    using QObject::QObject;

    bool CameHere(const QObject* control, const QKeyEvent* keyUp) const {
        return SameDelivery(keyUp, release_) && control == releaseTarget_ && releaseMatched_;
    }

  protected:
    // Sees every delivery before the receiver does. Window-system objects pass the key on to
    // a widget; only widgets count.
    bool eventFilter(QObject* receiver, QEvent* event) override {
        const bool press = event->type() == QEvent::KeyPress;
        if (!receiver->isWidgetType() || (!press && event->type() != QEvent::KeyRelease))
            return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        if (press) {
            // A key-down that the control leaves alone goes on to its parents; it still came
            // to the control.
            if (SameDelivery(key, press_) && IsAncestorOfTarget(receiver)) return false;
            press_ = Delivery::Of(key);
            target_ = static_cast<QWidget*>(receiver);
            key_ = key->key();
        } else if (!key->isAutoRepeat()) {
            if (SameDelivery(key, release_) && IsAncestorOf(receiver, releaseTarget_)) return false;
            release_ = Delivery::Of(key);
            releaseTarget_ = receiver;
            releaseMatched_ = target_ == receiver && key_ == key->key();
            // The press is used up, whatever came of it.
            target_ = nullptr;
        }
        return false;
    }

  private:
    // One event on its way from a control up to its parents. The address alone could be that
    // of a later event made at the same place.
    struct Delivery {
        const QKeyEvent* event = nullptr;
        quint64 timestamp = 0;
        int key = 0;
        static Delivery Of(const QKeyEvent* event) {
            return {event, event->timestamp(), event->key()};
        }
    };
    static bool SameDelivery(const QKeyEvent* event, const Delivery& delivery) {
        return event == delivery.event && event->timestamp() == delivery.timestamp &&
               event->key() == delivery.key;
    }

    static bool IsAncestorOf(const QObject* ancestor, const QObject* widget) {
        for (const QObject* parent = widget ? widget->parent() : nullptr; parent;
             parent = parent->parent())
            if (parent == ancestor) return true;
        return false;
    }
    bool IsAncestorOfTarget(const QObject* receiver) const {
        return IsAncestorOf(receiver, target_.data());
    }

    Delivery press_;
    Delivery release_;
    QPointer<QWidget> target_;
    int key_ = 0;
    QPointer<QObject> releaseTarget_;
    bool releaseMatched_ = false;
};

KeyDownWatcher* watcher = nullptr;

}  // namespace

void Install() {
    if (watcher || !qApp) return;
    watcher = new KeyDownWatcher(qApp);
    qApp->installEventFilter(watcher);
}

bool CameHere(const QObject* control, const QKeyEvent* keyUp) {
    return watcher && !keyUp->isAutoRepeat() && watcher->CameHere(control, keyUp);
}

}  // namespace keyupguard
