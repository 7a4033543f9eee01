#pragma once

#include <QComboBox>

namespace trv5::gallery {

class ChartBoard;

// The user's choice of how the usage block panel colours its blocks: heat map, a colour per
// variable or one colour. It acts on the board's current panel, also after the panel was
// replaced by a restored one, whose mode it then shows.
class UsageModeSelector : public QComboBox {
    Q_OBJECT

public:
    explicit UsageModeSelector(ChartBoard& pBoard, QWidget* pParent = nullptr);

signals:
    // The mode could not be set (a setting is missing); the panel keeps its mode.
    void failed(const QString& pMessage);

private:
    void Apply(int pIndex);
    void ShowPanelMode();

    ChartBoard& m_board;
};

} // namespace trv5::gallery
