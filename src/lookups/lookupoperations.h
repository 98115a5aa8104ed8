#pragma once

// Adding, renaming and deleting the rows of the five lookup tables, each with its dialogues,
// limits, confirmations and messages. Every routine answers with a packed result string:
// empty when nothing changed, "<id>~<name>" after an add or rename, "0~" after a delete.

#include <QString>

#include "app/lookupresult.h"

// action: 1 add, 2 rename, 3 delete. id: the row (rename, delete) or the parent (add).
// name: the row's present name (rename, delete); on add an optional wanted name, which skips
// the dialogue and is emptied by the routine.
QString ModifyPlatform(int action, long id, QString& name);
QString ModifyMediatype(int action, long id, QString& name);
QString ModifySpecific(int action, long id, QString& name);
QString ModifyType(int action, long id, QString& name);
QString ModifyVendor(int action, long id, QString& name);
