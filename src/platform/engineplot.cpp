#include "platform/engineplot.h"

#include <QFontMetrics>
#include <QLocale>
#include <QStyle>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace trv5::platform {

namespace {

constexpr int kTitlePadding = 4;
constexpr double kLabelPoints = 8.0;
constexpr double kTickLabelPoints = 8.0;
constexpr double kLegendPoints = 8.0;
// Auto-ranged axes leave this share of the span free on each side so that no marker is cut in
// half by the plot's edge.
constexpr double kAutoRangePadding = 0.03;
// The share of a fixed range added on each side so that points on its bounds are drawn.
constexpr double kBoundSlack = 1e-9;
// A label grid cell in pixels, and the most labels one frame draws.
constexpr int kLabelCell = 4;
constexpr int kMaxLabels = 5000;
constexpr std::size_t kMaxLabelChars = 80;

// Fonts in pixels rather than points: a printer with its own resolution then scales text with
// the rest of the chart instead of growing it by its dots per inch.
QFont PixelFont(double pPoints, bool pBold) {
    QFont font;
    font.setPixelSize(static_cast<int>(std::lround(std::clamp(pPoints, 1.0, 200.0) * 96.0 / 72.0)));
    font.setBold(pBold);
    return font;
}

// A legend sits over the plot, so a name wider than a third of it is cut with an ellipsis:
// the legend must not cover the data it explains. The series keeps its whole name for the
// copied data; the floor keeps a few words of it on a small chart.
constexpr int kMinLegendNameWidth = 120;

QString LegendName(const QString& pName, int pPlotWidth) {
    const QFontMetrics metrics(PixelFont(kLegendPoints, false));
    return metrics.elidedText(pName, Qt::ElideRight, std::max(kMinLegendNameWidth, pPlotWidth / 3));
}

QCPScatterStyle::ScatterShape ToScatterShape(MarkerShape pShape) {
    switch (pShape) {
    case MarkerShape::Circle:
        return QCPScatterStyle::ssCircle;
    case MarkerShape::Disc:
        return QCPScatterStyle::ssDisc;
    case MarkerShape::Square:
        return QCPScatterStyle::ssSquare;
    case MarkerShape::Diamond:
        return QCPScatterStyle::ssDiamond;
    case MarkerShape::Triangle:
        return QCPScatterStyle::ssTriangle;
    case MarkerShape::TriangleDown:
        return QCPScatterStyle::ssTriangleInverted;
    case MarkerShape::Cross:
        return QCPScatterStyle::ssCross;
    case MarkerShape::Plus:
        return QCPScatterStyle::ssPlus;
    case MarkerShape::Star:
        return QCPScatterStyle::ssStar;
    }
    return QCPScatterStyle::ssDisc;
}

// Filled shapes are filled with the series' colour; the circle stays an outline.
bool IsFilled(MarkerShape pShape) {
    return pShape == MarkerShape::Square || pShape == MarkerShape::Diamond ||
           pShape == MarkerShape::Triangle || pShape == MarkerShape::TriangleDown;
}

Qt::Alignment ToQtAlignment(TitleAlignment pAlignment) {
    switch (pAlignment) {
    case TitleAlignment::Near:
        return Qt::AlignLeft;
    case TitleAlignment::Far:
        return Qt::AlignRight;
    case TitleAlignment::Center:
        break;
    }
    return Qt::AlignHCenter;
}

Qt::Alignment ToQtAlignment(LegendPosition pPosition) {
    switch (pPosition) {
    case LegendPosition::TopLeft:
        return Qt::AlignTop | Qt::AlignLeft;
    case LegendPosition::BottomRight:
        return Qt::AlignBottom | Qt::AlignRight;
    case LegendPosition::BottomLeft:
        return Qt::AlignBottom | Qt::AlignLeft;
    case LegendPosition::TopRight:
        break;
    }
    return Qt::AlignTop | Qt::AlignRight;
}

bool IsHorizontal(Docking pDocking) {
    return pDocking == Docking::Top || pDocking == Docking::Bottom;
}

bool Drawable(double pArgument, double pValue) {
    return std::isfinite(pArgument) && std::isfinite(pValue);
}

std::size_t Utf8Length(std::string_view pText) {
    return static_cast<std::size_t>(std::count_if(pText.begin(), pText.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
    }));
}

