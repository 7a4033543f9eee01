#include <trv5charts/localizationlib.h>
#include <trv5charts/numberformat.h>
#include <trv5charts/scatterplot.h>

#include "platform/chartengine.h"
#include "platform/clipboardaccess.h"

#include "testsupport.h"

#include <QApplication>
#include <QFile>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTimer>

#include <limits>
#include <memory>

namespace {

using trv5::platform::ChartEngine;

// Answers the print dialog with a PDF file, or cancels it.
class PdfDialog final : public trv5::IPrintDialog {
public:
    explicit PdfDialog(QString pFile) : file(std::move(pFile)) {}
    bool Exec(trv5::PrintSettings& pSettings) override {
        pSettings.outputFile = file;
        return !file.isEmpty();
    }
    QString file;
};

class ScatterPlotTest : public ::testing::Test {
protected:
    ScatterPlotTest() {
        trv5::Globals::StoreConfig(std::make_shared<trv5::test::MapConfig>(
            QVariantMap{{QStringLiteral("Run.CurveFitting.Margin"), 0}}));
        chart.resize(820, 580);
        chart.Init(QString());
    }
    ~ScatterPlotTest() override { trv5::Globals::StoreConfig(nullptr); }

    ChartEngine& Engine() { return chart.Engine(); }
    void SetFourRecords() { chart.SetData(4, first, second, ids); }
    void ExpectPoint(int pSeries, int pIndex, double pArgument, double pValue) {
        EXPECT_NEAR(Engine().Series(pSeries).Argument(pIndex), pArgument, 1e-12);
        EXPECT_NEAR(Engine().Series(pSeries).Value(pIndex), pValue, 1e-12);
    }

    std::vector<double> first{1, 2, 3, 4};
    std::vector<double> second{2.1, 3.9, 6.2, 7.8};
    std::vector<std::int32_t> ids{17, 18, 19, 42};
    trv5::ScatterPlot chart;
    QTemporaryDir dir;
};

TEST_F(ScatterPlotTest, PlotsRecordsWithTooltipsRegressionAndRanges) {
    SetFourRecords();
    const trv5::platform::ChartSeries& points = Engine().Series(0);
    ASSERT_EQ(points.PointCount(), 4);
    ExpectPoint(0, 2, 3.0, 6.2);
    EXPECT_EQ(points.Tooltip(0), QStringLiteral("Record 17 (1, 2.1)"));
    EXPECT_EQ(points.Label(3), QStringLiteral("Record 42 (4, 7.8)"));
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral("Points 1 to 4"));
    EXPECT_EQ(Engine().Title(2).Text(), QStringLiteral("Model Output"));
    EXPECT_EQ(Engine().Title(3).Text(), QStringLiteral("Target"));

    // Least squares: slope 9.7 / 5, intercept 5 - 1.94 * 2.5.
    EXPECT_NEAR(chart.Slope(), 1.94, 1e-12);
    EXPECT_NEAR(chart.Intercept(), 0.15, 1e-12);
    EXPECT_NEAR(chart.CorrelationCoefficient(), 0.9978283, 1e-7);
    EXPECT_NEAR(chart.RSquare(), 0.9978283 * 0.9978283, 1e-6);
    const trv5::platform::ChartTitle& equation = Engine().Title(0);
    EXPECT_TRUE(equation.Text().startsWith(QStringLiteral("y = 1.94x + 0.15\r\nRS = 0.99782833")));
    EXPECT_EQ(equation.Dock(), trv5::platform::Docking::Top);
    EXPECT_EQ(equation.Alignment(), trv5::platform::TitleAlignment::Near);
    EXPECT_EQ(equation.FontSize(), 8.0);
    EXPECT_FALSE(equation.Bold());

    // The line from x 1 to 4 would run from 2.09 to 7.91: both ends slide onto the value range.
    ASSERT_EQ(Engine().Series(1).PointCount(), 2);
    ExpectPoint(1, 0, (2.1 - 0.15) / 1.94, 2.1);
    ExpectPoint(1, 1, (7.8 - 0.15) / 1.94, 7.8);

    // Margin 0: the horizontal axis spans the first values, the vertical one both ranges.
    EXPECT_FALSE(Engine().AxisX().AutoRange());
    EXPECT_EQ(Engine().AxisX().MinValue(), 1.0);
    EXPECT_EQ(Engine().AxisX().MaxValue(), 4.0);
    EXPECT_EQ(Engine().AxisY().MinValue(), 1.0);
    EXPECT_EQ(Engine().AxisY().MaxValue(), 7.8);
    EXPECT_EQ(Engine().AxisX().LabelAngle(), 0.0);

    chart.SetYAxisTargetOnly(true);
    chart.SetShowRecordIds(true);
    SetFourRecords();
    EXPECT_EQ(Engine().AxisY().MinValue(), 2.1);
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral("Points 17 to 42"));
}

