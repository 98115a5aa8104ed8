// Reading a disc into the title editor. Everything is read and checked first; the form changes
// only when the reading succeeded, so a failed reading leaves nothing half-filled.

#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <algorithm>

#include "app/mGlobals.h"
#include "app/mainwindow.h"
#include "disc/audiodisc.h"
#include "disc/datadisc.h"
#include "disc/discidentity.h"
#include "editor/discsource.h"
#include "editor/frmEdit.h"
#include "editor/frmTracksListing.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const QString kReadDiscTitle = "Read disc";

}  // namespace

void frmEdit::cmdReadDisc_Click() {
    // The key that closes a box of the reading comes up in the field that gets the focus back.
    IgnoreKeyUp = true;
    if (Combo1[0]->currentIndex() < 0) return;
    try {
        if (ItemData(0) == 1)
            ReadAudioIntoForm();
        else
            ReadDataIntoForm();
    } catch (const VbError& error) {
        SetMousePointer(vbArrow);
        MsgBox(QString::number(error.Number) + ": " + error.Description, vbCritical);
    }
}

void frmEdit::ReadAudioIntoForm() {
    AudioDisc disc;
    if (!ReadAudioDiscFromUser(disc, kReadDiscTitle)) return;

    std::unique_ptr<Recordset> known = gDatabase->OpenRecordset(
        "select idcd, nmcd from title where TitleID = " + QString::number(disc.titleId),
        dbOpenSnapshot);
    if (!known->IsEOF()) {
        const long id = known->Fields("idcd").Value().toLongLong();
        if (gAddingTitle || id != gCurrentTitleId) {
            const QString name = NzText(known->Fields("nmcd").Value());
            if (MsgBox("This disc (" + DiscSectionName(disc.titleId) +
                           ") is already in the catalogue as \"" + name +
                           "\".\n\nOpen that title instead?",
                       vbYesNo + vbQuestion, kReadDiscTitle) == vbYes)
                OpenCataloguedTitle(id);
            return;
        }
    }

    QStringList tracks;
    for (int index = 0; index < disc.trackTitles.size(); ++index) {
        const QString& title = disc.trackTitles[index];
        tracks << (title.isEmpty() ? "Track " + QString::number(index + 1) : title);
    }
    if (!tracksListing_) {
        tracksListing_ = new frmTracksListing(this);
        tracksListing_->Form_Load();
    }
    tracksListing_->TakeReadText(tracks.join("\r\n"));
    TracksEdited = true;
    if (!disc.album.isEmpty()) txtTitle->setText(disc.album.left(gLenTitle));
    if (!disc.performer.isEmpty()) SelectOrAddVendor(disc.performer.left(gLenVendor));
    discRead_ = DiscRead::Audio;
    discTitleId_ = disc.titleId;
    discToc_ = disc.toc;
    EnableLookup();
    // Most discs carry no CD-Text; their names are most likely found online.
    const bool anyTrackTitle = std::any_of(disc.trackTitles.begin(), disc.trackTitles.end(),
                                           [](const QString& title) { return !title.isEmpty(); });
    if (disc.album.isEmpty() && disc.performer.isEmpty() && !anyTrackTitle &&
        MsgBox("The disc carries no CD-Text: no title, artist or track names.\n\nLook it up "
               "online in MusicBrainz and gnudb?",
               vbYesNo + vbQuestion, kReadDiscTitle) == vbYes)
        cmdLookup_Click();
}

void frmEdit::ReadDataIntoForm() {
    DataDisc disc;
    if (!ReadDataDiscFromUser(disc, kReadDiscTitle)) return;
    // The listing's own editor holds it where the platform has one; elsewhere the form does.
    if (cmdTracks->isEnabled() && cmdTracks->text() == ListingCaption()) {
        if (!tracksListing_) {
            tracksListing_ = new frmTracksListing(this);
            tracksListing_->Form_Load();
        }
        tracksListing_->TakeReadText(disc.listing);
        TracksEdited = true;
    }
    discRead_ = DiscRead::Data;
    EnableLookup();
    discListing_ = disc.listing;
    discCapacity_ = disc.capacity;
    discFreespace_ = disc.freespace;
}

void frmEdit::SelectOrAddVendor(const QString& name) {
    QComboBox* vendors = Combo1[1];
    for (int row = 0; row < vendors->count(); ++row) {
        if (vendors->itemText(row).compare(name, Qt::CaseInsensitive) == 0) {
            vendors->setCurrentIndex(row);
            return;
        }
    }
    // Nothing reaches the catalogue before the title is saved: the artist stays text until then,
    // one such row at a time.
    for (int row = 0; row < vendors->count(); ++row) {
        if (vendors->itemData(row).toLongLong() == kArtistNotYetStored) {
            vendors->setItemText(row, name);
            vendors->setCurrentIndex(row);
            return;
        }
    }
    vendors->addItem(name, static_cast<qlonglong>(kArtistNotYetStored));
    vendors->setCurrentIndex(vendors->count() - 1);
}

void frmEdit::OpenCataloguedTitle(long id) {
    const QPointer<QWidget> owner = parentWidget();
    Unload();
    QTimer::singleShot(0, [id, owner] {
        gAddingTitle = false;
        gModifyingTitle = true;
        gCurrentTitleId = id;
        TheMainWindow()->SelectTitleInList(id);
        ShowEditForm(owner);
    });
}

void frmEdit::WriteDiscFields(Recordset& record) {
    const bool audio = ItemData(0) == 1;
    if (discRead_ == DiscRead::Audio && audio) {
        record.Fields("TitleID").SetValue(static_cast<qlonglong>(discTitleId_));
    } else if (discRead_ == DiscRead::Data && !audio) {
        record.Fields("capacity").SetValue(discCapacity_);
        record.Fields("freespace").SetValue(discFreespace_);
        // A platform without a listing editor keeps the listing read from the disc all the same.
        if (!(cmdTracks->isEnabled() && cmdTracks->text() == ListingCaption()))
            record.Fields("listing").SetValue(discListing_.isEmpty() ? kEmptyTextMark
                                                                     : discListing_);
    }
}
