#pragma once

#include <QDialog>
#include <QList>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;

// The small window that lends one or several titles: to whom, since when, until when, and a
// note. OK writes every loan in one transaction; a refusal of the catalogue leaves the window
// open with nothing written.
class frmLend : public QDialog {
    Q_OBJECT
  public:
    // titles: the idcd of every title to lend; names: what the window shows of them.
    frmLend(const QList<long>& titles, const QStringList& names, QWidget* parent = nullptr);

    void cmdOK_Click();

    QLabel* lblTitles;
    QComboBox* cboBorrower;
    QDateEdit* dtpLent;
    QCheckBox* chkDue;
    QDateEdit* dtpDue;
    QLineEdit* txtNote;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

  private:
    QList<long> titles_;
};

// The period between lending and the due date that the window proposes, in days; 0 proposes
// no due date. The window keeps the period of its last loan here.
int DefaultLoanDays();
void SetDefaultLoanDays(int days);
