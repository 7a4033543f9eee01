#include "rtchart/seriesdrawing.h"

#include <trv5charts/axis.h>
#include <trv5charts/series.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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

// Indexes first to last inclusive; empty when last < first.
struct IndexRange {
    std::int64_t first = 0;
    std::int64_t last = -1;
};

// The indexes of 0 to pLast whose shapes can reach the window: every point within pReach columns
// of it, and one more on each side, whose segment runs into that neighbourhood. A segment between
// two points left (or right) of the neighbourhood cannot reach it, because the points run left to
// right. Without a usable mapping the whole range is returned.
IndexRange IndexesNear(const DrawingSurface::DeviceMapping& pMapping, std::int64_t pLast,
                       const ColumnWindow& pWindow, int pReach) {
    const IndexRange all{0, pLast};
    if (pLast < 0 || !(pMapping.xFactor > 0.0) || !std::isfinite(pMapping.xFactor) ||
        !std::isfinite(pMapping.left)) {
        return all;
    }
    const auto column = [&](std::int64_t pIndex) {
        return std::floor(pMapping.X(static_cast<double>(pIndex)));
    };
    const double low = static_cast<double>(pWindow.first) - pReach;
    const double high = static_cast<double>(pWindow.last) + pReach;
    const double lastIndex = static_cast<double>(pLast);
    const double from = std::floor(low / pMapping.xFactor + pMapping.left) - 1.0;
    const double to = std::ceil((high + 1.0) / pMapping.xFactor + pMapping.left) + 1.0;
    if (!std::isfinite(from) || !std::isfinite(to)) {
        return all;
    }
    // The estimates are off by a rounding at most; the exact placement decides.
    auto first = static_cast<std::int64_t>(std::clamp(from, 0.0, lastIndex));
    while (first > 0 && column(first) >= low) {
        --first;
    }
    auto last = static_cast<std::int64_t>(std::clamp(to, 0.0, lastIndex));
    while (last < pLast && column(last) <= high) {
        ++last;
    }
    return {first, last};
}

// The indexes 0, pStep, 2 pStep, ... up to pLast, and pLast itself so that the last point is
// drawn, as far as they fall in pRange. Drawing only a window picks the same indexes as drawing
// them all, so a window looks exactly like that part of the whole.
template <class Draw>
void ForEachPoint(IndexRange pRange, std::int64_t pLast, std::int64_t pStep, Draw&& pDraw) {
    const std::int64_t end = std::min(pRange.last, pLast);
    std::int64_t k = pRange.first <= 0 ? 0 : (pRange.first + pStep - 1) / pStep * pStep;
    for (; k <= end; k += pStep) {
        pDraw(k);
    }
    if (pLast % pStep != 0 && pLast >= pRange.first && pLast <= pRange.last) {
        pDraw(pLast);
    }
}

IndexRange WindowRange(const DrawingSurface& pSurface, std::int64_t pLast,
                       const std::optional<ColumnWindow>& pWindow) {
    if (!pWindow) {
        return {0, pLast};
    }
    const std::optional<DrawingSurface::DeviceMapping> mapping = pSurface.Mapping();
    if (!mapping) {
        return {0, pLast};
    }
    return IndexesNear(*mapping, pLast, *pWindow, ShapeReach(pSurface));
}

void DrawMarkers(DrawingSurface& pSurface, Series& pSeries,
                 const std::optional<ColumnWindow>& pWindow) {
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
    const std::int64_t count = static_cast<std::int64_t>(pSeries.Count()) - 1;
    // Reading beyond the values held ends the drawing, so the values bound the loop; a series
    // without values is drawn as far as the plot reaches, one marker per place it can show.
    const bool ready = pSeries.DataReady();
    const std::int64_t last = ready ? count : std::min(count, LastVisibleIndex(pSurface, w));
    ForEachPoint(WindowRange(pSurface, last, pWindow), last, ready ? 1 : ZeroPointStep(pSurface),
                 draw);
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
    // Not cleared: only the first m_size entries are ever read, and clearing 128 KB for every
    // series of every frame showed in the profile of a live run.
    std::array<DrawingSurface::CellLine, kBatch> m_lines;
    std::size_t m_size = 0;
};

