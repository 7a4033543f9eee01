#pragma once

#include <QObject>

class QMenu;

namespace trv5 {
class HostedChartFrame;
}

namespace trv5::gallery {

// The context menu the gallery gives a chart on the chart engine, which leaves its menu to the
// host: copy the picture or the data, print, preview, and switch the legend, the grid lines and
// the axis titles. It opens on a right click and on the keyboard's menu key (the chart takes the
// focus on a click). The menu is named "ctxMain" like the self-drawn charts' menus.
class HostedChartMenu : public QObject {
    Q_OBJECT

public:
    // pLegendShown: whether the chart starts with its legend (grid lines and axis titles are
    // always shown at first).
    HostedChartMenu(HostedChartFrame& pChart, bool pLegendShown);

    QMenu* Menu() const { return m_menu; }

private:
    HostedChartFrame& m_chart;
    QMenu* m_menu;
};

} // namespace trv5::gallery
