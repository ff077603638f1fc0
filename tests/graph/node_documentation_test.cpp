// SPDX-License-Identifier: Apache-2.0
// Tooltips of pins, and pages of the manual.
#include <gtest/gtest.h>

#include <cstdlib>

#include "core/enum_value.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::LogicProbe;
using support::SceneBuilder;

namespace {

bool holds(const TM_String& text, const TM_String& part) {
    return text.find(part) != TM_String::npos;
}

TEST(PinInfo, TellsSizeTypesValueTimeAndMemory) {
    SceneBuilder build;
    build.add("Real", "R").add("Evaluator", "E").connect("R.real", "E.evaluate");
    build.pin("R.in")->setFloatValue(2.5f);
    build.scene.run();
    const TM_String info = build.pin("R.real")->getInfo();
    EXPECT_EQ(info.rfind("real (1)->\"Real\"\nValue->", 0), 0u) << info;
    EXPECT_TRUE(holds(info, "2.5")) << info;
    EXPECT_TRUE(holds(info, "\nTime->0.")) << info;
    EXPECT_TRUE(holds(info, "%\nMemory->124 B")) << info;
    EXPECT_EQ(build.node("R")->getInfo(), "");
}

TEST(PinInfo, LongTextsAreCut) {
    SceneBuilder build;
    build.add("String", "S").add("Add", "A");
    build.pin("S.in")->setStringValue(TM_String(59, 'x') + "\xc3\xa4" + "rest");
    const TM_String info = build.pin("S.in")->getInfo();
    EXPECT_TRUE(holds(info, "Value->" + TM_String(59, 'x') + "...\n")) << info;
    EXPECT_TRUE(holds(build.pin("A.in0")->getInfo(), "...\n"));
}

TEST(PinInfo, TellsNoTimeWithoutMonitoring) {
    SceneBuilder build;
    build.add("Real", "R");
    build.scene.networkManager().setMonitoring(false);
    EXPECT_FALSE(holds(build.pin("R.in")->getInfo(), "Time->"));
    build.scene.networkManager().setMonitoring(true);
}

TEST(PinInfo, PinWithoutAnAttributeIsItsName) {
    SceneBuilder build;
    build.add("Real", "R");
    Pin* pin = build.pin("R.in");
    pin->forgetWeftAttribute();
    EXPECT_EQ(pin->getInfo(), "in");
    EXPECT_FALSE(pin->asHTML().empty());
}

TEST(PinHtml, IsATableOfOneDirection) {
    SceneBuilder build;
    build.add("For", "F");
    const TM_String html = build.pin("F.start")->asHTML();
    EXPECT_EQ(html.rfind("<h4>Input</h4><table class=\"confluenceTable\"><tbody><tr>", 0), 0u)
        << html;
    for (const char* column : {"Name", "Types", "PassThrough", "Description"}) {
        EXPECT_TRUE(holds(html, TM_String("<th class=\"confluenceTh\">") + column + "</th>"));
    }
    EXPECT_TRUE(holds(html, "<td class=\"confluenceTd\">start</td>"
                            "<td class=\"confluenceTd\">Integer&nbsp;(1)</td>"
                            "<td class=\"confluenceTd\">&nbsp;</td>"))
        << html;
    EXPECT_EQ(html.substr(html.size() - 16), "</tbody></table>");
    EXPECT_EQ(build.pin("F.current index")->asHTML().rfind("<h4>Output</h4>", 0), 0u);
}

TEST(PinHtml, LongListsFoldByTheMarkupThatIsAskedFor) {
    SceneBuilder build;
    build.add("Add", "A");
    const TM_String page = build.pin("A.in0")->asConfluenceHTML(true);
    EXPECT_TRUE(holds(page, "class=\"expand-container\"")) << page;
    EXPECT_TRUE(holds(page, "class=\"expand-control\""));
    EXPECT_TRUE(holds(page, "class=\"expand-content expand-hidden\""));
    EXPECT_NE(page, build.pin("A.in0")->asConfluenceHTML(true)) << "each block has its own id";
    const TM_String wiki = build.pin("A.in0")->asConfluenceHTML(false);
    EXPECT_TRUE(holds(wiki, "<ac:structured-macro ac:name=\"expand\">")) << wiki;
    EXPECT_FALSE(holds(wiki, "expand-container"));
    EXPECT_TRUE(holds(wiki, "<li>Matrix4</li>"));
    EXPECT_TRUE(holds(wiki, "<td class=\"confluenceTd\">result</td>")) << "may be passed through";
}

TEST(PinHtml, NamesTheKindOfSpecialPins) {
    SceneBuilder build;
    build.add("Pass", "P");
    EXPECT_TRUE(holds(build.pin("P.in")->asHTML(), "<td class=\"confluenceTd\">Attribute</td>"));
    build.probe("Probe", "E", [](LogicProbe& logic) {
        logic.input<weft::EnumAttribute>("choice")->setOptions({"first", "second & last"});
    });
    const TM_String choice = build.pin("E.choice")->asConfluenceHTML(false);
    EXPECT_TRUE(holds(choice, "Enum")) << choice;
    EXPECT_TRUE(holds(choice, "<li>second &amp; last</li>"));
}

TEST(NodeHtml, HasAnchorTypeDescriptionAndTables) {
    SceneBuilder build;
    build.add("Pass", "P");
    const TM_String page = build.node("P")->asConfluenceHTML(false);
    EXPECT_EQ(page.rfind("<ac:structured-macro ac:name=\"anchor\"><ac:parameter ac:name=\"\">Pass"
                         "</ac:parameter></ac:structured-macro><h3>Pass</h3><p>This node acts as",
                         0),
              0u)
        << page;
    EXPECT_TRUE(holds(page, "No copy is performed.</p><p>A common use of Pass nodes is the "
                            "reduction of graph cluttering.</p><h4>Inputs</h4>"))
        << page;
    EXPECT_TRUE(holds(page, "</table><h4>Outputs</h4><table"));
    EXPECT_FALSE(holds(page, "multithreaded"));
    EXPECT_EQ(build.node("P")->firstDescriptionLineForConfluence(),
              "<p>This node acts as a passthrough node. The output value is exactly the same as "
              "the input. No copy is performed.</p>");
}

TEST(NodeHtml, TellsHowTheNodeUsesThreads) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P");
    node->getCoreNode()->setThreadingModeHintByElement();
    EXPECT_TRUE(holds(node->asHTML(), "<p>This node is executed in parallel according to its "
                                      "input pins size.</p>"));
    node->getCoreNode()->setThreadingModeHintInternal();
    EXPECT_TRUE(holds(node->asHTML(), "<p>The algorithm to perform the operation of this node is "
                                      "multithreaded.</p>"));
}

