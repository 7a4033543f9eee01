#include <trv5charts/blockpanel.h>
#include <trv5charts/blockpanelsimple.h>

#include "pixelsupport.h"
#include "platform/clipboardaccess.h"
#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "selfdrawn/blockgrid.h"
#include "testsupport.h"

#include <trv5charts/capture.h>
#include <trv5charts/colorconverter.h>

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QFile>
#include <QMenu>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <vector>

using trv5::BlockPanel;
using trv5::BlockPanelSimple;
using trv5::ColorConverter;
using trv5::blocks::BlockGrid;
using trv5::platform::ClipboardAccess;
using trv5::platform::DrawingSurface;
using trv5::test::MapConfig;

using trv5::test::PixelAt;
using trv5::test::Rgb;

namespace {

constexpr std::int32_t kWhite = 0xFFFFFF;
constexpr auto kButtonFace = static_cast<std::int32_t>(0x8000000FU);
// The picture sits 3 pixels inside the control on every side.
constexpr int kInset = 3;

int CountOf(const QImage& pImage, std::int32_t pColour) {
    int count = 0;
    for (int y = 0; y < pImage.height(); ++y) {
        for (int x = 0; x < pImage.width(); ++x) {
            count += PixelAt(pImage, x, y) == pColour ? 1 : 0;
        }
    }
    return count;
}

std::shared_ptr<MapConfig> HeatMapConfig() {
    return std::make_shared<MapConfig>(QVariantMap{
        {"Run.UsageChart.HeatMap.H", 200},
        {"Run.UsageChart.HeatMap.S.Factor", 80},
        {"Run.UsageChart.HeatMap.B", 90},
        {"Run.UsageChart.AbsentColor.1", 0x102030},
        {"Run.UsageChart.ShowGaps.Limit", 0},
    });
}

std::int32_t Hsb(std::int32_t pHue, std::int32_t pSaturation, std::int32_t pBrightness) {
    return ColorConverter::HSBToRGB(ColorConverter::HSBToLong(pHue, pSaturation, pBrightness));
}

// A shown control whose picture is pWidth x pHeight device pixels. Every test starts with an
// empty settings slot, which is shared by all controls of the thread.
template <class Control> struct Shown {
    Shown(int pWidth, int pHeight) {
        trv5::Globals::StoreConfig(nullptr);
        control.resize(pWidth + 2 * kInset, pHeight + 2 * kInset);
        control.show();
        pic = control.template findChild<DrawingSurface*>(QStringLiteral("pic"));
    }
    std::int32_t At(int pX, int pY) const { return PixelAt(pic->Raster(), pX, pY); }
    QString TipAt(int pX, int pY) {
        QMouseEvent move(QEvent::MouseMove, QPointF(pX + 0.5, pY + 0.5),
                         pic->mapToGlobal(QPointF(pX, pY)), Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(pic, &move);
        return pic->toolTip();
    }
    QAction* MenuItem(int pIndex) const {
        return control.template findChildren<QAction*>(QStringLiteral("mnuMain")).at(pIndex);
    }
    Control control;
    DrawingSurface* pic = nullptr;
};

using Panel = Shown<BlockPanel>;
using Tapestry = Shown<BlockPanelSimple>;

// The grid rule written out plainly: try every column count.
struct Reference {
    std::int64_t columns = 0;
    std::int64_t side = 0;
};
Reference BruteForce(std::int64_t pWidth, std::int64_t pHeight, std::int64_t pCount) {
    Reference best;
    std::int64_t bestRows = 0;
    for (std::int64_t c = 1; c <= pCount; ++c) {
        const std::int64_t rows = (pCount + c - 1) / c;
        const std::int64_t side = std::min(pWidth / c, pHeight / rows);
        if (side > best.side || (side == best.side && side > 0 && rows < bestRows)) {
            best = {c, side};
            bestRows = rows;
        }
    }
    return best;
}

} // namespace

// ---- the grid ----

TEST(BlockGridGeometry, LargestWholeSideWithFewestRowsAsEveryColumnCountWouldGive) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{100, 100}, {300, 100}, {7, 3}, {1, 50}, {800, 600}}) {
        for (std::int64_t count = 1; count <= 150; ++count) {
            const BlockGrid grid(width, height, count, false);
            const Reference expected = BruteForce(width, height, count);
            if (expected.side == 0) {
                EXPECT_FALSE(grid.IsWhole()) << width << "x" << height << " n=" << count;
                continue;
            }
            ASSERT_TRUE(grid.IsWhole()) << width << "x" << height << " n=" << count;
            EXPECT_EQ(grid.Side(), expected.side) << width << "x" << height << " n=" << count;
            EXPECT_EQ(grid.Rows(), (count + expected.columns - 1) / expected.columns)
                << width << "x" << height << " n=" << count;
            EXPECT_EQ(grid.Left(), (width - grid.Columns() * grid.Side()) / 2);
        }
    }
    const BlockGrid five(100, 100, 5, false);
    EXPECT_EQ(five.Side(), 33);
    EXPECT_EQ(five.Columns(), 3);
    EXPECT_EQ(BlockGrid(800, 600, 1000, false).Side(), 21);
    EXPECT_TRUE(BlockGrid(0, 600, 10, false).IsEmpty());
    EXPECT_TRUE(BlockGrid(800, 600, 0, false).IsEmpty());
}

