#pragma once

#include <trv5charts/axis.h>
#include <trv5charts/isimpleserializable.h>
#include <trv5charts/series.h>

#include <QColor>
#include <QString>
#include <QWidget>

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

class QAction;
class QContextMenuEvent;
class QFrame;
class QLabel;
class QResizeEvent;

namespace trv5 {

class IPrintDialog;

namespace platform {
class ChartMenu;
class DrawingSurface;
} // namespace platform

namespace rtchart {
struct ColumnWindow;
struct FrameState;
struct PaintMemory;
} // namespace rtchart

// The run progress chart: up to 21 line series plotted by generation (fed one point at a time
// while a run goes on) or by record (handed over in bulk afterwards), against a main value axis
// and an optional secondary one, with an optional horizontal reference line.
//
// Axis and Series objects are shared with the host, which may keep changing them; call Refresh
// after changing data.
//
// Children, by object name: the drawing surface "pic" (the plot area), the context menu "ctxMain"
// with the actions "mnuMain" (copy chart, copy data, separator, print; in that order),
// "sepShowLine" and "mnuShowLine", and the labels "lblLegend" (one per series), "lblOrigin" and
// "lblScale" (bottom and top value of the main and the secondary axis, in that order),
// "lblLineLegend", "lblTick" (value and point numbers), "lblAxisTitle" and the legend's colour
// swatches "shpLegend".
class RTChart : public QWidget, public ISimpleSerializable {
    Q_OBJECT
    Q_PROPERTY(bool ShowRecordsOnToolTip READ ShowRecordsOnToolTip WRITE SetShowRecordsOnToolTip)
    Q_PROPERTY(bool ShowCopyPrint READ ShowCopyPrint WRITE SetShowCopyPrint)
    Q_PROPERTY(bool ShowXAxis READ ShowXAxis WRITE SetShowXAxis)
    Q_PROPERTY(bool SortBothStandardizedSeries READ SortBothStandardizedSeries WRITE
                   SetSortBothStandardizedSeries)
    // The integer colours are the hosts'; form designers edit the same colours as QColor.
    Q_PROPERTY(int BackColor READ BackColor WRITE SetBackColor DESIGNABLE false)
    Q_PROPERTY(QColor backColor READ BackQColor WRITE SetBackQColor)
    Q_PROPERTY(QString Tag READ Tag WRITE SetTag)

public:
    static constexpr int kMaxSeries = 21;
    // The line value that stands for "no line".
    static constexpr double kNoLine = -999999.0;

    explicit RTChart(QWidget* pParent = nullptr);
    ~RTChart() override;

    // Display switches.
    bool ShowRecordsOnToolTip() const { return m_showRecordsOnToolTip; }
    void SetShowRecordsOnToolTip(bool pValue) { m_showRecordsOnToolTip = pValue; }
    bool ShowCopyPrint() const { return m_showCopyPrint; }
    void SetShowCopyPrint(bool pValue) { m_showCopyPrint = pValue; }
    bool ShowXAxis() const { return m_showXAxis; }
    void SetShowXAxis(bool pValue) { m_showXAxis = pValue; }
    // When set, the axis range covers series 0 and series 1 together.
    bool SortBothStandardizedSeries() const { return m_sortBothStandardizedSeries; }
    void SetSortBothStandardizedSeries(bool pValue) { m_sortBothStandardizedSeries = pValue; }
    void SetFixedMaxMin(bool pValue) { m_fixedMaxMin = pValue; }
    bool FixedMaxMin() const { return m_fixedMaxMin; }

    // 0x00BBGGRR, shared by the control and its scale labels.
    std::int32_t BackColor() const { return m_backColor; }
    void SetBackColor(std::int32_t pColour);
    QColor BackQColor() const;
    void SetBackQColor(const QColor& pColour);

    // Stored for the host.
    const QString& Tag() const { return m_tag; }
    void SetTag(const QString& pValue) { m_tag = pValue; }
    const QString& DataField() const { return m_dataField; }
    void SetDataField(const QString& pValue) { m_dataField = pValue; }
    const QString& DataMember() const { return m_dataMember; }
    void SetDataMember(const QString& pValue) { m_dataMember = pValue; }

    // Axes. Either may be left unset; a chart without a main axis draws no data.
    void SetMainYAxis(std::shared_ptr<Axis> pAxis);
    void SetSecondaryYAxis(std::shared_ptr<Axis> pAxis);
    const std::shared_ptr<Axis>& MainYAxis() const { return m_axes[0]; }
    const std::shared_ptr<Axis>& SecondaryYAxis() const { return m_axes[1]; }

