#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace trv5::gallery {

// A seeded source of random numbers whose sequence is the same with every compiler and
// standard library: the 64-bit Mersenne Twister is fully specified, and the uniform and normal
// draws are made here instead of by the library's distributions, which differ between
// implementations.
class RandomSource {
public:
    explicit RandomSource(std::uint64_t pSeed) : m_engine(pSeed) {}

    // Uniform in [0, 1), 53 random bits.
    double Uniform() { return static_cast<double>(m_engine() >> 11) * 0x1.0p-53; }

    // Uniform in 0 .. pBound - 1 without modulo bias; pBound must be above 0.
    std::size_t Below(std::size_t pBound) {
        const auto bound = static_cast<std::uint64_t>(pBound);
        const std::uint64_t floor = (0 - bound) % bound;
        for (;;) {
            const std::uint64_t draw = m_engine();
            if (draw >= floor) {
                return static_cast<std::size_t>(draw % bound);
            }
        }
    }

    // Standard normal (Marsaglia's polar method).
    double Normal() {
        if (m_hasSpare) {
            m_hasSpare = false;
            return m_spare;
        }
        double u = 0.0;
        double v = 0.0;
        double s = 0.0;
        do {
            u = 2.0 * Uniform() - 1.0;
            v = 2.0 * Uniform() - 1.0;
            s = u * u + v * v;
        } while (s >= 1.0 || s == 0.0);
        const double factor = std::sqrt(-2.0 * std::log(s) / s);
        m_spare = v * factor;
        m_hasSpare = true;
        return u * factor;
    }

    // Fisher-Yates.
    template <typename T> void Shuffle(std::vector<T>& pItems) {
        for (std::size_t i = pItems.size(); i > 1; --i) {
            std::swap(pItems[i - 1], pItems[Below(i)]);
        }
    }

private:
    std::mt19937_64 m_engine;
    bool m_hasSpare = false;
    double m_spare = 0.0;
};

} // namespace trv5::gallery
