// The two context menus: building them, preparing which items are offered, and the folder
// commands of the tree's menu.

#include <QCursor>
#include <QSignalBlocker>

#include "app/mGlobals.h"
#include "loans/lentoutfolder.h"
#include "lookups/lookupoperations.h"
#include "shell/frmMain.h"
#include "shell/mGlobalFunctions.h"
#include "toolkit/controls/WndCoolMenu.h"
#include "toolkit/controls/imagelists.h"
#include "toolkit/controls/mCoolMenu.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/vbruntime.h"

namespace {

bool IsRootKey(const QString& key) {
    return key == "root";
}

// The search results and the lent-out titles are folders of the program, not of the catalogue:
// no folder command applies to them.
bool IsViewFolderKey(const QString& key) {
    return key == "search" || key == loans::kLentOutKey;
}

// A platform's id stands behind the first three characters of its key.
long PlatformIdOfKey(const QString& key) {
    return key.mid(3).toLong();
}

}  // namespace

void frmMain::BuildContextMenus() {
    mnuListviewContext = new QMenu("Invisible Listview contextmenu", this);
    mnuListviewContext->setObjectName("mnuListviewContext");
    QMenu* list = mnuListviewContext;
    mnuViewProperties = AddMenuItem(list, "mnuViewProperties", "|View properties|&View properties",
                                    &frmMain::mnuViewProperties_Click);
    mnuSeperator1 = AddMenuItem(list, "mnuSeperator1", "-");
    mnuNewCD = AddMenuItem(list, "mnuNewCD", "|Add a new CD-title|&New CD-title",
                           &frmMain::mnuNewCD_Click);
    mnuRenameCD = AddMenuItem(list, "mnuRenameCD", "|Rename the CD-title|Re&name",
                              &frmMain::mnuRenameCD_Click);
    mnuDeleteCD = AddMenuItem(list, "mnuDeleteCD", "|Delete the CD-title|&Delete",
                              &frmMain::mnuDeleteCD_Click);
    mnuLendCD = AddMenuItem(list, "mnuLendCD", "|Lend the CD-title(s) to someone|&Lend...",
                            &frmMain::mnuLendCD_Click);
    mnuReturnedCD = AddMenuItem(list, "mnuReturnedCD", "|The lent CD-title(s) came back|Re&turned",
                                &frmMain::mnuReturnedCD_Click);
    mnuSeperator2 = AddMenuItem(list, "mnuSeperator2", "-");
    mnuSearchCD1 =
        AddMenuItem(list, "mnuSearchCD1", "|Search for CD|&Search", &frmMain::mnuSearchCD1_Click);
    mnuSeperator3 = AddMenuItem(list, "mnuSeperator3", "-");
    mnuListviewMaintenance =
        AddMenuItem(list, "mnuListviewMaintenance", "|Maintenance|&Maintenance",
                    &frmMain::mnuListviewMaintenance_Click);
    mnuFetchCovers = AddMenuItem(
        list, "mnuFetchCovers",
        "|Fetch the missing front covers of the titles in the list|&Fetch missing covers",
        &frmMain::mnuFetchCovers_Click);

    mnuTreeviewContext = new QMenu("Invisible Treeview Contextmenu", this);
    mnuTreeviewContext->setObjectName("mnuTreeviewContext");
    QMenu* tree = mnuTreeviewContext;
    mnuReadRecordsFromFolder =
        AddMenuItem(tree, "mnuReadRecordsFromFolder", "|Read records from folder|&Open",
                    &frmMain::mnuReadRecordsFromFolder_Click);
    mnuSeperator4 = AddMenuItem(tree, "mnuSeperator4", "-");
    mnuAddFolder = AddMenuItem(tree, "mnuAddFolder", "|Add a new folder|&New folder",
                               &frmMain::mnuAddFolder_Click);
    mnuRenameFolder = AddMenuItem(tree, "mnuRenameFolder", "|Rename a folder|Re&name",
                                  &frmMain::mnuRenameFolder_Click);
    mnuDeleteFolder = AddMenuItem(tree, "mnuDeleteFolder", "|Delete a folder|&Delete",
                                  &frmMain::mnuDeleteFolder_Click);
    mnuHideFolder =
        AddMenuItem(tree, "mnuHideFolder", "|Hide a folder|&Hide", &frmMain::mnuHideFolder_Click);
    mnuSeperator5 = AddMenuItem(tree, "mnuSeperator5", "-");
    mnuSearchCD2 =
        AddMenuItem(tree, "mnuSearchCD2", "|Search for CD|&Search", &frmMain::mnuSearchCD2_Click);
    mnuSeperator6 = AddMenuItem(tree, "mnuSeperator6", "-");
    mnuTreeviewMaintenance =
        AddMenuItem(tree, "mnuTreeviewMaintenance", "|Maintenance|&Maintenance",
                    &frmMain::mnuTreeviewMaintenance_Click);

    // The views' menus are ours alone; without this a right click would reach the main
    // window's own menu of bars.
    TV1->setContextMenuPolicy(Qt::PreventContextMenu);
    ListView1->setContextMenuPolicy(Qt::PreventContextMenu);

    // A right button going down in the tree starts the folder items disabled; a node click
    // while it is the last button enables what that node allows.
    connect(this, &frmMain::FolderMenuReset, this, [this] {
        for (QAction* item : {mnuReadRecordsFromFolder, mnuAddFolder, mnuRenameFolder,
                              mnuDeleteFolder, mnuHideFolder})
            item->setEnabled(false);
    });
    connect(this, &frmMain::FolderMenuNodeClick, this, [this](QTreeWidgetItem* node) {
        mnuReadRecordsFromFolder->setEnabled(true);
        mnuAddFolder->setEnabled(true);
        if (!node || IsRootKey(NodeKey(node))) return;
        mnuDeleteFolder->setEnabled(true);
        mnuRenameFolder->setEnabled(true);
        if (node->parent() && IsRootKey(NodeKey(node->parent()))) {
            mnuHideFolder->setEnabled(true);
            mnuDeleteFolder->setEnabled(false);
        }
    });
}

