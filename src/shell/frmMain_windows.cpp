// The other windows the main window's commands open. Each one is opened in exactly one place,
// here, so that the busy flag and the mode flags around them stay with the commands.

#include "editor/frmEdit.h"
#include "export/frmExport.h"
#include "search/frmFind.h"
#include "shell/frmMain.h"

void frmMain::ShowEditor() {
    ShowEditForm();
}

void frmMain::ShowSearch() {
    ShowFindWindow();
}

void frmMain::ShowDatabaseWindow() {}

void frmMain::ShowImportWindow() {}

void frmMain::ShowExportWindow() {
    ShowExportForm();
}

bool frmMain::RunUpdate(QString& updateProgram) {
    updateProgram.clear();
    return false;
}
