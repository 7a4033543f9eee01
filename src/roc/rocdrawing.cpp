#include "roc/rocdrawing.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace trv5::roc {

namespace {

constexpr double kBreakMarker = -1.0;
constexpr double kRightPull = 0.995;
constexpr double kBottomPull = 0.997;
constexpr int kTicks = 10;
constexpr double kTickLength = 3.0;

} // namespace

void DrawFrame(platform::DrawingSurface& pSurface, std::int32_t pColour) {
    const double w = pSurface.ScaleWidth();
    const double h = pSurface.ScaleHeight();
    pSurface.SetDrawWidth(1);
    pSurface.SetDrawStyle(platform::DrawingSurface::DrawStyle::Solid);
    pSurface.SetForeColor(pColour);
    pSurface.Line(2.0, 0.0, w - 3.0, 0.0);
    pSurface.Line(w - 1.0, 2.0, w - 1.0, h - 3.0);
    pSurface.Line(w - 3.0, h - 1.0, 2.0, h - 1.0);
    pSurface.Line(0.0, h - 3.0, 0.0, 2.0);
}

void DrawPlotBorder(platform::DrawingSurface& pSurface, const QRect& pPlot, std::int32_t pColour) {
    if (pPlot.isEmpty()) {
        return;
    }
    const double left = pPlot.left();
    const double top = pPlot.top();
    const double side = pPlot.width();
    pSurface.SetDrawWidth(1);
    pSurface.SetDrawStyle(platform::DrawingSurface::DrawStyle::Solid);
    pSurface.SetForeColor(pColour);
    // Box outlines the inside of its pixel span, so one pixel more on each side frames the
    // plot from outside.
    pSurface.Box(left - 1.0, top - 1.0, left + side + 1.0, top + pPlot.height() + 1.0);
    const double bottom = top + pPlot.height();
    for (int i = 0; i <= kTicks; ++i) {
        const double step = side * i / kTicks;
        // The x tick of rate 1 sits where the border is; the y tick of rate 1 likewise.
        const double x = std::min(left + step, left + side);
        const double y = std::min(top + step, bottom);
        pSurface.Line(x, bottom, x, bottom + kTickLength);
        pSurface.Line(left - 1.0 - kTickLength, y, left - 1.0, y);
    }
}

void DrawDiagonal(platform::DrawingSurface& pPic, std::int32_t pColour) {
    pPic.SetDrawWidth(1);
    pPic.SetForeColor(pColour);
    pPic.SetDrawStyle(platform::DrawingSurface::DrawStyle::Dot);
    pPic.Line(0.0, pPic.ScaleHeight(), pPic.ScaleWidth(), 0.0);
    pPic.SetDrawStyle(platform::DrawingSurface::DrawStyle::Solid);
}

bool DrawCurve(platform::DrawingSurface& pPic, std::span<const double> pFpRates,
               std::span<const double> pTpRates, std::int32_t pColour, int pWidth) {
    const double w = pPic.ScaleWidth();
    const double h = pPic.ScaleHeight();
    // The device pixel a position lands in, as the surface maps its scale onto its raster.
    const QImage& raster = pPic.Raster();
    const double left = pPic.ScaleLeft();
    const double top = pPic.ScaleTop();
    const double perUnitX = raster.width() / w;
    const double perUnitY = raster.height() / h;
    const auto cellOf = [&](double pX, double pY) {
        return std::pair(std::floor((pX - left) * perUnitX), std::floor((pY - top) * perUnitY));
    };
    pPic.SetDrawWidth(pWidth);
    pPic.SetDrawStyle(platform::DrawingSurface::DrawStyle::Solid);
    pPic.SetForeColor(pColour);
    const auto x = [w](double pRate) {
        return w * pRate * kRightPull;
    };
    const auto y = [h](double pRate) {
        return (h - h * pRate) * kBottomPull;
    };
    bool complete = true;
    // Where the last segment drawn ended, while the curve runs on from there unbroken.
    bool unbroken = false;
    std::pair<double, double> lastEnd(0.0, 0.0);
    for (std::size_t i = 0; i + 1 < pFpRates.size(); ++i) {
        // Only the start of a segment is tested: a segment arriving at a break is drawn.
        if (!(pFpRates[i] > kBreakMarker)) {
            unbroken = false;
            continue;
        }
        if (i + 1 >= pTpRates.size()) {
            complete = false;
            break;
        }
        const double x2 = x(pFpRates[i + 1]);
        const double y2 = y(pTpRates[i + 1]);
        // A segment that starts and ends in the pixel where the previous one ended would only
        // paint that pixel again. A curve of a million points has mostly such segments.
        const auto end = cellOf(x2, y2);
        if (unbroken && lastEnd == end) {
            continue;
        }
        pPic.Line(x(pFpRates[i]), y(pTpRates[i]), x2, y2);
        lastEnd = end;
        unbroken = true;
    }
    pPic.SetDrawWidth(1);
    return complete;
}

void DrawLegendSample(platform::DrawingSurface& pSample, std::int32_t pColour,
                      platform::DrawingSurface::DrawStyle pStyle, int pWidth) {
    pSample.Cls();
    const double middle = std::floor((pSample.ScaleHeight() - pWidth) / 2.0);
    pSample.SetDrawWidth(pWidth);
    pSample.SetDrawStyle(pStyle);
    pSample.SetForeColor(pColour);
    pSample.Line(1.0, middle, pSample.ScaleWidth() - 2.0, middle);
    pSample.SetDrawStyle(platform::DrawingSurface::DrawStyle::Solid);
    pSample.SetDrawWidth(1);
}

} // namespace trv5::roc
