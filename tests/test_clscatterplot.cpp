#include <trv5charts/clscatterplot.h>
#include <trv5charts/localizationlib.h>

#include "platform/chartengine.h"
#include "platform/clipboardaccess.h"

#include "testsupport.h"

#include <QCoreApplication>

#include <limits>
#include <memory>

namespace {

using trv5::platform::ChartEngine;
using trv5::platform::MarkerShape;

constexpr int kCutoff = 4;

class CLScatterPlotTest : public ::testing::Test {
protected:
    CLScatterPlotTest() {
        trv5::Globals::StoreConfig(std::make_shared<trv5::test::MapConfig>(
            QVariantMap{{QStringLiteral("Run.CurveFitting.Margin"), 0}}));
        chart.resize(820, 580);
        chart.Init(QString());
        chart.SetFixedRandomSeed(42);
    }
    ~CLScatterPlotTest() override { trv5::Globals::StoreConfig(nullptr); }

    ChartEngine& Engine() { return chart.Engine(); }
    void SetSix() {
        chart.SetRoundingThreshold(0.5);
        chart.SetData(6, types, model, ids);
    }
    std::vector<double> Jitter(int pSeries) {
        const auto values = Engine().Series(pSeries).Values();
        return {values.begin(), values.end()};
    }

    // TN, FN, FP, TP, TN, FP
    std::vector<std::int32_t> types{0, 1, 3, 2, 0, 3};
    std::vector<double> model{0.1, 0.45, 0.62, 0.9, 0.2, 0.55};
    std::vector<std::int32_t> ids{5, 6, 7, 8, 9, 10};
    trv5::CLScatterPlot chart;
};

TEST_F(CLScatterPlotTest, PlotsEachOutcomeInItsSeriesWithTooltipsCutoffAndRange) {
    SetSix();
    const std::vector<int> perType{2, 1, 1, 2};
    for (int type = 0; type < 4; ++type) {
        EXPECT_EQ(Engine().Series(type).PointCount(), perType[static_cast<std::size_t>(type)]);
    }
    const trv5::platform::ChartSeries& falsePositives = Engine().Series(3);
    EXPECT_EQ(falsePositives.Argument(0), 0.62);
    EXPECT_EQ(falsePositives.Value(0), chart.RandomValues()[2]);
    EXPECT_EQ(falsePositives.Tooltip(0), QStringLiteral("Record 7 (0.62), False Positive"));
    EXPECT_EQ(falsePositives.Tooltip(1), QStringLiteral("Record 10 (0.55), False Positive"));
    EXPECT_EQ(Engine().Series(0).Tooltip(1), QStringLiteral("Record 9 (0.2), True Negative"));
    EXPECT_EQ(Engine().Series(1).Tooltip(0), QStringLiteral("Record 6 (0.45), False Negative"));
    EXPECT_EQ(Engine().Series(2).Tooltip(0), QStringLiteral("Record 8 (0.9), True Positive"));
    for (const double jitter : chart.RandomValues()) {
        EXPECT_GE(jitter, 0.05);
        EXPECT_LT(jitter, 1.05);
    }

    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral("Points 1 to 6"));
    EXPECT_EQ(Engine().Title(2).Text(), QStringLiteral("Model Output"));
    EXPECT_EQ(chart.StartAt(), 1);
    EXPECT_EQ(chart.EndAt(), 6);
    // The threshold becomes its place within 0.1..0.9; the cut-off line stays at 0.5.
    EXPECT_DOUBLE_EQ(chart.RoundingThreshold(), 0.5);
    const trv5::platform::ChartSeries& cutoff = Engine().Series(kCutoff);
    ASSERT_EQ(cutoff.PointCount(), 2);
    EXPECT_EQ(cutoff.Argument(0), 0.5);
    EXPECT_EQ(cutoff.Argument(1), 0.5);
    EXPECT_FALSE(Engine().AxisX().AutoRange());
    EXPECT_EQ(Engine().AxisX().MinValue(), 0.1);
    EXPECT_EQ(Engine().AxisX().MaxValue(), 0.9);
    EXPECT_EQ(Engine().AxisX().LabelAngle(), 0.0);

    // The tooltip under the mouse is the point's, on the real drawing.
    const QImage image = Engine().Render();
    const QPoint at = Engine().PointPosition(3, 0).toPoint();
    EXPECT_EQ(image.pixelColor(at), QColor(0xD5, 0x5E, 0x00));
    EXPECT_EQ(Engine().TooltipAt(at), QStringLiteral("Record 7 (0.62), False Positive"));

