// SPDX-License-Identifier: Apache-2.0
// Tests of a single attribute: its start, the pull, values, callbacks, and its end.
#include "core/attribute.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include "core/exceptions.h"
#include "support/callback_log.h"
#include "support/net.h"
#include "test_nodes.h"

using namespace weft;
using support::CallbackLog;
using support::Net;
using test_nodes::pulled;
using test_nodes::ScriptNode;

namespace {

NumericAttribute* number(Net& net, const char* path) {
    return static_cast<NumericAttribute*>(net.at(path));
}

} // namespace

TEST(Attribute, FreshOneIsDirtyAndUnconnected) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    auto* a = new NumericAttribute(&net.manager, "x", node);
    EXPECT_FALSE(a->isClean());
    EXPECT_FALSE(a->isInput());
    EXPECT_FALSE(a->isOutput());
    EXPECT_FALSE(a->isPassThrough());
    EXPECT_FALSE(a->notifiesDirty());
    EXPECT_FALSE(a->isCleaning());
    EXPECT_TRUE(a->isEditable());
    EXPECT_TRUE(a->toBeEvaluated());
    EXPECT_TRUE(a->isAttributeObject());
    EXPECT_EQ(a->source(), nullptr);
    EXPECT_EQ(a->destinations().size(), 0u);
    EXPECT_EQ(a->elementCountRule(), 0);
    EXPECT_EQ(a->accumulatedTime(), 0.0);
    EXPECT_EQ(Net::namesOf(a->dirtyChain()), "N.x");
    EXPECT_EQ(a->currentValue(), a->value());
    EXPECT_EQ(a->value()->refCount(), 1);
    EXPECT_EQ(a->refCount(), 0);
    EXPECT_EQ(node->refInputAttributes().size(), 0u);
    delete a;
}

TEST(Attribute, BaseAndPassThroughHaveNoValue) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    const Attribute* plain = node->in<Attribute>("a");
    EXPECT_EQ(plain->value(), nullptr);
    EXPECT_EQ(plain->currentValue(), nullptr);
    EXPECT_EQ(plain->estimatedSize(), 0u);
    EXPECT_EQ(plain->checkSum(), 0u);
    EXPECT_FALSE(plain->isPurePassThrough());
    const Attribute* through = node->in<PassThroughAttribute>("p");
    EXPECT_EQ(through->value(), nullptr);
    EXPECT_TRUE(through->isPassThrough());
    EXPECT_TRUE(through->isPurePassThrough());
    EXPECT_TRUE(through->allowedSpecializations().empty());
}

TEST(Attribute, SizeAndSumAreThoseOfTheValue) {
    Net net;
    auto* a = net.add<ScriptNode>("N")->in("x");
    EXPECT_EQ(a->estimatedSize(), a->value()->estimatedSize());
    EXPECT_EQ(a->checkSum(), 257u);
}

TEST(Attribute, OnlyOutputsArePurged) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"in"}, {"out"});
    node->setAttributeAllowedSpecializations(net.at("N.in"), test_nodes::realOnly());
    node->setAttributeAllowedSpecializations(net.at("N.out"), test_nodes::realOnly());
    number(net, "N.in")->ownNumeric().setValue<float>(3.0f);
    number(net, "N.out")->ownNumeric().setValue<float>(4.0f);
    net.at("N.in")->purge();
    net.at("N.out")->purge();
    EXPECT_EQ(net.seen<float>("N.in"), 3.0f);
    EXPECT_EQ(net.seen<float>("N.out"), 0.0f);
}

TEST(Attribute, DescriptionsAreKeptAndReplaceable) {
    Net net;
    auto* a = net.add<ScriptNode>("N")->in("x");
    EXPECT_EQ(a->getDescription(), "");
    EXPECT_EQ(a->getTypeDescription(), "");
    a->describe("a literal");
    EXPECT_EQ(a->getDescription(), "a literal");
    a->setDescription("a text of its own");
    EXPECT_EQ(a->getDescription(), "a text of its own");
    a->setDescription(a->getDescription() + "!");
    EXPECT_EQ(a->getDescription(), "a text of its own!");
    a->setTypeDescription("what fits");
    EXPECT_EQ(a->getTypeDescription(), "what fits");
    EXPECT_EQ(a->allowedSpecializationsText(), "what fits");
    a->setTypeDescription("");
    EXPECT_EQ(a->allowedSpecializationsText(),
              "\"Integer\", \"Integer64\", \"Real\", \"Vector3\", \"Color4\", \"Quaternion\", "
              "\"Matrix4\"");
}

