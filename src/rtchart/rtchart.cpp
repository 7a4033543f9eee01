#include <trv5charts/rtchart.h>

#include "foundation/numbertext.h"
#include "foundation/serialization.h"
#include "platform/chartmenu.h"
#include "platform/colour.h"
#include "platform/drawingsurface.h"
#include "platform/focusmark.h"
#include "platform/xmldocument.h"
#include "rtchart/chartlayout.h"
#include "rtchart/plotframe.h"

#include <trv5charts/axisrange.h>
#include <trv5charts/charterror.h>
#include <trv5charts/colorconverter.h>
#include <trv5charts/hostsettings.h>
#include <trv5charts/localizationlib.h>
#include <trv5charts/mathhelper.h>

#include <QAction>
#include <QEvent>
#include <QFrame>
#include <QLabel>

#include <algorithm>
#include <optional>
#include <utility>

namespace trv5 {

namespace {

// The chart standardizes arrays beyond this bound; ten times the bound a series applies to
// its own preparation, so that data a series would keep as it is stays untouched here too.
constexpr double kStandardizeLimit = 90'000'000.0;

constexpr char kGenerationHeader[] = "Generation";
constexpr char kRecordHeader[] = "Record ID";

void AppendUserNumber(std::string& pOut, double pValue, char pDecimalPoint) {
    char buffer[numbertext::kMaxDoubleText];
    const char* end = numbertext::WriteDouble(buffer, pValue, pDecimalPoint);
    pOut.append(buffer, static_cast<std::size_t>(end - buffer));
}

// The reference line's saved value. It is written in the user's locale and read in the fixed
// culture, so under a decimal comma "0,9" reads as 9; hosts have always had it so. Two cases
// are read the way the text was written instead: an exponent form holding the user's decimal
// point, whose misreading would move the point one more place at every save and load until the
// value overflows, and a text the fixed culture cannot read at all. nullopt when neither reads.
std::optional<double> ReadLineValue(std::string_view pText) {
    const char decimalPoint = LocalizationLib::UserDecimalPointChar();
    const bool exponent = pText.find_first_of("eE") != std::string_view::npos;
    double value = 0.0;
    const bool userPoint =
        decimalPoint != '.' && pText.find(decimalPoint) != std::string_view::npos;
    if (!(exponent && userPoint) &&
        numbertext::ParseDouble(pText, '.', ',', value) == numbertext::ParseStatus::Ok) {
        return value;
    }
    if (numbertext::ParseDouble(pText, decimalPoint, '\0', value) == numbertext::ParseStatus::Ok) {
        return value;
    }
    return std::nullopt;
}

} // namespace

RTChart::RTChart(QWidget* pParent)
    : QWidget(pParent), m_lineColour(ColorConverter::RGBToLong(75, 77, 102)),
      m_painted(std::make_unique<rtchart::PaintMemory>()) {
    // The chart has no natural size of its own. Without this, grabbing or showing a chart that
    // nobody has sized makes Qt size it to fit its children, whose frame reaches one pixel past
    // the plot, so every grab grew the chart by a pixel and redrew it.
    setAttribute(Qt::WA_Resized);
    // The frame goes first so that the plot lies above it.
    fraPlot = new QFrame(this);
    fraPlot->setObjectName(QStringLiteral("fraPlot"));
    fraPlot->setFrameStyle(QFrame::Box | QFrame::Plain);
    pic = new platform::DrawingSurface(this);
    pic->setObjectName(QStringLiteral("pic"));
    pic->setMouseTracking(true);
    pic->installEventFilter(this);

    const auto makeLabel = [this](const QString& pName) {
        auto* label = new QLabel(this);
        label->setObjectName(pName);
        return label;
    };
    for (QLabel*& label : lblOrigin) {
        label = makeLabel(QStringLiteral("lblOrigin"));
    }
    for (QLabel*& label : lblScale) {
        label = makeLabel(QStringLiteral("lblScale"));
    }
    for (QLabel*& label : lblAxisTitle) {
        label = makeLabel(QStringLiteral("lblAxisTitle"));
    }
    lblLineLegend = makeLabel(QStringLiteral("lblLineLegend"));
    lblLineLegend->hide();
    // One legend label exists from the start; further ones are added as series arrive.
    lblLegend.push_back(makeLabel(QStringLiteral("lblLegend")));
    lblLegend.front()->hide();

    ctxMain = new platform::ChartMenu(this, QStringLiteral("ctxMain"));
    ctxMain->AddItem(QStringLiteral("Copy &Chart"), QStringLiteral("mnuMain"));
    ctxMain->AddItem(QStringLiteral("Copy Chart &Data"), QStringLiteral("mnuMain"));
    ctxMain->AddItem(QStringLiteral("-"), QStringLiteral("mnuMain"));
    ctxMain->AddItem(QStringLiteral("Print"), QStringLiteral("mnuMain"));
    sepShowLine = ctxMain->AddItem(QStringLiteral("-"), QStringLiteral("sepShowLine"));
    mnuShowLine = ctxMain->AddItem(QStringLiteral("Show Line"), QStringLiteral("mnuShowLine"));
    sepShowLine->setVisible(false);
    mnuShowLine->setVisible(false);
    mnuShowLine->setCheckable(true);
    // Checked from the start, so that a line the host adds is shown unless the user says no.
    mnuShowLine->setChecked(true);
    connect(ctxMain, &platform::ChartMenu::Triggered, this, &RTChart::OnMenuCommand);
    connect(ctxMain, &platform::ChartMenu::PrintFailed, this, &RTChart::PrintFailed);
    setFocusPolicy(Qt::StrongFocus);
    new platform::FocusMark(this);
    setAccessibleName(QStringLiteral("Run progress chart"));

    SetBackColor(m_backColor);
}

RTChart::~RTChart() = default;

void RTChart::ApplyBackColor(QWidget* pWidget) const {
    QPalette palette = pWidget->palette();
    palette.setColor(QPalette::Window, platform::ToQColor(m_backColor));
    pWidget->setPalette(palette);
    // Explicit, so that a role the host gives the chart's container is not inherited.
    pWidget->setBackgroundRole(QPalette::Window);
    pWidget->setAutoFillBackground(true);
}

QColor RTChart::BackQColor() const {
    return platform::ToQColor(m_backColor);
}

void RTChart::SetBackQColor(const QColor& pColour) {
    SetBackColor(platform::FromQColor(pColour));
}

void RTChart::SetBackColor(std::int32_t pColour) {
    m_backColor = pColour;
    ApplyBackColor(this);
    pic->SetBackColor(pColour);
    ApplyBackColor(fraPlot);
    for (const std::vector<QLabel*>& pool : m_tickLabels) {
        for (QLabel* label : pool) {
            ApplyBackColor(label);
        }
    }
    for (QLabel* label : lblAxisTitle) {
        ApplyBackColor(label);
    }
    ApplyBackColor(lblLineLegend);
    for (QLabel* label : lblOrigin) {
        ApplyBackColor(label);
    }
    for (QLabel* label : lblScale) {
        ApplyBackColor(label);
    }
    for (QLabel* label : lblLegend) {
        ApplyBackColor(label);
    }
    // The text colours are chosen against the new background.
    ApplyLayout();
}

void RTChart::changeEvent(QEvent* pEvent) {
    QWidget::changeEvent(pEvent);
    // A background that follows the palette takes a new palette's colour, and the texts a
    // colour that reads on it.
    platform::FollowPaletteChange(*pEvent, platform::FollowsPalette(m_backColor), m_recolouring,
                                  [this] {
                                      SetBackColor(m_backColor);
                                      DrawChart();
                                  });
}

void RTChart::SetMainYAxis(std::shared_ptr<Axis> pAxis) {
    m_axes[0] = std::move(pAxis);
}

void RTChart::SetSecondaryYAxis(std::shared_ptr<Axis> pAxis) {
    m_axes[1] = std::move(pAxis);
}

std::int32_t RTChart::AddSeries(std::shared_ptr<Series> pSeries, bool pDrawOnSecondaryAxis,
                                const QString& pName) {
    if (m_seriesCount > kMaxSeries - 1) {
        throw ChartError(ChartError::TooManySeries);
    }
    if (!pSeries) {
        pSeries = std::make_shared<Series>();
        pSeries->SetDrawOnSecondaryAxis(pDrawOnSecondaryAxis);
        pSeries->SetName(pName);
    }
    m_series[static_cast<std::size_t>(m_seriesCount)] = pSeries;

    if (static_cast<std::size_t>(m_seriesCount) > lblLegend.size() - 1) {
        auto* label = new QLabel(this);
        label->setObjectName(QStringLiteral("lblLegend"));
        lblLegend.push_back(label);
    }
    // The caption goes to the highest label, which after a Reset is not the new series' own
    // label; the legend is laid out from all visible labels, so the order stays right.
    QLabel* label = lblLegend.back();
    label->setText(rtchart::VisibleCaption(pSeries->Name()));
    ApplyBackColor(label);
    label->setVisible(true);

    return m_seriesCount++;
}

std::shared_ptr<Series> RTChart::GetSeries(std::int32_t pIndex) const {
    if (pIndex < 0 || pIndex >= kMaxSeries) {
        throw ChartError(ChartError::IndexOutOfRange,
                         QStringLiteral("Series index %1 is outside 0 to 20").arg(pIndex));
    }
    return m_series[static_cast<std::size_t>(pIndex)];
}

Series& RTChart::SlotAt(std::int32_t pIndex) const {
    if (pIndex < 0 || pIndex >= kMaxSeries) {
        (void)GetSeries(pIndex); // throws the out-of-range error with its message
    }
    // By reference: this is on the per-point path, where a shared_ptr copy would cost two
    // atomic operations per point.
    const std::shared_ptr<Series>& series = m_series[static_cast<std::size_t>(pIndex)];
    if (!series) {
        throw ChartError(ChartError::ObjectNotSet,
                         QStringLiteral("No series has been added at index %1").arg(pIndex));
    }
    return *series;
}

void RTChart::SetSeriesData(std::int32_t pIndex, std::span<const double> pData) {
    serialization::RunTrapped([&] {
        SlotAt(pIndex).SetData(pData);
        m_dataChanged = true;
        m_singleSeries = false;
    });
}

void RTChart::SetSeriesData2(std::int32_t pIndex, std::span<const double> pData,
                             std::span<const std::int32_t> pIndexes) {
    serialization::RunTrapped([&] {
        SlotAt(pIndex).SetData2(pData, pIndexes);
        m_dataChanged = true;
        m_singleSeries = false;
    });
}

void RTChart::SetSeriesData3(std::int32_t pIndex, std::span<const double> pData,
                             std::span<const std::int32_t> pIndexes, Replacements pReplacements) {
    serialization::RunTrapped([&] {
        SlotAt(pIndex).SetData3(pData, pIndexes, std::move(pReplacements));
        m_dataChanged = true;
        m_singleSeries = false;
    });
}

bool RTChart::NeedsStandardizing(std::span<const double> pValues) const {
    const MathHelper::MinMaxValues extremes = MathHelper::ComputeMinMax(pValues, -1);
    return !(extremes.Maximum <= kStandardizeLimit && extremes.Minimum >= -kStandardizeLimit);
}

std::vector<double> RTChart::StandardizeForChart(std::span<const double> pValues) {
    // The line is moved with the data so that it keeps its place relative to it.
    if (m_lineShown) {
        return MathHelper::StandardizeWithValue(pValues, m_lineValue);
    }
    return MathHelper::Standardize(pValues);
}

void RTChart::GiveData(Series& pSeries, std::span<const double> pData,
                       std::span<const std::int32_t> pIndexes, const Replacements& pReplacements) {
    if (pReplacements) {
        pSeries.SetData3(pData, pIndexes, pReplacements);
    } else {
        pSeries.SetData2(pData, pIndexes);
    }
}

void RTChart::SetSeriesData4(std::span<const double> pData1, std::span<const double> pData2,
                             std::span<const std::int32_t> pIndexes, Replacements pReplacements1,
                             Replacements pReplacements2) {
    serialization::RunTrapped([&] {
        if (NeedsStandardizing(pData1)) {
            const std::vector<double> standardized = StandardizeForChart(pData1);
            GiveData(SlotAt(0), standardized, pIndexes, pReplacements1);
            GiveData(SlotAt(1), standardized, pIndexes, pReplacements2);
        } else {
            GiveData(SlotAt(0), pData1, pIndexes, pReplacements1);
            GiveData(SlotAt(1), pData2, pIndexes, pReplacements2);
        }
        RecomputeAxisRanges();
        m_dataChanged = true;
        m_singleSeries = false;
    });
}

void RTChart::SetSeriesDataWithReplacement(std::span<const double> apModel,
                                           std::span<const double> pTarget,
                                           std::span<const std::int32_t> pIndexes,
                                           Replacements pReplacements) {
    serialization::RunTrapped([&] {
        Series& target = SlotAt(0);
        Series& model = SlotAt(1);
        if (!NeedsStandardizing(apModel)) {
            target.RemoveOriginalData();
            model.RemoveOriginalData();
            target.SetData3(pTarget, pIndexes, pReplacements);
            model.SetData2(apModel, pIndexes);
        } else {
            const std::vector<double> standardized = StandardizeForChart(apModel);
            const MathHelper::MinMaxValues modelExtremes =
                MathHelper::ComputeMinMax(standardized, -1);
            const double targetMinimum = MathHelper::ComputeMinMax(pTarget, -1).Minimum;
            // The target is two-valued: its low class goes to the bottom of the standardized
            // model and everything else to the top, so both stay on the same scale.
            std::vector<double> mappedTarget(pTarget.begin(), pTarget.end());
            for (double& value : mappedTarget) {
                value = value == targetMinimum ? modelExtremes.Minimum : modelExtremes.Maximum;
            }
            target.SetData3(mappedTarget, pIndexes, pReplacements);
            target.SetOriginalData(pTarget);
            model.SetData2(standardized, pIndexes);
            model.SetOriginalData(apModel);
        }
        m_dataChanged = true;
        m_singleSeries = false;
    });
}

void RTChart::SetSeriesData5(std::span<const double> pData, std::span<const std::int32_t> pIndexes,
                             Replacements pReplacements) {
    serialization::RunTrapped([&] {
        if (NeedsStandardizing(pData)) {
            GiveData(SlotAt(0), StandardizeForChart(pData), pIndexes, pReplacements);
        } else {
            GiveData(SlotAt(0), pData, pIndexes, pReplacements);
        }
        m_singleSeries = true;
        RecomputeAxisRanges();
        m_dataChanged = true;
    });
}

void RTChart::RecomputeAxisRanges() {
    // Without host settings there is no margin to read, and the data range is used as it is.
    const double margin = Globals::HasConfig() ? SettingsMargin() : 0.0;
    const Series& first = SlotAt(0);
    ValueRange range = PaddedRange(first.GetMinValue(), first.GetMaxValue(), margin);
    if (m_sortBothStandardizedSeries) {
        const Series& second = SlotAt(1);
        const ValueRange other = PaddedRange(second.GetMinValue(), second.GetMaxValue(), margin);
        const double highs[] = {range.Maximum, other.Maximum};
        const double lows[] = {range.Minimum, other.Minimum};
        std::int32_t whole = -1;
        range.Maximum = MathHelper::ArrayMax(highs, whole);
        whole = -1;
        range.Minimum = MathHelper::ArrayMin(lows, whole);
    }
    for (const std::shared_ptr<Axis>& axis : m_axes) {
        if (axis) {
            axis->Init(range.Minimum, range.Maximum, axis->IsSecondaryAxis());
        }
    }
}

void RTChart::ClearSeriesData(std::int32_t pIndex) {
    SlotAt(pIndex).ClearData();
}

void RTChart::AddPoint(std::int32_t pIndex, double pValue) {
    SlotAt(pIndex).AddPoint(pValue);
    m_dataChanged = true;
}

void RTChart::SetPoint(std::int32_t pIndex, PointType pPoint) {
    if (const std::shared_ptr<Series> series = GetSeries(pIndex)) {
        series->SetPoint(pPoint);
        m_dataChanged = true;
    }
}

void RTChart::SetDataType(std::int32_t pIndex, XSeriesDataType pDataType) {
    if (const std::shared_ptr<Series> series = GetSeries(pIndex)) {
        series->SetDataType(pDataType);
    }
}

void RTChart::Refresh() {
    DrawChart();
}

void RTChart::Clear() {
    m_dataChanged = false;
    Refresh();
}

void RTChart::Reset() {
    for (std::int32_t i = 0; i < m_seriesCount; ++i) {
        if (const std::shared_ptr<Series>& series = m_series[static_cast<std::size_t>(i)]) {
            series->ClearData();
        }
    }
    m_seriesCount = 0;
    Clear();
}

void RTChart::SetLastGenerationForCopy(std::int32_t pLastGeneration) {
    m_lastGeneration = pLastGeneration;
}

void RTChart::AddHorizontalLine(double pValue, const QString& pLegendText,
                                const QString& pMenuCaption) {
    m_lineShown = mnuShowLine->isChecked();
    m_lineValue = pValue;
    lblLineLegend->setVisible(m_lineShown);
    lblLineLegend->setText(rtchart::VisibleCaption(pLegendText));
    QPalette palette = lblLineLegend->palette();
    palette.setColor(QPalette::WindowText, platform::ToQColor(m_lineColour));
    lblLineLegend->setPalette(palette);
    mnuShowLine->setText(pMenuCaption);
    sepShowLine->setVisible(true);
    mnuShowLine->setVisible(true);
}

void RTChart::UpdateHorizontalLine(double pValue) {
    m_lineValue = pValue;
}

void RTChart::HideHorizontalLine() {
    m_lineValue = kNoLine;
    m_lineShown = false;
}

void RTChart::StopAddingHorizontalLine() {
    sepShowLine->setVisible(false);
    mnuShowLine->setVisible(false);
}

void RTChart::ToggleHorizontalLine() {
    mnuShowLine->setChecked(!mnuShowLine->isChecked());
    ApplyLineCheck();
}

void RTChart::ApplyLineCheck() {
    m_lineShown = mnuShowLine->isChecked();
    lblLineLegend->setVisible(m_lineShown);
    Refresh();
}

bool RTChart::IsLineMenuVisible() const {
    return mnuShowLine->isVisible();
}

bool RTChart::IsLineMenuChecked() const {
    return mnuShowLine->isChecked();
}

QString RTChart::LineMenuCaption() const {
    return mnuShowLine->text();
}

QString RTChart::LineLegendText() const {
    return lblLineLegend->text();
}

bool RTChart::IsLineLegendVisible() const {
    return lblLineLegend->isVisibleTo(this);
}

QStringList RTChart::LegendCaptions() const {
    QStringList captions;
    for (const QLabel* label : lblLegend) {
        if (label->isVisibleTo(this)) {
            captions << label->text();
        }
    }
    return captions;
}

void RTChart::AppendXml(std::string& pOut) {
    std::size_t values = 0;
    for (std::int32_t i = 0; i < m_seriesCount; ++i) {
        if (const std::shared_ptr<Series>& series = m_series[static_cast<std::size_t>(i)]) {
            values += series->Values().size();
        }
    }
    // Typical saved numbers take 16 to 20 characters; growing the text as it goes would copy
    // it several times over.
    pOut.reserve(pOut.size() + 1024 + 20 * values);
    pOut.append(serialization::kChartPrefix);
    serialization::AppendWhole(pOut, m_seriesCount);
    pOut.append("' lastgeneration='");
    serialization::AppendWhole(pOut, m_lastGeneration);
    pOut.append("' linevalue='");
    // The line value is written in the user's locale while it is read in the fixed culture;
    // hosts depend on the attribute as it has always been written.
    if (m_lineShown) {
        AppendUserNumber(pOut, m_lineValue, LocalizationLib::UserDecimalPointChar());
    }
    pOut.append("'><chartaxis>");
    for (const std::shared_ptr<Axis>& axis : m_axes) {
        if (axis) {
            axis->AppendXml(pOut);
        }
    }
    pOut.append("</chartaxis><dataseries>");
    for (std::int32_t i = 0; i < m_seriesCount; ++i) {
        SlotAt(i).AppendXml(pOut);
    }
    pOut.append("</dataseries></rtchart>");
}

QString RTChart::ToString() {
    return serialization::WriteTrapped([this](std::string& pOut) { AppendXml(pOut); });
}

void RTChart::FromString(const QString& pText) {
    if (pText.isEmpty()) {
        return;
    }
    platform::XmlDocument document;
    if (!document.LoadXml(pText)) {
        return;
    }
    const bool complete = serialization::RunTrapped([&] {
        const platform::XmlNode root = document.DocumentElement();
        const int attributes = root.AttributeCount();
        if (attributes >= 2) {
            // A last generation that cannot be read keeps the one the chart had; it is no reason
            // to lose the axes and series that follow.
            serialization::RunTrapped(
                [&] { m_lastGeneration = serialization::ReadWhole(root.AttributeValue(1)); });
        }
        if (attributes >= 3) {
            const std::string_view lineValue = root.AttributeValue(2);
            m_lineShown = !lineValue.empty();
            if (m_lineShown) {
                // A line value that cannot be read hides the line; it never costs the chart its
                // axes and series.
                const std::optional<double> value = ReadLineValue(lineValue);
                m_lineShown = value.has_value();
                if (value) {
                    m_lineValue = *value;
                }
            }
        }

        const platform::XmlNode mainAxis = document.SelectSingleNode("//rtchart/chartaxis/axis");
        if (!mainAxis.IsNull()) {
            auto axis = std::make_shared<Axis>();
            SetMainYAxis(axis);
            serialization::RunTrapped([&] { axis->ReadElement(mainAxis); });
            const platform::XmlNode secondaryAxis = mainAxis.NextSibling();
            if (!secondaryAxis.IsNull()) {
                auto secondary = std::make_shared<Axis>();
                SetSecondaryYAxis(secondary);
                serialization::RunTrapped([&] { secondary->ReadElement(secondaryAxis); });
            }
        }

        for (const platform::XmlNode& node : document.SelectNodes("//rtchart/dataseries/series")) {
            auto series = std::make_shared<Series>();
            serialization::RunTrapped([&] { series->ReadElement(node); });
            AddSeries(series, false, QString());
        }
        m_dataChanged = true;
        Refresh();
    });
    m_dataChanged = complete;
}

bool RTChart::IsTypeOf(const QString& pText) {
    return serialization::HasPrefix(pText, serialization::kChartPrefix);
}

QString RTChart::GetChartDataAsString() {
    if (m_seriesCount == 0) {
        return {};
    }
    std::string text;
    const bool byRecord = m_series[0] && m_series[0]->HasIndexes();
    if (byRecord) {
        AppendRecordRows(text);
    } else {
        AppendGenerationRows(text);
    }
    return serialization::FromUtf8(text);
}

namespace {

void AppendHeader(std::string& pOut, const char* pFirstColumn,
                  const std::array<std::shared_ptr<Series>, RTChart::kMaxSeries>& pSeries,
                  std::int32_t pCount) {
    bool first = true;
    if (pFirstColumn != nullptr) {
        pOut.append(pFirstColumn);
        first = false;
    }
    for (std::int32_t s = 0; s < pCount; ++s) {
        if (!first) {
            pOut.push_back('\t');
        }
        first = false;
        if (const std::shared_ptr<Series>& series = pSeries[static_cast<std::size_t>(s)]) {
            pOut.append(serialization::ToUtf8(series->Name()));
        }
    }
    pOut.append("\r\n");
}

// A cell whose value cannot be read (an empty slot, a series shorter than series 0) is left
// empty rather than filled with a number that was never there.
template <class Read>
void AppendCell(std::string& pOut, const std::shared_ptr<Series>& pSeries, Read&& pRead,
                char pDecimalPoint) {
    if (!pSeries) {
        return;
    }
    try {
        AppendUserNumber(pOut, pRead(*pSeries), pDecimalPoint);
    } catch (const ChartError&) {
    }
}

} // namespace

std::size_t RTChart::MostValuesHeld() const {
    std::size_t most = 0;
    for (std::int32_t s = 0; s < m_seriesCount; ++s) {
        if (const std::shared_ptr<Series>& series = m_series[static_cast<std::size_t>(s)]) {
            most = std::max(most, series->Values().size());
        }
    }
    return most;
}

void RTChart::AppendGenerationRows(std::string& pOut) {
    const char decimalPoint = LocalizationLib::UserDecimalPointChar();
    const std::size_t count = static_cast<std::size_t>(m_seriesCount);
    AppendHeader(pOut, m_lastGeneration != 0 ? kGenerationHeader : nullptr, m_series,
                 m_seriesCount);
    const std::shared_ptr<Series>& first = m_series[0];
    // Rows stop at the last value slot that some series really has: a damaged saved state may
    // claim a newest point far beyond its values, and that claim must not turn into billions of
    // rows, while a series 0 whose data were cleared still lists the other series' values.
    const std::int32_t last =
        first ? static_cast<std::int32_t>(std::clamp<std::int64_t>(
                    first->LastPoint(), -1, static_cast<std::int64_t>(MostValuesHeld()) - 1))
              : -1;
    pOut.reserve(pOut.size() + static_cast<std::size_t>(last + 1) * count * 20);
    for (std::int32_t r = 0; r <= last; ++r) {
        if (m_lastGeneration != 0) {
            serialization::AppendWhole(pOut,
                                       static_cast<std::int64_t>(m_lastGeneration) - last + r);
            pOut.push_back('\t');
        }
        for (std::size_t s = 0; s < count; ++s) {
            if (s != 0) {
                pOut.push_back('\t');
            }
            AppendCell(
                pOut, m_series[s], [r](const Series& series) { return series.GetValue(r); },
                decimalPoint);
        }
        pOut.append("\r\n");
    }
}

void RTChart::AppendRecordRows(std::string& pOut) {
    const char decimalPoint = LocalizationLib::UserDecimalPointChar();
    const std::size_t count = static_cast<std::size_t>(m_seriesCount);
    AppendHeader(pOut, kRecordHeader, m_series, m_seriesCount);
    // As above: the rows are bounded by the values some series has, whatever count it claims.
    const std::int32_t rows = static_cast<std::int32_t>(
        std::min<std::int64_t>(m_series[0]->Count(), static_cast<std::int64_t>(MostValuesHeld())));
    pOut.reserve(pOut.size() + static_cast<std::size_t>(std::max(rows, 0)) * (count + 1) * 20);
    for (std::int32_t r = 0; r < rows; ++r) {
        try {
            serialization::AppendWhole(pOut, m_series[0]->IndexOfPoint(r));
        } catch (const ChartError&) {
        }
        for (std::size_t s = 0; s < count; ++s) {
            pOut.push_back('\t');
            AppendCell(
                pOut, m_series[s],
                [r](const Series& series) {
                    return series.HasOriginalData() ? series.GetOriginalValue(r)
                                                    : series.GetValue(r);
                },
                decimalPoint);
        }
        pOut.append("\r\n");
    }
}

} // namespace trv5
