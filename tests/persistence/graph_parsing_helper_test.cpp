// SPDX-License-Identifier: Apache-2.0
// Tests of documents as trees, and of the tools that work on them.
#include "persistence/graph_parsing_helper.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <boost/property_tree/ptree.hpp>

#include "persistence/files.h"
#include "persistence/tree_access.h"
#include "support/recording_host.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::RecordingHost;
using support::TemporaryFolder;
using Helper = GraphParsingHelper;
using Posts = std::vector<std::string>;

namespace {

PropertyTree treeOf(const std::string& text) {
    PropertyTree tree;
    EXPECT_TRUE(Helper::XML_stringToPropertyTree(text, tree)) << text;
    return tree;
}

std::string namesIn(const PropertyTree& list) {
    std::string names;
    tree::forEach(list, "node",
                  [&](const PropertyTree& node) { names += tree::childText(node, "name") + " "; });
    return names;
}

} // namespace

TEST(TreeAccess, FindsTheFirstChildOfAName) {
    const PropertyTree tree = treeOf("<a><b>1</b><c/><b>2</b></a>");
    const PropertyTree* a = tree::child(tree, "a");
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(tree::childText(*a, "b"), "1");
    EXPECT_EQ(tree::childText(*a, "c"), "");
    EXPECT_EQ(tree::childText(*a, "d"), "");
    EXPECT_EQ(tree::child(*a, "d"), nullptr);
}

TEST(TreeAccess, WalksNamedElementsInOrder) {
    const PropertyTree tree = treeOf("<a><inputs><input><name>x</name></input><other/>"
                                     "<input/><input><name>y</name></input></inputs></a>");
    const PropertyTree& a = *tree::child(tree, "a");
    std::string names;
    const auto note = [&](const TM_String& name, const PropertyTree&) { names += name + "|"; };
    EXPECT_TRUE(tree::forEachNamed(a, "inputs", "input", note));
    EXPECT_EQ(names, "x||y|");
    EXPECT_FALSE(tree::forEachNamed(a, "outputs", "output", note));
}

TEST(GraphParsingHelper, ReadsAFileAndATextAlike) {
    const TemporaryFolder folder;
    const std::string text = "<?xml version=\"1.0\"?>\n<!-- c -->\n<a b='c'>\n  <d> e </d>\n</a>\n";
    PropertyTree fromFile;
    EXPECT_TRUE(Helper::XML_fileToPropertyTree(folder.write("x.xml", text), fromFile));
    EXPECT_EQ(fromFile, treeOf(text));
    EXPECT_EQ(fromFile.get<std::string>("a.d"), " e ");
    EXPECT_EQ(fromFile.get<std::string>("a"), "");
    EXPECT_EQ(fromFile.get_child("a").size(), 1u);
}

TEST(GraphParsingHelper, KeepsTextsThatAreBlank) {
    const PropertyTree tree = treeOf("<a>\n<b>  </b>\n<c>&#32;</c><d>\n</d><e><!-- -->  </e></a>");
    EXPECT_EQ(tree.get<std::string>("a.b"), "  ");
    EXPECT_EQ(tree.get<std::string>("a.c"), " ");
    EXPECT_EQ(tree.get<std::string>("a.d"), "\n");
    EXPECT_EQ(tree.get<std::string>("a.e"), "  ");
}

TEST(GraphParsingHelper, ReadsReferencesAndCharacterData) {
    const PropertyTree tree =
        treeOf("<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x20AC;&other;<![CDATA[<b>&amp;]]></a>");
    EXPECT_EQ(tree.get<std::string>("a"), "<>&\"'A\xe2\x82\xac&other;<b>&amp;");
}

TEST(GraphParsingHelper, ReportsFileMessageAndLine) {
    RecordingHost host;
    const TemporaryFolder folder;
    const std::string path = folder.write("x.xml", "<a>\n</b>\n");
    PropertyTree tree;
    EXPECT_FALSE(Helper::XML_fileToPropertyTree(path, tree));
    EXPECT_FALSE(Helper::XML_toPropertyTree(true, folder.file("none"), tree));
    EXPECT_FALSE(Helper::XML_stringToPropertyTree("<a", tree));
    EXPECT_EQ(host.posts, (Posts{"2263|" + path + "|closing tag \"b\" where \"a\" is open|2",
                                 "2263|" + folder.file("none") + "|No such file or directory|0",
                                 "2263||expected >|1"}));
}

TEST(GraphParsingHelper, ReportsNothingWhereNoneIsWanted) {
    RecordingHost host;
    PropertyTree tree;
    EXPECT_FALSE(Helper::XML_stringToPropertyTreeNoError("<a", tree));
    EXPECT_TRUE(Helper::XML_stringToPropertyTreeNoError("<a/>", tree));
    EXPECT_EQ(host.posts, Posts());
}

