#include "ui/chartboard.h"

#include "ui/gallerysettings.h"
#include "ui/gallerystyle.h"
#include "ui/hostedchartmenu.h"

#include <trv5charts/barchart.h>
#include <trv5charts/blockpanel.h>
#include <trv5charts/blockpanelsimple.h>
#include <trv5charts/clscatterplot.h>
#include <trv5charts/curvefitting.h>
#include <trv5charts/numberformat.h>
#include <trv5charts/rocchart.h>
#include <trv5charts/rtchart.h>
#include <trv5charts/scatterplot.h>
#include <trv5charts/stackeddistributionchart.h>
#include <trv5charts/verticallabel.h>

#include <QHelpEvent>
#include <QLayout>
#include <QWidget>

#include <utility>
#include <vector>

namespace trv5::gallery {

namespace {

// Every chart takes the keyboard focus on a click or Tab, so that the keyboard's menu key opens
// its context menu.
void Prepare(QWidget& pChart, const QString& pName) {
    pChart.setObjectName(pName);
    pChart.setFocusPolicy(Qt::StrongFocus);
    pChart.setMinimumSize(120, 40);
}

void PrepareHosted(HostedChartFrame& pChart, const QString& pName, bool pLegend = true) {
    Prepare(pChart, pName);
    pChart.Init(QString());
    pLegend ? pChart.ShowLegend() : pChart.HideLegend();
    pChart.ShowAxisTitles();
    pChart.ShowGridlines();
    new HostedChartMenu(pChart, pLegend);
}

} // namespace

ChartBoard::ChartBoard(QWidget* pParent) : QObject(pParent) {
    CreateCharts(pParent);
}

ChartBoard::~ChartBoard() = default;

void ChartBoard::CreateCharts(QWidget* pParent) {
    m_progress = MakeProgress(pParent);
    m_usage = MakeUsage(pParent);
    m_trainingGauge =
        MakeGauge(pParent, QString::fromLatin1(chartname::kTrainingGauge), style::kTrainingGauge);
    m_validationGauge = MakeGauge(pParent, QString::fromLatin1(chartname::kValidationGauge),
                                  style::kValidationGauge);

    m_usageCaption = new VerticalLabel(pParent);
    m_usageCaption->setObjectName(QStringLiteral("usageCaption"));
    m_usageCaption->SetBackColor(style::kChartBackground);
    m_usageCaption->SetText(QStringLiteral("Share of weights (%)"));
    m_usageCaption->setFixedWidth(m_usageCaption->sizeHint().width());

    m_roc = MakeRoc(pParent);

    m_scatter = new ScatterPlot(pParent);
    // One series of records and the regression line: a legend would say nothing.
    PrepareHosted(*m_scatter, QString::fromLatin1(chartname::kScatter), false);
    m_scatter->SetDataHeader(QStringLiteral("Record ID\tModel output\tTarget"));

    m_curve = new CurveFitting(pParent);
    PrepareHosted(*m_curve, QString::fromLatin1(chartname::kCurve));
    m_curve->SetUseBinomialFixedYAxis(true);
    m_curve->SetSeriesName(1, QStringLiteral("Model output"));

    m_classes = new CLScatterPlot(pParent);
    PrepareHosted(*m_classes, QString::fromLatin1(chartname::kClasses));
    m_classes->SetUseStarsCircles(true);
    m_classes->SetShowRecordIds(true);
    m_classes->UseManualMaxMin(0.0, 1.0);

    m_stacked = new StackedDistributionChart(pParent);
    PrepareHosted(*m_stacked, QString::fromLatin1(chartname::kStacked));

    m_usageBlocks = MakeUsageBlocks(pParent);
    m_tapestry = new BlockPanelSimple(pParent);
    Prepare(*m_tapestry, QString::fromLatin1(chartname::kTapestry));
    // The settings were checked for every key when they were loaded.
    m_tapestry->Init(settings::Current());
}

BlockPanel* ChartBoard::MakeUsageBlocks(QWidget* pParent) const {
    auto* panel = new BlockPanel(pParent);
    Prepare(*panel, QString::fromLatin1(chartname::kUsageBlocks));
    panel->SetDataPointName(QStringLiteral("Individuals"));
    panel->Init(settings::Current(), 0);
    return panel;
}

RTChart* ChartBoard::MakeProgress(QWidget* pParent) const {
    auto* chart = new RTChart(pParent);
    Prepare(*chart, QString::fromLatin1(chartname::kProgress));
    chart->SetBackColor(style::kChartBackground);
    chart->SetShowXAxis(true);
    // The pointer over a line names the series, the generation and its value.
    chart->SetShowRecordsOnToolTip(true);
    return chart;
}

ROCChart* ChartBoard::MakeRoc(QWidget* pParent) const {
    auto* chart = new ROCChart(pParent);
    Prepare(*chart, QString::fromLatin1(chartname::kRoc));
    chart->SetBackColor(style::kChartBackground);
    chart->SetROCColor(style::kRocCurve);
    chart->SetDiagonalColor(style::kDiagonal);
    chart->SetInverted(true);
    chart->Refresh();
    return chart;
}

BarChart* ChartBoard::MakeUsage(QWidget* pParent) const {
    auto* chart = new BarChart(pParent);
    Prepare(*chart, QString::fromLatin1(chartname::kUsage));
    chart->SetBackColor(style::kChartBackground);
    chart->SetBarColor(style::kUsageBars);
    chart->SetRoundedCorner(6);
    chart->SetDataPointName(QStringLiteral("Share of weights (%): "));
    // The bars' own tool tip gives the share alone; the board names the variable.
    if (auto* picture = chart->findChild<QWidget*>(QStringLiteral("pic"))) {
        picture->installEventFilter(const_cast<ChartBoard*>(this));
    }
    return chart;
}

BarChart* ChartBoard::MakeGauge(QWidget* pParent, const QString& pName,
                                std::int32_t pColour) const {
    auto* chart = new BarChart(pParent);
    Prepare(*chart, pName);
    chart->SetBackColor(style::kChartBackground);
    chart->SetBarColor(pColour);
    chart->SetRoundedCorner(4);
    chart->SetDataPointName(QStringLiteral("Accuracy (%): "));
    chart->setFixedHeight(30);
    return chart;
}

std::vector<ChartEntry> ChartBoard::Entries() const {
    const QSize wide(900, 500);
    return {
        {QString::fromLatin1(chartname::kProgress), QStringLiteral("Run progress"), m_progress,
         m_progress, nullptr, wide},
        {QString::fromLatin1(chartname::kUsage), QStringLiteral("Variable usage"), m_usage, m_usage,
         nullptr, QSize(600, 220)},
        {QString::fromLatin1(chartname::kTrainingGauge), QStringLiteral("Training accuracy"),
         m_trainingGauge, m_trainingGauge, nullptr, QSize(320, 30)},
        {QString::fromLatin1(chartname::kValidationGauge), QStringLiteral("Validation accuracy"),
         m_validationGauge, m_validationGauge, nullptr, QSize(320, 30)},
        {QString::fromLatin1(chartname::kRoc), QStringLiteral("ROC curve"), m_roc, nullptr, nullptr,
         QSize(600, 450)},
        {QString::fromLatin1(chartname::kCurve), QStringLiteral("Curve fitting"), m_curve, nullptr,
         m_curve, wide},
        {QString::fromLatin1(chartname::kClasses), QStringLiteral("Classification scatter"),
         m_classes, nullptr, m_classes, wide},
        {QString::fromLatin1(chartname::kScatter), QStringLiteral("Output against target"),
         m_scatter, nullptr, m_scatter, QSize(800, 560)},
        {QString::fromLatin1(chartname::kStacked), QStringLiteral("Stacked distribution"),
         m_stacked, nullptr, m_stacked, wide},
        {QString::fromLatin1(chartname::kUsageBlocks), QStringLiteral("Variable usage blocks"),
         m_usageBlocks, m_usageBlocks, nullptr, QSize(600, 220)},
        {QString::fromLatin1(chartname::kTapestry), QStringLiteral("Classification tapestry"),
         m_tapestry, nullptr, nullptr, QSize(900, 200)},
    };
}

std::optional<ChartEntry> ChartBoard::Entry(const QString& pName) const {
    for (const ChartEntry& entry : Entries()) {
        if (entry.name == pName) {
            return entry;
        }
    }
    return std::nullopt;
}

std::optional<ChartEntry> ChartBoard::EntryContaining(const QWidget* pWidget) const {
    const std::vector<ChartEntry> entries = Entries();
    for (const QWidget* widget = pWidget; widget != nullptr; widget = widget->parentWidget()) {
        for (const ChartEntry& entry : entries) {
            if (entry.widget == widget) {
                return entry;
            }
        }
    }
    return std::nullopt;
}

void ChartBoard::Replace(QWidget* pOld, QWidget* pNew, const QString& pName) {
    // The fresh chart takes the old one's place wherever the window put it.
    if (QWidget* parent = pOld->parentWidget(); parent != nullptr && parent->layout() != nullptr) {
        delete parent->layout()->replaceWidget(pOld, pNew);
    }
    pNew->setSizePolicy(pOld->sizePolicy());
    pNew->setMinimumSize(pOld->minimumSize());
    pNew->setMaximumSize(pOld->maximumSize());
    pNew->setVisible(!pOld->isHidden());
    delete pOld;
    emit chartReplaced(pName, pNew);
}

RTChart& ChartBoard::RenewProgress() {
    RTChart* fresh = MakeProgress(m_progress->parentWidget());
    RTChart* old = m_progress;
    m_progress = fresh;
    Replace(old, fresh, fresh->objectName());
    return *fresh;
}

void ChartBoard::RestoreStates(const std::map<QString, QString>& pFragments) {
    const auto fragment = [&](const QString& pName) {
        const auto found = pFragments.find(pName);
        return found == pFragments.end() ? QString() : found->second;
    };

    RenewProgress().FromString(fragment(QString::fromLatin1(chartname::kProgress)));
    m_progress->Refresh();

    const auto renewBar = [&](BarChart*& pChart, BarChart* pFresh) {
        BarChart* old = pChart;
        pChart = pFresh;
        Replace(old, pFresh, pFresh->objectName());
        pFresh->FromString(fragment(pFresh->objectName()));
        // A bar chart writes restored values out again only once the host hands them in, so
        // the values read are handed back: a project saved after opening keeps its bars.
        if (pFresh->ChartType() == ctMultiVerticalBars) {
            if (pFresh->ValuesType() == BarChart::kDoubleValues && !pFresh->DoubleData().empty()) {
                const std::vector<double> values(pFresh->DoubleData().begin(),
                                                 pFresh->DoubleData().end());
                pFresh->SetDoubleData(values);
            } else if (pFresh->ValuesType() == BarChart::kLongValues &&
                       !pFresh->LongData().empty()) {
                const std::vector<std::int32_t> values(pFresh->LongData().begin(),
                                                       pFresh->LongData().end());
                pFresh->SetLongData(values);
            }
        }
        pFresh->Redraw();
    };
    // Read before it takes the old panel's place, so that whoever follows the replacement sees
    // the restored mode.
    BlockPanel* blocks = MakeUsageBlocks(m_usageBlocks->parentWidget());
    blocks->FromString(fragment(blocks->objectName()));
    Replace(std::exchange(m_usageBlocks, blocks), blocks, blocks->objectName());

    renewBar(m_usage, MakeUsage(m_usage->parentWidget()));
    renewBar(m_trainingGauge,
             MakeGauge(m_trainingGauge->parentWidget(),
                       QString::fromLatin1(chartname::kTrainingGauge), style::kTrainingGauge));
    renewBar(m_validationGauge,
             MakeGauge(m_validationGauge->parentWidget(),
                       QString::fromLatin1(chartname::kValidationGauge), style::kValidationGauge));
}

QString ChartBoard::UsageToolTip(const QPoint& pPosition) const {
    const std::int32_t bar = m_usage->BarAt(pPosition);
    const auto values = m_usage->DoubleData();
    if (bar < 0 || static_cast<std::size_t>(bar) >= values.size()) {
        return {};
    }
    const QString name =
        bar < m_usageNames.size() ? m_usageNames[bar] : QStringLiteral("Variable %1").arg(bar + 1);
    return QStringLiteral("%1: %2 % of the weights")
        .arg(name, NumberFormat::WithDigits(values[static_cast<std::size_t>(bar)], 1));
}

bool ChartBoard::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pEvent->type() == QEvent::ToolTip && pWatched->parent() == m_usage) {
        auto* picture = static_cast<QWidget*>(pWatched);
        const QPoint at = picture->mapTo(m_usage, static_cast<QHelpEvent*>(pEvent)->pos());
        // Where the chart shows no tip, neither does the board.
        if (const QString tip = UsageToolTip(at); !tip.isEmpty() && !picture->toolTip().isEmpty()) {
            picture->setToolTip(tip);
        }
    }
    return QObject::eventFilter(pWatched, pEvent);
}

void ChartBoard::ClearResults() {
    RestoreStates({});
    ROCChart* old = m_roc;
    m_roc = MakeRoc(old->parentWidget());
    Replace(old, m_roc, m_roc->objectName());
    m_usageNames.clear();
    m_scatter->Clear();
    m_curve->Clear();
    m_classes->Clear();
    m_stacked->Clear();
    m_tapestry->Reset();
}

} // namespace trv5::gallery
