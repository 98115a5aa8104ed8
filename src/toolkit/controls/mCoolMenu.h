#pragma once

// The menu engine: turns a window's menus, written with source captions, into menus that the
// program draws itself, with a picture beside an item, check and option marks, a selection bar
// and a help text per item that goes to the window's HelpCallBack as the user walks the menu.
//
// A source caption is a marker, optional help and the caption proper:
//   "|Add a new CD-title|&New CD-title"   help, then the caption with its accelerator
//   "-" or "-|help|Text"                  a separator, which may keep a text
//   "#..." / "*..."                       an item with a check mark / an option mark
//   "&1 Recent entry"                     a numbered recent entry: an option mark

#include <QList>
#include <QMap>
#include <QString>

#include "toolkit/controls/imagelists.h"

class HelpCallBack;
class QAction;
class QMenu;
class QWidget;
class WndCoolMenu;

// The state of one converted menu item.
struct CMyItemData {
    bool bTrueSub = false;
    QString sMenuHelp;
    bool bAsMark = false;
    bool bAsCheck = false;
    bool bMainMenu = false;
    // 1-based index of its picture in the window's image list, 0 for none, -1 on a menu bar.
    int iButton = 0;
    // The item's type bits before the conversion (0x800 for a separator).
    int fType = 0;
    QString sMenuText;
};

// Every converted item, under the decimal text of its item data.
class CMyItemDatas {
  public:
    void Add(const QString& key, const CMyItemData& item) { items_.insert(key, item); }
    CMyItemData* Item(const QString& key);
    int Count() const { return int(items_.size()); }
    void Remove(const QString& key) { items_.remove(key); }
    void Clear() { items_.clear(); }

  private:
    QMap<QString, CMyItemData> items_;
};

constexpr int kMenuSeparatorType = 0x800;

// The parts of a source caption: marker, help and caption proper.
CMyItemData ParseMenuCaption(const QString& caption);
// The source caption an item was converted from.
QString RebuildMenuCaption(const CMyItemData& item);
// The 1-based index of the first picture whose tag starts like text (or text like the tag),
// without regard to case; 0 when none does. Empty tags and empty texts never match.
int FindImage(const QList<ListImage>& images, const QString& text);

// Converts (or, with convert false, restores) the items of menu and of its sub menus.
void ConvertMenu(QMenu* menu, WndCoolMenu* window, bool convert, bool mainMenu = false);
// Installs the engine on window: every menu the window owns is converted, pictures come from
// images, the help of the item under the pointer or the keys goes to help.
WndCoolMenu* SubClassMenu(QWidget* window, const QList<ListImage>& images, HelpCallBack* help);
// Restores the window's menus to their source captions and forgets the window.
void UnSubClassMenu(QWidget* window);
// The engine's state of window, or null.
WndCoolMenu* CoolMenuWindow(const QWidget* window);
// The converted state of item, or null.
CMyItemData* CoolMenuItem(const QAction* item);
