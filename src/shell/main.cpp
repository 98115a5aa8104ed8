#include <QApplication>
#include <QDir>
#include <csignal>

#include "shell/submain.h"
#include "shell/terminationsignals.h"
#include "toolkit/controls/resources.h"
#include "toolkit/vb/vbruntime.h"

int main(int argc, char** argv) {
    // A file that outgrows the user's file size limit must fail its write, not end the program
    // with the catalogue open.
    std::signal(SIGXFSZ, SIG_IGN);
    KeepFreedMemoryForReuse();
    QApplication app(argc, argv);
    InitResources();
    App.Path = QDir(QCoreApplication::applicationDirPath()).absolutePath();
    QApplication::setApplicationName(App.Title);
    // The main window hides itself while its exit work runs; that must not end the loop early.
    QApplication::setQuitOnLastWindowClosed(false);
    TerminationSignals terminationSignals;
    return SubMain();
}
