// SPDX-License-Identifier: Apache-2.0
// Tests of nodes: lists of ports and children, declarations, updates, presets, threads, teardown.
#include "core/node.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/callback_log.h"
#include "support/net.h"
#include "support/recording_host.h"
#include "test_nodes.h"

using namespace weft;
using support::CallbackLog;
using support::Net;
using support::RecordingHost;
using test_nodes::PassNode;
using test_nodes::ScriptNode;

namespace {

std::string joined(const Array<TM_String>& names) {
    std::string text;
    for (const TM_String& name : names) text += (text.empty() ? "" : " ") + name;
    return text;
}

} // namespace

TEST(Node, StartsAsStated) {
    Net net;
    const Node* node = net.add<Node>("N");
    EXPECT_EQ(node->refInputAttributes().size(), 0u);
    EXPECT_EQ(node->refOutputAttributes().size(), 0u);
    EXPECT_EQ(node->refDynamicAttributes().size(), 0u);
    EXPECT_EQ(node->refNodes().size(), 0u);
    EXPECT_FALSE(node->isInvalid());
    EXPECT_TRUE(node->isValid());
    EXPECT_EQ(node->invalidityMessage(), "");
    EXPECT_TRUE(node->updateEnabled());
    EXPECT_FALSE(node->allowDynamicAttributes());
    EXPECT_EQ(node->enabledSpecializationPreset(), "none");
    EXPECT_EQ(node->getDescription(), "");
    EXPECT_EQ(node->getStoredNumberOfThreads(), 0);
    EXPECT_EQ(node->getThreadingModeHint(), 0);
    EXPECT_FALSE(node->isUpdating());
    EXPECT_EQ(node->getLastUpdateTime(), 0.0);
    EXPECT_TRUE(net.root->isRoot());
    EXPECT_FALSE(node->isRoot());
    EXPECT_EQ(node->asScript(), "N Node");
}

// Ports.

TEST(NodePorts, StandInOrderOfAddition) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    node->out("x");
    node->in("a");
    node->in("b");
    node->out("y");
    EXPECT_EQ(Net::namesOf(node->refInputAttributes()), "N.a N.b");
    EXPECT_EQ(Net::namesOf(node->refOutputAttributes()), "N.x N.y");
    EXPECT_EQ(Net::namesOf(node->children()), "N.x N.a N.b N.y");
    Array<Attribute*> list{net.at("N.a")};
    node->attributes(list);
    EXPECT_EQ(Net::namesOf(list), "N.a N.b N.x N.y");
    node->inputAttributes(list);
    EXPECT_EQ(Net::namesOf(list), "N.a N.b");
    node->outputAttributes(list);
    EXPECT_EQ(Net::namesOf(list), "N.x N.y");
    node->dynamicAttributes(list);
    EXPECT_EQ(list.size(), 0u);
    EXPECT_EQ(node->inputAttributeAt(1), net.at("N.b"));
    EXPECT_EQ(node->outputAttributeAt(0), net.at("N.x"));
    EXPECT_EQ(node->findAttribute("nothing"), nullptr);
    EXPECT_EQ(node->findNode("a"), nullptr); // an attribute of that name is no node
}

TEST(NodePorts, AddingAgainChangesNothing) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    Attribute* a = node->in("a");
    CallbackLog log;
    node->addInputAttribute(a);
    EXPECT_EQ(node->refInputAttributes().size(), 1u);
    EXPECT_EQ(a->refCount(), 1);
    EXPECT_EQ(log.takeAll(), "");
}

TEST(NodePorts, DirectionFlagsExcludeEachOther) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    Attribute* a = node->in("a");
    EXPECT_TRUE(a->isInput());
    EXPECT_FALSE(a->isOutput());
    node->addOutputAttribute(a);
    EXPECT_FALSE(a->isInput());
    EXPECT_TRUE(a->isOutput());
    EXPECT_EQ(node->refInputAttributes().size(), 0u);
    EXPECT_EQ(Net::namesOf(node->refOutputAttributes()), "N.a");
    EXPECT_EQ(a->refCount(), 1);
    node->removeAttribute(a);
    EXPECT_EQ(node->refOutputAttributes().size(), 0u);
}

