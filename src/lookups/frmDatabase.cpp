#include "lookups/frmDatabase.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/mGlobals.h"
#include "app/mainwindow.h"
#include "loans/borrowerspanel.h"
#include "lookups/lookupoperations.h"
#include "store/catalogue.h"
#include "store/frmPerformAction.h"
#include "toolkit/controls/imagelists.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"

frmDatabase* gDatabaseForm = nullptr;

namespace {

using LookupOperation = QString (*)(int, long, QString&);

struct ListDesign {
    QString caption;
    QString captionTip;
    QString listTip;
    QString pictureName;  // "Platform" gives picPlatformAdd, picPlatformMod, picPlatformDel
    LookupOperation operation;
    std::array<QString, 3> pictureTips;
};

const std::array<ListDesign, 5>& Designs() {
    static const std::array<ListDesign, 5> designs{{
        {"Platform",
         "Name for a main category",
         "This list contains all platforms that are available (e.g., music, dvd, playstation, "
         "etc.)",
         "Platform",
         ModifyPlatform,
         {"Add a new platform", "Change the name of the selected platform",
          "Delete the selected platform"}},
        {"Type",
         "A sub-category for the selected platform",
         "This list contains all types that belong to the selected platform (e.g., normal audio "
         "cd's or mp3-converted)",
         "Type",
         ModifyType,
         {"Add a new type to the selected platform", "Change the name of the selected type",
          "Delete the selected type"}},
        {"Specific item",
         "Provides more detailed information about the available sub-items that go with the "
         "selected type",
         "This list contains all specific items that belong to the selected type (e.g., jazz, "
         "blues, etc.)",
         "Specific",
         ModifySpecific,
         {"Add a new specific item to the selected type",
          "Change the name of the selected specific item", "Delete the selected specific item"}},
        {"Vendor",
         "Artist, vendor or publisher that belongs to the selected platform",
         "This list contains all artists / vendors that belong to the selected platform (e.g., "
         "Joan Merrit)",
         "Vendor",
         ModifyVendor,
         {"Add a vendor / artist for the selected platform",
          "Change the name of the selected vendor / artist",
          "Delete the selected vendor / artist"}},
        {"Mediatype",
         "Types of storage that are used in your cd-collection",
         "This list contains all mediatypes that are used for storage (e.g., dvd, cd, etc.)",
         "Mediatype",
         ModifyMediatype,
         {"Add a new mediatype", "Change the name of the selected mediatype",
          "Delete the selected mediatype"}},
    }};
    return designs;
}

// The two kinds of list behind one set of row operations.
int RowCount(QWidget* control) {
    if (auto* combo = qobject_cast<QComboBox*>(control)) return combo->count();
    return static_cast<QListWidget*>(control)->count();
}

int CurrentRow(QWidget* control) {
    if (auto* combo = qobject_cast<QComboBox*>(control)) return combo->currentIndex();
    return static_cast<QListWidget*>(control)->currentRow();
}

void SetCurrentRow(QWidget* control, int row) {
    const QSignalBlocker blocker(control);
    if (auto* combo = qobject_cast<QComboBox*>(control)) {
        combo->setCurrentIndex(row);
        return;
    }
    auto* list = static_cast<QListWidget*>(control);
    list->setCurrentRow(row);
    if (row < 0) list->clearSelection();
}

QString RowText(QWidget* control, int row) {
    if (auto* combo = qobject_cast<QComboBox*>(control)) return combo->itemText(row);
    return static_cast<QListWidget*>(control)->item(row)->text();
}

long RowId(QWidget* control, int row) {
    if (auto* combo = qobject_cast<QComboBox*>(control)) return combo->itemData(row).toLongLong();
    return static_cast<QListWidget*>(control)->item(row)->data(Qt::UserRole).toLongLong();
}

void SetRowText(QWidget* control, int row, const QString& text) {
    if (auto* combo = qobject_cast<QComboBox*>(control))
        combo->setItemText(row, text);
    else
        static_cast<QListWidget*>(control)->item(row)->setText(text);
}

void AddRow(QWidget* control, const QString& text, long id) {
    const QSignalBlocker blocker(control);
    if (auto* combo = qobject_cast<QComboBox*>(control)) {
        const int previous = combo->currentIndex();
        combo->addItem(text, qlonglong(id));
        combo->setCurrentIndex(previous);
        return;
    }
    auto* item = new QListWidgetItem(text, static_cast<QListWidget*>(control));
    item->setData(Qt::UserRole, qlonglong(id));
}

void RemoveRow(QWidget* control, int row) {
    const QSignalBlocker blocker(control);
    if (auto* combo = qobject_cast<QComboBox*>(control))
        combo->removeItem(row);
    else
        delete static_cast<QListWidget*>(control)->takeItem(row);
}

void ClearRows(QWidget* control) {
    const QSignalBlocker blocker(control);
    if (auto* combo = qobject_cast<QComboBox*>(control))
        combo->clear();
    else
        static_cast<QListWidget*>(control)->clear();
}

int FindRow(QWidget* control, long id) {
    for (int row = 0; row < RowCount(control); ++row)
        if (RowId(control, row) == id) return row;
    return -1;
}

// The number at the start of text, 0 when there is none.
long Val(const QString& text) {
    qsizetype digits = 0;
    while (digits < text.size() && text.at(digits).isDigit()) ++digits;
    return text.left(digits).toLong();
}

}  // namespace

