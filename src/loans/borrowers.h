#pragma once

// Adding, renaming and deleting borrowers, with the dialogues, limit, confirmation and
// messages of the design's lookup routines. The answer is packed as theirs: empty when nothing
// changed, "<id>~<name>" after an add or rename, "0~" after a delete.

#include <QString>

// action: 1 add, 2 rename, 3 delete (a LookupAction). id: the borrower (rename, delete). name:
// the borrower's present name (rename, delete).
QString ModifyBorrower(int action, long id, const QString& name);
