#include <trv5charts/blockpanelsimple.h>

#include "platform/chartmenu.h"
#include "platform/drawingsurface.h"
#include "selfdrawn/blockgrid.h"
#include "selfdrawn/blockpaint.h"
#include "selfdrawn/blockview.h"

#include <trv5charts/charterror.h>
#include <trv5charts/hostsettings.h>

#include <QContextMenuEvent>
#include <QEvent>
#include <QResizeEvent>

namespace trv5 {

namespace {

constexpr std::int32_t kHigh = 1;
constexpr std::int32_t kLow = 0;
constexpr std::int32_t kWhite = 0xFFFFFF;

// Which record a shared pixel shows: a high record over a low one over one without outcome.
std::int64_t Weight(std::int32_t pClass) {
    if (pClass == kHigh) {
        return 2;
    }
    return pClass == kLow ? 1 : 0;
}

} // namespace

BlockPanelSimple::BlockPanelSimple(QWidget* pParent)
    : QWidget(pParent), m_view(std::make_unique<blocks::BlockView>(
                            *this, [this] { return GetChartDataAsString(); },
                            [this](int pX, int pY) { return ToolTipAt(pX, pY); })),
      m_grid(std::make_unique<blocks::BlockGrid>()) {
    connect(&m_view->Menu(), &platform::ChartMenu::PrintFailed, this,
            &BlockPanelSimple::PrintFailed);
    setAccessibleName(QStringLiteral("Classification tapestry"));
}

BlockPanelSimple::~BlockPanelSimple() = default;

void BlockPanelSimple::SetChartMode(TapestryMode pMode) {
    if (pMode < tmHighLow || pMode > tmSingleColour) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("Tapestry mode %1 does not exist").arg(pMode));
    }
    const std::int32_t absent = blocks::AbsentColourOfMode(pMode);
    m_mode = pMode;
    m_absentColour = absent;
}

void BlockPanelSimple::Init(std::shared_ptr<IConfig> pConfig) {
    Globals::StoreConfig(std::move(pConfig));
    const QString base = QStringLiteral("ClassificationTapestry.");
    // All five are read before any is kept, so that a missing key changes nothing.
    const std::int32_t high = HostSettings::Colour(base + QStringLiteral("HighColor"));
    const std::int32_t low = HostSettings::Colour(base + QStringLiteral("LowColor"));
    const std::int32_t highInverted =
        HostSettings::Colour(base + QStringLiteral("HighColor.Inverted"));
    const std::int32_t lowInverted =
        HostSettings::Colour(base + QStringLiteral("LowColor.Inverted"));
    const std::int32_t single = HostSettings::Colour(base + QStringLiteral("SingleColor"));
    m_high = high;
    m_low = low;
    m_highInverted = highInverted;
    m_lowInverted = lowInverted;
    m_single = single;
}

void BlockPanelSimple::SetData(std::span<const std::int32_t> pClasses,
                               std::span<const std::int32_t> pRecordIds) {
    if (pClasses.size() != pRecordIds.size()) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("%1 classes were given for %2 records")
                             .arg(pClasses.size())
                             .arg(pRecordIds.size()));
    }
    std::vector<std::int32_t> classes(pClasses.begin(), pClasses.end());
    std::vector<std::int32_t> ids(pRecordIds.begin(), pRecordIds.end());
    m_classes.swap(classes);
    m_recordIds.swap(ids);
    ResetSize();
}

void BlockPanelSimple::ResetSize() {
    m_drawn = false;
    const QSize size = m_view->PictureSize();
    *m_grid = blocks::BlockGrid(size.width(), size.height(), RecordCount(),
                                blocks::GapsWanted(RecordCount()));
}

void BlockPanelSimple::Clear() {
    ClearPicture();
}

void BlockPanelSimple::ClearPicture() noexcept {
    m_drawn = false;
    m_view->ClearPicture();
}

