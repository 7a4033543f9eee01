#include "foundation/numbertext.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <system_error>

namespace trv5::numbertext {

namespace {

// The first N powers of a base, as a table built at compile time.
template <std::size_t N> constexpr std::array<std::uint64_t, N> PowerTable(std::uint64_t pBase) {
    std::array<std::uint64_t, N> table{};
    std::uint64_t power = 1;
    for (auto& value : table) {
        value = power;
        power *= pBase;
    }
    return table;
}

// 10^0 .. 10^17.
constexpr auto kPow10 = PowerTable<18>(10);
// 5^0 .. 5^27, the powers that fit in 64 bits.
constexpr auto kPow5 = PowerTable<28>(5);

constexpr bool IsDigit(char pChar) noexcept {
    return pChar >= '0' && pChar <= '9';
}

constexpr bool IsBlank(char pChar) noexcept {
    return pChar == ' ' || pChar == '\t' || pChar == '\r' || pChar == '\n';
}

// Reads the mantissa digits and the exponent of std::to_chars scientific output ("d.ddde+xx").
void ReadScientific(const char* pFirst, const char* pLast, Decimal& pDecimal) noexcept {
    std::fill_n(pDecimal.digits, sizeof pDecimal.digits, '0');
    pDecimal.count = 0;
    const char* p = pFirst;
    for (; p != pLast && *p != 'e'; ++p) {
        if (*p != '.' && pDecimal.count < static_cast<int>(sizeof pDecimal.digits)) {
            pDecimal.digits[pDecimal.count++] = *p;
        }
    }
    int exponent = 0;
    bool negativeExponent = false;
    if (p != pLast) {
        ++p;
        if (p != pLast && (*p == '-' || *p == '+')) {
            negativeExponent = *p == '-';
            ++p;
        }
        for (; p != pLast; ++p) {
            exponent = exponent * 10 + (*p - '0');
        }
    }
    pDecimal.exponent = negativeExponent ? -exponent : exponent;
    while (pDecimal.count > 0 && pDecimal.digits[pDecimal.count - 1] == '0') {
        --pDecimal.count;
    }
}

// Whether the exact value of pMagnitude (positive, finite) is a decimal of exactly
// pSignificant + 1 significant digits whose last digit is 5, i.e. an exact tie when rounding to
// pSignificant digits. std::to_chars settles such ties to even; saved text rounds them away from
// zero. On true, pMagnitude == pTie * 10^pTieExponent.
//
// With pMagnitude = m * 2^k and m odd, such a decimal t * 10^q has t odd, so q = k and
// t = m * 5^-k (k < 0) or m / 5^k (k >= 0); both are quick integer checks.
bool ExactTie(double pMagnitude, int pSignificant, std::uint64_t& pTie,
              int& pTieExponent) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(pMagnitude);
    const auto biasedExponent = static_cast<int>((bits >> 52) & 0x7FF);
    std::uint64_t mantissa = bits & ((std::uint64_t{1} << 52) - 1);
    int binaryExponent = -1074;
    if (biasedExponent != 0) {
        mantissa |= std::uint64_t{1} << 52;
        binaryExponent = biasedExponent - 1075;
    }
    if (mantissa == 0) {
        return false;
    }
    const int trailingZeros = std::countr_zero(mantissa);
    mantissa >>= trailingZeros;
    binaryExponent += trailingZeros;

