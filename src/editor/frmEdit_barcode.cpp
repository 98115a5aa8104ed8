// Adding a disc by the barcode on its case: the look-up in MusicBrainz, and the run of editors
// that files a shelf (scan, check, Enter, scan the next).

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QScopeGuard>

#include "app/mGlobals.h"
#include "disc/barcodeanswer.h"
#include "disc/lookupsettings.h"
#include "editor/frmEdit.h"
#include "editor/frmLookup.h"
#include "store/catalogue.h"
#include "toolkit/controls/ctlGoldButton.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"

namespace {

const QString kBarcodeTitle = "Barcode";

// What the editor saved with "Add next by barcode" checked hands to the next one.
struct NextByBarcode {
    bool wanted = false;
    long savedTitle = 0;
    std::array<long, 5> lists{};
};

NextByBarcode& PendingNext() {
    static NextByBarcode next;
    return next;
}

}  // namespace

void frmEdit::cmdBarcode_Click() {
    IgnoreKeyUp = true;
    if (!cmdBarcode->isEnabled()) return;
    if (txtBarcode->text().trimmed().isEmpty()) {
        const QString typed =
            InputBox("Scan or type the barcode on the case (UPC or EAN):", kBarcodeTitle);
        if (typed.isEmpty()) return;
        txtBarcode->setText(typed);
    }
    const QString digits = BarcodeDigits(txtBarcode->text());
    if (digits.isEmpty()) {
        MsgBox("A barcode is made of digits; spaces and dashes may stand between them.",
               vbExclamation, kBarcodeTitle);
        txtBarcode->setFocus();
        return;
    }
    txtBarcode->setText(digits);
    lookedUpBarcode_ = digits;
    if (!BarcodeCheckDigitHolds(digits))
        MsgBox("The check digit of " + digits +
                   " is wrong: the barcode may be misread or misprinted. It is looked up as it "
                   "stands.",
               vbInformation, kBarcodeTitle);
    const BusyScope busy;
    frmLookup lookup(digits, ReadLookupSettings(), this);
    switch (lookup.Run()) {
        case frmLookup::Outcome::Chosen:
            TakeMatch(lookup.Chosen());
            txtTitle->setFocus();
            break;
        // Only a disc ID can meet a release without a track list; a barcode search lists it.
        case frmLookup::Outcome::WithoutTracks:
        case frmLookup::Outcome::NoMatch:
            MsgBox("MusicBrainz knows no release with the barcode " + digits + ".", vbInformation,
                   kBarcodeTitle);
            break;
        case frmLookup::Outcome::Failed:
            MsgBox("The barcode could not be looked up online.\n\n" + lookup.Problems().join("\n"),
                   vbExclamation, kBarcodeTitle);
            break;
        case frmLookup::Outcome::Cancelled:
            break;
    }
}

void frmEdit::PrepareNextByBarcode() {
    NextByBarcode& next = PendingNext();
    if (!next.wanted) return;
    next.wanted = false;
    // The platform fills the vendors and types, the type the specific items: in this order.
    const std::array<int, 4> order{0, 2, 3, 4};
    for (int list : order) SelectItemData(list, static_cast<qlonglong>(next.lists[list]));
    chkAddNext->setChecked(true);
    txtBarcode->setFocus();
}

void frmEdit::WriteShelfFields() {
    const QString typed = txtBarcode->text().trimmed();
    const QString digits = BarcodeDigits(typed);
    release_.barcode = digits.isEmpty() ? typed : digits;
    // A cover is megabytes: its write is a step of its own, where a cut can meet it.
    const QString operation = "Saving cover";
    const auto ended = qScopeGuard([&operation] { EndProgress(operation); });
    ReportProgress(operation, 1, 3);
    WriteTitleRelease(gCurrentTitleId, release_);
    ReportProgress(operation, 2, 3);
    if (coverChanged_) WriteCover(gCurrentTitleId, cover_);
    ReportProgress(operation, 3, 3);
    NextByBarcode& next = PendingNext();
    next.wanted = chkAddNext->isChecked();
    next.savedTitle = gCurrentTitleId;
    for (int list = 0; list < 5; ++list) next.lists[list] = ItemData(list);
}

bool OpenNextByBarcode() {
    const NextByBarcode& next = PendingNext();
    // A save that failed after the shelf's fields were written leaves no title behind.
    if (!next.wanted || !gDatabase ||
        gDatabase
            ->OpenRecordset("select idcd from title where idcd = " +
                            QString::number(next.savedTitle))
            ->IsEOF()) {
        PendingNext().wanted = false;
        return false;
    }
    gAddingTitle = true;
    gModifyingTitle = false;
    return true;
}
