#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <random>
#include <vector>

// What the run progress chart's benchmarks share: the clock they read and the data they draw.
namespace trv5::bench {

// This thread's processor time in milliseconds: on a shared machine the wall clock also counts
// the time other processes held the core.
inline double ThreadMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

// A random walk between 0 and 1, as a model's output over a million records looks at this scale.
inline std::vector<double> Walk(std::size_t pCount, unsigned pSeed) {
    std::mt19937_64 random(pSeed);
    std::normal_distribution<double> step(0.0, 0.01);
    std::vector<double> values(pCount);
    double value = 0.5;
    for (double& v : values) {
        value = std::clamp(value + step(random), 0.0, 1.0);
        v = value;
    }
    return values;
}

} // namespace trv5::bench
