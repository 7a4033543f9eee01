#pragma once

#include <QColor>

#include <cstdint>

namespace trv5::platform {

// The colour a host means by a 32-bit colour value: 0x00BBGGRR, or a system colour code
// (high bit set, index in the low byte) taken from the application palette.
QColor ToQColor(std::int32_t pColour);

// The 32-bit colour value of a colour (its alpha is dropped): what a colour picker hands back.
std::int32_t FromQColor(const QColor& pColour);

} // namespace trv5::platform
