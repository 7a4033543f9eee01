#include <trv5charts/colorconverter.h>

#include <trv5charts/charterror.h>

#include <cmath>
#include <limits>

namespace trv5 {

namespace {

std::int32_t Clamp(std::int32_t& pValue, std::int32_t pMinimum, std::int32_t pMaximum) {
    if (pValue < pMinimum) {
        pValue = pMinimum;
    }
    if (pValue > pMaximum) {
        pValue = pMaximum;
    }
    return pValue;
}

// Round half to even, worked out by hand so that a host that changes the floating-point
// rounding mode cannot shift colours.
std::int32_t RoundHalfEven(double pValue) {
    const double lower = std::floor(pValue);
    const double fraction = pValue - lower; // exact for every finite double
    double rounded = lower;
    if (fraction > 0.5 || (fraction == 0.5 && std::fmod(lower, 2.0) != 0.0)) {
        rounded = lower + 1.0;
    }
    constexpr auto kMin = static_cast<double>(std::numeric_limits<std::int32_t>::min());
    constexpr auto kMax = static_cast<double>(std::numeric_limits<std::int32_t>::max());
    if (!(rounded >= kMin && rounded <= kMax)) {
        throw ChartError(ChartError::Overflow);
    }
    return static_cast<std::int32_t>(rounded);
}

// A channel fraction 0..1 to 0..255. The product stays single precision on purpose: 0.3f * 255
// is exactly 76.5 in float and rounds to 76, where a double product would give 77.
std::int32_t ToChannel(float pFraction) {
    return RoundHalfEven(static_cast<double>(pFraction * 255.0f));
}

std::int32_t Byte(std::int32_t pColor, int pShift) {
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(pColor) >> pShift) & 0xFFU);
}

} // namespace

QString ColorConverter::RGBAsString(std::int32_t pColor) {
    std::int32_t red = 0;
    std::int32_t green = 0;
    std::int32_t blue = 0;
    SplitRGB(pColor, red, green, blue);
    return QStringLiteral("%1, %2, %3").arg(red).arg(green).arg(blue);
}

QString ColorConverter::HSBAsString(std::int32_t pColor) {
    std::int32_t hue = 0;
    std::int32_t saturation = 0;
    std::int32_t brightness = 0;
    SplitHSB(pColor, hue, saturation, brightness);
    return QStringLiteral("%1, %2, %3").arg(hue).arg(saturation).arg(brightness);
}

std::int32_t ColorConverter::RGBToLong(std::int32_t pRed, std::int32_t pGreen, std::int32_t pBlue) {
    return Clamp(pRed, 0, clMaxRed) + Clamp(pGreen, 0, clMaxGreen) * 0x100 +
           Clamp(pBlue, 0, clMaxBlue) * 0x10000;
}

std::int32_t ColorConverter::HSBToLong(std::int32_t pHue, std::int32_t pSaturation,
                                       std::int32_t pBrightness) {
    return Clamp(pBrightness, 0, clMaxBrightness) | Clamp(pSaturation, 0, clMaxSaturation) << 8 |
           Clamp(pHue, 0, clMaxHue) << 16;
}

std::int32_t ColorConverter::Red(std::int32_t pColor) {
    return Byte(pColor, 0);
}

std::int32_t ColorConverter::Green(std::int32_t pColor) {
    return Byte(pColor, 8);
}

std::int32_t ColorConverter::Blue(std::int32_t pColor) {
    return Byte(pColor, 16);
}

void ColorConverter::SplitRGB(std::int32_t pColor, std::int32_t& pRed, std::int32_t& pGreen,
                              std::int32_t& pBlue) {
    pRed = Red(pColor);
    pGreen = Green(pColor);
    pBlue = Blue(pColor);
}

std::int32_t ColorConverter::Hue(std::int32_t pColor) {
    // Division, not a shift: hue may use bit 24, and a negative value truncates toward zero
    // before the clamp lifts it to 0.
    std::int32_t hue = pColor / 0x10000;
    return Clamp(hue, 0, clMaxHue);
}

