#include <trv5charts/capture.h>
#include <trv5charts/colorconverter.h>
#include <trv5charts/localizationlib.h>
#include <trv5charts/rtchart.h>

#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "rtchart/seriesdrawing.h"
#include "testsupport.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <vector>

using trv5::Axis;
using trv5::ColorConverter;
using trv5::RTChart;
using trv5::Series;
using trv5::platform::DrawingSurface;

namespace {

const std::int32_t kRed = ColorConverter::RGBToLong(220, 20, 20);
const std::int32_t kBlue = ColorConverter::RGBToLong(20, 40, 220);
const std::int32_t kGreen = ColorConverter::RGBToLong(20, 160, 40);
const std::int32_t kWhite = ColorConverter::RGBToLong(255, 255, 255);
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

class ChartFixture : public ::testing::Test {
protected:
    ChartFixture() {
        chart.resize(420, 300);
        chart.SetMainYAxis(mainAxis);
        mainAxis->Init(0, 10, false);
    }
    ~ChartFixture() override {
        trv5::rtchart::SetPolylineMode(trv5::rtchart::PolylineMode::PixelColumns);
    }

    std::shared_ptr<Series> AddBulk(const std::vector<double>& pValues, std::int32_t pColour,
                                    bool pSecondary = false) {
        const auto index =
            chart.AddSeries(nullptr, pSecondary, QStringLiteral("S%1").arg(chart.SeriesCount()));
        auto series = chart.GetSeries(index);
        series->Init(static_cast<std::int32_t>(pValues.size()), 0, 1, trv5::Bulk, pSecondary);
        series->SetColour(pColour);
        chart.SetSeriesData(index, pValues);
        return series;
    }

    DrawingSurface& Pic() { return *chart.findChild<DrawingSurface*>(QStringLiteral("pic")); }
    // The colour at a data position of the main axis (or another axis' range).
    std::int32_t ColourAt(double pX, double pY, const Axis& pAxis) {
        Pic().SetScaleTop(pAxis.Maximum());
        Pic().SetScaleHeight(pAxis.Minimum() - pAxis.Maximum());
        return Pic().Point(pX, pY);
    }
    int CountColour(std::int32_t pColour) {
        const QImage& raster = Pic().Raster();
        const QRgb wanted = trv5::platform::ToQColor(pColour).rgb();
        int count = 0;
        for (int y = 0; y < raster.height(); ++y) {
            for (int x = 0; x < raster.width(); ++x) {
                count += (raster.pixel(x, y) | 0xFF000000u) == (wanted | 0xFF000000u) ? 1 : 0;
            }
        }
        return count;
    }
    // Sends a mouse move to the plot at the pixel where a data position lies.
    QString ToolTipAt(double pX, double pY, const Axis& pAxis) {
        Pic().SetScaleTop(pAxis.Maximum());
        Pic().SetScaleHeight(pAxis.Minimum() - pAxis.Maximum());
        return ToolTipAtPixel(
            QPointF(std::floor(Pic().ToPixelX(pX)), std::floor(Pic().ToPixelY(pY))));
    }
    QString ToolTipAtPixel(QPointF pPixel) {
        QMouseEvent move(QEvent::MouseMove, pPixel, Pic().mapToGlobal(pPixel), Qt::NoButton,
                         Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&Pic(), &move);
        return Pic().ToolTipText();
    }
    QList<QAction*> MainEntries() {
        return chart.findChildren<QAction*>(QStringLiteral("mnuMain"));
    }

    RTChart chart;
    std::shared_ptr<Axis> mainAxis = std::make_shared<Axis>();
};

std::vector<double> Ramp(int pCount, double pFrom, double pTo) {
    std::vector<double> values(static_cast<std::size_t>(pCount));
    for (int i = 0; i < pCount; ++i) {
        values[static_cast<std::size_t>(i)] = pFrom + (pTo - pFrom) * i / std::max(1, pCount - 1);
    }
    return values;
}

} // namespace

