#pragma once

// The program a timed scenario drives: started in its folder as the entry point starts it,
// without the splash, and ended through its own unload.

#include <QCoreApplication>
#include <QElapsedTimer>

#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

namespace bench {

inline void StartProgram(const QString& folder) {
    App.Path = folder;
    gSplashForm = nullptr;
    gMainForm = new frmMain();
    gMainForm->Form_Load();
    if (!gMainForm) throw VbError(0, "the program did not start");
}

inline void EndProgram() {
    if (!gMainForm) return;
    gMainForm->SetMousePointer(vbArrow);
    gMainForm->Unload();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

inline double ElapsedMilliseconds(const QElapsedTimer& timer) {
    return timer.nsecsElapsed() / 1e6;
}

}  // namespace bench
