#pragma once

#include <trv5charts/capture.h>
#include <trv5charts/idisposable.h>

#include <QString>
#include <QVariantMap>
#include <QWidget>

#include <cstdint>
#include <memory>

class QPaintDevice;

namespace trv5 {

namespace platform {
class ChartEngine;
}

// What the charts on the chart engine share: the engine control (named "mChart") placed with a
// 5-pixel margin and framed by a one-pixel border, the definition and palette files, legend, axis
// titles and grid lines, copy, print and disposal. A chart derives from it, names its default
// definition (a Qt resource) and fills the engine's series in its own setters.
//
// Errors of the engine (a definition file that is missing or malformed, a printer that cannot
// start) reach the caller as ChartError.
class HostedChartFrame : public QWidget, public IDisposable {
    Q_OBJECT
    Q_PROPERTY(bool DrawBorder READ DrawBorder WRITE SetDrawBorder)

public:
    ~HostedChartFrame() override;
    HostedChartFrame(const HostedChartFrame&) = delete;
    HostedChartFrame& operator=(const HostedChartFrame&) = delete;

    // Loads the "Content" section of a definition file into the engine: a file path, a Qt
    // resource path, or empty for the chart's own default definition. Then the chart sets its
    // colours and keeps its captions.
    void Init(const QString& pDefinitionFilePath);
    // Loads the "Palette" section of a file (empty: the chart's default definition).
    void LoadPalette(const QString& pPalettePath);

    void ShowLegend();
    void HideLegend();
    // Titles 2 and 3, the horizontal and the vertical axis caption.
    void ShowAxisTitles();
    void HideAxisTitles();
    void ShowGridlines();
    void HideGridlines();

    // GetChartDataAsString as plain text on the clipboard; nothing when the engine holds no
    // series.
    void CopyData();
    // The engine control's picture on the clipboard.
    void CopyImage();
    // The chart's data as tab-separated text with CR LF line ends.
    virtual QString GetChartDataAsString() = 0;

    // Asks the print dialog (SetPrintDialog) and prints the chart on the chosen printer or PDF
    // file, scaled to the page; nothing when the dialog is cancelled.
    void PrintChart();
    // Prints onto a printer (or any paint device) set up by the host's own dialog; a null
    // device prints as PrintChart does.
    void PrintChart2(QPaintDevice* pPrinterDevice);
    // The print preview dialog (modal).
    void PrintPreview();
    // nullptr returns to the Qt print dialog.
    void SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog);

    // Whether a one-pixel frame is drawn around the engine control; persisted.
    bool DrawBorder() const { return m_drawBorder; }
    void SetDrawBorder(bool pDrawBorder);
    // The property bag: "DrawBorder" (default true) is the one persisted property.
    void ReadProperties(const QVariantMap& pProperties);
    void WriteProperties(QVariantMap& pProperties) const;

    // Empties the engine's content.
    void Dispose() override;
    // Removes the chart's data (per chart).
    virtual void Clear() = 0;

    // The engine the chart drives; also how tests look at the series, titles and axes.
    platform::ChartEngine& Engine() { return *mChart; }

signals:
    // A mouse button went down on the engine control: button (1 left, 2 right, 4 middle), shift
    // state (1 Shift, 2 Ctrl, 4 Alt) and the position in the control's pixels.
    void MouseDown(std::int32_t pButton, std::int32_t pShift, std::int16_t pX, std::int16_t pY);

protected:
    // pDefaultDefinition is the resource used by Init("").
    HostedChartFrame(QString pDefaultDefinition, QWidget* pParent);

    // The chart's part of Init, run after the content is loaded.
    virtual void AfterInit() {}
    // Places the engine control and redraws the border: the resize, which the charts also run
    // after new data.
    void LayoutEngine();

    void resizeEvent(QResizeEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    QString DefinitionPath(const QString& pPath) const;
    void SetAxisTitlesVisible(bool pVisible);
    void SetGridlinesVisible(bool pVisible);

    std::unique_ptr<platform::ChartEngine> mChart;
    QString m_defaultDefinition;
    bool m_drawBorder = true;
    std::shared_ptr<IPrintDialog> m_printDialog;
};

} // namespace trv5
