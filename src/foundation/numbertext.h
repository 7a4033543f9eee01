#pragma once

// Number text on plain char buffers: no QString, no allocation, no locale look-ups. These are the
// routines that serialization and clipboard export run in their inner loops; the QString-facing
// wrappers live in <trv5charts/localizationlib.h>.
//
// The written forms are those of saved chart state: the general 15-digit text of a double, the
// 7-digit text of a single, fixed decimals and the "0.00E+00" scientific pattern, each with a
// caller-chosen decimal separator and never any digit grouping.

#include <cstddef>
#include <span>
#include <string_view>

namespace trv5::numbertext {

// The room that WriteDouble, WriteSingle and WriteScientific need. Their longest text is a negative
// 15-digit mantissa with a three-digit exponent ("-1.23456789012345E-308", 22 chars); the first
// two use the rest as scratch.
constexpr std::size_t kMaxDoubleText = 32;

// The largest number of decimal places WriteFixed accepts. 340 places show every digit of the
// smallest subnormal double's 15-digit text.
constexpr int kMaxFixedPlaces = 340;

// Buffer size that WriteFixed never exceeds for the given number of places: a sign, 309 integer
// digits (the largest double has 309), the separator and the places.
constexpr std::size_t MaxFixedText(int pPlaces) noexcept {
    return 311 + static_cast<std::size_t>(pPlaces < 0 ? 0 : pPlaces);
}

// A finite value rounded to a number of significant digits. The value is
// (negative ? -1 : 1) * d[0].d[1]...d[count-1] * 10^exponent, that is d[0] is the digit at the
// place 10^exponent (1.5 has exponent 0, 0.05 has -2). Trailing zeros are removed; zero has
// count 0. Every char from digits[count] on is '0', so that writers can copy fixed-size blocks.
struct Decimal {
    char digits[32];
    int count;
    int exponent;
    bool negative;
};

// Rounds the exact binary value to 15 significant digits (exact decimal ties away from zero).
// The value must be finite.
Decimal RoundDouble(double pValue) noexcept;

// Rounds the exact binary value to 7 significant digits (exact decimal ties away from zero).
// The value must be finite.
Decimal RoundSingle(float pValue) noexcept;

// The general text of a double: 15 significant digits, plain digits for moderate magnitudes and
// d.dddE+dd otherwise; "INF", "-INF", "NaN" for the non-finite values; negative zero is "0".
// Returns the end of the text (no terminating NUL). pOut must have room for kMaxDoubleText chars:
// the text is built with fixed-size block copies, so chars after the returned end, up to
// pOut + kMaxDoubleText, may be overwritten.
char* WriteDouble(char* pOut, double pValue, char pDecimalPoint) noexcept;

// The same for a single with 7 significant digits, on the same terms.
char* WriteSingle(char* pOut, float pValue, char pDecimalPoint) noexcept;

// The 15-digit text of the value rounded, as a digit string, half away from zero to pPlaces
// decimals (clamped to 0..kMaxFixedPlaces) and padded with zeros to exactly that many. A result
// that rounds to zero carries no sign. Non-finite values are written as by WriteDouble.
// Writes at most MaxFixedText(pPlaces) chars.
char* WriteFixed(char* pOut, double pValue, int pPlaces, char pDecimalPoint) noexcept;

// The "0.00E+00" pattern: one digit, two decimals rounded half away from zero from the 15-digit
// text, a signed exponent of at least two digits. Writes at most kMaxDoubleText chars.
char* WriteScientific(char* pOut, double pValue, char pDecimalPoint) noexcept;

enum class ParseStatus { Ok, TypeMismatch, Overflow };

// Reads a double. Accepted: blanks (space, tab, CR, LF) around the number; one leading '+' or
// '-'; digits with at most one pDecimalPoint; pGroupSeparator between two digits of the integer
// part (ignored); an exponent 'e' or 'E' with an optional sign; and exactly "INF", "+INF", "-INF"
// and "NaN". Everything else, including an empty or blank text, is TypeMismatch. A magnitude
// beyond the double range is Overflow, except that texts up to 1.79769313486232E+308 (the
// 15-digit text of the largest double) read as the largest double, so that everything
// WriteDouble produces reads back. Magnitudes below the smallest subnormal read as zero.
//
// A pGroupSeparator of '\0', or one that could be part of a number (a digit, the decimal point,
// a sign, 'e' or 'E'), disables grouping. On anything but Ok, pOut is left unchanged.
ParseStatus ParseDouble(std::string_view pText, char pDecimalPoint, char pGroupSeparator,
                        double& pOut) noexcept;

struct ListResult {
    std::size_t read;   // values stored, from the first
    ParseStatus status; // of the text after them when that text did not read
};

// Reads the texts of pText between pSeparator chars into pOut, each as ParseDouble reads it on
// its own, until pOut is full or the texts run out: "1|2" holds two texts, "" none, "1|" a second,
// empty one. Stops at the first text that does not read and reports why; pOut keeps the values
// before it. An empty text is TypeMismatch like any other.
ListResult ParseDoubleList(std::string_view pText, char pSeparator, char pDecimalPoint,
                           char pGroupSeparator, std::span<double> pOut) noexcept;

} // namespace trv5::numbertext