TEST(NodePorts, AreTakenOverFromAnotherNode) {
    Net net;
    auto* from = net.add<ScriptNode>("from");
    auto* to = net.add<ScriptNode>("to");
    Attribute* a = from->in("a");
    CallbackLog log;
    to->addOutputAttribute(a);
    EXPECT_EQ(log.takeAll(), "removeAttribute from a, addOutput to a");
    EXPECT_EQ(a->parent(), to);
    EXPECT_EQ(from->refInputAttributes().size(), 0u);
    EXPECT_EQ(from->children().size(), 0u);
    EXPECT_EQ(to->findAttribute("a"), a);
    EXPECT_EQ(a->refCount(), 1);
}

TEST(NodePorts, RemovalTellsAndReleases) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    node->setAllowDynamicAttributes(true);
    Attribute* a = node->in("a");
    node->addDynamicAttribute(a);
    const Retained<Attribute> kept(a);
    CallbackLog log;
    node->removeAttribute(a);
    EXPECT_EQ(log.takeAll(), "removeAttribute N a");
    EXPECT_EQ(a->parent(), nullptr);
    EXPECT_EQ(a->refCount(), 1);
    EXPECT_EQ(node->refDynamicAttributes().size(), 0u);
    node->removeAttribute(a);
    EXPECT_EQ(log.takeAll(), "");
    net.manager.setMonitoring(false);
    node->addInputAttribute(a);
    node->removeAttribute(a);
    EXPECT_EQ(log.takeAll(), "");
}

TEST(NodePorts, EvaluateOutputIsOfThatTypeAlone) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    auto* out = node->out<EvaluateAttribute>("out");
    auto* in = node->in<EvaluateAttribute>("in");
    EXPECT_EQ(net.types("N.out"), "Evaluate");
    EXPECT_EQ(out->allowedSpecializations(), SpecializationList{"Evaluate"});
    EXPECT_EQ(in->specializations().size(), 68u);
    EXPECT_EQ(net.refusal("N.out", "N.in"), "");
}

TEST(DynamicPorts, OnlyWhereAllowedOnlyOwnAndOnlyOnce) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    auto* other = net.add<ScriptNode>("other");
    Attribute* a = node->in("a");
    node->addDynamicAttribute(a);
    EXPECT_EQ(node->refDynamicAttributes().size(), 0u);
    node->setAllowDynamicAttributes(true);
    EXPECT_TRUE(node->allowDynamicAttributes());
    node->addDynamicAttribute(a);
    node->addDynamicAttribute(a);
    node->addDynamicAttribute(other->in("b"));
    EXPECT_EQ(Net::namesOf(node->refDynamicAttributes()), "N.a");
    const Retained<Attribute> unlisted(new NumericAttribute(&net.manager, "u", node));
    node->addDynamicAttribute(unlisted.get());
    EXPECT_EQ(node->refDynamicAttributes().size(), 1u);
}

// Children.

TEST(NodeChildren, AreAddedOnceAndTold) {
    Net net;
    CallbackLog log;
    auto* node = new Node(&net.manager, "N", nullptr);
    net.root->addNode(node);
    EXPECT_EQ(log.takeAll(), "addNode root N");
    EXPECT_EQ(node->parent(), net.root);
    EXPECT_EQ(node->refCount(), 1);
    net.root->addNode(node);
    EXPECT_EQ(log.takeAll(), "");
    EXPECT_EQ(node->refCount(), 1);
    EXPECT_TRUE(net.root->containsNode(node));
    EXPECT_FALSE(net.root->containsNode(nullptr));
    EXPECT_FALSE(node->containsNode(net.root));
    Array<Node*> list;
    net.root->nodes(list);
    EXPECT_EQ(Net::namesOf(list), "N");
    EXPECT_EQ(net.root->findAttribute("N"), nullptr);
}

TEST(NodeChildren, RemovalClearsTheParentAndTells) {
    Net net;
    Node* node = net.add<Node>("N");
    const Retained<Node> kept(node);
    CallbackLog log;
    net.root->removeNode(node);
    EXPECT_EQ(log.takeAll(), "removeNode root N");
    EXPECT_EQ(node->parent(), nullptr);
    EXPECT_EQ(node->refCount(), 1);
    net.root->removeNode(node);
    EXPECT_EQ(log.takeAll(), "");
}

