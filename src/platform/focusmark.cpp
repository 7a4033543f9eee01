#include "platform/focusmark.h"

#include <QApplication>
#include <QChildEvent>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QRegion>

namespace trv5::platform {

namespace {

constexpr int kMarkWidth = 2;

} // namespace

FocusMark::FocusMark(QWidget* pOwner) : QWidget(pOwner), m_owner(pOwner) {
    setObjectName(QStringLiteral("focusMark"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    // The mark lies over the whole chart. See-through, it could only appear by having the chart
    // and everything on it repainted (a chart shown in a window that takes the focus did so with
    // its first frames); masked to the edges it draws (Follow) and opaque on them, it costs no
    // more than those edges.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
    hide();
    pOwner->installEventFilter(this);
}

void FocusMark::Follow() {
    const QRect edges = m_owner->rect();
    setGeometry(edges);
    // Too small a chart to leave an inside keeps no mask: the mark is all edge.
    setMask(QRegion(edges).subtracted(
        QRegion(edges.adjusted(kMarkWidth, kMarkWidth, -kMarkWidth, -kMarkWidth))));
    raise();
    setVisible(m_owner->hasFocus());
}

bool FocusMark::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched != m_owner) {
        return false;
    }
    switch (pEvent->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::Resize:
        Follow();
        break;
    case QEvent::ChildAdded:
        // A label the chart adds later would otherwise lie over the mark.
        if (static_cast<QChildEvent*>(pEvent)->child() != this) {
            raise();
        }
        break;
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(pEvent);
        if (key->key() == Qt::Key_F10 && key->modifiers() == Qt::ShiftModifier) {
            // What the menu key sends, at the chart's centre.
            const QPoint centre = m_owner->rect().center();
            QContextMenuEvent menu(QContextMenuEvent::Keyboard, centre,
                                   m_owner->mapToGlobal(centre));
            QApplication::sendEvent(m_owner, &menu);
            return true;
        }
        break;
    }
    default:
        break;
    }
    return false;
}

void FocusMark::paintEvent(QPaintEvent*) {
    // The mask keeps the fill to the edges.
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Highlight));
}

FocusMark::HiddenDuringCapture::HiddenDuringCapture(QWidget* pControl) {
    if (pControl == nullptr) {
        return;
    }
    for (FocusMark* mark : pControl->findChildren<FocusMark*>()) {
        if (!mark->isHidden()) {
            mark->hide();
            m_hidden.push_back(mark);
        }
    }
}

FocusMark::HiddenDuringCapture::~HiddenDuringCapture() {
    for (FocusMark* mark : m_hidden) {
        mark->show();
    }
}

} // namespace trv5::platform