void BlockPanelSimple::Reset() {
    Clear();
    std::vector<std::int32_t>().swap(m_classes);
    std::vector<std::int32_t>().swap(m_recordIds);
    ResetSize();
}

// ---- drawing ----

std::int32_t BlockPanelSimple::ColourOf(std::int32_t pClass) const {
    if (pClass == kHigh) {
        if (m_mode == tmSingleColour) {
            return m_single;
        }
        return m_inverted ? m_highInverted : m_high;
    }
    if (pClass == kLow) {
        if (m_mode == tmSingleColour) {
            return kWhite;
        }
        return m_inverted ? m_lowInverted : m_low;
    }
    return m_absentColour;
}

void BlockPanelSimple::Redraw() {
    // What a screen reader says about the panel beside its name.
    setAccessibleDescription(
        QStringLiteral("Classification tapestry, %1 records").arg(RecordCount()));
    try {
        Draw();
    } catch (...) {
        ClearPicture();
    }
}

void BlockPanelSimple::Draw() {
    m_drawn = false;
    // The grid was laid out by ResetSize; drawing only checks that it still fits the picture.
    const QSize size = m_view->StartDrawing();
    if (size.width() != m_grid->Width() || size.height() != m_grid->Height()) {
        ResetSize();
    }
    blocks::PaintGrid(
        m_view->Pic(), *m_grid, blocks::BlockView::Background(),
        [this](std::int64_t pItem) { return Weight(m_classes[static_cast<std::size_t>(pItem)]); },
        [this](std::int64_t pItem) {
            return ColourOf(m_classes[static_cast<std::size_t>(pItem)]);
        });
    m_drawn = true;
}

void BlockPanelSimple::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    m_view->LayOut();
    ResetSize();
    Redraw();
}

void BlockPanelSimple::changeEvent(QEvent* pEvent) {
    QWidget::changeEvent(pEvent);
    m_view->FollowPaletteChange(*pEvent, [this] { Redraw(); });
}

// ---- tool tip ----

QString BlockPanelSimple::ToolTipAt(int pX, int pY) const {
    if (!m_drawn) {
        return {};
    }
    const auto item = blocks::ItemAt(*m_grid, pX, pY, [this](std::int64_t pItem) {
        return Weight(m_classes[static_cast<std::size_t>(pItem)]);
    });
    if (!item) {
        return {};
    }
    const auto index = static_cast<std::size_t>(*item);
    const std::int32_t recordClass = m_classes[index];
    const QString outcome = recordClass == kHigh || recordClass == kLow
                                ? QString::number(recordClass)
                                : QStringLiteral("no outcome");
    return QStringLiteral("Record ") + QString::number(m_recordIds[index]) + QStringLiteral(" (") +
           outcome + QLatin1Char(')');
}

// ---- menu ----

void BlockPanelSimple::contextMenuEvent(QContextMenuEvent* pEvent) {
    if (m_showCopyPrint) {
        m_view->OpenMenu(*pEvent);
    }
    pEvent->accept();
}

void BlockPanelSimple::EditCopy() {
    m_view->CopyPicture();
}

void BlockPanelSimple::CopyChartData() {
    m_view->CopyData();
}

void BlockPanelSimple::EditPrint() {
    m_view->PrintPicture();
}

void BlockPanelSimple::PrintPreview() {
    m_view->PreviewPicture();
}

void BlockPanelSimple::SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog) {
    m_view->Menu().SetPrintDialog(std::move(pDialog));
}

QString BlockPanelSimple::GetChartDataAsString() const {
    if (m_classes.empty()) {
        return {};
    }
    QString text = QStringLiteral("Record ID\tClass");
    for (std::size_t i = 0; i < m_classes.size(); ++i) {
        text += QStringLiteral("\r\n");
        text += QString::number(m_recordIds[i]);
        text += QLatin1Char('\t');
        text += QString::number(m_classes[i]);
    }
    return text;
}

} // namespace trv5
