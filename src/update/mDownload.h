#pragma once

#include <QString>

class QLabel;

// The download window's formatting and path routines.

// The text shortened around a "..." until it fits the label's width.
QString FitText(const QLabel* label, QString text);
// "512 bytes", "12 KB", "3.4 MB", "1.2 GB"; empty for negative values and the fractions that
// fall between the ranges.
QString FormatFileSize(double bytes, const QString& format = QString());
// "42 sec", "3 min 12 sec", "1 hr 5 min".
QString FormatTimeLeft(float seconds);
// Free bytes for an ordinary user on the file system that holds path.
double DiskFreeBytes(const QString& path);
// The name behind the last separator, or the folder up to and including it; the path unchanged
// when there is no separator. The separator is "/" with useSlash, else "\".
QString SplitPath(const QString& path, bool bReturnName, bool bUseSlash);

// What a response's header block says, by the status code at characters 10 to 12.
enum class ResponseKind { Ok, Partial, NoContent, Unauthorized, NotFound, NoConnection, Other };
ResponseKind ClassifyResponse(const QString& headers);
// The first header line with its CR, or the text for a server that said nothing.
QString FirstHeaderLine(const QString& headers);
