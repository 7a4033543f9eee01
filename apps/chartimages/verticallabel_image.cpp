// The vertical caption as it stands beside a chart's value axis.
#include "chartimages.h"

#include <trv5charts/capture.h>
#include <trv5charts/verticallabel.h>

namespace {

const trv5::images::RegisterImage verticalLabel("verticallabel.png", [] {
    trv5::VerticalLabel label;
    // The default background, the form's button face, shows the control's extent.
    label.resize(28, 200);
    label.SetText(QStringLiteral("TP Rate (Sensitivity)"));
    return trv5::CaptureControl(&label);
});

} // namespace
