#pragma once

// The loan register in the catalogue: borrowers and loans, in two tables beside the design's
// seven that a catalogue gets at start when it lacks them. The rules live in the file itself,
// so that no window and no other build can break them: a title has at most one open loan (a
// unique index over the open ones), a borrower with loans cannot be deleted (the relation
// restricts) and a deleted title takes its loans along (the relation cascades).
//
// Dates are kept as ISO text (yyyy-MM-dd), as the catalogue keeps its other dates, so that
// they compare and sort as text.

#include <QDate>
#include <QHash>
#include <QList>
#include <QString>
#include <vector>

class Database;

namespace loans {

// True when the file lacks either table (or one of its indexes).
bool TablesMissing(Database& database);
// Makes what is missing, in one transaction.
void MakeTables(Database& database);

struct LoanCount {
    long out = 0;
    long overdue = 0;
};
// Open loans, and those of them due before today.
LoanCount CountOpenLoans(Database& database, const QDate& today);
// "3 discs lent out, 1 overdue"; empty when nothing is out.
QString LoanCountText(const LoanCount& count);

// What the lend window asks.
struct LoanRequest {
    QString borrower;  // a known name, or a new one that is added
    QDate lent;
    QDate due;  // null: no due date
    QString note;
};

// Lends every title of titles to the borrower, in one transaction: all are lent or none is
// (the catalogue refuses a title that is out already). Adds the borrower when the name is new.
// Raises the store's error after undoing everything.
void LendTitles(Database& database, const QList<long>& titles, const LoanRequest& request);
// Closes the open loans of titles with the date returned, in one transaction; titles that are
// not out are left alone. Raises the store's error after undoing everything.
void ReturnTitles(Database& database, const QList<long>& titles, const QDate& returned);

// The titles of titles that are out.
QList<long> TitlesOut(Database& database, const QList<long>& titles);

struct LoanEntry {
    QString borrower;
    QDate lent;
    QDate due;
    QDate returned;
    QString note;
};
// The loans of a title, newest first.
std::vector<LoanEntry> LoanHistory(Database& database, long idcd);

// "lent to Anna until 2026-05-31" (or "lent to Anna" without a due date) for every title
// that is out, by idcd.
QHash<long, QString> LentToLines(Database& database);

// The borrowers' names in the catalogue's text order.
QStringList BorrowerNames(Database& database);
// The borrower of that name (in the catalogue's text order), 0 when there is none.
long BorrowerId(Database& database, const QString& name);

// A date as the catalogue keeps it, and back; a null date is an empty text.
QString DateText(const QDate& date);
QDate TextDate(const QString& text);

}  // namespace loans
