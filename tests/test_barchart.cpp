#include <trv5charts/barchart.h>

#include "pixelsupport.h"
#include "platform/clipboardaccess.h"
#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "testsupport.h"

#include <trv5charts/capture.h>
#include <trv5charts/localizationlib.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QFile>
#include <QMenu>
#include <QMouseEvent>
#include <QTemporaryDir>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

using trv5::BarChart;
using trv5::platform::ClipboardAccess;
using trv5::platform::DrawingSurface;

using trv5::test::PixelAt;
using trv5::test::Rgb;

namespace {

constexpr std::int32_t kWhite = 0xFFFFFF;
// Distinct values in every channel, so that a swapped channel order cannot pass.
constexpr std::int32_t kBar = 0x2050C0;
constexpr auto kButtonFace = static_cast<std::int32_t>(0x8000000FU);
constexpr auto kGreyText = static_cast<std::int32_t>(0x80000011U);

int CountNot(const QImage& pImage, std::int32_t pColour) {
    int count = 0;
    for (int y = 0; y < pImage.height(); ++y) {
        for (int x = 0; x < pImage.width(); ++x) {
            count += PixelAt(pImage, x, y) != pColour ? 1 : 0;
        }
    }
    return count;
}

// A shown chart on white whose picture, with the default corner of 1, is the chart less one
// pixel on every side. Sizes are chosen so that scale units fall on whole pixels.
struct Chart {
    Chart(int pWidth, int pHeight) {
        chart.resize(pWidth, pHeight);
        chart.SetBackColor(kWhite);
        chart.SetBarColor(kBar);
        chart.setObjectName(QStringLiteral("chtUsage"));
        chart.show();
        pic = chart.findChild<DrawingSurface*>(QStringLiteral("pic"));
        surface = chart.findChild<DrawingSurface*>(QStringLiteral("surface"));
    }
    QImage Picture() const { return pic->Raster(); }
    std::int32_t At(int pX, int pY) const { return PixelAt(pic->Raster(), pX, pY); }
    // The tool tip after a real mouse move to a pixel of the picture.
    QString TipAt(int pX, int pY) {
        QMouseEvent move(QEvent::MouseMove, QPointF(pX, pY), pic->mapToGlobal(QPointF(pX, pY)),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(pic, &move);
        return pic->toolTip();
    }
    QAction* MenuItem(int pIndex) const {
        return chart.findChildren<QAction*>(QStringLiteral("mnuMain")).at(pIndex);
    }

    BarChart chart;
    DrawingSurface* pic = nullptr;
    DrawingSurface* surface = nullptr;
};

std::vector<std::int32_t> Counts(int pColumns) {
    std::vector<std::int32_t> counts;
    for (int i = 0; i < pColumns; ++i) {
        counts.push_back(i % 10 + 1);
    }
    return counts;
}

} // namespace

// ---- drawing ----

TEST(BarChartDrawing, TwentyColumnsHaveGapsAndOutlinesAndHeightsByValue) {
    // 81 units over 162 pixels, 10 units of height over 100 pixels.
    Chart c(164, 102);
    c.chart.Init(20, 10.0F, trv5::ctMultiVerticalBars, BarChart::kLongValues, 0.0F);
    const auto counts = Counts(20);
    c.chart.SetLongData(counts);
    c.chart.Redraw();
    ASSERT_EQ(c.pic->geometry(), QRect(1, 1, 162, 100));
    for (int i = 0; i < 20; ++i) {
        const int left = 8 * i + 2; // unit 4i + 1
        const int top = 100 - 10 * counts[static_cast<std::size_t>(i)];
        SCOPED_TRACE(i);
        EXPECT_EQ(c.At(left - 1, 95), kWhite);                // the gap before the bar
        EXPECT_EQ(c.At(left, 95), Rgb(kButtonFace));          // its outline
        EXPECT_EQ(c.At(left + 2, 99), Rgb(kButtonFace));      // outline at the base
        EXPECT_EQ(c.At(left + 2, 98), kBar);                  // inside
        EXPECT_EQ(c.At(left + 2, top + 1), kBar);             // up to the value
        EXPECT_EQ(c.At(left + 5, top + 1), Rgb(kButtonFace)); // right outline
        if (top > 0) {
            EXPECT_EQ(c.At(left + 2, top - 1), kWhite);
        }
    }
    EXPECT_EQ(c.At(160, 95), kWhite); // the space after the last bar
    EXPECT_EQ(c.At(161, 95), kWhite);
}

TEST(BarChartDrawing, TwentyOneColumnsTouchAndAHundredLoseTheirOutlines) {
    Chart c(170, 102); // 21 units over 168 pixels
    c.chart.Init(21, 10.0F, trv5::ctMultiVerticalBars, BarChart::kDoubleValues, 0.0F);
    c.chart.SetDoubleData(std::vector<double>(21, 5.0));
    c.chart.Redraw();
    for (int i = 0; i < 21; ++i) {
        EXPECT_EQ(c.At(8 * i, 80), Rgb(kButtonFace)) << i;
        EXPECT_EQ(c.At(8 * i + 3, 80), kBar) << i;
        EXPECT_EQ(c.At(8 * i + 7, 80), Rgb(kButtonFace)) << i;
        EXPECT_EQ(c.At(8 * i + 3, 48), kWhite) << i;
    }

    Chart wide(202, 102); // 100 units over 200 pixels
    wide.chart.Init(100, 10.0F, trv5::ctMultiVerticalBars, BarChart::kDoubleValues, 0.0F);
    std::vector<double> values(100, 2.0);
    values[99] = 25.0; // above the maximum: clipped at the top edge
    values[50] = -3.0; // below zero: out of view
    wide.chart.SetDoubleData(values);
    wide.chart.Redraw();
    const QImage picture = wide.Picture();
    EXPECT_EQ(PixelAt(picture, 0, 99), kBar);
    EXPECT_EQ(PixelAt(picture, 1, 80), kBar);
    EXPECT_EQ(PixelAt(picture, 1, 79), kWhite);
    EXPECT_EQ(PixelAt(picture, 101, 99), kWhite);
    EXPECT_EQ(PixelAt(picture, 198, 0), kBar);
    EXPECT_EQ(PixelAt(picture, 199, 0), kBar);
}

TEST(BarChartDrawing, ManyColumnsOnFewPixelsMatchBarByBarDrawing) {
    // 5,000 bars on 150 pixels, with values beyond both ends of the scale, a NaN and a pixel
    // ratio that makes the device columns uneven.
    Chart c(152, 82);
    c.pic->SetDevicePixelRatioForTesting(1.5);
    std::vector<double> values;
    for (int i = 0; i < 5000; ++i) {
        values.push_back(std::fmod(i * 7.31, 13.0) - 1.5);
    }
    values[2500] = std::numeric_limits<double>::quiet_NaN();
    c.chart.Init(5000, 10.0F, trv5::ctMultiVerticalBars, BarChart::kDoubleValues, 0.0F);
    c.chart.SetDoubleData(values);
    c.chart.Redraw();

    DrawingSurface reference;
    reference.resize(c.pic->size());
    reference.SetDevicePixelRatioForTesting(1.5);
    reference.SetBackColor(kWhite);
    reference.Cls();
    reference.SetScale(0.0, 10.0, 5000.0, -10.0);
    for (int i = 0; i < 5000; ++i) {
        reference.FilledBox(i, 0.0, i + 1.0, values[static_cast<std::size_t>(i)], kBar);
    }
    ASSERT_EQ(c.Picture().size(), reference.Raster().size());
    EXPECT_EQ(c.Picture(), reference.Raster());
    EXPECT_GT(CountNot(c.Picture(), kWhite), 1000);
}

TEST(BarChartDrawing, MissingValuesOrNoMaximumGiveABlankPicture) {
    Chart c(164, 102);
    c.chart.Init(20, 10.0F, trv5::ctMultiVerticalBars, BarChart::kLongValues, 0.0F);
    c.chart.SetLongData(Counts(20));
    c.chart.Redraw();
    ASSERT_GT(CountNot(c.Picture(), kWhite), 0);

    c.chart.SetLongData(Counts(19));
    c.chart.Redraw();
    EXPECT_EQ(CountNot(c.Picture(), kWhite), 0);

    // Columns from untrusted state far beyond the values: still blank, nothing read beyond.
    c.chart.SetLongData(Counts(20));
    c.chart.SetColumns(2000000000);
    c.chart.Redraw();
    EXPECT_EQ(CountNot(c.Picture(), kWhite), 0);

    c.chart.SetColumns(20);
    c.chart.SetMaxValue(0.0F);
    c.chart.Redraw();
    EXPECT_EQ(CountNot(c.Picture(), kWhite), 0);
    // Init with a zero maximum changes nothing at all.
    c.chart.Init(7, 0.0F, trv5::ctSingleHorizontal, 5, 0.5F);
    EXPECT_EQ(c.chart.Columns(), 20);
    EXPECT_EQ(c.chart.HMarginPercent(), 0.0F);

    // A value kind other than the two arrays draws no bar.
    c.chart.Init(20, 10.0F, trv5::ctMultiVerticalBars, 7, 0.0F);
    c.chart.Redraw();
    EXPECT_EQ(CountNot(c.Picture(), kWhite), 0);
}

TEST(BarChartDrawing, GaugeFillsFromZeroToItsValueOverThreeQuartersOfTheHeight) {
    Chart c(202, 122); // 100 units over 200 pixels, 1.2 units over 120 pixels
    c.chart.Init(7, 100.0F, trv5::ctSingleHorizontal, BarChart::kDoubleValues, 0.0F);
    EXPECT_EQ(c.chart.Columns(), 1);
    EXPECT_EQ(c.chart.ValuesType(), BarChart::kLongValues);
    c.chart.SetColumns(5);
    EXPECT_EQ(c.chart.Columns(), 1);
    c.chart.SetLongHValue(40);
    EXPECT_EQ(c.chart.HasData(), 1);
    EXPECT_EQ(c.At(0, 10), kBar);
    EXPECT_EQ(c.At(79, 99), kBar);
    EXPECT_EQ(c.At(80, 50), kWhite);
    EXPECT_EQ(c.At(40, 9), kWhite);
    EXPECT_EQ(c.At(40, 100), kWhite);
    EXPECT_EQ(c.TipAt(40, 50), QStringLiteral(" 40 "));
    EXPECT_EQ(c.TipAt(120, 50), QString());

    // Without a value slot the gauge cannot take a value; with no maximum nothing happens.
    BarChart fresh;
    fresh.SetMaxValue(1.0F);
    EXPECT_CHART_ERROR(fresh.SetLongHValue(3), 9);
    fresh.SetMaxValue(0.0F);
    fresh.SetLongHValue(3);
    EXPECT_EQ(fresh.HasData(), 0);
}

TEST(BarChartDrawing, FrameAndBaseLineOnTheControlSurface) {
    Chart c(120, 80);
    c.chart.SetRoundedCorner(8);
    c.chart.Init(4, 10.0F, trv5::ctMultiVerticalBars, BarChart::kLongValues, 0.0F);
    c.chart.SetLongData(std::vector<std::int32_t>{1, 2, 3, 4});
    c.chart.Redraw();
    EXPECT_EQ(c.pic->geometry(), QRect(8, 8, 104, 64));
    const QImage surface = c.surface->Raster();
    const std::int32_t grey = Rgb(kGreyText);
    ASSERT_NE(grey, kWhite);
    EXPECT_EQ(PixelAt(surface, 60, 0), grey);
    EXPECT_EQ(PixelAt(surface, 0, 40), grey);
    EXPECT_EQ(PixelAt(surface, 119, 40), grey);
    EXPECT_EQ(PixelAt(surface, 60, 79), grey);
    EXPECT_EQ(PixelAt(surface, 0, 0), kWhite); // a rounded corner
    EXPECT_EQ(PixelAt(surface, 60, 1), kWhite);
    EXPECT_EQ(PixelAt(surface, 30, 72), grey); // the base line under the picture
    EXPECT_EQ(PixelAt(surface, 30, 73), kWhite);
}

// ---- layout and properties ----

TEST(BarChartLayout, MarginWidthFollowsTheOldLeftEdgeAndGettersHaveSideEffects) {
    Chart c(200, 100);
    c.chart.Init(5, 10.0F, trv5::ctMultiVerticalBars, BarChart::kLongValues, 0.1F);
    EXPECT_EQ(c.pic->geometry(), QRect(21, 1, 196, 98)); // width from the old left edge 1
    c.chart.Init(5, 10.0F, trv5::ctMultiVerticalBars, BarChart::kLongValues, 0.1F);
    EXPECT_EQ(c.pic->geometry(), QRect(21, 1, 156, 98));

    // A margin beyond any widget position reaches the host from Init; a resize swallows it.
    EXPECT_CHART_ERROR(c.chart.Init(5, 10.0F, trv5::ctMultiVerticalBars, 3, 1e30F), 6);
    c.chart.resize(210, 100);
    c.chart.SetHMarginPercent(0.1F);

    // A huge negative corner from saved state cannot blow the picture up.
    c.chart.FromString(QStringLiteral("<SimpleBarChart corner='-1000000'/>"));
    c.chart.resize(201, 100);
    EXPECT_LE(c.pic->width(), 3 * 201);
    EXPECT_LE(c.pic->height(), 3 * 100);

    c.chart.SetRoundedCorner(7);
    EXPECT_EQ(c.chart.RoundedCorner(), 0);
    EXPECT_EQ(c.chart.Columns(), 7);
    EXPECT_EQ(c.pic->ScaleWidth(), 7.0);
    EXPECT_EQ(c.chart.property("RoundedCorner").toInt(), 7); // the property reads plainly

    // The picture's foreground is the bar colour of the last drawing.
    c.chart.SetLongData(Counts(7));
    c.chart.Redraw();
    c.chart.SetBarColor(0x0000FF);
    EXPECT_EQ(c.chart.BackColor(), 0);
    EXPECT_EQ(c.chart.BarColor(), kBar);
    EXPECT_EQ(c.chart.property("BackColor").toInt(), kWhite);

    // Nothing to draw on: no picture, no failure.
    Chart empty(0, 0);
    empty.chart.Init(30, 10.0F, trv5::ctMultiVerticalBars, 3, 0.2F);
    empty.chart.SetLongData(Counts(30));
    empty.chart.Redraw();
    empty.chart.CopyChart();
    EXPECT_EQ(empty.TipAt(0, 0), QString());
    EXPECT_TRUE(empty.pic->Raster().isNull());

    c.chart.SetDataPointName(QStringLiteral("Uses: "));
    c.chart.Reset();
    EXPECT_EQ(c.chart.Columns(), 0);
    EXPECT_EQ(c.chart.MaxValue(), 0.0F);
    EXPECT_EQ(c.chart.HasData(), 0);
    EXPECT_TRUE(c.chart.DataPointName().isEmpty());
    EXPECT_TRUE(c.chart.LongData().empty());
    EXPECT_EQ(c.chart.BarColor(), kBar);
    EXPECT_EQ(c.chart.property("RoundedCorner").toInt(), 7);
    EXPECT_EQ(CountNot(c.Picture(), kWhite), 0);
}

// ---- tool tip ----

TEST(BarChartToolTip, ShowsTheValueUnderTheMouseByColour) {
    Chart c(164, 102);
    c.chart.SetDataPointName(QStringLiteral("Uses: "));
    c.chart.Init(20, 10.0F, trv5::ctMultiVerticalBars, BarChart::kLongValues, 0.0F);
    c.chart.SetLongData(Counts(20));
    c.chart.Redraw();
    EXPECT_EQ(c.TipAt(8 * 3 + 4, 98), QStringLiteral(" Uses: 4 "));
    EXPECT_EQ(c.TipAt(8 * 19 + 4, 98), QStringLiteral(" Uses: 10 "));
    EXPECT_EQ(c.TipAt(8 * 3 + 1, 98), QString()); // the gap
    EXPECT_EQ(c.TipAt(8 * 3 + 2, 98), QString()); // the outline
    EXPECT_EQ(c.TipAt(8 * 3 + 4, 2), QString());  // above the bar

    trv5::test::ScopedLocale german(trv5::test::German());
    Chart wide(202, 102);
    wide.chart.Init(100, 10.0F, trv5::ctMultiVerticalBars, BarChart::kDoubleValues, 0.0F);
    std::vector<double> values(100, 1.0);
    values[42] = 2.5;
    wide.chart.SetDoubleData(values);
    wide.chart.Redraw();
    EXPECT_EQ(wide.TipAt(85, 95), QStringLiteral(" 2,5 "));
    EXPECT_EQ(wide.TipAt(84, 95), QStringLiteral(" 2,5 "));
    EXPECT_EQ(wide.TipAt(86, 95), QStringLiteral(" 1 "));
}

// ---- clipboard, menu and print ----

TEST(BarChartCopy, DataTextHasTheTrimmedHeaderAndFixedCultureValues) {
    trv5::test::ScopedLocale german(trv5::test::German());
    Chart c(100, 60);
    c.chart.SetDataPointName(QStringLiteral("  Fitness::  "));
    c.chart.Init(3, 10.0F, trv5::ctMultiVerticalBars, BarChart::kDoubleValues, 0.0F);
    ClipboardAccess::SetText(QStringLiteral("before"));
    c.MenuItem(1)->trigger(); // no values handed in yet
    EXPECT_EQ(ClipboardAccess::Text(), QStringLiteral("before"));

    c.chart.SetDoubleData(std::vector<double>{0.5, 2.0, 12.25, 99.0});
    c.MenuItem(1)->trigger();
    EXPECT_EQ(ClipboardAccess::Text(), QStringLiteral("Fitness\r\n0.5\t2\t12.25"));

    c.chart.SetDataPointName(QStringLiteral("Uses: "));
    c.chart.SetLongData(std::vector<std::int32_t>{3, -7, 12});
    c.MenuItem(1)->trigger();
    EXPECT_EQ(ClipboardAccess::Text(), QStringLiteral("Uses\r\n3\t-7\t12"));

    // Too few values: the clipboard keeps what it had.
    c.chart.SetLongData(std::vector<std::int32_t>{3});
    c.MenuItem(1)->trigger();
    EXPECT_EQ(ClipboardAccess::Text(), QStringLiteral("Uses\r\n3\t-7\t12"));
}

TEST(BarChartCopy, MenuCopiesAndPrintsThePictureAndOpensOnlyWhenAllowed) {
    Chart c(164, 102);
    c.chart.Init(20, 10.0F, trv5::ctMultiVerticalBars, BarChart::kLongValues, 0.0F);
    c.chart.SetLongData(Counts(20));
    c.chart.Redraw();

    QMenu* menu = trv5::test::CheckCopyPrintMenu(c.chart);
    ASSERT_NE(menu, nullptr);

    c.MenuItem(0)->trigger();
    EXPECT_FALSE(menu->isVisible());
    const QImage copied = ClipboardAccess::Image();
    ASSERT_EQ(copied.size(), QSize(164, 102));
    EXPECT_EQ(PixelAt(copied, 1 + 8 * 3 + 4, 1 + 98), kBar);
    EXPECT_EQ(PixelAt(copied, 82, 0), Rgb(kGreyText));

    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("bars.pdf"));
    auto dialog = std::make_shared<trv5::test::PdfDialog>(file);
    c.chart.SetPrintDialog(dialog);
    dialog->cancel = true;
    c.MenuItem(3)->trigger();
    EXPECT_FALSE(QFile::exists(file));
    dialog->cancel = false;
    c.MenuItem(3)->trigger();
    EXPECT_EQ(dialog->shown, 2);
    QFile pdf(file);
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    const QByteArray bytes = pdf.readAll();
    EXPECT_TRUE(bytes.startsWith("%PDF-"));
    EXPECT_TRUE(bytes.contains("/Subtype /Image"));
    EXPECT_TRUE(bytes.contains("/Width 164"));
}