TEST_F(ChartFixture, SeriesLineAndMarkersLandInTheirColoursAtTheirPlaces) {
    auto secondary = std::make_shared<Axis>();
    secondary->Init(0, 100, true);
    chart.SetSecondaryYAxis(secondary);
    mainAxis->Init(-1, 11, false);
    AddBulk(Ramp(11, 0, 10), kRed);
    AddBulk(std::vector<double>(11, 30.0), kBlue, true);
    chart.AddHorizontalLine(8.0, QStringLiteral("Target"), QStringLiteral("Show Target"));
    chart.Refresh();

    EXPECT_EQ(Pic().ScaleLeft(), 0.0);
    EXPECT_EQ(Pic().ScaleWidth(), 10.0) << "point indexes 0 to Count - 1 across";
    for (int k = 0; k < 10; ++k) {
        EXPECT_EQ(ColourAt(k, k + 0.0, *mainAxis), kRed) << "point " << k;
        EXPECT_EQ(ColourAt(k + 0.5, 30, *secondary), kBlue) << "against the right axis";
    }
    EXPECT_NE(ColourAt(5, 30, *mainAxis), kBlue) << "the secondary series uses its own range";
    // The reference line is dotted, in the line colour, on the main axis.
    int onLine = 0;
    for (double x = 0; x < 10; x += 0.05) {
        onLine += ColourAt(x, 8.0, *mainAxis) == chart.LineColour() ? 1 : 0;
    }
    EXPECT_GT(onLine, 40);
    EXPECT_LT(onLine, 200) << "dotted, not solid";

    // Squares and round markers of six pixels on a non-continuous series; no line between.
    chart.SetDataType(0, trv5::NonContinuous);
    chart.SetPoint(0, trv5::ptSquare);
    chart.Refresh();
    Pic().SetScaleTop(11);
    Pic().SetScaleHeight(-12);
    const double px = Pic().ToPixelX(4);
    const double py = Pic().ToPixelY(4);
    EXPECT_EQ(Pic().Point(Pic().ToUserX(px + 2.5), Pic().ToUserY(py - 2.5)), kRed)
        << "square corner";
    EXPECT_EQ(ColourAt(4.5, 4.5, *mainAxis), kWhite) << "markers only";
    chart.SetPoint(0, trv5::ptDot);
    chart.Refresh();
    EXPECT_EQ(Pic().Point(Pic().ToUserX(px + 2), Pic().ToUserY(py)), kRed) << "a 6-pixel circle";
    EXPECT_NE(Pic().Point(Pic().ToUserX(px + 3), Pic().ToUserY(py - 3)), kRed) << "round";

    // Nothing is drawn after Clear, or without a main axis; the scale labels stay.
    chart.Clear();
    EXPECT_EQ(CountColour(kRed) + CountColour(kBlue), 0);
    EXPECT_TRUE(chart.findChild<QLabel*>(QStringLiteral("lblScale"))->isVisibleTo(&chart));
}

TEST_F(ChartFixture, AFailingSeriesEndsQuietlyAndTheNextOneIsDrawn) {
    // Its secondary axis is missing.
    AddBulk(Ramp(11, 0, 10), kBlue, true);
    // A restored drip-feed series that claims a newest point beyond its three values: it draws
    // its three points, then reading fails.
    auto restored = std::make_shared<Series>();
    restored->FromString(QStringLiteral("<series name='R' min='0' max='1' settype='0' drawsec='0' "
                                        "point='0' colour='%1' count='3' datatype='0' "
                                        "lastpoint='8'>2|2|2</series>")
                             .arg(kGreen));
    chart.AddSeries(restored);
    // A drip-feed series without points draws nothing.
    chart.GetSeries(chart.AddSeries(nullptr, false, QStringLiteral("Empty")))
        ->Init(10, 0, 1, trv5::DripFeed, false);
    chart.GetSeries(2)->SetColour(kRed);
    AddBulk(std::vector<double>(11, 6.0), kRed);
    chart.Refresh();

    EXPECT_EQ(CountColour(kBlue), 0);
    EXPECT_EQ(ColourAt(1, 2, *mainAxis), kGreen);
    EXPECT_EQ(ColourAt(2, 2, *mainAxis), kGreen);
    EXPECT_NE(ColourAt(3, 2, *mainAxis), kGreen) << "blank after the failure";
    EXPECT_NE(ColourAt(8, 2, *mainAxis), kGreen);
    EXPECT_EQ(ColourAt(7, 6, *mainAxis), kRed) << "the series after it is drawn";
    EXPECT_NE(ColourAt(3, 0.3, *mainAxis), kRed) << "the empty drip feed draws nothing";
}

