// "Find this disc": the disc in the drive (or an image) found in the catalogue by its identity,
// and its title selected in the tree and the list.

#include "app/mGlobals.h"
#include "disc/audiodisc.h"
#include "disc/discidentity.h"
#include "editor/discsource.h"
#include "lookups/viewqueries.h"
#include "shell/frmMain.h"
#include "shell/mGlobalFunctions.h"
#include "store/catalogue.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const QString kFindDiscTitle = "Find this disc";

}  // namespace

void frmMain::FindThisDisc() {
    if (MousePointer() != vbArrow) return;
    AudioDisc disc;
    if (!ReadAudioDiscFromUser(disc, kFindDiscTitle)) return;
    try {
        std::unique_ptr<Recordset> title =
            gDatabase->OpenRecordset("select idcd, idplatform, idtype from title where TitleID = " +
                                         QString::number(disc.titleId),
                                     dbOpenSnapshot);
        if (title->IsEOF()) {
            const QString name = disc.album.isEmpty() ? QString() : "\"" + disc.album + "\" ";
            MsgBox("The disc " + name + "(" + DiscSectionName(disc.titleId) +
                       ") is not in the catalogue.",
                   vbInformation, kFindDiscTitle);
            return;
        }
        const long id = title->Fields("idcd").Value().toLongLong();
        const QString platformKey = "key" + NzText(title->Fields("idplatform").Value());
        const QString typeKey = platformKey + "key" + NzText(title->Fields("idtype").Value());
        // The title's type folder; a hidden platform's titles show under the root only.
        QTreeWidgetItem* node = NodeOfKey(typeKey);
        if (!node) node = NodeOfKey(platformKey);
        if (!node) node = NodeOfKey("root");
        ForceSelectNode(NodeIndex(node));
        if (ListIndexOfKey("id" + QString::number(id)) < 0) ForceSelectNode(1);
        SelectTitleInList(id);
        ListView1->setFocus();
        focusName = "listview";
    } catch (const VbError& error) {
        MsgBox(QString::number(error.Number) + ": " + error.Description, vbCritical);
    }
}
