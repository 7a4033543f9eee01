#include <trv5charts/colorconverter.h>

#include "testsupport.h"

#include <cstdint>
#include <limits>

using trv5::ColorConverter;

namespace {

std::int32_t Rgb(std::int32_t pRed, std::int32_t pGreen, std::int32_t pBlue) {
    return ColorConverter::RGBToLong(pRed, pGreen, pBlue);
}

std::int32_t Hsb(std::int32_t pHue, std::int32_t pSaturation, std::int32_t pBrightness) {
    return ColorConverter::HSBToLong(pHue, pSaturation, pBrightness);
}

} // namespace

TEST(ColorConverter, PacksClampsAndExtractsComponents) {
    EXPECT_EQ(Rgb(255, 128, 0), 0x0080FF);
    EXPECT_EQ(Rgb(-5, 300, 256), 0xFFFF00);
    EXPECT_EQ(Hsb(400, 150, -5), (359 << 16) | (100 << 8));
    EXPECT_EQ(Hsb(359, 100, 100), 0x01676464); // hue uses bit 24

    // RGB extraction is plain bytes, even of a negative system colour code; HSB extraction
    // clamps every component, and hue truncates toward zero before it is clamped.
    const trv5::test::ScopedLocale german(trv5::test::German()); // text never localised
    // clang-format off
    const struct { std::int32_t packed; const char *rgb, *hsb; } cases[] = {
        {0x0080FF, "255, 128, 0", "0, 100, 100"},
        {static_cast<std::int32_t>(0x8012340FU), "15, 52, 18", "0, 52, 15"},
        {360 << 16, "0, 0, 104", "359, 0, 0"},
        {(359 << 16) | (7 << 8) | 50, "50, 7, 103", "359, 7, 50"},
        {std::numeric_limits<std::int32_t>::max(), "255, 255, 255", "359, 100, 100"},
        {-(5 << 16), "0, 0, 251", "0, 0, 0"}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(ColorConverter::RGBAsString(c.packed).toStdString(), c.rgb) << c.packed;
        EXPECT_EQ(ColorConverter::HSBAsString(c.packed).toStdString(), c.hsb) << c.packed;
    }
}

TEST(ColorConverter, HuesSurviveRoundTrips) {
    // clang-format off
    const struct { std::int32_t rgb, hue; } pure[] = {
        {Rgb(255, 0, 0), 0}, {Rgb(255, 255, 0), 60}, {Rgb(0, 255, 0), 120},
        {Rgb(0, 255, 255), 180}, {Rgb(0, 0, 255), 240}, {Rgb(255, 0, 255), 300}};
    // clang-format on
    for (const auto& c : pure) {
        EXPECT_EQ(ColorConverter::RGBToHSB(c.rgb), Hsb(c.hue, 100, 100)) << c.hue;
        EXPECT_EQ(ColorConverter::HSBToRGB(Hsb(c.hue, 100, 100)), c.rgb) << c.hue;
    }
    // At full saturation and brightness each degree is several RGB steps wide.
    for (std::int32_t hue = 0; hue <= trv5::clMaxHue; ++hue) {
        const std::int32_t hsb = Hsb(hue, 100, 100);
        EXPECT_EQ(ColorConverter::RGBToHSB(ColorConverter::HSBToRGB(hsb)), hsb) << hue;
    }
}

// Conversions round half to even in single precision.
TEST(ColorConverter, RoundsHalfToEvenInSinglePrecision) {
    // clang-format off
    const struct { std::int32_t rgb, hsb; } toHsb[] = {
        {Rgb(0, 0, 0), Hsb(0, 0, 0)}, {Rgb(255, 255, 255), Hsb(0, 0, 100)},
        {Rgb(128, 128, 128), Hsb(0, 0, 50)},
        {Rgb(255, 0, 1), Hsb(0, 100, 100)},   // hue -0.235 rounds to 0 and does not wrap
        {Rgb(255, 0, 5), Hsb(359, 100, 100)}, // hue -1 wraps to 359
        {Rgb(24, 1, 0), Hsb(2, 100, 9)},      // hue 2.5 goes down to the even 2
        {Rgb(8, 1, 0), Hsb(8, 100, 3)},       // hue 7.5 goes up to the even 8
        {Rgb(8, 7, 7), Hsb(0, 12, 3)}, {Rgb(8, 5, 5), Hsb(0, 38, 3)}, // saturation 12.5, 37.5
        {Rgb(10, 10, 20), Hsb(240, 50, 8)},   // two channels share the minimum
        {Rgb(20, 20, 10), Hsb(60, 50, 8)}},   // two channels share the maximum
      toRgb[] = {
        {Rgb(76, 0, 0), Hsb(0, 100, 30)},     // 0.3f * 255 is exactly 76.5 in single precision
        {Rgb(255, 128, 0), Hsb(30, 100, 100)}, {Rgb(128, 255, 0), Hsb(90, 100, 100)},
        {Rgb(255, 128, 128), Hsb(0, 50, 100)}, {Rgb(255, 0, 4), Hsb(359, 100, 100)},
        {Rgb(26, 26, 26), Hsb(200, 0, 10)}, {Rgb(178, 178, 178), Hsb(200, 0, 70)}, // greys
        {Rgb(230, 230, 230), Hsb(200, 0, 90)}};
    // clang-format on
    for (const auto& c : toHsb) {
        EXPECT_EQ(ColorConverter::HSBAsString(ColorConverter::RGBToHSB(c.rgb)).toStdString(),
                  ColorConverter::HSBAsString(c.hsb).toStdString())
            << ColorConverter::RGBAsString(c.rgb).toStdString();
    }
    for (const auto& c : toRgb) {
        EXPECT_EQ(ColorConverter::RGBAsString(ColorConverter::HSBToRGB(c.hsb)).toStdString(),
                  ColorConverter::RGBAsString(c.rgb).toStdString())
            << ColorConverter::HSBAsString(c.hsb).toStdString();
    }
}