// Orders point indexes by ascending argument with a stable radix sort over the arguments' bits,
// so that points with equal arguments stay in the order they were added (a vertical line draws
// as added). Several times faster than a comparison sort for the hundred thousand points of a
// large scatter plot, which the plot re-sorts whenever its data changes.
void SortByArgument(const std::vector<double>& pArguments, std::vector<std::int32_t>& pOrder) {
    constexpr int kDigitBits = 11;
    constexpr std::size_t kBuckets = std::size_t{1} << kDigitBits;
    const std::size_t count = pOrder.size();
    // Finite doubles as unsigned keys that sort in the same order: negative numbers have all
    // their bits flipped, positive ones only the sign bit.
    std::vector<std::uint64_t> keys(count);
    for (std::size_t k = 0; k < count; ++k) {
        const auto bits =
            std::bit_cast<std::uint64_t>(pArguments[static_cast<std::size_t>(pOrder[k])]);
        keys[k] = (bits >> 63) != 0 ? ~bits : bits | (std::uint64_t{1} << 63);
    }
    std::vector<std::uint64_t> keysOut(count);
    std::vector<std::int32_t> orderOut(count);
    std::vector<std::size_t> buckets(kBuckets);
    for (int shift = 0; shift < 64; shift += kDigitBits) {
        std::fill(buckets.begin(), buckets.end(), 0);
        for (const std::uint64_t key : keys) {
            ++buckets[(key >> shift) & (kBuckets - 1)];
        }
        // A digit that all keys share (the exponent bits of data in one range) moves nothing.
        if (std::find(buckets.begin(), buckets.end(), count) != buckets.end()) {
            continue;
        }
        std::size_t start = 0;
        for (std::size_t& bucket : buckets) {
            start += std::exchange(bucket, start);
        }
        for (std::size_t k = 0; k < count; ++k) {
            const std::size_t target = buckets[(keys[k] >> shift) & (kBuckets - 1)]++;
            keysOut[target] = keys[k];
            orderOut[target] = pOrder[k];
        }
        keys.swap(keysOut);
        pOrder.swap(orderOut);
    }
}

// Which cells of the plot area labels already cover.
class LabelGrid {
public:
    explicit LabelGrid(const QRect& pArea)
        : m_area(pArea), m_columns(pArea.width() / kLabelCell + 1),
          m_rows(pArea.height() / kLabelCell + 1),
          m_cells(static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(m_rows), false) {}

    bool Free(const QRect& pRect) const {
        return Visit(pRect, [&](std::size_t pCell) { return !m_cells[pCell]; });
    }
    void Take(const QRect& pRect) {
        Visit(pRect, [&](std::size_t pCell) {
            m_cells[pCell] = true;
            return true;
        });
    }

private:
    // Calls pAction for the cells under pRect, starting with its first row, until it returns
    // false; in a crowded plot most candidates fail at their first cell.
    template <class Action> bool Visit(const QRect& pRect, Action&& pAction) const {
        const QRect clipped = pRect.intersected(m_area);
        if (clipped.isEmpty()) {
            return true;
        }
        const int left = (clipped.left() - m_area.left()) / kLabelCell;
        const int right = (clipped.right() - m_area.left()) / kLabelCell;
        const int top = (clipped.top() - m_area.top()) / kLabelCell;
        const int bottom = (clipped.bottom() - m_area.top()) / kLabelCell;
        for (int row = top; row <= bottom; ++row) {
            for (int column = left; column <= right; ++column) {
                if (!pAction(static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
                             static_cast<std::size_t>(column))) {
                    return false;
                }
            }
        }
        return true;
    }

