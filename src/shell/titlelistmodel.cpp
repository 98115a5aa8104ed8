#include "shell/titlelistmodel.h"

#include <QFontMetrics>
#include <algorithm>
#include <numeric>

#include "shell/covertooltip.h"
#include "store/jettext.h"
#include "toolkit/controls/imagelists.h"
#include "toolkit/vb/sortbyruns.h"

namespace {

const char* const kHeaders[TitleListModel::kColumns] = {"Title", "By",      "Type",
                                                        "Kind",  "Nr cd's", "Mediatype"};

// Widths are estimated from cached character advances, and only the rows whose estimate comes
// near the widest are drawn out exactly: shaping every title of a large list costs too much.
const double kCandidateShare = 0.85;
const size_t kMaximumCandidates = 32;

}  // namespace

TitleListModel::TitleListModel(QObject* parent) : QAbstractTableModel(parent) {
    for (int icon = 1; icon < static_cast<int>(icons_.size()); ++icon)
        icons_[icon] = PlatformIcon16(icon);
}

int TitleListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int TitleListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

const QString& TitleListModel::Text(int row, int column) const {
    const TitleRow& item = rows_[row];
    return column == 0 ? item.text : item.subItems[column - 1];
}

QVariant TitleListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    if (role == Qt::DisplayRole) return Text(index.row(), index.column());
    if (role == Qt::ToolTipRole)
        return CoverToolTip(rows_[index.row()].tag, rows_[index.row()].text);
    if (role == kOverdueRole) return rows_[index.row()].overdue;
    if (role == Qt::DecorationRole && index.column() == 0) {
        const int icon = rows_[index.row()].smallIcon;
        if (icon > 0 && icon < static_cast<int>(icons_.size())) return icons_[icon];
    }
    return {};
}

QVariant TitleListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 &&
        section < kColumns)
        return headers_.isEmpty() ? QString(kHeaders[section]) : headers_.value(section);
    return {};
}

void TitleListModel::SetHeaders(const QStringList& headers) {
    if (headers == headers_) return;
    headers_ = headers;
    emit headerDataChanged(Qt::Horizontal, 0, kColumns - 1);
}

void TitleListModel::Clear() {
    beginResetModel();
    rows_.clear();
    endResetModel();
}

void TitleListModel::SetRows(std::vector<TitleRow>&& rows) {
    beginResetModel();
    rows_ = std::move(rows);
    if (sorted_) SortVector();
    endResetModel();
}

int TitleListModel::Add(TitleRow row) {
    auto place = rows_.end();
    if (sorted_) {
        place =
            std::upper_bound(rows_.begin(), rows_.end(), row,
                             [this](const TitleRow& a, const TitleRow& b) { return Before(a, b); });
    }
    const int at = static_cast<int>(place - rows_.begin());
    beginInsertRows({}, at, at);
    rows_.insert(place, std::move(row));
    endInsertRows();
    return at;
}

void TitleListModel::SetText(int row, const QString& text, const QStringList& subItems) {
    TitleRow& item = rows_[row];
    item.text = text;
    for (int column = 0; column < static_cast<int>(item.subItems.size()); ++column)
        item.subItems[column] = subItems.value(column);
    emit dataChanged(index(row, 0), index(row, kColumns - 1));
}

void TitleListModel::Remove(int row) {
    beginRemoveRows({}, row, row);
    rows_.erase(rows_.begin() + row);
    endRemoveRows();
}

