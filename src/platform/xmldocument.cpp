#include "platform/xmldocument.h"

#include <trv5charts/charterror.h>

#include <algorithm>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#include <memory>
#include <string_view>
#include <vector>

namespace trv5::platform {

namespace {

// Appends pugixml output to a std::string without an intermediate stream.
class StringWriter final : public pugi::xml_writer {
public:
    explicit StringWriter(std::string& pOut) : m_out(pOut) {}
    void write(const void* pData, size_t pSize) override {
        m_out.append(static_cast<const char*>(pData), pSize);
    }

private:
    std::string& m_out;
};

pugi::xml_attribute AttributeAt(pugi::xml_node pNode, int pIndex) {
    if (pIndex < 0) {
        return {};
    }
    pugi::xml_attribute attribute = pNode.first_attribute();
    for (int i = 0; i < pIndex && attribute; ++i) {
        attribute = attribute.next_attribute();
    }
    return attribute;
}

// Visits every node below pRoot in document order without recursion: fragments come from
// outside, and a deeply nested one must not exhaust the stack.
template <class Visit> void WalkDescendants(pugi::xml_node pRoot, Visit&& pVisit) {
    pugi::xml_node node = pRoot.first_child();
    while (node) {
        if (!pVisit(node)) {
            return;
        }
        if (node.first_child()) {
            node = node.first_child();
            continue;
        }
        while (node && node != pRoot && !node.next_sibling()) {
            node = node.parent();
        }
        if (!node || node == pRoot) {
            return;
        }
        node = node.next_sibling();
    }
}

void AppendText(pugi::xml_node pNode, std::string& pOut) {
    WalkDescendants(pNode, [&](pugi::xml_node pChild) {
        if (pChild.type() == pugi::node_pcdata || pChild.type() == pugi::node_cdata) {
            pOut.append(pChild.value());
        }
        return true;
    });
}

// Elements of the saved formats have a dozen attributes at most, compared pairwise; a longer
// list, which only damaged or hostile text has, is sorted so that the check stays n log n.
constexpr std::size_t kPairwiseAttributes = 16;

bool HasUniqueAttributeNames(pugi::xml_node pNode, std::vector<std::string_view>& pScratch) {
    pScratch.clear();
    for (pugi::xml_attribute a = pNode.first_attribute(); a; a = a.next_attribute()) {
        pScratch.emplace_back(a.name());
    }
    if (pScratch.size() <= kPairwiseAttributes) {
        for (std::size_t i = 0; i < pScratch.size(); ++i) {
            for (std::size_t j = i + 1; j < pScratch.size(); ++j) {
                if (pScratch[i] == pScratch[j]) {
                    return false;
                }
            }
        }
        return true;
    }
    std::sort(pScratch.begin(), pScratch.end());
    return std::adjacent_find(pScratch.begin(), pScratch.end()) == pScratch.end();
}

// Well-formed XML names each attribute of an element once; pugixml does not check that.
bool HasUniqueAttributes(pugi::xml_node pRoot) {
    std::vector<std::string_view> scratch;
    bool unique = HasUniqueAttributeNames(pRoot, scratch);
    WalkDescendants(pRoot, [&](pugi::xml_node pNode) {
        unique = HasUniqueAttributeNames(pNode, scratch);
        return unique;
    });
    return unique;
}

// Copies pSize UTF-16 units into pOut as bytes and tells whether all of them were ASCII (only
// then is pOut the UTF-8 of the text). There is no early exit: non-ASCII saved state is rare, and
// a branch per block would cost every load.
bool NarrowAscii(const char16_t* pIn, std::size_t pSize, char* pOut) noexcept {
    std::size_t i = 0;
    char16_t seen = 0;
#if defined(__SSE2__)
    __m128i seenBlocks = _mm_setzero_si128();
    for (; i + 16 <= pSize; i += 16) {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pIn + i));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pIn + i + 8));
        seenBlocks = _mm_or_si128(seenBlocks, _mm_or_si128(low, high));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pOut + i), _mm_packus_epi16(low, high));
    }
    // Any unit at 0x80 or above sets a bit outside the low seven of some lane.
    const __m128i outside = _mm_and_si128(seenBlocks, _mm_set1_epi16(static_cast<short>(0xFF80)));
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(outside, _mm_setzero_si128())) != 0xFFFF) {
        return false;
    }
#endif
    for (; i < pSize; ++i) {
        seen = static_cast<char16_t>(seen | pIn[i]);
        pOut[i] = static_cast<char>(pIn[i]);
    }
    return seen < 0x80;
}

} // namespace

std::string_view XmlNode::Name() const {
    return m_node.name();
}

int XmlNode::AttributeCount() const {
    int count = 0;
    for (pugi::xml_attribute attribute = m_node.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
        ++count;
    }
    return count;
}

std::string_view XmlNode::AttributeValue(int pIndex) const {
    const pugi::xml_attribute attribute = AttributeAt(m_node, pIndex);
    if (!attribute) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    return attribute.value();
}

void XmlNode::SetAttributeValue(int pIndex, std::string_view pValue) {
    pugi::xml_attribute attribute = AttributeAt(m_node, pIndex);
    if (!attribute) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    attribute.set_value(pValue.data(), pValue.size());
}

std::optional<std::string_view> XmlNode::FindAttribute(std::string_view pName) const {
    for (pugi::xml_attribute attribute = m_node.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
        if (pName == attribute.name()) {
            return std::string_view(attribute.value());
        }
    }
    return std::nullopt;
}

