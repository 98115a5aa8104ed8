#include "shell/submain.h"

#include <malloc.h>

#include <QApplication>

#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "toolkit/vb/vbruntime.h"

int SubMain() {
    try {
        gSplashForm = new frmSplash();
        gSplashForm->show();
        DoEvents();
        gMainForm = new frmMain();
        QObject::connect(gMainForm, &frmMain::Unloaded, qApp, &QCoreApplication::quit,
                         Qt::QueuedConnection);
        gMainForm->Form_Load();
    } catch (const std::exception&) {
        if (gMainForm) gMainForm->Unload();
        if (gSplashForm) gSplashForm->Unload();
    }
    // The start-up may already have ended the program.
    if (!gMainForm) {
        QCoreApplication::processEvents();
        return 0;
    }
    return QApplication::exec();
}

void KeepFreedMemoryForReuse() {
    constexpr int kLargestMappedAllocation = 32 * 1024 * 1024;
    constexpr int kFreeTopKept = 256 * 1024 * 1024;
    mallopt(M_MMAP_THRESHOLD, kLargestMappedAllocation);
    mallopt(M_TRIM_THRESHOLD, kFreeTopKept);
}
