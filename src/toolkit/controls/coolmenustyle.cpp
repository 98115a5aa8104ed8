#include "toolkit/controls/coolmenustyle.h"

#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionMenuItem>

#include "toolkit/controls/WndCoolMenu.h"
#include "toolkit/controls/mCoolMenu.h"

namespace {

// The picture size of the menus, and the width of the classic check mark.
constexpr int kPictureSize = 16;
constexpr int kCheckMarkWidth = 13;
constexpr int kSeparatorInset = 15;

// The height of a classic menu bar in the menu font: the least height of an item.
int MenuBarHeight(const QFontMetrics& metrics) {
    return std::max(20, metrics.height() + 6);
}

QString WithoutMnemonics(QString text) {
    text.replace("&&", QString(QChar(1)));
    text.remove('&');
    text.replace(QChar(1), '&');
    return text;
}

QRect PictureBox(const QRect& item) {
    const int side = kPictureSize + 4;
    return QRect(item.left() + 2, item.top() + (item.height() - side) / 2, side, side);
}

// Text drawn a pixel down and right in the light colour, then in place in the shadow colour,
// so that it looks cut into the menu.
void DrawEngraved(QPainter* painter, const QRect& rect, int flags, const QString& text,
                  const QPalette& palette) {
    painter->setPen(palette.color(QPalette::Light));
    painter->drawText(rect.translated(1, 1), flags, text);
    painter->setPen(palette.color(QPalette::Dark));
    painter->drawText(rect, flags, text);
}

// Three quarters of the way from background to colour: a dimmed text that still reads.
QColor Blend(const QColor& colour, const QColor& background) {
    return QColor((colour.red() * 3 + background.red()) / 4,
                  (colour.green() * 3 + background.green()) / 4,
                  (colour.blue() * 3 + background.blue()) / 4);
}

}  // namespace

CoolMenuStyle::CoolMenuStyle(const WndCoolMenu* window) : window_(window) {}

QSize CoolMenuStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                      const QSize& size, const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (type != CT_MenuItem || !item)
        return QProxyStyle::sizeFromContents(type, option, size, widget);
    const QFontMetrics metrics(window_->MenuFont);
    const int cyMenu = MenuBarHeight(metrics);
    if (item->menuItemType == QStyleOptionMenuItem::Separator) {
        const QFontMetrics separatorMetrics(window_->MenuFontSep);
        if (item->text.isEmpty())
            return QSize(1, std::max(cyMenu / 2, separatorMetrics.boundingRect("A").height() + 1));
        return QSize(separatorMetrics.horizontalAdvance(item->text) + 2 * kSeparatorInset + 16,
                     std::max(cyMenu / 2, separatorMetrics.height() + 1));
    }
    // An item whose text begins with "!" takes no room at all.
    if (item->text.startsWith('!')) return QSize(0, 0);
    const qsizetype tab = item->text.indexOf('\t');
    const QString caption = WithoutMnemonics(item->text.left(tab));
    int width = metrics.horizontalAdvance(caption);
    if (tab >= 0)
        width += 3 * kPictureSize / 2 + metrics.horizontalAdvance(item->text.mid(tab + 1));
    const int height = std::max(metrics.height(), cyMenu);
    // The classic measure takes the check mark's width off, counting on the system's menu to
    // add it back to every owner-drawn item. A QMenu adds nothing, so it is added back here,
    // or the caption loses its last letters.
    const int classic = width + 5 + (kPictureSize + 2) * 2 - (kCheckMarkWidth - 1);
    return QSize(classic + kCheckMarkWidth, height);
}

int CoolMenuStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                             QStyleHintReturn* returnData) const {
    // As in the system's menus, the pointer and the arrow keys highlight a disabled item too,
    // so that its help shows.
    if (hint == SH_Menu_AllowActiveAndDisabled) return 1;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

void CoolMenuStyle::drawControl(ControlElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element != CE_MenuItem || !item) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    painter->save();
    painter->fillRect(item->rect, item->palette.brush(QPalette::Window));
    if (item->menuItemType == QStyleOptionMenuItem::Separator)
        DrawSeparator(item, painter);
    else if (!item->text.startsWith('!'))
        DrawItem(item, painter, widget);
    painter->restore();
}

void CoolMenuStyle::DrawSeparator(const QStyleOptionMenuItem* item, QPainter* painter) const {
    const QRect line = item->rect.adjusted(kSeparatorInset, 0, -kSeparatorInset, 0);
    const int y = item->rect.center().y() - 1;
    painter->setPen(item->palette.color(QPalette::Dark));
    painter->drawLine(line.left(), y, line.right(), y);
    painter->setPen(item->palette.color(QPalette::Light));
    painter->drawLine(line.left(), y + 1, line.right(), y + 1);
    if (item->text.isEmpty()) return;
    painter->setFont(window_->MenuFontSep);
    const int flags = Qt::AlignCenter | Qt::TextSingleLine;
    const QRect text = painter->fontMetrics().boundingRect(item->rect, flags, item->text);
    painter->fillRect(text.adjusted(-4, 0, 4, 0), item->palette.brush(QPalette::Window));
    DrawEngraved(painter, item->rect, flags, item->text, item->palette);
}

