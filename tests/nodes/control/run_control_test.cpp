// SPDX-License-Identifier: Apache-2.0
// Nodes that sit in series on a chain: cancelling a run, stopping a simulation, sleeping.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <thread>

#include "control_scene.h"
#include "core/exceptions.h"
#include "nodes/control/simulation_stop.h"

namespace control_tests {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using weft::Attribute;
using weft::SimulationStop;

/// S > X.in, X.through > E, with X of the type in question.
class SeriesScene : public ControlScene {
public:
    explicit SeriesScene(const char* type) {
        add("Integer", "S");
        add(type, "X");
        add("Evaluator", "E");
        link("S.integer", "X.in");
        link("X.through", "E.evaluate");
        pin("S.in")->setIntValue(5);
    }
    void empty(const TM_String& path) {
        auto* attribute = static_cast<weft::BitArrayAttribute*>(at(path));
        attribute->ownBits().resize(0, false);
        attribute->valueChanged();
    }
};

void expectPassesOn(const char* type) {
    SeriesScene net(type);
    EXPECT_EQ(net.updatesOfRun(), "S.integer, X.through, E.evaluate");
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.integer("E.evaluate"), 5);
    EXPECT_EQ(net.at("X.through")->specialization(), "Integer");
    EXPECT_EQ(net.at("E.evaluate")->currentValue(), net.at("S.integer")->value());
    EXPECT_EQ(net.at("X.through")->source(), net.at("X.in"));
    EXPECT_EQ(net.messages("X"), "");
    net.pin("S.in")->setIntValue(6);
    net.scene.run();
    EXPECT_EQ(net.integer("E.evaluate"), 6);
}

std::string described(const char* type) {
    ControlScene net;
    Node* node = net.add(type, "X");
    std::string text = node->getCategory() + ": " + node->getDescription();
    for (const Pin* pin : node->getArrInputPin()) {
        text += "\n> " + pin->getName() + " " + pin->getAttributeClassName() + ", " +
                pin->getFirstSpecialization() + ", " +
                std::to_string(pin->getWeftAttribute()->elementCountRule()) + ", " +
                pin->getDescription();
    }
    for (const Pin* pin : node->getArrOutputPin()) {
        text += "\n< " + pin->getName() + " " + pin->getAttributeClassName() + ", " +
                pin->getDescription();
    }
    return text;
}

std::string affectsOf(const char* type, const char* input) {
    ControlScene net;
    net.add(type, "X");
    std::string text;
    for (const Attribute* output : net.at(TM_String("X.") + input)->affects()) {
        text += output->name();
    }
    return text;
}

// GraphCancel.

TEST(GraphCancel, IsDescribed) {
    EXPECT_EQ(described("GraphCancel"),
              "Execution: This node stops the execution of the current graph, if the input "
              "'condition' is 'true'.\n"
              "> cancel BitArrayAttribute, Bit, 1, True to cancel the graph execution.\n"
              "> quiet BitArrayAttribute, Bit, 1, Set to 'true' to cancel graph execution without "
              "showing any error.\n"
              "> in PassThroughAttribute, , 0, The value that is passed on.\n"
              "< through PassThroughAttribute, The value of 'in', unchanged.");
    EXPECT_EQ(affectsOf("GraphCancel", "cancel"), "through");
    EXPECT_EQ(affectsOf("GraphCancel", "in"), "through");
    EXPECT_EQ(affectsOf("GraphCancel", "quiet"), "");
}

TEST(GraphCancel, PassesOnUnlessCancelled) { expectPassesOn("GraphCancel"); }

TEST(GraphCancel, LoudOneIsReportedOnTheNodeAndToTheHost) {
    SeriesScene net("GraphCancel");
    net.pin("X.cancel")->setBitValue(true);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.messages("X"), "1 Execution cancelled by node");
    EXPECT_EQ(net.host.posts, (std::vector<std::string>{"2286|[X] Execution cancelled by node",
                                                        "2262|Graph execution cancelled"}));
    EXPECT_FALSE(net.at("E.evaluate")->isClean());
    EXPECT_FALSE(net.at("S.integer")->isClean()) << "'in' is not pulled";
}

