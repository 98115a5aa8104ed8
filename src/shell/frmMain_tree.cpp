// The folder tree of the main window: its nodes, and how a selection turns into a list read.

#include <QMouseEvent>

#include "app/mGlobals.h"
#include "shell/frmMain.h"
#include "shell/mGlobalFunctions.h"
#include "toolkit/controls/imagelists.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const int kNodeKeyRole = Qt::UserRole;
const int kWaitInterval = 800;
const QSize kIconSize(16, 16);

// Hands the tree's mouse and focus events to the window's handlers. A right button only
// marks the node under it for the folder menu; the selection stays where it is.
class TreeEvents : public QObject {
  public:
    explicit TreeEvents(frmMain* form) : QObject(form), form_(form) {
        // A press on the node that is already current moves nothing, so no currentItemChanged
        // follows; the click must still reach TV1_NodeClick, which reads when the tree was
        // rebuilt under the list.
        connect(form->TV1, &QTreeWidget::itemPressed, this, [this](QTreeWidgetItem* node) {
            if (node == currentAtPress_) form_->TV1_NodeClick(node);
            currentAtPress_ = nullptr;
        });
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn && watched == form_->TV1) {
            form_->TV1_GotFocus();
        } else if (event->type() == QEvent::MouseButtonPress) {
            auto* mouse = static_cast<QMouseEvent*>(event);
            const int button = VbMouseButton(mouse->button());
            form_->TV1_MouseDown(button);
            if (button == 2) {
                form_->SetDropHighlight(form_->TV1->itemAt(mouse->position().toPoint()));
                form_->TV1->setFocus(Qt::MouseFocusReason);
                return true;
            }
            currentAtPress_ = form_->SelectedNode();
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    frmMain* form_;
    QTreeWidgetItem* currentAtPress_ = nullptr;
};

}  // namespace

void frmMain::SetupTree() {
    TV1->setSelectionMode(QAbstractItemView::SingleSelection);
    TV1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tmrWait = new QTimer(this);
    tmrWait->setInterval(kWaitInterval);
    connect(tmrWait, &QTimer::timeout, this, &frmMain::tmrWait_Timer);
    connect(TV1, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* current) {
        if (current) TV1_NodeClick(current);
    });
    connect(TV1, &QTreeWidget::itemCollapsed, this, &frmMain::TV1_Collapse);
    auto* events = new TreeEvents(this);
    TV1->installEventFilter(events);
    TV1->viewport()->installEventFilter(events);
}

int frmMain::NodeCount() const {
    return nodes_.size();
}

QTreeWidgetItem* frmMain::Node(int index) const {
    return index >= 1 && index <= nodes_.size() ? nodes_[index - 1] : nullptr;
}

int frmMain::NodeIndex(const QTreeWidgetItem* node) const {
    return nodes_.indexOf(node) + 1;
}

QString frmMain::NodeKey(const QTreeWidgetItem* node) const {
    return node ? node->data(0, kNodeKeyRole).toString() : QString();
}

QTreeWidgetItem* frmMain::SelectedNode() const {
    return TV1->currentItem();
}

QTreeWidgetItem* frmMain::NodeOfKey(const QString& key) const {
    for (int index = 1; index <= NodeCount(); ++index)
        if (NodeKey(Node(index)) == key) return Node(index);
    return nullptr;
}

QString frmMain::SelectedNodeKey() const {
    return NodeKey(SelectedNode());
}

QString frmMain::ParentNodeKey(const QString& key) const {
    const QTreeWidgetItem* node = NodeOfKey(key);
    return node ? NodeKey(node->parent()) : QString();
}

QString frmMain::NodeKeyAt(int index) const {
    return NodeKey(Node(index));
}

QTreeWidgetItem* frmMain::DropHighlight() const {
    return dropHighlight_;
}

void frmMain::SetDropHighlight(QTreeWidgetItem* node) {
    dropHighlight_ = node;
}

void frmMain::ClearNodes() {
    dropHighlight_ = nullptr;
    nodes_.clear();
    const QSignalBlocker blocker(TV1);
    TV1->clear();
}

QTreeWidgetItem* frmMain::AddNode(QTreeWidgetItem* parent, const QString& key, const QString& text,
                                  const QString& image, const QString& selectedImage) {
    auto* node = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(TV1);
    node->setData(0, kNodeKeyRole, key);
    node->setText(0, text);
    QIcon icon;
    icon.addPixmap(QIcon(Imagelist16(image)).pixmap(kIconSize), QIcon::Normal);
    icon.addPixmap(QIcon(Imagelist16(selectedImage)).pixmap(kIconSize), QIcon::Selected);
    node->setIcon(0, icon);
    if (parent) node->setBackground(0, ListView1->palette().color(QPalette::Base));
    nodes_.append(node);
    return node;
}

void frmMain::SelectNode(QTreeWidgetItem* node) {
    const QSignalBlocker blocker(TV1);
    TV1->setCurrentItem(node);
}

void frmMain::EnsureNodeVisible(QTreeWidgetItem* node) {
    for (QTreeWidgetItem* parent = node->parent(); parent; parent = parent->parent())
        parent->setExpanded(true);
    TV1->scrollToItem(node);
}

void frmMain::TV1_NodeClick(QTreeWidgetItem* node) {
    if (lastTreeButton == 2) {
        emit FolderMenuNodeClick(SelectedNode());
        return;
    }
    gSelectedIndex = NodeIndex(node);
    gSelectedKey = NodeKey(node);
    tmrWait->stop();
    if (gSelectedKey != gRequestedKey) {
        gRequestedKey = gSelectedKey;
        if (bReadRecordsNow) {
            bReadRecordsNow = false;
            tmrWait_Timer();
        } else {
            tmrWait->start();
        }
    }
}

void frmMain::tmrWait_Timer() {
    tmrWait->stop();
    ReadRecords(-1);
}

void frmMain::TV1_MouseDown(int button) {
    lastTreeButton = button;
    if (button == 2)
        emit FolderMenuReset();
    else
        bReadRecordsNow = true;
}

void frmMain::TV1_Collapse(QTreeWidgetItem* node) {
    // The tree keeps its selection on a hidden node; the collapsed parent takes it instead.
    for (QTreeWidgetItem* item = SelectedNode(); item; item = item->parent()) {
        if (item->parent() == node) {
            SelectNode(node);
            break;
        }
    }
    if (NodeKey(SelectedNode()) != gRequestedKey) TV1_NodeClick(SelectedNode());
}

void frmMain::TV1_GotFocus() {
    focusName = "treeview";
}
