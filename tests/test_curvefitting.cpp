#include <trv5charts/curvefitting.h>
#include <trv5charts/numberformat.h>

#include "platform/chartengine.h"
#include "platform/clipboardaccess.h"

#include "testsupport.h"

#include <QFile>
#include <QPrinter>
#include <QTemporaryDir>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace {

using trv5::platform::ChartEngine;
using trv5::platform::ChartSeries;

class CurveFittingTest : public ::testing::Test {
protected:
    CurveFittingTest() {
        StoreMargin(0.0);
        chart.resize(820, 580);
        chart.Init(QString());
    }
    ~CurveFittingTest() override { trv5::Globals::StoreConfig(nullptr); }

    static void StoreMargin(double pMargin) {
        trv5::Globals::StoreConfig(std::make_shared<trv5::test::MapConfig>(
            QVariantMap{{QStringLiteral("Run.CurveFitting.Margin"), pMargin}}));
    }
    ChartEngine& Engine() { return chart.Engine(); }
    ChartSeries& Named(const QString& pName) { return *Engine().FindSeries(pName); }
    void SetFive() { chart.SetData1(5, model, target, ids); }

    // Around the cut-off 0.5: on it within the tolerance, clearly on each side, and just beyond
    // the tolerance below it.
    std::vector<double> model{0.5 - 5e-15, 0.7, 0.25, 0.1, 0.5 - 2e-14, 0.9};
    std::vector<double> target{1, 0, 1, 0, 1, 1};
    std::vector<std::int32_t> ids{17, 18, 19, 20, 21, 22};
    trv5::CurveFitting chart;
    QTemporaryDir dir;
};

TEST_F(CurveFittingTest, PlotsRecordsWithTooltipsAndWritesTheRecordAxisOnlyWhereItDiffers) {
    chart.SetData1(3, std::vector<double>{0.25, 0.5, 0.75}, target, ids);
    const ChartSeries& modelLine = Engine().Series(1);
    ASSERT_EQ(modelLine.PointCount(), 3);
    EXPECT_EQ(modelLine.Argument(2), 2.0);
    EXPECT_EQ(modelLine.Value(2), 0.75);
    EXPECT_EQ(modelLine.Tooltip(0), QStringLiteral("Model, Record 17 (0.25)"));
    EXPECT_EQ(Engine().Series(0).Tooltip(1), QStringLiteral("Target, Record 18 (0)"));
    EXPECT_TRUE(modelLine.Visible() && Engine().Series(0).Visible());
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral("Points 1 to 3"));
    EXPECT_EQ(Engine().Title(3).Text(), QStringLiteral("Value"));
    EXPECT_FALSE(chart.Normalized());
    const trv5::platform::ChartAxis& axis = Engine().AxisX();
    EXPECT_FALSE(axis.AutoRange());
    EXPECT_EQ(axis.MinValue(), 0.0);
    EXPECT_EQ(axis.MaxValue(), 2.0);
    // The vertical axis is the engine's unless the fixed range is asked for.
    EXPECT_TRUE(Engine().AxisY().AutoRange());

    // Three records again, now a window of a longer run: nothing to write on the record axis.
    const std::uint64_t writes = axis.WriteCount();
    chart.SetData2(3, 5, model, target, ids);
    EXPECT_EQ(axis.WriteCount(), writes);
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral("Points 4 to 6"));
    EXPECT_EQ(modelLine.Argument(0), 0.0);
    EXPECT_EQ(modelLine.Tooltip(2), QStringLiteral("Model, Record 22 (0.9)"));
    // A longer window changes the maximum only.
    SetFive();
    EXPECT_EQ(axis.WriteCount(), writes + 1);
    EXPECT_EQ(axis.MaxValue(), 4.0);
    EXPECT_FALSE(axis.AutoRange());

    const trv5::test::ScopedLocale german(trv5::test::German());
    SetFive();
    EXPECT_EQ(modelLine.Tooltip(3), QStringLiteral("Model, Record 20 (0,1)"));
}

