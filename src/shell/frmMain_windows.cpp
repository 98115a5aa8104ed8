// The other windows the main window's commands open. Each one is opened in exactly one place,
// here, so that the busy flag and the mode flags around them stay with the commands.

#include "editor/frmEdit.h"
#include "export/frmExport.h"
#include "import/frmImport.h"
#include "lookups/frmDatabase.h"
#include "search/frmFind.h"
#include "shell/frmMain.h"
#include "shell/mGlobalFunctions.h"
#include "store/guardedfile.h"
#include "toolkit/controls/mHelp.h"
#include "toolkit/vb/guardeddialog.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"
#include "update/frmDownload.h"

void frmMain::ShowEditor() {
    ShowEditForm(this);
}

void frmMain::ShowSearch() {
    ShowFindWindow(this);
}

void frmMain::ShowHelp() {
    if (!FileExists(App.HelpFile)) {
        MsgBox("The help page " + App.HelpFile + " is missing.", vbExclamation);
        return;
    }
    if (ShowHelpContents(App.HelpFile)) return;
    MsgBox("No browser could open the help page. You can open it yourself: " + App.HelpFile,
           vbInformation);
}

void frmMain::ShowDatabaseWindow() {
    ShowDatabaseForm(this);
}

void frmMain::ShowImportWindow() {
    ::ShowImportWindow(this);
}

void frmMain::ShowExportWindow() {
    ShowExportForm(this);
}

bool frmMain::RunUpdate(QString& updateProgram) {
    sUpdateProgram.clear();
    // The download pumps events for as long as it runs: a close that comes meanwhile waits for
    // it, and the window lives on the heap so that nothing but its guard ever deletes it.
    const BusyScope downloading;
    GuardedDialog<frmDownload> download(this);
    bool downloaded = false;
    try {
        downloaded = download->Update();
    } catch (const VbError& error) {
        // A server value that is no number ends the check with the conversion's own message.
        MsgBox(error.Description, vbCritical);
    }
    updateProgram = sUpdateProgram;
    return downloaded;
}

void frmMain::ForceSelectNode(int index) {
    ::ForceSelectNode(index);
}

void frmMain::RefreshIfDirty() {
    ::RefreshIfDirty();
}

void frmMain::SelectTitleInList(long id) {
    ::SelectTitleInList(id);
}
