#pragma once

#include <QDialog>
#include <QList>
#include <QStringList>

#include "disc/discmatch.h"
#include "disc/onlinediscids.h"

class BarcodeLookup;
class GnudbLookup;
class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTreeWidget;
struct LookupSettings;

// The small modal window of the online look-up: it asks MusicBrainz, then gnudb, showing
// what it waits for, and then offers what they found to choose from. The program keeps
// running while it waits; Cancel ends the look-up at once.
class frmLookup : public QDialog {
    Q_OBJECT

  public:
    // WithoutTracks: nothing to choose, but MusicBrainz knows the disc's release; its medium
    // lists no tracks yet.
    enum class Outcome { Chosen, NoMatch, WithoutTracks, Failed, Cancelled };

    frmLookup(const OnlineDiscIds& ids, const LookupSettings& settings, QWidget* parent = nullptr);
    // The look-up by barcode: MusicBrainz alone, a row for every disc of the releases found,
    // and on Use the chosen disc's tracks.
    frmLookup(const QString& barcode, const LookupSettings& settings, QWidget* parent = nullptr);
    ~frmLookup() override;

    // Runs the look-up modally.
    Outcome Run();
    // After Chosen: the match the user took.
    DiscMatch Chosen() const { return chosen_; }
    // After WithoutTracks: that release, and the address of its page on MusicBrainz.
    DiscMatch ReleaseWithoutTracks() const { return withoutTracks_.value(0); }
    QString ReleasePage() const;
    // After Failed: each database that could not be asked and why, one a line.
    QStringList Problems() const { return problems_; }
    // True once the matches are on show.
    bool ChoiceIsShown() const { return choiceShown_; }

    QLabel* lblStatus;
    QProgressBar* barWaiting;
    QTreeWidget* lstMatches;
    QPlainTextEdit* txtTracks;
    QPushButton* cmdUse;
    QPushButton* cmdCancel;

  signals:
    void ChoiceShown();

  private:
    void AskGnudb();
    void ShowChoice();
    void ShowTracks();
    void Use();
    void TakeBarcodeAnswer(const QList<DiscMatch>& matches, const QString& problem);
    void AskBarcodeTracks(const DiscMatch& match);

    OnlineDiscIds ids_;
    QString musicBrainzServer_;
    // The digits looked up, empty for a look-up of a disc.
    QString barcode_;
    bool namingTracks_ = false;
    BarcodeLookup* musicBrainz_;
    GnudbLookup* gnudb_;
    QList<DiscMatch> matches_;
    QList<DiscMatch> withoutTracks_;
    QStringList problems_;
    DiscMatch chosen_;
    Outcome outcome_ = Outcome::Cancelled;
    bool choiceShown_ = false;
};
