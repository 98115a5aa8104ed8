#include "toolkit/platform/mRegistry.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QStandardPaths>
#include <array>

#include "toolkit/platform/mUtilityIni.h"
#include "toolkit/platform/wineprefix.h"
#include "toolkit/platform/wineregistry.h"
#include "toolkit/vb/msgbox.h"

namespace {

enum RegistryResult : long {
    kSuccess = 0,
    kFileNotFound = 2,
    kAccessDenied = 5,
    kInvalidHandle = 6,
    kOutOfMemory = 14,
    kInvalidParameter = 87,
    kMoreData = 234,
    kBadDatabase = 1009,
    kBadKey = 1010,
    kCantOpen = 1011,
    kCantRead = 1012,
    kCantWrite = 1013,
};

struct RootKey {
    const char* name;
    RegistryHandle handle;
};
constexpr std::array<RootKey, 7> kRootKeys{{
    {"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
    {"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
    {"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
    {"HKEY_USERS", HKEY_USERS},
    {"HKEY_PERFORMANCE_DATA", HKEY_PERFORMANCE_DATA},
    {"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},
    {"HKEY_DYN_DATA", HKEY_DYN_DATA},
}};

// The value is read into a buffer of 255 blanks, as the platform call was given one.
constexpr int kValueBufferLength = 255;

struct KeyPath {
    RegistryHandle root = 0;
    QString subKey;
};

// Where a key lives: a file and the section within it.
struct KeyPlace {
    QString file;
    QString section;
};

long lastResult = kSuccess;
// Keys opened by CreateRegistryKey, by the small handle given out for them.
QHash<RegistryHandle, KeyPath> openKeys;
RegistryHandle nextHandle = 1;

QString RootName(RegistryHandle root) {
    for (const RootKey& key : kRootKeys)
        if (key.handle == root) return key.name;
    return QString();
}

QString TrimBlanks(QString text) {
    while (text.startsWith(' ')) text.remove(0, 1);
    while (text.endsWith(' ')) text.chop(1);
    return text;
}

QString WithoutTrailingBackslashes(QString path) {
    while (path.endsWith('\\')) path.chop(1);
    return path;
}

KeyPlace PlaceOf(const KeyPath& key) {
    const QString subKey = WithoutTrailingBackslashes(key.subKey);
    const QString odbcSources = "Software\\ODBC\\ODBC.INI\\";
    if (key.root == HKEY_CURRENT_USER && subKey.startsWith(odbcSources, Qt::CaseInsensitive) &&
        subKey.size() > odbcSources.size())
        return {QDir::homePath() + "/.odbc.ini", subKey.mid(odbcSources.size())};
    const QString store = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                          "/velmora/registry.ini";
    const QString rootName = RootName(key.root);
    return {store, subKey.isEmpty() ? rootName : rootName + '\\' + subKey};
}

// The store drops blanks and one pair of quotes around a value; quoting keeps them.
QString StoredText(const QString& data) {
    const bool quoted = data.size() >= 2 && (data.front() == '"' || data.front() == '\'') &&
                        data.back() == data.front();
    return data.trimmed() != data || quoted ? '"' + data + '"' : data;
}

bool SaveStore(const IniFile& ini, const KeyPlace& place) {
    QDir().mkpath(QFileInfo(place.file).path());
    return ini.save();
}

// What the platform's buffer gives back: the value and its terminating zero cut to the buffer,
// the unused blanks behind it, trimmed at both ends and the last character dropped. A value
// that fits comes back whole, one that does not loses its tail.
QString ThroughValueBuffer(const QString& value) {
    QString buffer = (value + QChar(0)).left(kValueBufferLength);
    buffer = TrimBlanks(buffer.leftJustified(kValueBufferLength, ' '));
    buffer.chop(1);
    return buffer;
}

}  // namespace

RegistryHandle RootKeyHandle(const QString& rootName) {
    for (const RootKey& key : kRootKeys)
        if (rootName == QLatin1String(key.name)) return key.handle;
    return 0;
}

void ParseKey(QString& keyName, RegistryHandle& rootKey) {
    if (keyName.endsWith('\\') || !keyName.startsWith("HKEY_"))
        MsgBox("Incorrect Format:" + QString("\n\n") + keyName);
    const qsizetype backslash = keyName.indexOf('\\');
    if (backslash >= 0) {
        rootKey = RootKeyHandle(keyName.left(backslash));
        keyName = keyName.mid(backslash + 1);
    } else {
        rootKey = RootKeyHandle(keyName);
        keyName.clear();
    }
}

QString GetRegistryValue(const QString& keyName, const QString& valueName) {
    KeyPath key{0, keyName};
    ParseKey(key.subKey, key.root);
    if (key.root == 0) {
        lastResult = kInvalidHandle;
        return "Error";
    }
    const KeyPlace place = PlaceOf(key);
    const IniFile ini(place.file);
    std::optional<QString> value;
    if (ini.hasSection(place.section)) {
        value = ini.value(place.section, valueName);
    } else if (place.file.endsWith("/.odbc.ini")) {
        // A player installed under Wine registers its data source in the prefix's registry.
        const WineRegistry registry(WinePrefix() + "/user.reg");
        value = registry.Value(WithoutTrailingBackslashes(key.subKey), valueName);
    }
    if (!value) {
        lastResult = kFileNotFound;
        return "Error";
    }
    // The value and its terminating zero must fit the buffer; Windows refuses a longer one.
    if (value->size() + 1 > kValueBufferLength) {
        lastResult = kMoreData;
        return "Error";
    }
    lastResult = kSuccess;
    return ThroughValueBuffer(*value);
}

void CreateRegistryKey(RegistryHandle& handle, const QString& keyName) {
    KeyPath key{0, keyName};
    ParseKey(key.subKey, key.root);
    handle = 0;
    if (key.root == 0) {
        lastResult = kInvalidHandle;
        return;
    }
    const KeyPlace place = PlaceOf(key);
    IniFile ini(place.file);
    if (!ini.hasSection(place.section)) {
        ini.addSection(place.section);
        if (!SaveStore(ini, place)) {
            lastResult = kCantWrite;
            return;
        }
    }
    for (auto it = openKeys.cbegin(); it != openKeys.cend(); ++it) {
        const KeyPlace open = PlaceOf(it.value());
        if (open.file == place.file &&
            open.section.compare(place.section, Qt::CaseInsensitive) == 0)
            handle = it.key();
    }
    if (handle == 0) {
        handle = nextHandle++;
        openKeys.insert(handle, key);
    }
    lastResult = kSuccess;
}

void SetRegistryValue(RegistryHandle handle, const QString& valueName, const QString& data,
                      int type) {
    if (type != REG_SZ && type != REG_EXPAND_SZ) {
        lastResult = kInvalidParameter;
        return;
    }
    KeyPath key;
    if (!RootName(handle).isEmpty())
        key.root = handle;
    else if (openKeys.contains(handle))
        key = openKeys.value(handle);
    else {
        lastResult = kInvalidHandle;
        return;
    }
    const KeyPlace place = PlaceOf(key);
    IniFile ini(place.file);
    ini.setValue(place.section, valueName, StoredText(data));
    lastResult = SaveStore(ini, place) ? kSuccess : kCantWrite;
}

long LastRegistryResult() {
    return lastResult;
}

QString RegistryErrorText(long code) {
    switch (code) {
        case kBadDatabase:
            return "The Registry Database is corrupt!";
        case kBadKey:
            return "Bad Key Name";
        case kCantOpen:
            return "Can't Open Key";
        case kCantRead:
            return "Can't Read Key";
        case kAccessDenied:
            return "Access to this key is denied";
        case kCantWrite:
            return "Can't Write Key";
        case kOutOfMemory:
            return "Out of memory";
        case kInvalidParameter:
            return "Invalid Parameter";
        case kMoreData:
            return "There is more data than the buffer has been allocated to hold.";
        default:
            return "Undefined Error Code:  " + QString::number(code);
    }
}
