#pragma once

// The answer of the routines that add, rename and delete the rows of a list (the lookup tables,
// the borrowers): empty when nothing changed, "<id>~<name>" after an add or rename, "0~" after a
// delete.

#include <QString>

enum LookupAction { kLookupAdd = 1, kLookupRename = 2, kLookupDelete = 3 };

// The id before the first "~", and the text behind it (empty when there is none).
long LookupResultId(const QString& result);
QString LookupResultName(const QString& result);
