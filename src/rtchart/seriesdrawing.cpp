#include "rtchart/seriesdrawing.h"

#include <trv5charts/axis.h>
#include <trv5charts/series.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

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

// The last point index that can show on the surface: the right edge of the horizontal scale,
// plus pMargin user units for what is drawn around a point, plus the point beyond the edge that
// the last visible segment runs to. A series that holds no values draws zeros at every index it
// claims, and this is what keeps such a claim from costing more than the plot's width.
std::int64_t LastVisibleIndex(const DrawingSurface& pSurface, double pMargin) {
    const double right =
        std::max(pSurface.ScaleLeft(), pSurface.ScaleLeft() + pSurface.ScaleWidth());
    const double last = std::floor(right + std::fabs(pMargin)) + 1.0;
    if (!std::isfinite(last) || last < -1.0) {
        return -1; // a scale that cannot place anything
    }
    return last > 2147483647.0 ? 2147483647 : static_cast<std::int64_t>(last);
}

// The index step at which points that read 0 everywhere still touch or overlap on the surface:
// drawing every point of a series without values would put thousands of identical shapes on
// each pixel column.
std::int64_t ZeroPointStep(const DrawingSurface& pSurface) {
    const double pixelsPerIndex = std::fabs(
        pSurface.ScaleX(1.0, DrawingSurface::ScaleMode::User, DrawingSurface::ScaleMode::Pixel));
    if (!(pixelsPerIndex > 0.0) || !std::isfinite(pixelsPerIndex)) {
        return std::numeric_limits<std::int32_t>::max(); // nothing can be seen between the ends
    }
    if (pixelsPerIndex >= 1.0) {
        return 1;
    }
    return static_cast<std::int64_t>(std::min(std::floor(1.0 / pixelsPerIndex), 1e9));
}

// Indexes pFirst, pFirst + pStep, ... and always pLast, so that the last point is drawn.
template <class Draw>
void ForEachPoint(std::int64_t pFirst, std::int64_t pLast, std::int64_t pStep, Draw&& pDraw) {
    for (std::int64_t k = pFirst; k <= pLast; k += pStep) {
        pDraw(k);
        if (k < pLast && k + pStep > pLast) {
            pDraw(pLast);
        }
    }
}

PolylinePoints PointsOf(DrawingSurface& pSurface, Series& pSeries) {
    PolylinePoints points;
    points.values = pSeries.Values();
    points.ready = pSeries.DataReady();
    // A bulk series is drawn to the end of its capacity; a drip-feed series only up to the
    // newest point, which after the ring has wrapped is not the end of the ring.
    const std::int64_t last = pSeries.SetType() == Bulk
                                  ? static_cast<std::int64_t>(pSeries.Count()) - 1
                                  : static_cast<std::int64_t>(pSeries.LastPoint());
    if (points.ready) {
        points.requestedLast = last;
        points.last = std::min(last, static_cast<std::int64_t>(points.values.size()) - 1);
    } else {
        points.last = std::min(last, LastVisibleIndex(pSurface, 0.0));
        points.requestedLast = points.last;
    }
    return points;
}

