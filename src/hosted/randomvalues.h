#pragma once

#include <cstdint>
#include <optional>
#include <vector>

// The random values that spread records apart on the classification scatter and the stacked
// distribution chart. Each new set reseeds the library's generator (MathHelper): from the clock,
// so that every set differs from the last, or from a seed that a host or a test fixed, so that
// the same set comes back every time.
namespace trv5::hosted {

class RandomValues {
public:
    // nullopt (the default): seed from the clock.
    void SetFixedSeed(std::optional<std::uint64_t> pSeed) { m_fixedSeed = pSeed; }
    std::optional<std::uint64_t> FixedSeed() const { return m_fixedSeed; }

    // Reseeds, then draws pCount values uniform in [pLow, pHigh). A negative count throws
    // ChartError 9; a count the memory cannot hold throws ChartError 7.
    std::vector<double> Draw(std::int32_t pCount, double pLow, double pHigh) const;

private:
    std::optional<std::uint64_t> m_fixedSeed;
};

} // namespace trv5::hosted