TEST(GraphParsingHelper, RefusesWhatIsNoRegularFile) {
    RecordingHost host;
    const TemporaryFolder folder;
    ::mkfifo(folder.file("pipe").c_str(), 0600);
    PropertyTree tree;
    EXPECT_FALSE(Helper::XML_fileToPropertyTree(folder.file(""), tree));
    EXPECT_FALSE(Helper::XML_fileToPropertyTree(folder.file("pipe"), tree));
    EXPECT_FALSE(Helper::XML_fileToPropertyTree("/dev/zero", tree));
    EXPECT_FALSE(Helper::XML_fileToPropertyTree(std::string("a\0b", 3), tree));
    ASSERT_EQ(host.posts.size(), 4u);
    EXPECT_EQ(host.posts[0], "2263|" + folder.file("") + "|a folder, not a file|0");
    EXPECT_EQ(host.posts[1], "2263|" + folder.file("pipe") + "|not a regular file|0");
    EXPECT_EQ(host.posts[2], "2263|/dev/zero|not a regular file|0");
}

TEST(GraphParsingHelper, ReadsFilesWithoutASize) {
    PropertyTree tree;
    RecordingHost host;
    // A file of the system whose size is given as 0: it is read, and is no XML.
    EXPECT_FALSE(Helper::XML_fileToPropertyTree("/proc/self/status", tree));
    EXPECT_EQ(host.posts, Posts{"2263|/proc/self/status|expected <|1"});
}

TEST(GraphParsingHelper, TakesAnotherNestingLimit) {
    EXPECT_EQ(Helper::getMaximumDepth(), 1024u);
    PropertyTree tree;
    Helper::setMaximumDepth(2);
    EXPECT_TRUE(Helper::XML_stringToPropertyTreeNoError("<a><b/></a>", tree));
    EXPECT_FALSE(Helper::XML_stringToPropertyTreeNoError("<a><b><c/></b></a>", tree));
    Helper::setMaximumDepth(2048);
    std::string deep;
    for (int i = 0; i < 2048; ++i) deep += "<a>";
    for (int i = 0; i < 2048; ++i) deep += "</a>";
    EXPECT_TRUE(Helper::XML_stringToPropertyTreeNoError(deep, tree));
    Helper::setMaximumDepth(1024);
}

TEST(GraphParsingHelper, StepsThroughTheRootToTheNodes) {
    PropertyTree out;
    const std::string two = "<node><name>A</name><type>Add</type></node>"
                            "<node><name>B</name><type>Add</type></node>";
    EXPECT_TRUE(Helper::getNodesLevelSkippingRoot(
        treeOf("<scene><nodes><node><name>root</name><type/><nodes>" + two +
               "</nodes></node></nodes></scene>"),
        out));
    EXPECT_EQ(namesIn(out), "A B ");
    EXPECT_TRUE(Helper::getNodesLevelSkippingRoot(
        treeOf("<scene><nodes>" + two + "</nodes></scene>"), out));
    EXPECT_EQ(namesIn(out), "A B ");
    EXPECT_FALSE(Helper::getNodesLevelSkippingRoot(
        treeOf("<scene><nodes><node><name>root</name></node></nodes></scene>"), out));
    EXPECT_FALSE(Helper::getNodesLevelSkippingRoot(treeOf("<scene><nodes/></scene>"), out));
    EXPECT_FALSE(Helper::getNodesLevelSkippingRoot(treeOf("<scene/>"), out));
}

TEST(GraphParsingHelper, FindsASingleCompoundAtTheTop) {
    const std::string compound = "<node><name>C</name><type>COMPOUND</type><x/></node>";
    const auto inRoot = [](const std::string& nodes) {
        return "<scene><nodes><node><name>root</name><type/><nodes>" + nodes +
               "</nodes></node></nodes></scene>";
    };
    TM_String name;
    PropertyTree out;
    EXPECT_TRUE(Helper::hasSingleCompoundAtTop(treeOf(inRoot(compound)), name, out));
    EXPECT_EQ(name, "C");
    EXPECT_NE(tree::child(out, "x"), nullptr);
    EXPECT_TRUE(Helper::hasSingleCompoundAtTop(
        treeOf("<scene><nodes>" + compound + "</nodes></scene>"), name, out));
    EXPECT_FALSE(Helper::hasSingleCompoundAtTop(treeOf(inRoot(compound + compound)), name, out));
    EXPECT_FALSE(Helper::hasSingleCompoundAtTop(
        treeOf("<scene><nodes>" + compound + compound + "</nodes></scene>"), name, out));
    EXPECT_FALSE(Helper::hasSingleCompoundAtTop(
        treeOf(inRoot("<node><name>A</name><type>Add</type></node>")), name, out));
    EXPECT_FALSE(Helper::hasSingleCompoundAtTop(treeOf("<scene/>"), name, out));
}

TEST(GraphParsingHelper, ReplacesTextInConnections) {
    const std::string text = "<scene><connections><connection><source>root.A.root.x</source>"
                             "<target>B.root.y</target></connection></connections>"
                             "<source>root</source></scene>";
    PropertyTree tree = treeOf(text);
    Helper::replaceConnectionTextInPtree(tree, "root", "r");
    EXPECT_EQ(tree, treeOf("<scene><connections><connection><source>r.A.r.x</source>"
                           "<target>B.r.y</target></connection></connections>"
                           "<source>root</source></scene>"));
    tree = treeOf(text);
    Helper::replaceConnectionPrefixTextInPtree(tree, "root", "root.C");
    EXPECT_EQ(tree, treeOf("<scene><connections><connection><source>root.C.A.root.x</source>"
                           "<target>B.root.y</target></connection></connections>"
                           "<source>root</source></scene>"));
}
