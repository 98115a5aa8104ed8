#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QStatusBar>
#include <QToolBar>
#include <QTreeView>
#include <QTreeWidget>

class SingleInstance;
class VbError;

// The main window: the folder tree on the left, the title list on the right, the button bar
// on top and the status bar below. It lives for the whole run and owns the open catalogue.
class frmMain : public QMainWindow {
    Q_OBJECT
  public:
    frmMain();
    ~frmMain() override;

    // The whole start-up, in its fixed order. Ends with the window shown, or unloaded when the
    // catalogue could not be opened or another instance runs.
    void Form_Load();
    // Closes the window as the program's own Unload does, through the closing rule.
    void Unload();
    bool IsUnloaded() const { return unloaded_; }

  signals:
    // The exit work is done; the program ends.
    void Unloaded();

  public:
    // The busy flag: 11 while working, 1 at rest; commands and closing test for 1.
    int MousePointer() const { return mousePointer_; }
    void SetMousePointer(int pointer);

    // The status bar's panels, 1-based.
    QString PanelText(int panel) const;
    void SetPanelText(int panel, const QString& text);

    void FlipDatabaseHeader(const QString& path, int mode);

    // The tree's nodes. Indexes are 1-based and follow the order of insertion (1 is the root,
    // the search node comes last); keys follow "root", "key<idplatform>",
    // "key<idplatform>key<idtype>", "search".
    int NodeCount() const;
    QTreeWidgetItem* Node(int index) const;
    int NodeIndex(const QTreeWidgetItem* node) const;
    QString NodeKey(const QTreeWidgetItem* node) const;
    QTreeWidgetItem* SelectedNode() const;
    // The node under a right click while its menu is up, else null.
    QTreeWidgetItem* DropHighlight() const;
    void TV1_NodeClick(QTreeWidgetItem* node);

    // The title list's items, 0-based rows of the list as shown. An item has the key "id" and
    // idcd, the tag idcd, a small icon 1..6 and five sub-items (By, Type, Kind, Nr cd's,
    // Mediatype).
    int ListItemCount() const;
    // The selected item's row, or -1 when no item is selected.
    int SelectedListIndex() const;
    void SelectListIndex(int row);
    int ListIndexOfKey(const QString& key) const;
    QString ListItemKey(int row) const;
    QString ListItemText(int row) const;
    QString ListItemTag(int row) const;
    QStringList ListItemSubItems(int row) const;
    void AddListItem(const QString& key, const QString& text, int smallIcon,
                     const QStringList& subItems, const QString& tag);
    void SetListItem(int row, const QString& text, const QStringList& subItems);
    void RemoveListItem(int row);

    QToolBar* Toolbar1;
    QTreeWidget* TV1;
    QTreeView* ListView1;
    QFrame* Frame1;
    QStatusBar* StatusBar1;

    // True: the next tree selection reads the list at once; false: through the wait timer.
    bool bReadRecordsNow = true;
    // "treeview" or "listview": which of the two had the focus last.
    QString focusName;
    int lastTreeButton = 1;
    bool listKeyDown = false;
    bool treeKeyDown = true;
    bool updateInProgress = false;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;

  private:
    void BuildWindow();
    void SetColours();
    bool FindPreviousInstance();
    bool OpenDatabaseStage1();
    bool OpenDatabaseStage2();
    // The report of a catalogue that cannot be opened or brought up to date; ends the program.
    void ReportUnableToLoad(const VbError& error);
    void SetSplashStatus(const QString& text);
    void HideSplash();
    void UnloadSplash();
    bool Form_QueryUnload();
    void Form_Unload();
    void Form_Resize();
    void RaiseFromOtherInstance();

    int mousePointer_ = 0;
    bool loading_ = false;
    bool unloaded_ = false;
    QList<QLabel*> panels_;
    SingleInstance* instance_ = nullptr;
};

// The one main window of the run, or null once it has been unloaded.
extern frmMain* gMainForm;
