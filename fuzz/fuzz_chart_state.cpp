// Saved chart state from outside: any text must load without harm, and the chart must still
// save and export afterwards.

#include <trv5charts/axis.h>
#include <trv5charts/rtchart.h>
#include <trv5charts/series.h>

#include "widgetfuzzer.h"

#include <cstdint>
#include <memory>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t pSize) {
    const QString text = FuzzText(pData, pSize);
    trv5::RTChart chart;
    chart.FromString(text);
    const QString saved = chart.ToString();
    (void)chart.GetChartDataAsString();
    trv5::RTChart again;
    again.FromString(saved);
    (void)again.GetChartDataAsString();

    trv5::Axis axis;
    axis.FromString(text);
    (void)axis.ToString();
    trv5::Series series;
    series.FromString(text);
    (void)series.ToString();
    return 0;
}