// ---- saved state ----

TEST(BarChartState, WritesTheDocumentedLayout) {
    Chart c(100, 60);
    c.chart.setObjectName(QStringLiteral("chtFitness"));
    c.chart.Init(3, 10.0F, trv5::ctMultiVerticalBars, BarChart::kLongValues, 0.0F);
    EXPECT_EQ(c.chart.ToString(),
              QStringLiteral("<SimpleBarChart name='chtFitness' type='0' valuestype='3' "
                             "hmargins='0' corner='1'><datapoints Columns='3' MaxValue='10'>"
                             "</datapoints></SimpleBarChart>"));
    c.chart.SetLongData(std::vector<std::int32_t>{4, 7, 10});
    EXPECT_EQ(c.chart.ToString(),
              QStringLiteral("<SimpleBarChart name='chtFitness' type='0' valuestype='3' "
                             "hmargins='0' corner='1'><datapoints Columns='3' MaxValue='10'>"
                             "<datapoint value='4'/><datapoint value='7'/><datapoint "
                             "value='10'/></datapoints></SimpleBarChart>"));
    EXPECT_TRUE(c.chart.IsTypeOf(c.chart.ToString()));
    EXPECT_FALSE(c.chart.IsTypeOf(QStringLiteral("<SimpleBarChart>")));
    EXPECT_FALSE(c.chart.IsTypeOf(QStringLiteral("<simplebarchart name=''>")));

    // Fewer values than columns: the values there are, so that the host's project keeps them.
    c.chart.SetLongData(std::vector<std::int32_t>{4});
    EXPECT_EQ(c.chart.ToString(),
              QStringLiteral("<SimpleBarChart name='chtFitness' type='0' valuestype='3' "
                             "hmargins='0' corner='1'><datapoints Columns='3' MaxValue='10'>"
                             "<datapoint value='4'/></datapoints></SimpleBarChart>"));
}

