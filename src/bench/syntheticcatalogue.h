#pragma once

// A catalogue of a chosen size for timing the program: titles spread over platforms, types,
// vendors and mediatypes, each with twelve tracks, in a program folder of its own.

#include <QString>

// Installs the template from the program folder into folder as data.dll and data.gdb and adds
// titles (and a few platforms of the user's own) in one transaction. Leaves it closed.
void BuildSyntheticCatalogue(const QString& folder, int titles);
