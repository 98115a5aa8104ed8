#pragma once

#include <QGroupBox>

class QPushButton;
class QTreeWidget;

// The title editor's part of the loan register: the title's loans (borrower, lent, due,
// returned, note), newest first, with Lend... while the title is in and Returned while it is
// out. Lending and taking back write at once, apart from the editor's own save.
class LoanHistoryPanel : public QGroupBox {
    Q_OBJECT
  public:
    explicit LoanHistoryPanel(QWidget* parent = nullptr);

    // Shows the loans of the stored title idcd (name is shown in the lend window); 0 for a
    // title not yet stored, which cannot be lent.
    void Load(long idcd, const QString& name);

    QTreeWidget* lstLoans;
    QPushButton* cmdLend;
    QPushButton* cmdReturned;

  signals:
    // A loan was written: the main window's folder and count follow.
    void LoansChanged();

  private:
    void Lend();
    void TakeBack();

    long idcd_ = 0;
    QString name_;
};
