#pragma once

#include <QString>
#include <functional>

// Long work (imports, exports, the download, compaction, any box that waits for the user) pumps
// events while it runs, and a close that arrives through that pumping must not free what the
// work still uses. Such work holds a BusyScope; the program's end is refused while one is held
// and runs once the last one is gone.
class BusyScope {
  public:
    BusyScope();
    ~BusyScope();
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;
};

bool ProgramIsBusy();

// Runs action now when nothing is busy, else once the last BusyScope has ended (from the event
// loop, so the work that held it has returned first). A second request before then is one.
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