namespace {

// Renders the chart with one polyline mode and returns the plot's raster.
QImage RenderWith(RTChart& pChart, trv5::rtchart::PolylineMode pMode) {
    trv5::rtchart::SetPolylineMode(pMode);
    pChart.Refresh();
    QImage image = pChart.findChild<DrawingSurface*>(QStringLiteral("pic"))->Raster().copy();
    trv5::rtchart::SetPolylineMode(trv5::rtchart::PolylineMode::PixelColumns);
    return image;
}

void ExpectSamePixels(RTChart& pChart, const char* pWhat) {
    const QImage columns = RenderWith(pChart, trv5::rtchart::PolylineMode::PixelColumns);
    const QImage segments = RenderWith(pChart, trv5::rtchart::PolylineMode::EverySegment);
    ASSERT_EQ(columns.size(), segments.size()) << pWhat;
    int differing = 0;
    int drawn = 0;
    for (int y = 0; y < columns.height(); ++y) {
        for (int x = 0; x < columns.width(); ++x) {
            differing += columns.pixel(x, y) != segments.pixel(x, y) ? 1 : 0;
            drawn += segments.pixel(x, y) != 0xFFFFFFFFu ? 1 : 0;
        }
    }
    EXPECT_EQ(differing, 0) << pWhat;
    EXPECT_GT(drawn, 100) << pWhat << ": the comparison must see lines";
}

std::vector<double> RandomWalk(std::size_t pCount, unsigned pSeed) {
    std::mt19937_64 random(pSeed);
    std::normal_distribution<double> step(0.0, 0.3);
    std::vector<double> values(pCount);
    double value = 5.0;
    for (double& v : values) {
        value = std::clamp(value + step(random), -1.0, 11.0);
        v = value;
    }
    return values;
}

} // namespace

