// SPDX-License-Identifier: Apache-2.0
// Nodes by which a graph looks after its own run: memory, threads and printing.
#include <gtest/gtest.h>

#include <cstdint>

#include "core/string_value.h"
#include "loop_scene.h"

namespace control_tests {
namespace {

/// Takes what nodes print.
class PrintingHost : public ControlHost {
public:
    void message(const TM_String& line) override { lines.push_back(line); }
    int numberOfThreads() const override { return 12; }
    std::vector<std::string> lines;
};

/// S > X.in, X.through > E.
class WireScene : public ControlScene {
public:
    explicit WireScene(const char* type, const char* source = "Real", const char* output = "real",
                       const char* input = "in") {
        add(source, "S");
        add(type, "X");
        add("Evaluator", "E");
        link(TM_String("S.") + output, TM_String("X.") + input);
        link("X.through", "E.evaluate");
    }
    weft::Numeric& number() {
        return static_cast<weft::NumericAttribute*>(at("S.in"))->ownNumeric();
    }
    float real(const TM_String& path) {
        const auto* value = weft::valueAs<weft::Numeric>(at(path)->currentValue());
        return value ? value->value<float>() : -1.0f;
    }
    PrintingHost printing;
};

std::string described(const char* type) {
    ControlScene net;
    Node* node = net.add(type, "X");
    std::string text = node->getCategory() + ": " + node->getDescription();
    for (const auto* pins : {&node->getArrInputPin(), &node->getArrOutputPin()}) {
        text += "\n>";
        for (const Pin* pin : *pins) {
            text += " " + pin->getName() + " " + pin->getWeftAttribute()->specialization() + ";";
            EXPECT_NE(pin->getDescription(), "");
        }
    }
    return text;
}

TEST(Housekeeping, NodesAreDescribed) {
    EXPECT_EQ(described("MemoryUsageInfo"),
              "Execution: This node outputs the memory usage in kilobytes for the current state of "
              "the graph.\n> in ;\n> pin kb Real; node kb Real; graph kb Real; through ;");
    EXPECT_EQ(described("PinPurgeMemory"),
              "Execution: This node purges the data stored in the connected 'input' pin.Basic "
              "types (like Integer or String) store their values in the pins.\n> in ;\n> through "
              ";");
    EXPECT_EQ(described("NodePurgeMemory"),
              "Execution: This node purges the data stored in the owner of the connected 'input' "
              "pin.Nodes that allocate big data structures (like all the Copy nodes) store their "
              "data inside the node.\n> in ;\n> through ;");
    EXPECT_EQ(described("GraphPurgeMemory"),
              "Execution: This node clears the memory, messages and timing data stored in the "
              "current graph scene nodes and pins.\n> in ;\n> through ;");
    EXPECT_EQ(described("SetGraphNumberOfThreads"),
              "Execution: This node changes the number of threads used for the current compound "
              "and its children behind this nodes evaluation.\n> threads Integer; in ;\n> through "
              ";");
    EXPECT_EQ(described("GetGraphNumberOfThreads"),
              "Execution: This node returns the number of threads used for the excecution of the "
              "current compound and its children.\n> in ;\n> threads Integer; actual threads "
              "Integer; through ;");
    EXPECT_EQ(described("MessagePrint"),
              "Execution: This node prints a standard Sluice message in the MessageWindow, using a "
              "string representation of the provided input 'value'\n> value ;\n> through ;");
}

TEST(Housekeeping, PinsAreExplained) {
    ControlScene net;
    net.add("MemoryUsageInfo", "M");
    net.add("SetGraphNumberOfThreads", "T");
    net.add("GetGraphNumberOfThreads", "G");
    const std::vector<std::pair<const char*, const char*>> texts = {
        {"M.in", "The pin to query the memory usage from."},
        {"M.pin kb", "Memory usage in kilobytes for the pin connected to 'input'."},
        {"M.node kb",
         "Memory usage in kilobytes for the node which owns the pin connected to 'input'."},
        {"M.graph kb", "Memory usage in kilobytes for the whole current graph."},
        {"T.threads", "The desired number of threads. 0 for default."},
        {"G.threads", "The current number of threads. 0 for default."},
        {"G.actual threads", "The actual current number of threads."}};
    for (const auto& [path, text] : texts) EXPECT_EQ(net.pin(path)->getDescription(), text);
}

class Wires : public testing::TestWithParam<const char*> {};

TEST_P(Wires, HandTheValueOn) {
    const bool prints = std::string(GetParam()) == "MessagePrint";
    WireScene net(GetParam(), "Real", "real", prints ? "value" : "in");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.at("E.evaluate")->currentValue(), net.at("S.real")->value());
    EXPECT_TRUE(net.at("E.evaluate")->isClean());
    EXPECT_EQ(net.messages("X"), "");
    net.pin("S.in")->setFloatValue(2.0f);
    EXPECT_FALSE(net.at("E.evaluate")->isClean());
}

TEST_P(Wires, WithNothingConnectedDoNothing) {
    ControlScene net;
    net.add(GetParam(), "X");
    net.add("Evaluator", "E");
    net.link("X.through", "E.evaluate");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.messages("X"), "");
}

