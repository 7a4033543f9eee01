#include <trv5charts/clscatterplot.h>

#include "foundation/serialization.h"
#include "hosted/chartshelper.h"
#include "hosted/randomvalues.h"
#include "platform/chartengine.h"
#include "platform/clipboardaccess.h"

#include <trv5charts/localizationlib.h>

#include <cmath>
#include <limits>
#include <string>
#include <string_view>

namespace trv5 {

namespace {

constexpr int kTypeCount = 4;
constexpr int kSubtitle = 1;
constexpr int kHorizontalCaption = 2;
constexpr double kJitterOffset = 0.05;
// The cut-off line spans a fixed vertical range from end to end; on an automatic one it spans
// the dummy variable's band, [0.05, 1.05), and a little more.
constexpr double kCutoffBottom = 0.0;
constexpr double kCutoffTop = 1.1;

constexpr double kCircleSize = 6.0;
constexpr double kStarSize = 9.0;

const QString kCutoffSeries = QStringLiteral("Cutoff Point");

struct TypeTexts {
    std::string_view shortLabel;
    std::string_view ending;               // after "Record 7 (0.83"
    std::string_view logicSynthesisEnding; // after "Record 7"
    bool misclassified;
};

constexpr std::array<TypeTexts, kTypeCount> kTypes{{
    {"TN", "), True Negative", " (0), True Negative", false},
    {"FN", "), False Negative", " (0), False Negative", true},
    {"TP", "), True Positive", " (1), True Positive", false},
    {"FP", "), False Positive", " (1), False Positive", true},
}};

constexpr char kHeader[] = "Record ID\tModel\tDummy Variable\tType\r\n";
constexpr char kHeaderLS[] = "Record ID\tJittered Model Output\tDummy Variable\tType\r\n";

const TypeTexts& TypeOf(std::int32_t pCode) {
    return kTypes[static_cast<std::size_t>(pCode)];
}

} // namespace

struct CLScatterPlot::Marker {
    platform::MarkerShape shape;
    double size;
};

// What one pass over the host's arrays finds before anything changes.
struct CLScatterPlot::Scan {
    std::size_t count = 0;
    std::array<std::size_t, kTypeCount> perType{};
    // Extremes of the finite model values; minimum > maximum when there are none.
    double minimum = std::numeric_limits<double>::infinity();
    double maximum = -std::numeric_limits<double>::infinity();
};

CLScatterPlot::CLScatterPlot(QWidget* pParent)
    : HostedChartFrame(QStringLiteral(":/trv5charts/clscatterplot.json"), pParent),
      m_random(std::make_unique<hosted::RandomValues>()) {
    // Records crowd wherever the model is sure of them, often in a corner; the legend gives way.
    Engine().SetLegendAvoidsPoints(true);
}

CLScatterPlot::~CLScatterPlot() = default;

void CLScatterPlot::AfterInit() {
    platform::ChartEngine& engine = Engine();
    m_horizontalCaption = engine.Title(kHorizontalCaption).Text();
    m_definitionMarkers.clear();
    for (int type = 0; type < kTypeCount && type < engine.SeriesCount(); ++type) {
        const platform::ChartSeries& series = engine.Series(type);
        m_definitionMarkers.push_back({series.Marker(), series.MarkerSize()});
    }
    if (m_starsCircles) {
        ApplyMarkers();
    }
}

void CLScatterPlot::SetUseStarsCircles(bool pValue) {
    m_starsCircles = pValue;
    ApplyMarkers();
}

void CLScatterPlot::ApplyMarkers() {
    platform::ChartEngine& engine = Engine();
    const int types = std::min<int>(kTypeCount, static_cast<int>(m_definitionMarkers.size()));
    for (int type = 0; type < types; ++type) {
        platform::ChartSeries& series = engine.Series(type);
        const Marker& own = m_definitionMarkers[static_cast<std::size_t>(type)];
        if (!m_starsCircles) {
            series.SetMarker(own.shape);
            series.SetMarkerSize(own.size);
        } else if (kTypes[static_cast<std::size_t>(type)].misclassified) {
            series.SetMarker(platform::MarkerShape::Star);
            series.SetMarkerSize(kStarSize);
        } else {
            series.SetMarker(platform::MarkerShape::Circle);
            series.SetMarkerSize(kCircleSize);
        }
    }
}

void CLScatterPlot::UseManualMaxMin(double pMin, double pMax) {
    if (!std::isfinite(pMin) || !std::isfinite(pMax)) {
        throw ChartError(ChartError::InvalidArgument,
                         QStringLiteral("The manual minimum and maximum must be finite numbers"));
    }
    m_manualRange = std::array<double, 2>{std::min(pMin, pMax), std::max(pMin, pMax)};
}

void CLScatterPlot::UseAutoMaxMin() {
    m_manualRange.reset();
}

void CLScatterPlot::CreateRandomValues(std::int32_t pCount) {
    std::vector<double> jitter = m_random->Draw(pCount, 0.0, 1.0);
    for (double& value : jitter) {
        value += kJitterOffset;
    }
    m_jitter = std::move(jitter);
}

void CLScatterPlot::SetFixedRandomSeed(std::optional<std::uint64_t> pSeed) {
    m_random->SetFixedSeed(pSeed);
}

CLScatterPlot::Scan CLScatterPlot::ScanRecords(std::int32_t pCount,
                                               std::span<const std::int32_t> pTypes,
                                               std::span<const double> pModelValues,
                                               std::span<const std::int32_t> pRecordIds) {
    if (pCount < 0 || static_cast<std::size_t>(pCount) > pTypes.size() ||
        static_cast<std::size_t>(pCount) > pModelValues.size() ||
        static_cast<std::size_t>(pCount) > pRecordIds.size()) {
        throw ChartError(ChartError::IndexOutOfRange,
                         QStringLiteral("A count of %1 records does not fit arrays of %2 types, "
                                        "%3 model values and %4 record identifiers")
                             .arg(pCount)
                             .arg(pTypes.size())
                             .arg(pModelValues.size())
                             .arg(pRecordIds.size()));
    }
    Scan scan;
    scan.count = static_cast<std::size_t>(pCount);
    for (std::size_t i = 0; i < scan.count; ++i) {
        const std::int32_t type = pTypes[i];
        if (type < 0 || type >= kTypeCount) {
            throw ChartError(kInvalidTypeCode,
                             QStringLiteral("Record %1 (index %2) has the type code %3; codes run "
                                            "from 0 to 3")
                                 .arg(pRecordIds[i])
                                 .arg(i)
                                 .arg(type));
        }
        ++scan.perType[static_cast<std::size_t>(type)];
        const double value = pModelValues[i];
        if (std::isfinite(value)) {
            scan.minimum = std::min(scan.minimum, value);
            scan.maximum = std::max(scan.maximum, value);
        }
    }
    // The engine must hold the four type series; its ChartError 9 otherwise, before any change.
    Engine().Series(kTypeCount - 1);
    return scan;
}

void CLScatterPlot::SetData(std::int32_t pCount, std::span<const std::int32_t> pTypes,
                            std::span<const double> pModelValues,
                            std::span<const std::int32_t> pRecordIds) {
    const Scan scan = ScanRecords(pCount, pTypes, pModelValues, pRecordIds);
    platform::ChartEngine& engine = Engine();

    m_types.assign(pTypes.begin(), pTypes.begin() + static_cast<std::ptrdiff_t>(scan.count));
    m_recordIds.assign(pRecordIds.begin(),
                       pRecordIds.begin() + static_cast<std::ptrdiff_t>(scan.count));
    m_modelValues.assign(pModelValues.begin(),
                         pModelValues.begin() + static_cast<std::ptrdiff_t>(scan.count));

    double minimum = scan.minimum;
    double maximum = scan.maximum;
    if (m_manualRange) {
        minimum = (*m_manualRange)[0];
        maximum = (*m_manualRange)[1];
    }
    const bool hasRange = minimum <= maximum;
    const double cutoff = m_roundingThreshold;
    bool normalized = false;
    if (hasRange && minimum != maximum) {
        m_roundingThreshold = ChartsHelper::NormalizeValue(m_roundingThreshold, maximum, minimum);
        // Outputs that barely differ would pile up in one column under a row of identical tick
        // labels; they are spread over 0..1 instead, and the caption says so.
        normalized =
            ChartsHelper::RelativeSpread(minimum, maximum) < ChartsHelper::kMinimumRelativeSpread;
    }
    engine.Title(kHorizontalCaption)
        .SetText(normalized ? m_horizontalCaption + ChartsHelper::kNormalizedSuffix
                            : m_horizontalCaption);

    if (m_jitter.size() != scan.count) {
        CreateRandomValues(pCount);
    }
    // The rows of the data text keep the dummy variable of their points, whatever the host
    // draws next.
    m_plottedJitter = m_jitter;
    PlotTypes(scan, normalized, minimum, maximum);
    DrawCutoff(normalized ? m_roundingThreshold : cutoff);

    if (scan.count == 0) {
        m_startAt = 0;
        m_endAt = 0;
        engine.Title(kSubtitle).SetText(QStringLiteral(" "));
    } else {
        m_startAt = 1;
        m_endAt = pCount;
        engine.Title(kSubtitle).SetText(
            m_showRecordIds
                ? QStringLiteral("Points %1 to %2").arg(m_recordIds.front()).arg(m_recordIds.back())
                : QStringLiteral("Points %1 to %2").arg(m_startAt).arg(m_endAt));
    }
    if (hasRange) {
        const double low = normalized ? 0.0 : minimum;
        const double high = normalized ? 1.0 : maximum;
        ChartsHelper::ApplyLabelAngle(engine, low, high);
        ChartsHelper::SetXAxisRange(engine, low, high);
    }
    LayoutEngine();
}

void CLScatterPlot::PlotTypes(const Scan& pScan, bool pNormalized, double pMinimum,
                              double pMaximum) {
    const std::size_t count = m_types.size();
    const std::array<std::size_t, kTypeCount>& perType = pScan.perType;
    struct Points {
        std::vector<double> arguments;
        std::vector<double> values;
        platform::PointTexts texts;
    };
    std::array<Points, kTypeCount> points;
    for (std::size_t type = 0; type < kTypeCount; ++type) {
        points[type].arguments.reserve(perType[type]);
        points[type].values.reserve(perType[type]);
        points[type].texts.Reserve(perType[type], perType[type] * 44);
    }

    const char decimalPoint = LocalizationLib::UserDecimalPointChar();
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t type = m_types[i];
        const TypeTexts& texts = TypeOf(type);
        const double value = m_modelValues[i];
        Points& target = points[static_cast<std::size_t>(type)];
        target.arguments.push_back(
            pNormalized ? ChartsHelper::NormalizeValue(value, pMaximum, pMinimum) : value);
        target.values.push_back(m_plottedJitter[i]);
        // "Record 7 (0.83), False Positive" or, for logic synthesis, "Record 7 (1), False
        // Positive".
        text.assign("Record ");
        ChartsHelper::AppendWhole(text, m_recordIds[i]);
        if (m_logicSynthesis) {
            text.append(texts.logicSynthesisEnding);
        } else {
            text.append(" (");
            ChartsHelper::AppendUserNumber(text, value, decimalPoint);
            text.append(texts.ending);
        }
        target.texts.Add(text).End();
    }
    platform::ChartEngine& engine = Engine();
    for (int type = 0; type < kTypeCount; ++type) {
        Points& each = points[static_cast<std::size_t>(type)];
        engine.Series(type).SetPoints(std::move(each.arguments), std::move(each.values),
                                      std::move(each.texts));
    }
}

