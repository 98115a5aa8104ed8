#pragma once

#include <QLocalServer>
#include <QObject>
#include <functional>

// One running program per program folder. A second start finds the first through a local
// socket named after the folder, asks it to come forward, and ends.
class SingleInstance : public QObject {
    Q_OBJECT
  public:
    SingleInstance(const QString& programFolder, QObject* parent);

    // True when another instance answers; it has then been asked to raise its window.
    bool AskPreviousInstanceToRaise();
    // Starts answering later starts; onRaise runs when one asks.
    void Listen(std::function<void()> onRaise);

  private:
    QString serverName_;
    QLocalServer* server_ = nullptr;
};
