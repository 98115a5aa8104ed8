#pragma once

#include "store/dao.h"

// Catalogues made by older versions compare their text columns in SQLite's binary order, where
// "atari" sorts after "Video" and "pink floyd" is not "Pink Floyd". These find such columns and
// give them Jet's order.

// True when a text column of a table in the database lacks Jet's order. Reads the schema only,
// so it costs next to nothing on a converted file.
bool TextColumnsNeedJetOrder(Database& database);

// Rebuilds every table with such a column under the same definition with Jet's order added:
// same columns in the same places, rows, ids, counters, relations and indexes. The engine cannot
// change a column's order in place. All tables change in one transaction, so a failure leaves
// the file as it was, and reaches the caller.
void GiveTextColumnsJetOrder(Database& database);
