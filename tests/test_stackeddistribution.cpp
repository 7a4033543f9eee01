#include <trv5charts/localizationlib.h>
#include <trv5charts/stackeddistributionchart.h>

#include "platform/chartengine.h"
#include "platform/clipboardaccess.h"

#include "testsupport.h"

#include <QFile>
#include <QPrinter>
#include <QTemporaryDir>

#include <limits>

namespace {

using trv5::platform::ChartEngine;

constexpr int kModel = 0;
constexpr int kTarget = 1;

class StackedDistributionTest : public ::testing::Test {
protected:
    StackedDistributionTest() {
        chart.resize(820, 580);
        chart.Init(QString());
        chart.SetFixedRandomSeed(11);
    }

    ChartEngine& Engine() { return chart.Engine(); }
    void SetFour() {
        chart.CreateRandomValues(4);
        chart.SetData(4, model, target, ids);
    }

    std::vector<double> model{0.83, 0.12, 0.64, 0.31};
    std::vector<double> target{1, 0, 1, 0};
    std::vector<std::int32_t> ids{11, 12, 13, 14};
    trv5::StackedDistributionChart chart;
    QTemporaryDir dir;
};

TEST_F(StackedDistributionTest, RecordsSitAtTheSameHeightInTwoSeparateBands) {
    SetFour();
    const trv5::platform::ChartSeries& targets = Engine().Series(kTarget);
    const trv5::platform::ChartSeries& models = Engine().Series(kModel);
    ASSERT_EQ(targets.PointCount(), 4);
    ASSERT_EQ(models.PointCount(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(targets.Argument(i), target[static_cast<std::size_t>(i)]);
        EXPECT_EQ(models.Argument(i), model[static_cast<std::size_t>(i)]);
        EXPECT_EQ(models.Value(i), targets.Value(i) + 55.0);
    }
    EXPECT_EQ(targets.Tooltip(0), QStringLiteral("Target, Record 11 (1) :: Model (0.83)"));
    EXPECT_EQ(models.Tooltip(1), QStringLiteral("Model, Record 12 (0.12) :: Target (0)"));
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral("Points 1 to 4"));
    EXPECT_EQ(Engine().Title(2).Text(), QStringLiteral("Value"));
    EXPECT_EQ(chart.EndAt(), 4);
    EXPECT_FALSE(Engine().AxisY().AutoRange());
    EXPECT_EQ(Engine().AxisY().MinValue(), -2.0);
    EXPECT_EQ(Engine().AxisY().MaxValue(), 115.0);
    EXPECT_EQ(Engine().BackgroundColour(), QColor(255, 251, 242));

    // Many heights: the lower band is [0, 45), the upper one exactly 55 above it.
    chart.CreateRandomValues(20000);
    ASSERT_EQ(chart.UpperBand().size(), 20000U);
    for (std::size_t i = 0; i < 20000; ++i) {
        ASSERT_GE(chart.LowerBand()[i], 0.0);
        ASSERT_LT(chart.LowerBand()[i], 45.0);
        ASSERT_EQ(chart.UpperBand()[i], chart.LowerBand()[i] + 55.0);
    }

    // On the drawing, each series' colour shows at its points and nothing lies in the gap.
    std::vector<double> many(20000);
    std::vector<std::int32_t> manyIds(20000);
    for (std::size_t i = 0; i < many.size(); ++i) {
        many[i] = static_cast<double>(i % 100) / 100.0;
        manyIds[i] = static_cast<std::int32_t>(i);
    }
    chart.SetData(20000, many, many, manyIds);
    const QImage image = Engine().Render();
    EXPECT_EQ(image.pixelColor(Engine().PointPosition(kTarget, 0).toPoint()),
              QColor(0x1F, 0x5F, 0xA8));
    EXPECT_EQ(image.pixelColor(Engine().PointPosition(kModel, 0).toPoint()),
              QColor(0xD5, 0x5E, 0x00));
    // Pixel rows from height 46 to 54, by the vertical scale through one record's two points.
    const QPointF low = Engine().PointPosition(kTarget, 0);
    const QPointF high = Engine().PointPosition(kModel, 0);
    const double lowHeight = Engine().Series(kTarget).Value(0);
    const auto row = [&](double pHeight) {
        return static_cast<int>(low.y() + (pHeight - lowHeight) * (high.y() - low.y()) / 55.0);
    };
    int gapPixels = 0;
    int bandPixels = 0;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = row(54.0); y <= row(46.0); ++y) {
            gapPixels += image.pixelColor(x, y).saturation() > 100 ? 1 : 0;
        }
        bandPixels += image.pixelColor(x, row(20.0)).saturation() > 100 ? 1 : 0;
    }
    EXPECT_GT(row(46.0) - row(54.0), 30);
    EXPECT_EQ(gapPixels, 0);
    EXPECT_GT(bandPixels, 100);
}

