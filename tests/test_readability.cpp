// The self-drawn charts wherever a person meets them: under a dark application palette, and
// with the keyboard alone (focus mark, Shift+F10, menus, accessible names).
#include <trv5charts/barchart.h>
#include <trv5charts/blockpanel.h>
#include <trv5charts/blockpanelsimple.h>
#include <trv5charts/capture.h>
#include <trv5charts/colorconverter.h>
#include <trv5charts/rocchart.h>
#include <trv5charts/rtchart.h>
#include <trv5charts/verticallabel.h>

#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "testsupport.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPalette>

#include <cmath>
#include <map>
#include <memory>
#include <vector>

namespace {

using trv5::ColorConverter;
using trv5::platform::ContrastRatio;
using trv5::platform::DrawingSurface;

constexpr std::int32_t kWindowBackground = static_cast<std::int32_t>(0x80000005U);
const std::int32_t kWhite = ColorConverter::RGBToLong(255, 255, 255);

// A dark application palette for the lifetime of the object.
class ScopedDarkPalette {
public:
    ScopedDarkPalette() : m_previous(QApplication::palette()) {
        QPalette dark;
        const QColor text(235, 235, 235);
        for (const auto role : {QPalette::Window, QPalette::Button, QPalette::AlternateBase}) {
            dark.setColor(role, QColor(45, 45, 48));
        }
        dark.setColor(QPalette::Base, QColor(28, 28, 30));
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
            dark.setColor(role, text);
        }
        dark.setColor(QPalette::Disabled, QPalette::Text, QColor(150, 150, 150));
        QApplication::setPalette(dark);
    }
    ~ScopedDarkPalette() { QApplication::setPalette(m_previous); }
    ScopedDarkPalette(const ScopedDarkPalette&) = delete;
    ScopedDarkPalette& operator=(const ScopedDarkPalette&) = delete;

private:
    QPalette m_previous;
};

QColor MostCommonColour(const QImage& pImage, const QRect& pRect) {
    std::map<QRgb, int> counts;
    const QRect inside = pRect & pImage.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            ++counts[pImage.pixel(x, y) | 0xFF000000U];
        }
    }
    QRgb best = 0;
    int most = -1;
    for (const auto& [colour, count] : counts) {
        if (count > most) {
            best = colour;
            most = count;
        }
    }
    return QColor::fromRgb(best);
}

double Luminance(const QColor& pColour) {
    return ContrastRatio(pColour, Qt::black) / 21.0;
}

// Every text of pControl as drawn: each visible label's text colour against the background
// its pixels really show, and each self-drawn caption's drawing colour against its picture.
void ExpectReadableTexts(QWidget& pControl) {
    pControl.show();
    QApplication::processEvents();
    const QImage picture = trv5::CaptureControl(&pControl);
    ASSERT_FALSE(picture.isNull());
    ASSERT_EQ(picture.devicePixelRatio(), 1.0);
    int checked = 0;
    for (QLabel* label : pControl.findChildren<QLabel*>()) {
        if (!label->isVisibleTo(&pControl) || label->text().isEmpty() ||
            label->geometry().isEmpty()) {
            continue;
        }
        const QRect area(label->mapTo(&pControl, QPoint(0, 0)), label->size());
        const QColor background = MostCommonColour(picture, area);
        const QColor text = label->palette().color(label->foregroundRole());
        EXPECT_GE(ContrastRatio(text, background), 4.5)
            << label->objectName().toStdString() << " \"" << label->text().toStdString()
            << "\": " << text.name().toStdString() << " on " << background.name().toStdString();
        ++checked;
    }
    QList<trv5::VerticalLabel*> captions = pControl.findChildren<trv5::VerticalLabel*>();
    if (auto* own = qobject_cast<trv5::VerticalLabel*>(&pControl)) {
        captions << own;
    }
    for (trv5::VerticalLabel* caption : captions) {
        const auto* pic = caption->findChild<DrawingSurface*>(QStringLiteral("pic"));
        const QRect area(caption->mapTo(&pControl, QPoint(0, 0)), caption->size());
        const QColor background = MostCommonColour(picture, area);
        EXPECT_GE(ContrastRatio(trv5::platform::ToQColor(pic->ForeColor()), background), 4.5)
            << caption->Text().toStdString();
        ++checked;
    }
    EXPECT_GT(checked, 0);
}

