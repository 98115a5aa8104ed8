// The live update's check: the server's ini file, the version compare and the fetch of the
// update program.

#include <QFile>
#include <QFileInfo>

#include "toolkit/platform/mUtility.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"
#include "update/frmDownload.h"

QString sUpdateProgram;

QString UpdateServerAddress() {
    return qEnvironmentVariable("VELMORA_UPDATE_SERVER", gUpdateServer);
}

namespace {

// CInt of a profile value: a text that is no number is a type mismatch.
qint16 IniInteger(const QString& text) {
    bool numeric = false;
    const double value = text.trimmed().toDouble(&numeric);
    if (!numeric) throw VbError(13);
    return static_cast<qint16>(CInt(value));
}

// The server names the update program, and the name is joined to TEMP: a name that is empty,
// climbs with "..", or holds a separator could reach outside it.
bool IsPlainFileName(const QString& name) {
    return !name.isEmpty() && name != "." && name != ".." && !name.contains('/') &&
           !name.contains('\\');
}

// Read-only ones included, the file of that name goes, and only it: a folder of that name stays,
// and a link goes without its target being touched.
void RemoveOldUpdateProgram(const QString& path) {
    const QFileInfo file(path);
    if (file.isSymLink()) {
        QFile::remove(path);
    } else if (file.isFile()) {
        QFile::setPermissions(path, file.permissions() | QFile::WriteOwner);
        QFile::remove(path);
    }
}

}  // namespace

bool frmDownload::Update() {
    const QString sTempFolder = GetWindowsTempFolder();
    const QString localIni = sTempFolder + "/VELMORA.INI";
    const QString iniUrl = UpdateServerAddress() + "/software/updates/velmora.ini";
    if (QFile::exists(localIni)) QFile::remove(localIni);
    bool ok = false;
    DownloadFile(iniUrl, localIni, "", "", false, ok);
    if (!ok) return false;

    const qint16 latestMajor =
        IniInteger(ReadIniString(localIni, "LastRelease", "LatestMajor", "0"));
    const QString productInfo =
        ReadIniString(localIni, "LastRelease", "ProductInfo", kMakerWebAddress);
    const QString section = QString::number(App.Major) + "Major";
    const qint16 minor = IniInteger(ReadIniString(localIni, section, "minor", "0"));
    const qint16 revision = IniInteger(ReadIniString(localIni, section, "revision", "0"));
    const QString programUrl =
        ReadIniString(localIni, section, "URL", "No file found!!! Server maybe down or moved!!!.");
    const QString fileName = ReadIniString(localIni, section, "filename", "VelmoraUpdate.exe");
    if (!IsPlainFileName(fileName)) {
        ReportError(VbError(52));
        return false;
    }

    const QString major = QString::number(App.Major);
    const QString newVersion =
        major + "." + QString::number(minor) + "." + QString::number(revision);
    const QString currentVersion =
        major + "." + QString::number(App.Minor) + "." + QString::number(App.Revision);
    sUpdateProgram = sTempFolder + "/" + fileName;
    RemoveOldUpdateProgram(sUpdateProgram);

    const auto runningMinor = static_cast<qint16>(App.Minor);
    const auto runningRevision = static_cast<qint16>(App.Revision);
    const bool updateExists =
        runningMinor < minor || (runningMinor == minor && runningRevision < revision);
    bool downloaded = false;
    if (updateExists) {
        const int answer =
            MsgBox("Update Velmora from version " + currentVersion + " to " + newVersion + "?",
                   vbYesNoCancel + vbQuestion, "Proceed with Live-Update?");
        if (answer == vbYes) {
            RemoveOldUpdateProgram(sUpdateProgram);
            DownloadFile(programUrl, sUpdateProgram, "", "", true, downloaded);
        } else {
            MsgBox("User doesn't want to update Velmora.", vbOKOnly, "Live-Update");
        }
    } else {
        MsgBox("You allready have the latest version of release " + major + ". Nothing to update.",
               vbInformation, "Live-Update");
    }
    if (latestMajor > App.Major)
        MsgBox("Version " + QString::number(latestMajor) +
                   " has been released. You can download it manually from our website at:\r\n" +
                   productInfo,
               vbInformation, "Live-Update");
    return downloaded;
}
