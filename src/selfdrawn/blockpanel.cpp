#include <trv5charts/blockpanel.h>

#include "platform/chartmenu.h"
#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "selfdrawn/blockgrid.h"
#include "selfdrawn/blockpaint.h"
#include "selfdrawn/blockview.h"
#include "selfdrawn/selfdrawn_support.h"

#include <trv5charts/charterror.h>
#include <trv5charts/colorconverter.h>
#include <trv5charts/hostsettings.h>
#include <trv5charts/localizationlib.h>

#include <QContextMenuEvent>
#include <QEvent>
#include <QResizeEvent>

#include <algorithm>
#include <array>

namespace trv5 {

namespace {

// The fixed colour of item pIndex in umRandomColour: hues 137 degrees apart (close to the golden
// angle, so neighbours differ clearly), saturation and brightness stepping through their upper
// ranges, so that no block is washed out or dark.
std::int32_t RandomColour(std::int64_t pIndex) {
    const auto hue = static_cast<std::int32_t>(pIndex * 137 % 360);
    const auto saturation = static_cast<std::int32_t>(55 + pIndex * 29 % 46);
    const auto brightness = static_cast<std::int32_t>(70 + pIndex * 17 % 31);
    return ColorConverter::HSBToRGB(ColorConverter::HSBToLong(hue, saturation, brightness));
}

// The heat map's colours by saturation 1 to 100 (index 0 unused), from the settings read for
// this drawing.
class HeatMap {
public:
    explicit HeatMap(std::int32_t pLargest)
        : m_largest(pLargest),
          m_factor(blocks::WholeSetting(QStringLiteral("Run.UsageChart.HeatMap.S.Factor"))) {
        const std::int32_t hue = blocks::WholeSetting(QStringLiteral("Run.UsageChart.HeatMap.H"));
        const std::int32_t brightness =
            blocks::WholeSetting(QStringLiteral("Run.UsageChart.HeatMap.B"));
        for (std::int32_t s = 1; s <= clMaxSaturation; ++s) {
            m_colours[static_cast<std::size_t>(s)] =
                ColorConverter::HSBToRGB(ColorConverter::HSBToLong(hue, s, brightness));
        }
    }

    // The colour of a used block: saturation u x factor / U, rounded half to even and kept
    // within 1 to 100, so that the most used block has the factor's saturation.
    std::int32_t Colour(std::int32_t pCount) const {
        const double exact = static_cast<double>(pCount) * m_factor / m_largest;
        const std::int32_t saturation = std::clamp<std::int32_t>(
            LocalizationLib::ToInt32(exact), 1, static_cast<std::int32_t>(clMaxSaturation));
        return m_colours[static_cast<std::size_t>(saturation)];
    }

private:
    std::int32_t m_largest;
    double m_factor;
    std::array<std::int32_t, clMaxSaturation + 1> m_colours{};
};

} // namespace

BlockPanel::BlockPanel(QWidget* pParent)
    : QWidget(pParent), m_view(std::make_unique<blocks::BlockView>(
                            *this, [this] { return GetChartDataAsString(); },
                            [this](int pX, int pY) { return ToolTipAt(pX, pY); })),
      m_grid(std::make_unique<blocks::BlockGrid>()) {
    connect(&m_view->Menu(), &platform::ChartMenu::PrintFailed, this, &BlockPanel::PrintFailed);
    setAccessibleName(QStringLiteral("Usage blocks"));
}

BlockPanel::~BlockPanel() = default;

// ---- properties and data ----

void BlockPanel::SetChartMode(UsageMode pMode) {
    if (pMode < umHeatMap || pMode > umMonochromatic) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("Usage mode %1 does not exist").arg(pMode));
    }
    // Looked up before anything is stored, so that a failed lookup keeps the mode.
    const std::int32_t absent = blocks::AbsentColourOfMode(pMode);
    m_mode = pMode;
    m_absentColour = absent;
}

QColor BlockPanel::BlockQColor() const {
    return platform::ToQColor(m_blockColour);
}

void BlockPanel::SetBlockQColor(const QColor& pColour) {
    const QColor rgb = pColour.toRgb();
    m_blockColour = ColorConverter::RGBToLong(rgb.red(), rgb.green(), rgb.blue());
}

QString BlockPanel::ItemName(std::int64_t pIndex) const {
    if (!m_names.empty()) {
        return m_names.at(static_cast<std::size_t>(pIndex));
    }
    return QStringLiteral("Item ") + QString::number(pIndex + 1);
}

void BlockPanel::Init(std::shared_ptr<IConfig> pConfig, std::int32_t pCount) {
    Globals::StoreConfig(std::move(pConfig));
    if (pCount < 0) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("The item count %1 is negative").arg(pCount));
    }
    std::vector<std::int32_t> counts(static_cast<std::size_t>(pCount), 0);
    m_counts.swap(counts);
    std::vector<QString>().swap(m_names);
}

namespace {

void CheckCounts(std::span<const std::int32_t> pCounts) {
    const auto negative = std::find_if(pCounts.begin(), pCounts.end(),
                                       [](std::int32_t pCount) { return pCount < 0; });
    if (negative != pCounts.end()) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("The usage count %1 of item %2 is negative")
                             .arg(*negative)
                             .arg(negative - pCounts.begin() + 1));
    }
}

} // namespace

