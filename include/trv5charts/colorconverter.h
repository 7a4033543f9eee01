#pragma once

#include <QString>

#include <cstdint>

namespace trv5 {

// Upper bounds of the colour components, which packing and HSB extraction clamp to; every
// lower bound is 0. Hue stops at 359: 360 would be red again.
enum EColorConstants : std::int32_t {
    clMaxRed = 255,
    clMaxGreen = 255,
    clMaxBlue = 255,
    clMaxHue = 359,
    clMaxSaturation = 100,
    clMaxBrightness = 100,
};

// Converts between two packed colour forms, both in a signed 32-bit integer:
//  - RGB, the platform colour value: red in bits 0-7, green in 8-15, blue in 16-23;
//  - HSB: brightness (0-100) in bits 0-7, saturation (0-100) in 8-15, hue (0-359) from bit 16.
// The charts derive lighter and darker shades by going to HSB and back. A round trip is lossy
// (percent steps), and the conversions reproduce the established rounding exactly (single
// precision intermediates, round half to even) so that shades keep their familiar values.
//
// The class holds no state. Every operation is static, so it can be called as
// ColorConverter::Hue(c) or on an instance the host created.
class ColorConverter {
public:
    // "red, green, blue" and "hue, saturation, brightness" as plain decimal integers.
    static QString RGBAsString(std::int32_t pColor);
    static QString HSBAsString(std::int32_t pColor);

    // Packing clamps every component to its range first.
    static std::int32_t RGBToLong(std::int32_t pRed, std::int32_t pGreen, std::int32_t pBlue);
    static std::int32_t HSBToLong(std::int32_t pHue, std::int32_t pSaturation,
                                  std::int32_t pBrightness);

    // The bytes of an RGB value, unclamped: a system colour code simply yields its bytes.
    static std::int32_t Red(std::int32_t pColor);
    static std::int32_t Green(std::int32_t pColor);
    static std::int32_t Blue(std::int32_t pColor);
    static void SplitRGB(std::int32_t pColor, std::int32_t& pRed, std::int32_t& pGreen,
                         std::int32_t& pBlue);

    // The components of an HSB value, clamped to their ranges.
    static std::int32_t Hue(std::int32_t pColor);
    static std::int32_t Saturation(std::int32_t pColor);
    static std::int32_t Brightness(std::int32_t pColor);
    static void SplitHSB(std::int32_t pColor, std::int32_t& pHue, std::int32_t& pSaturation,
                         std::int32_t& pBrightness);

    static std::int32_t HSBToRGB(std::int32_t pColor);
    static std::int32_t RGBToHSB(std::int32_t pColor);
};

} // namespace trv5
