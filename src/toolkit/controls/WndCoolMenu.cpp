#include "toolkit/controls/WndCoolMenu.h"

#include <QApplication>
#include <QMenu>

WndCoolMenu::WndCoolMenu(QWidget* window) : hWnd(window) {
    BuildMenuFonts();
}

void WndCoolMenu::AddMenuHead(QMenu* menu) {
    for (const QPointer<QMenu>& head : menuHeads_)
        if (head == menu) return;
    menuHeads_.append(menu);
}

QMenu* WndCoolMenu::GetMenuHead(int index) const {
    return menuHeads_.value(index);
}

void WndCoolMenu::BuildMenuFonts() {
    // The desktop's menu font, as the platform's theme gives it to menus.
    MenuFont = QApplication::font("QMenu");
    if (!FontName.isEmpty()) MenuFont.setFamily(FontName);
    if (FontSize > 0) MenuFont.setPointSize(FontSize);
    MenuFontSep = MenuFont;
    MenuFontSep.setBold(true);
    if (MenuFontSep.pointSizeF() > 0) MenuFontSep.setPointSizeF(MenuFontSep.pointSizeF() * 0.9);
}
