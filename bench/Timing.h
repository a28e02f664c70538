#pragma once
// How the benchmarks time a step and sum up repeated timings.

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

namespace lumivale::bench {

// The wall-clock time the step takes, in milliseconds.
inline double millisecondsOf(const std::function<void()>& step) {
    const auto start = std::chrono::steady_clock::now();
    step();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

// The middle value (the upper one of an even count); the values must not be empty.
inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace lumivale::bench
