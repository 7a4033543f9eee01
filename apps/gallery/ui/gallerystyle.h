#pragma once

#include <trv5charts/colorconverter.h>

#include <cstdint>

// The gallery's colours, 0x00BBGGRR as the charts take them: one calm palette for every chart so
// that the window reads as one product.
namespace trv5::gallery::style {

inline const std::int32_t kWhite = ColorConverter::RGBToLong(255, 255, 255);
// The system colour of a window's background: the self-drawn charts take it so that they follow
// the palette, white in the light one and dark in the dark mode.
inline const std::int32_t kChartBackground = static_cast<std::int32_t>(0x80000005U);
inline const std::int32_t kBest = ColorConverter::RGBToLong(31, 119, 180);
inline const std::int32_t kAverage = ColorConverter::RGBToLong(255, 127, 14);
inline const std::int32_t kValidation = ColorConverter::RGBToLong(44, 160, 44);
inline const std::int32_t kUsageBars = ColorConverter::RGBToLong(70, 130, 180);
inline const std::int32_t kTrainingGauge = ColorConverter::RGBToLong(31, 119, 180);
inline const std::int32_t kValidationGauge = ColorConverter::RGBToLong(44, 160, 44);
inline const std::int32_t kRocCurve = ColorConverter::RGBToLong(214, 39, 40);
inline const std::int32_t kDiagonal = ColorConverter::RGBToLong(127, 127, 127);

} // namespace trv5::gallery::style