    const std::uint64_t low = kPow10[pSignificant];
    const std::uint64_t high = kPow10[pSignificant + 1];
    std::uint64_t tie = 0;
    if (binaryExponent < 0) {
        if (binaryExponent < -27) {
            return false;
        }
        const std::uint64_t power = kPow5[-binaryExponent];
        if (mantissa > (high - 1) / power) {
            return false;
        }
        tie = mantissa * power;
    } else {
        if (binaryExponent > 27) {
            return false;
        }
        const std::uint64_t power = kPow5[binaryExponent];
        if (mantissa % power != 0) {
            return false;
        }
        tie = mantissa / power;
    }
    if (tie < low || tie >= high || tie % 10 != 5) {
        return false;
    }
    pTie = tie;
    pTieExponent = binaryExponent;
    return true;
}

// The eight decimal digits of pValue < 10^8 as byte values 0 to 9 in one word, the first digit in
// the least significant byte. Each step splits every lane of the word in two at once: 4+4 digits,
// then 2+2, then 1+1; the multiply-and-shift pairs are exact divisions by 100 and 10 for the
// lane values involved (below 10^4 and 10^2), and no lane overflows into its neighbour.
std::uint64_t EightDigitBytes(std::uint32_t pValue) noexcept {
    const std::uint64_t fours = pValue / 10000 | std::uint64_t{pValue % 10000} << 32;
    const std::uint64_t hundreds = (fours * 10486 >> 20) & 0x0000007F0000007FULL;
    const std::uint64_t twos = hundreds | (fours - hundreds * 100) << 16;
    const std::uint64_t tens = (twos * 103 >> 10) & 0x000F000F000F000FULL;
    return tens | (twos - tens * 10) << 8;
}

// Stores pRounded, an integer of pSignificant (7 or 15) digits or exactly 10^pSignificant after a
// carry, whose first digit sits at the place 10^pExponent. This runs for every value written, on
// unpredictable input, so the digits are formed in registers and the trailing zeros counted
// without branches; byte order matters, hence the plain loop for big-endian machines.
void SetDigits(Decimal& pDecimal, std::uint64_t pRounded, int pSignificant,
               int pExponent) noexcept {
    pDecimal.exponent = pExponent;
    if (pRounded == kPow10[pSignificant]) {
        pDecimal.digits[0] = '1';
        pDecimal.count = 1;
        ++pDecimal.exponent;
        return;
    }
    if constexpr (std::endian::native == std::endian::little) {
        constexpr std::uint64_t kZeroChars = 0x3030303030303030ULL;
        // The leading digits: below 10^7, so byte 0 is a zero digit, shifted out. Byte 7 is then
        // empty and counts as one more zero.
        const std::uint64_t high = EightDigitBytes(static_cast<std::uint32_t>(
                                       pSignificant == 15 ? pRounded / 100000000 : pRounded)) >>
                                   8;
        const int highZeros = std::countl_zero(high) / 8 - 1;
        const std::uint64_t highChars = high | kZeroChars;
        std::memcpy(pDecimal.digits, &highChars, sizeof highChars);
        if (pSignificant == 7) {
            pDecimal.count = 7 - highZeros;
            return;
        }
        const std::uint64_t low = EightDigitBytes(static_cast<std::uint32_t>(pRounded % 100000000));
        const int lowZeros = std::countl_zero(low) / 8;
        const std::uint64_t lowChars = low | kZeroChars;
        std::memcpy(pDecimal.digits + 7, &lowChars, sizeof lowChars);
        pDecimal.count = 15 - (lowZeros == 8 ? 8 + highZeros : lowZeros);
    } else {
        for (int i = pSignificant - 1; i >= 0; --i) {
            pDecimal.digits[i] = static_cast<char>('0' + pRounded % 10);
            pRounded /= 10;
        }
        pDecimal.count = pSignificant;
        while (pDecimal.digits[pDecimal.count - 1] == '0') {
            --pDecimal.count;
        }
    }
}

// The powers of ten that doubles hold exactly.
constexpr double kExactPow10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The quick way to round for magnitudes from about 10^(pSignificant - 23) up to 10^pSignificant,
// which is where nearly all chart data lives. Scaling by an exact power of ten 10^k brings the
// value into [10^(s-1), 10^s); a fused multiply-add gives the product exactly as hi + lo, and
// the sign of (frac(hi) - 1/2) + lo, computed without error, says whether the exact product lies
// below, above or exactly on the midpoint between two integers. Returns false when the value is
// out of reach, leaving the slow path to do the work.
bool RoundByScaling(double pMagnitude, int pSignificant, Decimal& pDecimal) noexcept {
    const double low = kExactPow10[pSignificant - 1];
    const double high = kExactPow10[pSignificant];
    // floor(log10(x)) is floor(e2 * log10(2)) or one more; 78913 / 2^18 is just below log10(2).
    // Subnormals are far out of reach.
    const auto biasedExponent =
        static_cast<int>((std::bit_cast<std::uint64_t>(pMagnitude) >> 52) & 0x7FF);
    if (biasedExponent == 0) {
        return false;
    }
    const int binaryExponent = biasedExponent - 1023;
    int scale = pSignificant - 1 - ((binaryExponent * 78913) >> 18);
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (scale < 0 || scale >= static_cast<int>(std::size(kExactPow10))) {
            return false;
        }
        const double power = kExactPow10[scale];
        const double hi = pMagnitude * power;
        const double lo = std::fma(pMagnitude, power, -hi);
        if (hi < low || (hi == low && lo < 0)) {
            ++scale;
            continue;
        }
        if (hi > high || (hi == high && lo >= 0)) {
            --scale;
            continue;
        }
        const double whole = std::floor(hi);
        // hi - whole and the subtraction of 1/2 are exact: both operands are multiples of ulp(hi),
        // which is at most 1/8 here.
        const double aboveMidpoint = (hi - whole - 0.5) + lo;
        SetDigits(pDecimal, static_cast<std::uint64_t>(whole) + (aboveMidpoint >= 0 ? 1 : 0),
                  pSignificant, pSignificant - 1 - scale);
        return true;
    }
    return false;
}

