#pragma once

// The routines through which every window refreshes the tree and the list.

#include <QString>

class QAbstractItemView;

// Rebuilds the tree completely and selects the node with selectKey, else the node at
// selectIndex (or the last). Does not read the list.
void FillTree(int selectIndex, const QString& selectKey);
// Fills the list from the view of the selected node; selectId is the idcd to select
// afterwards, or -1.
void ReadRecords(long selectId);
// Selects node index and reads the list, even when that node was read last.
void ForceSelectNode(int index);
// Applies gTreeDirty and gListDirty after a child window closed.
void RefreshIfDirty();
// Sets the count panel from gItemCountText: mode "" writes count, "plus" adds one to the
// present number, any other text subtracts one.
void UpdateItemCount(long count, const QString& mode);
// Sizes a list column to its contents (and its header, with useHeader). column is 1-based.
void AutosizeColumn(QAbstractItemView* list, int column, bool useHeader);
// Selects the list item whose tag is id and scrolls it into view.
void SelectTitleInList(long id);
