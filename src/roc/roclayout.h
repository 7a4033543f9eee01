#pragma once

#include <QRect>
#include <QSizeF>
#include <QString>

#include <array>
#include <functional>

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
    // The horizontal title's text and the vertical title's thickness and length, all at full
    // length (the titles are shortened to the room they get).
    QSizeF horizontalTitle;
    double verticalTitleThickness = 0.0;
    double verticalTitleLength = 0.0;
    // The legend column, measured in the fonts of legendScale: the legend panel, the rows below
    // it (the captions "AUC:", "1 - AUC:", the widest value) and the point count. The column's
    // own gaps shrink with legendScale too; without showColumn nothing of it is placed.
    QSizeF legend;
    double aucCaptionWidth = 0.0;
    double aucValueWidth = 0.0;
    double rowHeight = 0.0;
    double recordsWidth = 0.0;
    double legendScale = 1.0;
    bool showColumn = true;
};

inline constexpr int kTickCount = 11;

// Where every part of the chart goes, in the control's logical pixels. No rectangle has a
// negative position or size, whatever the input, and no two rectangles that hold text overlap:
// a part without room gets an empty rectangle.
struct Layout {
    QRect plot;
    // The side that the height alone would give the plot.
    int sideFromHeight = 0;
    // Every tick label is shown (1), every second one (2, from 0 on) or none (0); the others
    // have empty rectangles.
    int xTickStride = 1;
    int yTickStride = 1;
    // The legend column's font scale, and whether every part of it found room inside the
    // control.
    double legendScale = 1.0;
    bool columnComplete = true;
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

// The layout of a chart too small for its texts: the legend column in full size when the plot
// keeps most of the side its height allows, else in smaller fonts, else without the rows that
// find no room, else without the column. pInputAt measures the texts in the fonts of a legend
// scale (1 is full size) and sets LayoutInput::legendScale to it.
Layout ComputeFittedLayout(const std::function<LayoutInput(double pLegendScale)>& pInputAt);

// pText shortened to the room by dropping whole words from its end: the full text when it fits,
// else the longest run of leading words that fits, else nothing. Never cuts a word.
QString FitWords(const QString& pText, double pRoom,
                 const std::function<double(const QString&)>& pMeasure);

} // namespace trv5::roc
