#include "platform/chartengine.h"

#include "testsupport.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QMouseEvent>
#include <QPrinter>
#include <QTemporaryDir>
#include <QWidget>

#include <cmath>
#include <limits>
#include <random>

namespace {

using trv5::platform::ChartEngine;

class ChartEngineTest : public ::testing::Test {
protected:
    ChartEngineTest() {
        parent.resize(600, 400);
        engine.Widget()->setGeometry(0, 0, 600, 400);
    }

    QString Write(const QByteArray& pJson) {
        const QString path = dir.filePath(QStringLiteral("definition%1.json").arg(++files));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(pJson);
        return path;
    }

    // The error of loading pJson: its number and whether its description names the file and
    // contains pProblem.
    void ExpectContentError(const QByteArray& pJson, int pNumber, const QString& pProblem) {
        const QString path = Write(pJson);
        try {
            engine.LoadContent(path);
            ADD_FAILURE() << "no error for " << pJson.toStdString();
        } catch (const trv5::ChartError& error) {
            EXPECT_EQ(error.number(), pNumber) << error.what();
            EXPECT_TRUE(error.description().contains(path)) << error.what();
            EXPECT_TRUE(error.description().contains(pProblem)) << error.what();
        }
    }

    QTemporaryDir dir;
    int files = 0;
    QWidget parent;
    ChartEngine engine{&parent};
};

TEST_F(ChartEngineTest, BadDefinitionFilesSayWhatIsWrongAndChangeNothing) {
    engine.LoadContent(QStringLiteral(":/trv5charts/scatterplot.json"));
    EXPECT_CHART_ERROR(engine.LoadContent(dir.filePath(QStringLiteral("missing.json"))), 53);
    ExpectContentError(R"({"Content": {"Titles": [)", 5, QStringLiteral("offset"));
    ExpectContentError(R"([1, 2])", 5, QStringLiteral("JSON object"));
    ExpectContentError(R"({"Palette": {}})", 5, QStringLiteral("\"Content\" is missing"));
    ExpectContentError(R"({"Content": {"Series": [{}, {"Marker": {"Size": "big"}}]}})", 13,
                       QStringLiteral("Content.Series[1].Marker.Size must be a number"));
    ExpectContentError(R"({"Content": {"Titles": [{"Docking": "Middle"}]}})", 5,
                       QStringLiteral("Left, Top, Right, Bottom"));
    ExpectContentError(R"({"Content": {"Series": [{"Color": "red"}]}})", 5,
                       QStringLiteral("#RRGGBB"));
    ExpectContentError(R"({"Content": {"Titles": [{"FontSize": 0}]}})", 6,
                       QStringLiteral("Content.Titles[0].FontSize"));
    ExpectContentError(R"({"Content": {"Legend": true}})", 13,
                       QStringLiteral("Content.Legend must be an object"));
    QByteArray manySeries = R"({"Content": {"Series": [{})";
    for (int i = 0; i < 64; ++i) {
        manySeries += ", {}";
    }
    ExpectContentError(manySeries + "]}}", 6, QStringLiteral("at most 64"));
    EXPECT_CHART_ERROR(engine.LoadPalette(Write(R"({"Palette": {"Series": []}})")), 5);

    ASSERT_EQ(engine.SeriesCount(), 2);
    EXPECT_EQ(engine.Series(1).Name(), QStringLiteral("Regression Line"));
    EXPECT_EQ(engine.Title(3).Text(), QStringLiteral("Target"));
}

TEST_F(ChartEngineTest, TheDefaultDefinitionsHoldTheSeriesTheChartsAddress) {
    engine.LoadContent(QStringLiteral(":/trv5charts/curvefitting.json"));
    EXPECT_EQ(engine.Series(0).Name(), QStringLiteral("Target"));
    EXPECT_EQ(engine.Series(1).Name(), QStringLiteral("Model"));
    EXPECT_EQ(engine.Series(2).DashPattern(), (std::vector<double>{5.0, 3.0}));
    for (const char16_t* name : {u"Cutoff Point", u"Misclassifications", u"Misclassifications2"}) {
        EXPECT_NE(engine.FindSeries(name), nullptr) << QString::fromUtf16(name).toStdString();
    }
    engine.LoadContent(QStringLiteral(":/trv5charts/clscatterplot.json"));
    ASSERT_EQ(engine.SeriesCount(), 5);
    EXPECT_EQ(engine.Series(3).Name(), QStringLiteral("False Positives"));
    EXPECT_EQ(engine.Series(4).Name(), QStringLiteral("Cutoff Point"));
    engine.LoadContent(QStringLiteral(":/trv5charts/stackeddistribution.json"));
    EXPECT_EQ(engine.Series(1).Name(), QStringLiteral("Target"));
    EXPECT_FALSE(engine.AxisY().AutoRange());
    EXPECT_EQ(engine.AxisY().MaxValue(), 100.0);
    EXPECT_EQ(engine.TitleCount(), 4);
    engine.LoadPalette(QStringLiteral(":/trv5charts/stackeddistribution.json"));

    engine.ClearContent();
    EXPECT_EQ(engine.SeriesCount(), 0);
    EXPECT_EQ(engine.TitleCount(), 4);
    EXPECT_CHART_ERROR(engine.Series(0), 9);
    EXPECT_TRUE(engine.Render().size() == QSize(600, 400));
}

TEST_F(ChartEngineTest, PaletteAndOwnColoursShowInThePixels) {
    const QString path = Write(R"({
      "Content": {
        "Series": [{"Marker": {"Shape": "Square", "Size": 16}}, {"Marker": {"Shape": "Square", "Size": 16}}],
        "Diagram": {"AxisX": {"GridLines": false, "Range": {"AutoRange": false, "MinValue": 0, "MaxValue": 4}},
                    "AxisY": {"GridLines": false, "Range": {"AutoRange": false, "MinValue": 0, "MaxValue": 4}}}
      },
      "Palette": {"Series": ["#00C000", "#C00000"], "Background": "#102030", "DiagramBackground": "#405060"}
    })");
    engine.LoadContent(path);
    engine.LoadPalette(path);
    engine.Series(0).AddPoint(1.0, 1.0);
    engine.Series(1).AddPoint(3.0, 3.0);
    QImage image = engine.Render();
    const auto pixel = [&](QPointF pAt) {
        return image.pixelColor(pAt.toPoint());
    };
    EXPECT_EQ(image.pixelColor(1, 1), QColor(0x10, 0x20, 0x30));
    EXPECT_EQ(pixel((engine.PointPosition(0, 0) + engine.PointPosition(1, 0)) / 2.0),
              QColor(0x40, 0x50, 0x60));
    EXPECT_EQ(pixel(engine.PointPosition(0, 0)), QColor(0x00, 0xC0, 0x00));
    EXPECT_EQ(pixel(engine.PointPosition(1, 0)), QColor(0xC0, 0x00, 0x00));

