#pragma once

#include <QString>

#include "platform/textbuffer.h"

#include <pugixml.hpp>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trv5::platform {

// One element of a loaded document. A null node stands for "not found".
class XmlNode {
public:
    XmlNode() = default;
    explicit XmlNode(pugi::xml_node pNode) : m_node(pNode) {}

    bool IsNull() const { return !m_node; }
    std::string_view Name() const;

    // Attributes are addressed by position: the saved formats are positional, so the order in
    // which a fragment lists them decides which field each value lands in.
    int AttributeCount() const;
    // Throws ChartError 9 when the element has fewer attributes.
    std::string_view AttributeValue(int pIndex) const;
    void SetAttributeValue(int pIndex, std::string_view pValue);
    // The value of the attribute with this name, for the few formats that look attributes up by
    // name; nullopt when the element has no such attribute.
    std::optional<std::string_view> FindAttribute(std::string_view pName) const;

    // All character data below the element, in document order.
    std::string Text() const;
    // The same without a copy when it is one run of character data (the usual case); otherwise
    // gathered into pScratch. The view lives as long as the document or pScratch.
    std::string_view Text(std::string& pScratch) const;
    void SetText(std::string_view pText);

    // The element and its descendants as compact XML (no declaration, no indentation).
    std::string Xml() const;
    void AppendXml(std::string& pOut) const;
    // The start tag with its attributes, and the end tag, so that a caller can stream large
    // content that needs no escaping (numbers) straight into pOut between the two.
    void AppendStartTag(std::string& pOut) const;
    void AppendEndTag(std::string& pOut) const;

    // The next element on the same level.
    XmlNode NextSibling() const;

private:
    pugi::xml_node m_node;
};

// A parsed XML document. Only well-formed text with exactly one root element loads; DTDs are
// never expanded, so a fragment cannot pull in entities or external files.
class XmlDocument {
public:
    bool LoadXml(std::string_view pText);
    bool LoadXml(const QString& pText);

    XmlNode DocumentElement() const;
    // Absolute XPath queries such as "//rtchart/chartaxis/axis". A malformed query yields a null
    // node or an empty list.
    XmlNode SelectSingleNode(const char* pQuery) const;
    std::vector<XmlNode> SelectNodes(const char* pQuery) const;

private:
    bool Accept(const pugi::xml_parse_result& pResult);
    void Discard();

    // The text parsed in place, when the document was loaded that way; its nodes point into it.
    TextBuffer m_buffer;
    pugi::xml_document m_document;
};

} // namespace trv5::platform