TEST(GraphCancel, QuietOneLeavesNoTrace) {
    SeriesScene net("GraphCancel");
    net.pin("X.cancel")->setBitValue(true);
    net.pin("X.quiet")->setBitValue(true);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::quietCancel);
    EXPECT_EQ(net.messages("X"), "");
    EXPECT_TRUE(net.host.posts.empty());
    EXPECT_FALSE(net.at("E.evaluate")->isClean());
}

TEST(GraphCancel, QuietAloneCancelsNothing) {
    SeriesScene net("GraphCancel");
    net.pin("X.quiet")->setBitValue(true);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.integer("E.evaluate"), 5);
}

TEST(GraphCancel, ThrowsWhatItsQuietnessSays) {
    SeriesScene net("GraphCancel");
    net.pin("X.cancel")->setBitValue(true);
    weft::Node* node = net.node("X")->getCoreNode();
    try {
        node->doUpdate(net.at("X.through"));
        FAIL() << "not cancelled";
    } catch (const tidemark::sluice::graph::CancelGraphException&) {
        FAIL() << "a loud cancellation is of the general class";
    } catch (const tidemark::sluice::graph::GenericGraphException& exception) {
        EXPECT_EQ(exception.message(), "Graph execution cancelled");
        EXPECT_EQ(exception.code(), 0x80010002u);
        EXPECT_FALSE(exception.isQuiet());
    }
    net.pin("X.quiet")->setBitValue(true);
    try {
        node->doUpdate(net.at("X.through"));
        FAIL() << "not cancelled";
    } catch (const tidemark::sluice::graph::CancelGraphException& exception) {
        EXPECT_EQ(exception.message(), "Graph execution cancelled");
        EXPECT_EQ(exception.code(), 0x80010002u);
        EXPECT_TRUE(exception.isQuiet());
    }
}

TEST(GraphCancel, EmptyConditionIsNoCondition) {
    SeriesScene net("GraphCancel");
    net.empty("X.cancel");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.integer("E.evaluate"), 5);
    EXPECT_EQ(net.messages("X"), "3 size of attribute 'cancel' is different than 1 (0). Extra "
                                 "elements will be ignored");
}

TEST(GraphCancel, FirstBitCounts) {
    SeriesScene net("GraphCancel");
    auto& bits = static_cast<weft::BitArrayAttribute*>(net.at("X.cancel"))->ownBits();
    bits.resize(2, false);
    bits.setBit(1, true);
    net.at("X.cancel")->valueChanged();
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    bits.setBit(0, true);
    bits.setBit(1, false);
    net.at("X.cancel")->valueChanged();
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
}

TEST(GraphCancel, ConditionMayBeComputed) {
    SeriesScene net("GraphCancel");
    net.add("Bit", "B");
    net.link("B.bit", "X.cancel");
    net.scene.run();
    EXPECT_EQ(net.integer("E.evaluate"), 5);
    net.pin("B.in")->setBitValue(true);
    EXPECT_FALSE(net.at("E.evaluate")->isClean()) << "the condition reaches what is behind";
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
}

TEST(GraphCancel, FirstOfTwoEvaluatorsCancels) {
    SeriesScene net("GraphCancel");
    net.add("Integer", "S2");
    net.add("Evaluator", "E2");
    net.link("S2.integer", "E2.evaluate");
    net.pin("X.cancel")->setBitValue(true);
    net.scene.run();
    EXPECT_FALSE(net.at("S2.integer")->isClean());
    EXPECT_FALSE(net.at("E2.evaluate")->isClean());
    net.pin("X.cancel")->setBitValue(false);
    net.scene.run();
    EXPECT_TRUE(net.at("E2.evaluate")->isClean());
}

// SimulationStop.

TEST(SimulationStop, IsDescribed) {
    EXPECT_EQ(
        described("SimulationStop"),
        "Scene: This node stops the current Sluice simulation, if the input 'condition' is "
        "'true'.\nIf currently no simulation is in progress, the graph excecution is stopped.\n"
        "> stop BitArrayAttribute, Bit, 0, True to stop the simulation.\n"
        "> in PassThroughAttribute, , 0, The value that is passed on.\n"
        "< through PassThroughAttribute, The value of 'in', unchanged.");
    EXPECT_EQ(affectsOf("SimulationStop", "stop"), "through");
}

