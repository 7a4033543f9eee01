// The run progress chart's paint procedure: where the labels and the plot go, and what is drawn
// into the plot.
#include <trv5charts/rtchart.h>

#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "rtchart/chartlayout.h"
#include "rtchart/seriesdrawing.h"

#include <trv5charts/colorconverter.h>

#include <QFrame>
#include <QLabel>
#include <QResizeEvent>

#include <algorithm>

namespace trv5 {

namespace {

using platform::DrawingSurface;

// Quiet colours for what frames the data, so that the series stand out.
const std::int32_t kGridColour = ColorConverter::RGBToLong(228, 228, 232);
const std::int32_t kFrameColour = ColorConverter::RGBToLong(150, 150, 156);
const std::int32_t kScaleTextColour = ColorConverter::RGBToLong(80, 80, 88);

enum TickPool : std::size_t { kMainTicks = 0, kSecondaryTicks = 1, kPointTicks = 2 };

void SetTextColour(QWidget* pLabel, std::int32_t pColour) {
    const QColor colour = platform::ToQColor(pColour);
    QPalette palette = pLabel->palette();
    if (palette.color(QPalette::WindowText) != colour) {
        palette.setColor(QPalette::WindowText, colour);
        pLabel->setPalette(palette);
    }
}

// Shows pText in pLabel at its place; an empty place hides the label.
void Place(QLabel* pLabel, const rtchart::PlacedText& pText) {
    pLabel->setText(pText.text);
    pLabel->setGeometry(pText.rect);
    pLabel->setVisible(!pText.rect.isEmpty());
}

rtchart::ValueAxisInfo AxisInfo(const std::shared_ptr<Axis>& pAxis) {
    rtchart::ValueAxisInfo info;
    if (!pAxis) {
        return info;
    }
    info.present = true;
    info.minimum = pAxis->Minimum();
    info.maximum = pAxis->Maximum();
    info.percent = pAxis->Format().compare(QLatin1String("percent"), Qt::CaseInsensitive) == 0;
    if (info.percent) {
        info.topText = pAxis->MaxValueFormatted();
    }
    info.title = rtchart::VisibleCaption(pAxis->Name());
    return info;
}

} // namespace

std::int32_t RTChart::DrawnSeriesCount() const {
    return m_singleSeries ? std::min<std::int32_t>(m_seriesCount, 1) : m_seriesCount;
}

void RTChart::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    DrawChart();
}

void RTChart::ApplyLayout() {
    rtchart::LayoutInput input;
    input.size = size();
    input.axes = {AxisInfo(m_axes[0]), AxisInfo(m_axes[1])};
    input.showXAxis = m_showXAxis;
    const std::int32_t count = m_series[0] ? m_series[0]->Count() : 0;
    input.xLast = count > 1 ? count - 1 : 1;
    std::vector<QLabel*> legend;
    for (QLabel* label : lblLegend) {
        if (label->isVisibleTo(this)) {
            legend.push_back(label);
            input.legend << label->text();
        }
    }
    if (lblLineLegend->isVisibleTo(this)) {
        input.lineLegend = lblLineLegend->text();
    }
    const rtchart::ChartLayout layout = rtchart::ComputeLayout(input, fontMetrics());

    pic->setGeometry(layout.plot);
    fraPlot->setGeometry(layout.plot.adjusted(-1, -1, 1, 1));
    fraPlot->setVisible(!layout.plot.isEmpty());
    SetTextColour(fraPlot, kFrameColour);
    m_gridY = layout.gridY;
    m_gridX = layout.gridX;

    for (std::size_t a = 0; a < 2; ++a) {
        SetTextColour(lblScale[a], kScaleTextColour);
        SetTextColour(lblOrigin[a], kScaleTextColour);
        Place(lblScale[a], layout.scale[a]);
        Place(lblOrigin[a], layout.origin[a]);
        Place(lblAxisTitle[a], layout.title[a]);
        lblScale[a]->setAlignment(a == 0 ? Qt::AlignRight | Qt::AlignVCenter
                                         : Qt::AlignLeft | Qt::AlignVCenter);
        lblOrigin[a]->setAlignment(lblScale[a]->alignment());
    }
    const std::array<const std::vector<rtchart::PlacedText>*, 3> ticks = {
        &layout.valueTicks[0], &layout.valueTicks[1], &layout.xTicks};
    for (std::size_t p = 0; p < ticks.size(); ++p) {
        std::vector<QLabel*>& pool = m_tickLabels[p];
        while (pool.size() < ticks[p]->size()) {
            auto* label = new QLabel(this);
            label->setObjectName(QStringLiteral("lblTick"));
            ApplyBackColor(label);
            SetTextColour(label, kScaleTextColour);
            label->setAlignment(p == kSecondaryTicks ? Qt::AlignLeft | Qt::AlignVCenter
                                                     : Qt::AlignRight | Qt::AlignVCenter);
            if (p == kPointTicks) {
                label->setAlignment(Qt::AlignCenter);
            }
            pool.push_back(label);
        }
        for (std::size_t i = 0; i < pool.size(); ++i) {
            Place(pool[i], i < ticks[p]->size() ? (*ticks[p])[i] : rtchart::PlacedText{});
        }
    }

    // Legend labels keep their visibility (it says which are in use); a label that does not fit
    // is given no area instead.
    while (m_legendSwatches.size() < legend.size() + 1) {
        auto* swatch = new QFrame(this);
        swatch->setObjectName(QStringLiteral("shpLegend"));
        swatch->setAutoFillBackground(true);
        m_legendSwatches.push_back(swatch);
    }
    const auto placeEntry = [this](QLabel* pLabel, QFrame* pSwatch, const QRect& pRect,
                                   std::int32_t pColour, int pThickness) {
        const bool fits = !pRect.isEmpty() && pLabel->isVisibleTo(this);
        pLabel->setGeometry(fits ? pRect.adjusted(rtchart::kLegendSwatchWidth, 0, 0, 0) : QRect());
        SetTextColour(pLabel, pColour);
        pSwatch->setGeometry(pRect.left(), pRect.center().y() - pThickness / 2,
                             rtchart::kLegendSwatchWidth - 5, pThickness);
        QPalette palette = pSwatch->palette();
        palette.setColor(QPalette::Window, platform::ToQColor(pColour));
        pSwatch->setPalette(palette);
        pSwatch->setVisible(fits);
    };
    for (std::size_t i = 0; i < legend.size(); ++i) {
        const std::size_t slot = static_cast<std::size_t>(
            std::find(lblLegend.begin(), lblLegend.end(), legend[i]) - lblLegend.begin());
        const std::int32_t colour =
            slot < m_series.size() && m_series[slot] ? m_series[slot]->Colour() : 0;
        placeEntry(legend[i], m_legendSwatches[i], layout.legend[i], colour, 3);
    }
    for (std::size_t i = legend.size() + 1; i < m_legendSwatches.size(); ++i) {
        m_legendSwatches[i]->hide();
    }
    placeEntry(lblLineLegend, m_legendSwatches[legend.size()], layout.lineLegend, m_lineColour, 1);
}

