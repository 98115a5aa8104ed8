#pragma once

#include <QWidget>
#include <array>

class QListWidget;
class QToolButton;

// The maintenance window's list of borrowers, with the gestures of its other lists: the three
// picture buttons, Ctrl+Insert, F2 and Ctrl+Delete on the list.
class BorrowersPanel : public QWidget {
    Q_OBJECT
  public:
    explicit BorrowersPanel(QWidget* parent = nullptr);

    // Fills the list from the catalogue and selects the borrower id, if it is there.
    void Fill(long selectId = 0);
    // action: 1 add, 2 rename, 3 delete, on the selected borrower.
    void Picture_Click(int action);
    // True once anything was changed.
    bool Changed() const { return changed_; }

    QListWidget* lstBorrower;
    // [0 add, 1 rename, 2 delete]
    std::array<QToolButton*, 3> pictures;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool changed_ = false;
};