std::string_view XmlNode::Text(std::string& pScratch) const {
    const pugi::xml_node first = m_node.first_child();
    if (first && !first.next_sibling() && first.type() == pugi::node_pcdata) {
        return first.value();
    }
    pScratch.clear();
    AppendText(m_node, pScratch);
    return pScratch;
}

std::string XmlNode::Text() const {
    // The common case, one run of character data, is returned without walking the subtree.
    const pugi::xml_node first = m_node.first_child();
    if (first && !first.next_sibling() && first.type() == pugi::node_pcdata) {
        return first.value();
    }
    std::string text;
    AppendText(m_node, text);
    return text;
}

void XmlNode::SetText(std::string_view pText) {
    while (pugi::xml_node child = m_node.first_child()) {
        m_node.remove_child(child);
    }
    if (!pText.empty()) {
        m_node.append_child(pugi::node_pcdata).set_value(pText.data(), pText.size());
    }
}

std::string XmlNode::Xml() const {
    std::string out;
    AppendXml(out);
    return out;
}

void XmlNode::AppendXml(std::string& pOut) const {
    if (!m_node) {
        return;
    }
    StringWriter writer(pOut);
    m_node.print(writer, "", pugi::format_raw, pugi::encoding_utf8);
}

void XmlNode::AppendStartTag(std::string& pOut) const {
    if (!m_node) {
        return;
    }
    // Print a childless copy in the long form "<name …></name>" and drop the end tag.
    pugi::xml_document scratch;
    pugi::xml_node copy = scratch.append_copy(m_node);
    while (pugi::xml_node child = copy.first_child()) {
        copy.remove_child(child);
    }
    const std::size_t start = pOut.size();
    StringWriter writer(pOut);
    copy.print(writer, "", pugi::format_raw | pugi::format_no_empty_element_tags,
               pugi::encoding_utf8);
    const std::size_t endTag = std::string_view(m_node.name()).size() + 3;
    if (pOut.size() >= start + endTag) {
        pOut.erase(pOut.size() - endTag);
    }
}

void XmlNode::AppendEndTag(std::string& pOut) const {
    if (!m_node) {
        return;
    }
    const std::string_view name = m_node.name();
    pOut.push_back('<');
    pOut.push_back('/');
    pOut.append(name.data(), name.size());
    pOut.push_back('>');
}

XmlNode XmlNode::NextSibling() const {
    pugi::xml_node sibling = m_node.next_sibling();
    while (sibling && sibling.type() != pugi::node_element) {
        sibling = sibling.next_sibling();
    }
    return XmlNode(sibling);
}

// parse_fragment keeps stray top-level text so that it can be rejected after loading instead of
// being dropped silently.
constexpr unsigned kParseOptions = pugi::parse_default | pugi::parse_fragment;

bool XmlDocument::LoadXml(std::string_view pText) {
    Discard();
    if (pText.empty()) {
        return false;
    }
    return Accept(
        m_document.load_buffer(pText.data(), pText.size(), kParseOptions, pugi::encoding_utf8));
}

bool XmlDocument::Accept(const pugi::xml_parse_result& pResult) {
    if (!pResult) {
        Discard();
        return false;
    }
    int elements = 0;
    for (pugi::xml_node child = m_document.first_child(); child; child = child.next_sibling()) {
        switch (child.type()) {
        case pugi::node_element:
            ++elements;
            break;
        case pugi::node_comment:
        case pugi::node_pi:
        case pugi::node_declaration:
        case pugi::node_doctype:
            break;
        default:
            Discard();
            return false;
        }
    }
    if (elements != 1 || !HasUniqueAttributes(m_document.document_element())) {
        Discard();
        return false;
    }
    return true;
}

void XmlDocument::Discard() {
    m_document.reset();
    m_buffer.Reset();
}

bool XmlDocument::LoadXml(const QString& pText) {
    Discard();
    const auto size = static_cast<std::size_t>(pText.size());
    if (size == 0) {
        return false;
    }
    // Saved state is nearly always ASCII, whose UTF-8 is its UTF-16 narrowed. That narrowing goes
    // straight into a buffer the document keeps and parses in place: no UTF-8 copy sized for the
    // worst case, and no second copy inside pugixml. Text with any other character is converted
    // properly instead.
    TextBuffer buffer(size);
    if (!NarrowAscii(QStringView(pText).utf16(), size, buffer.Data())) {
        const QByteArray utf8 = pText.toUtf8();
        return LoadXml(std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
    }
    m_buffer = std::move(buffer);
    return Accept(
        m_document.load_buffer_inplace(m_buffer.Data(), size, kParseOptions, pugi::encoding_utf8));
}

XmlNode XmlDocument::DocumentElement() const {
    return XmlNode(m_document.document_element());
}

XmlNode XmlDocument::SelectSingleNode(const char* pQuery) const {
    try {
        return XmlNode(m_document.select_node(pQuery).node());
    } catch (const pugi::xpath_exception&) {
        return XmlNode();
    }
}

std::vector<XmlNode> XmlDocument::SelectNodes(const char* pQuery) const {
    std::vector<XmlNode> nodes;
    try {
        const pugi::xpath_node_set set = m_document.select_nodes(pQuery);
        nodes.reserve(set.size());
        for (const pugi::xpath_node& node : set) {
            if (node.node()) {
                nodes.emplace_back(node.node());
            }
        }
    } catch (const pugi::xpath_exception&) {
        nodes.clear();
    }
    return nodes;
}

} // namespace trv5::platform
