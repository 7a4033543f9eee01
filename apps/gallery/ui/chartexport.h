#pragma once

#include <QString>

#include <functional>
#include <vector>

namespace trv5::gallery {

struct ChartEntry;

// Writes every chart into a directory: <name>.png (the chart's picture at its export size),
// <name>.txt (its data text, UTF-8) and, for charts with saved state, <name>.xml. pReveal is
// called before a chart is captured so that the window can bring its page forward. Throws
// GalleryError naming the file that could not be written or the chart that gave no picture.
void ExportCharts(const std::vector<ChartEntry>& pCharts, const QString& pDirectory,
                  const std::function<void(const ChartEntry&)>& pReveal);

} // namespace trv5::gallery
