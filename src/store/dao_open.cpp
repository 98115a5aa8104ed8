// Opening recordsets: from a table name or a statement on a database, and from a recordset with
// its filter and sort.

#include "store/adaptedsql.h"
#include "store/dao_detail.h"
#include "store/jettext.h"
#include "store/sqltext.h"

using namespace dao_detail;

namespace {

QString Text(const char* text) {
    return text ? QString::fromUtf8(text) : QString();
}

void ReadColumns(const Connection& connection, OpenPlan& plan, sqlite3_stmt* statement) {
    const int count = sqlite3_column_count(statement);
    for (int i = 0; i < count; ++i) {
        Column column;
        column.name = Text(sqlite3_column_name(statement, i));
        column.table = Text(sqlite3_column_table_name(statement, i));
        column.origin = Text(sqlite3_column_origin_name(statement, i));
        column.quotedOrigin = Quoted(column.origin);
        column.declaredType = Text(sqlite3_column_decltype(statement, i));
        column.firstSameField = i;
        if (!column.table.isEmpty()) {
            const char* declared = nullptr;
            int primaryKey = 0;
            sqlite3_table_column_metadata(connection.db, sqlite3_column_database_name(statement, i),
                                          sqlite3_column_table_name(statement, i),
                                          sqlite3_column_origin_name(statement, i), &declared,
                                          nullptr, nullptr, &primaryKey, nullptr);
            column.counter =
                primaryKey && Text(declared).compare("INTEGER", Qt::CaseInsensitive) == 0;
            const QString qualified = (column.table + "." + column.origin).toLower();
            if (plan.qualifiedNames.contains(qualified))
                column.firstSameField =
                    plan.columns[plan.qualifiedNames.value(qualified)].firstSameField;
            plan.qualifiedNames.insert(qualified, i);
        }
        // Over a join a plain name may occur twice; it then reads the first such field.
        if (!plan.plainNames.contains(column.name.toLower()))
            plan.plainNames.insert(column.name.toLower(), i);
        plan.columns.push_back(std::move(column));
    }
}

// Editing finds its rows by rowid: one hidden column per table that gives fields, after the
// fields. A statement that cannot carry them (grouped, distinct, aliased tables) stays as it is
// and cannot be edited.
sqlite3_stmt* WithRowids(const Connection& connection, OpenPlan& plan, sqlite3_stmt* statement) {
    QStringList tables, columns;
    for (const Column& column : plan.columns)
        if (!column.table.isEmpty() && !tables.contains(column.table, Qt::CaseInsensitive)) {
            tables << column.table;
            columns << Quoted(column.table) + ".rowid";
        }
    if (tables.isEmpty()) return statement;
    const QByteArray extended =
        sqltext::WithExtraColumns(QString::fromUtf8(plan.preparedText), columns).toUtf8();
    if (extended.isEmpty()) return statement;
    sqlite3_stmt* withRowids = nullptr;
    if (sqlite3_prepare_v2(connection.db, extended.constData(), -1, &withRowids, nullptr) !=
            SQLITE_OK ||
        sqlite3_column_count(withRowids) != static_cast<int>(plan.columns.size() + tables.size())) {
        sqlite3_finalize(withRowids);
        return statement;
    }
    sqlite3_finalize(statement);
    plan.preparedText = extended;
    const int first = static_cast<int>(plan.columns.size());
    for (int t = 0; t < tables.size(); ++t) plan.rowidTables.push_back(tables[t]);
    for (Column& column : plan.columns)
        if (!column.table.isEmpty())
            column.rowidColumn = first + static_cast<int>(tables.indexOf(column.table));
    return withRowids;
}

// Learns what a statement gives; the statement prepared for it comes back in first.
std::shared_ptr<OpenPlan> MakePlan(const Connection& connection, const QString& adapted,
                                   bool editable, sqlite3_stmt*& first) {
    auto plan = std::make_shared<OpenPlan>();
    plan->preparedText = adapted.toUtf8();
    sqlite3_stmt* statement = PrepareAdapted(connection, plan->preparedText);
    if (sqlite3_column_count(statement) == 0 || !sqlite3_stmt_readonly(statement)) {
        sqlite3_finalize(statement);
        Raise(3219);
    }
    ReadColumns(connection, *plan, statement);
    if (editable) statement = WithRowids(connection, *plan, statement);
    plan->statementColumns = sqlite3_column_count(statement);
    first = statement;
    return plan;
}

// The order by terms as fields of the rows, or none when one of them is not plainly a field
// whose collation this layer compares as SQLite does.
std::vector<SortTerm> OwnSortTerms(const Connection& connection, const OpenPlan& plan,
                                   const std::vector<sqltext::OrderTerm>& terms) {
    // A view's field may carry a collation of the view's own that its origin does not show.
    if (RunInternal(connection, "SELECT count(*) FROM sqlite_master WHERE type = 'view'")
            .value(0)
            .toLongLong() > 0)
        return {};
    std::vector<SortTerm> sortTerms;
    for (const sqltext::OrderTerm& term : terms) {
        // A name alone is read as the name of a field first; with its table it is that table's
        // column. Either must point at exactly one field, and that field must be the column
        // itself, not an expression or another column under this name.
        std::vector<size_t> matches;
        for (size_t i = 0; i < plan.columns.size(); ++i) {
            const Column& column = plan.columns[i];
            const bool named =
                term.table.isEmpty()
                    ? column.name.compare(term.column, Qt::CaseInsensitive) == 0
                    : column.table.compare(term.table, Qt::CaseInsensitive) == 0 &&
                          column.origin.compare(term.column, Qt::CaseInsensitive) == 0;
            if (named) matches.push_back(i);
        }
        if (matches.size() != 1) return {};
        const Column& column = plan.columns[matches.front()];
        if (column.table.isEmpty() || column.origin.compare(term.column, Qt::CaseInsensitive) != 0)
            return {};
        const char* collation = nullptr;
        if (sqlite3_table_column_metadata(connection.db, nullptr, column.table.toUtf8().constData(),
                                          column.origin.toUtf8().constData(), nullptr, &collation,
                                          nullptr, nullptr, nullptr) != SQLITE_OK)
            return {};
        const QString name = Text(collation).toUpper();
        CachedRow::TextOrder textOrder;
        if (name == "BINARY")
            textOrder = CachedRow::TextOrder::Binary;
        else if (name == "NOCASE")
            textOrder = CachedRow::TextOrder::NoCase;
        else if (name == jettext::kCollation)
            textOrder = CachedRow::TextOrder::Jet;
        else
            return {};
        sortTerms.push_back({static_cast<int>(matches.front()), term.descending, textOrder});
    }
    return sortTerms;
}

// A recordset that keeps every row it reads sorts them itself when the order is plain enough:
// SQLite would write each wide row of a join into its sorter and read it back, and a large view
// comes mostly sorted already (by the index it is read through).
std::shared_ptr<OpenPlan> WithOwnSort(const Connection& connection, std::shared_ptr<OpenPlan> plan,
                                      bool editable, sqlite3_stmt*& statement,
                                      const QString& text) {
    const auto split = sqltext::SplitSimpleOrderBy(text);
    if (!split) return plan;
    std::vector<SortTerm> terms = OwnSortTerms(connection, *plan, split->terms);
    if (terms.empty()) return plan;
    sqlite3_stmt* unsortedStatement = nullptr;
    std::shared_ptr<OpenPlan> unsorted;
    try {
        unsorted = MakePlan(connection, split->withoutOrder, editable, unsortedStatement);
    } catch (const VbError&) {
        return plan;
    }
    const auto sameField = [](const Column& a, const Column& b) {
        return a.name == b.name && a.table == b.table && a.origin == b.origin;
    };
    if (!std::equal(plan->columns.begin(), plan->columns.end(), unsorted->columns.begin(),
                    unsorted->columns.end(), sameField) ||
        plan->rowidTables != unsorted->rowidTables) {
        sqlite3_finalize(unsortedStatement);
        return plan;
    }
    sqlite3_finalize(statement);
    statement = unsortedStatement;
    unsorted->sortTerms = std::move(terms);
    return unsorted;
}

bool IsTable(const Connection& connection, const QString& name, bool* view) {
    const QVariant kind = RunInternal(connection,
                                      "SELECT type FROM sqlite_master WHERE type IN ('table', "
                                      "'view') AND name = ? COLLATE NOCASE",
                                      {name})
                              .value(0);
    *view = kind.toString() == "view";
    return kind.isValid();
}

void Open(RecordsetData& d) {
    Connection& connection = *d.connection;
    const bool editable =
        (d.type == dbOpenTable || d.type == dbOpenDynaset) && !(d.options & dbReadOnly);
    const sqltext::ParameterizedStatement parameterized =
        sqltext::WithComparedValuesAsParameters(AdaptStatement(d.sql));
    // A forward-only recordset keeps one row at a time, so SQLite sorts for it.
    const bool keepsRows = d.type != dbOpenForwardOnly;
    const QString key = QLatin1String(editable    ? "e "
                                      : keepsRows ? "r "
                                                  : "f ") +
                        parameterized.text;
    std::shared_ptr<OpenPlan> plan = connection.openPlans.value(key);
    sqlite3_stmt* statement = nullptr;
    if (!plan) {
        constexpr qsizetype kMostPlans = 256;
        plan = MakePlan(connection, parameterized.text, editable, statement);
        if (keepsRows)
            plan =
                WithOwnSort(connection, std::move(plan), editable, statement, parameterized.text);
        if (connection.openPlans.size() >= kMostPlans) connection.ForgetOpenPlans();
        connection.openPlans.insert(key, plan);
    } else if (!plan->idle.empty()) {
        statement = plan->idle.back();
        plan->idle.pop_back();
    } else {
        statement = PrepareAdapted(connection, plan->preparedText);
    }
    d.plan = plan;
    d.statement = statement;
    d.columns = plan->columns;
    d.rowidTables = plan->rowidTables;
    d.qualifiedNames = plan->qualifiedNames;
    d.plainNames = plan->plainNames;
    d.statementColumns = plan->statementColumns;
    for (size_t i = 0; i < parameterized.values.size(); ++i)
        Bind(statement, static_cast<int>(i) + 1, parameterized.values[i]);
    connection.recordsets.push_back(&d);
    d.Start();
}

}  // namespace

