#pragma once

#include <QLatin1String>
#include <QString>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace trv5::platform {
class ChartEngine;
}

// What the four hosted charts share beyond the frame: axis ranges with the host's margin, the
// tilt of horizontal tick labels, the spread test and the normalization of nearly constant data,
// colours from the settings and number text for tooltips and data export.
namespace trv5::ChartsHelper {

// Values whose relative spread is below this are normalized to 0..1 before they are plotted.
inline constexpr double kMinimumRelativeSpread = 1e-8;

// What a caption gets when its values were normalized, and the title a chart shows when its data
// could not be prepared.
inline constexpr QLatin1String kNormalizedSuffix(" (normalized)");
inline constexpr QLatin1String kUnableToDraw("Unable to draw the chart");

// Axis ranges of diagram 0 from a data range: a maximum of 0 becomes 0.1, equal ends are widened
// by 10 %, and the margin from the settings (the key "Run.CurveFitting.Margin", or pKey) times the
// span is added on both sides; AutoRange is switched off, then MinValue and MaxValue are set.
// Without stored settings the margin is 0. The vertical variant with a key takes two data ranges
// and uses the smaller minimum and the larger maximum. Settings errors reach the caller.
void SetXAxisRange(platform::ChartEngine& pEngine, double pMinimum, double pMaximum);
void SetYAxisRange(platform::ChartEngine& pEngine, double pMinimum, double pMaximum);
void SetXAxisRange(platform::ChartEngine& pEngine, double pMinimum, double pMaximum,
                   const QString& pKey);
void SetYAxisRange(platform::ChartEngine& pEngine, double pMinimum1, double pMaximum1,
                   double pMinimum2, double pMaximum2, const QString& pKey);

// Horizontal tick labels are tilted by 20 degrees when the range (either order) holds numbers of
// a million or more, or numbers so small (below 1e-8) that their text gets long, except that a
// range starting exactly at 0 is not tilted for its small end; otherwise they are level.
void ApplyLabelAngle(platform::ChartEngine& pEngine, double pMinimum, double pMaximum);

// (max - min) / |mid point|; the span itself when the mid point is 0, and 1 for a constant range,
// which therefore never counts as nearly constant.
double RelativeSpread(double pMinimum, double pMaximum);

// (value - min) / (max - min) for every element, or 0 everywhere when max equals min.
std::vector<double> Normalize(std::span<const double> pValues, double pMaximum, double pMinimum);
double NormalizeValue(double pValue, double pMaximum, double pMinimum);

// The colour under pBaseKey (".R", ".G", ".B") when the host has stored settings; nothing
// otherwise, so that the caller keeps the colour it has.
std::optional<std::int32_t> SettingsColour(const QString& pBaseKey);

// pValue rounded half to even to pDecimals decimals (0 to 15); values too large to have such
// decimals, and non-finite ones, come back unchanged.
double RoundToDecimals(double pValue, int pDecimals);

// Number text in the user's locale (the general 15-digit form) appended to UTF-8 text, for
// tooltips and clipboard rows built without temporary strings.
void AppendUserNumber(std::string& pOut, double pValue, char pDecimalPoint);
void AppendWhole(std::string& pOut, std::int64_t pValue);

} // namespace trv5::ChartsHelper
