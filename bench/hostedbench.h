#pragma once

#include <trv5charts/hostedchartframe.h>

#include <QSize>

#include <cstdint>
#include <vector>

// What the hosted charts' benchmarks share: the frame they are drawn at, and the record arrays
// of a model run as the charts take them.
namespace trv5::bench {

// The engine's drawing area; the chart around it is 10 pixels larger (its 5-pixel margins).
inline constexpr QSize kEngineSize(1000, 700);

struct RecordArrays {
    std::vector<double> model;
    std::vector<double> target;
    std::vector<std::int32_t> ids;
};

// Sizes the chart so that its engine gets kEngineSize and loads the default definition.
inline void PrepareChart(HostedChartFrame& pChart) {
    pChart.resize(kEngineSize + QSize(10, 10));
    pChart.Init(QString());
}

} // namespace trv5::bench
