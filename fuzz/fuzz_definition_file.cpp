// Definition and palette files from outside: any bytes must parse into a definition or a
// ChartError, and whatever parses must load into the engine and draw without harm.

#include "platform/chartengine.h"
#include "platform/definitionfile.h"

#include <trv5charts/charterror.h>

#include <QApplication>
#include <QWidget>

#include <cstdint>

extern "C" int LLVMFuzzerInitialize(int* pArgc, char*** pArgv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(*pArgc, *pArgv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t pSize) {
    using namespace trv5::platform;
    const QByteArray bytes(reinterpret_cast<const char*>(pData), static_cast<qsizetype>(pSize));
    static QWidget parent;
    static ChartEngine engine(&parent);
    try {
        engine.ApplyContent(definitionfile::ParseContent(bytes, QStringLiteral("fuzz.json")));
        for (int i = 0; i < engine.SeriesCount(); ++i) {
            engine.Series(i).AddPoint(i, 1.0, QStringLiteral("point"));
            engine.Series(i).AddPoint(i + 0.5, -2.0);
            engine.Series(i).SetLabelsVisible(true);
        }
        (void)engine.Render(QSize(160, 120));
    } catch (const trv5::ChartError&) {
    }
    try {
        engine.ApplyPalette(definitionfile::ParsePalette(bytes, QStringLiteral("fuzz.json")));
        (void)engine.Render(QSize(160, 120));
    } catch (const trv5::ChartError&) {
    }
    return 0;
}
