#include "ui/resultview.h"

#include "core/gallerycore.h"
#include "ui/chartboard.h"
#include "ui/gallerysettings.h"
#include "ui/gallerystyle.h"

#include <trv5charts/barchart.h>
#include <trv5charts/blockpanel.h>
#include <trv5charts/blockpanelsimple.h>
#include <trv5charts/clscatterplot.h>
#include <trv5charts/curvefitting.h>
#include <trv5charts/rocchart.h>
#include <trv5charts/rtchart.h>
#include <trv5charts/scatterplot.h>
#include <trv5charts/stackeddistributionchart.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <vector>

namespace trv5::gallery::resultview {

namespace {

void ShowGauge(BarChart& pGauge, const ConfusionCounts& pCounts) {
    pGauge.Init(1, 100.0F, ctSingleHorizontal, BarChart::kLongValues, 0.0F);
    pGauge.SetLongHValue(static_cast<std::int32_t>(std::lround(pCounts.Accuracy() * 100.0)));
}

void ShowUsage(BarChart& pChart, const Results& pResults) {
    const auto usage = pResults.VariableUsage();
    if (usage.empty()) {
        pChart.Clear();
        return;
    }
    // The top of the scale is the largest share rounded up to the next 5 %, so the tallest bar
    // nearly fills the chart whatever the model.
    const double largest = *std::max_element(usage.begin(), usage.end());
    const double top = std::clamp(std::ceil(largest / 5.0) * 5.0, 5.0, 100.0);
    pChart.Init(static_cast<std::int32_t>(usage.size()), static_cast<float>(top),
                ctMultiVerticalBars, BarChart::kDoubleValues, 0.0F);
    pChart.SetDoubleData(usage);
    pChart.Redraw();
}

void ShowPopulationUsage(BlockPanel& pPanel, const Results& pResults) {
    const auto counts = pResults.PopulationUsage();
    const QStringList& names = pResults.FeatureNames();
    pPanel.Init(settings::Current(), 0);
    if (static_cast<qsizetype>(counts.size()) == names.size()) {
        const std::vector<QString> itemNames(names.begin(), names.end());
        pPanel.SetUsage(counts, itemNames);
    } else {
        pPanel.SetUsage(counts);
    }
    pPanel.Redraw();
}

// Every record's predicted class at the threshold: 1 at or above it, 0 below, and no outcome
// for a record the model gave no number.
void ShowTapestry(BlockPanelSimple& pTapestry, const Results& pResults) {
    const auto outputs = pResults.Outputs();
    std::vector<std::int32_t> classes(outputs.size());
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        classes[i] = std::isfinite(outputs[i]) ? (outputs[i] >= pResults.Threshold() ? 1 : 0) : -1;
    }
    pTapestry.SetData(classes, pResults.RecordIds());
    pTapestry.Redraw();
}

// The records in the order of their output (ties by data set order): the model's line becomes
// an S-curve, the target's a step, and the records on the wrong side of the cut-off stand out.
// In data set order the two classes alternate and both lines fill the plot.
struct ByOutput {
    std::vector<double> outputs;
    std::vector<double> targets;
    std::vector<std::int32_t> ids;
};

ByOutput OrderedByOutput(const Results& pResults) {
    const auto outputs = pResults.Outputs();
    std::vector<std::size_t> order(outputs.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return outputs[a] < outputs[b]; });
    ByOutput ordered;
    ordered.outputs.reserve(order.size());
    ordered.targets.reserve(order.size());
    ordered.ids.reserve(order.size());
    for (const std::size_t record : order) {
        ordered.outputs.push_back(outputs[record]);
        ordered.targets.push_back(pResults.Targets()[record]);
        ordered.ids.push_back(pResults.RecordIds()[record]);
    }
    return ordered;
}

} // namespace

double TargetFitness(const RunSettings& pSettings) {
    return pSettings.Fitness == fmAccuracy ? 0.97 : 0.98;
}

