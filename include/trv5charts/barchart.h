#pragma once

#include <trv5charts/isimpleserializable.h>

#include <QString>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

class QContextMenuEvent;
class QMouseEvent;
class QResizeEvent;

namespace trv5 {

class IPrintDialog;

namespace platform {
class ChartMenu;
class DrawingSurface;
class XmlDocument;
} // namespace platform

// The layout of a BarChart. The name is kept as hosts spell it.
enum SimpleBartChartType : std::int32_t { ctMultiVerticalBars = 0, ctSingleHorizontal = 1 };

// A small self-drawn chart: a row of vertical bars against a common maximum (for example how
// often each variable of a model is used), or one horizontal bar as a gauge.
//
// The host calls Init, hands in values with SetDoubleData or SetLongData (SetLongHValue for the
// gauge) and calls Redraw. The chart draws a grey rounded frame on its own surface and the bars
// on the picture `pic` inside it; the value under the mouse shows in the picture's tool tip, and
// a right click (or the keyboard's menu key) opens a menu that copies the picture or the values,
// or prints the picture. Its state is a `SimpleBarChart` XML fragment.
//
// Two getters keep side effects that hosts have always relied on: RoundedCorner() and
// BackColor(). Their Qt properties read the stored values without side effects, so that Qt
// Designer and other property readers change nothing.
class BarChart : public QWidget, public ISimpleSerializable {
    Q_OBJECT
    Q_PROPERTY(bool ShowCopyPrint READ ShowCopyPrint WRITE SetShowCopyPrint)
    Q_PROPERTY(QString DataPointName READ DataPointName WRITE SetDataPointName)
    // Single precision like the chart's state, but published as double: .ui files have no
    // element for float and would drop the value silently.
    Q_PROPERTY(double HMarginPercent READ HMarginPercentProperty WRITE SetHMarginPercentProperty)
    Q_PROPERTY(double MaxValue READ MaxValueProperty WRITE SetMaxValueProperty)
    // The integer colours are the hosts'; form designers edit the same colours as QColor.
    Q_PROPERTY(int BarColor READ BarColor WRITE SetBarColor DESIGNABLE false)
    Q_PROPERTY(QColor barColor READ BarQColor WRITE SetBarQColor)
    Q_PROPERTY(int Columns READ Columns WRITE SetColumns)
    Q_PROPERTY(int RoundedCorner READ StoredRoundedCorner WRITE SetRoundedCorner)
    Q_PROPERTY(int BackColor READ StoredBackColor WRITE SetBackColor DESIGNABLE false)
    Q_PROPERTY(QColor backColor READ BackQColor WRITE SetBackQColor)
    Q_PROPERTY(QString Tag READ Tag WRITE SetTag)

public:
    // Which value array is current: the standard variant type codes.
    static constexpr std::int32_t kLongValues = 3;
    static constexpr std::int32_t kDoubleValues = 5;

    explicit BarChart(QWidget* pParent = nullptr);
    ~BarChart() override;
    BarChart(const BarChart&) = delete;
    BarChart& operator=(const BarChart&) = delete;

    // ---- properties; writing one does not redraw ----
    bool ShowCopyPrint() const { return m_showCopyPrint; }
    void SetShowCopyPrint(bool pValue) { m_showCopyPrint = pValue; }
    // Put before each value in tool tips ("Uses: " gives " Uses: 12 ") and, without trailing
    // blanks and colons, as the header line of the copied values.
    const QString& DataPointName() const { return m_dataPointName; }
    void SetDataPointName(const QString& pValue) { m_dataPointName = pValue; }
    // Left margin of the bar area as a fraction of the control's width (0.1 is 10 %).
    float HMarginPercent() const { return m_hMarginPercent; }
    void SetHMarginPercent(float pValue) { m_hMarginPercent = pValue; }
    // The value that reaches the top edge (vertical bars) or the right end (the gauge).
    float MaxValue() const { return m_maxValue; }
    void SetMaxValue(float pValue) { m_maxValue = pValue; }
    // The two single-precision properties as Qt sees them.
    double HMarginPercentProperty() const { return m_hMarginPercent; }
    void SetHMarginPercentProperty(double pValue);
    double MaxValueProperty() const { return m_maxValue; }
    void SetMaxValueProperty(double pValue);
    // 0x00BBGGRR.
    std::int32_t BarColor() const { return m_barColor; }
    void SetBarColor(std::int32_t pValue) { m_barColor = pValue; }
    QColor BarQColor() const;
    void SetBarQColor(const QColor& pColour);
    // The background as a colour, without the side effects of BackColor().
    QColor BackQColor() const;
    void SetBackQColor(const QColor& pColour);

