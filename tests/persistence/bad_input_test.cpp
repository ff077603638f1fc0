// SPDX-License-Identifier: Apache-2.0
// Tests of files that are no graphs: each is reported clearly, and nothing that was there is lost.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "persistence/files.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::document;
using support::node;
using support::RecordingHost;
using support::SceneBuilder;
using namespace std::string_literals;

namespace {

// A scene with one node, into which bad files are read.
class BadInput : public testing::Test {
protected:
    BadInput() { build.add("Add", "A"); }
    ~BadInput() override { EXPECT_EQ(build.scene.nodesById().size(), 1u); }

    // "message|line" of the only report.
    std::string fromFile(const std::string& path) {
        EXPECT_FALSE(build.scene.read_XML(path));
        return onlyReport("2263|" + path + "|");
    }
    std::string fromText(const std::string& text) {
        EXPECT_FALSE(build.scene.read_XML_fromString(text));
        const std::string report = onlyReport("2263||");
        EXPECT_EQ(fromFile(folder.write("x.xml", text)), report);
        return report;
    }

    support::TemporaryFolder folder;
    SceneBuilder build;
    RecordingHost host;

private:
    std::string onlyReport(const std::string& begin) {
        EXPECT_EQ(host.posts.size(), 1u);
        const std::string report = host.posts.empty() ? "" : host.posts[0];
        host.posts.clear();
        EXPECT_EQ(report.substr(0, begin.size()), begin);
        return report.substr(std::min(begin.size(), report.size()));
    }
};

} // namespace

TEST_F(BadInput, FilesThatCannotBeRead) {
    EXPECT_EQ(fromFile(folder.file("none.xml")), "No such file or directory|0");
    EXPECT_EQ(fromFile(folder.file("")), "a folder, not a file|0");
    EXPECT_EQ(fromFile("/dev/null"), "not a regular file|0");
    EXPECT_EQ(fromFile(""), "No such file or directory|0");
    EXPECT_EQ(fromFile(std::string(5000, 'x')), "File name too long|0");
    ::mkfifo(folder.file("pipe").c_str(), 0600);
    EXPECT_EQ(fromFile(folder.file("pipe")), "not a regular file|0");
}

TEST_F(BadInput, Texts) {
    EXPECT_EQ(fromText(""), "no element: the document is empty|1");
    EXPECT_EQ(fromText("not XML at all"), "expected <|1");
    EXPECT_EQ(fromText("{\"nodes\": []}"), "expected <|1");
    EXPECT_EQ(fromText("<scene>\n<nodes>\n"), "unexpected end of data|3");
    EXPECT_EQ(fromText("<scene>\n<nodes>\n</scene>\n"),
              "closing tag \"scene\" where \"nodes\" is open|3");
    EXPECT_EQ(fromText("<scene>\n\0</scene>"s), "a NUL byte in the text|2");
    EXPECT_EQ(fromText("<scene>\n\xe9</scene>"s), "bytes that are not UTF-8|2");
    EXPECT_EQ(fromText("\xff\xfe<\0s\0"s), "encoded as UTF-16 or UTF-32; only UTF-8 is read|1");
    EXPECT_EQ(fromText("<?xml version=\"1.0\" encoding=\"latin-1\"?><scene/>"),
              "encoding \"latin-1\" is declared; only UTF-8 is read|1");
}

TEST_F(BadInput, DocumentsWithoutAGraph) {
    const std::string noGraph = "no graph: there is no element scene.nodes|0";
    EXPECT_EQ(fromText("<scene/>"), noGraph);
    EXPECT_EQ(fromText("<html><body/></html>"), noGraph);
    EXPECT_EQ(fromText("<nodes><scene/></nodes>"), noGraph);
    EXPECT_EQ(fromText("<scene><connections/></scene>"), noGraph);
}

TEST_F(BadInput, AMillionNestedElements) {
    std::string text;
    for (int i = 0; i < 1000000; ++i) text += "<node>";
    EXPECT_EQ(fromText("\n" + text), "elements are nested deeper than 1024 levels|2");
}

TEST_F(BadInput, ADocumentThatBreaksOffLateMakesNothing) {
    std::string nodes;
    for (int i = 0; i < 3000; ++i) nodes += node("Add", "A" + std::to_string(i) + "x");
    const std::string whole = document(nodes);
    EXPECT_EQ(fromText(whole.substr(0, whole.size() - 3)), "unexpected end of data|1");
}

TEST(DeepInput, NodesNestedAsDeepAsAllowedAreRead) {
    std::string nodes;
    for (int i = 0; i < 509; ++i) nodes += "<node><name>C</name><type>Compound</type><nodes>";
    for (int i = 0; i < 509; ++i) nodes += "</nodes></node>";
    RecordingHost host;
    SL_GraphScene scene;
    EXPECT_TRUE(scene.read_XML_fromString(document(nodes)));
    EXPECT_EQ(host.posts, std::vector<std::string>());
    EXPECT_EQ(scene.nodesById().size(), 509u);
}

TEST(RepeatedElements, TheFirstListsCount) {
    SL_GraphScene scene;
    EXPECT_TRUE(scene.read_XML_fromString("<scene><nodes>" + node("Add", "A") + "</nodes><nodes>" +
                                          node("Add", "B") + "</nodes></scene>"));
    EXPECT_EQ(scene.nodesById().size(), 1u);
}

TEST(StrayText, BetweenNodesIsNoMatter) {
    RecordingHost host;
    SceneBuilder build;
    EXPECT_TRUE(build.scene.read_XML_fromString(
        "<scene>text<nodes>more" + node("Add", "A") + "<![CDATA[ <x> ]]><y/>" + node("Add", "B") +
        "text</nodes><connections>text</connections></scene>"));
    EXPECT_EQ(host.posts, std::vector<std::string>());
    EXPECT_EQ(build.scene.nodesById().size(), 2u);
}
