#include "foundation/serialization.h"

#include "foundation/numbertext.h"

#include <trv5charts/charterror.h>
#include <trv5charts/localizationlib.h>

#include <QStringDecoder>

#include <charconv>
#include <cstring>

namespace trv5::serialization {

bool HasPrefix(const QString& pText, const char* pPrefix) {
    return pText.startsWith(QLatin1String(pPrefix), Qt::CaseSensitive);
}

void AppendNumber(std::string& pOut, double pValue) {
    char buffer[numbertext::kMaxDoubleText];
    const char* end = numbertext::WriteDouble(buffer, pValue, '.');
    pOut.append(buffer, static_cast<std::size_t>(end - buffer));
}

void AppendWhole(std::string& pOut, std::int64_t pValue) {
    char buffer[24];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, pValue);
    pOut.append(buffer, static_cast<std::size_t>(result.ptr - buffer));
}

namespace {

void ThrowUnless(numbertext::ParseStatus pStatus) {
    switch (pStatus) {
    case numbertext::ParseStatus::Ok:
        return;
    case numbertext::ParseStatus::Overflow:
        throw ChartError(ChartError::Overflow);
    case numbertext::ParseStatus::TypeMismatch:
        break;
    }
    throw ChartError(ChartError::TypeMismatch);
}

} // namespace

double ReadNumber(std::string_view pText) {
    double value = 0.0;
    ThrowUnless(numbertext::ParseDouble(pText, '.', ',', value));
    return value;
}

std::size_t ReadNumbers(std::string_view pText, char pSeparator, std::span<double> pOut) {
    const numbertext::ListResult result =
        numbertext::ParseDoubleList(pText, pSeparator, '.', ',', pOut);
    ThrowUnless(result.status);
    return result.read;
}

std::int32_t ReadWhole(std::string_view pText) {
    return LocalizationLib::ToInt32(ReadNumber(pText));
}

std::string ToUtf8(const QString& pText) {
    const QByteArray utf8 = pText.toUtf8();
    return std::string(utf8.constData(), static_cast<std::size_t>(utf8.size()));
}

QString FromUtf8(std::string_view pText) {
    // QString::fromUtf8 drops a byte order mark at the start, which would take a leading U+FEFF
    // off a name at every load; here it is a character like any other.
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
    return decoder.decode(QByteArrayView(pText.data(), static_cast<qsizetype>(pText.size())));
}

void SetNumberAttribute(platform::XmlNode& pElement, int pIndex, double pValue) {
    std::string text;
    AppendNumber(text, pValue);
    pElement.SetAttributeValue(pIndex, text);
}

void SetWholeAttribute(platform::XmlNode& pElement, int pIndex, std::int64_t pValue) {
    std::string text;
    AppendWhole(text, pValue);
    pElement.SetAttributeValue(pIndex, text);
}

void SetBoolAttribute(platform::XmlNode& pElement, int pIndex, bool pValue) {
    pElement.SetAttributeValue(pIndex, pValue ? "1" : "0");
}

void SetTextAttribute(platform::XmlNode& pElement, int pIndex, const QString& pValue) {
    pElement.SetAttributeValue(pIndex, ToUtf8(pValue));
}

} // namespace trv5::serialization
