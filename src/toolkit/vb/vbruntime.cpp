#include "toolkit/vb/vbruntime.h"
#include "toolkit/vb/vbstrings.h"

#include <QCoreApplication>
#include <QLocale>
#include <cmath>

#include "toolkit/vb/longwork.h"
#include "toolkit/vb/vberror.h"

AppObject App;

const QString kMakerName = "Dorvik Software";
const QString kMakerWebAddress = "http://www.dorviksoftware.example";
const QString kMakerEmail = "support@dorviksoftware.example";
QString gUpdateServer = "http://updates.dorviksoftware.example";

int VbMouseButton(Qt::MouseButton button) {
    switch (button) {
        case Qt::RightButton:
            return 2;
        case Qt::MiddleButton:
            return 4;
        default:
            return 1;
    }
}

void DoEvents() {
    // The caller goes on with its work after the yield: a close that comes in meanwhile waits
    // until the program is back in its own event loop.
    const BusyScope yielding;
    QCoreApplication::processEvents();
}

QString AddBackslash(const QString& folder) {
    QString path = folder;
    path.replace('\\', '/');
    if (!path.endsWith('/')) path += '/';
    return path;
}

qint64 RoundToEven(double value) {
    // Outside the 64-bit range (and for NaN) the conversion itself would be undefined; Visual
    // Basic reports such a conversion as an overflow.
    const double rounded = std::nearbyint(value);
    if (!(rounded >= -0x1p63 && rounded < 0x1p63)) throw VbError(6);
    return static_cast<qint64>(rounded);
}

int CInt(double value) {
    const qint64 rounded = RoundToEven(value);
    if (rounded < -32768 || rounded > 32767) throw VbError(6);
    return static_cast<int>(rounded);
}

int CByte(double value) {
    const qint64 rounded = RoundToEven(value);
    if (rounded < 0 || rounded > 255) throw VbError(6);
    return static_cast<int>(rounded);
}

QString Format(double value, const QString& pattern) {
    QString body = pattern;
    const bool percent = body.endsWith('%');
    if (percent) {
        body.chop(1);
        value *= 100.0;
    }
    const int point = body.indexOf('.');
    const int decimals = point < 0 ? 0 : body.size() - point - 1;
    const QString integerPart = point < 0 ? body : body.left(point);
    const int minimumDigits = static_cast<int>(integerPart.count('0'));

    // Format rounds half away from zero, unlike the conversions.
    const double scale = std::pow(10.0, decimals);
    const double rounded = std::round(std::fabs(value) * scale) / scale;
    QString text = QString::number(rounded, 'f', decimals);
    const int digitsBeforePoint =
        decimals ? static_cast<int>(text.indexOf('.')) : static_cast<int>(text.size());
    if (digitsBeforePoint < minimumDigits)
        text.prepend(QString(minimumDigits - digitsBeforePoint, '0'));
    else if (minimumDigits == 0 && text.startsWith('0') && digitsBeforePoint == 1)
        text.remove(0, 1);
    if (value < 0 && rounded != 0.0) text.prepend('-');
    if (percent) text += '%';
    return text;
}

QString ShortDate(const QDate& date) {
    return QLocale::system().toString(date, QLocale::ShortFormat);
}
QString LongDate(const QDate& date) {
    return QLocale::system().toString(date, QLocale::LongFormat);
}
QString ShortTime(const QTime& time) {
    return QLocale::system().toString(time, QLocale::ShortFormat);
}
QString LongTime(const QTime& time) {
    return QLocale::system().toString(time, QLocale::LongFormat);
}

QString NzText(const QVariant& value) {
    return value.isNull() ? QString() : value.toString();
}

QString Trim(const QString& text) {
    qsizetype first = 0, end = text.size();
    while (first < end && text.at(first) == u' ') ++first;
    while (end > first && text.at(end - 1) == u' ') --end;
    return text.mid(first, end - first);
}
