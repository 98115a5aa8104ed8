// The title list of the main window: its columns, items, sorting and selection.

#include <QApplication>
#include <QHeaderView>
#include <QLayout>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>

#include "app/mGlobals.h"
#include "loans/lentoutfolder.h"
#include "shell/frmMain.h"
#include "shell/titlelistmodel.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const double kFirstColumnShare = 0.4;

// The list control's grid lines: a line under every row and one at the right of every
// column, in the colour the style gives a table's grid. Each cell keeps a pixel for them.
class GridLinesDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
        const auto grid = static_cast<QRgb>(
            style->styleHint(QStyle::SH_Table_GridLineColor, &option, option.widget));
        painter->save();
        painter->setPen(QColor::fromRgba(grid));
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
        painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(1, 1);
    }

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (!index.data(TitleListModel::kOverdueRole).toBool()) return;
        QPalette& palette = option->palette;
        palette.setColor(QPalette::Text, loans::OverdueColour(palette.color(QPalette::Base)));
        palette.setColor(QPalette::Highlight,
                         loans::OverdueColour(palette.color(QPalette::HighlightedText)));
    }
};

class ListEvents : public QObject {
  public:
    explicit ListEvents(frmMain* form) : QObject(form), form_(form) {}

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn && watched == form_->ListView1)
            form_->ListView1_GotFocus();
        return QObject::eventFilter(watched, event);
    }

  private:
    frmMain* form_;
};

}  // namespace

void frmMain::SetupList() {
    listModel_ = new TitleListModel(this);
    listModel_->SetSorting(true, 0, Qt::AscendingOrder);
    ListView1->setModel(listModel_);
    ListView1->setItemDelegate(new GridLinesDelegate(ListView1));
    ListView1->setUniformRowHeights(true);
    ListView1->setItemsExpandable(false);
    ListView1->setAllColumnsShowFocus(true);
    // Several titles can be chosen for lending and taking back; the other commands act on the
    // current one.
    ListView1->setSelectionMode(QAbstractItemView::ExtendedSelection);
    ListView1->setSelectionBehavior(QAbstractItemView::SelectRows);
    ListView1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    ListView1->setIconSize(QSize(16, 16));
    QHeaderView* header = ListView1->header();
    header->setStretchLastSection(false);
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    header->setSortIndicator(listModel_->SortKey(), listModel_->SortOrder());
    connect(header, &QHeaderView::sectionClicked, this,
            [this](int logicalIndex) { ListView1_ColumnClick(logicalIndex + 1); });
    connect(ListView1, &QAbstractItemView::pressed, this, [this] { ListView1_ItemClick(); });
    connect(ListView1->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (current.isValid() && !selectingListItem_) ListView1_ItemClick();
            });
    ListView1->installEventFilter(new ListEvents(this));
}

void frmMain::SetupListColumns() {
    // The columns are the model's own; what is left to set up is how they are shown.
    QHeaderView* header = ListView1->header();
    header->reset();
    if (layout()) layout()->activate();
    header->resizeSection(0, static_cast<int>(ListView1->width() * kFirstColumnShare));
    header->setSectionsMovable(true);
}

int frmMain::ListItemCount() const {
    return listModel_->rowCount();
}

int frmMain::SelectedListIndex() const {
    const QModelIndex current = ListView1->selectionModel()->currentIndex();
    if (!current.isValid() || !ListView1->selectionModel()->isRowSelected(current.row())) return -1;
    return current.row();
}

void frmMain::SelectListIndex(int row) {
    if (row < 0 || row >= ListItemCount()) return;
    const QScopedValueRollback programSelection(selectingListItem_, true);
    ListView1->selectionModel()->setCurrentIndex(
        listModel_->index(row, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

QList<int> frmMain::SelectedListRows() const {
    QList<int> rows;
    for (const QModelIndex& row : ListView1->selectionModel()->selectedRows()) rows << row.row();
    std::sort(rows.begin(), rows.end());
    return rows;
}

int frmMain::ListIndexOfKey(const QString& key) const {
    return listModel_->FindKey(key);
}

QString frmMain::ListItemKey(int row) const {
    return listModel_->Row(row).key;
}

QString frmMain::ListItemText(int row) const {
    return listModel_->Row(row).text;
}

QString frmMain::ListItemTag(int row) const {
    return listModel_->Row(row).tag;
}

QStringList frmMain::ListItemSubItems(int row) const {
    const TitleRow& item = listModel_->Row(row);
    return QStringList(item.subItems.begin(), item.subItems.end());
}

void frmMain::AddListItem(const QString& key, const QString& text, int smallIcon,
                          const QStringList& subItems, const QString& tag) {
    TitleRow row{key, text, {}, tag, smallIcon};
    for (int column = 0; column < static_cast<int>(row.subItems.size()); ++column)
        row.subItems[column] = subItems.value(column);
    const QScopedValueRollback programSelection(selectingListItem_, true);
    listModel_->Add(std::move(row));
}

void frmMain::SetListItem(int row, const QString& text, const QStringList& subItems) {
    listModel_->SetText(row, text, subItems);
}

void frmMain::RemoveListItem(int row) {
    const QScopedValueRollback programSelection(selectingListItem_, true);
    listModel_->Remove(row);
}

void frmMain::ClearListItems() {
    const QScopedValueRollback programSelection(selectingListItem_, true);
    listModel_->Clear();
}

void frmMain::ListView1_ColumnClick(int column) {
    const int key = column - 1;
    bool sorted = listModel_->Sorted();
    int sortKey = listModel_->SortKey();
    Qt::SortOrder order = listModel_->SortOrder();
    if (sorted && sortKey == key) {
        order = order == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    } else if (sorted) {
        sortKey = key;
        order = Qt::AscendingOrder;
    } else {
        sorted = true;
        sortKey = key;
    }
    const QScopedValueRollback programSelection(selectingListItem_, true);
    listModel_->SetSorting(sorted, sortKey, order);
    ListView1->header()->setSortIndicatorShown(true);
    ListView1->header()->setSortIndicator(sortKey, order);
}

void frmMain::ListView1_GotFocus() {
    focusName = "listview";
    const int selected = SelectedListIndex();
    if (ListItemCount() > 0 && selected >= 0) gCurrentTitleId = ListItemTag(selected).toLong();
}

void frmMain::ListView1_ItemClick() {
    listItemClicked = true;
    const int selected = SelectedListIndex();
    if (selected >= 0) gCurrentTitleId = ListItemTag(selected).toLong();
    DoEvents();
}
