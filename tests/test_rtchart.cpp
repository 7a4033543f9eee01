#include <trv5charts/hostsettings.h>
#include <trv5charts/rtchart.h>

#include "testsupport.h"

#include <memory>
#include <vector>

using trv5::Axis;
using trv5::RTChart;
using trv5::Series;

namespace {

class MarginConfig final : public trv5::IConfig {
public:
    explicit MarginConfig(QVariant pMargin) : margin(std::move(pMargin)) {}
    QVariantMap Settings() const override {
        return {{QStringLiteral("Run.CurveFitting.Margin"), margin}};
    }
    QVariant margin;
};

class RTChartTest : public ::testing::Test {
protected:
    void SetUp() override {
        chart.SetMainYAxis(mainAxis);
        chart.SetSecondaryYAxis(secondaryAxis);
        secondaryAxis->Init(0, 1, true);
    }
    void TearDown() override { trv5::Globals::StoreConfig(nullptr); }

    void AddBulkSeries(int pCount) {
        for (int i = 0; i < pCount; ++i) {
            const auto index = chart.AddSeries(nullptr, false, QStringLiteral("S%1").arg(i));
            chart.GetSeries(index)->Init(1000, 0, 1, trv5::Bulk, false);
        }
    }

    RTChart chart;
    std::shared_ptr<Axis> mainAxis = std::make_shared<Axis>();
    std::shared_ptr<Axis> secondaryAxis = std::make_shared<Axis>();
};

} // namespace

TEST_F(RTChartTest, HoldsAtMostTwentyOneSeries) {
    for (int i = 0; i < RTChart::kMaxSeries; ++i) {
        EXPECT_EQ(chart.AddSeries(nullptr, i % 2 == 1, QStringLiteral("S%1").arg(i)), i);
    }
    try {
        chart.AddSeries();
        ADD_FAILURE() << "the 22nd series must be refused";
    } catch (const trv5::ChartError& error) {
        EXPECT_EQ(error.number(), 1111);
        EXPECT_EQ(error.description(), QStringLiteral("Too many series"));
    }
    EXPECT_EQ(chart.SeriesCount(), 21);
    EXPECT_TRUE(chart.GetSeries(1)->DrawOnSecondaryAxis());
    EXPECT_EQ(chart.GetSeries(20)->Name(), QStringLiteral("S20"));
    EXPECT_EQ(chart.LegendCaptions().size(), 21);
    EXPECT_CHART_ERROR(chart.GetSeries(21), 9);
    EXPECT_CHART_ERROR(chart.GetSeries(-1), 9);
}

TEST_F(RTChartTest, ASeriesPassedInKeepsItsOwnNameAndSide) {
    auto series = std::make_shared<Series>();
    series->SetName(QStringLiteral("Own"));
    series->SetDrawOnSecondaryAxis(true);
    chart.AddSeries(series, false, QStringLiteral("Ignored"));
    EXPECT_EQ(chart.GetSeries(0), series) << "the chart shares the host's object";
    EXPECT_TRUE(series->DrawOnSecondaryAxis());
    EXPECT_EQ(chart.LegendCaptions(), QStringList{QStringLiteral("Own")});
}

TEST_F(RTChartTest, PointOperationsCheckTheSlot) {
    EXPECT_CHART_ERROR(chart.AddPoint(0, 1), 91);
    EXPECT_CHART_ERROR(chart.AddPoint(21, 1), 9);
    EXPECT_CHART_ERROR(chart.ClearSeriesData(3), 91);
    chart.SetPoint(5, trv5::ptRound); // empty slots are ignored here
    chart.SetDataType(5, trv5::NonContinuous);
    EXPECT_FALSE(chart.DataChanged());

    chart.AddSeries();
    EXPECT_CHART_ERROR(chart.AddPoint(0, 1), 9); // not initialised as drip feed
    chart.GetSeries(0)->Init(10, 0, 1, trv5::DripFeed, false);
    chart.AddPoint(0, 0.5);
    EXPECT_TRUE(chart.DataChanged());
    chart.SetPoint(0, trv5::ptDot);
    chart.SetDataType(0, trv5::NonContinuous);
    EXPECT_EQ(chart.GetSeries(0)->Point(), trv5::ptDot);
    EXPECT_EQ(chart.GetSeries(0)->DataType(), trv5::NonContinuous);
}

TEST_F(RTChartTest, BulkSettersFailQuietlyAndKeepEarlierSteps) {
    const std::vector<double> data{1, 2, 3};
    chart.SetSeriesData(0, data); // empty slot
    chart.SetSeriesData(25, data);
    chart.SetSeriesData4(data, data, {}, nullptr, nullptr);
    EXPECT_FALSE(chart.DataChanged());

    AddBulkSeries(1);
    // Series 0 receives its data, then the missing series 1 ends the operation.
    chart.SetSeriesData4(data, std::vector<double>{4, 5, 6}, std::vector<std::int32_t>{7, 8, 9},
                         nullptr, nullptr);
    EXPECT_EQ(chart.GetSeries(0)->GetValue(2), 3);
    EXPECT_FALSE(chart.DataChanged());

    chart.SetSeriesData(0, {});
    EXPECT_FALSE(chart.DataChanged()) << "an empty array is a failing step";
    chart.SetSeriesData(0, data);
    EXPECT_TRUE(chart.DataChanged());
    EXPECT_FALSE(chart.SingleSeries());
}

