#pragma once

#include <QObject>
#include <QSize>
#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <utility>
#include <vector>

class QWidget;

namespace trv5 {
class BarChart;
class BlockPanel;
class BlockPanelSimple;
class CLScatterPlot;
class CurveFitting;
class HostedChartFrame;
class ISimpleSerializable;
class ROCChart;
class RTChart;
class ScatterPlot;
class StackedDistributionChart;
class VerticalLabel;
} // namespace trv5

namespace trv5::gallery {

// One chart of the gallery as the window's commands, the project file and the export see it.
struct ChartEntry {
    // The key in project files and the base name of exported files; also the widget's
    // objectName.
    QString name;
    // What the window calls it.
    QString title;
    QWidget* widget = nullptr;
    // Set for charts with saved state.
    ISimpleSerializable* state = nullptr;
    // Set for charts on the chart engine, which have their own copy, print and data text.
    HostedChartFrame* hosted = nullptr;
    // The size of exported pictures.
    QSize exportSize;
};

// Creates and owns the gallery's charts: the run progress chart, the variable usage bar chart,
// two accuracy gauges, the ROC chart, the scatter plot, the curve fitting chart, the
// classification scatter plot and the stacked distribution chart, plus the vertical caption
// beside the usage chart. The window places the widgets; the board may later swap a chart with
// saved state for a fresh one (a new run, an opened project), which takes the old one's place in
// its layout and is announced by chartReplaced.
class ChartBoard : public QObject {
    Q_OBJECT

public:
    // The charts are created as children of pParent until the window lays them out.
    explicit ChartBoard(QWidget* pParent);
    ~ChartBoard() override;
    ChartBoard(const ChartBoard&) = delete;
    ChartBoard& operator=(const ChartBoard&) = delete;

    RTChart& Progress() const { return *m_progress; }
    BarChart& Usage() const { return *m_usage; }
    BarChart& TrainingGauge() const { return *m_trainingGauge; }
    BarChart& ValidationGauge() const { return *m_validationGauge; }
    VerticalLabel& UsageCaption() const { return *m_usageCaption; }
    ROCChart& Roc() const { return *m_roc; }
    ScatterPlot& Scatter() const { return *m_scatter; }
    CurveFitting& Curve() const { return *m_curve; }
    CLScatterPlot& Classes() const { return *m_classes; }
    StackedDistributionChart& Stacked() const { return *m_stacked; }
    // Variable usage across the last generation's population, and every record's predicted
    // class.
    BlockPanel& UsageBlocks() const { return *m_usageBlocks; }
    BlockPanelSimple& Tapestry() const { return *m_tapestry; }

    // Every chart, in the order the window shows them.
    std::vector<ChartEntry> Entries() const;
    std::optional<ChartEntry> Entry(const QString& pName) const;
    // The entry whose widget is pWidget or holds it; nullopt for widgets outside the charts.
    std::optional<ChartEntry> EntryContaining(const QWidget* pWidget) const;

    // A fresh, empty run progress chart in place of the current one.
    RTChart& RenewProgress();
    // Fresh charts with saved state, each read from its fragment (FromString); charts without
    // a fragment are renewed empty. Unknown names are ignored.
    void RestoreStates(const std::map<QString, QString>& pFragments);
    // Empties every chart of the previous run: the ones with saved state are renewed empty, the
    // ROC chart too (a reset one keeps its point count), the charts on the engine are cleared.
    void ClearResults();
    // The names of the usage chart's bars, in bar order, for its tool tips.
    void SetUsageNames(QStringList pNames) { m_usageNames = std::move(pNames); }
    // The usage chart's tool tip for a point of the chart: the variable and its share; empty
    // where there is no bar.
    QString UsageToolTip(const QPoint& pPosition) const;

signals:
    void chartReplaced(const QString& pName, QWidget* pWidget);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void CreateCharts(QWidget* pParent);
    RTChart* MakeProgress(QWidget* pParent) const;
    BarChart* MakeUsage(QWidget* pParent) const;
    BarChart* MakeGauge(QWidget* pParent, const QString& pName, std::int32_t pColour) const;
    ROCChart* MakeRoc(QWidget* pParent) const;
    BlockPanel* MakeUsageBlocks(QWidget* pParent) const;
    void Replace(QWidget* pOld, QWidget* pNew, const QString& pName);

    RTChart* m_progress = nullptr;
    BarChart* m_usage = nullptr;
    BarChart* m_trainingGauge = nullptr;
    BarChart* m_validationGauge = nullptr;
    VerticalLabel* m_usageCaption = nullptr;
    ROCChart* m_roc = nullptr;
    ScatterPlot* m_scatter = nullptr;
    CurveFitting* m_curve = nullptr;
    CLScatterPlot* m_classes = nullptr;
    StackedDistributionChart* m_stacked = nullptr;
    QStringList m_usageNames;
    BlockPanel* m_usageBlocks = nullptr;
    BlockPanelSimple* m_tapestry = nullptr;
};

// Chart names used in project files and exports.
namespace chartname {
inline constexpr const char* kProgress = "progress";
inline constexpr const char* kUsage = "usage";
inline constexpr const char* kTrainingGauge = "trainingAccuracy";
inline constexpr const char* kValidationGauge = "validationAccuracy";
inline constexpr const char* kRoc = "roc";
inline constexpr const char* kScatter = "scatter";
inline constexpr const char* kCurve = "curvefitting";
inline constexpr const char* kClasses = "clscatter";
inline constexpr const char* kStacked = "stacked";
inline constexpr const char* kUsageBlocks = "usageBlocks";
inline constexpr const char* kTapestry = "tapestry";
} // namespace chartname

} // namespace trv5::gallery
