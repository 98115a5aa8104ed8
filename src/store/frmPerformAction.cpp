#include "store/frmPerformAction.h"

#include <QCloseEvent>
#include <QPointer>
#include <QScreen>
#include <QVBoxLayout>

#include "store/catalogue.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/vbruntime.h"

frmPerformAction::frmPerformAction()
    : QDialog(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      lblAction(new QLabel("Compacting main database...", this)),
      tmrStart(new QTimer(this)),
      tmrControl(new QTimer(this)),
      tmrUnload(new QTimer(this)) {
    setObjectName("frmPerformAction");
    setWindowTitle(App.Title);
    lblAction->setObjectName("lblAction");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 18, 24, 18);
    layout->addWidget(lblAction);
    setFixedSize(sizeHint().expandedTo(QSize(260, 70)));

    tmrStart->setInterval(180);
    tmrControl->setInterval(100);
    tmrUnload->setInterval(500);
    connect(tmrStart, &QTimer::timeout, this, &frmPerformAction::tmrStart_Timer);
    connect(tmrControl, &QTimer::timeout, this, &frmPerformAction::tmrControl_Timer);
    connect(tmrUnload, &QTimer::timeout, this, &frmPerformAction::tmrUnload_Timer);
    Form_Load();
    tmrStart->start();
    tmrControl->start();
}

void frmPerformAction::Form_Load() {
    done_ = false;
}

void frmPerformAction::PerformAction(int iWhichAction, QWidget* owner, bool reopen,
                                     const QString& filter, const QString& sort, bool spare) {
    action_ = static_cast<qint16>(iWhichAction);
    reopen_ = reopen;
    filter_ = filter;
    sort_ = sort;
    spare_ = spare;
    if (action_ == CompactMainDatabase) {
        setParent(owner, windowFlags());
        setWindowModality(Qt::ApplicationModal);
        // The owner may already have moved out of sight for its closing work.
        move(screen()->availableGeometry().center() - rect().center());
        // The catalogue is closed while the window runs: nothing may end the program, unload
        // a window or reach the catalogue through another window meanwhile.
        const BusyScope compacting;
        const InputBlock catalogueClosed;
        const QPointer<frmPerformAction> alive(this);
        exec();
        if (!alive) return;
    }
    done_ = true;
    deleteLater();
}

void frmPerformAction::tmrStart_Timer() {
    tmrStart->stop();
    if (action_ == CompactMainDatabase) {
        CompactCatalogue(reopen_, filter_, sort_);
        done_ = true;
    }
}

void frmPerformAction::tmrControl_Timer() {
    if (!done_) return;
    tmrControl->stop();
    tmrUnload->start();
}

void frmPerformAction::tmrUnload_Timer() {
    tmrUnload->stop();
    done(QDialog::Accepted);
}

// Neither the window's close button (there is none), Alt+F4 nor Escape ends the action.
void frmPerformAction::closeEvent(QCloseEvent* event) {
    event->ignore();
}

void frmPerformAction::reject() {}
