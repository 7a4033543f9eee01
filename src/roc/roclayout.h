#pragma once

#include <QRect>
#include <QSizeF>

#include <array>

namespace trv5::roc {

// What the layout needs to know about the control and its texts, in logical pixels.
struct LayoutInput {
    double width = 0.0;
    double height = 0.0;
    // Share of the height given to the plot in percent; 0 (or anything not positive and
    // finite) means automatic.
    double heightPercent = 0.0;
    // The widest tick label ("0.0") and the height of one ("0").
    QSizeF tickLabel;
    // From the top of a tick label to the middle of its digits, so that the digits, not the
    // label's box, line up with their tick.
    double tickDigitMiddle = 0.0;
    // The horizontal title's text and the vertical title's thickness.
    QSizeF horizontalTitle;
    double verticalTitleThickness = 0.0;
    // The legend panel.
    QSizeF legend;
    // The rows below the legend: the captions ("AUC:", "1 - AUC:") and the widest value.
    double aucCaptionWidth = 0.0;
    double aucValueWidth = 0.0;
    double rowHeight = 0.0;
};

inline constexpr int kTickCount = 11;

// Where every part of the chart goes, in the control's logical pixels. No rectangle has a
// negative position or size, whatever the input.
struct Layout {
    QRect plot;
    std::array<QRect, kTickCount> xLabels{};
    std::array<QRect, kTickCount> yLabels{};
    QRect horizontalTitle;
    QRect verticalTitle;
    QRect legend;
    QRect aucCaption;
    QRect aucValue;
    QRect minusAucCaption;
    QRect minusAucValue;
    QRect records;
};

// The square plot takes the height that the titles below it leave (or the requested share of
// it), shrunk to what the width leaves beside the vertical title and the legend column; the
// plot, the vertical title on its left and the legend column on its right are centred as a
// group. See docs/architecture.md for the rules and the constants.
Layout ComputeLayout(const LayoutInput& pInput);

} // namespace trv5::roc
