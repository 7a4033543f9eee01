// A live run redraws only the columns its new points reach; the picture must be the one a full
// redraw of the same state gives, and nothing is redrawn that has not changed.
#include <trv5charts/colorconverter.h>
#include <trv5charts/rtchart.h>

#include "platform/drawingsurface.h"
#include "rtchart/plotframe.h"
#include "testsupport.h"

#include <QApplication>
#include <QLabel>
#include <QPaintEvent>
#include <QResizeEvent>

#include <limits>
#include <memory>
#include <random>
#include <vector>

using trv5::Axis;
using trv5::RTChart;
using trv5::Series;
using trv5::platform::DrawingSurface;

namespace {

DrawingSurface& PicOf(RTChart& pChart) {
    return *pChart.findChild<DrawingSurface*>(QStringLiteral("pic"));
}

// A chart in the same state as pChart, drawn from scratch: the same axes and series objects,
// the same size, ratio and reference line.
QImage FullRedrawOf(RTChart& pChart, double pRatio) {
    RTChart fresh;
    fresh.resize(pChart.size());
    PicOf(fresh).SetDevicePixelRatioForTesting(pRatio);
    fresh.SetShowXAxis(pChart.ShowXAxis());
    fresh.SetMainYAxis(pChart.MainYAxis());
    fresh.SetSecondaryYAxis(pChart.SecondaryYAxis());
    for (std::int32_t i = 0; i < pChart.SeriesCount(); ++i) {
        fresh.AddSeries(pChart.GetSeries(i));
    }
    // Marks the data as changed, as feeding it did, without changing it.
    fresh.SetPoint(0, pChart.GetSeries(0)->Point());
    if (pChart.IsLineMenuVisible()) {
        fresh.AddHorizontalLine(pChart.LineValue(), pChart.LineLegendText(),
                                pChart.LineMenuCaption());
        if (!pChart.IsLineMenuChecked()) {
            fresh.ToggleHorizontalLine();
        }
    }
    fresh.Refresh();
    return PicOf(fresh).Raster().copy();
}

// Where two pictures first differ, for the failure message.
QString FirstDifference(const QImage& pA, const QImage& pB) {
    if (pA.size() != pB.size()) {
        return QStringLiteral("sizes differ");
    }
    for (int y = 0; y < pA.height(); ++y) {
        for (int x = 0; x < pA.width(); ++x) {
            if (pA.pixel(x, y) != pB.pixel(x, y)) {
                return QStringLiteral("pixel (%1, %2): %3 against %4")
                    .arg(x)
                    .arg(y)
                    .arg(pA.pixel(x, y), 0, 16)
                    .arg(pB.pixel(x, y), 0, 16);
            }
        }
    }
    return {};
}

struct RunCase {
    const char* what;
    QSize size;
    double ratio;
    unsigned seed;
    int generations;
};

} // namespace

