#include "toolkit/longwork.h"

#include <QTimer>
#include <map>

namespace {

int busyDepth = 0;
std::function<void()> idleAction;

std::map<int, ProgressListener>& Listeners() {
    static std::map<int, ProgressListener> listeners;
    return listeners;
}
int nextListenerHandle = 1;

void RunIdleActionLater() {
    QTimer::singleShot(0, [] {
        if (busyDepth > 0 || !idleAction) return;
        auto action = std::move(idleAction);
        idleAction = nullptr;
        action();
    });
}

}  // namespace

BusyScope::BusyScope() {
    ++busyDepth;
}

BusyScope::~BusyScope() {
    if (--busyDepth == 0 && idleAction) RunIdleActionLater();
}

bool ProgramIsBusy() {
    return busyDepth > 0;
}

void RunWhenIdle(std::function<void()> action) {
    if (busyDepth == 0) {
        action();
        return;
    }
    idleAction = std::move(action);
}

void ReportProgress(const QString& operation, qint64 done, qint64 total) {
    // A listener may add or remove listeners (a test that ends its cut), so walk a copy.
    const auto listeners = Listeners();
    for (const auto& [handle, listener] : listeners) listener(operation, done, total);
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