INSTANTIATE_TEST_SUITE_P(Types, Wires,
                         testing::Values("MemoryUsageInfo", "PinPurgeMemory", "NodePurgeMemory",
                                         "GraphPurgeMemory", "SetGraphNumberOfThreads",
                                         "GetGraphNumberOfThreads", "MessagePrint"),
                         [](const auto& info) { return std::string(info.param); });

// Memory.

TEST(MemoryUsageInfo, TellsWhatIsAskedFor) {
    WireScene net("MemoryUsageInfo");
    for (const char* output : {"pin kb", "node kb", "graph kb"}) {
        net.add("Evaluator", output);
        net.link(TM_String("X.") + output, TM_String(output) + ".evaluate");
    }
    net.number().resize(1024);
    net.scene.run();
    const float pinBytes = static_cast<float>(net.at("S.real")->estimatedSize());
    EXPECT_GE(pinBytes, 4096.0f);
    EXPECT_EQ(net.real("X.pin kb"), pinBytes / 1024.0f);
    const float nodeBytes = static_cast<float>(net.node("S")->getCoreNode()->estimatedSize());
    EXPECT_EQ(net.real("X.node kb"), nodeBytes / 1024.0f);
    EXPECT_GT(net.real("X.graph kb"), net.real("X.node kb"));
    for (const char* output : {"X.pin kb", "X.node kb", "X.graph kb", "X.through"}) {
        EXPECT_TRUE(net.at(output)->isClean()) << output;
    }
    for (const char* output : {"X.pin kb", "X.node kb", "X.graph kb"}) {
        EXPECT_EQ(net.at(output)->value()->size(), 1u) << output;
    }
}

TEST(MemoryUsageInfo, ComputesNothingElse) {
    WireScene net("MemoryUsageInfo");
    net.add("Evaluator", "E2");
    net.link("X.pin kb", "E2.evaluate");
    net.scene.run();
    EXPECT_GT(net.real("X.pin kb"), 0.0f);
    EXPECT_EQ(net.real("X.node kb"), 0.0f);
    EXPECT_EQ(net.real("X.graph kb"), 0.0f);
    EXPECT_FALSE(net.at("X.graph kb")->isClean());
}

TEST(PinPurgeMemory, LeavesTheDefaultContent) {
    WireScene net("PinPurgeMemory");
    net.number().resize(100000);
    net.at("S.in")->valueChanged();
    net.scene.run();
    EXPECT_EQ(net.at("S.real")->value()->size(), 1u);
    EXPECT_EQ(net.real("E.evaluate"), 0.0f);
    EXPECT_EQ(net.number().size(), 100000u) << "the constant's own value stays";
    EXPECT_TRUE(net.at("S.real")->isClean());
    EXPECT_EQ(net.messages("X"), "");
}

TEST(NodePurgeMemory, PurgesTheSourcesNode) {
    WireScene net("NodePurgeMemory");
    net.number().resize(100000);
    net.at("S.in")->valueChanged();
    net.scene.run();
    EXPECT_EQ(net.at("S.real")->value()->size(), 1u);
    net.pin("S.in")->setFloatValue(4.0f);
    net.cut("S.real", "X.in");
    net.cut("X.through", "E.evaluate");
    net.link("S.real", "E.evaluate");
    net.scene.run();
    EXPECT_EQ(net.real("E.evaluate"), 4.0f);
}

TEST(GraphPurgeMemory, NextRunComputesEverythingAnew) {
    WireScene net("GraphPurgeMemory");
    net.add("Add", "A");
    net.add("Evaluator", "E2");
    net.link("S.real", "A.in0");
    net.link("S.real", "A.in1");
    net.link("A.result", "E2.evaluate");
    net.pin("S.in")->setFloatValue(4.0f);
    net.node("A")->getCoreNode()->pushWarning("old");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.messages("A"), "");
    EXPECT_EQ(net.real("E.evaluate"), 0.0f) << "purged behind the wire";
    EXPECT_EQ(net.real("E2.evaluate"), 0.0f) << "what was purged is not computed again meanwhile";
    net.cut("S.real", "X.in");
    net.at("S.in")->valueChanged();
    net.cut("X.through", "E.evaluate");
    net.scene.run();
    EXPECT_EQ(net.real("E2.evaluate"), 8.0f);
}

