#pragma once

#include <QString>

// Opens the HTML manual with the desktop's browser. Nonzero when it was handed to the browser,
// 0 when the file is missing or nothing could open it.
int ShowHelpContents(const QString& helpFile);
