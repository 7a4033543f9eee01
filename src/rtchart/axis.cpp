#include <trv5charts/axis.h>

#include "foundation/serialization.h"
#include "platform/xmldocument.h"

#include <trv5charts/localizationlib.h>

namespace trv5 {

namespace {
constexpr char kTemplate[] = "<axis min='' max='' issecax='' name='' format=''></axis>";
enum AttributePosition { kMin, kMax, kIsSecondary, kName, kFormat };
} // namespace

QString Axis::MaxValueFormatted() const {
    if (m_format.isEmpty()) {
        return LocalizationLib::DoubleToUserText(m_maximum);
    }
    if (m_format.compare(QLatin1String("percent"), Qt::CaseInsensitive) == 0) {
        return LocalizationLib::FormatPercent(m_maximum / 100.0, 0);
    }
    return {};
}

void Axis::Init(double pMinimum, double pMaximum, bool pIsSecondaryAxis) {
    if (m_fixed) {
        return;
    }
    m_minimum = pMinimum;
    m_maximum = pMaximum;
    m_isSecondaryAxis = pIsSecondaryAxis;
}

void Axis::InitFixed(double pMinimum, double pMaximum, bool pIsSecondaryAxis) {
    if (m_fixed) {
        return;
    }
    Init(pMinimum, pMaximum, pIsSecondaryAxis);
    m_fixed = true;
}

void Axis::AppendXml(std::string& pOut) const {
    platform::XmlDocument document;
    document.LoadXml(std::string_view(kTemplate));
    platform::XmlNode element = document.DocumentElement();
    serialization::SetNumberAttribute(element, kMin, m_minimum);
    serialization::SetNumberAttribute(element, kMax, m_maximum);
    serialization::SetBoolAttribute(element, kIsSecondary, m_isSecondaryAxis);
    serialization::SetTextAttribute(element, kName, m_name);
    serialization::SetTextAttribute(element, kFormat, m_format);
    element.AppendXml(pOut);
}

QString Axis::ToString() {
    return serialization::WriteTrapped([this](std::string& pOut) { AppendXml(pOut); });
}

void Axis::FromString(const QString& pText) {
    serialization::ReadTrapped(
        pText, [this](const platform::XmlNode& pElement) { ReadElement(pElement); });
}

void Axis::ReadElement(const platform::XmlNode& pElement) {
    m_minimum = serialization::ReadNumber(pElement.AttributeValue(kMin));
    m_maximum = serialization::ReadNumber(pElement.AttributeValue(kMax));
    m_isSecondaryAxis = serialization::ReadBool(pElement.AttributeValue(kIsSecondary));
    m_name = serialization::FromUtf8(pElement.AttributeValue(kName));
    m_format = serialization::FromUtf8(pElement.AttributeValue(kFormat));
}

bool Axis::IsTypeOf(const QString& pText) {
    return serialization::HasPrefix(pText, serialization::kSeriesPrefix);
}

} // namespace trv5