// Rounds the exact binary value (finite) to pSignificant digits, exact decimal ties away from zero.
Decimal RoundToSignificant(double pValue, int pSignificant) noexcept {
    Decimal decimal;
    std::fill_n(decimal.digits, sizeof decimal.digits, '0');
    decimal.count = 0;
    decimal.exponent = 0;
    decimal.negative = std::signbit(pValue);
    if (pValue == 0) {
        return decimal;
    }
    const double magnitude = std::fabs(pValue);
    if (RoundByScaling(magnitude, pSignificant, decimal)) {
        return decimal;
    }
    char buffer[64];

    // For 15 digits, the shortest text that reads back as a normal double is already the correctly
    // rounded result whenever it has no more than 15 digits: the value lies within half an ulp of
    // it (at most 2^-53, 1.1e-16, relative), closer than half a unit in the 15th digit (at least
    // 5e-16 relative), so no rounding midpoint lies between them. Shortest text is much cheaper
    // than rounded text. Subnormals have fewer bits, so their shortest text can be much shorter
    // than their rounding ("5e-324"). For singles at 7 digits the argument fails (2^-24 is 6e-8,
    // more than the 5e-8 of half a unit in the 7th digit of 9.xxxxxx).
    if (pSignificant == 15 && magnitude >= std::numeric_limits<double>::min()) {
        const auto result =
            std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific);
        ReadScientific(buffer, result.ptr, decimal);
        if (decimal.count <= pSignificant) {
            return decimal;
        }
    }

    std::uint64_t tie = 0;
    int tieExponent = 0;
    if (ExactTie(magnitude, pSignificant, tie, tieExponent)) {
        SetDigits(decimal, tie / 10 + 1, pSignificant, tieExponent + pSignificant);
        return decimal;
    }

    // Not a tie, so round-half-even and round-half-away agree.
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, magnitude,
                                      std::chars_format::scientific, pSignificant - 1);
    ReadScientific(buffer, result.ptr, decimal);
    return decimal;
}

// Rounds the digit string half away from zero so that only pKeep leading digits remain
// (a negative pKeep rounds to zero).
void RoundDigits(Decimal& pDecimal, int pKeep) noexcept {
    if (pKeep >= pDecimal.count) {
        return;
    }
    const bool roundUp = pKeep >= 0 && pDecimal.digits[pKeep] >= '5';
    pDecimal.count = pKeep < 0 ? 0 : pKeep;
    if (roundUp) {
        int i = pKeep - 1;
        while (i >= 0 && pDecimal.digits[i] == '9') {
            --i;
        }
        if (i < 0) {
            pDecimal.digits[0] = '1';
            pDecimal.count = 1;
            ++pDecimal.exponent;
        } else {
            ++pDecimal.digits[i];
            pDecimal.count = i + 1;
        }
    }
    while (pDecimal.count > 0 && pDecimal.digits[pDecimal.count - 1] == '0') {
        --pDecimal.count;
    }
    std::fill(pDecimal.digits + pDecimal.count, std::end(pDecimal.digits), '0');
}

char DigitAt(const Decimal& pDecimal, int pIndex) noexcept {
    return pIndex >= 0 && pIndex < pDecimal.count ? pDecimal.digits[pIndex] : '0';
}

