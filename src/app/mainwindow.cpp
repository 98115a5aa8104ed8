#include "app/mainwindow.h"

namespace {
MainWindow* runningMainWindow = nullptr;
}  // namespace

MainWindow* TheMainWindow() {
    return runningMainWindow;
}

void SetTheMainWindow(MainWindow* window) {
    runningMainWindow = window;
}

QString SelectedFolderKey() {
    const MainWindow* main = TheMainWindow();
    return main ? main->SelectedNodeKey() : QString();
}

QString ParentFolderKey(const QString& key) {
    const MainWindow* main = TheMainWindow();
    return main && !key.isEmpty() ? main->ParentNodeKey(key) : QString();
}
