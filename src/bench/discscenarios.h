#pragma once

// Timings of reading discs: an audio image into the title editor, and data listings.

#include <QString>
#include <vector>

// Writes name.cue over a sparse name.bin of silence into folder: tracks tracks starting
// minutesApart minutes apart, with CD-Text (album, artist, "Song number N") when cdText.
// Returns the cue sheet's path.
QString WriteSilentCue(const QString& folder, const QString& name, int tracks, int minutesApart,
                       bool cdText);
// A new title on the audio platform in a fresh title editor over the running main window.
void OpenNewAudioTitle();
// A 20-track cue sheet with CD-Text read into a new title on the audio platform, through the
// editor's Read disc button (drive lookup, reading, duplicate check, tracks, title, artist).
// folder is a program folder with a catalogue.
std::vector<double> TimeReadAudioIntoEditor(const QString& folder, int runs);
// Listing 50,000 files in 500 folders from the folder itself, or (iso) from an ISO image made
// of it with xorriso. Adds the process's peak resident memory in MB as the last value.
std::vector<double> TimeDataListing(bool iso, int runs, double& peakMegabytes);
