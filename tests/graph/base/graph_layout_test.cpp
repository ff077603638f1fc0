// SPDX-License-Identifier: Apache-2.0
// Tests of the layout store and of the editor's settings.
#include "graph/base/graph_layout.h"

#include <gtest/gtest.h>

#include <vector>

#include "graph/base/graph_settings.h"

using namespace tidemark;
using namespace tidemark::graph;

namespace {

using Names = std::vector<TM_String>;
using Position = GraphLayout::Position;

Names nodesOf(const GraphLayout& layout) {
    Array<TM_String> names;
    layout.getAllNodeNames(names);
    return Names(names.begin(), names.end());
}

Names connectionsOf(const GraphLayout& layout) {
    Array<TM_String> names;
    layout.getAllConnectionNames(names);
    return Names(names.begin(), names.end());
}

NoteDesc note(const TM_String& parent, const TM_String& content) {
    NoteDesc desc;
    desc.parentNode = parent;
    desc.content = content;
    return desc;
}

} // namespace

TEST(GraphLayout, UnknownNamesHaveNoValues) {
    const GraphLayout layout;
    EXPECT_FALSE(layout.getPositionByNodeName("n"));
    EXPECT_FALSE(layout.getColorByNodeName("n"));
    EXPECT_FALSE(layout.getCollapsedByNodeName("n"));
    EXPECT_FALSE(layout.getVisibleByNodeName("n"));
    EXPECT_FALSE(layout.getHorizontalInputsByNodeName("n"));
    EXPECT_FALSE(layout.getHorizontalOutputsByNodeName("n"));
    EXPECT_FALSE(layout.getVisibleByConnectionName("n"));
    EXPECT_FALSE(layout.getBezierByConnectionName("n"));
    EXPECT_FALSE(layout.getTopLeftCorner());
    EXPECT_TRUE(layout.isEmpty());
}

TEST(GraphLayout, EachInsertSetsItsOneValue) {
    GraphLayout layout;
    layout.insertNodePosition("p", Position{1, 2});
    EXPECT_EQ(layout.getPositionByNodeName("p"), (Position{1, 2}));
    EXPECT_FALSE(layout.getColorByNodeName("p"));
    EXPECT_FALSE(layout.getCollapsedByNodeName("p"));
    layout.insertNodeColor("c", Color4<float>(1, 0, 0, 1));
    EXPECT_EQ(layout.getColorByNodeName("c"), Color4<float>(1, 0, 0, 1));
    EXPECT_FALSE(layout.getPositionByNodeName("c"));
    layout.insertNodeCollapsed("n", true);
    layout.insertNodeVisible("n", false);
    layout.insertNodeHorizontalInputs("n", true);
    layout.insertNodeHorizontalOutputs("n", false);
    EXPECT_EQ(layout.getCollapsedByNodeName("n"), true);
    EXPECT_EQ(layout.getVisibleByNodeName("n"), false);
    EXPECT_EQ(layout.getHorizontalInputsByNodeName("n"), true);
    EXPECT_EQ(layout.getHorizontalOutputsByNodeName("n"), false);
    layout.insertConnectionBezier("k", true);
    EXPECT_EQ(layout.getBezierByConnectionName("k"), true);
    EXPECT_FALSE(layout.getVisibleByConnectionName("k"));
    layout.insertConnectionVisible("k", false);
    EXPECT_EQ(layout.getVisibleByConnectionName("k"), false);
    EXPECT_EQ(nodesOf(layout), (Names{"p", "c", "n"}));
    EXPECT_EQ(connectionsOf(layout), (Names{"k"}));
}

TEST(GraphLayout, WholeInsertsSetAllValues) {
    GraphLayout layout;
    layout.insertNode("a", Position{1, 2}, true, false, true, false);
    layout.insertNode("b", Position{3, 4}, Color4<float>(1, 2, 3, 4), false, true, false, true);
    layout.insertConnection("k", true, false);
    EXPECT_EQ(layout.getPositionByNodeName("a"), (Position{1, 2}));
    EXPECT_EQ(layout.getCollapsedByNodeName("a"), true);
    EXPECT_EQ(layout.getVisibleByNodeName("a"), false);
    EXPECT_EQ(layout.getHorizontalInputsByNodeName("a"), true);
    EXPECT_EQ(layout.getHorizontalOutputsByNodeName("a"), false);
    EXPECT_FALSE(layout.getColorByNodeName("a"));
    EXPECT_EQ(layout.getColorByNodeName("b"), Color4<float>(1, 2, 3, 4));
    EXPECT_EQ(layout.getHorizontalOutputsByNodeName("b"), true);
    EXPECT_EQ(layout.getVisibleByConnectionName("k"), true);
    EXPECT_EQ(layout.getBezierByConnectionName("k"), false);
}

