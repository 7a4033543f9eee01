#include "platform/chartengine.h"
#include "platform/printeraccess.h"

#include "platform/engineplot.h"

#include <trv5charts/charterror.h>

#include <QEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <limits>

namespace trv5::platform {

namespace {

bool HasTooltip(const ChartSeries& pSeries, int pIndex) {
    const PointTexts& texts = pSeries.Texts();
    return pIndex >= 0 && static_cast<std::size_t>(pIndex) < texts.Count() &&
           !texts.Utf8(static_cast<std::size_t>(pIndex)).empty();
}

constexpr int kPrinterError = 482;
// How far from a marker's edge the mouse may rest and still get its tooltip.
constexpr double kHitTolerance = 3.0;
// The size a chart is printed at when its control has never been laid out.
constexpr QSize kFallbackPrintSize(800, 560);

[[noreturn]] void OutOfRange(const char* pWhat, qsizetype pIndex, qsizetype pCount) {
    throw ChartError(ChartError::IndexOutOfRange,
                     QStringLiteral("%1 %2 does not exist (there are %3)")
                         .arg(QLatin1String(pWhat))
                         .arg(pIndex)
                         .arg(pCount));
}

void CheckRange(const char* pWhat, double pValue, double pLow, double pHigh) {
    if (!(pValue >= pLow && pValue <= pHigh)) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("%1 must lie between %2 and %3")
                             .arg(QLatin1String(pWhat))
                             .arg(pLow)
                             .arg(pHigh));
    }
}

std::int16_t Clamp16(int pValue) {
    return static_cast<std::int16_t>(std::clamp<int>(pValue,
                                                     std::numeric_limits<std::int16_t>::min(),
                                                     std::numeric_limits<std::int16_t>::max()));
}

} // namespace

// ---- ChartSeries ----

ChartSeries::ChartSeries(EngineState& pEngine, int pIndex, SeriesDefinition pDefinition)
    : m_engine(pEngine), m_index(pIndex), m_definition(std::move(pDefinition)) {}

ChartSeries::~ChartSeries() = default;

void ChartSeries::Changed(bool pData) {
    m_engine.SeriesChanged(m_index, pData);
}

void ChartSeries::SetName(const QString& pName) {
    m_definition.name = pName;
    Changed(false);
}

void ChartSeries::SetType(SeriesType pType) {
    m_definition.type = pType;
    Changed(false);
}

void ChartSeries::SetVisible(bool pVisible) {
    m_definition.visible = pVisible;
    Changed(false);
}

void ChartSeries::SetShowInLegend(bool pShow) {
    m_definition.showInLegend = pShow;
    Changed(false);
}

QColor ChartSeries::Colour() const {
    return m_engine.SeriesColour(static_cast<std::size_t>(m_index));
}

void ChartSeries::SetColour(const QColor& pColour) {
    m_definition.colour = pColour;
    Changed(false);
}

void ChartSeries::SetMarker(MarkerShape pShape) {
    m_definition.markerShape = pShape;
    Changed(false);
}

void ChartSeries::SetMarkerSize(double pSize) {
    CheckRange("The marker size", pSize, 0.0, 100.0);
    m_definition.markerSize = pSize;
    Changed(false);
}

void ChartSeries::SetMarkerVisible(bool pVisible) {
    m_definition.markerVisible = pVisible;
    Changed(false);
}

void ChartSeries::SetLineWidth(double pWidth) {
    CheckRange("The line width", pWidth, 0.0, 20.0);
    m_definition.lineWidth = pWidth;
    Changed(false);
}

void ChartSeries::SetDashPattern(std::vector<double> pPattern) {
    if (pPattern.size() > static_cast<std::size_t>(definitionfile::kMaxDashEntries)) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("A dash pattern has at most %1 entries")
                             .arg(definitionfile::kMaxDashEntries));
    }
    for (const double entry : pPattern) {
        if (!(entry > 0.0 && entry <= 100.0)) {
            throw ChartError(ChartError::InvalidArgument,
                             QStringLiteral("Dash pattern entries must lie above 0 and up to 100"));
        }
    }
    m_definition.dashPattern = std::move(pPattern);
    Changed(false);
}

void ChartSeries::SetLabelsVisible(bool pVisible) {
    m_definition.labelsVisible = pVisible;
    Changed(false);
}

