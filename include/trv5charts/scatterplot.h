#pragma once

#include <trv5charts/hostedchartframe.h>

#include <QString>

#include <cstdint>
#include <span>
#include <vector>

namespace trv5 {

// One point per record, a first value (horizontal) against a second value (vertical), with the
// least-squares regression line clipped to the plotted area and its equation. An axis whose
// values are all but constant (relative spread below 1e-8) is normalized to 0..1 and its caption
// says so. Each point's tooltip and label name its record.
//
// Engine content: series 0 the records, series 1 the regression line; title 0 the equation,
// title 1 the subtitle ("Points 1 to 300"), titles 2 and 3 the horizontal and vertical captions.
class ScatterPlot : public HostedChartFrame {
    Q_OBJECT
    Q_PROPERTY(bool YAxisTargetOnly READ YAxisTargetOnly WRITE SetYAxisTargetOnly)
    Q_PROPERTY(bool ShowRecordIds READ ShowRecordIds WRITE SetShowRecordIds)
    Q_PROPERTY(QString DataHeader READ DataHeader WRITE SetDataHeader)

public:
    explicit ScatterPlot(QWidget* pParent = nullptr);
    ~ScatterPlot() override;

    // The first and last record number of the plotted range (1 and the count after SetData).
    std::int32_t StartAt() const { return m_startAt; }
    std::int32_t EndAt() const { return m_endAt; }
    // True: the vertical axis spans the second values only. False: it spans both value ranges.
    bool YAxisTargetOnly() const { return m_yAxisTargetOnly; }
    void SetYAxisTargetOnly(bool pValue) { m_yAxisTargetOnly = pValue; }
    // True: the subtitle names the first and last record identifier instead of StartAt/EndAt.
    bool ShowRecordIds() const { return m_showRecordIds; }
    void SetShowRecordIds(bool pValue) { m_showRecordIds = pValue; }
    // The first line of GetChartDataAsString.
    const QString& DataHeader() const { return m_dataHeader; }
    void SetDataHeader(const QString& pValue) { m_dataHeader = pValue; }

    // Plots the first pCount records. Data that cannot be prepared (a count beyond an array or
    // below 1) is not raised: the subtitle reads "Unable to draw the chart" and no point is shown.
    // Errors of the settings (the axis margin) reach the caller.
    void SetData(std::int32_t pCount, std::span<const double> pFirstValues,
                 std::span<const double> pSecondValues, std::span<const std::int32_t> pRecordIds);

    void ShowLinearRegression(bool pShow);
    void ShowRegressionEquation(bool pShow);
    void ShowLabels();
    void HideLabels();

    // Slope, intercept, correlation coefficient and R-square on four lines of the clipboard.
    void CopySlopeIntercept();
    // The regression results of the last SetData; -9999 marks one that could not be computed.
    double Slope() const { return m_slope; }
    double Intercept() const { return m_intercept; }
    double CorrelationCoefficient() const { return m_correlation; }
    double RSquare() const { return m_rSquare; }

    // DataHeader, then one line per point: record identifier, first value, second value.
    QString GetChartDataAsString() override;
    // Empties both series; the subtitle becomes " " and the equation "".
    void Clear() override;

protected:
    void AfterInit() override;

private:
    struct Prepared;
    bool Prepare(std::int32_t pCount, std::span<const double> pFirstValues,
                 std::span<const double> pSecondValues, Prepared& pOut);
    void DrawRegressionLine(const Prepared& pData);
    void WriteEquation();

    std::int32_t m_startAt = 0;
    std::int32_t m_endAt = 0;
    bool m_yAxisTargetOnly = false;
    bool m_showRecordIds = false;
    QString m_dataHeader;
    std::vector<std::int32_t> m_recordIds;
    double m_slope = 0.0;
    double m_intercept = 0.0;
    double m_correlation = 0.0;
    double m_rSquare = 0.0;
    QString m_horizontalCaption;
    QString m_verticalCaption;
};

} // namespace trv5
