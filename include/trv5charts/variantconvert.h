#pragma once

#include <QVariant>

#include <cstdint>

namespace trv5::VariantConvert {

// Conversions of loosely typed values (host settings, variant arrays) as a host's scripting
// runtime would make them: numbers pass through, booleans are -1 and 0, text is read in the
// user's locale. Anything else, or text that is no number, throws ChartError 13; a value out of
// the target's range throws ChartError 6.
double ToDouble(const QVariant& pValue);
std::int32_t ToInt32(const QVariant& pValue);
std::int16_t ToInt16(const QVariant& pValue);

} // namespace trv5::VariantConvert
