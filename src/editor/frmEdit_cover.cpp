// The title editor's shelf fields: the barcode box, the front cover (its box, the Cover
// button's menu, a drop, the fetch after Use) and what of them the save writes.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QLineEdit>
#include <QMenu>
#include <QVBoxLayout>

#include "app/mGlobals.h"
#include "disc/coverartarchive.h"
#include "disc/coverimage.h"
#include "disc/discmatch.h"
#include "disc/lookupsettings.h"
#include "editor/coverbox.h"
#include "editor/frmEdit.h"
#include "toolkit/controls/ctlGoldButton.h"
#include "toolkit/vb/GCommonDialog.h"
#include "toolkit/vb/cCommonDialog.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const QString kCoverTitle = "Cover";
const QString kNoCover = "No cover";

}  // namespace

QLayout* frmEdit::BuildShelfWidgets() {
    txtBarcode = new QLineEdit(this);
    txtBarcode->setObjectName("txtBarcode");
    txtBarcode->setToolTip(
        "The barcode on the case (UPC or EAN): scan or type it, and press Enter to look it up");
    txtBarcode->setMaxLength(32);
    txtBarcode->installEventFilter(this);
    cmdBarcode = new ctlGoldButton(this, "cmdBarcode");
    cmdBarcode->setObjectName("cmdBarcode");
    cmdBarcode->setCaption("Barcode");
    cmdBarcode->setToolTip(
        "Look the barcode up in MusicBrainz, and fill the title, artist and tracks from the "
        "release you choose");
    cmdBarcode->setMinimumSize(90, 24);
    cmdBarcode->setEnabled(false);
    connect(cmdBarcode, &ctlGoldButton::Click, this, &frmEdit::cmdBarcode_Click);
    chkAddNext = new QCheckBox("Add next by barcode", this);
    chkAddNext->setObjectName("chkAddNext");
    chkAddNext->setToolTip(
        "After Update, open a new title on the same platform with the barcode box waiting");
    chkAddNext->setFocusPolicy(Qt::NoFocus);
    connect(Combo1[0], &QComboBox::currentIndexChanged, this,
            [this] { cmdBarcode->setEnabled(Combo1[0]->currentIndex() >= 0 && ItemData(0) == 1); });

    picCover = new CoverBox(this);
    picCover->setObjectName("picCover");
    picCover->setToolTip("The front cover; drop an image file or a browser's image here");
    connect(picCover, &CoverBox::Dropped, this,
            [this](const QByteArray& bytes, const QString& source) {
                TakeCoverImage(bytes, QString(), source);
            });
    connect(picCover, &CoverBox::DropRefused, this,
            [](const QString& problem) { MsgBox(problem, vbExclamation, kCoverTitle); });
    cmdCover = new ctlGoldButton(this, "cmdCover");
    cmdCover->setObjectName("cmdCover");
    cmdCover->setCaption("Cover");
    cmdCover->setToolTip("Set or remove the front cover");
    cmdCover->setMinimumSize(90, 24);
    connect(cmdCover, &ctlGoldButton::Click, this, &frmEdit::cmdCover_Click);
    mnuCover = new QMenu(this);
    mnuCover->setObjectName("mnuCover");
    mnuCoverArchive = mnuCover->addAction("From the Cover Art Archive");
    mnuCoverFile = mnuCover->addAction("From a file...");
    mnuCoverRemove = mnuCover->addAction("Remove");
    connect(mnuCoverArchive, &QAction::triggered, this, &frmEdit::CoverFromArchive);
    connect(mnuCoverFile, &QAction::triggered, this, &frmEdit::CoverFromFile);
    connect(mnuCoverRemove, &QAction::triggered, this, &frmEdit::CoverRemove);
    ShowCover();

    auto* column = new QVBoxLayout;
    column->addWidget(picCover);
    column->addWidget(cmdCover, 0, Qt::AlignHCenter);
    column->addStretch();
    return column;
}

void frmEdit::LoadShelfFields() {
    if (gModifyingTitle) {
        try {
            release_ = ReadTitleRelease(gCurrentTitleId);
            cover_ = ReadCover(gCurrentTitleId);
        } catch (const VbError&) {
            // A catalogue without the shelf's tables shows none of their fields.
        }
        txtBarcode->setText(release_.barcode);
        lookedUpBarcode_ = release_.barcode;
    }
    ShowCover();
    PrepareNextByBarcode();
}

