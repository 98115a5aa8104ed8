// The title commands of the main window, and hiding a platform's folder.

#include <QSignalBlocker>

#include "app/mGlobals.h"
#include "loans/lentoutfolder.h"
#include "shell/frmMain.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"
#include "toolkit/vb/vbstrings.h"

void frmMain::NewTitle() {
    if (MousePointer() != vbArrow) return;
    gAddingTitle = true;
    gModifyingTitle = false;
    ShowEditor();
}

void frmMain::ModifyTitle() {
    if (MousePointer() != vbArrow || ListItemCount() == 0 || focusName != "listview" ||
        SelectedListIndex() < 0)
        return;
    SetMousePointer(vbHourglass);
    gModifyingTitle = true;
    gAddingTitle = false;
    ShowEditor();
    SetMousePointer(vbArrow);
}

void frmMain::DeleteTitle() {
    if (MousePointer() != vbArrow) return;
    QString name;
    try {
        const int row = SelectedListIndex();
        if (focusName == "listview" && ListItemCount() > 0 && row >= 0) {
            name = ListItemText(row);
            const int answer = MsgBox("Are you sure you want to delete " + name + "?",
                                      vbYesNoCancel | vbQuestion, "Confirm CD delete");
            if (answer == vbYes) {
                gCurrentTitleId = ListItemKey(row).mid(2).toLong();
                gDatabase->Execute("DELETE from title where idcd = " +
                                   QString::number(gCurrentTitleId));
                RemoveListItem(row);
                ListView1->viewport()->update();
                // Its loans went with it; with the last lent title goes the "Lent out" folder.
                if (NodeOfKey(loans::kLentOutKey) && !loans::AnyTitleOut()) {
                    LoansChanged();
                } else {
                    ShowLoanCount();
                }
            }
        }
        // The count panel keeps its number until the next read.
        if (gRecordset) gRecordset->Requery();
    } catch (const VbError&) {
        MsgBox("Error occured when trying to delete " + name, vbCritical);
    }
}

void frmMain::RenameTitle(const QString& name) {
    QString newName;
    try {
        newName = Trim(InputBox("Please enter a new title for CD " + name + vbCrLf +
                                    "(Max.Length = " + QString::number(gLenTitle) + ")",
                                "Rename CD-title", name))
                      .left(gLenTitle);
        if (newName == name || newName.isEmpty()) return;
        auto title = gDatabase->OpenRecordset(
            "select * from title where idcd = " + QString::number(gCurrentTitleId), dbOpenDynaset);
        title->Edit();
        title->Fields("nmcd").SetValue(newName);
        title->Update();
        const int row = SelectedListIndex();
        if (row >= 0) SetListItem(row, newName, ListItemSubItems(row));
    } catch (const VbError&) {
        MsgBox("Error renaming CD-title to " + newName);
    }
}

void frmMain::HideFolder(long id, const QString& name) {
    try {
        const int answer =
            MsgBox("Are you sure you want to hide this platform?" + vbCrLf + vbCrLf + name,
                   vbYesNoCancel | vbQuestion, "Hide platform");
        if (answer != vbYes) return;
        auto platform = gDatabase->OpenRecordset(
            "select * from platform where idplatform = " + QString::number(id), dbOpenDynaset);
        platform->Edit();
        platform->Fields("visible").SetValue(false);
        platform->Update();

        // The folder that was hidden goes, which is the right-clicked one and not always the
        // selected one: the tree must keep showing what the catalogue holds.
        QTreeWidgetItem* hidden = NodeOfKey("key" + QString::number(id));
        if (!hidden) return;
        // The nodes after it move up: the index of the folder read last follows its node.
        const QTreeWidgetItem* read = Node(gSelectedIndex);
        bool readGoes = false;
        for (const QTreeWidgetItem* node = read; node; node = node->parent())
            readGoes = readGoes || node == hidden;
        RemoveNode(hidden);
        gSelectedIndex = read && !readGoes ? NodeIndex(read) : 0;
    } catch (const VbError& error) {
        MsgBox(error.Description, vbCritical);
    }
}

void frmMain::RemoveNode(QTreeWidgetItem* node) {
    QList<QTreeWidgetItem*> gone{node};
    for (int at = 0; at < gone.size(); ++at)
        for (int child = 0; child < gone[at]->childCount(); ++child) gone << gone[at]->child(child);
    for (QTreeWidgetItem* item : gone) {
        nodes_.removeAll(item);
        if (item == dropHighlight_) dropHighlight_ = nullptr;
    }
    // Taking a node away is no click: the list stays as it is.
    const QSignalBlocker blocker(TV1);
    delete node;
}
