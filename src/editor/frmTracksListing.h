#pragma once

#include <QDialog>
#include <QString>

class QPlainTextEdit;
class QPushButton;
class frmEdit;

// The text of a title's audio tracks (one line each) or of a pc title's listing. It writes
// nothing: it holds the text, hidden between openings, until the title editor saves and
// unloads it.
class frmTracksListing : public QDialog {
    Q_OBJECT
  public:
    explicit frmTracksListing(frmEdit* owner);

    // Reads the stored tracks or listing of the title being changed.
    void Form_Load();
    void Unload();

    // Text1's text with CR LF line ends, as the catalogue keeps them.
    QString Text() const;
    void SetText(const QString& text);
    // A text read from a disc: shown, and held for the kind the title editor now shows.
    void TakeReadText(const QString& text);

    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdRestore_Click();

    QPlainTextEdit* Text1;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
    QPushButton* cmdRestore;

  protected:
    void showEvent(QShowEvent* event) override;
    void reject() override;

  private:
    void Form_Activate();
    bool ShowsListing(const QString& kindCaption) const;

    frmEdit* owner_;
    QString InitialText;
    QString ShownText;
    QString KindCaption;
    QString EditTracksCaption;
    QString EditListingCaption;
    QString ListingText;
    QString TracksText;
};
