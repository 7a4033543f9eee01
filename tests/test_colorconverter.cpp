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
    const struct {
        std::int32_t packed;
        const char *rgb, *hsb;
    } cases[] = {
        {0, "0, 0, 0", "0, 0, 0"},
        {0x0080FF, "255, 128, 0", "0, 100, 100"},
        {static_cast<std::int32_t>(0x8012340FU), "15, 52, 18", "0, 52, 15"},
        {360 << 16, "0, 0, 104", "359, 0, 0"},
        {(359 << 16) | (7 << 8) | 50, "50, 7, 103", "359, 7, 50"},
        {std::numeric_limits<std::int32_t>::max(), "255, 255, 255", "359, 100, 100"},
        {-(5 << 16), "0, 0, 251", "0, 0, 0"},
    };
    const trv5::test::ScopedLocale german(trv5::test::German()); // text never localised
    for (const auto& c : cases) {
        EXPECT_EQ(ColorConverter::RGBAsString(c.packed).toStdString(), c.rgb) << c.packed;
        EXPECT_EQ(ColorConverter::HSBAsString(c.packed).toStdString(), c.hsb) << c.packed;
    }

    // The class may also be used through an instance.
    const ColorConverter converter;
    EXPECT_EQ(converter.Hue(0x01676464), trv5::clMaxHue);
}

TEST(ColorConverter, PureHuesSurviveRoundTrips) {
    const struct {
        std::int32_t rgb, hue;
    } pure[] = {
        {Rgb(255, 0, 0), 0},     {Rgb(255, 255, 0), 60}, {Rgb(0, 255, 0), 120},
        {Rgb(0, 255, 255), 180}, {Rgb(0, 0, 255), 240},  {Rgb(255, 0, 255), 300},
    };
    for (const auto& c : pure) {
        const std::int32_t hsb = ColorConverter::RGBToHSB(c.rgb);
        EXPECT_EQ(hsb, Hsb(c.hue, 100, 100)) << c.hue;
        EXPECT_EQ(ColorConverter::HSBToRGB(hsb), c.rgb) << c.hue;
    }
    // At full saturation and brightness each degree is several RGB steps wide, so every hue
    // comes back exactly.
    for (std::int32_t hue = 0; hue <= trv5::clMaxHue; ++hue) {
        const std::int32_t hsb = Hsb(hue, 100, 100);
        EXPECT_EQ(ColorConverter::RGBToHSB(ColorConverter::HSBToRGB(hsb)), hsb) << hue;
    }
}

TEST(ColorConverter, GreysBlackAndWhite) {
    EXPECT_EQ(ColorConverter::RGBToHSB(Rgb(0, 0, 0)), Hsb(0, 0, 0));
    EXPECT_EQ(ColorConverter::RGBToHSB(Rgb(255, 255, 255)), Hsb(0, 0, 100));
    EXPECT_EQ(ColorConverter::RGBToHSB(Rgb(128, 128, 128)), Hsb(0, 0, 50));

    // Saturation 0 is grey whatever the hue; the percent-to-byte step rounds half to even.
    const struct {
        std::int32_t brightness, grey;
    } greys[] = {{0, 0}, {10, 26}, {30, 76}, {50, 128}, {70, 178}, {90, 230}, {100, 255}};
    for (const auto& c : greys) {
        EXPECT_EQ(ColorConverter::HSBToRGB(Hsb(200, 0, c.brightness)), Rgb(c.grey, c.grey, c.grey))
            << c.brightness;
    }
}

TEST(ColorConverter, RoundsHalfToEvenInSinglePrecision) {
    const struct {
        std::int32_t rgb, hsb;
    } toHsb[] = {
        {Rgb(255, 0, 1), Hsb(0, 100, 100)},   // hue -0.235 rounds to 0 and does not wrap
        {Rgb(255, 0, 5), Hsb(359, 100, 100)}, // hue -1 wraps to 359
        {Rgb(24, 1, 0), Hsb(2, 100, 9)},      // hue 2.5 goes down to the even 2
        {Rgb(8, 1, 0), Hsb(8, 100, 3)},       // hue 7.5 goes up to the even 8
        {Rgb(8, 7, 7), Hsb(0, 12, 3)},        // saturation 12.5
        {Rgb(8, 5, 5), Hsb(0, 38, 3)},        // saturation 37.5
        {Rgb(10, 10, 20), Hsb(240, 50, 8)},   // two channels share the minimum
        {Rgb(20, 20, 10), Hsb(60, 50, 8)},    // two channels share the maximum
    };
    for (const auto& c : toHsb) {
        EXPECT_EQ(ColorConverter::HSBAsString(ColorConverter::RGBToHSB(c.rgb)).toStdString(),
                  ColorConverter::HSBAsString(c.hsb).toStdString())
            << ColorConverter::RGBAsString(c.rgb).toStdString();
    }

    const struct {
        std::int32_t hsb, rgb;
    } toRgb[] = {
        {Hsb(0, 100, 30), Rgb(76, 0, 0)},      // 0.3f * 255 is exactly 76.5 in single precision
        {Hsb(30, 100, 100), Rgb(255, 128, 0)}, // 127.5 up to the even 128
        {Hsb(90, 100, 100), Rgb(128, 255, 0)}, {Hsb(0, 50, 100), Rgb(255, 128, 128)},
        {Hsb(359, 100, 100), Rgb(255, 0, 4)},
    };
    for (const auto& c : toRgb) {
        EXPECT_EQ(ColorConverter::RGBAsString(ColorConverter::HSBToRGB(c.hsb)).toStdString(),
                  ColorConverter::RGBAsString(c.rgb).toStdString())
            << ColorConverter::HSBAsString(c.hsb).toStdString();
    }
}
