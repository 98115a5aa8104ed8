// The other windows the main window's commands open. Each one is opened in exactly one place,
// here, so that the busy flag and the mode flags around them stay with the commands.

#include "editor/frmEdit.h"
#include "search/frmFind.h"
#include "shell/frmMain.h"
#include "toolkit/msgbox.h"
#include "toolkit/vberror.h"
#include "update/frmDownload.h"

void frmMain::ShowEditor() {
    ShowEditForm();
}

void frmMain::ShowSearch() {
    ShowFindWindow();
}

void frmMain::ShowDatabaseWindow() {}

void frmMain::ShowImportWindow() {}

void frmMain::ShowExportWindow() {}

bool frmMain::RunUpdate(QString& updateProgram) {
    sUpdateProgram.clear();
    frmDownload download(this);
    bool downloaded = false;
    try {
        downloaded = download.Update();
    } catch (const VbError& error) {
        // A server value that is no number ends the check with the conversion's own message.
        MsgBox(error.Description, vbCritical);
    }
    updateProgram = sUpdateProgram;
    return downloaded;
}