void ChartSeries::SetLabelFormat(LabelFormat pFormat) {
    m_definition.labelFormat = pFormat;
    Changed(false);
}

double ChartSeries::Argument(int pIndex) const {
    if (pIndex < 0 || pIndex >= PointCount()) {
        OutOfRange("Point", pIndex, PointCount());
    }
    return m_arguments[static_cast<std::size_t>(pIndex)];
}

double ChartSeries::Value(int pIndex) const {
    if (pIndex < 0 || pIndex >= PointCount()) {
        OutOfRange("Point", pIndex, PointCount());
    }
    return m_values[static_cast<std::size_t>(pIndex)];
}

QString ChartSeries::Tooltip(int pIndex) const {
    if (pIndex < 0 || pIndex >= PointCount()) {
        OutOfRange("Point", pIndex, PointCount());
    }
    return m_texts.Text(static_cast<std::size_t>(pIndex));
}

QString ChartSeries::Label(int pIndex) const {
    const auto number = [this](double pValue) {
        return m_engine.numberFormat ? m_engine.numberFormat(pValue) : QString::number(pValue);
    };
    switch (m_definition.labelFormat) {
    case LabelFormat::Argument:
        return number(Argument(pIndex));
    case LabelFormat::Value:
        return number(Value(pIndex));
    case LabelFormat::ArgumentAndValue:
        return number(Argument(pIndex)) + QStringLiteral("; ") + number(Value(pIndex));
    case LabelFormat::Text:
        break;
    }
    return Tooltip(pIndex);
}

void ChartSeries::ClearPoints() {
    m_arguments.clear();
    m_values.clear();
    m_texts.Clear();
    Changed(true);
}

void ChartSeries::ReservePoints(std::size_t pCount) {
    const std::size_t count =
        std::min(pCount, static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()));
    m_arguments.reserve(count);
    m_values.reserve(count);
    m_texts.Reserve(count, 0);
}

int ChartSeries::AddPoint(double pArgument, double pValue, QStringView pTooltip) {
    if (m_arguments.size() >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw ChartError(ChartError::Overflow);
    }
    m_arguments.push_back(pArgument);
    m_values.push_back(pValue);
    m_texts.Append(pTooltip);
    Changed(true);
    return PointCount() - 1;
}

void ChartSeries::SetPoints(std::vector<double> pArguments, std::vector<double> pValues,
                            PointTexts pTexts) {
    if (pArguments.size() != pValues.size() ||
        (pTexts.Count() != 0 && pTexts.Count() != pArguments.size())) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("%1 arguments, %2 values and %3 texts do not match")
                             .arg(pArguments.size())
                             .arg(pValues.size())
                             .arg(pTexts.Count()));
    }
    if (pArguments.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw ChartError(ChartError::Overflow);
    }
    m_arguments = std::move(pArguments);
    m_values = std::move(pValues);
    m_texts = std::move(pTexts);
    m_texts.Resize(m_arguments.size());
    Changed(true);
}

// ---- ChartTitle ----

ChartTitle::ChartTitle(EngineState& pEngine, TitleDefinition pDefinition)
    : m_engine(pEngine), m_definition(std::move(pDefinition)) {}

void ChartTitle::Changed(bool pLayout) {
    if (pLayout) {
        m_engine.LayoutChanged();
    } else {
        m_engine.Invalidate();
    }
}

void ChartTitle::SetText(const QString& pText) {
    m_definition.text = pText;
    Changed(false);
}

void ChartTitle::SetVisible(bool pVisible) {
    m_definition.visible = pVisible;
    Changed(false);
}

void ChartTitle::SetDocking(Docking pDocking) {
    m_definition.docking = pDocking;
    Changed(true);
}

void ChartTitle::SetAlignment(TitleAlignment pAlignment) {
    m_definition.alignment = pAlignment;
    Changed(false);
}

void ChartTitle::SetFontSize(double pPoints) {
    CheckRange("The font size", pPoints, 1.0, 200.0);
    m_definition.fontSize = pPoints;
    Changed(false);
}

void ChartTitle::SetBold(bool pBold) {
    m_definition.bold = pBold;
    Changed(false);
}

// ---- ChartAxis ----

