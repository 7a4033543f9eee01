#pragma once

#include <QString>

#include <cstdint>
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
std::int32_t ReadWhole(std::string_view pText);
// Exactly "1" is true; "True", "-1" and everything else are false.
inline bool ReadBool(std::string_view pText) {
    return pText == "1";
}

std::string ToUtf8(const QString& pText);
QString FromUtf8(std::string_view pText);

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

} // namespace trv5::serialization