// Every segment between two points in the same pixel column is a vertical stroke in that column,
// and a chain of such strokes covers exactly the rows from its lowest to its highest point; so a
// column's strokes collapse into one, while a segment that leaves the column is drawn as it is.
// A point that cannot be mapped (NaN, infinity, beyond the device range) breaks the chain on both
// sides, as it removes both its segments from the plain rendering.
class ColumnWalker {
public:
    // pCellExact: the pen is one device pixel wide, so a line between two cells covers only cells
    // on the way between them (see Close).
    ColumnWalker(DrawingSurface& pSurface, bool pCellExact)
        : m_batch(pSurface), m_cellExact(pCellExact) {}
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
                const DrawingSurface::CellLine line{m_previousX, m_previousY, pCellX, pCellY};
                if (m_cellExact && pCellX == m_previousX + 1.0) {
                    m_pending = line;
                    m_pendingFrom = m_closed;
                } else {
                    m_batch.Add(line.x1, line.y1, line.x2, line.y2);
                }
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

    // Ends the open column. A one-pixel line between neighbouring columns stays in those two
    // columns and within a row of its end rows (its square caps reach half a pixel along it, and
    // the rasterizer rounds an end that lands on a pixel edge either way); when both columns'
    // strokes already cover those rows it adds no pixel, and in dense data that is most lines.
    void Close() {
        std::optional<Rows> closed;
        if (m_open) {
            m_batch.Add(m_columnX, m_low, m_columnX, m_high);
            closed = Rows{m_low, m_high};
            m_open = false;
        }
        if (m_pending) {
            const Rows needed{std::min(m_pending->y1, m_pending->y2) - 1.0,
                              std::max(m_pending->y1, m_pending->y2) + 1.0};
            if (!(m_pendingFrom && closed && m_pendingFrom->Covers(needed) &&
                  closed->Covers(needed))) {
                m_batch.Add(m_pending->x1, m_pending->y1, m_pending->x2, m_pending->y2);
            }
            m_pending.reset();
        }
        m_closed = closed;
    }

private:
    struct Rows {
        double low;
        double high;
        bool Covers(const Rows& pOther) const { return low <= pOther.low && pOther.high <= high; }
    };

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
    bool m_cellExact;
    bool m_previousValid = false;
    double m_previousX = 0.0;
    double m_previousY = 0.0;
    // The open column: rows low to high in column m_columnX, covered by strokes already seen.
    bool m_open = false;
    double m_columnX = 0.0;
    double m_low = 0.0;
    double m_high = 0.0;
    // The rows the stroke of the column closed last covers, none when it had no stroke.
    std::optional<Rows> m_closed;
    // A line into the open column from its left neighbour, drawn when the open column closes
    // unless the strokes of both columns already cover it; with the stroke of the column it
    // came from.
    std::optional<DrawingSurface::CellLine> m_pending;
    std::optional<Rows> m_pendingFrom;
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

struct Extremes {
    double low;
    double high;
    bool nan; // some value is NaN; low and high then mean nothing
};

// The smallest and largest of pValues (not empty). This is where a bulk redraw spends its time,
// so the scan keeps several independent minimum and maximum chains (two values wide where the
// processor has SSE2) instead of one chain whose every step waits for the previous. Which of two
// equal values is kept (0 and -0) does not matter: they map to the same row.
Extremes ExtremesOf(std::span<const double> pValues) {
    const double* values = pValues.data();
    const std::size_t count = pValues.size();
    double low = values[0];
    double high = values[0];
    bool nan = false;
    std::size_t i = 0;
#if defined(__SSE2__)
    if (count >= 8) {
        __m128d low0 = _mm_set1_pd(low);
        __m128d low1 = low0;
        __m128d high0 = low0;
        __m128d high1 = low0;
        __m128d unordered = _mm_setzero_pd();
        for (; i + 4 <= count; i += 4) {
            const __m128d a = _mm_loadu_pd(values + i);
            const __m128d b = _mm_loadu_pd(values + i + 2);
            low0 = _mm_min_pd(low0, a);
            low1 = _mm_min_pd(low1, b);
            high0 = _mm_max_pd(high0, a);
            high1 = _mm_max_pd(high1, b);
            unordered =
                _mm_or_pd(unordered, _mm_or_pd(_mm_cmpunord_pd(a, a), _mm_cmpunord_pd(b, b)));
        }
        alignas(16) double lows[2];
        alignas(16) double highs[2];
        _mm_store_pd(lows, _mm_min_pd(low0, low1));
        _mm_store_pd(highs, _mm_max_pd(high0, high1));
        low = std::min(lows[0], lows[1]);
        high = std::max(highs[0], highs[1]);
        nan = _mm_movemask_pd(unordered) != 0;
    }
#endif
    for (; i < count; ++i) {
        const double v = values[i];
        low = v < low ? v : low;
        high = v > high ? v : high;
        nan |= v != v;
    }
    return {low, high, nan};
}

// Points pRange.first to pRange.last. Starting anywhere but at 0 draws the shapes of every column
// after the first one's exactly as the full walk does: a column's shapes depend only on its own
// points and the last point before it.
void DrawPixelColumns(DrawingSurface& pSurface, const PolylinePoints& pPoints, IndexRange pRange,
                      ColumnCache* pCache) {
    const std::optional<DrawingSurface::DeviceMapping> mapping = pSurface.Mapping();
    if (!mapping || pRange.last < pRange.first) {
        return;
    }
    ColumnWalker walker(pSurface, pSurface.DevicePenWidth() == 1);
    const Cell first =
        CellOf(*mapping, static_cast<double>(pRange.first), pPoints.At(pRange.first));
    walker.Start(first.x, first.y, first.valid);

    // The summaries of a whole drawing are kept; pCache->columns[next] is the column at k.
    std::vector<ColumnSummary>* cached =
        pCache != nullptr && pRange.first == 0 ? &pCache->columns : nullptr;
    std::size_t next = 0;

    // Columns are found by index when the points run left to right; otherwise, and for any
    // column holding a point that cannot be mapped, each point is stepped through on its own.
    const bool byColumn = mapping->xFactor > 0.0 && std::isfinite(mapping->xFactor) &&
                          std::isfinite(mapping->X(static_cast<double>(pRange.last)));
    std::int64_t k = pRange.first;
    while (k <= pRange.last) {
        const double x = mapping->X(static_cast<double>(k));
        if (!byColumn || !std::isfinite(x)) {
            if (cached != nullptr) {
                cached->resize(next);
                cached = nullptr;
            }
            const Cell cell = CellOf(*mapping, static_cast<double>(k), pPoints.At(k));
            walker.Step(cell.x, cell.y, cell.valid);
            ++k;
            continue;
        }
        ColumnSummary summary;
        if (cached != nullptr && next < cached->size() && (*cached)[next].first == k &&
            (*cached)[next].last <= pRange.last) {
            summary = (*cached)[next++];
        } else {
            summary.column = std::floor(x);
            summary.first = k;
            summary.last = LastInColumn(*mapping, summary.column, k, pRange.last);
            summary.firstValue = pPoints.At(k);
            summary.lastValue = pPoints.At(summary.last);
            Extremes extremes{summary.firstValue, summary.firstValue, false};
            if (pPoints.ready) {
                extremes = ExtremesOf(pPoints.values.subspan(
                    static_cast<std::size_t>(k), static_cast<std::size_t>(summary.last - k + 1)));
            }
            summary.low = extremes.low;
            summary.high = extremes.high;
            summary.nan = extremes.nan;
            if (cached != nullptr) {
                cached->resize(next);
                cached->push_back(summary);
                ++next;
            }
        }
        const double lowY = mapping->Y(summary.low);
        const double highY = mapping->Y(summary.high);
        if (summary.nan || std::isnan(summary.low) || !std::isfinite(lowY) ||
            !std::isfinite(highY)) {
            for (; k <= summary.last; ++k) {
                const Cell cell = CellOf(*mapping, static_cast<double>(k), pPoints.At(k));
                walker.Step(cell.x, cell.y, cell.valid);
            }
            continue;
        }
        // The mapping keeps the order of values (it may reverse it), so the extreme rows are the
        // rows of the extreme values.
        const double rowA = std::floor(lowY);
        const double rowB = std::floor(highY);
        walker.Column(summary.column, std::floor(mapping->Y(summary.firstValue)),
                      std::floor(mapping->Y(summary.lastValue)), std::min(rowA, rowB),
                      std::max(rowA, rowB), summary.last - k + 1);
        k = summary.last + 1;
    }
    if (cached != nullptr) {
        cached->resize(next);
    }
}

void DrawPolyline(DrawingSurface& pSurface, Series& pSeries,
                  const std::optional<ColumnWindow>& pWindow, ColumnCache* pCache) {
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
    const IndexRange range = WindowRange(pSurface, points.last, pWindow);
    // A band leaves the cache alone: it still describes the last full drawing, and the next one
    // finds out what changed since.
    ColumnCache* cache = pWindow ? nullptr : pCache;
    if (cache != nullptr) {
        if (const std::optional<DrawingSurface::DeviceMapping> mapping = pSurface.Mapping()) {
            cache->Validate(pSeries, points.last, *mapping);
        } else {
            cache = nullptr;
        }
    }
    DrawPixelColumns(pSurface, points, range, cache);
    if (dots) {
        ForEachPoint(range, points.last, points.ready ? 1 : ZeroPointStep(pSurface),
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

int ShapeReach(const DrawingSurface& pSurface) {
    // Half a marker, the pen and a rounding on each side.
    return static_cast<int>(std::ceil((kMarkerPixels / 2.0 + 2.0) * pSurface.DevicePixelRatio())) +
           1;
}

void ColumnCache::Validate(const Series& pSeries, std::int64_t pLast,
                           const DrawingSurface::DeviceMapping& pMapping) {
    const auto same = [](double pA, double pB) {
        return std::bit_cast<std::uint64_t>(pA) == std::bit_cast<std::uint64_t>(pB);
    };
    const bool sameSeries = m_series == &pSeries && m_revision == pSeries.Revision() &&
                            m_ready == pSeries.DataReady() && m_values == pSeries.Values().data() &&
                            m_held == pSeries.Values().size() && same(m_left, pMapping.left) &&
                            same(m_xFactor, pMapping.xFactor);
    const std::uint64_t added = pSeries.PointsAdded() - m_added;
    if (!sameSeries) {
        columns.clear();
    } else if (added != 0 || pSeries.LastPoint() != m_lastPoint) {
        // Points appended since: the slots after the newest point then have changed, and the
        // column that held it may have grown.
        if (pSeries.LastPoint() > m_lastPoint &&
            added == static_cast<std::uint64_t>(pSeries.LastPoint() - m_lastPoint)) {
            const auto kept =
                std::find_if(columns.begin(), columns.end(), [&](const ColumnSummary& pColumn) {
                    return pColumn.last >= m_lastPoint;
                });
            columns.erase(kept, columns.end());
        } else {
            columns.clear();
        }
    } else if (pLast != m_last) {
        columns.clear();
    }
    m_series = &pSeries;
    m_revision = pSeries.Revision();
    m_added = pSeries.PointsAdded();
    m_lastPoint = pSeries.LastPoint();
    m_ready = pSeries.DataReady();
    m_values = pSeries.Values().data();
    m_held = pSeries.Values().size();
    m_left = pMapping.left;
    m_xFactor = pMapping.xFactor;
    m_last = pLast;
}

void DrawSeries(DrawingSurface& pSurface, Series& pSeries, const Axis* pAxis,
                const std::optional<ColumnWindow>& pWindow, ColumnCache* pCache) {
    if (pAxis == nullptr) {
        return;
    }
    try {
        pSurface.SetScaleTop(pAxis->Maximum());
        pSurface.SetScaleHeight(pAxis->Minimum() - pAxis->Maximum());
        pSurface.SetForeColor(pSeries.Colour());
        if (pSeries.DataType() == NonContinuous) {
            DrawMarkers(pSurface, pSeries, pWindow);
        } else {
            DrawPolyline(pSurface, pSeries, pWindow, pCache);
        }
    } catch (...) {
        // A series that cannot be drawn leaves what it drew and gives way to the next one.
    }
}

} // namespace trv5::rtchart
