#include "loans/loanstore.h"

#include <algorithm>

#include "store/dao.h"
#include "store/jettext.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/vbruntime.h"

namespace loans {

namespace {

// Each statement stands alone, so that a file that has some of them gets the rest.
const char* const kTableStatements[] = {
    "CREATE TABLE IF NOT EXISTS borrower ("
    " idborrower INTEGER PRIMARY KEY AUTOINCREMENT,"
    " nmborrower TEXT(100) COLLATE JETTEXT NOT NULL UNIQUE"
    " CONSTRAINT width_nmborrower CHECK (length(nmborrower) <= 100),"
    " contact TEXT(255) COLLATE JETTEXT CONSTRAINT width_contact CHECK (length(contact) <= 255))",
    "CREATE TABLE IF NOT EXISTS loan ("
    " idloan INTEGER PRIMARY KEY AUTOINCREMENT,"
    " idcd INTEGER NOT NULL REFERENCES title (idcd) ON DELETE CASCADE,"
    " idborrower INTEGER NOT NULL REFERENCES borrower (idborrower) ON DELETE RESTRICT,"
    " lent DATE NOT NULL,"
    " due DATE CONSTRAINT due_after_lent CHECK (due IS NULL OR due >= lent),"
    " returned DATE CONSTRAINT returned_after_lent CHECK (returned IS NULL OR returned >= lent),"
    " note LONGTEXT COLLATE JETTEXT)",
    // The rule of one open loan per title, and the reads of the lent-out folder and the count.
    "CREATE UNIQUE INDEX IF NOT EXISTS loan_open_by_title ON loan (idcd) WHERE returned IS NULL",
    "CREATE INDEX IF NOT EXISTS loan_open_by_due ON loan (due) WHERE returned IS NULL",
    "CREATE INDEX IF NOT EXISTS loan_by_title ON loan (idcd, lent)",
    "CREATE INDEX IF NOT EXISTS loan_by_borrower ON loan (idborrower)",
};

const char* const kObjectNames[] = {"borrower",         "loan",          "loan_open_by_title",
                                    "loan_open_by_due", "loan_by_title", "loan_by_borrower"};

QString Quoted(const QString& text) {
    return "'" + QString(text).replace('\'', "''") + "'";
}

QString QuotedOrNull(const QString& text) {
    return text.isEmpty() ? QString("Null") : Quoted(text);
}

QString IdList(const QList<long>& ids) {
    QStringList texts;
    texts.reserve(ids.size());
    for (const long id : ids) texts << QString::number(id);
    return "(" + texts.join(", ") + ")";
}

long LongOf(Database& database, const QString& sql) {
    auto records = database.OpenRecordset(sql, dbOpenSnapshot);
    return records->IsEOF() ? 0 : records->Fields(0).Value().toLongLong();
}

// Runs work in one transaction; a failure undoes all of it and goes on to the caller.
template <typename Work>
void InOneTransaction(Database& database, Work&& work) {
    database.BeginTrans();
    try {
        work();
        database.CommitTrans();
    } catch (...) {
        database.Rollback();
        throw;
    }
}

// Ids in runs that one statement takes: SQLite limits the terms of a statement.
constexpr qsizetype kIdsPerStatement = 500;
// Lending reports its progress in steps of this many titles.
constexpr qsizetype kIdsPerStep = 50;
const QString kLendingProgress = "Lending title";

}  // namespace

bool TablesMissing(Database& database) {
    for (const char* name : kObjectNames) {
        if (LongOf(database,
                   QString("select count(*) from sqlite_master where name = ") + Quoted(name)) == 0)
            return true;
    }
    return false;
}

void MakeTables(Database& database) {
    InOneTransaction(database, [&] {
        for (const char* statement : kTableStatements) database.Execute(statement);
    });
}

LoanCount CountOpenLoans(Database& database, const QDate& today) {
    auto records =
        database.OpenRecordset("select count(*), count(case when due < " + Quoted(DateText(today)) +
                                   " then 1 end) from loan where returned is null",
                               dbOpenSnapshot);
    return {static_cast<long>(records->Fields(0).Value().toLongLong()),
            static_cast<long>(records->Fields(1).Value().toLongLong())};
}

QString LoanCountText(const LoanCount& count) {
    if (count.out <= 0) return {};
    QString text = QString::number(count.out) + (count.out == 1 ? " disc" : " discs") + " lent out";
    if (count.overdue > 0) text += ", " + QString::number(count.overdue) + " overdue";
    return text;
}

void LendTitles(Database& database, const QList<long>& titles, const LoanRequest& request) {
    const QString name = request.borrower.trimmed();
    InOneTransaction(database, [&] {
        long borrower = BorrowerId(database, name);
        if (borrower == 0) {
            database.Execute("INSERT INTO borrower (nmborrower) VALUES (" + Quoted(name) + ")");
            borrower = BorrowerId(database, name);
        }
        const QString values = QString::number(borrower) + ", " + Quoted(DateText(request.lent)) +
                               ", " + QuotedOrNull(DateText(request.due)) + ", " +
                               QuotedOrNull(request.note);
        for (qsizetype first = 0; first < titles.size(); first += kIdsPerStep) {
            database.Execute("INSERT INTO loan (idcd, idborrower, lent, due, note) SELECT idcd, " +
                             values + " FROM title WHERE idcd IN " +
                             IdList(titles.mid(first, kIdsPerStep)));
            ReportProgress(kLendingProgress, std::min(first + kIdsPerStep, titles.size()),
                           titles.size());
        }
    });
    EndProgress(kLendingProgress);
}

void ReturnTitles(Database& database, const QList<long>& titles, const QDate& returned) {
    InOneTransaction(database, [&] {
        for (qsizetype first = 0; first < titles.size(); first += kIdsPerStatement) {
            database.Execute("UPDATE loan SET returned = " + Quoted(DateText(returned)) +
                             " WHERE returned IS NULL AND idcd IN " +
                             IdList(titles.mid(first, kIdsPerStatement)));
        }
    });
}

QList<long> TitlesOut(Database& database, const QList<long>& titles) {
    QList<long> out;
    for (qsizetype first = 0; first < titles.size(); first += kIdsPerStatement) {
        auto records =
            database.OpenRecordset("select idcd from loan where returned is null and idcd in " +
                                       IdList(titles.mid(first, kIdsPerStatement)),
                                   dbOpenSnapshot);
        for (; !records->IsEOF(); records->MoveNext())
            out << records->Fields(0).Value().toLongLong();
    }
    return out;
}

std::vector<LoanEntry> LoanHistory(Database& database, long idcd) {
    std::vector<LoanEntry> entries;
    auto records = database.OpenRecordset(
        "select borrower.nmborrower, loan.lent, loan.due, loan.returned, loan.note from loan, "
        "borrower where loan.idborrower = borrower.idborrower and loan.idcd = " +
            QString::number(idcd) + " order by loan.lent desc, loan.idloan desc",
        dbOpenSnapshot);
    for (; !records->IsEOF(); records->MoveNext()) {
        entries.push_back(
            {NzText(records->Fields(0).Value()), TextDate(NzText(records->Fields(1).Value())),
             TextDate(NzText(records->Fields(2).Value())),
             TextDate(NzText(records->Fields(3).Value())), NzText(records->Fields(4).Value())});
    }
    return entries;
}

QHash<long, QString> LentToLines(Database& database) {
    QHash<long, QString> lines;
    auto records = database.OpenRecordset(
        "select loan.idcd, borrower.nmborrower, loan.due from loan, borrower where "
        "loan.idborrower = borrower.idborrower and loan.returned is null",
        dbOpenSnapshot);
    for (; !records->IsEOF(); records->MoveNext()) {
        const QString due = DateText(TextDate(NzText(records->Fields(2).Value())));
        lines.insert(static_cast<long>(records->Fields(0).Value().toLongLong()),
                     "lent to " + NzText(records->Fields(1).Value()) +
                         (due.isEmpty() ? QString() : " until " + due));
    }
    return lines;
}

QStringList BorrowerNames(Database& database) {
    QStringList names;
    auto records = database.OpenRecordset("select nmborrower from borrower order by nmborrower",
                                          dbOpenSnapshot);
    for (; !records->IsEOF(); records->MoveNext()) names << NzText(records->Fields(0).Value());
    return names;
}

long BorrowerId(Database& database, const QString& name) {
    // The column compares in the catalogue's text order, so "anna" finds "Anna".
    return LongOf(database, "select idborrower from borrower where nmborrower = " + Quoted(name));
}

QString DateText(const QDate& date) {
    return date.isValid() ? date.toString(Qt::ISODate) : QString();
}

QDate TextDate(const QString& text) {
    return QDate::fromString(text.left(10), Qt::ISODate);
}

}  // namespace loans
