#pragma once

// Jet 4 (and Jet 3) database files, the Deluxe CD player's database: what the rest of the
// program uses of them. Reading goes through libmdb, after a check in a child process that the
// file cannot make libmdb crash; writing goes through the program's own Writer, which keeps the
// file readable whatever stops it. Nothing here knows the catalogue or the windows; failures are
// WriteError, with Jet's error numbers.

#include <QString>
#include <QVariant>
#include <functional>
#include <vector>

#include "jet/jetwriteerror.h"
#include "jet/jetwriter.h"

namespace jetfile {

// True when the file starts as a Jet 3 or Jet 4 database does.
bool HasJetSignature(const QString& path);
// 3 or 4 for a Jet file of that version, 0 for anything else.
int JetVersion(const QString& path);

// libmdb trusts what a file says of itself, and a damaged file can make it read anywhere and
// crash. The file is read once through libmdb in a child process first: false when that
// reading killed the child, so the file must not be read in this process.
bool LibmdbReadsSafely(const QString& path);

// The kinds of column the program tells apart; the rest are kept as bytes.
enum class ColumnKind { Boolean, Byte, Integer, Long, Real, DateTime, Text, Memo, Binary };

struct Column {
    QString name;
    ColumnKind kind = ColumnKind::Binary;
    int textWidth = 0;  // characters, for Text
};

// Reads every user table of the file: table once with its name and columns, then row for each
// of its rows, values in column order (an invalid QVariant is Null; texts and dates as text,
// "yyyy-MM-dd HH:mm:ss"). A write of the program's that was cut off is undone first. Throws
// WriteError: 3024 missing, 3343 not a Jet file, 3049 damaged (also when the check in the child
// process failed).
void ReadTables(const QString& path,
                const std::function<void(const QString& name, const std::vector<Column>&)>& table,
                const std::function<void(const QVariantList&)>& row);

}  // namespace jetfile
