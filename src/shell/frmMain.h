#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QTreeView>
#include <QTreeWidget>
#include <functional>
#include <memory>
#include <optional>

#include "app/mainwindow.h"
#include "toolkit/vb/longwork.h"

class HelpCallBack;
class SingleInstance;
class cVSplitter;
class StatusPanel;
class TitleListModel;
class VbError;

// The main window: the folder tree on the left, the title list on the right, the button bar
// on top and the status bar below. It lives for the whole run and owns the open catalogue.
class frmMain : public QMainWindow, public MainWindow {
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
    // A right button went down in the tree: the folder menu's items start disabled.
    void FolderMenuReset();
    // A node click while the right button is the last one: the folder menu's items are enabled
    // for node; nothing is read.
    void FolderMenuNodeClick(QTreeWidgetItem* node);
    // The search node was read before any search: the search window is wanted. Sent once the
    // (empty) read has finished.
    void SearchWindowRequested();

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
    int NodeCount() const override;
    QTreeWidgetItem* Node(int index) const;
    int NodeIndex(const QTreeWidgetItem* node) const;
    QString NodeKey(const QTreeWidgetItem* node) const;
    QTreeWidgetItem* SelectedNode() const;
    QString SelectedNodeKey() const override;
    QString ParentNodeKey(const QString& key) const override;
    QString NodeKeyAt(int index) const override;
    // The node under a right click while its menu is up, else null.
    QTreeWidgetItem* DropHighlight() const;
    void SetDropHighlight(QTreeWidgetItem* node);
    void TV1_NodeClick(QTreeWidgetItem* node);
    // Building and selecting nodes without a NodeClick, as the program's own code does.
    void ClearNodes();
    QTreeWidgetItem* AddNode(QTreeWidgetItem* parent, const QString& key, const QString& text,
                             const QString& image, const QString& selectedImage);
    void SelectNode(QTreeWidgetItem* node);
    // Takes node and its children out of the tree, without a NodeClick; later nodes move up
    // one index for each node taken.
    void RemoveNode(QTreeWidgetItem* node);
    void EnsureNodeVisible(QTreeWidgetItem* node);
    // The tree's events. button is 1 left, 2 right, 4 middle.
    void TV1_MouseDown(int button);
    void TV1_Collapse(QTreeWidgetItem* node);
    void TV1_GotFocus();
    void tmrWait_Timer();

    // The title list's items, 0-based rows of the list as shown. An item has the key "id" and
    // idcd, the tag idcd, a small icon 1..6 and five sub-items (By, Type, Kind, Nr cd's,
    // Mediatype).
    int ListItemCount() const;
    // The selected item's row, or -1 when no item is selected.
    int SelectedListIndex() const override;
    void SelectListIndex(int row);
    int ListIndexOfKey(const QString& key) const override;
    // Every selected row, in the order shown.
    QList<int> SelectedListRows() const;
    QString ListItemKey(int row) const;
    QString ListItemText(int row) const;
    QString ListItemTag(int row) const;
    QStringList ListItemSubItems(int row) const;
    void AddListItem(const QString& key, const QString& text, int smallIcon,
                     const QStringList& subItems, const QString& tag) override;
    void SetListItem(int row, const QString& text, const QStringList& subItems) override;
    void RemoveListItem(int row) override;
    void ClearListItems();
    TitleListModel* ListModel() const { return listModel_; }
    // The six columns, the first one 40 percent of the list's width.
    void SetupListColumns();
    // The list's events. column is 1-based.
    void ListView1_ColumnClick(int column);
    void ListView1_GotFocus();
    void ListView1_ItemClick();

    QToolBar* Toolbar1;
    QTreeWidget* TV1;
    QTreeView* ListView1;
    QFrame* Frame1;
    QStatusBar* StatusBar1;
    // The divider between tree and list, once the start-up has installed it.
    cVSplitter* Splitter() const { return splitter_.get(); }
    // The tree's selection delay: keyboard moves read only the node the user rests on.
    QTimer* tmrWait;

    // True: the next tree selection reads the list at once; false: through the wait timer.
    bool bReadRecordsNow = true;
    // "treeview" or "listview": which of the two had the focus last.
    QString focusName;
    int lastTreeButton = 1;
    bool updateInProgress = false;
    // Set by an item click and cleared by the double click it allows, so that a double click
    // on empty space does nothing.
    bool listItemClicked = false;

    // The button bar: its buttons carry their keys ("addcd", "modifycd", ... "quit").
    void InitializeToolbar();
    QAction* ToolbarButton(const QString& key) const;
    void Toolbar1_ButtonClick(const QString& key);

    // The list's context menu.
    QMenu* mnuListviewContext;
    QAction* mnuViewProperties;
    QAction* mnuSeperator1;
    QAction* mnuNewCD;
    QAction* mnuRenameCD;
    QAction* mnuDeleteCD;
    QAction* mnuLendCD;
    QAction* mnuReturnedCD;
    QAction* mnuSeperator2;
    QAction* mnuSearchCD1;
    QAction* mnuSeperator3;
    QAction* mnuListviewMaintenance;
    QAction* mnuFetchCovers;
    // The tree's context menu.
    QMenu* mnuTreeviewContext;
    QAction* mnuReadRecordsFromFolder;
    QAction* mnuSeperator4;
    QAction* mnuAddFolder;
    QAction* mnuRenameFolder;
    QAction* mnuDeleteFolder;
    QAction* mnuHideFolder;
    QAction* mnuSeperator5;
    QAction* mnuSearchCD2;
    QAction* mnuSeperator6;
    QAction* mnuTreeviewMaintenance;