// Random runs: drip-feed rings of several sizes (some wrap, one is wider than series 0 and runs
// off the plot), lines and markers of every shape, both axes, values beyond the axes and NaN,
// a bulk series that stays as it is, and the reference line shown, moved and switched off and on.
// After every generation the picture must equal a fresh chart's full redraw of the same state.
TEST(RTChartIncremental, EveryGenerationLooksLikeAFullRedraw) {
    const RunCase cases[] = {
        {"small chart", QSize(300, 200), 1.0, 1, 260},
        {"more points than pixels", QSize(240, 180), 1.0, 2, 420},
        {"HiDPI ratio 2", QSize(260, 190), 2.0, 3, 220},
        {"ratio 1.5", QSize(333, 211), 1.5, 4, 220},
    };
    const std::uint64_t bandsBefore = trv5::rtchart::Redraws().band;
    for (const RunCase& c : cases) {
        std::mt19937 random(c.seed);
        std::uniform_real_distribution<double> unit(0.0, 1.0);
        RTChart chart;
        chart.resize(c.size);
        PicOf(chart).SetDevicePixelRatioForTesting(c.ratio);
        chart.SetShowXAxis(c.seed % 2 == 0);
        auto main = std::make_shared<Axis>();
        main->Init(-0.1, 1.1, false);
        auto secondary = std::make_shared<Axis>();
        secondary->Init(-50, 150, true);
        chart.SetMainYAxis(main);
        chart.SetSecondaryYAxis(secondary);

        struct Fed {
            std::int32_t capacity;
            trv5::XSeriesDataType type;
            trv5::PointType point;
            bool secondary;
        };
        const std::int32_t width = c.size.width();
        const Fed fed[] = {
            {c.generations > 300 ? width * 3 : width / 2, trv5::Continuous, trv5::ptSquare, false},
            {width / 3, trv5::Continuous, trv5::ptDot, false},
            {90, trv5::NonContinuous, trv5::ptSquare, false},
            {width / 2, trv5::Continuous, trv5::ptRound, true},
            {width, trv5::Continuous, trv5::ptSquare, false},
            {width / 4, trv5::NonContinuous, trv5::ptDot, true},
        };
        std::vector<double> level(std::size(fed), 0.5);
        for (std::size_t s = 0; s < std::size(fed); ++s) {
            const auto index = chart.AddSeries(nullptr, fed[s].secondary, QStringLiteral("F"));
            auto series = chart.GetSeries(index);
            series->Init(fed[s].capacity, 0, 1, trv5::DripFeed, fed[s].secondary);
            series->SetColour(trv5::ColorConverter::RGBToLong(static_cast<int>(40 * s), 90,
                                                              static_cast<int>(250 - 40 * s)));
            chart.SetDataType(index, fed[s].type);
            chart.SetPoint(index, fed[s].point);
        }
        const auto bulk = chart.AddSeries(nullptr, false, QStringLiteral("Bulk"));
        chart.GetSeries(bulk)->Init(40, 0, 1, trv5::Bulk, false);
        chart.GetSeries(bulk)->SetColour(0x008080);
        std::vector<double> bulkValues(40);
        for (double& v : bulkValues) {
            v = unit(random);
        }
        chart.SetSeriesData(bulk, bulkValues);
        chart.AddHorizontalLine(0.7, QStringLiteral("Target"), QStringLiteral("Show Target"));

        int mismatches = 0;
        for (int g = 0; g < c.generations && mismatches < 3; ++g) {
            for (std::size_t s = 0; s < std::size(fed); ++s) {
                level[s] = std::clamp(level[s] + (unit(random) - 0.5) * 0.12, -0.2, 1.2);
                double value = fed[s].secondary ? level[s] * 200 - 50 : level[s];
                const double roll = unit(random);
                if (roll < 0.01) {
                    value = std::numeric_limits<double>::quiet_NaN();
                } else if (roll < 0.03) {
                    value = roll < 0.02 ? 40.0 : -1e7;
                }
                chart.AddPoint(static_cast<std::int32_t>(s), value);
            }
            if (g % 37 == 20) {
                chart.UpdateHorizontalLine(unit(random));
            }
            if (g % 53 == 40) {
                chart.ToggleHorizontalLine();
            }
            chart.Refresh();
            const QImage drawn = PicOf(chart).Raster().copy();
            const QImage expected = FullRedrawOf(chart, c.ratio);
            if (drawn != expected) {
                ++mismatches;
                ADD_FAILURE() << c.what << ", generation " << g << ": "
                              << FirstDifference(drawn, expected).toStdString();
            }
        }
    }
    // Rings wrap and the line moves often here, yet many generations must have gone the
    // incremental way, or the comparison proves little.
    EXPECT_GT(trv5::rtchart::Redraws().band - bandsBefore, 400u);
}

