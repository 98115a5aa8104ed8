// The mouse and keys of the tree and the list, as the commands see them. A key counts only
// when its key-down came to the same control; the command runs at key-up.

#include <QKeyEvent>
#include <QMouseEvent>

#include "app/mGlobals.h"
#include "shell/frmMain.h"
#include "toolkit/vb/keyupguard.h"
#include "toolkit/vb/vbruntime.h"

namespace {

// Hands the views' keys, mouse-ups and double clicks to the window's handlers. A right button
// in the tree is the menu's alone: the tree must not move its selection under a right click.
class CommandEvents : public QObject {
  public:
    explicit CommandEvents(frmMain* form) : QObject(form), form_(form) {}

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
            case QEvent::KeyPress:
            case QEvent::KeyRelease:
                return KeyEvent(watched, static_cast<QKeyEvent*>(event));
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonRelease:
            case QEvent::MouseButtonDblClick:
                return MouseEvent(watched, static_cast<QMouseEvent*>(event));
            default:
                return false;
        }
    }

  private:
    bool KeyEvent(QObject* watched, QKeyEvent* event) {
        if (event->type() != QEvent::KeyRelease || !keyupguard::CameHere(watched, event))
            return false;
        if (watched == form_->TV1)
            form_->TV1_KeyUp(event->key());
        else if (watched == form_->ListView1)
            form_->ListView1_KeyUp(event->key());
        return false;
    }

    bool MouseEvent(QObject* watched, QMouseEvent* event) {
        const int button = VbMouseButton(event->button());
        const QPoint position = event->position().toPoint();
        if (watched == form_->TV1->viewport()) {
            if (button != 2) return false;
            if (event->type() == QEvent::MouseButtonRelease) {
                form_->TV1_MouseUp(button, position);
            } else if (event->type() == QEvent::MouseButtonDblClick) {
                // The second press of a double click, which the tree would take as a
                // selecting click.
                form_->TV1_MouseDown(button);
                form_->SetDropHighlight(form_->TV1->itemAt(position));
            }
            return true;
        }
        if (watched == form_->ListView1->viewport()) {
            if (event->type() == QEvent::MouseButtonRelease)
                form_->ListView1_MouseUp(button, position);
            else if (event->type() == QEvent::MouseButtonDblClick && button == 1)
                form_->ListView1_DblClick();
        }
        return false;
    }

    frmMain* form_;
};

}  // namespace

void frmMain::InstallCommandEvents() {
    keyupguard::Install();
    auto* events = new CommandEvents(this);
    for (QObject* watched :
         std::initializer_list<QObject*>{TV1, TV1->viewport(), ListView1, ListView1->viewport()})
        watched->installEventFilter(events);
}

void frmMain::TV1_KeyUp(int key) {
    switch (key) {
        case Qt::Key_Insert:
            mnuAddFolder_Click();
            break;
        case Qt::Key_Delete:
            mnuDeleteFolder_Click();
            if (QTreeWidgetItem* selected = SelectedNode();
                selected && NodeKey(selected) != gRequestedKey)
                TV1_NodeClick(selected);
            break;
        case Qt::Key_F2:
            mnuRenameFolder_Click();
            break;
        case Qt::Key_F3:
            ShowSearch();
            break;
        default:
            break;
    }
}

void frmMain::ListView1_KeyUp(int key) {
    switch (key) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            ModifyTitle();
            break;
        case Qt::Key_Insert:
            NewTitle();
            break;
        case Qt::Key_Delete:
            DeleteTitle();
            break;
        case Qt::Key_F2:
            mnuRenameCD_Click();
            break;
        case Qt::Key_F3:
            ShowSearch();
            break;
        default:
            break;
    }
}

void frmMain::ListView1_DblClick() {
    if (!listItemClicked) return;
    listItemClicked = false;
    ModifyTitle();
}
