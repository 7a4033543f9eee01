#include "ui/hostedchartmenu.h"

#include <trv5charts/hostedchartframe.h>

#include <QAction>
#include <QCursor>
#include <QMenu>
#include <QMessageBox>

#include <exception>
#include <functional>

namespace trv5::gallery {

namespace {

// MouseDown's code for the right button.
constexpr std::int32_t kRightButton = 2;

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

    // The plot inside the frame keeps mouse events to itself, so a right click on it comes as
    // the chart's MouseDown; the menu key and clicks on the frame's border come as context menu
    // requests of the frame.
    pChart.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&pChart, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& pPosition) { m_menu->popup(m_chart.mapToGlobal(pPosition)); });
    connect(&pChart, &HostedChartFrame::MouseDown, this,
            [this](std::int32_t pButton, std::int32_t, std::int16_t, std::int16_t) {
                if (pButton == kRightButton) {
                    m_menu->popup(QCursor::pos());
                }
            });
}

} // namespace trv5::gallery
