#include "platform/imagecompose.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>

namespace trv5::platform {

void ReplacePixels(QImage& pTarget, QPointF pAt, const QPixmap& pSource) {
    QPainter painter(&pTarget);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawPixmap(pAt, pSource);
}

} // namespace trv5::platform
