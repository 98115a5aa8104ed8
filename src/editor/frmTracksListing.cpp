#include "editor/frmTracksListing.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/mGlobals.h"
#include "editor/frmEdit.h"
#include "store/catalogue.h"
#include "toolkit/vb/vbruntime.h"

frmTracksListing::frmTracksListing(frmEdit* owner) : QDialog(owner), owner_(owner) {
    setObjectName("frmTracksListing");
    setWindowTitle("TracksListing");
    setModal(true);
    resize(420, 360);

    Text1 = new QPlainTextEdit(this);
    Text1->setObjectName("Text1");
    Text1->setLineWrapMode(QPlainTextEdit::NoWrap);
    cmdOK = new QPushButton("&OK", this);
    cmdOK->setObjectName("cmdOK");
    cmdCancel = new QPushButton("Cancel", this);
    cmdCancel->setObjectName("cmdCancel");
    cmdRestore = new QPushButton("&Restore values", this);
    cmdRestore->setObjectName("cmdRestore");
    for (QPushButton* button : {cmdOK, cmdCancel, cmdRestore}) button->setAutoDefault(false);
    connect(cmdOK, &QPushButton::clicked, this, &frmTracksListing::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmTracksListing::cmdCancel_Click);
    connect(cmdRestore, &QPushButton::clicked, this, &frmTracksListing::cmdRestore_Click);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdRestore);
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Text1);
    layout->addLayout(buttons);
}

QString frmTracksListing::Text() const {
    return Text1->toPlainText().replace("\n", "\r\n");
}

void frmTracksListing::SetText(const QString& text) {
    Text1->setPlainText(QString(text).replace("\r\n", "\n"));
}

void frmTracksListing::TakeReadText(const QString& text) {
    SetText(text);
    if (ShowsListing(owner_->cmdTracks->text()))
        ListingText = Text();
    else
        TracksText = Text();
}

bool frmTracksListing::ShowsListing(const QString& kindCaption) const {
    return kindCaption == owner_->ListingCaption();
}

void frmTracksListing::Form_Load() {
    EditTracksCaption = "Edit tracks here...";
    EditListingCaption = "Edit listing here...";
    KindCaption = owner_->cmdTracks->text();

    // The add road has nothing stored yet, and keeps the window's plain caption.
    if (gModifyingTitle) {
        const QString id = QString::number(gCurrentTitleId);
        if (!ShowsListing(KindCaption)) {
            setWindowTitle(EditTracksCaption);
            std::unique_ptr<Recordset> tracks = gDatabase->OpenRecordset(
                "select idcd, TrackID, TrackName from Tracks where idcd = " + id +
                    " order by TrackID",
                dbOpenDynaset);
            QString text;
            while (!tracks->IsEOF()) {
                text += NzText(tracks->Fields("TrackName").Value()) + "\r\n";
                tracks->MoveNext();
            }
            if (!text.isEmpty()) text.chop(2);
            SetText(text);
            TracksText = Text();
        } else {
            setWindowTitle(EditListingCaption);
            std::unique_ptr<Recordset> title =
                gDatabase->OpenRecordset("select * from title where idcd = " + id);
            const QString listing = NzText(title->Fields("listing").Value());
            if (listing != kEmptyTextMark) SetText(listing);
            ListingText = Text();
        }
    }
    InitialText = Text();
    ShownText = Text();
}

void frmTracksListing::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    Form_Activate();
}

void frmTracksListing::Form_Activate() {
    const QString caption = owner_->cmdTracks->text();
    // The platform changed since the last opening: show the text held for the other kind.
    if (caption != KindCaption) {
        if (ShowsListing(caption)) {
            setWindowTitle(EditListingCaption);
            SetText(ListingText);
        } else {
            setWindowTitle(EditTracksCaption);
            SetText(TracksText);
        }
        KindCaption = caption;
    }
    ShownText = Text();
    Text1->setFocus();
}

void frmTracksListing::cmdOK_Click() {
    if (ShowsListing(owner_->cmdTracks->text()))
        ListingText = Text();
    else
        TracksText = Text();
    hide();
}

void frmTracksListing::cmdCancel_Click() {
    SetText(ShownText);
    hide();
}

void frmTracksListing::reject() {
    cmdCancel_Click();
}

void frmTracksListing::cmdRestore_Click() {
    SetText(InitialText);
}

void frmTracksListing::Unload() {
    if (windowState() == Qt::WindowNoState) move(-width(), -height());
    hide();
    deleteLater();
}
