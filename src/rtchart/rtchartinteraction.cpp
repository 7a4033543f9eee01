// The run progress chart's answers to the user: the context menu, the plot's tooltips, copy and
// print.
#include <trv5charts/rtchart.h>

#include "platform/chartmenu.h"
#include "platform/drawingsurface.h"
#include "rtchart/chartlayout.h"

#include <trv5charts/charterror.h>
#include <trv5charts/localizationlib.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>

namespace trv5 {

namespace {

// Menu entries by index.
enum MenuIndex : int {
    kCopyChart = 0,
    kCopyData = 1,
    kPrint = 3,
    kShowLine = 5,
};

} // namespace

void RTChart::EditCopy() {
    ctxMain->CopyOwnerPicture();
}

void RTChart::SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog) {
    ctxMain->SetPrintDialog(std::move(pDialog));
}

void RTChart::PrintPreview() {
    ctxMain->PreviewOwnerPicture();
}

void RTChart::contextMenuEvent(QContextMenuEvent* pEvent) {
    for (const int index : {kCopyChart, kCopyData, kPrint}) {
        ctxMain->Item(index)->setEnabled(m_showCopyPrint);
    }
    ctxMain->Popup(pEvent->globalPos(), pEvent->reason() == QContextMenuEvent::Keyboard);
    pEvent->accept();
}

void RTChart::OnMenuCommand(int pIndex) {
    switch (pIndex) {
    case kCopyChart:
        EditCopy();
        break;
    case kCopyData:
        platform::ChartMenu::CopyText(GetChartDataAsString());
        break;
    case kPrint:
        ctxMain->PrintOwnerPicture();
        break;
    case kShowLine:
        // The action has already turned its check mark.
        ApplyLineCheck();
        break;
    default:
        break;
    }
}

bool RTChart::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == pic && pEvent->type() == QEvent::MouseMove) {
        const QPointF position = static_cast<QMouseEvent*>(pEvent)->position();
        UpdateToolTip(position.x(), position.y());
    }
    return QWidget::eventFilter(pWatched, pEvent);
}

void RTChart::UpdateToolTip(double pX, double pY) {
    if (!m_showRecordsOnToolTip || !m_series[0]) {
        pic->SetToolTipText(QString());
        return;
    }
    pic->SetToolTipText(QStringLiteral("Points 1 to ") + QString::number(m_series[0]->Count()));

    // The centre of the first device pixel under the pointer, so that the read-back cannot slip
    // into a neighbouring pixel through rounding.
    const double half = 0.5 / pic->DevicePixelRatio();
    const double userX = pic->ToUserX(std::floor(pX) + half);
    const double userY = pic->ToUserY(std::floor(pY) + half);
    const std::int32_t colour = pic->Point(userX, userY);
    if (colour < 0) {
        return;
    }
    if (m_lineShown && m_lineValue != kNoLine && colour == m_lineColour) {
        pic->SetToolTipText(lblLineLegend->text() + QStringLiteral(": ") +
                            LocalizationLib::DoubleToUserText(m_lineValue));
        return;
    }
    const std::int32_t drawn = DrawnSeriesCount();
    for (std::int32_t i = 0; i < drawn; ++i) {
        const std::shared_ptr<Series>& series = m_series[static_cast<std::size_t>(i)];
        if (series && series->Colour() == colour) {
            const QString tip = PointToolTip(i, userX);
            if (!tip.isEmpty()) {
                pic->SetToolTipText(tip);
            }
            return;
        }
    }
}

QString RTChart::PointToolTip(std::int32_t pSeriesIndex, double pUserX) const {
    Series& series = *m_series[static_cast<std::size_t>(pSeriesIndex)];
    if (!std::isfinite(pUserX)) {
        return {};
    }
    // The point nearest the pointer, among those the series draws.
    const std::int64_t last = series.DataType() == Continuous && series.SetType() == DripFeed
                                  ? series.LastPoint()
                                  : static_cast<std::int64_t>(series.Count()) - 1;
    const std::int64_t held = static_cast<std::int64_t>(series.Values().size()) - 1;
    const std::int64_t highest = series.DataReady() ? std::min(last, held) : last;
    if (highest < 0) {
        return {};
    }
    const auto index = static_cast<std::int32_t>(
        std::clamp(std::nearbyint(pUserX), 0.0, static_cast<double>(highest)));
    const auto user = [](double pValue) {
        return LocalizationLib::DoubleToUserText(pValue);
    };
    const QString head = rtchart::VisibleCaption(series.Name()) + QStringLiteral(", Point ");
    try {
        if (series.HasOriginalData()) {
            // Standardized values are drawn; the host's own value comes first.
            return head + QString::number(index + 1) + QStringLiteral(" (") +
                   user(series.GetOriginalValue(index)) + QStringLiteral(": ") +
                   user(series.DisplayedValue(index)) + QStringLiteral(")");
        }
        const QString number = series.HasIndexes() ? QString::number(series.IndexOfPoint(index))
                                                   : QString::number(index);
        return head + number + QStringLiteral(" (") + user(series.DisplayedValue(index)) +
               QStringLiteral(")");
    } catch (const ChartError&) {
        return {};
    }
}

} // namespace trv5
