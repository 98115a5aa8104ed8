#include "toolkit/controls/imagelists.h"

#include <QFile>

namespace {

QIcon IconFile(const QString& path) {
    return QFile::exists(path) ? QIcon(path) : QIcon();
}

}  // namespace

QIcon Imagelist16(const QString& key) {
    return IconFile(":/icons/tree/" + key + ".png");
}

QList<ListImage> Imagelist16Images() {
    QList<ListImage> images;
    for (const char* key :
         {"foldersclosed", "foldersopen", "closefolder", "openfolder", "searchclosed", "searchopen",
          "tree", "folders", "searchinfolder", "searchinfolderopen"})
        images.append({key, QString(), Imagelist16(key)});
    const QList<QPair<QString, QString>> menuPictures = {
        {"viewproperties", "View properties"},
        {"newcd", "Add a new CD-title"},
        {"renamecd", "Rename the CD-title"},
        {"deletecd", "Delete the CD-title"},
        {"searchcd", "Search for CD"},
        {"maintenance", "Maintenance"},
        {"openfolder", "Read records from folder"},
        {"newfolder", "Add a new folder"},
        {"renamefolder", "Rename a folder"},
        {"deletefolder", "Delete a folder"},
        {"hidefolder", "Hide a folder"},
    };
    for (const auto& [key, tag] : menuPictures) {
        const QString path =
            key == "openfolder" ? ":/icons/tree/openfolder.png" : ":/icons/menu/" + key + ".png";
        images.append({key, tag, IconFile(path)});
    }
    return images;
}

QIcon DatabaseButtonPicture(const QString& key) {
    return IconFile(":/icons/database/" + key + ".png");
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