TEST(SimulationStop, PassesOnUnlessAsked) {
    expectPassesOn("SimulationStop");
    SeriesScene net("SimulationStop");
    net.scene.run();
    EXPECT_EQ(net.host.stops, 0);
}

TEST(SimulationStop, AsksTheHostAndLeavesTheChainBehindItAlone) {
    SeriesScene net("SimulationStop");
    net.node("X")->getCoreNode()->refMessages().setVerbosityLevel(4);
    net.scene.run();
    net.pin("S.in")->setIntValue(6);
    net.pin("X.stop")->setBitValue(true);
    EXPECT_EQ(net.updatesOfRun(), "X.through, E.evaluate");
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.host.stops, 1);
    EXPECT_EQ(net.messages("X"), "4 Simulation stopped by node");
    EXPECT_FALSE(net.at("S.integer")->isClean());
    EXPECT_EQ(net.integer("X.through"), 5) << "through stays as it was";
    EXPECT_TRUE(net.host.posts.empty());
}

TEST(SimulationStop, MessageIsAnInfoWhichNodesDoNotKeepAtFirst) {
    SeriesScene net("SimulationStop");
    net.pin("X.stop")->setBitValue(true);
    net.scene.run();
    EXPECT_EQ(net.host.stops, 1);
    EXPECT_EQ(net.messages("X"), "");
}

TEST(SimulationStop, EmptyConditionIsNoCondition) {
    SeriesScene net("SimulationStop");
    net.empty("X.stop");
    net.scene.run();
    EXPECT_EQ(net.host.stops, 0);
    EXPECT_EQ(net.integer("E.evaluate"), 5);
    EXPECT_EQ(net.messages("X"), "");
}

class CountingContext : public weft::SimulationStop_GUI {
public:
    using SimulationStop_GUI::SimulationStop_GUI;
    ~CountingContext() override { ++deleted; }
    void stopSimulation() override { lastNode = node(); }

    static inline int deleted = 0;
    static inline SimulationStop* lastNode = nullptr;
};

TEST(SimulationStop, GoesThroughTheUserInterfaceThatMadeItsContext) {
    SimulationStop::instance_GUI_context_ = [](SimulationStop* node) -> weft::SimulationStop_GUI* {
        return new CountingContext(node);
    };
    CountingContext::deleted = 0;
    {
        SeriesScene net("SimulationStop");
        SimulationStop::instance_GUI_context_ = nullptr;
        net.add("SimulationStop", "later");
        auto* node = static_cast<SimulationStop*>(net.node("X")->getCoreNode());
        EXPECT_NE(node->guiContext(), nullptr);
        EXPECT_EQ(static_cast<SimulationStop*>(net.node("later")->getCoreNode())->guiContext(),
                  nullptr);
        net.pin("X.stop")->setBitValue(true);
        net.scene.run();
        EXPECT_EQ(CountingContext::lastNode, node);
        EXPECT_EQ(net.host.stops, 0);
        EXPECT_EQ(CountingContext::deleted, 0);
    }
    EXPECT_EQ(CountingContext::deleted, 1);
}

// Sleep.

milliseconds timeOfRun(SL_GraphScene& scene) {
    const Clock::time_point begin = Clock::now();
    scene.run();
    return std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
}

TEST(Sleep, IsDescribed) {
    EXPECT_EQ(
        described("Sleep"),
        "Execution: This node freezes the graph evaluation for the input 'milisecs' amount of "
        "time in miliseconds.\n"
        "> milisecs NumericAttribute, Integer, 0, The miliseconds to sleep\n"
        "> in PassThroughAttribute, , 0, The value that is passed on.\n"
        "< through PassThroughAttribute, The value of 'in', unchanged.");
    EXPECT_EQ(affectsOf("Sleep", "milisecs"), "through");
}

TEST(Sleep, PassesOn) { expectPassesOn("Sleep"); }

TEST(Sleep, WaitsAsLongAsToldOncePerRun) {
    SeriesScene net("Sleep");
    net.pin("X.milisecs")->setIntValue(70);
    EXPECT_GE(timeOfRun(net.scene), milliseconds(70));
    EXPECT_EQ(net.integer("E.evaluate"), 5);
    EXPECT_GE(timeOfRun(net.scene), milliseconds(70));
}

