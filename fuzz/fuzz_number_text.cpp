// Number text from outside: whatever parses must write back into a bounded buffer, and what is
// written must parse again (or overflow, for values at the very edge of the double range). Read
// as a '|'-separated list, the text must give what its pieces give one by one.

#include "foundation/numbertext.h"

#include <algorithm>
#include <array>
#include <bit>
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

    std::array<double, 64> list{};
    const trv5::numbertext::ListResult result =
        trv5::numbertext::ParseDoubleList(text, '|', '.', ',', list);
    std::size_t start = 0;
    for (std::size_t i = 0; i < result.read; ++i) {
        const std::size_t end = std::min(text.find('|', start), text.size());
        double value = 0.0;
        if (trv5::numbertext::ParseDouble(text.substr(start, end - start), '.', ',', value) !=
                trv5::numbertext::ParseStatus::Ok ||
            std::bit_cast<std::uint64_t>(value) != std::bit_cast<std::uint64_t>(list[i])) {
            std::abort();
        }
        start = end + 1;
    }
    return 0;
}