char* WriteNonFinite(char* pOut, double pValue) noexcept {
    if (std::isnan(pValue)) {
        return std::copy_n("NaN", 3, pOut);
    }
    if (pValue < 0) {
        *pOut++ = '-';
    }
    return std::copy_n("INF", 3, pOut);
}

char* WriteExponent(char* pOut, int pExponent) noexcept {
    *pOut++ = 'E';
    *pOut++ = pExponent < 0 ? '-' : '+';
    const int magnitude = pExponent < 0 ? -pExponent : pExponent;
    if (magnitude >= 100) {
        *pOut++ = static_cast<char>('0' + magnitude / 100);
    }
    *pOut++ = static_cast<char>('0' + magnitude / 10 % 10);
    *pOut++ = static_cast<char>('0' + magnitude % 10);
    return pOut;
}

// The general layout shared by doubles (15 digits) and singles (7 digits). Digits go out in
// blocks of 15 chars and zeros in blocks of 16, relying on the '0' padding of Decimal, and the
// pointer then moves by the length actually needed. The furthest any block reaches is 32 chars
// from the start: "-0." and up to 15 - count zeros, then 15 digit chars.
char* WriteGeneral(char* pOut, const Decimal& pDecimal, int pSignificant,
                   char pDecimalPoint) noexcept {
    constexpr int kDigitBlock = 15;
    if (pDecimal.count == 0) {
        *pOut++ = '0';
        return pOut;
    }
    if (pDecimal.negative) {
        *pOut++ = '-';
    }
    const int exponent = pDecimal.exponent;
    const int count = pDecimal.count;
    bool plain = false;
    if (exponent >= pSignificant) {
        plain = false;
    } else if (exponent > -5) {
        plain = true;
    } else {
        plain = -exponent - 1 + count <= pSignificant;
    }

    if (!plain) {
        *pOut++ = pDecimal.digits[0];
        if (count > 1) {
            *pOut++ = pDecimalPoint;
            std::copy_n(pDecimal.digits + 1, kDigitBlock, pOut);
            pOut += count - 1;
        }
        return WriteExponent(pOut, exponent);
    }
    if (exponent >= 0) {
        std::copy_n(pDecimal.digits, kDigitBlock, pOut);
        pOut += exponent + 1;
        if (count > exponent + 1) {
            *pOut++ = pDecimalPoint;
            std::copy_n(pDecimal.digits + exponent + 1, kDigitBlock, pOut);
            pOut += count - exponent - 1;
        }
        return pOut;
    }
    *pOut++ = '0';
    *pOut++ = pDecimalPoint;
    std::fill_n(pOut, 16, '0');
    pOut += -exponent - 1;
    std::copy_n(pDecimal.digits, kDigitBlock, pOut);
    return pOut + count;
}

// Parsing ------------------------------------------------------------------------------------

// Significant digits kept when reading. A midpoint between two adjacent doubles has at most 767
// significant digits, so keeping more than that and replacing whatever is dropped by one nonzero
// "sticky" digit preserves correct rounding while bounding the work buffer.
constexpr int kMaxParseDigits = 800;

// Texts up to this length try std::from_chars on a copy before the general path.
constexpr std::ptrdiff_t kQuickTextLength = 64;

// Caps for the decimal exponent bookkeeping; far beyond any exponent that matters, far below
// where 64-bit arithmetic could overflow.
constexpr std::int64_t kExponentCap = 1'000'000'000'000'000;

// The 15-digit text of the largest double, as written by WriteDouble.
constexpr std::string_view kLargestDoubleDigits = "179769313486232";

// Whether 0.<pDigits>[sticky] <= 0.179769313486232.
bool AtMostLargestDoubleText(const char* pDigits, int pCount, bool pSticky) noexcept {
    const int length = std::max(pCount, static_cast<int>(kLargestDoubleDigits.size()));
    for (int i = 0; i < length; ++i) {
        const char digit = i < pCount ? pDigits[i] : '0';
        const char limit =
            i < static_cast<int>(kLargestDoubleDigits.size()) ? kLargestDoubleDigits[i] : '0';
        if (digit != limit) {
            return digit < limit;
        }
    }
    return !pSticky;
}

