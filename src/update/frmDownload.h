#pragma once

#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "toolkit/controls/AnimatedGifCtl.h"
#include "toolkit/vb/vberror.h"
#include "update/Inet.h"

// The progress window of one HTTP transfer into a local file, resumable with a byte range
// after the connection breaks; also the live update's check.
class frmDownload : public QDialog {
    Q_OBJECT

  public:
    explicit frmDownload(QWidget* parent = nullptr);

    // Fetches sURL into sSaveAs; bSucceeded is true only when the whole file arrived. The
    // window hides at the end with bHideOnEnd, else it closes.
    void DownloadFile(const QString& sURL, const QString& sSaveAs, const QString& sUserName,
                      const QString& sPassword, bool bHideOnEnd, bool& bSucceeded);
    // Asks the update server for a newer release of this major version and, if the user agrees,
    // fetches the update program into sUpdateProgram. True only when that program arrived.
    bool Update();

    AnimatedGifCtl* AnimatedGifCtl1;
    Inet Inet1;
    QProgressBar* ProgressBar;
    QPushButton* CancelButton;
    QLabel* StatusLabel;
    QLabel* SourceLabel;
    QLabel* DownloadTo;
    QLabel* ToLabel;
    QLabel* EstimatedTimeLeft;
    QLabel* TimeLabel;
    QLabel* TransferRate;
    QLabel* RateLabel;

    bool bCancel = false;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void reject() override;

  private:
    void CancelButton_Click();
    void RunPass(const QString& sURL, const QString& sSaveAs, bool& bResume);
    bool AcceptResponse(bool& bResume, const QString& sSaveAs);
    void ReceiveBody(const QString& sSaveAs, bool bResume);
    void ShowProgress();
    void ReportError(const VbError& error);
    void ReportFileError(const VbError& error);
    void Form_Unload();

    qint32 lPosition = 0;
    qint32 lTotal = 0;
    float sngStart = 0;
    float sngRate = 0;
    float sngLeft = 0;
    QString sRemoteName;
    QString sLocalName;
    QFile iFile;
    bool fileTrapInstalled_ = false;
};

// The update program fetched by the last check; read by the caller after Update returns.
extern QString sUpdateProgram;
// The update server: the program's constant unless VELMORA_UPDATE_SERVER names another.
QString UpdateServerAddress();
