#pragma once

#include <QObject>
#include <QString>
#include <functional>

class QDialog;
class QWidget;

// Long work (imports, exports, the download, compaction, any box that waits for the user) pumps
// events while it runs, and a close that arrives through that pumping must not free what the
// work still uses. Every loop that pumps events inside a handler (a yield, a box, a chooser, a
// menu, a modal window) runs inside a BusyScope, and the closes wait for them:
// - the program's end runs only when nothing is busy and no window is open over the catalogue;
//   an end asked for sooner closes the open windows first, the top-most first, each as Cancel
//   once nothing of its own is under way, and then runs;
// - a window's unload runs only when nothing pumps events above the window's own loop (no box,
//   yield, modal window or other unload of its own is under way); asked for sooner, it runs
//   once the work above has returned.
class BusyScope {
  public:
    BusyScope();
    ~BusyScope();
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;
};

bool ProgramIsBusy();

// Asks for the program's end. True when it may run now: nothing is busy and every open window
// has closed at once. Otherwise false, and end runs later from the event loop, once the windows
// have closed and the work has returned; a second request before then is one.
bool EndProgramWhenIdle(std::function<void()> end);

// The windows an end closes first. A dialog run by RunModal is one while it runs; a window that
// works on the catalogue without a loop of its own adds itself while it is open. Closing one as
// Cancel rejects a dialog and closes any other window.
void AddOpenWindow(QWidget* window);
void RemoveOpenWindow(QWidget* window);

// Runs dialog's own loop. The caller goes on once the dialog has closed, so it counts as busy
// meanwhile. A dialog that went with its owner answers QDialog::Rejected.
int RunModal(QDialog* dialog);

// Called at the start of a window's unload: true when it may run now; otherwise unload runs
// once the work above the window's loop has returned (not at all if the window has gone), and
// the caller returns.
bool UnloadMayRunNow(QWidget* window, std::function<void()> unload);

// While one is held the catalogue is closed: the user's input (mouse, keys, wheel, menus, close
// buttons) reaches only the top-most modal window, whatever window it was aimed at.
class InputBlock : public QObject {
  public:
    InputBlock();
    ~InputBlock() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

// Runs action now when nothing is busy, else from the event loop once all work has returned:
// work that closes the catalogue (a compaction) must not run underneath other work.
void RunWhenIdle(std::function<void()> action);

// Long work reports each step: what it does ("Importing line", "Exporting title"...), how far
// it is and how far it goes. A total of 0 ends the report. The main window shows the steps, and
// the fault-injection test cuts the work off at chosen ones.
using ProgressListener = std::function<void(const QString& operation, qint64 done, qint64 total)>;
void ReportProgress(const QString& operation, qint64 done, qint64 total);
void EndProgress(const QString& operation);
// Returns a handle for RemoveProgressListener.
int AddProgressListener(ProgressListener listener);
void RemoveProgressListener(int handle);
