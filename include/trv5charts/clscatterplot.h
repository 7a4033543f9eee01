#pragma once

#include <trv5charts/charterror.h>
#include <trv5charts/hostedchartframe.h>

#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace trv5 {

namespace hosted {
class RandomValues;
}

// The records of a two-class problem as a one-dimensional scatter: each record is a point at its
// model output (horizontal), lifted by a random dummy variable in [0.05, 1.05) (vertical) that
// only spreads the points apart. Every record has one of four outcome types, each a series of its
// own, so the classifier's cut-off and its errors show at a glance.
//
// Type codes: 0 true negative ("TN"), 1 false negative ("FN"), 2 true positive ("TP"), 3 false
// positive ("FP").
//
// Engine content: series 0 to 3 the four types in code order, the series named "Cutoff Point" a
// vertical line at the rounding threshold; title 1 the subtitle, title 2 the horizontal caption.
class CLScatterPlot : public HostedChartFrame {
    Q_OBJECT
    Q_PROPERTY(bool ShowRecordIds READ ShowRecordIds WRITE SetShowRecordIds)
    Q_PROPERTY(double RoundingThreshold READ RoundingThreshold WRITE SetRoundingThreshold)
    Q_PROPERTY(bool InLogicSynthesisMode READ InLogicSynthesisMode WRITE SetInLogicSynthesisMode)
    Q_PROPERTY(bool UseStarsCircles READ UseStarsCircles WRITE SetUseStarsCircles)

public:
    // A type code outside 0..3 in SetData.
    static constexpr int kInvalidTypeCode = ChartError::InvalidArgument;

    explicit CLScatterPlot(QWidget* pParent = nullptr);
    ~CLScatterPlot() override;

    // The first and last record number of the plotted range (1 and the count; 0 and 0 when
    // nothing is plotted).
    std::int32_t StartAt() const { return m_startAt; }
    std::int32_t EndAt() const { return m_endAt; }
    // True: the subtitle names the first and last record identifier instead of StartAt/EndAt.
    bool ShowRecordIds() const { return m_showRecordIds; }
    void SetShowRecordIds(bool pValue) { m_showRecordIds = pValue; }

    // The classifier's cut-off, in model output units. SetData rewrites it as the fraction of the
    // way from the smallest to the largest model value (0 at the smallest, 1 at the largest), so
    // a host sets it before every SetData.
    double RoundingThreshold() const { return m_roundingThreshold; }
    void SetRoundingThreshold(double pValue) { m_roundingThreshold = pValue; }

    // Tooltips "Record 7 (0.83), False Positive" (false) or "Record 7 (1), False Positive"
    // (true: the class the rounded output predicts instead of the output). Used by the next
    // SetData.
    bool InLogicSynthesisMode() const { return m_logicSynthesis; }
    void SetInLogicSynthesisMode(bool pValue) { m_logicSynthesis = pValue; }

    // True: correct outcomes (TN, TP) as open circles of 6 pixels and misclassified ones (FN, FP)
    // as stars of 9 pixels. False: the markers of the definition file (discs of 5 pixels in the
    // default one), told apart by colour only. Takes effect at once and survives Init.
    bool UseStarsCircles() const { return m_starsCircles; }
    void SetUseStarsCircles(bool pValue);

    // A fixed pair that stands in for the smallest and largest model value in every later
    // SetData: the threshold's normalization, the spread test, the label angle and the horizontal
    // range all use it, so the axis stays put from run to run. The ends may come in either
    // order; they must be finite (ChartError 5). UseAutoMaxMin returns to the data's extremes.
    void UseManualMaxMin(double pMin, double pMax);
    void UseAutoMaxMin();
    bool ManualMaxMin() const { return m_manualRange.has_value(); }

    // A new dummy variable: pCount values in [0.05, 1.05). A negative count throws ChartError 9.
    void CreateRandomValues(std::int32_t pCount);
    // The dummy variable that the next SetData uses when its count matches.
    const std::vector<double>& RandomValues() const { return m_jitter; }
    // CreateRandomValues seeds from the clock; a fixed seed makes the dummy variable repeat (for
    // tests and reproducible pictures). nullopt returns to the clock.
    void SetFixedRandomSeed(std::optional<std::uint64_t> pSeed);

    // Plots the first pCount records. ChartError 9 when pCount is negative or beyond one of the
    // arrays, ChartError 5 (kInvalidTypeCode) for a type code outside 0..3; either leaves the
    // chart as it was. The dummy variable is kept when it has pCount values and drawn anew
    // otherwise. Model values that are not finite are kept (tooltips, data text) but not drawn.
    void SetData(std::int32_t pCount, std::span<const std::int32_t> pTypes,
                 std::span<const double> pModelValues, std::span<const std::int32_t> pRecordIds);

    // "Record ID", "Model", "Dummy Variable", "Type", then one line per record: identifier,
    // model value, dummy variable, "TN"/"FN"/"TP"/"FP". Every line ends in CR LF.
    QString GetChartDataAsString() override;
    // The same rows under "Record ID", "Jittered Model Output", "Dummy Variable", "Type".
    QString GetChartDataAsStringLS();
    // GetChartDataAsStringLS on the clipboard; nothing when the engine holds no series.
    void CopyDataLS();

    // The horizontal axis from pMinX to pMaxX until the next SetData or SetAutoXAxis.
    void SetFixedXAxis(double pMinX, double pMaxX);
    void SetAutoXAxis();
    // The visibility of the "Cutoff Point" series.
    void ShowCutoffPoint(bool pShow);
    // Labels on the four type series, each showing its point's tooltip text.
    void ShowLabels(bool pShow = true);

    // Empties the series and forgets the records and the dummy variable; the subtitle becomes
    // " ".
    void Clear() override;

protected:
    void AfterInit() override;

private:
    struct Scan;
    Scan ScanRecords(std::int32_t pCount, std::span<const std::int32_t> pTypes,
                     std::span<const double> pModelValues,
                     std::span<const std::int32_t> pRecordIds);
    void PlotTypes(const Scan& pScan, bool pNormalized, double pMinimum, double pMaximum);
    void DrawCutoff(double pArgument);
    void ApplyMarkers();
    QString DataText(const char* pHeader) const;

    std::int32_t m_startAt = 0;
    std::int32_t m_endAt = 0;
    bool m_showRecordIds = false;
    double m_roundingThreshold = 0.5;
    bool m_logicSynthesis = false;
    bool m_starsCircles = false;
    std::optional<std::array<double, 2>> m_manualRange;
    QString m_horizontalCaption;
    // The markers the definition file gave the four type series.
    struct Marker;
    std::vector<Marker> m_definitionMarkers;

    std::vector<std::int32_t> m_types;
    std::vector<double> m_modelValues;
    std::vector<std::int32_t> m_recordIds;
    std::vector<double> m_jitter;
    std::vector<double> m_plottedJitter;
    std::unique_ptr<hosted::RandomValues> m_random;
};

} // namespace trv5
