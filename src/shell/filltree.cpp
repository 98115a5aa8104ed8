// Building the folder tree from the platforms and their types, and refreshing the tree and
// the list after a child window changed the catalogue.

#include "app/mGlobals.h"
#include "loans/lentoutfolder.h"
#include "lookups/viewqueries.h"
#include "shell/frmMain.h"
#include "shell/mGlobalFunctions.h"
#include "store/dao.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

void AddFoldersFromCatalogue(frmMain* form, QTreeWidgetItem* root) {
    std::unique_ptr<Recordset> folders;
    GetViewSQL("treeview", true, folders, 0, 0, "");
    if (!folders) return;
    Field platformId = folders->Fields("platform.idplatform");
    Field platformName = folders->Fields("platform.nmplatform");
    Field typeId = folders->Fields("type.idtype");
    Field typeName = folders->Fields("type.nmtype");
    QTreeWidgetItem* platform = nullptr;
    QVariant lastPlatform;
    while (!folders->IsEOF()) {
        const QVariant id = platformId.Value();
        if (!platform || id != lastPlatform) {
            lastPlatform = id;
            platform = form->AddNode(root, "key" + id.toString(), NzText(platformName.Value()),
                                     "closefolder", "openfolder");
        }
        const QVariant type = typeId.Value();
        if (!type.isNull()) {
            form->AddNode(platform, form->NodeKey(platform) + "key" + type.toString(),
                          NzText(typeName.Value()), "closefolder", "openfolder");
        }
        folders->MoveNext();
    }
}

}  // namespace

void FillTree(int selectIndex, const QString& selectKey) {
    frmMain* form = gMainForm;
    gTreeDirty = false;
    form->ClearNodes();

    QTreeWidgetItem* root =
        form->AddNode(nullptr, "root", "My cd's", "foldersclosed", "foldersopen");
    form->SelectNode(root);
    gSelectedIndex = 1;

    try {
        AddFoldersFromCatalogue(form, root);
    } catch (const VbError& error) {
        MsgBox(error.Description);
    }
    if (loans::AnyTitleOut())
        form->AddNode(root, loans::kLentOutKey, loans::kLentOutCaption, "closefolder",
                      "openfolder");
    form->AddNode(root, "search", "search results", "searchclosed", "searchopen");

    QTreeWidgetItem* selected = nullptr;
    if (!selectKey.isEmpty()) {
        for (int index = 1; index <= form->NodeCount() && !selected; ++index)
            if (form->NodeKey(form->Node(index)) == selectKey) selected = form->Node(index);
    }
    if (!selected) {
        const int count = form->NodeCount();
        selected = form->Node(selectIndex >= 1 && selectIndex <= count ? selectIndex : count);
    }
    form->EnsureNodeVisible(selected);
    form->SelectNode(selected);

    gSelectedIndex = form->NodeIndex(form->SelectedNode());
    gSelectedKey = form->NodeKey(form->SelectedNode());
    if (form->NodeCount() > 1 && gSelectedIndex == 1) form->EnsureNodeVisible(form->Node(2));
}

void ForceSelectNode(int index) {
    QTreeWidgetItem* node = gMainForm->Node(index);
    if (!node) return;
    gMainForm->SelectNode(node);
    gSelectedIndex = index;
    gSelectedKey = gMainForm->NodeKey(node);
    gRequestedKey = "forcechange";
    ReadRecords(-1);
}

void RefreshIfDirty() {
    if (gTreeDirty) FillTree(gSelectedIndex, "");
    if (gListDirty) {
        gRequestedKey = "forcechange";
        ReadRecords(-1);
    }
}
