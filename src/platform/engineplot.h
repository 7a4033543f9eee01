#pragma once

// The QCustomPlot side of the chart engine. Private to src/platform/: nothing outside the engine
// includes this header (or qcustomplot.h).

#include "platform/chartengine.h"

#include <qcustomplot.h>

#include <QPointer>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace trv5::platform {

// A title in the plot's layout: a line or a few lines of text docked at one edge, turned by a
// quarter for the left and right edges. A hidden title takes no room.
class TitleElement : public QCPLayoutElement {
public:
    explicit TitleElement(QCustomPlot* pPlot);

    void Apply(const TitleDefinition& pDefinition, const QColor& pDefaultColour);
    Docking Dock() const { return m_definition.docking; }
    bool Shown() const;

    QSize minimumOuterSizeHint() const override;
    QSize maximumOuterSizeHint() const override;

protected:
    void draw(QCPPainter* pPainter) override;

private:
    QFont Font() const;
    QString DisplayText() const;
    QSize TextSize() const; // unturned

    TitleDefinition m_definition;
    QColor m_colour;
};

// The point labels, drawn on a layer above the series: only for points inside the axis rect,
// only for series whose labels are shown, and never on top of a label already drawn, so a dense
// cloud gets a readable sprinkling of labels instead of a black smear, at a cost bounded by the
// points in view.
class PointLabelLayer : public QCPLayerable {
public:
    PointLabelLayer(QCustomPlot* pPlot, EngineState& pState);
    int Drawn() const { return m_drawn; }

protected:
    void applyDefaultAntialiasingHint(QCPPainter* pPainter) const override;
    void draw(QCPPainter* pPainter) override;
    QRect clipRect() const override;

private:
    EngineState& m_state;
    int m_drawn = 0;
};

// What the plot holds for one series of the content.
struct SeriesPlot {
    QCPGraph* graph = nullptr; // owned by the plot
    // The drawable points (finite coordinates) by ascending argument: order[k] is the index of
    // the point at position k of the graph's data. Empty when every point is drawable and the
    // points already ascend, so position and index coincide.
    std::vector<std::int32_t> order;
    bool identity = true;
    bool dataDirty = true;
};

struct EngineState {
    EngineState(ChartEngine& pOwner, QWidget* pParent);
    ~EngineState();
    EngineState(const EngineState&) = delete;
    EngineState& operator=(const EngineState&) = delete;

    void Invalidate();
    void SeriesChanged(int pIndex, bool pData);
    void LayoutChanged();

    // Hands everything to the plot; called just before each frame.
    void Sync();
    void SyncSeries(std::size_t pIndex);
    void SyncData(ChartSeries& pSeries, SeriesPlot& pPlot);
    void SyncTitles();
    void SyncAxis(const ChartAxis& pAxis, QCPAxis& pPlotAxis, bool pHorizontal);
    void ArrangeLayout();
    // With legendAvoidsPoints, moves the legend to the corner of the diagram where it covers
    // the fewest drawn points (the configured corner on a tie); called once the frame's layout
    // is known.
    void PlaceLegend();

    QColor SeriesColour(std::size_t pIndex) const;
    void RemoveSeries();
    void CreateSeries(const std::vector<SeriesDefinition>& pDefinitions);
    void CreateTitles(const std::vector<TitleDefinition>& pDefinitions);

    // Index into the series' points of the point at graph position pPosition.
    std::int32_t PointIndex(const SeriesPlot& pPlot, std::int64_t pPosition) const;

    ChartEngine& owner;
    // The engine control. The engine creates it and deletes it with itself; plotGuard notices a
    // parent that deleted it first, so that it is not deleted twice.
    QCustomPlot* plot;
    QPointer<QCustomPlot> plotGuard;
    std::vector<std::unique_ptr<ChartSeries>> series;
    std::vector<SeriesPlot> plots;
    std::vector<std::unique_ptr<ChartTitle>> titles;
    std::vector<TitleElement*> titleElements; // owned by the plot's layout
    std::unique_ptr<ChartAxis> axisX;
    std::unique_ptr<ChartAxis> axisY;
    PaletteDefinition palette;
    std::optional<QColor> background;
    std::optional<QColor> diagramBackground;
    bool legendVisible = false;
    LegendPosition legendPosition = LegendPosition::TopRight;
    bool legendAvoidsPoints = false;
    std::function<QString(double)> numberFormat;
    PointLabelLayer* labels = nullptr;
    QMetaObject::Connection syncConnection;
    QMetaObject::Connection layoutConnection;
    // The ranges the last frame showed, without the hair of slack added for the plot.
    QCPRange drawnX{0.0, 5.0};
    QCPRange drawnY{0.0, 5.0};
    bool layoutDirty = true;
    bool syncing = false;
};

} // namespace trv5::platform
