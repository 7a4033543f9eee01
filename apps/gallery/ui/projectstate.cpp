#include "ui/projectstate.h"

#include "ui/chartboard.h"

#include <trv5charts/isimpleserializable.h>

namespace trv5::gallery::projectstate {

ProjectFile Capture(const ChartBoard& pBoard, const RunSettings& pSettings,
                    const QString& pDataSource) {
    ProjectFile project;
    project.SetSettings(pSettings);
    project.SetDatasetSource(pDataSource);
    for (const ChartEntry& entry : pBoard.Entries()) {
        if (entry.state != nullptr) {
            project.SetChart(entry.name, entry.state->ToString());
        }
    }
    return project;
}

void RestoreCharts(ChartBoard& pBoard, const ProjectFile& pProject) {
    pBoard.RestoreStates(pProject.Charts());
}

} // namespace trv5::gallery::projectstate
