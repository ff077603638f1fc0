// SPDX-License-Identifier: Apache-2.0
// `sluice draw`: pictures as SVG, DOT and PNG.
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <cstdlib>
#include <map>
#include <regex>
#include <sstream>

#include "tool/program.h"

namespace sluice_test {
namespace {

const std::string examples = SLUICE_EXAMPLES_DIR "/";

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++found;
    }
    return found;
}

// Any parser of XML must take it.
void expectWellFormed(const std::string& svg) {
    std::istringstream stream(svg);
    boost::property_tree::ptree tree;
    EXPECT_NO_THROW(boost::property_tree::read_xml(stream, tree)) << svg.substr(0, 300);
    EXPECT_FALSE(holds(svg, "<script"));
    EXPECT_FALSE(std::regex_search(svg, std::regex("(href|src)=")));
}

class DrawTest : public ProgramTest {
protected:
    static std::string graph(const std::string& nodes, const std::string& connections = "") {
        return "<scene><nodes><node><name>root</name><type/><nodes>" + nodes +
               "</nodes></node></nodes><connections>" + connections + "</connections></scene>";
    }
    static std::string node(const std::string& name, const std::string& type) {
        return "<node><name>" + name + "</name><type>" + type + "</type></node>";
    }
    static std::string wire(const std::string& from, const std::string& to) {
        return "<connection><source>root." + from + "</source><target>root." + to +
               "</target></connection>";
    }
    // Left edges of the heads of nodes, by name.
    static std::map<std::string, double> columns(const std::string& svg) {
        std::map<std::string, double> found;
        const std::regex head("<text x=\"([-0-9.]+)\" y=\"[-0-9.]+\" text-anchor=\"start\" "
                              "class=\"name [a-z]+\">([^<]*)</text>");
        for (std::sregex_iterator i(svg.begin(), svg.end(), head), end; i != end; ++i) {
            found[(*i)[2]] = std::strtod((*i)[1].str().c_str(), nullptr);
        }
        return found;
    }
};

TEST_F(DrawTest, DrawsEveryNodePinAndConnection) {
    const Ended ended = sluice({"draw", examples + "nested_compounds.xml"});
    ASSERT_EQ(ended.status, 0) << ended.err;
    expectWellFormed(ended.out);
    EXPECT_EQ(count(ended.out, "<rect class=\"node\""), 15u);
    EXPECT_EQ(count(ended.out, "<rect class=\"frame\""), 3u);
    EXPECT_EQ(count(ended.out, "<path class=\"wire\""), 22u);
    EXPECT_TRUE(holds(ended.out, "<title>root.Statistics.Mean.AB\nAdd (Math)</title>"));
    EXPECT_TRUE(holds(ended.out, "root.First.in\nReal\n")) << "the value shows on hover";
    EXPECT_TRUE(holds(ended.out, "prefers-color-scheme: dark"));
    EXPECT_EQ(count(ended.out, "class=\"badge\""), 0u);
}

TEST_F(DrawTest, RunShowsErrorsAndResults) {
    const Ended still = sluice({"draw", examples + "cancelled.xml"});
    EXPECT_EQ(count(still.out, "class=\"badge\""), 0u);
    const Ended run = sluice({"draw", examples + "cancelled.xml", "--run"});
    EXPECT_EQ(run.status, 1) << "as the same run without a picture";
    EXPECT_TRUE(holds(run.err, "critical [root.Guard] Execution cancelled by node")) << run.err;
    EXPECT_EQ(count(run.out, "class=\"badge\""), 1u);
    EXPECT_TRUE(holds(run.out, "<title>[critical] Execution cancelled by node</title><circle "
                               "class=\"error\""));
    const Ended numbers = sluice({"draw", examples + "numbers.xml", "--run"});
    EXPECT_TRUE(holds(numbers.out, "root.Position.result\nVector3\n")) << numbers.out;
}

TEST_F(DrawTest, WithoutPlacesNodesStandInTheOrderOfTheConnections) {
    file("row.xml",
         graph(node("C", "Add") + node("B", "Add") + node("A", "Real") + node("E", "Evaluator"),
               wire("A.real", "B.in0") + wire("B.result", "C.in0") +
                   wire("C.result", "E.evaluate")));
    const auto place = columns(sluice({"draw", "row.xml"}).out);
    ASSERT_EQ(place.size(), 4u);
    EXPECT_LT(place.at("A"), place.at("B"));
    EXPECT_LT(place.at("B"), place.at("C"));
    EXPECT_LT(place.at("C"), place.at("E"));
}

// Nodes may form a ring although their pins do not.
TEST_F(DrawTest, RingsOfNodesAreDrawn) {
    file("ring.xml", graph(node("A", "StringInfo") + node("B", "StringInfo"),
                           wire("A.uppercase", "B.string") + wire("B.through", "A.string")));
    const Ended ended = sluice({"draw", "ring.xml"});
    EXPECT_LE(ended.status, 1);
    EXPECT_EQ(columns(ended.out).size(), 2u);
}