void FillProgress(trv5::RTChart& pChart) {
    auto axis = std::make_shared<trv5::Axis>();
    axis->Init(0, 1, false);
    axis->SetName(QStringLiteral("Fitness"));
    pChart.SetMainYAxis(axis);
    pChart.SetShowXAxis(true);
    const std::int32_t colours[] = {ColorConverter::RGBToLong(31, 119, 180),
                                    ColorConverter::RGBToLong(255, 221, 0),
                                    ColorConverter::RGBToLong(20, 20, 20)};
    for (int s = 0; s < 3; ++s) {
        const auto index = pChart.AddSeries(nullptr, false, QStringLiteral("Series %1").arg(s));
        auto series = pChart.GetSeries(index);
        series->Init(250, 0, 1, trv5::DripFeed, false);
        series->SetColour(colours[s]);
        for (int g = 0; g < 250; ++g) {
            pChart.AddPoint(index, 0.5 + 0.3 * std::sin(g / (10.0 + s)));
        }
    }
    pChart.SetLastGenerationForCopy(250);
    pChart.AddHorizontalLine(0.9, QStringLiteral("Target"), QStringLiteral("Show Target"));
    pChart.resize(520, 320);
    pChart.Refresh();
}

// A few blocks in a wide panel, so that most of it shows the background.
void FillBlocks(trv5::BlockPanel& pPanel) {
    pPanel.resize(400, 40);
    pPanel.SetChartMode(trv5::umMonochromatic);
    pPanel.SetUsage(std::vector<std::int32_t>{2, 0, 5});
    pPanel.Redraw();
}

void FillTapestry(trv5::BlockPanelSimple& pTapestry) {
    pTapestry.resize(400, 40);
    pTapestry.SetData(std::vector<std::int32_t>{1, 0, -1, 1, 0},
                      std::vector<std::int32_t>{11, 12, 13, 14, 15});
    pTapestry.Redraw();
}

void FillRoc(trv5::ROCChart& pChart) {
    const std::vector<double> fp = {0.0, 0.1, 0.3, 0.6, 1.0};
    const std::vector<double> tp = {0.0, 0.5, 0.8, 0.95, 1.0};
    pChart.SetDataSource(fp, tp);
    pChart.SetAUC(0.84);
    pChart.resize(520, 360);
    pChart.Refresh();
}

TEST(Readability, ContrastFollowsTheAccessibilityFormula) {
    EXPECT_NEAR(ContrastRatio(Qt::black, Qt::white), 21.0, 1e-9);
    EXPECT_NEAR(ContrastRatio(Qt::white, Qt::black), 21.0, 1e-9);
    EXPECT_NEAR(ContrastRatio(QColor(118, 118, 118), Qt::white), 4.54, 0.01);
    EXPECT_NEAR(ContrastRatio(QColor(40, 90, 200), QColor(40, 90, 200)), 1.0, 1e-9);

    const ScopedDarkPalette dark;
    // A readable colour is kept; light text on white becomes black; the palette's text colour
    // is used only on the palette's own background.
    const std::int32_t navy = ColorConverter::RGBToLong(0, 0, 128);
    EXPECT_EQ(trv5::platform::ReadableText(navy, kWhite), QColor(0, 0, 128));
    EXPECT_EQ(trv5::platform::ReadableText(ColorConverter::RGBToLong(230, 230, 230), kWhite),
              QColor(Qt::black));
    EXPECT_EQ(trv5::platform::ReadableText(0, kWindowBackground),
              QApplication::palette().color(QPalette::WindowText));
    EXPECT_EQ(trv5::platform::ReadableText(0, ColorConverter::RGBToLong(20, 20, 60)),
              QColor(Qt::white));
}

