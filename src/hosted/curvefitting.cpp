#include <trv5charts/curvefitting.h>

#include "foundation/serialization.h"
#include "hosted/chartshelper.h"
#include "hosted/misclassification.h"
#include "platform/chartengine.h"

#include <trv5charts/axisrange.h>
#include <trv5charts/charterror.h>
#include <trv5charts/localizationlib.h>
#include <trv5charts/mathhelper.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace trv5 {

namespace {

constexpr int kTargetSeries = 0;
constexpr int kModelSeries = 1;
constexpr int kThresholdSeries = 2;
constexpr int kTitle = 0;
constexpr int kSubtitle = 1;
constexpr int kVerticalCaption = 3;

const QString kModelRings = QStringLiteral("Misclassifications");
const QString kTargetRings = QStringLiteral("Misclassifications2");
const QString kCutoffPoint = QStringLiteral("Cutoff Point");

// Tooltip texts of one line: "<prefix><record identifier> (<value>)".
platform::PointTexts RecordTexts(std::string_view pPrefix, std::span<const double> pValues,
                                 std::span<const std::int32_t> pRecordIds) {
    const char decimalPoint = LocalizationLib::UserDecimalPointChar();
    platform::PointTexts texts;
    texts.Reserve(pValues.size(), pValues.size() * (pPrefix.size() + 28));
    std::string text;
    for (std::size_t i = 0; i < pValues.size(); ++i) {
        text.assign(pPrefix);
        ChartsHelper::AppendWhole(text, pRecordIds[i]);
        text.append(" (");
        ChartsHelper::AppendUserNumber(text, pValues[i], decimalPoint);
        text.push_back(')');
        texts.Add(text).End();
    }
    return texts;
}

// The points pIndexes of pSource, with their tooltips, as the only points of pRings.
void CopyPoints(const platform::ChartSeries& pSource, std::span<const std::int32_t> pIndexes,
                platform::ChartSeries& pRings) {
    std::vector<double> arguments;
    std::vector<double> values;
    arguments.reserve(pIndexes.size());
    values.reserve(pIndexes.size());
    platform::PointTexts texts;
    for (const std::int32_t index : pIndexes) {
        const auto at = static_cast<std::size_t>(index);
        arguments.push_back(pSource.Arguments()[at]);
        values.push_back(pSource.Values()[at]);
        texts.Add(pSource.Texts().Utf8(at)).End();
    }
    pRings.SetPoints(std::move(arguments), std::move(values), std::move(texts));
}

} // namespace

// The window of records to plot, with values ready for the engine (normalized where needed).
struct CurveFitting::Prepared {
    std::span<const double> model;
    std::span<const double> target;
    std::span<const std::int32_t> recordIds;
    std::vector<double> normalizedModel;
    std::vector<double> normalizedTarget;
    Ranges ranges;
    double givenTargetMinimum = 0.0;
    double givenTargetMaximum = 0.0;
    bool normalized = false;
};

CurveFitting::CurveFitting(QWidget* pParent)
    : HostedChartFrame(QStringLiteral(":/trv5charts/curvefitting.json"), pParent) {}

CurveFitting::~CurveFitting() = default;

void CurveFitting::AfterInit() {
    m_title = Engine().Title(kTitle).Text();
    m_verticalCaption = Engine().Title(kVerticalCaption).Text();
    ResetState();
}

void CurveFitting::ResetState() {
    m_ranges = Ranges{};
    m_givenTargetMinimum = 0.0;
    m_givenTargetMaximum = 0.0;
    m_normalized = false;
    m_yAxisFixed = false;
    m_threshold = 0.5;
    m_thresholdSet = false;
}

void CurveFitting::SetData1(std::int32_t pCount, std::span<const double> pModelValues,
                            std::span<const double> pTargetValues,
                            std::span<const std::int32_t> pRecordIds) {
    // A count below 1 gives a window that ends before it starts, which Prepare turns down.
    Plot(0, pCount > 0 ? pCount - 1 : -1, pModelValues, pTargetValues, pRecordIds);
}

void CurveFitting::SetData2(std::int32_t pFirstIndex, std::int32_t pLastIndex,
                            std::span<const double> pModelValues,
                            std::span<const double> pTargetValues,
                            std::span<const std::int32_t> pRecordIds) {
    Plot(pFirstIndex, pLastIndex, pModelValues, pTargetValues, pRecordIds);
}

