#include "foundation/numbertext.h"
#include "testsupport.h"

#include <trv5charts/localizationlib.h>
#include <trv5charts/stringhelpers.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <string_view>

namespace L = trv5::LocalizationLib;
namespace nt = trv5::numbertext;
using trv5::ChartError;
using trv5::test::BritishEnglish;
using trv5::test::German;
using trv5::test::ScopedLocale;

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMax = std::numeric_limits<double>::max();

QString Repeat(char pChar, int pCount) {
    return QString(pCount, QLatin1Char(pChar));
}

// Equal including the sign of zero.
void ExpectSameDouble(double pActual, double pExpected, const QString& pContext) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(pActual), std::bit_cast<std::uint64_t>(pExpected))
        << pContext.toStdString() << ": " << pActual << " vs " << pExpected;
}

} // namespace

TEST(DoubleToText, GeneralForm) {
    const struct {
        double value;
        const char* text;
    } cases[] = {
        {0.5, "0.5"},
        {100000000000000, "100000000000000"},
        {1e15, "1E+15"},
        {1.2e15, "1.2E+15"},
        {1.234e16, "1.234E+16"},
        {14111111113353355.345455, "1.41111111133534E+16"},
        {0.0001, "0.0001"},
        {1e-5, "0.00001"},
        {1.5e-5, "0.000015"},
        {-2.5e-7, "-0.00000025"},
        {5.6789e-11, "0.000000000056789"},
        {5.6789e-12, "5.6789E-12"},
        {std::numbers::pi, "3.14159265358979"},
        {1.0 / 3, "0.333333333333333"},
        {2.0 / 3, "0.666666666666667"},
        {0.1 + 0.2, "0.3"},
        {kMax, "1.79769313486232E+308"},
        {-0.0, "0"},
        {999999999999999.6, "1E+15"}, // rounding carries into a new exponent
        {123456789012345.4, "123456789012345"},
        {std::numeric_limits<double>::denorm_min(), "4.94065645841247E-324"},
        {-1e-100, "-1E-100"},
        {kInf, "INF"},
        {-kInf, "-INF"},
        {std::numeric_limits<double>::quiet_NaN(), "NaN"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(L::DoubleToText(c.value), QLatin1String(c.text)) << c.text;
    }
}

// Printf-style rounding settles exact ties to even; saved text rounds them away from zero. The
// neighbours one ulp either side prove that only the exact tie is moved.
TEST(DoubleToText, ExactDecimalTiesRoundAwayFromZero) {
    const struct {
        double value;
        const char* text;
    } cases[] = {
        {1234567890123445.0, "1.23456789012345E+15"},
        {-1234567890123445.0, "-1.23456789012345E+15"},
        {std::nextafter(1234567890123445.0, 0.0), "1.23456789012344E+15"},
        {std::nextafter(1234567890123445.0, kInf), "1.23456789012345E+15"},
        {12345678901234450.0, "1.23456789012345E+16"},
        {999999999999998.5, "999999999999999"},
        {123456789012344.5, "123456789012345"},
        {12345678901234.25, "12345678901234.3"},
        {-12345678901234.25, "-12345678901234.3"},
        {13.0 / 1048576, "1.23977661132813E-05"}, // exactly 0.00001239776611328125
    };
    for (const auto& c : cases) {
        EXPECT_EQ(L::DoubleToText(c.value), QLatin1String(c.text)) << c.text;
    }
}

TEST(SingleToText, SevenDigitForm) {
    const struct {
        float value;
        const char* text;
    } cases[] = {
        {0.5f, "0.5"},
        {0.000005f, "0.000005"},
        {3.14159265f, "3.141593"},
        {1234.56789012f, "1234.568"},
        {654322.25f, "654322.3"},
        {1e7f, "1E+07"},
        {12345678.0f, "1.234568E+07"},
        {1e8f, "1E+08"},
        {2.0000001f, "2"},
        {1.0f / 3, "0.3333333"},
        {0.0001234567f, "0.0001234567"},
        {0.00001234567f, "1.234567E-05"},
        {-0.0f, "0"},
        {std::numeric_limits<float>::max(), "3.402823E+38"},
        {std::numeric_limits<float>::denorm_min(), "1.401298E-45"},
        {-std::numeric_limits<float>::infinity(), "-INF"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(L::SingleToText(c.value), QLatin1String(c.text)) << c.text;
    }
}

TEST(FormatNumber, FixedDecimalsRoundTheDigitText) {
    const QLocale british = BritishEnglish();
    const struct {
        double value;
        int digits;
        QString text;
    } cases[] = {
        {0.5, 1, "0.5"},
        {-2.5, 1, "-2.5"},
        {1234567.891, 1, "1234567.9"},
        {0.25, 1, "0.3"},
        {0.35, 1, "0.4"},
        {2.5, 0, "3"},
        {-2.5, 0, "-3"},
        {1, 2, "1.00"},
        {9.995, 2, "10.00"}, // 9.99499999999999921... in binary
        {0.0005, 3, "0.001"},
        {0.0004, 3, "0.000"},
        {-0.004, 2, "0.00"},
        {1e300, 2, "1" + Repeat('0', 300) + ".00"},
        {kMax, 1, "179769313486232" + Repeat('0', 294) + ".0"},
        {std::numeric_limits<double>::denorm_min(), 2, "0.00"},
        {5e-324, 340, "0." + Repeat('0', 323) + "49406564584124700"},
        {-kInf, 2, "-INF"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(L::FormatFixed(c.value, c.digits, british), c.text) << c.text.toStdString();
    }
    EXPECT_EQ(L::FormatFixed(2.5, 1, German()), "2,5");
    EXPECT_CHART_ERROR(L::FormatFixed(1, -1, british), ChartError::InvalidArgument);
    EXPECT_CHART_ERROR(L::FormatFixed(1, nt::kMaxFixedPlaces + 1, british),
                       ChartError::InvalidArgument);
}

TEST(FormatNumber, PercentAndScientific) {
    const QLocale british = BritishEnglish();
    EXPECT_EQ(L::FormatPercent(0.85, 0, british), "85%");
    EXPECT_EQ(L::FormatPercent(0.126, 0, british), "13%");
    EXPECT_EQ(L::FormatPercent(0.125, 0, british), "13%");
    EXPECT_EQ(L::FormatPercent(0.5, 1, German()), "50,0%");

    const struct {
        double value;
        const char* text;
    } cases[] = {
        {1, "1.00E+00"},           {0, "0.00E+00"},        {-0.0, "0.00E+00"},
        {-5, "-5.00E+00"},         {12345.67, "1.23E+04"}, {123456789, "1.23E+08"},
        {0.000012345, "1.23E-05"}, {1e100, "1.00E+100"},   {9.996, "1.00E+01"},
        {1.005, "1.01E+00"}, // 1.00499999999999989... in binary
        {5e-324, "4.94E-324"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(L::FormatScientific(c.value, british), QLatin1String(c.text)) << c.text;
    }
    EXPECT_EQ(L::FormatScientific(12345.67, German()), "1,23E+04");
}

TEST(TextToDouble, AcceptsTheNumberGrammar) {
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {" 12.5 ", 12.5},
        {"+5", 5},
        {"1e3", 1000},
        {"1.5e-20", 1.5e-20},
        {"1,000.5", 1000.5},
        {"1,2,3", 123},
        {"\t-7\r\n", -7},
        {"5.", 5},
        {".5", 0.5},
        {"1E+2", 100},
        {"-0", -0.0},
        {"000123", 123},
        {"1e-400", 0},
        {"-1e-99999999999999999999", -0.0},
        {"0e99999999999999999999", 0},
        {"4.9e-324", std::numeric_limits<double>::denorm_min()},
        {"1.79769313486232E+308", kMax},
        {"-1.79769313486232E+308", -kMax},
        {"INF", kInf},
        {"+INF", kInf},
        {" -INF ", -kInf},
    };
    for (const auto& c : cases) {
        ExpectSameDouble(L::TextToDouble(QString::fromLatin1(c.text)), c.value, c.text);
    }
    EXPECT_TRUE(std::isnan(L::TextToDouble(u"NaN")));
}

TEST(TextToDouble, RejectsEverythingElse) {
    const char16_t* mismatches[] = {
        u"",        u" ",    u"abc",  u"1.2.3", u",1",       u"1,",         u"1,,000",
        u"1.000,5", u"1e",   u"1e+",  u"e5",    u".",        u"-",          u"+-1",
        u"--1",     u"- 1",  u"1 2",  u"inf",   u"Infinity", u"nan",        u"-NaN",
        u"NaN(1)",  u"INF5", u"0x10", u"1.5%",  u"\u0661",   u"1\u00a0000", u"1\u00b72",
    };
    for (const char16_t* text : mismatches) {
        EXPECT_CHART_ERROR(L::TextToDouble(text), ChartError::TypeMismatch);
    }
    EXPECT_CHART_ERROR(L::TextToDouble(QStringView(u"1\0", 2)), ChartError::TypeMismatch);

    for (const char16_t* text :
         {u"1e309", u"-2e308", u"1.79769313486233E+308", u"1e99999999999999999999"}) {
        EXPECT_CHART_ERROR(L::TextToDouble(text), ChartError::Overflow);
    }
}

// Texts far longer than any buffer: leading zeros, a long mantissa whose last digit decides the
// rounding, and an exponent that brings a tiny mantissa back to 1. Each is read as it stands and
// behind a sign, which no quick path takes.
TEST(TextToDouble, ReadsLongTextsExactly) {
    // 2^53 + 1 lies halfway between two doubles; anything after it decides the direction.
    const QString halfway = "9007199254740993" + Repeat('0', 1000);
    const struct {
        QString text;
        double value;
    } cases[] = {
        {Repeat('0', 5000) + "42.5", 42.5},        {"0." + Repeat('0', 5000) + "1e5001", 1.0},
        {"1" + Repeat('0', 999) + "e-999", 1.0},   {halfway + "e-1000", 9007199254740992.0},
        {halfway + "1e-1001", 9007199254740994.0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(L::TextToDouble(c.text), c.value) << c.text.left(20).toStdString();
        EXPECT_EQ(L::TextToDouble(" +" + c.text), c.value) << c.text.left(20).toStdString();
    }
    EXPECT_CHART_ERROR(L::TextToDouble(QString(Repeat('9', 400))), ChartError::Overflow);
    EXPECT_CHART_ERROR(L::TextToDouble(QString("+" + Repeat('9', 400))), ChartError::Overflow);
    EXPECT_CHART_ERROR(L::TextToDouble(QString(Repeat('1', 400) + "x")), ChartError::TypeMismatch);
}

namespace {

// The value of the rounding of pValue to pSignificant digits, with exact decimal ties away from
// zero, from the C library: its printf rounds exactly (ties to even) and shows every digit of a
// double on request.
double ReferenceRounding(double pValue, int pSignificant) {
    char exact[800];
    std::snprintf(exact, sizeof exact, "%.770e", std::fabs(pValue));
    const std::string_view digits(exact + 2, 770); // after "d."
    const auto tieDigit = static_cast<std::size_t>(pSignificant - 1);
    const bool tie =
        digits[tieDigit] == '5' && digits.find_first_not_of('0', tieDigit + 1) == digits.npos;
    const double rounded = tie ? std::nextafter(pValue, std::copysign(kInf, pValue)) : pValue;
    char text[64];
    std::snprintf(text, sizeof text, "%.*e", pSignificant - 1, rounded);
    const double result = std::strtod(text, nullptr);
    // The 15-digit text of the largest double lies beyond it but reads back as it.
    return std::isinf(result) ? std::copysign(kMax, pValue) : result;
}

} // namespace

// Reading back a written value gives the double nearest to its 15-digit rounding (7 for a single),
// and writing that again gives the same text. Values of 15 significant digits or fewer survive the
// trip exactly.
TEST(TextToDouble, RoundTripsWrittenText) {
    std::mt19937_64 random(20240601);
    std::uniform_real_distribution<double> logMagnitude(-300, 300);
    for (int i = 0; i < 40000; ++i) {
        double value = std::bit_cast<double>(random());
        if (i % 2 == 1) {
            value = std::pow(10.0, logMagnitude(random)) * (random() % 2 ? 1 : -1);
        }
        if (!std::isfinite(value)) {
            continue;
        }
        const QString text = L::DoubleToText(value);
        const double readBack = L::TextToDouble(text);
        ExpectSameDouble(readBack, ReferenceRounding(value, 15), text);
        EXPECT_EQ(L::DoubleToText(readBack), text);
    }

    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (!std::isfinite(value)) {
            continue;
        }
        const QString text = L::SingleToText(value);
        ExpectSameDouble(L::TextToDouble(text), ReferenceRounding(value, 7), text);
    }

    // Values at and around rounding midpoints, where a shortcut or a tie rule goes wrong.
    std::uniform_int_distribution<std::int64_t> digits7(1000000, 9999999);
    std::uniform_int_distribution<std::int64_t> digits15(100000000000000, 999999999999999);
    std::uniform_int_distribution<int> exponent7(-50, 30);
    std::uniform_int_distribution<int> exponent15(-330, 292);
    for (int i = 0; i < 5000; ++i) {
        const std::string midpoint7 =
            std::to_string(digits7(random)) + "5e" + std::to_string(exponent7(random));
        const float single = std::strtof(midpoint7.c_str(), nullptr);
        for (float value : {single, std::nextafter(single, 0.0f), std::nextafter(single, 1e38f)}) {
            const QString text = L::SingleToText(value);
            ExpectSameDouble(L::TextToDouble(text), ReferenceRounding(value, 7), text);
        }
        const std::string midpoint15 =
            std::to_string(digits15(random)) + "5e" + std::to_string(exponent15(random));
        const double value = std::strtod(midpoint15.c_str(), nullptr);
        for (double near : {value, std::nextafter(value, 0.0), std::nextafter(value, kInf)}) {
            const QString text = L::DoubleToText(near);
            ExpectSameDouble(L::TextToDouble(text), ReferenceRounding(near, 15), text);
        }
    }

    std::uniform_int_distribution<std::int64_t> mantissa(1, 999999999999999);
    std::uniform_int_distribution<int> exponent(-320, 290);
    for (int i = 0; i < 20000; ++i) {
        const std::string decimal =
            std::to_string(mantissa(random)) + "e" + std::to_string(exponent(random));
        const double value = std::strtod(decimal.c_str(), nullptr);
        ExpectSameDouble(L::TextToDouble(L::DoubleToText(value)), value,
                         QString::fromStdString(decimal));
    }
}

TEST(LocalizationLib, FixedCultureIgnoresTheUserLocale) {
    const ScopedLocale german(German());
    EXPECT_EQ(L::DoubleToText(0.5), "0.5");
    EXPECT_EQ(L::SingleToText(0.5f), "0.5");
    EXPECT_EQ(L::TextToDouble(u"0.5"), 0.5);
    EXPECT_EQ(L::TextToDouble(u"1,000.5"), 1000.5);
    EXPECT_CHART_ERROR(L::TextToDouble(u"1.000,5"), ChartError::TypeMismatch);

    EXPECT_EQ(L::DoubleToUserText(0.5), "0,5");
    EXPECT_EQ(L::DoubleToUserText(-2.5e-7), "-0,00000025");
    EXPECT_EQ(L::SingleToUserText(1234.56789f), "1234,568");
    EXPECT_EQ(L::UserTextToDouble(u"1.000,5"), 1000.5);
    EXPECT_EQ(L::UserTextToDouble(u" -1,5e3 "), -1500);
    EXPECT_CHART_ERROR(L::UserTextToDouble(u"1,000.5"), ChartError::TypeMismatch);
    EXPECT_EQ(L::GetUserDecimalSeparator(), ",");
    EXPECT_EQ(L::UserDecimalPointChar(), ',');
    EXPECT_EQ(L::UserGroupSeparatorChar(), '.');
    EXPECT_EQ(L::FormatFixed(0.5, 2), "0,50");
}

TEST(LocalizationLib, UserCultureWithNonAsciiGroupSeparator) {
    const ScopedLocale french(QLocale(QLocale::French, QLocale::France));
    const QString group = QLocale().groupSeparator();
    EXPECT_EQ(L::UserTextToDouble(QString("1" + group + "000,5")), 1000.5);
    EXPECT_CHART_ERROR(L::UserTextToDouble(u"1.5"), ChartError::TypeMismatch);
    EXPECT_EQ(L::UserDecimalPointChar(), ',');
    EXPECT_NE(L::UserGroupSeparatorChar(), ',');
}

TEST(WholeNumbers, RoundHalfToEvenWithOverflow) {
    const struct {
        double value;
        std::int32_t result;
    } cases[] = {
        {2.5, 2},
        {3.5, 4},
        {-2.5, -2},
        {0.5, 0},
        {-0.5, 0},
        {-1.5, -2},
        {0.49999999999999994, 0},
        {2147483647.49, 2147483647},
        {-2147483648.5, -2147483648},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(L::ToInt32(c.value), c.result) << c.value;
    }
    for (double value : {2147483647.5, -2147483649.0, 1e300, kInf, -kInf,
                         std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_CHART_ERROR(L::ToInt32(value), ChartError::Overflow);
    }

    EXPECT_EQ(L::ToInt16(32767.4), 32767);
    EXPECT_EQ(L::ToInt16(-32768.5), -32768);
    EXPECT_EQ(L::ToInt16(-4.5), -4);
    EXPECT_CHART_ERROR(L::ToInt16(32767.5), ChartError::Overflow);
    EXPECT_CHART_ERROR(L::ToInt16(-32769), ChartError::Overflow);

    EXPECT_EQ(L::TextToInt32(u"2.5"), 2);
    EXPECT_EQ(L::TextToInt32(u" -3.5 "), -4);
    EXPECT_CHART_ERROR(L::TextToInt32(u"1e10"), ChartError::Overflow);
    EXPECT_CHART_ERROR(L::TextToInt32(u"INF"), ChartError::Overflow);
    EXPECT_CHART_ERROR(L::TextToInt32(u"two"), ChartError::TypeMismatch);
}

TEST(LocalizationLib, LocaleInformation) {
    const struct {
        std::int32_t locale;
        std::int32_t type;
        const char* text;
    } cases[] = {
        {2057, L::kDecimalSeparator, "."},  {2057, L::kThousandSeparator, ","},
        {1031, L::kDecimalSeparator, ","},  {1031, L::kThousandSeparator, "."},
        {1036, L::kDecimalSeparator, ","},  {1033, L::kIsoLanguageName, "en"},
        {1033, L::kIsoCountryName, "US"},   {2057, L::kIsoCountryName, "GB"},
        {1031, L::kIsoLanguageName, "de"},  {1031, L::kNegativeSign, "-"},
        {0x0C0A, L::kIsoCountryName, "ES"}, {2057, L::kLocaleName, "en-GB"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(L::GetLocaleString(c.locale, c.type), QLatin1String(c.text))
            << c.locale << "/" << c.type;
    }
    EXPECT_CHART_ERROR(L::GetLocaleString(0x9999, L::kDecimalSeparator),
                       ChartError::InvalidArgument);
    EXPECT_CHART_ERROR(L::GetLocaleString(2057, 0x7777), ChartError::InvalidArgument);

    {
        const ScopedLocale german(German());
        EXPECT_EQ(L::GetLocaleString(L::kUserDefaultLocale, L::kDecimalSeparator), ",");
        EXPECT_EQ(L::GetUserDefaultLocaleId(), 1031);
    }
    {
        const ScopedLocale british(BritishEnglish());
        EXPECT_EQ(L::GetLocaleString(L::kUserDefaultLocale, L::kDecimalSeparator), ".");
        EXPECT_EQ(L::GetUserDefaultLocaleId(), 2057);
    }
    const ScopedLocale welsh(QLocale(QLocale::Welsh, QLocale::UnitedKingdom));
    EXPECT_EQ(L::GetUserDefaultLocaleId(), L::kUserDefaultLocale);
}

TEST(StringHelpers, StartsWithAndRemoveTrailing) {
    using trv5::StringHelpers::RemoveTrailing;
    using trv5::StringHelpers::StartsWith;
    EXPECT_TRUE(StartsWith(u"abc", u""));
    EXPECT_TRUE(StartsWith(u"", u""));
    EXPECT_TRUE(StartsWith(u"<rtchart seriescount='2'", u"<rtchart "));
    EXPECT_FALSE(StartsWith(u"ab", u"abc"));
    EXPECT_FALSE(StartsWith(u"Abc", u"abc"));

    const struct {
        const char16_t* text;
        const char16_t* suffix;
        const char16_t* result;
    } cases[] = {
        {u"Name::", u":", u"Name"}, {u":::", u":", u""},         {u"a:b:", u":", u"a:b"},
        {u"abab", u"ab", u""},      {u"aabab", u"ab", u"a"},     {u"Name", u":", u"Name"},
        {u"Name:", u"", u"Name:"},  {u"Name:", u"::", u"Name:"}, {u"", u":", u""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(RemoveTrailing(QString::fromUtf16(c.text), c.suffix),
                  QString::fromUtf16(c.result));
    }
}
