// A property of the run progress chart's saved state: whatever fragment is loaded, saving,
// loading and saving again gives the same text twice, so that a project saved over and over never
// drifts. The first byte picks the user's locale (the reference line is written in it); the rest
// is the fragment.

#include <trv5charts/rtchart.h>

#include "widgetfuzzer.h"

#include <QLocale>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

const std::array<QLocale, 3> kLocales = {QLocale(QLocale::English, QLocale::UnitedKingdom),
                                         QLocale(QLocale::German, QLocale::Germany),
                                         QLocale(QLocale::Arabic, QLocale::Egypt)};

QString SaveOfLoaded(const QString& pText) {
    trv5::RTChart chart;
    chart.FromString(pText);
    (void)chart.GetChartDataAsString();
    return chart.ToString();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t pSize) {
    if (pSize == 0) {
        return 0;
    }
    QLocale::setDefault(kLocales[pData[0] % kLocales.size()]);
    const QString text = FuzzText(pData + 1, pSize - 1);
    const QString first = SaveOfLoaded(text);
    const QString second = SaveOfLoaded(first);
    const QString third = SaveOfLoaded(second);
    if (second != third) {
        std::fprintf(stderr, "second save:\n%s\nthird save:\n%s\n", qPrintable(second),
                     qPrintable(third));
        std::abort();
    }
    return 0;
}