TEST(Readability, EveryControlsTextsReadUnderADarkPalette) {
    const ScopedDarkPalette dark;
    for (const bool followsPalette : {false, true}) {
        SCOPED_TRACE(followsPalette ? "background from the palette" : "white background");
        const std::int32_t back = followsPalette ? kWindowBackground : kWhite;

        trv5::RTChart progress;
        progress.SetBackColor(back);
        FillProgress(progress);
        ExpectReadableTexts(progress);

        trv5::ROCChart roc;
        roc.SetBackColor(back);
        FillRoc(roc);
        ExpectReadableTexts(roc);

        trv5::VerticalLabel caption;
        caption.SetBackColor(back);
        caption.SetText(QStringLiteral("Share of weights (%)"));
        caption.resize(20, 200);
        ExpectReadableTexts(caption);

        trv5::BarChart bars;
        bars.SetBackColor(back);
        bars.Init(5, 10.0F, trv5::ctMultiVerticalBars, trv5::BarChart::kDoubleValues, 0.0F);
        bars.SetDoubleData(std::vector<double>{2, 4, 6, 8, 10});
        bars.resize(200, 80);
        bars.show();
        bars.Redraw();

        if (followsPalette) {
            // The block charts always stand on the palette's button face, which shows around
            // and between the few blocks of a wide panel.
            trv5::BlockPanel blocks;
            FillBlocks(blocks);
            blocks.show();
            trv5::BlockPanelSimple tapestry;
            FillTapestry(tapestry);
            tapestry.show();
            // A chart on the palette's background is drawn dark under a dark palette.
            for (QWidget* chart :
                 std::initializer_list<QWidget*>{&progress, &roc, &bars, &blocks, &tapestry}) {
                const QImage picture = trv5::CaptureControl(chart);
                EXPECT_LT(Luminance(MostCommonColour(picture, picture.rect())), 0.1)
                    << chart->metaObject()->className();
            }
        }
    }
}

TEST(Readability, ChartsFollowAPaletteThatChangesWhileTheyAreShown) {
    trv5::RTChart progress;
    progress.SetBackColor(kWindowBackground);
    FillProgress(progress);
    trv5::ROCChart roc;
    roc.SetBackColor(kWindowBackground);
    FillRoc(roc);
    trv5::BarChart bars;
    bars.SetBackColor(kWindowBackground);
    bars.Init(3, 10.0F, trv5::ctMultiVerticalBars, trv5::BarChart::kLongValues, 0.0F);
    bars.SetLongData(std::vector<std::int32_t>{3, 6, 9});
    bars.resize(200, 80);
    trv5::VerticalLabel caption;
    caption.SetBackColor(kWindowBackground);
    caption.SetText(QStringLiteral("Share of weights (%)"));
    caption.resize(20, 200);
    trv5::BlockPanel blocks;
    FillBlocks(blocks);
    trv5::BlockPanelSimple tapestry;
    FillTapestry(tapestry);
    const std::initializer_list<QWidget*> charts = {&progress, &roc,    &bars,
                                                    &caption,  &blocks, &tapestry};
    const auto background = [](QWidget* pChart) {
        const QImage picture = trv5::CaptureControl(pChart);
        return MostCommonColour(picture, picture.rect());
    };
    std::vector<QColor> before;
    for (QWidget* chart : charts) {
        chart->show();
        QApplication::processEvents();
        before.push_back(background(chart));
        EXPECT_GT(Luminance(before.back()), 0.5) << chart->metaObject()->className();
    }
    {
        const ScopedDarkPalette dark;
        QApplication::processEvents();
        for (QWidget* chart : charts) {
            SCOPED_TRACE(chart->metaObject()->className());
            EXPECT_LT(Luminance(background(chart)), 0.1);
            if (!chart->findChildren<QLabel*>().isEmpty() || chart == &caption) {
                ExpectReadableTexts(*chart); // bars and blocks have no text
            }
        }
    }
    QApplication::processEvents();
    for (std::size_t i = 0; i < charts.size(); ++i) {
        EXPECT_EQ(background(charts.begin()[i]), before[i]) << "and back to the light palette";
    }
}

