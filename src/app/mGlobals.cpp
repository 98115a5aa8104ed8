#include "app/mGlobals.h"

bool gSecondInstance = false;
bool gTreeDirty = false;
bool gListDirty = false;
QString gItemCountText = "00000 item(s) found";

int gSelectedIndex = 0;
QString gSelectedKey;
QString gRequestedKey;

QString gSearchSQL;

long gCurrentTitleId = 0;

bool gAddingTitle = false;
bool gModifyingTitle = false;