TEST(BlockGridGeometry, GapsOnlyFromThreePixelsAndHitTestByGeometry) {
    const BlockGrid gapped(90, 30, 3, true);
    ASSERT_EQ(gapped.Side(), 30);
    EXPECT_TRUE(gapped.HasGaps());
    EXPECT_EQ(gapped.WholeItemAt(0, 0), 0);
    EXPECT_EQ(gapped.WholeItemAt(28, 28), 0);
    EXPECT_EQ(gapped.WholeItemAt(29, 5), std::nullopt);  // right gap
    EXPECT_EQ(gapped.WholeItemAt(35, 29), std::nullopt); // bottom gap
    EXPECT_EQ(gapped.WholeItemAt(60, 0), 2);
    EXPECT_FALSE(BlockGrid(90, 30, 3, false).HasGaps());
    EXPECT_FALSE(BlockGrid(10, 4, 8, true).HasGaps()); // side 2

    // Five blocks on three columns: nothing right of the last block of the short row.
    const BlockGrid five(100, 100, 5, false);
    EXPECT_EQ(five.WholeItemAt(40, 40), 4);
    EXPECT_EQ(five.WholeItemAt(70, 40), std::nullopt);
    EXPECT_EQ(five.WholeItemAt(99, 10), std::nullopt); // right of the centred grid
}

TEST(BlockGridGeometry, MoreItemsThanPixelsShareThePixelsInReadingOrder) {
    const BlockGrid grid(10, 10, 400, false);
    ASSERT_FALSE(grid.IsWhole());
    EXPECT_EQ(grid.Columns(), 20);
    EXPECT_DOUBLE_EQ(grid.FractionalSide(), 0.5);
    const BlockGrid::Cell cell = grid.FractionalCell(3, 7);
    EXPECT_EQ(cell.firstColumn, 6);
    EXPECT_EQ(cell.endColumn, 8);
    EXPECT_EQ(cell.firstRow, 14);
    EXPECT_EQ(cell.endRow, 16);

    // A million items on 800 x 600: every item lands inside, and every pixel row and column
    // of the grid's extent is used.
    const BlockGrid million(800, 600, 1'000'000, false);
    ASSERT_FALSE(million.IsWhole());
    EXPECT_LT(million.FractionalSide(), 1.0);
    EXPECT_LE(million.ColumnPixel(million.Columns() - 1), 799);
    EXPECT_EQ(million.RowPixel(0), 0);
    EXPECT_LE(million.RowPixel(million.Rows() - 1), 599);
    EXPECT_GE(million.Columns() * million.Rows(), 1'000'000);
}

// ---- the usage panel's colours ----

TEST(BlockPanelDrawing, ColoursByModeReadBackFromThePicture) {
    Panel p(300, 100);
    p.control.Init(HeatMapConfig(), 0);
    const std::vector<std::int32_t> counts{0, 10, 5, 1, 10};
    p.control.SetUsage(counts);
    // Five blocks on 300 x 100: side 60 in one row.
    p.control.Redraw();
    EXPECT_EQ(p.At(10, 10), kWhite);
    EXPECT_EQ(p.At(70, 10), Hsb(200, 80, 90)); // the most used: saturation = factor
    EXPECT_EQ(p.At(130, 10), Hsb(200, 40, 90));
    EXPECT_EQ(p.At(190, 10), Hsb(200, 8, 90));
    EXPECT_EQ(p.At(250, 59), Hsb(200, 80, 90));
    EXPECT_EQ(p.At(250, 60), Rgb(kButtonFace)); // below the row of blocks

    ASSERT_NO_THROW(p.control.SetChartMode(trv5::umRandomColour));
    EXPECT_EQ(p.control.AbsentColour(), 0x102030);
    p.control.Redraw();
    EXPECT_EQ(p.At(10, 10), 0x102030);
    EXPECT_EQ(p.At(70, 10), Hsb(137, 84, 87));
    EXPECT_EQ(p.At(250, 10), Hsb(4 * 137 % 360, 55 + 4 * 29 % 46, 70 + 4 * 17 % 31));

    p.control.SetChartMode(trv5::umMonochromatic);
    // The colour as Qt Designer edits it is the same integer colour.
    p.control.setProperty("blockColour", QColor(0xC0, 0x50, 0x20));
    EXPECT_EQ(p.control.BlockColour(), 0x2050C0);
    p.control.Redraw();
    EXPECT_EQ(p.At(10, 10), kWhite);
    EXPECT_EQ(p.At(130, 50), 0x2050C0);
    EXPECT_EQ(CountOf(p.pic->Raster(), 0x2050C0), 4 * 60 * 60);
}

