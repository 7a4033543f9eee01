#pragma once

#include "platform/definitionfile.h"
#include "platform/pointtexts.h"

#include <QColor>
#include <QImage>
#include <QObject>
#include <QPointF>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

class QPaintDevice;
class QWidget;

// The chart engine of the hosted charts, after the object model those charts were written
// against: a content with series, titles, one diagram with a horizontal axis (AxisX) and a
// vertical one, a legend and an appearance (palette). QCustomPlot does the drawing; nothing of it
// shows in this header, so the charts above talk to these classes only.
//
// Everything a chart sets is kept here and handed to the plot just before it draws (on screen,
// into an image, onto a printer), so a chart may set points, titles and ranges in any order and
// pays for the plot's work once per frame. Failing calls (an index out of range, a value the
// engine cannot take, a bad definition file) throw trv5::ChartError.
namespace trv5::platform {

class ChartEngine;
struct EngineState;

// One series of the content: its points in the order they were added, each with a tooltip text
// (which a label shows too when the series' labels use LabelFormat::Text), and its style.
class ChartSeries {
public:
    ChartSeries(const ChartSeries&) = delete;
    ChartSeries& operator=(const ChartSeries&) = delete;
    ~ChartSeries();

    // The name shows in the legend.
    const QString& Name() const { return m_definition.name; }
    void SetName(const QString& pName);
    SeriesType Type() const { return m_definition.type; }
    void SetType(SeriesType pType);
    bool Visible() const { return m_definition.visible; }
    void SetVisible(bool pVisible);
    bool ShowInLegend() const { return m_definition.showInLegend; }
    void SetShowInLegend(bool pShow);

    // The series' own colour, or the palette's colour for its index when it has none.
    QColor Colour() const;
    void SetColour(const QColor& pColour);

    MarkerShape Marker() const { return m_definition.markerShape; }
    void SetMarker(MarkerShape pShape);
    double MarkerSize() const { return m_definition.markerSize; }
    // 0 to 100 pixels, otherwise ChartError 5.
    void SetMarkerSize(double pSize);
    bool MarkerVisible() const { return m_definition.markerVisible; }
    void SetMarkerVisible(bool pVisible);

    double LineWidth() const { return m_definition.lineWidth; }
    // 0 to 20 pixels, otherwise ChartError 5.
    void SetLineWidth(double pWidth);
    // Dash and gap lengths in line widths, alternating ({5, 3}); empty for a solid line. Every
    // entry must be above 0 and at most 100, and there may be at most 16 (ChartError 5).
    const std::vector<double>& DashPattern() const { return m_definition.dashPattern; }
    void SetDashPattern(std::vector<double> pPattern);

    bool LabelsVisible() const { return m_definition.labelsVisible; }
    void SetLabelsVisible(bool pVisible);
    LabelFormat LabelFormatting() const { return m_definition.labelFormat; }
    void SetLabelFormat(LabelFormat pFormat);

    // ---- points (0-based, in the order added; ChartError 9 for an index out of range) ----
    int PointCount() const { return static_cast<int>(m_arguments.size()); }
    double Argument(int pIndex) const;
    double Value(int pIndex) const;
    QString Tooltip(int pIndex) const;
    // What the point's label shows under the series' label format.
    QString Label(int pIndex) const;
    std::span<const double> Arguments() const { return m_arguments; }
    std::span<const double> Values() const { return m_values; }
    const PointTexts& Texts() const { return m_texts; }

    void ClearPoints();
    void ReservePoints(std::size_t pCount);
    // Appends a point and returns its index. Points with a coordinate that is not finite are kept
    // (and exported) but not drawn.
    int AddPoint(double pArgument, double pValue, QStringView pTooltip = {});
    // Replaces all points at once. pTexts holds one tooltip per point, or none at all
    // (ChartError 5 for other counts or arrays of different lengths).
    void SetPoints(std::vector<double> pArguments, std::vector<double> pValues,
                   PointTexts pTexts = {});

private:
    friend class ChartEngine;
    friend struct EngineState;
    ChartSeries(EngineState& pEngine, int pIndex, SeriesDefinition pDefinition);
    void Changed(bool pData);

    EngineState& m_engine;
    int m_index;
    SeriesDefinition m_definition;
    std::vector<double> m_arguments;
    std::vector<double> m_values;
    PointTexts m_texts;
};

// One title of the content. Titles 2 and 3 are the charts' axis captions.
class ChartTitle {
public:
    ChartTitle(const ChartTitle&) = delete;
    ChartTitle& operator=(const ChartTitle&) = delete;

    const QString& Text() const { return m_definition.text; }
    // Lines are separated by "\n" or "\r\n".
    void SetText(const QString& pText);
    bool Visible() const { return m_definition.visible; }
    void SetVisible(bool pVisible);
    Docking Dock() const { return m_definition.docking; }
    void SetDocking(Docking pDocking);
    TitleAlignment Alignment() const { return m_definition.alignment; }
    void SetAlignment(TitleAlignment pAlignment);
    double FontSize() const { return m_definition.fontSize; }
    // 1 to 200 points, otherwise ChartError 5.
    void SetFontSize(double pPoints);
    bool Bold() const { return m_definition.bold; }
    void SetBold(bool pBold);

private:
    friend class ChartEngine;
    friend struct EngineState;
    ChartTitle(EngineState& pEngine, TitleDefinition pDefinition);
    void Changed(bool pLayout);

    EngineState& m_engine;
    TitleDefinition m_definition;
};

// An axis of diagram 0 with its range. With AutoRange the engine fits the range to the visible
// data whenever it draws; otherwise MinValue to MaxValue are shown (a pair that is not a usable
// range, such as min >= max, leaves the previous range on screen).
class ChartAxis {
public:
    ChartAxis(const ChartAxis&) = delete;
    ChartAxis& operator=(const ChartAxis&) = delete;

