#include "foundation/numbertext.h"
#include "testsupport.h"

#include <trv5charts/localizationlib.h>
#include <trv5charts/stringhelpers.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace L = trv5::LocalizationLib;
namespace nt = trv5::numbertext;
using trv5::ChartError;
using trv5::test::BritishEnglish;
using trv5::test::German;
using trv5::test::ScopedLocale;

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr float kMaxSingle = std::numeric_limits<float>::max();
constexpr float kTinySingle = std::numeric_limits<float>::denorm_min();

struct DoubleText {
    double value;
    const char* text;
};

QString Repeat(char pChar, int pCount) {
    return QString(pCount, QLatin1Char(pChar));
}

// Equal including the sign of zero.
void ExpectSameDouble(double pActual, double pExpected, const QString& pContext) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(pActual), std::bit_cast<std::uint64_t>(pExpected))
        << pContext.toStdString() << ": " << pActual << " vs " << pExpected;
}

// pValue rounded to pSignificant digits with exact decimal ties away from zero, worked out from
// the C library's exact (ties-to-even) printf.
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
    return std::isinf(result) ? std::copysign(kMax, pValue) : result;
}

} // namespace

TEST(DoubleToText, GeneralFormWithExactTiesAwayFromZero) {
    const double tie = 1234567890123445.0;
    // clang-format off
    const DoubleText cases[] = {
        {0.5, "0.5"}, {1e14, "100000000000000"}, {1e15, "1E+15"}, {1.2e15, "1.2E+15"},
        {14111111113353355.345455, "1.41111111133534E+16"}, {1e-5, "0.00001"},
        {-2.5e-7, "-0.00000025"}, {5.6789e-11, "0.000000000056789"}, {5.6789e-12, "5.6789E-12"},
        {std::numbers::pi, "3.14159265358979"}, {2.0 / 3, "0.666666666666667"}, {0.1 + 0.2, "0.3"},
        {kMax, "1.79769313486232E+308"}, {-0.0, "0"}, {999999999999999.6, "1E+15"},
        {kTiny, "4.94065645841247E-324"}, {-1e-100, "-1E-100"}, {kInf, "INF"}, {-kInf, "-INF"},
        {std::nan(""), "NaN"},
        // Only an exact decimal tie moves away from zero; its neighbours one ulp away do not.
        {tie, "1.23456789012345E+15"}, {-tie, "-1.23456789012345E+15"},
        {std::nextafter(tie, 0.0), "1.23456789012344E+15"},
        {std::nextafter(tie, kInf), "1.23456789012345E+15"},
        {999999999999998.5, "999999999999999"}, {123456789012344.5, "123456789012345"},
        {-12345678901234.25, "-12345678901234.3"}, {13.0 / 1048576, "1.23977661132813E-05"}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(L::DoubleToText(c.value), QLatin1String(c.text)) << c.text;
    }
}

TEST(SingleToText, SevenDigitForm) {
    // clang-format off
    const DoubleText cases[] = {
        {0.000005f, "0.000005"}, {3.14159265f, "3.141593"}, {654322.25f, "654322.3"},
        {1e7f, "1E+07"}, {12345678.0f, "1.234568E+07"}, {2.0000001f, "2"}, {-0.0f, "0"},
        {0.0001234567f, "0.0001234567"}, {0.00001234567f, "1.234567E-05"},
        {kMaxSingle, "3.402823E+38"}, {kTinySingle, "1.401298E-45"}, {-kInf, "-INF"}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(L::SingleToText(static_cast<float>(c.value)), QLatin1String(c.text)) << c.text;
    }
}

TEST(FormatNumber, FixedPercentAndScientific) {
    const QLocale british = BritishEnglish();
    // clang-format off
    const struct { double value; int digits; QString text; } fixed[] = {
        {1234567.891, 1, "1234567.9"}, {0.25, 1, "0.3"}, {0.35, 1, "0.4"}, {-2.5, 0, "-3"},
        {1, 2, "1.00"}, {9.995, 2, "10.00"}, {0.0005, 3, "0.001"}, {-0.004, 2, "0.00"},
        {kMax, 1, "179769313486232" + Repeat('0', 294) + ".0"}, {kTiny, 2, "0.00"},
        {kTiny, 340, "0." + Repeat('0', 323) + "49406564584124700"}, {-kInf, 2, "-INF"}};
    // clang-format on
    for (const auto& c : fixed) {
        EXPECT_EQ(L::FormatFixed(c.value, c.digits, british), c.text) << c.text.toStdString();
    }
    EXPECT_EQ(L::FormatFixed(2.5, 1, German()), "2,5");
    EXPECT_CHART_ERROR(L::FormatFixed(1, -1, british), ChartError::InvalidArgument);
    EXPECT_CHART_ERROR(L::FormatFixed(1, nt::kMaxFixedPlaces + 1, british),
                       ChartError::InvalidArgument);

    EXPECT_EQ(L::FormatPercent(0.125, 0, british), "13%");
    EXPECT_EQ(L::FormatPercent(0.5, 1, German()), "50,0%");
    // clang-format off
    const DoubleText scientific[] = {
        {0, "0.00E+00"}, {-0.0, "0.00E+00"}, {-5, "-5.00E+00"}, {123456789, "1.23E+08"},
        {0.000012345, "1.23E-05"}, {1e100, "1.00E+100"}, {9.996, "1.00E+01"},
        {1.005, "1.01E+00"}, {kTiny, "4.94E-324"}};
    // clang-format on
    for (const auto& c : scientific) {
        EXPECT_EQ(L::FormatScientific(c.value, british), QLatin1String(c.text)) << c.text;
    }
    EXPECT_EQ(L::FormatScientific(12345.67, German()), "1,23E+04");
}