TEST(BarChartState, AShortChartStillSavesAndLoadsItsValues) {
    Chart c(164, 102);
    c.chart.Init(5, 10.0F, trv5::ctMultiVerticalBars, BarChart::kDoubleValues, 0.0F);
    c.chart.SetDoubleData(std::vector<double>{1, 2, 3});
    const QString saved = c.chart.ToString();
    ASSERT_FALSE(saved.isEmpty());
    Chart restored(164, 102);
    restored.chart.FromString(saved);
    EXPECT_EQ(restored.chart.Columns(), 5);
    EXPECT_EQ(
        std::vector<double>(restored.chart.DoubleData().begin(), restored.chart.DoubleData().end()),
        (std::vector<double>{1, 2, 3}));
}

TEST(BarChartState, NamesWithCharactersXmlCannotHoldStillGiveLoadableText) {
    Chart c(100, 60);
    c.chart.setObjectName(QStringLiteral("a") + QChar(0) + QStringLiteral("b<'&"));
    c.chart.Init(2, 4.0F, trv5::ctMultiVerticalBars, BarChart::kLongValues, 0.0F);
    const QString saved = c.chart.ToString();
    EXPECT_TRUE(saved.startsWith(QStringLiteral("<SimpleBarChart name='ab&lt;&apos;&amp;'")))
        << saved.toStdString();
    Chart restored(100, 60);
    restored.chart.FromString(saved);
    EXPECT_EQ(restored.chart.Columns(), 2);
    EXPECT_EQ(restored.chart.MaxValue(), 4.0F);
}

