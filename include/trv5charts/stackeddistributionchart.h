#pragma once

#include <trv5charts/hostedchartframe.h>

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace trv5 {

namespace hosted {
class RandomValues;
}

// The distribution of the target values against that of the model's outputs: every record puts
// its target in a lower band (heights 0 to 45) and its model output in an upper band (55 to 100)
// at the same random height within each band, so the two distributions lie one above the other
// and their overlap can be judged. In target-only mode only the lower band is drawn.
//
// Engine content: series 0 the model points, series 1 the target points; title 0 the main title
// (or "Unable to draw the chart"), title 1 the subtitle, title 2 the horizontal caption. SetData
// fixes the vertical axis at -2 to 115 (-2 to 55 in target-only mode, where the model series also
// leaves the legend), so that the bands' markers show whole and the legend in the top corner
// covers none of them.
class StackedDistributionChart : public HostedChartFrame {
    Q_OBJECT
    Q_PROPERTY(bool TargetOnly READ TargetOnly WRITE SetTargetOnly)

public:
    explicit StackedDistributionChart(QWidget* pParent = nullptr);
    ~StackedDistributionChart() override;

    // The first and last record number of the plotted range (1 and the count after SetData).
    std::int32_t StartAt() const { return m_startAt; }
    std::int32_t EndAt() const { return m_endAt; }
    // True: only the target's distribution is plotted; the model values are not read.
    bool TargetOnly() const { return m_targetOnly; }
    void SetTargetOnly(bool pValue) { m_targetOnly = pValue; }

    // New heights for pCount records: the lower band uniform in [0, 45), the upper band the same
    // height plus 55. A negative count throws ChartError 9.
    void CreateRandomValues(std::int32_t pCount);
    const std::vector<double>& LowerBand() const { return m_lowerBand; }
    const std::vector<double>& UpperBand() const { return m_upperBand; }
    // CreateRandomValues seeds from the clock; a fixed seed makes the heights repeat (for tests
    // and reproducible pictures). nullopt returns to the clock.
    void SetFixedRandomSeed(std::optional<std::uint64_t> pSeed);

    // Plots the first pCount records. Values that cannot be prepared (a count below 1 or beyond
    // the value arrays, extremes that are not finite) are not raised: title 0 reads "Unable to
    // draw the chart" and no point is shown. A record identifier array shorter than the count, or
    // (outside target-only mode) bands shorter than it because CreateRandomValues was not called
    // first, throws ChartError 9 with both series empty. In target-only mode bands of another
    // length are drawn anew; otherwise the host's bands are used.
    void SetData(std::int32_t pCount, std::span<const double> pModelValues,
                 std::span<const double> pTargetValues, std::span<const std::int32_t> pRecordIds);

    // The target block ("Record ID", "DummyVar", "Target" and one line per target point), then,
    // unless target-only, an empty line and the model block ("Record ID", "DummyVar", "Model").
    // Every line ends in CR LF; empty when the engine holds no series.
    QString GetChartDataAsString() override;

    // Empties both series and forgets the records and the bands; the subtitle becomes " ".
    void Clear() override;

protected:
    void AfterInit() override;

private:
    struct Prepared;
    bool Prepare(std::int32_t pCount, std::span<const double> pModelValues,
                 std::span<const double> pTargetValues, Prepared& pOut);
    void Plot(const Prepared& pData);

    std::int32_t m_startAt = 0;
    std::int32_t m_endAt = 0;
    bool m_targetOnly = false;
    QString m_title;
    QString m_horizontalCaption;
    std::vector<std::int32_t> m_recordIds;
    std::vector<double> m_lowerBand;
    std::vector<double> m_upperBand;
    std::unique_ptr<hosted::RandomValues> m_random;
};

} // namespace trv5
