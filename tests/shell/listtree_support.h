#pragma once

// Starting and ending the real program over a temporary catalogue, and adding titles to it,
// for the tree and list tests.

#include <QTreeWidget>

#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "store/catalogue.h"
#include "support/testsupport.h"
#include "toolkit/vb/vbruntime.h"

namespace listtree {

// Adds a title to the open catalogue and returns its idcd.
inline long AddTitle(const QString& name, int platform, int type, int specific, int vendor,
                     int mediatype = 1, int nrcds = 1) {
    gDatabase->Execute(QString("INSERT INTO title (nmcd, nrcds, idvendor, idplatform, idtype, "
                               "idspecific, idmediatype) VALUES ('%1', %2, %3, %4, %5, %6, %7)")
                           .arg(name)
                           .arg(nrcds)
                           .arg(vendor)
                           .arg(platform)
                           .arg(type)
                           .arg(specific)
                           .arg(mediatype));
    auto last = gDatabase->OpenRecordset("select max(idcd) as last from title");
    return last->Fields("last").Value().toLongLong();
}

inline void ClickNode(QTreeWidgetItem* node, Qt::MouseButton button = Qt::LeftButton) {
    QTreeWidget* tree = gMainForm->TV1;
    tree->scrollToItem(node);
    QTest::mouseClick(tree->viewport(), button, {}, tree->visualItemRect(node).center());
}

}  // namespace listtree
