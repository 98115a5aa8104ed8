// The online look-up of the disc last read. Nothing of the form changes until the user has
// chosen a match, and nothing is written before the title is saved.

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "app/mGlobals.h"
#include "disc/discmatch.h"
#include "disc/lookupsettings.h"
#include "disc/onlinediscids.h"
#include "editor/frmEdit.h"
#include "editor/frmLookup.h"
#include "editor/frmTracksListing.h"
#include "store/fieldsizes.h"
#include "toolkit/controls/ctlGoldButton.h"
#include "toolkit/platform/mUtility.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"

namespace {

const QString kLookupTitle = "Look up";

}  // namespace

void frmEdit::EnableLookup() {
    cmdLookup->setEnabled(discRead_ == DiscRead::Audio && Combo1[0]->currentIndex() >= 0 &&
                          ItemData(0) == 1);
}

void frmEdit::cmdLookup_Click() {
    // The key that closes a box or the chooser comes up in the field that gets the focus back.
    IgnoreKeyUp = true;
    if (!cmdLookup->isEnabled()) return;
    const BusyScope busy;
    OnlineDiscIds ids;
    QString problem;
    if (!ComputeOnlineDiscIds(discToc_, ids, problem)) {
        MsgBox(problem, vbExclamation, kLookupTitle);
        return;
    }
    frmLookup lookup(ids, ReadLookupSettings(), this);
    switch (lookup.Run()) {
        case frmLookup::Outcome::Chosen:
            TakeMatch(lookup.Chosen());
            break;
        case frmLookup::Outcome::NoMatch:
            if (MsgBox("Neither MusicBrainz nor gnudb knows this disc.\n\nOpen the MusicBrainz "
                       "page where it can be added?",
                       vbYesNo + vbQuestion, kLookupTitle) == vbYes)
                StartDocument(ids.submissionUrl);
            break;
        case frmLookup::Outcome::WithoutTracks: {
            const DiscMatch release = lookup.ReleaseWithoutTracks();
            if (MsgBox("MusicBrainz knows this disc as \"" + release.title + "\" by " +
                           release.artist +
                           ", but the release was found without a track list.\n\nOpen the "
                           "release's page, where the tracks can be added?",
                       vbYesNo + vbQuestion, kLookupTitle) == vbYes)
                StartDocument(lookup.ReleasePage());
            break;
        }
        case frmLookup::Outcome::Failed:
            MsgBox("The disc could not be looked up online.\n\n" + lookup.Problems().join("\n"),
                   vbExclamation, kLookupTitle);
            break;
        case frmLookup::Outcome::Cancelled:
            break;
    }
}

void frmEdit::TakeMatch(const DiscMatch& match) {
    if (!match.title.isEmpty()) txtTitle->setText(match.title.left(gLenTitle));
    if (!match.artist.isEmpty()) SelectOrAddVendor(match.artist.left(gLenVendor));
    if (!tracksListing_) {
        tracksListing_ = new frmTracksListing(this);
        tracksListing_->Form_Load();
    }
    tracksListing_->TakeReadText(match.tracks.join("\r\n"));
    TracksEdited = true;
    const QString source = MatchMemoLine(match);
    if (!Memo->toPlainText().contains(source)) Memo->appendPlainText(source);
    TakeRelease(match);
}