TEST(NodeChildren, ReparentAddsFirstAndRemovesThen) {
    Net net;
    Node* a = net.add<Node>("a");
    Node* b = net.add<Node>("b");
    Node* node = new Node(&net.manager, "N", a);
    a->addNode(node);
    CallbackLog log;
    node->reparent(a);
    EXPECT_EQ(log.takeAll(), "");
    node->reparent(b);
    EXPECT_EQ(log.takeAll(), "addNode b N, removeNode a N");
    EXPECT_EQ(node->parent(), b);
    EXPECT_EQ(node->refCount(), 1);
    EXPECT_EQ(a->refNodes().size(), 0u);
    const Retained<Node> kept(node);
    node->reparent(nullptr);
    EXPECT_EQ(node->parent(), nullptr);
    EXPECT_EQ(b->refNodes().size(), 0u);
    node->reparent(a);
    EXPECT_EQ(a->findNode("N"), node);
}

// Declarations.

TEST(Affects, OnlyFromOwnToOwnOutputsAndOnce) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    Attribute* a = node->in("a");
    Attribute* b = node->in("b");
    Attribute* x = node->out("x");
    Attribute* foreign = net.add<ScriptNode>("M")->out("x");
    node->setAttributeAffect(a, b); // b is no output
    node->setAttributeAffect(a, foreign);
    node->setAttributeAffect(foreign, x);
    node->setAttributeAffect(nullptr, x);
    node->setAttributeAffect(a, nullptr);
    node->setAttributeAffect(x, x);
    EXPECT_EQ(a->affects().size(), 0u);
    EXPECT_EQ(x->affectedBy().size(), 0u);
    node->setAttributeAffectPublic(a, x);
    node->setAttributeAffectPublic(a, x);
    EXPECT_EQ(Net::namesOf(a->affects()), "N.x");
    EXPECT_EQ(Net::namesOf(x->affectedBy()), "N.a");
    const Retained<Attribute> unlisted(new NumericAttribute(&net.manager, "u", node));
    node->setAttributeAffect(unlisted.get(), x);
    EXPECT_EQ(x->affectedBy().size(), 1u);
}

TEST(Affects, OneThatClosesALoopIsIgnored) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    Attribute* x = node->out("x");
    Attribute* y = node->out("y");
    node->setAttributeAffect(x, y);
    node->setAttributeAffect(y, x);
    EXPECT_EQ(y->affects().size(), 0u);
    EXPECT_EQ(Net::namesOf(x->affects()), "N.y");
}

TEST(Affects, ByAllInputsOfAllOutputs) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    for (const char* name : {"a", "b"}) node->in(name);
    for (const char* name : {"x", "y", "z"}) node->out(name);
    node->setAttributeAffectedByAllInputs(net.at("N.x"));
    EXPECT_EQ(Net::namesOf(net.at("N.x")->affectedBy()), "N.a N.b");
    EXPECT_EQ(net.at("N.y")->affectedBy().size(), 0u);
    node->setAttributeAffectsAllOutputs(net.at("N.b"));
    EXPECT_EQ(Net::namesOf(net.at("N.b")->affects()), "N.x N.y N.z");
    EXPECT_EQ(Net::namesOf(net.at("N.a")->affects()), "N.x");
    node->setAttributeAffectAllOutputsByAllInputs();
    EXPECT_EQ(Net::namesOf(net.at("N.a")->affects()), "N.x N.y N.z");
    EXPECT_EQ(Net::namesOf(net.at("N.z")->affectedBy()), "N.b N.a");
}

TEST(CleanFlag, IsSetForOwnAttributesOnly) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a"}, {});
    net.add<ScriptNode>("M")->ports({"a"}, {});
    CallbackLog log;
    node->setAttributeIsClean(net.at("N.a"), true);
    node->setAttributeIsCleanPublic(net.at("M.a"), true);
    node->setAttributeIsClean(nullptr, true);
    EXPECT_EQ(net.clean(), "N.a");
    EXPECT_EQ(log.takeAll(), "");
    node->setAttributeIsClean(net.at("N.a"), false);
    EXPECT_EQ(net.clean(), "");
}

TEST(Validity, IsStoredWithItsText) {
    Net net;
    Node* node = net.add<Node>("N");
    node->setIsInvalid(true, "no license");
    EXPECT_TRUE(node->isInvalid());
    EXPECT_FALSE(node->isValid());
    EXPECT_EQ(node->invalidityMessage(), "no license");
    node->setIsInvalid(false, "");
    EXPECT_TRUE(node->isValid());
    EXPECT_EQ(node->invalidityMessage(), "");
}

// Updates.

