#pragma once

#include <QFontMetrics>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

#include <array>
#include <vector>

namespace trv5::rtchart {

// What the layout needs to know of one value axis.
struct ValueAxisInfo {
    bool present = false;
    double minimum = 0.0;
    double maximum = 0.0;
    // Values are shown as percentages (85 reads "85%").
    bool percent = false;
    // Shown instead of a computed text for the top value when not empty.
    QString topText;
    QString title;

    bool operator==(const ValueAxisInfo&) const = default;
};

struct LayoutInput {
    QSize size;
    // Slot 0 the main (left) axis, slot 1 the secondary (right) axis.
    std::array<ValueAxisInfo, 2> axes;
    bool showXAxis = false;
    // The highest point index on the horizontal axis (at least 1).
    double xLast = 1.0;
    // The number shown under point index i is xFirst + i: 0 numbers the points, a generation
    // number makes them read as generations.
    double xFirst = 0.0;
    // Legend entries in order; the line's legend last, empty when hidden.
    QStringList legend;
    QString lineLegend;

    bool operator==(const LayoutInput&) const = default;
};

// Each legend entry starts with a short line in the entry's colour, this wide with its gap.
inline constexpr int kLegendSwatchWidth = 18;

struct PlacedText {
    QRect rect;
    QString text;
};

// Where everything goes in a run progress chart of a given size. Rectangles are in the chart's
// pixels; a label without a rectangle (empty) is hidden.
struct ChartLayout {
    QRect plot;                       // the drawing surface; its frame lies one pixel outside
    std::array<PlacedText, 2> scale;  // top value of each axis
    std::array<PlacedText, 2> origin; // bottom value of each axis
    std::array<PlacedText, 2> title;  // axis names above the plot
    std::array<std::vector<PlacedText>, 2> valueTicks;
    std::vector<PlacedText> xTicks;
    // Grid lines, in data units: values of the main axis and point indexes.
    std::vector<double> gridY;
    std::vector<double> gridX;
    // One per legend entry, swatch and text; an empty rectangle does not fit.
    std::vector<QRect> legend;
    QRect lineLegend;
};

ChartLayout ComputeLayout(const LayoutInput& pInput, const QFontMetrics& pMetrics);

// More characters than any screen can show on one line of a label.
inline constexpr qsizetype kMaxCaptionLength = 2048;

// pText as a label shows it: cut to kMaxCaptionLength characters with an ellipsis when it is
// longer. Names are free text from the host or from saved state, and measuring and laying out a
// name of millions of characters would cost gigabytes for what no one can see.
QString VisibleCaption(const QString& pText);

// A round step (1, 2 or 5 times a power of ten) of at least pRoughStep.
double NiceStep(double pRoughStep);

} // namespace trv5::rtchart
