#pragma once

// Shared state of the program, plain globals as the windows use them.

#include <QString>

#include "store/catalogue.h"

extern bool gSecondInstance;
extern bool gTreeDirty;
extern bool gListDirty;
extern QString gItemCountText;

// The selected tree node, and the key last asked for or the literal "forcechange".
extern int gSelectedIndex;
extern QString gSelectedKey;
extern QString gRequestedKey;

// The statement of the last search (the current view's, gViewSQL, is the catalogue's).
extern QString gSearchSQL;

// The idcd of the selected title.
extern long gCurrentTitleId;

// How frmEdit was opened; exactly one is true while it is open.
extern bool gAddingTitle;
extern bool gModifyingTitle;

// The empty text mark: an empty memo, label or listing is stored as one character of code 0.
inline const QString kEmptyTextMark = QString(QChar(0));
