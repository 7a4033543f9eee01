#include "rtchart/seriesdrawing.h"

#include <trv5charts/axis.h>
#include <trv5charts/series.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace trv5::rtchart {

namespace {

using platform::DrawingSurface;

PolylineMode g_polylineMode = PolylineMode::PixelColumns;

// Marker sizes in widget pixels.
constexpr double kMarkerPixels = 6.0;
constexpr double kDotRadiusPixels = 1.2;

// Lines are handed to the surface in batches of this many, so that memory stays small whatever
// the data (a series broken up by many gaps can need a line per point).
constexpr std::size_t kBatch = 4096;

// The points a continuous series draws: indexes 0 to the last one, reading 0 everywhere while the
// series holds no data. Reading an index beyond the values is the failure that ends the drawing,
// so the run stops at the last value held.
struct PolylinePoints {
    std::span<const double> values;
    bool ready = false;
    std::int64_t last = -1;          // inclusive; -1 draws nothing
    std::int64_t requestedLast = -1; // before the values held are taken into account

    double At(std::int64_t pIndex) const {
        return ready ? values[static_cast<std::size_t>(pIndex)] : 0.0;
    }
};

PolylinePoints PointsOf(Series& pSeries) {
    PolylinePoints points;
    points.values = pSeries.Values();
    points.ready = pSeries.DataReady();
    // A bulk series is drawn to the end of its capacity; a drip-feed series only up to the
    // newest point, which after the ring has wrapped is not the end of the ring.
    const std::int64_t last = pSeries.SetType() == Bulk
                                  ? static_cast<std::int64_t>(pSeries.Count()) - 1
                                  : static_cast<std::int64_t>(pSeries.LastPoint());
    points.requestedLast = last;
    points.last =
        points.ready ? std::min(last, static_cast<std::int64_t>(points.values.size()) - 1) : last;
    return points;
}

void DrawMarkers(DrawingSurface& pSurface, Series& pSeries) {
    const double w = pSurface.ScaleX(kMarkerPixels, DrawingSurface::ScaleMode::Pixel,
                                     DrawingSurface::ScaleMode::User);
    const double h = pSurface.ScaleY(kMarkerPixels, DrawingSurface::ScaleMode::Pixel,
                                     DrawingSurface::ScaleMode::User);
    pSurface.SetFillStyle(DrawingSurface::FillStyle::Solid);
    pSurface.SetFillColor(pSeries.Colour());
    const std::int32_t count = pSeries.Count();
    for (std::int32_t k = 0; k < count; ++k) {
        const double v = pSeries.GetValue(k);
        const double x = k;
        if (pSeries.Point() == ptSquare) {
            pSurface.FilledBox(x - w / 2, v - h / 2, x + w / 2, v + h / 2, pSeries.Colour());
        } else {
            pSurface.Circle(x, v, w / 2);
        }
    }
}

// The reference rendering: one line per segment, from the previous point to the next, starting
// with a segment of no length on point 0.
void DrawEverySegment(DrawingSurface& pSurface, Series& pSeries, const PolylinePoints& pPoints,
                      bool pDots, double pDotRadius) {
    pSurface.SetCurrentX(0.0);
    pSurface.SetCurrentY(pSeries.GetValue(0));
    for (std::int64_t k = 0; k <= pPoints.requestedLast; ++k) {
        const double x = static_cast<double>(k);
        const double v = pSeries.GetValue(static_cast<std::int32_t>(k));
        if (pDots) {
            pSurface.Circle(x, v, pDotRadius);
        }
        pSurface.LineTo(x, v);
    }
}

// Collects cell lines and hands them over in batches.
class LineBatch {
public:
    explicit LineBatch(DrawingSurface& pSurface) : m_surface(pSurface) {}
    ~LineBatch() { Flush(); }
    LineBatch(const LineBatch&) = delete;
    LineBatch& operator=(const LineBatch&) = delete;

