#pragma once

// A stable sort that starts from the runs already in order. Rows read in one order and shown in
// a related one come as a few sorted runs (the titles of each platform, sorted by name), which a
// few merge passes put together where a plain sort would compare every row many times.

#include <algorithm>
#include <vector>

template <class T, class Less>
void SortByRuns(std::vector<T>& items, Less before) {
    std::vector<size_t> bounds{0};
    for (size_t i = 1; i < items.size(); ++i)
        if (before(items[i], items[i - 1])) bounds.push_back(i);
    bounds.push_back(items.size());
    if (bounds.size() <= 2) return;
    std::vector<T> merged(items.size());
    while (bounds.size() > 2) {
        std::vector<size_t> mergedBounds{0};
        size_t run = 0;
        for (; run + 2 < bounds.size(); run += 2) {
            const auto first = items.begin() + static_cast<std::ptrdiff_t>(bounds[run]);
            const auto middle = items.begin() + static_cast<std::ptrdiff_t>(bounds[run + 1]);
            const auto last = items.begin() + static_cast<std::ptrdiff_t>(bounds[run + 2]);
            std::merge(std::make_move_iterator(first), std::make_move_iterator(middle),
                       std::make_move_iterator(middle), std::make_move_iterator(last),
                       merged.begin() + static_cast<std::ptrdiff_t>(bounds[run]), before);
            mergedBounds.push_back(bounds[run + 2]);
        }
        if (run + 1 < bounds.size()) {
            std::move(items.begin() + static_cast<std::ptrdiff_t>(bounds[run]), items.end(),
                      merged.begin() + static_cast<std::ptrdiff_t>(bounds[run]));
            mergedBounds.push_back(bounds.back());
        }
        items.swap(merged);
        bounds = std::move(mergedBounds);
    }
}
