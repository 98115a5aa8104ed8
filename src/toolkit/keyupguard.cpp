#include "toolkit/keyupguard.h"

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
        return keyUp == release_ && control == releaseTarget_ && releaseMatched_;
    }

  protected:
    // Sees every delivery before the receiver does. Window-system objects pass the key on to
    // a widget; only widgets count.
    bool eventFilter(QObject* receiver, QEvent* event) override {
        if (!receiver->isWidgetType()) return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        if (event->type() == QEvent::KeyPress) {
            // A key-down that the control leaves alone goes on to its parents; it still came
            // to the control.
            if (key == press_ && IsAncestorOfTarget(receiver)) return false;
            press_ = key;
            target_ = static_cast<QWidget*>(receiver);
            key_ = key->key();
        } else if (event->type() == QEvent::KeyRelease && !key->isAutoRepeat()) {
            if (key == release_ && IsAncestorOf(receiver, releaseTarget_)) return false;
            release_ = key;
            releaseTarget_ = receiver;
            releaseMatched_ = target_ == receiver && key_ == key->key();
            // The press is used up, whatever came of it.
            target_ = nullptr;
        }
        return false;
    }

  private:
    static bool IsAncestorOf(const QObject* ancestor, const QObject* widget) {
        for (const QObject* parent = widget ? widget->parent() : nullptr; parent;
             parent = parent->parent())
            if (parent == ancestor) return true;
        return false;
    }
    bool IsAncestorOfTarget(const QObject* receiver) const {
        return IsAncestorOf(receiver, target_.data());
    }

    // Compared by address only, while the same event is being delivered.
    const QKeyEvent* press_ = nullptr;
    const QKeyEvent* release_ = nullptr;
    QPointer<QWidget> target_;
    int key_ = 0;
    const QObject* releaseTarget_ = nullptr;
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
