// The bar chart's saved state (the SimpleBarChart element) and its values as clipboard text.
#include <trv5charts/barchart.h>

#include "foundation/serialization.h"
#include "platform/xmldocument.h"
#include "selfdrawn/barchart_support.h"

#include <trv5charts/charterror.h>
#include <trv5charts/localizationlib.h>

#include <algorithm>
#include <string_view>

namespace trv5 {

namespace {

constexpr char kStatePrefix[] = "<SimpleBarChart ";

// The start of the element and of each data point; the closing pieces follow them.
constexpr std::string_view kDataPointOpen = "<datapoint value='";
constexpr std::string_view kDataPointClose = "'/>";
// Room for a data point with a full-precision number, and for the closing tags.
constexpr std::size_t kReservedPerDataPoint = 40;
constexpr std::size_t kReservedTail = 32;

// Widget names are usually plain identifiers, but a name is free text in Qt; escaping keeps the
// fragment well-formed whatever it holds.
void AppendEscaped(std::string& pOut, std::string_view pText) {
    for (const char c : pText) {
        switch (c) {
        case '&':
            pOut += "&amp;";
            break;
        case '<':
            pOut += "&lt;";
            break;
        case '>':
            pOut += "&gt;";
            break;
        case '\'':
            pOut += "&apos;";
            break;
        case '"':
            pOut += "&quot;";
            break;
        case '\0':
            // XML has no way to write NUL, not even as a character reference; the name is
            // written without it so that the fragment still loads.
            break;
        default:
            pOut.push_back(c);
        }
    }
}

// The margin and the maximum are written in the user's locale; they are read back in it, so a
// chart saved and reopened on one machine keeps them. A text that locale cannot read (one
// written on a machine with another decimal point) is tried in the fixed culture.
double ReadUserNumber(std::string_view pText) {
    double value = 0.0;
    try {
        value = LocalizationLib::UserTextToDouble(serialization::FromUtf8(pText));
    } catch (const ChartError& error) {
        if (error.number() != ChartError::TypeMismatch) {
            throw;
        }
        value = serialization::ReadNumber(pText);
    }
    return value;
}

std::string_view RequiredAttribute(const platform::XmlNode& pNode, std::string_view pName) {
    const auto value = pNode.FindAttribute(pName);
    if (!value) {
        throw ChartError(ChartError::ObjectNotSet);
    }
    return *value;
}

} // namespace

bool BarChart::AppendValue(std::string& pOut, std::int64_t pIndex) const {
    if (m_valuesType != kDoubleValues && m_valuesType != kLongValues) {
        return false;
    }
    const double value = BarValue(pIndex);
    if (m_valuesType == kDoubleValues) {
        serialization::AppendNumber(pOut, value);
    } else {
        serialization::AppendWhole(pOut, static_cast<std::int64_t>(value));
    }
    return true;
}

QString BarChart::DataText() const {
    std::string body;
    for (std::int32_t i = 0; i < m_columns && AppendValue(body, i); ++i) {
        body.push_back('\t');
    }
    if (body.empty()) {
        return {};
    }
    while (!body.empty() && body.back() == '\t') {
        body.pop_back();
    }
    return selfdrawn::DataHeader(m_dataPointName) + QStringLiteral("\r\n") +
           serialization::FromUtf8(body);
}

// ---- ISimpleSerializable ----

QString BarChart::ToString() {
    return serialization::WriteTrapped([this](std::string& pOut) { WriteState(pOut); });
}

void BarChart::WriteState(std::string& pOut) const {
    pOut += "<SimpleBarChart name='";
    AppendEscaped(pOut, serialization::ToUtf8(objectName()));
    pOut += "' type='";
    serialization::AppendWhole(pOut, m_chartType);
    pOut += "' valuestype='";
    serialization::AppendWhole(pOut, m_valuesType);
    // The margin and the maximum are written in the user's locale, as hosts have always stored
    // them; every other number is locale-independent.
    pOut += "' hmargins='";
    pOut += serialization::ToUtf8(LocalizationLib::SingleToUserText(m_hMarginPercent));
    pOut += "' corner='";
    serialization::AppendWhole(pOut, m_roundedCorner);
    pOut += "'><datapoints Columns='";
    serialization::AppendWhole(pOut, m_columns);
    pOut += "' MaxValue='";
    pOut += serialization::ToUtf8(LocalizationLib::SingleToUserText(m_maxValue));
    pOut += "'>";
    if (m_hasData == 1) {
        // Reserved for the values there are, not for the columns claimed.
        const std::size_t available =
            m_valuesType == kDoubleValues ? m_doubleData.size() : m_longData.size();
        const auto count = std::min(available, static_cast<std::size_t>(std::max(m_columns, 0)));
        pOut.reserve(pOut.size() + count * kReservedPerDataPoint + kReservedTail);
        // The values there are: a chart holding fewer values than columns still saves them.
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t start = pOut.size();
            pOut += kDataPointOpen;
            if (!AppendValue(pOut, static_cast<std::int64_t>(i))) {
                pOut.resize(start);
                break;
            }
            pOut += kDataPointClose;
        }
    }
    pOut += "</datapoints></SimpleBarChart>";
}

