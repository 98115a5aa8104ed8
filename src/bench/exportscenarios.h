#pragma once

// Timings of the export writers on catalogues of audio titles with twelve tracks each, all
// ten fields chosen. Each returns one time in milliseconds per run.

#include <vector>

// The HTML page, the TAB file and the clipboard report of titles many audio titles.
std::vector<double> TimeHtmlExport(int titles, int runs);
// The HTML page with every title's cover beside it.
std::vector<double> TimeHtmlExportWithCovers(int titles, int runs);
std::vector<double> TimeTabExport(int titles, int runs);
std::vector<double> TimeClipboardExport(int titles, int runs);
// titles audio discs into a cdplayer.ini that already holds as many other discs.
std::vector<double> TimeCdPlayerIniExport(int titles, int runs);
// titles audio discs into a Deluxe CD player database that already holds 300 other titles.
std::vector<double> TimeDeluxeExport(int titles, int runs);