void CoolMenuStyle::DrawItem(const QStyleOptionMenuItem* item, QPainter* painter,
                             const QWidget* widget) const {
    const auto* menu = qobject_cast<const QMenu*>(widget);
    const QAction* action = menu ? menu->actionAt(item->rect.center()) : nullptr;
    const CMyItemData* data = CoolMenuItem(action);
    const bool enabled = item->state & State_Enabled;
    const bool selected = item->state & State_Selected;
    const bool checked = action ? action->isChecked() : item->checked;
    const QRect box = PictureBox(item->rect);
    const QRect textRect(box.right() + 6, item->rect.top(), item->rect.right() - box.right() - 14,
                         item->rect.height());

    // A disabled item comes with the disabled palette, whose highlight is grey: the bar keeps
    // the active colour, as the system's menus do.
    const QColor bar = window_->SelectColor.isValid()
                           ? window_->SelectColor
                           : item->palette.color(QPalette::Active, QPalette::Highlight);
    if (selected) {
        const QRect barRect = window_->FullSelect ? item->rect : textRect.adjusted(-3, 0, 8, 0);
        painter->fillRect(barRect, bar);
    }
    const QColor text = selected ? item->palette.color(QPalette::Active, QPalette::HighlightedText)
                        : window_->ForeColor.isValid() ? window_->ForeColor
                                                       : item->palette.color(QPalette::Text);

    const bool marked = data ? data->bAsMark && checked : checked;
    const QRect pictureRect(box.left() + 2, box.top() + 2, kPictureSize, kPictureSize);
    if (marked && !(window_->ComplexChecks && !item->icon.isNull())) {
        DrawMark(painter, box, !data || data->bAsCheck, text);
    } else if (!item->icon.isNull()) {
        if (marked) {
            // A checked item with a picture: the picture sits in a sunken box.
            painter->setPen(item->palette.color(QPalette::Dark));
            painter->drawLine(box.topLeft(), box.topRight());
            painter->drawLine(box.topLeft(), box.bottomLeft());
            painter->setPen(item->palette.color(QPalette::Light));
            painter->drawLine(box.bottomLeft(), box.bottomRight());
            painter->drawLine(box.topRight(), box.bottomRight());
        }
        if (enabled || !window_->ColorEmbossed) {
            item->icon.paint(painter, pictureRect, Qt::AlignCenter,
                             enabled ? QIcon::Normal : QIcon::Disabled);
        } else {
            // Embossed: the picture's shape in the light colour, and over it in the shadow.
            QPixmap shape = item->icon.pixmap(kPictureSize, kPictureSize);
            for (const auto& [offset, role] : {std::pair{QPoint(1, 1), QPalette::Light},
                                               std::pair{QPoint(0, 0), QPalette::Dark}}) {
                QPixmap tinted(shape.size());
                tinted.fill(Qt::transparent);
                QPainter tint(&tinted);
                tint.drawPixmap(0, 0, shape);
                tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
                tint.fillRect(tinted.rect(), item->palette.color(role));
                tint.end();
                painter->drawPixmap(pictureRect.topLeft() + offset, tinted);
            }
        }
    }

    painter->setFont(window_->MenuFont);
    const qsizetype tab = item->text.indexOf('\t');
    const int flags = Qt::AlignVCenter | Qt::TextShowMnemonic | Qt::TextSingleLine;
    const QRect captionRect = textRect.adjusted(0, 0, -4, 0);
    const QString caption = item->text.left(tab);
    const QString shortcut = tab >= 0 ? item->text.mid(tab + 1) : QString();
    if (enabled || selected) {
        // A highlighted disabled item is dimmed on the bar, where a relief would not show: its
        // text lies between the bar and the highlighted text, still readable on the bar.
        painter->setPen(enabled ? text : Blend(text, bar));
        painter->drawText(captionRect, flags | Qt::AlignLeft, caption);
        painter->drawText(captionRect, flags | Qt::AlignRight, shortcut);
    } else {
        DrawEngraved(painter, captionRect, flags | Qt::AlignLeft, caption, item->palette);
        DrawEngraved(painter, captionRect, flags | Qt::AlignRight, shortcut, item->palette);
    }
}

void CoolMenuStyle::DrawMark(QPainter* painter, const QRect& box, bool check,
                             const QColor& colour) const {
    painter->setRenderHint(QPainter::Antialiasing);
    const QPointF centre = QRectF(box).center();
    if (check) {
        QPainterPath mark;
        mark.moveTo(centre + QPointF(-4, 0));
        mark.lineTo(centre + QPointF(-1.5, 3));
        mark.lineTo(centre + QPointF(4, -3.5));
        painter->setPen(QPen(colour, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        painter->drawPath(mark);
    } else {
        painter->setPen(Qt::NoPen);
        painter->setBrush(colour);
        painter->drawEllipse(centre, 3, 3);
    }
}
