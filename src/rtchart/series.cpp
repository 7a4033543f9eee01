#include <trv5charts/series.h>

#include "foundation/serialization.h"
#include "platform/xmldocument.h"

#include <trv5charts/charterror.h>
#include <trv5charts/localizationlib.h>
#include <trv5charts/mathhelper.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace trv5 {

namespace {

constexpr char kTemplate[] = "<series name='' min='' max='' settype='' drawsec='' point='' "
                             "colour='' count='' datatype='' lastpoint=''></series>";
enum AttributePosition {
    kName,
    kMin,
    kMax,
    kSetType,
    kDrawSecondary,
    kPoint,
    kColour,
    kCount,
    kDataType,
    kLastPoint
};

// Arrays below this bound or above its negative are standardized before they are kept; values
// of that size would make the series unreadable next to the others.
constexpr double kPrepareLimit = 9'000'000.0;

// How many value slotCount a saved series may claim beyond the values its element holds (8 MiB).
constexpr std::size_t kMaxUnbackedSlots = 1'048'576;

double At(std::span<const double> pValues, std::int32_t pIndex) {
    if (pIndex < 0 || static_cast<std::size_t>(pIndex) >= pValues.size()) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    return pValues[static_cast<std::size_t>(pIndex)];
}

std::int32_t LastIndexOf(std::span<const double> pValues) {
    if (pValues.empty()) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    if (pValues.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw ChartError(ChartError::Overflow);
    }
    return static_cast<std::int32_t>(pValues.size() - 1);
}

// A value rounded to ten decimals as decimal text would round it (ties to even), so that keys
// built from computed values match the keys the host wrote.
double RoundToTenDecimals(double pValue) {
    if (!std::isfinite(pValue) || std::fabs(pValue) >= 1e15) {
        return pValue;
    }
    char buffer[64];
    const std::to_chars_result written =
        std::to_chars(buffer, buffer + sizeof buffer, pValue, std::chars_format::fixed, 10);
    double rounded = pValue;
    std::from_chars(buffer, written.ptr, rounded);
    return rounded;
}

} // namespace

std::int32_t Series::Count() {
    if (m_valuesAllocated && static_cast<std::size_t>(std::max(m_count, 0)) > m_values.size()) {
        m_count = static_cast<std::int32_t>(m_values.size());
    }
    return m_count;
}

void Series::Init(std::int32_t pCount, double pMinimum, double pMaximum, DataSettingType pSetType,
                  bool pDrawOnSecondaryAxis) {
    if (pCount < 0) {
        throw ChartError(
            ChartError::IndexOutOfRange,
            QStringLiteral("A series cannot have a negative capacity (%1)").arg(pCount));
    }
    ++m_revision;
    if (pSetType == DripFeed) {
        // One slot more than the capacity: the mirror slot of the ring.
        m_values.assign(static_cast<std::size_t>(pCount) + 1, 0.0);
        m_valuesAllocated = true;
    }
    m_count = pCount;
    m_minimum = pMinimum;
    m_maximum = pMaximum;
    m_drawOnSecondaryAxis = pDrawOnSecondaryAxis;
    m_setType = pSetType;
    m_lastPoint = -1;
    m_dataReady = false;
}

void Series::AddPoint(double pValue) {
    const std::int32_t next = m_lastPoint + 1;
    if (!m_valuesAllocated || next < 0 || static_cast<std::size_t>(next) >= m_values.size()) {
        throw ChartError(ChartError::IndexOutOfRange,
                         QStringLiteral("The series \"%1\" has no slot for another point; "
                                        "initialise it as a drip-feed series first")
                             .arg(m_name));
    }
    m_lastPoint = next;
    m_values[static_cast<std::size_t>(next)] = pValue;
    if (m_lastPoint == m_count) {
        m_lastPoint = 0;
        m_values[0] = pValue;
    }
    m_dataReady = true;
    ++m_pointsAdded;
}

