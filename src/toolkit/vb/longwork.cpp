#include "toolkit/vb/longwork.h"

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <map>
#include <vector>

namespace {

int busyDepth = 0;

// A window's depth is the busy depth at which its own handlers run: what is busy beyond it was
// started by the window or above it.
struct OpenWindow {
    QPointer<QWidget> window;
    int depth = 0;
    bool cancelAsked = false;
};
std::vector<OpenWindow> openWindows;

// An unload waits for its window's depth, other work for no work at all.
struct Waiting {
    QPointer<QWidget> window;
    bool forWindow = false;
    std::function<void()> action;
};
std::vector<Waiting> waiting;

std::function<void()> endAction;
bool pumpPosted = false;

std::map<int, ProgressListener>& Listeners() {
    static std::map<int, ProgressListener> listeners;
    return listeners;
}
int nextListenerHandle = 1;

void ForgetClosedWindows() {
    std::erase_if(openWindows, [](const OpenWindow& open) { return open.window.isNull(); });
    std::erase_if(waiting, [](const Waiting& next) { return next.forWindow && !next.window; });
}

OpenWindow* FindOpenWindow(const QWidget* window) {
    const auto found =
        std::find_if(openWindows.begin(), openWindows.end(),
                     [window](const OpenWindow& open) { return open.window == window; });
    return found == openWindows.end() ? nullptr : &*found;
}

int DepthOf(const QWidget* window) {
    const OpenWindow* open = FindOpenWindow(window);
    return open ? open->depth : 0;
}

// The deepest window, the latest of equals: the one nothing else is open above.
OpenWindow* TopOpenWindow() {
    ForgetClosedWindows();
    OpenWindow* top = nullptr;
    for (OpenWindow& open : openWindows)
        if (!top || open.depth >= top->depth) top = &open;
    return top;
}

// Closes the top-most window as Cancel when nothing of its own is under way; true when it was
// asked to.
bool CancelTopWindow() {
    OpenWindow* top = TopOpenWindow();
    if (!top || top->cancelAsked || busyDepth > top->depth) return false;
    top->cancelAsked = true;
    const QPointer<QWidget> window = top->window;
    if (auto* dialog = qobject_cast<QDialog*>(window.data()))
        dialog->reject();
    else
        window->close();
    ForgetClosedWindows();
    return true;
}

void PostPump();

// Runs what waited for the work to return, in the order asked: the unloads whose windows are
// back at rest and the work that waited for no work at all; then the end's next step.
void Pump() {
    pumpPosted = false;
    ForgetClosedWindows();
    for (auto next = waiting.begin(); next != waiting.end(); ++next) {
        if (busyDepth > (next->forWindow ? DepthOf(next->window) : 0)) continue;
        const auto action = std::move(next->action);
        waiting.erase(next);
        action();
        PostPump();
        return;
    }
    if (!endAction) return;
    if (CancelTopWindow()) {
        PostPump();
        return;
    }
    if (busyDepth > 0 || TopOpenWindow()) return;
    const auto end = std::move(endAction);
    endAction = nullptr;
    end();
}

// From the event loop, so that the handler that let the work return has returned first.
void PostPump() {
    if (pumpPosted || !QCoreApplication::instance()) return;
    if (!endAction && waiting.empty()) return;
    pumpPosted = true;
    QTimer::singleShot(0, QCoreApplication::instance(), Pump);
}

bool IsInput(const QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ShortcutOverride:
        case QEvent::Shortcut:
        case QEvent::ContextMenu:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TabletPress:
        case QEvent::TabletRelease:
            return true;
        case QEvent::Close:
            return event->spontaneous();
        default:
            return false;
    }
}

}  // namespace

BusyScope::BusyScope() {
    ++busyDepth;
}

BusyScope::~BusyScope() {
    --busyDepth;
    PostPump();
}

bool ProgramIsBusy() {
    return busyDepth > 0;
}

bool EndProgramWhenIdle(std::function<void()> end) {
    // Nothing pumps events: every open window is at rest and closes now.
    while (busyDepth == 0 && CancelTopWindow()) {
    }
    if (busyDepth == 0 && !TopOpenWindow()) {
        endAction = nullptr;
        return true;
    }
    endAction = std::move(end);
    PostPump();
    return false;
}

void AddOpenWindow(QWidget* window) {
    if (OpenWindow* open = FindOpenWindow(window)) {
        open->depth = busyDepth;
        return;
    }
    openWindows.push_back({window, busyDepth});
}

void RemoveOpenWindow(QWidget* window) {
    std::erase_if(openWindows, [window](const OpenWindow& open) { return open.window == window; });
    PostPump();
}

int RunModal(QDialog* dialog) {
    const BusyScope opener;
    const bool added = !FindOpenWindow(dialog);
    AddOpenWindow(dialog);
    const QPointer<QDialog> alive(dialog);
    const int result = dialog->exec();
    if (!alive) return QDialog::Rejected;
    if (added) RemoveOpenWindow(dialog);
    return result;
}

bool UnloadMayRunNow(QWidget* window, std::function<void()> unload) {
    if (busyDepth <= DepthOf(window)) return true;
    waiting.push_back({window, true, std::move(unload)});
    return false;
}

void RunWhenIdle(std::function<void()> action) {
    if (busyDepth == 0) {
        action();
        return;
    }
    waiting.push_back({nullptr, false, std::move(action)});
}

InputBlock::InputBlock() {
    qApp->installEventFilter(this);
}

InputBlock::~InputBlock() {
    qApp->removeEventFilter(this);
}

bool InputBlock::eventFilter(QObject* watched, QEvent* event) {
    if (!IsInput(event) || !watched->isWidgetType()) return false;
    const QWidget* modal = QApplication::activeModalWidget();
    return !modal || static_cast<QWidget*>(watched)->window() != modal;
}

void ReportProgress(const QString& operation, qint64 done, qint64 total) {
    // Whoever reports progress is in the middle of work on the catalogue: an end or an unload
    // that a listener asks for (a click let through, a signal) waits until the work returns.
    const BusyScope reporting;
    // A listener may add or remove listeners (a test that ends its cut, a window freed while a
    // listener lets events through): each one there now is told, unless it has gone meanwhile.
    std::vector<int> handles;
    for (const auto& entry : Listeners()) handles.push_back(entry.first);
    for (const int handle : handles) {
        const auto found = Listeners().find(handle);
        if (found == Listeners().end()) continue;
        const ProgressListener listener = found->second;
        listener(operation, done, total);
    }
}

void EndProgress(const QString& operation) {
    ReportProgress(operation, 0, 0);
}

int AddProgressListener(ProgressListener listener) {
    Listeners()[nextListenerHandle] = std::move(listener);
    return nextListenerHandle++;
}

void RemoveProgressListener(int handle) {
    Listeners().erase(handle);
}