ChartAxis::ChartAxis(EngineState& pEngine, bool pHorizontal)
    : m_engine(pEngine), m_horizontal(pHorizontal) {}

void ChartAxis::Changed() {
    ++m_writes;
    m_engine.Invalidate();
}

void ChartAxis::SetAutoRange(bool pAuto) {
    m_definition.autoRange = pAuto;
    Changed();
}

void ChartAxis::SetMinValue(double pValue) {
    m_definition.minValue = pValue;
    Changed();
}

void ChartAxis::SetMaxValue(double pValue) {
    m_definition.maxValue = pValue;
    Changed();
}

void ChartAxis::SetGridLinesVisible(bool pVisible) {
    m_definition.gridLines = pVisible;
    Changed();
}

void ChartAxis::SetLabelAngle(double pDegrees) {
    CheckRange("The label angle", pDegrees, -90.0, 90.0);
    m_definition.labelAngle = pDegrees;
    Changed();
}

double ChartAxis::VisibleMinimum() const {
    return (m_horizontal ? m_engine.drawnX : m_engine.drawnY).lower;
}

double ChartAxis::VisibleMaximum() const {
    return (m_horizontal ? m_engine.drawnX : m_engine.drawnY).upper;
}

// ---- ChartEngine ----

ChartEngine::ChartEngine(QWidget* pParent)
    : m_state(std::make_unique<EngineState>(*this, pParent)) {
    m_state->plot->installEventFilter(this);
}

ChartEngine::~ChartEngine() {
    if (m_state->plotGuard) {
        m_state->plot->removeEventFilter(this);
    }
}

QWidget* ChartEngine::Widget() const {
    return m_state->plotGuard.data();
}

bool ChartEngine::HasControl() const {
    return !m_state->plotGuard.isNull();
}

void ChartEngine::RequireControl() const {
    if (!HasControl()) {
        throw ChartError(ChartError::ObjectNotSet,
                         QStringLiteral("The chart engine control is gone"));
    }
}

void ChartEngine::LoadContent(const QString& pPath) {
    // Parsed completely before anything changes, so a bad file leaves the content as it was.
    ApplyContent(definitionfile::ParseContent(definitionfile::Read(pPath), pPath));
}

void ChartEngine::LoadPalette(const QString& pPath) {
    ApplyPalette(definitionfile::ParsePalette(definitionfile::Read(pPath), pPath));
}

void ChartEngine::ApplyContent(const ContentDefinition& pContent) {
    EngineState& state = *m_state;
    state.CreateSeries(pContent.series);
    state.CreateTitles(pContent.titles);
    state.axisX->m_definition = pContent.axisX;
    state.axisY->m_definition = pContent.axisY;
    state.legendVisible = pContent.legendVisible;
    state.legendPosition = pContent.legendPosition;
    state.background = pContent.background;
    state.diagramBackground = pContent.diagramBackground;
    state.LayoutChanged();
}

void ChartEngine::ApplyPalette(const PaletteDefinition& pPalette) {
    m_state->palette = pPalette;
    if (m_state->palette.seriesColours.empty()) {
        m_state->palette.seriesColours = definitionfile::DefaultPalette().seriesColours;
    }
    m_state->Invalidate();
}

const PaletteDefinition& ChartEngine::Palette() const {
    return m_state->palette;
}

void ChartEngine::ClearContent() {
    m_state->CreateSeries({});
    m_state->CreateTitles({});
    m_state->LayoutChanged();
}

int ChartEngine::SeriesCount() const {
    return static_cast<int>(m_state->series.size());
}

ChartSeries& ChartEngine::Series(int pIndex) {
    if (pIndex < 0 || pIndex >= SeriesCount()) {
        OutOfRange("Series", pIndex, SeriesCount());
    }
    return *m_state->series[static_cast<std::size_t>(pIndex)];
}

ChartSeries* ChartEngine::FindSeries(QStringView pName) {
    for (const auto& each : m_state->series) {
        if (each->Name() == pName) {
            return each.get();
        }
    }
    return nullptr;
}

int ChartEngine::TitleCount() const {
    return static_cast<int>(m_state->titles.size());
}