TEST(BlockPanelDrawing, RandomColoursBelongToTheItemIndexAndGapsFollowTheLimit) {
    Panel first(300, 100);
    auto config = HeatMapConfig();
    first.control.Init(config, 0);
    first.control.SetChartMode(trv5::umRandomColour);
    first.control.SetUsage(std::vector<std::int32_t>{1, 2, 3});
    first.control.Redraw();
    Panel second(90, 30);
    second.control.Init(config, 0);
    second.control.SetChartMode(trv5::umRandomColour);
    second.control.SetUsage(std::vector<std::int32_t>{70, 1, 9});
    second.control.Redraw();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(first.At(100 * i + 5, 5), second.At(30 * i + 5, 5)) << i;
    }
    EXPECT_EQ(second.At(29, 5), second.At(5, 5)); // three blocks above a limit of 0 touch

    config->settings["Run.UsageChart.ShowGaps.Limit"] = 3;
    second.control.Redraw();
    EXPECT_EQ(second.At(29, 5), Rgb(kButtonFace));
    EXPECT_EQ(second.At(5, 29), Rgb(kButtonFace));
    EXPECT_EQ(second.At(28, 28), first.At(5, 5));
    // A limit that is no whole number reads as 0.
    config->settings["Run.UsageChart.ShowGaps.Limit"] = QStringLiteral("many");
    second.control.Redraw();
    EXPECT_EQ(second.At(29, 5), second.At(5, 5));
}

TEST(BlockPanelDrawing, SharedPixelsShowTheLargestCountAndCostNoMoreThanThePixels) {
    Panel p(10, 10);
    p.control.Init(HeatMapConfig(), 0);
    p.control.SetChartMode(trv5::umRandomColour);
    // 400 items on 100 pixels: each pixel holds a 2 x 2 square of items.
    std::vector<std::int32_t> counts(400, 1);
    counts[21] = 5; // row 1, column 1: pixel (0, 0)
    counts[20 * 15 + 7] = 3;
    p.control.SetUsage(counts);
    p.control.Redraw();
    EXPECT_EQ(p.At(0, 0), Hsb(21 * 137 % 360, 55 + 21 * 29 % 46, 70 + 21 * 17 % 31));
    EXPECT_EQ(p.At(3, 7), Hsb(307 * 137 % 360, 55 + 307 * 29 % 46, 70 + 307 * 17 % 31));
    // Equal counts: the first item of the pixel.
    EXPECT_EQ(p.At(9, 9), Hsb(378 * 137 % 360, 55 + 378 * 29 % 46, 70 + 378 * 17 % 31));
    EXPECT_EQ(p.TipAt(0, 0), QStringLiteral(" Item 22: 5 "));
    EXPECT_EQ(p.TipAt(3, 7), QStringLiteral(" Item 308: 3 "));

    // A million items on 800 x 600, every one used: exactly the pixels that items fall on are
    // coloured.
    Panel big(800, 600);
    big.control.Init(HeatMapConfig(), 0);
    big.control.SetChartMode(trv5::umMonochromatic);
    big.control.SetUsage(std::vector<std::int32_t>(1'000'000, 1));
    big.control.Redraw();
    const BlockGrid grid(800, 600, 1'000'000, false);
    std::vector<char> covered(800 * 600, 0);
    for (std::int64_t i = 0; i < 1'000'000; ++i) {
        covered[static_cast<std::size_t>(grid.RowPixel(i / grid.Columns()) * 800 +
                                         grid.ColumnPixel(i % grid.Columns()))] = 1;
    }
    const QImage raster = big.pic->Raster();
    int mismatches = 0;
    for (int y = 0; y < 600; ++y) {
        for (int x = 0; x < 800; ++x) {
            const bool coloured = PixelAt(raster, x, y) == big.control.BlockColour();
            mismatches += coloured != (covered[static_cast<std::size_t>(y * 800 + x)] != 0);
        }
    }
    EXPECT_EQ(mismatches, 0);
    EXPECT_GT(CountOf(raster, big.control.BlockColour()), 790 * 590);
}