    QRect m_area;
    int m_columns;
    int m_rows;
    std::vector<bool> m_cells;
};

} // namespace

// ---- TitleElement ----

TitleElement::TitleElement(QCustomPlot* pPlot) : QCPLayoutElement(pPlot) {
    setAutoMargins(QCP::msNone);
    setMargins(QMargins());
    setLayer(QStringLiteral("axes"));
}

void TitleElement::Apply(const TitleDefinition& pDefinition, const QColor& pDefaultColour) {
    m_definition = pDefinition;
    m_colour = pDefinition.colour.value_or(pDefaultColour);
}

bool TitleElement::Shown() const {
    return m_definition.visible && !m_definition.text.isEmpty();
}

QFont TitleElement::Font() const {
    return PixelFont(m_definition.fontSize, m_definition.bold);
}

QString TitleElement::DisplayText() const {
    QString text = m_definition.text;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

QSize TitleElement::TextSize() const {
    const QFontMetrics metrics(Font());
    return metrics
        .boundingRect(QRect(0, 0, QWIDGETSIZE_MAX / 2, QWIDGETSIZE_MAX / 2),
                      Qt::AlignLeft | Qt::AlignTop, DisplayText())
        .size();
}

QSize TitleElement::minimumOuterSizeHint() const {
    const bool horizontal = IsHorizontal(m_definition.docking);
    if (!Shown()) {
        return {0, 0};
    }
    const int thickness = TextSize().height() + 2 * kTitlePadding;
    return horizontal ? QSize(0, thickness) : QSize(thickness, 0);
}

QSize TitleElement::maximumOuterSizeHint() const {
    // Only the thickness is limited: the length follows the plot, and a hidden title must not
    // narrow the column or row it shares with the plot.
    const bool horizontal = IsHorizontal(m_definition.docking);
    const int thickness = Shown() ? TextSize().height() + 2 * kTitlePadding : 0;
    return horizontal ? QSize(QWIDGETSIZE_MAX, thickness) : QSize(thickness, QWIDGETSIZE_MAX);
}

void TitleElement::draw(QCPPainter* pPainter) {
    if (!Shown() || mRect.isEmpty()) {
        return;
    }
    pPainter->setFont(Font());
    pPainter->setPen(m_colour);
    const QRect inner =
        mRect.adjusted(kTitlePadding, kTitlePadding, -kTitlePadding, -kTitlePadding);
    const Qt::Alignment alignment = ToQtAlignment(m_definition.alignment) | Qt::AlignVCenter;
    if (IsHorizontal(m_definition.docking)) {
        pPainter->drawText(inner, static_cast<int>(alignment), DisplayText());
        return;
    }
    // Turned a quarter: reading upwards on the left edge, downwards on the right one.
    pPainter->save();
    const QPointF centre = QRectF(inner).center();
    pPainter->translate(centre);
    pPainter->rotate(m_definition.docking == Docking::Left ? -90.0 : 90.0);
    const QRectF turned(-inner.height() / 2.0, -inner.width() / 2.0, inner.height(), inner.width());
    pPainter->drawText(turned, static_cast<int>(alignment), DisplayText());
    pPainter->restore();
}

// ---- PointLabelLayer ----

PointLabelLayer::PointLabelLayer(QCustomPlot* pPlot, EngineState& pState)
    : QCPLayerable(pPlot, QStringLiteral("labels")), m_state(pState) {}

void PointLabelLayer::applyDefaultAntialiasingHint(QCPPainter* pPainter) const {
    applyAntialiasingHint(pPainter, true, QCP::aeOther);
}

QRect PointLabelLayer::clipRect() const {
    return mParentPlot->axisRect()->rect();
}

void PointLabelLayer::draw(QCPPainter* pPainter) {
    m_drawn = 0;
    const QRect area = mParentPlot->axisRect()->rect();
    if (area.width() <= 0 || area.height() <= 0) {
        return;
    }
    QCPAxis& keyAxis = *mParentPlot->xAxis;
    QCPAxis& valueAxis = *mParentPlot->yAxis;
    const QFont font = PixelFont(kLabelPoints, false);
    const QFontMetrics metrics(font);
    pPainter->setFont(font);
    pPainter->setPen(m_state.palette.text);
    LabelGrid grid(area);
    const int height = metrics.height();
    const int averageWidth = std::max(1, metrics.averageCharWidth());

    for (std::size_t s = 0; s < m_state.series.size(); ++s) {
        const ChartSeries& series = *m_state.series[s];
        const SeriesPlot& plot = m_state.plots[s];
        if (!series.Visible() || !series.LabelsVisible() || plot.graph == nullptr) {
            continue;
        }
        const auto data = plot.graph->data();
        const QCPRange keys = keyAxis.range();
        const QCPRange values = valueAxis.range();
        const auto begin = data->findBegin(keys.lower, false);
        const auto end = data->findEnd(keys.upper, false);
        const int offset = static_cast<int>(std::ceil(series.MarkerSize() / 2.0)) + 2;
        for (auto it = begin; it != end; ++it) {
            if (!values.contains(it->value) || !keys.contains(it->key)) {
                continue;
            }
            const QPoint at(static_cast<int>(std::lround(keyAxis.coordToPixel(it->key))),
                            static_cast<int>(std::lround(valueAxis.coordToPixel(it->value))));
            // Where a label to the upper right would start; taken already in a crowded area.
            if (!grid.Free(QRect(at.x() + offset, at.y() - offset - height, 1, height))) {
                continue;
            }
            const std::int32_t index =
                m_state.PointIndex(plot, static_cast<std::int64_t>(it - data->constBegin()));
            // A cheap estimate first: most candidates in a dense cloud fail here without any
            // text being made or measured.
            std::size_t chars = 0;
            if (series.LabelFormatting() == LabelFormat::Text) {
                chars = std::min(Utf8Length(series.Texts().Utf8(static_cast<std::size_t>(index))),
                                 kMaxLabelChars);
                if (chars == 0) {
                    continue;
                }
            } else {
                chars = 8;
            }
            QRect box(at.x() + offset, at.y() - offset - height,
                      static_cast<int>(chars) * averageWidth, height);
            if (box.right() > area.right()) {
                box.moveRight(at.x() - offset);
            }
            if (box.top() < area.top()) {
                box.moveTop(at.y() + offset);
            }
            if (!grid.Free(box)) {
                continue;
            }
            QString text = series.Label(index);
            if (static_cast<std::size_t>(text.size()) > kMaxLabelChars) {
                text = metrics.elidedText(text, Qt::ElideRight,
                                          static_cast<int>(kMaxLabelChars) * averageWidth);
            }
            const int width = metrics.horizontalAdvance(text);
            const bool movedLeft = box.right() < at.x();
            box.setWidth(width);
            if (movedLeft) {
                box.moveRight(at.x() - offset);
            }
            if (!grid.Free(box)) {
                continue;
            }
            grid.Take(box);
            pPainter->drawText(box, Qt::AlignLeft | Qt::AlignVCenter, text);
            if (++m_drawn >= kMaxLabels) {
                return;
            }
        }
    }
}

// ---- EngineState ----

EngineState::EngineState(ChartEngine& pOwner, QWidget* pParent)
    : owner(pOwner), plot(new QCustomPlot(pParent)), plotGuard(plot),
      axisX(new ChartAxis(*this, true)), axisY(new ChartAxis(*this, false)),
      palette(definitionfile::DefaultPalette()) {
    plot->setObjectName(QStringLiteral("mChart"));
    plot->setAutoAddPlottableToLegend(false);
    plot->setInteractions(QCP::Interactions());
    plot->plotLayout()->setRowSpacing(0);
    plot->plotLayout()->setColumnSpacing(0);
    plot->addLayer(QStringLiteral("labels"), plot->layer(QStringLiteral("main")),
                   QCustomPlot::limAbove);
    labels = new PointLabelLayer(plot, *this);
    plot->axisRect()->insetLayout()->setInsetAlignment(0, Qt::AlignTop | Qt::AlignRight);
    for (QCPAxis* axis : {plot->xAxis, plot->yAxis}) {
        axis->grid()->setSubGridVisible(false);
        axis->grid()->setZeroLinePen(Qt::NoPen);
        axis->setSubTicks(false);
    }
    syncConnection = QObject::connect(plot, &QCustomPlot::beforeReplot, plot, [this] { Sync(); });
    layoutConnection =
        QObject::connect(plot, &QCustomPlot::afterLayout, plot, [this] { PlaceLegend(); });
    CreateTitles({});
}

EngineState::~EngineState() {
    // Nothing of the plot may call back into a state that is gone.
    QObject::disconnect(syncConnection);
    QObject::disconnect(layoutConnection);
    if (plotGuard) {
        delete labels;
        delete plot;
    }
}

void EngineState::Invalidate() {
    if (!syncing && plotGuard) {
        plot->replot(QCustomPlot::rpQueuedReplot);
    }
}

void EngineState::SeriesChanged(int pIndex, bool pData) {
    if (pData && pIndex >= 0 && static_cast<std::size_t>(pIndex) < plots.size()) {
        plots[static_cast<std::size_t>(pIndex)].dataDirty = true;
    }
    Invalidate();
}

void EngineState::LayoutChanged() {
    layoutDirty = true;
    Invalidate();
}

QColor EngineState::SeriesColour(std::size_t pIndex) const {
    const auto& own = series[pIndex]->m_definition.colour;
    if (own) {
        return *own;
    }
    const auto& colours = palette.seriesColours;
    return colours.empty() ? QColor(Qt::black) : colours[pIndex % colours.size()];
}

void EngineState::RemoveSeries() {
    for (SeriesPlot& each : plots) {
        // The graphs went with the engine control when it is gone.
        if (each.graph != nullptr && plotGuard) {
            plot->removePlottable(each.graph);
        }
    }
    plots.clear();
    series.clear();
}

void EngineState::CreateSeries(const std::vector<SeriesDefinition>& pDefinitions) {
    RemoveSeries();
    for (const SeriesDefinition& definition : pDefinitions) {
        const int index = static_cast<int>(series.size());
        series.emplace_back(new ChartSeries(*this, index, definition));
        plots.emplace_back();
    }
}

void EngineState::CreateTitles(const std::vector<TitleDefinition>& pDefinitions) {
    titles.clear();
    for (const TitleDefinition& definition : pDefinitions) {
        titles.emplace_back(new ChartTitle(*this, definition));
    }
    // The charts address titles 0 to 3 whatever the file gave.
    while (titles.size() < 4) {
        titles.emplace_back(new ChartTitle(*this, TitleDefinition{}));
    }
    if (!plotGuard) {
        // The title elements belonged to the engine control's layout and went with it.
        titleElements.clear();
        return;
    }
    while (titleElements.size() > titles.size()) {
        TitleElement* surplus = titleElements.back();
        titleElements.pop_back();
        if (surplus->layout() != nullptr) {
            surplus->layout()->take(surplus);
        }
        delete surplus;
    }
    while (titleElements.size() < titles.size()) {
        titleElements.push_back(new TitleElement(plot));
    }
    layoutDirty = true;
}

void EngineState::ArrangeLayout() {
    QCPLayoutGrid& layout = *plot->plotLayout();
    QCPAxisRect* rect = plot->axisRect();
    for (TitleElement* element : titleElements) {
        if (element->layout() == &layout) {
            layout.take(element);
        }
    }
    if (rect->layout() == &layout) {
        layout.take(rect);
    }
    layout.simplify();

    std::vector<TitleElement*> top, bottom, left, right;
    for (TitleElement* element : titleElements) {
        switch (element->Dock()) {
        case Docking::Top:
            top.push_back(element);
            break;
        case Docking::Bottom:
            bottom.push_back(element);
            break;
        case Docking::Left:
            left.push_back(element);
            break;
        case Docking::Right:
            right.push_back(element);
            break;
        }
    }
    // The first title of an edge is the outermost one.
    const int row = static_cast<int>(top.size());
    const int column = static_cast<int>(left.size());
    layout.addElement(row, column, rect);
    for (std::size_t i = 0; i < top.size(); ++i) {
        layout.addElement(static_cast<int>(i), column, top[i]);
    }
    for (std::size_t i = 0; i < bottom.size(); ++i) {
        layout.addElement(row + 1 + static_cast<int>(i), column, bottom[i]);
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        layout.addElement(row, static_cast<int>(i), left[i]);
    }
    for (std::size_t i = 0; i < right.size(); ++i) {
        layout.addElement(row, column + 1 + static_cast<int>(i), right[i]);
    }
    layoutDirty = false;
}

void EngineState::SyncTitles() {
    std::vector<Docking> before;
    for (const TitleElement* element : titleElements) {
        before.push_back(element->Dock());
    }
    for (std::size_t i = 0; i < titles.size(); ++i) {
        titleElements[i]->Apply(titles[i]->m_definition, palette.text);
        if (titleElements[i]->Dock() != before[i]) {
            layoutDirty = true;
        }
    }
    if (layoutDirty) {
        ArrangeLayout();
    }
}

void EngineState::SyncData(ChartSeries& pSeries, SeriesPlot& pPlot) {
    const std::vector<double>& arguments = pSeries.m_arguments;
    const std::vector<double>& values = pSeries.m_values;
    const std::size_t count = arguments.size();

    bool identity = true;
    double previous = -std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < count && identity; ++i) {
        identity = Drawable(arguments[i], values[i]) && arguments[i] >= previous;
        previous = arguments[i];
    }

    QVector<QCPGraphData> data;
    pPlot.order.clear();
    if (identity) {
        data.resize(static_cast<qsizetype>(count));
        for (std::size_t i = 0; i < count; ++i) {
            data[static_cast<qsizetype>(i)] = QCPGraphData(arguments[i], values[i]);
        }
    } else {
        std::vector<std::int32_t> order;
        order.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            if (Drawable(arguments[i], values[i])) {
                order.push_back(static_cast<std::int32_t>(i));
            }
        }
        SortByArgument(arguments, order);
        data.resize(static_cast<qsizetype>(order.size()));
        for (std::size_t k = 0; k < order.size(); ++k) {
            const auto index = static_cast<std::size_t>(order[k]);
            data[static_cast<qsizetype>(k)] = QCPGraphData(arguments[index], values[index]);
        }
        pPlot.order = std::move(order);
    }
    pPlot.identity = identity;
    pPlot.graph->data()->set(data, true);
    pPlot.dataDirty = false;
}

