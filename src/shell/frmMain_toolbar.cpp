// The button bar and what its buttons run.

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include "shell/frmMain.h"
#include "toolkit/controls/imagelists.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"
#include "toolkit/vb/vbstrings.h"

namespace {

struct ToolbarButtonDesign {
    QString key;  // empty for a separator
    QString caption;
    QString image;
    QString tooltip;
};

QList<ToolbarButtonDesign> ToolbarDesign() {
    return {
        {"addcd", "Add", "addcd", "Add a cd-title"},
        {"modifycd", "Modify", "modifycd", "Modify information about the selected cd-title"},
        {"deletecd", "Delete", "deletecd", "Delete the selected cd-title"},
        {},
        {"maintenance", "Database", "structure", "Change lookup lists / structure"},
        {"search", "Search", "search", "Search for one or more cd-titles"},
        {"finddisc", "Find disc", "finddisc",
         "Find this disc: select the title of the cd in the drive (Ctrl+D)"},
        {},
        {"import", "Import", "import", "Import cd-titles from a program or file"},
        {"export", "Export", "export", "Export cd-titles to a program, HTML or the clipboard"},
        {},
        {"help", "Help", "help", "Help about how to use " + App.Title},
        {"update", "Update", "update", "Check for an update through the internet"},
        {},
        {"quit", "Quit", "quit", "Quit " + App.Title},
    };
}

}  // namespace

void frmMain::InitializeToolbar() {
    Toolbar1->clear();
    Toolbar1->setIconSize(QSize(24, 24));
    Toolbar1->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    Toolbar1->setContextMenuPolicy(Qt::PreventContextMenu);
    for (const ToolbarButtonDesign& design : ToolbarDesign()) {
        if (design.key.isEmpty()) {
            Toolbar1->addSeparator();
            continue;
        }
        QAction* button = Toolbar1->addAction(QIcon(ToolbarIcon24(design.image)), design.caption);
        button->setObjectName(design.key);
        button->setData(design.key);
        button->setToolTip(design.tooltip);
        const QString key = design.key;
        if (key == "finddisc") button->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_D));
        connect(button, &QAction::triggered, this, [this, key] { Toolbar1_ButtonClick(key); });
    }
}

QAction* frmMain::ToolbarButton(const QString& key) const {
    for (QAction* button : Toolbar1->actions())
        if (!button->isSeparator() && button->data().toString() == key) return button;
    return nullptr;
}

void frmMain::Toolbar1_ButtonClick(const QString& key) {
    if (key == "addcd") {
        NewTitle();
    } else if (key == "modifycd") {
        ModifyTitle();
    } else if (key == "deletecd") {
        DeleteTitle();
    } else if (key == "search") {
        ShowSearch();
    } else if (key == "finddisc") {
        FindThisDisc();
    } else if (key == "import") {
        ShowImportWindow();
    } else if (key == "export") {
        ShowExportWindow();
    } else if (key == "help") {
        ShowHelp();
    } else if (key == "maintenance") {
        mnuListviewMaintenance_Click();
    } else if (key == "quit") {
        Unload();
    } else if (key == "update") {
        RunUpdateCommand();
    } else {
        MsgBox("Invalid option!", vbCritical, "Coolbar");
    }
}

void frmMain::RunUpdateCommand() {
    if (bUpdating_) return;
    QString updateProgram;
    bUpdating_ = true;
    if (RunUpdate(updateProgram)) {
        if (!updateProgram.isEmpty() && QFileInfo(updateProgram).isFile()) {
            QFile::setPermissions(updateProgram,
                                  QFile::permissions(updateProgram) | QFile::ExeOwner);
            QProcess updater;
            updater.setProgram(updateProgram);
            updater.setWorkingDirectory(QFileInfo(updateProgram).absolutePath());
            if (!updater.startDetached()) {
                // Nothing has been replaced yet, so the program goes on as it was.
                MsgBox("The update program " + updateProgram + " could not be started." + vbCrLf +
                           updater.errorString(),
                       vbCritical, "Auto-Update");
                bUpdating_ = false;
                return;
            }
            updateInProgress = true;
            Unload();
            bUpdating_ = false;
            return;
        }
        MsgBox("The update routine could not succesfully download all nescessary files." + vbCrLf +
                   "Please make sure that you have a connection to the internet and try the update "
                   "feature again." +
                   vbCrLf + "If the problem persists, download the update from " +
                   kMakerWebAddress + " manually.",
               vbExclamation, "Auto-Update");
    }
    bUpdating_ = false;
}