void CLScatterPlot::DrawCutoff(double pArgument) {
    platform::ChartSeries* cutoff = Engine().FindSeries(kCutoffSeries);
    if (cutoff == nullptr) {
        return;
    }
    cutoff->ClearPoints();
    if (m_types.empty() || !std::isfinite(pArgument)) {
        return;
    }
    const platform::ChartAxis& vertical = Engine().AxisY();
    const bool fixed = !vertical.AutoRange() && vertical.MinValue() < vertical.MaxValue();
    cutoff->AddPoint(pArgument, fixed ? vertical.MinValue() : kCutoffBottom);
    cutoff->AddPoint(pArgument, fixed ? vertical.MaxValue() : kCutoffTop);
}

QString CLScatterPlot::DataText(const char* pHeader) const {
    const char decimalPoint = LocalizationLib::UserDecimalPointChar();
    std::string out(pHeader);
    out.reserve(out.size() + m_types.size() * 48);
    for (std::size_t i = 0; i < m_types.size(); ++i) {
        ChartsHelper::AppendWhole(out, m_recordIds[i]);
        out.push_back('\t');
        ChartsHelper::AppendUserNumber(out, m_modelValues[i], decimalPoint);
        out.push_back('\t');
        ChartsHelper::AppendUserNumber(out, m_plottedJitter[i], decimalPoint);
        out.push_back('\t');
        out.append(TypeOf(m_types[i]).shortLabel);
        out.append("\r\n");
    }
    return serialization::FromUtf8(out);
}