ChartTitle& ChartEngine::Title(int pIndex) {
    if (pIndex < 0 || pIndex >= TitleCount()) {
        OutOfRange("Title", pIndex, TitleCount());
    }
    return *m_state->titles[static_cast<std::size_t>(pIndex)];
}

ChartAxis& ChartEngine::AxisX() {
    return *m_state->axisX;
}

ChartAxis& ChartEngine::AxisY() {
    return *m_state->axisY;
}

bool ChartEngine::LegendVisible() const {
    return m_state->legendVisible;
}

void ChartEngine::SetLegendVisible(bool pVisible) {
    m_state->legendVisible = pVisible;
    m_state->Invalidate();
}

void ChartEngine::SetLegendAvoidsPoints(bool pAvoid) {
    m_state->legendAvoidsPoints = pAvoid;
    m_state->Invalidate();
}

QRect ChartEngine::LegendRect() const {
    const QCPLegend& legend = *m_state->plot->legend;
    return legend.visible() ? legend.outerRect() : QRect();
}

QColor ChartEngine::BackgroundColour() const {
    return m_state->background.value_or(m_state->palette.background);
}

void ChartEngine::SetBackgroundColour(const QColor& pColour) {
    m_state->background = pColour;
    m_state->Invalidate();
}

QColor ChartEngine::DiagramBackgroundColour() const {
    return m_state->diagramBackground.value_or(m_state->palette.diagramBackground);
}

void ChartEngine::SetDiagramBackgroundColour(const QColor& pColour) {
    m_state->diagramBackground = pColour;
    m_state->Invalidate();
}

void ChartEngine::SetLabelNumberFormat(std::function<QString(double)> pFormat) {
    m_state->numberFormat = std::move(pFormat);
    m_state->Invalidate();
}

void ChartEngine::Refresh() {
    m_state->Invalidate();
}

QImage ChartEngine::Render(const QSize& pSize) {
    QCustomPlot* plot = m_state->plot;
    if (!HasControl() || pSize.width() <= 0 || pSize.height() <= 0) {
        return {};
    }
    m_state->Sync();
    return plot->toPixmap(pSize.width(), pSize.height()).toImage();
}

QImage ChartEngine::Render() {
    return HasControl() ? Render(m_state->plot->size()) : QImage();
}

void ChartEngine::Print(QPaintDevice& pDevice) {
    RequireControl();
    QCustomPlot* plot = m_state->plot;
    QCPPainter painter;
    if (!painter.begin(&pDevice)) {
        throw ChartError(kPrinterError, QStringLiteral("The printer could not start the document"));
    }
    const QSize size = plot->width() > 0 && plot->height() > 0 ? plot->size() : kFallbackPrintSize;
    // Placed as the self-drawn charts' pictures are: at the on-screen size when that fits the
    // page, shrunk to the page when it does not.
    const QSizeF natural(size.width() * pDevice.logicalDpiX() / std::max(1, plot->logicalDpiX()),
                         size.height() * pDevice.logicalDpiY() / std::max(1, plot->logicalDpiY()));
    const QRectF placed =
        PrinterAccess::PlaceOnPage(natural, QSizeF(pDevice.width(), pDevice.height()));
    const double scale = placed.width() / size.width();
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNonCosmetic);
    if (scale > 0.0) {
        painter.scale(scale, scale);
    }
    m_state->Sync();
    plot->toPainter(&painter, size.width(), size.height());
    painter.end();
    // The layout now matches the printed size; the screen needs its own again.
    plot->replot(QCustomPlot::rpQueuedReplot);
}

void ChartEngine::PrintPreview(QWidget* pParent) {
    QPrintPreviewDialog dialog(pParent);
    dialog.setObjectName(QStringLiteral("dlgPrintPreview"));
    connect(&dialog, &QPrintPreviewDialog::paintRequested, this, [this](QPrinter* pPrinter) {
        try {
            Print(*pPrinter);
        } catch (const ChartError&) {
            // The preview shows an empty page; the dialog itself reports nothing.
        }
    });
    dialog.exec();
}