void RTChart::DrawGrid() {
    pic->SetDrawStyle(DrawingSurface::DrawStyle::Solid);
    pic->SetForeColor(kGridColour);
    const double left = pic->ScaleLeft();
    const double right = left + pic->ScaleWidth();
    const double top = pic->ScaleTop();
    const double bottom = top + pic->ScaleHeight();
    for (const double value : m_gridY) {
        pic->Line(left, value, right, value);
    }
    for (const double value : m_gridX) {
        pic->Line(value, top, value, bottom);
    }
}

void RTChart::DrawChart() {
    ApplyLayout();
    pic->SetBackColor(m_backColor);
    pic->Cls();
    pic->SetDrawStyle(DrawingSurface::DrawStyle::Solid);
    const std::shared_ptr<Axis>& main = m_axes[0];
    if (!main) {
        return;
    }
    // Point indexes across, the main axis up: series 0 sets the horizontal extent.
    const std::int32_t count = m_seriesCount > 0 && m_series[0] ? m_series[0]->Count() : 0;
    pic->SetScale(0.0, main->Maximum(), count > 1 ? count - 1 : 1,
                  main->Minimum() - main->Maximum());
    DrawGrid();
    pic->SetForeColor(0);
    if (!m_dataChanged || m_seriesCount == 0) {
        return;
    }

    const std::int32_t drawn = DrawnSeriesCount();
    for (std::int32_t i = 0; i < drawn; ++i) {
        const std::shared_ptr<Series>& series = m_series[static_cast<std::size_t>(i)];
        if (!series || (series->SetType() == Bulk && !series->DataReady())) {
            continue;
        }
        const std::size_t axis = series->DrawOnSecondaryAxis() ? 1 : 0;
        rtchart::DrawSeries(*pic, *series, m_axes[axis].get());
    }

    if (m_lineShown && m_lineValue != kNoLine) {
        // The line is a value of the main axis, whichever axis the last series used.
        pic->SetScaleTop(main->Maximum());
        pic->SetScaleHeight(main->Minimum() - main->Maximum());
        pic->SetForeColor(m_lineColour);
        pic->SetDrawStyle(DrawingSurface::DrawStyle::Dot);
        // To position 1000 whatever the point count, as hosts have always had it.
        pic->Line(0.0, m_lineValue, 1000.0, m_lineValue);
        pic->SetDrawStyle(DrawingSurface::DrawStyle::Solid);
    }
    pic->SetForeColor(0);
}

} // namespace trv5