TEST_F(CurveFittingTest, FixedVerticalRangeFollowsTheDataUnlessNormalized) {
    StoreMargin(0.1);
    chart.SetUseBinomialFixedYAxis(true);
    SetFive();
    const trv5::platform::ChartAxis& axis = Engine().AxisY();
    EXPECT_FALSE(axis.AutoRange());
    EXPECT_NEAR(axis.MinValue(), -0.1, 1e-12);
    EXPECT_NEAR(axis.MaxValue(), 1.1, 1e-12);
    chart.ShowTarget();
    EXPECT_FALSE(Engine().Series(1).Visible());
    EXPECT_TRUE(Engine().Series(0).Visible());
    EXPECT_NEAR(axis.MaxValue(), 1.1, 1e-12);

    // Without the fixed range, showing and hiding never touches the vertical axis.
    chart.SetUseBinomialFixedYAxis(false);
    std::uint64_t writes = axis.WriteCount();
    chart.ShowModel();
    chart.ShowBoth();
    EXPECT_EQ(axis.WriteCount(), writes);
    EXPECT_TRUE(Engine().Series(1).Visible() && Engine().Series(0).Visible());

    // Nearly constant model values: both arrays go to 0..1, and the range fixed for the earlier
    // data is handed back to the engine instead of hiding the new lines.
    chart.SetUseBinomialFixedYAxis(true);
    chart.SetData1(2, std::vector<double>{1000000.0, 1000000.001}, std::vector<double>{2, 4}, ids);
    EXPECT_TRUE(chart.Normalized());
    EXPECT_EQ(Engine().Title(3).Text(), QStringLiteral("Value (normalized)"));
    EXPECT_EQ(Engine().Series(0).Value(1), 1.0);
    EXPECT_EQ(Engine().Series(1).Value(0), 0.0);
    EXPECT_TRUE(axis.AutoRange());
    writes = axis.WriteCount();
    chart.ShowTarget();
    EXPECT_EQ(axis.WriteCount(), writes);

    // A constant target is not normalized (its spread counts as 1).
    chart.SetData1(2, std::vector<double>{0.2, 0.8}, std::vector<double>{3, 3}, ids);
    EXPECT_FALSE(chart.Normalized());
    EXPECT_EQ(Engine().Title(3).Text(), QStringLiteral("Value"));
}

TEST_F(CurveFittingTest, ThresholdSpansTheRecordsInTheTargetsUnits) {
    chart.SetThreshold(0.5);
    EXPECT_EQ(Engine().Series(2).PointCount(), 0); // no records yet
    SetFive();
    chart.SetThreshold(0.5);
    const ChartSeries& line = Engine().Series(2);
    ASSERT_EQ(line.PointCount(), 2);
    EXPECT_EQ(line.Argument(0), 0.0);
    EXPECT_EQ(line.Argument(1), 4.0);
    EXPECT_EQ(line.Value(1), 0.5);
    EXPECT_EQ(line.DashPattern(), (std::vector<double>{5, 3}));
    EXPECT_FALSE(line.Visible());
    chart.ShowThreshold();
    EXPECT_TRUE(line.Visible());

    // Normalized data: the cut-off moves with the target's range before normalization, also when
    // that range starts below zero. A shown line follows new data by itself.
    const std::vector<double> flat{7.0, 7.0000000001, 7.0, 7.0};
    chart.SetData1(4, flat, std::vector<double>{-2, 2, 2, -2}, ids);
    ASSERT_TRUE(chart.Normalized());
    EXPECT_EQ(line.Argument(1), 3.0);
    EXPECT_DOUBLE_EQ(line.Value(0), 0.625);
    chart.SetData1(4, flat, std::vector<double>{0, 2, 2, 0}, ids);
    EXPECT_DOUBLE_EQ(line.Value(0), 0.25);

    chart.HideThreshold();
    EXPECT_FALSE(line.Visible());
    chart.SetData1(2, std::vector<double>{0.2, 0.3}, target, ids);
    EXPECT_EQ(line.Argument(1), 3.0); // a hidden line is not redrawn
}

