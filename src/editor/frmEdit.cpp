#include "editor/frmEdit.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/mGlobals.h"
#include "app/mainwindow.h"
#include "editor/frmTracksListing.h"
#include "loans/loanhistorypanel.h"
#include "lookups/lookupoperations.h"
#include "store/fieldsizes.h"
#include "toolkit/controls/ctlGoldButton.h"
#include "toolkit/vb/keyupguard.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"
#include "toolkit/vb/vbstrings.h"

frmEdit* gEditForm = nullptr;

namespace {

// The gold buttons' pictures: a plus to add, a pen to rename, a cross to delete.
QPixmap GoldPicture(int index) {
    QPixmap picture(12, 12);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x9A, 0x6B, 0x00), 2, Qt::SolidLine, Qt::RoundCap));
    switch (index) {
        case 0:
            painter.drawLine(6, 2, 6, 10);
            painter.drawLine(2, 6, 10, 6);
            break;
        case 1:
            painter.drawLine(2, 10, 10, 2);
            painter.drawLine(2, 10, 5, 10);
            break;
        default:
            painter.drawLine(3, 3, 9, 9);
            painter.drawLine(9, 3, 3, 9);
            break;
    }
    return picture;
}

bool IsEnter(const QKeyEvent* event) {
    return event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
}

}  // namespace

frmEdit::frmEdit(QWidget* parent) : QDialog(parent) {
    keyupguard::Install();
    BuildWindow();
    AddOpenWindow(this);
}

frmEdit::~frmEdit() {
    if (gEditForm == this) gEditForm = nullptr;
}

std::array<ctlGoldButton*, 3> frmEdit::BuildGoldButtons(const QString& name,
                                                        const std::array<QString, 3>& tooltips,
                                                        void (frmEdit::*handler)(int)) {
    std::array<ctlGoldButton*, 3> buttons{};
    for (int index = 0; index < 3; ++index) {
        auto* button = new ctlGoldButton(Frame1, QString("%1(%2)").arg(name).arg(index));
        button->setObjectName(QString("%1_%2").arg(name).arg(index));
        button->setCaption(QString());
        button->setPicture(GoldPicture(index));
        button->setToolTip(tooltips[index]);
        button->setFixedSize(22, 22);
        connect(button, &ctlGoldButton::Click, this,
                [this, handler, index] { (this->*handler)(index); });
        buttons[index] = button;
    }
    return buttons;
}

