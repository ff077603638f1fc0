// SPDX-License-Identifier: Apache-2.0
// Tests of the check and the packing that come before the parser.
#include "persistence/packed_xml.h"

#include <gtest/gtest.h>

using namespace tidemark::sluice::graph;
using namespace std::string_literals;

namespace {

std::string packed(const std::string& text) {
    PackedXml document;
    const auto problem = document.pack(std::string(text));
    return problem ? "line " + std::to_string(problem->line) + ": " + problem->message
                   : std::string(document.text());
}

std::string nested(unsigned levels) {
    std::string text;
    for (unsigned i = 0; i < levels; ++i) text += "<a>";
    for (unsigned i = 0; i < levels; ++i) text += "</a>";
    return text;
}

} // namespace

TEST(PackedXml, LeavesOutBlanksBetweenElements) {
    EXPECT_EQ(packed("<a>\n    <b>x</b>\n    <c/>\n</a>\n"), "<a><b>x</b><c/></a>");
}

TEST(PackedXml, KeepsTheBlanksOfAText) {
    EXPECT_EQ(packed("<a><b> x </b><c>  </c><d>\n</d><e></e></a>"),
              "<a><b> x </b><c>  </c><d>\n</d><e></e></a>");
}

TEST(PackedXml, LeavesOutWhatIsNoElement) {
    EXPECT_EQ(packed("<?xml version=\"1.0\"?><!-- > < --><!DOCTYPE a [<!ENTITY b \"c\">]>"
                     "<a><!-- x --><?y z?><b>1<!-- 2 -->3</b> <!-- --> </a><!-- -->"),
              "<a><b>13</b></a>");
}

TEST(PackedXml, LeavesOutAttributes) {
    EXPECT_EQ(packed("<a b=\"1 > 0\" c = 'x'  ><d e='\"'/></a  >"), "<a><d/></a>");
}

TEST(PackedXml, KeepsCharacterDataAsItIs) {
    EXPECT_EQ(packed("<a><![CDATA[<b>&</c>]]></a>"), "<a><![CDATA[<b>&</c>]]></a>");
}

TEST(PackedXml, SkipsTheByteOrderMark) { EXPECT_EQ(packed("\xef\xbb\xbf<a/>"), "<a/>"); }

TEST(PackedXml, TellsWhereADocumentBreaksOff) {
    EXPECT_EQ(packed(""), "line 1: no element: the document is empty");
    EXPECT_EQ(packed("\n <!-- -->\n"), "line 3: no element: the document is empty");
    EXPECT_EQ(packed("<a>\n<b>\n"), "line 3: unexpected end of data");
    EXPECT_EQ(packed("<a>\n<!-- \n"), "line 3: unexpected end of data");
    EXPECT_EQ(packed("<scene>\n</sce"), "line 2: unexpected end of data");
    EXPECT_EQ(packed("<a>\n<![CDATA[ \n"), "line 3: unexpected end of data");
    EXPECT_EQ(packed("<?xml\n"), "line 2: unexpected end of data");
    EXPECT_EQ(packed("<!DOCTYPE a [\n>"), "line 2: unexpected end of data");
}

TEST(PackedXml, TellsTheLineOfABadTag) {
    EXPECT_EQ(packed("<a>\n\n<b>\n</c></a>"), "line 4: closing tag \"c\" where \"b\" is open");
    EXPECT_EQ(packed("<a/>\n</a>"), "line 2: closing tag without an element");
    EXPECT_EQ(packed("<a>\n< b/></a>"), "line 2: expected element name");
    EXPECT_EQ(packed("<a>\n<b c/></a>"), "line 2: expected =");
    EXPECT_EQ(packed("<a>\n<b c=d/></a>"), "line 2: expected ' or \"");
    EXPECT_EQ(packed("<a>\n<b c='d/></a>"), "line 2: expected ' or \"");
    EXPECT_EQ(packed("<a>\n<b</a>"), "line 2: expected >");
    EXPECT_EQ(packed("<a>\n<b/ ></a>"), "line 2: expected >");
    EXPECT_EQ(packed("<a>\n</a b>"), "line 2: expected >");
}

TEST(PackedXml, CountsLinesInsideTextsAndDroppedPieces) {
    EXPECT_EQ(packed("<a x='\n'><!--\n\n--><b>\n1\n</b>\n\n</c>"),
              "line 8: closing tag \"c\" where \"a\" is open");
}

TEST(PackedXml, RefusesTextOutsideOfTheElement) {
    EXPECT_EQ(packed("\nx<a/>"), "line 2: expected <");
    EXPECT_EQ(packed("<a/>\n\nx"), "line 3: expected <");
    EXPECT_EQ(packed("<![CDATA[x]]><a/>"), "line 1: expected an element");
}

TEST(PackedXml, RefusesReferencesToNoCharacter) {
    for (const char* reference : {"&#;", "&#x;", "&#12", "&#x110000;", "&#xd800;", "&#57343;",
                                  "&#99999999999999999999;", "&#1a;", "&#X20;"}) {
        EXPECT_EQ(packed("<a>\n"s + reference + "</a>"), "line 2: invalid numeric character entity")
            << reference;
    }
    EXPECT_EQ(packed("<a>&#32;&#x10FFFF;&amp;&other;&</a>"), "<a>&#32;&#x10FFFF;&amp;&other;&</a>");
}