TEST_F(CurveFittingTest, MisclassificationsAreRingedByMode) {
    SetFive();
    chart.SetThreshold(0.5);
    chart.DrawMisclassifications(trv5::CurveFitting::kMarkBoth);
    ChartSeries& onModel = Named(QStringLiteral("Misclassifications"));
    ChartSeries& onTarget = Named(QStringLiteral("Misclassifications2"));
    // Record 17 lies on the cut-off within the tolerance (class 1, right); 18 is above it with
    // target 0, 19 and 21 below it with target 1.
    ASSERT_EQ(onModel.PointCount(), 3);
    EXPECT_EQ(onModel.Argument(0), 1.0);
    EXPECT_EQ(onModel.Value(0), 0.7);
    EXPECT_EQ(onModel.Tooltip(2), QStringLiteral("Model, Record 21 (0.49999999999998)"));
    ASSERT_EQ(onTarget.PointCount(), 3);
    EXPECT_EQ(onTarget.Argument(1), 2.0);
    EXPECT_EQ(onTarget.Value(1), 1.0);
    EXPECT_EQ(onTarget.Tooltip(0), QStringLiteral("Target, Record 18 (0)"));
    EXPECT_EQ(onModel.Colour(), QColor(250, 0, 0));
    EXPECT_EQ(onModel.Marker(), trv5::platform::MarkerShape::Circle);
    EXPECT_TRUE(onModel.Visible() && onTarget.Visible());

    // The ring is drawn around the marked point of the model line.
    const QImage image = Engine().Render();
    const QPoint centre = Engine().PointPosition(1, 1).toPoint();
    int red = 0;
    for (int dx = -6; dx <= 6; ++dx) {
        for (int dy = -6; dy <= 6; ++dy) {
            const QColor pixel = image.pixelColor(centre + QPoint(dx, dy));
            red += pixel.red() > 200 && pixel.green() < 80 && pixel.blue() < 80 ? 1 : 0;
        }
    }
    EXPECT_GT(red, 8);

    chart.DrawMisclassifications(trv5::CurveFitting::kMarkModel);
    EXPECT_TRUE(onModel.Visible());
    EXPECT_FALSE(onTarget.Visible());
    chart.DrawMisclassifications(trv5::CurveFitting::kMarkTarget);
    EXPECT_FALSE(onModel.Visible());
    EXPECT_TRUE(onTarget.Visible());
    chart.DrawMisclassifications(7);
    EXPECT_FALSE(onModel.Visible());
    EXPECT_EQ(onModel.PointCount(), 3);
    chart.ShowMisclassifications(true, false);
    EXPECT_TRUE(onModel.Visible());
    EXPECT_FALSE(onTarget.Visible());

    // A higher cut-off moves record 18 to class 0; then nothing at all.
    chart.SetThreshold(0.8);
    chart.DrawMisclassifications(trv5::CurveFitting::kMarkBoth);
    EXPECT_EQ(onModel.PointCount(), 3); // 17, 19 and 21
    EXPECT_EQ(onModel.Argument(0), 0.0);
    chart.ClearMisclassifications();
    EXPECT_EQ(onModel.PointCount() + onTarget.PointCount(), 0);
}

TEST_F(CurveFittingTest, DataTextListsTheVisibleSeriesInTheUsersLocale) {
    const trv5::test::ScopedLocale german(trv5::test::German());
    chart.SetData1(3, std::vector<double>{0.25, 0.5, 0.75}, target, ids);
    chart.SetThreshold(0.5);
    chart.ShowThreshold();
    chart.CopyData();
    EXPECT_EQ(
        trv5::platform::ClipboardAccess::Text(),
        QStringLiteral("Target\tModel\tThreshold\r\n1\t0,25\t0,5\r\n0\t0,5\t0,5\r\n1\t0,75\t"));
    chart.HideSeries(0);
    chart.HideSeries(99);
    chart.HideSeries(-1);
    chart.SetSeriesName(1, QStringLiteral("Classifier"));
    EXPECT_EQ(chart.GetChartDataAsString(),
              QStringLiteral("Classifier\tThreshold\r\n0,25\t0,5\r\n0,5\t0,5\r\n0,75\t"));

    chart.Clear();
    EXPECT_EQ(chart.GetChartDataAsString(), QStringLiteral("Classifier\tThreshold\r\n"));
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral(" "));
    chart.Dispose();
    EXPECT_EQ(chart.GetChartDataAsString(), QString());
    trv5::platform::ClipboardAccess::SetText(QStringLiteral("kept"));
    chart.CopyData();
    EXPECT_EQ(trv5::platform::ClipboardAccess::Text(), QStringLiteral("kept"));
}

TEST_F(CurveFittingTest, DataThatCannotBePlottedShowsTheFailureAndNothingCrashes) {
    const std::vector<double> none;
    const auto expectFailure = [&] {
        EXPECT_EQ(Engine().Title(0).Text(), QStringLiteral("Unable to draw the chart"));
        EXPECT_EQ(Engine().Series(0).PointCount() + Engine().Series(1).PointCount(), 0);
    };
    for (const std::int32_t count : {7, 0, -1, std::numeric_limits<std::int32_t>::max()}) {
        SetFive();
        chart.SetData1(count, model, target, ids);
        expectFailure();
    }
    chart.SetData1(3, model, target, std::vector<std::int32_t>{1, 2});
    expectFailure();
    chart.SetData1(1, none, none, ids);
    expectFailure();
    for (const auto& [first, last] : {std::pair{3, 2}, std::pair{-1, 2}, std::pair{4, 6}}) {
        chart.SetData2(first, last, model, target, ids);
        expectFailure();
    }
    chart.SetThreshold(0.5);
    chart.DrawMisclassifications(trv5::CurveFitting::kMarkBoth);
    EXPECT_EQ(Named(QStringLiteral("Misclassifications")).PointCount(), 0);

    // Good data brings the title back.
    SetFive();
    EXPECT_EQ(Engine().Title(0).Text(), QString());

    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    chart.SetUseBinomialFixedYAxis(true);
    for (const std::vector<double>& values :
         {std::vector<double>{nan, 0.5, inf}, std::vector<double>{nan, nan, nan},
          std::vector<double>{-inf, 0.0, inf}}) {
        chart.SetData1(3, values, target, ids);
        chart.ShowThreshold();
        chart.DrawMisclassifications(trv5::CurveFitting::kMarkBoth);
        EXPECT_FALSE(Engine().Render().isNull());
        EXPECT_FALSE(chart.GetChartDataAsString().isEmpty());
    }
    EXPECT_CHART_ERROR(chart.SetSeriesName(6, QStringLiteral("none")), 9);
    EXPECT_CHART_ERROR(chart.SetSeriesLabels(-1, true), 9);
}

