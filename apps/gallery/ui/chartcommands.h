#pragma once

#include <QString>

class QWidget;

namespace trv5::gallery {

struct ChartEntry;

// The window's Chart menu for whichever chart is current. Charts on the chart engine have these
// commands of their own; the self-drawn charts offer them in their context menu ("ctxMain":
// copy chart, copy data, separator, print), which these functions use, so the window's menu
// and the chart's menu do exactly the same.
namespace chartcommands {

void CopyChart(const ChartEntry& pChart);
// Charts without data leave the clipboard as it is.
void CopyData(const ChartEntry& pChart);
// Asks the chart's print dialog, then prints.
void Print(const ChartEntry& pChart);
// A modal preview of the printed page.
void PrintPreview(const ChartEntry& pChart, QWidget* pParent);
// The chart's data as tab-separated text: GetChartDataAsString where the chart has it, else
// the text its own copy-data command puts on the clipboard.
QString DataText(const ChartEntry& pChart);

} // namespace chartcommands

} // namespace trv5::gallery