TEST(DoUpdate, NodeAndParentAreUpdatingMeanwhile) {
    Net net;
    auto* outer = net.add<ScriptNode>("outer");
    auto* inner = new ScriptNode(&net.manager, "inner", outer);
    outer->addNode(inner);
    inner->out("x");
    bool inside = false;
    inner->onUpdate = [&](Attribute*) {
        inside = inner->isUpdating() && outer->isUpdating() && !net.root->isUpdating();
    };
    inner->doUpdate(inner->outputAttributeAt(0));
    EXPECT_TRUE(inside);
    EXPECT_FALSE(inner->isUpdating());
    EXPECT_FALSE(outer->isUpdating());
    EXPECT_FALSE(inner->outputAttributeAt(0)->isClean()); // no clean test and no mark
}

TEST(DoUpdate, FlagsAreRestoredNotCleared) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({}, {"x", "y"});
    bool between = false;
    node->onUpdate = [&](Attribute* asked) {
        if (asked->name() != "x") return;
        node->doUpdate(net.at("N.y"));
        between = node->isUpdating() && net.root->isUpdating();
    };
    node->doUpdate(net.at("N.x"));
    EXPECT_TRUE(between);
    EXPECT_FALSE(node->isUpdating());
}

TEST(DoUpdate, ExceptionRestoresTheFlagsAndNamesTheNode) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({}, {"x"});
    node->onUpdate = [](Attribute*) { throw 5; };
    CallbackLog log;
    EXPECT_THROW(node->doUpdate(net.at("N.x")), int);
    EXPECT_EQ(log.take("update"), "");
    EXPECT_FALSE(node->isUpdating());
    EXPECT_FALSE(net.root->isUpdating());
    EXPECT_EQ(net.manager.failedNodeId(), node->id());
}

TEST(DoUpdate, IsToldWithItsTimeWhileMonitoring) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({}, {"x"});
    CallbackLog log;
    node->doUpdate(net.at("N.x"));
    EXPECT_EQ(log.takeAll(), "run N x, update N x");
    EXPECT_GE(log.updateSeconds, 0.0);
    Callbacks::nobodyListens = [] { return true; };
    node->doUpdate(net.at("N.x"));
    EXPECT_EQ(log.takeAll(), "run N x");
    Callbacks::nobodyListens = nullptr;
    net.manager.setMonitoring(false);
    node->doUpdate(net.at("N.x"));
    EXPECT_EQ(log.takeAll(), "run N x");
}

TEST(Sums, SizesOfAllPortsAndSumsOfOutputs) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a", "b"}, {"x"});
    for (const char* path : {"N.a", "N.x"}) {
        node->setAttributeAllowedSpecializations(net.at(path), test_nodes::realOnly());
    }
    auto& a = static_cast<NumericAttribute*>(net.at("N.a"))->ownNumeric();
    auto& x = static_cast<NumericAttribute*>(net.at("N.x"))->ownNumeric();
    a.resize(100);
    x.resize(10);
    EXPECT_EQ(node->checkSum(), 266u);
    EXPECT_EQ(node->estimatedSize(),
              a.estimatedSize() + x.estimatedSize() + net.at("N.b")->value()->estimatedSize());
    node->purge();
    EXPECT_EQ(a.size(), 100u);
    EXPECT_EQ(x.size(), 1u);
}

TEST(DebugInfo, NamesTheNodeAndItsAttributes) {
    Net net;
    auto* node = net.add<ScriptNode>("N");
    node->in<Attribute>("a");
    node->out<Attribute>("x");
    EXPECT_EQ(node->debugInfo(), "node: N\nlast update took: secs:0, millisecs: 0\nattributes:\n" +
                                     net.at("N.a")->debugInfo() + net.at("N.x")->debugInfo());
}

// Presets.

TEST(Presets, AreListedInOrderThenNone) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a", "b"}, {"x"});
    Array<TM_String> names;
    node->specializationPresets(names);
    EXPECT_EQ(joined(names), "none");
    node->setSpecializationPreset("Vector", net.at("N.a"), "Vector3");
    node->setSpecializationPreset("Number", net.at("N.a"), "Real");
    node->setSpecializationPreset("Number", net.at("N.x"), "Integer");
    node->specializationPresets(names);
    EXPECT_EQ(joined(names), "Number Vector none");
}