namespace {
// Lines with more points than this are drawn with pens of at most one pixel.
constexpr int kWidePenLimit = 20000;
} // namespace

void EngineState::SyncSeries(std::size_t pIndex) {
    ChartSeries& each = *series[pIndex];
    SeriesPlot& target = plots[pIndex];
    const SeriesDefinition& definition = each.m_definition;
    if (target.graph == nullptr) {
        target.graph = new QCPGraph(plot->xAxis, plot->yAxis);
        target.graph->setSelectable(QCP::stNone);
        // Scatter series rely on the plot's adaptive sampling for large point counts.
        target.graph->setAdaptiveSampling(true);
        target.dataDirty = true;
    }
    QCPGraph& graph = *target.graph;
    const QColor colour = SeriesColour(pIndex);

    // A wide pen makes Qt's rasteriser trace the outline of every segment, which turns a line
    // of 100,000 points into seconds of drawing; long lines therefore keep one pixel.
    const bool longLine = definition.type == SeriesType::Line && each.PointCount() > kWidePenLimit;
    QPen pen(colour, longLine ? std::min(definition.lineWidth, 1.0) : definition.lineWidth);
    pen.setCapStyle(Qt::FlatCap);
    if (!definition.dashPattern.empty()) {
        QList<qreal> pattern(definition.dashPattern.begin(), definition.dashPattern.end());
        // A pen dash pattern needs pairs of dash and gap.
        if (pattern.size() % 2 != 0) {
            pattern.append(pattern.back());
        }
        pen.setDashPattern(pattern);
    }
    graph.setPen(definition.lineWidth > 0.0 ? pen : QPen(Qt::NoPen));
    graph.setLineStyle(definition.type == SeriesType::Line ? QCPGraph::lsLine : QCPGraph::lsNone);
    if (definition.markerVisible && definition.markerSize > 0.0) {
        const QColor fill = IsFilled(definition.markerShape) ? colour : QColor(Qt::transparent);
        graph.setScatterStyle(QCPScatterStyle(ToScatterShape(definition.markerShape), colour, fill,
                                              definition.markerSize));
    } else {
        graph.setScatterStyle(QCPScatterStyle(QCPScatterStyle::ssNone));
    }
    graph.setVisible(definition.visible);
    graph.setName(LegendName(definition.name, plot->width()));
    const bool inLegend =
        definition.showInLegend && definition.visible && !definition.name.isEmpty();
    if (inLegend != plot->legend->hasItemWithPlottable(&graph)) {
        if (inLegend) {
            graph.addToLegend();
        } else {
            graph.removeFromLegend();
        }
    }
    if (target.dataDirty) {
        SyncData(each, target);
    }
}

