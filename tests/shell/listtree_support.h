#pragma once

// Clicking the real program's tree, for the tree and list tests.

#include <QTreeWidget>

#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "store/catalogue.h"
#include "support/testsupport.h"
#include "toolkit/vb/vbruntime.h"

namespace listtree {

inline void ClickNode(QTreeWidgetItem* node, Qt::MouseButton button = Qt::LeftButton) {
    QTreeWidget* tree = gMainForm->TV1;
    tree->scrollToItem(node);
    QTest::mouseClick(tree->viewport(), button, {}, tree->visualItemRect(node).center());
}

}  // namespace listtree
