// Number text from outside: whatever parses must write back into a bounded buffer, and what is
// written must parse again (or overflow, for values at the very edge of the double range).

#include "foundation/numbertext.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t pSize) {
    const std::string_view text(reinterpret_cast<const char*>(pData), pSize);
    for (const auto& [decimalPoint, groupSeparator] : {std::pair{'.', ','}, std::pair{',', '.'}}) {
        double value = 0.0;
        if (trv5::numbertext::ParseDouble(text, decimalPoint, groupSeparator, value) !=
            trv5::numbertext::ParseStatus::Ok) {
            continue;
        }
        char buffer[trv5::numbertext::kMaxDoubleText];
        const char* end = trv5::numbertext::WriteDouble(buffer, value, decimalPoint);
        if (end < buffer || end > buffer + sizeof buffer) {
            std::abort();
        }
        double again = 0.0;
        const auto status = trv5::numbertext::ParseDouble(
            std::string_view(buffer, static_cast<std::size_t>(end - buffer)), decimalPoint,
            groupSeparator, again);
        if (status == trv5::numbertext::ParseStatus::TypeMismatch) {
            std::abort();
        }
    }
    return 0;
}
