#pragma once

// The main window as the other windows reach it: its folders by key, the rows of its title
// list, and whether it is there at all. frmMain is the one implementation; the windows it opens
// are opened in frmMain_windows.cpp and get it as their owner.

#include <QString>
#include <QStringList>

class MainWindow {
  public:
    // Folders by their keys: "root", "key<idplatform>", "key<idplatform>key<idtype>",
    // "search". An empty key stands for no folder.
    virtual QString SelectedNodeKey() const = 0;
    // The folder above the one with key, or empty at the top and for an unknown key.
    virtual QString ParentNodeKey(const QString& key) const = 0;
    // Indexes are 1-based, in the order the folders were added; the search folder comes last.
    virtual int NodeCount() const = 0;
    virtual QString NodeKeyAt(int index) const = 0;

    // The title list: 0-based rows as shown, keyed "id<idcd>".
    virtual int SelectedListIndex() const = 0;
    virtual int ListIndexOfKey(const QString& key) const = 0;
    virtual void AddListItem(const QString& key, const QString& text, int smallIcon,
                             const QStringList& subItems, const QString& tag) = 0;
    virtual void SetListItem(int row, const QString& text, const QStringList& subItems) = 0;
    virtual void RemoveListItem(int row) = 0;
    // A window lent or took back titles: the loan count and the "Lent out" folder follow.
    virtual void LoansChanged() = 0;

    // Selects folder index (1-based) and reads its list, even when it was read last.
    virtual void ForceSelectNode(int index) = 0;
    // Applies gTreeDirty and gListDirty after a child window closed.
    virtual void RefreshIfDirty() = 0;
    // Selects the list item whose tag is id and scrolls it into view.
    virtual void SelectTitleInList(long id) = 0;

  protected:
    ~MainWindow() = default;
};

// The running main window; null before the program made it and once it is on its way out. The
// main window sets itself when it is made and clears itself on its way out.
MainWindow* TheMainWindow();
void SetTheMainWindow(MainWindow* window);

// The selected folder's key, and the key of the folder above key; empty without a main window.
QString SelectedFolderKey();
QString ParentFolderKey(const QString& key);