bool CurveFitting::Prepare(std::int32_t pFirstIndex, std::int32_t pLastIndex,
                           std::span<const double> pModelValues,
                           std::span<const double> pTargetValues,
                           std::span<const std::int32_t> pRecordIds, Prepared& pOut) const {
    return serialization::RunTrapped([&] {
        const auto fits = [&](std::size_t pSize) {
            return static_cast<std::size_t>(pLastIndex) < pSize;
        };
        if (pFirstIndex < 0 || pLastIndex < pFirstIndex || !fits(pModelValues.size()) ||
            !fits(pTargetValues.size()) || !fits(pRecordIds.size())) {
            throw ChartError(ChartError::IndexOutOfRange);
        }
        const auto first = static_cast<std::size_t>(pFirstIndex);
        const auto count = static_cast<std::size_t>(pLastIndex - pFirstIndex) + 1;
        pOut.model = pModelValues.subspan(first, count);
        pOut.target = pTargetValues.subspan(first, count);
        pOut.recordIds = pRecordIds.subspan(first, count);

        const MathHelper::MinMaxValues model = MathHelper::ComputeMinMax(pOut.model, -1);
        const MathHelper::MinMaxValues target = MathHelper::ComputeMinMax(pOut.target, -1);
        pOut.ranges = {model.Minimum, model.Maximum, target.Minimum, target.Maximum};
        pOut.givenTargetMinimum = target.Minimum;
        pOut.givenTargetMaximum = target.Maximum;
        if (ChartsHelper::RelativeSpread(model.Minimum, model.Maximum) >=
                ChartsHelper::kMinimumRelativeSpread &&
            ChartsHelper::RelativeSpread(target.Minimum, target.Maximum) >=
                ChartsHelper::kMinimumRelativeSpread) {
            return;
        }
        // Values that barely differ would draw as one flat line under a column of identical
        // tick labels; both arrays are shown on 0..1 instead, each against its own range.
        pOut.normalizedModel = ChartsHelper::Normalize(pOut.model, model.Maximum, model.Minimum);
        pOut.normalizedTarget =
            ChartsHelper::Normalize(pOut.target, target.Maximum, target.Minimum);
        pOut.model = pOut.normalizedModel;
        pOut.target = pOut.normalizedTarget;
        pOut.ranges = {0.0, 1.0, 0.0, 1.0};
        pOut.normalized = true;
    });
}

void CurveFitting::Plot(std::int32_t pFirstIndex, std::int32_t pLastIndex,
                        std::span<const double> pModelValues, std::span<const double> pTargetValues,
                        std::span<const std::int32_t> pRecordIds) {
    platform::ChartEngine& engine = Engine();
    for (const int index : {kModelSeries, kTargetSeries}) {
        platform::ChartSeries& series = engine.Series(index);
        series.ClearPoints();
        series.SetVisible(true);
    }

    Prepared prepared;
    if (!Prepare(pFirstIndex, pLastIndex, pModelValues, pTargetValues, pRecordIds, prepared)) {
        engine.Series(kModelSeries).ClearPoints();
        engine.Series(kTargetSeries).ClearPoints();
        engine.Title(kTitle).SetText(ChartsHelper::kUnableToDraw);
        return;
    }
    m_ranges = prepared.ranges;
    m_givenTargetMinimum = prepared.givenTargetMinimum;
    m_givenTargetMaximum = prepared.givenTargetMaximum;
    m_normalized = prepared.normalized;
    engine.Title(kTitle).SetText(m_title);
    engine.Title(kVerticalCaption)
        .SetText(m_normalized ? m_verticalCaption + ChartsHelper::kNormalizedSuffix
                              : m_verticalCaption);

    FillSeries(prepared, prepared.recordIds);
    const auto count = static_cast<std::int32_t>(prepared.model.size());
    SetRecordAxis(count, pFirstIndex, pLastIndex);
    if (m_useBinomialFixedYAxis && !m_normalized) {
        ApplyFixedYAxis();
    } else if (m_yAxisFixed) {
        // The range fixed for earlier data would not fit these: the engine fits it again.
        engine.AxisY().SetAutoRange(true);
        m_yAxisFixed = false;
    }
    if (m_thresholdSet && engine.SeriesCount() > kThresholdSeries &&
        engine.Series(kThresholdSeries).Visible()) {
        DrawThreshold();
    }
    LayoutEngine();
}

