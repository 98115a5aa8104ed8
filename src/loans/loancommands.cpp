#include "loans/loancommands.h"

#include "loans/frmLend.h"
#include "loans/loanstore.h"
#include "store/catalogue.h"
#include "toolkit/vb/guardeddialog.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"

bool LendTitlesInWindow(QWidget* owner, const QList<long>& titles, const QStringList& names) {
    if (titles.isEmpty()) return false;
    GuardedDialog<frmLend> window(titles, names, owner);
    return window.exec() == QDialog::Accepted;
}

bool TakeBackTitles(const QList<long>& titles) {
    if (titles.isEmpty()) return false;
    const QString title =
        titles.size() == 1 ? "Returned" : QString::number(titles.size()) + " titles returned";
    QString text = loans::DateText(QDate::currentDate());
    for (;;) {
        text = InputBox("The day the title(s) came back (yyyy-mm-dd):", title, text).trimmed();
        if (text.isEmpty()) return false;
        if (loans::TextDate(text).isValid() && text.size() == 10) break;
        MsgBox("\"" + text + "\" is no date. Please write it as year-month-day, 2024-05-31 say.",
               vbExclamation, title);
    }
    try {
        loans::ReturnTitles(*gDatabase, titles, loans::TextDate(text));
    } catch (const VbError& error) {
        MsgBox(error.Description, vbCritical, title);
        return false;
    }
    return true;
}
