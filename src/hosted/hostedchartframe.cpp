#include <trv5charts/hostedchartframe.h>

#include "platform/chartengine.h"
#include "platform/clipboardaccess.h"
#include "platform/focusmark.h"
#include "platform/frameborder.h"
#include "platform/printeraccess.h"

#include <trv5charts/numberformat.h>

#include <QResizeEvent>

#include <algorithm>

namespace trv5 {

namespace {

// The engine control keeps this distance from every edge of the chart.
constexpr int kEngineMargin = 5;

} // namespace

HostedChartFrame::HostedChartFrame(QString pDefaultDefinition, QWidget* pParent)
    : QWidget(pParent), mChart(std::make_unique<platform::ChartEngine>(this)),
      m_defaultDefinition(std::move(pDefaultDefinition)),
      m_printDialog(std::make_shared<platform::QtPrintDialog>(this)) {
    mChart->SetLabelNumberFormat([](double pValue) { return NumberFormat::Short(pValue); });
    connect(mChart.get(), &platform::ChartEngine::MouseDown, this, &HostedChartFrame::MouseDown);
    new platform::FocusMark(this);
    LayoutEngine();
}

HostedChartFrame::~HostedChartFrame() = default;

QString HostedChartFrame::DefinitionPath(const QString& pPath) const {
    return pPath.isEmpty() ? m_defaultDefinition : pPath;
}

void HostedChartFrame::Init(const QString& pDefinitionFilePath) {
    // The engine works in pixels throughout, so the margins of the resize are pixels already.
    mChart->LoadContent(DefinitionPath(pDefinitionFilePath));
    AfterInit();
    LayoutEngine();
}

void HostedChartFrame::LoadPalette(const QString& pPalettePath) {
    mChart->LoadPalette(DefinitionPath(pPalettePath));
}

void HostedChartFrame::ShowLegend() {
    mChart->SetLegendVisible(true);
}

void HostedChartFrame::HideLegend() {
    mChart->SetLegendVisible(false);
}

void HostedChartFrame::SetAxisTitlesVisible(bool pVisible) {
    mChart->Title(2).SetVisible(pVisible);
    mChart->Title(3).SetVisible(pVisible);
}

void HostedChartFrame::ShowAxisTitles() {
    SetAxisTitlesVisible(true);
}

void HostedChartFrame::HideAxisTitles() {
    SetAxisTitlesVisible(false);
}

void HostedChartFrame::SetGridlinesVisible(bool pVisible) {
    mChart->AxisX().SetGridLinesVisible(pVisible);
    mChart->AxisY().SetGridLinesVisible(pVisible);
}

void HostedChartFrame::ShowGridlines() {
    SetGridlinesVisible(true);
}

void HostedChartFrame::HideGridlines() {
    SetGridlinesVisible(false);
}

void HostedChartFrame::CopyData() {
    if (mChart->SeriesCount() == 0) {
        return;
    }
    platform::ClipboardAccess::SetText(GetChartDataAsString());
}

void HostedChartFrame::CopyImage() {
    if (mChart->Widget() == nullptr) {
        return;
    }
    CopyControlPicture(mChart->Widget());
}

void HostedChartFrame::PrintChart() {
    PrintSettings settings;
    if (!m_printDialog->Exec(settings)) {
        return;
    }
    platform::PrinterAccess::PrintCopies(settings,
                                         [this](QPaintDevice& pDevice) { mChart->Print(pDevice); });
}

void HostedChartFrame::PrintChart2(QPaintDevice* pPrinterDevice) {
    if (pPrinterDevice == nullptr) {
        PrintChart();
        return;
    }
    mChart->Print(*pPrinterDevice);
}

void HostedChartFrame::PrintPreview() {
    mChart->PrintPreview(this);
}

void HostedChartFrame::SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog) {
    m_printDialog = pDialog ? std::move(pDialog) : std::make_shared<platform::QtPrintDialog>(this);
}

void HostedChartFrame::SetDrawBorder(bool pDrawBorder) {
    m_drawBorder = pDrawBorder;
    update();
}

void HostedChartFrame::ReadProperties(const QVariantMap& pProperties) {
    SetDrawBorder(pProperties.value(QStringLiteral("DrawBorder"), true).toBool());
}

void HostedChartFrame::WriteProperties(QVariantMap& pProperties) const {
    pProperties.insert(QStringLiteral("DrawBorder"), m_drawBorder);
}

void HostedChartFrame::Dispose() {
    // The host may have destroyed the engine control already; there is nothing left to empty.
    if (mChart->HasControl()) {
        mChart->ClearContent();
    }
}

void HostedChartFrame::LayoutEngine() {
    QWidget* engine = mChart->Widget();
    if (engine == nullptr) {
        return;
    }
    // A chart narrower than twice the margin leaves the engine no room: it gets no area rather
    // than the negative size that would make it paint into nothing.
    engine->setGeometry(kEngineMargin, kEngineMargin, std::max(width() - 2 * kEngineMargin, 0),
                        std::max(height() - 2 * kEngineMargin, 0));
    update();
}

void HostedChartFrame::resizeEvent(QResizeEvent* pEvent) {
    QWidget::resizeEvent(pEvent);
    LayoutEngine();
}

void HostedChartFrame::paintEvent(QPaintEvent* pEvent) {
    QWidget::paintEvent(pEvent);
    // What a screen reader says beside the chart's name: its title and how much it shows. Kept
    // up to date with every frame, which is when the content can have changed.
    int series = 0;
    qint64 points = 0;
    for (int i = 0; i < mChart->SeriesCount(); ++i) {
        const platform::ChartSeries& one = mChart->Series(i);
        if (one.Visible() && one.PointCount() > 0) {
            ++series;
            points += one.PointCount();
        }
    }
    const QString title = mChart->TitleCount() > 0 ? mChart->Title(0).Text().trimmed() : QString();
    const QString description = QStringLiteral("%1, %2 series, %3 points")
                                    .arg(title.isEmpty() ? QStringLiteral("Chart") : title)
                                    .arg(series)
                                    .arg(points);
    // Every paint passes here (a hover repaints); a screen reader hears only real changes.
    if (description != accessibleDescription()) {
        setAccessibleDescription(description);
    }
    const QWidget* engine = mChart->Widget();
    if (m_drawBorder && engine != nullptr) {
        platform::PaintFrameBorder(*this, engine->geometry());
    }
}

} // namespace trv5
