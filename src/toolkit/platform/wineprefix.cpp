#include "toolkit/platform/wineprefix.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

QString WinePrefix() {
    const QString prefix = qEnvironmentVariable("WINEPREFIX");
    return QDir::cleanPath(prefix.isEmpty() ? QDir::homePath() + "/.wine" : prefix);
}

QString WindowsPathInPrefix(const QString& windowsPath) {
    static const QRegularExpression drive(R"(^([A-Za-z]):[\\/]?)");
    const QRegularExpressionMatch match = drive.match(windowsPath);
    if (!match.hasMatch()) return QString(windowsPath).replace('\\', '/');
    const QString letter = match.captured(1).toLower();
    QString path = WinePrefix() + "/dosdevices/" + letter + ':';
    // A prefix made by hand may lack the drive links; its C: is drive_c all the same.
    if (letter == "c" && !QFileInfo::exists(path)) path = WinePrefix() + "/drive_c";
    const QStringList names = windowsPath.mid(match.capturedLength())
                                  .split(QRegularExpression(R"([\\/]+)"), Qt::SkipEmptyParts);
    for (const QString& name : names) {
        QString found = name;
        if (!QFileInfo::exists(path + '/' + name)) {
            const QStringList entries =
                QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
            for (const QString& entry : entries)
                if (entry.compare(name, Qt::CaseInsensitive) == 0) found = entry;
        }
        path += '/' + found;
    }
    return path;
}