TEST(BlockPanelDrawing, AMissingHeatMapKeyGivesABlankPictureAndThePanelStaysUsable) {
    Panel p(300, 100);
    auto config = HeatMapConfig();
    config->settings.remove("Run.UsageChart.HeatMap.B");
    p.control.Init(config, 0);
    p.control.SetUsage(std::vector<std::int32_t>{4, 0, 2});
    p.control.Redraw();
    EXPECT_EQ(CountOf(p.pic->Raster(), Rgb(kButtonFace)), 300 * 100);
    EXPECT_EQ(p.TipAt(50, 50), QString());

    p.control.SetChartMode(trv5::umMonochromatic);
    p.control.Redraw();
    EXPECT_EQ(p.At(50, 50), p.control.BlockColour());
    EXPECT_EQ(p.TipAt(50, 50), QStringLiteral(" Item 1: 4 "));
    p.control.Clear();
    EXPECT_EQ(p.At(50, 50), Rgb(kButtonFace));
    EXPECT_EQ(p.control.ItemCount(), 3);
}

// ---- modes, settings and bad input ----

TEST(BlockPanelMode, AbsentColourComesFromTheSettingsOnlyForTheRandomMode) {
    Panel p(30, 30);
    // No configuration: modes 0 and 2 need none, mode 1 fails in the lookup.
    EXPECT_NO_THROW(p.control.SetChartMode(trv5::umMonochromatic));
    EXPECT_CHART_ERROR(p.control.SetChartMode(trv5::umRandomColour), 91);
    EXPECT_EQ(p.control.ChartMode(), trv5::umMonochromatic);
    EXPECT_EQ(p.control.AbsentColour(), kWhite);

    p.control.Init(std::make_shared<MapConfig>(QVariantMap{}), 0);
    try {
        p.control.SetChartMode(trv5::umRandomColour);
        ADD_FAILURE() << "no error for a missing key";
    } catch (const trv5::ChartError& error) {
        EXPECT_EQ(error.number(), 5);
        EXPECT_TRUE(error.description().contains("Run.UsageChart.AbsentColor.1"));
    }
    EXPECT_EQ(p.control.ChartMode(), trv5::umMonochromatic);
    EXPECT_CHART_ERROR(p.control.SetChartMode(static_cast<trv5::UsageMode>(3)), 5);
    EXPECT_CHART_ERROR(p.control.SetChartMode(static_cast<trv5::UsageMode>(-1)), 5);
    EXPECT_EQ(p.control.ChartMode(), trv5::umMonochromatic);
    p.control.SetChartMode(trv5::umHeatMap);
    EXPECT_EQ(p.control.AbsentColour(), kWhite);
}

TEST(BlockPanelInput, BadInputRaisesFiveAndChangesNothing) {
    Panel p(30, 30);
    const std::vector<QString> names{"a", "b"};
    p.control.SetUsage(std::vector<std::int32_t>{3, 4}, names);
    auto unchanged = [&] {
        EXPECT_EQ(std::vector<std::int32_t>(p.control.Usage().begin(), p.control.Usage().end()),
                  (std::vector<std::int32_t>{3, 4}));
        EXPECT_EQ(p.control.ItemName(1), QStringLiteral("b"));
    };
    EXPECT_CHART_ERROR(p.control.Init(nullptr, -1), 5);
    unchanged();
    EXPECT_CHART_ERROR(p.control.SetUsage(std::vector<std::int32_t>{1, -2}), 5);
    unchanged();
    EXPECT_CHART_ERROR(p.control.SetUsage(std::vector<std::int32_t>{1, 2, 3}, names), 5);
    unchanged();

    p.control.Init(nullptr, 4);
    EXPECT_EQ(std::vector<std::int32_t>(p.control.Usage().begin(), p.control.Usage().end()),
              (std::vector<std::int32_t>(4, 0)));
    EXPECT_TRUE(p.control.Names().empty());
    p.control.Reset();
    EXPECT_EQ(p.control.ItemCount(), 0);
}

TEST(BlockPanelSettings, TheLastInitWinsForEveryControl) {
    Panel usage(30, 30);
    Tapestry tapestry(30, 30);
    usage.control.Init(std::make_shared<MapConfig>(QVariantMap{}), 0);
    EXPECT_CHART_ERROR(usage.control.SetChartMode(trv5::umRandomColour), 5);
    // No tapestry colours in this configuration: the slot changes all the same.
    EXPECT_CHART_ERROR(tapestry.control.Init(HeatMapConfig()), 5);
    EXPECT_NO_THROW(usage.control.SetChartMode(trv5::umRandomColour));
}

// ---- tool tips and copied text ----

