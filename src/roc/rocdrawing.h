#pragma once

#include "platform/drawingsurface.h"

#include <QRect>

#include <cstdint>
#include <span>

namespace trv5::roc {

// The control's outer frame: a line along each edge that stops short of the corners (2 units
// after one, 3 before the other), so that the frame looks rounded.
void DrawFrame(platform::DrawingSurface& pSurface, std::int32_t pColour);

// A one-pixel border just outside the plot and a short tick mark outside it at every tenth.
void DrawPlotBorder(platform::DrawingSurface& pSurface, const QRect& pPlot, std::int32_t pColour);

// The dotted diagonal of a classifier that guesses, from the bottom left to the top right.
void DrawDiagonal(platform::DrawingSurface& pPic, std::int32_t pColour);

// The curve through the points (FP rate, TP rate), one segment from each point to the next
// unless the point's FP rate is -1 or less (a break in the curve). The rates are pulled in by
// 0.995 across and 0.997 down so that points on the right and bottom edges stay in the
// picture. Returns false, having drawn only part of the curve, when the TP rates end before a
// segment that needs them.
bool DrawCurve(platform::DrawingSurface& pPic, std::span<const double> pFpRates,
               std::span<const double> pTpRates, std::int32_t pColour, int pWidth);

// A legend sample: a horizontal line across the middle of the small surface.
void DrawLegendSample(platform::DrawingSurface& pSample, std::int32_t pColour,
                      platform::DrawingSurface::DrawStyle pStyle, int pWidth);

} // namespace trv5::roc
