// The bar chart's drawing and the tool tip that hit-tests it by colour.
#include <trv5charts/barchart.h>

#include "platform/drawingsurface.h"
#include "selfdrawn/barchart_runs.h"
#include "selfdrawn/barchart_support.h"

#include <trv5charts/charterror.h>
#include <trv5charts/localizationlib.h>
#include <trv5charts/mathhelper.h>

#include <cmath>
#include <limits>

namespace trv5 {

namespace {

// The vertical scale of the gauge: the bar runs from 0.2 to 1.1 of 1.2 units.
constexpr double kGaugeScale = 1.2;
constexpr double kGaugeBottom = 0.2;
constexpr double kGaugeTop = 1.1;

// The column under a scale position, floored as the library floors scale values (a value whose
// single-precision text is whole counts as that whole number).
std::int64_t ColumnAt(double pValue) {
    const float floored = MathHelper::FloorUnlessWhole(barchart::ToSingle(pValue));
    if (!(std::abs(floored) < 2147483648.0F)) {
        throw ChartError(ChartError::Overflow);
    }
    return static_cast<std::int64_t>(floored);
}

} // namespace

double BarChart::BarValue(std::int64_t pIndex) const {
    if (m_valuesType == kDoubleValues) {
        if (pIndex < 0 || pIndex >= static_cast<std::int64_t>(m_doubleData.size())) {
            throw ChartError(ChartError::IndexOutOfRange);
        }
        return m_doubleData[static_cast<std::size_t>(pIndex)];
    }
    if (pIndex < 0 || pIndex >= static_cast<std::int64_t>(m_longData.size())) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    return m_longData[static_cast<std::size_t>(pIndex)];
}

void BarChart::Redraw() {
    // What a screen reader says about the chart beside its name.
    const QString maximum = LocalizationLib::DoubleToUserText(m_maxValue);
    if (m_chartType == ctMultiVerticalBars) {
        setAccessibleDescription(
            QStringLiteral("Bar chart, %1 bars, maximum %2").arg(m_columns).arg(maximum));
    } else {
        const std::int32_t value = m_longData.empty() ? 0 : m_longData.front();
        setAccessibleDescription(QStringLiteral("Gauge, %1 of %2").arg(value).arg(maximum));
    }
    try {
        Draw();
    } catch (...) {
        // A chart that cannot be drawn completely shows nothing rather than part of itself.
        ClearPicture();
    }
}

void BarChart::Draw() {
    // The frame goes on a fresh surface, as on a freshly painted control.
    m_surface->Cls();
    m_surface->SetForeColor(barchart::kGreyText);
    m_surface->RoundRect(0.0, 0.0, std::round(ScaleWidth()), std::round(ScaleHeight()),
                         m_roundedCorner, m_roundedCorner);
    if (m_maxValue == 0.0F || m_columns == 0) {
        m_pic->Cls();
        return;
    }
    m_pic->Cls();
    if (m_chartType == ctMultiVerticalBars) {
        DrawVerticalBars();
    } else {
        DrawHorizontalBar();
    }
}

void BarChart::DrawVerticalBars() {
    if (m_roundedCorner > 0) {
        // The base line under the bars, on the surface just below the picture.
        const QRect area = m_pic->geometry();
        const double bottom = area.y() + area.height();
        m_surface->Line(area.x(), bottom, area.x() + area.width(), bottom);
    }
    double x = 0.0;
    double barWidth = 1.0;
    double gap = 0.0;
    if (m_columns < barchart::kTouchingBarsFrom) {
        // A one-unit space before every bar and after the last one.
        const std::int64_t units = 4 * static_cast<std::int64_t>(m_columns) + 1;
        if (units < std::numeric_limits<std::int32_t>::min()) {
            throw ChartError(ChartError::Overflow);
        }
        m_pic->SetScaleWidth(static_cast<double>(units));
        x = 1.0;
        barWidth = 3.0;
        gap = 1.0;
    } else {
        m_pic->SetScaleWidth(m_columns);
    }
    // y = 0 at the bottom edge, MaxValue at the top; larger values are clipped.
    m_pic->SetScaleTop(m_maxValue);
    m_pic->SetScaleHeight(-static_cast<double>(m_maxValue));
    if (m_valuesType != kDoubleValues && m_valuesType != kLongValues) {
        return;
    }
    if (m_columns >= barchart::kNoOutlinesFrom) {
        DrawTouchingBars();
        return;
    }
    // A missing value ends the drawing with ChartError 9 before anything is read out of range.
    for (std::int32_t i = 0; i < m_columns; ++i) {
        const double right = x + barWidth;
        const double value = BarValue(i);
        m_pic->SetForeColor(m_barColor);
        m_pic->FilledBox(x, 0.0, right, value, m_barColor);
        // Separates neighbouring bars; the picture's foreground stays the bar colour.
        m_pic->SetForeColor(barchart::kButtonFace);
        m_pic->Box(x, 0.0, right, value);
        m_pic->SetForeColor(m_barColor);
        x = right + gap;
    }
}

void BarChart::DrawTouchingBars() {
    m_pic->SetForeColor(m_barColor);
    const std::size_t available =
        m_valuesType == kDoubleValues ? m_doubleData.size() : m_longData.size();
    if (static_cast<std::size_t>(m_columns) > available) {
        // Too few values: the picture ends up empty, so there is nothing to draw first.
        throw ChartError(ChartError::IndexOutOfRange);
    }
    const auto mapping = m_pic->Mapping();
    if (!mapping) {
        return;
    }
    // Without outlines every bar is a plain box in one colour, so the bars that share pixel
    // columns can be filled together.
    barchart::BarRuns runs(*m_pic, *mapping, m_barColor);
    for (std::int32_t i = 0; i < m_columns; ++i) {
        runs.Add(i, i + 1.0, BarValue(i));
    }
    runs.Flush();
}

void BarChart::DrawHorizontalBar() {
    m_pic->SetScaleLeft(0.0);
    m_pic->SetScaleWidth(m_maxValue);
    m_pic->SetForeColor(m_barColor);
    m_pic->SetScaleTop(kGaugeScale);
    m_pic->SetScaleHeight(-kGaugeScale);
    if (m_longData.empty()) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    m_pic->FilledBox(0.0, kGaugeBottom, m_longData.front(), kGaugeTop, m_barColor);
}

void BarChart::UpdateToolTip(double pPixelX, double pPixelY) {
    m_pic->SetToolTipText(QString());
    try {
        m_pic->SetToolTipText(ToolTipAt(m_pic->ToUserX(pPixelX), m_pic->ToUserY(pPixelY)));
    } catch (const ChartError&) {
        // A position that maps to no column leaves the tip empty.
    }
}

std::int64_t BarChart::BarUnder(double pX, double pY) const {
    // Only a pixel in the bar colour is a bar; the outlines and the background are not.
    if (m_pic->Point(pX, pY) != m_barColor) {
        return -1;
    }
    if (m_chartType != ctMultiVerticalBars) {
        return 0;
    }
    return m_columns < barchart::kTouchingBarsFrom ? ColumnAt(pX * m_columns / m_pic->ScaleWidth())
                                                   : ColumnAt(pX);
}

std::int32_t BarChart::BarAt(const QPoint& pPosition) const {
    const QPointF at = m_pic->mapFrom(this, QPointF(pPosition)) + QPointF(0.5, 0.5);
    try {
        const std::int64_t bar = BarUnder(m_pic->ToUserX(at.x()), m_pic->ToUserY(at.y()));
        return bar >= 0 && bar < m_columns ? static_cast<std::int32_t>(bar) : -1;
    } catch (const ChartError&) {
        return -1;
    }
}

QString BarChart::ToolTipAt(double pX, double pY) const {
    const std::int64_t column = BarUnder(pX, pY);
    if (column < 0) {
        return {};
    }
    QString value;
    if (m_chartType != ctMultiVerticalBars) {
        if (m_longData.empty()) {
            return {};
        }
        value = QString::number(m_longData.front());
    } else {
        const auto index = static_cast<std::size_t>(column);
        if (m_valuesType == kDoubleValues && index < m_doubleData.size()) {
            value = LocalizationLib::DoubleToUserText(m_doubleData[index]);
        } else if (m_valuesType == kLongValues && index < m_longData.size()) {
            value = QString::number(m_longData[index]);
        } else {
            return {};
        }
    }
    // No blank between name and value: hosts end their names in ": ".
    return QLatin1Char(' ') + m_dataPointName + value + QLatin1Char(' ');
}

} // namespace trv5
