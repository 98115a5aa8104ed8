// Filling the title list from the view of the selected folder, and the list's small routines.

#include "shell/readrecords.h"

#include <QHeaderView>
#include <QMetaObject>
#include <QScopedValueRollback>
#include <QSet>
#include <optional>
#include <utility>

#include "app/mGlobals.h"
#include "loans/lentoutfolder.h"
#include "loans/loanstore.h"
#include "lookups/viewqueries.h"
#include "shell/frmMain.h"
#include "shell/mGlobalFunctions.h"
#include "shell/titlelistmodel.h"
#include "store/catalogue.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

ListReadState gListReadState;

namespace {

// Marks the rows due before today as overdue: a flag that colours them, and a word behind the
// date so that the colour is not the only sign.
void MarkOverdue(std::vector<TitleRow>& rows, const QDate& today) {
    for (TitleRow& row : rows) {
        const QDate due = loans::TextDate(row.subItems[loans::kDueSubItem]);
        row.overdue = due.isValid() && due < today;
        row.subItems[loans::kDueSubItem] =
            loans::DateText(due) + (row.overdue ? loans::kOverdueMark : QString());
    }
}

int PlatformIdOf(const QString& key) {
    return key.mid(3).toInt();
}

// Opens the view of the node being read into gRecordset.
void OpenViewOfNode(frmMain* form, QTreeWidgetItem* node) {
    if (!node) return;
    const QString key = form->NodeKey(node);
    QTreeWidgetItem* parent = node->parent();
    QTreeWidgetItem* root = form->Node(1);
    if (key == "root") {
        OpenView("platform", 0, 32767, "");
    } else if (key == loans::kLentOutKey) {
        loans::OpenLentOutView();
    } else if (parent == root && key != "search") {
        const int id = PlatformIdOf(key);
        OpenView("platform", id, id, "");
    } else if (key == "search" && gSearchSQL.isEmpty()) {
        OpenView("platform", -1, -1, "");
        QMetaObject::invokeMethod(
            form, [form] { emit form->SearchWindowRequested(); }, Qt::QueuedConnection);
    } else if (key == "search") {
        OpenView("search", 0, 32767, "");
    } else if (parent && parent->parent() == root) {
        const QString parentKey = form->NodeKey(parent);
        const int platform = PlatformIdOf(parentKey);
        const int type = key.right(key.length() - parentKey.length() - 3).toInt();
        OpenView("platformtype", type, type, "(" + QString::number(platform) + ")");
    }
}

long CountRows(Recordset* view) {
    if (!view) return 0;
    long count = view->RecordCount();
    if (count > 0) {
        view->MoveLast();
        count = view->RecordCount();
        view->MoveFirst();
    }
    return count;
}

const std::array<QString, 5> kSubItemFields = {"nmvendor", "nmtype", "nmspecific", "nrcds",
                                               "nmmediatype"};

std::vector<TitleRow> ReadRows(Recordset* view, long count,
                               const std::array<QString, 5>& subItemFields) {
    std::vector<TitleRow> rows;
    if (count <= 0) return rows;
    rows.reserve(count);
    // The fields are looked up once; each row then reads by position.
    Field idcd = view->Fields("idcd");
    Field platform = view->Fields("platform.idplatform");
    Field name = view->Fields("nmcd");
    const std::array<Field, 5> subItems = {
        view->Fields(subItemFields[0]), view->Fields(subItemFields[1]),
        view->Fields(subItemFields[2]), view->Fields(subItemFields[3]),
        view->Fields(subItemFields[4])};
    // Vendors, types, kinds, counts and media repeat over thousands of titles: the rows share
    // one copy of each, which keeps a large list small and lets it measure each text once.
    std::array<QSet<QString>, 5> sharedTexts;
    for (long row = 1; row <= count; ++row) {
        UpdateItemCount(row, "");
        const QString tag = NzText(idcd.Value());
        const int idplatform = platform.Value().toInt();
        TitleRow item{"id" + tag, NzText(name.Value()), {}, tag, idplatform < 6 ? idplatform : 6};
        for (size_t column = 0; column < subItems.size(); ++column)
            item.subItems[column] = *sharedTexts[column].insert(NzText(subItems[column].Value()));
        rows.push_back(std::move(item));
        view->MoveNext();
    }
    return rows;
}

// The lent-out folder keeps the order of its due dates; the other folders get back the sorting
// they had before it.
std::optional<bool> sortedBeforeLentOut;

void FillList(frmMain* form) {
    TitleListModel* model = form->ListModel();
    form->SetMousePointer(vbHourglass);
    form->SetPanelText(2, gItemCountText);
    form->ClearListItems();
    DoEvents();
    const bool lentOut = gListReadState.readingKey == loans::kLentOutKey;
    bool sorted = model->Sorted();
    if (lentOut && !sortedBeforeLentOut) sortedBeforeLentOut = sorted;
    if (!lentOut && sortedBeforeLentOut) sorted = *std::exchange(sortedBeforeLentOut, {});
    model->SetSorted(false);
    model->SetHeaders(lentOut ? loans::LentOutHeaders() : QStringList());

    form->ListView1->setUpdatesEnabled(false);
    try {
        OpenViewOfNode(form, form->Node(gListReadState.nodeIndex));
        const long count = CountRows(gRecordset.get());
        std::vector<TitleRow> rows = ReadRows(
            gRecordset.get(), count, lentOut ? loans::LentOutSubItemFields() : kSubItemFields);
        if (lentOut) MarkOverdue(rows, QDate::currentDate());
        model->SetRows(std::move(rows));
    } catch (const VbError& error) {
        MsgBox(error.Description);
    }
    const bool hasItems = form->ListItemCount() > 0;
    if (hasItems) {
        for (int column = 1; column <= TitleListModel::kColumns; ++column)
            AutosizeColumn(form->ListView1, column, true);
    }
    model->SetSorted(lentOut ? false : sorted);
    form->ListView1->header()->setSortIndicatorShown(model->Sorted());
    if (hasItems) form->SelectListIndex(0);
    form->ListView1->setUpdatesEnabled(true);
    form->SetMousePointer(vbArrow);
    gListReadState.lastKey = gListReadState.readingKey;
}

}  // namespace