TEST_F(ScatterPlotTest, RegressionLinesAreCutWhereTheyLeaveThePlottedArea) {
    const std::vector<double> x{0, 1, 2, 3};
    chart.SetData(4, x, std::vector<double>{0, 3, 3, 3}, ids);
    // Rising: slope 0.9, intercept 0.9, leaves at the top at x = 2.1 / 0.9.
    ExpectPoint(1, 0, 0.0, 0.9);
    ExpectPoint(1, 1, 2.1 / 0.9, 3.0);
    chart.SetData(4, x, std::vector<double>{3, 3, 3, 0}, ids);
    // Falling: slope -0.9, intercept 3.6, starts above the top.
    ExpectPoint(1, 0, 0.6 / 0.9, 3.0);
    ExpectPoint(1, 1, 3.0, 0.9);
}

TEST_F(ScatterPlotTest, NearlyConstantValuesAreNormalizedAndConstantOnesAreNot) {
    chart.SetData(3, std::vector<double>{5, 5, 5},
                  std::vector<double>{1000000.0, 1000000.001, 1000000.0005}, ids);
    EXPECT_EQ(Engine().Title(3).Text(), QStringLiteral("Target (normalized)"));
    EXPECT_EQ(Engine().Title(2).Text(), QStringLiteral("Model Output"));
    ExpectPoint(0, 0, 5.0, 0.0);
    ExpectPoint(0, 1, 5.0, 1.0);
    EXPECT_NEAR(Engine().Series(0).Value(2), 0.5, 1e-6);
    // The constant first values keep their own range, widened by 10 %.
    EXPECT_EQ(Engine().AxisX().MinValue(), 4.5);
    EXPECT_EQ(Engine().AxisX().MaxValue(), 5.5);
    EXPECT_EQ(chart.Slope(), 0.0);
    EXPECT_EQ(chart.CorrelationCoefficient(), 0.0);

    // All second values equal: spread 1, no normalization, and no correlation to speak of.
    chart.SetData(3, first, std::vector<double>{2, 2, 2}, ids);
    EXPECT_EQ(Engine().Title(3).Text(), QStringLiteral("Target"));
    EXPECT_TRUE(Engine().Title(0).Text().endsWith(QStringLiteral("RS = UNDEFINED")));
}

TEST_F(ScatterPlotTest, DataThatCannotBePreparedShowsTheFailureInsteadOfPoints) {
    SetFourRecords();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const std::int32_t count : {5, 0, -1}) {
        chart.SetData(count, first, second, ids);
        EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral("Unable to draw the chart"));
        EXPECT_EQ(Engine().Series(0).PointCount(), 0);
    }
    chart.SetData(4, first, second, std::vector<std::int32_t>{1, 2});
    EXPECT_EQ(Engine().Series(0).PointCount(), 0);
    chart.SetData(2, std::vector<double>{nan, nan}, std::vector<double>{nan, 1}, ids);
    EXPECT_FALSE(Engine().Render().isNull());

    chart.Clear();
    EXPECT_EQ(Engine().Title(1).Text(), QStringLiteral(" "));
    EXPECT_EQ(Engine().Title(0).Text(), QString());
    EXPECT_EQ(Engine().Series(1).PointCount(), 0);
}

TEST_F(ScatterPlotTest, ClipboardTextsUseTheUsersLocale) {
    const trv5::test::ScopedLocale german(trv5::test::German());
    SetFourRecords();
    chart.CopySlopeIntercept();
    const auto text = [](double pValue) {
        return trv5::LocalizationLib::DoubleToUserText(pValue);
    };
    EXPECT_EQ(trv5::platform::ClipboardAccess::Text(),
              QStringLiteral("Slope:\t1,94\r\nIntercept:\t0,15\r\nCorrelation Coefficient:\t") +
                  text(chart.CorrelationCoefficient()) + QStringLiteral("\r\nR-square:\t") +
                  text(chart.RSquare()));

    chart.SetDataHeader(QStringLiteral("Record ID\tModel\tTarget"));
    chart.CopyData();
    EXPECT_EQ(trv5::platform::ClipboardAccess::Text(),
              QStringLiteral("Record ID\tModel\tTarget\r\n17\t1\t2,1\r\n18\t2\t3,9\r\n"
                             "19\t3\t6,2\r\n42\t4\t7,8"));
    chart.Clear();
    EXPECT_EQ(chart.GetChartDataAsString(), QStringLiteral("Record ID\tModel\tTarget\r\n"));
    chart.Dispose();
    EXPECT_EQ(chart.GetChartDataAsString(), QString());
    trv5::platform::ClipboardAccess::SetText(QStringLiteral("kept"));
    chart.CopyData();
    EXPECT_EQ(trv5::platform::ClipboardAccess::Text(), QStringLiteral("kept"));
}