void BarChart::FromString(const QString& pText) {
    platform::XmlDocument document;
    if (!document.LoadXml(pText)) {
        return;
    }
    if (!serialization::RunTrapped([&] { ReadState(document); })) {
        // What was read before the damage stays; the picture does not.
        Clear();
    }
}

void BarChart::ReadState(const platform::XmlDocument& pDocument) {
    const platform::XmlNode chart = pDocument.SelectSingleNode("//SimpleBarChart");
    if (chart.IsNull()) {
        return;
    }
    if (const auto type = chart.FindAttribute("type")) {
        m_chartType = static_cast<SimpleBartChartType>(serialization::ReadWhole(*type));
    }
    if (const auto valuesType = chart.FindAttribute("valuestype")) {
        m_valuesType = serialization::ReadWhole(*valuesType);
    }
    if (const auto margin = chart.FindAttribute("hmargins")) {
        SetHMarginPercent(barchart::ToSingle(ReadUserNumber(*margin)));
    }
    if (const auto corner = chart.FindAttribute("corner")) {
        m_roundedCorner = serialization::ReadWhole(*corner);
    }

    const platform::XmlNode points = pDocument.SelectSingleNode("//SimpleBarChart/datapoints");
    if (!points.IsNull()) {
        // The margin just read is not passed on: Init overwrites it with 0 whenever the maximum
        // is not 0, and saved charts have always come back that way.
        const std::int32_t columns = serialization::ReadWhole(RequiredAttribute(points, "Columns"));
        // The maximum comes back as a whole number (half to even), as saved charts always have:
        // 28,125 written under a German locale reads 28 there, and a maximum below one half
        // reads 0, which leaves Init out and the columns and scales as they were.
        const std::int32_t maximum =
            LocalizationLib::ToInt32(ReadUserNumber(RequiredAttribute(points, "MaxValue")));
        Init(columns, static_cast<float>(maximum), m_chartType, m_valuesType, 0.0F);
    }

    const std::vector<platform::XmlNode> values =
        pDocument.SelectNodes("//SimpleBarChart/datapoints/datapoint");
    if (values.empty()) {
        return;
    }
    // HasData stays as it was: restored bars are drawn, but they are written out and copied
    // only after the host hands values in again.
    if (m_chartType == ctSingleHorizontal) {
        SetLongHValue(serialization::ReadWhole(values.front().AttributeValue(0)));
    } else if (m_chartType == ctMultiVerticalBars) {
        if (m_valuesType == kDoubleValues) {
            m_doubleData.assign(values.size(), 0.0);
            for (std::size_t i = 0; i < values.size(); ++i) {
                m_doubleData[i] = serialization::ReadNumber(values[i].AttributeValue(0));
            }
        } else if (m_valuesType == kLongValues) {
            m_longData.assign(values.size(), 0);
            for (std::size_t i = 0; i < values.size(); ++i) {
                m_longData[i] = serialization::ReadWhole(values[i].AttributeValue(0));
            }
        }
        Redraw();
    }
}

bool BarChart::IsTypeOf(const QString& pText) {
    return serialization::HasPrefix(pText, kStatePrefix);
}

} // namespace trv5
