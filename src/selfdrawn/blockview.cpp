#include "selfdrawn/blockview.h"

#include "platform/chartmenu.h"
#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "platform/focusmark.h"
#include "selfdrawn/selfdrawn_support.h"

#include <trv5charts/hostsettings.h>
#include <trv5charts/popupmenuitem.h>
#include <trv5charts/variantconvert.h>

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QWidget>

#include <cmath>

namespace trv5::blocks {

namespace {

using selfdrawn::kButtonFace;
using selfdrawn::kGreyText;
constexpr std::int32_t kWhite = 0xFFFFFF;

// The frame's corner ellipse, and the picture's inset from the control's edges: enough to keep
// the picture clear of the rounded corners.
constexpr int kFrameCorner = 8;
constexpr int kPictureInset = 3;

// Hands the picture's mouse moves to a callback.
class MouseMoves final : public QObject {
public:
    MouseMoves(QObject& pWatched, std::function<void(const QPointF&)> pMoved)
        : QObject(&pWatched), m_moved(std::move(pMoved)) {
        pWatched.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override {
        if (pEvent->type() == QEvent::MouseMove) {
            m_moved(static_cast<QMouseEvent*>(pEvent)->position());
        }
        return QObject::eventFilter(pWatched, pEvent);
    }

private:
    std::function<void(const QPointF&)> m_moved;
};

} // namespace

BlockView::BlockView(QWidget& pOwner, std::function<QString()> pDataText,
                     std::function<QString(int, int)> pToolTipAt)
    : m_owner(pOwner), m_dataText(std::move(pDataText)), m_toolTipAt(std::move(pToolTipAt)),
      m_surface(new platform::DrawingSurface(&pOwner)),
      m_pic(new platform::DrawingSurface(&pOwner)), m_menu(new platform::ChartMenu(&pOwner)) {
    m_surface->setObjectName(QStringLiteral("surface"));
    m_pic->setObjectName(QStringLiteral("pic"));
    m_surface->SetBackColor(kButtonFace);
    m_pic->SetBackColor(kButtonFace);
    m_surface->lower();
    m_pic->raise();
    // The tool tip follows the mouse without a button pressed.
    m_pic->setMouseTracking(true);
    new MouseMoves(*m_pic, [this](const QPointF& pPosition) { UpdateToolTip(pPosition); });
    // Reachable from the keyboard, so that the menu key opens the context menu.
    pOwner.setFocusPolicy(Qt::StrongFocus);

    const QString item = QStringLiteral("mnuMain");
    m_menu->AddItem(QStringLiteral("Copy Chart"), item);
    m_menu->AddItem(QStringLiteral("Copy Chart Data"), item);
    m_menu->AddItem(QStringLiteral("-"), item);
    m_menu->AddItem(QStringLiteral("Print"), item);
    QObject::connect(m_menu, &platform::ChartMenu::Triggered, &pOwner,
                     [this](int pIndex) { OnMenu(pIndex); });
    // Made last, so that it lies over the picture.
    new platform::FocusMark(&pOwner);
    LayOut();
}

void BlockView::OnMenu(int pIndex) {
    switch (pIndex) {
    case pmiCopy:
        CopyPicture();
        break;
    case pmiCopyData:
        CopyData();
        break;
    case pmiPrint:
        PrintPicture();
        break;
    default:
        break;
    }
}

void BlockView::CopyPicture() {
    m_menu->CopyOwnerPicture();
}

void BlockView::CopyData() {
    const QString text = m_dataText();
    if (!text.isEmpty()) {
        platform::ChartMenu::CopyText(text);
    }
}

void BlockView::PrintPicture() {
    m_menu->PrintOwnerPicture();
}

void BlockView::PreviewPicture() {
    m_menu->PreviewOwnerPicture();
}

void BlockView::FollowPaletteChange(const QEvent& pEvent, const std::function<void()>& pRedraw) {
    platform::FollowPaletteChange(pEvent, platform::FollowsPalette(kButtonFace), m_recolouring,
                                  pRedraw);
}

std::int32_t BlockView::Background() {
    return kButtonFace;
}

void BlockView::LayOut() {
    m_surface->setGeometry(m_owner.rect());
    m_pic->setGeometry(
        m_owner.rect().adjusted(kPictureInset, kPictureInset, -kPictureInset, -kPictureInset));
}

QSize BlockView::PictureSize() {
    LayOut();
    return m_pic->DeviceSize();
}

QSize BlockView::StartDrawing() {
    LayOut();
    m_surface->Cls();
    m_surface->SetForeColor(kGreyText);
    m_surface->RoundRect(0.0, 0.0, m_surface->ScaleWidth(), m_surface->ScaleHeight(), kFrameCorner,
                         kFrameCorner);
    m_pic->Cls();
    return m_pic->DeviceSize();
}

void BlockView::ClearPicture() noexcept {
    try {
        m_pic->Cls();
    } catch (...) {
        // Clearing is the last resort of every failure; it has nothing to fall back on.
    }
}

std::optional<std::pair<int, int>> BlockView::DevicePixel(const QPointF& pPosition) const {
    const double ratio = m_pic->DevicePixelRatio();
    const double x = std::floor(pPosition.x() * ratio);
    const double y = std::floor(pPosition.y() * ratio);
    const QSize size = m_pic->DeviceSize();
    if (!(x >= 0.0 && y >= 0.0 && x < size.width() && y < size.height())) {
        return std::nullopt;
    }
    return std::pair<int, int>(static_cast<int>(x), static_cast<int>(y));
}

void BlockView::UpdateToolTip(const QPointF& pPosition) {
    const auto pixel = DevicePixel(pPosition);
    m_pic->SetToolTipText(pixel ? m_toolTipAt(pixel->first, pixel->second) : QString());
}

void BlockView::OpenMenu(const QContextMenuEvent& pEvent) {
    m_menu->Popup(pEvent.globalPos(), pEvent.reason() == QContextMenuEvent::Keyboard);
}

bool GapsWanted(std::int64_t pCount) {
    std::int32_t limit = 0;
    try {
        limit = WholeSetting(QStringLiteral("Run.UsageChart.ShowGaps.Limit"));
    } catch (...) {
        limit = 0;
    }
    return pCount <= limit;
}

std::int32_t AbsentColourOfMode(std::int32_t pMode) {
    if (pMode == 0 || pMode == 2) {
        return kWhite;
    }
    return WholeSetting(QStringLiteral("Run.UsageChart.AbsentColor.") + QString::number(pMode));
}

std::int32_t WholeSetting(const QString& pKey) {
    return VariantConvert::ToInt32(HostSettings::Value(pKey));
}

} // namespace trv5::blocks
