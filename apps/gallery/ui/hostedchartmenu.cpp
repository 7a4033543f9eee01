#include "ui/hostedchartmenu.h"

#include <trv5charts/hostedchartframe.h>

#include <QAction>
#include <QMenu>
#include <QMessageBox>

#include <exception>
#include <functional>

namespace trv5::gallery {

namespace {

QAction* AddSwitch(QMenu& pMenu, const QString& pCaption, bool pOn,
                   const std::function<void(bool)>& pSet) {
    QAction* action = pMenu.addAction(pCaption);
    action->setCheckable(true);
    action->setChecked(pOn);
    QObject::connect(action, &QAction::toggled, &pMenu, pSet);
    return action;
}

// Printing may fail (no printer, a file that cannot be written); the user hears of it here,
// since nothing may leave a slot the event loop calls.
void Guarded(QWidget* pParent, const std::function<void()>& pCommand) {
    try {
        pCommand();
    } catch (const std::exception& error) {
        QMessageBox::warning(pParent, QStringLiteral("Print"),
                             QString::fromLocal8Bit(error.what()));
    }
}

} // namespace

HostedChartMenu::HostedChartMenu(HostedChartFrame& pChart, bool pLegendShown)
    : QObject(&pChart), m_chart(pChart), m_menu(new QMenu(&pChart)) {
    m_menu->setObjectName(QStringLiteral("ctxMain"));
    HostedChartFrame* chart = &pChart;
    connect(m_menu->addAction(QStringLiteral("&Copy Chart")), &QAction::triggered, chart,
            &HostedChartFrame::CopyImage);
    connect(m_menu->addAction(QStringLiteral("Copy Chart &Data")), &QAction::triggered, chart,
            &HostedChartFrame::CopyData);
    m_menu->addSeparator();
    connect(m_menu->addAction(QStringLiteral("&Print...")), &QAction::triggered, chart,
            [chart] { Guarded(chart, [chart] { chart->PrintChart(); }); });
    connect(m_menu->addAction(QStringLiteral("Print Pre&view...")), &QAction::triggered, chart,
            [chart] { Guarded(chart, [chart] { chart->PrintPreview(); }); });
    m_menu->addSeparator();
    AddSwitch(*m_menu, QStringLiteral("&Legend"), pLegendShown,
              [chart](bool pOn) { pOn ? chart->ShowLegend() : chart->HideLegend(); });
    AddSwitch(*m_menu, QStringLiteral("&Grid Lines"), true,
              [chart](bool pOn) { pOn ? chart->ShowGridlines() : chart->HideGridlines(); });
    AddSwitch(*m_menu, QStringLiteral("&Axis Titles"), true,
              [chart](bool pOn) { pOn ? chart->ShowAxisTitles() : chart->HideAxisTitles(); });

    pChart.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&pChart, &QWidget::customContextMenuRequested, this, &HostedChartMenu::Popup);
}

void HostedChartMenu::Popup(const QPoint& pPosition) {
    m_menu->popup(m_chart.mapToGlobal(pPosition));
}

} // namespace trv5::gallery