void DrawMarkers(DrawingSurface& pSurface, Series& pSeries) {
    const double w = pSurface.ScaleX(kMarkerPixels, DrawingSurface::ScaleMode::Pixel,
                                     DrawingSurface::ScaleMode::User);
    const double h = pSurface.ScaleY(kMarkerPixels, DrawingSurface::ScaleMode::Pixel,
                                     DrawingSurface::ScaleMode::User);
    pSurface.SetFillStyle(DrawingSurface::FillStyle::Solid);
    pSurface.SetFillColor(pSeries.Colour());
    const auto draw = [&](std::int64_t pIndex) {
        const double v = pSeries.GetValue(static_cast<std::int32_t>(pIndex));
        const double x = static_cast<double>(pIndex);
        if (pSeries.Point() == ptSquare) {
            pSurface.FilledBox(x - w / 2, v - h / 2, x + w / 2, v + h / 2, pSeries.Colour());
        } else {
            pSurface.Circle(x, v, w / 2);
        }
    };
    const std::int64_t last = static_cast<std::int64_t>(pSeries.Count()) - 1;
    if (pSeries.DataReady()) {
        // Reading beyond the values held ends the drawing, so the values bound the loop.
        ForEachPoint(0, last, 1, draw);
    } else {
        ForEachPoint(0, std::min(last, LastVisibleIndex(pSurface, w)), ZeroPointStep(pSurface),
                     draw);
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
class ColumnWalker {
public:
    explicit ColumnWalker(DrawingSurface& pSurface) : m_batch(pSurface) {}
    ~ColumnWalker() { Close(); }
    ColumnWalker(const ColumnWalker&) = delete;
    ColumnWalker& operator=(const ColumnWalker&) = delete;

    // The point before the first: the first segment runs from point 0 to itself.
    void Start(double pCellX, double pCellY, bool pValid) { Remember(pCellX, pCellY, pValid); }

    // The next point, as the plain rendering's next segment.
    void Step(double pCellX, double pCellY, bool pValid) {
        if (pValid && m_previousValid) {
            if (pCellX == m_previousX) {
                Extend(pCellX, pCellY, pCellY);
            } else {
                Close();
                m_batch.Add(m_previousX, m_previousY, pCellX, pCellY);
            }
        } else {
            Close();
        }
        Remember(pCellX, pCellY, pValid);
    }

    // All points of one column at once, every one of them valid: the same as stepping through
    // them, since the strokes between them cover the rows from the lowest to the highest.
    void Column(double pCellX, double pFirstY, double pLastY, double pLowY, double pHighY,
                std::int64_t pCount) {
        Step(pCellX, pFirstY, true);
        if (pCount > 1) {
            Extend(pCellX, pLowY, pHighY);
            m_previousY = pLastY;
        }
    }

    void Close() {
        if (m_open) {
            m_batch.Add(m_columnX, m_low, m_columnX, m_high);
            m_open = false;
        }
    }

private:
    void Extend(double pCellX, double pLowY, double pHighY) {
        if (!m_open) {
            m_open = true;
            m_columnX = pCellX;
            m_low = m_previousY;
            m_high = m_previousY;
        }
        m_low = std::min(m_low, pLowY);
        m_high = std::max(m_high, pHighY);
    }
    void Remember(double pCellX, double pCellY, bool pValid) {
        m_previousValid = pValid;
        m_previousX = pCellX;
        m_previousY = pCellY;
    }

    LineBatch m_batch;
    bool m_previousValid = false;
    double m_previousX = 0.0;
    double m_previousY = 0.0;
    // The open column: rows low to high in column m_columnX, covered by strokes already seen.
    bool m_open = false;
    double m_columnX = 0.0;
    double m_low = 0.0;
    double m_high = 0.0;
};

struct Cell {
    double x;
    double y;
    bool valid;
};

Cell CellOf(const DrawingSurface::DeviceMapping& pMapping, double pX, double pValue) {
    const double x = pMapping.X(pX);
    const double y = pMapping.Y(pValue);
    if (!std::isfinite(x) || !std::isfinite(y)) {
        return {0.0, 0.0, false};
    }
    return {std::floor(x), std::floor(y), true};
}

// The last index from pFirst on whose column is pColumn (at least pFirst). The mapping is
// monotonic in the index, so the boundary found from the estimate is checked with the very
// expression the points are placed by.
std::int64_t LastInColumn(const DrawingSurface::DeviceMapping& pMapping, double pColumn,
                          std::int64_t pFirst, std::int64_t pLast) {
    const auto column = [&](std::int64_t pIndex) {
        return std::floor(pMapping.X(static_cast<double>(pIndex)));
    };
    const double estimate = std::ceil((pColumn + 1.0) / pMapping.xFactor + pMapping.left) - 1.0;
    std::int64_t last = static_cast<std::int64_t>(
        std::clamp(estimate, static_cast<double>(pFirst), static_cast<double>(pLast)));
    while (last < pLast && column(last + 1) == pColumn) {
        ++last;
    }
    while (last > pFirst && column(last) != pColumn) {
        --last;
    }
    return last;
}

void DrawPixelColumns(DrawingSurface& pSurface, const PolylinePoints& pPoints) {
    const std::optional<DrawingSurface::DeviceMapping> mapping = pSurface.Mapping();
    if (!mapping || pPoints.last < 0) {
        return;
    }
    ColumnWalker walker(pSurface);
    const Cell first = CellOf(*mapping, 0.0, pPoints.At(0));
    walker.Start(first.x, first.y, first.valid);

    // Columns are found by index when the points run left to right; otherwise, and for any
    // column holding a point that cannot be mapped, each point is stepped through on its own.
    const bool byColumn = mapping->xFactor > 0.0 && std::isfinite(mapping->xFactor) &&
                          std::isfinite(mapping->X(static_cast<double>(pPoints.last)));
    std::int64_t k = 0;
    while (k <= pPoints.last) {
        const double x = mapping->X(static_cast<double>(k));
        if (!byColumn || !std::isfinite(x)) {
            const Cell cell = CellOf(*mapping, static_cast<double>(k), pPoints.At(k));
            walker.Step(cell.x, cell.y, cell.valid);
            ++k;
            continue;
        }
        const double column = std::floor(x);
        const std::int64_t end = LastInColumn(*mapping, column, k, pPoints.last);
        double low = pPoints.At(k);
        double high = low;
        bool nan = false;
        if (pPoints.ready) {
            for (std::int64_t i = k; i <= end; ++i) {
                const double v = pPoints.values[static_cast<std::size_t>(i)];
                low = v < low ? v : low;
                high = v > high ? v : high;
                nan |= v != v;
            }
        }
        const double lowY = mapping->Y(low);
        const double highY = mapping->Y(high);
        if (nan || std::isnan(low) || !std::isfinite(lowY) || !std::isfinite(highY)) {
            for (; k <= end; ++k) {
                const Cell cell = CellOf(*mapping, static_cast<double>(k), pPoints.At(k));
                walker.Step(cell.x, cell.y, cell.valid);
            }
            continue;
        }
        // The mapping keeps the order of values (it may reverse it), so the extreme rows are the
        // rows of the extreme values.
        const double rowA = std::floor(lowY);
        const double rowB = std::floor(highY);
        walker.Column(column, std::floor(mapping->Y(pPoints.At(k))),
                      std::floor(mapping->Y(pPoints.At(end))), std::min(rowA, rowB),
                      std::max(rowA, rowB), end - k + 1);
        k = end + 1;
    }
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
    const PolylinePoints points = PointsOf(pSurface, pSeries);
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
        ForEachPoint(0, points.last, points.ready ? 1 : ZeroPointStep(pSurface),
                     [&](std::int64_t pIndex) {
                         pSurface.Circle(static_cast<double>(pIndex), points.At(pIndex), dotRadius);
                     });
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