TEST_F(RTChartTest, AxisRangesArePaddedWithTheSettingsMargin) {
    AddBulkSeries(2);
    // Without host settings there is no margin.
    chart.SetSeriesData4(std::vector<double>{0, 0}, std::vector<double>{0, 0}, {}, nullptr,
                         nullptr);
    EXPECT_DOUBLE_EQ(mainAxis->Minimum(), 0);
    EXPECT_DOUBLE_EQ(mainAxis->Maximum(), 0.1);
    EXPECT_TRUE(secondaryAxis->IsSecondaryAxis()) << "each axis keeps its side";
    EXPECT_DOUBLE_EQ(secondaryAxis->Maximum(), 0.1);

    trv5::Globals::StoreConfig(std::make_shared<MarginConfig>(0.05));
    chart.SetSeriesData4(std::vector<double>{5, 5}, std::vector<double>{100, 200}, {}, nullptr,
                         nullptr);
    EXPECT_DOUBLE_EQ(mainAxis->Minimum(), 4.45);
    EXPECT_DOUBLE_EQ(mainAxis->Maximum(), 5.55);

    chart.SetSortBothStandardizedSeries(true);
    chart.SetSeriesData4(std::vector<double>{0, 10}, std::vector<double>{-20, 5}, {}, nullptr,
                         nullptr);
    EXPECT_DOUBLE_EQ(mainAxis->Minimum(), -21.25);
    EXPECT_DOUBLE_EQ(mainAxis->Maximum(), 10.5);

    // A fixed axis is left alone.
    mainAxis->InitFixed(0, 1, false);
    chart.SetSeriesData5(std::vector<double>{3, 4}, {}, nullptr);
    EXPECT_EQ(mainAxis->Maximum(), 1);
    EXPECT_TRUE(chart.SingleSeries());
}

TEST_F(RTChartTest, AMissingMarginSettingEndsTheSetterAfterTheDataArrived) {
    AddBulkSeries(2);
    trv5::Globals::StoreConfig(std::make_shared<MarginConfig>(QStringLiteral("n/a")));
    chart.SetSeriesData5(std::vector<double>{1, 2}, {}, nullptr);
    EXPECT_EQ(chart.GetSeries(0)->GetValue(1), 2);
    EXPECT_TRUE(chart.SingleSeries());
    EXPECT_FALSE(chart.DataChanged());
}

TEST_F(RTChartTest, FarOutDataIsStandardizedForBothSeries) {
    AddBulkSeries(2);
    chart.SetSeriesData4(std::vector<double>{1e8, 2e8, 3e8}, std::vector<double>{7, 8, 9},
                         std::vector<std::int32_t>{1, 2, 3}, nullptr, nullptr);
    for (int s = 0; s < 2; ++s) {
        EXPECT_DOUBLE_EQ(chart.GetSeries(s)->GetValue(0), -1) << s;
        EXPECT_DOUBLE_EQ(chart.GetSeries(s)->GetValue(2), 1) << s;
    }
    // The bound itself is not far out.
    chart.SetSeriesData4(std::vector<double>{-9e7, 9e7}, std::vector<double>{7, 8}, {}, nullptr,
                         nullptr);
    EXPECT_EQ(chart.GetSeries(1)->GetValue(0), 7);
}

TEST_F(RTChartTest, StandardizingMovesTheReferenceLineWithTheData) {
    AddBulkSeries(1);
    chart.AddHorizontalLine(2e8, QStringLiteral("Target"), QStringLiteral("Show target"));
    ASSERT_TRUE(chart.LineShown());
    chart.SetSeriesData5(std::vector<double>{1e8, 2e8, 3e8}, {}, nullptr);
    EXPECT_DOUBLE_EQ(chart.LineValue(), 0);
    EXPECT_DOUBLE_EQ(chart.GetSeries(0)->GetValue(2), 1);
}

TEST_F(RTChartTest, ATwoValuedTargetFollowsTheStandardizedModel) {
    AddBulkSeries(2);
    const std::vector<double> model{1e8, 3e8, 2e8, 4e8};
    const std::vector<double> target{0, 1, 0, 2};
    const std::vector<std::int32_t> records{11, 12, 13, 14};
    auto table = std::make_shared<trv5::ReplacementTable>();
    chart.SetSeriesDataWithReplacement(model, target, records, table);

    const auto targetSeries = chart.GetSeries(0);
    const auto modelSeries = chart.GetSeries(1);
    const double low = modelSeries->GetMinValue();
    const double high = modelSeries->GetMaxValue();
    EXPECT_LT(low, 0);
    EXPECT_GT(high, 0);
    EXPECT_EQ(targetSeries->GetValue(0), low);
    EXPECT_EQ(targetSeries->GetValue(1), high);
    EXPECT_EQ(targetSeries->GetValue(3), high) << "every value above the minimum goes to the top";
    EXPECT_TRUE(targetSeries->HasReplacements());
    EXPECT_EQ(targetSeries->GetOriginalValue(3), 2);
    EXPECT_EQ(modelSeries->GetOriginalValue(1), 3e8);
    EXPECT_EQ(modelSeries->IndexOfPoint(3), 14);

    // Data within bounds goes in as it is, and the originals are dropped.
    chart.SetSeriesDataWithReplacement(std::vector<double>{0.2, 0.8}, std::vector<double>{0, 1},
                                       std::vector<std::int32_t>{1, 2}, nullptr);
    EXPECT_FALSE(targetSeries->HasOriginalData());
    EXPECT_EQ(modelSeries->GetValue(1), 0.8);
    EXPECT_EQ(targetSeries->GetValue(1), 1);
}

