#pragma once

#include <QString>

// The tooltip of a title in the list: its cover's thumbnail, read on demand by its idcd (the
// row's tag), so that filling the list never reads an image. Empty for a title without one.
QString CoverToolTip(const QString& tag, const QString& title);
