#pragma once

#include "selfdrawn/selfdrawn_support.h"

#include <trv5charts/charterror.h>

#include <cmath>
#include <cstdint>
#include <limits>

// Pieces shared by the bar chart's translation units.
namespace trv5::barchart {

using selfdrawn::kButtonFace;
using selfdrawn::kGreyText;

// Up to this many columns each bar is three units wide with a one-unit gap; from here on the
// bars are one unit wide and touch.
inline constexpr std::int32_t kTouchingBarsFrom = 21;
// From this many columns on the bars lose their outlines, which would cover them entirely.
inline constexpr std::int32_t kNoOutlinesFrom = 100;

// A single-precision value, as the chart keeps its margin and maximum; ChartError 6 for a finite
// value beyond the single range (infinities and NaN pass as they are).
inline float ToSingle(double pValue) {
    if (std::isfinite(pValue) && std::abs(pValue) > std::numeric_limits<float>::max()) {
        throw ChartError(ChartError::Overflow);
    }
    return static_cast<float>(pValue);
}

} // namespace trv5::barchart