TEST(NodeHtml, PathsOfASinglePageFollowTheEnvironment) {
    SceneBuilder build;
    auto* node = build.probe("Probe", "P");
    node->getCoreNode()->setDescription(
        "See <img src=\"../a.png\"/><img src=\"./b.png\"/> and <a href=\"./c.html\">c</a>");
    EXPECT_TRUE(holds(node->asHTML(), "<img src=\"../a.png\"/>"));
    ::setenv("SLDOCFOLDER", "folder", 1);
    ::setenv("SLDOCPATH", "path", 1);
    const TM_String page = node->asHTML();
    ::unsetenv("SLDOCFOLDER");
    ::unsetenv("SLDOCPATH");
    EXPECT_TRUE(holds(page, "<img src=\"folder/path/a.png\"/><img src=\"folder/path/b.png\"/>"))
        << page;
    EXPECT_TRUE(holds(page, "<a href=\"folder/path/c.html\">c</a>"));
    EXPECT_EQ(node->asConfluenceHTML(true).find("folder/path"), TM_String::npos);
}

TEST(NodeHtml, PlainTextIsEscaped) {
    SceneBuilder build;
    auto* node = build.probe("A<b>", "P");
    node->getCoreNode()->setDescription("a < b & c > d");
    EXPECT_TRUE(holds(node->asHTML(), "<h3>A&lt;b&gt;</h3><p>a &lt; b &amp; c &gt; d.</p>"));
}

// Every registered type describes itself and all its pins.
TEST(NodeHtml, NoTypeIsWithoutADescription) {
    for (NodeFactory* factory : SceneBuilder::manager().getArrNodeFactory()) {
        SceneBuilder build;
        const TM_String& type = factory->getDescriptor().getTypeName();
        build.add(type.c_str(), "N");
        EXPECT_NE(build.node("N")->getDescription(), "") << type;
        for (const auto* pin : build.node("N")->pins()) {
            EXPECT_NE(pin->getDescription(), "") << type << "." << pin->getName();
            EXPECT_NE(pin->getInfo(), "");
        }
        EXPECT_TRUE(holds(build.node("N")->asHTML(), "<h3>" + type + "</h3><p>"));
    }
}

} // namespace
