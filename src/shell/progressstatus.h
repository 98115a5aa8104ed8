#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

class frmMain;

// Long work that has run for more than a second shows how far it is in the main window's
// first status panel ("Importing line 12,345 of 300,000"), a few times a second, and the panel
// is cleared when the work ends. Lives as long as the window.
class ProgressStatus : public QObject {
  public:
    explicit ProgressStatus(frmMain* window);
    ~ProgressStatus() override;

  private:
    void Report(const QString& operation, qint64 done, qint64 total);
    void Show(const QString& text);

    frmMain* window_;
    int listener_;
    QString operation_;
    QElapsedTimer running_;
    QElapsedTimer shown_;
};