std::int32_t ColorConverter::Saturation(std::int32_t pColor) {
    std::int32_t saturation = Byte(pColor, 8);
    return Clamp(saturation, 0, clMaxSaturation);
}

std::int32_t ColorConverter::Brightness(std::int32_t pColor) {
    std::int32_t brightness = Byte(pColor, 0);
    return Clamp(brightness, 0, clMaxBrightness);
}

void ColorConverter::SplitHSB(std::int32_t pColor, std::int32_t& pHue, std::int32_t& pSaturation,
                              std::int32_t& pBrightness) {
    pHue = Hue(pColor);
    pSaturation = Saturation(pColor);
    pBrightness = Brightness(pColor);
}

std::int32_t ColorConverter::HSBToRGB(std::int32_t pColor) {
    std::int32_t hue = 0;
    std::int32_t saturation = 0;
    std::int32_t brightness = 0;
    SplitHSB(pColor, hue, saturation, brightness);

    if (saturation < 1) {
        const std::int32_t grey = RoundHalfEven(static_cast<double>(brightness * 255) / 100.0);
        return RGBToLong(grey, grey, grey);
    }

    const float h = static_cast<float>(hue) / 60.0f;
    const float v = static_cast<float>(brightness) / 100.0f;
    const float s = static_cast<float>(saturation) / 100.0f;
    const auto sector = static_cast<std::int32_t>(std::floor(h));
    const float f = h - static_cast<float>(sector);
    const float p = (1.0f - s) * v;
    const float q = (1.0f - s * f) * v;
    const float t = (1.0f - (1.0f - f) * s) * v;

    struct Channels {
        float red;
        float green;
        float blue;
    };
    Channels rgb{0.0f, 0.0f, 0.0f}; // an impossible sector with a clamped hue: stays black
    switch (sector) {
    case 0:
        rgb = {v, t, p};
        break;
    case 1:
        rgb = {q, v, p};
        break;
    case 2:
        rgb = {p, v, t};
        break;
    case 3:
        rgb = {p, q, v};
        break;
    case 4:
        rgb = {t, p, v};
        break;
    case 5:
        rgb = {v, p, q};
        break;
    default:
        break;
    }
    return RGBToLong(ToChannel(rgb.red), ToChannel(rgb.green), ToChannel(rgb.blue));
}

std::int32_t ColorConverter::RGBToHSB(std::int32_t pColor) {
    std::int32_t red = 0;
    std::int32_t green = 0;
    std::int32_t blue = 0;
    SplitRGB(pColor, red, green, blue);

    const std::int32_t maximum =
        red > green ? (red > blue ? red : blue) : (green > blue ? green : blue);
    const std::int32_t minimum =
        red < green ? (red < blue ? red : blue) : (green < blue ? green : blue);
    const std::int32_t delta = maximum - minimum;

    const std::int32_t brightness = RoundHalfEven(static_cast<double>(maximum * 100) / 255.0);
    std::int32_t saturation = 0;
    if (maximum > 0) {
        saturation = RoundHalfEven(static_cast<double>(delta) / maximum * 100.0);
    }

    std::int32_t hue = 0;
    if (maximum > 0 && delta >= 1) {
        // The sector position is held in single precision before scaling to degrees; ties on
        // equal maxima go to red, then green.
        const double span = delta;
        float x = 0.0f;
        if (maximum == red) {
            x = static_cast<float>((green - blue) / span);
        } else if (maximum == green) {
            x = static_cast<float>((blue - red) / span + 2.0);
        } else {
            x = static_cast<float>((red - green) / span + 4.0);
        }
        hue = RoundHalfEven(static_cast<double>(x * 60.0f));
        if (hue < 0) {
            hue += 360;
        }
    }
    return HSBToLong(hue, saturation, brightness);
}

} // namespace trv5