    // The number of bars. Setting 0 is ignored; a gauge always has one column whatever is set;
    // for vertical bars the picture's horizontal scale becomes the column count.
    std::int32_t Columns() const { return m_columns; }
    void SetColumns(std::int32_t pValue);

    // Corner size of the frame and inset of the bar area, in pixels.
    void SetRoundedCorner(std::int32_t pValue) { m_roundedCorner = pValue; }
    // Hands the corner size to SetColumns (with its effects) and returns 0.
    std::int32_t RoundedCorner();

    // Background of the chart and of its picture; shows from the next drawing on.
    void SetBackColor(std::int32_t pValue);
    // Hands the picture's foreground colour to SetBarColor and returns 0.
    std::int32_t BackColor();

    // Stored for the host.
    const QString& Tag() const { return m_tag; }
    void SetTag(const QString& pValue) { m_tag = pValue; }
    const QString& DataField() const { return m_dataField; }
    void SetDataField(const QString& pValue) { m_dataField = pValue; }
    const QString& DataMember() const { return m_dataMember; }
    void SetDataMember(const QString& pValue) { m_dataMember = pValue; }

    // The control surface's scale: widget pixels (scale mode 3).
    double ScaleWidth() const;
    double ScaleHeight() const;
    std::int32_t ScaleMode() const { return kPixelScaleMode; }
    // Lengths between the surface's scale modes, 0 (user) and 3 (pixels); they are the same here.
    double ScaleX(double pWidth, std::int32_t pFromScale = kPixelScaleMode,
                  std::int32_t pToScale = kPixelScaleMode) const;
    double ScaleY(double pHeight, std::int32_t pFromScale = kPixelScaleMode,
                  std::int32_t pToScale = kPixelScaleMode) const;

    // ---- state the host hands in ----
    SimpleBartChartType ChartType() const { return m_chartType; }
    std::int32_t ValuesType() const { return m_valuesType; }
    // 1 once values were handed in through SetDoubleData, SetLongData or SetLongHValue.
    std::int32_t HasData() const { return m_hasData; }
    std::span<const double> DoubleData() const { return m_doubleData; }
    std::span<const std::int32_t> LongData() const { return m_longData; }

    // Does nothing when pMaxValue is 0. A gauge (ctSingleHorizontal) takes whole-number values
    // and starts at 0. Lays the picture out again, redrawing when values were handed in. Throws
    // ChartError 6 when the margin puts the picture beyond any possible widget position.
    void Init(std::int32_t pColumns, float pMaxValue, SimpleBartChartType pChartType,
              std::int32_t pValuesType, float pHMarginPercent);
    // Copy the values (one per column) and make them current; nothing is redrawn.
    void SetDoubleData(std::span<const double> pValues);
    void SetLongData(std::span<const std::int32_t> pValues);
    // The gauge's value, then Redraw; nothing happens while MaxValue is 0. Throws ChartError 9
    // when the chart was not initialised as a gauge and has no value slot.
    void SetLongHValue(std::int32_t pValue);

    // Draws the frame and the bars. A chart whose values are missing (fewer than Columns) or
    // that cannot be drawn shows an empty picture, never a partial one.
    void Redraw();
    // Wipes the picture; the values stay.
    void Clear();
    // Back to the state of a new chart, except RoundedCorner, BarColor and ShowCopyPrint.
    void Reset();

