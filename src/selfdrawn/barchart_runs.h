#pragma once

#include "platform/drawingsurface.h"

#include <cstdint>

namespace trv5::barchart {

// Filled bars of one colour, drawn as one box per run of bars that cover the same pixel
// columns. A chart with a million columns on a few hundred pixels then fills a few hundred
// boxes instead of a million, with the same pixels: every bar spans from the zero line to its
// value, so the bars of a run together cover one unbroken stretch of their columns, from the
// highest top to the lowest bottom.
//
// The pixel edges are those FilledBox chooses (the surface's mapping, rounded to the nearest
// edge, at least one pixel each way), so a run is exactly the union of its bars.
class BarRuns {
public:
    BarRuns(platform::DrawingSurface& pSurface,
            const platform::DrawingSurface::DeviceMapping& pMapping, std::int32_t pColour);
    BarRuns(const BarRuns&) = delete;
    BarRuns& operator=(const BarRuns&) = delete;

    // The bar from (x1, 0) to (x2, value) in user units; bars that FilledBox would not draw
    // (a non-finite position) are left out.
    void Add(double pX1, double pX2, double pValue);
    // Draws the open run; call it after the last bar.
    void Flush();

private:
    platform::DrawingSurface& m_surface;
    platform::DrawingSurface::DeviceMapping m_mapping;
    std::int32_t m_colour;
    double m_zero; // the device row of the zero line
    bool m_open = false;
    int m_left = 0;
    int m_right = 0;
    int m_top = 0;
    int m_bottom = 0;
};

} // namespace trv5::barchart