TEST(GraphLayout, OrderIsThatOfTheFirstInsert) {
    GraphLayout layout;
    for (const char* name : {"z", "a", "m"}) layout.insertNodeVisible(name, true);
    layout.insertNodeVisible("z", false);
    EXPECT_EQ(nodesOf(layout), (Names{"z", "a", "m"}));
    EXPECT_TRUE(layout.removeNode("a"));
    EXPECT_FALSE(layout.removeNode("a"));
    EXPECT_EQ(nodesOf(layout), (Names{"z", "m"}));
    EXPECT_FALSE(layout.getVisibleByNodeName("a"));
    layout.insertNodeVisible("a", true);
    EXPECT_EQ(nodesOf(layout), (Names{"z", "m", "a"}));
}

TEST(GraphLayout, UpdateCopiesWhatTheOtherHas) {
    GraphLayout layout;
    layout.insertNodePosition("n", Position{1, 1});
    layout.insertNodeVisible("n", true);
    layout.addNote(note("root", "mine"));
    GraphLayout other;
    other.insertNodePosition("n", Position{5, 5});
    other.insertNodeCollapsed("m", true);
    other.insertConnectionVisible("k", true);
    other.addNote(note("root", "theirs"));
    layout.updateWithOther(other);
    EXPECT_EQ(layout.getPositionByNodeName("n"), (Position{5, 5}));
    EXPECT_EQ(layout.getVisibleByNodeName("n"), true);
    EXPECT_EQ(layout.getCollapsedByNodeName("m"), true);
    EXPECT_EQ(layout.getVisibleByConnectionName("k"), true);
    ASSERT_EQ(layout.notes().size(), 2u);
    EXPECT_EQ(layout.notes()[1].content, "theirs");
    layout.updateWithOther(layout);
    EXPECT_EQ(layout.notes().size(), 2u);
}

TEST(GraphLayout, CornerAndOffsetCoverNodesAndNotes) {
    GraphLayout layout;
    layout.insertNodePosition("a", Position{3, -2});
    layout.insertNodeVisible("without position", true);
    layout.addNote("root", "n", Position{-1, 7}, Position{1, 1}, Color4<float>(0, 0, 0, 1),
                   Color4<float>(1, 1, 1, 1));
    EXPECT_EQ(layout.getTopLeftCorner(), (Position{-1, -2}));
    layout.offset(Position{10, 20});
    EXPECT_EQ(layout.getPositionByNodeName("a"), (Position{13, 18}));
    EXPECT_EQ(layout.notes()[0].position, (Position{9, 27}));
    EXPECT_EQ(layout.notes()[0].size, (Position{1, 1}));
    EXPECT_EQ(layout.notes()[0].backgroundColor, Color4<float>(1, 1, 1, 1));
    EXPECT_FALSE(layout.getPositionByNodeName("without position"));
}

TEST(GraphLayout, DictionaryRenamesWholeNames) {
    GraphLayout layout;
    layout.insertNodePosition("root.A", Position{1, 0});
    layout.insertNodePosition("root.B", Position{2, 0});
    layout.insertNodePosition("root.AA", Position{3, 0});
    layout.insertConnectionVisible("root.A", true);
    layout.addNote(note("root.A", "n"));
    layout.applyDictionary({{"root.A", "root.B"}, {"root.B", "root.A"}});
    EXPECT_EQ(layout.getPositionByNodeName("root.B"), (Position{1, 0}));
    EXPECT_EQ(layout.getPositionByNodeName("root.A"), (Position{2, 0}));
    EXPECT_EQ(layout.getPositionByNodeName("root.AA"), (Position{3, 0}));
    EXPECT_EQ(nodesOf(layout), (Names{"root.B", "root.A", "root.AA"}));
    EXPECT_EQ(connectionsOf(layout), (Names{"root.B"}));
    EXPECT_EQ(layout.notes()[0].parentNode, "root.B");
}

TEST(GraphLayout, EntriesThatMeetAreMerged) {
    GraphLayout layout;
    layout.insertNode("a", Position{1, 1}, true, true, true, true);
    layout.insertNodePosition("b", Position{2, 2});
    layout.applyDictionary({{"b", "a"}});
    EXPECT_EQ(nodesOf(layout), (Names{"a"}));
    EXPECT_EQ(layout.getPositionByNodeName("a"), (Position{2, 2}));
    EXPECT_EQ(layout.getCollapsedByNodeName("a"), true);
}

TEST(GraphLayout, PrefixAndTextReplacement) {
    GraphLayout layout;
    layout.insertNodeVisible("root.C.x", true);
    layout.insertNodeVisible("root.D.root.C", true);
    layout.insertConnectionVisible("root.C.x", true);
    layout.addNote(note("root.C", "n"));
    layout.replacePrefixInNames("root.C", "root.E.C");
    EXPECT_EQ(nodesOf(layout), (Names{"root.E.C.x", "root.D.root.C"}));
    EXPECT_EQ(connectionsOf(layout), (Names{"root.E.C.x"}));
    EXPECT_EQ(layout.notes()[0].parentNode, "root.E.C");
    layout.replaceTxtInNames("root", "r");
    EXPECT_EQ(nodesOf(layout), (Names{"r.E.C.x", "r.D.r.C"}));
    EXPECT_EQ(layout.notes()[0].parentNode, "r.E.C");
    EXPECT_EQ(layout.getVisibleByNodeName("r.D.r.C"), true);
}

