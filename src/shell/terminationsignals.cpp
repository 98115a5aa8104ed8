#include "shell/terminationsignals.h"

#include <sys/socket.h>
#include <unistd.h>
#include <QGuiApplication>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QTimer>
#include <csignal>

#include "shell/frmMain.h"
#include "toolkit/vb/longwork.h"

namespace {

// The handler may only write to a descriptor; the event loop does the rest.
int signalPipe[2] = {-1, -1};

void WriteSignalNumber(int signalNumber) {
    const char byte = static_cast<char>(signalNumber);
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[0], &byte, 1);
}

const int kRetryMilliseconds = 500;

}  // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent) {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe) != 0) return;
    notifier_ = new QSocketNotifier(signalPipe[1], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (::read(signalPipe[1], &byte, 1) == 1) CloseMainWindow();
    });
    struct sigaction action = {};
    action.sa_handler = WriteSignalNumber;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signalNumber : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signalNumber, &action, nullptr);
    // A logout in the middle of long work is held off; the program ends once the work is done.
    connect(qApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager& manager) {
        if (!ProgramIsBusy()) return;
        if (manager.allowsInteraction()) manager.cancel();
        CloseMainWindow();
    });
}

TerminationSignals::~TerminationSignals() {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    for (const int signalNumber : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signalNumber, &action, nullptr);
    ::close(signalPipe[0]);
    ::close(signalPipe[1]);
    signalPipe[0] = signalPipe[1] = -1;
}

void TerminationSignals::CloseMainWindow() {
    if (!gMainForm) return;
    // A close refused while work runs is remembered and made when it ends; only the start-up's
    // own refusal needs asking again.
    if (!gMainForm->close() && !ProgramIsBusy())
        QTimer::singleShot(kRetryMilliseconds, this, [this] { CloseMainWindow(); });
}