TEST(Attribute, AllowedTypesAreListedInQuotes) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    auto* a = node->in<Attribute>("a");
    EXPECT_EQ(a->allowedSpecializationsText(), "");
    node->setAttributeAllowedSpecializations(a, SpecializationList{"Integer", "Real"});
    EXPECT_EQ(a->allowedSpecializationsText(), "\"Integer\", \"Real\"");
    node->setAttributeAllowedSpecialization(a, "Mesh");
    EXPECT_EQ(a->allowedSpecializationsText(), "\"Mesh\"");
}

TEST(Attribute, DebugInfoHasItsLines) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.at("A.in")->pull();
    const TM_String text = net.at("A.in")->Attribute::debugInfo();
    EXPECT_EQ(text, "attribute: root.A.in\n"
                    "isClean: 1\n"
                    "last cleaning took: secs:0, millisecs: 0\n"
                    "dirty chain: [in, out]\n"
                    "clean chain: [in] -> in\n");
    EXPECT_NE(net.at("A.in")->debugInfo().find("array size: 1"), TM_String::npos);
}

// The pull.

TEST(Pull, UnconnectedInputBecomesCleanAndNothingComputes) {
    Net net;
    auto* node = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    CallbackLog log;
    net.at("A.in")->pull();
    EXPECT_TRUE(net.at("A.in")->isClean());
    EXPECT_EQ(node->updates, 0);
    EXPECT_EQ(log.takeAll(), "clean A.in");
    EXPECT_FALSE(net.manager.dirtyHold());
    net.at("A.in")->pull();
    EXPECT_EQ(log.takeAll(), "");
}

TEST(Pull, UnconnectedOutputBecomesCleanAndKeepsItsContent) {
    Net net;
    auto* node = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    node->setAttributeAllowedSpecializations(net.at("A.out"), test_nodes::realOnly());
    number(net, "A.out")->ownNumeric().setValue<float>(9.0f);
    net.at("A.out")->pull();
    EXPECT_TRUE(net.at("A.out")->isClean());
    EXPECT_FALSE(net.at("A.in")->isClean());
    EXPECT_EQ(node->updates, 0);
    EXPECT_EQ(net.seen<float>("A.out"), 9.0f);
}

// A.out > B.in, B.out > C.in, and A.in is a constant.
TEST(Pull, GoesUpDepthFirstInTheOrderOfTheReads) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    auto* b = net.add<ScriptNode>("B")->ports({"x", "y"}, {"out"});
    net.add<ScriptNode>("C")->ports({"in"}, {});
    auto* d = net.add<ScriptNode>("D")->ports({"in"}, {"out"});
    a->onUpdate = [&](Attribute*) { a->pullInputs(); };
    d->onUpdate = [&](Attribute*) { d->pullInputs(); };
    // Reads the second input first.
    b->onUpdate = [&](Attribute*) {
        net.at("B.y")->pull();
        net.at("B.x")->pull();
    };
    net.link("A.out", "B.x");
    net.link("D.out", "B.y");
    net.link("B.out", "C.in");
    CallbackLog log;
    net.at("C.in")->pull();
    EXPECT_EQ(log.takeAll(), "run B out, "
                             "run D out, clean D.in, update D out, clean D.out, clean B.y, "
                             "run A out, clean A.in, update A out, clean A.out, clean B.x, "
                             "update B out, clean B.out, clean C.in");
    EXPECT_EQ(net.dirty(), "");
    net.at("C.in")->pull();
    EXPECT_EQ(log.takeAll(), "");
}

TEST(Pull, FiresNothingWithoutMonitoring) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    a->onUpdate = [&](Attribute*) { a->pullInputs(); };
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    net.manager.setMonitoring(false);
    CallbackLog log;
    net.at("B.in")->pull();
    EXPECT_EQ(log.takeAll(), "run A out");
    EXPECT_TRUE(net.at("B.in")->isClean());
    EXPECT_EQ(net.at("A.out")->accumulatedTime(), 0.0);
    EXPECT_EQ(a->getLastUpdateTime(), 0.0);
}

