#pragma once

#include <QString>

#include <span>

namespace trv5::roc {

// The chart's data as clipboard text: the header "FP Rate(1-Specificity)<TAB>TP Rate
// (Sensitivity)", then one row per FP rate with its TP rate, numbers in the user's locale as
// LocalizationLib::DoubleToUserText writes them, CR LF between rows and none after the last.
// A row whose TP rate is missing (the TP rates are shorter) has an empty second cell.
QString ChartDataText(std::span<const double> pFpRates, std::span<const double> pTpRates);

} // namespace trv5::roc
