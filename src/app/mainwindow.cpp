#include "app/mainwindow.h"

QString SelectedFolderKey() {
    const MainWindow* main = TheMainWindow();
    return main ? main->SelectedNodeKey() : QString();
}

QString ParentFolderKey(const QString& key) {
    const MainWindow* main = TheMainWindow();
    return main && !key.isEmpty() ? main->ParentNodeKey(key) : QString();
}
