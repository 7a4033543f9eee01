#pragma once

#include <QLocale>
#include <QString>

// Number texts for chart labels: tick labels, AUC figures, regression equations. They are display
// texts in the user's culture (its decimal point, never grouping), unlike saved state.
namespace trv5::NumberFormat {

// One decimal (12.3); a text longer than eight characters switches to the 0.00E+00 form, so a
// label never grows wider than a short number.
QString Short(double pValue, const QLocale& pLocale = QLocale());

// pDecimals decimals (0 to 340, otherwise ChartError 5) with the trailing zeros and a bare
// decimal point removed: 0.75 to 6 places is "0.75", 1 is "1", 0 is "0". A non-zero value that
// would show as nothing but zeros (0.00000001 to 6 places, up to eight decimals) switches to the
// 0.00E+00 form instead. Non-finite values are written INF, -INF and NaN.
QString WithDigits(double pValue, int pDecimals, const QLocale& pLocale = QLocale());

// The marker that model code uses for a result it could not compute.
inline constexpr double kUndefinedResult = -9999.0;

// Two lines joined by CR LF: "y = <slope>x + <intercept>" (a negative intercept in parentheses)
// and "RS = <rs>", numbers with eight decimals as WithDigits writes them. A missing result
// (kUndefinedResult, or not a finite number) reads "UNDEFINED".
QString RegressionEquation(double pSlope, double pIntercept, double pRs,
                           const QLocale& pLocale = QLocale());

} // namespace trv5::NumberFormat
