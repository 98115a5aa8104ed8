#include "loans/loanhistorypanel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "loans/loancommands.h"
#include "loans/loanstore.h"
#include "store/catalogue.h"

LoanHistoryPanel::LoanHistoryPanel(QWidget* parent) : QGroupBox("Loans", parent) {
    setObjectName("fraLoans");
    lstLoans = new QTreeWidget(this);
    lstLoans->setObjectName("lstLoans");
    lstLoans->setHeaderLabels({"Borrower", "Lent", "Due", "Returned", "Note"});
    lstLoans->setRootIsDecorated(false);
    lstLoans->setSelectionMode(QAbstractItemView::NoSelection);
    lstLoans->setFocusPolicy(Qt::NoFocus);
    lstLoans->setMaximumHeight(lstLoans->fontMetrics().height() * 6);
    cmdLend = new QPushButton("&Lend...", this);
    cmdLend->setObjectName("cmdLend");
    cmdLend->setToolTip("Lend this cd-title to someone");
    cmdReturned = new QPushButton("Re&turned", this);
    cmdReturned->setObjectName("cmdReturned");
    cmdReturned->setToolTip("This cd-title came back");
    connect(cmdLend, &QPushButton::clicked, this, &LoanHistoryPanel::Lend);
    connect(cmdReturned, &QPushButton::clicked, this, &LoanHistoryPanel::TakeBack);

    auto* buttons = new QVBoxLayout;
    buttons->addWidget(cmdLend);
    buttons->addWidget(cmdReturned);
    buttons->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(lstLoans, 1);
    layout->addLayout(buttons);
}

void LoanHistoryPanel::Load(long idcd, const QString& name) {
    idcd_ = idcd;
    name_ = name;
    lstLoans->clear();
    bool out = false;
    try {
        if (idcd > 0) {
            for (const loans::LoanEntry& loan : loans::LoanHistory(*gDatabase, idcd)) {
                lstLoans->addTopLevelItem(new QTreeWidgetItem(
                    {loan.borrower, loans::DateText(loan.lent), loans::DateText(loan.due),
                     loans::DateText(loan.returned), loan.note}));
                out = out || loan.returned.isNull();
            }
        }
    } catch (const VbError&) {
        // A catalogue without the register shows an empty history.
        idcd_ = 0;
    }
    for (int column = 0; column < lstLoans->columnCount() - 1; ++column)
        lstLoans->resizeColumnToContents(column);
    cmdLend->setEnabled(idcd_ > 0 && !out);
    cmdReturned->setEnabled(idcd_ > 0 && out);
}

void LoanHistoryPanel::Lend() {
    if (LendTitlesInWindow(window(), {idcd_}, {name_})) {
        Load(idcd_, name_);
        emit LoansChanged();
    }
}

void LoanHistoryPanel::TakeBack() {
    if (TakeBackTitles({idcd_})) {
        Load(idcd_, name_);
        emit LoansChanged();
    }
}
