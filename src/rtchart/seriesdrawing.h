#pragma once

#include "platform/drawingsurface.h"

#include <optional>

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

// Draws one series onto pSurface, whose horizontal scale the caller has set (point indexes),
// against pAxis; a null axis draws nothing. Leaves the vertical scale on pAxis, the fore colour
// on the series' colour and solid fill. Any failure ends this series' drawing quietly, keeping
// what was drawn before it.
//
// With a window, only the shapes that can reach its columns are drawn, each of them whole and
// exactly as the full drawing draws it, so that the window's pixels come out the same. Windows
// are for the pixel-column rendering; the every-segment rendering ignores them.
void DrawSeries(platform::DrawingSurface& pSurface, Series& pSeries, const Axis* pAxis,
                const std::optional<ColumnWindow>& pWindow = std::nullopt);

} // namespace rtchart
} // namespace trv5
