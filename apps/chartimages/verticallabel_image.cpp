// The vertical caption as it stands beside a chart's value axis.
#include "chartimages.h"

#include <trv5charts/capture.h>
#include <trv5charts/verticallabel.h>

namespace {

const trv5::images::RegisterImage verticalLabel("verticallabel.png", [] {
    trv5::VerticalLabel label;
    label.resize(24, 180);
    label.SetBackColor(0xFFFFFF);
    label.SetText(QStringLiteral("TP Rate (Sensitivity)"));
    return trv5::CaptureControl(&label);
});

} // namespace
