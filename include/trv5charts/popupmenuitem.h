#pragma once

#include <cstdint>

namespace trv5 {

// The entries of the block charts' context menu, by index: "Copy Chart", "Copy Chart Data", a
// separator and "Print".
enum PopupMenuItem : std::int32_t { pmiCopy = 0, pmiCopyData = 1, pmiSeparator = 2, pmiPrint = 3 };

} // namespace trv5