void CurveFitting::FillSeries(const Prepared& pData, std::span<const std::int32_t> pRecordIds) {
    const std::size_t count = pData.model.size();
    std::vector<double> arguments(count);
    for (std::size_t i = 0; i < count; ++i) {
        arguments[i] = static_cast<double>(i);
    }
    platform::ChartEngine& engine = Engine();
    engine.Series(kModelSeries)
        .SetPoints(arguments, std::vector<double>(pData.model.begin(), pData.model.end()),
                   RecordTexts("Model, Record ", pData.model, pRecordIds));
    engine.Series(kTargetSeries)
        .SetPoints(std::move(arguments),
                   std::vector<double>(pData.target.begin(), pData.target.end()),
                   RecordTexts("Target, Record ", pData.target, pRecordIds));
}

void CurveFitting::SetRecordAxis(std::int32_t pCount, std::int32_t pFirstIndex,
                                 std::int32_t pLastIndex) {
    // Every write redraws the chart, and hosts set the same range again with each new run.
    platform::ChartAxis& axis = Engine().AxisX();
    const double last = static_cast<double>(pCount) - 1.0;
    if (axis.AutoRange()) {
        axis.SetAutoRange(false);
    }
    if (axis.MinValue() != 0.0) {
        axis.SetMinValue(0.0);
    }
    if (axis.MaxValue() != last) {
        axis.SetMaxValue(last);
    }
    Engine().Title(kSubtitle).SetText(QStringLiteral("Points %1 to %2")
                                          .arg(static_cast<std::int64_t>(pFirstIndex) + 1)
                                          .arg(static_cast<std::int64_t>(pLastIndex) + 1));
}

void CurveFitting::ApplyFixedYAxis() {
    ChartsHelper::SetYAxisRange(Engine(), m_ranges.modelMinimum, m_ranges.modelMaximum,
                                m_ranges.targetMinimum, m_ranges.targetMaximum,
                                QString::fromLatin1(kMarginSettingKey));
    m_yAxisFixed = true;
}

void CurveFitting::HideSeries(std::int32_t pIndex) {
    if (pIndex >= 0 && pIndex < Engine().SeriesCount()) {
        Engine().Series(pIndex).SetVisible(false);
    }
}

void CurveFitting::SetModelAndTargetVisible(bool pModel, bool pTarget) {
    Engine().Series(kModelSeries).SetVisible(pModel);
    Engine().Series(kTargetSeries).SetVisible(pTarget);
    if (m_useBinomialFixedYAxis && !m_normalized) {
        ApplyFixedYAxis();
    }
}

void CurveFitting::ShowBoth() {
    SetModelAndTargetVisible(true, true);
}

void CurveFitting::ShowTarget() {
    SetModelAndTargetVisible(false, true);
}

void CurveFitting::ShowModel() {
    SetModelAndTargetVisible(true, false);
}

void CurveFitting::SetSeriesName(std::int32_t pIndex, const QString& pName) {
    Engine().Series(pIndex).SetName(pName);
}

void CurveFitting::SetSeriesLabels(std::int32_t pIndex, bool pShow) {
    Engine().Series(pIndex).SetLabelsVisible(pShow);
}

void CurveFitting::ShowLabels(bool pShow) {
    SetSeriesLabels(kTargetSeries, pShow);
    SetSeriesLabels(kModelSeries, pShow);
}

void CurveFitting::ShowMarkers(bool pShow) {
    Engine().Series(kTargetSeries).SetMarkerVisible(pShow);
    Engine().Series(kModelSeries).SetMarkerVisible(pShow);
}

void CurveFitting::HideCutoffPointMarkers() {
    platform::ChartEngine& engine = Engine();
    for (int i = 0; i < engine.SeriesCount(); ++i) {
        platform::ChartSeries& series = engine.Series(i);
        if (series.Name() != kCutoffPoint) {
            series.SetMarkerVisible(false);
        }
    }
}

double CurveFitting::PlottedThreshold() const {
    return m_normalized ? ChartsHelper::NormalizeValue(m_threshold, m_givenTargetMaximum,
                                                       m_givenTargetMinimum)
                        : m_threshold;
}

void CurveFitting::SetThreshold(double pValue) {
    m_threshold = pValue;
    m_thresholdSet = true;
    DrawThreshold();
}

void CurveFitting::DrawThreshold() {
    platform::ChartSeries& line = Engine().Series(kThresholdSeries);
    const platform::ChartSeries& model = Engine().Series(kModelSeries);
    const double value = PlottedThreshold();
    line.ClearPoints();
    if (model.PointCount() > 0) {
        line.AddPoint(0.0, value);
        line.AddPoint(model.Argument(model.PointCount() - 1), value);
    }
    line.SetDashPattern({5.0, 3.0});
}

void CurveFitting::ShowThreshold() {
    if (Engine().SeriesCount() > kThresholdSeries) {
        Engine().Series(kThresholdSeries).SetVisible(true);
    }
}