QString CLScatterPlot::GetChartDataAsString() {
    if (Engine().SeriesCount() == 0) {
        return {};
    }
    return DataText(kHeader);
}

QString CLScatterPlot::GetChartDataAsStringLS() {
    if (Engine().SeriesCount() == 0) {
        return {};
    }
    return DataText(kHeaderLS);
}

void CLScatterPlot::CopyDataLS() {
    if (Engine().SeriesCount() == 0) {
        return;
    }
    platform::ClipboardAccess::SetText(GetChartDataAsStringLS());
}

void CLScatterPlot::SetFixedXAxis(double pMinX, double pMaxX) {
    platform::ChartAxis& axis = Engine().AxisX();
    axis.SetAutoRange(false);
    axis.SetMinValue(pMinX);
    axis.SetMaxValue(pMaxX);
}

void CLScatterPlot::SetAutoXAxis() {
    Engine().AxisX().SetAutoRange(true);
}

void CLScatterPlot::ShowCutoffPoint(bool pShow) {
    if (platform::ChartSeries* cutoff = Engine().FindSeries(kCutoffSeries)) {
        cutoff->SetVisible(pShow);
    }
}

void CLScatterPlot::ShowLabels(bool pShow) {
    platform::ChartEngine& engine = Engine();
    for (int type = 0; type < kTypeCount && type < engine.SeriesCount(); ++type) {
        platform::ChartSeries& series = engine.Series(type);
        series.SetLabelFormat(platform::LabelFormat::Text);
        series.SetLabelsVisible(pShow);
    }
}

void CLScatterPlot::Clear() {
    platform::ChartEngine& engine = Engine();
    for (int type = 0; type < kTypeCount && type < engine.SeriesCount(); ++type) {
        engine.Series(type).ClearPoints();
    }
    if (platform::ChartSeries* cutoff = engine.FindSeries(kCutoffSeries)) {
        cutoff->ClearPoints();
    }
    if (engine.TitleCount() > kSubtitle) {
        engine.Title(kSubtitle).SetText(QStringLiteral(" "));
    }
    m_types.clear();
    m_modelValues.clear();
    m_recordIds.clear();
    m_jitter.clear();
    m_plottedJitter.clear();
    m_startAt = 0;
    m_endAt = 0;
}

} // namespace trv5