frmDatabase::frmDatabase(QWidget* parent) : QDialog(parent) {
    BuildWindow();
}

frmDatabase::~frmDatabase() {
    if (gDatabaseForm == this) gDatabaseForm = nullptr;
}

void frmDatabase::BuildWindow() {
    setObjectName("frmDatabase");
    setWindowTitle("Database maintenance");
    setModal(true);

    cmbPlatform = new QComboBox(this);
    cmbPlatform->setObjectName("cmbPlatform");
    chkVisiblePlatform = new QCheckBox("Visible", this);
    chkVisiblePlatform->setObjectName("chkVisiblePlatform");
    chkVisiblePlatform->setToolTip("Make a platform invisible / visible");
    lstType = new QListWidget(this);
    lstType->setObjectName("lstType");
    lstSpecific = new QListWidget(this);
    lstSpecific->setObjectName("lstSpecific");
    lstVendor = new QListWidget(this);
    lstVendor->setObjectName("lstVendor");
    cmbMediatype = new QComboBox(this);
    cmbMediatype->setObjectName("cmbMediatype");
    lblHint = new QLabel(
        "Shortcuts: press Ctrl-Insert to insert a new item, F2 to rename it and Ctrl-Delete to "
        "delete it...",
        this);
    lblHint->setObjectName("lblHint");
    lblHint->setWordWrap(true);
    cmdDone = new QPushButton("&Done", this);
    cmdDone->setObjectName("cmdDone");
    cmdDone->setToolTip("Click when finished");
    cmdDone->setAutoDefault(false);

    const std::array<QString, 3> actionNames{"Add", "Mod", "Del"};
    const std::array<QString, 3> pictures{"add", "rename", "delete"};
    // Platforms, their types and the mediatypes on the left; vendors and specific items, which
    // hang from them, on the right.
    auto* left = new QVBoxLayout;
    auto* right = new QVBoxLayout;
    for (int list = Platform; list <= Mediatype; ++list) {
        const ListDesign& design = Designs()[list];
        QWidget* control = ListControl(LookupList(list));
        control->setToolTip(design.listTip);
        control->setMinimumWidth(220);
        auto* caption = new QLabel(design.caption, this);
        caption->setToolTip(design.captionTip);
        caption->setBuddy(control);
        auto* heading = new QHBoxLayout;
        heading->setSpacing(2);
        heading->addWidget(caption);
        heading->addStretch();
        for (int action = 0; action < 3; ++action) {
            auto* picture = new QToolButton(this);
            picture->setObjectName("pic" + design.pictureName + actionNames[action]);
            picture->setIcon(DatabaseButtonPicture(pictures[action]));
            picture->setIconSize(QSize(16, 16));
            picture->setAutoRaise(true);
            picture->setFocusPolicy(Qt::NoFocus);
            picture->setToolTip(design.pictureTips[action]);
            connect(picture, &QToolButton::clicked, this,
                    [this, list, action] { Picture_Click(LookupList(list), action + 1); });
            heading->addWidget(picture);
            pictures_[list][action] = picture;
        }
        QVBoxLayout* column = list == Vendor || list == Specific ? right : left;
        if (column->count() > 0) column->addSpacing(8);
        column->addLayout(heading);
        column->addWidget(control, qobject_cast<QListWidget*>(control) ? 1 : 0);
        if (list == Platform) column->addWidget(chkVisiblePlatform);
    }
    fraBorrowers = new BorrowersPanel(this);
    right->addSpacing(8);
    right->addWidget(fraBorrowers, 1);
    auto* columns = new QHBoxLayout;
    columns->setSpacing(16);
    columns->addLayout(left);
    columns->addLayout(right);

    for (QWidget* control : {static_cast<QWidget*>(lstType), static_cast<QWidget*>(lstSpecific),
                             static_cast<QWidget*>(lstVendor), static_cast<QWidget*>(cmbMediatype)})
        control->installEventFilter(this);

    connect(cmbPlatform, &QComboBox::activated, this, &frmDatabase::cmbPlatform_Click);
    connect(lstType, &QListWidget::currentRowChanged, this, &frmDatabase::lstType_Click);
    connect(lstType, &QListWidget::itemClicked, this, &frmDatabase::lstType_Click);
    connect(lstSpecific, &QListWidget::currentRowChanged, this, &frmDatabase::lstSpecific_Click);
    connect(lstVendor, &QListWidget::currentRowChanged, this, &frmDatabase::lstVendor_Click);
    connect(chkVisiblePlatform, &QCheckBox::stateChanged, this,
            &frmDatabase::chkVisiblePlatform_Click);
    connect(cmdDone, &QPushButton::clicked, this, &frmDatabase::cmdDone_Click);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(lblHint, 1);
    bottom->addWidget(cmdDone);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(columns, 1);
    layout->addLayout(bottom);
    resize(560, 460);
}

