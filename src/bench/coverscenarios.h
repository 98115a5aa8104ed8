#pragma once

// Timings and sizes of the covers: the list's tooltip, the catalogue's growth by a cover, and a
// catalogue whose every title has a cover, for the list's read and the HTML page.

#include <QString>
#include <vector>

// Gives every title of the closed catalogue in folder a cover of a 300 x 300 JPEG (its
// thumbnail made as the program makes it), in one transaction.
void AddCoversToCatalogue(const QString& folder);
// The tooltip of a title with a cover in a list of 1000 titles with covers, from asking the
// list for it to the tooltip's text laid out with its image; one time per run.
std::vector<double> TimeCoverToolTip(const QString& folder, int runs);
// Bytes the catalogue file grows by per cover beyond the image's own bytes, over covers
// covers added one save at a time to a catalogue of 1000 titles.
double CoverOverheadBytes(int covers);