TEST(BlockPanelText, ToolTipsNameTheBlockUnderTheMouseAndNothingOverTheGap) {
    Panel p(90, 30);
    p.control.Init(std::make_shared<MapConfig>(QVariantMap{{"Run.UsageChart.ShowGaps.Limit", 10}}),
                   0);
    p.control.SetChartMode(trv5::umMonochromatic);
    const std::vector<QString> names{"Alpha", "Beta", "Gamma"};
    p.control.SetUsage(std::vector<std::int32_t>{5, 0, 12}, names);
    p.control.Redraw();
    EXPECT_EQ(p.TipAt(10, 10), QStringLiteral(" Alpha: 5 "));
    EXPECT_EQ(p.TipAt(40, 10), QStringLiteral(" Beta: 0 "));
    EXPECT_EQ(p.TipAt(29, 10), QString());
    EXPECT_EQ(p.TipAt(70, 28), QStringLiteral(" Gamma: 12 "));
    EXPECT_EQ(p.TipAt(70, 29), QString());
    p.control.SetUsage(std::vector<std::int32_t>{5, 0, 12});
    EXPECT_EQ(p.TipAt(70, 5), QStringLiteral(" Item 3: 12 "));
}

TEST(BlockPanelText, CopiedDataIsTheSameInGermanAndEnglish) {
    for (const QLocale& locale : {trv5::test::German(), trv5::test::BritishEnglish()}) {
        trv5::test::ScopedLocale scoped(locale);
        Panel p(60, 30);
        ClipboardAccess::SetText(QStringLiteral("before"));
        p.control.CopyChartData();
        EXPECT_EQ(ClipboardAccess::Text(), QStringLiteral("before")); // an empty panel

        p.control.SetDataPointName(QStringLiteral("  Uses: "));
        const std::vector<QString> names{"x1", "Länge"};
        p.control.SetUsage(std::vector<std::int32_t>{12345, 0}, names);
        p.MenuItem(trv5::pmiCopyData)->trigger();
        EXPECT_EQ(ClipboardAccess::Text(), QStringLiteral("Item\tUses\r\nx1\t12345\r\nLänge\t0"));
        p.control.SetDataPointName(QStringLiteral("Usage"));
        p.control.SetUsage(std::vector<std::int32_t>{7, 1000});
        p.control.CopyChartData();
        EXPECT_EQ(ClipboardAccess::Text(),
                  QStringLiteral("Item\tUsage\r\nItem 1\t7\r\nItem 2\t1000"));

        Tapestry t(60, 30);
        t.control.CopyChartData();
        EXPECT_EQ(ClipboardAccess::Text(),
                  QStringLiteral("Item\tUsage\r\nItem 1\t7\r\nItem 2\t1000"));
        t.control.SetData(std::vector<std::int32_t>{1, 0, -1},
                          std::vector<std::int32_t>{17, 1001, 19});
        t.MenuItem(trv5::pmiCopyData)->trigger();
        EXPECT_EQ(ClipboardAccess::Text(),
                  QStringLiteral("Record ID\tClass\r\n17\t1\r\n1001\t0\r\n19\t-1"));
    }
}

TEST(BlockPanelMenu, CopiesAndPrintsThePictureAndOpensOnlyWhenAllowed) {
    Panel p(60, 30);
    p.control.SetChartMode(trv5::umMonochromatic);
    p.control.SetUsage(std::vector<std::int32_t>{1, 2});
    p.control.Redraw();
    QMenu* menu = trv5::test::CheckCopyPrintMenu(p.control);
    ASSERT_NE(menu, nullptr);

    p.MenuItem(trv5::pmiCopy)->trigger();
    EXPECT_FALSE(menu->isVisible());
    const QImage copied = ClipboardAccess::Image();
    ASSERT_EQ(copied.size(), QSize(66, 36));
    EXPECT_EQ(PixelAt(copied, kInset + 10, kInset + 10), p.control.BlockColour());

    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("blocks.pdf"));
    auto dialog = std::make_shared<trv5::test::PdfDialog>(file);
    p.control.SetPrintDialog(dialog);
    p.MenuItem(trv5::pmiPrint)->trigger();
    EXPECT_EQ(dialog->shown, 1);
    QFile pdf(file);
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    const QByteArray printed = pdf.readAll();
    EXPECT_TRUE(printed.contains("/Width 66"));
    EXPECT_FALSE(printed.contains("/DCTDecode")) << "stored without loss";
}

