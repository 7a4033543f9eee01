#include "hosted/chartshelper.h"

#include "foundation/numbertext.h"
#include "foundation/serialization.h"
#include "platform/chartengine.h"

#include <trv5charts/axisrange.h>
#include <trv5charts/hostsettings.h>
#include <trv5charts/mathhelper.h>

#include <array>
#include <cmath>

namespace trv5::ChartsHelper {

namespace {

constexpr double kLargeLabel = 999999.0;
constexpr double kSmallLabel = 1e-8;
constexpr double kTiltedLabelAngle = 20.0;

void SetRange(platform::ChartAxis& pAxis, double pMinimum, double pMaximum, const QString& pKey) {
    const ValueRange range = PaddedRange(pMinimum, pMaximum, SettingsMarginIfConfigured(pKey));
    pAxis.SetAutoRange(false);
    pAxis.SetMinValue(range.Minimum);
    pAxis.SetMaxValue(range.Maximum);
}

QString DefaultKey() {
    return QString::fromLatin1(kMarginSettingKey);
}

} // namespace

void SetXAxisRange(platform::ChartEngine& pEngine, double pMinimum, double pMaximum) {
    SetRange(pEngine.AxisX(), pMinimum, pMaximum, DefaultKey());
}

void SetYAxisRange(platform::ChartEngine& pEngine, double pMinimum, double pMaximum) {
    SetRange(pEngine.AxisY(), pMinimum, pMaximum, DefaultKey());
}

void SetXAxisRange(platform::ChartEngine& pEngine, double pMinimum, double pMaximum,
                   const QString& pKey) {
    SetRange(pEngine.AxisX(), pMinimum, pMaximum, pKey);
}

void SetYAxisRange(platform::ChartEngine& pEngine, double pMinimum1, double pMaximum1,
                   double pMinimum2, double pMaximum2, const QString& pKey) {
    const std::array<double, 2> minima{pMinimum1, pMinimum2};
    const std::array<double, 2> maxima{pMaximum1, pMaximum2};
    std::int32_t count = -1;
    const double minimum = MathHelper::ArrayMin(minima, count);
    count = -1;
    const double maximum = MathHelper::ArrayMax(maxima, count);
    SetRange(pEngine.AxisY(), minimum, maximum, pKey);
}

void ApplyLabelAngle(platform::ChartEngine& pEngine, double pMinimum, double pMaximum) {
    double minimum = pMinimum;
    double maximum = pMaximum;
    if (minimum > maximum) {
        std::swap(minimum, maximum);
    }
    platform::ChartAxis& axis = pEngine.AxisX();
    if (axis.LabelAngle() != 0.0) {
        axis.SetLabelAngle(0.0);
    }
    if (std::abs(minimum) >= kLargeLabel || std::abs(maximum) >= kLargeLabel) {
        axis.SetLabelAngle(kTiltedLabelAngle);
    }
    if ((std::abs(minimum) < kSmallLabel || std::abs(maximum) < kSmallLabel) && minimum != 0.0) {
        axis.SetLabelAngle(kTiltedLabelAngle);
    }
}

double RelativeSpread(double pMinimum, double pMaximum) {
    const double span = pMaximum - pMinimum;
    if (span == 0.0) {
        return 1.0;
    }
    const double middle = (pMinimum + pMaximum) / 2.0;
    if (middle == 0.0) {
        return span;
    }
    return span / std::abs(middle);
}

double NormalizeValue(double pValue, double pMaximum, double pMinimum) {
    if (pMaximum == pMinimum) {
        return 0.0;
    }
    // For a negative minimum this is (value + |min|) / (max + |min|), the same quantity.
    return (pValue - pMinimum) / (pMaximum - pMinimum);
}

std::vector<double> Normalize(std::span<const double> pValues, double pMaximum, double pMinimum) {
    std::vector<double> normalized(pValues.size());
    for (std::size_t i = 0; i < pValues.size(); ++i) {
        normalized[i] = NormalizeValue(pValues[i], pMaximum, pMinimum);
    }
    return normalized;
}

std::optional<std::int32_t> SettingsColour(const QString& pBaseKey) {
    if (!Globals::HasConfig()) {
        return std::nullopt;
    }
    return HostSettings::Colour(pBaseKey);
}

double RoundToDecimals(double pValue, int pDecimals) {
    static constexpr std::array<double, 16> kPowers{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                    1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    if (!std::isfinite(pValue) || pDecimals < 0 || pDecimals > 15) {
        return pValue;
    }
    const double power = kPowers[static_cast<std::size_t>(pDecimals)];
    const double scaled = pValue * power;
    // From 2^52 on a double has no fraction left to round.
    if (!(std::abs(scaled) < 4503599627370496.0)) {
        return pValue;
    }
    return std::nearbyint(scaled) / power;
}

void AppendUserNumber(std::string& pOut, double pValue, char pDecimalPoint) {
    char buffer[numbertext::kMaxDoubleText];
    const char* end = numbertext::WriteDouble(buffer, pValue, pDecimalPoint);
    pOut.append(buffer, static_cast<std::size_t>(end - buffer));
}

void AppendWhole(std::string& pOut, std::int64_t pValue) {
    serialization::AppendWhole(pOut, pValue);
}

} // namespace trv5::ChartsHelper