ParseStatus ParseGeneral(const char* pFirst, const char* pLast, char pDecimalPoint,
                         char pGroupSeparator, double& pOut) noexcept {
    while (pFirst != pLast && IsBlank(*pFirst)) {
        ++pFirst;
    }
    while (pLast != pFirst && IsBlank(pLast[-1])) {
        --pLast;
    }
    if (pFirst == pLast) {
        return ParseStatus::TypeMismatch;
    }

    bool negative = false;
    bool hasSign = false;
    if (*pFirst == '+' || *pFirst == '-') {
        negative = *pFirst == '-';
        hasSign = true;
        ++pFirst;
    }
    const std::string_view rest(pFirst, static_cast<std::size_t>(pLast - pFirst));
    if (rest == "INF") {
        pOut = negative ? -std::numeric_limits<double>::infinity()
                        : std::numeric_limits<double>::infinity();
        return ParseStatus::Ok;
    }
    if (!hasSign && rest == "NaN") {
        pOut = std::numeric_limits<double>::quiet_NaN();
        return ParseStatus::Ok;
    }

    const bool grouping = pGroupSeparator != '\0' && pGroupSeparator != pDecimalPoint &&
                          !IsDigit(pGroupSeparator) && pGroupSeparator != '+' &&
                          pGroupSeparator != '-' && pGroupSeparator != 'e' &&
                          pGroupSeparator != 'E';

    // The significant digits go into "0.<digits>e<exponent>" for std::from_chars; the value read
    // is 0.<digits> * 10^pointExponent before the explicit exponent is applied.
    char buffer[kMaxParseDigits + 40];
    char* const digits = buffer + 2;
    int count = 0;
    bool sticky = false;
    bool anyDigit = false;
    std::int64_t pointExponent = 0;
    const auto keep = [&](char pDigit) {
        if (count < kMaxParseDigits) {
            digits[count++] = pDigit;
        } else if (pDigit != '0') {
            sticky = true;
        }
    };

    const char* p = pFirst;
    while (p != pLast) {
        if (IsDigit(*p)) {
            if (*p != '0' || count > 0) {
                keep(*p);
                pointExponent = std::min(pointExponent + 1, kExponentCap);
            }
            anyDigit = true;
            ++p;
        } else if (grouping && *p == pGroupSeparator && anyDigit && p + 1 != pLast &&
                   IsDigit(p[1])) {
            ++p;
        } else {
            break;
        }
    }
    if (p != pLast && *p == pDecimalPoint) {
        ++p;
        for (; p != pLast && IsDigit(*p); ++p) {
            anyDigit = true;
            if (*p != '0' || count > 0) {
                keep(*p);
            } else {
                pointExponent = std::max(pointExponent - 1, -kExponentCap);
            }
        }
    }
    if (!anyDigit) {
        return ParseStatus::TypeMismatch;
    }

    std::int64_t exponent = 0;
    if (p != pLast && (*p == 'e' || *p == 'E')) {
        ++p;
        bool negativeExponent = false;
        if (p != pLast && (*p == '+' || *p == '-')) {
            negativeExponent = *p == '-';
            ++p;
        }
        if (p == pLast || !IsDigit(*p)) {
            return ParseStatus::TypeMismatch;
        }
        for (; p != pLast && IsDigit(*p); ++p) {
            if (exponent < kExponentCap) {
                exponent = exponent * 10 + (*p - '0');
            }
        }
        if (negativeExponent) {
            exponent = -exponent;
        }
    }
    if (p != pLast) {
        return ParseStatus::TypeMismatch;
    }

    const double zero = negative ? -0.0 : 0.0;
    if (count == 0) {
        pOut = zero;
        return ParseStatus::Ok;
    }
    // The value is at least 10^(total - 1) and below 10^total.
    const std::int64_t total = pointExponent + exponent;
    if (total > 309) {
        return ParseStatus::Overflow;
    }
    if (total < -330) {
        pOut = zero;
        return ParseStatus::Ok;
    }

    buffer[0] = '0';
    buffer[1] = '.';
    char* end = digits + count;
    if (sticky) {
        *end++ = '1';
    }
    *end++ = 'e';
    end = std::to_chars(end, buffer + sizeof buffer, total).ptr;
    double value = 0;
    const auto result = std::from_chars(buffer, end, value);
    if (result.ec == std::errc::result_out_of_range) {
        if (total <= 0) {
            pOut = zero; // below half the smallest subnormal
            return ParseStatus::Ok;
        }
        if (total == 309 && AtMostLargestDoubleText(digits, count, sticky)) {
            pOut =
                negative ? -std::numeric_limits<double>::max() : std::numeric_limits<double>::max();
            return ParseStatus::Ok;
        }
        return ParseStatus::Overflow;
    }
    if (result.ec != std::errc() || result.ptr != end) {
        return ParseStatus::TypeMismatch; // not reached: the buffer is well formed
    }
    pOut = negative ? -value : value;
    return ParseStatus::Ok;
}

