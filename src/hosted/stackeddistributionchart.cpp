#include <trv5charts/stackeddistributionchart.h>

#include "foundation/serialization.h"
#include "hosted/chartshelper.h"
#include "hosted/randomvalues.h"
#include "platform/chartengine.h"
#include "platform/colour.h"

#include <trv5charts/charterror.h>
#include <trv5charts/colorconverter.h>
#include <trv5charts/localizationlib.h>
#include <trv5charts/mathhelper.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace trv5 {

namespace {

constexpr int kModelSeries = 0;
constexpr int kTargetSeries = 1;
constexpr int kTitle = 0;
constexpr int kSubtitle = 1;
constexpr int kHorizontalCaption = 2;

// The lower band is [0, 45); the upper band lies 55 above it, so a gap from 45 to 55 keeps the
// two distributions apart.
constexpr double kBandHeight = 45.0;
constexpr double kBandOffset = 55.0;
// The vertical axis shows the bands with room for half a marker below them and, above them, for
// the legend in the plot's top corner.
constexpr double kAxisBottom = -2.0;
constexpr double kBothBandsAxisTop = 115.0;
constexpr double kTargetBandAxisTop = 55.0;

} // namespace

// The values as plotted (normalized where needed); model values only outside target-only mode.
struct StackedDistributionChart::Prepared {
    std::vector<double> model;
    std::vector<double> target;
    double minimum = 0.0;
    double maximum = 0.0;
};

StackedDistributionChart::StackedDistributionChart(QWidget* pParent)
    : HostedChartFrame(QStringLiteral(":/trv5charts/stackeddistribution.json"), pParent),
      m_random(std::make_unique<hosted::RandomValues>()) {}

StackedDistributionChart::~StackedDistributionChart() = default;

void StackedDistributionChart::AfterInit() {
    platform::ChartEngine& engine = Engine();
    const QColor background = platform::ToQColor(ColorConverter::RGBToLong(255, 251, 242));
    engine.SetBackgroundColour(background);
    engine.SetDiagramBackgroundColour(background);
    m_title = engine.Title(kTitle).Text();
    m_horizontalCaption = engine.Title(kHorizontalCaption).Text();
}

void StackedDistributionChart::CreateRandomValues(std::int32_t pCount) {
    std::vector<double> lower = m_random->Draw(pCount, 0.0, kBandHeight);
    std::vector<double> upper(lower.size());
    std::transform(lower.begin(), lower.end(), upper.begin(),
                   [](double pHeight) { return pHeight + kBandOffset; });
    m_lowerBand = std::move(lower);
    m_upperBand = std::move(upper);
}

void StackedDistributionChart::SetFixedRandomSeed(std::optional<std::uint64_t> pSeed) {
    m_random->SetFixedSeed(pSeed);
}