TEST(Readability, ChartsKeepTheirColoursInsideAHostsContainer) {
    // A host's container in the text-field colours, whose roles children inherit unless they
    // set their own.
    QWidget card;
    card.setBackgroundRole(QPalette::Base);
    card.setForegroundRole(QPalette::Text);
    auto* progress = new trv5::RTChart(&card);
    FillProgress(*progress);
    card.resize(progress->size());
    card.show();
    QApplication::processEvents();
    const QImage picture = trv5::CaptureControl(progress);
    for (QLabel* label : progress->findChildren<QLabel*>(QStringLiteral("lblLegend"))) {
        if (label->text() == QLatin1String("Series 2")) {
            EXPECT_EQ(label->palette().color(label->foregroundRole()), QColor(20, 20, 20))
                << "a series colour that reads is the legend's text colour";
        }
    }
    // Each legend swatch shows its series' colour.
    int swatches = 0;
    for (QWidget* swatch : progress->findChildren<QWidget*>(QStringLiteral("shpLegend"))) {
        if (swatch->isVisible()) {
            const QPoint centre = swatch->geometry().center();
            EXPECT_EQ(picture.pixelColor(centre), swatch->palette().color(QPalette::Window));
            ++swatches;
        }
    }
    EXPECT_EQ(swatches, 4);
}

void SendKey(QWidget* pTarget, int pKey, Qt::KeyboardModifiers pModifiers = Qt::NoModifier) {
    QKeyEvent press(QEvent::KeyPress, pKey, pModifiers);
    QApplication::sendEvent(pTarget, &press);
    QKeyEvent release(QEvent::KeyRelease, pKey, pModifiers);
    QApplication::sendEvent(pTarget, &release);
}

// Shift+F10 opens the chart's menu; the arrow keys and Enter choose its entry at pIndex among
// the enabled ones.
void ChooseByKeyboard(QWidget& pChart, int pSteps) {
    SendKey(&pChart, Qt::Key_F10, Qt::ShiftModifier);
    auto* menu = pChart.findChild<QMenu*>(QStringLiteral("ctxMain"), Qt::FindDirectChildrenOnly);
    ASSERT_NE(menu, nullptr);
    ASSERT_TRUE(menu->isVisible());
    for (int i = 0; i < pSteps; ++i) {
        SendKey(menu, Qt::Key_Down);
    }
    SendKey(menu, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_FALSE(menu->isVisible());
}

TEST(Keyboard, FocusShowsAMarkThatStaysOutOfThePicture) {
    // Each chart beside a field that holds the focus first. The window comes first, so that it
    // is destroyed after the charts whatever happens.
    QWidget window;
    QLineEdit field(&window);
    window.show();
    trv5::RTChart progress;
    FillProgress(progress);
    trv5::ROCChart roc;
    FillRoc(roc);
    trv5::BarChart bars;
    bars.Init(3, 10.0F, trv5::ctMultiVerticalBars, trv5::BarChart::kLongValues, 0.0F);
    bars.SetLongData(std::vector<std::int32_t>{3, 6, 9});
    bars.resize(200, 80);
    trv5::BlockPanel blocks;
    FillBlocks(blocks);
    trv5::BlockPanelSimple tapestry;
    FillTapestry(tapestry);
    for (QWidget* chart :
         std::initializer_list<QWidget*>{&progress, &roc, &bars, &blocks, &tapestry}) {
        SCOPED_TRACE(chart->metaObject()->className());
        chart->setParent(&window);
        chart->move(0, 30);
        chart->show();
        window.activateWindow();
        field.setFocus();
        QApplication::processEvents();
        auto* mark = chart->findChild<QWidget*>(QStringLiteral("focusMark"));
        ASSERT_NE(mark, nullptr);
        const QImage unfocused = trv5::CaptureControl(chart);
        EXPECT_FALSE(mark->isVisible());
        chart->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
        ASSERT_TRUE(chart->hasFocus());
        EXPECT_TRUE(mark->isVisible());
        EXPECT_EQ(mark->geometry(), chart->rect());
        EXPECT_EQ(trv5::CaptureControl(chart), unfocused) << "the mark is not in copies";
        EXPECT_TRUE(mark->isVisible()) << "and comes back after the capture";
        field.setFocus();
        QApplication::processEvents();
        EXPECT_FALSE(mark->isVisible());
        chart->hide();
        chart->setParent(nullptr);
    }
}

TEST(Keyboard, MenusAreDrivenByKeysAlone) {
    trv5::RTChart progress;
    FillProgress(progress);
    progress.show();
    QApplication::clipboard()->clear();
    // Copy Chart, then Copy Chart Data.
    ChooseByKeyboard(progress, 2);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QStringLiteral("Generation\t")));
    // Past Print (the separator is skipped) to the line's entry, which switches the line off.
    ASSERT_TRUE(progress.LineShown());
    ChooseByKeyboard(progress, 4);
    EXPECT_FALSE(progress.LineShown());

    trv5::BarChart bars;
    bars.Init(3, 10.0F, trv5::ctMultiVerticalBars, trv5::BarChart::kLongValues, 0.0F);
    bars.SetDataPointName(QStringLiteral("Share: "));
    bars.SetLongData(std::vector<std::int32_t>{3, 6, 9});
    bars.resize(200, 80);
    bars.show();
    ChooseByKeyboard(bars, 2);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("Share\r\n3\t6\t9"));

    trv5::ROCChart roc;
    FillRoc(roc);
    roc.show();
    ChooseByKeyboard(roc, 2);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QStringLiteral("FP Rate")));

    trv5::BlockPanel blocks;
    FillBlocks(blocks);
    blocks.show();
    ChooseByKeyboard(blocks, 2);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QStringLiteral("Item\tUsage\r\n")));
    trv5::BlockPanelSimple tapestry;
    FillTapestry(tapestry);
    tapestry.show();
    ChooseByKeyboard(tapestry, 2);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QStringLiteral("Record ID\tClass")));
}