TEST_F(CurveFittingTest, LabelsMarkersAndPrinting) {
    SetFive();
    chart.ShowLabels(true);
    EXPECT_TRUE(Engine().Series(0).LabelsVisible() && Engine().Series(1).LabelsVisible());
    EXPECT_EQ(Engine().Series(1).Label(1), trv5::NumberFormat::Short(0.7));
    chart.SetSeriesLabels(0, false);
    EXPECT_FALSE(Engine().Series(0).LabelsVisible());

    chart.ShowMarkers(true);
    EXPECT_TRUE(Engine().Series(0).MarkerVisible() && Engine().Series(1).MarkerVisible());
    chart.HideCutoffPointMarkers();
    for (int i = 0; i < Engine().SeriesCount(); ++i) {
        EXPECT_EQ(Engine().Series(i).MarkerVisible(),
                  Engine().Series(i).Name() == QStringLiteral("Cutoff Point"));
    }

    // The model line runs through its points in its own colour.
    chart.ShowLabels(false);
    const QImage image = Engine().Render();
    const QPointF between = (Engine().PointPosition(1, 3) + Engine().PointPosition(1, 4)) / 2.0;
    const QColor line = image.pixelColor(between.toPoint());
    EXPECT_GT(line.red(), 180);
    EXPECT_LT(line.blue(), 120);

    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(dir.filePath(QStringLiteral("curve.pdf")));
    chart.PrintChart2(&printer);
    QFile printed(printer.outputFileName());
    ASSERT_TRUE(printed.open(QIODevice::ReadOnly));
    const QByteArray pdf = printed.readAll();
    EXPECT_TRUE(pdf.startsWith("%PDF"));
    EXPECT_GT(pdf.size(), 2000);
}

} // namespace

TEST_F(CurveFittingTest, TooltipsAtTheEndsOfTheCutOffLineNameTheRecordUnderThem) {
    SetFive();
    chart.SetThreshold(0.5);
    chart.ShowThreshold();
    Engine().Render();
    // Record 17 (model 0.5 within the tolerance) sits exactly on the line's first end point,
    // which has no text of its own.
    const QPointF record = Engine().PointPosition(1, 0);
    const QPointF lineEnd = Engine().PointPosition(2, 0);
    ASSERT_LT(std::hypot(record.x() - lineEnd.x(), record.y() - lineEnd.y()), 1.0);
    EXPECT_TRUE(Engine().TooltipAt(lineEnd).startsWith(QStringLiteral("Model, Record 17")))
        << Engine().TooltipAt(lineEnd).toStdString();
    // The hit test as such still finds the line's end point on top.
    const auto hit = Engine().HitTest(lineEnd);
    ASSERT_TRUE(hit.has_value());
    EXPECT_EQ(hit->series, 2);
}

TEST_F(CurveFittingTest, AChartWhoseEngineControlIsGoneIgnoresDisposeResizeAndPaint) {
    SetFive();
    chart.show();
    delete chart.findChild<QWidget*>(QStringLiteral("mChart"));
    ASSERT_EQ(chart.findChild<QWidget*>(QStringLiteral("mChart")), nullptr);
    EXPECT_FALSE(Engine().HasControl());
    chart.Dispose();
    chart.resize(300, 200);
    chart.repaint();
    (void)chart.grab();
    chart.SetThreshold(0.5);
    chart.ShowThreshold();
    SetFive();
    chart.CopyImage();
    EXPECT_TRUE(Engine().Render().isNull());
    EXPECT_FALSE(Engine().HitTest(QPointF(10, 10)).has_value());
    QImage page(200, 100, QImage::Format_RGB32);
    EXPECT_CHART_ERROR(chart.PrintChart2(&page), 91);
}
