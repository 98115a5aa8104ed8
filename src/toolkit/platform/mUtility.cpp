#include "toolkit/platform/mUtility.h"

#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>
#include <map>
#include <optional>

#include "toolkit/platform/mRegistry.h"
#include "toolkit/platform/mUtilityIni.h"
#include "toolkit/platform/wineprefix.h"
#include "toolkit/vb/vbruntime.h"

namespace {

DocumentOpener documentOpener;

// The profile readers ask one file for key after key (an import reads thousands), so the last
// file read stays parsed until it changes on disk. During a write run the files written stay in
// memory, and the run writes each of them once at its end.
struct CachedIni {
    QDateTime modified;
    QDateTime changed;
    qint64 size = -1;
    std::optional<IniFile> ini;
    bool dirty = false;
};
std::map<QString, CachedIni> cachedInis;
int writeRunDepth = 0;

void Stamp(const QString& path, CachedIni& cached) {
    const QFileInfo info(path);
    cached.modified = info.lastModified();
    cached.changed = info.fileTime(QFileDevice::FileMetadataChangeTime);
    cached.size = info.exists() ? info.size() : -1;
}

bool IsCurrent(const QString& path, const CachedIni& cached) {
    if (cached.dirty) return true;
    const QFileInfo info(path);
    return cached.ini && cached.size == (info.exists() ? info.size() : -1) &&
           cached.modified == info.lastModified() &&
           cached.changed == info.fileTime(QFileDevice::FileMetadataChangeTime);
}

IniFile& LoadIni(const QString& path) {
    // Only files with writes still to come are kept beside the one asked for.
    std::erase_if(cachedInis, [&path](const auto& entry) {
        return !entry.second.dirty && entry.first != path;
    });
    CachedIni& cached = cachedInis[path];
    if (!IsCurrent(path, cached)) {
        cached.ini.emplace(path);
        Stamp(path, cached);
    }
    return *cached.ini;
}

bool SaveIni(const QString& path, CachedIni& cached) {
    cached.dirty = false;
    if (!cached.ini->save()) {
        cached.ini.reset();
        return false;
    }
    Stamp(path, cached);
    return true;
}

constexpr int kProfileBufferLength = 255;

}  // namespace

void SetDocumentOpener(DocumentOpener opener) {
    documentOpener = std::move(opener);
}

bool OpenWithDesktop(const QUrl& url) {
    return documentOpener ? documentOpener(url) : QDesktopServices::openUrl(url);
}

int StartDocument(const QString& document) {
    // An address has a scheme of more than one letter; "C:" is a drive, not a scheme.
    const QUrl address(document, QUrl::StrictMode);
    QUrl url;
    if (address.isValid() && address.scheme().size() > 1) {
        url = address;
    } else {
        const QFileInfo file(QString(document).replace('\\', '/'));
        if (!file.exists()) return kStartFileNotFound;
        url = QUrl::fromLocalFile(file.absoluteFilePath());
    }
    return OpenWithDesktop(url) ? kStartDone : kStartNoAssociation;
}

QString GetWindowsDirectory() {
    return WinePrefix() + "/drive_c/windows";
}

QString GetWindowsTempFolder() {
    return GetWindowsDirectory() + "/TEMP";
}

QString ReadIniString(const QString& file, const QString& section, const QString& key,
                      const QString& defaultValue) {
    const std::optional<QString> found = LoadIni(file).value(section, key);
    QString result = found ? *found : defaultValue;
    if (!found)
        while (result.endsWith(' ')) result.chop(1);
    return result.left(kProfileBufferLength);
}

bool WriteIniString(const QString& file, const QString& section, const QString& key,
                    QString& value) {
    const QString written = value;
    value.replace('\r', ' ').replace('\n', ' ');

    IniFile& ini = LoadIni(file);
    ini.setValue(section, key, written);
    CachedIni& cached = cachedInis[file];
    if (writeRunDepth == 0) return SaveIni(file, cached);
    // The write itself waits for the end of the run; a folder that is not there fails now.
    if (!QFileInfo(QFileInfo(file).absolutePath()).isDir()) {
        cachedInis.erase(file);
        return false;
    }
    cached.dirty = true;
    return true;
}

IniWriteRun::IniWriteRun() {
    ++writeRunDepth;
}

IniWriteRun::~IniWriteRun() {
    Commit();
}

bool IniWriteRun::Commit() {
    if (committed_) return ok_;
    committed_ = true;
    if (--writeRunDepth > 0) return ok_;
    for (auto& [path, cached] : cachedInis)
        if (cached.dirty && !SaveIni(path, cached)) ok_ = false;
    return ok_;
}

QString GetTempFolder() {
    return AddBackslash(QDir::tempPath());
}

QString GetTempName() {
    QTemporaryFile file(GetTempFolder() + App.EXEName + "XXXXXX.tmp");
    file.setAutoRemove(false);
    if (!file.open()) return QString();
    return file.fileName();
}

QString DeluxeDatabasePath() {
    const QString key = "HKEY_CURRENT_USER\\Software\\ODBC\\ODBC.INI\\DeluxeCD";
    const QString path = GetRegistryValue(key, "DefaultDir") + "\\" + GetRegistryValue(key, "DBQ");
    return path.startsWith("Err") ? path : WindowsPathInPrefix(path);
}