    chart.SetInLogicSynthesisMode(true);
    chart.SetShowRecordIds(true);
    chart.SetRoundingThreshold(0.5);
    {
        const trv5::test::ScopedLocale german(trv5::test::German());
        chart.SetData(6, types, model, ids);
    }
    EXPECT_EQ(Engine().Series(3).Tooltip(0), QStringLiteral("Record 7 (1), False Positive"));
    EXPECT_EQ(Engine().Series(2).Tooltip(0), QStringLiteral("Record 8 (1), True Positive"));
    EXPECT_EQ(Engine().Series(1).Tooltip(0), QStringLiteral("Record 6 (0), False Negative"));
    EXPECT_EQ(Engine().Series(0).Label(0), QStringLiteral("Record 5 (0), True Negative"));
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral("Points 5 to 10"));

    chart.SetInLogicSynthesisMode(false);
    {
        const trv5::test::ScopedLocale german(trv5::test::German());
        chart.SetData(6, types, model, ids);
    }
    EXPECT_EQ(Engine().Series(3).Tooltip(0), QStringLiteral("Record 7 (0,62), False Positive"));

    // Outputs in the millions tilt the tick labels.
    chart.SetData(2, types, std::vector<double>{1.5e6, 2.5e6}, ids);
    EXPECT_EQ(Engine().AxisX().LabelAngle(), 20.0);
}

TEST_F(CLScatterPlotTest, DummyVariableIsKeptForTheSameCountAndDrawnAnewOtherwise) {
    chart.SetFixedRandomSeed(std::nullopt);
    SetSix();
    const std::vector<double> first = Jitter(0);
    const std::vector<double> jitter = chart.RandomValues();
    model[0] = 0.15;
    SetSix();
    EXPECT_EQ(Jitter(0), first);
    EXPECT_EQ(chart.RandomValues(), jitter);

    chart.SetData(5, types, model, ids);
    ASSERT_EQ(chart.RandomValues().size(), 5U);
    EXPECT_NE(chart.RandomValues()[0], jitter[0]);
    // A host's own dummy variable of the wrong length is replaced as well.
    chart.CreateRandomValues(3);
    chart.SetData(6, types, model, ids);
    EXPECT_EQ(chart.RandomValues().size(), 6U);
    EXPECT_CHART_ERROR(chart.CreateRandomValues(-1), 9);
    chart.CreateRandomValues(0);
    EXPECT_TRUE(chart.RandomValues().empty());

    // A fixed seed repeats the dummy variable in another chart.
    trv5::CLScatterPlot other;
    other.Init(QString());
    other.SetFixedRandomSeed(7);
    chart.SetFixedRandomSeed(7);
    other.CreateRandomValues(100);
    chart.CreateRandomValues(100);
    EXPECT_EQ(other.RandomValues(), chart.RandomValues());
}

TEST_F(CLScatterPlotTest, BadInputRaisesOrDegradesWithoutHarm) {
    SetSix();
    const std::vector<double> jitter = chart.RandomValues();
    EXPECT_CHART_ERROR(chart.SetData(7, types, model, ids), 9);
    EXPECT_CHART_ERROR(chart.SetData(6, types, model, std::vector<std::int32_t>{1, 2}), 9);
    EXPECT_CHART_ERROR(chart.SetData(-1, types, model, ids), 9);
    for (const std::int32_t code : {4, -1}) {
        std::vector<std::int32_t> bad = types;
        bad[4] = code;
        EXPECT_CHART_ERROR(chart.SetData(6, bad, model, ids),
                           trv5::CLScatterPlot::kInvalidTypeCode);
    }
    // Errors leave the chart as it was.
    EXPECT_EQ(Engine().Series(0).PointCount(), 2);
    EXPECT_EQ(chart.RandomValues(), jitter);
    EXPECT_EQ(chart.GetChartDataAsString().count(QStringLiteral("\r\n")), 7);

    // Equal outputs: the threshold stays as the host gave it, the range is widened by 10 %.
    chart.SetRoundingThreshold(3.0);
    chart.SetData(3, types, std::vector<double>{2, 2, 2}, ids);
    EXPECT_EQ(chart.RoundingThreshold(), 3.0);
    EXPECT_EQ(Engine().Title(2).Text(), QStringLiteral("Model Output"));
    EXPECT_DOUBLE_EQ(Engine().AxisX().MinValue(), 1.8);
    EXPECT_DOUBLE_EQ(Engine().AxisX().MaxValue(), 2.2);

    // Outputs that barely differ are spread over 0..1 and so is the cut-off line.
    chart.SetRoundingThreshold(1000000.00075);
    chart.SetData(3, types, std::vector<double>{1000000.0, 1000000.001, 1000000.0005}, ids);
    EXPECT_EQ(Engine().Title(2).Text(), QStringLiteral("Model Output (normalized)"));
    EXPECT_EQ(Engine().Series(1).Argument(0), 1.0);
    EXPECT_EQ(Engine().Series(1).Tooltip(0),
              QStringLiteral("Record 6 (1000000.001), False Negative"));
    EXPECT_NEAR(Engine().Series(kCutoff).Argument(0), 0.75, 1e-6);
    EXPECT_EQ(Engine().AxisX().MaxValue(), 1.0);

    // Outputs that are not numbers stay in the data but are not drawn or ranged.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    chart.SetData(4, types, std::vector<double>{nan, 0.3, inf, 0.7}, ids);
    EXPECT_EQ(Engine().Series(0).Tooltip(0), QStringLiteral("Record 5 (NaN), True Negative"));
    EXPECT_EQ(Engine().Series(3).Tooltip(0), QStringLiteral("Record 7 (INF), False Positive"));
    EXPECT_EQ(Engine().AxisX().MinValue(), 0.3);
    EXPECT_EQ(Engine().AxisX().MaxValue(), 0.7);
    EXPECT_FALSE(Engine().Render().isNull());
    chart.SetData(2, types, std::vector<double>{nan, nan}, ids);
    EXPECT_EQ(Engine().AxisX().MaxValue(), 0.7);
    EXPECT_EQ(Engine().Series(kCutoff).PointCount(), 2);

    // No records at all.
    chart.SetData(0, {}, {}, {});
    for (int series = 0; series <= kCutoff; ++series) {
        EXPECT_EQ(Engine().Series(series).PointCount(), 0);
    }
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral(" "));
    EXPECT_EQ(chart.GetChartDataAsString(),
              QStringLiteral("Record ID\tModel\tDummy Variable\tType\r\n"));
    EXPECT_FALSE(Engine().Render().isNull());

    // A host definition without the four type series: the engine's error, nothing changed.
    chart.Dispose();
    EXPECT_CHART_ERROR(chart.SetData(6, types, model, ids), 9);
    chart.Clear();
}

