#pragma once

#include <QLabel>
#include <QTimer>
#include <QWidget>

// The start-up window: floats above everything without taking the focus and tells what the
// start-up is doing, then stays over the running program until its timer takes it away.
class frmSplash : public QWidget {
    Q_OBJECT
  public:
    frmSplash();
    ~frmSplash() override;

    void SetStatus(const QString& text);
    QString Status() const { return lblStatus->text(); }
    // Moves off the screen so the close is not seen, then goes.
    void Unload();

    QLabel* lblStatus;
    QLabel* lblCreatedBy;
    QLabel* lblWebsite;
    QLabel* lblEmail;
    QTimer* Timer;

  private:
    void Form_Load();
};

// The one splash of the run, or null once it has gone.
extern frmSplash* gSplashForm;
