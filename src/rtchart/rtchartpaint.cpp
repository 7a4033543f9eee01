// The run progress chart's paint procedure: where the labels and the plot go, and what is drawn
// into the plot.
#include <trv5charts/rtchart.h>

#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "rtchart/chartlayout.h"
#include "rtchart/plotframe.h"
#include "rtchart/seriesdrawing.h"

#include <trv5charts/colorconverter.h>

#include <QFrame>
#include <QLabel>
#include <QResizeEvent>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace trv5 {

namespace {

using platform::DrawingSurface;

// Quiet colours for what frames the data, so that the series stand out.
const std::int32_t kGridColour = ColorConverter::RGBToLong(228, 228, 232);
const std::int32_t kFrameColour = ColorConverter::RGBToLong(150, 150, 156);
const std::int32_t kScaleTextColour = ColorConverter::RGBToLong(80, 80, 88);

enum TickPool : std::size_t { kMainTicks = 0, kSecondaryTicks = 1, kPointTicks = 2 };

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

// The grid is a quiet light grey on a light background; on a dark one (a dark palette) that
// grey would glare, so the grid is the background lightened a little instead.
std::int32_t GridColourOn(std::int32_t pBackground) {
    const QColor back = platform::ToQColor(pBackground);
    if (platform::ContrastRatio(back, Qt::black) >= platform::ContrastRatio(back, Qt::white)) {
        return kGridColour;
    }
    constexpr double kLift = 0.18;
    const auto lift = [](int pChannel) {
        return static_cast<int>(std::lround(pChannel + (255 - pChannel) * kLift));
    };
    return ColorConverter::RGBToLong(lift(back.red()), lift(back.green()), lift(back.blue()));
}

// A colour as it is drawn now: a system colour as the palette has it.
QRgb Drawn(std::int32_t pColour) {
    return platform::ToQColor(pColour).rgb();
}

// What a screen reader says about the chart beside its name: "Run progress, 3 series,
// 250 generations", counting what the exported rows count.
QString DataSummary(std::int32_t pSeriesCount, Series* pFirst, std::int32_t pLastGeneration) {
    const std::int32_t count = pFirst != nullptr ? pFirst->Count() : 0;
    QString extent;
    if (pFirst != nullptr && pFirst->HasIndexes()) {
        extent = QStringLiteral("%1 records").arg(count);
    } else if (pLastGeneration != 0) {
        extent = QStringLiteral("%1 generations").arg(pLastGeneration);
    } else {
        extent = QStringLiteral("%1 points").arg(count);
    }
    return QStringLiteral("Run progress, %1 series, %2").arg(pSeriesCount).arg(extent);
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
    // Numbered by generation as the exported rows are: the newest point is the last generation.
    if (m_lastGeneration != 0 && m_series[0] && !m_series[0]->HasIndexes()) {
        input.xFirst = static_cast<double>(m_lastGeneration) - m_series[0]->LastPoint();
    }
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
    // Laying out measures every text; when nothing it depends on has changed, the labels are
    // where they belong and are left alone, so that they are not repainted either.
    rtchart::LayoutKey key;
    key.input = input;
    for (QLabel* label : legend) {
        key.legendLabels.push_back(label);
        const auto slot = static_cast<std::size_t>(
            std::find(lblLegend.begin(), lblLegend.end(), label) - lblLegend.begin());
        key.legendColours.push_back(
            Drawn(slot < m_series.size() && m_series[slot] ? m_series[slot]->Colour() : 0));
    }
    key.lineLegendShown = lblLineLegend->isVisibleTo(this);
    key.lineColour = Drawn(m_lineColour);
    // A new background or palette gives the texts other colours, even where nothing moves.
    key.background = Drawn(m_backColor);
    key.paletteText = platform::PaletteText().rgb();
    key.font = font();
    if (m_painted->layout && *m_painted->layout == key) {
        return;
    }
    m_painted->layout = std::move(key);
    const rtchart::ChartLayout layout = rtchart::ComputeLayout(input, fontMetrics());

    pic->setGeometry(layout.plot);
    fraPlot->setGeometry(layout.plot.adjusted(-1, -1, 1, 1));
    fraPlot->setVisible(!layout.plot.isEmpty());
    platform::ColourLabel(*fraPlot, kFrameColour, m_backColor);
    m_gridY = layout.gridY;
    m_gridX = layout.gridX;

    for (std::size_t a = 0; a < 2; ++a) {
        platform::ColourLabel(*lblScale[a], kScaleTextColour, m_backColor);
        platform::ColourLabel(*lblOrigin[a], kScaleTextColour, m_backColor);
        // Axis names in plain text colour, readable on the chart's own background.
        platform::ColourLabel(*lblAxisTitle[a], 0, m_backColor);
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
            platform::ColourLabel(*label, kScaleTextColour, m_backColor);
            label->setAlignment(p == kSecondaryTicks ? Qt::AlignLeft | Qt::AlignVCenter
                                                     : Qt::AlignRight | Qt::AlignVCenter);
            if (p == kPointTicks) {
                label->setAlignment(Qt::AlignCenter);
            }
            pool.push_back(label);
        }
        for (std::size_t i = 0; i < pool.size(); ++i) {
            platform::ColourLabel(*pool[i], kScaleTextColour, m_backColor);
            Place(pool[i], i < ticks[p]->size() ? (*ticks[p])[i] : rtchart::PlacedText{});
        }
    }