QAction* frmMain::AddMenuItem(QMenu* menu, const QString& name, const QString& caption,
                              void (frmMain::*command)()) {
    QAction* item = menu->addAction(caption);
    item->setObjectName(name);
    if (command) connect(item, &QAction::triggered, this, [this, command] { (this->*command)(); });
    return item;
}

void frmMain::InstallCoolMenus() {
    menuHelp_ = new HelpCallBack(this);
    connect(menuHelp_, &HelpCallBack::MenuHelp, this,
            [this](const QString& help, const QString&, bool menuOpen) {
                SetPanelText(1, menuOpen ? help : QString());
            });
    SubClassMenu(this, Imagelist16Images(), menuHelp_);
}

void frmMain::PopupMenu(QMenu* menu) {
    if (PopupMenuHook) {
        PopupMenuHook(menu);
        return;
    }
    // The chosen command runs inside the menu's loop, and the caller goes on after it.
    const BusyScope open;
    menu->exec(QCursor::pos());
}

void frmMain::EnableFolderItems(QTreeWidgetItem* node) {
    if (!node) return;
    mnuReadRecordsFromFolder->setEnabled(true);
    mnuAddFolder->setEnabled(true);
    const QString key = NodeKey(node);
    if (!IsRootKey(key)) {
        mnuDeleteFolder->setEnabled(true);
        mnuRenameFolder->setEnabled(true);
        if (node->parent() && IsRootKey(NodeKey(node->parent()))) mnuHideFolder->setEnabled(true);
    }
    if (IsViewFolderKey(key))
        for (QAction* item : {mnuReadRecordsFromFolder, mnuAddFolder, mnuRenameFolder,
                              mnuDeleteFolder, mnuHideFolder})
            item->setEnabled(false);
}

void frmMain::TV1_MouseUp(int button, const QPoint&) {
    if (button != 2) return;
    if (QTreeWidgetItem* highlighted = DropHighlight()) {
        EnableFolderItems(highlighted);
        mnuSearchCD2->setEnabled(false);
    } else {
        // Search is offered only when the click fell beside the nodes; that is how the menu
        // has always behaved.
        EnableFolderItems(SelectedNode());
        mnuSearchCD2->setEnabled(true);
    }

    PopupMenu(mnuTreeviewContext);
    SetDropHighlight(nullptr);
    if (gSelectedIndex != 0) {
        if (QTreeWidgetItem* node = Node(gSelectedIndex)) {
            // Selecting from here is no click: the read follows below, once.
            const QSignalBlocker blocker(TV1);
            TV1->setCurrentItem(node);
        }
    }

    lastTreeButton = 1;
    QTreeWidgetItem* selected = SelectedNode();
    if (!selected) return;
    gSelectedIndex = NodeIndex(selected);
    TV1_NodeClick(selected);
}