namespace {

// Counts paint events of the widgets it watches and remembers the last painted area of one.
class PaintCounter : public QObject {
public:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override {
        if (pEvent->type() == QEvent::Paint) {
            ++paints;
            if (pWatched == plot) {
                plotArea = plotArea.united(static_cast<QPaintEvent*>(pEvent)->rect());
            }
        }
        return false;
    }
    // The chart's plot and labels.
    void Watch(RTChart& pChart) {
        plot = &PicOf(pChart);
        plot->installEventFilter(this);
        for (QLabel* label : pChart.findChildren<QLabel*>()) {
            label->installEventFilter(this);
        }
    }
    int paints = 0;
    QObject* plot = nullptr;
    QRect plotArea;
};

std::shared_ptr<Axis> UnitAxis() {
    auto axis = std::make_shared<Axis>();
    axis->Init(0, 1, false);
    return axis;
}

// A run's chart on screen, 600 x 400 with point numbers: three drip-feed series of capacity
// 1000 on a unit axis, none fed yet.
void ShowRunOfThree(RTChart& pChart) {
    pChart.resize(600, 400);
    pChart.SetShowXAxis(true);
    pChart.SetMainYAxis(UnitAxis());
    for (int s = 0; s < 3; ++s) {
        pChart.GetSeries(pChart.AddSeries(nullptr, false, QStringLiteral("S%1").arg(s)))
            ->Init(1000, 0, 1, trv5::DripFeed, false);
    }
    pChart.show();
}

} // namespace

// On screen, a generation repaints a narrow strip of the plot and none of the labels.
TEST(RTChartIncremental, AGenerationRepaintsOnlyTheStripItChanged) {
    RTChart chart;
    ShowRunOfThree(chart);
    for (int g = 0; g < 300; ++g) {
        for (int s = 0; s < 3; ++s) {
            chart.AddPoint(s, 0.2 + 0.2 * s + 0.001 * g);
        }
    }
    chart.Refresh();
    QCoreApplication::processEvents();

    PaintCounter counter;
    counter.Watch(chart);
    for (int s = 0; s < 3; ++s) {
        chart.AddPoint(s, 0.9);
    }
    chart.Refresh();
    QCoreApplication::processEvents();

    EXPECT_EQ(counter.paints, 1) << "the plot alone";
    EXPECT_FALSE(counter.plotArea.isEmpty());
    EXPECT_LT(counter.plotArea.width(), PicOf(chart).width() / 8);
    EXPECT_GT(counter.plotArea.left(), 0);
}

// Numbered by generation as a host numbers it (the last generation set with each one), a run
// that has not filled its rings yet still draws only the new points' strip: the numbers under the
// plot and their grid lines stay where they are, while the description follows the run.
TEST(RTChartIncremental, AGenerationNumberedAxisKeepsItsNumbersUntilTheRingsFill) {
    RTChart chart;
    ShowRunOfThree(chart);
    std::int32_t generation = 0;
    const auto feed = [&] {
        for (int s = 0; s < 3; ++s) {
            chart.AddPoint(s, 0.2 + 0.2 * s + 0.0005 * generation);
        }
        chart.SetLastGenerationForCopy(++generation);
        chart.Refresh();
        QCoreApplication::processEvents();
    };
    for (int g = 0; g < 300; ++g) {
        feed();
    }
    QStringList numbers;
    for (QLabel* label : chart.findChildren<QLabel*>(QStringLiteral("lblTick"))) {
        if (label->isVisible()) {
            numbers << label->text();
        }
    }
    // The newest point is generation 300 at index 299, so index 0 is generation 1 and the last
    // index of the ring generation 1000; counted by point the numbers would start at 0.
    EXPECT_TRUE(numbers.contains(QStringLiteral("1000"))) << numbers.join(u' ').toStdString();
    EXPECT_FALSE(numbers.contains(QStringLiteral("0"))) << numbers.join(u' ').toStdString();

    // With the keyboard focus, and so the focus mark over the chart's edges.
    chart.activateWindow();
    chart.setFocus(Qt::TabFocusReason);
    QCoreApplication::processEvents();
    ASSERT_TRUE(chart.findChild<QWidget*>(QStringLiteral("focusMark"))->isVisible());

    PaintCounter counter;
    counter.Watch(chart);
    auto& redraws = trv5::rtchart::Redraws();
    const std::uint64_t full = redraws.full;
    const std::uint64_t bands = redraws.band;
    for (int g = 0; g < 20; ++g) {
        feed();
    }
    EXPECT_EQ(redraws.full, full);
    EXPECT_EQ(redraws.band - bands, 20u);
    EXPECT_EQ(counter.paints, 20) << "the plot once a generation, no label";
    EXPECT_LT(counter.plotArea.width(), PicOf(chart).width() / 8);
    EXPECT_EQ(chart.accessibleDescription(),
              QStringLiteral("Run progress, 3 series, 320 generations"));
}

