#pragma once

#include "core/projectfile.h"

namespace trv5::gallery {

class ChartBoard;
struct ChartEntry;

// The gallery's side of a project file: every chart with saved state, the run settings and the
// data source.
namespace projectstate {

// The chart's saved state as the gallery stores it, empty for charts without one. A run
// progress chart's state is written in the form it has after being read back: a chart fed
// point by point saves the spare slot of its ring as well, which a restored chart does not
// have. Storing the read-back form means opening a project and saving it writes the same bytes.
QString ChartState(const ChartEntry& pChart);

// The project as it stands: each persisting chart's ToString under its name.
ProjectFile Capture(const ChartBoard& pBoard, const RunSettings& pSettings,
                    const QString& pDataSource);
// Fresh charts read from the project's fragments (the result charts are emptied by the caller,
// who reruns the model to fill them).
void RestoreCharts(ChartBoard& pBoard, const ProjectFile& pProject);

} // namespace projectstate

} // namespace trv5::gallery