    // The bar under a point of the control (in the control's coordinates): its column for
    // vertical bars, 0 for the horizontal bar, -1 where no bar is drawn. What the tool tip
    // shows a value for, for hosts that explain a bar in their own words.
    std::int32_t BarAt(const QPoint& pPosition) const;

    // ---- menu commands ----
    // The control's picture to the clipboard.
    void CopyChart();
    // The values as text to the clipboard: the header line, then the values separated by tabs.
    // Nothing happens before values were handed in or when there is no value to copy.
    void CopyChartData();
    // The control's picture to the printer chosen in the print dialog, at its on-screen size or
    // shrunk to the page. A failure (no printer, a file that cannot be written) is reported by
    // PrintFailed; a cancel ends it silently.
    void PrintChart();
    // A modal preview of the page PrintChart prints.
    void PrintPreview();
    // Lets a host or a test answer the print dialog; nullptr returns to the Qt dialog.
    void SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog);

    // ---- ISimpleSerializable ----
    // <SimpleBarChart name='…' type='…' valuestype='…' hmargins='…' corner='…'><datapoints
    // Columns='…' MaxValue='…'><datapoint value='…'/>…</datapoints></SimpleBarChart>; the
    // data points only once values were handed in. The name is the widget's objectName().
    QString ToString() override;
    void FromString(const QString& pText) override;
    bool IsTypeOf(const QString& pText) override;

signals:
    // The print command could not print, for a reason the user should hear of; pMessage says
    // which printer or file failed. The chart itself shows nothing.
    void PrintFailed(const QString& pMessage);

protected:
    void resizeEvent(QResizeEvent* pEvent) override;
    // A background that follows the palette is drawn again in a new palette's colours.
    void changeEvent(QEvent* pEvent) override;
    void contextMenuEvent(QContextMenuEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    static constexpr std::int32_t kPixelScaleMode = 3;

    std::int32_t StoredRoundedCorner() const { return m_roundedCorner; }
    std::int32_t StoredBackColor() const;

    // The resize layout: places `pic` inside the frame, then redraws when values were handed in.
    void LayOut();
    void PlacePicture();
    void Draw();
    void DrawVerticalBars();
    void DrawTouchingBars();
    void DrawHorizontalBar();
    void ClearPicture() noexcept;
    void OnMenu(int pIndex);
    void UpdateToolTip(double pPixelX, double pPixelY);
    QString ToolTipAt(double pX, double pY) const;
    // The bar under a point of the picture in its scale units, as BarAt.
    std::int64_t BarUnder(double pX, double pY) const;

    // The value of bar pIndex in the current array; ChartError 9 beyond its end.
    double BarValue(std::int64_t pIndex) const;
    // The value in saved-state text: fixed-culture numbers or plain whole numbers; ChartError 9
    // beyond the end of the current array. Other value kinds append nothing and return false.
    bool AppendValue(std::string& pOut, std::int64_t pIndex) const;
    QString DataText() const;
    void WriteState(std::string& pOut) const;
    void ReadState(const platform::XmlDocument& pDocument);

    // Child objects: the control surface under the frame, and the picture on top of it.
    platform::DrawingSurface* m_surface;
    platform::DrawingSurface* m_pic;
    platform::ChartMenu* m_menu;

    float m_hMarginPercent = 0.0F;
    QString m_dataPointName;
    std::int32_t m_valuesType = 0;
    std::int32_t m_columns = 0;
    float m_maxValue = 0.0F;
    SimpleBartChartType m_chartType = ctMultiVerticalBars;
    std::int32_t m_barColor = 0;
    std::int32_t m_roundedCorner = 1;
    std::vector<double> m_doubleData;
    std::vector<std::int32_t> m_longData;
    std::int32_t m_hasData = 0;
    bool m_showCopyPrint = true;
    bool m_recolouring = false;

    QString m_tag;
    QString m_dataField;
    QString m_dataMember;
};

} // namespace trv5
