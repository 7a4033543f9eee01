#pragma once

#include <QRect>

class QWidget;

namespace trv5::platform {

// Draws the one-pixel frame that a hosted chart puts around its engine control, just outside
// pEngineArea, onto pWidget. Meant to be called from pWidget's paintEvent.
void PaintFrameBorder(QWidget& pWidget, const QRect& pEngineArea);

} // namespace trv5::platform
