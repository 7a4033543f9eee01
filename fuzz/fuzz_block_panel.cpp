// Saved usage panel state from outside: any text must load without harm, whatever count it
// claims, and the panel must still draw, save and copy afterwards.

#include <trv5charts/blockpanel.h>
#include <trv5charts/hostsettings.h>

#include <QApplication>
#include <QVariantMap>

#include <cstdint>
#include <memory>

namespace {

// The settings of every usage mode, so that a fragment's mode can be applied.
class FuzzConfig final : public trv5::IConfig {
public:
    QVariantMap Settings() const override {
        return {{"Run.UsageChart.HeatMap.H", 210},
                {"Run.UsageChart.HeatMap.S.Factor", 90},
                {"Run.UsageChart.HeatMap.B", 85},
                {"Run.UsageChart.ShowGaps.Limit", 100},
                {"Run.UsageChart.AbsentColor.1", 0xE0E0E0}};
    }
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* pArgc, char*** pArgv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(*pArgc, *pArgv);
    trv5::Globals::StoreConfig(std::make_shared<FuzzConfig>());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t pSize) {
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(pData), static_cast<qsizetype>(pSize));
    trv5::BlockPanel panel;
    panel.resize(120, 80);
    (void)panel.IsTypeOf(text);
    panel.FromString(text);
    panel.Redraw();
    const QString saved = panel.ToString();
    (void)panel.GetChartDataAsString();

    // What a panel writes, it reads back to the same text.
    trv5::BlockPanel again;
    again.resize(120, 80);
    again.FromString(saved);
    if (!saved.isEmpty() && again.ToString() != saved) {
        __builtin_trap();
    }
    return 0;
}
