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

}  // namespace sqltext