TEST(TextToDouble, AcceptsTheNumberGrammar) {
    // clang-format off
    const DoubleText cases[] = {
        {12.5, " 12.5 "}, {5, "+5"}, {1.5e-20, "1.5e-20"}, {1000.5, "1,000.5"}, {123, "1,2,3"},
        {-7, "\t-7\r\n"}, {5, "5."}, {0.5, ".5"}, {100, "1E+2"}, {-0.0, "-0"}, {123, "000123"},
        {0, "1e-400"}, {-0.0, "-1e-99999999999999999999"}, {0, "0e99999999999999999999"},
        {kTiny, "4.9e-324"}, {-kMax, "-1.79769313486232E+308"}, {kInf, "+INF"}, {-kInf, " -INF "}};
    // clang-format on
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

// Texts longer than any buffer, read bare and behind a sign.
TEST(TextToDouble, ReadsLongTextsExactly) {
    const QString halfway = "9007199254740993" + Repeat('0', 1000); // 2^53 + 1
    // clang-format off
    const struct { QString text; double value; } cases[] = {
        {Repeat('0', 5000) + "42.5", 42.5}, {"0." + Repeat('0', 5000) + "1e5001", 1.0},
        {"1" + Repeat('0', 999) + "e-999", 1.0}, {halfway + "e-1000", 9007199254740992.0},
        {halfway + "1e-1001", 9007199254740994.0}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(L::TextToDouble(c.text), c.value) << c.text.left(20).toStdString();
        EXPECT_EQ(L::TextToDouble(" +" + c.text), c.value) << c.text.left(20).toStdString();
    }
    EXPECT_CHART_ERROR(L::TextToDouble(QString("+" + Repeat('9', 400))), ChartError::Overflow);
    EXPECT_CHART_ERROR(L::TextToDouble(QString(Repeat('1', 400) + "x")), ChartError::TypeMismatch);
}

// Plain texts of few digits take a quicker way than other numbers; it must agree with
// std::from_chars bit for bit, around each of its limits (19 digits, 2^53, 22 places) and for
// texts inside a longer buffer whose neighbours are digits.
TEST(TextToDouble, PlainTextsReadAsFromCharsDoes) {
    std::mt19937_64 random(20261123);
    std::uniform_int_distribution<int> lengths(1, 24);
    std::uniform_int_distribution<int> digitChars('0', '9');
    std::vector<std::string> texts = {"9007199254740992",
                                      "9007199254740993",
                                      "900719925474099.3",
                                      "1234567890123456789",
                                      "12345678901234567890",
                                      "1.",
                                      "-0.000",
                                      "0." + std::string(21, '0') + "1",
                                      "0." + std::string(22, '0') + "1",
                                      "-12345678.1234567"};
    for (int i = 0; i < 20000; ++i) {
        std::string text = random() % 2 ? "-" : "";
        const int whole = lengths(random);
        const int places = static_cast<int>(random() % 3) == 0 ? 0 : lengths(random);
        for (int d = 0; d < whole; ++d) {
            text.push_back(static_cast<char>(digitChars(random)));
        }
        if (places > 0) {
            text.push_back('.');
            for (int d = 0; d < places; ++d) {
                text.push_back(static_cast<char>(digitChars(random)));
            }
        }
        texts.push_back(text);
    }
    for (const std::string& text : texts) {
        double expected = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), expected);
        ASSERT_EQ(result.ptr, text.data() + text.size()) << text;
        const std::string surrounded = "98765432" + text + "12345678";
        double actual = 0;
        ASSERT_EQ(
            nt::ParseDouble(std::string_view(surrounded).substr(8, text.size()), '.', ',', actual),
            nt::ParseStatus::Ok)
            << text;
        ExpectSameDouble(actual, expected, QString::fromStdString(text));
    }
}

