#include "update/frmDownload.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QKeyEvent>
#include <QScreen>
#include <QTime>

#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbconvert.h"
#include "toolkit/vb/vbruntime.h"
#include "update/mDownload.h"

namespace {

// Seconds since midnight, as the program's clock reads them.
float Timer() {
    return static_cast<float>(QTime::currentTime().msecsSinceStartOfDay() / 1000.0);
}

QLabel* AddLabel(QGridLayout* grid, int row, int column, const QString& text = QString()) {
    auto* label = new QLabel(text);
    label->setMinimumWidth(column == 0 ? 120 : 300);
    grid->addWidget(label, row, column);
    return label;
}

}  // namespace

frmDownload::frmDownload(QWidget* parent) : QDialog(parent) {
    setWindowTitle("Form1");
    setModal(false);
    auto* grid = new QGridLayout(this);
    AnimatedGifCtl1 = new AnimatedGifCtl(this);
    AnimatedGifCtl1->setFixedSize(64, 48);
    grid->addWidget(AnimatedGifCtl1, 0, 0, 2, 1);
    StatusLabel = AddLabel(grid, 0, 1);
    SourceLabel = AddLabel(grid, 1, 1);
    DownloadTo = AddLabel(grid, 2, 0, "Download to:");
    ToLabel = AddLabel(grid, 2, 1);
    EstimatedTimeLeft = AddLabel(grid, 3, 0, "Estimated time left:");
    TimeLabel = AddLabel(grid, 3, 1);
    TransferRate = AddLabel(grid, 4, 0, "Transfer rate:");
    RateLabel = AddLabel(grid, 4, 1);
    ProgressBar = new QProgressBar(this);
    ProgressBar->setTextVisible(false);
    grid->addWidget(ProgressBar, 5, 0, 1, 2);
    CancelButton = new QPushButton("Cancel", this);
    grid->addWidget(CancelButton, 6, 1, Qt::AlignRight);
    connect(CancelButton, &QPushButton::clicked, this, &frmDownload::CancelButton_Click);
    // Loading shows nothing: the window waits off the screen until a transfer brings it in.
    adjustSize();
    move(-width(), -height());
}

void frmDownload::CancelButton_Click() {
    StatusLabel->setText("Cancelling...");
    AnimatedGifCtl1->StopTimer();
    bCancel = true;
    // A transfer waiting for the server gives up at once instead of after its timeout.
    Inet1.Cancel();
}

void frmDownload::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        CancelButton_Click();
    else
        QDialog::keyPressEvent(event);
}

void frmDownload::reject() {
    CancelButton_Click();
}

void frmDownload::DownloadFile(const QString& sURL, const QString& sSaveAs,
                               const QString& sUserName, const QString& sPassword, bool bHideOnEnd,
                               bool& bSucceeded) {
    // The transfer pumps events throughout; the program must not end underneath it.
    const BusyScope busy;
    bCancel = false;
    bSucceeded = false;
    lPosition = 0;
    lTotal = 0;
    bool bResume = false;
    fileTrapInstalled_ = false;
    // Local paths are joined with "/" in this program.
    sLocalName = SplitPath(sSaveAs, true, true);
    sRemoteName = SplitPath(sURL, true, true);
    for (QLabel* label : {SourceLabel, TimeLabel, ToLabel, RateLabel}) label->clear();
    AnimatedGifCtl1->LoadGif(100);
    AnimatedGifCtl1->StartTimer();
    show();
    const QRect screen = this->screen()->geometry();
    move((screen.width() - width()) / 2, (screen.height() - height()) / 2);
    Inet1.UserName = sUserName;
    Inet1.Password = sPassword;

    for (;;) {
        try {
            RunPass(sURL, sSaveAs, bResume);
        } catch (const VbError& error) {
            if (fileTrapInstalled_)
                ReportFileError(error);
            else
                ReportError(error);
        }
        iFile.close();
        // The count says what arrived, the file what stayed: both must hold the whole body.
        if (lPosition == lTotal && lPosition >= 1 && QFileInfo(sSaveAs).size() == lTotal) {
            StatusLabel->setText("Download completed!");
            bSucceeded = true;
            break;
        }
        if (!QFile::exists(sSaveAs)) {
            bCancel = true;
            break;
        }
        if (bCancel) break;
        const int answer = MsgBox(
            "The connection with the server was reset.\r\nClick \"Retry\" to resume downloading "
            "the file.\r(Approximate time remaining: " +
                FormatTimeLeft(sngLeft) + ")\r\nClick \"Cancel\" to cancel downloading the file.",
            vbRetryCancel + vbExclamation, "Download Incomplete");
        if (answer != vbRetry) break;
        bResume = true;
    }
    // A cancelled or refused download leaves no partial file.
    if (!bSucceeded && QFile::exists(sSaveAs)) QFile::remove(sSaveAs);

    AnimatedGifCtl1->StopTimer();
    Inet1.Cancel();
    EndProgress("Downloading byte");
    if (bHideOnEnd)
        hide();
    else
        Form_Unload();
}

// Unloading must not go through reject(): that is the Cancel button's road.
void frmDownload::Form_Unload() {
    if (windowState() == Qt::WindowNoState) move(-width(), -height());
    hide();
}