TEST_F(CLScatterPlotTest, ManualRangeStandsInForTheDataExtremes) {
    chart.UseManualMaxMin(1.0, 0.0);
    EXPECT_TRUE(chart.ManualMaxMin());
    chart.SetRoundingThreshold(0.25);
    chart.SetData(6, types, model, ids);
    EXPECT_EQ(chart.RoundingThreshold(), 0.25);
    EXPECT_EQ(Engine().AxisX().MinValue(), 0.0);
    EXPECT_EQ(Engine().AxisX().MaxValue(), 1.0);
    EXPECT_EQ(Engine().Series(kCutoff).Argument(0), 0.25);
    EXPECT_CHART_ERROR(chart.UseManualMaxMin(std::numeric_limits<double>::quiet_NaN(), 1.0), 5);

    chart.UseAutoMaxMin();
    SetSix();
    EXPECT_EQ(Engine().AxisX().MinValue(), 0.1);

    chart.SetFixedXAxis(-1.0, 2.0);
    EXPECT_FALSE(Engine().AxisX().AutoRange());
    EXPECT_EQ(Engine().AxisX().MinValue(), -1.0);
    EXPECT_EQ(Engine().AxisX().MaxValue(), 2.0);
    Engine().Render();
    EXPECT_EQ(Engine().AxisX().VisibleMinimum(), -1.0);
    chart.SetAutoXAxis();
    EXPECT_TRUE(Engine().AxisX().AutoRange());
}

TEST_F(CLScatterPlotTest, BothTextLayoutsReachTheClipboardInTheUsersLocale) {
    const trv5::test::ScopedLocale german(trv5::test::German());
    SetSix();
    const char* labels[] = {"TN", "FN", "FP", "TP", "TN", "FP"};
    QString rows;
    for (std::size_t i = 0; i < 6; ++i) {
        rows += QString::number(ids[i]) + u'\t' +
                trv5::LocalizationLib::DoubleToUserText(model[i]) + u'\t' +
                trv5::LocalizationLib::DoubleToUserText(chart.RandomValues()[i]) + u'\t' +
                QLatin1String(labels[i]) + QStringLiteral("\r\n");
    }
    EXPECT_TRUE(rows.startsWith(QStringLiteral("5\t0,1\t")));
    chart.CopyData();
    EXPECT_EQ(trv5::platform::ClipboardAccess::Text(),
              QStringLiteral("Record ID\tModel\tDummy Variable\tType\r\n") + rows);
    chart.CopyDataLS();
    EXPECT_EQ(trv5::platform::ClipboardAccess::Text(),
              QStringLiteral("Record ID\tJittered Model Output\tDummy Variable\tType\r\n") + rows);

    // The rows keep the dummy variable that was drawn, whatever the host makes next.
    chart.CreateRandomValues(2);
    EXPECT_EQ(chart.GetChartDataAsStringLS(),
              QStringLiteral("Record ID\tJittered Model Output\tDummy Variable\tType\r\n") + rows);

    chart.Clear();
    EXPECT_EQ(chart.GetChartDataAsString(),
              QStringLiteral("Record ID\tModel\tDummy Variable\tType\r\n"));
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral(" "));
    EXPECT_EQ(Engine().Series(3).PointCount(), 0);
    EXPECT_EQ(Engine().Series(kCutoff).PointCount(), 0);
    chart.Dispose();
    EXPECT_EQ(chart.GetChartDataAsStringLS(), QString());
    trv5::platform::ClipboardAccess::SetText(QStringLiteral("kept"));
    chart.CopyDataLS();
    chart.CopyData();
    EXPECT_EQ(trv5::platform::ClipboardAccess::Text(), QStringLiteral("kept"));
}

