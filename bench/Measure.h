#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

/// Heap allocations of the calling thread so far; the simulated block on its own thread does not count.
std::size_t allocationCount();

/// The median of `rounds` ratios of two pieces of work, done in turn: what a shared machine does to one round it does
/// to both.
template <class Work, class Floor>
double medianRatio(Work work, Floor floor, std::size_t rounds = 15) {
    const auto secondsOf = [](auto& piece) {
        const auto start = std::chrono::steady_clock::now();
        piece();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    secondsOf(work); // warm up
    secondsOf(floor);
    std::vector<double> ratios;
    for (std::size_t i = 0; i < rounds; ++i) {
        const double ofWork = secondsOf(work);
        ratios.push_back(ofWork / secondsOf(floor));
    }
    std::ranges::nth_element(ratios, ratios.begin() + static_cast<std::ptrdiff_t>(rounds / 2));
    return ratios[rounds / 2];
}
