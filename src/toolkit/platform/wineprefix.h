#pragma once

// Where the Windows programs we share files with live: the user's Wine prefix.

#include <QString>

// The user's Wine prefix: $WINEPREFIX, else ~/.wine.
QString WinePrefix();
// A Windows path ("C:\Program Files\...") as the file in the Wine prefix that Windows programs
// see under it, its names matched without regard to case; any other path with "\" as "/".
QString WindowsPathInPrefix(const QString& windowsPath);