void CurveFitting::HideThreshold() {
    if (Engine().SeriesCount() > kThresholdSeries) {
        Engine().Series(kThresholdSeries).SetVisible(false);
    }
}

void CurveFitting::ClearMisclassifications() {
    platform::ChartEngine& engine = Engine();
    for (int i = 0; i < engine.SeriesCount(); ++i) {
        platform::ChartSeries& series = engine.Series(i);
        if (series.Name() != kModelRings && series.Name() != kTargetRings) {
            continue;
        }
        // Open rings, so the marked point of the line still shows inside its ring.
        series.SetColour(QColor(250, 0, 0));
        series.SetMarker(platform::MarkerShape::Circle);
        series.SetLabelsVisible(false);
        series.ClearPoints();
    }
}

void CurveFitting::MarkMisclassifications(bool pShowModelRings, bool pShowTargetRings) {
    ClearMisclassifications();
    platform::ChartEngine& engine = Engine();
    const platform::ChartSeries& model = engine.Series(kModelSeries);
    const platform::ChartSeries& target = engine.Series(kTargetSeries);
    // The two levels of a two-valued target: class 1 is the higher one.
    const std::vector<std::int32_t> misses =
        misclassification::Misclassified(model.Values(), target.Values(), PlottedThreshold(),
                                         m_ranges.targetMaximum, m_ranges.targetMinimum);
    if (platform::ChartSeries* rings = engine.FindSeries(kModelRings)) {
        CopyPoints(model, misses, *rings);
        rings->SetVisible(pShowModelRings);
    }
    if (platform::ChartSeries* rings = engine.FindSeries(kTargetRings)) {
        CopyPoints(target, misses, *rings);
        rings->SetVisible(pShowTargetRings);
    }
}

void CurveFitting::DrawMisclassifications(std::int32_t pMode) {
    platform::ChartEngine& engine = Engine();
    const auto visible = [&](const QString& pName) {
        const platform::ChartSeries* series = engine.FindSeries(pName);
        return series != nullptr && series->Visible();
    };
    bool model = visible(kModelRings);
    bool target = visible(kTargetRings);
    if (pMode == kMarkBoth || pMode == kMarkModel || pMode == kMarkTarget) {
        model = pMode != kMarkTarget;
        target = pMode != kMarkModel;
    }
    MarkMisclassifications(model, target);
}

void CurveFitting::ShowMisclassifications(bool pShowModelRings, bool pShowTargetRings) {
    MarkMisclassifications(pShowModelRings, pShowTargetRings);
}

QString CurveFitting::GetChartDataAsString() {
    platform::ChartEngine& engine = Engine();
    if (engine.SeriesCount() == 0) {
        return {};
    }
    std::vector<const platform::ChartSeries*> shown;
    QString header;
    for (int i = 0; i < engine.SeriesCount(); ++i) {
        const platform::ChartSeries& series = engine.Series(i);
        if (series.Visible()) {
            shown.push_back(&series);
            header += series.Name() + QLatin1Char('\t');
        }
    }
    header.chop(1);
    const std::size_t rows =
        engine.SeriesCount() > kModelSeries
            ? static_cast<std::size_t>(engine.Series(kModelSeries).PointCount())
            : 0;

    const char decimalPoint = LocalizationLib::UserDecimalPointChar();
    std::string out = serialization::ToUtf8(header);
    out.append("\r\n");
    out.reserve(out.size() + rows * (shown.size() * 20 + 2));
    for (std::size_t i = 0; i < rows; ++i) {
        if (i != 0) {
            out.append("\r\n");
        }
        for (std::size_t s = 0; s < shown.size(); ++s) {
            if (s != 0) {
                out.push_back('\t');
            }
            const std::span<const double> values = shown[s]->Values();
            if (i < values.size()) {
                ChartsHelper::AppendUserNumber(out, values[i], decimalPoint);
            }
        }
    }
    return serialization::FromUtf8(out);
}

void CurveFitting::Clear() {
    platform::ChartEngine& engine = Engine();
    for (int i = 0; i < engine.SeriesCount(); ++i) {
        engine.Series(i).ClearPoints();
    }
    engine.Title(kTitle).SetText(m_title);
    engine.Title(kSubtitle).SetText(QStringLiteral(" "));
    engine.Title(kVerticalCaption).SetText(m_verticalCaption);
    if (m_yAxisFixed) {
        engine.AxisY().SetAutoRange(true);
    }
    ResetState();
}

} // namespace trv5
