// Bar chart pictures: how often each input variable occurs in the best model of a run, and a
// gauge of the records processed so far.
#include "chartimages.h"

#include <trv5charts/barchart.h>

#include <array>
#include <cstdint>

namespace {

// 0x00BBGGRR
constexpr std::int32_t kSteelBlue = 0xB4823C;
constexpr std::int32_t kGreen = 0x50A03C;
constexpr std::int32_t kWhite = 0xFFFFFF;

QImage Render(trv5::BarChart& pChart) {
    pChart.show();
    pChart.Redraw();
    return pChart.grab().toImage();
}

// Occurrences of the twelve input variables in the best model after 400 generations of a
// symbolic regression run on a credit-scoring data set.
const trv5::images::RegisterImage kUsage("barchart.png", [] {
    static constexpr std::array<std::int32_t, 12> kUses = {41, 7, 28, 3, 19, 56,
                                                           12, 0, 34, 9, 23, 15};
    trv5::BarChart chart;
    chart.setObjectName(QStringLiteral("chtVariableUsage"));
    chart.resize(420, 180);
    chart.SetBackColor(kWhite);
    chart.SetBarColor(kSteelBlue);
    chart.SetRoundedCorner(6);
    chart.SetDataPointName(QStringLiteral("Uses: "));
    chart.Init(static_cast<std::int32_t>(kUses.size()), 60.0F, trv5::ctMultiVerticalBars,
               trv5::BarChart::kLongValues, 0.0F);
    chart.SetLongData(kUses);
    return Render(chart);
});

// 7,340 of 10,000 validation records scored.
const trv5::images::RegisterImage kGauge("barchart_gauge.png", [] {
    trv5::BarChart chart;
    chart.setObjectName(QStringLiteral("chtRecords"));
    chart.resize(320, 36);
    chart.SetBackColor(kWhite);
    chart.SetBarColor(kGreen);
    chart.SetRoundedCorner(4);
    chart.Init(1, 10000.0F, trv5::ctSingleHorizontal, trv5::BarChart::kLongValues, 0.0F);
    chart.SetLongHValue(7340);
    return Render(chart);
});

} // namespace