TEST(Presets, OverrideWhatTheyMentionAndNoneWidensAgain) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a", "b"}, {"x"});
    node->setSpecializationPreset("Number", net.at("N.a"), "Real");
    node->setSpecializationPreset("Number", net.at("N.x"), "Integer");
    CallbackLog log;
    node->enableSpecializationPreset("Number");
    EXPECT_EQ(log.take("types"), "N.a, N.x");
    EXPECT_EQ(node->enabledSpecializationPreset(), "Number");
    EXPECT_EQ(net.types("N.a"), "Real");
    EXPECT_EQ(net.types("N.x"), "Integer");
    EXPECT_EQ(net.at("N.b")->specializations().size(), 7u);
    EXPECT_EQ(net.at("N.a")->specializationOverride(), SpecializationList{"Real"});
    EXPECT_EQ(static_cast<NumericAttribute*>(net.at("N.a"))->ownNumeric().type(),
              NumericType::real);
    node->enableSpecializationPreset("none");
    EXPECT_EQ(log.take("types"), "N.a, N.b, N.x");
    EXPECT_EQ(node->enabledSpecializationPreset(), "none");
    EXPECT_EQ(net.at("N.a")->specializations().size(), 7u);
    EXPECT_TRUE(net.at("N.a")->specializationOverride().empty());
}

TEST(Presets, UnknownAndRepeatedNamesChangeNothing) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a"}, {});
    node->setSpecializationPreset("Number", net.at("N.a"), "Real");
    CallbackLog log;
    node->enableSpecializationPreset("Other");
    EXPECT_EQ(node->enabledSpecializationPreset(), "none");
    EXPECT_EQ(log.takeAll(), "");
    node->enableSpecializationPreset("Number");
    log.takeAll();
    node->enableSpecializationPreset("Number");
    EXPECT_EQ(log.takeAll(), "");
    node->enableSpecializationPreset("none");
    log.takeAll();
    node->enableSpecializationPreset("none"); // runs each time
    EXPECT_EQ(log.take("types"), "N.a");
}

TEST(Presets, SwitchingLeavesWhatTheNewOneDoesNotMention) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a", "b"}, {});
    node->setSpecializationPreset("One", net.at("N.a"), "Real");
    node->setSpecializationPreset("Two", net.at("N.b"), "Integer");
    node->enableSpecializationPreset("One");
    node->enableSpecializationPreset("Two");
    EXPECT_EQ(net.types("N.a"), "Real");
    EXPECT_EQ(net.types("N.b"), "Integer");
}

TEST(Presets, NeighboursFollowOnlyWherePropagated) {
    for (const bool propagates : {false, true}) {
        Net net;
        auto* node = net.add<ScriptNode>("N")->ports({"a"}, {"x"});
        net.add<ScriptNode>("M")->ports({"in"}, {});
        net.link("N.x", "M.in");
        node->setPropagatesPresets(propagates);
        node->setSpecializationPreset("Number", net.at("N.x"), "Real");
        node->enableSpecializationPreset("Number");
        EXPECT_EQ(net.types("M.in") == "Real", propagates);
        EXPECT_TRUE(node->updateAttributeSpecialization(net.at("N.x")));
        EXPECT_EQ(net.types("M.in"), "Real");
    }
}

// Threads.

TEST(Threads, OwnSettingThenTheNearestAncestorsThenTheHosts) {
    RecordingHost host;
    host.threads = 6;
    Net net;
    auto* outer = net.add<ScriptNode>("outer");
    auto* inner = new ScriptNode(&net.manager, "inner", outer);
    outer->addNode(inner);
    EXPECT_EQ(inner->getNumberOfThreadsToUse(), 6);
    net.root->setNumberOfThreads(3);
    EXPECT_EQ(inner->getNumberOfThreadsToUse(), 3);
    outer->setNumberOfThreads(4);
    EXPECT_EQ(inner->getNumberOfThreadsToUse(), 4);
    inner->setNumberOfThreads(1);
    EXPECT_EQ(inner->getNumberOfThreadsToUse(), 1);
    EXPECT_EQ(inner->getStoredNumberOfThreads(), 1);
    inner->setNumberOfThreads(0);
    EXPECT_EQ(inner->getNumberOfThreadsToUse(), 4);
}

TEST(Threads, HintTellsHowANodeThreads) {
    Net net;
    Node* node = net.add<Node>("N");
    node->setThreadingModeHintInternal();
    EXPECT_EQ(node->getThreadingModeHint(), 1);
    node->setThreadingModeHintByElement();
    EXPECT_EQ(node->getThreadingModeHint(), 2);
    node->setThreadingModeHint(0);
    EXPECT_EQ(node->getThreadingModeHint(), 0);
}

