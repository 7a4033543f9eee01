#include <trv5charts/localizationlib.h>

#include "foundation/numbertext.h"

#include <trv5charts/charterror.h>

#include <cmath>
#include <string>
#include <string_view>

namespace trv5::LocalizationLib {

namespace {

namespace nt = numbertext;

// Marks a character that has no place in a number, so that ParseDouble rejects the text.
constexpr char kRejected = '\x7f';

// The separators of a culture as single characters; a null group separator means that the culture
// has none that we can recognise and digits may not be grouped.
struct Separators {
    QChar decimalPoint;
    QChar groupSeparator;
};

Separators FixedSeparators() {
    return {QLatin1Char('.'), QLatin1Char(',')};
}

Separators SeparatorsOf(const QLocale& pLocale) {
    const QString decimalPoint = pLocale.decimalPoint();
    const QString groupSeparator = pLocale.groupSeparator();
    Separators separators{decimalPoint.size() == 1 ? decimalPoint.front() : QLatin1Char('.'),
                          QChar()};
    if (groupSeparator.size() == 1 && groupSeparator.front() != separators.decimalPoint) {
        separators.groupSeparator = groupSeparator.front();
    }
    return separators;
}

// Text in the char alphabet of ParseDouble: the culture's decimal point becomes '.', its group
// separator ',', and any other non-ASCII character, NUL, or a '.' or ',' that is not the
// culture's separator becomes a character the grammar rejects.
double ParseText(QStringView pText, const Separators& pSeparators) {
    constexpr qsizetype kStackLength = 256;
    char stackBuffer[kStackLength];
    std::string heapBuffer;
    char* buffer = stackBuffer;
    if (pText.size() > kStackLength) {
        heapBuffer.resize(static_cast<std::size_t>(pText.size()));
        buffer = heapBuffer.data();
    }
    for (qsizetype i = 0; i < pText.size(); ++i) {
        const QChar character = pText[i];
        const char16_t code = character.unicode();
        char mapped = kRejected;
        if (character == pSeparators.decimalPoint) {
            mapped = '.';
        } else if (!pSeparators.groupSeparator.isNull() &&
                   character == pSeparators.groupSeparator) {
            mapped = ',';
        } else if (code != u'.' && code != u',' && code != 0 && code < 0x80) {
            mapped = static_cast<char>(code);
        }
        buffer[i] = mapped;
    }
    double value = 0;
    const auto status =
        nt::ParseDouble(std::string_view(buffer, static_cast<std::size_t>(pText.size())), '.',
                        pSeparators.groupSeparator.isNull() ? '\0' : ',', value);
    switch (status) {
    case nt::ParseStatus::Ok:
        return value;
    case nt::ParseStatus::Overflow:
        throw ChartError(ChartError::Overflow);
    case nt::ParseStatus::TypeMismatch:
        break;
    }
    throw ChartError(ChartError::TypeMismatch);
}

// A text written with '.' as its decimal point, given the culture's decimal point instead.
QString WithDecimalPoint(const char* pFirst, const char* pLast, const QString& pDecimalPoint) {
    QString text = QString::fromLatin1(pFirst, pLast - pFirst);
    if (pDecimalPoint != QLatin1String(".")) {
        const qsizetype point = text.indexOf(QLatin1Char('.'));
        if (point >= 0) {
            text.replace(point, 1, pDecimalPoint);
        }
    }
    return text;
}

QString FixedText(const char* pFirst, const char* pLast) {
    return QString::fromLatin1(pFirst, pLast - pFirst);
}

void CheckPlaces(int pDigits) {
    if (pDigits < 0 || pDigits > nt::kMaxFixedPlaces) {
        throw ChartError(ChartError::InvalidArgument);
    }
}

// Round half to even. std::round is exact and rounds ties away from zero; a tie is recognised by
// its distance of exactly one half (exact here) and moved to the even neighbour.
double RoundHalfEven(double pValue) {
    double rounded = std::round(pValue);
    if (std::fabs(rounded - pValue) == 0.5 && std::fmod(rounded, 2.0) != 0.0) {
        rounded -= std::copysign(1.0, pValue);
    }
    return rounded;
}

struct KnownLocale {
    std::int32_t id;
    QLocale::Language language;
    QLocale::Territory territory;
};

// The locales that hosts are likely to ask for by number. The first entry of a language and
// territory is the one GetUserDefaultLocaleId reports.
constexpr KnownLocale kKnownLocales[] = {
    {0x0409, QLocale::English, QLocale::UnitedStates},
    {0x0809, QLocale::English, QLocale::UnitedKingdom},
    {0x0C09, QLocale::English, QLocale::Australia},
    {0x1009, QLocale::English, QLocale::Canada},
    {0x1409, QLocale::English, QLocale::NewZealand},
    {0x1809, QLocale::English, QLocale::Ireland},
    {0x1C09, QLocale::English, QLocale::SouthAfrica},
    {0x4009, QLocale::English, QLocale::India},
    {0x0407, QLocale::German, QLocale::Germany},
    {0x0807, QLocale::German, QLocale::Switzerland},
    {0x0C07, QLocale::German, QLocale::Austria},
    {0x040C, QLocale::French, QLocale::France},
    {0x080C, QLocale::French, QLocale::Belgium},
    {0x0C0C, QLocale::French, QLocale::Canada},
    {0x100C, QLocale::French, QLocale::Switzerland},
    {0x0410, QLocale::Italian, QLocale::Italy},
    {0x0810, QLocale::Italian, QLocale::Switzerland},
    {0x0C0A, QLocale::Spanish, QLocale::Spain},
    {0x080A, QLocale::Spanish, QLocale::Mexico},
    {0x0413, QLocale::Dutch, QLocale::Netherlands},
    {0x0813, QLocale::Dutch, QLocale::Belgium},
    {0x0816, QLocale::Portuguese, QLocale::Portugal},
    {0x0416, QLocale::Portuguese, QLocale::Brazil},
    {0x0406, QLocale::Danish, QLocale::Denmark},
    {0x041D, QLocale::Swedish, QLocale::Sweden},
    {0x0414, QLocale::NorwegianBokmal, QLocale::Norway},
    {0x040B, QLocale::Finnish, QLocale::Finland},
    {0x0415, QLocale::Polish, QLocale::Poland},
    {0x0405, QLocale::Czech, QLocale::CzechRepublic},
    {0x040E, QLocale::Hungarian, QLocale::Hungary},
    {0x0419, QLocale::Russian, QLocale::Russia},
    {0x0408, QLocale::Greek, QLocale::Greece},
    {0x041F, QLocale::Turkish, QLocale::Turkey},
    {0x0411, QLocale::Japanese, QLocale::Japan},
    {0x0412, QLocale::Korean, QLocale::SouthKorea},
    {0x0804, QLocale::Chinese, QLocale::China},
    {0x0404, QLocale::Chinese, QLocale::Taiwan},
};

QLocale LocaleOf(std::int32_t pLocaleId) {
    if (pLocaleId == kUserDefaultLocale) {
        return QLocale();
    }
    if (pLocaleId == kSystemDefaultLocale) {
        return QLocale::system();
    }
    for (const KnownLocale& known : kKnownLocales) {
        if (known.id == pLocaleId) {
            return QLocale(known.language, known.territory);
        }
    }
    throw ChartError(ChartError::InvalidArgument);
}

} // namespace

QString DoubleToText(double pValue) {
    char buffer[nt::kMaxDoubleText];
    return FixedText(buffer, nt::WriteDouble(buffer, pValue, '.'));
}

double TextToDouble(QStringView pText) {
    return ParseText(pText, FixedSeparators());
}

QString SingleToText(float pValue) {
    char buffer[nt::kMaxDoubleText];
    return FixedText(buffer, nt::WriteSingle(buffer, pValue, '.'));
}

QString DoubleToUserText(double pValue) {
    char buffer[nt::kMaxDoubleText];
    return WithDecimalPoint(buffer, nt::WriteDouble(buffer, pValue, '.'), QLocale().decimalPoint());
}

double UserTextToDouble(QStringView pText) {
    return ParseText(pText, SeparatorsOf(QLocale()));
}

QString SingleToUserText(float pValue) {
    char buffer[nt::kMaxDoubleText];
    return WithDecimalPoint(buffer, nt::WriteSingle(buffer, pValue, '.'), QLocale().decimalPoint());
}

QString FormatFixed(double pValue, int pDigits, const QLocale& pLocale) {
    CheckPlaces(pDigits);
    char buffer[nt::MaxFixedText(nt::kMaxFixedPlaces)];
    return WithDecimalPoint(buffer, nt::WriteFixed(buffer, pValue, pDigits, '.'),
                            pLocale.decimalPoint());
}

QString FormatPercent(double pValue, int pDigits, const QLocale& pLocale) {
    CheckPlaces(pDigits);
    char buffer[nt::MaxFixedText(nt::kMaxFixedPlaces) + 1];
    char* end = nt::WriteFixed(buffer, pValue * 100.0, pDigits, '.');
    *end++ = '%';
    return WithDecimalPoint(buffer, end, pLocale.decimalPoint());
}

QString FormatScientific(double pValue, const QLocale& pLocale) {
    char buffer[nt::kMaxDoubleText];
    return WithDecimalPoint(buffer, nt::WriteScientific(buffer, pValue, '.'),
                            pLocale.decimalPoint());
}

std::int32_t ToInt32(double pValue) {
    const double rounded = RoundHalfEven(pValue);
    // Written so that NaN fails the test too.
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0)) {
        throw ChartError(ChartError::Overflow);
    }
    return static_cast<std::int32_t>(rounded);
}