TEST(PackedXml, RefusesNulBytes) {
    EXPECT_EQ(packed("<a>\n\n\0</a>"s), "line 3: a NUL byte in the text");
    EXPECT_EQ(packed("<abcdefgh>\n</abcdefgh>\0"s), "line 2: a NUL byte in the text");
    EXPECT_EQ(packed("\0"s), "line 1: a NUL byte in the text");
}

TEST(PackedXml, RefusesOtherEncodings) {
    const std::string wide = "line 1: encoded as UTF-16 or UTF-32; only UTF-8 is read";
    EXPECT_EQ(packed("\xff\xfe<\0a\0/\0>\0"s), wide);
    EXPECT_EQ(packed("\xfe\xff\0<\0a\0/\0>"s), wide);
    EXPECT_EQ(packed("\0\0\xfe\xff\0\0\0<"s), wide);
    EXPECT_EQ(packed("<\0a\0/\0>\0"s), wide);
    EXPECT_EQ(packed("\0\0\0<\0\0\0a"s), wide);
    EXPECT_EQ(packed("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a/>"),
              "line 1: encoding \"ISO-8859-1\" is declared; only UTF-8 is read");
    for (const char* encoding : {"utf-8", "UTF-8", "us-ascii", "US-ASCII"}) {
        EXPECT_EQ(packed("<?xml version='1.0' encoding='"s + encoding + "'?><a/>"), "<a/>");
    }
}

TEST(PackedXml, RefusesBytesThatAreNotUtf8) {
    for (const char* bytes : {"\xe9", "\x80", "\xc0\xaf", "\xe0\x80\x80", "\xed\xa0\x80",
                              "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xc3", "\xe2\x82"}) {
        EXPECT_EQ(packed("<a>\n123456789"s + bytes + "</a>"), "line 2: bytes that are not UTF-8");
    }
    EXPECT_EQ(packed("<a>\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80</a>"),
              "<a>\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80</a>");
    EXPECT_EQ(packed("<a>abc\xe2\x82"), "line 1: bytes that are not UTF-8");
}

TEST(PackedXml, RefusesNestingBeyondTheLimit) {
    EXPECT_EQ(packed(nested(1024)), nested(1024));
    EXPECT_EQ(packed("\n" + nested(1025)), "line 2: elements are nested deeper than 1024 levels");
    EXPECT_EQ(packed(nested(1000000)), "line 1: elements are nested deeper than 1024 levels");
}

TEST(PackedXml, TakesAnotherLimit) {
    setMaximumXmlDepth(3);
    EXPECT_EQ(packed(nested(3)), nested(3));
    EXPECT_EQ(packed(nested(4)), "line 1: elements are nested deeper than 3 levels");
    setMaximumXmlDepth(0);
    EXPECT_EQ(maximumXmlDepth(), 1u);
    setMaximumXmlDepth(1000000);
    EXPECT_EQ(maximumXmlDepth(), 2048u);
    setMaximumXmlDepth(1024);
}

TEST(PackedXml, FindsTheListsOfTheScene) {
    PackedXml document;
    ASSERT_FALSE(document.pack("<x/><scene><connections> <b/> </connections><nodes> <a/></nodes>"
                               "<nodes>later</nodes></scene><scene><nodes>no</nodes></scene>"));
    EXPECT_TRUE(document.hasNodes());
    EXPECT_TRUE(document.hasConnections());
    EXPECT_EQ(document.text(document.nodes()), "<a/>");
    EXPECT_EQ(document.text(document.connections()), "<b/>");

    ASSERT_FALSE(document.pack("<scene><nodes/><other><connections/></other></scene>"));
    EXPECT_TRUE(document.hasNodes());
    EXPECT_EQ(document.nodes().size(), 0u);
    EXPECT_FALSE(document.hasConnections());

    ASSERT_FALSE(document.pack("<graph><nodes/></graph>"));
    EXPECT_FALSE(document.hasNodes());
}

TEST(PackedXml, NotesBigNodesWithTheirChildren) {
    const std::string child = "<node><name>" + std::string(1000, 'x') + "</name></node>";
    std::string children;
    while (children.size() < PackedXml::bigElement) children += child;
    PackedXml document;
    ASSERT_FALSE(document.pack("<scene><nodes><node><nodes>" + children +
                               "</nodes><name>a</name></node>" + child + "</nodes></scene>"));
    const std::size_t first = document.nodes().begin;
    const PackedXml::BigNode* big = document.bigNodeAt(first);
    ASSERT_NE(big, nullptr);
    EXPECT_EQ(document.text(big->children), children);
    EXPECT_EQ(document.elementEnd(first), big->whole.end);
    EXPECT_EQ(document.bigNodeAt(big->whole.end), nullptr);
    EXPECT_EQ(document.elementEnd(big->whole.end), document.nodes().end);
}

TEST(PackedXml, FindsTheEndOfAnElement) {
    PackedXml document;
    ASSERT_FALSE(document.pack("<s>text<a><b/><![CDATA[</a>]]><a></a></a><c/></s>"));
    const std::string_view text = document.text();
    EXPECT_EQ(document.textEnd(3), 7u);
    const std::size_t end = document.elementEnd(7);
    EXPECT_EQ(text.substr(7, end - 7), "<a><b/><![CDATA[</a>]]><a></a></a>");
    EXPECT_EQ(document.elementEnd(end), end + 4);
}
