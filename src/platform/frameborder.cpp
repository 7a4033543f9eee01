#include "platform/frameborder.h"

#include <QPainter>
#include <QPalette>
#include <QWidget>

namespace trv5::platform {

void PaintFrameBorder(QWidget& pWidget, const QRect& pEngineArea) {
    const QRect frame = pEngineArea.adjusted(-1, -1, 0, 0);
    if (frame.width() <= 0 || frame.height() <= 0) {
        return;
    }
    QPainter painter(&pWidget);
    painter.setPen(QPen(pWidget.palette().color(QPalette::Mid), 0));
    painter.setBrush(Qt::NoBrush);
    // drawRect with a one-pixel pen covers the rectangle's right and bottom edge too, so the
    // frame sits exactly one pixel outside the engine area on every side.
    painter.drawRect(frame);
}

} // namespace trv5::platform
