#pragma once

// Timings of the live update's parts: one time in milliseconds per run.

#include <vector>

// The download window's animated picture loaded from the program's resources, frames cut.
std::vector<double> TimeSpinnerLoad(int runs);
// A file of the given size fetched by the download window from a server on 127.0.0.1.
std::vector<double> TimeDownload(int megabytes, int runs);
