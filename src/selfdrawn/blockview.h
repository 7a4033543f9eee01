#pragma once

#include "selfdrawn/blockgrid.h"

#include <QPointF>
#include <QSize>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

class QContextMenuEvent;
class QEvent;
class QWidget;

namespace trv5::platform {
class ChartMenu;
class DrawingSurface;
} // namespace trv5::platform

// What the two block charts share besides the grid: their child objects and the settings they
// read.
namespace trv5::blocks {

// The control surface `surface` with the grey rounded frame, the picture `pic` inside it and
// the context menu `ctxMain` with its four `mnuMain` entries, whose commands it carries out,
// and the focus mark that also turns Shift+F10 into the menu key. The children belong to the
// owner widget, which forwards its resize, change and context-menu events here.
class BlockView {
public:
    // pDataText gives the text of "Copy Chart Data" (an empty text copies nothing); pToolTipAt
    // the picture's tool tip over a device pixel, which follows the mouse.
    BlockView(QWidget& pOwner, std::function<QString()> pDataText,
              std::function<QString(int, int)> pToolTipAt);
    BlockView(const BlockView&) = delete;
    BlockView& operator=(const BlockView&) = delete;

    platform::DrawingSurface& Pic() const { return *m_pic; }
    platform::ChartMenu& Menu() const { return *m_menu; }

    // Places the surface over the whole owner and the picture inside the frame.
    void LayOut();
    // The picture's size in device pixels, laid out for the owner's size first: a hidden owner
    // gets no resize events, and it can be drawn (and copied) all the same.
    QSize PictureSize();
    // A fresh surface with the frame, and a cleared picture; returns the picture's size in
    // device pixels.
    QSize StartDrawing();
    // Wipes the picture; never throws (it is the last resort of every failure).
    void ClearPicture() noexcept;
    void OpenMenu(const QContextMenuEvent& pEvent);

    // The menu's commands.
    void CopyPicture();
    void CopyData();
    void PrintPicture();
    // The print preview of the page PrintPicture prints.
    void PreviewPicture();

    // The frame and the picture's background are palette colours: a palette change runs
    // pRedraw, which draws them again in the new palette's colours.
    void FollowPaletteChange(const QEvent& pEvent, const std::function<void()>& pRedraw);

    // The picture's background, which also shows in the gaps between blocks.
    static std::int32_t Background();

private:
    void OnMenu(int pIndex);
    void UpdateToolTip(const QPointF& pPosition);
    // The picture's device pixel under a position in the picture's widget coordinates.
    std::optional<std::pair<int, int>> DevicePixel(const QPointF& pPosition) const;

    QWidget& m_owner;
    std::function<QString()> m_dataText;
    std::function<QString(int, int)> m_toolTipAt;
    platform::DrawingSurface* m_surface;
    platform::DrawingSurface* m_pic;
    platform::ChartMenu* m_menu;
    bool m_recolouring = false;
};

// Whether a grid of pCount blocks leaves gaps: up to the setting "Run.UsageChart.ShowGaps.Limit".
// A value that is no whole number, a missing key and no configuration all read as 0.
bool GapsWanted(std::int64_t pCount);
// The absent colour of a mode: white for the modes 0 and 2 without any lookup, otherwise the
// setting "Run.UsageChart.AbsentColor." + the mode number; the lookup's ChartError reaches the
// caller.
std::int32_t AbsentColourOfMode(std::int32_t pMode);
// A whole-number setting; the lookup's or the conversion's ChartError reaches the caller.
std::int32_t WholeSetting(const QString& pKey);

} // namespace trv5::blocks