void PrepareProgress(RTChart& pChart, const RunSettings& pSettings) {
    // A model that says 0.5 for every record already scores 0.75 under 1 - Brier, while its
    // accuracy is the share of one class; the axis starts below where the runs start.
    const double bottom = pSettings.Fitness == fmAccuracy ? 0.3 : 0.7;
    auto axis = std::make_shared<Axis>();
    axis->Init(bottom, 1.0, false);
    axis->SetName(pSettings.Fitness == fmAccuracy ? QStringLiteral("Accuracy")
                                                  : QStringLiteral("Fitness (1 - Brier score)"));
    pChart.SetMainYAxis(axis);

    const struct {
        const char* name;
        std::int32_t colour;
    } lines[] = {{"Best fitness", style::kBest},
                 {"Average fitness", style::kAverage},
                 {"Validation fitness", style::kValidation}};
    for (const auto& line : lines) {
        const std::int32_t index = pChart.AddSeries(nullptr, false, QString::fromLatin1(line.name));
        const auto series = pChart.GetSeries(index);
        series->Init(pSettings.Generations, bottom, 1.0, DripFeed, false);
        series->SetColour(line.colour);
    }
    const double target = TargetFitness(pSettings);
    pChart.AddHorizontalLine(target, QStringLiteral("Target %1").arg(target),
                             QStringLiteral("Show &Target Line"));
    pChart.Refresh();
}

void AddGeneration(RTChart& pChart, int pGeneration, double pBest, double pAverage,
                   double pValidation) {
    pChart.AddPoint(0, pBest);
    pChart.AddPoint(1, pAverage);
    pChart.AddPoint(2, pValidation);
    pChart.SetLastGenerationForCopy(pGeneration);
    pChart.Refresh();
}

void ShowResults(ChartBoard& pBoard, const Results& pResults) {
    const std::int32_t count = pResults.RecordCount();
    const auto outputs = pResults.Outputs();
    const auto targets = pResults.Targets();
    const auto ids = pResults.RecordIds();

    ShowUsage(pBoard.Usage(), pResults);
    pBoard.SetUsageNames(pResults.FeatureNames());
    ShowPopulationUsage(pBoard.UsageBlocks(), pResults);
    pBoard.Tapestry().Init(settings::Current());

    ROCChart& roc = pBoard.Roc();
    roc.SetDataSource(pResults.Roc().FPRates, pResults.Roc().TPRates);
    roc.SetAUC(pResults.AUC());
    roc.Refresh();

    ScatterPlot& scatter = pBoard.Scatter();
    scatter.SetData(count, outputs, targets, ids);
    scatter.ShowLinearRegression(true);
    scatter.ShowRegressionEquation(true);

    CurveFitting& curve = pBoard.Curve();
    const ByOutput ordered = OrderedByOutput(pResults);
    curve.SetData1(count, ordered.outputs, ordered.targets, ordered.ids);
    curve.ShowThreshold();

    // The random heights repeat with the run's seed, so a run and its pictures repeat too.
    const auto seed = pResults.Settings().Seed;
    pBoard.Classes().SetFixedRandomSeed(seed);
    pBoard.Classes().CreateRandomValues(count);
    StackedDistributionChart& stacked = pBoard.Stacked();
    stacked.SetFixedRandomSeed(seed);
    stacked.CreateRandomValues(count);
    stacked.SetData(count, outputs, targets, ids);

    ShowThreshold(pBoard, pResults);
}

void ShowThreshold(ChartBoard& pBoard, const Results& pResults) {
    CurveFitting& curve = pBoard.Curve();
    curve.SetThreshold(pResults.Threshold());
    curve.DrawMisclassifications(CurveFitting::kMarkModel);

    // The classification scatter plot rewrites its threshold on every SetData.
    CLScatterPlot& classes = pBoard.Classes();
    classes.SetRoundingThreshold(pResults.Threshold());
    classes.SetData(pResults.RecordCount(), pResults.OutcomeTypes(), pResults.Outputs(),
                    pResults.RecordIds());

    ShowTapestry(pBoard.Tapestry(), pResults);

    ShowGauge(pBoard.TrainingGauge(), pResults.TrainingConfusion());
    ShowGauge(pBoard.ValidationGauge(), pResults.ValidationConfusion());
}

} // namespace trv5::gallery::resultview
