#include <trv5charts/localizationlib.h>
#include <trv5charts/numberformat.h>

#include <cmath>

namespace trv5::NumberFormat {

namespace {

constexpr int kShortLabelLength = 8;
constexpr int kEquationDecimals = 8;

bool IsDefined(double pValue) {
    return std::isfinite(pValue) && pValue != kUndefinedResult;
}

} // namespace

QString Short(double pValue, const QLocale& pLocale) {
    QString text = LocalizationLib::FormatFixed(pValue, 1, pLocale);
    if (text.size() > kShortLabelLength) {
        text = LocalizationLib::FormatScientific(pValue, pLocale);
    }
    return text;
}

QString WithDigits(double pValue, int pDecimals, const QLocale& pLocale) {
    if (pValue == 1.0) {
        return QStringLiteral("1");
    }
    if (pValue == 0.0) {
        return QStringLiteral("0");
    }
    const QString point = pLocale.decimalPoint();
    QString text = LocalizationLib::FormatFixed(pValue, pDecimals, pLocale);
    // "0.000000" for a value that is not zero says something false; the comparison text is
    // limited to eight decimals, so with more decimals requested the zeros are kept.
    const QString allZeros = QStringLiteral("0") + point + QStringLiteral("00000000");
    if (pDecimals >= 1 && text == allZeros.left(text.size())) {
        return LocalizationLib::FormatScientific(pValue, pLocale);
    }
    // Trailing zeros are decimals only when there is a decimal point; "100" and "INF" keep
    // theirs.
    if (!text.contains(point)) {
        return text;
    }
    while (text.endsWith(QLatin1Char('0'))) {
        text.chop(1);
    }
    if (text.endsWith(point)) {
        text.chop(point.size());
    }
    return text;
}

QString RegressionEquation(double pSlope, double pIntercept, double pRs, const QLocale& pLocale) {
    QString text;
    if (IsDefined(pSlope) && IsDefined(pIntercept)) {
        const QString slope = WithDigits(pSlope, kEquationDecimals, pLocale);
        const QString intercept = WithDigits(pIntercept, kEquationDecimals, pLocale);
        text = pIntercept < 0 ? QStringLiteral("y = %1x + (%2)").arg(slope, intercept)
                              : QStringLiteral("y = %1x + %2").arg(slope, intercept);
    } else {
        text = QStringLiteral("y = UNDEFINED + (UNDEFINED)");
    }
    text += QStringLiteral("\r\nRS = ");
    text +=
        IsDefined(pRs) ? WithDigits(pRs, kEquationDecimals, pLocale) : QStringLiteral("UNDEFINED");
    return text;
}

} // namespace trv5::NumberFormat
