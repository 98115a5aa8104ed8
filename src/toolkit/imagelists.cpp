#include "toolkit/imagelists.h"

#include <QFile>

namespace {

QIcon IconFile(const QString& path) {
    return QFile::exists(path) ? QIcon(path) : QIcon();
}

}  // namespace

QIcon Imagelist16(const QString& key) {
    return IconFile(":/icons/tree/" + key + ".png");
}

QIcon PlatformIcon16(int index) {
    return IconFile(QString(":/icons/platforms/platform%1.png").arg(index));
}

QIcon ToolbarIcon24(const QString& key) {
    return IconFile(":/icons/toolbar/" + key + ".png");
}

QPixmap SplashPicture() {
    return QPixmap(":/icons/splash.png");
}

QIcon AppIcon() {
    QIcon icon;
    icon.addFile(":/icons/app/48/velmora.png", QSize(48, 48));
    icon.addFile(":/icons/app/256/velmora.png", QSize(256, 256));
    return icon;
}