// Whether the eight chars in pChunk (first char in the lowest byte) are all decimal digits.
constexpr bool EightDigits(std::uint64_t pChunk) noexcept {
    return ((pChunk & 0xF0F0F0F0F0F0F0F0ULL) |
            (((pChunk + 0x0606060606060606ULL) & 0xF0F0F0F0F0F0F0F0ULL) >> 4)) ==
           0x3333333333333333ULL;
}

// The value of eight digit chars (first char in the lowest byte): pairs, then fours, then all
// eight combined in each step with one multiply.
constexpr std::uint32_t EightDigitValue(std::uint64_t pChunk) noexcept {
    constexpr std::uint64_t kMask = 0x000000FF000000FFULL;
    constexpr std::uint64_t kHigh = 100 + (1000000ULL << 32);
    constexpr std::uint64_t kLow = 1 + (10000ULL << 32);
    pChunk -= 0x3030303030303030ULL;
    pChunk = pChunk * 10 + (pChunk >> 8);
    return static_cast<std::uint32_t>(
        ((pChunk & kMask) * kHigh + ((pChunk >> 16) & kMask) * kLow) >> 32);
}

// How many of the eight chars in pChunk (first char in the lowest byte) are digits before the
// first one that is not: a byte is flagged when its high nibble is not 3 or its low nibble is
// above 9, and the lowest flagged byte is the count. No lane carries into its neighbour.
constexpr int LeadingDigits(std::uint64_t pChunk) noexcept {
    constexpr std::uint64_t kLow7 = 0x7F7F7F7F7F7F7F7FULL;
    const std::uint64_t wrong =
        ((pChunk & 0xF0F0F0F0F0F0F0F0ULL) ^ 0x3030303030303030ULL) |
        (((pChunk & 0x0F0F0F0F0F0F0F0FULL) + 0x0606060606060606ULL) & 0xF0F0F0F0F0F0F0F0ULL);
    const std::uint64_t flagged = (((wrong & kLow7) + kLow7) | wrong) & ~kLow7;
    return flagged == 0 ? 8 : std::countr_zero(flagged) / 8;
}

// Appends the digits from pFirst to pWhole (wrapping past 19 digits) and returns where they end.
// Runs of eight are taken at once, which matters for the long fractions of saved values. A
// shorter run is read from the eight chars where it starts, when they lie before pLast, the
// chars after the run taken out and zeros put in front; otherwise, when the run ends the text,
// from the last eight chars of the text (pText is where the readable chars begin) with the chars
// before the run taken as zeros. Inlined into its calls: as a call it cost about 7 % of a whole
// load of saved state, in register saves and restores.
[[gnu::always_inline]] inline const char* ReadDigits(const char* pText, const char* pFirst,
                                                     const char* pLast,
                                                     std::uint64_t& pWhole) noexcept {
    if constexpr (std::endian::native == std::endian::little) {
        while (pLast - pFirst >= 8) {
            std::uint64_t chunk = 0;
            std::memcpy(&chunk, pFirst, sizeof chunk);
            if (!EightDigits(chunk)) {
                const int count = LeadingDigits(chunk);
                if (count > 0) {
                    // The run moved to the top bytes, zero chars below it.
                    const int shift = 8 * (8 - count);
                    chunk = (chunk << shift) | (0x3030303030303030ULL >> (64 - shift));
                    pWhole =
                        pWhole * kPow10[static_cast<std::size_t>(count)] + EightDigitValue(chunk);
                }
                return pFirst + count;
            }
            pWhole = pWhole * 100000000 + EightDigitValue(chunk);
            pFirst += 8;
        }
        const std::ptrdiff_t rest = pLast - pFirst;
        if (rest > 0 && rest < 8 && pLast - pText >= 8) {
            std::uint64_t chunk = 0;
            std::memcpy(&chunk, pLast - 8, sizeof chunk);
            const std::uint64_t before = (std::uint64_t{1} << (8 * (8 - rest))) - 1;
            chunk = (chunk & ~before) | (0x3030303030303030ULL & before);
            if (EightDigits(chunk)) {
                pWhole = pWhole * kPow10[static_cast<std::size_t>(rest)] + EightDigitValue(chunk);
                return pLast;
            }
        }
    }
    for (; pFirst != pLast && IsDigit(*pFirst); ++pFirst) {
        pWhole = pWhole * 10 + static_cast<std::uint64_t>(*pFirst - '0');
    }
    return pFirst;
}

