#pragma once

#include <QLocale>
#include <QString>
#include <QStringView>

#include <cstdint>

// Numbers as text. Two cultures are involved:
//  - the fixed culture (English, United Kingdom: '.' decimal point, ',' group separator) for every
//    number in saved chart state, so that a chart saved on one machine loads on any other;
//  - the user's culture, QLocale() (the default locale), for clipboard text and display.
// A culture contributes only its decimal point (and its group separator when reading); digits are
// never grouped on output and signs are always ASCII.
//
// General text has 15 significant digits for a double and 7 for a single, with plain digits for
// moderate magnitudes and an exponent form such as 1.2E+15 or 5.6789E-12 otherwise. Infinities and
// NaN are written "INF", "-INF" and "NaN" and read back.
//
// Errors are thrown as trv5::ChartError: 13 (type mismatch) for text that is no number, 6
// (overflow) for numbers out of range, 5 (invalid argument) for unknown locale look-ups.
namespace trv5::LocalizationLib {

// Fixed culture.
QString DoubleToText(double pValue);
double TextToDouble(QStringView pText);
QString SingleToText(float pValue);

// The user's culture.
QString DoubleToUserText(double pValue);
double UserTextToDouble(QStringView pText);
QString SingleToUserText(float pValue);

// pValue with exactly pDigits decimals (0 to 340, otherwise ChartError 5), rounded half away from
// zero from its 15-digit text, without grouping, with pLocale's decimal point.
QString FormatFixed(double pValue, int pDigits, const QLocale& pLocale = QLocale());
// 100 * pValue as FormatFixed writes it, followed by '%'.
QString FormatPercent(double pValue, int pDigits, const QLocale& pLocale = QLocale());
// The "0.00E+00" pattern, for example 1.23E+04 and -5.00E+00.
QString FormatScientific(double pValue, const QLocale& pLocale = QLocale());

// Round half to even; ChartError 6 when the result is outside the type's range or pValue is not
// finite.
std::int32_t ToInt32(double pValue);
std::int16_t ToInt16(double pValue);
// Fixed-culture text, read as by TextToDouble, then rounded as by ToInt32.
std::int32_t TextToInt32(QStringView pText);

// Locale identifiers (LCIDs) and information types of the classic locale-information interface.
inline constexpr std::int32_t kUserDefaultLocale = 0x0400;
inline constexpr std::int32_t kSystemDefaultLocale = 0x0800;
inline constexpr std::int32_t kEnglishUnitedKingdomLocale = 0x0809;

inline constexpr std::int32_t kNativeLanguageName = 0x04;
inline constexpr std::int32_t kNativeCountryName = 0x08;
inline constexpr std::int32_t kDecimalSeparator = 0x0E;
inline constexpr std::int32_t kThousandSeparator = 0x0F;
inline constexpr std::int32_t kPositiveSign = 0x50;
inline constexpr std::int32_t kNegativeSign = 0x51;
inline constexpr std::int32_t kIsoLanguageName = 0x59;
inline constexpr std::int32_t kIsoCountryName = 0x5A;
inline constexpr std::int32_t kLocaleName = 0x5C;
inline constexpr std::int32_t kPercentSymbol = 0x76;
inline constexpr std::int32_t kEnglishLanguageName = 0x1001;
inline constexpr std::int32_t kEnglishCountryName = 0x1002;

// One item of locale information. pLocaleId is 0x0400 for the user's culture (QLocale()), 0x0800
// for the system's (QLocale::system()), or one of the common LCIDs this library knows (en-GB,
// en-US, de-DE, fr-FR and some thirty others). An unknown identifier or information type throws
// ChartError 5.
QString GetLocaleString(std::int32_t pLocaleId, std::int32_t pInfoType);

// The LCID of QLocale() when it is one this library knows, otherwise 0x0400.
std::int32_t GetUserDefaultLocaleId();

// QLocale().decimalPoint(). Never throws.
QString GetUserDecimalSeparator();

// The user's decimal point as one char for the char-level routines in the library: '.' when the
// locale's decimal point is not a single ASCII character.
char UserDecimalPointChar();

// The user's group separator as one char, for reading: the locale's own when it is a single ASCII
// character other than the decimal point, otherwise ',' unless that is the decimal point, in which
// case '\0' (no grouping accepted).
char UserGroupSeparatorChar();

} // namespace trv5::LocalizationLib
