#include <trv5charts/scatterplot.h>

#include "foundation/serialization.h"
#include "hosted/chartshelper.h"
#include "platform/chartengine.h"
#include "platform/clipboardaccess.h"
#include "platform/colour.h"

#include <trv5charts/axisrange.h>
#include <trv5charts/charterror.h>
#include <trv5charts/colorconverter.h>
#include <trv5charts/localizationlib.h>
#include <trv5charts/mathhelper.h>
#include <trv5charts/numberformat.h>

#include <algorithm>
#include <string>

namespace trv5 {

namespace {

constexpr int kPointsSeries = 0;
constexpr int kRegressionSeries = 1;
constexpr int kEquationTitle = 0;
constexpr int kSubtitle = 1;
constexpr int kHorizontalCaption = 2;
constexpr int kVerticalCaption = 3;
constexpr int kTooltipDecimals = 6;
constexpr double kEquationFontSize = 8.0;

} // namespace

// The plotted values (normalized where needed) and their ranges.
struct ScatterPlot::Prepared {
    std::vector<double> first;
    std::vector<double> second;
    double firstMinimum = 0.0;
    double firstMaximum = 0.0;
    double secondMinimum = 0.0;
    double secondMaximum = 0.0;
};

ScatterPlot::ScatterPlot(QWidget* pParent)
    : HostedChartFrame(QStringLiteral(":/trv5charts/scatterplot.json"), pParent) {}

ScatterPlot::~ScatterPlot() = default;

void ScatterPlot::AfterInit() {
    const QColor background = platform::ToQColor(ColorConverter::RGBToLong(255, 251, 242));
    Engine().SetBackgroundColour(background);
    Engine().SetDiagramBackgroundColour(background);
    m_horizontalCaption = Engine().Title(kHorizontalCaption).Text();
    m_verticalCaption = Engine().Title(kVerticalCaption).Text();
}

bool ScatterPlot::Prepare(std::int32_t pCount, std::span<const double> pFirstValues,
                          std::span<const double> pSecondValues, Prepared& pOut) {
    return serialization::RunTrapped([&] {
        const std::size_t count = static_cast<std::size_t>(std::max(pCount, 0));
        if (pCount < 1 || count > pFirstValues.size() || count > pSecondValues.size() ||
            count > m_recordIds.size()) {
            throw ChartError(ChartError::IndexOutOfRange);
        }
        const MathHelper::MinMaxValues first = MathHelper::ComputeMinMax(pFirstValues, pCount);
        const MathHelper::MinMaxValues second = MathHelper::ComputeMinMax(pSecondValues, pCount);
        pOut.first.assign(pFirstValues.begin(), pFirstValues.begin() + static_cast<long>(count));
        pOut.second.assign(pSecondValues.begin(), pSecondValues.begin() + static_cast<long>(count));
        pOut.firstMinimum = first.Minimum;
        pOut.firstMaximum = first.Maximum;
        pOut.secondMinimum = second.Minimum;
        pOut.secondMaximum = second.Maximum;

        // An axis over values that barely differ would show one smeared column of identical
        // tick labels; such values are shown normalized to 0..1 instead.
        const auto normalizeIfFlat = [&](std::vector<double>& pValues, double& pMinimum,
                                         double& pMaximum, int pTitle, const QString& pCaption) {
            if (ChartsHelper::RelativeSpread(pMinimum, pMaximum) >=
                ChartsHelper::kMinimumRelativeSpread) {
                Engine().Title(pTitle).SetText(pCaption);
                return;
            }
            pValues = ChartsHelper::Normalize(pValues, pMaximum, pMinimum);
            pMinimum = 0.0;
            pMaximum = 1.0;
            Engine().Title(pTitle).SetText(pCaption + ChartsHelper::kNormalizedSuffix);
        };
        normalizeIfFlat(pOut.second, pOut.secondMinimum, pOut.secondMaximum, kVerticalCaption,
                        m_verticalCaption);
        normalizeIfFlat(pOut.first, pOut.firstMinimum, pOut.firstMaximum, kHorizontalCaption,
                        m_horizontalCaption);
    });
}

void ScatterPlot::SetData(std::int32_t pCount, std::span<const double> pFirstValues,
                          std::span<const double> pSecondValues,
                          std::span<const std::int32_t> pRecordIds) {
    platform::ChartEngine& engine = Engine();
    platform::ChartSeries& points = engine.Series(kPointsSeries);
    m_recordIds.assign(pRecordIds.begin(), pRecordIds.end());
    points.ClearPoints();

    Prepared prepared;
    if (!Prepare(pCount, pFirstValues, pSecondValues, prepared)) {
        engine.Title(kSubtitle).SetText(ChartsHelper::kUnableToDraw);
        points.ClearPoints();
        return;
    }
    const std::size_t count = prepared.first.size();
    m_startAt = 1;
    m_endAt = pCount;

    // Tooltips straight into one buffer: "Record 17 (0.25, 3.5)".
    platform::PointTexts texts;
    texts.Reserve(count, count * 40);
    const char decimalPoint = LocalizationLib::UserDecimalPointChar();
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text.assign("Record ");
        ChartsHelper::AppendWhole(text, m_recordIds[i]);
        text.append(" (");
        ChartsHelper::AppendUserNumber(
            text, ChartsHelper::RoundToDecimals(prepared.first[i], kTooltipDecimals), decimalPoint);
        text.append(", ");
        ChartsHelper::AppendUserNumber(
            text, ChartsHelper::RoundToDecimals(prepared.second[i], kTooltipDecimals),
            decimalPoint);
        text.push_back(')');
        texts.Add(text).End();
    }
    points.SetPoints(prepared.first, prepared.second, std::move(texts));

