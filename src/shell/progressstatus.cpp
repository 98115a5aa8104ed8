#include "shell/progressstatus.h"

#include <QLocale>

#include "shell/frmMain.h"
#include "toolkit/vb/longwork.h"

namespace {

constexpr qint64 kQuietMilliseconds = 1000;
constexpr qint64 kRefreshMilliseconds = 250;

}  // namespace

ProgressStatus::ProgressStatus(frmMain* window)
    : QObject(window),
      window_(window),
      listener_(AddProgressListener([this](const QString& operation, qint64 done, qint64 total) {
          Report(operation, done, total);
      })) {}

ProgressStatus::~ProgressStatus() {
    RemoveProgressListener(listener_);
}

void ProgressStatus::Report(const QString& operation, qint64 done, qint64 total) {
    if (total == 0) {
        if (shown_.isValid()) Show(QString());
        operation_.clear();
        running_.invalidate();
        shown_.invalidate();
        return;
    }
    if (operation != operation_ || !running_.isValid()) {
        operation_ = operation;
        running_.start();
        shown_.invalidate();
    }
    if (running_.elapsed() <= kQuietMilliseconds ||
        (shown_.isValid() && shown_.elapsed() < kRefreshMilliseconds))
        return;
    shown_.start();
    const QLocale numbers(QLocale::English, QLocale::UnitedStates);
    Show(operation + " " + numbers.toString(done) + " of " + numbers.toString(total));
}

void ProgressStatus::Show(const QString& text) {
    window_->SetPanelText(1, text);
    // Most loops do not let events through, so the panel is painted here and now.
    window_->StatusBar1->repaint();
}