void frmDownload::RunPass(const QString& sURL, const QString& sSaveAs, bool& bResume) {
    if (bResume) {
        StatusLabel->setText("Resuming download...");
        // The tail of the file may be damaged, so the last 4 KiB come again.
        lPosition = std::max(0, lPosition - 4096);
    } else {
        StatusLabel->setText("Getting file information...");
    }
    DoEvents();
    Inet1.URL = sURL;
    Inet1.Execute("GET", "Range: bytes=" + QString::number(lPosition) + "-\r\n");
    while (Inet1.StillExecuting()) {
        DoEvents();
        if (bCancel) return;
    }
    StatusLabel->setText("Saving:");
    SourceLabel->setText(FitText(SourceLabel, sRemoteName + " from " + Inet1.RemoteHost()));
    ToLabel->setText(FitText(ToLabel, sSaveAs));
    if (!AcceptResponse(bResume, sSaveAs)) return;

    if (!bResume) {
        sngStart = Timer() - 1.0f;
        lTotal = CLng(QStringView(Inet1.GetHeader("Content-Length")).trimmed().toDouble());
        if (lTotal == 0) return;
    }
    // Without drive letters, every absolute destination gets the test, on the file system
    // that will hold it.
    if (sSaveAs.startsWith('/') && DiskFreeBytes(sSaveAs) < lTotal) {
        MsgBox(
            "There is not enough free space on disk for this file.\r\nPlease free up some disk "
            "space and try again.",
            vbCritical, "Insufficient Disk Space");
        return;
    }
    ProgressBar->setValue(0);
    ProgressBar->setMaximum(lTotal);
    DoEvents();
    if (!bResume) lPosition = 0;
    ReceiveBody(sSaveAs, bResume);
}

bool frmDownload::AcceptResponse(bool& bResume, const QString& sSaveAs) {
    const QString headers = Inet1.GetHeader();
    auto refuse = [this](const QString& text, int flags, const QString& title) {
        MsgBox(text, flags, title);
        bCancel = true;
        return false;
    };
    switch (ClassifyResponse(headers)) {
        case ResponseKind::Ok:
            if (!bResume) return true;
            QFile::remove(sSaveAs);
            if (MsgBox("The server is unable to resume this download.\r\rDo you want to continue "
                       "anyway?",
                       vbYesNo + vbExclamation, "Unable to Resume Download") == vbYes) {
                bResume = false;
                return true;
            }
            bCancel = true;
            return false;
        case ResponseKind::Partial:
            return true;
        case ResponseKind::NoContent:
            return refuse("Nothing to download!", vbInformation, "No Content");
        case ResponseKind::Unauthorized:
            return refuse("Authorization failed!", vbCritical, "Unauthorized");
        case ResponseKind::NotFound:
            return refuse("The file, \"" + Inet1.URL + "\" was not found!", vbCritical,
                          "File Not Found");
        case ResponseKind::NoConnection:
            return refuse(
                "Cannot establish connection.\r\nCheck your Internet connection and try again.",
                vbExclamation, "Cannot Establish Connection");
        case ResponseKind::Other:
            break;
    }
    return refuse("The server returned the following response:\r\n" + FirstHeaderLine(headers),
                  vbCritical, "Error Downloading File");
}

void frmDownload::ReceiveBody(const QString& sSaveAs, bool bResume) {
    fileTrapInstalled_ = true;
    const QString folder = SplitPath(sSaveAs, false, true);
    // Without Wine the prefix has no Windows folder for TEMP to go in: the whole path is made.
    if (!folder.isEmpty() && !QFileInfo(folder).isDir()) QDir().mkpath(folder);
    iFile.setFileName(sSaveAs);
    // Unbuffered, so that a write the disk refuses fails at its own chunk, not at the close.
    if (!iFile.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        throw VbError(75, iFile.errorString());
    if (bResume) iFile.seek(lPosition);
    // A write cut short without a word from the system is a full disk.
    const auto writeError = [this] {
        return VbError(61, iFile.error() == QFileDevice::NoError ? QString() : iFile.errorString());
    };
    QByteArray bytChunk;
    do {
        bytChunk = Inet1.GetChunk(1024);
        if (iFile.write(bytChunk) != bytChunk.size()) throw writeError();
        if (bCancel) break;
        lPosition += static_cast<qint32>(bytChunk.size());
        sngRate = static_cast<float>(lPosition) / (Timer() - sngStart);
        if (sngRate == 0) throw VbError(11);
        sngLeft = static_cast<float>(lTotal - lPosition) / sngRate;
        ShowProgress();
        ReportProgress("Downloading byte", lPosition, lTotal);
    } while (bytChunk.size() > 1);
    iFile.close();
    if (iFile.error() != QFileDevice::NoError) throw writeError();
}

void frmDownload::ShowProgress() {
    // The bar refuses a value above its maximum, as a body longer than announced would give.
    if (lPosition > lTotal) throw VbError(380);
    TimeLabel->setText(FormatTimeLeft(sngLeft) + " (" + FormatFileSize(lPosition) + " of " +
                       FormatFileSize(lTotal) + " copied)");
    RateLabel->setText(FormatFileSize(sngRate, "###.0") + "/Sec");
    ProgressBar->setValue(lPosition);
    setWindowTitle(Format(static_cast<double>(lPosition) / lTotal, "##0%") + " of " + sLocalName +
                   " Completed");
}

void frmDownload::ReportError(const VbError& error) {
    MsgBox("Error: " + error.Description + " occurred.", vbCritical, "Error Downloading File");
}

void frmDownload::ReportFileError(const VbError& error) {
    MsgBox("Cannot write file to disk.\r\nError " + QString::number(error.Number) + ": " +
               error.Description,
           vbCritical, "Error Downloading File");
}
