#include <trv5charts/axisrange.h>

#include <trv5charts/hostsettings.h>
#include <trv5charts/localizationlib.h>

namespace trv5 {

double SettingsMargin(const QString& pKey) {
    return LocalizationLib::TextToDouble(HostSettings::Value(pKey).toString());
}

double SettingsMarginIfConfigured(const QString& pKey) {
    return Globals::HasConfig() ? SettingsMargin(pKey) : 0.0;
}

ValueRange PaddedRange(double pMinimum, double pMaximum, double pMargin) {
    double minimum = pMinimum;
    double maximum = pMaximum;
    if (maximum == 0.0) {
        maximum = 0.1;
    }
    if (minimum == maximum) {
        minimum *= 0.9;
        maximum *= 1.1;
    }
    const double span = maximum - minimum;
    return {minimum - pMargin * span, maximum + pMargin * span};
}

} // namespace trv5
