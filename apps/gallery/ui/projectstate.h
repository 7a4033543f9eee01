#pragma once

#include "core/projectfile.h"

namespace trv5::gallery {

class ChartBoard;

// The gallery's side of a project file: every chart with saved state, the run settings and the
// data source.
namespace projectstate {

// The project as it stands: each persisting chart's ToString under its name.
ProjectFile Capture(const ChartBoard& pBoard, const RunSettings& pSettings,
                    const QString& pDataSource);
// Fresh charts read from the project's fragments (the result charts are emptied by the caller,
// who reruns the model to fill them).
void RestoreCharts(ChartBoard& pBoard, const ProjectFile& pProject);

} // namespace projectstate

} // namespace trv5::gallery
