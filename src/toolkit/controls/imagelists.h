#pragma once

#include <QIcon>
#include <QList>
#include <QPixmap>
#include <QString>

// The program's image lists and pictures, compiled in as resources. An unknown key or index gives
// a null icon.

// The tree's 16 x 16 list: "foldersclosed", "foldersopen", "closefolder", "openfolder",
// "searchclosed", "searchopen", "tree", "folders", "searchinfolder", "searchinfolderopen".
QIcon Imagelist16(const QString& key);
// One picture of an image list, found by key or by the start of its tag.
struct ListImage {
    QString key;
    QString tag;
    QIcon picture;
};
// Every picture of the 16 x 16 list in order: the tree's pictures (no tag) and the menus'
// pictures, each tagged with the help text of the menu items it belongs to.
QList<ListImage> Imagelist16Images();
// The maintenance window's 16 x 16 button pictures: "add", "rename", "delete".
QIcon DatabaseButtonPicture(const QString& key);
// The title list's 16 x 16 platform icons, 1 to 6.
QIcon PlatformIcon16(int index);
// The toolbar's 24 x 24 list: "addcd", "modifycd", "deletecd", "structure", "search", "import",
// "export", "help", "update", "quit".
QIcon ToolbarIcon24(const QString& key);
// The picture behind the splash window's labels (400 x 260; its lower 90 pixels are plain).
QPixmap SplashPicture();
// The program's icon, 48 x 48 and 256 x 256.
QIcon AppIcon();