TEST(Pull, DoesNothingUnderDirtyHold) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {});
    net.manager.setDirtyHold(true);
    CallbackLog log;
    net.at("A.in")->pull();
    net.at("A.in")->clean();
    EXPECT_FALSE(net.at("A.in")->isClean());
    EXPECT_EQ(log.takeAll(), "");
    EXPECT_TRUE(net.manager.dirtyHold());
}

TEST(Pull, HoldIsOffWhileTheSourceComputes) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    bool held = true;
    a->onUpdate = [&](Attribute*) { held = net.manager.dirtyHold(); };
    net.at("B.in")->pull();
    EXPECT_FALSE(held);
    EXPECT_FALSE(net.manager.dirtyHold());
}

TEST(Pull, OutputIsCleaningWhileItsNodeUpdates) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    bool cleaning = false;
    a->onUpdate = [&](Attribute* asked) { cleaning = asked->isCleaning(); };
    net.at("B.in")->pull();
    EXPECT_TRUE(cleaning);
    EXPECT_FALSE(net.at("A.out")->isCleaning());
}

TEST(Pull, ExceptionLeavesTheOutputDirtyAndTheNextPullTriesAgain) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    bool throwing = true;
    a->onUpdate = [&](Attribute*) {
        if (throwing) throw std::runtime_error("no");
    };
    EXPECT_THROW(net.at("B.in")->pull(), std::runtime_error);
    EXPECT_FALSE(net.at("A.out")->isCleaning());
    EXPECT_FALSE(net.at("A.out")->isClean());
    EXPECT_FALSE(net.at("B.in")->isClean());
    EXPECT_FALSE(net.manager.dirtyHold());
    EXPECT_FALSE(a->isUpdating());
    EXPECT_FALSE(net.root->isUpdating());
    throwing = false;
    net.at("B.in")->pull();
    EXPECT_EQ(a->updates, 2);
    EXPECT_TRUE(net.at("B.in")->isClean());
}

TEST(Pull, UpdateDisabledKeepsTheOldDataAndMarksClean) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    a->setAttributeAllowedSpecializations(net.at("A.out"), test_nodes::realOnly());
    number(net, "A.out")->ownNumeric().setValue<float>(7.0f);
    net.link("A.out", "B.in");
    a->setUpdateEnabled(false);
    EXPECT_FALSE(a->updateEnabled());
    EXPECT_EQ(pulled(number(net, "B.in")), 7.0f);
    EXPECT_EQ(a->updates, 0);
    EXPECT_TRUE(net.at("A.out")->isClean());
    a->setUpdateEnabledPublic(true);
    net.at("A.out")->markDirty(true);
    net.at("B.in")->pull();
    EXPECT_EQ(a->updates, 1);
}

TEST(Pull, AttributeWithoutNodeBecomesClean) {
    NetworkManager manager;
    auto* from = new NumericAttribute(&manager, "from", nullptr);
    auto* to = new NumericAttribute(&manager, "to", nullptr);
    from->connectTo(to, nullptr);
    to->pull();
    EXPECT_TRUE(to->isClean());
    EXPECT_TRUE(from->isClean());
    delete to;
    delete from;
}

TEST(Pull, OneUpdatePerOutputThatIsAskedFor) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"x", "y", "z"});
    auto* b = net.add<ScriptNode>("B")->ports({"x", "y"}, {});
    net.link("A.x", "B.x");
    net.link("A.y", "B.y");
    CallbackLog log;
    b->pullInputs();
    EXPECT_EQ(log.take("run"), "A x, A y");
    EXPECT_FALSE(net.at("A.z")->isClean());
    // A node that computes all of its outputs at once says so.
    a->onUpdate = [&](Attribute*) {
        a->setAttributeIsClean(net.at("A.x"), true);
        a->setAttributeIsClean(net.at("A.y"), true);
    };
    net.at("A.in")->markDirty(true);
    log.takeAll();
    b->pullInputs();
    EXPECT_EQ(log.take("run"), "A x");
}