    engine.Title(kSubtitle).SetText(
        m_showRecordIds
            ? QStringLiteral("Points %1 to %2").arg(m_recordIds.front()).arg(m_recordIds.back())
            : QStringLiteral("Points %1 to %2").arg(m_startAt).arg(m_endAt));

    MathHelper::ComputeLinearRegression(pCount, prepared.first, prepared.second, m_slope,
                                        m_intercept);
    // r = slope * sd(x) / sd(y); a deviation that cannot be computed, or no spread in the
    // second values, leaves the correlation undefined rather than dividing by zero.
    const double firstDeviation = MathHelper::ComputeStandardDeviation(pCount, prepared.first);
    const double secondDeviation = MathHelper::ComputeStandardDeviation(pCount, prepared.second);
    m_correlation = firstDeviation == NumberFormat::kUndefinedResult ||
                            secondDeviation == NumberFormat::kUndefinedResult ||
                            secondDeviation == 0.0
                        ? NumberFormat::kUndefinedResult
                        : m_slope * firstDeviation / secondDeviation;
    DrawRegressionLine(prepared);
    WriteEquation();

    if (m_yAxisTargetOnly) {
        ChartsHelper::SetYAxisRange(engine, prepared.secondMinimum, prepared.secondMaximum);
    } else {
        ChartsHelper::SetYAxisRange(engine, prepared.firstMinimum, prepared.firstMaximum,
                                    prepared.secondMinimum, prepared.secondMaximum,
                                    QString::fromLatin1(kMarginSettingKey));
    }
    ChartsHelper::SetXAxisRange(engine, prepared.firstMinimum, prepared.firstMaximum);
    ChartsHelper::ApplyLabelAngle(engine, prepared.firstMinimum, prepared.firstMaximum);
    LayoutEngine();
}