// The margin and the maximum are written in the user's locale and must come back as written on
// the same machine, whatever its decimal point; the maximum as a whole number.
TEST(BarChartState, MaximumAndMarginComeBackInTheLocaleThatWroteThem) {
    for (const QLocale& locale : {trv5::test::German(), QLocale(QLocale::Arabic, QLocale::Egypt),
                                  trv5::test::BritishEnglish()}) {
        trv5::test::ScopedLocale scoped(locale);
        Chart source(164, 102);
        source.chart.Init(3, 28.125F, trv5::ctMultiVerticalBars, BarChart::kDoubleValues, 0.0F);
        source.chart.SetDoubleData(std::vector<double>{0.5, 12.25, 28});
        const QString saved = source.chart.ToString();
        Chart restored(164, 102);
        restored.chart.FromString(saved);
        EXPECT_EQ(restored.chart.MaxValue(), 28.0F) << saved.toStdString();
        EXPECT_EQ(restored.chart.Columns(), 3) << locale.name().toStdString();
        EXPECT_EQ(std::vector<double>(restored.chart.DoubleData().begin(),
                                      restored.chart.DoubleData().end()),
                  (std::vector<double>{0.5, 12.25, 28}));
        // The margin is read in the same locale (Init then resets it, as loading always has).
        restored.chart.FromString(QStringLiteral("<SimpleBarChart hmargins='%1'/>")
                                      .arg(trv5::LocalizationLib::SingleToUserText(0.125F)));
        EXPECT_EQ(restored.chart.HMarginPercent(), 0.125F) << locale.name().toStdString();
    }

    // A maximum below one half reads 0: the chart keeps its earlier columns and scale, and the
    // values still come in.
    Chart small(164, 102);
    small.chart.Init(4, 9.0F, trv5::ctMultiVerticalBars, BarChart::kDoubleValues, 0.0F);
    small.chart.FromString(QStringLiteral(
        "<SimpleBarChart name='b' type='0' valuestype='5' hmargins='0' corner='1'><datapoints "
        "Columns='3' MaxValue='0.25'><datapoint value='0.1'/><datapoint value='0.2'/>"
        "<datapoint value='0.05'/></datapoints></SimpleBarChart>"));
    EXPECT_EQ(small.chart.MaxValue(), 9.0F);
    EXPECT_EQ(small.chart.Columns(), 4);
    EXPECT_EQ(small.chart.DoubleData().size(), 3U);

    // A text from a machine with the other decimal point still loads.
    trv5::test::ScopedLocale arabic(QLocale(QLocale::Arabic, QLocale::Egypt));
    small.chart.FromString(QStringLiteral("<SimpleBarChart type='0' valuestype='5'><datapoints "
                                          "Columns='2' MaxValue='7.5'/></SimpleBarChart>"));
    EXPECT_EQ(small.chart.MaxValue(), 8.0F);
    EXPECT_EQ(small.chart.Columns(), 2);
}