void Series::SetData(std::span<const double> pValues) {
    const std::int32_t last = LastIndexOf(pValues);
    ++m_revision;
    m_values.assign(pValues.begin(), pValues.end());
    m_valuesAllocated = true;
    m_lastPoint = last;
    m_dataReady = true;
}

void Series::SetData2(std::span<const double> pValues, std::span<const std::int32_t> pIndexes) {
    SetData(pValues);
    m_indexes.assign(pIndexes.begin(), pIndexes.end());
    m_hasIndexes = true;
}

void Series::SetData3(std::span<const double> pValues, std::span<const std::int32_t> pIndexes,
                      Replacements pReplacements) {
    SetData2(pValues, pIndexes);
    m_replacements = std::move(pReplacements);
}

void Series::SetOriginalData(std::span<const double> pValues) {
    m_originalValues.assign(pValues.begin(), pValues.end());
    m_hasOriginalData = true;
}

void Series::RemoveOriginalData() {
    m_originalValues.clear();
    m_originalValues.shrink_to_fit();
    m_hasOriginalData = false;
}

void Series::ClearData() {
    ++m_revision;
    m_replacements.reset();
    m_indexes.clear();
    m_indexes.shrink_to_fit();
    m_values.clear();
    m_values.shrink_to_fit();
    m_valuesAllocated = false;
    m_dataReady = false;
}

double Series::GetValue(std::int32_t pIndex) const {
    return m_dataReady ? At(m_values, pIndex) : 0.0;
}

double Series::GetOriginalValue(std::int32_t pIndex) const {
    return m_dataReady ? At(m_originalValues, pIndex) : 0.0;
}

namespace {
// An extreme over every slot of pValues; the scans take their count by reference.
double WholeArray(double (*pScan)(std::span<const double>, std::int32_t&),
                  std::span<const double> pValues) {
    std::int32_t whole = -1;
    return pScan(pValues, whole);
}
} // namespace

double Series::GetMinValue() const {
    return m_dataReady ? WholeArray(MathHelper::ArrayMin, m_values) : 0.0;
}

double Series::GetMaxValue() const {
    return m_dataReady ? WholeArray(MathHelper::ArrayMax, m_values) : 0.0;
}

double Series::GetOriginalMinValue() const {
    return m_dataReady ? WholeArray(MathHelper::ArrayMin, m_originalValues) : 0.0;
}

double Series::GetOriginalMaxValue() const {
    return m_dataReady ? WholeArray(MathHelper::ArrayMax, m_originalValues) : 0.0;
}

void Series::PrepareValues(std::span<const double> pInput, std::vector<double>& pOutput) {
    const MathHelper::MinMaxValues extremes = MathHelper::ComputeMinMax(pInput, -1);
    if (extremes.Minimum <= kPrepareLimit && extremes.Maximum >= -kPrepareLimit) {
        pOutput.assign(pInput.begin(), pInput.end());
        m_standardized = false;
    } else {
        pOutput = MathHelper::Standardize(pInput);
        m_standardized = true;
    }
}

std::int32_t Series::IndexOfPoint(std::int32_t pIndex) const {
    if (!m_dataReady || !m_hasIndexes) {
        return 0;
    }
    if (pIndex < 0 || static_cast<std::size_t>(pIndex) >= m_indexes.size()) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    return m_indexes[static_cast<std::size_t>(pIndex)];
}

double Series::DisplayedValue(std::int32_t pIndex) const {
    if (!m_dataReady) {
        return 0.0;
    }
    if (!m_replacements) {
        return GetValue(pIndex);
    }
    const QString key = LocalizationLib::DoubleToUserText(RoundToTenDecimals(GetValue(pIndex)));
    return m_replacements->value(key, 0.0);
}