TEST_F(CLScatterPlotTest, MarkersLabelsAndCutoffVisibility) {
    chart.SetUseStarsCircles(true);
    EXPECT_EQ(Engine().Series(0).Marker(), MarkerShape::Circle);
    EXPECT_EQ(Engine().Series(2).MarkerSize(), 6.0);
    EXPECT_EQ(Engine().Series(1).Marker(), MarkerShape::Star);
    EXPECT_EQ(Engine().Series(3).MarkerSize(), 9.0);
    chart.Init(QString());
    EXPECT_EQ(Engine().Series(3).Marker(), MarkerShape::Star);
    chart.SetUseStarsCircles(false);
    EXPECT_EQ(Engine().Series(3).Marker(), MarkerShape::Disc);
    EXPECT_EQ(Engine().Series(0).MarkerSize(), 5.0);

    SetSix();
    chart.ShowLabels();
    for (int type = 0; type < 4; ++type) {
        EXPECT_TRUE(Engine().Series(type).LabelsVisible());
    }
    EXPECT_EQ(Engine().Series(2).Label(0), QStringLiteral("Record 8 (0.9), True Positive"));
    Engine().Render();
    EXPECT_GT(Engine().LabelsDrawn(), 0);
    chart.ShowLabels(false);
    Engine().Render();
    EXPECT_EQ(Engine().LabelsDrawn(), 0);

    // The dashed cut-off line shows in the middle of the plot, and goes when hidden.
    const QPointF top = Engine().PointPosition(kCutoff, 1);
    const QPointF bottom = Engine().PointPosition(kCutoff, 0);
    const auto darkPixelsOnLine = [&] {
        const QImage image = Engine().Render();
        int dark = 0;
        for (int y = static_cast<int>(top.y()) + 2; y < static_cast<int>(bottom.y()) - 2; ++y) {
            dark += image.pixelColor(static_cast<int>(top.x()), y).lightness() < 150 ? 1 : 0;
        }
        return dark;
    };
    EXPECT_GT(darkPixelsOnLine(), 20);
    chart.ShowCutoffPoint(false);
    EXPECT_FALSE(Engine().Series(kCutoff).Visible());
    EXPECT_LT(darkPixelsOnLine(), 10);
}

} // namespace

TEST_F(CLScatterPlotTest, LegendGivesWayToThePoints) {
    // Small enough that the legend reaches down into the points at the top right.
    chart.resize(500, 300);
    chart.ShowLegend();
    const int count = 300;
    for (const bool crowdedRight : {true, false}) {
        SCOPED_TRACE(crowdedRight ? "records on the right" : "records on the left");
        // Every record in one half of a fixed 0 to 1 axis, jittered over the whole height.
        std::vector<std::int32_t> outcome(count);
        std::vector<double> output(count);
        std::vector<std::int32_t> record(count);
        for (int i = 0; i < count; ++i) {
            const auto at = static_cast<std::size_t>(i);
            output[at] = (crowdedRight ? 0.55 : 0.0) + 0.45 * i / count;
            outcome[at] = output[at] >= 0.5 ? 2 : 0;
            record[at] = i + 1;
        }
        chart.SetData(count, outcome, output, record);
        chart.SetFixedXAxis(0.0, 1.0);
        Engine().Refresh();
        QCoreApplication::processEvents();
        Engine().Render();

        const QRect legend = Engine().LegendRect();
        ASSERT_FALSE(legend.isEmpty());
        int covered = 0;
        for (int series = 0; series < 4; ++series) {
            for (int i = 0; i < Engine().Series(series).PointCount(); ++i) {
                covered += legend.contains(Engine().PointPosition(series, i).toPoint()) ? 1 : 0;
            }
        }
        EXPECT_EQ(covered, 0);
        EXPECT_EQ(legend.center().x() < Engine().Widget()->width() / 2, crowdedRight);
    }
}
