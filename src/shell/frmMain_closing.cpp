// The closing rule and the exit: the catalogue is closed, guarded again, and the values the
// update program reads are written.

#include <QCloseEvent>
#include <QPointer>

#include "app/mGlobals.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/singleinstance.h"
#include "store/catalogue.h"
#include "store/frmPerformAction.h"
#include "store/guardedfile.h"
#include "toolkit/controls/mCoolMenu.h"
#include "toolkit/platform/mRegistry.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/vbruntime.h"

namespace {

void WriteUpdateProgramValues() {
    const QString key = "HKEY_LOCAL_MACHINE\\Software\\" + kMakerName + "\\" + App.Title;
    RegistryHandle handle = 0;
    CreateRegistryKey(handle, key);
    SetRegistryValue(handle, "AppPath", App.Path, REG_SZ);
    SetRegistryValue(handle, "CurrentVersionMajor", QString::number(App.Major), REG_SZ);
    SetRegistryValue(handle, "CurrentVersionMinor", QString::number(App.Minor), REG_SZ);
    SetRegistryValue(handle, "CurrentVersionRevision", QString::number(App.Revision), REG_SZ);
}

}  // namespace

void frmMain::Unload() {
    if (unloaded_) return;
    // A close asked for during the start-up (another instance, a catalogue that cannot be
    // opened) must end the program, so the busy test applies only once the window is up.
    if (!loading_ && !Form_QueryUnload()) return;
    Form_Unload();
}

void frmMain::closeEvent(QCloseEvent* event) {
    if (unloaded_) {
        event->accept();
        return;
    }
    if (!Form_QueryUnload()) {
        event->ignore();
        return;
    }
    Form_Unload();
    event->accept();
}

bool frmMain::Form_QueryUnload() {
    // Work that pumps events is still using the catalogue and its windows, or a window is open
    // over it: the close is refused now and made once the windows are closed (as Cancel) and
    // the work has returned.
    return EndProgramWhenIdle([window = QPointer<frmMain>(this)] {
        if (window) window->close();
    });
}

void frmMain::Form_Unload() {
    unloaded_ = true;
    if (windowState() == Qt::WindowNoState) move(-width(), -height());
    hide();

    gRecordset.reset();
    if (gDatabase) {
        gDatabase->Close();
        gDatabase.reset();
    }

    // Only the run that holds the program folder touches the catalogue; a run that could not
    // open it (refused, damaged, wrong password) still compacts and guards it.
    if (!gSecondInstance) {
        try {
            if (FileExists(gDatabasePath) && GetAttr(gDatabasePath) != vbArchive)
                SetAttr(gDatabasePath, vbArchive);
        } catch (const VbError&) {
        }
        (new frmPerformAction())
            ->PerformAction(frmPerformAction::CompactMainDatabase, this, false, QString(),
                            QString(), false);
        try {
            if (FileExists(gDatabasePath)) FlipDatabaseHeader(gDatabasePath, kGuardHeader);
        } catch (const VbError&) {
        }
        WriteUpdateProgramValues();
    }

    if (instance_) instance_->Release();
    if (gSplashForm) gSplashForm->Unload();
    UnSubClassMenu(this);
    gMainForm = nullptr;
    SetTheMainWindow(nullptr);
    emit Unloaded();
    deleteLater();
}