TEST(Pull, OnlyAskedUpdatesCountAsAccumulatedTime) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    a->onUpdate = [](Attribute*) { std::this_thread::sleep_for(std::chrono::milliseconds(20)); };
    net.at("B.in")->pull();
    EXPECT_GE(net.at("A.out")->accumulatedTime(), 0.018);
    EXPECT_EQ(net.at("B.in")->accumulatedTime(), 0.0);
    const double once = net.at("A.out")->accumulatedTime();
    net.at("A.in")->markDirty(true);
    net.at("B.in")->pull();
    EXPECT_GE(net.at("A.out")->accumulatedTime(), once + 0.018);
    net.at("A.out")->resetAccumulatedTime();
    EXPECT_EQ(net.at("A.out")->accumulatedTime(), 0.0);
}

// Interrupts.

TEST(Interrupt, EndsARunAtTheNextComputation) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    net.manager.setEvaluating(true);
    net.manager.requestInterrupt();
    EXPECT_THROW(net.at("B.in")->pull(), tidemark::sluice::graph::CancelGraphException);
    EXPECT_EQ(a->updates, 0);
    EXPECT_EQ(net.manager.failedNodeId(), a->id());
    net.manager.clearInterrupt();
    net.manager.forgetFailure();
    net.at("B.in")->pull();
    EXPECT_EQ(a->updates, 1);
    EXPECT_EQ(net.manager.failedNodeId(), 0);
}

TEST(Interrupt, WaitsUntilARunIsInProgress) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    net.manager.requestInterrupt();
    EXPECT_NO_THROW(net.manager.pollInterrupt());
    EXPECT_NO_THROW(net.at("B.in")->pull());
    EXPECT_EQ(a->updates, 1);
    EXPECT_EQ(net.manager.failedNodeId(), 0);
    EXPECT_TRUE(net.manager.isInterrupted());
    net.manager.setEvaluating(true);
    try {
        net.manager.pollInterrupt();
        FAIL() << "no cancellation";
    } catch (const tidemark::sluice::graph::CancelGraphException& cancelled) {
        EXPECT_EQ(cancelled.code(), tidemark::sluice::graph::cancelExceptionCode);
    }
}

TEST(Interrupt, ReachesALoopOnAnotherThread) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    std::atomic<bool> started{false};
    a->onUpdate = [&](Attribute*) {
        started = true;
        for (;;) net.manager.pollInterrupt();
    };
    net.manager.setEvaluating(true);
    std::thread user([&] {
        while (!started) std::this_thread::yield();
        net.manager.requestInterrupt();
    });
    EXPECT_THROW(net.at("B.in")->pull(), tidemark::sluice::graph::CancelGraphException);
    user.join();
    EXPECT_EQ(net.manager.failedNodeId(), a->id());
}

TEST(Failure, InnermostNodeIsRemembered) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    auto* b = net.add<ScriptNode>("B")->ports({"in"}, {"out"});
    net.add<ScriptNode>("C")->ports({"in"}, {});
    net.link("A.out", "B.in");
    net.link("B.out", "C.in");
    a->onUpdate = [](Attribute*) { throw 1; };
    b->onUpdate = [&](Attribute*) { b->pullInputs(); };
    EXPECT_THROW(net.at("C.in")->pull(), int);
    EXPECT_EQ(net.manager.failedNodeId(), a->id());
}

// Element counts.

TEST(ElementCount, WrongCountWarnsOncePerDirtyPullAndKeepsTheValue) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {});
    a->setAttributeAllowedSpecializations(net.at("A.in"), test_nodes::realOnly());
    auto* in = number(net, "A.in");
    in->setElementCountRule(1);
    EXPECT_EQ(in->elementCountRule(), 1);
    in->ownNumeric().setValues<float>({2.0f, 3.0f, 4.0f});
    EXPECT_EQ(pulled(in), 2.0f);
    ASSERT_EQ(a->getMessages().messages().size(), 1u);
    const auto message = a->getMessages().messages()[0];
    EXPECT_EQ(message.level, 3);
    EXPECT_EQ(message.text, "size of attribute 'in' is different than 1 (3). Extra elements will "
                            "be ignored");
    EXPECT_EQ(message.detail, "");
    in->pull(); // clean: no test
    EXPECT_EQ(a->getMessages().messages().size(), 1u);
    in->markDirty(true);
    in->pull();
    EXPECT_EQ(a->getMessages().messages().size(), 2u);
    EXPECT_FALSE(in->checkElementCount());
    EXPECT_EQ(a->getMessages().messages().size(), 3u);
}

