#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "support/testsupport.h"
#include "toolkit/mHelp.h"
#include "toolkit/mUtility.h"
#include "toolkit/vbruntime.h"

class UtilityTest : public QObject {
    Q_OBJECT

    QList<QUrl> opened;
    bool openerSucceeds = true;

  private slots:
    void init() {
        opened.clear();
        openerSucceeds = true;
        SetDocumentOpener([this](const QUrl& url) {
            opened << url;
            return openerSucceeds;
        });
    }
    void cleanup() { SetDocumentOpener({}); }

    void windowsFoldersComeFromTheWinePrefix() {
        qputenv("WINEPREFIX", "/srv/wine/cd/");
        QCOMPARE(GetWindowsDirectory(), QString("/srv/wine/cd/drive_c/windows"));
        QCOMPARE(GetWindowsTempFolder(), QString("/srv/wine/cd/drive_c/windows/TEMP"));
        qunsetenv("WINEPREFIX");
        QCOMPARE(GetWindowsDirectory(), QDir::homePath() + "/.wine/drive_c/windows");
        QVERIFY(!QFileInfo::exists(GetWindowsTempFolder()));
    }

    void windowsPathsAreFoundInThePrefixWithoutRegardToCase() {
        QTemporaryDir prefix;
        qputenv("WINEPREFIX", prefix.path().toLocal8Bit());
        QVERIFY(QDir().mkpath(prefix.filePath("drive_c/Program Files/Plus!/Deluxe CD")));
        QCOMPARE(WindowsPathInPrefix("c:\\program files\\PLUS!\\deluxe cd\\new.mdb"),
                 prefix.path() + "/drive_c/Program Files/Plus!/Deluxe CD/new.mdb");
        QVERIFY(QDir().mkpath(prefix.filePath("dosdevices")));
        QVERIFY(QFile::link("../drive_c", prefix.filePath("dosdevices/c:")));
        QCOMPARE(WindowsPathInPrefix("C:/Program Files\\"),
                 prefix.path() + "/dosdevices/c:/Program Files");
        QCOMPARE(WindowsPathInPrefix("D:\\cd.mdb"), prefix.path() + "/dosdevices/d:/cd.mdb");
        QCOMPARE(WindowsPathInPrefix("/home/me/cd.mdb"), QString("/home/me/cd.mdb"));
        qunsetenv("WINEPREFIX");
    }

    void temporaryFilesAreNewAndNamedAfterTheProgram() {
        QCOMPARE(GetTempFolder(), QDir::tempPath() + "/");
        const QString first = GetTempName();
        const QString second = GetTempName();
        QVERIFY(first != second);
        for (const QString& name : {first, second}) {
            const QFileInfo file(name);
            QVERIFY(file.exists());
            QCOMPARE(file.size(), 0);
            QCOMPARE(file.absolutePath() + "/", GetTempFolder());
            QVERIFY(file.fileName().startsWith(App.EXEName));
            QFile::remove(name);
        }
    }

    void documentsAndHelpGoToTheDesktop() {
        QTemporaryDir dir;
        const QString manual = dir.filePath("velmora.html");
        QFile file(manual);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();

        QCOMPARE(StartDocument("http://www.dorviksoftware.example/velmora"), int(kStartDone));
        QCOMPARE(StartDocument("mailto:support@dorviksoftware.example"), int(kStartDone));
        QCOMPARE(StartDocument(QString(manual).replace('/', '\\')), int(kStartDone));
        QCOMPARE(StartDocument(dir.filePath("missing.html")), int(kStartFileNotFound));
        QVERIFY(ShowHelpContents(manual) != 0);
        QCOMPARE(ShowHelpContents(dir.filePath("missing.html")), 0);
        QCOMPARE(opened, QList<QUrl>({QUrl("http://www.dorviksoftware.example/velmora"),
                                      QUrl("mailto:support@dorviksoftware.example"),
                                      QUrl::fromLocalFile(manual), QUrl::fromLocalFile(manual)}));

        openerSucceeds = false;
        QCOMPARE(StartDocument(manual), int(kStartNoAssociation));
        QCOMPARE(ShowHelpContents(manual), 0);
    }
};

VELMORA_TEST_MAIN(UtilityTest)
#include "utility_test.moc"
