#include "search/frmFind.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "app/mGlobals.h"
#include "app/mainwindow.h"
#include "loans/lentoutfolder.h"
#include "loans/loansearch.h"
#include "lookups/viewqueries.h"
#include "store/dao.h"
#include "toolkit/vb/keyupguard.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"
#include "toolkit/vb/vbstrings.h"

frmFind* gFindForm = nullptr;

namespace {

const QString kBaseStatement =
    "Select * from title,vendor,platform,type,specific,mediatype where title.idvendor = "
    "vendor.idvendor and title.idplatform = platform.idplatform and title.idtype = type.idtype "
    "and title.idspecific = specific.idspecific and title.idmediatype = mediatype.idmediatype";
const QString kPlatformStatement = kBaseStatement + " and platform.idplatform = ";

struct TextBoxDesign {
    const char* label;
    const char* tag;
};
const std::array<TextBoxDesign, 8> kTextBoxes{{
    {"CD-Title", "title.nmcd"},
    {"Vendor, artist, by", "vendor.nmvendor"},
    {"Jewelcase label", "label"},
    {"Type", "nmtype"},
    {"Kind", "nmspecific"},
    {"Memo", "memo"},
    {"Listing", "listing"},
    {"Trackname", "TrackName"},
}};
const char* const kTrackNameTag = "TrackName";
const char* const kTagProperty = "Tag";

// Enter and Escape, the two keys the window's boxes answer.
bool IsEnter(const QKeyEvent* key) {
    return key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
}

}  // namespace

frmFind::frmFind(QWidget* owner)
    : QWidget(owner, Qt::Window),
      Frame1(new QGroupBox("Enter a search criterium", this)),
      cmbMediatype(new QComboBox(Frame1)),
      cmdSearch(new QPushButton("&OK", this)),
      cmdCancel(new QPushButton("Cancel", this)) {
    setObjectName("frmFind");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle("Search Velmora");
    keyupguard::Install();
    BuildWindow();
    Form_Load();
    AddOpenWindow(this);
}

frmFind::~frmFind() {
    if (gFindForm == this) gFindForm = nullptr;
}

QString frmFind::Tag(const QWidget* control) {
    return control->property(kTagProperty).toString();
}

void frmFind::BuildWindow() {
    auto* grid = new QGridLayout(Frame1);
    auto addLikeRow = [&](int row, const QString& caption, QWidget* field) {
        auto* like = new QLabel("like", Frame1);
        // The hint on the wildcards sits on the first three "like" labels.
        if (row < 3) like->setToolTip("Use * and ? as wildcards");
        grid->addWidget(new QLabel(caption, Frame1), row, 0);
        grid->addWidget(like, row, 1);
        grid->addWidget(field, row, 2, 1, 2);
    };
    for (int index = 0; index < static_cast<int>(Text1.size()); ++index) {
        Text1[index] = new QLineEdit(Frame1);
        Text1[index]->setObjectName(QString("Text1_%1").arg(index));
        Text1[index]->setProperty(kTagProperty, kTextBoxes[index].tag);
        Text1[index]->installEventFilter(this);
        addLikeRow(index, kTextBoxes[index].label, Text1[index]);
    }
    cmbMediatype->setObjectName("cmbMediatype");
    cmbMediatype->setEditable(true);
    cmbMediatype->setInsertPolicy(QComboBox::NoInsert);
    // The typed text is the criterion; completing it to a row would change the search.
    cmbMediatype->setCompleter(nullptr);
    cmbMediatype->setProperty(kTagProperty, "nmmediatype");
    addLikeRow(static_cast<int>(Text1.size()), "Mediatype", cmbMediatype);
    txtBarcode = new QLineEdit(Frame1);
    txtBarcode->setObjectName("txtBarcode");
    txtBarcode->installEventFilter(this);
    addLikeRow(static_cast<int>(Text1.size()) + 1, "Barcode", txtBarcode);
    connect(cmbMediatype, &QComboBox::editTextChanged, this,
            [this] { SavedMediatypeText = cmbMediatype->currentText(); });
    connect(cmbMediatype, &QComboBox::activated, this,
            [this] { SavedMediatypeText = cmbMediatype->currentText(); });

    txtLentTo = new QLineEdit(Frame1);
    txtLentTo->setObjectName("txtLentTo");
    txtLentTo->setToolTip("Titles out now to this borrower; use * and ? as wildcards");
    connect(txtLentTo, &QLineEdit::returnPressed, this, &frmFind::cmdSearch_Click);
    addLikeRow(grid->rowCount(), "Lent to", txtLentTo);
    chkOverdue = new QCheckBox("Overdue", Frame1);
    chkOverdue->setObjectName("chkOverdue");
    chkOverdue->setToolTip("Titles out beyond their due date");
    grid->addWidget(chkOverdue, grid->rowCount(), 2, 1, 2);

    int row = grid->rowCount();
    grid->addWidget(new QLabel("from                            to", Frame1), row++, 2, 1, 2);
    const std::array<const char*, 2> rangeLabels{"Rating", "Number cd's"};
    const std::array<const char*, 2> rangeTags{"title.rating", "title.nrcds"};
    const std::array<int, 2> rangeMaximum{100, 12};
    for (int range = 0; range < 2; ++range, ++row) {
        grid->addWidget(new QLabel(rangeLabels[range], Frame1), row, 0);
        for (int side = 0; side < 2; ++side) {
            QComboBox*& list = ComboTwo[range * 2 + side];
            list = new QComboBox(Frame1);
            list->setObjectName(QString("ComboTwo_%1").arg(range * 2 + side));
            list->setProperty(kTagProperty, rangeTags[range]);
            for (int value = 0; value <= rangeMaximum[range]; ++value)
                list->addItem(QString::number(value));
            list->installEventFilter(this);
            grid->addWidget(list, row, 2 + side);
        }
    }

    grid->addWidget(new QLabel("Where to search for cd-titles", Frame1), row++, 0, 1, 4);
    const std::array<const char*, 3> scopes{"Current view", "Current platform",
                                            "All platforms (pc,dvd,vcd,etc)"};
    for (int index = 0; index < static_cast<int>(Option1.size()); ++index) {
        Option1[index] = new QRadioButton(scopes[index], Frame1);
        Option1[index]->setObjectName(QString("Option1_%1").arg(index));
        grid->addWidget(Option1[index], row++, 0, 1, 4);
    }
    Option1[0]->setChecked(true);

    cmdSearch->setObjectName("cmdSearch");
    cmdCancel->setObjectName("cmdCancel");
    connect(cmdSearch, &QPushButton::clicked, this, &frmFind::cmdSearch_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmFind::cmdCancel_Click);
    auto* buttons = new QHBoxLayout();
    buttons->addStretch();
    buttons->addWidget(cmdSearch);
    buttons->addWidget(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Frame1);
    layout->addLayout(buttons);
}

