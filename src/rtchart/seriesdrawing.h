#pragma once

#include "platform/drawingsurface.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace trv5 {

class Axis;
class Series;

namespace rtchart {

// How a continuous series reaches the surface.
enum class PolylineMode {
    // Per device pixel column, one vertical line over the points that fall in it, plus the
    // segment from the column's last point to the next column's first: the same pixels as every
    // segment (lines are aliased and snapped to pixel cells), at a cost bounded by the plot's
    // width rather than the point count.
    PixelColumns,
    // Every segment as its own line: the plain rendering the column form is checked against.
    EverySegment,
};

// Process-wide, so that a test can render one chart both ways. Not part of the public API.
PolylineMode CurrentPolylineMode();
void SetPolylineMode(PolylineMode pMode);

// A band of device columns, first to last inclusive.
struct ColumnWindow {
    int first = 0;
    int last = 0;
};

// How many device columns a series' shapes (markers, dots, pen width) reach beside the column of
// their point, at the surface's device pixel ratio.
int ShapeReach(const platform::DrawingSurface& pSurface);

// One device column of a continuous series: its points first to last, the first and last value
// and the extremes (nan: some value is NaN, and the extremes mean nothing).
struct ColumnSummary {
    double column = 0.0;
    std::int64_t first = 0;
    std::int64_t last = 0;
    double firstValue = 0.0;
    double lastValue = 0.0;
    double low = 0.0;
    double high = 0.0;
    bool nan = false;
};

// The column summaries of a series' last full drawing. Finding a column's extremes reads every
// value, which for a million points is most of a redraw; when the series and the horizontal
// mapping are the same (the vertical scale moved, the line moved, a label changed) they are
// reused, and when points were appended only the columns from the previous newest point on are
// found again.
class ColumnCache {
public:
    // Drops the summaries that no longer describe pSeries, drawn to index pLast with pMapping.
    void Validate(const Series& pSeries, std::int64_t pLast,
                  const platform::DrawingSurface::DeviceMapping& pMapping);

    std::vector<ColumnSummary> columns;

private:
    const Series* m_series = nullptr;
    std::uint64_t m_revision = 0;
    std::uint64_t m_added = 0;
    std::int32_t m_lastPoint = -1;
    bool m_ready = false;
    const double* m_values = nullptr;
    std::size_t m_held = 0;
    double m_left = 0.0;
    double m_xFactor = 0.0;
    std::int64_t m_last = -1;
};

// Draws one series onto pSurface, whose horizontal scale the caller has set (point indexes),
// against pAxis; a null axis draws nothing. Leaves the vertical scale on pAxis, the fore colour
// on the series' colour and solid fill. Any failure ends this series' drawing quietly, keeping
// what was drawn before it.
//
// With a window, only the shapes that can reach its columns are drawn, each of them whole and
// exactly as the full drawing draws it, so that the window's pixels come out the same. Windows
// are for the pixel-column rendering; the every-segment rendering ignores them.
// pCache, when given, keeps the column summaries of full drawings for the next one.
void DrawSeries(platform::DrawingSurface& pSurface, Series& pSeries, const Axis* pAxis,
                const std::optional<ColumnWindow>& pWindow = std::nullopt,
                ColumnCache* pCache = nullptr);

} // namespace rtchart
} // namespace trv5