std::optional<PointHit> ChartEngine::HitTest(QPointF pPosition, bool pWithTooltipOnly) {
    EngineState& state = *m_state;
    QCustomPlot* plot = state.plot;
    if (!HasControl() || !std::isfinite(pPosition.x()) || !std::isfinite(pPosition.y())) {
        return std::nullopt;
    }
    state.Sync();
    QCPAxis& keyAxis = *plot->xAxis;
    QCPAxis& valueAxis = *plot->yAxis;
    const QRectF area = plot->axisRect()->rect();
    std::optional<PointHit> best;
    double bestDistance = std::numeric_limits<double>::infinity();
    for (std::size_t s = state.series.size(); s-- > 0;) {
        const ChartSeries& series = *state.series[s];
        const SeriesPlot& target = state.plots[s];
        if (!series.Visible() || target.graph == nullptr) {
            continue;
        }
        const double radius =
            std::max(series.MarkerVisible() ? series.MarkerSize() / 2.0 : 0.0, series.LineWidth()) +
            kHitTolerance;
        if (!area.adjusted(-radius, -radius, radius, radius).contains(pPosition)) {
            continue;
        }
        const double first = keyAxis.pixelToCoord(pPosition.x() - radius);
        const double second = keyAxis.pixelToCoord(pPosition.x() + radius);
        const auto data = target.graph->data();
        const auto begin = data->findBegin(std::min(first, second), false);
        const auto end = data->findEnd(std::max(first, second), false);
        for (auto it = begin; it != end; ++it) {
            const QPointF at(keyAxis.coordToPixel(it->key), valueAxis.coordToPixel(it->value));
            if (!area.contains(at)) {
                continue;
            }
            const double distance = std::hypot(at.x() - pPosition.x(), at.y() - pPosition.y());
            if (distance <= radius && distance < bestDistance) {
                const int index = state.PointIndex(target, it - data->constBegin());
                if (pWithTooltipOnly && !HasTooltip(series, index)) {
                    continue;
                }
                bestDistance = distance;
                best = PointHit{static_cast<int>(s), index};
            }
        }
    }
    return best;
}

QString ChartEngine::TooltipAt(QPointF pPosition) {
    // Only points that have something to say: the end points of a regression or threshold
    // line carry no text and must not hide the record drawn under them.
    const std::optional<PointHit> hit = HitTest(pPosition, true);
    return hit ? Series(hit->series).Tooltip(hit->index) : QString();
}

QPointF ChartEngine::PointPosition(int pSeries, int pIndex) {
    ChartSeries& series = Series(pSeries);
    const double argument = series.Argument(pIndex);
    const double value = series.Value(pIndex);
    QCustomPlot* plot = m_state->plot;
    if (!HasControl() || !std::isfinite(argument) || !std::isfinite(value)) {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        return {nan, nan};
    }
    m_state->Sync();
    return {plot->xAxis->coordToPixel(argument), plot->yAxis->coordToPixel(value)};
}

int ChartEngine::LabelsDrawn() const {
    const PointLabelLayer* labels = m_state->labels;
    return labels != nullptr && HasControl() ? labels->Drawn() : 0;
}

bool ChartEngine::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched != m_state->plot) {
        return QObject::eventFilter(pWatched, pEvent);
    }
    if (pEvent->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(pEvent);
        const QString text = TooltipAt(help->pos());
        if (text.isEmpty()) {
            QToolTip::hideText();
        } else {
            QToolTip::showText(help->globalPos(), text, m_state->plot);
        }
        return true;
    }
    if (pEvent->type() == QEvent::MouseButtonPress) {
        const auto* mouse = static_cast<QMouseEvent*>(pEvent);
        std::int32_t button = 0;
        if (mouse->button() == Qt::LeftButton) {
            button = 1;
        } else if (mouse->button() == Qt::RightButton) {
            button = 2;
        } else if (mouse->button() == Qt::MiddleButton) {
            button = 4;
        }
        std::int32_t modifiers = 0;
        if (mouse->modifiers().testFlag(Qt::ShiftModifier)) {
            modifiers |= 1;
        }
        if (mouse->modifiers().testFlag(Qt::ControlModifier)) {
            modifiers |= 2;
        }
        if (mouse->modifiers().testFlag(Qt::AltModifier)) {
            modifiers |= 4;
        }
        const QPoint at = mouse->position().toPoint();
        emit MouseDown(button, modifiers, Clamp16(at.x()), Clamp16(at.y()));
    }
    return QObject::eventFilter(pWatched, pEvent);
}

} // namespace trv5::platform
