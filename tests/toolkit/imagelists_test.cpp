#include "toolkit/imagelists.h"
#include "support/testsupport.h"

namespace {

// The icon's own picture: the size it was drawn at, and not a blank square.
void VerifyIcon(const QIcon& icon, int size, const QString& name) {
    QVERIFY2(!icon.isNull(), qPrintable(name));
    QCOMPARE(icon.availableSizes(), QList<QSize>{QSize(size, size)});
    const QImage image = icon.pixmap(size, size).toImage();
    QCOMPARE(image.size(), QSize(size, size));
    QVERIFY2(image.pixelColor(size / 2, size / 2).alpha() > 0 ||
                 image.pixelColor(size / 2 - 2, size / 2 + 2).alpha() > 0,
             qPrintable(name));
}

}  // namespace

class ImagelistsTest : public QObject {
    Q_OBJECT

  private slots:
    void everyKeyHasItsIcon() {
        for (const QString key :
             {"foldersclosed", "foldersopen", "closefolder", "openfolder", "searchclosed",
              "searchopen", "tree", "folders", "searchinfolder", "searchinfolderopen"})
            VerifyIcon(Imagelist16(key), 16, key);
        for (int index = 1; index <= 6; ++index)
            VerifyIcon(PlatformIcon16(index), 16, QString::number(index));
        for (const QString key : {"addcd", "modifycd", "deletecd", "structure", "search", "import",
                                  "export", "help", "update", "quit"})
            VerifyIcon(ToolbarIcon24(key), 24, key);

        QVERIFY(Imagelist16("maintenance").isNull());
        QVERIFY(PlatformIcon16(0).isNull());
        QVERIFY(PlatformIcon16(7).isNull());
        QVERIFY(ToolbarIcon24("maintenance").isNull());
    }

    void applicationPictures() {
        const QPixmap splash = SplashPicture();
        QCOMPARE(splash.size(), QSize(400, 260));
        // The labels sit on the lower 90 pixels, which are one plain colour.
        const QImage image = splash.toImage();
        const QRgb plain = image.pixel(0, 259);
        for (int y = 175; y < 260; y += 7)
            for (int x = 0; x < 400; x += 9) QCOMPARE(image.pixel(x, y), plain);

        const QIcon icon = AppIcon();
        QCOMPARE(icon.availableSizes(), QList<QSize>({QSize(48, 48), QSize(256, 256)}));
        QCOMPARE(icon.pixmap(256, 256).size(), QSize(256, 256));
    }
};

VELMORA_TEST_MAIN(ImagelistsTest)
#include "imagelists_test.moc"