    engine.Series(1).SetColour(QColor(0, 0, 255));
    engine.SetDiagramBackgroundColour(QColor(255, 251, 242));
    image = engine.Render();
    EXPECT_EQ(pixel(engine.PointPosition(1, 0)), QColor(0, 0, 255));
    EXPECT_EQ(pixel(engine.PointPosition(0, 0) + QPointF(30, 0)), QColor(255, 251, 242));
}

TEST_F(ChartEngineTest, TooltipsFindTheNearestPointThroughTheSortedData) {
    engine.LoadContent(QStringLiteral(":/trv5charts/scatterplot.json"));
    trv5::platform::ChartSeries& points = engine.Series(0);
    const double arguments[] = {5, 1, 9, std::numeric_limits<double>::quiet_NaN(), 3, 7, 2};
    for (int i = 0; i < 7; ++i) {
        points.AddPoint(arguments[i], (i * 3) % 7, QStringLiteral("P%1").arg(i));
    }
    engine.Render();
    for (int i = 0; i < 7; ++i) {
        if (i == 3) {
            EXPECT_TRUE(std::isnan(engine.PointPosition(0, i).x())) << "kept but not drawn";
            continue;
        }
        const QPointF at = engine.PointPosition(0, i);
        EXPECT_EQ(engine.TooltipAt(at + QPointF(2, -2)), QStringLiteral("P%1").arg(i));
    }
    EXPECT_EQ(points.PointCount(), 7);
    EXPECT_EQ(engine.TooltipAt(engine.PointPosition(0, 0) + QPointF(0, 25)), QString());

    // A point of a later series on top of another wins, unless it is hidden.
    engine.Series(1).AddPoint(5, 0, QStringLiteral("line"));
    engine.Series(1).AddPoint(9, 6);
    engine.Render();
    EXPECT_EQ(engine.TooltipAt(engine.PointPosition(0, 0)), QStringLiteral("line"));
    engine.Series(1).SetVisible(false);
    EXPECT_EQ(engine.TooltipAt(engine.PointPosition(0, 0)), QStringLiteral("P0"));

    // The same look-up over a dense cloud: the point found is one drawn under the mouse.
    std::mt19937 random(7);
    std::normal_distribution<double> normal(0.0, 1.0);
    std::vector<double> x(100'000);
    std::vector<double> y(100'000);
    for (std::size_t i = 0; i < x.size(); ++i) {
        x[i] = normal(random);
        y[i] = x[i] + normal(random) * 0.3;
    }
    points.SetPoints(x, y);
    engine.Render();
    for (int probe : {17, 40'000, 99'999}) {
        const QPointF at = engine.PointPosition(0, probe);
        const auto hit = engine.HitTest(at);
        ASSERT_TRUE(hit.has_value());
        const QPointF found = engine.PointPosition(hit->series, hit->index);
        EXPECT_LT(std::hypot(found.x() - at.x(), found.y() - at.y()), 0.5);
    }
}

TEST_F(ChartEngineTest, LabelsAreDrawnOnlyWhenShownInViewAndWithoutOverlap) {
    engine.LoadContent(QStringLiteral(":/trv5charts/scatterplot.json"));
    trv5::platform::ChartSeries& points = engine.Series(0);
    for (int i = 0; i < 2000; ++i) {
        points.AddPoint(i, i, QStringLiteral("Record %1").arg(i));
    }
    engine.Render();
    EXPECT_EQ(engine.LabelsDrawn(), 0);
    points.SetLabelsVisible(true);
    engine.Render();
    EXPECT_GT(engine.LabelsDrawn(), 10);
    EXPECT_LT(engine.LabelsDrawn(), 200) << "overlapping labels must be left out";
    engine.AxisX().SetAutoRange(false);
    engine.AxisX().SetMinValue(5000);
    engine.AxisX().SetMaxValue(6000);
    engine.Render();
    EXPECT_EQ(engine.LabelsDrawn(), 0);

    points.SetLabelFormat(trv5::platform::LabelFormat::ArgumentAndValue);
    engine.SetLabelNumberFormat([](double pValue) { return QStringLiteral("#%1").arg(pValue); });
    EXPECT_EQ(points.Label(12), QStringLiteral("#12; #12"));
    EXPECT_EQ(points.Tooltip(12), QStringLiteral("Record 12"));
}

TEST_F(ChartEngineTest, TitlesTakeRoomOnlyWhenShownAtTheirEdge) {
    engine.LoadContent(QStringLiteral(":/trv5charts/scatterplot.json"));
    engine.Series(0).AddPoint(0, 0);
    engine.Series(0).AddPoint(1, 1);
    const auto corner = [&] {
        engine.Render();
        return engine.PointPosition(0, 1); // the top right point
    };
    const QPointF start = corner();
    engine.Title(0).SetText(QStringLiteral("y = 1x + 0\r\nRS = 1"));
    const QPointF twoLines = corner();
    EXPECT_GT(twoLines.y(), start.y() + 15) << "two lines of an equation push the plot down";
    engine.Title(0).SetVisible(false);
    EXPECT_EQ(corner(), start);
    engine.Title(3).SetDocking(trv5::platform::Docking::Right);
    const QPointF captionRight = corner();
    EXPECT_LT(captionRight.x(), start.x()) << "the vertical caption moved to the right edge";
    engine.Title(3).SetVisible(false);
    EXPECT_GT(corner().x(), captionRight.x());
}

// A long series name is cut in the legend, which would otherwise cover the plot, but the
// series keeps it whole; a short one is shown as it is, and a wider chart shows more of it.
TEST_F(ChartEngineTest, LegendCutsLongNamesToAThirdOfThePlot) {
    engine.LoadContent(Write(R"({"Content": {"Series": [{"Name": "Short", "ShowInLegend": true}],
                                                "Legend": {"Visible": true}}})"));
    engine.Series(0).AddPoint(0, 0);
    engine.Render();
    const int shortWidth = engine.LegendRect().width();
    ASSERT_GT(shortWidth, 0);

    const QString longName = QStringLiteral("A very long series name ").repeated(40);
    engine.Series(0).SetName(longName);
    engine.Render();
    const int narrow = engine.LegendRect().width();
    EXPECT_GT(narrow, shortWidth);
    // The name's third of the plot, plus the legend's icon and margins.
    EXPECT_LE(narrow, 600 / 3 + shortWidth);
    EXPECT_EQ(engine.Series(0).Name(), longName);

    engine.Widget()->setGeometry(0, 0, 1200, 400);
    engine.Render();
    EXPECT_GT(engine.LegendRect().width(), narrow + 100);
    EXPECT_LE(engine.LegendRect().width(), 1200 / 3 + shortWidth);
}

TEST_F(ChartEngineTest, AxesFitTheVisibleDataOrShowTheirFixedRange) {
    engine.LoadContent(QStringLiteral(":/trv5charts/scatterplot.json"));
    engine.Series(0).AddPoint(-3, 10);
    engine.Series(0).AddPoint(7, 20);
    engine.Series(1).AddPoint(100, 1000);
    engine.Series(1).SetVisible(false);
    engine.Render();
    EXPECT_LT(engine.AxisX().VisibleMinimum(), -3.0);
    EXPECT_GT(engine.AxisX().VisibleMaximum(), 7.0);
    EXPECT_LT(engine.AxisY().VisibleMaximum(), 1000.0) << "hidden series do not widen the range";

    engine.AxisY().SetAutoRange(false);
    engine.AxisY().SetMinValue(0);
    engine.AxisY().SetMaxValue(50);
    engine.Render();
    EXPECT_EQ(engine.AxisY().VisibleMinimum(), 0.0);
    EXPECT_EQ(engine.AxisY().VisibleMaximum(), 50.0);
    engine.AxisY().SetMinValue(60);
    engine.Render();
    EXPECT_EQ(engine.AxisY().VisibleMaximum(), 50.0) << "an unusable range changes nothing";

    // A dense cloud is sampled by the plot; a point exactly on the range's bound still shows.
    std::vector<double> x(40'000);
    std::vector<double> y(40'000);
    for (std::size_t i = 0; i < x.size(); ++i) {
        x[i] = static_cast<double>(i % 500);
        y[i] = static_cast<double>((i * 7919) % 1000) / 2000.0;
    }
    y[20'250] = 1.0;
    engine.Series(0).SetPoints(x, y);
    engine.AxisX().SetMinValue(0);
    engine.AxisX().SetMaxValue(499);
    engine.AxisY().SetMinValue(0);
    engine.AxisY().SetMaxValue(1);
    const QImage dense = engine.Render();
    const QPoint top = engine.PointPosition(0, 20'250).toPoint() + QPoint(0, 1);
    EXPECT_EQ(dense.pixelColor(top), engine.Series(0).Colour());

    EXPECT_CHART_ERROR(engine.AxisX().SetLabelAngle(120), 5);
    EXPECT_CHART_ERROR(engine.Series(0).SetMarkerSize(-1), 5);
    EXPECT_CHART_ERROR(engine.Series(0).SetPoints({1.0}, {}), 5);
    EXPECT_CHART_ERROR(engine.Series(0).Tooltip(40'000), 9);
    EXPECT_CHART_ERROR(engine.Title(4), 9);
}

TEST_F(ChartEngineTest, PrintsIntoARealPdfAndReportsAPrinterThatCannotStart) {
    engine.LoadContent(QStringLiteral(":/trv5charts/scatterplot.json"));
    engine.Title(1).SetText(QStringLiteral("Points 1 to 2"));
    engine.Series(0).AddPoint(1, 2);
    engine.Series(0).AddPoint(2, 3);
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    const QString path = dir.filePath(QStringLiteral("chart.pdf"));
    printer.setOutputFileName(path);
    engine.Print(printer);
    QFile pdf(path);
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    const QByteArray bytes = pdf.readAll();
    EXPECT_TRUE(bytes.startsWith("%PDF"));
    EXPECT_GT(bytes.size(), 2000);

    QPrinter broken(QPrinter::HighResolution);
    broken.setOutputFormat(QPrinter::PdfFormat);
    broken.setOutputFileName(dir.filePath(QStringLiteral("no/such/dir/chart.pdf")));
    EXPECT_CHART_ERROR(engine.Print(broken), 482);
}

// The part of a page the chart drew on: the bounding box of pixels that are not the page's white.
QRect DrawnArea(const QImage& pPage) {
    QRect drawn;
    for (int y = 0; y < pPage.height(); ++y) {
        for (int x = 0; x < pPage.width(); ++x) {
            if ((pPage.pixel(x, y) | 0xFF000000U) != 0xFFFFFFFFU) {
                drawn |= QRect(x, y, 1, 1);
            }
        }
    }
    return drawn;
}

TEST_F(ChartEngineTest, PrintsAtTheTopLeftAtScreenSizeOrShrunkToThePage) {
    engine.LoadContent(QStringLiteral(":/trv5charts/scatterplot.json"));
    engine.SetBackgroundColour(Qt::lightGray);
    engine.Series(0).AddPoint(1, 2);
    engine.Series(0).AddPoint(2, 3);
    const auto printedArea = [&](QSize pPage) {
        QImage page(pPage, QImage::Format_RGB32);
        page.fill(Qt::white);
        engine.Print(page);
        return DrawnArea(page);
    };
    // A page of the screen's resolution with room to spare: the chart keeps its 600 x 400.
    const QRect natural = printedArea(QSize(1000, 900));
    EXPECT_EQ(natural.topLeft(), QPoint(0, 0));
    EXPECT_NEAR(natural.width(), 600, 2);
    EXPECT_NEAR(natural.height(), 400, 2);
    // A page too narrow: shrunk to its width, proportions kept.
    const QRect shrunk = printedArea(QSize(300, 900));
    EXPECT_EQ(shrunk.topLeft(), QPoint(0, 0));
    EXPECT_NEAR(shrunk.width(), 300, 2);
    EXPECT_NEAR(shrunk.height(), 200, 2);
}

TEST_F(ChartEngineTest, MousePressesArriveAsButtonShiftAndPosition) {
    std::vector<int> received;
    QObject::connect(
        &engine, &ChartEngine::MouseDown,
        [&](std::int32_t pButton, std::int32_t pShift, std::int16_t pX, std::int16_t pY) {
            received = {pButton, pShift, pX, pY};
        });
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(12, 34), QPointF(12, 34), Qt::RightButton,
                      Qt::RightButton, Qt::ShiftModifier | Qt::AltModifier);
    QCoreApplication::sendEvent(engine.Widget(), &press);
    EXPECT_EQ(received, (std::vector<int>{2, 5, 12, 34}));
}

} // namespace