void Series::AppendXml(std::string& pOut) {
    if (!m_dataReady) {
        return;
    }
    platform::XmlDocument document;
    document.LoadXml(std::string_view(kTemplate));
    platform::XmlNode element = document.DocumentElement();
    using namespace serialization;
    SetTextAttribute(element, kName, m_name);
    SetNumberAttribute(element, kMin, m_minimum);
    SetNumberAttribute(element, kMax, m_maximum);
    SetWholeAttribute(element, kSetType, m_setType);
    SetBoolAttribute(element, kDrawSecondary, m_drawOnSecondaryAxis);
    SetWholeAttribute(element, kPoint, m_point);
    SetWholeAttribute(element, kColour, m_colour);
    SetWholeAttribute(element, kCount, Count());
    SetWholeAttribute(element, kDataType, m_dataType);
    SetWholeAttribute(element, kLastPoint, m_lastPoint);

    // The values are streamed straight into the output: numbers need no escaping, and a copy
    // through the document would double the cost of saving a long series.
    element.AppendStartTag(pOut);
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        if (i != 0) {
            pOut.push_back('|');
        }
        serialization::AppendNumber(pOut, m_values[i]);
    }
    element.AppendEndTag(pOut);
}

QString Series::ToString() {
    return serialization::WriteTrapped([this](std::string& pOut) { AppendXml(pOut); });
}

void Series::FromString(const QString& pText) {
    serialization::ReadTrapped(
        pText, [this](const platform::XmlNode& pElement) { ReadElement(pElement); });
}

void Series::ReadElement(const platform::XmlNode& pElement) {
    ++m_revision;
    m_name = serialization::FromUtf8(pElement.AttributeValue(kName));
    m_minimum = serialization::ReadNumber(pElement.AttributeValue(kMin));
    m_maximum = serialization::ReadNumber(pElement.AttributeValue(kMax));
    m_setType =
        static_cast<DataSettingType>(serialization::ReadWhole(pElement.AttributeValue(kSetType)));
    m_drawOnSecondaryAxis = serialization::ReadBool(pElement.AttributeValue(kDrawSecondary));
    m_point = static_cast<PointType>(serialization::ReadWhole(pElement.AttributeValue(kPoint)));
    m_colour = serialization::ReadWhole(pElement.AttributeValue(kColour));
    const std::int32_t count = serialization::ReadWhole(pElement.AttributeValue(kCount));
    m_dataType =
        static_cast<XSeriesDataType>(serialization::ReadWhole(pElement.AttributeValue(kDataType)));
    const std::int32_t lastPoint = serialization::ReadWhole(pElement.AttributeValue(kLastPoint));
    std::string scratch;
    ReadValues(count, lastPoint, pElement.Text(scratch));
}

void Series::ReadValues(std::int32_t pCount, std::int32_t pLastPoint, std::string_view pText) {
    // The count and the newest point are only claims of the text. They are taken together with
    // the slotCount they describe, so that a claim the series cannot hold never outlives the load:
    // a count without slotCount would make every redraw walk billions of points.
    if (pCount <= 0) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    const auto slotCount = static_cast<std::size_t>(pCount);
    // A short element still gets its slotCount, filled as far as its texts go, up to a fixed cap;
    // beyond it the slotCount must be backed by texts before any memory is set aside.
    if (slotCount > kMaxUnbackedSlots) {
        const std::size_t available =
            pText.empty()
                ? 0
                : static_cast<std::size_t>(std::count(pText.begin(), pText.end(), '|')) + 1;
        if (slotCount > available) {
            throw ChartError(ChartError::IndexOutOfRange,
                             QStringLiteral("The series claims %1 values but holds %2")
                                 .arg(pCount)
                                 .arg(available));
        }
    }
    // A loaded series has Count slotCount, one fewer than a drip-feed ring: the mirror slot only
    // matters while points are still arriving.
    m_values.assign(slotCount, 0.0);
    m_valuesAllocated = true;
    m_count = pCount;
    m_lastPoint = pLastPoint;
    if (serialization::ReadNumbers(pText, '|', m_values) < m_values.size()) {
        // Too few texts: the values read so far stay, the remaining slots hold 0.
        throw ChartError(ChartError::IndexOutOfRange);
    }
    m_dataReady = true;
}

bool Series::IsTypeOf(const QString& pText) {
    return serialization::HasPrefix(pText, serialization::kSeriesPrefix);
}

} // namespace trv5
