#include "platform/xmldocument.h"

#include <trv5charts/charterror.h>

#include <gtest/gtest.h>

#include <string>

using trv5::platform::XmlDocument;
using trv5::platform::XmlNode;

TEST(XmlDocument, AcceptsOnlyWellFormedTextWithOneRootElement) {
    const char* rejected[] = {"",
                              "not xml at all",
                              "<a>",
                              "<a></b>",
                              "<a/><b/>",
                              "<a>x</a>trailing text",
                              "text before<a/>",
                              "<a attr=unquoted/>",
                              "<a x='1' x='2'/>"};
    for (const char* text : rejected) {
        XmlDocument document;
        EXPECT_FALSE(document.LoadXml(std::string_view(text))) << text;
        EXPECT_TRUE(document.DocumentElement().IsNull()) << text;
    }
    const char* accepted[] = {"<a/>", "  <a>x</a>\n", "<?xml version='1.0'?><a/>",
                              "<!-- note --><a/><!-- after -->"};
    for (const char* text : accepted) {
        XmlDocument document;
        EXPECT_TRUE(document.LoadXml(std::string_view(text))) << text;
        EXPECT_EQ(document.DocumentElement().Name(), "a");
    }
}

TEST(XmlDocument, AttributesAreAddressedByPosition) {
    XmlDocument document;
    ASSERT_TRUE(document.LoadXml(std::string_view("<e z='first' a='second' m='&amp;third'/>")));
    XmlNode element = document.DocumentElement();
    ASSERT_EQ(element.AttributeCount(), 3);
    EXPECT_EQ(element.AttributeValue(0), "first");
    EXPECT_EQ(element.AttributeValue(1), "second");
    EXPECT_EQ(element.AttributeValue(2), "&third");
    try {
        (void)element.AttributeValue(3);
        ADD_FAILURE() << "a missing attribute must throw";
    } catch (const trv5::ChartError& error) {
        EXPECT_EQ(error.number(), 9);
    }
    EXPECT_THROW((void)element.AttributeValue(-1), trv5::ChartError);

    element.SetAttributeValue(1, "a<b>\"c'");
    EXPECT_EQ(element.Xml(), "<e z=\"first\" a=\"a&lt;b>&quot;c'\" m=\"&amp;third\"/>");
}

TEST(XmlDocument, TextCollectsCharacterDataAndCanBeReplaced) {
    XmlDocument document;
    ASSERT_TRUE(document.LoadXml(std::string_view("<e>1|<![CDATA[2|]]><i>3</i>|4</e>")));
    XmlNode element = document.DocumentElement();
    EXPECT_EQ(element.Text(), "1|2|3|4");
    element.SetText("x & y");
    EXPECT_EQ(element.Xml(), "<e>x &amp; y</e>");
    element.SetText("");
    EXPECT_EQ(element.Xml(), "<e/>");
}

TEST(XmlDocument, DoesNotExpandDocumentTypeEntities) {
    XmlDocument document;
    const std::string_view text = "<!DOCTYPE e [<!ENTITY big 'expanded'>]><e>&big;</e>";
    if (document.LoadXml(text)) {
        EXPECT_EQ(document.DocumentElement().Text().find("expanded"), std::string::npos);
    }
}

TEST(XmlDocument, AbsoluteQueriesAndSiblings) {
    XmlDocument document;
    ASSERT_TRUE(document.LoadXml(std::string_view(
        "<r><c><x n='1'/><!-- c --><x n='2'/></c><d><s n='a'/><s n='b'/><s n='c'/></d></r>")));
    const XmlNode first = document.SelectSingleNode("//r/c/x");
    ASSERT_FALSE(first.IsNull());
    EXPECT_EQ(first.AttributeValue(0), "1");
    const XmlNode second = first.NextSibling();
    ASSERT_FALSE(second.IsNull());
    EXPECT_EQ(second.AttributeValue(0), "2");
    EXPECT_TRUE(second.NextSibling().IsNull());

    const std::vector<XmlNode> nodes = document.SelectNodes("//r/d/s");
    ASSERT_EQ(nodes.size(), 3U);
    EXPECT_EQ(nodes[2].AttributeValue(0), "c");
    EXPECT_TRUE(document.SelectNodes("//r/nothing").empty());
    EXPECT_TRUE(document.SelectSingleNode("//[broken").IsNull());
    EXPECT_TRUE(document.SelectNodes("//[broken").empty());
}

