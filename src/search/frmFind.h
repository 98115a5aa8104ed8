#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QWidget>
#include <array>

// The search window: criteria on a title's fields and a scope in the tree become one statement,
// which the main window's search node shows. It stays open after a search so the user can
// refine it.
class frmFind : public QWidget {
    Q_OBJECT
  public:
    explicit frmFind(QWidget* owner);
    ~frmFind() override;

    // The column a box searches, as it goes into the statement.
    static QString Tag(const QWidget* control);

    void cmdSearch_Click();
    void cmdCancel_Click();

    QGroupBox* Frame1;
    // CD-Title, Vendor, Jewelcase label, Type, Kind, Memo, Listing, Trackname.
    std::array<QLineEdit*, 8> Text1;
    QComboBox* cmbMediatype;
    // The barcode kept with a title.
    QLineEdit* txtBarcode;
    // Loans: titles out now to a borrower like the text, and titles out beyond their due date.
    QLineEdit* txtLentTo;
    QCheckBox* chkOverdue;
    // Rating from and to, number of cds from and to.
    std::array<QComboBox*, 4> ComboTwo;
    // Current view, current platform, all platforms.
    std::array<QRadioButton*, 3> Option1;
    QPushButton* cmdSearch;
    QPushButton* cmdCancel;

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void BuildWindow();
    void Form_Load();
    void Form_Activate();
    void FillMediatypes();
    // Adds the range of one pair of lists, the lower list being the lower bound.
    void AddRange(int first, int second);

    QString SavedMediatypeText;
    // The window lost the focus to one of its own boxes: getting it back is no activation.
    bool deactivatedByOwnBox_ = false;
    bool activationQueued_ = false;
};

// The one search window, or null while it is not loaded.
extern frmFind* gFindForm;

// The search command: loads the search window over the main window, or raises it.
void ShowFindWindow(QWidget* owner);
