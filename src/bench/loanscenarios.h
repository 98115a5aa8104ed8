#pragma once

// Timings of the loan register on a catalogue in folder (made by BuildSyntheticCatalogue). Each
// returns one time in milliseconds per run and leaves the catalogue without loans.

#include <QString>
#include <vector>

// The "Lent out" folder read with 2000 titles out (a quarter of them overdue).
std::vector<double> TimeLentOutFolder(const QString& folder, int runs);
// The count of titles out and overdue that the start-up shows, with 2000 titles out.
std::vector<double> TimeLoanCount(const QString& folder, int runs);
// OK of the lend window for 500 selected titles: one transaction.
std::vector<double> TimeLendingSelected(const QString& folder, int runs);