TEST(GraphLayout, NotesMoveToAnotherParent) {
    GraphLayout layout;
    layout.addNote(note("root", "stays"));
    layout.addNote(note("root", "goes"));
    layout.moveNotes(Array<NoteDesc>{note("root", "goes"), note("root", "unknown")}, "root.C");
    EXPECT_EQ(layout.notes()[0].parentNode, "root");
    EXPECT_EQ(layout.notes()[1].parentNode, "root.C");
    layout.moveNotes(layout.notes(), "root.D");
    EXPECT_EQ(layout.notes()[0].parentNode, "root.D");
    EXPECT_EQ(layout.notes()[1].parentNode, "root.D");
}

TEST(GraphLayout, InvolvedNamesIncludeParentsOfNotes) {
    GraphLayout layout;
    layout.insertNodeVisible("root.A", true);
    layout.addNote(note("root.A", "1"));
    layout.addNote(note("root.C", "2"));
    layout.addNote(note("root.C", "3"));
    Array<TM_String> names;
    layout.getInvolvedNodeNames(names);
    EXPECT_EQ(names, (Array<TM_String>{"root.A", "root.C"}));
}

TEST(GraphLayout, CopiesAreIndependent) {
    GraphLayout layout;
    layout.insertNodeVisible("a", true);
    layout.addNote(note("root", "n"));
    GraphLayout copy(layout);
    GraphLayout assigned;
    assigned.insertNodeVisible("gone", true);
    assigned = layout;
    layout.insertNodeVisible("a", false);
    layout.clear();
    EXPECT_TRUE(layout.isEmpty());
    for (GraphLayout* each : {&copy, &assigned}) {
        EXPECT_EQ(nodesOf(*each), (Names{"a"}));
        EXPECT_EQ(each->getVisibleByNodeName("a"), true);
        EXPECT_EQ(each->notes().size(), 1u);
        const GraphLayout& same = *each;
        *each = same;
        EXPECT_EQ(nodesOf(*each), (Names{"a"}));
        each->insertNodeVisible("b", true);
        EXPECT_EQ(each->getVisibleByNodeName("b"), true);
    }
}

TEST(GraphLayout, PrintsItsValues) {
    GraphLayout layout;
    layout.insertNode("n", Position{1.5f, -2}, Color4<float>(1, 0, 0.5f, 1), true, false, true,
                      false);
    layout.insertConnectionVisible("k", true);
    layout.addNote("root", "hello", Position{1, 2}, Position{3, 4}, Color4<float>(0, 0, 0, 1),
                   Color4<float>(0, 0, 0, 1));
    TM_String out;
    layout.printValues(out);
    EXPECT_EQ(out, "node n position (1.5, -2) color (1, 0, 0.5, 1) collapsed true visible false"
                   " horizontal_inputs true horizontal_outputs false\n"
                   "connection k visible true\n"
                   "note root position (1, 2) size (3, 4) hello\n");
}

TEST(GraphLayout, LargeLayoutsRenameInLinearTime) {
    GraphLayout layout;
    for (int i = 0; i < 100000; ++i) {
        layout.insertNodePosition("root.n" + std::to_string(i), Position{float(i), 0});
    }
    layout.replacePrefixInNames("root.", "root.C.");
    EXPECT_EQ(layout.getPositionByNodeName("root.C.n99999"), (Position{99999, 0}));
}

TEST(GraphSettings, StartsWithTheEditorsValues) {
    const GraphSettings settings;
    EXPECT_EQ(settings.gridColor, Color4<float>(0.6f, 0.6f, 0.6f, 1.0f));
    EXPECT_EQ(settings.zoomFactor, 1.0f);
    EXPECT_TRUE(settings.showGrid);
    EXPECT_FALSE(settings.snapToGrid);
    EXPECT_EQ(settings.inputPinSize, (Tuple2<float, float>{13.0f, 15.0f}));
    EXPECT_EQ(settings.outputPinSize, (Tuple2<float, float>{13.0f, 15.0f}));
    EXPECT_EQ(settings.horizontalMargin, 5.0f);
    EXPECT_EQ(settings.verticalMargin, 5.0f);
    EXPECT_TRUE(settings.antialiasing);
    EXPECT_FALSE(settings.horizontalInputs);
    EXPECT_FALSE(settings.horizontalOutputs);
    EXPECT_FALSE(settings.bezierConnections);
}
