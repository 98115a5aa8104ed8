// The list's command that fetches the missing front covers of its titles.

#include "editor/frmFetchCovers.h"
#include "shell/frmMain.h"

void frmMain::mnuFetchCovers_Click() {
    QList<long> titles;
    for (int row = 0; row < ListItemCount(); ++row) titles << ListItemTag(row).toLong();
    FetchMissingCovers(titles, this);
}
