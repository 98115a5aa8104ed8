#pragma once

// Reading and reshaping the text of a statement: enough of SQL's shape to find the clauses of
// a select at its top level (outside brackets, parentheses and quotes).

#include <QString>
#include <QStringList>
#include <QVariant>
#include <optional>
#include <vector>

namespace sqltext {

// A source that names one table ("title", "[title]") gives its name; a statement gives "".
QString BareTableName(const QString& source);

// True when nothing but blanks and ';' follows the first statement.
bool OnlyBlanksAndSemicolons(const char* tail);

// The statement with filter joined to its where clause and sort replacing its order by, as
// DAO applies a recordset's Filter and Sort when a recordset is opened on it.
QString WithFilterAndSort(const QString& sql, const QString& filter, const QString& sort);

// The select with extra columns at the end of its column list; "" when the statement is no
// plain select (distinct, grouped, compound) and so has no rows of single tables to point at.
QString WithExtraColumns(const QString& sql, const QStringList& columns);

// A statement with the values its where clause compares against taken out as parameters:
// "where idcd = 5 and nm = 'x'" becomes "where idcd = ? and nm = ?" with 5 and "x" to bind.
// Statements that differ only in those values then share one prepared form. Only whole integers
// and single-quoted texts right after a comparison are taken; a statement with parameters or
// comments of its own stays as it is.
struct ParameterizedStatement {
    QString text;
    std::vector<QVariant> values;
};
ParameterizedStatement WithComparedValuesAsParameters(const QString& sql);

// A select whose order by names only columns, each perhaps with its table and a direction, split
// into the statement without that clause and its terms. Anything else in the clause (numbers,
// expressions, COLLATE, NULLS, LIMIT) or a statement with more than one select or any COLLATE of
// its own gives nullopt: only SQLite itself then knows the order.
struct OrderTerm {
    QString table;  // empty when the column is named alone
    QString column;
    bool descending = false;
};
struct SplitOrder {
    QString withoutOrder;
    std::vector<OrderTerm> terms;
};
std::optional<SplitOrder> SplitSimpleOrderBy(const QString& sql);

}  // namespace sqltext