    // Every context menu pops up through here, and the menu's command runs before it returns.
    // When PopupMenuHook is set it stands in for the user: it gets the prepared menu instead of
    // the screen (tests trigger an item of their choice from it).
    void PopupMenu(QMenu* menu);
    std::function<void(QMenu*)> PopupMenuHook;

    // Mouse and keys of the tree and the list. Buttons are 1 left, 2 right; positions are in
    // the coordinates of the view's viewport. Keys are Qt key codes; a key-up reaches these
    // only when its key-down came to the same view.
    void TV1_MouseUp(int button, const QPoint& position);
    void TV1_KeyUp(int key);
    void ListView1_MouseUp(int button, const QPoint& position);
    void ListView1_DblClick();
    void ListView1_KeyUp(int key);

    // The title commands.
    void NewTitle();
    void ModifyTitle();
    void DeleteTitle();
    void RenameTitle(const QString& name);
    void ShowSearch();
    // Opens the help page in the desktop's browser, or says where it is when none can.
    void ShowHelp();
    // Reads the disc in the drive and selects its title, or says that it is not catalogued.
    void FindThisDisc();
    QTreeWidgetItem* NodeOfKey(const QString& key) const;
    // After lending or taking back: the count in the status bar, the "Lent out" folder shown
    // while any title is out, and its list read again when it is the one shown.
    void LoansChanged() override;
    // The routines of these names in mGlobalFunctions.h, for the windows the main window opens.
    void ForceSelectNode(int index) override;
    void RefreshIfDirty() override;
    void SelectTitleInList(long id) override;
    // "3 discs lent out, 1 overdue" in the first panel, or nothing while no title is out.
    void ShowLoanCount();
    // Hides platform id (name is shown in the question) and removes the selected node.
    void HideFolder(long id, const QString& name);

    // The menu items' commands.
    void mnuViewProperties_Click();
    void mnuNewCD_Click();
    void mnuRenameCD_Click();
    void mnuDeleteCD_Click();
    // Lend... and Returned act on every selected title that is in, and out, respectively.
    void mnuLendCD_Click();
    void mnuReturnedCD_Click();
    void mnuSearchCD1_Click();
    void mnuListviewMaintenance_Click();
    // Fetches the missing front covers of the titles in the list.
    void mnuFetchCovers_Click();
    void mnuReadRecordsFromFolder_Click();
    void mnuAddFolder_Click();
    void mnuRenameFolder_Click();
    void mnuDeleteFolder_Click();
    void mnuHideFolder_Click();
    void mnuSearchCD2_Click();
    void mnuTreeviewMaintenance_Click();

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
    // Rebuilds a text column of title at a greater width, keeping every row's value (Null
    // too). The engine cannot widen a column that holds data, so the values pass through a
    // temporary column "temp" + name, and the rebuilt column ends up last in the table. Nothing
    // is trapped: a failure between the statements leaves the temporary column behind and
    // reaches the caller.
    void WidenTextColumn(const QString& name, int size);
    void HideSplash();
    void UnloadSplash();
    bool Form_QueryUnload();
    void Form_Unload();
    void Form_Resize();
    void RaiseFromOtherInstance();
    void SetupTree();
    void SetupList();
    void SelectFirstNode();

    void BuildContextMenus();
    // The owner-drawn menus, with their help texts in the status bar's first panel.
    void InstallCoolMenus();
    void InstallCommandEvents();
    // caption is a source caption: "|help|&Caption", or "-" for a separator.
    QAction* AddMenuItem(QMenu* menu, const QString& name, const QString& caption,
                         void (frmMain::*command)() = nullptr);
    // The folder commands' target: the node under the right click, else the selected one.
    QTreeWidgetItem* FolderCommandTarget() const;
    void EnableFolderItems(QTreeWidgetItem* node);
    // Lend... while a selected title is in, Returned while one is out.
    void EnableLoanItems();
    // Rename (2) or delete (3) of the platform or type the folder commands aim at.
    void ModifyFolder(int action);
    void RunUpdateCommand();

    // The windows of the other commands; each is opened here and nowhere else.
    void ShowEditor();
    void ShowDatabaseWindow();
    void ShowImportWindow();
    void ShowExportWindow();
    // Runs the update check and download; true when the update program at updateProgram was
    // fetched completely.
    bool RunUpdate(QString& updateProgram);

    int mousePointer_ = 0;
    // The hourglass is the window's busy flag: while it shows, a close waits.
    std::optional<BusyScope> hourglassBusy_;
    bool loading_ = false;
    bool unloaded_ = false;
    QList<StatusPanel*> panels_;
    SingleInstance* instance_ = nullptr;
    QList<QTreeWidgetItem*> nodes_;
    QTreeWidgetItem* dropHighlight_ = nullptr;
    TitleListModel* listModel_ = nullptr;
    // Selections made by the program itself are no user events.
    bool selectingListItem_ = false;
    bool bUpdating_ = false;
    HelpCallBack* menuHelp_ = nullptr;
    std::unique_ptr<cVSplitter> splitter_;
};

// The one main window of the run, or null once it has been unloaded.
extern frmMain* gMainForm;
