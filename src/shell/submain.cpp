#include "shell/submain.h"

#include <QApplication>

#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "toolkit/vbruntime.h"

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
