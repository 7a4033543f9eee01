#pragma once

#include <trv5charts/capture.h>

#include <QColor>
#include <QFont>
#include <QSize>
#include <QString>
#include <QWidget>

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

class QContextMenuEvent;
class QLabel;

namespace trv5 {

namespace platform {
class ChartMenu;
class DrawingSurface;
} // namespace platform

namespace roc {
struct Layout;
} // namespace roc

class VerticalLabel;

// A receiver operating characteristic curve that the host has computed: the points as parallel
// arrays of false-positive and true-positive rates, and separately the area under the curve.
// The chart draws a square plot with the dotted diagonal of a guessing classifier, the curve,
// tick labels in tenths, axis titles, a legend and the AUC figures, and offers a context menu
// to copy the chart as a picture or its data as text.
//
// Below the size its texts need, the chart keeps its plot readable: tick labels thin out to
// every second one and then go, the axis titles drop whole words from their ends, and the
// legend with the AUC figures takes smaller fonts or, at the last, makes way.
//
// The host calls SetDataSource, SetAUC and then Refresh. The chart never reports an error:
// a curve it cannot draw leaves an empty plot.
class ROCChart : public QWidget {
    Q_OBJECT
    // The integer colours are the hosts'; form designers edit the same colours as QColor.
    Q_PROPERTY(int ROCColor READ ROCColor WRITE SetROCColor DESIGNABLE false)
    Q_PROPERTY(QColor rocColor READ ROCQColor WRITE SetROCQColor)
    Q_PROPERTY(int DiagonalColor READ DiagonalColor WRITE SetDiagonalColor DESIGNABLE false)
    Q_PROPERTY(QColor diagonalColor READ DiagonalQColor WRITE SetDiagonalQColor)
    Q_PROPERTY(int LabelsColor READ LabelsColor WRITE SetLabelsColor DESIGNABLE false)
    Q_PROPERTY(QColor labelsColor READ LabelsQColor WRITE SetLabelsQColor)
    Q_PROPERTY(int FrameColor READ FrameColor WRITE SetFrameColor DESIGNABLE false)
    Q_PROPERTY(QColor frameColor READ FrameQColor WRITE SetFrameQColor)
    Q_PROPERTY(int BackColor READ BackColor WRITE SetBackColor DESIGNABLE false)
    Q_PROPERTY(QColor backColor READ BackQColor WRITE SetBackQColor)
    Q_PROPERTY(int ForeColor READ ForeColor WRITE SetForeColor DESIGNABLE false)
    Q_PROPERTY(QColor foreColor READ ForeQColor WRITE SetForeQColor)
    Q_PROPERTY(bool ShowTooltip READ ShowTooltip WRITE SetShowTooltip)

public:
    explicit ROCChart(QWidget* pParent = nullptr);
    ~ROCChart() override;
    ROCChart(const ROCChart&) = delete;
    ROCChart& operator=(const ROCChart&) = delete;

    // Shows or hides the "1 - AUC:" pair; Refresh applies the value again at its end.
    void SetInverted(bool pValue);
    // The plot's share of the height in percent, 0 for automatic; lays the chart out again.
    void SetHeightPercent(float pValue);

    // Colours are 0x00BBGGRR or system colour codes. The curve's and the diagonal's colours
    // also colour their legend samples; the others take effect at the next Refresh.
    std::int32_t ROCColor() const { return m_rocColor; }
    void SetROCColor(std::int32_t pColour);
    std::int32_t DiagonalColor() const { return m_diagonalColor; }
    void SetDiagonalColor(std::int32_t pColour);
    std::int32_t LabelsColor() const { return m_labelsColor; }
    void SetLabelsColor(std::int32_t pColour) { m_labelsColor = pColour; }
    std::int32_t FrameColor() const { return m_frameColor; }
    void SetFrameColor(std::int32_t pColour) { m_frameColor = pColour; }
    // The background of the control, its plot, vertical title and legend.
    std::int32_t BackColor() const { return m_backColor; }
    void SetBackColor(std::int32_t pColour);
    // The colour of the titles, legend captions and AUC figures.
    std::int32_t ForeColor() const { return m_foreColor; }
    void SetForeColor(std::int32_t pColour);