TEST(BarChartState, RoundTripLosesMarginAndHasDataButDrawsTheBars) {
    trv5::test::ScopedLocale german(trv5::test::German());
    Chart source(164, 102);
    source.chart.SetRoundedCorner(2);
    source.chart.Init(20, 10.0F, trv5::ctMultiVerticalBars, BarChart::kDoubleValues, 0.25F);
    std::vector<double> values(20, 0.125);
    values[3] = 7.5;
    source.chart.SetDoubleData(values);
    const QString saved = source.chart.ToString();
    // The margin and the maximum are in the user's locale; the values are not.
    EXPECT_TRUE(saved.contains(QStringLiteral("hmargins='0,25'")));
    EXPECT_TRUE(saved.contains(QStringLiteral("<datapoint value='7.5'/>")));

    Chart restored(164, 102);
    restored.chart.FromString(saved);
    EXPECT_EQ(restored.chart.ChartType(), trv5::ctMultiVerticalBars);
    EXPECT_EQ(restored.chart.ValuesType(), BarChart::kDoubleValues);
    EXPECT_EQ(restored.chart.Columns(), 20);
    EXPECT_EQ(restored.chart.MaxValue(), 10.0F);
    EXPECT_EQ(restored.chart.HMarginPercent(), 0.0F);
    EXPECT_EQ(restored.chart.property("RoundedCorner").toInt(), 2);
    EXPECT_EQ(
        std::vector<double>(restored.chart.DoubleData().begin(), restored.chart.DoubleData().end()),
        values);
    EXPECT_EQ(restored.chart.HasData(), 0);
    EXPECT_EQ(restored.At(restored.pic->width() * 14 / 81, 70), kBar); // bar 3 is drawn
    EXPECT_FALSE(restored.chart.ToString().contains(QStringLiteral("<datapoint ")));

    Chart gauge(100, 40);
    gauge.chart.FromString(QStringLiteral("<SimpleBarChart type='1'><datapoints Columns='1' "
                                          "MaxValue='50'><datapoint value='20'/></datapoints>"
                                          "</SimpleBarChart>"));
    EXPECT_EQ(gauge.chart.LongData().front(), 20);
    EXPECT_EQ(gauge.chart.HasData(), 1); // through SetLongHValue
    EXPECT_EQ(gauge.At(10, 20), kBar);
}

