#include "toolkit/controls/mCoolMenu.h"

#include <QAction>
#include <QMenu>
#include <QRegularExpression>

#include "toolkit/controls/WndCoolMenu.h"
#include "toolkit/controls/coolmenustyle.h"

namespace {

const char* const kItemDataProperty = "dwItemData";
const char* const kEventsProperty = "coolMenuEvents";

// The converted items and the windows the engine is installed on, keyed by the text of the
// window's address as the items are keyed by the text of their item data.
CMyItemDatas gItemDatas;
QMap<QString, WndCoolMenu*> gWindows;

QString WindowKey(const QWidget* window) {
    return QString::number(reinterpret_cast<quintptr>(window));
}

// "&1 " to "&9 ": the numbered entries of a list of recent things.
bool IsRecentEntry(const QString& caption) {
    static const QRegularExpression pattern("^&[1-9] ");
    return pattern.match(caption).hasMatch();
}

void OnMenuSelect(WndCoolMenu* window, QAction* action) {
    if (!window->HelpObj) return;
    const CMyItemData* item = CoolMenuItem(action);
    window->HelpObj->RaiseHelpEvent(item ? item->sMenuHelp : QString(),
                                    item ? item->sMenuText : QString(), true);
}

// The events of an open menu: the help as the user walks it, the conversion of items added
// while the program runs, and the end of the help when it closes.
void ConnectMenuEvents(QMenu* menu, WndCoolMenu* window) {
    if (menu->property(kEventsProperty).toBool()) return;
    menu->setProperty(kEventsProperty, true);
    QObject::connect(menu, &QMenu::hovered, menu,
                     [window](QAction* action) { OnMenuSelect(window, action); });
    QObject::connect(menu, &QMenu::aboutToShow, menu,
                     [menu, window] { ConvertMenu(menu, window, true); });
    QObject::connect(menu, &QMenu::aboutToHide, menu, [window] {
        if (window->HelpObj) window->HelpObj->RaiseHelpEvent(QString(), QString(), false);
    });
}

void ConvertItem(QAction* action, WndCoolMenu* window, bool mainMenu) {
    const QVariant key = action->property(kItemDataProperty);
    CMyItemData* item = key.isValid() ? gItemDatas.Item(key.toString()) : nullptr;
    if (!item) {
        const QString itemKey = QString::number(gItemDatas.Count() + 1);
        CMyItemData parsed = ParseMenuCaption(action->text());
        if (action->isSeparator()) parsed.fType |= kMenuSeparatorType;
        parsed.bTrueSub = action->menu() && !mainMenu;
        parsed.bMainMenu = mainMenu;
        parsed.iButton = mainMenu ? -1 : FindImage(window->ilHandle, parsed.sMenuHelp);
        gItemDatas.Add(itemKey, parsed);
        action->setProperty(kItemDataProperty, itemKey);
        item = gItemDatas.Item(itemKey);
    }
    action->setText(item->sMenuText);
    if (item->fType & kMenuSeparatorType) action->setSeparator(true);
    if (item->bAsMark) action->setCheckable(true);
    if (item->iButton > 0) action->setIcon(window->ilHandle.value(item->iButton - 1).picture);
}

void RestoreItem(QAction* action) {
    const CMyItemData* item = CoolMenuItem(action);
    if (!item) return;
    action->setText(RebuildMenuCaption(*item));
    action->setIcon(QIcon());
    if (item->fType & kMenuSeparatorType) action->setSeparator(false);
    action->setProperty(kItemDataProperty, QVariant());
}

}  // namespace

CMyItemData* CMyItemDatas::Item(const QString& key) {
    auto found = items_.find(key);
    return found == items_.end() ? nullptr : &found.value();
}

