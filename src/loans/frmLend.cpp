#include "loans/frmLend.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "loans/loanstore.h"
#include "store/catalogue.h"
#include "toolkit/platform/mRegistry.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

// The widths of the borrower's table.
const int kNameLimit = 100;
const int kShownTitles = 5;
const int kStandardLoanDays = 30;

QString LoanSettingsKey() {
    return "HKEY_CURRENT_USER\\Software\\" + kMakerName + "\\" + App.Title + "\\Loans";
}

QString TitlesText(const QStringList& names) {
    QStringList shown = names.mid(0, kShownTitles);
    if (names.size() > kShownTitles)
        shown << "and " + QString::number(names.size() - kShownTitles) + " more";
    return shown.join("\n");
}

QDateEdit* DateBox(const QDate& date, const QString& name) {
    auto* box = new QDateEdit(date);
    box->setObjectName(name);
    box->setCalendarPopup(true);
    box->setDisplayFormat("yyyy-MM-dd");
    return box;
}

}  // namespace

int DefaultLoanDays() {
    bool isNumber = false;
    const int days = GetRegistryValue(LoanSettingsKey(), "DuePeriodDays").toInt(&isNumber);
    return isNumber && days >= 0 ? days : kStandardLoanDays;
}

void SetDefaultLoanDays(int days) {
    RegistryHandle key = 0;
    CreateRegistryKey(key, LoanSettingsKey());
    SetRegistryValue(key, "DuePeriodDays", QString::number(days), REG_SZ);
}

frmLend::frmLend(const QList<long>& titles, const QStringList& names, QWidget* parent)
    : QDialog(parent), titles_(titles) {
    setObjectName("frmLend");
    setWindowTitle(titles.size() == 1 ? "Lend title"
                                      : "Lend " + QString::number(titles.size()) + " titles");

    lblTitles = new QLabel(TitlesText(names));
    lblTitles->setObjectName("lblTitles");
    cboBorrower = new QComboBox;
    cboBorrower->setObjectName("cboBorrower");
    cboBorrower->setEditable(true);
    cboBorrower->setInsertPolicy(QComboBox::NoInsert);
    cboBorrower->addItems(loans::BorrowerNames(*gDatabase));
    cboBorrower->setCurrentIndex(-1);
    cboBorrower->setEditText(QString());
    cboBorrower->lineEdit()->setMaxLength(kNameLimit);
    cboBorrower->lineEdit()->setPlaceholderText("a known borrower or a new name");

    const QDate today = QDate::currentDate();
    const int days = DefaultLoanDays();
    dtpLent = DateBox(today, "dtpLent");
    chkDue = new QCheckBox("&Due on");
    chkDue->setObjectName("chkDue");
    chkDue->setChecked(days > 0);
    dtpDue = DateBox(today.addDays(days > 0 ? days : kStandardLoanDays), "dtpDue");
    dtpDue->setEnabled(chkDue->isChecked());
    connect(chkDue, &QCheckBox::toggled, dtpDue, &QWidget::setEnabled);
    txtNote = new QLineEdit;
    txtNote->setObjectName("txtNote");

    auto* form = new QFormLayout;
    form->addRow("Title(s):", lblTitles);
    form->addRow("&Borrower:", cboBorrower);
    form->addRow("&Lent on:", dtpLent);
    form->addRow(chkDue, dtpDue);
    form->addRow("&Note:", txtNote);

    cmdOK = new QPushButton("OK");
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton("Cancel");
    cmdCancel->setObjectName("cmdCancel");
    connect(cmdOK, &QPushButton::clicked, this, &frmLend::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
}

void frmLend::cmdOK_Click() {
    const QString borrower = cboBorrower->currentText().trimmed();
    if (borrower.isEmpty()) {
        MsgBox("Please enter the name of the borrower.", vbExclamation, "Lend");
        cboBorrower->setFocus();
        return;
    }
    const QDate lent = dtpLent->date();
    const QDate due = chkDue->isChecked() ? dtpDue->date() : QDate();
    if (due.isValid() && due < lent) {
        MsgBox("The due date cannot lie before the day the title is lent.", vbExclamation, "Lend");
        dtpDue->setFocus();
        return;
    }
    try {
        loans::LendTitles(*gDatabase, titles_, {borrower, lent, due, txtNote->text().trimmed()});
    } catch (const VbError& error) {
        MsgBox(error.Description, vbCritical, "Unable to lend");
        return;
    }
    SetDefaultLoanDays(due.isValid() ? static_cast<int>(lent.daysTo(due)) : 0);
    accept();
}