bool StackedDistributionChart::Prepare(std::int32_t pCount, std::span<const double> pModelValues,
                                       std::span<const double> pTargetValues, Prepared& pOut) {
    return serialization::RunTrapped([&] {
        const bool withModel = !m_targetOnly;
        // The extremes throw ChartError 9 for a count below 1 or beyond an array.
        const MathHelper::MinMaxValues target = MathHelper::ComputeMinMax(pTargetValues, pCount);
        MathHelper::MinMaxValues model = target;
        if (withModel) {
            model = MathHelper::ComputeMinMax(pModelValues, pCount);
        }
        // An infinite value, or nothing but NaN, leaves no range to place points in.
        for (const double extreme :
             {target.Minimum, target.Maximum, model.Minimum, model.Maximum}) {
            if (!std::isfinite(extreme)) {
                throw ChartError(ChartError::Overflow);
            }
        }
        const auto count = static_cast<std::ptrdiff_t>(pCount);
        pOut.target.assign(pTargetValues.begin(), pTargetValues.begin() + count);
        if (withModel) {
            pOut.model.assign(pModelValues.begin(), pModelValues.begin() + count);
        }
        const bool spread = ChartsHelper::RelativeSpread(target.Minimum, target.Maximum) >=
                                ChartsHelper::kMinimumRelativeSpread &&
                            ChartsHelper::RelativeSpread(model.Minimum, model.Maximum) >=
                                ChartsHelper::kMinimumRelativeSpread;
        if (spread) {
            pOut.minimum = std::min(target.Minimum, model.Minimum);
            pOut.maximum = std::max(target.Maximum, model.Maximum);
            Engine().Title(kHorizontalCaption).SetText(m_horizontalCaption);
            return;
        }
        // Values that barely differ are spread over 0..1, each array by its own extremes.
        pOut.target = ChartsHelper::Normalize(pOut.target, target.Maximum, target.Minimum);
        if (withModel) {
            pOut.model = ChartsHelper::Normalize(pOut.model, model.Maximum, model.Minimum);
        }
        pOut.minimum = 0.0;
        pOut.maximum = 1.0;
        Engine()
            .Title(kHorizontalCaption)
            .SetText(m_horizontalCaption + ChartsHelper::kNormalizedSuffix);
    });
}

void StackedDistributionChart::SetData(std::int32_t pCount, std::span<const double> pModelValues,
                                       std::span<const double> pTargetValues,
                                       std::span<const std::int32_t> pRecordIds) {
    platform::ChartEngine& engine = Engine();
    platform::ChartSeries& target = engine.Series(kTargetSeries);
    platform::ChartSeries& model = engine.Series(kModelSeries);
    target.ClearPoints();
    model.ClearPoints();
    m_recordIds.clear();

    if (m_targetOnly && pCount >= 0 && m_lowerBand.size() != static_cast<std::size_t>(pCount) &&
        static_cast<std::size_t>(pCount) <= pTargetValues.size()) {
        CreateRandomValues(pCount);
    }
    Prepared prepared;
    if (!Prepare(pCount, pModelValues, pTargetValues, prepared)) {
        engine.Title(kTitle).SetText(ChartsHelper::kUnableToDraw);
        return;
    }
    const auto count = static_cast<std::size_t>(pCount);
    if (pRecordIds.size() < count || m_lowerBand.size() < count || m_upperBand.size() < count) {
        throw ChartError(ChartError::IndexOutOfRange,
                         QStringLiteral("%1 records need as many record identifiers (%2 given) "
                                        "and heights from CreateRandomValues (%3 made)")
                             .arg(count)
                             .arg(pRecordIds.size())
                             .arg(m_lowerBand.size()));
    }
    m_recordIds.assign(pRecordIds.begin(), pRecordIds.begin() + static_cast<std::ptrdiff_t>(count));
    engine.Title(kTitle).SetText(m_title);
    Plot(prepared);

    m_startAt = 1;
    m_endAt = pCount;
    engine.Title(kSubtitle).SetText(QStringLiteral("Points %1 to %2").arg(m_startAt).arg(m_endAt));
    platform::ChartAxis& vertical = engine.AxisY();
    vertical.SetAutoRange(false);
    vertical.SetMinValue(kAxisBottom);
    vertical.SetMaxValue(m_targetOnly ? kTargetBandAxisTop : kBothBandsAxisTop);
    // An empty model series has no place in the legend.
    engine.Series(kModelSeries).SetShowInLegend(!m_targetOnly);
    ChartsHelper::ApplyLabelAngle(engine, prepared.minimum, prepared.maximum);
    LayoutEngine();
}