CMyItemData ParseMenuCaption(const QString& caption) {
    CMyItemData item;
    const QChar marker = caption.isEmpty() ? QChar() : caption.front();
    const bool markerCharacter = marker == '-' || marker == '#' || marker == '*';
    if (marker == '-') item.fType |= kMenuSeparatorType;
    if (marker == '#') {
        item.bAsMark = true;
        item.bAsCheck = true;
    } else if (marker == '*' || IsRecentEntry(caption)) {
        item.bAsMark = true;
        item.bAsCheck = false;
    }
    const qsizetype firstBar = caption.indexOf('|');
    if (firstBar < 0) {
        item.sMenuText = markerCharacter ? caption.mid(1) : caption;
        return item;
    }
    const qsizetype secondBar = caption.indexOf('|', firstBar + 1);
    if (secondBar < 0) {
        item.sMenuHelp = caption.mid(firstBar + 1);
        return item;
    }
    item.sMenuHelp = caption.mid(firstBar + 1, secondBar - firstBar - 1);
    item.sMenuText = caption.mid(secondBar + 1);
    return item;
}

QString RebuildMenuCaption(const CMyItemData& item) {
    QString marker;
    if (item.fType & kMenuSeparatorType)
        marker = "-";
    else if (item.bAsMark && item.bAsCheck)
        marker = "#";
    else if (item.bAsMark && !IsRecentEntry(item.sMenuText))
        marker = "*";
    if (item.sMenuHelp.isEmpty()) return marker + item.sMenuText;
    return marker + "|" + item.sMenuHelp + "|" + item.sMenuText;
}

int FindImage(const QList<ListImage>& images, const QString& text) {
    if (text.isEmpty()) return 0;
    const QString wanted = text.toUpper();
    for (int index = 0; index < images.size(); ++index) {
        const QString tag = images[index].tag.toUpper();
        if (tag.isEmpty()) continue;
        const qsizetype length = std::min(tag.size(), wanted.size());
        if (tag.left(length) == wanted.left(length)) return index + 1;
    }
    return 0;
}

void ConvertMenu(QMenu* menu, WndCoolMenu* window, bool convert, bool mainMenu) {
    for (QAction* action : menu->actions()) {
        if (convert)
            ConvertItem(action, window, mainMenu);
        else
            RestoreItem(action);
        if (QMenu* sub = action->menu()) ConvertMenu(sub, window, convert, false);
    }
    if (!convert) {
        menu->setStyle(nullptr);
        menu->setFont(QFont());
        return;
    }
    if (!mainMenu) window->AddMenuHead(menu);
    menu->setStyle(window->MenuStyle);
    menu->setFont(window->MenuFont);
    ConnectMenuEvents(menu, window);
}

WndCoolMenu* SubClassMenu(QWidget* window, const QList<ListImage>& images, HelpCallBack* help) {
    UnSubClassMenu(window);
    auto* state = new WndCoolMenu(window);
    state->ilHandle = images;
    state->HelpObj = help;
    state->MenuStyle = new CoolMenuStyle(state);
    gWindows.insert(WindowKey(window), state);
    // A window that goes without undoing the engine takes its menus with it; only the state is
    // left to free.
    const QString key = WindowKey(window);
    QObject::connect(window, &QObject::destroyed, [key] {
        WndCoolMenu* gone = gWindows.take(key);
        if (!gone) return;
        delete gone->MenuStyle;
        delete gone;
        if (gWindows.isEmpty()) gItemDatas.Clear();
    });
    for (QMenu* menu : window->findChildren<QMenu*>()) ConvertMenu(menu, state, true);
    return state;
}

void UnSubClassMenu(QWidget* window) {
    WndCoolMenu* state = gWindows.take(WindowKey(window));
    if (!state) return;
    for (int index = 0; index < state->CountMenuHeads(); ++index) {
        if (QMenu* menu = state->GetMenuHead(index)) {
            ConvertMenu(menu, state, false);
            QObject::disconnect(menu, &QMenu::hovered, menu, nullptr);
            QObject::disconnect(menu, &QMenu::aboutToShow, menu, nullptr);
            QObject::disconnect(menu, &QMenu::aboutToHide, menu, nullptr);
            menu->setProperty(kEventsProperty, QVariant());
        }
    }
    delete state->MenuStyle;
    delete state;
    if (gWindows.isEmpty()) gItemDatas.Clear();
}

WndCoolMenu* CoolMenuWindow(const QWidget* window) {
    return gWindows.value(WindowKey(window));
}

CMyItemData* CoolMenuItem(const QAction* item) {
    if (!item) return nullptr;
    const QVariant key = item->property(kItemDataProperty);
    return key.isValid() ? gItemDatas.Item(key.toString()) : nullptr;
}