// A list of numbers reads as each of its texts would on its own: plain numbers that end at a
// separator take the quick way, everything else is cut out and read whole. Random lists mix
// both with damaged texts; the count, the status and every value stored must be the ones reading
// text by text gives, also when the output is shorter than the list.
TEST(TextToDouble, ListsReadAsTheirTextsDoOneByOne) {
    std::mt19937_64 random(20261123);
    const std::vector<std::string> odd = {
        "",   "1e5",   " 7",  "+3", "1,000", "NaN", "-INF", "-",   ".5",
        "1.", "1.2.3", "abc", "5 ", "1e999", "0x",  "--1",  "12a", "9" + std::string(20, '9')};
    for (int round = 0; round < 3000; ++round) {
        std::vector<std::string> fields(random() % 12);
        for (std::string& field : fields) {
            if (random() % 5 == 0) {
                field = odd[random() % odd.size()];
                continue;
            }
            field.clear();
            if (random() % 4 == 0) {
                field.push_back('-');
            }
            for (int d = static_cast<int>(random() % 12); d >= 0; --d) {
                field.push_back(static_cast<char>('0' + random() % 10));
            }
            if (random() % 3 != 0) {
                field.push_back('.');
                for (int d = static_cast<int>(random() % 18); d > 0; --d) {
                    field.push_back(static_cast<char>('0' + random() % 10));
                }
            }
        }
        std::string text;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (i != 0) {
                text.push_back('|');
            }
            text.append(fields[i]);
        }
        // No texts at all when the list is empty, else one per separator and one more.
        const std::size_t texts = text.empty() ? 0 : fields.size();
        const std::size_t room = random() % 2 == 0 ? texts : random() % 14;
        std::vector<double> values(room, -7.0);
        const nt::ListResult result = nt::ParseDoubleList(text, '|', '.', ',', values);

        std::size_t expectedRead = 0;
        nt::ParseStatus expectedStatus = nt::ParseStatus::Ok;
        std::vector<double> expected(room, -7.0);
        while (expectedRead < std::min(room, texts)) {
            expectedStatus =
                nt::ParseDouble(fields[expectedRead], '.', ',', expected[expectedRead]);
            if (expectedStatus != nt::ParseStatus::Ok) {
                break;
            }
            ++expectedRead;
        }
        ASSERT_EQ(result.read, expectedRead) << text;
        ASSERT_EQ(result.status, expectedStatus) << text;
        for (std::size_t i = 0; i < room; ++i) {
            ExpectSameDouble(values[i], expected[i], QString::fromStdString(text));
        }
    }
}

// Written text reads back as the nearest double to its 15-digit (single: 7-digit) rounding and
// writes again the same; values of at most 15 significant digits come back exactly.
TEST(TextToDouble, RoundTripsWrittenText) {
    std::mt19937_64 random(20240601);
    using Ints = std::uniform_int_distribution<std::int64_t>;
    Ints digits7(1000000, 9999999), digits15(100000000000000, 999999999999999);
    Ints exponent7(-50, 30), exponent15(-330, 292), exponent(-320, 290);
    std::uniform_real_distribution<double> logMagnitude(-300, 300);
    const auto decimal = [&](Ints& pDigits, const char* pTail, Ints& pExponent) {
        return std::to_string(pDigits(random)) + pTail + "e" + std::to_string(pExponent(random));
    };
    for (int i = 0; i < 12000; ++i) {
        // Random bits and magnitudes, short decimals, and values at and one ulp around midpoints.
        const double power = std::pow(10.0, logMagnitude(random)) * (random() % 2 ? 1 : -1);
        const double shortText = std::strtod(decimal(digits15, "", exponent).c_str(), nullptr);
        const double mid15 = std::strtod(decimal(digits15, "5", exponent15).c_str(), nullptr);
        for (double value : {std::bit_cast<double>(random()), power, shortText, mid15,
                             std::nextafter(mid15, 0.0), std::nextafter(mid15, kInf)}) {
            if (std::isfinite(value)) {
                const QString text = L::DoubleToText(value);
                const double readBack = L::TextToDouble(text);
                ExpectSameDouble(readBack, ReferenceRounding(value, 15), text);
                EXPECT_EQ(L::DoubleToText(readBack), text);
            }
        }
        const float mid7 = std::strtof(decimal(digits7, "5", exponent7).c_str(), nullptr);
        for (float value : {std::bit_cast<float>(static_cast<std::uint32_t>(random())), mid7,
                            std::nextafter(mid7, 0.0f), std::nextafter(mid7, 1e38f)}) {
            if (std::isfinite(value)) {
                const QString text = L::SingleToText(value);
                ExpectSameDouble(L::TextToDouble(text), ReferenceRounding(value, 7), text);
            }
        }
    }
}

