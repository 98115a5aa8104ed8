#pragma once

#include <QProxyStyle>
#include <QStyleOptionMenuItem>

class WndCoolMenu;

// Draws and measures the items of the menus the cool menu engine converted: the picture or
// mark column, the selection bar, the caption with its shortcut column, and etched separators
// that may carry an engraved text.
class CoolMenuStyle : public QProxyStyle {
  public:
    explicit CoolMenuStyle(const WndCoolMenu* window);

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption* option = nullptr,
                  const QWidget* widget = nullptr,
                  QStyleHintReturn* returnData = nullptr) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget = nullptr) const override;

  private:
    void DrawSeparator(const QStyleOptionMenuItem* item, QPainter* painter) const;
    void DrawItem(const QStyleOptionMenuItem* item, QPainter* painter, const QWidget* widget) const;
    void DrawMark(QPainter* painter, const QRect& box, bool check, const QColor& colour) const;

    const WndCoolMenu* window_;
};