int TitleListModel::FindKey(const QString& key) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [&key](const TitleRow& row) { return row.key == key; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

int TitleListModel::FindTag(const QString& tag) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [&tag](const TitleRow& row) { return row.tag == tag; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

void TitleListModel::SetSorting(bool sorted, int sortKey, Qt::SortOrder order) {
    const bool changed = sorted != sorted_ || sortKey != sortKey_ || order != sortOrder_;
    sorted_ = sorted;
    sortKey_ = std::clamp(sortKey, 0, kColumns - 1);
    sortOrder_ = order;
    if (changed && sorted_) SortRows();
}

bool TitleListModel::Before(const TitleRow& a, const TitleRow& b) const {
    const QString& left = sortKey_ == 0 ? a.text : a.subItems[sortKey_ - 1];
    const QString& right = sortKey_ == 0 ? b.text : b.subItems[sortKey_ - 1];
    const int order = jettext::Compare(left, right);
    return sortOrder_ == Qt::AscendingOrder ? order < 0 : order > 0;
}

namespace {

// Puts rows[order[i]] at place i, moving each row once.
void Permute(std::vector<TitleRow>& rows, const std::vector<int>& order) {
    std::vector<bool> placed(rows.size());
    for (size_t start = 0; start < rows.size(); ++start) {
        if (placed[start]) continue;
        TitleRow first = std::move(rows[start]);
        size_t place = start;
        for (;;) {
            placed[place] = true;
            const auto from = static_cast<size_t>(order[place]);
            if (from == start) break;
            rows[place] = std::move(rows[from]);
            place = from;
        }
        rows[place] = std::move(first);
    }
}

}  // namespace

std::vector<int> TitleListModel::SortVector() {
    // The list sorts as the catalogue does; preparing each text once makes each comparison a
    // plain one.
    std::vector<jettext::SortKey> keys(rows_.size());
    for (size_t row = 0; row < rows_.size(); ++row)
        keys[row] = jettext::MakeSortKey(Text(static_cast<int>(row), sortKey_));
    std::vector<int> order(rows_.size());
    std::iota(order.begin(), order.end(), 0);
    if (sortOrder_ == Qt::AscendingOrder)
        SortByRuns(order, [&keys](int a, int b) { return jettext::Compare(keys[a], keys[b]) < 0; });
    else
        SortByRuns(order, [&keys](int a, int b) { return jettext::Compare(keys[b], keys[a]) < 0; });
    Permute(rows_, order);
    std::vector<int> newRowOf(rows_.size());
    for (size_t row = 0; row < order.size(); ++row) newRowOf[order[row]] = static_cast<int>(row);
    return newRowOf;
}

void TitleListModel::SortRows() {
    if (rows_.size() < 2) return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const std::vector<int> newRowOf = SortVector();
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& index : before)
        after.append(this->index(newRowOf[index.row()], index.column()));
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

int TitleListModel::WidestRow(int column, const QFontMetrics& font) const {
    if (rows_.empty()) return -1;
    std::vector<qint16> advance(0x10000, -1);
    // Vendors, types and media are shared texts repeated over many rows: each is measured once.
    struct MeasuredText {
        const QChar* data = nullptr;
        qsizetype size = 0;
        int width = 0;
    };
    std::array<MeasuredText, 256> measured{};
    std::vector<int> estimate(rows_.size());
    int widestEstimate = 0;
    for (size_t row = 0; row < rows_.size(); ++row) {
        const QString& text = Text(static_cast<int>(row), column);
        MeasuredText& slot =
            measured[(reinterpret_cast<quintptr>(text.constData()) >> 4) % measured.size()];
        if (slot.data != text.constData() || slot.size != text.size()) {
            int width = 0;
            for (const QChar c : text) {
                qint16& cached = advance[c.unicode()];
                if (cached < 0) cached = static_cast<qint16>(font.horizontalAdvance(c));
                width += cached;
            }
            slot = {text.constData(), text.size(), width};
        }
        estimate[row] = slot.width;
        widestEstimate = std::max(widestEstimate, slot.width);
    }
    std::vector<int> candidates;
    for (size_t row = 0; row < rows_.size(); ++row)
        if (estimate[row] >= widestEstimate * kCandidateShare)
            candidates.push_back(static_cast<int>(row));
    if (candidates.size() > kMaximumCandidates) {
        std::nth_element(candidates.begin(), candidates.begin() + kMaximumCandidates,
                         candidates.end(),
                         [&estimate](int a, int b) { return estimate[a] > estimate[b]; });
        candidates.resize(kMaximumCandidates);
    }
    int widestRow = candidates.front();
    int widest = -1;
    for (const int row : candidates) {
        const int width = font.horizontalAdvance(Text(row, column));
        if (width > widest) {
            widest = width;
            widestRow = row;
        }
    }
    return widestRow;
}
