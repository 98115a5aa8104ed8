#pragma once

#include <QDialog>
#include <QString>
#include <array>

#include "disc/discidentity.h"
#include "store/shelfrecords.h"

class CoverArtArchive;
class CoverBox;
class QAction;
class QCheckBox;
class QComboBox;
class QFrame;
class QLabel;
class QLayout;
class QLineEdit;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class Recordset;
class LoanHistoryPanel;
class ctlGoldButton;
class frmTracksListing;
struct CoverAnswer;
struct DiscMatch;

// The modal window through which one title is added or changed. gAddingTitle or
// gModifyingTitle (and gCurrentTitleId for a change) tell it how it was opened.
class frmEdit : public QDialog {
    Q_OBJECT
  public:
    explicit frmEdit(QWidget* parent = nullptr);
    ~frmEdit() override;

    // Fills the lists and takes the road of the opening: preselection from the tree on an add,
    // the stored title on a change.
    void Form_Load();
    // Closes the window, refreshes the main window and selects the title there.
    void Unload();

    // The captions of cmdTracks by which this window and the tracks editor tell tracks from
    // listing.
    QString TracksCaption() const { return tracksCaption_; }
    QString ListingCaption() const { return listingCaption_; }
    // The tracks editor while it is loaded, else null.
    frmTracksListing* TracksListing() const { return tracksListing_; }

    int MousePointer() const { return mousePointer_; }
    void SetMousePointer(int pointer);

    void Combo1_Click(int index);
    // The gold buttons; index 0 add, 1 rename, 2 delete.
    void cmdPlatform_Click(int index);
    void cmdVendor_Click(int index);
    void cmdType_Click(int index);
    void cmdSpecific_Click(int index);
    void cmdMediatype_Click(int index);
    void cmdTracks_Click();
    // Fills the form from the disc in the drive or an image: tracks, identity, title and artist
    // on the audio platform; listing, capacity and free space on the others.
    void cmdReadDisc_Click();
    // Asks MusicBrainz and gnudb for the disc last read and fills title, artist, tracks and a
    // memo line from the match the user chooses. Enabled on the audio platform once a disc
    // was read.
    void cmdLookup_Click();
    // Looks the barcode in txtBarcode up in MusicBrainz (asking for one when the box is empty)
    // and fills the form from the disc the user chooses, as Look up does. Enabled on the audio
    // platform.
    void cmdBarcode_Click();
    // Opens the menu of the cover: from the Cover Art Archive, from a file, remove.
    void cmdCover_Click();
    void CoverFromArchive();
    void CoverFromFile();
    void CoverRemove();
    // Takes image bytes as the title's cover, written with the title's save. Tells the user
    // why when they are no image that can be kept, and keeps the cover there was.
    bool TakeCoverImage(const QByteArray& bytes, const QString& mbid, const QString& source);
    // True while a cover is being fetched.
    bool FetchingCover() const;
    // The release and barcode, and the cover, as the save will write them.
    TitleRelease Release() const { return release_; }
    TitleCover Cover() const { return cover_; }
    void cmdCancel_Click();
    // Validates, writes the title and its tracks or listing, updates the main window's list
    // and closes the window.
    void cmdOK_Click();

    QLineEdit* txtTitle;
    QLineEdit* Text2;
    QPlainTextEdit* Memo;
    QLabel* lblCreated;
    QLabel* lblModified;
    // The title's loans, with Lend... and Returned.
    LoanHistoryPanel* fraLoans;
    QPushButton* cmdTracks;
    ctlGoldButton* cmdReadDisc;
    ctlGoldButton* cmdLookup;
    ctlGoldButton* cmdBarcode;
    QLineEdit* txtBarcode;
    // Update opens a new editor on the same platform with the barcode box waiting.
    QCheckBox* chkAddNext;
    CoverBox* picCover;
    ctlGoldButton* cmdCover;
    QMenu* mnuCover;
    QAction* mnuCoverArchive;
    QAction* mnuCoverFile;
    QAction* mnuCoverRemove;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
    QFrame* Frame1;
    // 0 platform, 1 vendor ("by"), 2 type, 3 specific item, 4 mediatype, 5 rating,
    // 6 number of cds; every row carries its record id as item data.
    std::array<QComboBox*, 7> Combo1;
    std::array<ctlGoldButton*, 3> cmdPlatform;
    std::array<ctlGoldButton*, 3> cmdVendor;
    std::array<ctlGoldButton*, 3> cmdType;
    std::array<ctlGoldButton*, 3> cmdSpecific;
    std::array<ctlGoldButton*, 3> cmdMediatype;

