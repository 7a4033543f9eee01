#pragma once

#include <trv5charts/popupmenuitem.h>

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

// How a BlockPanelSimple colours its records.
enum TapestryMode : std::int32_t { tmHighLow = 0, tmAbsentColoured = 1, tmSingleColour = 2 };

// The classification tapestry: one square block per record in record order, coloured by the
// class the model assigns it, high (1) or low (0). A record without an outcome (any other
// value, for example -1 for a record the model could not score) is absent.
//
// Colours: the five colours that Init reads from the settings "ClassificationTapestry.HighColor",
// ".LowColor", ".HighColor.Inverted", ".LowColor.Inverted" and ".SingleColor" (each the three
// settings .R, .G and .B). tmHighLow and tmAbsentColoured draw high and low blocks in the high
// and low colours (the inverted ones when Inverted is set); tmSingleColour draws high blocks in
// the single colour and low blocks white. Absent blocks take the absent colour of the mode.
//
// The host recomputes the tapestry from its model, so it has no saved state.
class BlockPanelSimple : public QWidget {
    Q_OBJECT
    Q_PROPERTY(bool ShowCopyPrint READ ShowCopyPrint WRITE SetShowCopyPrint)
    Q_PROPERTY(bool Inverted READ Inverted WRITE SetInverted)

public:
    explicit BlockPanelSimple(QWidget* pParent = nullptr);
    ~BlockPanelSimple() override;
    BlockPanelSimple(const BlockPanelSimple&) = delete;
    BlockPanelSimple& operator=(const BlockPanelSimple&) = delete;

    // ---- properties; writing one does not redraw ----
    bool ShowCopyPrint() const { return m_showCopyPrint; }
    void SetShowCopyPrint(bool pValue) { m_showCopyPrint = pValue; }
    // High and low blocks take the .Inverted colours.
    bool Inverted() const { return m_inverted; }
    void SetInverted(bool pValue) { m_inverted = pValue; }

    TapestryMode ChartMode() const { return m_mode; }
    // Stores the mode and its absent colour: white for tmHighLow and tmSingleColour without any
    // lookup, the setting "Run.UsageChart.AbsentColor.1" for tmAbsentColoured. When that lookup
    // fails, its ChartError (91 without a configuration, 5 for a missing key) reaches the caller
    // and the mode stays as it was; a mode outside 0 to 2 is ChartError 5.
    void SetChartMode(TapestryMode pMode);
    std::int32_t AbsentColour() const { return m_absentColour; }

    // The colours Init read, 0x00BBGGRR.
    std::int32_t HighColour() const { return m_high; }
    std::int32_t LowColour() const { return m_low; }
    std::int32_t HighColourInverted() const { return m_highInverted; }
    std::int32_t LowColourInverted() const { return m_lowInverted; }
    std::int32_t SingleColour() const { return m_single; }

    std::int64_t RecordCount() const { return static_cast<std::int64_t>(m_classes.size()); }
    std::span<const std::int32_t> Classes() const { return m_classes; }
    std::span<const std::int32_t> RecordIds() const { return m_recordIds; }

    // Stores pConfig in the library-wide settings slot (every time, whatever follows), then reads
    // the five colours. A missing key is ChartError 5 naming the key, and the colours stay as
    // they were; without a configuration every colour is black.
    void Init(std::shared_ptr<IConfig> pConfig);
    // One class per record (1 high, 0 low, anything else absent) and the records' identifiers,
    // which the tool tips and the copied data show. Arrays of different lengths are ChartError 5
    // and change nothing. Lays the grid out for the new count; nothing is redrawn.
    void SetData(std::span<const std::int32_t> pClasses, std::span<const std::int32_t> pRecordIds);

    // Draws the frame and the blocks.
    void Redraw();
    // Wipes the picture; the records stay.
    void Clear();
    // No records; mode, colours and Inverted stay.
    void Reset();
    // Lays the grid out again for the picture's size and the record count, reading the gap
    // limit "Run.UsageChart.ShowGaps.Limit" afresh; the resize handler calls it.
    void ResetSize();

    // ---- menu commands ----
    void EditCopy();
    // The records as text to the clipboard; nothing happens without records.
    void CopyChartData();
    // As BlockPanel::EditPrint.
    void EditPrint();
    // A modal preview of the page EditPrint prints.
    void PrintPreview();
    // Lets a host or a test answer the print dialog; nullptr returns to the Qt dialog.
    void SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog);
    // "Record ID\tClass", then one line per record: identifier, tab, class as given; lines
    // separated by CR LF, none after the last. Empty without records.
    QString GetChartDataAsString() const;

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
    std::int32_t ColourOf(std::int32_t pClass) const;

    std::unique_ptr<blocks::BlockView> m_view;
    // The grid for the current size and count, kept between drawings.
    std::unique_ptr<blocks::BlockGrid> m_grid;
    bool m_drawn = false;

    TapestryMode m_mode = tmHighLow;
    std::vector<std::int32_t> m_classes;
    std::vector<std::int32_t> m_recordIds;
    std::int32_t m_high = 0;
    std::int32_t m_low = 0;
    std::int32_t m_highInverted = 0;
    std::int32_t m_lowInverted = 0;
    std::int32_t m_single = 0;
    std::int32_t m_absentColour = 0xFFFFFF;
    bool m_inverted = false;
    bool m_showCopyPrint = true;
};

} // namespace trv5