// "[-]digits[point digits]" with at most 19 digits, forming an integer w of at most 2^53, at most
// 22 of them after the point: w and the power of ten are then exact doubles, so one division
// gives the correctly rounded value, the one std::from_chars gives. Every value written in plain
// form with 15 significant digits is of this kind, so saved data rarely needs more. Reads from
// pFirst as far as the number goes; the chars from pText to pLimit may all be read. Returns where
// the number ends, or null when it is not of this kind (pOut is then unchanged).
[[gnu::always_inline]] inline const char* ReadShortPlain(const char* pText, const char* pFirst,
                                                         const char* pLimit, char pDecimalPoint,
                                                         double& pOut) noexcept {
    const char* p = pFirst;
    const bool negative = p != pLimit && *p == '-';
    if (negative) {
        ++p;
    }
    std::uint64_t whole = 0; // wraps beyond 19 digits, which are rejected below
    const char* const digitsStart = p;
    p = ReadDigits(pText, p, pLimit, whole);
    const std::ptrdiff_t digits = p - digitsStart;
    if (digits == 0) {
        return nullptr;
    }
    std::ptrdiff_t places = 0;
    if (p != pLimit && *p == pDecimalPoint) {
        const char* const placesStart = ++p;
        p = ReadDigits(pText, p, pLimit, whole);
        places = p - placesStart;
    }
    if (digits + places > 19 || whole > (std::uint64_t{1} << 53) ||
        places >= static_cast<std::ptrdiff_t>(std::size(kExactPow10))) {
        return nullptr;
    }
    const double value = static_cast<double>(whole) / kExactPow10[places];
    pOut = negative ? -value : value;
    return p;
}

bool ParseShortPlain(const char* pFirst, const char* pLast, char pDecimalPoint,
                     double& pOut) noexcept {
    double value = 0.0;
    if (ReadShortPlain(pFirst, pFirst, pLast, pDecimalPoint, value) != pLast) {
        return false;
    }
    pOut = value;
    return true;
}

} // namespace

Decimal RoundDouble(double pValue) noexcept {
    return RoundToSignificant(pValue, 15);
}

Decimal RoundSingle(float pValue) noexcept {
    return RoundToSignificant(pValue, 7);
}

char* WriteDouble(char* pOut, double pValue, char pDecimalPoint) noexcept {
    if (!std::isfinite(pValue)) {
        return WriteNonFinite(pOut, pValue);
    }
    return WriteGeneral(pOut, RoundDouble(pValue), 15, pDecimalPoint);
}

char* WriteSingle(char* pOut, float pValue, char pDecimalPoint) noexcept {
    if (!std::isfinite(pValue)) {
        return WriteNonFinite(pOut, static_cast<double>(pValue));
    }
    return WriteGeneral(pOut, RoundSingle(pValue), 7, pDecimalPoint);
}

char* WriteFixed(char* pOut, double pValue, int pPlaces, char pDecimalPoint) noexcept {
    if (!std::isfinite(pValue)) {
        return WriteNonFinite(pOut, pValue);
    }
    const int places = std::clamp(pPlaces, 0, kMaxFixedPlaces);
    Decimal decimal = RoundDouble(pValue);
    RoundDigits(decimal, decimal.exponent + 1 + places);
    if (decimal.count > 0 && decimal.negative) {
        *pOut++ = '-';
    }
    if (decimal.count > 0 && decimal.exponent >= 0) {
        for (int i = 0; i <= decimal.exponent; ++i) {
            *pOut++ = DigitAt(decimal, i);
        }
    } else {
        *pOut++ = '0';
    }
    if (places > 0) {
        *pOut++ = pDecimalPoint;
        for (int i = 1; i <= places; ++i) {
            *pOut++ = decimal.count > 0 ? DigitAt(decimal, decimal.exponent + i) : '0';
        }
    }
    return pOut;
}