// A background set while the chart shows a run takes the plot and every label along, although
// nothing moves.
TEST(RTChartIncremental, ANewBackgroundRecoloursPlotAndLabels) {
    RTChart chart;
    chart.resize(500, 300);
    chart.SetShowXAxis(true);
    chart.SetMainYAxis(UnitAxis());
    const auto index = chart.AddSeries(nullptr, false, QStringLiteral("Best"));
    chart.GetSeries(index)->Init(200, 0, 1, trv5::DripFeed, false);
    chart.GetSeries(index)->SetColour(0x202020);
    for (int g = 0; g < 150; ++g) {
        chart.AddPoint(index, g / 200.0);
    }
    chart.Refresh();
    const QColor dark(20, 20, 30);
    chart.SetBackColor(trv5::ColorConverter::RGBToLong(dark.red(), dark.green(), dark.blue()));
    chart.Refresh();
    EXPECT_EQ(PicOf(chart).Raster().pixelColor(1, 1), dark) << "the plot's background";
    int checked = 0;
    for (QLabel* label : chart.findChildren<QLabel*>()) {
        if (label->isHidden() || label->text().isEmpty()) {
            continue;
        }
        const QPalette palette = label->palette();
        EXPECT_EQ(palette.color(label->backgroundRole()), dark) << label->text().toStdString();
        EXPECT_GT(palette.color(label->foregroundRole()).lightness(), 128)
            << label->text().toStdString() << ": light text on the dark background";
        ++checked;
    }
    EXPECT_GT(checked, 3);
}

// Refreshing an unchanged chart, a resize to the same size, loading into a chart that was never
// shown and grabbing a hidden chart draw the plot at most once.
TEST(RTChartIncremental, NothingIsRedrawnThatHasNotChanged) {
    auto& redraws = trv5::rtchart::Redraws();
    RTChart source;
    source.resize(500, 300);
    source.SetMainYAxis(UnitAxis());
    const auto index = source.AddSeries(nullptr, false, QStringLiteral("Best"));
    source.GetSeries(index)->Init(200, 0, 1, trv5::DripFeed, false);
    for (int g = 0; g < 150; ++g) {
        source.AddPoint(index, g / 200.0);
    }
    source.Refresh();
    std::uint64_t before = redraws.full + redraws.band;
    source.Refresh();
    QResizeEvent sameSize(source.size(), source.size());
    QApplication::sendEvent(&source, &sameSize);
    source.resize(source.size());
    EXPECT_EQ(redraws.full + redraws.band, before);

    const QString state = source.ToString();
    {
        RTChart loaded;
        before = redraws.full;
        loaded.FromString(state);
        const QImage picture = loaded.grab().toImage();
        EXPECT_EQ(redraws.full - before, 1u) << "loading, then grabbing";
        EXPECT_EQ(loaded.SeriesCount(), 1);
        EXPECT_FALSE(picture.isNull());
        loaded.show();
        QCoreApplication::processEvents();
        EXPECT_EQ(redraws.full - before, 1u) << "and showing at that size";
    }
    {
        RTChart hidden;
        hidden.resize(400, 250);
        hidden.SetMainYAxis(UnitAxis());
        before = redraws.full;
        (void)hidden.grab();
        (void)hidden.grab();
        EXPECT_EQ(redraws.full - before, 1u) << "two grabs of a hidden chart";
    }
    // A change that is not an appended point is drawn whole, once.
    before = redraws.full;
    source.GetSeries(index)->SetColour(0x0000FF);
    source.Refresh();
    source.Refresh();
    EXPECT_EQ(redraws.full - before, 1u);
    // After a wrap of the ring the plot starts again from slot 0: drawn whole.
    for (int g = 0; g < 60; ++g) {
        source.AddPoint(index, 0.5);
    }
    before = redraws.full;
    source.Refresh();
    EXPECT_EQ(redraws.full - before, 1u);
}