void frmEdit::BuildWindow() {
    setObjectName("frmEdit");
    setWindowTitle("Add / Edit item");
    setModal(true);

    txtTitle = new QLineEdit(this);
    txtTitle->setObjectName("txtTitle");
    txtTitle->setToolTip("Enter a title for the cd");
    Text2 = new QLineEdit(this);
    Text2->setObjectName("Text2");
    Text2->setToolTip("Enter a label that you used on the jewelcase for identification");
    Memo = new QPlainTextEdit(this);
    Memo->setObjectName("Memo");
    Memo->setToolTip("Enter a memo regarding this cd-title");
    Memo->setTabChangesFocus(true);
    lblCreated = new QLabel(this);
    lblCreated->setObjectName("lblCreated");
    lblCreated->setToolTip("The date that the information was added to your database");
    lblModified = new QLabel(this);
    lblModified->setObjectName("lblModified");
    lblModified->setToolTip("The date that the cd-title information was last changed");

    cmdTracks = new QPushButton("Enter audio tracks here...", this);
    cmdTracks->setObjectName("cmdTracks");
    cmdTracks->setToolTip("Click here to enter audiotracks (music-cd's) or your listing (pc-cd's)");
    cmdTracks->setEnabled(false);
    cmdOK = new QPushButton("&Update", this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setToolTip(
        "When you're done making changes, click here to update or add the information to your "
        "database");
    cmdCancel = new QPushButton("Cancel", this);
    cmdCancel->setObjectName("cmdCancel");
    cmdCancel->setToolTip("Click here if you want to discard any changes");
    for (QPushButton* button : {cmdTracks, cmdOK, cmdCancel}) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }
    connect(cmdTracks, &QPushButton::clicked, this, &frmEdit::cmdTracks_Click);
    cmdReadDisc = new ctlGoldButton(this, "cmdReadDisc");
    cmdReadDisc->setObjectName("cmdReadDisc");
    cmdReadDisc->setCaption("Read disc");
    cmdReadDisc->setToolTip(
        "Read the tracks and identity of an audio cd, or the listing of a data disc, from the "
        "drive or an image file");
    cmdReadDisc->setMinimumSize(90, 24);
    cmdReadDisc->setEnabled(false);
    connect(cmdReadDisc, &ctlGoldButton::Click, this, &frmEdit::cmdReadDisc_Click);
    cmdLookup = new ctlGoldButton(this, "cmdLookup");
    cmdLookup->setObjectName("cmdLookup");
    cmdLookup->setCaption("Look up");
    cmdLookup->setToolTip(
        "Look the disc that was read up in MusicBrainz and gnudb, and fill its title, artist "
        "and tracks from the match you choose");
    cmdLookup->setMinimumSize(90, 24);
    cmdLookup->setEnabled(false);
    connect(cmdLookup, &ctlGoldButton::Click, this, &frmEdit::cmdLookup_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmEdit::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmEdit::cmdCancel_Click);

    Frame1 = new QFrame(this);
    Frame1->setObjectName("Frame1");
    Frame1->setFrameShape(QFrame::StyledPanel);
    const std::array<QString, 7> listTips{
        "This list contains all platforms that are available (e.g., music, dvd, playstation, "
        "etc.)",
        "This list contains all artists / vendors that belong to the selected platform (e.g., "
        "Joan Merrit)",
        "This list contains all types that belong to the selected platform (e.g., normal audio "
        "cd's or mp3-converted)",
        "This list contains all specific items that belong to the selected type (e.g., jazz, "
        "blues, etc.)",
        "This list contains all mediatypes that are used for storage (e.g., dvd, cd, etc.)",
        "A lookup list that contains the different ratings for your cd-title",
        "A lookup list that contains the number of cd's for your cd-title"};
    for (int index = 0; index < 7; ++index) {
        auto* combo = new QComboBox(Frame1);
        combo->setObjectName(QString("Combo1_%1").arg(index));
        combo->setToolTip(listTips[index]);
        combo->setEnabled(index == 0 || index >= 4);
        combo->setMinimumWidth(220);
        combo->installEventFilter(this);
        connect(combo, &QComboBox::currentIndexChanged, this,
                [this, index] { Combo1_Click(index); });
        Combo1[index] = combo;
    }
    // The rating list runs from 100 down to 0; the row of 18 has always read "28".
    for (int row = 0; row <= 100; ++row) {
        const int rating = 100 - row;
        Combo1[5]->addItem(rating == 18 ? QString("28") : QString::number(rating), rating);
    }
    for (int count = 1; count <= 12; ++count) Combo1[6]->addItem(QString::number(count), count);
    Combo1[5]->setCurrentIndex(-1);
    Combo1[6]->setCurrentIndex(-1);

    cmdPlatform =
        BuildGoldButtons("cmdPlatform",
                         {"Add a new platform", "Change the name of the selected platform",
                          "Delete the selected platform"},
                         &frmEdit::cmdPlatform_Click);
    cmdVendor = BuildGoldButtons(
        "cmdVendor",
        {"Add a vendor / artist for the selected platform",
         "Change the name of the selected vendor / artist", "Delete the selected vendor / artist"},
        &frmEdit::cmdVendor_Click);
    cmdType = BuildGoldButtons("cmdType",
                               {"Add a new type to the selected platform",
                                "Change the name of the selected type", "Delete the selected type"},
                               &frmEdit::cmdType_Click);
    cmdSpecific = BuildGoldButtons(
        "cmdSpecific",
        {"Add a new specific item to the selected type",
         "Change the name of the selected specific item", "Delete the selected specific item"},
        &frmEdit::cmdSpecific_Click);
    cmdMediatype =
        BuildGoldButtons("cmdMediatype",
                         {"Add a new mediatype", "Change the name of the selected mediatype",
                          "Delete the selected mediatype"},
                         &frmEdit::cmdMediatype_Click);

    for (QObject* field : std::initializer_list<QObject*>{txtTitle, Text2, Memo})
        field->installEventFilter(this);
    QLayout* coverColumn = BuildShelfWidgets();

    auto caption = [this](const QString& text, const QString& tip) {
        auto* label = new QLabel(text, this);
        label->setToolTip(tip);
        return label;
    };

    auto* lists = new QGridLayout(Frame1);
    const std::array<QString, 7> listCaptions{"Platform",  "by",     "Type",   "Specific item",
                                              "Mediatype", "Rating", "Nr cd's"};
    const std::array<QString, 7> captionTips{
        "Name for a main category",
        "Artist, vendor or publisher that belongs to the selected platform",
        "A sub-category for the selected platform",
        "Provides more detailed information about the available sub-items that go with the "
        "selected type",
        "Types of storage that are used in your cd-collection",
        "Give your a cd-title a rating",
        "Number of cd's that belong to the cd-title"};
    const std::array<std::array<ctlGoldButton*, 3>*, 5> goldRows{&cmdPlatform, &cmdVendor, &cmdType,
                                                                 &cmdSpecific, &cmdMediatype};
    for (int index = 0; index < 7; ++index) {
        lists->addWidget(caption(listCaptions[index], captionTips[index]), index, 0);
        lists->addWidget(Combo1[index], index, 1);
        if (index < 5) {
            for (int button = 0; button < 3; ++button)
                lists->addWidget((*goldRows[index])[button], index, 2 + button);
        }
    }

    auto* fields = new QGridLayout;
    // The longest caption, "Jewelcase label", must not run into its field.
    fields->setHorizontalSpacing(fontMetrics().height());
    fields->addWidget(caption("Title", "The title for the cd"), 0, 0);
    fields->addWidget(txtTitle, 0, 1);
    fields->addWidget(
        caption("Jewelcase label", "A label that you used on the jewelcase for identification"), 1,
        0);
    fields->addWidget(Text2, 1, 1);
    fields->addWidget(caption("Barcode", "The barcode on the case"), 2, 0);
    fields->addWidget(txtBarcode, 2, 1);
    fields->addWidget(chkAddNext, 2, 2);

    auto* dates = new QHBoxLayout;
    dates->addWidget(new QLabel("Created: ", this));
    dates->addWidget(lblCreated);
    dates->addSpacing(16);
    dates->addWidget(new QLabel("Last modified: ", this));
    dates->addWidget(lblModified);
    dates->addStretch();

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdTracks);
    buttons->addWidget(cmdReadDisc);
    buttons->addWidget(cmdLookup);
    buttons->addWidget(cmdBarcode);
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    auto* listsAndCover = new QHBoxLayout;
    listsAndCover->addWidget(Frame1, 1);
    listsAndCover->addLayout(coverColumn);
    layout->addLayout(listsAndCover);
    layout->addWidget(caption("Memo", "A note regarding your cd-title"));
    layout->addWidget(Memo);
    fraLoans = new LoanHistoryPanel(this);
    connect(fraLoans, &LoanHistoryPanel::LoansChanged, this, [] {
        if (MainWindow* main = TheMainWindow()) main->LoansChanged();
    });
    layout->addWidget(fraLoans);
    layout->addLayout(dates);
    layout->addLayout(buttons);
}

