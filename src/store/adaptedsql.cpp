#include "store/adaptedsql.h"

#include <QRegularExpression>
#include <algorithm>
#include <limits>
#include <utility>

#include "store/jettext.h"

namespace {

// Whole statements, the Jet text beside its SQLite form. Compared without regard to case and
// runs of blanks.
const std::pair<const char*, const char*> kAdaptedStatements[] = {
    // The tree's statement: SQLite refuses the repeated platform in the from list, and Jet
    // treats the visible test of the join as a filter of the platforms.
    {"Select platform.idplatform, platform.nmplatform, type.idtype, type.nmtype from platform, "
     "type, platform left join type on platform.idplatform = type.idplatform and "
     "platform.visible = true order by platform.nmplatform, type.nmtype",
     "Select platform.idplatform, platform.nmplatform, type.idtype, type.nmtype from platform "
     "left join type on platform.idplatform = type.idplatform where platform.visible = true "
     "order by platform.nmplatform, type.nmtype"},
};

QString Normalized(const QString& statement) {
    QString text = statement.simplified();
    while (text.endsWith(';')) text = text.chopped(1).trimmed();
    return text.toLower();
}

}  // namespace

QString AdaptStatement(const QString& jetStatement) {
    // Jet's TEXT(n) refuses longer text and compares in Jet's order; a column added later must
    // do both, as the template's own columns do.
    static const QRegularExpression addTextColumn(
        R"(^\s*ALTER\s+TABLE\s+(\w+)\s+ADD\s+COLUMN\s+(\w+)\s+TEXT\s*\(\s*(\d+)\s*\)\s*;?\s*$)",
        QRegularExpression::CaseInsensitiveOption);
    const auto match = addTextColumn.match(jetStatement);
    if (match.hasMatch()) {
        const QString column = match.captured(2);
        const QString width = match.captured(3);
        return QString(
                   "ALTER TABLE %1 ADD COLUMN %2 TEXT(%3) COLLATE %4 CONSTRAINT width_%2 CHECK "
                   "(length(%2) <= %3)")
            .arg(match.captured(1), column, width, jettext::kCollation);
    }
    // Normalizing only shortens a statement: one shorter than every adapted text is none of them,
    // and most statements (the lookups of an import, row by row) are.
    static const qsizetype shortestAdapted = [] {
        qsizetype shortest = std::numeric_limits<qsizetype>::max();
        for (const auto& adapted : kAdaptedStatements)
            shortest = std::min(shortest, Normalized(QString::fromUtf8(adapted.first)).size());
        return shortest;
    }();
    if (jetStatement.size() < shortestAdapted) return jetStatement;
    const QString key = Normalized(jetStatement);
    for (const auto& [jet, sqlite] : kAdaptedStatements)
        if (Normalized(QString::fromUtf8(jet)) == key) return QString::fromUtf8(sqlite);
    return jetStatement;
}