void ReadRecords(long selectId) {
    frmMain* form = gMainForm;
    if (!form) return;
    gListDirty = false;
    gListReadState.nodeIndex = gSelectedIndex;
    gListReadState.readingKey = gSelectedKey;
    if (gListReadState.readingKey != gListReadState.lastKey || gRequestedKey == "forcechange")
        FillList(form);
    if (selectId != -1) SelectTitleInList(selectId);
}

void UpdateItemCount(long count, const QString& mode) {
    long number = count;
    if (!mode.isEmpty()) {
        const long present = gMainForm->PanelText(2).left(5).toLong();
        number = mode == "plus" ? present + 1 : present - 1;
    }
    // Format's "00000" for whole numbers, written over the template's first five characters
    // without general parsing: this runs for every row of a fill.
    QString text = gItemCountText;
    if (number >= 0 && number <= 99999 && text.size() >= 5) {
        QChar* digits = text.data();
        for (int position = 4; position >= 0; --position, number /= 10)
            digits[position] = QChar(static_cast<char16_t>(u'0' + number % 10));
    } else {
        QString formatted = QString::number(std::abs(number)).rightJustified(5, '0');
        if (number < 0) formatted.prepend('-');
        text = formatted + gItemCountText.mid(5);
    }
    gMainForm->SetPanelText(2, text);
}

void AutosizeColumn(QAbstractItemView* list, int column, bool useHeader) {
    auto* view = qobject_cast<QTreeView*>(list);
    auto* model = view ? qobject_cast<TitleListModel*>(view->model()) : nullptr;
    if (!model) return;
    const int section = column - 1;
    const int widest = model->WidestRow(section, view->fontMetrics());
    int width = widest < 0 ? 0 : view->sizeHintForIndex(model->index(widest, section)).width();
    if (useHeader) width = std::max(width, view->header()->sectionSizeHint(section));
    view->header()->resizeSection(section, width);
}

void SelectTitleInList(long id) {
    const int row = gMainForm->ListModel()->FindTag(QString::number(id));
    if (row < 0) return;
    gMainForm->SelectListIndex(row);
    gMainForm->ListView1->scrollTo(gMainForm->ListModel()->index(row, 0));
}
