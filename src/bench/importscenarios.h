#pragma once

#include <QString>
#include <vector>

// Import timings on a fresh catalogue per run: a TAB file of the given number of lines (twelve
// tracks each, lookups that repeat) and a cdplayer.ini of the given number of sections. The
// TAB scenario also reports how much the process grew.
std::vector<double> TimeTabImport(int lines, int runs, double* growthMegabytes);
std::vector<double> TimeCdPlayerIniImport(int sections, int runs);
// A Deluxe CD player database of the given number of titles, twelve tracks each, into the
// template or into a copy of the catalogue of catalogueFolder.
std::vector<double> TimeDeluxeImport(int titles, int runs,
                                     const QString& catalogueFolder = QString());
