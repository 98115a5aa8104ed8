#pragma once

// The "Lent out" folder of the tree: every title that is out, with who has it and the due date
// in place of the Kind and Nr cd's columns, in the order of the due dates. The folder stands
// under the root, before "search results", while any title is out.

#include <QColor>
#include <QDate>
#include <QString>
#include <QStringList>
#include <array>
#include <vector>

namespace loans {

inline const QString kLentOutKey = "lentout";
inline const QString kLentOutCaption = "Lent out";

// Titles without a due date come last.
QString LentOutSQL();
// Stores the statement in gViewSQL and opens it into gRecordset; as the design's views do, a
// view that cannot be opened leaves the former one in place.
void OpenLentOutView();
// True when any title is out: the folder is shown.
bool AnyTitleOut();

// The list's headers in the folder, and the fields its five sub-items are read from.
QStringList LentOutHeaders();
std::array<QString, 5> LentOutSubItemFields();
// The due column among the sub-items (0-based).
constexpr int kDueSubItem = 3;

// Behind the due date of a title due before today, so that the colour is not the only sign.
inline const QString kOverdueMark = " (overdue)";

// A red that reads on background: dark on a light one, light on a dark one. Overdue rows are
// written in the red of the list's background and, when selected, stand on the red of the
// selection's text, so that they read and stay apart in both states.
QColor OverdueColour(const QColor& background);

}  // namespace loans
