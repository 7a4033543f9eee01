#pragma once

#include <QString>

namespace trv5 {

struct ValueRange {
    double Minimum;
    double Maximum;
};

// The host setting that holds the axis margin as a fraction of the value span (0.05 for 5 %).
inline constexpr char kMarginSettingKey[] = "Run.CurveFitting.Margin";

// The margin fraction stored under pKey in the host settings, read as fixed-culture text.
// Throws ChartError 91 without settings, 5 without the key, 13 when it is no number.
double SettingsMargin(const QString& pKey = QString::fromLatin1(kMarginSettingKey));

// As SettingsMargin once a host has stored its settings; 0 before that, so that a chart shown
// before the host hands its settings over still draws, without a margin.
double SettingsMarginIfConfigured(const QString& pKey = QString::fromLatin1(kMarginSettingKey));

// The axis range for data from pMinimum to pMaximum: a maximum of exactly 0 becomes 0.1, equal
// ends are widened by 10 % each way (so a constant series still gets a visible span), and then
// pMargin times the span is added on both sides.
ValueRange PaddedRange(double pMinimum, double pMaximum, double pMargin);

} // namespace trv5