std::unique_ptr<Recordset> Database::OpenRecordset(const QString& source, int type, int options) {
    if (!IsOpen()) Raise(3420);
    std::unique_ptr<Recordset> recordset(new Recordset);
    RecordsetData& d = *recordset->d;
    d.connection = connection_;
    d.source = source;
    d.options = options;
    d.sql = source;
    d.type = type == dbOpenDefault ? dbOpenDynaset : type;
    const QString table = sqltext::BareTableName(source);
    if (!table.isEmpty()) {
        bool view = false;
        if (!IsTable(*connection_, table, &view))
            Raise(3078, "The Microsoft Jet database engine cannot find the input table or query '" +
                            table +
                            "'. Make sure it exists and that its name is spelled correctly.");
        d.sql = "select * from " + Quoted(table);
        if ((type == dbOpenDefault || type == dbOpenTable) && !view) {
            d.type = dbOpenTable;
            d.table = table;
        }
    } else if (type == dbOpenTable) {
        Raise(3219);
    }
    Open(d);
    return recordset;
}

std::unique_ptr<Recordset> Recordset::OpenRecordset(int type, int options) {
    d->RequireOpen();
    std::unique_ptr<Recordset> recordset(new Recordset);
    RecordsetData& other = *recordset->d;
    other.connection = d->connection;
    other.sql = sqltext::WithFilterAndSort(d->sql, d->filter, d->sort);
    other.source = other.sql;
    other.options = options;
    other.type = type == dbOpenDefault || type == dbOpenTable ? dbOpenDynaset : type;
    Open(other);
    return recordset;
}