void frmEdit::TakeRelease(const DiscMatch& match) {
    if (match.source != "MusicBrainz" || match.identifier.isEmpty()) return;
    release_.mbid = match.identifier;
    FetchCover(true);
}

bool frmEdit::FetchingCover() const {
    return picCover->Busy();
}

void frmEdit::cmdCover_Click() {
    IgnoreKeyUp = true;
    mnuCoverArchive->setEnabled(!release_.mbid.isEmpty() && !FetchingCover());
    mnuCoverRemove->setEnabled(!cover_.IsEmpty());
    mnuCover->popup(cmdCover->mapToGlobal(QPoint(0, cmdCover->height())));
}

void frmEdit::CoverFromArchive() {
    if (release_.mbid.isEmpty()) return;
    FetchCover(false);
}

void frmEdit::FetchCover(bool quiet) {
    const LookupSettings settings = ReadLookupSettings();
    if (!coverArchive_) coverArchive_ = new CoverArtArchive(settings.coverArtServer, this);
    coverArchive_->Cancel();
    coverArchive_->disconnect(this);
    connect(coverArchive_, &CoverArtArchive::Answered, this,
            [this, quiet](const CoverAnswer& answer) { TakeCoverAnswer(answer, quiet); });
    picCover->SetBusy(true);
    coverArchive_->Fetch(release_.mbid, settings.largeCovers);
}

void frmEdit::TakeCoverAnswer(const CoverAnswer& answer, bool quiet) {
    picCover->SetBusy(false);
    // A Use of another release meanwhile asks for its own cover.
    if (answer.mbid != release_.mbid) return;
    switch (answer.outcome) {
        case CoverAnswer::Outcome::Fetched:
            TakeCoverImage(answer.image, answer.mbid, answer.url);
            break;
        case CoverAnswer::Outcome::NoCover:
            if (quiet)
                picCover->setToolTip("The Cover Art Archive has no front cover for this release.");
            else
                MsgBox("The Cover Art Archive has no front cover for this release.", vbInformation,
                       kCoverTitle);
            break;
        case CoverAnswer::Outcome::Failed:
            if (quiet)
                picCover->setToolTip("The cover could not be fetched.\n" + answer.problem);
            else
                MsgBox("The cover could not be fetched.\n\n" + answer.problem, vbExclamation,
                       kCoverTitle);
            break;
    }
}

void frmEdit::CoverFromFile() {
    IgnoreKeyUp = true;
    cCommonDialog dialog;
    dialog.hWnd = this;
    dialog.DialogTitle = "Choose the front cover";
    dialog.flags = cdlOFNFileMustExist | cdlOFNHideReadOnly;
    dialog.Filter =
        "images (*.jpg;*.jpeg;*.png;*.webp;*.gif)|*.jpg;*.jpeg;*.png;*.webp;*.gif|all files "
        "(*.*)|*.*";
    dialog.ShowOpen();
    if (dialog.Filename.isEmpty()) return;
    QFile file(dialog.Filename);
    if (file.size() > CoverBox::kMaxDroppedBytes) {
        MsgBox(
            "The file is larger than " + QString::number(CoverBox::kMaxDroppedBytes >> 20) + " MB.",
            vbExclamation, kCoverTitle);
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        MsgBox("The file cannot be read: " + file.errorString() + ".", vbExclamation, kCoverTitle);
        return;
    }
    TakeCoverImage(file.readAll(), QString(), QFileInfo(file).fileName());
}

void frmEdit::CoverRemove() {
    if (coverArchive_) coverArchive_->Cancel();
    picCover->SetBusy(false);
    cover_ = TitleCover();
    coverChanged_ = true;
    ShowCover();
}

bool frmEdit::TakeCoverImage(const QByteArray& bytes, const QString& mbid, const QString& source) {
    PreparedCover prepared;
    QString problem;
    if (!PrepareCover(bytes, prepared, problem)) {
        MsgBox(problem, vbExclamation, kCoverTitle);
        return false;
    }
    cover_.image = prepared.image;
    cover_.thumbnail = prepared.thumbnail;
    cover_.mbid = mbid;
    cover_.source = source;
    cover_.added = QDate::currentDate().toString(Qt::ISODate);
    coverChanged_ = true;
    ShowCover();
    return true;
}

void frmEdit::ShowCover() {
    QImage image;
    if (!cover_.IsEmpty()) image.loadFromData(cover_.image);
    picCover->SetCover(image, kNoCover);
    picCover->setToolTip(cover_.IsEmpty()
                             ? "The front cover; drop an image file or a browser's image here"
                             : "From " + cover_.source);
}
