#include "rtchart/plotframe.h"

#include <algorithm>
#include <bit>

namespace trv5::rtchart {

namespace {

// Bit for bit, so that a NaN equals itself and the comparison never sees a change that is not.
bool Same(double pA, double pB) {
    return std::bit_cast<std::uint64_t>(pA) == std::bit_cast<std::uint64_t>(pB);
}

bool SameValues(const std::vector<double>& pA, const std::vector<double>& pB) {
    return std::equal(pA.begin(), pA.end(), pB.begin(), pB.end(), Same);
}

bool SameSetting(const FrameState& pA, const FrameState& pB) {
    return pA.deviceSize == pB.deviceSize && Same(pA.ratio, pB.ratio) &&
           pA.polylineMode == pB.polylineMode && pA.backColour == pB.backColour &&
           pA.mapped == pB.mapped && Same(pA.left, pB.left) && Same(pA.top, pB.top) &&
           Same(pA.xFactor, pB.xFactor) && Same(pA.yFactor, pB.yFactor) &&
           std::equal(std::begin(pA.axes), std::end(pA.axes), std::begin(pB.axes), Same) &&
           pA.dataChanged == pB.dataChanged && pA.drawnSeries == pB.drawnSeries &&
           pA.lineShown == pB.lineShown && Same(pA.lineValue, pB.lineValue) &&
           pA.lineColour == pB.lineColour && SameValues(pA.gridX, pB.gridX) &&
           SameValues(pA.gridY, pB.gridY) && pA.series.size() == pB.series.size();
}

// All but the points fed since.
bool SameSeries(const SeriesState& pA, const SeriesState& pB) {
    return pA.series == pB.series && pA.revision == pB.revision && pA.count == pB.count &&
           pA.values == pB.values && pA.held == pB.held && pA.colour == pB.colour &&
           pA.dataType == pB.dataType && pA.point == pB.point && pA.setType == pB.setType &&
           pA.ready == pB.ready && pA.secondary == pB.secondary;
}

} // namespace

std::optional<std::vector<ChangedPoints>> AppendedPoints(const FrameState& pBefore,
                                                         const FrameState& pNow) {
    if (!SameSetting(pBefore, pNow)) {
        return std::nullopt;
    }
    std::vector<ChangedPoints> changed;
    for (std::size_t i = 0; i < pNow.series.size(); ++i) {
        const SeriesState& before = pBefore.series[i];
        const SeriesState& now = pNow.series[i];
        if (!SameSeries(before, now)) {
            return std::nullopt;
        }
        if (now.pointsAdded == before.pointsAdded && now.lastPoint == before.lastPoint) {
            continue;
        }
        // Appended without wrapping: every new point took the next slot.
        const std::uint64_t added = now.pointsAdded - before.pointsAdded;
        if (now.pointsAdded < before.pointsAdded || now.lastPoint <= before.lastPoint ||
            static_cast<std::uint64_t>(now.lastPoint - before.lastPoint) != added) {
            return std::nullopt;
        }
        // The segment from the newest point drawn before, the new points (a marker each, or the
        // segments between them), and the segment into the slot after them, which a series
        // drawn to its capacity already showed.
        changed.push_back({std::max<std::int64_t>(before.lastPoint, 0),
                           static_cast<std::int64_t>(now.lastPoint) + 1});
    }
    return changed;
}

RedrawCounts& Redraws() {
    static RedrawCounts counts;
    return counts;
}

} // namespace trv5::rtchart
