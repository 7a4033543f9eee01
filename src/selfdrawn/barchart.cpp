#include <trv5charts/barchart.h>

#include "platform/chartmenu.h"
#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "platform/focusmark.h"
#include "selfdrawn/barchart_support.h"

#include <trv5charts/charterror.h>
#include <trv5charts/localizationlib.h>

#include <QContextMenuEvent>
#include <QEvent>
#include <QMouseEvent>
#include <QResizeEvent>

#include <algorithm>
#include <cmath>
#include <limits>

namespace trv5 {

namespace {

using platform::DrawingSurface;

// Positions beyond this cannot be given to a widget.
constexpr double kMaxWidgetPosition = QWIDGETSIZE_MAX;

// A widget position from a layout value: rounded half to even like every whole-number
// conversion of the library, ChartError 6 when no widget could be there.
int WidgetPosition(double pValue) {
    if (!std::isfinite(pValue) || std::abs(pValue) > kMaxWidgetPosition) {
        throw ChartError(ChartError::Overflow);
    }
    return LocalizationLib::ToInt32(pValue);
}

// A negative corner makes the picture larger than the control, and the corner comes from
// saved state too. The picture is limited to three times the control's extent so that no
// corner can make the chart allocate an arbitrarily large raster; what lies outside the control
// is never seen anyway.
int PictureExtent(double pValue, int pControlExtent) {
    const int extent = WidgetPosition(pValue);
    return std::clamp(extent, 0, std::max(3 * pControlExtent, 64));
}

DrawingSurface::ScaleMode SurfaceScaleMode(std::int32_t pMode) {
    switch (pMode) {
    case 0:
        return DrawingSurface::ScaleMode::User;
    case 3:
        return DrawingSurface::ScaleMode::Pixel;
    default:
        throw ChartError(ChartError::InvalidArgument);
    }
}

} // namespace

// Qt writes properties from forms and scripts, where an exception has nowhere to go: a value
// beyond the single range leaves the property as it was.
void BarChart::SetHMarginPercentProperty(double pValue) {
    if (std::isfinite(pValue) && std::abs(pValue) > std::numeric_limits<float>::max()) {
        return;
    }
    m_hMarginPercent = barchart::ToSingle(pValue);
}

void BarChart::SetMaxValueProperty(double pValue) {
    if (std::isfinite(pValue) && std::abs(pValue) > std::numeric_limits<float>::max()) {
        return;
    }
    m_maxValue = barchart::ToSingle(pValue);
}

BarChart::BarChart(QWidget* pParent)
    : QWidget(pParent), m_surface(new DrawingSurface(this)), m_pic(new DrawingSurface(this)),
      m_menu(new platform::ChartMenu(this)) {
    m_surface->setObjectName(QStringLiteral("surface"));
    m_pic->setObjectName(QStringLiteral("pic"));
    // Both start in the face colour of the host's controls, as a bare control and picture
    // would; the bar outlines are drawn in the same colour, so they read as gaps between bars.
    m_surface->SetBackColor(barchart::kButtonFace);
    m_pic->SetBackColor(barchart::kButtonFace);
    m_surface->lower();
    m_pic->raise();
    m_surface->setGeometry(rect());
    // The tool tip follows the mouse without a button pressed.
    m_pic->setMouseTracking(true);
    m_pic->installEventFilter(this);
    // Reachable from the keyboard, so that the menu key opens the context menu.
    setFocusPolicy(Qt::StrongFocus);

    const QString item = QStringLiteral("mnuMain");
    m_menu->AddItem(QStringLiteral("Copy Chart"), item);
    m_menu->AddItem(QStringLiteral("Copy Chart Data"), item);
    m_menu->AddItem(QStringLiteral("-"), item);
    m_menu->AddItem(QStringLiteral("Print"), item);
    connect(m_menu, &platform::ChartMenu::Triggered, this, &BarChart::OnMenu);
    connect(m_menu, &platform::ChartMenu::PrintFailed, this, &BarChart::PrintFailed);
    new platform::FocusMark(this);
    setAccessibleName(QStringLiteral("Bar chart"));

    PlacePicture();
}

BarChart::~BarChart() = default;

// ---- properties ----

void BarChart::SetColumns(std::int32_t pValue) {
    if (pValue == 0) {
        return;
    }
    if (m_chartType == ctMultiVerticalBars) {
        m_columns = pValue;
        m_pic->SetScaleWidth(pValue);
    } else {
        m_columns = 1;
    }
}

std::int32_t BarChart::RoundedCorner() {
    SetColumns(m_roundedCorner);
    return 0;
}

void BarChart::SetBackColor(std::int32_t pValue) {
    m_pic->SetBackColor(pValue);
    m_surface->SetBackColor(pValue);
    // The surface's fill colour follows too; the chart never fills with it.
    m_surface->SetFillColor(pValue);
}

std::int32_t BarChart::BackColor() {
    SetBarColor(m_pic->ForeColor());
    return 0;
}

QColor BarChart::BarQColor() const {
    return platform::ToQColor(m_barColor);
}

void BarChart::SetBarQColor(const QColor& pColour) {
    SetBarColor(platform::FromQColor(pColour));
}

QColor BarChart::BackQColor() const {
    return platform::ToQColor(StoredBackColor());
}

void BarChart::SetBackQColor(const QColor& pColour) {
    SetBackColor(platform::FromQColor(pColour));
}

std::int32_t BarChart::StoredBackColor() const {
    return m_surface->BackColor();
}

double BarChart::ScaleWidth() const {
    return m_surface->ScaleWidth();
}

double BarChart::ScaleHeight() const {
    return m_surface->ScaleHeight();
}

double BarChart::ScaleX(double pWidth, std::int32_t pFromScale, std::int32_t pToScale) const {
    return m_surface->ScaleX(pWidth, SurfaceScaleMode(pFromScale), SurfaceScaleMode(pToScale));
}

double BarChart::ScaleY(double pHeight, std::int32_t pFromScale, std::int32_t pToScale) const {
    return m_surface->ScaleY(pHeight, SurfaceScaleMode(pFromScale), SurfaceScaleMode(pToScale));
}

// ---- host operations ----

void BarChart::Init(std::int32_t pColumns, float pMaxValue, SimpleBartChartType pChartType,
                    std::int32_t pValuesType, float pHMarginPercent) {
    if (pMaxValue == 0.0F) {
        return;
    }
    m_hMarginPercent = pHMarginPercent;
    m_maxValue = pMaxValue;
    m_chartType = pChartType;
    SetColumns(pColumns);
    if (m_chartType == ctSingleHorizontal) {
        m_valuesType = kLongValues;
        // Index 0 holds the gauge's value.
        m_longData.assign(2, 0);
        m_columns = 1;
    } else {
        m_valuesType = pValuesType;
    }
    LayOut();
}

void BarChart::SetDoubleData(std::span<const double> pValues) {
    m_valuesType = kDoubleValues;
    try {
        m_doubleData.assign(pValues.begin(), pValues.end());
        m_hasData = 1;
    } catch (...) {
        ClearPicture();
    }
}

void BarChart::SetLongData(std::span<const std::int32_t> pValues) {
    m_valuesType = kLongValues;
    try {
        m_longData.assign(pValues.begin(), pValues.end());
        m_hasData = 1;
    } catch (...) {
        ClearPicture();
    }
}

void BarChart::SetLongHValue(std::int32_t pValue) {
    if (m_maxValue == 0.0F) {
        return;
    }
    if (m_longData.empty()) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    m_longData.front() = pValue;
    m_hasData = 1;
    Redraw();
}

void BarChart::Clear() {
    ClearPicture();
}

void BarChart::ClearPicture() noexcept {
    try {
        m_pic->Cls();
    } catch (...) {
        // Clearing is the last resort of every failure; it has nothing to fall back on.
    }
}

void BarChart::Reset() {
    Clear();
    std::vector<double>().swap(m_doubleData);
    std::vector<std::int32_t>().swap(m_longData);
    m_valuesType = 0;
    m_columns = 0;
    m_maxValue = 0.0F;
    m_chartType = ctMultiVerticalBars;
    m_dataPointName.clear();
    m_hMarginPercent = 0.0F;
    m_hasData = 0;
}

// ---- layout ----

void BarChart::PlacePicture() {
    const double corner = m_roundedCorner;
    const double width = ScaleWidth();
    const double height = ScaleHeight();
    double left = corner;
    double pictureWidth = width - 2.0 * corner;
    if (m_hMarginPercent > 0.0F) {
        left = width * static_cast<double>(m_hMarginPercent) + corner;
        // From the edge the picture had before this move: after a change of the margin the
        // width settles at the next layout. Hosts lay out twice and rely on that.
        pictureWidth = width - 2.0 * m_pic->x() - 2.0 * corner;
    }
    const int x = WidgetPosition(left);
    const int y = WidgetPosition(corner);
    const int w = PictureExtent(pictureWidth, this->width());
    const int h = PictureExtent(height - 2.0 * corner, this->height());
    m_pic->setGeometry(x, y, w, h);
}

void BarChart::LayOut() {
    PlacePicture();
    if (m_hasData == 1) {
        Redraw();
    }
}

void BarChart::changeEvent(QEvent* pEvent) {
    QWidget::changeEvent(pEvent);
    platform::FollowPaletteChange(*pEvent, platform::FollowsPalette(StoredBackColor()),
                                  m_recolouring, [this] {
                                      SetBackColor(StoredBackColor());
                                      Redraw();
                                  });
}

void BarChart::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    m_surface->setGeometry(rect());
    try {
        PlacePicture();
    } catch (const ChartError&) {
        // A margin that puts the picture out of reach leaves it where it was; a resize has
        // nobody to report to.
    }
    // A resize starts both pictures afresh, so the chart draws whatever it holds, as a paint
    // after a resize always has, whether or not values were handed in.
    Redraw();
}