    // Legend labels keep their visibility (it says which are in use); a label that does not fit
    // is given no area instead.
    while (m_legendSwatches.size() < legend.size() + 1) {
        auto* swatch = new QFrame(this);
        swatch->setObjectName(QStringLiteral("shpLegend"));
        swatch->setAutoFillBackground(true);
        swatch->setBackgroundRole(QPalette::Window);
        m_legendSwatches.push_back(swatch);
    }
    const auto placeEntry = [this](QLabel* pLabel, QFrame* pSwatch, const QRect& pRect,
                                   std::int32_t pColour, int pThickness) {
        const bool fits = !pRect.isEmpty() && pLabel->isVisibleTo(this);
        pLabel->setGeometry(fits ? pRect.adjusted(rtchart::kLegendSwatchWidth, 0, 0, 0) : QRect());
        // The entry's text in its series' colour where that reads, the swatch in it always.
        platform::ColourLabel(*pLabel, pColour, m_backColor);
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
    pic->SetForeColor(GridColourOn(m_backColor));
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

rtchart::FrameState RTChart::CaptureFrame() const {
    rtchart::FrameState frame;
    frame.deviceSize = pic->DeviceSize();
    frame.ratio = pic->DevicePixelRatio();
    frame.polylineMode = static_cast<std::int32_t>(rtchart::CurrentPolylineMode());
    frame.backColour = Drawn(m_backColor);
    if (const std::optional<DrawingSurface::DeviceMapping> mapping = pic->Mapping();
        mapping && m_axes[0]) {
        frame.mapped = true;
        frame.left = mapping->left;
        frame.top = mapping->top;
        frame.xFactor = mapping->xFactor;
        frame.yFactor = mapping->yFactor;
    }
    for (std::size_t a = 0; a < 2; ++a) {
        const double none = std::numeric_limits<double>::quiet_NaN();
        frame.axes[2 * a] = m_axes[a] ? m_axes[a]->Minimum() : none;
        frame.axes[2 * a + 1] = m_axes[a] ? m_axes[a]->Maximum() : none;
    }
    frame.dataChanged = m_dataChanged;
    frame.drawnSeries = DrawnSeriesCount();
    frame.lineShown = m_lineShown;
    frame.lineValue = m_lineValue;
    frame.lineColour = Drawn(m_lineColour);
    frame.gridX = m_gridX;
    frame.gridY = m_gridY;
    for (std::int32_t i = 0; i < frame.drawnSeries; ++i) {
        rtchart::SeriesState state;
        if (Series* series = m_series[static_cast<std::size_t>(i)].get()) {
            state.series = series;
            state.revision = series->Revision();
            state.pointsAdded = series->PointsAdded();
            state.lastPoint = series->LastPoint();
            state.count = series->Count();
            state.values = series->Values().data();
            state.held = series->Values().size();
            state.colour = Drawn(series->Colour());
            state.dataType = series->DataType();
            state.point = series->Point();
            state.setType = series->SetType();
            state.ready = series->DataReady();
            state.secondary = series->DrawOnSecondaryAxis();
        }
        frame.series.push_back(state);
    }
    return frame;
}

void RTChart::DrawChart() {
    // Set only when it says something new: each setting is an event for assistive technology.
    const QString summary = DataSummary(
        m_seriesCount, m_seriesCount > 0 ? m_series[0].get() : nullptr, m_lastGeneration);
    if (summary != accessibleDescription()) {
        setAccessibleDescription(summary);
    }
    ApplyLayout();
    pic->SetBackColor(m_backColor);
    pic->SetDrawStyle(DrawingSurface::DrawStyle::Solid);
    if (const std::shared_ptr<Axis>& main = m_axes[0]) {
        // Point indexes across, the main axis up: series 0 sets the horizontal extent.
        const std::int32_t count = m_seriesCount > 0 && m_series[0] ? m_series[0]->Count() : 0;
        pic->SetScale(0.0, main->Maximum(), count > 1 ? count - 1 : 1,
                      main->Minimum() - main->Maximum());
    }
    rtchart::FrameState frame = CaptureFrame();

    // When points were only appended, just the columns they reach are drawn again. The band is
    // drawn exactly as a full redraw draws those columns, so the picture is the same either way.
    std::optional<rtchart::ColumnWindow> band;
    if (m_painted->frame && frame.mapped &&
        rtchart::CurrentPolylineMode() == rtchart::PolylineMode::PixelColumns) {
        const std::optional<std::vector<rtchart::ChangedPoints>> changed =
            rtchart::AppendedPoints(*m_painted->frame, frame);
        if (changed && changed->empty()) {
            return; // the picture shows this state already
        }
        if (changed) {
            const int reach = rtchart::ShapeReach(*pic);
            double low = std::numeric_limits<double>::infinity();
            double high = -low;
            for (const rtchart::ChangedPoints& points : *changed) {
                low =
                    std::min(low, (static_cast<double>(points.first) - frame.left) * frame.xFactor);
                high =
                    std::max(high, (static_cast<double>(points.last) - frame.left) * frame.xFactor);
            }
            const double width = frame.deviceSize.width();
            low = std::floor(low) - reach;
            high = std::floor(high) + reach;
            // A band wider than half the plot costs about as much as the whole.
            if (std::isfinite(low) && std::isfinite(high) && high - low < width / 2.0) {
                band = rtchart::ColumnWindow{static_cast<int>(std::clamp(low, 0.0, width - 1.0)),
                                             static_cast<int>(std::clamp(high, 0.0, width - 1.0))};
            }
        }
    }
    m_painted->frame = std::move(frame);
    if (band) {
        ++rtchart::Redraws().band;
        pic->BeginColumnBand(band->first, band->last);
        DrawPlot(&*band);
        pic->EndColumnBand();
    } else {
        ++rtchart::Redraws().full;
        DrawPlot(nullptr);
    }
}

void RTChart::DrawPlot(const rtchart::ColumnWindow* pWindow) {
    pic->Cls();
    pic->SetDrawStyle(DrawingSurface::DrawStyle::Solid);
    const std::shared_ptr<Axis>& main = m_axes[0];
    if (!main) {
        return;
    }
    DrawGrid();
    pic->SetForeColor(0);
    if (!m_dataChanged || m_seriesCount == 0) {
        return;
    }

    const std::optional<rtchart::ColumnWindow> window =
        pWindow != nullptr ? std::optional(*pWindow) : std::nullopt;
    const std::int32_t drawn = DrawnSeriesCount();
    for (std::int32_t i = 0; i < drawn; ++i) {
        const std::shared_ptr<Series>& series = m_series[static_cast<std::size_t>(i)];
        if (!series || (series->SetType() == Bulk && !series->DataReady())) {
            continue;
        }
        const std::size_t axis = series->DrawOnSecondaryAxis() ? 1 : 0;
        rtchart::DrawSeries(*pic, *series, m_axes[axis].get(), window,
                            &m_painted->columns[static_cast<std::size_t>(i)]);
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