TEST_F(ChartFixture, PixelColumnsDrawExactlyWhatEverySegmentDraws) {
    auto secondary = std::make_shared<Axis>();
    secondary->Init(-50, 150, true);
    chart.SetSecondaryYAxis(secondary);

    struct Case {
        const char* what;
        std::size_t count;
        QSize size;
        double ratio;
    };
    const Case cases[] = {
        {"more points than pixels", 20'000, QSize(420, 300), 1.0},
        {"fewer points than pixels", 57, QSize(420, 300), 1.0},
        {"about one point per pixel", 390, QSize(420, 300), 1.0},
        {"HiDPI ratio 2", 9'000, QSize(300, 200), 2.0},
        {"ratio 1.5", 3'000, QSize(333, 211), 1.5},
        {"a large chart", 200'000, QSize(1000, 600), 1.0},
    };
    for (const Case& c : cases) {
        RTChart local;
        local.resize(c.size);
        local.SetMainYAxis(mainAxis);
        local.SetSecondaryYAxis(secondary);
        local.findChild<DrawingSurface*>(QStringLiteral("pic"))
            ->SetDevicePixelRatioForTesting(c.ratio);

        // A random walk; one with spikes, gaps and values the surface cannot place; one on the
        // secondary axis; a wrapped drip-feed ring drawn to its newest point; dots on a line.
        std::vector<double> walk = RandomWalk(c.count, 1);
        std::vector<double> spiky = RandomWalk(c.count, 2);
        for (std::size_t i = 0; i < spiky.size(); ++i) {
            if (i % 97 == 3)
                spiky[i] = i % 2 == 0 ? 40.0 : -30.0;
            if (i % 61 == 7 || (i / 13) % 29 == 5)
                spiky[i] = kNaN;
            if (i % 173 == 11)
                spiky[i] = i % 2 == 0 ? kInf : -kInf;
            if (i % 251 == 19)
                spiky[i] = 1e308;
        }
        std::vector<double> right = RandomWalk(c.count, 3);
        for (double& v : right)
            v = v * 12.0 - 10.0;

        const std::int32_t colours[] = {kRed, kBlue, kGreen, 0x808000};
        const std::vector<double>* bulk[] = {&walk, &spiky, &right};
        for (int s = 0; s < 3; ++s) {
            const auto index = local.AddSeries(nullptr, s == 2, QStringLiteral("S"));
            auto series = local.GetSeries(index);
            series->Init(static_cast<std::int32_t>(c.count), 0, 1, trv5::Bulk, s == 2);
            series->SetColour(colours[s]);
            local.SetSeriesData(index, *bulk[s]);
        }
        const auto ring = local.AddSeries(nullptr, false, QStringLiteral("Ring"));
        local.GetSeries(ring)->Init(static_cast<std::int32_t>(c.count) / 2, 0, 1, trv5::DripFeed,
                                    false);
        local.GetSeries(ring)->SetColour(colours[3]);
        const std::vector<double> fed = RandomWalk(c.count * 3 / 4, 4);
        for (const double v : fed) {
            local.AddPoint(ring, v);
        }
        ExpectSamePixels(local, c.what);

        local.SetPoint(0, trv5::ptDot);
        ExpectSamePixels(local, "dots on the line");
    }
}

TEST_F(ChartFixture, ContextMenuOffersCopyAndPrintOnlyWhenAllowedAndDrivesTheLine) {
    AddBulk(Ramp(11, 1, 9), kRed);
    chart.Refresh();
    QMenu* menu = chart.findChild<QMenu*>(QStringLiteral("ctxMain"));
    ASSERT_NE(menu, nullptr);
    const QList<QAction*> entries = MainEntries();
    ASSERT_EQ(entries.size(), 4);
    EXPECT_EQ(entries[0]->text(), QStringLiteral("Copy &Chart"));
    EXPECT_EQ(entries[1]->text(), QStringLiteral("Copy Chart &Data"));
    EXPECT_TRUE(entries[2]->isSeparator());
    EXPECT_EQ(entries[3]->text(), QStringLiteral("Print"));
    QAction* showLine = chart.findChild<QAction*>(QStringLiteral("mnuShowLine"));
    QAction* separator = chart.findChild<QAction*>(QStringLiteral("sepShowLine"));
    EXPECT_FALSE(showLine->isVisible());
    EXPECT_FALSE(separator->isVisible());

    const auto open = [&](QContextMenuEvent::Reason pReason) {
        const QPoint at(30, 30);
        QContextMenuEvent event(pReason, at, Pic().mapToGlobal(at));
        QApplication::sendEvent(&Pic(), &event);
        const bool shown = menu->isVisible();
        menu->hide();
        return shown;
    };
    chart.SetShowCopyPrint(false);
    EXPECT_TRUE(open(QContextMenuEvent::Mouse)) << "the menu still opens";
    EXPECT_FALSE(entries[0]->isEnabled());
    EXPECT_FALSE(entries[1]->isEnabled());
    EXPECT_FALSE(entries[3]->isEnabled());
    chart.SetShowCopyPrint(true);
    EXPECT_TRUE(open(QContextMenuEvent::Keyboard));
    EXPECT_TRUE(entries[0]->isEnabled() && entries[1]->isEnabled() && entries[3]->isEnabled());

    // The line entry appears with the host's caption and switches line and legend.
    chart.AddHorizontalLine(5.0, QStringLiteral("Goal"), QStringLiteral("Show &Goal"));
    chart.Refresh();
    EXPECT_TRUE(showLine->isVisible() && separator->isVisible() && showLine->isChecked());
    EXPECT_EQ(showLine->text(), QStringLiteral("Show &Goal"));
    EXPECT_GT(CountColour(chart.LineColour()), 20);
    showLine->trigger(); // as the user choosing it
    EXPECT_FALSE(chart.LineShown());
    EXPECT_FALSE(chart.IsLineLegendVisible());
    EXPECT_EQ(CountColour(chart.LineColour()), 0) << "redrawn without the line";
    chart.ToggleHorizontalLine();
    EXPECT_TRUE(showLine->isChecked() && chart.LineShown());
    chart.StopAddingHorizontalLine();
    EXPECT_FALSE(showLine->isVisible() || separator->isVisible());

    // Copy data puts the export text on the clipboard.
    chart.SetShowCopyPrint(true);
    QApplication::clipboard()->setText(QStringLiteral("stale"));
    entries[1]->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), chart.GetChartDataAsString());
}

TEST_F(ChartFixture, ToolTipsNameThePointOrTheLineUnderThePointer) {
    AddBulk(std::vector<double>(21, 3.0), kRed);
    auto second = AddBulk(std::vector<double>(21, 7.0), kBlue);
    second->SetName(QStringLiteral("Average"));
    chart.AddHorizontalLine(5.5, QStringLiteral("Target"), QStringLiteral("Show Target"));
    chart.Refresh();

    EXPECT_EQ(ToolTipAt(10, 3, *mainAxis), QString()) << "tooltips are off by default";
    chart.SetShowRecordsOnToolTip(true);
    trv5::test::ScopedLocale german(trv5::test::German());
    EXPECT_EQ(ToolTipAt(10, 8.7, *mainAxis), QStringLiteral("Points 1 to 21"));
    EXPECT_EQ(ToolTipAt(12, 7, *mainAxis), QStringLiteral("Average, Point 12 (7)"));
    EXPECT_EQ(ToolTipAt(12.4, 3, *mainAxis), QStringLiteral("S0, Point 12 (3)")) << "nearest point";
    EXPECT_EQ(ToolTipAt(12.6, 3, *mainAxis), QStringLiteral("S0, Point 13 (3)"));
    // The dotted line: find one of its pixels in the row of its value.
    QString lineTip;
    for (double x = 1; x < 3 && lineTip.isEmpty(); x += 0.02) {
        if (ColourAt(x, 5.5, *mainAxis) == chart.LineColour()) {
            lineTip = ToolTipAt(x, 5.5, *mainAxis);
        }
    }
    EXPECT_EQ(lineTip, QStringLiteral("Target: 5,5"));

    // Record indexes name the record; original values beside standardized ones give both.
    std::vector<std::int32_t> records(21);
    for (int i = 0; i < 21; ++i) {
        records[static_cast<std::size_t>(i)] = 1000 + i;
    }
    chart.SetSeriesData2(0, std::vector<double>(21, 3.25), records);
    chart.Refresh();
    EXPECT_EQ(ToolTipAt(4, 3.25, *mainAxis), QStringLiteral("S0, Point 1004 (3,25)"));
    std::vector<double> model(21, 2e8);
    model[4] = 3e8;
    chart.SetSeriesDataWithReplacement(model, std::vector<double>(21, 1.0), records, nullptr);
    mainAxis->Init(-5, 5, false);
    chart.Refresh();
    const double shown = second->GetValue(4);
    EXPECT_EQ(ToolTipAt(4, shown, *mainAxis),
              QStringLiteral("Average, Point 5 (300000000: %1)")
                  .arg(trv5::LocalizationLib::DoubleToUserText(shown)));
}

TEST_F(ChartFixture, CopiesAndPrintsThePictureOfTheChart) {
    AddBulk(Ramp(11, 1, 9), kRed);
    chart.Refresh();
    QApplication::clipboard()->clear();
    chart.EditCopy();
    const QImage copied = QApplication::clipboard()->image();
    EXPECT_EQ(copied.size(), chart.size() * chart.devicePixelRatio());

    class AnswerToPdf final : public trv5::IPrintDialog {
    public:
        explicit AnswerToPdf(QString pFile) : file(std::move(pFile)) {}
        bool Exec(trv5::PrintSettings& pSettings) override {
            pSettings.outputFile = file;
            return true;
        }
        QString file;
    };
    QTemporaryDir dir;
    const QString pdf = dir.filePath(QStringLiteral("chart.pdf"));
    chart.SetPrintDialog(std::make_shared<AnswerToPdf>(pdf));
    MainEntries()[3]->trigger();
    QFile file(pdf);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    EXPECT_TRUE(bytes.startsWith("%PDF"));
    EXPECT_TRUE(bytes.contains("/Image")) << "the chart's picture is on the page";

    // A file that cannot be written is reported with its name; the chart shows nothing itself.
    QStringList failures;
    QObject::connect(&chart, &RTChart::PrintFailed,
                     [&](const QString& pMessage) { failures << pMessage; });
    const QString unwritable = dir.filePath(QStringLiteral("no/such/folder/chart.pdf"));
    chart.SetPrintDialog(std::make_shared<AnswerToPdf>(unwritable));
    MainEntries()[3]->trigger();
    ASSERT_EQ(failures.size(), 1);
    EXPECT_TRUE(failures.front().contains(unwritable)) << failures.front().toStdString();
}

TEST_F(ChartFixture, LayoutKeepsLabelsBesideThePlotAtEverySize) {
    auto secondary = std::make_shared<Axis>();
    secondary->Init(0, 50, true);
    AddBulk(RandomWalk(300, 5), kRed);
    chart.SetShowXAxis(true);
    chart.AddHorizontalLine(5, QStringLiteral("Line"), QStringLiteral("Show Line"));
    const auto visibleLabels = [&] {
        QList<QLabel*> shown;
        for (QLabel* label : chart.findChildren<QLabel*>()) {
            if (label->isVisibleTo(&chart) && !label->geometry().isEmpty()) {
                shown << label;
            }
        }
        return shown;
    };
    const auto labelled = [&](const QString& pName) {
        int count = 0;
        for (QLabel* label : visibleLabels()) {
            count += label->objectName() == pName ? 1 : 0;
        }
        return count;
    };
    chart.Refresh();
    EXPECT_EQ(labelled(QStringLiteral("lblScale")), 1) << "no secondary axis, no right labels";
    chart.SetSecondaryYAxis(secondary);
    chart.Refresh();
    EXPECT_EQ(labelled(QStringLiteral("lblScale")), 2);
    EXPECT_EQ(labelled(QStringLiteral("lblOrigin")), 2);
    EXPECT_GT(labelled(QStringLiteral("lblTick")), 4) << "values and point numbers";
    QLabel* legend = chart.findChild<QLabel*>(QStringLiteral("lblLegend"));
    EXPECT_EQ(legend->palette().color(QPalette::WindowText), trv5::platform::ToQColor(kRed));

    for (const QSize size : {QSize(420, 300), QSize(160, 90), QSize(60, 40), QSize(12, 7),
                             QSize(1, 1), QSize(0, 0), QSize(0, 300), QSize(500, 0)}) {
        chart.resize(size);
        chart.Refresh();
        const QRect plot = Pic().geometry();
        EXPECT_GE(plot.width(), 0);
        EXPECT_GE(plot.height(), 0);
        EXPECT_TRUE(QRect(QPoint(0, 0), size).contains(plot) || plot.isEmpty()) << size.width();
        for (QLabel* label : visibleLabels()) {
            EXPECT_FALSE(label->geometry().intersects(plot))
                << label->objectName().toStdString() << " over the plot at " << size.width() << "x"
                << size.height();
            EXPECT_TRUE(QRect(QPoint(0, 0), size).contains(label->geometry()))
                << label->objectName().toStdString() << " outside at " << size.width() << "x"
                << size.height();
        }
        const QPointF middle(plot.width() / 2.0, plot.height() / 2.0);
        (void)ToolTipAtPixel(middle); // no crash on any size
    }
}

TEST_F(ChartFixture, PointNumbersFollowTheGenerationsOfTheExportedRows) {
    const auto index = chart.AddSeries(nullptr, false, QStringLiteral("Best"));
    auto series = chart.GetSeries(index);
    series->Init(250, 0, 1, trv5::DripFeed, false);
    series->SetColour(kRed);
    for (int g = 0; g < 250; ++g) {
        chart.AddPoint(index, 5.0 + std::sin(g / 10.0));
    }
    chart.SetShowXAxis(true);
    chart.resize(600, 300);
    // Point numbers with their horizontal centres, in the order they stand.
    const auto pointNumbers = [&] {
        chart.Refresh();
        std::vector<std::pair<int, int>> numbers;
        const int plotBottom = Pic().geometry().bottom();
        for (QLabel* label : chart.findChildren<QLabel*>(QStringLiteral("lblTick"))) {
            if (label->isVisibleTo(&chart) && label->geometry().top() > plotBottom) {
                numbers.emplace_back(label->text().toInt(), label->geometry().center().x());
            }
        }
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    };
    const auto unnumbered = pointNumbers();
    ASSERT_GE(unnumbered.size(), 3U);
    EXPECT_EQ(unnumbered.front().first, 0) << "without a generation the points are numbered";

    chart.SetLastGenerationForCopy(250);
    const QStringList rows = chart.GetChartDataAsString().split(QStringLiteral("\r\n"));
    ASSERT_GT(rows.size(), 2);
    EXPECT_TRUE(rows[1].startsWith(QStringLiteral("1\t"))) << rows[1].toStdString();
    const auto generations = pointNumbers();
    ASSERT_GE(generations.size(), 3U);
    const QRect plot = Pic().geometry();
    for (const auto& [number, centre] : generations) {
        EXPECT_GE(number, 1);
        EXPECT_LE(number, 250);
        // Generation n is the point with index n - 1, as in the exported rows.
        const double expected = plot.left() + (number - 1) / 249.0 * plot.width();
        EXPECT_NEAR(centre, expected, 2.0) << number;
    }
    const int step = generations[1].first - generations[0].first;
    ASSERT_GT(step, 0);
    for (const auto& entry : generations) {
        EXPECT_EQ(entry.first % step, 0) << "round generation numbers, not 1, 51, 101";
    }
}