TEST_F(ScatterPlotTest, DrawsPointsAndLineAndCopiesTheEnginePicture) {
    SetFourRecords();
    const QImage image = Engine().Render();
    ASSERT_EQ(image.size(), QSize(810, 570));
    EXPECT_EQ(image.pixelColor(Engine().PointPosition(0, 1).toPoint()), QColor(0x1F, 0x5F, 0xA8));
    const QPointF middle = (Engine().PointPosition(1, 0) + Engine().PointPosition(1, 1)) / 2.0;
    const QColor line = image.pixelColor(middle.toPoint());
    EXPECT_GT(line.red(), 150);
    EXPECT_LT(line.blue(), 100);

    chart.ShowLinearRegression(false);
    chart.ShowRegressionEquation(false);
    EXPECT_FALSE(Engine().Series(1).Visible());
    EXPECT_FALSE(Engine().Title(0).Visible());
    const QImage hidden = Engine().Render();
    EXPECT_EQ(hidden.pixelColor(Engine().PointPosition(1, 0).toPoint() + QPoint(20, 0)),
              QColor(255, 251, 242));

    chart.CopyImage();
    EXPECT_EQ(trv5::platform::ClipboardAccess::Image().size(), QSize(810, 570));
}

TEST_F(ScatterPlotTest, FrameTogglesBorderAndProperties) {
    chart.ShowLabels();
    EXPECT_TRUE(Engine().Series(0).LabelsVisible());
    chart.HideLabels();
    EXPECT_FALSE(Engine().Series(0).LabelsVisible());
    chart.HideAxisTitles();
    EXPECT_FALSE(Engine().Title(2).Visible() || Engine().Title(3).Visible());
    chart.ShowAxisTitles();
    EXPECT_TRUE(Engine().Title(2).Visible() && Engine().Title(3).Visible());
    chart.HideGridlines();
    EXPECT_FALSE(Engine().AxisX().GridLinesVisible() || Engine().AxisY().GridLinesVisible());
    chart.ShowLegend();
    EXPECT_TRUE(Engine().LegendVisible());

    EXPECT_EQ(Engine().Widget()->geometry(), QRect(5, 5, 810, 570));
    const QRgb border = chart.palette().color(QPalette::Mid).rgb();
    EXPECT_EQ(chart.grab().toImage().pixel(4, 300), border);
    EXPECT_EQ(chart.grab().toImage().pixel(815, 300), border);
    QVariantMap properties;
    chart.ReadProperties({{QStringLiteral("DrawBorder"), false}});
    EXPECT_NE(chart.grab().toImage().pixel(4, 300), border);
    chart.WriteProperties(properties);
    EXPECT_EQ(properties.value(QStringLiteral("DrawBorder")), QVariant(false));
    chart.ReadProperties({});
    EXPECT_TRUE(chart.DrawBorder());

    chart.show();
    chart.resize(8, 8);
    EXPECT_EQ(Engine().Widget()->width(), 0);
    EXPECT_TRUE(Engine().Render().isNull());
}

TEST_F(ScatterPlotTest, InitAndPrintGoThroughHostFilesAndPrinters) {
    const QString definition = dir.filePath(QStringLiteral("host.json"));
    {
        QFile file(definition);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(R"({"Content": {"Titles": [{}, {}, {"Text": "Predicted"}, {"Text": "Observed"}],
                       "Series": [{"Name": "Records"}, {"Name": "Line", "Type": "Line"}]}})");
    }
    chart.Init(definition);
    chart.SetData(2, std::vector<double>{1, 1.000000001}, std::vector<double>{1, 2}, ids);
    EXPECT_EQ(Engine().Title(2).Text(), QStringLiteral("Predicted (normalized)"));
    EXPECT_EQ(Engine().BackgroundColour(), QColor(255, 251, 242));
    EXPECT_CHART_ERROR(chart.Init(dir.filePath(QStringLiteral("absent.json"))), 53);

    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(dir.filePath(QStringLiteral("host.pdf")));
    chart.PrintChart2(&printer);
    QFile printed(printer.outputFileName());
    ASSERT_TRUE(printed.open(QIODevice::ReadOnly));
    EXPECT_TRUE(printed.readAll().startsWith("%PDF"));

    // The preview is modal; it has rendered its page by the time the event loop runs.
    QString preview;
    QTimer::singleShot(0, [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (dialog != nullptr) {
            preview = dialog->objectName();
            dialog->close();
        }
    });
    chart.PrintPreview();
    EXPECT_EQ(preview, QStringLiteral("dlgPrintPreview"));

    chart.SetPrintDialog(std::make_shared<PdfDialog>(QString()));
    chart.PrintChart();
    chart.SetPrintDialog(std::make_shared<PdfDialog>(dir.filePath(QStringLiteral("dialog.pdf"))));
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("dialog.pdf"))));
    chart.PrintChart();
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("dialog.pdf"))));
}

} // namespace
