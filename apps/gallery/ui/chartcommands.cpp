#include "ui/chartcommands.h"

#include "ui/chartboard.h"

#include <trv5charts/capture.h>
#include <trv5charts/hostedchartframe.h>
#include <trv5charts/rtchart.h>

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>

namespace trv5::gallery::chartcommands {

namespace {

// Entries of a self-drawn chart's context menu.
constexpr int kCopyChartItem = 0;
constexpr int kCopyDataItem = 1;
constexpr int kPrintItem = 3;

QAction* MenuItem(const ChartEntry& pChart, int pIndex) {
    const auto* menu =
        pChart.widget->findChild<QMenu*>(QStringLiteral("ctxMain"), Qt::FindDirectChildrenOnly);
    if (menu == nullptr || pIndex >= menu->actions().size()) {
        return nullptr;
    }
    return menu->actions().at(pIndex);
}

void Trigger(const ChartEntry& pChart, int pIndex) {
    if (QAction* action = MenuItem(pChart, pIndex)) {
        action->trigger();
    }
}

} // namespace

void CopyChart(const ChartEntry& pChart) {
    if (pChart.hosted != nullptr) {
        pChart.hosted->CopyImage();
    } else {
        Trigger(pChart, kCopyChartItem);
    }
}

void CopyData(const ChartEntry& pChart) {
    if (pChart.hosted != nullptr) {
        pChart.hosted->CopyData();
    } else {
        Trigger(pChart, kCopyDataItem);
    }
}

void Print(const ChartEntry& pChart) {
    if (pChart.hosted != nullptr) {
        pChart.hosted->PrintChart();
    } else {
        Trigger(pChart, kPrintItem);
    }
}

void PrintPreview(const ChartEntry& pChart, QWidget* pParent) {
    if (pChart.hosted != nullptr) {
        pChart.hosted->PrintPreview();
        return;
    }
    // The self-drawn charts' preview road: the page exactly as their print command prints it.
    PreviewControlPicture(pChart.widget, pParent);
}

QString DataText(const ChartEntry& pChart) {
    if (pChart.hosted != nullptr) {
        return pChart.hosted->GetChartDataAsString();
    }
    if (auto* progress = qobject_cast<RTChart*>(pChart.widget)) {
        return progress->GetChartDataAsString();
    }
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    Trigger(pChart, kCopyDataItem);
    return clipboard->text();
}

} // namespace trv5::gallery::chartcommands