void frmFind::Form_Load() {
    FillMediatypes();
    Frame1->repaint();
    ComboTwo[0]->setCurrentIndex(0);
    ComboTwo[1]->setCurrentIndex(ComboTwo[1]->count() - 1);
    ComboTwo[2]->setCurrentIndex(0);
    ComboTwo[3]->setCurrentIndex(ComboTwo[3]->count() - 1);
}

// Refilling must not count as the user's change of the text, or the typed text would be lost.
void frmFind::FillMediatypes() {
    const QSignalBlocker blocker(cmbMediatype);
    cmbMediatype->clear();
    std::unique_ptr<Recordset> mediatypes;
    GetViewSQL("mediatype", true, mediatypes, 0, 0, QString());
    for (; mediatypes && !mediatypes->IsEOF(); mediatypes->MoveNext())
        cmbMediatype->addItem(NzText((*mediatypes)["nmmediatype"]), (*mediatypes)["idmediatype"]);
    cmbMediatype->setCurrentIndex(-1);
    cmbMediatype->clearEditText();
}

void frmFind::Form_Activate() {
    FillMediatypes();
    if (!SavedMediatypeText.isEmpty()) cmbMediatype->setEditText(SavedMediatypeText);

    Frame1->repaint();
    DoEvents();
    Text1[0]->setFocus();

    const bool searchNodeSelected = SelectedFolderKey() == "search";
    if (searchNodeSelected) Option1[2]->setChecked(true);
    Option1[0]->setEnabled(!searchNodeSelected);
    Option1[1]->setEnabled(!searchNodeSelected);
}

void frmFind::cmdSearch_Click() {
    gViewSQL = kBaseStatement;
    bool searchNodeChosen = false;

    const QString key = SelectedFolderKey();
    const QString parentKey = ParentFolderKey(key);
    const QString grandparentKey = ParentFolderKey(parentKey);

    if (key == loans::kLentOutKey && !Option1[2]->isChecked()) {
        gViewSQL += loans::LentOutClause();
    } else if (Option1[0]->isChecked()) {
        if (key == "root") {
        } else if (parentKey != "root" && grandparentKey == "root") {
            gViewSQL = kPlatformStatement + parentKey.mid(3) +
                       " and title.idtype = " + key.mid(parentKey.length() + 3);
        } else if (parentKey == "root" && key == "search") {
            searchNodeChosen = true;
        } else if (parentKey == "root") {
            gViewSQL = kPlatformStatement + key.mid(3);
        }
    } else if (Option1[1]->isChecked()) {
        if (key == "root") {
            const int answer = MsgBox(
                "You selected to search one category, but you have more than one in your view." +
                    vbCr + "Do you want to search all categories instead?",
                vbYesNoCancel | vbQuestion, "Confirm");
            if (answer != vbYes) return;
        } else if (key == "search") {
            searchNodeChosen = true;
        } else if (!key.isEmpty()) {
            gViewSQL = kPlatformStatement + (parentKey == "root" ? key : parentKey).mid(3);
        }
    }

    if (searchNodeChosen) {
        MsgBox(
            "You selected to search the search-category, which is not possible. Please select to "
            "search all categories or select a different category in the main window.",
            vbCritical, "Unable to search the search-category");
        return;
    }

    for (const QLineEdit* box : Text1) {
        if (box->text().isEmpty()) continue;
        if (Tag(box) == kTrackNameTag)
            gViewSQL +=
                " and title.idplatform = 1 and title.idcd in (select idcd from tracks where "
                "TrackName like '*" +
                box->text() + "*')";
        else
            gViewSQL += " and " + Tag(box) + " like '*" + box->text() + "*'";
    }
    if (!cmbMediatype->currentText().isEmpty())
        gViewSQL += " and " + Tag(cmbMediatype) + " like '*" + cmbMediatype->currentText() + "*'";
    if (!txtBarcode->text().isEmpty())
        gViewSQL += " and title.idcd in (select idcd from titlerelease where barcode like '*" +
                    txtBarcode->text() + "*')";

    if (!txtLentTo->text().isEmpty()) gViewSQL += loans::LentToClause(txtLentTo->text());
    if (chkOverdue->isChecked()) gViewSQL += loans::OverdueClause(QDate::currentDate());

    AddRange(0, 1);
    AddRange(2, 3);

    gSearchSQL = gViewSQL;
    MainWindow* main = TheMainWindow();
    main->ForceSelectNode(main->NodeCount());
}