TEST(Accessibility, ControlsNameThemselvesAndSummariseTheirData) {
    trv5::RTChart progress;
    EXPECT_EQ(progress.accessibleName(), QStringLiteral("Run progress chart"));
    FillProgress(progress);
    EXPECT_EQ(progress.accessibleDescription(),
              QStringLiteral("Run progress, 3 series, 250 generations"));
    progress.SetLastGenerationForCopy(0);
    progress.Refresh();
    EXPECT_EQ(progress.accessibleDescription(),
              QStringLiteral("Run progress, 3 series, 250 points"));
    // A host's own name stays.
    progress.setAccessibleName(QStringLiteral("Fitness by generation"));
    progress.Refresh();
    EXPECT_EQ(progress.accessibleName(), QStringLiteral("Fitness by generation"));

    trv5::ROCChart roc;
    EXPECT_EQ(roc.accessibleName(), QStringLiteral("ROC chart"));
    EXPECT_EQ(roc.accessibleDescription(), QStringLiteral("ROC curve, no data"));
    FillRoc(roc);
    EXPECT_EQ(roc.accessibleDescription(), QStringLiteral("ROC curve, 5 points, AUC 0.84"));

    trv5::BarChart gauge;
    EXPECT_FALSE(gauge.accessibleName().isEmpty());
    gauge.Init(1, 100.0F, trv5::ctSingleHorizontal, trv5::BarChart::kLongValues, 0.0F);
    gauge.SetLongHValue(87);
    EXPECT_EQ(gauge.accessibleDescription(), QStringLiteral("Gauge, 87 of 100"));

    trv5::BlockPanel blocks;
    EXPECT_EQ(blocks.accessibleName(), QStringLiteral("Usage blocks"));
    FillBlocks(blocks);
    EXPECT_EQ(blocks.accessibleDescription(), QStringLiteral("Usage blocks, 3 items"));
    trv5::BlockPanelSimple tapestry;
    EXPECT_EQ(tapestry.accessibleName(), QStringLiteral("Classification tapestry"));
    FillTapestry(tapestry);
    EXPECT_EQ(tapestry.accessibleDescription(),
              QStringLiteral("Classification tapestry, 5 records"));

    trv5::VerticalLabel caption;
    caption.SetText(QStringLiteral("TP Rate"));
    EXPECT_EQ(caption.accessibleName(), QStringLiteral("TP Rate"));
    EXPECT_FALSE(caption.accessibleDescription().isEmpty());
}

} // namespace
