// The look-up window's road for a barcode: the releases MusicBrainz finds, one row a disc,
// and the chosen disc's tracks asked for on Use.

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>

#include "disc/barcodelookup.h"
#include "disc/lookupsettings.h"
#include "editor/frmLookup.h"
#include "toolkit/vb/longwork.h"

namespace {

const QString kOperation = "Looking the disc up online";

}  // namespace

frmLookup::frmLookup(const QString& barcode, const LookupSettings& settings, QWidget* parent)
    : frmLookup(OnlineDiscIds(), settings, parent) {
    barcode_ = barcode;
    setWindowTitle("Barcode " + barcode);
}

void frmLookup::TakeBarcodeAnswer(const QList<DiscMatch>& matches, const QString& problem) {
    if (namingTracks_) {
        if (matches.isEmpty()) {
            problems_ << problem;
            outcome_ = Outcome::Failed;
        } else {
            chosen_ = matches.first();
            outcome_ = Outcome::Chosen;
        }
        accept();
        return;
    }
    matches_ = matches;
    if (!problem.isEmpty()) problems_ << problem;
    EndProgress(kOperation);
    ShowChoice();
}

void frmLookup::AskBarcodeTracks(const DiscMatch& match) {
    namingTracks_ = true;
    cmdUse->setEnabled(false);
    lstMatches->setEnabled(false);
    barWaiting->show();
    musicBrainz_->StartTracks(match);
}
