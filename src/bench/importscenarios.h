#pragma once

#include <QString>
#include <vector>

// Import timings on a fresh catalogue per run: a TAB file of the given number of lines (twelve
// tracks each, lookups that repeat) and a cdplayer.ini of the given number of sections. The
// TAB scenario also reports how much the process grew.
std::vector<double> TimeTabImport(int lines, int runs, double* growthMegabytes);
std::vector<double> TimeCdPlayerIniImport(int sections, int runs);
// A TAB file of about megabytes MB (1,000 data discs whose listings fill it) imported by a child
// run of this program each time, so that its peak memory is the import's own; the largest peak
// (VmHWM) of the runs goes to peakMegabytes.
std::vector<double> TimeLargeTabImport(int megabytes, int runs, double& peakMegabytes);
// The child's part: imports file into a fresh catalogue in folder and prints its time and peak.
int RunLargeTabImportChild(const QString& file, const QString& folder);
// The argument that makes the program such a child.
inline const QString kLargeTabImportChild = "--large-tab-import-child";
// A Deluxe CD player database of the given number of titles, twelve tracks each, into the
// template or into a copy of the catalogue of catalogueFolder.
std::vector<double> TimeDeluxeImport(int titles, int runs,
                                     const QString& catalogueFolder = QString());