void BlockPanel::SetUsage(std::span<const std::int32_t> pCounts) {
    CheckCounts(pCounts);
    std::vector<std::int32_t> counts(pCounts.begin(), pCounts.end());
    m_counts.swap(counts);
    std::vector<QString>().swap(m_names);
}

void BlockPanel::SetUsage(std::span<const std::int32_t> pCounts, std::span<const QString> pNames) {
    if (pNames.size() != pCounts.size()) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("%1 names were given for %2 usage counts")
                             .arg(pNames.size())
                             .arg(pCounts.size()));
    }
    CheckCounts(pCounts);
    std::vector<std::int32_t> counts(pCounts.begin(), pCounts.end());
    std::vector<QString> names(pNames.begin(), pNames.end());
    m_counts.swap(counts);
    m_names.swap(names);
}

void BlockPanel::Clear() {
    ClearPicture();
}

void BlockPanel::ClearPicture() noexcept {
    *m_grid = blocks::BlockGrid();
    m_view->ClearPicture();
}

void BlockPanel::Reset() {
    Clear();
    std::vector<std::int32_t>().swap(m_counts);
    std::vector<QString>().swap(m_names);
}

// ---- drawing ----

void BlockPanel::Redraw() {
    // What a screen reader says about the panel beside its name.
    setAccessibleDescription(QStringLiteral("Usage blocks, %1 items").arg(ItemCount()));
    try {
        Draw();
    } catch (...) {
        // A panel that cannot be drawn completely shows nothing rather than part of itself.
        ClearPicture();
    }
}

void BlockPanel::Draw() {
    *m_grid = blocks::BlockGrid();
    const auto count = static_cast<std::int64_t>(m_counts.size());
    const QSize size = m_view->StartDrawing();
    const blocks::BlockGrid grid(size.width(), size.height(), count, blocks::GapsWanted(count));
    if (grid.IsEmpty()) {
        return;
    }
    const auto weight = [this](std::int64_t pItem) {
        return m_counts[static_cast<std::size_t>(pItem)];
    };
    const std::int32_t background = blocks::BlockView::Background();
    platform::DrawingSurface& pic = m_view->Pic();
    switch (m_mode) {
    case umHeatMap: {
        const std::int32_t largest = *std::max_element(m_counts.begin(), m_counts.end());
        // The settings are read before anything is drawn, so that a missing one leaves the
        // picture blank.
        const HeatMap heatMap(std::max(largest, 1));
        blocks::PaintGrid(pic, grid, background, weight, [&](std::int64_t pItem) {
            const std::int32_t used = weight(pItem);
            return used == 0 ? m_absentColour : heatMap.Colour(used);
        });
        break;
    }
    case umRandomColour:
        blocks::PaintGrid(pic, grid, background, weight, [&](std::int64_t pItem) {
            return weight(pItem) == 0 ? m_absentColour : RandomColour(pItem);
        });
        break;
    case umMonochromatic:
        blocks::PaintGrid(pic, grid, background, weight, [&](std::int64_t pItem) {
            return weight(pItem) == 0 ? m_absentColour : m_blockColour;
        });
        break;
    }
    *m_grid = grid;
}

void BlockPanel::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    m_view->LayOut();
    // A resize starts the pictures afresh.
    Redraw();
}

void BlockPanel::changeEvent(QEvent* pEvent) {
    QWidget::changeEvent(pEvent);
    m_view->FollowPaletteChange(*pEvent, [this] { Redraw(); });
}

// ---- tool tip ----

QString BlockPanel::ToolTipAt(int pX, int pY) const {
    const auto item = blocks::ItemAt(*m_grid, pX, pY, [this](std::int64_t pItem) {
        return m_counts[static_cast<std::size_t>(pItem)];
    });
    // The counts may have been replaced since the drawing.
    if (!item || *item >= ItemCount()) {
        return {};
    }
    return QLatin1Char(' ') + ItemName(*item) + QStringLiteral(": ") +
           QString::number(m_counts[static_cast<std::size_t>(*item)]) + QLatin1Char(' ');
}

// ---- menu ----

void BlockPanel::contextMenuEvent(QContextMenuEvent* pEvent) {
    if (m_showCopyPrint) {
        m_view->OpenMenu(*pEvent);
    }
    pEvent->accept();
}

void BlockPanel::EditCopy() {
    m_view->CopyPicture();
}

void BlockPanel::CopyChartData() {
    m_view->CopyData();
}

void BlockPanel::EditPrint() {
    m_view->PrintPicture();
}

void BlockPanel::PrintPreview() {
    m_view->PreviewPicture();
}

void BlockPanel::SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog) {
    m_view->Menu().SetPrintDialog(std::move(pDialog));
}

QString BlockPanel::GetChartDataAsString() const {
    if (m_counts.empty()) {
        return {};
    }
    QString text = QStringLiteral("Item\t") + selfdrawn::DataHeader(m_dataPointName);
    for (std::size_t i = 0; i < m_counts.size(); ++i) {
        text += QStringLiteral("\r\n");
        text += ItemName(static_cast<std::int64_t>(i));
        text += QLatin1Char('\t');
        text += QString::number(m_counts[i]);
    }
    return text;
}

} // namespace trv5
