#include "toolkit/vb/vbconvert.h"

#include <QRegularExpression>
#include <cmath>

#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

double VbNumber(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.startsWith("&H", Qt::CaseInsensitive)) return HexLiteral(trimmed.mid(2));
    static const QRegularExpression number(R"(^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$)");
    if (!number.match(trimmed).hasMatch()) throw VbError(13);
    const double value = trimmed.toDouble();
    if (!std::isfinite(value)) throw VbError(6);
    return value;
}

int CIntText(const QString& text) {
    return CInt(VbNumber(text));
}

qint32 CLng(double value) {
    const qint64 rounded = RoundToEven(value);
    if (rounded < INT32_MIN || rounded > INT32_MAX) throw VbError(6);
    return static_cast<qint32>(rounded);
}

qint32 CLngText(const QString& text) {
    return CLng(VbNumber(text));
}

int CByteText(const QString& text) {
    return CByte(VbNumber(text));
}

double Val(const QString& text) {
    static const QRegularExpression start(R"(^\s*([+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?))");
    const QRegularExpressionMatch match = start.match(text);
    if (!match.hasMatch()) return 0;
    const double value = match.captured(1).toDouble();
    return std::isfinite(value) ? value : 0;
}

qint32 HexLiteral(const QString& digits) {
    static const QRegularExpression hex("^[0-9A-Fa-f]+$");
    if (!hex.match(digits).hasMatch()) throw VbError(13);
    QString significant = digits;
    while (significant.size() > 1 && significant.startsWith('0')) significant.remove(0, 1);
    if (significant.size() > 8) throw VbError(6);
    return static_cast<qint32>(significant.toUInt(nullptr, 16));
}
