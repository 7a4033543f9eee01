#pragma once

#include <trv5charts/isimpleserializable.h>
#include <trv5charts/popupmenuitem.h>

#include <QColor>
#include <QString>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

class QContextMenuEvent;
class QEvent;
class QResizeEvent;

namespace trv5 {

class IConfig;
class IPrintDialog;

namespace blocks {
class BlockGrid;
class BlockView;
} // namespace blocks

namespace platform {
class XmlDocument;
} // namespace platform

// How a BlockPanel colours its blocks.
enum UsageMode : std::int32_t { umHeatMap = 0, umRandomColour = 1, umMonochromatic = 2 };

// The usage block panel: one square block per item (for example per input variable of a model
// population), coloured by how often the item is used. Blocks fill a grid in reading order with
// the largest side that fits the picture; a block of count 0 is absent and takes the absent
// colour of the mode.
//
// Colours by mode, U being the largest count:
//  - umHeatMap: the hue and brightness of the settings "Run.UsageChart.HeatMap.H" and ".B", the
//    saturation u x "Run.UsageChart.HeatMap.S.Factor" / U (1 to 100), so that the most used
//    item is the most saturated; the settings are read at every redraw.
//  - umRandomColour: a fixed colour per item index, the same in every panel and every run.
//  - umMonochromatic: BlockColour.
//
// The host calls Init, hands in counts (and names) with SetUsage and calls Redraw. The count
// under the mouse shows as a tool tip; a right click or the menu key opens a menu that copies
// the picture or the counts, or prints the picture. Its state is a `BlockPanel` XML fragment.
class BlockPanel : public QWidget, public ISimpleSerializable {
    Q_OBJECT
    Q_PROPERTY(bool ShowCopyPrint READ ShowCopyPrint WRITE SetShowCopyPrint)
    Q_PROPERTY(QString DataPointName READ DataPointName WRITE SetDataPointName)
    // The integer colour is the hosts'; form designers edit the same colour as a QColor.
    Q_PROPERTY(int BlockColour READ BlockColour WRITE SetBlockColour DESIGNABLE false)
    Q_PROPERTY(QColor blockColour READ BlockQColor WRITE SetBlockQColor)

public:
    explicit BlockPanel(QWidget* pParent = nullptr);
    ~BlockPanel() override;
    BlockPanel(const BlockPanel&) = delete;
    BlockPanel& operator=(const BlockPanel&) = delete;

    // ---- properties; writing one does not redraw ----
    bool ShowCopyPrint() const { return m_showCopyPrint; }
    void SetShowCopyPrint(bool pValue) { m_showCopyPrint = pValue; }
    // The header of the copied counts ("Usage"), without blanks and trailing colons.
    const QString& DataPointName() const { return m_dataPointName; }
    void SetDataPointName(const QString& pValue) { m_dataPointName = pValue; }
    // The colour of umMonochromatic, 0x00BBGGRR.
    std::int32_t BlockColour() const { return m_blockColour; }
    void SetBlockColour(std::int32_t pValue) { m_blockColour = pValue; }
    QColor BlockQColor() const;
    void SetBlockQColor(const QColor& pColour);

    UsageMode ChartMode() const { return m_mode; }
    // Stores the mode and its absent colour: white for umHeatMap and umMonochromatic without
    // any lookup, otherwise the setting "Run.UsageChart.AbsentColor." + the mode number. When
    // that lookup fails, its ChartError (91 without a configuration, 5 for a missing key)
    // reaches the caller and the mode stays as it was; a mode outside 0 to 2 is ChartError 5.
    void SetChartMode(UsageMode pMode);
    std::int32_t AbsentColour() const { return m_absentColour; }

    // ---- state the host hands in ----
    std::int64_t ItemCount() const { return static_cast<std::int64_t>(m_counts.size()); }
    std::span<const std::int32_t> Usage() const { return m_counts; }
    // Empty when the panel has no names.
    std::span<const QString> Names() const { return m_names; }
    // The name the tool tip and the copied counts give item pIndex: its own, or "Item n"
    // counting from 1 when the panel has no names.
    QString ItemName(std::int64_t pIndex) const;

    // Stores pConfig in the library-wide settings slot (every time, whatever follows), then
    // sizes the panel for pCount items, all counts 0 and no names. A negative count is
    // ChartError 5 and leaves the panel as it was. Nothing is redrawn.
    void Init(std::shared_ptr<IConfig> pConfig, std::int32_t pCount);
    // Replaces the counts (and drops the names); the item count becomes the array's length.
    // A negative count is ChartError 5 and changes nothing. Nothing is redrawn.
    void SetUsage(std::span<const std::int32_t> pCounts);
    // The same with one name per count; names of another length are ChartError 5.
    void SetUsage(std::span<const std::int32_t> pCounts, std::span<const QString> pNames);

    // Draws the frame and the blocks. A panel that cannot be drawn (a heat-map setting missing)
    // shows an empty picture, never a partial one.
    void Redraw();
    // Wipes the picture; the counts stay.
    void Clear();
    // No items; mode and colours stay.
    void Reset();

    // ---- menu commands ----
    // The control's picture to the clipboard.
    void EditCopy();
    // The counts as text to the clipboard; nothing happens for an empty panel.
    void CopyChartData();
    // The control's picture to the printer chosen in the print dialog, at its on-screen size or
    // shrunk to the page; a failure is reported by PrintFailed.
    void EditPrint();
    // A modal preview of the page EditPrint prints.
    void PrintPreview();
    // Lets a host or a test answer the print dialog; nullptr returns to the Qt dialog.
    void SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog);
    // "Item\t<DataPointName>", then one line per item: name, tab, count; lines separated by CR
    // LF, none after the last. Empty for an empty panel.
    QString GetChartDataAsString() const;

    // ---- ISimpleSerializable ----
    // <BlockPanel chartmode='M' count='N'><block name="…" usage="u"/>…</BlockPanel>
    QString ToString() override;
    // Reads by position (chartmode, count; each block's name and usage), applies the mode
    // through SetChartMode and redraws. Damaged text keeps what was read before the damage.
    void FromString(const QString& pText) override;
    bool IsTypeOf(const QString& pText) override;

signals:
    // The print command could not print; pMessage says which printer or file failed. The panel
    // itself shows nothing, and a cancelled print dialog is no failure.
    void PrintFailed(const QString& pMessage);

protected:
    void resizeEvent(QResizeEvent* pEvent) override;
    // Drawn again in a new palette's colours.
    void changeEvent(QEvent* pEvent) override;
    void contextMenuEvent(QContextMenuEvent* pEvent) override;

private:
    void Draw();
    void ClearPicture() noexcept;
    // The tool tip over a device pixel of the picture.
    QString ToolTipAt(int pX, int pY) const;
    void WriteState(std::string& pOut) const;
    void ReadState(const platform::XmlDocument& pDocument);

    std::unique_ptr<blocks::BlockView> m_view;
    // The grid of the last drawing, for the tool tip; empty when nothing is drawn.
    std::unique_ptr<blocks::BlockGrid> m_grid;

    UsageMode m_mode = umHeatMap;
    std::vector<std::int32_t> m_counts;
    std::vector<QString> m_names;
    std::int32_t m_blockColour = 0xB48246; // RGB(70, 130, 180)
    std::int32_t m_absentColour = 0xFFFFFF;
    bool m_showCopyPrint = true;
    QString m_dataPointName = QStringLiteral("Usage");
};

} // namespace trv5