void ScatterPlot::DrawRegressionLine(const Prepared& pData) {
    const double slope = m_slope;
    const double intercept = m_intercept;
    const double xMinimum = pData.firstMinimum;
    const double xMaximum = pData.firstMaximum;
    const double yMinimum = pData.secondMinimum;
    const double yMaximum = pData.secondMaximum;
    double startX = xMinimum;
    double startY = slope * xMinimum + intercept;
    double endX = xMaximum;
    double endY = slope * xMaximum + intercept;
    // An end beyond the vertical range slides along the line to the bound it overshoots, as long
    // as that crossing lies within the horizontal range.
    const auto crossing = [&](double pBound, double& pX, double& pY) {
        if (slope == 0.0) {
            return;
        }
        const double x = (pBound - intercept) / slope;
        if (x >= xMinimum && x <= xMaximum) {
            pX = x;
            pY = pBound;
        }
    };
    if (slope <= 0.0) {
        if (startY > yMaximum) {
            crossing(yMaximum, startX, startY);
        }
        if (endY < yMinimum) {
            crossing(yMinimum, endX, endY);
        }
    } else {
        if (startY < yMinimum) {
            crossing(yMinimum, startX, startY);
        }
        if (endY > yMaximum) {
            crossing(yMaximum, endX, endY);
        }
    }
    platform::ChartSeries& line = Engine().Series(kRegressionSeries);
    line.ClearPoints();
    line.AddPoint(startX, startY);
    line.AddPoint(endX, endY);
}

void ScatterPlot::WriteEquation() {
    m_rSquare = m_correlation == NumberFormat::kUndefinedResult ? NumberFormat::kUndefinedResult
                                                                : m_correlation * m_correlation;
    platform::ChartTitle& title = Engine().Title(kEquationTitle);
    title.SetText(NumberFormat::RegressionEquation(m_slope, m_intercept, m_correlation));
    title.SetDocking(platform::Docking::Top);
    title.SetAlignment(platform::TitleAlignment::Near);
    title.SetFontSize(kEquationFontSize);
    title.SetBold(false);
}

void ScatterPlot::ShowLinearRegression(bool pShow) {
    Engine().Series(kRegressionSeries).SetVisible(pShow);
}

void ScatterPlot::ShowRegressionEquation(bool pShow) {
    Engine().Title(kEquationTitle).SetVisible(pShow);
}

void ScatterPlot::ShowLabels() {
    for (int i = 0; i < Engine().SeriesCount(); ++i) {
        Engine().Series(i).SetLabelsVisible(true);
    }
}

void ScatterPlot::HideLabels() {
    for (int i = 0; i < Engine().SeriesCount(); ++i) {
        Engine().Series(i).SetLabelsVisible(false);
    }
}

void ScatterPlot::CopySlopeIntercept() {
    const auto number = [](double pValue) {
        return LocalizationLib::DoubleToUserText(pValue);
    };
    const QString text = QStringLiteral("Slope:\t") + number(m_slope) +
                         QStringLiteral("\r\nIntercept:\t") + number(m_intercept) +
                         QStringLiteral("\r\nCorrelation Coefficient:\t") + number(m_correlation) +
                         QStringLiteral("\r\nR-square:\t") + number(m_rSquare);
    platform::ClipboardAccess::Clear();
    platform::ClipboardAccess::SetText(text);
}

QString ScatterPlot::GetChartDataAsString() {
    platform::ChartEngine& engine = Engine();
    if (engine.SeriesCount() == 0) {
        return {};
    }
    const platform::ChartSeries& points = engine.Series(kPointsSeries);
    const std::span<const double> arguments = points.Arguments();
    const std::span<const double> values = points.Values();
    const std::size_t rows = std::min(arguments.size(), m_recordIds.size());
    const char decimalPoint = LocalizationLib::UserDecimalPointChar();
    std::string out = serialization::ToUtf8(m_dataHeader);
    out.append("\r\n");
    out.reserve(out.size() + rows * 48);
    for (std::size_t i = 0; i < rows; ++i) {
        if (i != 0) {
            out.append("\r\n");
        }
        ChartsHelper::AppendWhole(out, m_recordIds[i]);
        out.push_back('\t');
        ChartsHelper::AppendUserNumber(out, arguments[i], decimalPoint);
        out.push_back('\t');
        ChartsHelper::AppendUserNumber(out, values[i], decimalPoint);
    }
    return serialization::FromUtf8(out);
}

void ScatterPlot::Clear() {
    platform::ChartEngine& engine = Engine();
    engine.Series(kPointsSeries).ClearPoints();
    engine.Series(kRegressionSeries).ClearPoints();
    engine.Title(kSubtitle).SetText(QStringLiteral(" "));
    engine.Title(kEquationTitle).SetText(QString());
}

} // namespace trv5