    // The colours above as QColor, for form designers.
    QColor ROCQColor() const;
    void SetROCQColor(const QColor& pColour);
    QColor DiagonalQColor() const;
    void SetDiagonalQColor(const QColor& pColour);
    QColor LabelsQColor() const;
    void SetLabelsQColor(const QColor& pColour);
    QColor FrameQColor() const;
    void SetFrameQColor(const QColor& pColour);
    QColor BackQColor() const;
    void SetBackQColor(const QColor& pColour);
    QColor ForeQColor() const;
    void SetForeQColor(const QColor& pColour);
    // The font of the control, its plot and its tick labels.
    QFont Font() const { return font(); }
    void SetFont(const QFont& pFont);
    // Whether the context menu opens (right click, menu key, Shift+F10).
    bool ShowTooltip() const { return m_showMenu; }
    void SetShowTooltip(bool pValue) { m_showMenu = pValue; }

    // Copies the rates. A FP rate of -1 or less breaks the curve after that point. Nothing is
    // drawn until Refresh.
    void SetDataSource(std::span<const double> pValues1, std::span<const double> pValues2);
    // The area under the curve and 1 - AUC with up to six decimals; exactly -1 shows
    // "UNDEFINED".
    void SetAUC(double pAUC);
    // Draws the frame and tick labels, and the diagonal and the curve when data was set since
    // the last Reset.
    void Refresh();
    // Puts the chart's picture on the clipboard.
    void EditCopy();
    // Hides the AUC figures, draws the empty chart with its diagonal and forgets that data was
    // set (the rates are kept for the next Refresh after SetDataSource).
    void Reset();
    // An extra checked menu entry with the caption pMessage, below a separator.
    void ShowMenuWithQuantity(const QString& pMessage);
    void HideMenuWithQuantity();

    // The print dialog the menu's print command shows; nullptr returns to the Qt dialog.
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
    void contextMenuEvent(QContextMenuEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;

private:
    enum class PlotContent { Nothing, Diagonal, Curve };

    void CreateLegend();
    void CreateAucLabels();
    // Places the children and draws everything for the current size.
    void ApplyLayout();
    void PlaceChildren();
    void PlaceLegendColumn(const roc::Layout& pLayout);
    // Draws the frame and, as the plot content says, the diagonal and the curve; false when
    // the curve could not be drawn (the plot is then left empty).
    bool Redraw();
    void DrawLegendSamples();
    void SetTickTexts();
    void ApplyInverted();
    void ApplyTextColours();
    void DescribeData();
    void OnMenuItem(int pIndex);
    void CopyChartData();

    platform::DrawingSurface* m_surface = nullptr;
    platform::DrawingSurface* pic = nullptr;
    std::array<QLabel*, 11> lblX{};
    std::array<QLabel*, 11> lblY{};
    QLabel* lblHLegend = nullptr;
    VerticalLabel* vlLegend = nullptr;
    platform::DrawingSurface* picLegend = nullptr;
    platform::DrawingSurface* lnROCCurve = nullptr;
    QLabel* lblROCCurve = nullptr;
    platform::DrawingSurface* lnBaseline = nullptr;
    QLabel* lblBaseline = nullptr;
    QLabel* lblAucLabel = nullptr;
    QLabel* lblAUC = nullptr;
    QLabel* lbl1MinusAucLabel = nullptr;
    QLabel* lbl1MinusAuc = nullptr;
    QLabel* lblRecords = nullptr;
    platform::ChartMenu* ctxMain = nullptr;

    std::int32_t m_rocColor = 0x0000FF;
    std::int32_t m_diagonalColor = 0x000000;
    std::int32_t m_labelsColor = 0x000000;
    std::int32_t m_backColor = 0xFFFFFF;
    std::int32_t m_foreColor = 0x000000;
    bool m_recolouring = false;
    std::int32_t m_frameColor = 0x000000;
    float m_heightPercent = 0.0F;
    bool m_inverted = false;
    bool m_showMenu = true;
    bool m_quantityShown = false;
    bool m_dataChanged = false;
    PlotContent m_content = PlotContent::Nothing;
    QSize m_layoutSize{-1, -1};
    std::vector<double> m_fpRates;
    std::vector<double> m_tpRates;
};

} // namespace trv5
