#pragma once

// Timings of writes into a Deluxe CD player database: one time in milliseconds per run.

#include <vector>

// 1,000 audio titles of twelve tracks each appended to a Deluxe file that holds 300 titles.
std::vector<double> TimeDeluxeWrite(int runs);