TEST_F(RTChartTest, ResetEmptiesTheChartButKeepsItsObjects) {
    AddBulkSeries(2);
    chart.SetSeriesData(0, std::vector<double>{1, 2});
    const auto first = chart.GetSeries(0);
    chart.Reset();
    EXPECT_EQ(chart.SeriesCount(), 0);
    EXPECT_FALSE(chart.DataChanged());
    EXPECT_EQ(chart.GetSeries(0), first);
    EXPECT_FALSE(first->DataReady());
    EXPECT_EQ(chart.MainYAxis(), mainAxis);
    EXPECT_EQ(chart.GetChartDataAsString(), QString());

    // After a reset the legend labels stay; a new series' caption goes to the highest one.
    chart.AddSeries(nullptr, false, QStringLiteral("New"));
    EXPECT_EQ(chart.LegendCaptions(), (QStringList{QStringLiteral("S0"), QStringLiteral("New")}));
}

TEST_F(RTChartTest, TheReferenceLineFollowsItsMenuEntry) {
    EXPECT_FALSE(chart.IsLineMenuVisible());
    chart.AddHorizontalLine(0.9, QStringLiteral("Target"), QStringLiteral("Show target"));
    EXPECT_TRUE(chart.LineShown());
    EXPECT_TRUE(chart.IsLineLegendVisible());
    EXPECT_EQ(chart.LineLegendText(), QStringLiteral("Target"));
    EXPECT_EQ(chart.LineMenuCaption(), QStringLiteral("Show target"));
    EXPECT_TRUE(chart.IsLineMenuVisible());
    EXPECT_EQ(chart.LineColour(), 75 + 77 * 256 + 102 * 65536);

    chart.ToggleHorizontalLine();
    EXPECT_FALSE(chart.LineShown());
    EXPECT_FALSE(chart.IsLineLegendVisible());
    // Adding while the entry is unchecked stores the value and keeps the line hidden.
    chart.AddHorizontalLine(0.7, QStringLiteral("Other"), QStringLiteral("Show other"));
    EXPECT_FALSE(chart.LineShown());
    EXPECT_EQ(chart.LineValue(), 0.7);
    chart.ToggleHorizontalLine();
    chart.UpdateHorizontalLine(0.8);
    EXPECT_TRUE(chart.LineShown());
    EXPECT_EQ(chart.LineValue(), 0.8);

    chart.HideHorizontalLine();
    EXPECT_FALSE(chart.LineShown());
    EXPECT_EQ(chart.LineValue(), RTChart::kNoLine);
    EXPECT_TRUE(chart.IsLineMenuVisible());
    chart.StopAddingHorizontalLine();
    EXPECT_FALSE(chart.IsLineMenuVisible());
}

TEST_F(RTChartTest, BackColorReachesTheControl) {
    EXPECT_EQ(chart.BackColor(), 0xFFFFFF);
    chart.SetBackColor(0x00336699);
    EXPECT_EQ(chart.BackColor(), 0x00336699);
    EXPECT_EQ(chart.palette().color(QPalette::Window), QColor(0x99, 0x66, 0x33));
    EXPECT_TRUE(chart.setProperty("ShowXAxis", true));
    EXPECT_TRUE(chart.ShowXAxis());
}

TEST_F(RTChartTest, LongNamesAreShownCutToWhatALabelCanShowButKeptWhole) {
    const QString name = QStringLiteral("x").repeated(3'000'000);
    mainAxis->Init(0, 1, false);
    mainAxis->SetName(name);
    const auto index = chart.AddSeries(nullptr, false, name);
    chart.GetSeries(index)->Init(3, 0, 1, trv5::DripFeed, false);
    chart.AddPoint(index, 0.5);
    chart.resize(400, 300);
    chart.Refresh();
    const QStringList captions = chart.LegendCaptions();
    ASSERT_EQ(captions.size(), 1);
    EXPECT_LE(captions.front().size(), 2048);
    EXPECT_TRUE(captions.front().startsWith(QStringLiteral("xxxx")));
    EXPECT_TRUE(captions.front().endsWith(QChar(0x2026)));
    // The name itself is the host's and is saved and exported whole.
    EXPECT_EQ(chart.GetSeries(index)->Name().size(), name.size());
    EXPECT_TRUE(chart.GetChartDataAsString().startsWith(name));
}
