#pragma once

// Timings of the online look-up against a server on 127.0.0.1 that answers as MusicBrainz and
// gnudb do.

#include <QString>
#include <vector>

// From the click on Look up to the editor filled with the one match (MusicBrainz knows the
// disc, gnudb does not), the choice confirmed at once. The disc was read from a cue sheet
// without CD-Text; folder is a program folder with a catalogue. The server answers at once.
std::vector<double> TimeLookupIntoEditor(const QString& folder, int runs);
// From the click on Barcode to the editor filled with the one release's tracks, the choice
// confirmed at once, less the time the second request waits for the service's pace.
std::vector<double> TimeBarcodeIntoEditor(const QString& folder, int runs);
// The longest time between two paints of the look-up window's busy bar while gnudb's answer
// drips in a byte every 50 ms, over two seconds of it, per run.
std::vector<double> TimeLookupRepaintGap(int runs);
