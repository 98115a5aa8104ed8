#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include "toolkit/controls/imagelists.h"

class QMenu;
class QStyle;
class QWidget;

// Carries the help of the menu item the user is on: the item's help text, its caption, and
// whether a menu is open at all (false once the menu has closed).
class HelpCallBack : public QObject {
    Q_OBJECT
  public:
    using QObject::QObject;
    void RaiseHelpEvent(const QString& help, const QString& caption, bool menuOpen) {
        emit MenuHelp(help, caption, menuOpen);
    }

  signals:
    void MenuHelp(const QString& help, const QString& caption, bool menuOpen);
};

// The owner-drawn menus' state of one window.
class WndCoolMenu {
  public:
    explicit WndCoolMenu(QWidget* window);

    QWidget* hWnd;
    // The pictures the items find by their help text; empty: no pictures.
    QList<ListImage> ilHandle;
    QPointer<HelpCallBack> HelpObj;
    // A checked item with a picture shows the picture in a sunken box instead of the mark.
    bool ComplexChecks = true;
    // Disabled pictures are drawn embossed, in the shadow and light colours.
    bool ColorEmbossed = true;
    bool RightToLeft = false;
    // Colour of the selection bar; invalid: the palette's highlight.
    QColor SelectColor;
    // The selection bar spans the picture column too.
    bool FullSelect = true;
    // Points; 0: the size of the desktop's menu font.
    int FontSize = 0;
    // Text colour; invalid: the palette's text colour.
    QColor ForeColor;
    // Font face; empty: the face of the desktop's menu font.
    QString FontName;
    QFont MenuFont;
    QFont MenuFontSep;
    // The style that draws this window's menus; owned by the engine.
    QStyle* MenuStyle = nullptr;

    // The popup menus that were converted, kept for undoing.
    int CountMenuHeads() const { return menuHeads_.size(); }
    void AddMenuHead(QMenu* menu);
    QMenu* GetMenuHead(int index) const;

    // Makes MenuFont and MenuFontSep from FontName and FontSize.
    void BuildMenuFonts();

  private:
    QList<QPointer<QMenu>> menuHeads_;
};