TEST(LocalizationLib, FixedCultureIgnoresTheUserLocaleAndUserCultureFollowsIt) {
    const ScopedLocale german(German());
    EXPECT_EQ(L::DoubleToText(0.5), "0.5");
    EXPECT_EQ(L::SingleToText(0.5f), "0.5");
    EXPECT_EQ(L::TextToDouble(u"1,000.5"), 1000.5);
    EXPECT_CHART_ERROR(L::TextToDouble(u"1.000,5"), ChartError::TypeMismatch);

    EXPECT_EQ(L::DoubleToUserText(-2.5e-7), "-0,00000025");
    EXPECT_EQ(L::SingleToUserText(1234.56789f), "1234,568");
    EXPECT_EQ(L::UserTextToDouble(u"1.000,5"), 1000.5);
    EXPECT_EQ(L::UserTextToDouble(u" -1,5e3 "), -1500);
    EXPECT_CHART_ERROR(L::UserTextToDouble(u"1,000.5"), ChartError::TypeMismatch);
    EXPECT_EQ(L::GetUserDecimalSeparator(), ",");
    EXPECT_EQ(L::UserDecimalPointChar(), ',');
    EXPECT_EQ(L::UserGroupSeparatorChar(), '.');
    EXPECT_EQ(L::FormatFixed(0.5, 2), "0,50");
    EXPECT_EQ(L::GetLocaleString(L::kUserDefaultLocale, L::kDecimalSeparator), ",");
    EXPECT_EQ(L::GetUserDefaultLocaleId(), 1031);
}

TEST(LocalizationLib, UserCultureWithNonAsciiGroupSeparator) {
    const ScopedLocale french(QLocale(QLocale::French, QLocale::France));
    EXPECT_EQ(L::UserTextToDouble(QString("1" + QLocale().groupSeparator() + "000,5")), 1000.5);
    EXPECT_CHART_ERROR(L::UserTextToDouble(u"1.5"), ChartError::TypeMismatch);
    EXPECT_NE(L::UserGroupSeparatorChar(), ',');
}

TEST(WholeNumbers, RoundHalfToEvenWithOverflow) {
    // clang-format off
    const struct { double value; std::int32_t result; } cases[] = {
        {2.5, 2}, {3.5, 4}, {-0.5, 0}, {-1.5, -2}, {0.49999999999999994, 0},
        {2147483647.49, 2147483647}, {-2147483648.5, -2147483648}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(L::ToInt32(c.value), c.result) << c.value;
    }
    for (double value : {2147483647.5, -2147483649.0, kInf, std::nan("")}) {
        EXPECT_CHART_ERROR(L::ToInt32(value), ChartError::Overflow);
    }
    EXPECT_EQ(L::ToInt16(-32768.5), -32768);
    EXPECT_CHART_ERROR(L::ToInt16(32767.5), ChartError::Overflow);
    EXPECT_CHART_ERROR(L::ToInt16(-32769), ChartError::Overflow);

    EXPECT_EQ(L::TextToInt32(u" -3.5 "), -4);
    EXPECT_CHART_ERROR(L::TextToInt32(u"1e10"), ChartError::Overflow);
    EXPECT_CHART_ERROR(L::TextToInt32(u"two"), ChartError::TypeMismatch);
}

TEST(LocalizationLib, LocaleInformation) {
    EXPECT_EQ(L::GetLocaleString(1031, L::kThousandSeparator), ".");
    EXPECT_EQ(L::GetLocaleString(2057, L::kLocaleName), "en-GB");
    EXPECT_CHART_ERROR(L::GetLocaleString(0x9999, L::kDecimalSeparator),
                       ChartError::InvalidArgument);
    EXPECT_CHART_ERROR(L::GetLocaleString(2057, 0x7777), ChartError::InvalidArgument);
    const ScopedLocale welsh(QLocale(QLocale::Welsh, QLocale::UnitedKingdom));
    EXPECT_EQ(L::GetUserDefaultLocaleId(), L::kUserDefaultLocale);
}

TEST(StringHelpers, StartsWithAndRemoveTrailing) {
    using trv5::StringHelpers::RemoveTrailing;
    using trv5::StringHelpers::StartsWith;
    EXPECT_TRUE(StartsWith(u"abc", u""));
    EXPECT_FALSE(StartsWith(u"ab", u"abc"));
    EXPECT_FALSE(StartsWith(u"Abc", u"abc"));

    // clang-format off
    const struct { const char16_t *text, *suffix, *result; } cases[] = {
        {u"Name::", u":", u"Name"}, {u":::", u":", u""}, {u"aabab", u"ab", u"a"},
        {u"Name:", u"", u"Name:"}, {u"Name:", u"::", u"Name:"}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(RemoveTrailing(QString::fromUtf16(c.text), c.suffix),
                  QString::fromUtf16(c.result));
    }
}
