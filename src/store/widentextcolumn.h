#pragma once

#include <QString>

// Rebuilds a text column of title at a greater width, keeping every row's value (Null too).
// The engine cannot widen a column that holds data, so the values pass through a temporary
// column "temp" + name, and the rebuilt column ends up last in the table. Nothing is trapped:
// a failure between the statements leaves the temporary column behind and reaches the caller.
void WidenTextColumn(const QString& name, int size);