    bool AutoRange() const { return m_definition.autoRange; }
    void SetAutoRange(bool pAuto);
    double MinValue() const { return m_definition.minValue; }
    void SetMinValue(double pValue);
    double MaxValue() const { return m_definition.maxValue; }
    void SetMaxValue(double pValue);
    bool GridLinesVisible() const { return m_definition.gridLines; }
    void SetGridLinesVisible(bool pVisible);
    // The tick labels' angle in degrees, -90 to 90 (ChartError 5 otherwise).
    double LabelAngle() const { return m_definition.labelAngle; }
    void SetLabelAngle(double pDegrees);

    // The range drawn by the last frame (after auto-ranging).
    double VisibleMinimum() const;
    double VisibleMaximum() const;

    // How many property writes the axis has taken. Every write invalidates the frame, so callers
    // that set a range over and over write only what differs; this lets them (and tests) see it.
    std::uint64_t WriteCount() const { return m_writes; }

private:
    friend class ChartEngine;
    friend struct EngineState;
    ChartAxis(EngineState& pEngine, bool pHorizontal);
    void Changed();

    EngineState& m_engine;
    bool m_horizontal;
    AxisDefinition m_definition;
    std::uint64_t m_writes = 0;
};

// A point found under the mouse: the series' index and the point's index in it.
struct PointHit {
    int series;
    int index;
};

class ChartEngine : public QObject {
    Q_OBJECT

public:
    // Creates the engine control as a child of pParent, named "mChart".
    explicit ChartEngine(QWidget* pParent);
    ~ChartEngine() override;
    ChartEngine(const ChartEngine&) = delete;
    ChartEngine& operator=(const ChartEngine&) = delete;

    // The engine control, to be placed and sized by its owner; nullptr once something else has
    // deleted it. Without the control the engine keeps its content but draws nothing: rendering
    // gives a null image, hit tests find nothing and printing throws ChartError 91.
    QWidget* Widget() const;
    bool HasControl() const;

    // ---- content ----
    // Replace the whole content (series, titles, axes, legend, backgrounds) with the "Content"
    // section of a definition file (a path or a ":/" resource), or keep the palette's series
    // colours and backgrounds from its "Palette" section. ChartError as definitionfile says.
    void LoadContent(const QString& pPath);
    void LoadPalette(const QString& pPath);
    void ApplyContent(const ContentDefinition& pContent);
    void ApplyPalette(const PaletteDefinition& pPalette);
    const PaletteDefinition& Palette() const;
    // Empties the content: no series, four empty titles.
    void ClearContent();

    int SeriesCount() const;
    ChartSeries& Series(int pIndex);
    // The first series of that name, or nullptr.
    ChartSeries* FindSeries(QStringView pName);
    int TitleCount() const;
    ChartTitle& Title(int pIndex);
    ChartAxis& AxisX();
    ChartAxis& AxisY();

    bool LegendVisible() const;
    void SetLegendVisible(bool pVisible);
    // Whether each frame moves the legend to the corner of the diagram where it covers the
    // fewest points, rather than keeping the content's corner (which still wins a tie). Kept
    // when new content is loaded.
    void SetLegendAvoidsPoints(bool pAvoid);
    // Where the last frame drew the legend, in control pixels; empty when it drew none.
    QRect LegendRect() const;
    QColor BackgroundColour() const;
    void SetBackgroundColour(const QColor& pColour);
    QColor DiagramBackgroundColour() const;
    void SetDiagramBackgroundColour(const QColor& pColour);

    // How labels in the Argument and Value formats write their numbers; the default writes them
    // with QString::number.
    void SetLabelNumberFormat(std::function<QString(double)> pFormat);

    // ---- drawing ----
    // Schedules a redraw of the control (changes schedule one by themselves).
    void Refresh();
    // Draws the chart now into an image of the given size, or of the control's size. A size
    // without area gives a null image.
    QImage Render(const QSize& pSize);
    QImage Render();
    // Draws the chart onto a printer or other paint device at the top-left of its page, at the
    // control's on-screen size when that fits and shrunk to the page keeping the control's
    // proportions when it does not. ChartError 482 when the device cannot be painted on.
    void Print(QPaintDevice& pDevice);
    // The print preview dialog, modal, named "dlgPrintPreview".
    void PrintPreview(QWidget* pParent);

    // ---- hit testing (in control pixels, against the last frame's layout) ----
    // The point nearest to pPosition among the visible series whose marker it touches, within a
    // few pixels of tolerance; a later series wins over an earlier one at equal distance. With
    // pWithTooltipOnly, points without a tooltip text are passed over.
    std::optional<PointHit> HitTest(QPointF pPosition, bool pWithTooltipOnly = false);
    // The tooltip at a position: the text of the nearest point that has one, or empty.
    QString TooltipAt(QPointF pPosition);
    // Where a point is drawn in control pixels (NaN when it is not drawable).
    QPointF PointPosition(int pSeries, int pIndex);
    // How many labels the last frame drew (labels that would overlap others are left out).
    int LabelsDrawn() const;

signals:
    // A mouse button went down on the control: button 1 left, 2 right, 4 middle; modifiers 1
    // Shift, 2 Ctrl, 4 Alt; the position in control pixels, clamped to 16 bits.
    void MouseDown(std::int32_t pButton, std::int32_t pModifiers, std::int16_t pX, std::int16_t pY);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void RequireControl() const;

    std::unique_ptr<EngineState> m_state;
};

} // namespace trv5::platform