TEST_F(DrawTest, AnyNameIsSafe) {
    file("names.xml", graph(node("a&lt;b&amp;\"c\"&gt;'d'", "Real") + node("]]&gt;", "Add") +
                            node("\xc3\xa4\xe2\x82\xac", "Add") + node("x&#1;y", "Add")));
    const Ended ended = sluice({"draw", "names.xml"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    expectWellFormed(ended.out);
    EXPECT_TRUE(holds(ended.out, "a&lt;b&amp;&quot;c&quot;&gt;'d'"));
    EXPECT_EQ(sluice({"draw", "names.xml", "-o", "names.dot"}).status, 0);
    EXPECT_EQ(std::system(("dot -Tsvg '" + path("names.dot") + "' > /dev/null 2>&1").c_str()), 0);
}

TEST_F(DrawTest, WhatNodesPrintStaysOutOfThePicture) {
    const Ended ended = sluice({"draw", examples + "routing.xml", "--run"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out.rfind("<?xml", 0), 0u);
    EXPECT_TRUE(holds(ended.out, "</svg>\n"));
    expectWellFormed(ended.out);
}

TEST_F(DrawTest, ReadingFailuresShowInTheStatusOfARunToo) {
    EXPECT_EQ(sluice({"draw", examples + "reading_failures.xml", "--run"}).status, 1);
}

TEST_F(DrawTest, TheGraphIsNotOverwritten) {
    const std::string text = graph(node("A", "Real"));
    file("g.xml", text);
    const Ended ended = sluice({"draw", "g.xml", "--format", "svg", "-o", "./g.xml"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_TRUE(holds(ended.err, "is the graph: draw to another file")) << ended.err;
    EXPECT_EQ(read("g.xml"), text);
}

// A wire from the first to the last column leaves the nodes between alone.
TEST_F(DrawTest, LongWiresPassBetweenNodes) {
    file("long.xml",
         graph(node("A", "Real") + node("B", "Add") + node("C", "Add") + node("D", "Add"),
               wire("A.real", "B.in0") + wire("B.result", "C.in0") + wire("C.result", "D.in0") +
                   wire("A.real", "D.in1")));
    const Ended ended = sluice({"draw", "long.xml"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    const std::regex level("<path class=\"wire\"[^>]* d=\"M[^\"]*h[^\"]*h[^\"]*\"");
    EXPECT_TRUE(std::regex_search(ended.out, level)) << "level through two columns";
}

TEST_F(DrawTest, EndingOfTheFileChoosesTheForm) {
    const std::string graphFile = examples + "nested_compounds.xml";
    EXPECT_EQ(sluice({"draw", graphFile, "-o", "a.svg"}).status, 0);
    EXPECT_EQ(sluice({"draw", graphFile, "-o", "a.dot"}).status, 0);
    EXPECT_EQ(sluice({"draw", graphFile, "-o", "a.png"}).status, 0);
    EXPECT_TRUE(holds(read("a.svg"), "<svg "));
    EXPECT_EQ(read("a.dot").rfind("digraph", 0), 0u);
    EXPECT_TRUE(holds(read("a.dot"), "subgraph cluster_1"));
    EXPECT_EQ(read("a.png").substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(std::system(("dot -Tsvg '" + path("a.dot") + "' > /dev/null").c_str()), 0);
    EXPECT_EQ(sluice({"draw", graphFile, "-o", "b.txt", "--format", "dot"}).status, 0);
    EXPECT_EQ(read("b.txt"), read("a.dot"));
    const Ended odd = sluice({"draw", graphFile, "-o", "a.jpg"});
    EXPECT_EQ(odd.status, 2);
    EXPECT_TRUE(holds(odd.err, "does not end in .svg, .png or .dot"));
    EXPECT_FALSE(exists("a.jpg"));
}

TEST_F(DrawTest, PngWithoutAProgramSaysWhatIsMissing) {
    const Ended ended = sluice(Start{.arguments = {"draw", examples + "numbers.xml", "-o", "a.png"},
                                     .environment = {{"PATH", path(".")}}});
    EXPECT_EQ(ended.status, 2);
    EXPECT_TRUE(holds(ended.err, "a PNG needs rsvg-convert (package librsvg2-bin) or dot (package "
                                 "graphviz), and neither is installed"))
        << ended.err;
    EXPECT_FALSE(exists("a.png"));
}

TEST_F(DrawTest, FilesThatCannotBeReadOrWrittenAreRefused) {
    EXPECT_EQ(sluice({"draw", "nothing.xml"}).status, 2);
    EXPECT_EQ(sluice({"draw", examples + "numbers.xml", "-o", "nowhere/a.svg"}).status, 2);
    const Ended partial = sluice({"draw", examples + "reading_failures.xml"});
    EXPECT_EQ(partial.status, 1) << "drawn, with reports";
    EXPECT_TRUE(holds(partial.out, "</svg>"));
}

TEST_F(DrawTest, EmptyGraphIsAnEmptyPicture) {
    file("empty.xml", graph(""));
    const Ended ended = sluice({"draw", "empty.xml"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    expectWellFormed(ended.out);
}

} // namespace
} // namespace sluice_test