TEST_F(StackedDistributionTest, TargetOnlyDrawsItsOwnHeightsAndKeepsThem) {
    chart.SetTargetOnly(true);
    chart.SetFixedRandomSeed(std::nullopt);
    chart.SetData(4, {}, target, ids);
    EXPECT_EQ(Engine().Series(kModel).PointCount(), 0);
    ASSERT_EQ(Engine().Series(kTarget).PointCount(), 4);
    EXPECT_EQ(Engine().Series(kTarget).Tooltip(2), QStringLiteral("Target, Point 13 (1)"));
    EXPECT_EQ(Engine().AxisY().MaxValue(), 55.0);
    EXPECT_FALSE(Engine().Series(kModel).ShowInLegend());
    const std::vector<double> heights = chart.LowerBand();
    ASSERT_EQ(heights.size(), 4U);
    EXPECT_EQ(Engine().Series(kTarget).Value(3), heights[3]);

    chart.SetData(4, {}, target, ids);
    EXPECT_EQ(chart.LowerBand(), heights);
    chart.SetData(3, {}, target, ids);
    ASSERT_EQ(chart.LowerBand().size(), 3U);
    EXPECT_NE(chart.LowerBand()[0], heights[0]);

    const trv5::test::ScopedLocale german(trv5::test::German());
    chart.SetData(2, {}, std::vector<double>{0.5, 1.25}, ids);
    const auto number = [](double pValue) {
        return trv5::LocalizationLib::DoubleToUserText(pValue);
    };
    EXPECT_EQ(chart.GetChartDataAsString(),
              QStringLiteral("Record ID\tDummyVar\tTarget\r\n11\t") + number(chart.LowerBand()[0]) +
                  QStringLiteral("\t0,5\r\n12\t") + number(chart.LowerBand()[1]) +
                  QStringLiteral("\t1,25\r\n"));
}

TEST_F(StackedDistributionTest, BothBlocksReachTheClipboardSeparatedByAnEmptyLine) {
    const trv5::test::ScopedLocale german(trv5::test::German());
    model = {0.5, 0.25};
    target = {1, 0};
    chart.CreateRandomValues(2);
    chart.SetData(2, model, target, ids);
    EXPECT_EQ(Engine().Series(kModel).Tooltip(0),
              QStringLiteral("Model, Record 11 (0,5) :: Target (1)"));
    const auto number = [](double pValue) {
        return trv5::LocalizationLib::DoubleToUserText(pValue);
    };
    const QString lower0 = number(chart.LowerBand()[0]);
    const QString lower1 = number(chart.LowerBand()[1]);
    const QString upper0 = number(chart.UpperBand()[0]);
    const QString upper1 = number(chart.UpperBand()[1]);
    chart.CopyData();
    EXPECT_EQ(trv5::platform::ClipboardAccess::Text(),
              QStringLiteral("Record ID\tDummyVar\tTarget\r\n11\t") + lower0 +
                  QStringLiteral("\t1\r\n12\t") + lower1 +
                  QStringLiteral("\t0\r\n\r\nRecord ID\tDummyVar\tModel\r\n11\t") + upper0 +
                  QStringLiteral("\t0,5\r\n12\t") + upper1 + QStringLiteral("\t0,25\r\n"));

    chart.Clear();
    EXPECT_EQ(chart.GetChartDataAsString(),
              QStringLiteral("Record ID\tDummyVar\tTarget\r\n\r\nRecord ID\tDummyVar\tModel\r\n"));
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral(" "));
    EXPECT_TRUE(chart.LowerBand().empty());
    chart.Dispose();
    EXPECT_EQ(chart.GetChartDataAsString(), QString());
    trv5::platform::ClipboardAccess::SetText(QStringLiteral("kept"));
    chart.CopyData();
    EXPECT_EQ(trv5::platform::ClipboardAccess::Text(), QStringLiteral("kept"));
}