TEST(GraphPurgeMemory, MayStandInALoop) {
    LoopScene net;
    net.add("GraphPurgeMemory", "X", net.node("C"));
    net.cut("C.A.result", "C.IO.y");
    net.link("C.A.result", "C.X.in");
    net.link("C.X.through", "C.IO.y");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.integer("C.F.current index"), 0) << "purged in the last iteration";
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
}

// Threads.

TEST(NumberOfThreads, IsSetForTheCompoundAround) {
    ControlScene net;
    const PrintingHost host;
    Node* compound = net.add("Compound", "C");
    net.add("CompoundInterface", "IO", compound);
    net.add("SetGraphNumberOfThreads", "X", compound);
    net.add("GetGraphNumberOfThreads", "G", compound);
    net.add("Add", "A", compound);
    net.add("Evaluator", "E");
    net.add("Integer", "I", compound);
    net.wall("C.IO", false, "threads");
    net.wall("C.IO", false, "actual");
    net.link("C.I.integer", "C.X.in");
    net.link("C.X.through", "C.G.in");
    net.link("C.G.threads", "C.IO.threads");
    net.link("C.G.actual threads", "C.IO.actual");
    net.add("Evaluator", "E2");
    net.link("C.threads", "E.evaluate");
    net.link("C.actual", "E2.evaluate");
    net.pin("C.X.threads")->setIntValue(0);
    net.scene.run();
    EXPECT_EQ(net.integer("E.evaluate"), 0);
    EXPECT_EQ(net.integer("E2.evaluate"), 12) << "the host's";
    net.pin("C.X.threads")->setIntValue(5);
    net.scene.run();
    EXPECT_EQ(net.integer("E.evaluate"), 5);
    EXPECT_EQ(net.integer("E2.evaluate"), 5);
    EXPECT_EQ(compound->getCoreNode()->getStoredNumberOfThreads(), 5);
    EXPECT_EQ(net.node("C.A")->getCoreNode()->getNumberOfThreadsToUse(), 5);
    net.pin("C.X.threads")->setIntValue(-1);
    net.scene.run();
    EXPECT_EQ(net.messages("C.X"), "2 Input number of threads cannot be negative");
    EXPECT_EQ(net.integer("E.evaluate"), 5) << "unchanged";
}

TEST(NumberOfThreads, AtRootLevelHoldsForTheScene) {
    WireScene net("SetGraphNumberOfThreads");
    net.add("Add", "A", net.add("Compound", "C"));
    net.pin("X.threads")->setIntValue(3);
    net.scene.run();
    EXPECT_EQ(net.node("C.A")->getCoreNode()->getNumberOfThreadsToUse(), 3);
    EXPECT_EQ(net.scene.getScenePrivate()->rootNode.getStoredNumberOfThreads(), 3);
}

TEST(NumberOfThreads, WithNothingSetIsTheHosts) {
    WireScene net("GetGraphNumberOfThreads");
    net.add("Evaluator", "E2");
    net.add("Evaluator", "E3");
    net.link("X.threads", "E2.evaluate");
    net.link("X.actual threads", "E3.evaluate");
    net.scene.run();
    EXPECT_EQ(net.integer("E2.evaluate"), 0);
    EXPECT_EQ(net.integer("E3.evaluate"), 12);
}

TEST(NumberOfThreads, InnerCompoundInheritsTheOuterOnes) {
    ControlScene net;
    const PrintingHost host;
    Node* outer = net.add("Compound", "C");
    Node* inner = net.add("Compound", "D", outer);
    net.add("GetGraphNumberOfThreads", "G", inner);
    outer->setNumberOfThreads(7);
    net.scene.runNode(net.node("C.D.G"));
    EXPECT_EQ(net.integer("C.D.G.threads"), 0);
    EXPECT_EQ(net.integer("C.D.G.actual threads"), 7);
}

// Printing.

struct Printed {
    const char* type;
    const char* output;
    std::function<void(ControlScene&)> set;
    const char* line;
};

void PrintTo(const Printed& printed, std::ostream* out) { *out << printed.type; }

class MessagePrintLines : public testing::TestWithParam<Printed> {};

