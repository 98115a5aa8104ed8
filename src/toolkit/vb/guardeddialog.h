#pragma once

// A modal dialog with an owner window. The owner may be deleted while the dialog's own loop
// runs (a termination signal unloads the windows), and it deletes its children with it: a
// dialog on the stack would then be deleted twice. This one lives on the heap and knows when
// it has gone.

#include <QDialog>
#include <QPointer>
#include <utility>

#include "toolkit/vb/longwork.h"

template <class Dialog>
class GuardedDialog {
  public:
    template <class... Args>
    explicit GuardedDialog(Args&&... args) : dialog_(new Dialog(std::forward<Args>(args)...)) {}
    ~GuardedDialog() { delete dialog_.data(); }
    GuardedDialog(const GuardedDialog&) = delete;
    GuardedDialog& operator=(const GuardedDialog&) = delete;

    Dialog* operator->() const { return dialog_.data(); }
    // A dialog that went with its owner answers as cancelled; check Alive before reading it.
    int exec() { return RunModal(dialog_.data()); }
    bool Alive() const { return !dialog_.isNull(); }

  private:
    QPointer<Dialog> dialog_;
};