std::int16_t ToInt16(double pValue) {
    const double rounded = RoundHalfEven(pValue);
    if (!(rounded >= -32768.0 && rounded <= 32767.0)) {
        throw ChartError(ChartError::Overflow);
    }
    return static_cast<std::int16_t>(rounded);
}

std::int32_t TextToInt32(QStringView pText) {
    return ToInt32(TextToDouble(pText));
}

QString GetLocaleString(std::int32_t pLocaleId, std::int32_t pInfoType) {
    const QLocale locale = LocaleOf(pLocaleId);
    switch (pInfoType) {
    case kNativeLanguageName:
        return locale.nativeLanguageName();
    case kNativeCountryName:
        return locale.nativeTerritoryName();
    case kDecimalSeparator:
        return locale.decimalPoint();
    case kThousandSeparator:
        return locale.groupSeparator();
    case kPositiveSign:
        return locale.positiveSign();
    case kNegativeSign:
        return locale.negativeSign();
    case kIsoLanguageName:
        return QLocale::languageToCode(locale.language());
    case kIsoCountryName:
        return QLocale::territoryToCode(locale.territory());
    case kLocaleName:
        return locale.bcp47Name();
    case kPercentSymbol:
        return locale.percent();
    case kEnglishLanguageName:
        return QLocale::languageToString(locale.language());
    case kEnglishCountryName:
        return QLocale::territoryToString(locale.territory());
    default:
        throw ChartError(ChartError::InvalidArgument);
    }
}

std::int32_t GetUserDefaultLocaleId() {
    const QLocale locale;
    for (const KnownLocale& known : kKnownLocales) {
        if (known.language == locale.language() && known.territory == locale.territory()) {
            return known.id;
        }
    }
    return kUserDefaultLocale;
}

QString GetUserDecimalSeparator() {
    return QLocale().decimalPoint();
}

char UserDecimalPointChar() {
    const QString decimalPoint = QLocale().decimalPoint();
    if (decimalPoint.size() == 1) {
        const char16_t code = decimalPoint.front().unicode();
        if (code > u' ' && code < 0x7f && !(code >= u'0' && code <= u'9')) {
            return static_cast<char>(code);
        }
    }
    return '.';
}

char UserGroupSeparatorChar() {
    const char decimalPoint = UserDecimalPointChar();
    const QString groupSeparator = QLocale().groupSeparator();
    if (groupSeparator.size() == 1) {
        const char16_t code = groupSeparator.front().unicode();
        if (code >= u' ' && code < 0x7f && !(code >= u'0' && code <= u'9') &&
            static_cast<char>(code) != decimalPoint) {
            return static_cast<char>(code);
        }
    }
    return decimalPoint == ',' ? '\0' : ',';
}

} // namespace trv5::LocalizationLib
