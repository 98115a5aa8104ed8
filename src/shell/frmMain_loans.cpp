// Lending and taking back the selected titles, and what the main window shows of the loans.

#include "app/mGlobals.h"
#include "loans/lentoutfolder.h"
#include "loans/loancommands.h"
#include "loans/loanstore.h"
#include "shell/frmMain.h"
#include "shell/mGlobalFunctions.h"
#include "shell/readrecords.h"
#include "store/catalogue.h"
#include "toolkit/vb/msgbox.h"

namespace {

QList<long> TitleIdsOfRows(const frmMain* form, const QList<int>& rows) {
    QList<long> ids;
    for (const int row : rows) ids << form->ListItemTag(row).toLong();
    return ids;
}

}  // namespace

void frmMain::EnableLoanItems() {
    const QList<long> selected = TitleIdsOfRows(this, SelectedListRows());
    QList<long> out;
    try {
        out = loans::TitlesOut(*gDatabase, selected);
    } catch (const VbError&) {
        // Without the loan register nothing can be lent or taken back.
        mnuLendCD->setEnabled(false);
        mnuReturnedCD->setEnabled(false);
        return;
    }
    mnuLendCD->setEnabled(out.size() < selected.size());
    mnuReturnedCD->setEnabled(!out.isEmpty());
}

void frmMain::mnuLendCD_Click() {
    const QList<int> rows = SelectedListRows();
    QList<long> in;
    QStringList names;
    const QList<long> out = loans::TitlesOut(*gDatabase, TitleIdsOfRows(this, rows));
    for (const int row : rows) {
        const long id = ListItemTag(row).toLong();
        if (out.contains(id)) continue;
        in << id;
        names << ListItemText(row);
    }
    if (in.isEmpty()) return;
    if (LendTitlesInWindow(this, in, names)) LoansChanged();
}

void frmMain::mnuReturnedCD_Click() {
    const QList<long> out = loans::TitlesOut(*gDatabase, TitleIdsOfRows(this, SelectedListRows()));
    if (out.isEmpty()) return;
    if (TakeBackTitles(out)) LoansChanged();
}

void frmMain::LoansChanged() {
    ShowLoanCount();
    const bool folderShown = NodeOfKey(loans::kLentOutKey) != nullptr;
    const bool folderWanted = loans::AnyTitleOut();
    const bool readingFolder = gSelectedKey == loans::kLentOutKey;
    if (folderShown != folderWanted) FillTree(gSelectedIndex, gSelectedKey);
    if (readingFolder || gSelectedKey != gListReadState.lastKey) {
        gRequestedKey = "forcechange";
        ReadRecords(-1);
    }
}

void frmMain::ShowLoanCount() {
    try {
        SetPanelText(1,
                     loans::LoanCountText(loans::CountOpenLoans(*gDatabase, QDate::currentDate())));
    } catch (const VbError&) {
        SetPanelText(1, QString());
    }
}
