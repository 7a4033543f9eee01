#pragma once

#include <QPointF>

class QImage;
class QPixmap;

namespace trv5::platform {

// Copies pSource into pTarget with its top-left corner at pAt (logical pixels of pTarget),
// replacing what was there pixel for pixel: a capture must show the widget's own colours, not a
// blend with the background it is placed on.
void ReplacePixels(QImage& pTarget, QPointF pAt, const QPixmap& pSource);

} // namespace trv5::platform
