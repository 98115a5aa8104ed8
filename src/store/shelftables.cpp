#include "store/shelftables.h"

namespace {

// The key is INT rather than INTEGER: the rows are written through recordsets, which never
// write a counter, and idcd is the title's.
// Text compares in Jet's order here as in the catalogue's own tables, so that a search by
// barcode behaves as every other search and the start-up's order check leaves them alone.
const char* const kTitleRelease =
    "CREATE TABLE IF NOT EXISTS titlerelease ("
    "idcd INT PRIMARY KEY REFERENCES title (idcd) ON DELETE CASCADE, "
    "mbid TEXT(36) COLLATE JETTEXT, "
    "barcode TEXT(32) COLLATE JETTEXT)";

const char* const kCover =
    "CREATE TABLE IF NOT EXISTS cover ("
    "idcd INT PRIMARY KEY REFERENCES title (idcd) ON DELETE CASCADE, "
    "image BLOB NOT NULL, "
    "thumbnail BLOB NOT NULL, "
    "mbid TEXT(36) COLLATE JETTEXT, "
    "source LONGTEXT COLLATE JETTEXT, "
    "added DATE)";

}  // namespace

void MakeShelfTables(Database& database) {
    database.Execute(kTitleRelease);
    database.Execute(kCover);
}
