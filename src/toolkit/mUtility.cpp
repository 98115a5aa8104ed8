#include "toolkit/mUtility.h"

#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>
#include <optional>

#include "toolkit/mUtilityIni.h"
#include "toolkit/vbruntime.h"

namespace {

DocumentOpener documentOpener;

// The profile readers ask one file for key after key (an import reads thousands), so the last
// file read stays parsed until it changes on disk.
struct CachedIni {
    QString path;
    QDateTime modified;
    QDateTime changed;
    qint64 size = -1;
    std::optional<IniFile> ini;
};
CachedIni cachedIni;

void StampCache(const QString& path) {
    const QFileInfo info(path);
    cachedIni.path = path;
    cachedIni.modified = info.lastModified();
    cachedIni.changed = info.fileTime(QFileDevice::FileMetadataChangeTime);
    cachedIni.size = info.exists() ? info.size() : -1;
}

IniFile& LoadIni(const QString& path) {
    const QFileInfo info(path);
    const bool current = cachedIni.ini && cachedIni.path == path &&
                         cachedIni.size == (info.exists() ? info.size() : -1) &&
                         cachedIni.modified == info.lastModified() &&
                         cachedIni.changed == info.fileTime(QFileDevice::FileMetadataChangeTime);
    if (!current) {
        cachedIni.ini.emplace(path);
        StampCache(path);
    }
    return *cachedIni.ini;
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
    QString prefix = qEnvironmentVariable("WINEPREFIX");
    if (prefix.isEmpty()) prefix = QDir::homePath() + "/.wine";
    return QDir::cleanPath(prefix + "/drive_c/windows");
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
    if (!ini.save()) {
        cachedIni.ini.reset();
        return false;
    }
    // A line break in the value splits the line on disk; the next read must see the file as
    // it now is.
    if (written.contains('\r') || written.contains('\n'))
        cachedIni.ini.reset();
    else
        StampCache(file);
    return true;
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
