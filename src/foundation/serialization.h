#pragma once

#include "platform/xmldocument.h"

#include <QString>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Shared pieces of the saved-state formats: fixed-culture numbers, booleans as "1"/"0", type
// prefixes and the error trap that every reader and writer runs under.
namespace trv5::serialization {

inline constexpr char kSeriesPrefix[] = "<series name='";
inline constexpr char kChartPrefix[] = "<rtchart seriescount='";

// True when pText starts with the ASCII prefix, compared case-sensitively.
bool HasPrefix(const QString& pText, const char* pPrefix);

void AppendNumber(std::string& pOut, double pValue);
void AppendWhole(std::string& pOut, std::int64_t pValue);
inline void AppendBool(std::string& pOut, bool pValue) {
    pOut.push_back(pValue ? '1' : '0');
}

// Fixed-culture readers; throw ChartError 13 or 6 like their text counterparts.
double ReadNumber(std::string_view pText);
// The numbers of pText between pSeparator chars into pOut, as far as both go; returns how many
// were stored. Throws like ReadNumber at the first that does not read, the ones before it stored.
std::size_t ReadNumbers(std::string_view pText, char pSeparator, std::span<double> pOut);
std::int32_t ReadWhole(std::string_view pText);
// Exactly "1" is true; "True", "-1" and everything else are false.
inline bool ReadBool(std::string_view pText) {
    return pText == "1";
}

std::string ToUtf8(const QString& pText);
QString FromUtf8(std::string_view pText);

// Attribute writers for template-filled elements, by position.
void SetNumberAttribute(platform::XmlNode& pElement, int pIndex, double pValue);
void SetWholeAttribute(platform::XmlNode& pElement, int pIndex, std::int64_t pValue);
void SetBoolAttribute(platform::XmlNode& pElement, int pIndex, bool pValue);
void SetTextAttribute(platform::XmlNode& pElement, int pIndex, const QString& pValue);

// Runs pWork and swallows whatever it throws. Saved state is handed back by hosts from files
// that may be damaged, and a damaged fragment must never take the host down: the reader keeps
// what it had read before the damage. Returns false when something was swallowed.
template <class Work> bool RunTrapped(Work&& pWork) noexcept {
    try {
        pWork();
        return true;
    } catch (...) {
        return false;
    }
}

// ToString of an element writer: the text pWrite appends, or empty when it fails.
template <class Write> QString WriteTrapped(Write&& pWrite) {
    std::string xml;
    if (!RunTrapped([&] { pWrite(xml); })) {
        return {};
    }
    return FromUtf8(xml);
}

// FromString of an element reader: an empty or malformed text changes nothing, and a damaged
// element keeps what pRead assigned before the damage.
template <class Read> void ReadTrapped(const QString& pText, Read&& pRead) {
    if (pText.isEmpty()) {
        return;
    }
    platform::XmlDocument document;
    if (!document.LoadXml(pText)) {
        return;
    }
    const platform::XmlNode element = document.DocumentElement();
    RunTrapped([&] { pRead(element); });
}

} // namespace trv5::serialization
