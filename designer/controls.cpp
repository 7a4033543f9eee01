// The controls Designer offers: one line each. Every control's header is in the umbrella
// header, so adding a control needs nothing but its line here.

#include "controlinterface.h"

#include <trv5charts/trv5charts.h>

namespace trv5::designer {

namespace {

constexpr const char* kGroup = "TRV5Charts";

const ControlInfo kControls[] = {
    TRV5_DESIGNER_CONTROL(RTChart, "rtchart.h", kGroup,
                          "Run progress chart: up to 21 series by generation or by record"),
    TRV5_DESIGNER_CONTROL(BarChart, "barchart.h", kGroup,
                          "Bar chart: a row of vertical bars or one horizontal gauge bar"),
    TRV5_DESIGNER_CONTROL(BlockPanel, "blockpanel.h", kGroup,
                          "Usage block panel: one block per item, coloured by its usage count"),
    TRV5_DESIGNER_CONTROL(BlockPanelSimple, "blockpanelsimple.h", kGroup,
                          "Classification tapestry: one block per record, coloured by its class"),
    TRV5_DESIGNER_CONTROL(ROCChart, "rocchart.h", kGroup,
                          "ROC chart: a classifier's ROC curve with its AUC figures"),
    TRV5_DESIGNER_CONTROL(VerticalLabel, "verticallabel.h", kGroup,
                          "Vertical caption: one line of text read from bottom to top"),
    TRV5_DESIGNER_CONTROL(ScatterPlot, "scatterplot.h", kGroup,
                          "Scatter plot: one value against another with the regression line"),
    TRV5_DESIGNER_CONTROL(CurveFitting, "curvefitting.h", kGroup,
                          "Curve fitting: model output and target by record, with a cut-off"),
    TRV5_DESIGNER_CONTROL(CLScatterPlot, "clscatterplot.h", kGroup,
                          "Classification scatter: records by model output and outcome type"),
    TRV5_DESIGNER_CONTROL(StackedDistributionChart, "stackeddistributionchart.h", kGroup,
                          "Stacked distributions: target values below, model outputs above"),
};

} // namespace

std::span<const ControlInfo> Controls() {
    return kControls;
}

} // namespace trv5::designer