    // Adds pSeries (or, when it is null, a new series named pName on the given side) and
    // returns its index. A series passed in keeps its own name and side. Throws ChartError 1111
    // "Too many series" beyond 21 series. The host initialises the series itself.
    std::int32_t AddSeries(std::shared_ptr<Series> pSeries = nullptr,
                           bool pDrawOnSecondaryAxis = false, const QString& pName = QString());
    // The series in slot pIndex (0 to 20), or null. Throws ChartError 9 outside 0 to 20.
    std::shared_ptr<Series> GetSeries(std::int32_t pIndex) const;
    std::int32_t SeriesCount() const { return m_seriesCount; }

    // Bulk setters. A failing step (an index outside 0 to 20, an empty slot, an empty array)
    // ends the operation quietly, keeping what was done before it.
    void SetSeriesData(std::int32_t pIndex, std::span<const double> pData);
    void SetSeriesData2(std::int32_t pIndex, std::span<const double> pData,
                        std::span<const std::int32_t> pIndexes);
    void SetSeriesData3(std::int32_t pIndex, std::span<const double> pData,
                        std::span<const std::int32_t> pIndexes, Replacements pReplacements);
    // Series 0 and 1 together, axis ranges recomputed. When pData1 lies beyond ±90,000,000 it
    // is standardized and shown in both series (pData2 is then not used).
    void SetSeriesData4(std::span<const double> pData1, std::span<const double> pData2,
                        std::span<const std::int32_t> pIndexes, Replacements pReplacements1,
                        Replacements pReplacements2);
    // Series 0 the target, series 1 the model. A model beyond ±90,000,000 is standardized and
    // the target is mapped onto the standardized model's two extremes; both series then keep
    // the original arrays for export.
    void SetSeriesDataWithReplacement(std::span<const double> apModel,
                                      std::span<const double> pTarget,
                                      std::span<const std::int32_t> pIndexes,
                                      Replacements pReplacements);
    // Series 0 alone; only series 0 is drawn afterwards.
    void SetSeriesData5(std::span<const double> pData, std::span<const std::int32_t> pIndexes,
                        Replacements pReplacements);
    // Throws ChartError 9 outside 0 to 20 and 91 for an empty slot.
    void ClearSeriesData(std::int32_t pIndex);
    // The next generation's value of a drip-feed series. Throws ChartError 9 outside 0 to 20 or
    // when the series has no slot left, 91 for an empty slot.
    void AddPoint(std::int32_t pIndex, double pValue);
    // Marker shape and continuity of a series; nothing happens for an empty slot.
    void SetPoint(std::int32_t pIndex, PointType pPoint);
    void SetDataType(std::int32_t pIndex, XSeriesDataType pDataType);

    // Redraws the chart now: lays it out for its size and draws the series into the plot.
    void Refresh();
    // Marks the data as unchanged (nothing is drawn) and repaints.
    void Clear();
    // Empties every series and forgets them; axes and series objects stay where they are.
    void Reset();

    // The generation of the newest point, used to number the rows of the exported data.
    void SetLastGenerationForCopy(std::int32_t pLastGeneration);
    std::int32_t LastGenerationForCopy() const { return m_lastGeneration; }

    // The horizontal reference line (for example a target fitness), with a legend and a menu
    // entry that lets the user switch it on and off.
    void AddHorizontalLine(double pValue, const QString& pLegendText, const QString& pMenuCaption);
    void UpdateHorizontalLine(double pValue);
    void HideHorizontalLine();
    void StopAddingHorizontalLine();
    // The menu entry's action: toggles the check mark and with it the line, then redraws.
    void ToggleHorizontalLine();
    bool LineShown() const { return m_lineShown; }
    double LineValue() const { return m_lineValue; }
    std::int32_t LineColour() const { return m_lineColour; }
    QString LineLegendText() const;
    bool IsLineLegendVisible() const;
    bool IsLineMenuVisible() const;
    bool IsLineMenuChecked() const;
    QString LineMenuCaption() const;

    // Legend captions in label order, visible labels only.
    QStringList LegendCaptions() const;
    // True while data changed since the last Clear; nothing is drawn otherwise.
    bool DataChanged() const { return m_dataChanged; }
    bool SingleSeries() const { return m_singleSeries; }

