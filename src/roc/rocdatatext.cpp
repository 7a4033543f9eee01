#include "roc/rocdatatext.h"

#include "foundation/numbertext.h"
#include "foundation/serialization.h"

#include <trv5charts/localizationlib.h>

#include <QLocale>

#include <cstddef>
#include <string>

namespace trv5::roc {

namespace {

// The header keeps "Rate(" without a blank, unlike the axis title: hosts read it as it is.
constexpr char kHeader[] = "FP Rate(1-Specificity)\tTP Rate (Sensitivity)";

// Writes a number as DoubleToUserText does, straight into the text: with the locale's decimal
// point when that is one ASCII character, which is every locale the text routines know.
class UserNumberWriter {
public:
    UserNumberWriter()
        : m_point(LocalizationLib::UserDecimalPointChar()),
          m_direct(QLocale().decimalPoint() == QString(QLatin1Char(m_point))) {}

    void Append(std::string& pOut, double pValue) const {
        if (m_direct) {
            char buffer[numbertext::kMaxDoubleText];
            const char* end = numbertext::WriteDouble(buffer, pValue, m_point);
            pOut.append(buffer, static_cast<std::size_t>(end - buffer));
        } else {
            pOut.append(serialization::ToUtf8(LocalizationLib::DoubleToUserText(pValue)));
        }
    }

private:
    char m_point;
    bool m_direct;
};

} // namespace

QString ChartDataText(std::span<const double> pFpRates, std::span<const double> pTpRates) {
    const UserNumberWriter writer;
    std::string text(kHeader);
    // Two numbers of at most 22 characters, a tab and CR LF per row.
    text.reserve(text.size() + pFpRates.size() * 48);
    for (std::size_t i = 0; i < pFpRates.size(); ++i) {
        text.append("\r\n");
        writer.Append(text, pFpRates[i]);
        text.push_back('\t');
        if (i < pTpRates.size()) {
            writer.Append(text, pTpRates[i]);
        }
    }
    return serialization::FromUtf8(text);
}

} // namespace trv5::roc
