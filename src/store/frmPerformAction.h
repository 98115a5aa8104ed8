#pragma once

#include <QDialog>
#include <QLabel>
#include <QTimer>

// The frame for one long action behind a small window that says what is going on. The user
// cannot close it: it closes itself when the action is done, after half a second more so that a
// quick action can still be read.
class frmPerformAction : public QDialog {
    Q_OBJECT
  public:
    enum Action { CompactMainDatabase = 1 };

    frmPerformAction();

    // Stores the arguments and, for action 1, runs the action with the window shown modally
    // over owner. The window then unloads itself.
    void PerformAction(int iWhichAction, QWidget* owner, bool reopen, const QString& filter,
                       const QString& sort, bool spare);

    QLabel* lblAction;
    QTimer* tmrStart;
    QTimer* tmrControl;
    QTimer* tmrUnload;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

  private:
    void Form_Load();
    void tmrStart_Timer();
    void tmrControl_Timer();
    void tmrUnload_Timer();

    qint16 action_ = 0;
    bool reopen_ = false;
    QString filter_;
    QString sort_;
    bool spare_ = false;
    bool done_ = false;
};