// ---- menu ----

void BarChart::contextMenuEvent(QContextMenuEvent* pEvent) {
    if (m_showCopyPrint) {
        m_menu->Popup(pEvent->globalPos(), pEvent->reason() == QContextMenuEvent::Keyboard);
    }
    pEvent->accept();
}

void BarChart::OnMenu(int pIndex) {
    switch (pIndex) {
    case 0:
        CopyChart();
        break;
    case 1:
        CopyChartData();
        break;
    case 3:
        PrintChart();
        break;
    default:
        break;
    }
}

void BarChart::CopyChart() {
    m_menu->CopyOwnerPicture();
}

void BarChart::PrintChart() {
    m_menu->PrintOwnerPicture();
}

void BarChart::PrintPreview() {
    m_menu->PreviewOwnerPicture();
}

void BarChart::SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog) {
    m_menu->SetPrintDialog(std::move(pDialog));
}

void BarChart::CopyChartData() {
    if (m_hasData != 1) {
        return;
    }
    QString text;
    try {
        text = DataText();
    } catch (...) {
        // Fewer values than columns: a menu command has nobody to report to, and the clipboard
        // keeps what it had.
        return;
    }
    if (!text.isEmpty()) {
        platform::ChartMenu::CopyText(text);
    }
}

// ---- tool tip ----

bool BarChart::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == m_pic && pEvent->type() == QEvent::MouseMove) {
        const QPointF at = static_cast<QMouseEvent*>(pEvent)->position();
        UpdateToolTip(at.x(), at.y());
    }
    return QWidget::eventFilter(pWatched, pEvent);
}

} // namespace trv5
