#pragma once

// The rows behind the title list: plain values, so that tens of thousands of titles fill,
// sort and measure quickly. Rows are kept in the order shown.

#include <QAbstractTableModel>
#include <QIcon>
#include <QStringList>
#include <array>
#include <vector>

class QFontMetrics;

struct TitleRow {
    QString key;
    QString text;
    std::array<QString, 5> subItems;
    QString tag;
    // 1..5 for the program's platforms, 6 for all others.
    int smallIcon = 6;
    // A title lent out beyond its due date: drawn in its own colour.
    bool overdue = false;
};

class TitleListModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    static constexpr int kColumns = 6;
    // data() answers this role with the row's overdue flag.
    static constexpr int kOverdueRole = Qt::UserRole + 1;

    explicit TitleListModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    const TitleRow& Row(int row) const { return rows_[row]; }
    // The text of a 0-based column: the item's text, then the five sub-items.
    const QString& Text(int row, int column) const;

    // The column headers; an empty list gives the design's six.
    void SetHeaders(const QStringList& headers);

    void Clear();
    // Replaces every row at once (one reset); sorted first when the list is sorted.
    void SetRows(std::vector<TitleRow>&& rows);
    // Adds one row, at its sorted place when the list is sorted; returns its row.
    int Add(TitleRow row);
    void SetText(int row, const QString& text, const QStringList& subItems);
    void Remove(int row);
    int FindKey(const QString& key) const;
    int FindTag(const QString& tag) const;

    // The list control's own sorting, on the text of column SortKey (0-based). Turning it on
    // or changing key or order sorts at once.
    bool Sorted() const { return sorted_; }
    int SortKey() const { return sortKey_; }
    Qt::SortOrder SortOrder() const { return sortOrder_; }
    void SetSorting(bool sorted, int sortKey, Qt::SortOrder order);
    void SetSorted(bool sorted) { SetSorting(sorted, sortKey_, sortOrder_); }

    // The row whose text in column is the widest as font draws it, or -1 without rows.
    int WidestRow(int column, const QFontMetrics& font) const;

  private:
    bool Before(const TitleRow& a, const TitleRow& b) const;
    // Sorts the rows in place and returns each former row's new place.
    std::vector<int> SortVector();
    void SortRows();

    std::vector<TitleRow> rows_;
    QStringList headers_;
    std::array<QIcon, 7> icons_;
    bool sorted_ = false;
    int sortKey_ = 0;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};
