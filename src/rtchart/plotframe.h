#pragma once

#include "rtchart/chartlayout.h"
#include "rtchart/seriesdrawing.h"

#include <trv5charts/rtchart.h>

#include <QColor>
#include <QFont>
#include <QSize>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace trv5 {
class Series;
}

namespace trv5::rtchart {

// Colours are kept as drawn, a system colour resolved against the palette of the time, so that a
// palette change is a change of what was drawn.

// One series as a frame of the plot drew it.
struct SeriesState {
    const Series* series = nullptr;
    std::uint64_t revision = 0;
    std::uint64_t pointsAdded = 0;
    std::int32_t lastPoint = -1;
    std::int32_t count = 0;
    const double* values = nullptr;
    std::size_t held = 0;
    QRgb colour = 0;
    std::int32_t dataType = 0;
    std::int32_t point = 0;
    std::int32_t setType = 0;
    bool ready = false;
    bool secondary = false;
};

// Everything a frame of the plot is drawn from. Two frames whose states differ only in points
// appended to some series differ only near those points; anything else changes the picture
// anywhere.
struct FrameState {
    QSize deviceSize;
    double ratio = 0.0;
    std::int32_t polylineMode = 0;
    QRgb backColour = 0;
    bool mapped = false; // a main axis and a scale that maps
    double left = 0.0;
    double top = 0.0;
    double xFactor = 0.0;
    double yFactor = 0.0;
    // Minimum and maximum of the main and the secondary axis; NaN for a missing axis.
    double axes[4] = {0.0, 0.0, 0.0, 0.0};
    bool dataChanged = false;
    std::int32_t drawnSeries = 0;
    bool lineShown = false;
    double lineValue = 0.0;
    QRgb lineColour = 0;
    std::vector<double> gridX;
    std::vector<double> gridY;
    std::vector<SeriesState> series;
};

// Point indexes of one series whose drawing changed, first to last inclusive.
struct ChangedPoints {
    std::int64_t first = 0;
    std::int64_t last = 0;
};

// Where pNow differs from pBefore when the only change is points appended to series (each
// series' new points follow its earlier ones, no ring has wrapped): the indexes whose shapes
// changed, one entry per changed series (none when nothing changed). nullopt when anything
// else changed and the whole plot must be drawn again.
std::optional<std::vector<ChangedPoints>> AppendedPoints(const FrameState& pBefore,
                                                         const FrameState& pNow);

// What the labels around the plot were last placed and coloured for: when nothing of it changed,
// placing them again would change nothing either. The text colours follow from the background,
// the entries' colours and, on a background that follows the palette, the palette's text colour.
struct LayoutKey {
    LayoutInput input;
    std::vector<QRgb> legendColours;
    std::vector<const void*> legendLabels;
    bool lineLegendShown = false;
    QRgb lineColour = 0;
    QRgb background = 0;
    QRgb paletteText = 0;
    QFont font;

    bool operator==(const LayoutKey&) const = default;
};

// What the chart remembers of its last frame.
struct PaintMemory {
    std::optional<FrameState> frame;
    std::optional<LayoutKey> layout;
    // By series slot.
    std::array<ColumnCache, RTChart::kMaxSeries> columns;
};

// How often the plot was drawn whole and in bands, counted for the whole process (the charts live
// on the user-interface thread), so that tests can tell a wasted redraw.
struct RedrawCounts {
    std::uint64_t full = 0;
    std::uint64_t band = 0;
};
RedrawCounts& Redraws();

} // namespace trv5::rtchart