TEST(ElementCount, NoElementIsAWrongCountToo) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {});
    a->setAttributeAllowedSpecializations(net.at("A.in"), test_nodes::realOnly());
    number(net, "A.in")->setElementCountRule(1);
    number(net, "A.in")->ownNumeric().resize(0);
    EXPECT_FALSE(net.at("A.in")->checkElementCount());
    EXPECT_EQ(a->getMessages().messages()[0].text,
              "size of attribute 'in' is different than 1 (0). Extra elements will be ignored");
}

TEST(ElementCount, OtherRulesAndSingleElementsAreFine) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {});
    a->setAttributeAllowedSpecializations(net.at("A.in"), test_nodes::realOnly());
    auto* in = number(net, "A.in");
    for (const int rule : {0, 2, -1, 7}) {
        in->setElementCountRule(rule);
        in->ownNumeric().resize(3);
        EXPECT_TRUE(in->checkElementCount()) << rule;
    }
    in->setElementCountRule(1);
    in->ownNumeric().resize(1);
    EXPECT_TRUE(in->checkElementCount());
    EXPECT_TRUE(a->getMessages().isEmpty());
}

TEST(ElementCount, InputsLookAtWhatTheyReadAndOutputsAtTheirOwn) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {"out"});
    for (const char* path : {"A.out", "B.in", "B.out"}) {
        net.node(Net::nameOf(net.at(path)->parent()))
            ->setAttributeAllowedSpecializationsPublic(net.at(path), test_nodes::realOnly());
    }
    number(net, "A.out")->ownNumeric().resize(2);
    net.at("B.in")->setElementCountRule(1);
    EXPECT_TRUE(net.at("B.in")->checkElementCount());
    net.link("A.out", "B.in");
    EXPECT_FALSE(net.at("B.in")->checkElementCount());
    number(net, "B.out")->ownNumeric().resize(4);
    net.at("B.out")->setElementCountRule(1);
    EXPECT_FALSE(net.at("B.out")->checkElementCount());
}

TEST(ElementCount, NoValueIsFalseWithoutAWarning) {
    Net net;
    auto* a = net.add<ScriptNode>("A");
    Attribute* in = a->in<Attribute>("in");
    in->setElementCountRule(1);
    EXPECT_FALSE(in->checkElementCount());
    in->pull();
    EXPECT_TRUE(in->isClean());
    EXPECT_TRUE(a->getMessages().isEmpty());
}

// Changing values.

TEST(ValueChanged, DirtiesDownstreamAndTellsTheNode) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    a->onUpdate = [&](Attribute*) { a->pullInputs(); };
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    net.at("B.in")->pull();
    CallbackLog log;
    net.at("A.in")->valueChanged();
    EXPECT_EQ(net.clean(), "");
    EXPECT_EQ(log.takeAll(), "clean A.in, clean A.in, valueChanged A.in");
}

TEST(ValueChanged, OnADirtyAttributeWalksNothingButTellsTheNode) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.at("A.out")->setClean(true);
    CallbackLog log;
    net.at("A.in")->valueChanged();
    EXPECT_EQ(net.clean(), "A.out");
    EXPECT_EQ(log.takeAll(), "clean A.in, clean A.in, valueChanged A.in");
}

TEST(ValueChanged, DoesNothingDuringARun) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.setAllClean(true);
    net.manager.setEvaluating(true);
    CallbackLog log;
    net.at("A.in")->valueChanged();
    EXPECT_EQ(net.dirty(), "");
    EXPECT_EQ(log.takeAll(), "");
}

TEST(ValueChanged, DoesNothingOnPassThroughs) {
    Net net;
    auto* a = net.add<ScriptNode>("A");
    a->in<PassThroughAttribute>("in");
    net.setAllClean(true);
    CallbackLog log;
    net.at("A.in")->valueChanged();
    EXPECT_EQ(net.dirty(), "");
    EXPECT_EQ(log.takeAll(), "");
}

