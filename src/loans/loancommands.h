#pragma once

// Lending and taking back as the main window and the title editor offer them: the lend window,
// and the question for the day a title came back.

#include <QList>
#include <QStringList>

class QWidget;

// Opens the lend window over owner for titles (names as shown to the user); true when they were
// lent.
bool LendTitlesInWindow(QWidget* owner, const QList<long>& titles, const QStringList& names);
// Asks the day the titles came back (today unless changed) and closes their loans; true when
// they were taken back.
bool TakeBackTitles(const QList<long>& titles);