void frmEdit::SetMousePointer(int pointer) {
    mousePointer_ = pointer;
    if (pointer == vbHourglass)
        setCursor(Qt::WaitCursor);
    else
        unsetCursor();
}

long frmEdit::Val(const QString& text) {
    qsizetype digits = 0;
    while (digits < text.size() && text.at(digits).isDigit()) ++digits;
    return text.left(digits).toLong();
}

long frmEdit::ItemData(int index) const {
    return Combo1[index]->currentData().toLongLong();
}

bool frmEdit::SelectItemData(int index, const QVariant& id) {
    if (id.isNull()) return false;
    QComboBox* combo = Combo1[index];
    for (int row = 0; row < combo->count(); ++row) {
        if (combo->itemData(row).toLongLong() == id.toLongLong()) {
            combo->setCurrentIndex(row);
            return true;
        }
    }
    return false;
}

void frmEdit::Combo1_Click(int index) {
    QComboBox* combo = Combo1[index];
    if (combo->currentIndex() < 0) return;
    const QString id = QString::number(ItemData(index));
    if (index == 0) {
        cmdTracks->setEnabled(false);
        cmdReadDisc->setEnabled(true);
        if (ItemData(0) == 1) {
            cmdTracks->setEnabled(true);
            cmdTracks->setText(TracksCaption());
        } else if (ItemData(0) == 3) {
            cmdTracks->setEnabled(true);
            cmdTracks->setText(ListingCaption());
        }
        Combo1[1]->setEnabled(true);
        FillList(1, "select * from vendor where idplatform = " + id + " order by nmvendor",
                 "nmvendor", "idvendor");
        Combo1[2]->setEnabled(true);
        FillList(2, "select * from type where idplatform = " + id + " order by nmtype", "nmtype",
                 "idtype");
        Combo1[3]->clear();
        Combo1[3]->setEnabled(false);
        EnableLookup();
    } else if (index == 2) {
        Combo1[3]->setEnabled(true);
        FillList(3, "select * from specific where idtype = " + id + " order by nmspecific",
                 "nmspecific", "idspecific");
    } else {
        return;
    }
    Frame1->update();
}