TEST(ValueChanged, UnderDirtyHoldTellsOnceAndWalksNothing) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.setAllClean(true);
    net.manager.setDirtyHold(true);
    CallbackLog log;
    net.at("A.in")->valueChanged();
    EXPECT_EQ(net.dirty(), "");
    EXPECT_EQ(log.takeAll(), "clean A.in, valueChanged A.in");
}

TEST(ValueChanged, CleanAndChangeWalksEvenFromADirtyAttribute) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.at("A.out")->setClean(true);
    a->setAttributeCleanAndChangeValue(net.at("A.in"));
    EXPECT_EQ(net.clean(), "");
}

TEST(ValueChanged, CleanAndChangeDuringARunLeavesItClean) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.manager.setEvaluating(true);
    a->setAttributeCleanAndChangeValue(net.at("A.out"));
    EXPECT_EQ(net.clean(), "A.out");
}

TEST(MarkDirty, ForceWalksFromADirtyAttribute) {
    Net net;
    net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    net.at("A.out")->setClean(true);
    net.at("A.in")->markDirty(false);
    EXPECT_EQ(net.clean(), "A.out");
    CallbackLog log;
    net.at("A.in")->markDirty(true);
    EXPECT_EQ(net.clean(), "");
    EXPECT_EQ(log.takeAll(), "clean A.in, clean A.in");
}

// Values handed over.

TEST(SetValue, RetainsTheNewAndReleasesTheOld) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->in("x");
    const Retained<Value> old(a->value());
    const Retained<Numeric> fresh(new Numeric(&net.manager));
    a->setValue(fresh.get());
    EXPECT_EQ(a->value(), fresh.get());
    EXPECT_EQ(a->currentValue(), fresh.get());
    EXPECT_EQ(fresh->refCount(), 2);
    EXPECT_EQ(old->refCount(), 1);
    a->setValue(fresh.get());
    EXPECT_EQ(fresh->refCount(), 2);
    a->setValue(nullptr);
    EXPECT_EQ(fresh->refCount(), 1);
    EXPECT_EQ(a->value(), nullptr);
    EXPECT_EQ(a->currentValue(), nullptr);
}

TEST(SetValue, ReachesEveryDestination) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"x", "y"}, {});
    net.link("A.out", "B.x");
    net.link("A.out", "B.y");
    auto* fresh = new Numeric(&net.manager);
    net.at("A.out")->setValue(fresh);
    EXPECT_EQ(net.at("B.x")->currentValue(), fresh);
    EXPECT_EQ(net.at("B.y")->currentValue(), fresh);
    EXPECT_NE(net.at("B.x")->value(), fresh);
}

// An input that feeds an input: what the second reads must never be a value that is gone.
TEST(SetValue, ReachesInputsThatAreFedByInputs) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.add<ScriptNode>("C")->ports({"in"}, {});
    net.link("A.out", "B.in");
    net.link("B.in", "C.in");
    EXPECT_EQ(net.at("C.in")->currentValue(), net.at("A.out")->value());
    auto* fresh = new Numeric(&net.manager);
    net.at("A.out")->setValue(fresh);
    EXPECT_EQ(net.at("C.in")->currentValue(), fresh);
    net.cut("B.in");
    EXPECT_EQ(net.at("C.in")->currentValue(), net.at("B.in")->value());
}

// Teardown.

TEST(AttributeTeardown, LeavesEverythingBehind) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    auto* b = net.add<ScriptNode>("B")->ports({"in"}, {"out"});
    net.add<ScriptNode>("C")->ports({"in"}, {});
    net.link("A.out", "B.in");
    net.link("B.out", "C.in");
    b->addAttributeSpecializationLink(net.at("B.in"), net.at("B.out"));
    Attribute* gone = net.at("B.in");
    const Retained<Attribute> kept(gone);
    gone->deleteIt();
    EXPECT_TRUE(gone->isDeleted());
    EXPECT_EQ(gone->parent(), nullptr);
    EXPECT_EQ(gone->source(), nullptr);
    EXPECT_EQ(gone->value(), nullptr);
    EXPECT_EQ(gone->affects().size(), 0u);
    EXPECT_EQ(gone->specializationLinks().size(), 0u);
    EXPECT_EQ(gone->refCount(), 1);
    EXPECT_EQ(b->refInputAttributes().size(), 0u);
    EXPECT_EQ(net.at("A.out")->destinations().size(), 0u);
    EXPECT_EQ(net.at("B.out")->affectedBy().size(), 0u);
    EXPECT_EQ(net.at("B.out")->specializationLinks().size(), 0u);
    EXPECT_EQ(Net::namesOf(net.at("A.in")->dirtyChain()), "A.in A.out");
    EXPECT_EQ(Net::namesOf(gone->dirtyChain()), "in");
    gone->deleteIt(); // once is enough
    EXPECT_EQ(gone->refCount(), 1);
    (void)a;
}