void EngineState::SyncAxis(const ChartAxis& pAxis, QCPAxis& pPlotAxis, bool pHorizontal) {
    const AxisDefinition& definition = pAxis.m_definition;
    QCPRange& drawn = pHorizontal ? drawnX : drawnY;
    const QPen axisPen(palette.axis, 0);
    pPlotAxis.setBasePen(axisPen);
    pPlotAxis.setTickPen(axisPen);
    pPlotAxis.setTickLabelColor(palette.text);
    pPlotAxis.setTickLabelFont(PixelFont(kTickLabelPoints, false));
    pPlotAxis.setTickLabelRotation(definition.labelAngle);
    pPlotAxis.grid()->setVisible(definition.gridLines);
    pPlotAxis.grid()->setPen(QPen(palette.grid, 0, Qt::DotLine));

    if (!definition.autoRange) {
        // The plot would swap a reversed pair; a reversed or empty range is no range here.
        if (definition.minValue < definition.maxValue &&
            QCPRange::validRange(definition.minValue, definition.maxValue)) {
            // The plot's adaptive sampling of dense scatter columns keeps only points strictly
            // inside the range; a hair of extra room keeps the points that lie exactly on a
            // bound (the extremes of the data when the margin is 0) on screen.
            const double hair = (definition.maxValue - definition.minValue) * kBoundSlack;
            pPlotAxis.setRange(definition.minValue - hair, definition.maxValue + hair);
            drawn = QCPRange(definition.minValue, definition.maxValue);
        }
        return;
    }
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    for (const auto& each : series) {
        if (!each->Visible()) {
            continue;
        }
        const std::vector<double>& ownAxis = pHorizontal ? each->m_arguments : each->m_values;
        const std::vector<double>& otherAxis = pHorizontal ? each->m_values : each->m_arguments;
        for (std::size_t i = 0; i < ownAxis.size(); ++i) {
            if (Drawable(ownAxis[i], otherAxis[i])) {
                low = std::min(low, ownAxis[i]);
                high = std::max(high, ownAxis[i]);
            }
        }
    }
    if (!(low <= high)) {
        return; // nothing to fit: the range stays as it is
    }
    double padding = (high - low) * kAutoRangePadding;
    if (!(padding > 0.0) || !std::isfinite(padding)) {
        padding = low == 0.0 ? 0.5 : std::abs(low) * 0.1;
    }
    const double lower = low - padding;
    const double upper = high + padding;
    if (QCPRange::validRange(lower, upper)) {
        pPlotAxis.setRange(lower, upper);
        drawn = QCPRange(lower, upper);
    }
}

