#pragma once

#include <QObject>

class QSocketNotifier;

// A desktop session ends its programs with SIGTERM (and a terminal with SIGINT or SIGHUP). Each
// of them closes the main window as Quit does, so that the catalogue is compacted and guarded
// again; a window that is busy is asked again until it can close.
class TerminationSignals : public QObject {
    Q_OBJECT
  public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

  private:
    void CloseMainWindow();

    QSocketNotifier* notifier_ = nullptr;
};
