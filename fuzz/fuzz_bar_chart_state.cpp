// Bar chart state from outside: any text must load without harm, and the chart must still save
// and redraw. What it saves must load again and save the same scale and columns.

#include <trv5charts/barchart.h>

#include "widgetfuzzer.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t pSize) {
    const QString text = FuzzText(pData, pSize);
    trv5::BarChart chart;
    chart.resize(120, 80);
    chart.FromString(text);
    chart.Redraw();
    const QString saved = chart.ToString();
    if (saved.isEmpty()) {
        std::abort(); // a chart always has a state to write
    }

    trv5::BarChart again;
    again.resize(120, 80);
    again.FromString(saved);
    again.Redraw();
    // Loading is lossy by design (the margin and the data flag stay behind), but the columns,
    // the maximum and the kinds a loaded chart saves must load back unchanged.
    const QString second = again.ToString();
    trv5::BarChart third;
    third.FromString(second);
    if (third.ToString() != second) {
        std::abort();
    }
    return 0;
}