void EngineState::Sync() {
    if (syncing || !plotGuard) {
        return;
    }
    syncing = true;
    struct Reset {
        bool& flag;
        ~Reset() { flag = false; }
    } reset{syncing};

    plot->setLocale(QLocale());
    plot->setBackground(QBrush(background.value_or(palette.background)));
    plot->axisRect()->setBackground(QBrush(diagramBackground.value_or(palette.diagramBackground)));
    for (std::size_t i = 0; i < series.size(); ++i) {
        SyncSeries(i);
    }
    SyncTitles();
    SyncAxis(*axisX, *plot->xAxis, true);
    SyncAxis(*axisY, *plot->yAxis, false);

    QCPLegend& legend = *plot->legend;
    legend.setVisible(legendVisible);
    legend.setFont(PixelFont(kLegendPoints, false));
    legend.setTextColor(palette.text);
    legend.setBrush(QBrush(palette.legendBackground));
    legend.setBorderPen(QPen(palette.border, 0));
    plot->axisRect()->insetLayout()->setInsetAlignment(0, ToQtAlignment(legendPosition));
}

void EngineState::PlaceLegend() {
    QCPLayoutInset& inset = *plot->axisRect()->insetLayout();
    if (!legendAvoidsPoints || !legendVisible || inset.elementCount() == 0) {
        return;
    }
    const QRect area = plot->axisRect()->rect();
    const QSize size = plot->legend->outerRect().size();
    if (area.isEmpty() || size.isEmpty()) {
        return;
    }
    // The configured corner first, so that it wins a tie.
    std::array<LegendPosition, 4> corners{LegendPosition::TopRight, LegendPosition::TopLeft,
                                          LegendPosition::BottomRight, LegendPosition::BottomLeft};
    std::iter_swap(corners.begin(), std::find(corners.begin(), corners.end(), legendPosition));
    std::array<QRectF, 4> boxes;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        boxes[i] = QStyle::alignedRect(Qt::LeftToRight, ToQtAlignment(corners[i]), size, area);
    }
    std::array<std::int64_t, 4> covered{};
    for (const SeriesPlot& seriesPlot : plots) {
        const QCPGraph& graph = *seriesPlot.graph;
        if (!graph.visible()) {
            continue;
        }
        for (const QCPGraphData& point : *graph.data()) {
            const QPointF at(graph.keyAxis()->coordToPixel(point.key),
                             graph.valueAxis()->coordToPixel(point.value));
            for (std::size_t i = 0; i < boxes.size(); ++i) {
                covered[i] += boxes[i].contains(at) ? 1 : 0;
            }
        }
    }
    const auto fewest = std::min_element(covered.begin(), covered.end()) - covered.begin();
    const Qt::Alignment alignment = ToQtAlignment(corners[static_cast<std::size_t>(fewest)]);
    if (inset.insetAlignment(0) != alignment) {
        inset.setInsetAlignment(0, alignment);
        inset.updateLayout();
    }
}

std::int32_t EngineState::PointIndex(const SeriesPlot& pPlot, std::int64_t pPosition) const {
    if (pPlot.identity) {
        return static_cast<std::int32_t>(pPosition);
    }
    return pPlot.order[static_cast<std::size_t>(pPosition)];
}

} // namespace trv5::platform
