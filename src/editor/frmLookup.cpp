#include "editor/frmLookup.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "disc/barcodelookup.h"
#include "disc/gnudblookup.h"
#include "disc/lookupsettings.h"
#include "toolkit/vb/longwork.h"

namespace {

const QString kOperation = "Looking the disc up online";

QString DiscsText(const DiscMatch& match) {
    return match.discCount > 1 ? QString("%1 of %2").arg(match.discNumber).arg(match.discCount)
                               : QString("1");
}

}  // namespace

frmLookup::frmLookup(const OnlineDiscIds& ids, const LookupSettings& settings, QWidget* parent)
    : QDialog(parent), ids_(ids), musicBrainzServer_(settings.musicBrainzServer) {
    setObjectName("frmLookup");
    setWindowTitle("Look up");
    setModal(true);

    lblStatus = new QLabel(this);
    lblStatus->setObjectName("lblStatus");
    lblStatus->setWordWrap(true);
    lblStatus->setMinimumWidth(360);
    barWaiting = new QProgressBar(this);
    barWaiting->setObjectName("barWaiting");
    barWaiting->setRange(0, 0);
    barWaiting->setTextVisible(false);

    lstMatches = new QTreeWidget(this);
    lstMatches->setObjectName("lstMatches");
    lstMatches->setRootIsDecorated(false);
    lstMatches->setHeaderLabels(
        {"Artist", "Title", "Year", "Country", "Format", "Discs", "Tracks", "Source"});
    lstMatches->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    lstMatches->setMinimumSize(640, 110);
    lstMatches->hide();
    txtTracks = new QPlainTextEdit(this);
    txtTracks->setObjectName("txtTracks");
    txtTracks->setReadOnly(true);
    txtTracks->setMinimumHeight(130);
    txtTracks->hide();
    connect(lstMatches, &QTreeWidget::currentItemChanged, this, &frmLookup::ShowTracks);
    connect(lstMatches, &QTreeWidget::itemDoubleClicked, this, &frmLookup::Use);

    cmdUse = new QPushButton("&Use", this);
    cmdUse->setObjectName("cmdUse");
    cmdUse->setToolTip("Fill the title with the chosen disc's names");
    cmdUse->hide();
    cmdCancel = new QPushButton("Cancel", this);
    cmdCancel->setObjectName("cmdCancel");
    connect(cmdUse, &QPushButton::clicked, this, &frmLookup::Use);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdUse);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblStatus);
    layout->addWidget(barWaiting);
    layout->addWidget(lstMatches, 1);
    layout->addWidget(txtTracks);
    layout->addLayout(buttons);

    musicBrainz_ = new BarcodeLookup(settings.musicBrainzServer, this);
    gnudb_ = new GnudbLookup(settings.gnudbServer, settings.cddbUser, this);
    for (OnlineDatabase* database : std::initializer_list<OnlineDatabase*>{musicBrainz_, gnudb_})
        connect(database, &OnlineDatabase::Progress, lblStatus, &QLabel::setText);
    connect(musicBrainz_, &OnlineDatabase::Finished, this,
            [this](const QList<DiscMatch>& matches, const QString& problem) {
                if (!barcode_.isEmpty()) return TakeBarcodeAnswer(matches, problem);
                matches_ << matches;
                withoutTracks_ = musicBrainz_->ReleasesWithoutTracks();
                if (!problem.isEmpty()) problems_ << problem;
                AskGnudb();
            });
    connect(gnudb_, &OnlineDatabase::Finished, this,
            [this](const QList<DiscMatch>& matches, const QString& problem) {
                matches_ << matches;
                if (!problem.isEmpty()) problems_ << problem;
                EndProgress(kOperation);
                ShowChoice();
            });
}

frmLookup::~frmLookup() {
    EndProgress(kOperation);
}

frmLookup::Outcome frmLookup::Run() {
    ReportProgress(kOperation, 0, 2);
    if (barcode_.isEmpty())
        musicBrainz_->Start(ids_);
    else
        musicBrainz_->StartSearch(barcode_);
    RunModal(this);
    musicBrainz_->Cancel();
    gnudb_->Cancel();
    return outcome_;
}

void frmLookup::AskGnudb() {
    ReportProgress(kOperation, 1, 2);
    gnudb_->Start(ids_);
}

void frmLookup::ShowChoice() {
    if (matches_.isEmpty()) {
        outcome_ = !withoutTracks_.isEmpty() ? Outcome::WithoutTracks
                   : problems_.isEmpty()     ? Outcome::NoMatch
                                             : Outcome::Failed;
        accept();
        return;
    }
    QString status = matches_.size() == 1
                         ? QString("One disc was found. Use its names for this title?")
                         : QString("%1 discs were found. Choose yours.").arg(matches_.size());
    if (!problems_.isEmpty()) status += "\nNot everything could be read: " + problems_.join("\n");
    lblStatus->setText(status);
    barWaiting->hide();
    QTreeWidgetItem* preselected = nullptr;
    for (const DiscMatch& match : matches_) {
        auto* row = new QTreeWidgetItem(
            lstMatches,
            {match.artist, match.title, match.year, match.country, match.format, DiscsText(match),
             QString::number(match.tracks.isEmpty() ? match.trackCount : match.tracks.size()),
             match.source});
        if (!preselected && match.discIdMatched) preselected = row;
    }
    lstMatches->show();
    txtTracks->show();
    cmdUse->show();
    cmdUse->setDefault(true);
    lstMatches->setCurrentItem(preselected ? preselected : lstMatches->topLevelItem(0));
    lstMatches->setFocus();
    adjustSize();
    choiceShown_ = true;
    emit ChoiceShown();
}

QString frmLookup::ReleasePage() const {
    return musicBrainzServer_ + "/release/" + ReleaseWithoutTracks().identifier;
}

void frmLookup::ShowTracks() {
    const int row = lstMatches->indexOfTopLevelItem(lstMatches->currentItem());
    if (row < 0) return;
    QStringList lines;
    const QStringList& tracks = matches_[row].tracks;
    if (tracks.isEmpty() && !barcode_.isEmpty()) lines << "The tracks are asked for on Use.";
    for (int index = 0; index < tracks.size(); ++index)
        lines << QString("%1. %2").arg(index + 1).arg(tracks[index]);
    txtTracks->setPlainText(lines.join('\n'));
}

void frmLookup::Use() {
    const int row = lstMatches->indexOfTopLevelItem(lstMatches->currentItem());
    if (row < 0) return;
    if (!barcode_.isEmpty() && matches_[row].tracks.isEmpty())
        return AskBarcodeTracks(matches_[row]);
    chosen_ = matches_[row];
    outcome_ = Outcome::Chosen;
    accept();
}