char* WriteScientific(char* pOut, double pValue, char pDecimalPoint) noexcept {
    if (!std::isfinite(pValue)) {
        return WriteNonFinite(pOut, pValue);
    }
    Decimal decimal = RoundDouble(pValue);
    if (decimal.count == 0) {
        decimal.exponent = 0;
    } else {
        RoundDigits(decimal, 3);
        if (decimal.negative) {
            *pOut++ = '-';
        }
    }
    *pOut++ = DigitAt(decimal, 0);
    *pOut++ = pDecimalPoint;
    *pOut++ = DigitAt(decimal, 1);
    *pOut++ = DigitAt(decimal, 2);
    return WriteExponent(pOut, decimal.exponent);
}

ParseStatus ParseDouble(std::string_view pText, char pDecimalPoint, char pGroupSeparator,
                        double& pOut) noexcept {
    const char* first = pText.data();
    const char* last = first + pText.size();
    // Most numbers are "[-]digits[.digits][e[+-]digits]" with nothing around them, which
    // std::from_chars reads as they stand. It never consumes a '+', a group separator or a blank,
    // and it only reads "inf"/"nan" when they come first, so a full match is also a match of the
    // general grammar; everything else takes the general path. Another decimal point costs a copy
    // of a short text with that point replaced by '.' (a '.' in the original is then a group
    // separator or a mistake, and goes to the general path).
    if (first == last) {
        return ParseStatus::TypeMismatch;
    }
    const char* digit = *first == '-' ? first + 1 : first;
    if (digit != last && IsDigit(*digit)) {
        if (!IsDigit(pDecimalPoint) && pDecimalPoint != '-' &&
            ParseShortPlain(first, last, pDecimalPoint, pOut)) {
            return ParseStatus::Ok;
        }
        double value = 0;
        if (pDecimalPoint == '.') {
            const auto result = std::from_chars(first, last, value);
            if (result.ec == std::errc() && result.ptr == last) {
                pOut = value;
                return ParseStatus::Ok;
            }
        } else if (last - first <= kQuickTextLength && std::find(first, last, '.') == last) {
            char text[kQuickTextLength];
            char* const end = std::replace_copy(first, last, text, pDecimalPoint, '.');
            const auto result = std::from_chars(text, end, value);
            if (result.ec == std::errc() && result.ptr == end) {
                pOut = value;
                return ParseStatus::Ok;
            }
        }
    }
    return ParseGeneral(first, last, pDecimalPoint, pGroupSeparator, pOut);
}

ListResult ParseDoubleList(std::string_view pText, char pSeparator, char pDecimalPoint,
                           char pGroupSeparator, std::span<double> pOut) noexcept {
    // Saved series are millions of plain numbers: each is read where it stands, and its end is
    // the separator, so the separators need no search of their own. Anything else is cut out at
    // the next separator and read by ParseDouble, exactly as it would be on its own.
    const bool quick = !IsDigit(pDecimalPoint) && pDecimalPoint != '-' && !IsDigit(pSeparator) &&
                       pSeparator != '-' && pSeparator != pDecimalPoint;
    const char* const text = pText.data();
    const char* const last = text + pText.size();
    const char* p = text;
    std::size_t read = 0;
    bool more = !pText.empty();
    while (more && read < pOut.size()) {
        double value = 0.0;
        const char* end = quick ? ReadShortPlain(text, p, last, pDecimalPoint, value) : nullptr;
        if (end == nullptr || (end != last && *end != pSeparator)) {
            end = std::find(p, last, pSeparator);
            const ParseStatus status =
                ParseDouble(std::string_view(p, static_cast<std::size_t>(end - p)), pDecimalPoint,
                            pGroupSeparator, value);
            if (status != ParseStatus::Ok) {
                return {read, status};
            }
        }
        pOut[read++] = value;
        more = end != last;
        if (more) {
            p = end + 1;
        }
    }
    return {read, ParseStatus::Ok};
}

} // namespace trv5::numbertext
