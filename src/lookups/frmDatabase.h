#pragma once

#include <QDialog>
#include <QHash>
#include <QString>
#include <memory>

class BorrowersPanel;
class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class QToolButton;
class Recordset;

// The modal window in which the user walks through platforms, their types, vendors and specific
// items and the mediatypes, and adds, renames, deletes or hides them. It keeps no rules of its
// own about lookups: every change goes through the lookup routines.
class frmDatabase : public QDialog {
    Q_OBJECT
  public:
    // The five lists, in the order of the picture buttons' rows.
    enum LookupList { Platform, Type, Specific, Vendor, Mediatype };

    explicit frmDatabase(QWidget* parent = nullptr);
    ~frmDatabase() override;

    // Fills the lists and selects what the main window's tree node names.
    void Form_Load();
    // Closes the window; compacts the catalogue when something changed.
    void Unload();

    // Every list row carries its record's id as item data.
    QComboBox* cmbPlatform;
    QCheckBox* chkVisiblePlatform;
    QListWidget* lstType;
    QListWidget* lstSpecific;
    QListWidget* lstVendor;
    QComboBox* cmbMediatype;
    QLabel* lblHint;
    // The borrowers of the loan register, with the same gestures as the lists above.
    BorrowersPanel* fraBorrowers;
    QPushButton* cmdDone;
    // The picture buttons, three per list: [list][0 add, 1 rename, 2 delete].
    QToolButton* PictureButton(LookupList list, int action) const;

    long SelectedPlatformId = 0;
    long SelectedVendorId = 0;
    long SelectedTypeId = 0;
    long SelectedSpecificId = 0;
    // The check box writes to the catalogue only while this is true; code setting it is no
    // user's change.
    bool VisibleCheckArmed = false;

    void cmbPlatform_Click();
    void lstType_Click();
    void lstSpecific_Click();
    void lstVendor_Click();
    void chkVisiblePlatform_Click();
    // A picture button: action 1 add, 2 rename, 3 delete on list.
    void Picture_Click(LookupList list, int action);
    void cmdDone_Click();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

  private:
    void BuildWindow();
    QWidget* ListControl(LookupList list) const;
    // Fills control from sql; false when the statement gave no rows.
    bool Fill(LookupList list, const QString& sql, const QString& textField,
              const QString& idField);
    void FillPlatforms();
    void FillTypes();
    void FillSpecifics();
    void FillVendors();
    void FillMediatypes();
    // Selects row (or none, with -1) without a user event, then runs the list's click.
    void SelectRow(LookupList list, int row);
    void RunClick(LookupList list);
    long SelectedId(LookupList list) const;
    void SelectFromTreeNode();
    void KeyUp(LookupList list, int key, Qt::KeyboardModifiers modifiers);

    std::unique_ptr<Recordset> recordset_;
    QToolButton* pictures_[5][3] = {};
    // Which of the lists got the last key-down: its key-up counts, another one's does not.
    QHash<QObject*, bool> keyDown_;
    bool unloaded_ = false;
};

// The open maintenance window, or null.
extern frmDatabase* gDatabaseForm;

// Opens the maintenance window modally over the main window.
void ShowDatabaseForm(QWidget* owner);
