#pragma once

#include <QLocalServer>
#include <QObject>
#include <functional>

// One running program per catalogue folder. The claim is a lock on a file in that folder, which
// the process holds until it ends, so that a start during another one's exit still finds it. A
// later start asks the first, through a local socket named after the folder, to come forward.
class SingleInstance : public QObject {
    Q_OBJECT
  public:
    SingleInstance(const QString& folder, QObject* parent);
    ~SingleInstance() override;

    // True when no other program holds the folder; this one then holds it until the process ends.
    bool Claim();
    // Asks the holder to raise its window; false when none answers.
    bool AskPreviousInstanceToRaise();
    // Starts answering later starts; onRaise runs when one asks.
    void Listen(std::function<void()> onRaise);
    // The window gives the folder up; the process keeps the lock, so that only a window of
    // this same process may claim it again.
    void Release();

  private:
    QString folder_;
    QString serverName_;
    QLocalServer* server_ = nullptr;
};