TEST(XmlDocument, DeeplyNestedInputDoesNotExhaustTheStack) {
    std::string text;
    const int depth = 200000;
    for (int i = 0; i < depth; ++i) {
        text += "<n a='1'>";
    }
    text += "deep";
    for (int i = 0; i < depth; ++i) {
        text += "</n>";
    }
    XmlDocument document;
    ASSERT_TRUE(document.LoadXml(std::string_view(text)));
    EXPECT_EQ(document.DocumentElement().Text(), "deep");
    EXPECT_TRUE(document.SelectSingleNode("//rtchart/chartaxis/axis").IsNull());
}

TEST(XmlDocument, RepeatedAttributesAreFoundAmongHundredsOfThousands) {
    // 200,000 attributes: checked pairwise this took minutes.
    std::string text = "<a><b";
    for (int i = 0; i < 200'000; ++i) {
        text += " n" + std::to_string(i) + "='v'";
    }
    XmlDocument document;
    EXPECT_TRUE(document.LoadXml(std::string_view(text + "/></a>")));
    EXPECT_FALSE(document.LoadXml(std::string_view(text + " n123456='w'/></a>")));
    EXPECT_FALSE(document.LoadXml(std::string_view(text + " n0='w'/></a>")));
    // Small elements, compared pairwise, still catch a repeat at either end.
    EXPECT_FALSE(document.LoadXml(std::string_view("<a><b p='1' q='2' r='3' p='4'/></a>")));
    EXPECT_TRUE(document.LoadXml(std::string_view("<a><b p='1' q='2'/><c p='1' q='2'/></a>")));
}

// Text from a QString: ASCII is parsed in place, anything else converted; the characters that
// decide which sit both in whole blocks and in the tail after them.
TEST(XmlDocument, LoadsQStringTextWhateverItsCharacters) {
    for (int padding : {0, 1, 7, 8, 15, 16, 17, 40}) {
        const QString filler(padding, QLatin1Char('x'));
        for (const QString& value : {QStringLiteral("plain"), QStringLiteral("caf\u00e9"),
                                     QStringLiteral("\u20ac5"), QStringLiteral("\u0100")}) {
            XmlDocument document;
            const QString text = "<e v='" + filler + value + "'>" + filler + value + "</e>";
            ASSERT_TRUE(document.LoadXml(text)) << text.toStdString();
            const std::string expected = (filler + value).toStdString();
            EXPECT_EQ(document.DocumentElement().AttributeValue(0), expected);
            EXPECT_EQ(document.DocumentElement().Text(), expected);
        }
        XmlDocument document;
        EXPECT_FALSE(document.LoadXml("<e>" + filler + "</f>"));
        EXPECT_TRUE(document.DocumentElement().IsNull());
        EXPECT_FALSE(document.LoadXml(QString()));
    }
}

TEST(XmlDocument, TextViewsOneRunInPlaceAndGathersSeveral) {
    XmlDocument document;
    ASSERT_TRUE(document.LoadXml(QStringLiteral("<a><b>1|2|3</b><c>1|<![CDATA[2]]>|3</c></a>")));
    std::string scratch = "stale";
    const XmlNode single = document.SelectSingleNode("//a/b");
    EXPECT_EQ(single.Text(scratch), "1|2|3");
    EXPECT_EQ(scratch, "stale");
    EXPECT_EQ(document.SelectSingleNode("//a/c").Text(scratch), "1|2|3");
    EXPECT_EQ(scratch, "1|2|3");
}

// Texts of several megabytes are parsed from a differently allocated buffer; the last char of
// the text must still be read, the buffer must be given back when the document loads again,
// and a text that fails to parse must leave nothing behind.
TEST(XmlDocument, LoadsTextsOfSeveralMegabytesAgainAndAgain) {
    XmlDocument document;
    for (const qsizetype size : {qsizetype{8} << 20, (qsizetype{8} << 20) + 4097}) {
        for (const bool wellFormed : {true, false, true}) {
            QString text = QStringLiteral("<e>");
            text.append(QString(size, QLatin1Char('7')));
            text.append(wellFormed ? QStringLiteral("9</e>") : QStringLiteral("9</f>"));
            ASSERT_EQ(document.LoadXml(text), wellFormed) << size;
            if (!wellFormed) {
                EXPECT_TRUE(document.DocumentElement().IsNull());
                continue;
            }
            std::string scratch;
            const std::string_view content = document.DocumentElement().Text(scratch);
            ASSERT_EQ(content.size(), static_cast<std::size_t>(size) + 1);
            EXPECT_EQ(content.front(), '7');
            EXPECT_EQ(content.back(), '9');
        }
    }
}