TEST(Sleep, ZeroAndNegativeNumbersDoNotWait) {
    for (const int duration : {0, -5, INT_MIN}) {
        SeriesScene net("Sleep");
        net.pin("X.milisecs")->setIntValue(duration);
        EXPECT_LT(timeOfRun(net.scene), milliseconds(2000));
        EXPECT_EQ(net.integer("E.evaluate"), 5);
    }
}

TEST(Sleep, NoNumberIsNoTime) {
    SeriesScene net("Sleep");
    auto* milisecs = static_cast<weft::NumericAttribute*>(net.at("X.milisecs"));
    milisecs->ownNumeric().setValue<int32_t>(60000);
    milisecs->ownNumeric().resize(0);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.integer("E.evaluate"), 5);
}

TEST(Sleep, HostMayForbidIt) {
    SeriesScene net("Sleep");
    net.host.sleeps = false;
    net.pin("X.milisecs")->setIntValue(INT_MAX);
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.integer("E.evaluate"), 5);
}

/// A source that tells another thread that it was computed.
class Announcing : public weft::Node {
public:
    Announcing(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : Node(manager, name, parent) {
        appendClass<"Announcing">();
        addOutput<weft::PassThroughAttribute>("out");
    }
    void update(Attribute*) override { isComputed = true; }

    static inline std::atomic<bool> isComputed = false;
};

TEST(Sleep, ComesAfterItsInputIsComputed) {
    Announcing::isComputed = false;
    ControlScene net;
    net.enter(new GraphNodeOf<Announcing>("Announcing"), "A");
    net.add("Sleep", "X");
    net.add("Evaluator", "E");
    net.link("A.out", "X.in");
    net.link("X.through", "E.evaluate");
    net.pin("X.milisecs")->setIntValue(60000);
    std::thread interrupter([&net] {
        while (!Announcing::isComputed) std::this_thread::sleep_for(milliseconds(1));
        net.scene.requestInterrupt();
    });
    net.scene.run();
    interrupter.join();
    EXPECT_TRUE(net.scene.wasInterrupted());
    EXPECT_TRUE(net.at("A.out")->isClean());
    EXPECT_TRUE(net.at("X.in")->isClean());
    EXPECT_FALSE(net.at("X.through")->isClean());
}

// The best of a few tries counts: the machine may be busy with other things.
TEST(Sleep, AnswersAnInterruptFromAnotherThreadWithinATenthOfASecond) {
    Clock::duration best = std::chrono::hours(1);
    for (int attempt = 0; attempt < 5 && best >= milliseconds(100); ++attempt) {
        SeriesScene net("Sleep");
        net.pin("X.milisecs")->setIntValue(60000);
        Clock::time_point asked;
        std::thread interrupter([&net, &asked] {
            std::this_thread::sleep_for(milliseconds(60));
            asked = Clock::now();
            net.scene.requestInterrupt();
        });
        net.scene.run();
        interrupter.join();
        best = std::min(best, Clock::now() - asked);
        EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::interrupted);
        EXPECT_TRUE(net.scene.wasInterrupted());
        EXPECT_EQ(net.scene.interruptedNodeName(), "root.X");
        EXPECT_EQ(net.host.posts, std::vector<std::string>{"2262|Graph execution cancelled"});
        EXPECT_EQ(net.messages("X"), "");
        net.pin("X.milisecs")->setIntValue(1);
        net.scene.run();
        EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
        EXPECT_EQ(net.integer("E.evaluate"), 5);
    }
    EXPECT_LT(best, milliseconds(100));
}

TEST(Sleep, OutsideARunAnInterruptWaitsForTheNextOne) {
    SeriesScene net("Sleep");
    net.pin("X.milisecs")->setIntValue(1);
    net.scene.requestInterrupt();
    net.at("X.through")->pull();
    EXPECT_TRUE(net.at("X.through")->isClean());
    net.scene.run();
    EXPECT_TRUE(net.scene.wasInterrupted());
}

} // namespace
} // namespace control_tests
