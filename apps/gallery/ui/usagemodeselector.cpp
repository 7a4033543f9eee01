#include "ui/usagemodeselector.h"

#include "ui/chartboard.h"

#include <trv5charts/blockpanel.h>
#include <trv5charts/charterror.h>

#include <QSignalBlocker>

namespace trv5::gallery {

UsageModeSelector::UsageModeSelector(ChartBoard& pBoard, QWidget* pParent)
    : QComboBox(pParent), m_board(pBoard) {
    setObjectName(QStringLiteral("cboUsageMode"));
    // In the order of the modes' numbers.
    addItem(QStringLiteral("Heat map"), umHeatMap);
    addItem(QStringLiteral("A colour per variable"), umRandomColour);
    addItem(QStringLiteral("One colour"), umMonochromatic);
    setToolTip(QStringLiteral("How the blocks are coloured"));
    ShowPanelMode();
    connect(this, &QComboBox::currentIndexChanged, this, &UsageModeSelector::Apply);
    connect(&m_board, &ChartBoard::chartReplaced, this, [this](const QString& pName) {
        if (pName == QLatin1String(chartname::kUsageBlocks)) {
            ShowPanelMode();
        }
    });
}

void UsageModeSelector::Apply(int pIndex) {
    BlockPanel& panel = m_board.UsageBlocks();
    try {
        panel.SetChartMode(static_cast<UsageMode>(itemData(pIndex).toInt()));
    } catch (const ChartError& error) {
        ShowPanelMode();
        emit failed(error.description());
        return;
    }
    panel.Redraw();
}

void UsageModeSelector::ShowPanelMode() {
    const QSignalBlocker blocker(this);
    setCurrentIndex(findData(static_cast<int>(m_board.UsageBlocks().ChartMode())));
}

} // namespace trv5::gallery
