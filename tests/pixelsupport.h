#pragma once

// Colours read off pictures, as 0x00BBGGRR values that compare with the charts' own colours.

#include "platform/colour.h"

#include <QColor>
#include <QImage>

#include <cstdint>

namespace trv5::test {

// The colour a chart draws for a colour value (system colour codes resolved), as 0x00BBGGRR.
inline std::int32_t Rgb(std::int32_t pColour) {
    const QColor colour = trv5::platform::ToQColor(pColour);
    return colour.red() | (colour.green() << 8) | (colour.blue() << 16);
}

// The picture's pixel at a device position as 0x00BBGGRR (alpha dropped).
inline std::int32_t PixelAt(const QImage& pImage, int pX, int pY) {
    const QRgb rgb = pImage.pixel(pX, pY);
    return qRed(rgb) | (qGreen(rgb) << 8) | (qBlue(rgb) << 16);
}

} // namespace trv5::test
