#pragma once

// Jet's text order, which every text column of the catalogue uses for `=`, sorting, `min`,
// `max` and its indexes: case never counts, in any script, and an accented letter sorts beside
// its base letter. Accents still make texts differ; they only decide between texts that are
// otherwise the same ("ete" before "été" before "etf").

#include <QString>
#include <QStringView>
#include <string_view>

struct sqlite3;

namespace jettext {

// The name under which the order is registered on every connection and declared in the schema.
inline constexpr const char* kCollation = "JETTEXT";

// A text prepared for many comparisons, as a list sorts it.
struct SortKey {
    QString base;     // folded, without accents
    QString accents;  // folded, with accents; empty when the text has none
    const QString& Accented() const { return accents.isEmpty() ? base : accents; }
};

SortKey MakeSortKey(QStringView text);
// Below 0, 0 or above 0 as a sorts before, with or after b.
int Compare(const SortKey& a, const SortKey& b);
int Compare(QStringView a, QStringView b);
// The same order on UTF-8 text as SQLite hands it over.
int CompareUtf8(std::string_view a, std::string_view b);

// Installs the order on the connection under kCollation.
void Register(sqlite3* db);

}  // namespace jettext