// Both panels report a print that fails through PrintFailed (a cancel is no failure) and open
// the preview of the page they print.
template <class Control> void CheckPrintFailureAndPreview(Control& pControl, QAction* pPrint) {
    QStringList failures;
    QObject::connect(&pControl, &Control::PrintFailed,
                     [&](const QString& pMessage) { failures << pMessage; });
    auto dialog =
        std::make_shared<trv5::test::PdfDialog>(QStringLiteral("/nonexistent-folder/blocks.pdf"));
    pControl.SetPrintDialog(dialog);
    dialog->cancel = true;
    pPrint->trigger();
    EXPECT_TRUE(failures.isEmpty());
    dialog->cancel = false;
    pPrint->trigger();
    ASSERT_EQ(failures.size(), 1);
    EXPECT_TRUE(failures.front().contains(QStringLiteral("/nonexistent-folder/blocks.pdf")));

    // Closes the preview once it is open.
    QString preview;
    QTimer answer;
    answer.setInterval(10);
    QObject::connect(&answer, &QTimer::timeout, [&] {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (qobject_cast<QDialog*>(window) != nullptr && window->isVisible()) {
                preview = window->objectName();
                answer.stop();
                window->close();
            }
        }
    });
    answer.start();
    pControl.PrintPreview();
    EXPECT_EQ(preview, QStringLiteral("dlgPrintPreview"));
}

TEST(BlockPanelMenu, PrintFailuresAreSignalledAndThePreviewShowsThePage) {
    Panel p(60, 30);
    p.control.SetChartMode(trv5::umMonochromatic);
    p.control.SetUsage(std::vector<std::int32_t>{1, 2});
    p.control.Redraw();
    CheckPrintFailureAndPreview(p.control, p.MenuItem(trv5::pmiPrint));

    Tapestry t(60, 30);
    t.control.SetData(std::vector<std::int32_t>{1, 0}, std::vector<std::int32_t>{7, 8});
    t.control.Redraw();
    CheckPrintFailureAndPreview(t.control, t.MenuItem(trv5::pmiPrint));
}

// ---- saved state ----

TEST(BlockPanelState, WritesTheElementAndReadsItBackByteForByte) {
    Panel p(60, 30);
    const std::vector<QString> names{"a<b", "c"};
    p.control.SetUsage(std::vector<std::int32_t>{3, 0}, names);
    EXPECT_EQ(p.control.ToString(),
              QStringLiteral("<BlockPanel chartmode='0' count='2'><block name=\"a&lt;b\" "
                             "usage=\"3\"/><block name=\"c\" usage=\"0\"/></BlockPanel>"));
    EXPECT_TRUE(p.control.IsTypeOf(p.control.ToString()));
    EXPECT_FALSE(p.control.IsTypeOf(QStringLiteral("<BlockPanel count='2'>")));

    // Every character XML reserves, controls, quotes of both kinds and text beyond ASCII.
    const std::vector<QString> hostile{QStringLiteral("<&>\"' \t\r\n\x01]]>"),
                                       QStringLiteral("Größe ∑ 😀"), QStringLiteral("&amp;"),
                                       QString()};
    p.control.SetUsage(std::vector<std::int32_t>{1, 2147483647, 0, 9}, hostile);
    p.control.SetChartMode(trv5::umMonochromatic);
    const QString saved = p.control.ToString();
    Panel restored(60, 30);
    restored.control.FromString(saved);
    EXPECT_EQ(restored.control.ToString(), saved);
    EXPECT_EQ(restored.control.ChartMode(), trv5::umMonochromatic);
    EXPECT_EQ(restored.control.ItemName(1), hostile[1]);
    EXPECT_EQ(restored.control.ItemName(2), hostile[2]);
    EXPECT_EQ(restored.control.Usage()[1], 2147483647);
    EXPECT_EQ(restored.At(5, 5), restored.control.BlockColour()); // redrawn

    // A panel without names writes empty ones and stays without names.
    p.control.SetUsage(std::vector<std::int32_t>{4, 5});
    restored.control.FromString(p.control.ToString());
    EXPECT_EQ(restored.control.ToString(), p.control.ToString());
    EXPECT_TRUE(restored.control.Names().empty());
    EXPECT_EQ(restored.control.ItemName(0), QStringLiteral("Item 1"));
}

