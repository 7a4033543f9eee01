// The controls Designer offers: one line each. Every control's header is in the umbrella
// header, so adding a control needs nothing but its line here.

#include "controlinterface.h"

#include <trv5charts/trv5charts.h>

namespace trv5::designer {

namespace {

constexpr const char* kGroup = "TRV5Charts";

const ControlInfo kControls[] = {
    TRV5_DESIGNER_CONTROL(RTChart, "rtchart.h", kGroup,
                          "Run progress chart: up to 21 series by generation or by record"),
};

} // namespace

std::span<const ControlInfo> Controls() {
    return kControls;
}

} // namespace trv5::designer
