#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "support/testsupport.h"
#include "toolkit/mRegistry.h"

namespace {

QString StorePath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           "/velmora/registry.ini";
}

QString OdbcPath() {
    return QDir::homePath() + "/.odbc.ini";
}

}  // namespace

class RegistryTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        QFile::remove(StorePath());
        QFile::remove(OdbcPath());
    }

    void rootKeyHandles() {
        QCOMPARE(RootKeyHandle("HKEY_CLASSES_ROOT"), 0x80000000u);
        QCOMPARE(RootKeyHandle("HKEY_CURRENT_USER"), 0x80000001u);
        QCOMPARE(RootKeyHandle("HKEY_LOCAL_MACHINE"), 0x80000002u);
        QCOMPARE(RootKeyHandle("HKEY_USERS"), 0x80000003u);
        QCOMPARE(RootKeyHandle("HKEY_PERFORMANCE_DATA"), 0x80000004u);
        QCOMPARE(RootKeyHandle("HKEY_CURRENT_CONFIG"), 0x80000005u);
        QCOMPARE(RootKeyHandle("HKEY_DYN_DATA"), 0x80000006u);
        QCOMPARE(RootKeyHandle("hkey_current_user"), 0u);
        QCOMPARE(RootKeyHandle("HKEY_ELSEWHERE"), 0u);
    }

    void parseKeySplitsAndWarnsAboutBadPaths() {
        ScriptedDialogs dialogs;
        QString key = "HKEY_LOCAL_MACHINE\\Software\\Dorvik Software\\Velmora";
        RegistryHandle root = 0;
        ParseKey(key, root);
        QCOMPARE(key, QString("Software\\Dorvik Software\\Velmora"));
        QCOMPARE(root, HKEY_LOCAL_MACHINE);
        key = "HKEY_USERS";
        ParseKey(key, root);
        QCOMPARE(key, QString());
        QCOMPARE(root, HKEY_USERS);
        QVERIFY(dialogs.msgBoxes.isEmpty());

        key = "HKEY_CURRENT_USER\\Software\\";
        ParseKey(key, root);
        QCOMPARE(key, QString("Software\\"));
        QCOMPARE(root, HKEY_CURRENT_USER);
        key = "Software\\Dorvik";
        ParseKey(key, root);
        QCOMPARE(root, 0u);
        QCOMPARE(dialogs.prompts(),
                 QStringList({"Incorrect Format:\n\nHKEY_CURRENT_USER\\Software\\",
                              "Incorrect Format:\n\nSoftware\\Dorvik"}));
        QCOMPARE(dialogs.msgBoxes[0].flags, 0);
    }

    void valuesGoThroughTheBuffer() {
        ScriptedDialogs dialogs;
        const QString path = "HKEY_LOCAL_MACHINE\\Software\\Dorvik Software\\Velmora";
        RegistryHandle handle = 0;
        CreateRegistryKey(handle, path);
        QCOMPARE(LastRegistryResult(), 0L);
        QVERIFY(handle != 0);
        RegistryHandle again = 0;
        CreateRegistryKey(again, "HKEY_LOCAL_MACHINE\\SOFTWARE\\Dorvik Software\\Velmora");
        QCOMPARE(again, handle);

        SetRegistryValue(handle, "AppPath", "/opt/velmora", REG_SZ);
        SetRegistryValue(handle, "Empty", "", REG_SZ);
        SetRegistryValue(handle, "Padded", "  two blanks before, one after ", REG_SZ);
        SetRegistryValue(handle, "Long", QString(300, 'x'), REG_SZ);
        SetRegistryValue(handle, "Longest", QString(254, 'x'), REG_SZ);
        SetRegistryValue(handle, "TooLong", QString(255, 'x'), REG_SZ);
        QCOMPARE(LastRegistryResult(), 0L);

        QCOMPARE(GetRegistryValue(path, "AppPath"), QString("/opt/velmora"));
        QCOMPARE(GetRegistryValue(path, "apppath"), QString("/opt/velmora"));
        QCOMPARE(GetRegistryValue(path, "Empty"), QString());
        QCOMPARE(GetRegistryValue(path, "Padded"), QString("two blanks before, one after "));
        // The value and its terminator must fit the 255 places of the buffer, or Windows
        // refuses to read it (more data than the buffer holds).
        QCOMPARE(GetRegistryValue(path, "Longest"), QString(254, 'x'));
        QCOMPARE(GetRegistryValue(path, "TooLong"), QString("Error"));
        QCOMPARE(LastRegistryResult(), 234L);
        QCOMPARE(GetRegistryValue(path, "Long"), QString("Error"));

        QCOMPARE(GetRegistryValue(path, "Missing"), QString("Error"));
        QCOMPARE(LastRegistryResult(), 2L);
        QCOMPARE(GetRegistryValue(path + "\\Deeper", "AppPath"), QString("Error"));
        QCOMPARE(GetRegistryValue("HKEY_NOWHERE\\Software", "AppPath"), QString("Error"));
        QVERIFY(dialogs.msgBoxes.isEmpty());

        QFile store(StorePath());
        QVERIFY(store.open(QIODevice::ReadOnly));
        QVERIFY(
            store.readAll().contains("[HKEY_LOCAL_MACHINE\\Software\\Dorvik Software\\Velmora]"));
    }

    void trailingBackslashWarnsAndCarriesOn() {
        ScriptedDialogs dialogs;
        RegistryHandle handle = 0;
        CreateRegistryKey(handle, "HKEY_CURRENT_USER\\Software\\Dorvik");
        SetRegistryValue(handle, "Name", "value", REG_SZ);
        QCOMPARE(GetRegistryValue("HKEY_CURRENT_USER\\Software\\Dorvik\\", "Name"),
                 QString("value"));
        QCOMPARE(dialogs.prompts(),
                 QStringList{"Incorrect Format:\n\nHKEY_CURRENT_USER\\Software\\Dorvik\\"});
    }

    void odbcSourcesComeFromTheUsersOdbcIni() {
        WriteBytes(
            OdbcPath(),
            "[ODBC Data Sources]\nDeluxeCD = Microsoft Access Driver\n\n[DeluxeCD]\n"
            "Driver      = MDBTools\nDBQ         = deluxecd.mdb\nDefaultDir  = /home/me/cd\n");
        const QString key = "HKEY_CURRENT_USER\\Software\\ODBC\\ODBC.INI\\DeluxeCD";
        QCOMPARE(GetRegistryValue(key, "DBQ"), QString("deluxecd.mdb"));
        QCOMPARE(GetRegistryValue(key, "DefaultDir"), QString("/home/me/cd"));
        QCOMPARE(GetRegistryValue("HKEY_CURRENT_USER\\Software\\ODBC\\ODBC.INI\\Other", "DBQ"),
                 QString("Error"));
        QCOMPARE(GetRegistryValue("HKEY_LOCAL_MACHINE\\Software\\ODBC\\ODBC.INI\\DeluxeCD", "DBQ"),
                 QString("Error"));
        QVERIFY(!QFile::exists(StorePath()));
    }

    void withoutAnOdbcSectionTheWinePrefixRegistryAnswers() {
        QTemporaryDir prefix;
        qputenv("WINEPREFIX", prefix.path().toLocal8Bit());
        WriteBytes(prefix.filePath("user.reg"),
                   "WINE REGISTRY Version 2\n;; All keys relative to \\\\User\\\\S-1-5-21\n\n"
                   "[Software\\\\ODBC\\\\ODBC.INI\\\\DeluxeCD] 1700000000\n#time=1d9\n"
                   "\"DBQ\"=\"Deluxe\\\\deluxecd.mdb\"\n"
                   "\"DefaultDir\"=\"C:\\\\Program Files\\\\Plus! \\\"CD\\\" Caf\\x00e9\"\n"
                   "\"Flags\"=dword:00000001\n\n[Software\\\\Other]\n\"DBQ\"=\"no\"\n");
        const QString key = "HKEY_CURRENT_USER\\Software\\ODBC\\ODBC.INI\\deluxecd";
        QCOMPARE(GetRegistryValue(key, "dbq"), QString("Deluxe\\deluxecd.mdb"));
        QCOMPARE(GetRegistryValue(key, "DefaultDir"),
                 QString("C:\\Program Files\\Plus! \"CD\" Caf\u00e9"));
        QCOMPARE(GetRegistryValue(key, "Flags"), QString("Error"));
        // The user's own data source comes first.
        WriteBytes(OdbcPath(), "[DeluxeCD]\nDBQ = own.mdb\n");
        QCOMPARE(GetRegistryValue(key, "DBQ"), QString("own.mdb"));
        QCOMPARE(GetRegistryValue(key, "DefaultDir"), QString("Error"));
        qunsetenv("WINEPREFIX");
    }

    void failuresAndMessageTexts() {
        SetRegistryValue(4711, "Name", "value", REG_SZ);
        QCOMPARE(LastRegistryResult(), 6L);
        SetRegistryValue(HKEY_CURRENT_USER, "Name", "value", 4);
        QCOMPARE(RegistryErrorText(LastRegistryResult()), QString("Invalid Parameter"));
        QCOMPARE(RegistryErrorText(1009), QString("The Registry Database is corrupt!"));
        QCOMPARE(RegistryErrorText(234),
                 QString("There is more data than the buffer has been allocated to hold."));
        QCOMPARE(RegistryErrorText(6), QString("Undefined Error Code:  6"));
    }
};

VELMORA_TEST_MAIN(RegistryTest)
#include "registry_test.moc"
