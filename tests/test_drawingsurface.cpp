#include "platform/drawingsurface.h"

#include "pixelsupport.h"
#include "testsupport.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using trv5::platform::DrawingSurface;

using trv5::test::PixelAt;

namespace {

constexpr std::int32_t kWhite = 0xFFFFFF;
constexpr std::int32_t kBlack = 0x000000;
// Distinct values in every channel, so that a swapped channel order cannot pass.
constexpr std::int32_t kBar = 0x123456;
constexpr std::int32_t kInk = 0x0A0B0C;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

int CountInRow(const QImage& pImage, int pRow, std::int32_t pColour) {
    int count = 0;
    for (int x = 0; x < pImage.width(); ++x) {
        count += PixelAt(pImage, x, pRow) == pColour ? 1 : 0;
    }
    return count;
}

int CountInImage(const QImage& pImage, std::int32_t pColour) {
    int count = 0;
    for (int y = 0; y < pImage.height(); ++y) {
        count += CountInRow(pImage, y, pColour);
    }
    return count;
}

// The bounding box of everything that is not the white background.
QRect InkBounds(const QImage& pImage) {
    QRect ink;
    for (int y = 0; y < pImage.height(); ++y) {
        for (int x = 0; x < pImage.width(); ++x) {
            if (PixelAt(pImage, x, y) != kWhite) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

// A 100 x 50 widget pixel surface on a white background, at the given device pixel ratio.
struct Surface {
    explicit Surface(double pRatio = 1.0, int pWidth = 100, int pHeight = 50) {
        widget.resize(pWidth, pHeight);
        widget.SetDevicePixelRatioForTesting(pRatio);
        widget.SetBackColor(kWhite);
        widget.Cls();
    }
    DrawingSurface widget;
};

} // namespace

// ---- coordinate system ----

TEST(DrawingSurfaceScale, PixelModeFollowsTheWidgetAndUserScaleSurvivesResize) {
    Surface s;
    EXPECT_EQ(s.widget.GetScaleMode(), DrawingSurface::ScaleMode::Pixel);
    EXPECT_EQ(s.widget.ScaleWidth(), 100.0);
    EXPECT_EQ(s.widget.ScaleHeight(), 50.0);
    s.widget.resize(120, 60);
    EXPECT_EQ(s.widget.ScaleWidth(), 120.0);

    // Setting one part keeps the rest of the scale in force.
    s.widget.SetScaleTop(10.0);
    EXPECT_EQ(s.widget.GetScaleMode(), DrawingSurface::ScaleMode::User);
    EXPECT_EQ(s.widget.ScaleWidth(), 120.0);
    EXPECT_EQ(s.widget.ScaleHeight(), 60.0);
    EXPECT_EQ(s.widget.ScaleTop(), 10.0);

    s.widget.SetScale(0.0, 1.2, 1000.0, -1.2);
    s.widget.resize(80, 40);
    EXPECT_EQ(s.widget.ScaleLeft(), 0.0);
    EXPECT_EQ(s.widget.ScaleTop(), 1.2);
    EXPECT_EQ(s.widget.ScaleWidth(), 1000.0);
    EXPECT_EQ(s.widget.ScaleHeight(), -1.2);

    s.widget.SetScaleMode(DrawingSurface::ScaleMode::Pixel);
    EXPECT_EQ(s.widget.ScaleTop(), 0.0);
    EXPECT_EQ(s.widget.ScaleWidth(), 80.0);
    EXPECT_EQ(s.widget.ScaleHeight(), 40.0);
}

TEST(DrawingSurfaceScale, ConversionsRoundTripAndKeepTheDirectionOfTheAxes) {
    Surface s;
    s.widget.SetScale(-5.0, 10.0, 20.0, -10.0); // 5 pixels per unit, y upward
    using Mode = DrawingSurface::ScaleMode;
    EXPECT_DOUBLE_EQ(s.widget.ToPixelX(-5.0), 0.0);
    EXPECT_DOUBLE_EQ(s.widget.ToPixelX(15.0), 100.0);
    EXPECT_DOUBLE_EQ(s.widget.ToPixelY(10.0), 0.0);
    EXPECT_DOUBLE_EQ(s.widget.ToPixelY(0.0), 50.0);
    EXPECT_DOUBLE_EQ(s.widget.ScaleX(2.0, Mode::User, Mode::Pixel), 10.0);
    EXPECT_DOUBLE_EQ(s.widget.ScaleY(2.0, Mode::User, Mode::Pixel), -10.0);
    EXPECT_DOUBLE_EQ(s.widget.ScaleX(6.0, Mode::Pixel, Mode::User), 1.2);
    EXPECT_DOUBLE_EQ(s.widget.ScaleY(7.0, Mode::Pixel, Mode::Pixel), 7.0);
    for (double v : {-5.0, -1.25, 0.0, 3.3, 15.0, 1e6}) {
        EXPECT_NEAR(s.widget.ToUserX(s.widget.ToPixelX(v)), v, 1e-9 * (1.0 + std::abs(v)));
        EXPECT_NEAR(s.widget.ToUserY(s.widget.ToPixelY(v)), v, 1e-9 * (1.0 + std::abs(v)));
        EXPECT_NEAR(
            s.widget.ScaleY(s.widget.ScaleY(v, Mode::User, Mode::Pixel), Mode::Pixel, Mode::User),
            v, 1e-9 * (1.0 + std::abs(v)));
    }
    s.widget.SetScaleWidth(0.0);
    EXPECT_TRUE(std::isnan(s.widget.ToPixelX(1.0)));
    EXPECT_TRUE(std::isnan(s.widget.ScaleX(1.0, Mode::User, Mode::Pixel)));
}

// ---- raster ----

TEST(DrawingSurfaceRaster, HasTheWidgetSizeInDevicePixelsAndFollowsTheRatio) {
    Surface s(2.0);
    const QImage& raster = s.widget.Raster();
    EXPECT_EQ(raster.size(), QSize(200, 100));
    EXPECT_EQ(raster.devicePixelRatio(), 2.0);

    // A fractional ratio still maps the whole scale onto the whole raster.
    s.widget.SetDevicePixelRatioForTesting(1.5);
    EXPECT_EQ(s.widget.Raster().size(), QSize(150, 75));
    s.widget.FilledBox(0.0, 0.0, 100.0, 50.0, kBar);
    EXPECT_EQ(CountInImage(s.widget.Raster(), kBar), 150 * 75);
}

TEST(DrawingSurfaceRaster, ClsClearsToTheBackColourAndResizeStartsAClearPicture) {
    Surface s;
    s.widget.FilledBox(0.0, 0.0, 100.0, 50.0, kBar);
    s.widget.SetCurrentX(30.0);
    s.widget.SetCurrentY(20.0);
    s.widget.SetBackColor(0x00FF00);
    EXPECT_EQ(s.widget.Point(10.0, 10.0), kBar) << "BackColor alone must not clear";
    s.widget.Cls();
    EXPECT_EQ(CountInImage(s.widget.Raster(), 0x00FF00), 100 * 50);
    EXPECT_EQ(s.widget.CurrentX(), 0.0);
    EXPECT_EQ(s.widget.CurrentY(), 0.0);

    s.widget.FilledBox(0.0, 0.0, 100.0, 50.0, kBar);
    s.widget.resize(60, 30);
    EXPECT_EQ(s.widget.Raster().size(), QSize(60, 30));
    EXPECT_EQ(CountInImage(s.widget.Raster(), 0x00FF00), 60 * 30);
}

TEST(DrawingSurfaceRaster, ANewRatioKeepsThePictureAndTheWidgetShowsIt) {
    Surface s;
    s.widget.FilledBox(0.0, 0.0, 50.0, 50.0, kBar);
    s.widget.SetDevicePixelRatioForTesting(2.0);
    EXPECT_EQ(s.widget.Point(10.0, 10.0), kBar);
    EXPECT_EQ(s.widget.Point(75.0, 10.0), kWhite);

    s.widget.SetDevicePixelRatioForTesting(0.0); // back to the screen's ratio
    s.widget.FilledBox(50.0, 0.0, 100.0, 50.0, kInk);
    const QImage shown = s.widget.grab().toImage();
    ASSERT_EQ(shown.size(), QSize(100, 50));
    EXPECT_EQ(PixelAt(shown, 10, 10), kBar);
    EXPECT_EQ(PixelAt(shown, 90, 40), kInk);
}

TEST(DrawingSurfaceRaster, APictureDrawnWhileHiddenSurvivesShowing) {
    // A hidden widget receives its resize event only when it is shown; that late event must
    // not wipe what a chart drew beforehand (for example to copy or print itself).
    Surface s;
    s.widget.FilledBox(10.0, 10.0, 20.0, 20.0, kBar);
    s.widget.show();
    EXPECT_EQ(s.widget.Point(15.0, 15.0), kBar);
    EXPECT_EQ(PixelAt(s.widget.grab().toImage(), 15, 15), kBar);
    s.widget.hide();
}

// ---- shapes and read-back ----

TEST(DrawingSurfaceShapes, FilledBoxCoversExactlyItsPixelsUnderAnUpwardScale) {
    for (double ratio : {1.0, 2.0}) {
        SCOPED_TRACE(ratio);
        Surface s(ratio);
        s.widget.SetScale(0.0, 10.0, 20.0, -10.0); // 5 widget pixels per unit, y upward
        s.widget.FilledBox(2.0, 1.0, 4.0, 3.0, kBar);
        // x 2..4 -> pixels 10..19; y 3..1 -> rows 35..44 (y = 0 is the bottom edge).
        const QImage& raster = s.widget.Raster();
        const int r = static_cast<int>(ratio);
        EXPECT_EQ(CountInImage(raster, kBar), 10 * 10 * r * r);
        EXPECT_EQ(PixelAt(raster, 10 * r, 35 * r), kBar);
        EXPECT_EQ(PixelAt(raster, 20 * r - 1, 45 * r - 1), kBar);
        EXPECT_EQ(PixelAt(raster, 10 * r - 1, 40 * r), kWhite);
        EXPECT_EQ(PixelAt(raster, 20 * r, 40 * r), kWhite);
        EXPECT_EQ(PixelAt(raster, 15 * r, 35 * r - 1), kWhite);
        EXPECT_EQ(PixelAt(raster, 15 * r, 45 * r), kWhite);
        EXPECT_EQ(s.widget.Point(2.0, 1.01), kBar);
        EXPECT_EQ(s.widget.Point(3.99, 2.99), kBar);
        EXPECT_EQ(s.widget.Point(4.0, 2.0), kWhite);
        EXPECT_EQ(s.widget.Point(3.0, 0.99), kWhite);
    }
}

TEST(DrawingSurfaceShapes, ABoxOfZeroHeightStillShowsAndOutlinesFrameTheFilledPixels) {
    Surface s;
    s.widget.SetScale(0.0, 10.0, 20.0, -10.0);
    s.widget.FilledBox(2.0, 5.0, 4.0, 5.0, kBar);
    EXPECT_EQ(CountInImage(s.widget.Raster(), kBar), 10);

    s.widget.Cls();
    s.widget.FilledBox(2.0, 1.0, 4.0, 3.0, kBar);
    s.widget.SetForeColor(kInk);
    s.widget.Box(2.0, 1.0, 4.0, 3.0);
    const QImage& raster = s.widget.Raster();
    EXPECT_EQ(CountInImage(raster, kInk), 36) << "the 10 x 10 box's border pixels";
    EXPECT_EQ(CountInImage(raster, kBar), 64);
    EXPECT_EQ(PixelAt(raster, 10, 35), kInk);
    EXPECT_EQ(PixelAt(raster, 19, 44), kInk);
    EXPECT_EQ(s.widget.CurrentX(), 4.0);
    EXPECT_EQ(s.widget.CurrentY(), 3.0);
}

TEST(DrawingSurfaceShapes, PointReturnsExactlyTheColourOfLinesAtAnyRatio) {
    for (double ratio : {1.0, 2.0, 1.5}) {
        SCOPED_TRACE(ratio);
        Surface s(ratio);
        s.widget.SetScale(0.0, 1.0, 1.0, -1.0);
        s.widget.SetForeColor(kBar);
        s.widget.Line(0.1, 0.5, 0.9, 0.5);
        s.widget.SetForeColor(0x0000FF); // pure red: red lives in the low byte
        s.widget.Line(0.5, 0.1, 0.5, 0.9);
        s.widget.SetForeColor(kInk);
        s.widget.Line(0.05, 0.05, 0.45, 0.45);
        EXPECT_EQ(s.widget.Point(0.1, 0.5), kBar) << "first end point";
        EXPECT_EQ(s.widget.Point(0.3, 0.5), kBar);
        EXPECT_EQ(s.widget.Point(0.9, 0.5), kBar) << "last end point";
        EXPECT_EQ(s.widget.Point(0.5, 0.8), 0x0000FF);
        EXPECT_EQ(s.widget.Point(0.25, 0.25), kInk);
        EXPECT_EQ(s.widget.Point(0.3, 0.7), kWhite);
        EXPECT_EQ(s.widget.Point(0.95, 0.5), kWhite);
        EXPECT_EQ(s.widget.Raster().devicePixelRatio(), ratio);
    }
}

TEST(DrawingSurfaceShapes, LinesMoveTheCurrentPositionAndHaveTheirWidth) {
    Surface s(2.0);
    s.widget.SetForeColor(kBar);
    s.widget.SetCurrentX(10.0);
    s.widget.SetCurrentY(20.0);
    s.widget.LineTo(90.0, 20.0);
    EXPECT_EQ(s.widget.CurrentX(), 90.0);
    EXPECT_EQ(s.widget.CurrentY(), 20.0);
    // One widget pixel is two device rows, both drawn.
    EXPECT_EQ(CountInRow(s.widget.Raster(), 40, kBar), CountInRow(s.widget.Raster(), 41, kBar));
    EXPECT_EQ(CountInRow(s.widget.Raster(), 39, kBar), 0);
    EXPECT_EQ(CountInRow(s.widget.Raster(), 42, kBar), 0);

    s.widget.SetDrawWidth(3);
    s.widget.Line(10.0, 30.0, 90.0, 30.0);
    for (double y : {30.0, 31.0, 32.0}) {
        EXPECT_EQ(s.widget.Point(50.0, y), kBar) << y;
    }
    EXPECT_EQ(s.widget.Point(50.0, 33.0), kWhite);
    EXPECT_EQ(s.widget.Point(50.0, 29.0), kWhite);

    // A line of no length marks its point.
    s.widget.SetDrawWidth(1);
    s.widget.Line(5.0, 45.0, 5.0, 45.0);
    EXPECT_EQ(s.widget.Point(5.0, 45.0), kBar);
    s.widget.PSet(70.0, 45.0, kInk);
    EXPECT_EQ(s.widget.Point(70.0, 45.0), kInk);
    EXPECT_EQ(s.widget.CurrentX(), 70.0);
}

TEST(DrawingSurfaceShapes, DrawStylesLeaveGapsAndInvisibleDrawsNothing) {
    Surface s;
    s.widget.SetForeColor(kBar);
    s.widget.Line(0.0, 10.0, 99.0, 10.0);
    const int solid = CountInRow(s.widget.Raster(), 10, kBar);
    EXPECT_EQ(solid, 100);
    int previous = solid;
    const int rowOf[] = {20, 30, 40};
    const DrawingSurface::DrawStyle styles[] = {DrawingSurface::DrawStyle::Dash,
                                                DrawingSurface::DrawStyle::DashDot,
                                                DrawingSurface::DrawStyle::Dot};
    for (int i = 0; i < 3; ++i) {
        s.widget.SetDrawStyle(styles[i]);
        s.widget.Line(0.0, rowOf[i], 99.0, rowOf[i]);
        const int drawn = CountInRow(s.widget.Raster(), rowOf[i], kBar);
        EXPECT_GT(drawn, 10) << i;
        EXPECT_LT(drawn, previous) << "each style leaves more gaps than the one before " << i;
        previous = drawn;
    }
    s.widget.SetDrawStyle(DrawingSurface::DrawStyle::Invisible);
    s.widget.Line(0.0, 45.0, 99.0, 45.0);
    s.widget.Box(10.0, 42.0, 90.0, 48.0);
    EXPECT_EQ(CountInRow(s.widget.Raster(), 45, kBar), 0);
    EXPECT_EQ(CountInRow(s.widget.Raster(), 42, kBar), 0);
}

TEST(DrawingSurfaceShapes, CirclesAreFilledByFillStyleAndStayRound) {
    for (double ratio : {1.0, 2.0}) {
        SCOPED_TRACE(ratio);
        Surface s(ratio);
        // Ten units across but only five down: the radius counts in horizontal units.
        s.widget.SetScale(0.0, 5.0, 10.0, -5.0);
        s.widget.SetForeColor(kInk);
        s.widget.SetFillColor(kBar);
        s.widget.SetFillStyle(DrawingSurface::FillStyle::Solid);
        s.widget.Circle(2.5, 2.5, 2.0); // 20 widget pixels
        EXPECT_EQ(s.widget.Point(2.5, 2.5), kBar);
        EXPECT_EQ(s.widget.Point(2.5, 4.2), kBar) << "17 pixels up, inside the radius";
        EXPECT_EQ(s.widget.Point(4.2, 2.5), kBar);
        EXPECT_EQ(s.widget.Point(2.5, 4.7), kWhite);
        EXPECT_EQ(s.widget.Point(4.7, 2.5), kWhite);
        const int r = static_cast<int>(ratio);
        EXPECT_GE(CountInRow(s.widget.Raster(), 25 * r, kInk), 2) << "the outline";

        s.widget.SetFillStyle(DrawingSurface::FillStyle::Transparent);
        s.widget.Circle(7.5, 2.5, 1.0);
        EXPECT_EQ(s.widget.Point(7.5, 2.5), kWhite);
        EXPECT_EQ(s.widget.Point(7.45, 3.45), kInk) << "top of the ring";
    }
}

// ---- text ----

TEST(DrawingSurfaceText, PrintWritesAtTheCurrentPositionAndMovesDownOneLine) {
    for (double ratio : {1.0, 2.0}) {
        SCOPED_TRACE(ratio);
        Surface s(ratio, 200, 100);
        s.widget.SetScale(0.0, 10.0, 20.0, -10.0); // y upward: a lower line has smaller y
        s.widget.SetForeColor(kBlack);
        const double height = s.widget.TextHeight(QStringLiteral("Wg"));
        const double width = s.widget.TextWidth(QStringLiteral("WWWW"));
        ASSERT_GT(height, 0.0);
        ASSERT_GT(width, 0.0);
        EXPECT_NEAR(s.widget.TextHeight(QStringLiteral("a\nb")), 2.0 * height, 1e-9);

        s.widget.SetCurrentX(5.0);
        s.widget.SetCurrentY(8.0);
        s.widget.Print(QStringLiteral("WWWW"));
        EXPECT_EQ(s.widget.CurrentX(), 0.0);
        EXPECT_NEAR(s.widget.CurrentY(), 8.0 - height, 1e-9);

        // Ink lies inside the measured box and nowhere else.
        const QRect ink = InkBounds(s.widget.Raster());
        ASSERT_FALSE(ink.isEmpty());
        const double perUnit = 10.0 * ratio;
        EXPECT_GE(ink.left(), 5.0 * perUnit - 1.0);
        EXPECT_LE(ink.right(), (5.0 + width) * perUnit + 1.0);
        EXPECT_GE(ink.top(), 2.0 * perUnit - 1.0);
        EXPECT_LE(ink.bottom(), (2.0 + height) * perUnit + 1.0);
        EXPECT_GT(ink.width(), ink.height()) << "four wide letters";
    }
}

TEST(DrawingSurfaceText, RotatedTextRunsUpwardFromItsStartAndSizesFollowTheScale) {
    Surface s(1.0, 60, 200);
    s.widget.SetForeColor(kBlack);
    const double wide = s.widget.TextWidth(QStringLiteral("Caption"));
    s.widget.SetScaleWidth(120.0); // two units per pixel
    EXPECT_NEAR(s.widget.TextWidth(QStringLiteral("Caption")), 2.0 * wide, 1e-9);
    s.widget.SetScaleMode(DrawingSurface::ScaleMode::Pixel);

    s.widget.PrintRotated(QStringLiteral("Caption"), 0.0, 150.0, 90.0, s.widget.font());
    EXPECT_EQ(s.widget.CurrentX(), 0.0);
    const QRect ink = InkBounds(s.widget.Raster());
    ASSERT_FALSE(ink.isEmpty());
    EXPECT_GT(ink.height(), ink.width()) << "vertical text";
    EXPECT_LE(ink.bottom(), 151);
    EXPECT_GE(ink.top(), 150 - wide - 2.0);
    EXPECT_GE(ink.left(), 0);
    EXPECT_LT(ink.right(), 30);
}

// ---- degenerate input ----

TEST(DrawingSurfaceRobustness, NonFiniteAndHugeCoordinatesDrawNothingOrTheVisiblePart) {
    Surface s;
    s.widget.SetForeColor(kBar);
    s.widget.SetFillStyle(DrawingSurface::FillStyle::Solid);
    for (double bad : {kNaN, kInf, -kInf}) {
        s.widget.Line(bad, 10.0, 50.0, 10.0);
        s.widget.Line(10.0, 10.0, 50.0, bad);
        s.widget.Box(bad, bad, 10.0, 10.0);
        s.widget.FilledBox(0.0, 0.0, bad, 20.0, kBar);
        s.widget.Circle(bad, 10.0, 5.0);
        s.widget.Circle(10.0, 10.0, bad);
        s.widget.PSet(bad, 1.0, kBar);
        s.widget.SetCurrentX(bad);
        s.widget.Print(QStringLiteral("x"));
        s.widget.PrintRotated(QStringLiteral("x"), 1.0, 1.0, bad, s.widget.font());
        EXPECT_EQ(s.widget.Point(bad, 1.0), -1);
    }
    s.widget.Circle(50.0, 25.0, 1e300);
    s.widget.Circle(1e300, 25.0, 5.0);
    s.widget.Line(1e300, -1e300, 1e300, 1e300);
    EXPECT_EQ(CountInImage(s.widget.Raster(), kWhite), 100 * 50);

    // A line with far-off ends still shows where it crosses the picture.
    s.widget.Line(-1e300, 10.0, 1e300, 10.0);
    EXPECT_EQ(CountInRow(s.widget.Raster(), 10, kBar), 100);
    s.widget.Line(-1e12, -1e12, 1e12, 1e12);
    EXPECT_EQ(s.widget.Point(30.0, 30.0), kBar);
    s.widget.FilledBox(-1e300, 40.0, 1e300, 1e300, kInk);
    EXPECT_EQ(CountInImage(s.widget.Raster(), kInk), 100 * 10);
    EXPECT_EQ(s.widget.Point(-1.0, 45.0), -1);
    EXPECT_EQ(s.widget.Point(100.0, 45.0), -1);
    EXPECT_EQ(s.widget.Point(50.0, 50.0), -1);
}

TEST(DrawingSurfaceRobustness, DegenerateScalesAndEmptyWidgetsDrawNothing) {
    Surface s;
    s.widget.SetForeColor(kBar);
    for (double extent : {0.0, kNaN, kInf}) {
        s.widget.SetScale(0.0, 0.0, extent, 10.0);
        s.widget.Line(0.0, 1.0, 5.0, 1.0);
        s.widget.FilledBox(0.0, 0.0, 5.0, 5.0, kBar);
        s.widget.Circle(1.0, 1.0, 1.0);
        s.widget.Print(QStringLiteral("x"));
        EXPECT_EQ(s.widget.Point(0.0, 0.0), -1);
        EXPECT_TRUE(std::isnan(s.widget.TextWidth(QStringLiteral("x"))));
    }
    EXPECT_EQ(CountInImage(s.widget.Raster(), kWhite), 100 * 50);

    DrawingSurface empty;
    empty.resize(0, 0);
    empty.SetDevicePixelRatioForTesting(2.0);
    empty.Cls();
    empty.Line(0.0, 0.0, 10.0, 10.0);
    empty.FilledBox(0.0, 0.0, 10.0, 10.0, kBar);
    empty.Circle(0.0, 0.0, 3.0);
    empty.Print(QStringLiteral("text"));
    EXPECT_EQ(empty.Point(0.0, 0.0), -1);
    EXPECT_TRUE(empty.Raster().isNull());
    EXPECT_TRUE(std::isnan(empty.ToPixelX(1.0)));
    (void)empty.grab(); // paints an empty raster

    // Silly settings are bounded rather than trusted.
    s.widget.SetScaleMode(DrawingSurface::ScaleMode::Pixel);
    s.widget.SetDrawWidth(-7);
    EXPECT_EQ(s.widget.DrawWidth(), 1);
    s.widget.SetDrawWidth(std::numeric_limits<int>::max());
    s.widget.Line(0.0, 0.0, 99.0, 49.0);
    s.widget.SetDevicePixelRatioForTesting(kNaN);
    s.widget.SetDevicePixelRatioForTesting(1e300);
    EXPECT_LE(s.widget.DevicePixelRatio(), 16.0);
}

TEST(DrawingSurfaceToolTip, KeepsTheTextOnTheWidget) {
    DrawingSurface surface;
    surface.SetToolTipText(QStringLiteral(" Fitness: 4 "));
    EXPECT_EQ(surface.ToolTipText(), QStringLiteral(" Fitness: 4 "));
    EXPECT_EQ(surface.toolTip(), QStringLiteral(" Fitness: 4 "));
}

// A band redraws its columns with whole shapes: inside the band the picture is what the same
// calls give over the whole picture, outside it the picture is left as it was.
TEST(DrawingSurfaceBand, ReplacesOnlyItsColumnsWithWhatAFullDrawingGives) {
    const auto draw = [](DrawingSurface& pSurface) {
        pSurface.Cls();
        pSurface.SetForeColor(kInk);
        pSurface.Line(0.0, 0.0, 59.0, 39.0); // crosses the band slanting
        pSurface.SetForeColor(kBar);
        pSurface.Line(10.0, 20.0, 50.0, 20.0); // across it
        pSurface.CellLines(std::vector<DrawingSurface::CellLine>{{30, 5, 30, 35}, {31, 8, 34, 2}});
    };
    Surface full(1.0, 60, 40);
    full.widget.SetScale(0.0, 0.0, 60.0, 40.0);
    draw(full.widget);
    const QImage expected = full.widget.Raster().copy();

    Surface banded(1.0, 60, 40);
    banded.widget.SetScale(0.0, 0.0, 60.0, 40.0);
    banded.widget.FilledBox(0.0, 0.0, 60.0, 40.0, kBlack); // what was there before
    banded.widget.BeginColumnBand(25, 33);
    EXPECT_TRUE(banded.widget.InColumnBand());
    draw(banded.widget);
    banded.widget.EndColumnBand();
    EXPECT_FALSE(banded.widget.InColumnBand());
    const QImage& picture = banded.widget.Raster();
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 60; ++x) {
            const bool inBand = x >= 25 && x <= 33;
            EXPECT_EQ(PixelAt(picture, x, y), inBand ? PixelAt(expected, x, y) : kBlack)
                << x << ", " << y;
        }
    }
    EXPECT_GT(CountInImage(picture, kInk) + CountInImage(picture, kBar), 20);
}
