#pragma once

// toolkit/vb: the Visual Basic runtime's stand-ins: boxes, errors, strings, dialogs, long work.

#include <QtCore/qnamespace.h>
#include <QDate>
#include <QString>
#include <QTime>
#include <QVariant>

// What the program knows about itself: the title shown in boxes, the folder it runs from,
// and its version. Tests point Path at a temporary program folder.
struct AppObject {
    QString Title = "Velmora";
    QString EXEName = "velmora";
    QString Path;
    QString HelpFile;
    int Major = VELMORA_VERSION_MAJOR;
    int Minor = VELMORA_VERSION_MINOR;
    int Revision = VELMORA_VERSION_REVISION;
};
extern AppObject App;

// The maker, its web address and the update server; the server can be overridden for tests.
extern const QString kMakerName;
extern const QString kMakerWebAddress;
extern const QString kMakerEmail;
extern QString gUpdateServer;

// The window's busy flag values.
enum MousePointerValue { vbDefault = 0, vbArrow = 1, vbHourglass = 11 };

// A mouse button as the program's handlers number it: 1 left, 2 right, 4 middle.
int VbMouseButton(Qt::MouseButton button);

// Hands control to the event loop, so windows repaint and timers fire during long work.
void DoEvents();

// The folder with exactly one trailing "/", as every path in the program is joined.
QString AddBackslash(const QString& folder);

// Numbers as Visual Basic's Format writes them with the patterns the program uses:
// "00000", "###0", "###0.0", "##0%", "0", "#0".
QString Format(double value, const QString& pattern);

// Banker's rounding, as CInt and CLng convert.
qint64 RoundToEven(double value);
// CInt: rounds to even and raises error 6 outside -32768..32767.
int CInt(double value);
// CByte: rounds to even and raises error 6 outside 0..255.
int CByte(double value);

// The locale's date and time forms.
QString ShortDate(const QDate& date);
QString LongDate(const QDate& date);
QString ShortTime(const QTime& time);
QString LongTime(const QTime& time);

// Null-aware reading of a field value, as the program tests for Null.
inline bool IsNull(const QVariant& value) {
    return value.isNull();
}
// "" & value: a Null reads as the empty string.
QString NzText(const QVariant& value);