void frmFind::AddRange(int first, int second) {
    const bool inOrder = ComboTwo[first]->currentIndex() <= ComboTwo[second]->currentIndex();
    const QComboBox* lower = ComboTwo[inOrder ? first : second];
    const QComboBox* upper = ComboTwo[inOrder ? second : first];
    gViewSQL += " and " + Tag(lower) + " >= " + lower->currentText() + " and " + Tag(upper) +
                " <= " + upper->currentText();
}

void frmFind::cmdCancel_Click() {
    close();
}

bool frmFind::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && MsgBoxIsOpen()) {
        deactivatedByOwnBox_ = true;
    } else if (event->type() == QEvent::WindowActivate) {
        // Qt is still walking its list of windows to tell each of the change, and the handler
        // lets events through, which may delete one of them under that walk: it runs after.
        if (!deactivatedByOwnBox_ && !activationQueued_) {
            activationQueued_ = true;
            QMetaObject::invokeMethod(
                this,
                [this] {
                    activationQueued_ = false;
                    // A window closed meanwhile is on its way out: its activation would let
                    // events through and with them its own deletion.
                    if (isVisible()) Form_Activate();
                },
                Qt::QueuedConnection);
        }
        deactivatedByOwnBox_ = false;
    }
    return QWidget::event(event);
}

bool frmFind::eventFilter(QObject* watched, QEvent* event) {
    const bool isTextBox =
        std::find(Text1.begin(), Text1.end(), watched) != Text1.end() || watched == txtBarcode;
    if (isTextBox && event->type() == QEvent::FocusIn) {
        QTimer::singleShot(0, static_cast<QLineEdit*>(watched), &QLineEdit::selectAll);
    } else if (isTextBox && event->type() == QEvent::KeyRelease) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool sameControl = keyupguard::CameHere(watched, key);
        if (sameControl && IsEnter(key)) {
            cmdSearch_Click();
            return true;
        }
        if (sameControl && key->key() == Qt::Key_Escape) {
            cmdCancel_Click();
            return true;
        }
    } else if (event->type() == QEvent::KeyPress &&
               std::find(ComboTwo.begin(), ComboTwo.end(), watched) != ComboTwo.end()) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (IsEnter(key)) {
            cmdSearch_Click();
            return true;
        }
        if (key->key() == Qt::Key_Escape) {
            cmdCancel_Click();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

// Closing moves the window out of sight at once; the object goes with it, and the next search
// opens a new one.
void frmFind::closeEvent(QCloseEvent* event) {
    if (!UnloadMayRunNow(this, [this] { close(); })) {
        event->ignore();
        return;
    }
    RemoveOpenWindow(this);
    if (gFindForm == this) gFindForm = nullptr;
    if (windowState() == Qt::WindowNoState) move(-width(), -height());
    event->accept();
}

void ShowFindWindow(QWidget* owner) {
    if (!gFindForm) {
        gFindForm = new frmFind(owner);
        // The design gives the window no place: it opens over the middle of its owner, within
        // the owner's screen.
        if (owner) {
            gFindForm->adjustSize();
            QRect place(QPoint(), gFindForm->size());
            place.moveCenter(owner->frameGeometry().center());
            const QRect screen = owner->screen()->availableGeometry();
            place.moveLeft(std::clamp(place.left(), screen.left(),
                                      std::max(screen.left(), screen.right() - place.width())));
            place.moveTop(std::clamp(place.top(), screen.top(),
                                     std::max(screen.top(), screen.bottom() - place.height())));
            gFindForm->move(place.topLeft());
        }
    }
    gFindForm->show();
    gFindForm->raise();
    gFindForm->activateWindow();
}
