// The usage panel's saved state: the BlockPanel element.
#include <trv5charts/blockpanel.h>

#include "foundation/serialization.h"
#include "platform/xmldocument.h"

#include <trv5charts/charterror.h>

#include <algorithm>
#include <string_view>

namespace trv5 {

namespace {

constexpr char kStatePrefix[] = "<BlockPanel chartmode='";
// Each block is filled into this element and written by the XML library, which escapes the
// names.
constexpr std::string_view kBlockTemplate = "<block name='' usage=''/>";
constexpr int kNameAttribute = 0;
constexpr int kUsageAttribute = 1;

} // namespace

QString BlockPanel::ToString() {
    return serialization::WriteTrapped([this](std::string& pOut) { WriteState(pOut); });
}

void BlockPanel::WriteState(std::string& pOut) const {
    pOut += kStatePrefix;
    serialization::AppendWhole(pOut, m_mode);
    pOut += "' count='";
    serialization::AppendWhole(pOut, static_cast<std::int64_t>(m_counts.size()));
    pOut += "'>";
    platform::XmlDocument scratch;
    if (!scratch.LoadXml(kBlockTemplate)) {
        throw ChartError(ChartError::ObjectNotSet);
    }
    platform::XmlNode block = scratch.DocumentElement();
    std::string number;
    for (std::size_t i = 0; i < m_counts.size(); ++i) {
        // A panel without names writes empty ones.
        block.SetAttributeValue(
            kNameAttribute, m_names.empty() ? std::string() : serialization::ToUtf8(m_names[i]));
        number.clear();
        serialization::AppendWhole(number, m_counts[i]);
        block.SetAttributeValue(kUsageAttribute, number);
        block.AppendXml(pOut);
    }
    pOut += "</BlockPanel>";
}

void BlockPanel::FromString(const QString& pText) {
    if (pText.isEmpty()) {
        return;
    }
    platform::XmlDocument document;
    if (!document.LoadXml(pText)) {
        return;
    }
    if (!serialization::RunTrapped([&] { ReadState(document); })) {
        // What was read before the damage stays; the picture does not.
        ClearPicture();
    }
}

void BlockPanel::ReadState(const platform::XmlDocument& pDocument) {
    const platform::XmlNode root = pDocument.DocumentElement();
    if (root.IsNull() || root.Name() != "BlockPanel") {
        return;
    }
    const std::int32_t mode = serialization::ReadWhole(root.AttributeValue(0));
    const std::int32_t count = serialization::ReadWhole(root.AttributeValue(1));
    if (count < 0) {
        throw ChartError(ChartError::InvalidArgument);
    }

    // Only the blocks the text holds are read, whatever the count claims; the vectors grow with
    // them.
    std::vector<std::int32_t> counts;
    std::vector<QString> names;
    bool named = false;
    const auto keepWhatWasRead = [&] {
        m_counts.swap(counts);
        if (named) {
            m_names.swap(names);
        } else {
            std::vector<QString>().swap(m_names);
        }
    };
    try {
        for (platform::XmlNode node = pDocument.SelectSingleNode("/BlockPanel/block");
             !node.IsNull() && static_cast<std::int64_t>(counts.size()) < count;
             node = node.NextSibling()) {
            if (node.Name() != "block") {
                continue;
            }
            QString name = serialization::FromUtf8(node.AttributeValue(kNameAttribute));
            const std::int32_t usage =
                serialization::ReadWhole(node.AttributeValue(kUsageAttribute));
            if (usage < 0) {
                throw ChartError(ChartError::InvalidArgument);
            }
            named = named || !name.isEmpty();
            names.push_back(std::move(name));
            counts.push_back(usage);
        }
    } catch (...) {
        keepWhatWasRead();
        throw;
    }
    const bool complete = static_cast<std::int64_t>(counts.size()) == count;
    keepWhatWasRead();
    if (!complete) {
        // Fewer blocks than the count claims: the text was cut short.
        throw ChartError(ChartError::IndexOutOfRange);
    }
    SetChartMode(static_cast<UsageMode>(mode));
    Redraw();
}

bool BlockPanel::IsTypeOf(const QString& pText) {
    return serialization::HasPrefix(pText, kStatePrefix);
}

} // namespace trv5