// Teardown.

TEST(NodeTeardown, IsToldInOrder) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a", "b"}, {"x"});
    for (const char* name : {"one", "two"}) {
        node->addNode(new Node(&net.manager, name, node));
    }
    const Retained<Node> kept(node);
    CallbackLog log;
    node->deleteIt();
    EXPECT_EQ(log.takeAll(), "deleteIt N, removeNode root N, removeNode N one, removeNode N two, "
                             "removeAttribute N a, deleted a, removeAttribute N b, deleted b, "
                             "removeAttribute N x, deleted x");
    EXPECT_TRUE(node->isDeleted());
    EXPECT_EQ(node->parent(), nullptr);
    EXPECT_EQ(node->children().size(), 0u);
    EXPECT_EQ(net.root->refNodes().size(), 0u);
    EXPECT_EQ(node->refCount(), 1);
    node->deleteIt();
    EXPECT_EQ(log.takeAll(), "");
}

TEST(NodeTeardown, LastReferenceTellsOfItsAttributesOnly) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a"}, {});
    node->addNode(new Node(&net.manager, "child", node));
    CallbackLog log;
    net.root->removeNode(node);
    EXPECT_EQ(log.takeAll(), "removeNode root N, deleted a");
}

TEST(NodeTeardown, OneThatOnlyItsParentHoldsIsGone) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a"}, {"x"});
    const int32_t id = node->id();
    node->deleteIt();
    EXPECT_EQ(net.manager.findObject(id), nullptr);
}

TEST(NodeTeardown, OneThatNobodyHoldsIsLeftToItsMaker) {
    NetworkManager manager;
    auto* node = new Node(&manager, "N", nullptr);
    node->deleteIt();
    EXPECT_TRUE(node->isDeleted());
    delete node;
}

TEST(NodeTeardown, AttributesThatAreHeldOutsideLiveOn) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a"}, {"x"});
    net.add<ScriptNode>("M")->ports({"in"}, {});
    net.link("N.x", "M.in");
    const Retained<Attribute> kept(net.at("N.x"));
    node->deleteIt();
    EXPECT_FALSE(kept->isDeleted());
    EXPECT_EQ(kept->parent(), nullptr);
    EXPECT_EQ(net.at("M.in")->source(), kept.get());
    net.at("M.in")->pull();
    EXPECT_TRUE(net.at("M.in")->isClean());
    kept->deleteIt();
    EXPECT_EQ(net.at("M.in")->source(), nullptr);
}

TEST(NodeTeardown, NodesMayGoInAnyOrder) {
    int order[] = {0, 1, 2, 3};
    const char* const names[] = {"A", "B", "C", "D"};
    do {
        for (const bool tearingDown : {false, true}) {
            Net net;
            for (const char* name : names) {
                auto* node = net.add<ScriptNode>(name)->ports({"in", "other"}, {"out"});
                node->addAttributeSpecializationLink(node->findAttribute("in"),
                                                     node->findAttribute("out"));
            }
            net.link("A.out", "B.in");
            net.link("B.out", "C.in");
            net.link("A.out", "C.other");
            net.link("C.out", "D.in");
            net.setAllClean(true);
            net.manager.setTearingDown(tearingDown);
            for (const int which : order) net.node(names[which])->deleteIt();
            EXPECT_EQ(net.all().size(), 0u);
        }
    } while (std::next_permutation(std::begin(order), std::end(order)));
}

TEST(NodeTeardown, ARemovedPortMayTakeAnotherAlong) {
    Net net;
    auto* node = net.add<ScriptNode>("N")->ports({"a", "b", "c"}, {"x"});
    static Node* current;
    current = node;
    CallbackLog log;
    Callbacks::_removeAttributeCallback = [](Node*, Attribute* a) {
        if (a->name() != "a") return;
        if (Attribute* c = current->findAttribute("c")) c->deleteIt();
    };
    node->deleteIt();
    EXPECT_EQ(net.all().size(), 0u);
}

TEST(NodeTeardown, ALargeCompoundGoesFast) {
    Net net;
    auto* compound = net.add<ScriptNode>("C");
    net.manager.setMonitoring(false);
    for (int i = 0; i < 50000; ++i) {
        compound->addNode(new Node(&net.manager, "n", nullptr));
    }
    EXPECT_EQ(compound->refNodes().size(), 50000u);
    compound->deleteIt();
    EXPECT_EQ(net.root->refNodes().size(), 0u);
}
