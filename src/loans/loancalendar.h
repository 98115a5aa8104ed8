#pragma once

// The open loans as an iCalendar file (RFC 5545), so that a desktop calendar reminds the user on
// each due date: one all-day event a loan, with an alarm that morning. Loans without a due date
// have no day to stand on and are left out.

#include <QByteArray>
#include <QDateTime>
#include <QList>

class Database;

namespace loans {

// The calendar of the open loans of titles (every title when titles is empty); stamp is the
// moment of writing, as every event carries it.
QByteArray LoanCalendar(Database& database, const QList<long>& titles, const QDateTime& stamp);

// A text value with the characters RFC 5545 reserves escaped.
QString CalendarText(const QString& text);
// One content line, folded at 75 octets without splitting a character, ending in CRLF.
QByteArray FoldedLine(const QString& line);

}  // namespace loans
