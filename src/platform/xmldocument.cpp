#include "platform/xmldocument.h"

#include <trv5charts/charterror.h>

#include <algorithm>
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

bool XmlDocument::LoadXml(std::string_view pText) {
    m_document.reset();
    if (pText.empty()) {
        return false;
    }
    // parse_fragment keeps stray top-level text so that it can be rejected below instead of
    // being dropped silently.
    const pugi::xml_parse_result result =
        m_document.load_buffer(pText.data(), pText.size(),
                               pugi::parse_default | pugi::parse_fragment, pugi::encoding_utf8);
    if (!result) {
        m_document.reset();
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
            m_document.reset();
            return false;
        }
    }
    if (elements != 1 || !HasUniqueAttributes(m_document.document_element())) {
        m_document.reset();
        return false;
    }
    return true;
}

bool XmlDocument::LoadXml(const QString& pText) {
    const QByteArray utf8 = pText.toUtf8();
    return LoadXml(std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
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