    void Add(double pX1, double pY1, double pX2, double pY2) {
        m_lines[m_size++] = {pX1, pY1, pX2, pY2};
        if (m_size == m_lines.size()) {
            Flush();
        }
    }
    void Flush() {
        m_surface.CellLines(std::span(m_lines.data(), m_size));
        m_size = 0;
    }

private:
    DrawingSurface& m_surface;
    std::array<DrawingSurface::CellLine, kBatch> m_lines{};
    std::size_t m_size = 0;
};

// Every segment between two points in the same pixel column is a vertical stroke in that column,
// and a chain of such strokes covers exactly the rows from its lowest to its highest point; so a
// column's strokes collapse into one, while a segment that leaves the column is drawn as it is.
// A point that cannot be mapped (NaN, infinity, beyond the device range) breaks the chain on both
// sides, as it removes both its segments from the plain rendering.
void DrawPixelColumns(DrawingSurface& pSurface, const PolylinePoints& pPoints) {
    const std::optional<DrawingSurface::DeviceMapping> mapping = pSurface.Mapping();
    if (!mapping || pPoints.last < 0) {
        return;
    }
    LineBatch batch(pSurface);

    // The previous point's cell; the first segment runs from point 0 to itself.
    const double x0 = mapping->X(0.0);
    const double y0 = mapping->Y(pPoints.At(0));
    bool previousValid = std::isfinite(x0) && std::isfinite(y0);
    double previousX = previousValid ? std::floor(x0) : 0.0;
    double previousY = previousValid ? std::floor(y0) : 0.0;

    // The open column: rows low to high in column columnX, covered by strokes already seen.
    bool open = false;
    double columnX = 0.0;
    double low = 0.0;
    double high = 0.0;
    const auto close = [&] {
        if (open) {
            batch.Add(columnX, low, columnX, high);
            open = false;
        }
    };

    for (std::int64_t k = 0; k <= pPoints.last; ++k) {
        const double x = mapping->X(static_cast<double>(k));
        const double y = mapping->Y(pPoints.At(k));
        const bool valid = std::isfinite(x) && std::isfinite(y);
        const double cellX = valid ? std::floor(x) : 0.0;
        const double cellY = valid ? std::floor(y) : 0.0;
        if (valid && previousValid) {
            if (cellX == previousX) {
                if (!open) {
                    open = true;
                    columnX = cellX;
                    low = previousY;
                    high = previousY;
                }
                low = std::min(low, cellY);
                high = std::max(high, cellY);
            } else {
                close();
                batch.Add(previousX, previousY, cellX, cellY);
            }
        } else {
            close();
        }
        previousValid = valid;
        previousX = cellX;
        previousY = cellY;
    }
    close();
}

void DrawPolyline(DrawingSurface& pSurface, Series& pSeries) {
    const bool dots = pSeries.Point() == ptDot;
    double dotRadius = 0.0;
    if (dots) {
        pSurface.SetFillStyle(DrawingSurface::FillStyle::Solid);
        pSurface.SetFillColor(pSeries.Colour());
        dotRadius = pSurface.ScaleX(kDotRadiusPixels, DrawingSurface::ScaleMode::Pixel,
                                    DrawingSurface::ScaleMode::User);
    }
    const PolylinePoints points = PointsOf(pSeries);
    if (g_polylineMode == PolylineMode::EverySegment) {
        DrawEverySegment(pSurface, pSeries, points, dots, dotRadius);
        return;
    }
    if (points.ready && points.values.empty()) {
        return; // reading point 0 fails
    }
    // Dots and lines share one colour, so drawing all lines first gives the same pixels as
    // interleaving them.
    DrawPixelColumns(pSurface, points);
    if (dots) {
        for (std::int64_t k = 0; k <= points.last; ++k) {
            pSurface.Circle(static_cast<double>(k), points.At(k), dotRadius);
        }
    }
}

} // namespace

PolylineMode CurrentPolylineMode() {
    return g_polylineMode;
}

void SetPolylineMode(PolylineMode pMode) {
    g_polylineMode = pMode;
}

void DrawSeries(DrawingSurface& pSurface, Series& pSeries, const Axis* pAxis) {
    if (pAxis == nullptr) {
        return;
    }
    try {
        pSurface.SetScaleTop(pAxis->Maximum());
        pSurface.SetScaleHeight(pAxis->Minimum() - pAxis->Maximum());
        pSurface.SetForeColor(pSeries.Colour());
        if (pSeries.DataType() == NonContinuous) {
            DrawMarkers(pSurface, pSeries);
        } else {
            DrawPolyline(pSurface, pSeries);
        }
    } catch (...) {
        // A series that cannot be drawn leaves what it drew and gives way to the next one.
    }
}

} // namespace trv5::rtchart