void frmEdit::cmdPlatform_Click(int index) {
    GoldButtonClick(0, ModifyPlatform, index);
}
void frmEdit::cmdVendor_Click(int index) {
    GoldButtonClick(1, ModifyVendor, index);
}
void frmEdit::cmdType_Click(int index) {
    GoldButtonClick(2, ModifyType, index);
}
void frmEdit::cmdSpecific_Click(int index) {
    GoldButtonClick(3, ModifySpecific, index);
}
void frmEdit::cmdMediatype_Click(int index) {
    GoldButtonClick(4, ModifyMediatype, index);
}

void frmEdit::GoldButtonClick(int list, LookupOperation operation, int index) {
    // The key that closes the lookup's dialogue comes up in the field that gets the focus back.
    IgnoreKeyUp = true;
    QComboBox* combo = Combo1[list];
    QString name;
    if (index > 0 && list == 1 && combo->currentIndex() >= 0 &&
        ItemData(1) == kArtistNotYetStored) {
        ChangeUnstoredArtist(index == 2);
        return;
    }
    switch (index) {
        case 0: {
            // Vendors and types hang from the platform, specific items from the type; without
            // a parent selected there is nothing to add to.
            const int parentList = (list == 1 || list == 2) ? 0 : (list == 3 ? 2 : -1);
            if (parentList >= 0 && Combo1[parentList]->currentIndex() < 0) return;
            AddLookupRow(list, operation, name);
            break;
        }
        case 1: {
            const int row = combo->currentIndex();
            if (row < 0) return;
            name = combo->itemText(row);
            const QString result = operation(kLookupRename, ItemData(list), name);
            if (!result.isEmpty()) combo->setItemText(row, LookupResultName(result));
            break;
        }
        case 2: {
            const int row = combo->currentIndex();
            if (row < 0) return;
            name = combo->itemText(row);
            const QString result = operation(kLookupDelete, ItemData(list), name);
            if (result.isEmpty()) return;
            const QSignalBlocker blocker(combo);
            combo->removeItem(row);
            combo->setCurrentIndex(-1);
            break;
        }
        default:
            break;
    }
}

