#include "update/mDownload.h"

#include <QDir>
#include <QFileInfo>
#include <QFontMetrics>
#include <QLabel>
#include <QStorageInfo>
#include <cmath>

#include "toolkit/vb/vbruntime.h"

QString FitText(const QLabel* label, QString text) {
    const QFontMetrics metrics(label->window()->font());
    const int width = label->width();
    int used = metrics.horizontalAdvance(text);
    qsizetype n = text.size() / 2 - 2;
    while (used > width && n >= 4) {
        text = text.left(n) + "..." + text.right(n);
        used = metrics.horizontalAdvance(text);
        --n;
    }
    return text;
}

QString FormatFileSize(double bytes, const QString& format) {
    const double kilo = 1024.0, mega = kilo * kilo, giga = mega * kilo;
    // Below a kilobyte the values are byte counts and the Single rate, in a Single's general
    // number form: at most 7 significant digits.
    if (bytes >= 0 && bytes <= 1023) return QString::number(bytes, 'g', 7) + " bytes";
    if (bytes >= kilo && bytes <= 1048575)
        return Format(bytes / kilo, format.isEmpty() ? "###0" : format) + " KB";
    if (bytes >= mega && bytes <= 1073741823)
        return Format(bytes / mega, format.isEmpty() ? "###0.0" : format) + " MB";
    if (bytes > 1073741823)
        return Format(bytes / giga, format.isEmpty() ? "###0.0" : format) + " GB";
    return QString();
}

QString FormatTimeLeft(float seconds) {
    const double v = seconds;
    if (v >= 0 && v <= 59) return Format(v, "0") + " sec";
    if (v >= 60 && v <= 3599)
        return Format(std::floor(v / 60), "#0") + " min " +
               Format(static_cast<double>(RoundToEven(v) % 60), "0") + " sec";
    return Format(std::floor(v / 3600), "#0") + " hr " +
           Format(static_cast<double>(RoundToEven(v / 60) % 60), "0") + " min";
}

double DiskFreeBytes(const QString& path) {
    // The nearest folder that exists: the destination's own may not have been made yet.
    QFileInfo place(path);
    while (!place.exists() && place.absolutePath() != place.absoluteFilePath())
        place = QFileInfo(place.absolutePath());
    return static_cast<double>(QStorageInfo(place.absoluteFilePath()).bytesAvailable());
}

QString SplitPath(const QString& path, bool bReturnName, bool bUseSlash) {
    const qsizetype at = path.lastIndexOf(bUseSlash ? '/' : '\\');
    if (at < 0) return path;
    return bReturnName ? path.mid(at + 1) : path.left(at + 1);
}

ResponseKind ClassifyResponse(const QString& headers) {
    const QString code = headers.mid(9, 3);
    if (code == "200") return ResponseKind::Ok;
    if (code == "206") return ResponseKind::Partial;
    if (code == "204") return ResponseKind::NoContent;
    if (code == "401") return ResponseKind::Unauthorized;
    if (code == "404") return ResponseKind::NotFound;
    if (code == "\r\n" || headers == "\r\n") return ResponseKind::NoConnection;
    return ResponseKind::Other;
}

QString FirstHeaderLine(const QString& headers) {
    const QString line = headers.left(headers.indexOf('\r') + 1);
    if (line.isEmpty() || line == "\r")
        return "Unable to connect. Make sure a connection to the internet is present.";
    return line;
}
