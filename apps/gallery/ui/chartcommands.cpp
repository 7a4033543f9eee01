#include "ui/chartcommands.h"

#include "ui/chartboard.h"

#include <trv5charts/capture.h>
#include <trv5charts/hostedchartframe.h>
#include <trv5charts/rtchart.h>

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrinter>

#include <algorithm>

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

// The control's picture on the page at its on-screen size, shrunk to the page if larger, as the
// charts' own print command places it.
void PaintPicture(QWidget* pControl, QPrinter* pPrinter) {
    const QImage picture = CaptureControl(pControl);
    if (picture.isNull()) {
        return;
    }
    QPainter painter(pPrinter);
    const QRectF page = pPrinter->pageLayout().paintRectPixels(pPrinter->resolution());
    const double screenToPrinter = pPrinter->resolution() / 96.0;
    QSizeF size = QSizeF(pControl->size()) * screenToPrinter;
    const double shrink =
        std::min({1.0, page.width() / size.width(), page.height() / size.height()});
    size *= shrink;
    painter.drawImage(QRectF(QPointF(0, 0), size), picture);
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
    QPrintPreviewDialog dialog(pParent);
    dialog.setWindowTitle(QStringLiteral("Print Preview - %1").arg(pChart.title));
    QWidget* control = pChart.widget;
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [control](QPrinter* pPrinter) { PaintPicture(control, pPrinter); });
    dialog.exec();
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
