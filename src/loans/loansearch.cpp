#include "loans/loansearch.h"

#include "loans/loanstore.h"

namespace loans {

namespace {

QString OpenLoansWhere(const QString& condition) {
    return " and title.idcd in (select loan.idcd from loan, borrower where loan.idborrower = "
           "borrower.idborrower and loan.returned is null" +
           condition + ")";
}

}  // namespace

QString LentToClause(const QString& text) {
    // Unlike the design's boxes, a quote in the name is kept as a quote.
    return OpenLoansWhere(" and borrower.nmborrower like '*" + QString(text).replace('\'', "''") +
                          "*'");
}

QString OverdueClause(const QDate& today) {
    return OpenLoansWhere(" and loan.due < '" + DateText(today) + "'");
}

QString LentOutClause() {
    return OpenLoansWhere(QString());
}

}  // namespace loans