    bool TracksEdited = false;
    // The next key-up in a field does nothing: its key-down went to another window.
    bool IgnoreKeyUp = false;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

  private:
    using LookupOperation = QString (*)(int, long, QString&);

    void BuildWindow();
    std::array<ctlGoldButton*, 3> BuildGoldButtons(const QString& name,
                                                   const std::array<QString, 3>& tooltips,
                                                   void (frmEdit::*handler)(int));
    void LoadAddRoad();
    void LoadEditRoad();
    void FillList(int index, const QString& sql, const QString& textField, const QString& idField);
    // Selects the first row of the list whose item data is id; false when there is none.
    bool SelectItemData(int index, const QVariant& id);
    long ItemData(int index) const;
    // The number at the start of a tree key's tail, 0 when there is none.
    static long Val(const QString& text);
    void GoldButtonClick(int list, LookupOperation operation, int index);
    // Adds a row through the lookup operation (asking for the name when it is empty) and
    // selects it.
    void AddLookupRow(int list, LookupOperation operation, QString name);

    void ReadAudioIntoForm();
    void ReadDataIntoForm();
    void SelectOrAddVendor(const QString& name);
    // Rename and delete of an artist not yet stored change the list alone.
    void ChangeUnstoredArtist(bool remove);
    void TakeMatch(const DiscMatch& match);
    void EnableLookup();
    // The barcode field and the cover column, made with the window; returns the column.
    QLayout* BuildShelfWidgets();
    void LoadShelfFields();
    // Writes the release, the barcode and a changed cover with the title.
    void WriteShelfFields();
    // Keeps the release of a match from MusicBrainz and fetches its cover.
    void TakeRelease(const DiscMatch& match);
    void FetchCover(bool quiet);
    void TakeCoverAnswer(const CoverAnswer& answer, bool quiet);
    void ShowCover();
    // Fills the form of the next title by barcode from the one just saved.
    void PrepareNextByBarcode();
    // Closes this window and opens the stored title id in its place.
    void OpenCataloguedTitle(long id);
    void WriteDiscFields(Recordset& record);

    // The artist of a reading or a look-up that the catalogue does not know stays a row of
    // Combo1(1) with this item data until the save adds it as a vendor.
    static constexpr long kArtistNotYetStored = -1;
    // Thrown when the vendor's routine refused the artist; its box has told why.
    struct ArtistNotStored {};
    void StoreArtist();

    bool Validate();
    void WriteTitle();
    void WriteTracks(const QString& text);
    void WriteListing(const QString& text);
    void UpdateMainList();

    QString tracksCaption_;
    QString listingCaption_;
    frmTracksListing* tracksListing_ = nullptr;
    int mousePointer_ = 1;
    // What the last reading of a disc found, written with the title.
    enum class DiscRead { None, Audio, Data } discRead_ = DiscRead::None;
    quint32 discTitleId_ = 0;
    TableOfContents discToc_;
    double discCapacity_ = 0;
    double discFreespace_ = 0;
    QString discListing_;
    TitleRelease release_;
    TitleCover cover_;
    bool coverChanged_ = false;
    // The digits last looked up: Enter in the barcode box looks up new ones, and saves else.
    QString lookedUpBarcode_;
    CoverArtArchive* coverArchive_ = nullptr;
    bool unloaded_ = false;
};

// The open title editor, or null.
extern frmEdit* gEditForm;

// Opens the title editor modally over owner (the main window), on the road that gAddingTitle
// and gModifyingTitle name. After an Update with "Add next by barcode" checked it opens the
// next editor at once, until one is left otherwise.
void ShowEditForm(QWidget* owner);
// True, making the next editor an adding one, when the editor just closed was saved with
// "Add next by barcode" checked.
bool OpenNextByBarcode();
