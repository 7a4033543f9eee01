#pragma once

#include <QColor>

#include <cstdint>

namespace trv5::platform {

// The colour a host means by a 32-bit colour value: 0x00BBGGRR, or a system colour code
// (high bit set, index in the low byte) taken from the application palette.
QColor ToQColor(std::int32_t pColour);
// The same as an opaque QRgb, without building a QColor for a plain colour value: for code that
// converts a colour per pixel.
QRgb ToQRgb(std::int32_t pColour);

} // namespace trv5::platform
