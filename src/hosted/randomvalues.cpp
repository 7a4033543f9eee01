#include "hosted/randomvalues.h"

#include <trv5charts/charterror.h>
#include <trv5charts/mathhelper.h>

#include <chrono>
#include <new>

namespace trv5::hosted {

namespace {

constexpr int kOutOfMemory = 7;

std::uint64_t ClockSeed() {
    // Nanoseconds: two sets drawn in the same second still get different seeds.
    return static_cast<std::uint64_t>(
        std::chrono::high_resolution_clock::now().time_since_epoch().count());
}

} // namespace

std::vector<double> RandomValues::Draw(std::int32_t pCount, double pLow, double pHigh) const {
    if (pCount < 0) {
        throw ChartError(ChartError::IndexOutOfRange,
                         QStringLiteral("A count of %1 random values is not possible").arg(pCount));
    }
    std::vector<double> values;
    try {
        values.resize(static_cast<std::size_t>(pCount));
    } catch (const std::bad_alloc&) {
        throw ChartError(kOutOfMemory, QStringLiteral("Out of memory"));
    }
    MathHelper::SetRandomSeed(m_fixedSeed.value_or(ClockSeed()));
    for (double& value : values) {
        value = MathHelper::RandomBetween(pLow, pHigh);
    }
    return values;
}

} // namespace trv5::hosted
