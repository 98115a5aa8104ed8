// Which titles go out: the selected tree node and the chosen option become one of the list's
// own view statements.

#include <QRadioButton>

#include "app/mGlobals.h"
#include "app/mainwindow.h"
#include "export/frmExport.h"
#include "lookups/viewqueries.h"
#include "store/dao.h"
#include "toolkit/vb/msgbox.h"

namespace {

bool IsTypeFolder(const QString& key) {
    const QString parentKey = ParentFolderKey(key);
    return parentKey != "root" && ParentFolderKey(parentKey) == "root";
}

// The number behind a key's first three characters: a platform's id.
int PlatformId(const QString& key) {
    return static_cast<qint16>(key.mid(3).toInt());
}

// A type folder's key is its parent's key, three letters and the type's id.
int TypeId(const QString& key, const QString& parentKey) {
    return key.right(key.size() - parentKey.size() - 3).toInt();
}

QString InClause(int platform) {
    return "(" + QString::number(platform) + ")";
}

}  // namespace

bool frmExport::OpenExportTitles(int option) {
    // Without a main window (or a selection in it) the whole catalogue is the current folder.
    const QString selected = SelectedFolderKey();
    const QString key = selected.isEmpty() ? QString("root") : selected;
    switch (option) {
        case 2:
            GetViewSQL("all", true, ExportRecordset, 0, 0, QString());
            return true;
        case 3:
            GetViewSQL("search", true, ExportRecordset, 0, 0, QString());
            return true;
        case 1:
            return OpenCurrentPlatform(key);
        default:
            OpenCurrentFolder(key);
            return true;
    }
}

void frmExport::OpenCurrentFolder(const QString& key) {
    if (key == "root") {
        GetViewSQL("platform", true, ExportRecordset, 0, 32767, QString());
    } else if (IsTypeFolder(key)) {
        const QString parentKey = ParentFolderKey(key);
        GetViewSQL("platformtype", true, ExportRecordset, TypeId(key, parentKey), 0,
                   InClause(PlatformId(parentKey)));
    } else if (ParentFolderKey(key) == "root") {
        if (key != "search")
            GetViewSQL("platform", true, ExportRecordset, 0, 32767, InClause(PlatformId(key)));
        else if (!gSearchSQL.isEmpty())
            GetViewSQL("search", true, ExportRecordset, 0, 0, QString());
    }
}

bool frmExport::OpenCurrentPlatform(const QString& key) {
    if (key == "root") {
        if (MsgBox("You selected to export one category, but you have more than one in your "
                   "view.\rDo you want to export all categories instead?",
                   vbYesNoCancel | vbExclamation, "Confirm") != vbYes)
            return false;
        GetViewSQL("platform", true, ExportRecordset, 0, 32767, QString());
    } else if (IsTypeFolder(key)) {
        GetViewSQL("platform", true, ExportRecordset, 0, 0,
                   InClause(PlatformId(ParentFolderKey(key))));
    } else if (ParentFolderKey(key) == "root") {
        if (key == "search")
            GetViewSQL("search", true, ExportRecordset, 0, 0, QString());
        else
            GetViewSQL("platform", true, ExportRecordset, 0, 0, InClause(PlatformId(key)));
    }
    return true;
}