TEST(BlockPanelState, TenThousandBlocksRoundTrip) {
    Panel p(200, 100);
    std::vector<std::int32_t> counts;
    std::vector<QString> names;
    for (int i = 0; i < 10'000; ++i) {
        counts.push_back(i % 97);
        names.push_back(QStringLiteral("v%1").arg(i));
    }
    p.control.SetUsage(counts, names);
    const QString saved = p.control.ToString();
    Panel restored(200, 100);
    restored.control.FromString(saved);
    EXPECT_EQ(restored.control.ItemCount(), 10'000);
    EXPECT_EQ(restored.control.ItemName(9'999), QStringLiteral("v9999"));
    EXPECT_EQ(restored.control.ToString(), saved);
}

TEST(BlockPanelState, DamagedTextKeepsWhatWasReadBeforeTheDamage) {
    Panel p(60, 30);
    p.control.SetChartMode(trv5::umMonochromatic);
    p.control.SetUsage(std::vector<std::int32_t>{8, 9});
    p.control.Redraw();
    const QString before = p.control.ToString();
    for (const char* text :
         {"", "<BlockPanel chartmode='2' count='1'><block name='x' usa",
          "<Other chartmode='0' count='1'/>", "<BlockPanel/>",
          "<BlockPanel chartmode='0' count='-3'/>", "<BlockPanel chartmode='x' count='1'/>"}) {
        p.control.FromString(QString::fromUtf8(text));
        EXPECT_EQ(p.control.ToString(), before) << text;
    }

    // A huge count backed by two blocks: the blocks are kept, nothing is set aside for the
    // claim, and the load stops before the mode.
    p.control.FromString(QStringLiteral("<BlockPanel chartmode='0' count='2147483647'>"
                                        "<block name='a' usage='1'/><block name='b' "
                                        "usage='2'/></BlockPanel>"));
    EXPECT_EQ(p.control.ItemCount(), 2);
    EXPECT_EQ(p.control.ItemName(1), QStringLiteral("b"));
    EXPECT_EQ(p.control.ChartMode(), trv5::umMonochromatic);
    EXPECT_EQ(CountOf(p.pic->Raster(), Rgb(kButtonFace)), 60 * 30); // picture wiped

    // A bad usage ends the reading there; a count below the blocks reads only that many.
    p.control.FromString(QStringLiteral("<BlockPanel chartmode='2' count='3'><block name='a' "
                                        "usage='5'/><block name='b' usage='-1'/><block "
                                        "name='c' usage='1'/></BlockPanel>"));
    EXPECT_EQ(std::vector<std::int32_t>(p.control.Usage().begin(), p.control.Usage().end()),
              (std::vector<std::int32_t>{5}));
    p.control.FromString(QStringLiteral("<BlockPanel chartmode='2' count='1'><block name='a' "
                                        "usage='5'/><block name='b' usage='6'/></BlockPanel>"));
    EXPECT_EQ(p.control.ItemCount(), 1);

    // A mode that needs a missing setting stops the load after the blocks.
    p.control.FromString(QStringLiteral("<BlockPanel chartmode='1' count='1'><block name='z' "
                                        "usage='4'/></BlockPanel>"));
    EXPECT_EQ(p.control.ItemName(0), QStringLiteral("z"));
    EXPECT_EQ(p.control.ChartMode(), trv5::umMonochromatic);
}

// ---- the classification tapestry ----

namespace {

std::shared_ptr<MapConfig> TapestryConfig() {
    QVariantMap settings{{"Run.UsageChart.AbsentColor.1", 0x404040}};
    const auto add = [&](const QString& pBase, int pRed, int pGreen, int pBlue) {
        settings.insert(pBase + ".R", pRed);
        settings.insert(pBase + ".G", pGreen);
        settings.insert(pBase + ".B", QString::number(pBlue));
    };
    add("ClassificationTapestry.HighColor", 200, 10, 20);
    add("ClassificationTapestry.LowColor", 10, 200, 20);
    add("ClassificationTapestry.HighColor.Inverted", 1, 2, 3);
    add("ClassificationTapestry.LowColor.Inverted", 4, 5, 6);
    add("ClassificationTapestry.SingleColor", 90, 80, 70);
    return std::make_shared<MapConfig>(settings);
}

} // namespace

TEST(BlockPanelSimpleDrawing, ColoursByClassModeAndInversion) {
    Tapestry t(300, 100);
    t.control.Init(TapestryConfig());
    EXPECT_EQ(t.control.HighColour(), ColorConverter::RGBToLong(200, 10, 20));
    t.control.SetData(std::vector<std::int32_t>{1, 0, -1}, std::vector<std::int32_t>{7, 8, 9});
    t.control.Redraw();
    EXPECT_EQ(t.At(50, 50), ColorConverter::RGBToLong(200, 10, 20));
    EXPECT_EQ(t.At(150, 50), ColorConverter::RGBToLong(10, 200, 20));
    EXPECT_EQ(t.At(250, 50), kWhite);

    t.control.SetInverted(true);
    t.control.SetChartMode(trv5::tmAbsentColoured);
    t.control.Redraw();
    EXPECT_EQ(t.At(50, 50), ColorConverter::RGBToLong(1, 2, 3));
    EXPECT_EQ(t.At(150, 50), ColorConverter::RGBToLong(4, 5, 6));
    EXPECT_EQ(t.At(250, 50), 0x404040);

    t.control.SetChartMode(trv5::tmSingleColour);
    t.control.Redraw();
    EXPECT_EQ(t.At(50, 50), ColorConverter::RGBToLong(90, 80, 70));
    EXPECT_EQ(t.At(150, 50), kWhite);
    EXPECT_EQ(t.At(250, 50), kWhite);

    EXPECT_EQ(t.TipAt(50, 50), QStringLiteral("Record 7 (1)"));
    EXPECT_EQ(t.TipAt(150, 50), QStringLiteral("Record 8 (0)"));
    EXPECT_EQ(t.TipAt(250, 50), QStringLiteral("Record 9 (no outcome)"));

    // More records than pixels: a high record wins its pixel over low and absent ones.
    Tapestry small(10, 10);
    small.control.Init(TapestryConfig());
    std::vector<std::int32_t> classes(400, -1);
    std::vector<std::int32_t> ids(400);
    for (int i = 0; i < 400; ++i) {
        ids[static_cast<std::size_t>(i)] = 1000 + i;
    }
    classes[1] = 0;
    classes[20] = 1;
    small.control.SetData(classes, ids);
    small.control.Redraw();
    EXPECT_EQ(small.At(0, 0), ColorConverter::RGBToLong(200, 10, 20));
    EXPECT_EQ(small.TipAt(0, 0), QStringLiteral("Record 1020 (1)"));
    EXPECT_EQ(small.At(1, 0), kWhite);
}

TEST(BlockPanelSimpleInput, BadInputRaisesFiveAndChangesNothing) {
    Tapestry t(30, 30);
    t.control.Init(TapestryConfig());
    auto partial = TapestryConfig();
    partial->settings.remove("ClassificationTapestry.SingleColor.G");
    try {
        t.control.Init(partial);
        ADD_FAILURE() << "no error for a missing key";
    } catch (const trv5::ChartError& error) {
        EXPECT_EQ(error.number(), 5);
        EXPECT_TRUE(error.description().contains("ClassificationTapestry.SingleColor.G"));
    }
    EXPECT_EQ(t.control.HighColour(), ColorConverter::RGBToLong(200, 10, 20));
    EXPECT_EQ(t.control.SingleColour(), ColorConverter::RGBToLong(90, 80, 70));

    t.control.SetData(std::vector<std::int32_t>{1}, std::vector<std::int32_t>{5});
    EXPECT_CHART_ERROR(
        t.control.SetData(std::vector<std::int32_t>{1, 0}, std::vector<std::int32_t>{5}), 5);
    EXPECT_EQ(t.control.RecordCount(), 1);
    EXPECT_EQ(t.control.RecordIds()[0], 5);

    // Without a configuration every colour is black and mode 1 cannot be set.
    t.control.Init(nullptr);
    EXPECT_EQ(t.control.HighColour(), 0);
    EXPECT_CHART_ERROR(t.control.SetChartMode(trv5::tmAbsentColoured), 91);
    EXPECT_EQ(t.control.ChartMode(), trv5::tmHighLow);
    t.control.Reset();
    EXPECT_EQ(t.control.RecordCount(), 0);
}

TEST(BlockPanelSimpleDrawing, ResizeLaysTheGridOutAgain) {
    Tapestry t(100, 100);
    t.control.Init(TapestryConfig());
    t.control.SetData(std::vector<std::int32_t>{1, 0, 1, 0}, std::vector<std::int32_t>{1, 2, 3, 4});
    t.control.Redraw();
    EXPECT_EQ(t.At(75, 75), ColorConverter::RGBToLong(10, 200, 20)); // 2 x 2 grid
    t.control.resize(400 + 2 * kInset, 100 + 2 * kInset);
    EXPECT_EQ(t.pic->Raster().width(), 400);
    EXPECT_EQ(t.At(350, 50), ColorConverter::RGBToLong(10, 200, 20)); // one row of four
    EXPECT_EQ(t.TipAt(250, 50), QStringLiteral("Record 3 (1)"));

    // A control that was never shown gets no resize events, and draws at its size all the same.
    BlockPanel hidden;
    hidden.resize(100 + 2 * kInset, 50 + 2 * kInset);
    hidden.SetChartMode(trv5::umMonochromatic);
    hidden.SetUsage(std::vector<std::int32_t>{1, 1});
    hidden.Redraw();
    const auto* pic = hidden.findChild<DrawingSurface*>(QStringLiteral("pic"));
    ASSERT_EQ(pic->Raster().size(), QSize(100, 50));
    EXPECT_EQ(PixelAt(pic->Raster(), 99, 49), hidden.BlockColour());
}
