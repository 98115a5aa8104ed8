#pragma once

// Timings of writes into a Deluxe CD player database: one time in milliseconds per run.

#include <QString>
#include <vector>

// A Deluxe file in folder holding titles titles of twelve tracks each; returns its path.
QString MakeDeluxeFile(const QString& folder, int titles);
// 1,000 audio titles of twelve tracks each appended to a Deluxe file that holds 300 titles.
std::vector<double> TimeDeluxeWrite(int runs);