TEST_P(MessagePrintLines, FollowTheType) {
    WireScene net("MessagePrint", GetParam().type, GetParam().output, "value");
    net.node("X")->setName("Print");
    GetParam().set(net);
    net.scene.run();
    EXPECT_EQ(net.printing.lines, std::vector<std::string>{GetParam().line});
    EXPECT_EQ(net.messages("Print"), "");
}

weft::Numeric& numberOf(ControlScene& net) {
    return static_cast<weft::NumericAttribute*>(net.at("S.in"))->ownNumeric();
}

INSTANTIATE_TEST_SUITE_P(
    Types, MessagePrintLines,
    testing::Values(
        Printed{"Real", "real", [](ControlScene& net) { net.pin("S.in")->setFloatValue(1.5f); },
                "Print: 1.500000"},
        Printed{"Integer", "integer", [](ControlScene& net) { net.pin("S.in")->setIntValue(-7); },
                "Print: -7"},
        Printed{"Integer64", "integer64",
                [](ControlScene& net) { numberOf(net).setValue<int64_t>(0x100000005); },
                "Print: 5"},
        Printed{"Vector3", "vector",
                [](ControlScene& net) {
                    net.pin("S.in")->setVector3Value({1, 2, 3});
                },
                "Print: (1.000000, 2.000000, 3.000000)"},
        Printed{"Color4", "color",
                [](ControlScene& net) {
                    net.pin("S.in")->setColor4Value({1, 0, 0.5f, 1});
                },
                "Print: (1.000000, 0.000000, 0.500000, 1.000000)"},
        Printed{"String", "out",
                [](ControlScene& net) { net.pin("S.in")->setStringValue("100% %s"); },
                "Print: 100% %s"},
        Printed{"Bit", "bit", [](ControlScene& net) { net.pin("S.in")->setBitValue(true); },
                "Print: uknown representation for Bit"}),
    [](const auto& info) { return std::string(info.param.type); });

/// A number of a type that the test chooses.
class NumberSource : public weft::Node {
public:
    NumberSource(weft::NetworkManager* manager, const TM_String& title, weft::Node* parent)
        : Node(manager, title, parent) {
        appendClass<"NumberSource">();
        out = addOutput<weft::NumericAttribute>("out");
    }
    void be(const char* type) { setAttributeAllowedSpecialization(out, type); }
    weft::NumericAttribute* out;
};

TEST(MessagePrint, PrintsMatricesAndQuaternions) {
    ControlScene net;
    PrintingHost host;
    auto* source = static_cast<NumberSource*>(
        net.enter(new GraphNodeOf<NumberSource>("NumberSource"), "S")->getCoreNode());
    net.add("MessagePrint", "Print");
    net.add("Evaluator", "E");
    source->be("Matrix4");
    net.link("S.out", "Print.value");
    net.link("Print.through", "E.evaluate");
    net.scene.run();
    ASSERT_EQ(host.lines.size(), 1u);
    EXPECT_EQ(host.lines[0],
              "Print: ( 1.000000 0.000000 0.000000 0.000000, 0.000000 1.000000 0.000000 0.000000, "
              "0.000000 0.000000 1.000000 0.000000, 0.000000 0.000000 0.000000 1.000000 )");
    net.cut("S.out", "Print.value");
    source->be("Quaternion");
    net.link("S.out", "Print.value");
    source->out->ownNumeric().setValue<weft::Quaternion<float>>({1, 2, 3, 4});
    net.scene.run();
    EXPECT_EQ(host.lines.back(), "Print: (4.000000, 1.000000, 2.000000, 3.000000)");
}

TEST(MessagePrint, WithoutAValueOrATypePrintsWhatThereIs) {
    ControlScene net;
    PrintingHost host;
    net.add("MessagePrint", "Print");
    net.add("Evaluator", "E");
    net.link("Print.through", "E.evaluate");
    net.scene.run();
    EXPECT_EQ(host.lines, std::vector<std::string>{"Print: "});
    auto* source = static_cast<NumberSource*>(
        net.enter(new GraphNodeOf<NumberSource>("NumberSource"), "S")->getCoreNode());
    net.link("S.out", "Print.value");
    net.scene.run();
    EXPECT_EQ(host.lines.back(), "Print: " + source->out->value()->asString());
}

TEST(MessagePrint, PrintsTheFirstElementOnce) {
    WireScene net("MessagePrint", "Real", "real", "value");
    numberOf(net).setValues<float>({3, 4, 5});
    net.scene.run();
    EXPECT_EQ(net.printing.lines, std::vector<std::string>{"X: 3.000000"});
}

} // namespace
} // namespace control_tests