QWidget* frmDatabase::ListControl(LookupList list) const {
    switch (list) {
        case Platform:
            return cmbPlatform;
        case Type:
            return lstType;
        case Specific:
            return lstSpecific;
        case Vendor:
            return lstVendor;
        default:
            return cmbMediatype;
    }
}

QToolButton* frmDatabase::PictureButton(LookupList list, int action) const {
    return pictures_[list][action];
}

long frmDatabase::SelectedId(LookupList list) const {
    QWidget* control = ListControl(list);
    const int row = CurrentRow(control);
    return row >= 0 ? RowId(control, row) : 0;
}

void frmDatabase::SelectRow(LookupList list, int row) {
    SetCurrentRow(ListControl(list), row);
    RunClick(list);
}

void frmDatabase::RunClick(LookupList list) {
    switch (list) {
        case Platform:
            cmbPlatform_Click();
            break;
        case Type:
            lstType_Click();
            break;
        case Specific:
            lstSpecific_Click();
            break;
        case Vendor:
            lstVendor_Click();
            break;
        default:
            break;
    }
}

bool frmDatabase::Fill(LookupList list, const QString& sql, const QString& textField,
                       const QString& idField) {
    recordset_ = gDatabase->OpenRecordset(sql, dbOpenDynaset);
    if (recordset_->IsEOF()) return false;
    QWidget* control = ListControl(list);
    for (; !recordset_->IsEOF(); recordset_->MoveNext())
        AddRow(control, recordset_->Fields(textField).Value().toString(),
               recordset_->Fields(idField).Value().toLongLong());
    SetCurrentRow(control, -1);
    return true;
}

void frmDatabase::FillPlatforms() {
    if (!Fill(Platform, "Select * from platform order by nmplatform", "nmplatform", "idplatform"))
        return;
    SelectRow(Platform, 0);
}

void frmDatabase::FillTypes() {
    ClearRows(lstType);
    ClearRows(lstSpecific);
    const QString id = QString::number(SelectedId(Platform));
    if (!Fill(Type, "Select * from type where idplatform = " + id + " order by nmtype", "nmtype",
              "idtype"))
        return;
    SelectRow(Type, 0);
}

void frmDatabase::FillSpecifics() {
    ClearRows(lstSpecific);
    const QString id = QString::number(SelectedId(Type));
    if (!Fill(Specific, "Select * from specific where idtype = " + id + " order by nmspecific",
              "nmspecific", "idspecific"))
        return;
    SelectRow(Specific, 0);
}

void frmDatabase::FillVendors() {
    ClearRows(lstVendor);
    const QString id = QString::number(SelectedId(Platform));
    if (!Fill(Vendor, "Select * from vendor where idplatform = " + id + " order by nmvendor",
              "nmvendor", "idvendor"))
        return;
    SelectRow(Vendor, 0);
}