TEST(AttributeTeardown, IsToldInOrder) {
    Net net;
    net.add<ScriptNode>("A")->ports({}, {"out"});
    auto* b = net.add<ScriptNode>("B");
    auto* through = b->in<Attribute>("in");
    net.add<ScriptNode>("C")->ports({"x", "y"}, {});
    b->setAttributeAllowedSpecializations(through, NumericAttribute::allTypes());
    net.link("A.out", "B.in");
    net.link("B.in", "C.x");
    net.link("B.in", "C.y");
    CallbackLog log;
    through->deleteIt();
    std::string order;
    for (const std::string& line : log.lines) {
        if (line.rfind("clean", 0) == 0 || line.rfind("types", 0) == 0) continue;
        order += (order.empty() ? "" : ", ") + line;
    }
    EXPECT_EQ(order, "deleted B.in, removeAttribute B in, "
                     "connectionChanged A out, disconnected in, "
                     "connectionChanged C x, disconnected C.x, "
                     "connectionChanged C y, disconnected C.y");
}

TEST(AttributeTeardown, OfOneThatNobodyHoldsLeavesItToItsMaker) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    auto* loose = new NumericAttribute(&net.manager, "loose", node);
    loose->deleteIt();
    EXPECT_TRUE(loose->isDeleted());
    delete loose;
}

TEST(AttributeTeardown, HappensWithTheLastReference) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({}, {"out"});
    net.add<ScriptNode>("B")->ports({"in"}, {});
    net.link("A.out", "B.in");
    CallbackLog log;
    Attribute* out = net.at("A.out");
    a->removeAttribute(out);
    EXPECT_NE(log.takeAll().find("deleted out"), std::string::npos);
    EXPECT_EQ(net.at("B.in")->source(), nullptr);
    EXPECT_EQ(net.at("B.in")->currentValue(), net.at("B.in")->value());
    EXPECT_FALSE(net.at("B.in")->isClean());
}

TEST(AttributeTeardown, ListenersAreForgottenOnce) {
    Net net;
    auto* a = net.add<ScriptNode>("A")->ports({"in"}, {"out"});
    Attribute* in = net.at("A.in");
    const Retained<Attribute> kept(in);
    in->setNotifiesDirty(true);
    in->deleteIt();
    in->setNotifiesDirty(false);
    // The count of listeners is right: a new one is heard.
    CallbackLog log;
    net.at("A.out")->setNotifiesDirty(true);
    net.at("A.out")->markDirty(true);
    EXPECT_EQ(log.take("dirtied"), "A.out");
    net.at("A.out")->setNotifiesDirty(false);
    net.at("A.out")->markDirty(true);
    EXPECT_EQ(log.take("dirtied"), "");
    (void)a;
}

TEST(AttributeTeardown, InAnyOrder) {
    const char* const paths[] = {"A.in", "A.out", "B.in", "B.out", "C.in"};
    int order[] = {0, 1, 2, 3, 4};
    do {
        Net net;
        net.add<ScriptNode>("A")->ports({"in"}, {"out"});
        auto* b = net.add<ScriptNode>("B")->ports({"in"}, {"out"});
        net.add<ScriptNode>("C")->ports({"in"}, {});
        net.link("A.out", "B.in");
        net.link("B.out", "C.in");
        b->addAttributeAllowedPassThrough(net.at("B.in"), net.at("B.out"));
        b->addAttributePassThrough(net.at("B.in"), net.at("B.out"));
        b->addAttributeSpecializationLink(net.at("B.in"), net.at("B.out"));
        net.setAllClean(true);
        for (const int which : order) net.at(paths[which])->deleteIt();
        EXPECT_EQ(net.all().size(), 0u);
    } while (std::next_permutation(std::begin(order), std::end(order)));
}
