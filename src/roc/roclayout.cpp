#include "roc/roclayout.h"

#include <algorithm>
#include <cmath>

namespace trv5::roc {

namespace {

// Height that an automatic plot leaves for the margin above it (20), the tick labels and the
// horizontal title below it, and the frame.
constexpr double kReservedHeight = 48.0;
constexpr double kAutomaticTop = 20.0;
// Width the centring rule sets aside beside the plot for the vertical title and the legend.
constexpr double kSideRoom = 150.0;
// Distances from the plot's edges: tick labels, the vertical title's right edge, the
// horizontal title's top, the legend column; and from the legend to the rows below it.
constexpr double kTickLabelGap = 5.0;
constexpr double kVerticalTitleOffset = 30.0;
constexpr double kHorizontalTitleOffset = 20.0;
constexpr double kLegendOffset = 25.0;
constexpr double kRowsOffset = 13.0;
// Kept clear inside the control's frame, and between a caption and its value.
constexpr double kInset = 4.0;
constexpr double kCaptionGap = 4.0;
// Widgets are never placed further out than this; real controls are far smaller.
constexpr double kMaxCoordinate = 1 << 24;
// Rounding to whole pixels may take a part this far past an edge it touches.
constexpr double kTolerance = 0.5;
// The legend column's font scales, largest first, and the share of the side its height allows
// that the plot keeps before the column shrinks.
constexpr std::array<double, 3> kLegendScales{1.0, 0.85, 0.7};
constexpr double kPlotShare = 0.6;

double NonNegative(double pValue) {
    return std::isfinite(pValue) && pValue > 0.0 ? pValue : 0.0;
}

int Pixel(double pValue) {
    return static_cast<int>(std::nearbyint(std::clamp(NonNegative(pValue), 0.0, kMaxCoordinate)));
}

QRect Place(double pX, double pY, double pWidth, double pHeight) {
    return QRect(Pixel(pX), Pixel(pY), Pixel(pWidth), Pixel(pHeight));
}

// 1 when neighbours a spacing apart have the room they need, 2 when every second one has it,
// 0 when not even that.
int TickStride(double pSpacing, double pNeeded) {
    if (pSpacing >= pNeeded) {
        return 1;
    }
    return 2.0 * pSpacing >= pNeeded ? 2 : 0;
}

bool Shown(int pIndex, int pStride) {
    return pStride > 0 && pIndex % pStride == 0;
}

bool PlotKeepsItsSide(const Layout& pLayout) {
    return pLayout.plot.width() >= kPlotShare * pLayout.sideFromHeight;
}

} // namespace

Layout ComputeLayout(const LayoutInput& pInput) {
    const double width = std::min(NonNegative(pInput.width), kMaxCoordinate);
    const double height = std::min(NonNegative(pInput.height), kMaxCoordinate);
    const double tickWidth = NonNegative(pInput.tickLabel.width());
    const double tickHeight = NonNegative(pInput.tickLabel.height());
    const double titleWidth = NonNegative(pInput.horizontalTitle.width());
    const double titleHeight = NonNegative(pInput.horizontalTitle.height());
    const double thickness = NonNegative(pInput.verticalTitleThickness);
    const double captionWidth = NonNegative(pInput.aucCaptionWidth);
    const double valueWidth = NonNegative(pInput.aucValueWidth);
    const double rowHeight = NonNegative(pInput.rowHeight);
    const double recordsWidth = NonNegative(pInput.recordsWidth);
    const double scale = std::clamp(NonNegative(pInput.legendScale), 0.0, 1.0);
    const QSizeF legend(NonNegative(pInput.legend.width()), NonNegative(pInput.legend.height()));

    // Larger fonts push the titles out rather than over the tick labels.
    const double verticalOffset =
        std::max(kVerticalTitleOffset, kTickLabelGap + tickWidth + kCaptionGap);
    const double horizontalOffset =
        std::max(kHorizontalTitleOffset, kTickLabelGap + tickHeight + 1.0);
    // The column keeps clear of the last tick label however small its gaps get.
    const double legendOffset =
        pInput.showColumn ? std::max(kLegendOffset * scale, tickWidth / 2.0 + kCaptionGap) : 0.0;
    const double rowsOffset = kRowsOffset * scale;
    const double leftRoom = kInset + thickness + verticalOffset;
    const double columnWidth =
        pInput.showColumn ? std::max(legend.width(), captionWidth + kCaptionGap + valueWidth) : 0.0;
    const double rightRoom = legendOffset + columnWidth + kInset;
    const double bottomRoom = horizontalOffset + titleHeight + 2.0 * kInset;

    // The plot's side and top from the height: automatic, or a share of the height with the
    // rest split evenly above and below.
    const double percent = NonNegative(pInput.heightPercent) / 100.0;
    const double usable = height - titleHeight - kReservedHeight;
    double side = percent == 0.0 ? usable : percent * usable;
    double top = percent == 0.0 ? kAutomaticTop : std::max(0.0, (1.0 - percent) / 2.0 * height);
    side = std::clamp(side, 0.0, std::max(0.0, height - top - bottomRoom));
    // A narrow control shrinks the square; it then stays centred in the band it would have had.
    const double fitted =
        std::floor(std::clamp(width - leftRoom - rightRoom, 0.0, std::max(0.0, side)));
    const double sideFromHeight = std::floor(std::max(0.0, side));
    top = std::round(top + (side - fitted) / 2.0);
    side = fitted;
    const double left = std::round(std::clamp((width - side - kSideRoom) / 2.0, leftRoom,
                                              std::max(leftRoom, width - side - rightRoom)));
    const double bottom = top + side;
    const double right = width - kInset;
    const double lowest = height - kInset;

    Layout layout;
    layout.plot = Place(left, top, side, side);
    layout.sideFromHeight = Pixel(sideFromHeight);
    layout.legendScale = scale;
    // Neighbouring labels need their own width across and their own height down; when they do
    // not get it, every second one goes, then all of them.
    const double spacing = side / (kTickCount - 1);
    layout.xTickStride = TickStride(spacing, tickWidth + kCaptionGap / 2.0);
    layout.yTickStride = TickStride(spacing, tickHeight);
    for (int i = 0; i < kTickCount; ++i) {
        const double step = spacing * i;
        const auto index = static_cast<std::size_t>(i);
        if (Shown(i, layout.xTickStride)) {
            layout.xLabels[index] =
                Place(left + step - tickWidth / 2.0, bottom + kTickLabelGap, tickWidth, tickHeight);
        }
        if (Shown(i, layout.yTickStride)) {
            layout.yLabels[index] =
                Place(left - kTickLabelGap - tickWidth, top + step - pInput.tickDigitMiddle,
                      tickWidth, tickHeight);
        }
    }

    // The titles take at most the room beside and below the plot that nothing else uses: the
    // vertical one from the top down to the horizontal one, which stays left of the legend
    // column. Both are centred on the plot as far as that room allows.
    const double column = left + side + legendOffset;
    const double titleTop = bottom + horizontalOffset;
    const double bandTop = std::min(top, kInset);
    const double bandBottom = std::min(titleTop, lowest);
    const double titleLength =
        std::min(std::max(side, NonNegative(pInput.verticalTitleLength)), bandBottom - bandTop);
    if (titleLength > 0.0 && left - verticalOffset - thickness >= 0.0) {
        const double start = std::clamp(top + (side - titleLength) / 2.0, bandTop,
                                        std::max(bandTop, bandBottom - titleLength));
        layout.verticalTitle =
            Place(left - verticalOffset - thickness, start, thickness, titleLength);
    }
    const double titleRight = pInput.showColumn ? column - kCaptionGap : right;
    const double titleRoom = std::min(titleWidth, titleRight - kInset);
    if (titleRoom > 0.0 && titleTop + titleHeight <= lowest) {
        const double start = std::clamp(left + (side - titleRoom) / 2.0, kInset,
                                        std::max(kInset, titleRight - titleRoom));
        layout.horizontalTitle = Place(start, titleTop, titleRoom, titleHeight);
    }
    if (!pInput.showColumn) {
        layout.columnComplete = false;
        return layout;
    }

    // The legend column: the legend level with the plot's top, the AUC rows under it, the
    // point count level with the plot's bottom unless the rows reach further down. A part that
    // would leave the control is not placed.
    const auto fits = [&](double pX, double pY, double pWidth, double pHeight) {
        const bool inside =
            pX + pWidth <= right + kTolerance && pY + pHeight <= lowest + kTolerance;
        layout.columnComplete = layout.columnComplete && inside;
        return inside;
    };
    if (fits(column, top, legend.width(), legend.height())) {
        layout.legend = Place(column, top, legend.width(), legend.height());
    }
    const double rows = top + legend.height() + rowsOffset;
    const double valueLeft = column + captionWidth + kCaptionGap;
    const double valueRoom = std::max(valueWidth, right - valueLeft);
    for (int row = 0; row < 2; ++row) {
        const double y = rows + row * rowHeight;
        if (fits(valueLeft, y, valueWidth, rowHeight)) {
            (row == 0 ? layout.aucCaption : layout.minusAucCaption) =
                Place(column, y, captionWidth, rowHeight);
            (row == 0 ? layout.aucValue : layout.minusAucValue) =
                Place(valueLeft, y, valueRoom, rowHeight);
        }
    }
    const double recordsTop = std::max(rows + 2.0 * rowHeight + rowsOffset, bottom - rowHeight);
    if (fits(column, recordsTop, recordsWidth, rowHeight)) {
        layout.records = Place(column, recordsTop,
                               std::max({columnWidth, recordsWidth, right - column}), rowHeight);
    }
    return layout;
}

Layout ComputeFittedLayout(const std::function<LayoutInput(double pLegendScale)>& pInputAt) {
    // Smaller fonts for the column as long as that is what squeezes the plot.
    for (const double scale : kLegendScales) {
        const Layout layout = ComputeLayout(pInputAt(scale));
        if (layout.columnComplete && PlotKeepsItsSide(layout)) {
            return layout;
        }
    }
    // The smallest column, with what fits of it; or no column at all.
    LayoutInput smallest = pInputAt(kLegendScales.back());
    Layout layout = ComputeLayout(smallest);
    if (PlotKeepsItsSide(layout)) {
        return layout;
    }
    smallest.showColumn = false;
    return ComputeLayout(smallest);
}

QString FitWords(const QString& pText, double pRoom,
                 const std::function<double(const QString&)>& pMeasure) {
    QString text = pText.trimmed();
    while (!text.isEmpty() && !(pMeasure(text) <= pRoom)) {
        const qsizetype space = text.lastIndexOf(u' ');
        text = space < 0 ? QString() : text.left(space).trimmed();
    }
    return text;
}

} // namespace trv5::roc
