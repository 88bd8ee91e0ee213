#include "Measure.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <new>
#include <vector>

namespace {

std::atomic<std::size_t> allocations{0};

double secondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

void* operator new(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

std::size_t allocationCount() { return allocations; }

double medianRatio(const std::function<void()>& work, const std::function<void()>& floor, int rounds) {
    std::vector<double> ratios;
    secondsOf(work); // warm up
    secondsOf(floor);
    for (int i = 0; i < rounds; ++i) {
        const double of = secondsOf(work);
        ratios.push_back(of / secondsOf(floor));
    }
    std::ranges::nth_element(ratios, ratios.begin() + rounds / 2);
    return ratios[static_cast<std::size_t>(rounds / 2)];
}