void StackedDistributionChart::Plot(const Prepared& pData) {
    const std::size_t count = pData.target.size();
    const bool withModel = !m_targetOnly;
    const char decimalPoint = LocalizationLib::UserDecimalPointChar();

    platform::PointTexts targetTexts;
    platform::PointTexts modelTexts;
    targetTexts.Reserve(count, count * (withModel ? 56 : 32));
    if (withModel) {
        modelTexts.Reserve(count, count * 56);
    }
    std::string text;
    const auto appendNumber = [&](double pValue) {
        ChartsHelper::AppendUserNumber(text, pValue, decimalPoint);
    };
    for (std::size_t i = 0; i < count; ++i) {
        const double targetValue = pData.target[i];
        if (!withModel) {
            // "Target, Point 17 (0.25)"
            text.assign("Target, Point ");
            ChartsHelper::AppendWhole(text, m_recordIds[i]);
            text.append(" (");
            appendNumber(targetValue);
            text.push_back(')');
            targetTexts.Add(text).End();
            continue;
        }
        const double modelValue = pData.model[i];
        // "Target, Record 17 (1) :: Model (0.83)" and "Model, Record 17 (0.83) :: Target (1)"
        text.assign("Target, Record ");
        ChartsHelper::AppendWhole(text, m_recordIds[i]);
        text.append(" (");
        appendNumber(targetValue);
        text.append(") :: Model (");
        appendNumber(modelValue);
        text.push_back(')');
        targetTexts.Add(text).End();

        text.assign("Model, Record ");
        ChartsHelper::AppendWhole(text, m_recordIds[i]);
        text.append(" (");
        appendNumber(modelValue);
        text.append(") :: Target (");
        appendNumber(targetValue);
        text.push_back(')');
        modelTexts.Add(text).End();
    }

    const auto band = [count](const std::vector<double>& pBand) {
        return std::vector<double>(pBand.begin(),
                                   pBand.begin() + static_cast<std::ptrdiff_t>(count));
    };
    platform::ChartEngine& engine = Engine();
    engine.Series(kTargetSeries).SetPoints(pData.target, band(m_lowerBand), std::move(targetTexts));
    if (withModel) {
        engine.Series(kModelSeries)
            .SetPoints(pData.model, band(m_upperBand), std::move(modelTexts));
    }
}

QString StackedDistributionChart::GetChartDataAsString() {
    platform::ChartEngine& engine = Engine();
    if (engine.SeriesCount() == 0) {
        return {};
    }
    const char decimalPoint = LocalizationLib::UserDecimalPointChar();
    std::string out;
    const auto block = [&](int pSeries, const char* pHeader) {
        const platform::ChartSeries& series = engine.Series(pSeries);
        const std::span<const double> arguments = series.Arguments();
        const std::span<const double> values = series.Values();
        const std::size_t rows = std::min(arguments.size(), m_recordIds.size());
        out.reserve(out.size() + rows * 40);
        out.append(pHeader);
        for (std::size_t i = 0; i < rows; ++i) {
            ChartsHelper::AppendWhole(out, m_recordIds[i]);
            out.push_back('\t');
            ChartsHelper::AppendUserNumber(out, values[i], decimalPoint);
            out.push_back('\t');
            ChartsHelper::AppendUserNumber(out, arguments[i], decimalPoint);
            out.append("\r\n");
        }
    };
    block(kTargetSeries, "Record ID\tDummyVar\tTarget\r\n");
    if (!m_targetOnly) {
        // An empty line between the blocks, so a spreadsheet shows two tables.
        out.append("\r\n");
        block(kModelSeries, "Record ID\tDummyVar\tModel\r\n");
    }
    return serialization::FromUtf8(out);
}

void StackedDistributionChart::Clear() {
    platform::ChartEngine& engine = Engine();
    for (const int index : {kTargetSeries, kModelSeries}) {
        if (index < engine.SeriesCount()) {
            engine.Series(index).ClearPoints();
        }
    }
    engine.Title(kSubtitle).SetText(QStringLiteral(" "));
    m_recordIds.clear();
    m_lowerBand.clear();
    m_upperBand.clear();
    m_startAt = 0;
    m_endAt = 0;
}

} // namespace trv5
