#include "store/sqltext.h"

#include <QRegularExpression>
#include <optional>
#include <vector>

namespace sqltext {
namespace {

struct Word {
    QString lower;
    qsizetype start;
};

// The words of the statement outside quotes, brackets and parentheses, in order.
std::vector<Word> TopLevelWords(const QString& sql) {
    std::vector<Word> words;
    int depth = 0;
    qsizetype i = 0;
    const qsizetype length = sql.size();
    while (i < length) {
        const QChar c = sql[i];
        if (c == '\'' || c == '"' || c == '`') {
            // A doubled quote inside stays inside.
            ++i;
            while (i < length) {
                if (sql[i] == c && (i + 1 >= length || sql[i + 1] != c)) break;
                i += sql[i] == c ? 2 : 1;
            }
            ++i;
        } else if (c == '[') {
            while (i < length && sql[i] != ']') ++i;
            ++i;
        } else if (c == '(') {
            ++depth;
            ++i;
        } else if (c == ')') {
            --depth;
            ++i;
        } else if (c.isLetterOrNumber() || c == '_') {
            const qsizetype start = i;
            while (i < length && (sql[i].isLetterOrNumber() || sql[i] == '_')) ++i;
            if (depth == 0) words.push_back({sql.mid(start, i - start).toLower(), start});
        } else {
            ++i;
        }
    }
    return words;
}

std::optional<qsizetype> FindWord(const std::vector<Word>& words, const QString& word,
                                  const QString& next = QString()) {
    for (size_t i = 0; i < words.size(); ++i)
        if (words[i].lower == word &&
            (next.isEmpty() || (i + 1 < words.size() && words[i + 1].lower == next)))
            return words[i].start;
    return std::nullopt;
}

QString WithoutTrailingSemicolons(const QString& sql) {
    QString text = sql.trimmed();
    while (text.endsWith(';')) text = text.chopped(1).trimmed();
    return text;
}

// The end of the quoted run that starts at start (one past its closing quote), or -1 when it
// never closes. A doubled quote inside stays inside.
qsizetype QuotedEnd(const QString& sql, qsizetype start, QChar close) {
    qsizetype i = start + 1;
    while (i < sql.size()) {
        if (sql[i] == close) {
            if (close != ']' && i + 1 < sql.size() && sql[i + 1] == close) {
                i += 2;
                continue;
            }
            return i + 1;
        }
        ++i;
    }
    return -1;
}

bool IsWordCharacter(QChar c) {
    return c.isLetterOrNumber() || c == '_';
}

bool EndsWhereClause(const QString& word) {
    static const QStringList clauses = {"group",     "order",  "having", "limit",
                                        "intersect", "except", "union",  "window"};
    return clauses.contains(word);
}

}  // namespace

QString BareTableName(const QString& source) {
    static const QRegularExpression name(R"(^\s*\[?([A-Za-z_][A-Za-z0-9_]*)\]?\s*$)");
    const auto match = name.match(source);
    return match.hasMatch() ? match.captured(1) : QString();
}

bool OnlyBlanksAndSemicolons(const char* tail) {
    for (; tail && *tail; ++tail)
        if (*tail != ';' && !QChar::isSpace(static_cast<unsigned char>(*tail))) return false;
    return true;
}

QString WithFilterAndSort(const QString& sql, const QString& filter, const QString& sort) {
    QString text = WithoutTrailingSemicolons(sql);
    const auto words = TopLevelWords(text);
    const auto orderBy = FindWord(words, "order", "by");
    QString orderClause;
    if (orderBy) {
        orderClause = text.mid(*orderBy);
        text = text.left(*orderBy).trimmed();
    }
    if (!filter.trimmed().isEmpty()) {
        const auto where = FindWord(words, "where");
        const auto groupBy = FindWord(words, "group", "by");
        const auto having = FindWord(words, "having");
        qsizetype end = text.size();
        if (groupBy && *groupBy < end) end = *groupBy;
        if (having && *having < end) end = *having;
        const QString rest = text.mid(end);
        QString head = text.left(end).trimmed();
        if (where) {
            const qsizetype condition = *where + 5;
            head = head.left(condition) + " (" + head.mid(condition).trimmed() + ") and (" +
                   filter + ")";
        } else {
            head += " where " + filter;
        }
        text = rest.isEmpty() ? head : head + " " + rest;
    }
    if (!sort.trimmed().isEmpty()) orderClause = "order by " + sort;
    return orderClause.isEmpty() ? text : text + " " + orderClause;
}

QString WithExtraColumns(const QString& sql, const QStringList& columns) {
    const QString text = WithoutTrailingSemicolons(sql);
    const auto words = TopLevelWords(text);
    if (words.size() < 2 || words[0].lower != "select" || words[1].lower == "distinct" ||
        words[1].lower == "distinctrow")
        return QString();
    for (const auto& word : words)
        if (word.lower == "group" || word.lower == "union" || word.lower == "intersect" ||
            word.lower == "except")
            return QString();
    const auto from = FindWord(words, "from");
    if (!from) return QString();
    return text.left(*from).trimmed() + ", " + columns.join(", ") + " " + text.mid(*from);
}

ParameterizedStatement WithComparedValuesAsParameters(const QString& sql) {
    const ParameterizedStatement unchanged{sql, {}};
    ParameterizedStatement result;
    result.text.reserve(sql.size());
    int depth = 0;
    bool inWhere = false;
    bool afterComparison = false;
    qsizetype i = 0;
    const qsizetype length = sql.size();
    while (i < length) {
        const QChar c = sql[i];
        const QChar next = i + 1 < length ? sql[i + 1] : QChar();
        if (c.isSpace()) {
            result.text += c;
            ++i;
            continue;
        }
        if (c == '?' || c == ':' || c == '@' || c == '$' || (c == '-' && next == '-') ||
            (c == '/' && next == '*'))
            return unchanged;
        if (c == '\'' || c == '"' || c == '`' || c == '[') {
            const qsizetype end = QuotedEnd(sql, i, c == '[' ? QChar(']') : c);
            if (end < 0) return unchanged;
            if (c == '\'' && inWhere && afterComparison) {
                result.text += '?';
                result.values.push_back(sql.mid(i + 1, end - i - 2).replace("''", "'"));
            } else {
                result.text += QStringView(sql).mid(i, end - i);
            }
            afterComparison = false;
            i = end;
            continue;
        }
        if (IsWordCharacter(c)) {
            qsizetype end = i;
            while (end < length && IsWordCharacter(sql[end])) ++end;
            const QStringView word = QStringView(sql).mid(i, end - i);
            bool whole = false;
            const qint64 number = word.toLongLong(&whole);
            if (whole && inWhere && afterComparison && (end >= length || sql[end] != '.')) {
                result.text += '?';
                result.values.push_back(QVariant::fromValue<qint64>(number));
            } else {
                result.text += word;
                if (depth == 0) {
                    const QString lower = word.toString().toLower();
                    if (lower == "where")
                        inWhere = true;
                    else if (EndsWhereClause(lower))
                        inWhere = false;
                }
            }
            afterComparison = false;
            i = end;
            continue;
        }
        if (c == '=' || c == '<' || c == '>' || c == '!') {
            while (i < length && QStringView(u"=<>!").contains(sql[i])) result.text += sql[i++];
            afterComparison = true;
            continue;
        }
        if (c == '(') ++depth;
        if (c == ')') --depth;
        result.text += c;
        afterComparison = false;
        ++i;
    }
    return result.values.empty() ? unchanged : result;
}

std::optional<SplitOrder> SplitSimpleOrderBy(const QString& sql) {
    static const QRegularExpression selectOrCollate(R"(\b(select|collate)\b)",
                                                    QRegularExpression::CaseInsensitiveOption);
    const QString text = WithoutTrailingSemicolons(sql);
    const auto words = TopLevelWords(text);
    if (words.empty() || words[0].lower != "select") return std::nullopt;
    const auto orderBy = FindWord(words, "order", "by");
    if (!orderBy) return std::nullopt;
    // A second select (a subquery, a union) or a COLLATE of the statement's own changes what a
    // name in the clause stands for or how it sorts.
    int selectsAndCollates = 0;
    for (auto found = selectOrCollate.globalMatch(text); found.hasNext(); found.next())
        ++selectsAndCollates;
    if (selectsAndCollates != 1) return std::nullopt;
    static const QString name = R"((?:\[([^\]]+)\]|([A-Za-z_][A-Za-z0-9_]*)))";
    static const QRegularExpression term(
        "^\\s*(?:" + name + "\\s*\\.\\s*)?" + name + "(?:\\s+(asc|desc))?\\s*(,|$)",
        QRegularExpression::CaseInsensitiveOption);
    SplitOrder split;
    split.withoutOrder = text.left(*orderBy).trimmed();
    QStringView clause = QStringView(text).mid(*orderBy).mid(5).trimmed().mid(2);
    while (!clause.trimmed().isEmpty()) {
        const auto match = term.match(clause);
        if (!match.hasMatch()) return std::nullopt;
        OrderTerm parsed;
        parsed.table = match.captured(1) + match.captured(2);
        parsed.column = match.captured(3) + match.captured(4);
        parsed.descending =
            match.captured(5).compare(QLatin1String("desc"), Qt::CaseInsensitive) == 0;
        const QStringView rest = clause.mid(match.capturedEnd(0));
        if (match.captured(6).isEmpty() != rest.trimmed().isEmpty()) return std::nullopt;
        split.terms.push_back(parsed);
        clause = rest;
    }
    if (split.terms.empty()) return std::nullopt;
    return split;
}

}  // namespace sqltext
