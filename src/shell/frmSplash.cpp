#include "shell/frmSplash.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

#include "toolkit/controls/imagelists.h"
#include "toolkit/vb/vbruntime.h"

frmSplash* gSplashForm = nullptr;

namespace {
const QSize kSplashSize(400, 260);
}

frmSplash::frmSplash()
    : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      lblStatus(new QLabel("Starting main application", this)),
      lblCreatedBy(new QLabel(this)),
      lblWebsite(new QLabel(this)),
      lblEmail(new QLabel(this)),
      Timer(new QTimer(this)) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(App.Title);
    setFixedSize(kSplashSize);

    auto* background = new QLabel(this);
    background->setPixmap(
        SplashPicture().scaled(kSplashSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    background->setGeometry(rect());
    background->lower();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 12, 16, 10);
    layout->setSpacing(1);
    layout->addStretch();
    for (QLabel* label : {lblCreatedBy, lblWebsite, lblEmail, lblStatus}) {
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
        layout->addWidget(label);
    }
    QFont statusFont = lblStatus->font();
    statusFont.setItalic(true);
    lblStatus->setFont(statusFont);

    Timer->setInterval(2500);
    Timer->setSingleShot(true);
    connect(Timer, &QTimer::timeout, this, &frmSplash::Unload);
    Form_Load();
}

frmSplash::~frmSplash() {
    if (gSplashForm == this) gSplashForm = nullptr;
}

void frmSplash::Form_Load() {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    move(screen.x() + (screen.width() - width()) / 2,
         screen.y() + (screen.height() - height()) / 2);
    lblCreatedBy->setText("Created by " + kMakerName);
    lblWebsite->setText(kMakerWebAddress);
    lblEmail->setText(kMakerEmail);
}

void frmSplash::SetStatus(const QString& text) {
    lblStatus->setText(text);
}

void frmSplash::Unload() {
    Timer->stop();
    if (windowState() == Qt::WindowNoState) move(-width(), -height());
    close();
}
