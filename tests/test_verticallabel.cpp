#include <trv5charts/verticallabel.h>

#include "platform/drawingsurface.h"
#include "testsupport.h"

#include <QImage>
#include <QRect>

#include <gtest/gtest.h>

using trv5::VerticalLabel;
using trv5::platform::DrawingSurface;

namespace {

constexpr std::int32_t kWhite = 0xFFFFFF;
constexpr std::int32_t kTeal = 0x807020;

QRgb Rgb(std::int32_t pColour) {
    return qRgb(pColour & 0xFF, (pColour >> 8) & 0xFF, (pColour >> 16) & 0xFF);
}

// Device pixels of the picture that differ from the background.
QRect InkBounds(const QImage& pImage, std::int32_t pBackground) {
    QRect ink;
    for (int y = 0; y < pImage.height(); ++y) {
        for (int x = 0; x < pImage.width(); ++x) {
            if ((pImage.pixel(x, y) & 0xFFFFFF) != (Rgb(pBackground) & 0xFFFFFF)) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

DrawingSurface& PictureOf(VerticalLabel& pLabel) {
    auto* pic = pLabel.findChild<DrawingSurface*>(QStringLiteral("pic"));
    EXPECT_NE(pic, nullptr);
    return *pic;
}

} // namespace

TEST(VerticalLabelTest, TextStandsInABandAtTheLeftCentredVerticallyAtAnyRatio) {
    for (const double ratio : {1.0, 2.0}) {
        VerticalLabel label;
        label.resize(40, 240);
        DrawingSurface& pic = PictureOf(label);
        pic.SetDevicePixelRatioForTesting(ratio);
        label.SetBackColor(kWhite);
        label.SetText(QStringLiteral("TP Rate (Sensitivity)"));
        EXPECT_EQ(pic.geometry(), label.rect());

        const QRect ink = InkBounds(pic.Raster(), kWhite);
        ASSERT_FALSE(ink.isEmpty()) << ratio;
        // Against the left edge, one line thick, much taller than wide.
        EXPECT_LE(ink.left(), 2 * ratio) << ratio;
        EXPECT_LE(ink.right(), label.sizeHint().width() * ratio) << ratio;
        EXPECT_GT(ink.height(), 4 * ink.width()) << ratio;
        // Centred on the middle of the control within a couple of pixels.
        EXPECT_NEAR(ink.center().y() / ratio, 120.0, 3.0) << ratio;
        EXPECT_NEAR(ink.height() / ratio, pic.TextWidth(label.Text()), 4.0) << ratio;
    }
}

TEST(VerticalLabelTest, LongTextIsCutAtBothEndsAndEmptyTextClears) {
    VerticalLabel label;
    label.resize(30, 60);
    label.SetBackColor(kWhite);
    DrawingSurface& pic = PictureOf(label);
    label.SetText(QStringLiteral("A caption far longer than the control is high"));
    QRect ink = InkBounds(pic.Raster(), kWhite);
    EXPECT_EQ(ink.top(), 0);
    EXPECT_EQ(ink.bottom(), pic.Raster().height() - 1);

    label.SetText(QString());
    EXPECT_TRUE(InkBounds(pic.Raster(), kWhite).isEmpty());

    label.resize(0, 0);
    label.SetText(QStringLiteral("nothing to draw on"));
    EXPECT_TRUE(pic.Raster().isNull());
}

TEST(VerticalLabelTest, BackColourRecoloursWithOrWithoutText) {
    VerticalLabel label;
    label.resize(30, 120);
    DrawingSurface& pic = PictureOf(label);
    label.SetBackColor(kTeal);
    EXPECT_EQ(label.BackColor(), kTeal);
    EXPECT_TRUE(InkBounds(pic.Raster(), kTeal).isEmpty());

    label.SetText(QStringLiteral("Gain"));
    label.SetBackColor(kWhite);
    const QImage& raster = pic.Raster();
    EXPECT_EQ(raster.pixel(raster.width() - 1, 0) & 0xFFFFFF, Rgb(kWhite) & 0xFFFFFF);
    EXPECT_FALSE(InkBounds(raster, kWhite).isEmpty());
    EXPECT_EQ(label.palette().color(QPalette::Window), QColor(Rgb(kWhite)));
}
