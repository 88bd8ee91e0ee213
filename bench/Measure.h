#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

/// Heap allocations of the whole process so far.
std::size_t allocationCount();

/// The median of `rounds` ratios of two pieces of work, done in turn: what a shared machine does to one round it does
/// to both.
double medianRatio(const std::function<void()>& work, const std::function<void()>& floor, int rounds = 15);
