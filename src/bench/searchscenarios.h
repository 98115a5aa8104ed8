#pragma once

// Timings of the search and of the compaction at exit, on a catalogue in folder (made by
// BuildSyntheticCatalogue). Each returns one time in milliseconds per run.

#include <QString>
#include <vector>

// The search window with a title criterion over every platform: statement built, list filled.
std::vector<double> TimeTitleSearch(const QString& folder, int runs);
// The same with a track-name criterion, which looks through every title's tracks.
std::vector<double> TimeTrackSearch(const QString& folder, int runs);
// Closing, compacting into the temporary file and swapping it in, as every exit does.
std::vector<double> TimeCompaction(const QString& folder, int runs);