    // <rtchart seriescount='N' lastgeneration='G' linevalue='V'><chartaxis>…</chartaxis>
    // <dataseries>…</dataseries></rtchart>. Empty if writing fails.
    QString ToString() override;
    // Reads axes, series, last generation and line. Series are appended to those already held.
    void FromString(const QString& pText) override;
    bool IsTypeOf(const QString& pText) override;

    // The data as tab-separated text, one column per series and CR LF between rows: by
    // generation, or by record when series 0 carries record indexes. Numbers in the user's
    // locale. Empty without series.
    QString GetChartDataAsString();

    // The chart's picture to the clipboard (the menu closed first), as the menu's copy does.
    void EditCopy();
    // The dialog the menu's print command shows; null returns to the Qt print dialog.
    void SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog);
    // A modal preview of the page the menu's print command prints.
    void PrintPreview();

signals:
    // The menu's print command could not print, for a reason the user should hear of (no
    // printer, a file that cannot be written); a cancel is not reported. The chart itself
    // shows nothing.
    void PrintFailed(const QString& pMessage);

protected:
    void resizeEvent(QResizeEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    // A right click or the keyboard's menu key: the context menu.
    void contextMenuEvent(QContextMenuEvent* pEvent) override;
    // Mouse moves over the plot set its tooltip.
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    // The paint procedure: layout, then the plot, whole or only where points were appended.
    void DrawChart();
    void DrawPlot(const rtchart::ColumnWindow* pWindow);
    rtchart::FrameState CaptureFrame() const;
    void ApplyLayout();
    void DrawGrid();
    void OnMenuCommand(int pIndex);
    void ApplyLineCheck();
    void UpdateToolTip(double pX, double pY);
    QString PointToolTip(std::int32_t pSeriesIndex, double pUserX) const;
    std::int32_t DrawnSeriesCount() const;
    Series& SlotAt(std::int32_t pIndex) const;
    bool NeedsStandardizing(std::span<const double> pValues) const;
    std::vector<double> StandardizeForChart(std::span<const double> pValues);
    void GiveData(Series& pSeries, std::span<const double> pData,
                  std::span<const std::int32_t> pIndexes, const Replacements& pReplacements);
    void RecomputeAxisRanges();
    void AppendXml(std::string& pOut);
    // The most value slots any series of the chart holds: what bounds the rows of the export.
    std::size_t MostValuesHeld() const;
    void AppendGenerationRows(std::string& pOut);
    void AppendRecordRows(std::string& pOut);
    void ApplyBackColor(QWidget* pWidget) const;

    bool m_showRecordsOnToolTip = false;
    bool m_showCopyPrint = true;
    bool m_showXAxis = false;
    std::array<std::shared_ptr<Axis>, 2> m_axes;
    std::array<std::shared_ptr<Series>, kMaxSeries> m_series;
    bool m_dataChanged = false;
    std::int32_t m_seriesCount = 0;
    std::int32_t m_lastGeneration = 0;
    bool m_sortBothStandardizedSeries = false;
    bool m_fixedMaxMin = false;
    bool m_lineShown = false;
    double m_lineValue = 0.0;
    std::int32_t m_lineColour;
    bool m_singleSeries = false;
    bool m_recolouring = false;

    std::int32_t m_backColor = 0xFFFFFF;
    QString m_tag;
    QString m_dataField;
    QString m_dataMember;

    platform::DrawingSurface* pic = nullptr;
    QFrame* fraPlot = nullptr;
    platform::ChartMenu* ctxMain = nullptr;
    QAction* mnuShowLine = nullptr;
    QAction* sepShowLine = nullptr;
    // Grid lines of the last layout: main axis values and point indexes.
    std::vector<double> m_gridY;
    std::vector<double> m_gridX;
    // Tick labels of the main axis, the secondary axis and the point numbers.
    std::array<std::vector<QLabel*>, 3> m_tickLabels;
    std::array<QLabel*, 2> lblAxisTitle{};
    // The short lines in front of the legend entries; the last one in use is the line's.
    std::vector<QFrame*> m_legendSwatches;

    // The last frame and layout, so that a Refresh redraws only what changed.
    std::unique_ptr<rtchart::PaintMemory> m_painted;

    std::vector<QLabel*> lblLegend;
    std::array<QLabel*, 2> lblOrigin{};
    std::array<QLabel*, 2> lblScale{};
    QLabel* lblLineLegend = nullptr;
};

} // namespace trv5
