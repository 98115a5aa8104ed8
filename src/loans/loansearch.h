#pragma once

// The search window's criteria on loans, as clauses added to its statement of titles.

#include <QDate>
#include <QString>

namespace loans {

// Titles out now to a borrower whose name is like "*text*" (the store's wildcards work).
QString LentToClause(const QString& text);
// Titles out now whose due date lies before today.
QString OverdueClause(const QDate& today);
// Titles out now: the scope of a search started from the "Lent out" folder.
QString LentOutClause();

}  // namespace loans