TEST(BarChartState, DamagedTextKeepsWhatWasReadBeforeTheDamage) {
    Chart c(164, 102);
    c.chart.Init(20, 10.0F, trv5::ctMultiVerticalBars, BarChart::kLongValues, 0.0F);
    c.chart.SetLongData(Counts(20));
    c.chart.Redraw();
    const QString before = c.chart.ToString();

    for (const char* text :
         {"", "<SimpleBarChart type='1'", "<other type='1'/>", "<SimpleBarChart type='1'/><x/>"}) {
        c.chart.FromString(QString::fromLatin1(text));
        EXPECT_EQ(c.chart.ToString(), before) << text;
    }

    // A zero maximum skips Init: the attributes are read, Columns and the scales stay.
    c.chart.FromString(QStringLiteral("<SimpleBarChart corner='4' valuestype='5'><datapoints "
                                      "Columns='3' MaxValue='0'/></SimpleBarChart>"));
    EXPECT_EQ(c.chart.property("RoundedCorner").toInt(), 4);
    EXPECT_EQ(c.chart.ValuesType(), 5);
    EXPECT_EQ(c.chart.Columns(), 20);

    // A bad number ends the reading with the picture wiped; the values before it stay.
    ASSERT_GT(CountNot(c.Picture(), kWhite), 0);
    c.chart.FromString(QStringLiteral("<SimpleBarChart type='0' valuestype='3'><datapoints "
                                      "Columns='3' MaxValue='10'><datapoint value='6'/>"
                                      "<datapoint value='x'/><datapoint value='2'/>"
                                      "</datapoints></SimpleBarChart>"));
    EXPECT_EQ(std::vector<std::int32_t>(c.chart.LongData().begin(), c.chart.LongData().end()),
              (std::vector<std::int32_t>{6, 0, 0}));
    EXPECT_EQ(CountNot(c.Picture(), kWhite), 0);

    // A missing attribute that Init needs, and a gauge value beyond the whole-number range.
    c.chart.FromString(QStringLiteral("<SimpleBarChart type='1'><datapoints MaxValue='10'/>"
                                      "</SimpleBarChart>"));
    EXPECT_EQ(c.chart.ChartType(), trv5::ctSingleHorizontal);
    c.chart.FromString(QStringLiteral("<SimpleBarChart hmargins='1e300'/>"));
    EXPECT_EQ(c.chart.HMarginPercent(), 0.0F);
    c.chart.FromString(QStringLiteral("<SimpleBarChart hmargins='0.5'/>"));
    EXPECT_EQ(c.chart.HMarginPercent(), 0.5F);
}