void frmMain::ListView1_MouseUp(int button, const QPoint& position) {
    if (button != 2) return;
    const QModelIndex under = ListView1->indexAt(position);
    const bool onItem = under.isValid();
    // The menu is for the row under the pointer, as the platform's list selects it at the
    // press; a quick click can bring the button up before the press has selected anything.
    if (onItem && !ListView1->selectionModel()->isRowSelected(under.row())) {
        SelectListIndex(under.row());
        gCurrentTitleId = ListItemTag(under.row()).toLong();
    }
    for (QAction* item : {mnuViewProperties, mnuRenameCD, mnuDeleteCD}) item->setEnabled(onItem);
    if (!onItem && ListItemCount() > 0 && SelectedListIndex() >= 0) {
        ListView1->selectionModel()->clear();
        DoEvents();
    }
    EnableLoanItems();
    PopupMenu(mnuListviewContext);
}

void frmMain::mnuViewProperties_Click() {
    ModifyTitle();
}

void frmMain::mnuNewCD_Click() {
    NewTitle();
}

void frmMain::mnuRenameCD_Click() {
    const int row = SelectedListIndex();
    if (row >= 0) RenameTitle(ListItemText(row));
}

void frmMain::mnuDeleteCD_Click() {
    DeleteTitle();
}

void frmMain::mnuSearchCD1_Click() {
    ShowSearch();
}

void frmMain::mnuSearchCD2_Click() {
    ShowSearch();
}

void frmMain::mnuListviewMaintenance_Click() {
    ShowDatabaseWindow();
    RefreshIfDirty();
}

QTreeWidgetItem* frmMain::FolderCommandTarget() const {
    return DropHighlight() ? DropHighlight() : SelectedNode();
}

void frmMain::mnuReadRecordsFromFolder_Click() {
    if (QTreeWidgetItem* highlighted = DropHighlight()) {
        gSelectedIndex = NodeIndex(highlighted);
        bReadRecordsNow = true;
    }
}

void frmMain::mnuAddFolder_Click() {
    QTreeWidgetItem* node = FolderCommandTarget();
    if (!node) return;
    const QString key = NodeKey(node);
    QTreeWidgetItem* parent = node->parent();
    QString name;
    QString result;
    if (IsRootKey(key)) {
        result = ModifyPlatform(kLookupAdd, 0, name);
    } else if (parent && IsRootKey(NodeKey(parent)) && !IsViewFolderKey(key)) {
        result = ModifyType(kLookupAdd, PlatformIdOfKey(key), name);
    } else if (parent && parent->parent() && IsRootKey(NodeKey(parent->parent()))) {
        result = ModifyType(kLookupAdd, PlatformIdOfKey(NodeKey(parent)), name);
    }
    if (!result.isEmpty()) FillTree(gSelectedIndex, gSelectedKey);
}

void frmMain::ModifyFolder(int action) {
    QTreeWidgetItem* node = FolderCommandTarget();
    if (!node) return;
    const QString key = NodeKey(node);
    QTreeWidgetItem* parent = node->parent();
    if (!parent || IsViewFolderKey(key)) return;
    QString name = node->text(0);
    QString result;
    const QString parentKey = NodeKey(parent);
    if (IsRootKey(parentKey)) {
        result = ModifyPlatform(action, PlatformIdOfKey(key), name);
    } else {
        // A type's id is what follows its parent's key and three more characters.
        const long typeId = key.right(key.length() - parentKey.length() - 3).toLong();
        result = ModifyType(action, typeId, name);
    }
    if (!result.isEmpty()) FillTree(gSelectedIndex, gSelectedKey);
}

void frmMain::mnuRenameFolder_Click() {
    ModifyFolder(kLookupRename);
}

void frmMain::mnuDeleteFolder_Click() {
    ModifyFolder(kLookupDelete);
}

void frmMain::mnuHideFolder_Click() {
    QTreeWidgetItem* node = FolderCommandTarget();
    if (!node || IsRootKey(NodeKey(node))) return;
    if (node->parent() && IsRootKey(NodeKey(node->parent())))
        HideFolder(PlatformIdOfKey(NodeKey(node)), node->text(0));
}

void frmMain::mnuTreeviewMaintenance_Click() {
    const int remembered = gSelectedIndex;
    if (QTreeWidgetItem* highlighted = DropHighlight()) gSelectedIndex = NodeIndex(highlighted);
    ShowDatabaseWindow();
    gSelectedIndex = remembered;
    if (gTreeDirty) FillTree(gSelectedIndex, QString());
    if (gListDirty) {
        gRequestedKey = "forcechange";
        ReadRecords(-1);
    }
}
