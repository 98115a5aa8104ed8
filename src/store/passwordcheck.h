#pragma once

#include <QString>

struct sqlite3;

// The program's database password, a constant stored whole. Inline, so that constants built
// from it in other files never see it unmade.
inline const QString kDatabasePassword = QString::fromUtf8("~#*Ê¶,¬4q;[|øÕë=ÞÃÖ-");

// SQLite has no password, so a catalogue keeps a check of the program's password inside the
// file: a salted hash in a table of its own. Opening with another password is then refused.
namespace passwordcheck {

// Writes (or replaces) the check of password into the open database.
void Write(sqlite3* db, const QString& password);
// True when the file carries no check, or the check matches password.
bool Matches(sqlite3* db, const QString& password);
// Takes the password from a connect string such as ";pwd=secret" or ";LANGID=...;pw=secret".
QString FromConnectString(const QString& connect);

}  // namespace passwordcheck
