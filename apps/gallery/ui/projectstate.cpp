#include "ui/projectstate.h"

#include "ui/chartboard.h"

#include <trv5charts/isimpleserializable.h>
#include <trv5charts/rtchart.h>

namespace trv5::gallery::projectstate {

QString ChartState(const ChartEntry& pChart) {
    if (pChart.state == nullptr) {
        return QString();
    }
    const QString state = pChart.state->ToString();
    if (qobject_cast<const RTChart*>(pChart.widget) == nullptr) {
        return state;
    }
    RTChart readBack;
    readBack.FromString(state);
    return readBack.ToString();
}

ProjectFile Capture(const ChartBoard& pBoard, const RunSettings& pSettings,
                    const QString& pDataSource) {
    ProjectFile project;
    project.SetSettings(pSettings);
    project.SetDatasetSource(pDataSource);
    for (const ChartEntry& entry : pBoard.Entries()) {
        if (entry.state != nullptr) {
            project.SetChart(entry.name, ChartState(entry));
        }
    }
    return project;
}

void RestoreCharts(ChartBoard& pBoard, const ProjectFile& pProject) {
    pBoard.RestoreStates(pProject.Charts());
}

} // namespace trv5::gallery::projectstate