void frmDatabase::FillMediatypes() {
    Fill(Mediatype, "Select * from mediatype order by nmmediatype", "nmmediatype", "idmediatype");
}

void frmDatabase::Form_Load() {
    for (QWidget* control : {static_cast<QWidget*>(cmbPlatform), static_cast<QWidget*>(lstVendor),
                             static_cast<QWidget*>(lstType), static_cast<QWidget*>(lstSpecific),
                             static_cast<QWidget*>(cmbMediatype)})
        ClearRows(control);
    // A failing statement is passed over; the next one still runs.
    ResumeNext([this] { FillPlatforms(); });
    ResumeNext([this] { FillMediatypes(); });
    SelectFromTreeNode();
    if (RowCount(cmbMediatype) > 0) ResumeNext([this] { SelectRow(Mediatype, 0); });
    fraBorrowers->Fill();
}

// Statements of Form_Load: a selection that fails does not keep the next one from running.
void frmDatabase::SelectFromTreeNode() {
    const MainWindow* main = TheMainWindow();
    if (!main) return;
    const QString key = main->NodeKeyAt(gSelectedIndex);
    if (key.isEmpty()) return;
    const QString parentKey = main->ParentNodeKey(key);
    if (key == "search" || gSelectedIndex == 1 || parentKey.isEmpty()) {
        if (RowCount(cmbPlatform) > 0) ResumeNext([this] { SelectRow(Platform, 0); });
        return;
    }
    if (parentKey == "root") {
        const int row = FindRow(cmbPlatform, Val(key.mid(3)));
        if (row >= 0) ResumeNext([&] { SelectRow(Platform, row); });
        if (RowCount(lstType) > 0) ResumeNext([this] { SelectRow(Type, 0); });
        return;
    }
    const int platformRow = FindRow(cmbPlatform, Val(parentKey.mid(3)));
    if (platformRow >= 0) ResumeNext([&] { SelectRow(Platform, platformRow); });
    const int typeRow = FindRow(lstType, Val(key.mid(parentKey.length() + 3)));
    if (typeRow >= 0) ResumeNext([&] { SelectRow(Type, typeRow); });
}

void frmDatabase::cmbPlatform_Click() {
    if (CurrentRow(cmbPlatform) < 0) return;
    const long id = SelectedId(Platform);
    if (id != SelectedPlatformId) {
        FillVendors();
        FillTypes();
        SelectedPlatformId = id;
        SelectedTypeId = -1;
    }
    recordset_ = gDatabase->OpenRecordset(
        "select * from platform where idplatform = " + QString::number(id), dbOpenDynaset);
    VisibleCheckArmed = false;
    if (!recordset_->IsEOF())
        chkVisiblePlatform->setChecked(recordset_->Fields("visible").Value().toBool());
    VisibleCheckArmed = true;
}

void frmDatabase::lstType_Click() {
    if (CurrentRow(lstType) < 0) return;
    const long id = SelectedId(Type);
    if (id == SelectedTypeId) return;
    FillSpecifics();
    SelectedTypeId = id;
}

void frmDatabase::lstSpecific_Click() {
    if (CurrentRow(lstSpecific) >= 0) SelectedSpecificId = SelectedId(Specific);
}

void frmDatabase::lstVendor_Click() {
    if (CurrentRow(lstVendor) >= 0) SelectedVendorId = SelectedId(Vendor);
}

void frmDatabase::chkVisiblePlatform_Click() {
    if (!VisibleCheckArmed) return;
    try {
        auto platform = gDatabase->OpenRecordset(
            "select * from platform where idplatform = " + QString::number(SelectedId(Platform)),
            dbOpenDynaset);
        platform->MoveFirst();
        platform->Edit();
        platform->Fields("visible").SetValue(chkVisiblePlatform->isChecked());
        platform->Update();
        gListDirty = true;
        gTreeDirty = true;
    } catch (const VbError& error) {
        MsgBox(QString::number(error.Number) + ": " + error.Description, vbOKOnly,
               "Error setting platform visibility");
    }
}

