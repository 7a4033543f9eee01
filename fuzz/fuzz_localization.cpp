// Number text in the user's locale and in the fixed culture, under several locales. The first
// byte picks the locale; the rest is read as text in every conversion, and its first eight bytes
// also as a double to write. Whatever is written must read back to the same text.

#include <trv5charts/charterror.h>
#include <trv5charts/localizationlib.h>

#include <QLocale>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

namespace ll = trv5::LocalizationLib;

const std::array<QLocale, 6> kLocales = {
    QLocale(QLocale::English, QLocale::UnitedKingdom), QLocale(QLocale::German, QLocale::Germany),
    QLocale(QLocale::French, QLocale::France),         QLocale(QLocale::Arabic, QLocale::Egypt),
    QLocale(QLocale::Hindi, QLocale::India),           QLocale::c()};

template <class Convert> void Swallow(Convert&& pConvert) {
    try {
        pConvert();
    } catch (const trv5::ChartError&) {
    }
}

// pWrite(pValue) read back with pRead and written again gives the same text.
template <class Write, class Read> void RoundTrip(double pValue, Write&& pWrite, Read&& pRead) {
    const QString text = pWrite(pValue);
    double again = 0.0;
    try {
        again = pRead(text);
    } catch (const trv5::ChartError& error) {
        // Only the edge of the double range may overflow after rounding to 15 digits.
        if (error.number() != trv5::ChartError::Overflow) {
            std::abort();
        }
        return;
    }
    if (pWrite(again) != text) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t pSize) {
    if (pSize == 0) {
        return 0;
    }
    QLocale::setDefault(kLocales[pData[0] % kLocales.size()]);
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(pData + 1),
                                           static_cast<qsizetype>(pSize - 1));
    Swallow([&] { (void)ll::TextToDouble(text); });
    Swallow([&] { (void)ll::UserTextToDouble(text); });
    Swallow([&] { (void)ll::TextToInt32(text); });

    double value = 0.0;
    if (pSize >= 9) {
        std::memcpy(&value, pData + 1, sizeof value);
    }
    RoundTrip(value, ll::DoubleToText, ll::TextToDouble);
    RoundTrip(value, ll::DoubleToUserText, ll::UserTextToDouble);
    const float single = static_cast<float>(value);
    RoundTrip(
        single, [](double pValue) { return ll::SingleToUserText(static_cast<float>(pValue)); },
        [](const QString& pText) {
            return static_cast<double>(static_cast<float>(ll::UserTextToDouble(pText)));
        });
    const int digits = pSize >= 10 ? pData[9] % 20 : 2;
    Swallow([&] { (void)ll::FormatFixed(value, digits); });
    Swallow([&] { (void)ll::FormatPercent(value, digits); });
    Swallow([&] { (void)ll::FormatScientific(value); });
    Swallow([&] { (void)ll::ToInt32(value); });
    Swallow([&] { (void)ll::ToInt16(value); });
    return 0;
}
