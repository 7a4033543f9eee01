#pragma once

#include <trv5charts/hostedchartframe.h>

#include <QString>

#include <cstdint>
#include <span>

namespace trv5 {

// The model's output and the target over the records of a run, as two lines against the record
// number, with an optional cut-off line (the threshold of a classifier) and red rings on the
// records the threshold misclassifies. Values that barely differ (relative spread below 1e-8 in
// either array) are shown normalized to 0..1, and the vertical caption says so.
//
// Engine content: series 0 the target, 1 the model, 2 the threshold line; the series named
// "Misclassifications" (rings on the model line) and "Misclassifications2" (rings on the target
// line) are found by name. Title 0 is the chart title (it reads "Unable to draw the chart" when
// data could not be plotted), title 1 the subtitle ("Points 1 to 150"), titles 2 and 3 the axis
// captions.
class CurveFitting : public HostedChartFrame {
    Q_OBJECT
    Q_PROPERTY(bool UseBinomialFixedYAxis READ UseBinomialFixedYAxis WRITE SetUseBinomialFixedYAxis)

public:
    // DrawMisclassifications modes: which rings are shown.
    static constexpr std::int32_t kMarkBoth = 0;
    static constexpr std::int32_t kMarkModel = 1;
    static constexpr std::int32_t kMarkTarget = 2;

    explicit CurveFitting(QWidget* pParent = nullptr);
    ~CurveFitting() override;

    // True: the vertical axis is fixed to both value ranges together (plus the settings margin
    // "Run.CurveFitting.Margin"), so both levels of a 0/1 target stay inside the plot. False: the
    // engine fits the axis to what is shown. Normalized values always use the automatic range.
    bool UseBinomialFixedYAxis() const { return m_useBinomialFixedYAxis; }
    void SetUseBinomialFixedYAxis(bool pValue) { m_useBinomialFixedYAxis = pValue; }

    // Plots records 0 to pCount - 1 of the arrays: model and target against the record number,
    // each point's tooltip naming its record ("Model, Record 17 (0.25)"). Data that cannot be
    // plotted (a count below 1 or beyond an array) is not raised: title 0 reads "Unable to draw
    // the chart" and both lines are empty. Errors of the settings (the margin) reach the caller.
    void SetData1(std::int32_t pCount, std::span<const double> pModelValues,
                  std::span<const double> pTargetValues, std::span<const std::int32_t> pRecordIds);
    // Plots the window pFirstIndex to pLastIndex (0-based, inclusive) of arrays that hold a whole
    // run, for example its test records: the window's records are numbered from 0 on the axis,
    // and the subtitle names their positions in the run ("Points 801 to 1000"). A window outside
    // an array fails as SetData1 does.
    void SetData2(std::int32_t pFirstIndex, std::int32_t pLastIndex,
                  std::span<const double> pModelValues, std::span<const double> pTargetValues,
                  std::span<const std::int32_t> pRecordIds);

    // Hides a series of the content; an index outside the content does nothing.
    void HideSeries(std::int32_t pIndex);
    // Which of model and target are shown; then the fixed vertical range is applied again.
    void ShowBoth();
    void ShowTarget();
    void ShowModel();
    // The legend name of a series (ChartError 9 when there is no such series).
    void SetSeriesName(std::int32_t pIndex, const QString& pName);
    // Point labels (the values, in the short label format) of one series (ChartError 9 when
    // there is no such series), or of both model and target.
    void SetSeriesLabels(std::int32_t pIndex, bool pShow);
    void ShowLabels(bool pShow);
    // Point markers on the model and target lines.
    void ShowMarkers(bool pShow);
    // Switches the point markers of every series off except those of "Cutoff Point".
    void HideCutoffPointMarkers();

    // The cut-off, given in the target's units: a horizontal dashed line across all records.
    // With normalized values it is normalized with the target's range before normalization.
    // Until it is set the cut-off is 0.5. Without plotted records the line stays empty until the
    // next SetData.
    void SetThreshold(double pValue);
    double Threshold() const { return m_threshold; }
    void ShowThreshold();
    void HideThreshold();

    // True when the last data were normalized to 0..1.
    bool Normalized() const { return m_normalized; }

    // Empties both ring series and gives them their look (red open rings, no labels).
    void ClearMisclassifications();
    // Rings every record whose target differs from the class the threshold gives its model value
    // (class 1 at or above the threshold, within 1e-14; class 1 is the target's maximum, class 0
    // its minimum). pMode kMarkBoth, kMarkModel or kMarkTarget chooses the rings shown; any
    // other mode keeps the visibility as it is.
    void DrawMisclassifications(std::int32_t pMode);
    // The same rings, with the visibility of each ring series given.
    void ShowMisclassifications(bool pShowModelRings, bool pShowTargetRings);

    // The names of the visible series on the first line, then one line per model point with the
    // values of every visible series at that point (empty where a series has fewer points).
    QString GetChartDataAsString() override;
    // Empties every series and returns the titles, ranges and cut-off to their state after Init.
    void Clear() override;

protected:
    void AfterInit() override;

private:
    struct Prepared;
    struct Ranges {
        double modelMinimum = 0.0;
        double modelMaximum = 0.0;
        double targetMinimum = 0.0;
        double targetMaximum = 0.0;
    };

    void Plot(std::int32_t pFirstIndex, std::int32_t pLastIndex,
              std::span<const double> pModelValues, std::span<const double> pTargetValues,
              std::span<const std::int32_t> pRecordIds);
    bool Prepare(std::int32_t pFirstIndex, std::int32_t pLastIndex,
                 std::span<const double> pModelValues, std::span<const double> pTargetValues,
                 std::span<const std::int32_t> pRecordIds, Prepared& pOut) const;
    void FillSeries(const Prepared& pData, std::span<const std::int32_t> pRecordIds);
    void SetRecordAxis(std::int32_t pCount, std::int32_t pFirstIndex, std::int32_t pLastIndex);
    void ApplyFixedYAxis();
    void SetModelAndTargetVisible(bool pModel, bool pTarget);
    void DrawThreshold();
    double PlottedThreshold() const;
    void MarkMisclassifications(bool pShowModelRings, bool pShowTargetRings);
    void ResetState();

    bool m_useBinomialFixedYAxis = false;
    // The ranges of the plotted values (0..1 when normalized), and the target's range as given,
    // which a threshold in the target's units is normalized with.
    Ranges m_ranges;
    double m_givenTargetMinimum = 0.0;
    double m_givenTargetMaximum = 0.0;
    bool m_normalized = false;
    // Whether the vertical range is one this chart fixed (and may hand back to the engine).
    bool m_yAxisFixed = false;
    double m_threshold = 0.5;
    bool m_thresholdSet = false;
    QString m_title;
    QString m_verticalCaption;
};

} // namespace trv5