void frmDatabase::Picture_Click(LookupList list, int action) {
    QWidget* control = ListControl(list);
    const LookupOperation operation = Designs()[list].operation;
    // Errors pass on to the next statement, so a failing step ends in no message of its own;
    // the lookup routines report theirs.
    QString name;
    QString result;
    if (action == kLookupAdd) {
        long parent = 0;
        if (list == Type || list == Vendor || list == Specific) {
            QWidget* parentControl = ListControl(list == Specific ? Type : Platform);
            if (CurrentRow(parentControl) < 0) return;
            parent = RowId(parentControl, CurrentRow(parentControl));
        }
        ResumeNext([&] { result = operation(kLookupAdd, parent, name); });
        if (result.isEmpty()) return;
        AddRow(control, LookupResultName(result), LookupResultId(result));
        if (list == Mediatype) gListDirty = true;
        ResumeNext([&] { SelectRow(list, RowCount(control) - 1); });
        return;
    }
    const int row = CurrentRow(control);
    if (row < 0) return;
    name = RowText(control, row);
    ResumeNext([&] { result = operation(action, RowId(control, row), name); });
    if (result.isEmpty()) return;
    if (list == Mediatype) gListDirty = true;
    if (action == kLookupRename) {
        SetRowText(control, row, LookupResultName(result));
        return;
    }
    RemoveRow(control, row);
    if (list == Platform || list == Type) {
        const int count = RowCount(control);
        if (count > 0) {
            ResumeNext([&] { SelectRow(list, std::min(row, count - 1)); });
        } else {
            // Nothing is left to hang the dependent lists from.
            ClearRows(lstSpecific);
            if (list == Platform) {
                ClearRows(lstType);
                ClearRows(lstVendor);
            }
        }
    } else {
        SetCurrentRow(control, -1);
    }
}

bool frmDatabase::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return QDialog::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (event->type() == QEvent::KeyPress) {
        for (auto it = keyDown_.begin(); it != keyDown_.end(); ++it) it.value() = false;
        keyDown_[watched] = true;
        return false;
    }
    if (key->isAutoRepeat()) return false;
    const bool cameHere = keyDown_.value(watched);
    keyDown_[watched] = false;
    if (!cameHere) return false;
    const LookupList list = watched == lstType       ? Type
                            : watched == lstSpecific ? Specific
                            : watched == lstVendor   ? Vendor
                                                     : Mediatype;
    KeyUp(list, key->key(), key->modifiers());
    return false;
}

void frmDatabase::KeyUp(LookupList list, int key, Qt::KeyboardModifiers modifiers) {
    const bool ctrl = modifiers & Qt::ControlModifier;
    const bool shifted = modifiers & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
    if (ctrl && key == Qt::Key_Insert)
        Picture_Click(list, kLookupAdd);
    else if (ctrl && key == Qt::Key_Delete)
        Picture_Click(list, kLookupDelete);
    else if (!shifted && key == Qt::Key_F2)
        Picture_Click(list, kLookupRename);
}

void frmDatabase::cmdDone_Click() {
    Unload();
}

void frmDatabase::closeEvent(QCloseEvent* event) {
    Unload();
    event->accept();
}

void frmDatabase::reject() {
    Unload();
}

void frmDatabase::Unload() {
    if (unloaded_ || !UnloadMayRunNow(this, [this] { Unload(); })) return;
    unloaded_ = true;
    RemoveOpenWindow(this);
    if (windowState() == Qt::WindowNoState) move(-width(), -height());
    recordset_.reset();
    if (gDatabaseForm == this) gDatabaseForm = nullptr;
    // The compaction closes the catalogue: it waits until no other work, which may have the
    // catalogue open, is under way (the window itself is gone by then).
    if (gTreeDirty || gListDirty)
        RunWhenIdle([owner = QPointer<QWidget>(parentWidget())] {
            // An end that came first has compacted the catalogue already.
            if (!owner || !TheMainWindow() || !gDatabase) return;
            const QString filter = gRecordset ? gRecordset->Filter() : QString();
            const QString sort = gRecordset ? gRecordset->Sort() : QString();
            (new frmPerformAction())
                ->PerformAction(frmPerformAction::CompactMainDatabase, owner, true, filter, sort,
                                false);
        });
    QDialog::done(QDialog::Rejected);
    deleteLater();
}

void ShowDatabaseForm(QWidget* owner) {
    gDatabaseForm = new frmDatabase(owner);
    gDatabaseForm->Form_Load();
    RunModal(gDatabaseForm);
}
