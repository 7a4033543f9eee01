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

double NonNegative(double pValue) {
    return std::isfinite(pValue) && pValue > 0.0 ? pValue : 0.0;
}

int Pixel(double pValue) {
    return static_cast<int>(std::nearbyint(std::clamp(NonNegative(pValue), 0.0, kMaxCoordinate)));
}

QRect Place(double pX, double pY, double pWidth, double pHeight) {
    return QRect(Pixel(pX), Pixel(pY), Pixel(pWidth), Pixel(pHeight));
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
    const QSizeF legend(NonNegative(pInput.legend.width()), NonNegative(pInput.legend.height()));

    // Larger fonts push the titles out rather than over the tick labels.
    const double verticalOffset =
        std::max(kVerticalTitleOffset, kTickLabelGap + tickWidth + kCaptionGap);
    const double horizontalOffset =
        std::max(kHorizontalTitleOffset, kTickLabelGap + tickHeight + 1.0);
    const double leftRoom = kInset + thickness + verticalOffset;
    const double columnWidth = std::max(legend.width(), captionWidth + kCaptionGap + valueWidth);
    const double rightRoom = kLegendOffset + columnWidth + kInset;
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
    top = std::round(top + (side - fitted) / 2.0);
    side = fitted;
    const double left = std::round(std::clamp((width - side - kSideRoom) / 2.0, leftRoom,
                                              std::max(leftRoom, width - side - rightRoom)));
    const double bottom = top + side;

    Layout layout;
    layout.plot = Place(left, top, side, side);
    for (int i = 0; i < kTickCount; ++i) {
        const double step = side * i / (kTickCount - 1);
        layout.xLabels[static_cast<std::size_t>(i)] =
            Place(left + step - tickWidth / 2.0, bottom + kTickLabelGap, tickWidth, tickHeight);
        layout.yLabels[static_cast<std::size_t>(i)] =
            Place(left - kTickLabelGap - tickWidth, top + step - pInput.tickDigitMiddle, tickWidth,
                  tickHeight);
    }
    layout.verticalTitle = Place(left - verticalOffset - thickness, top, thickness, side);
    layout.horizontalTitle =
        Place(left + (side - titleWidth) / 2.0, bottom + horizontalOffset, titleWidth, titleHeight);

    // The legend column: the legend level with the plot's top, the AUC rows under it, the
    // point count level with the plot's bottom unless the rows reach further down.
    const double column = left + side + kLegendOffset;
    const double remaining = std::max(columnWidth, width - kInset - column);
    layout.legend = Place(column, top, legend.width(), legend.height());
    const double rows = top + legend.height() + kRowsOffset;
    const double valueLeft = column + captionWidth + kCaptionGap;
    const double valueRoom = std::max(valueWidth, width - kInset - valueLeft);
    layout.aucCaption = Place(column, rows, captionWidth, rowHeight);
    layout.aucValue = Place(valueLeft, rows, valueRoom, rowHeight);
    layout.minusAucCaption = Place(column, rows + rowHeight, captionWidth, rowHeight);
    layout.minusAucValue = Place(valueLeft, rows + rowHeight, valueRoom, rowHeight);
    const double recordsTop = std::max(rows + 2.0 * rowHeight + kRowsOffset, bottom - rowHeight);
    layout.records = Place(column, recordsTop, remaining, rowHeight);
    return layout;
}

} // namespace trv5::roc
