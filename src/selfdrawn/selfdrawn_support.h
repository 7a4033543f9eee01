#pragma once

#include <QString>

#include <cstdint>

// Pieces shared by the self-drawn charts.
namespace trv5::selfdrawn {

// System colour codes, resolved through the application palette.
inline constexpr std::int32_t kGreyText = static_cast<std::int32_t>(0x80000011U);
inline constexpr std::int32_t kButtonFace = static_cast<std::int32_t>(0x8000000FU);

// The header line of copied data from a data point name: without leading and trailing blanks
// (blanks only, as hosts trim names), then without trailing colons ("Uses: " gives "Uses").
QString DataHeader(const QString& pDataPointName);

} // namespace trv5::selfdrawn
