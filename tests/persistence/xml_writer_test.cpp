// SPDX-License-Identifier: Apache-2.0
// Tests of the writer: the same bytes as the property tree's own, and text that survives.
#include "persistence/xml_writer.h"

#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <random>
#include <sstream>

#include "persistence/graph_parsing_helper.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using namespace std::string_literals;
using boost::property_tree::ptree;

namespace {

const std::string header = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

// Collects what a writer hands out.
struct Written {
    std::string text;
    XmlWriter writer{[this](std::string_view piece) {
        text.append(piece);
        return true;
    }};
};

std::string writtenTree(const ptree& tree) {
    Written written;
    written.writer.children(tree);
    EXPECT_TRUE(written.writer.finish());
    return written.text;
}

std::string boostWritten(const ptree& tree) {
    std::ostringstream out;
    write_xml(out, tree, boost::property_tree::xml_writer_settings<std::string>(' ', 4, "utf-8"));
    return out.str();
}

// What a text reads back as.
std::string readBack(const std::string& value) {
    ptree tree;
    tree.put("a.b", value);
    ptree read;
    EXPECT_TRUE(GraphParsingHelper::XML_stringToPropertyTree(writtenTree(tree), read));
    return read.get("a.b", "missing"s);
}

ptree randomTree(std::mt19937& random, int depth) {
    static const char* const texts[] = {"", "x", "a <b> & \"c\" 'd'", " ", "   ", " x\n", "1,2"};
    ptree tree;
    const int children = depth == 0 ? 0 : static_cast<int>(random() % 4);
    if (children == 0 || random() % 8 == 0) tree.data() = texts[random() % std::size(texts)];
    for (int i = 0; i < children; ++i) {
        tree.push_back({random() % 2 ? "node" : "b-c", randomTree(random, depth - 1)});
    }
    return tree;
}

} // namespace

TEST(XmlWriter, WritesTheSameBytesAsThePropertyTree) {
    std::mt19937 random(7);
    for (int i = 0; i < 300; ++i) {
        ptree tree;
        tree.push_back({"scene", randomTree(random, 5)});
        ASSERT_EQ(writtenTree(tree), boostWritten(tree));
    }
}

TEST(XmlWriter, WritesElementsPieceByPiece) {
    Written written;
    written.writer.open("scene");
    written.writer.open("nodes");
    written.writer.close();
    written.writer.leaf("a", "x");
    written.writer.leaf("b", "");
    ptree tree;
    tree.put("c.d", "<");
    written.writer.children(tree);
    written.writer.close();
    EXPECT_TRUE(written.writer.finish());
    EXPECT_EQ(written.text, header + "<scene>\n    <nodes/>\n    <a>x</a>\n    <b/>\n    <c>\n"
                                     "        <d>&lt;</d>\n    </c>\n</scene>\n");
}

TEST(XmlWriter, KeepsEveryCharacterOfAText) {
    std::string all;
    for (int c = 0; c < 128; ++c) all += static_cast<char>(c);
    for (const std::string& text : {all, "\0"s, "\r\n"s, "\x01\x02"s, "\xc3\xa9\xf0\x9f\x98\x80"s,
                                    "]]>"s, "&amp;"s, "<![CDATA["s, " x "s, "&#65;"s}) {
        EXPECT_EQ(readBack(text), text);
    }
}

TEST(XmlWriter, KeepsTextsOfBlanks) {
    for (const char* text : {" ", "   ", "\n", "\t", "\n\n ", " \t", "\r"}) {
        EXPECT_EQ(readBack(text), text);
    }
}

TEST(XmlWriter, EscapesControlCharacters) {
    ptree tree;
    tree.put("a", "x\x01\r\x1f\ty");
    EXPECT_EQ(writtenTree(tree), header + "<a>x&#1;&#13;&#31;\ty</a>\n");
}

TEST(XmlWriter, RefusesTextThatIsNotUtf8) {
    std::string handedOut;
    XmlWriter writer([&](std::string_view piece) {
        handedOut.append(piece);
        return true;
    });
    writer.leaf("a", "\xe9");
    EXPECT_TRUE(writer.hasBadText());
    EXPECT_TRUE(writer.hasFailed());
    EXPECT_FALSE(writer.finish());
    EXPECT_EQ(handedOut, "");
}

TEST(XmlWriter, TellsWhereTheBadTextIs) {
    ptree pin;
    pin.put("name", "in\xff");
    pin.put("value", "\xe9");
    ptree node;
    node.put("name", "Path_01");
    node.add_child("inputs.input", pin);
    ptree tree;
    tree.add_child("node", node);
    EXPECT_EQ(findBadText(tree), "the \"name\" of pin \"in\\xff\" of node \"Path_01\"");
    tree.put("node.inputs.input.name", "in");
    EXPECT_EQ(findBadText(tree), "the \"value\" of pin \"in\" of node \"Path_01\"");
    tree.put("node.inputs.input.value", "");
    EXPECT_EQ(findBadText(tree), "");
}

TEST(XmlWriter, StopsWhenItsSinkRefuses) {
    int calls = 0;
    XmlWriter writer([&](std::string_view) {
        ++calls;
        return false;
    });
    const std::string megabyte(1 << 20, 'x');
    writer.leaf("a", megabyte);
    writer.leaf("a", megabyte);
    EXPECT_FALSE(writer.finish());
    EXPECT_EQ(calls, 1);
}