TEST_F(StackedDistributionTest, DataThatCannotBePreparedShowsTheFailure) {
    SetFour();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const std::vector<std::vector<double>> bad{{nan, nan, nan, nan}, {1, inf, 2, 3}};
    for (const std::int32_t count : {5, 0, -3}) {
        chart.SetData(count, model, target, ids);
        EXPECT_EQ(Engine().Title(0).Text(), QStringLiteral("Unable to draw the chart"));
        EXPECT_EQ(Engine().Series(kTarget).PointCount(), 0);
        EXPECT_EQ(Engine().Series(kModel).PointCount(), 0);
    }
    for (const std::vector<double>& values : bad) {
        SetFour();
        EXPECT_EQ(Engine().Title(0).Text(), QString());
        chart.SetData(4, values, target, ids);
        EXPECT_EQ(Engine().Title(0).Text(), QStringLiteral("Unable to draw the chart"));
        EXPECT_EQ(Engine().Series(kTarget).PointCount(), 0);
    }
    // One NaN among numbers is kept, and not drawn.
    chart.SetData(4, std::vector<double>{0.2, nan, 0.4, 0.9}, target, ids);
    EXPECT_EQ(Engine().Series(kModel).Tooltip(1),
              QStringLiteral("Model, Record 12 (NaN) :: Target (0)"));
    EXPECT_FALSE(Engine().Render().isNull());

    // Too few identifiers, or no heights made for this count: raised, nothing plotted.
    EXPECT_CHART_ERROR(chart.SetData(4, model, target, std::vector<std::int32_t>{1}), 9);
    EXPECT_EQ(Engine().Series(kModel).PointCount(), 0);
    chart.CreateRandomValues(2);
    EXPECT_CHART_ERROR(chart.SetData(4, model, target, ids), 9);
    EXPECT_CHART_ERROR(chart.CreateRandomValues(-1), 9);

    // Nearly constant values are spread over 0..1, each array by its own extremes.
    chart.CreateRandomValues(3);
    chart.SetData(3, std::vector<double>{0.0, 0.5, 1.0},
                  std::vector<double>{1000000.0, 1000000.001, 1000000.0005}, ids);
    EXPECT_EQ(Engine().Title(2).Text(), QStringLiteral("Value (normalized)"));
    EXPECT_EQ(Engine().Series(kTarget).Argument(1), 1.0);
    EXPECT_EQ(Engine().Series(kModel).Argument(1), 0.5);
    EXPECT_EQ(Engine().Series(kModel).Tooltip(1),
              QStringLiteral("Model, Record 12 (0.5) :: Target (1)"));
    chart.SetData(3, std::vector<double>{2e6, 3e6, 4e6}, std::vector<double>{2e6, 3e6, 4e6}, ids);
    EXPECT_EQ(Engine().Title(2).Text(), QStringLiteral("Value"));
    EXPECT_EQ(Engine().AxisX().LabelAngle(), 20.0);
}

TEST_F(StackedDistributionTest, PrintsOntoAHostPrinter) {
    SetFour();
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(dir.filePath(QStringLiteral("stacked.pdf")));
    chart.PrintChart2(&printer);
    QFile printed(printer.outputFileName());
    ASSERT_TRUE(printed.open(QIODevice::ReadOnly));
    const QByteArray pdf = printed.readAll();
    EXPECT_TRUE(pdf.startsWith("%PDF"));
    EXPECT_EQ(pdf.count("/Type /Page\n"), 1);
    EXPECT_GT(pdf.size(), 3000);
}

} // namespace