void frmEdit::AddLookupRow(int list, LookupOperation operation, QString name) {
    QComboBox* combo = Combo1[list];
    const int parentList = (list == 1 || list == 2) ? 0 : (list == 3 ? 2 : -1);
    const long parentId = parentList >= 0 ? ItemData(parentList) : 0;
    const QString result = operation(kLookupAdd, parentId, name);
    if (result.isEmpty()) return;
    const int previous = combo->currentIndex();
    {
        const QSignalBlocker blocker(combo);
        combo->addItem(LookupResultName(result), static_cast<qlonglong>(LookupResultId(result)));
        combo->setCurrentIndex(previous);
    }
    combo->setCurrentIndex(combo->count() - 1);
}

void frmEdit::ChangeUnstoredArtist(bool remove) {
    QComboBox* vendors = Combo1[1];
    const int row = vendors->currentIndex();
    if (remove) {
        const QSignalBlocker blocker(vendors);
        vendors->removeItem(row);
        vendors->setCurrentIndex(-1);
        return;
    }
    const QString name = Trim(InputBox("Please enter a new name for this vendor:" + vbCrLf +
                                           "(Max. length = " + QString::number(gLenVendor) + ")",
                                       "Rename vendor", vendors->itemText(row)));
    if (name.length() > gLenVendor) {
        MsgBox("Name is too long! Maximum length is " + QString::number(gLenVendor) + ".",
               vbCritical);
        return;
    }
    if (!name.isEmpty()) vendors->setItemText(row, name);
}

bool frmEdit::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return QDialog::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool enter = IsEnter(key) && watched != Memo;
    const bool escape = key->key() == Qt::Key_Escape;
    if (event->type() == QEvent::KeyPress) {
        IgnoreKeyUp = false;
        // The commands run at key-up; the key-down must not reach the dialog's own handling.
        return enter || escape;
    }
    // A key-up whose key-down went to an open list of this window, or to a box, is not ours.
    if (IgnoreKeyUp || !(enter || escape) || !keyupguard::CameHere(watched, key)) return false;
    // A scanner types the barcode and Enter: new digits are looked up, and the next Enter
    // saves.
    if (enter && watched == txtBarcode && !txtBarcode->text().trimmed().isEmpty() &&
        txtBarcode->text().trimmed() != lookedUpBarcode_)
        cmdBarcode_Click();
    else if (enter)
        cmdOK_Click();
    else
        Unload();
    return true;
}

void frmEdit::keyPressEvent(QKeyEvent* event) {
    // Enter and Escape are the fields' keys, at key-up; the dialog has no default button.
    if (IsEnter(event) || event->key() == Qt::Key_Escape) return;
    QDialog::keyPressEvent(event);
}

void frmEdit::cmdTracks_Click() {
    TracksEdited = true;
    if (!tracksListing_) {
        tracksListing_ = new frmTracksListing(this);
        tracksListing_->Form_Load();
    }
    RunModal(tracksListing_);
}

void frmEdit::cmdCancel_Click() {
    Unload();
}

void frmEdit::closeEvent(QCloseEvent* event) {
    Unload();
    event->accept();
}

void frmEdit::reject() {
    Unload();
}

void frmEdit::Unload() {
    if (unloaded_ || !UnloadMayRunNow(this, [this] { Unload(); })) return;
    unloaded_ = true;
    // The refresh below pumps events; nothing else closes underneath it.
    const BusyScope unloading;
    RemoveOpenWindow(this);
    if (tracksListing_) {
        tracksListing_->Unload();
        tracksListing_ = nullptr;
    }
    if (windowState() == Qt::WindowNoState) move(-width(), -height());
    QDialog::done(QDialog::Rejected);
    if (gEditForm == this) gEditForm = nullptr;
    deleteLater();
    // A main window on its way out (the program was told to end) has no list to refresh.
    MainWindow* main = TheMainWindow();
    if (!main) return;
    main->RefreshIfDirty();
    main->SelectTitleInList(gCurrentTitleId);
}

void ShowEditForm(QWidget* owner) {
    do {
        gEditForm = new frmEdit(owner);
        gEditForm->Form_Load();
        RunModal(gEditForm);
    } while (OpenNextByBarcode());
}
