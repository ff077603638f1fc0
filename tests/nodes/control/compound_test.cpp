// SPDX-License-Identifier: Apache-2.0
// Compounds: transparency of their walls, and who computes an output that an iterator feeds.
#include "nodes/control/compound.h"

#include <gtest/gtest.h>

#include <random>

#include "control_scene.h"
#include "core/exceptions.h"
#include "iterators.h"
#include "nodes/control/compound_interface.h"
#include "nodes/values/constants.h"
#include "support/net.h"

namespace control_tests {
namespace {

using weft::Attribute;
using weft::Compound;
using weft::CompoundInterface;

/// A compound "C" at root level with an interface node "IO" in it.
class CompoundNet : public support::Net {
public:
    CompoundNet() : compound(add<Compound>("C")), interface(inside<CompoundInterface>("IO")) {}

    template <typename N>
    N* inside(const TM_String& name) {
        N* made = new N(&manager, name, compound);
        compound->addNode(made);
        return made;
    }

    /// A new output of the compound, fed by a new input of the interface node, which it returns.
    Attribute* addExit() {
        auto* exit = new weft::PassThroughAttribute(&manager, "y", compound);
        compound->addOutputAttribute(exit);
        compound->weft::Node::addDynamicAttribute(exit);
        Attribute* inner = interface->addDynamicInputAttribute();
        connect(inner, exit);
        return inner;
    }
    /// A new input of the compound, which feeds a new output of the interface node.
    Attribute* addEntry() {
        auto* entry = new weft::PassThroughAttribute(&manager, "x", compound);
        compound->addInputAttribute(entry);
        compound->weft::Node::addDynamicAttribute(entry);
        connect(entry, interface->addDynamicOutputAttribute());
        return entry;
    }
    void connect(Attribute* from, Attribute* to) {
        EXPECT_EQ(refusal(from, to), "");
        manager.connect(from, to, nullptr);
    }
    std::string iteratorsOf(Attribute* attribute) {
        weft::Array<Attribute*> found;
        compound->collectIteratorAttributes(attribute, found);
        return namesOf(found);
    }
    Attribute* exit(uint32_t index) { return compound->outputAttributeAt(index); }

    Compound* compound;
    CompoundInterface* interface;
};

TEST(Compound, IsDescribed) {
    CompoundNet net;
    EXPECT_EQ(net.compound->className(), "Compound");
    EXPECT_TRUE(net.compound->allowDynamicAttributes());
    EXPECT_EQ(
        net.compound->getDescription(),
        "This node acts as a container of a subgraph. Thus, an additional layer of abstraction "
        "is provided.\nThe Compound node allows the creation of dynamic input/output pins with "
        "used-defined names.\nIf a pin is added to the Compound, an equivalent interface node "
        "is created within the contained graph.");
}

TEST(Compound, WithoutPinsDoesNothing) {
    ControlScene net;
    net.add("Compound", "C");
    net.add("Evaluator", "E");
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::finished);
    EXPECT_EQ(net.messages("C"), "");
    EXPECT_TRUE(net.host.posts.empty());
    EXPECT_FALSE(static_cast<Compound*>(net.node("C")->getCoreNode())->hasIterator(nullptr));
}

TEST(Compound, InputStraightToOutputGivesTheInputsValueItself) {
    CompoundNet net;
    net.add<weft::IntegerNode>("S");
    Attribute* exit = net.addExit();
    Attribute* entry = net.addEntry();
    net.connect(net.interface->outputAttributeAt(0), exit);
    net.connect(net.at("S.integer"), entry);
    net.set<int32_t>("S.in", 42);

    net.exit(0)->pull();

    EXPECT_EQ(net.exit(0)->currentValue(), net.at("S.integer")->value());
    EXPECT_EQ(weft::valueAs<weft::Numeric>(net.exit(0)->currentValue())->value<int32_t>(), 42);
}

TEST(Compound, OutputThatAnIteratorFeedsIsLeftToIt) {
    CompoundNet net;
    FakeFor* loop = net.inside<FakeFor>("F");
    Through* inner = net.inside<Through>("T");
    net.connect(loop->index, inner->in);
    net.connect(inner->out, net.addExit());

    net.compound->doUpdate(net.exit(0));

    EXPECT_EQ(loop->iterated, std::vector<Attribute*>{net.exit(0)});
    EXPECT_EQ(inner->updates, 0) << "the compound pulled although the iterator takes over";
    EXPECT_TRUE(net.compound->hasIterator(nullptr));
}

TEST(Compound, OutputBesideAnIteratorIsPulled) {
    CompoundNet net;
    FakeFor* loop = net.inside<FakeFor>("F");
    Through* inner = net.inside<Through>("T");
    net.connect(inner->out, net.addExit());
    net.connect(loop->index, net.addExit());

    net.compound->doUpdate(net.exit(0));
    EXPECT_TRUE(loop->iterated.empty());
    EXPECT_EQ(inner->updates, 1);
    EXPECT_TRUE(net.exit(0)->isClean());

    net.compound->doUpdate(net.exit(1));
    EXPECT_EQ(loop->iterated.size(), 1u);
}

TEST(Compound, CleanOutputIsNotPulledAgain) {
    CompoundNet net;
    Through* inner = net.inside<Through>("T");
    net.connect(inner->out, net.addExit());
    net.compound->doUpdate(net.exit(0));
    net.compound->doUpdate(net.exit(0));
    EXPECT_EQ(inner->updates, 1);
}

void expectOneIteratorFailure(CompoundNet& net, Attribute* output) {
    try {
        net.compound->doUpdate(output);
        FAIL() << "two iterator attributes were accepted";
    } catch (const tidemark::sluice::graph::GenericGraphException& exception) {
        EXPECT_EQ(exception.message(),
                  "[root.C] Only one iterator node is allowed per compound level.");
        EXPECT_EQ(exception.code(), 0x80010001u);
        EXPECT_FALSE(exception.isQuiet());
    }
    ASSERT_EQ(net.compound->getMessages().messages().size(), 1u);
    const Message& message = net.compound->getMessages().messages()[0];
    EXPECT_EQ(message, (Message{1, "Only one iterator node is allowed per compound level.", ""}));
}

TEST(Compound, TwoIteratorsOnOneOutputFail) {
    CompoundNet net;
    FakeFor* loop = net.inside<FakeFor>("F");
    FakeKernel* kernel = net.inside<FakeKernel>("K");
    Through* inner = net.inside<Through>("T");
    net.connect(loop->index, inner->in);
    net.connect(kernel->index, inner->in2);
    net.connect(inner->out, net.addExit());
    expectOneIteratorFailure(net, net.exit(0));
    EXPECT_TRUE(loop->iterated.empty());
    EXPECT_TRUE(kernel->iterated.empty());
}

TEST(Compound, TwoIteratorsOnTwoOutputsDoNotFail) {
    CompoundNet net;
    FakeFor* loop = net.inside<FakeFor>("F");
    FakeKernel* kernel = net.inside<FakeKernel>("K");
    net.connect(loop->index, net.addExit());
    net.connect(kernel->index, net.addExit());
    net.compound->doUpdate(net.exit(0));
    net.compound->doUpdate(net.exit(1));
    EXPECT_EQ(loop->iterated, std::vector<Attribute*>{net.exit(0)});
    EXPECT_EQ(kernel->iterated, std::vector<Attribute*>{net.exit(1)});
    EXPECT_TRUE(net.compound->getMessages().isEmpty());
}

TEST(Compound, TwoOutputsOfOneKernelFailLikeTwoIterators) {
    CompoundNet net;
    FakeKernel* kernel = net.inside<FakeKernel>("K");
    Through* inner = net.inside<Through>("T");
    net.connect(kernel->element, inner->in);
    net.connect(kernel->index, inner->in2);
    net.connect(inner->out, net.addExit());
    expectOneIteratorFailure(net, net.exit(0));
}

TEST(Compound, IteratorOfANestedCompoundDoesNotCount) {
    CompoundNet net;
    Compound* nested = net.inside<Compound>("N");
    auto* loop = new FakeFor(&net.manager, "F", nested);
    nested->addNode(loop);
    net.connect(loop->index, net.addExit());
    EXPECT_EQ(net.iteratorsOf(net.exit(0)), "");
    net.compound->doUpdate(net.exit(0));
    EXPECT_TRUE(loop->iterated.empty());
    EXPECT_EQ(loop->updates, 1);
}

TEST(Compound, IteratorOutsideDoesNotCount) {
    CompoundNet net;
    FakeFor* loop = net.add<FakeFor>("F");
    FakeFor* unused = net.inside<FakeFor>("unused");
    net.connect(loop->index, net.addEntry());
    net.connect(net.interface->outputAttributeAt(0), net.addExit());
    net.compound->doUpdate(net.exit(0));
    EXPECT_EQ(loop->updates, 1);
    EXPECT_TRUE(loop->iterated.empty());
    EXPECT_TRUE(unused->iterated.empty());
}

TEST(Compound, ClassDerivedFromAnIteratorIsNone) {
    CompoundNet net;
    DerivedFor* loop = net.inside<DerivedFor>("F");
    net.connect(loop->index, net.addExit());
    EXPECT_FALSE(weft::isIterator(*loop));
    net.compound->doUpdate(net.exit(0));
    EXPECT_TRUE(loop->iterated.empty());
    EXPECT_EQ(loop->updates, 1);
}

TEST(Compound, HasIteratorLooksAtTheFirstOutputOnly) {
    CompoundNet net;
    FakeFor* loop = net.inside<FakeFor>("F");
    Attribute* first = net.addExit();
    net.connect(loop->index, net.addExit());
    EXPECT_FALSE(net.compound->hasIterator(nullptr));
    net.connect(loop->element, first);
    EXPECT_TRUE(net.compound->hasIterator(nullptr));
}

TEST(Compound, IteratorAttributesComeInClosureOrderBehindWhatIsThere) {
    CompoundNet net;
    FakeFor* loop = net.inside<FakeFor>("F");
    FakeKernel* kernel = net.inside<FakeKernel>("K");
    Through* inner = net.inside<Through>("T");
    net.connect(kernel->element, inner->in);
    net.connect(loop->index, inner->in2);
    net.connect(inner->out, net.addExit());
    weft::Array<Attribute*> found{loop->start};
    net.compound->collectIteratorAttributes(net.exit(0), found);
    EXPECT_EQ(net.namesOf(found), "F.start K.element F.index");
    weft::Array<Attribute*> ofIndex;
    net.compound->collectIteratorAttributes(loop->index, ofIndex);
    EXPECT_EQ(net.namesOf(ofIndex), "F.index");
}

// What a compound remembers of its iterators must never differ from looking afresh.
TEST(Compound, IteratorsAreFoundThroughEveryChange) {
    CompoundNet net;
    std::vector<FakeFor*> loops;
    std::vector<Through*> inner;
    for (int i = 0; i < 3; ++i) loops.push_back(net.inside<FakeFor>("F"));
    for (int i = 0; i < 6; ++i) inner.push_back(net.inside<Through>("T"));
    for (int i = 0; i < 3; ++i) net.addExit();
    const auto afresh = [&net](Attribute* attribute) {
        weft::Array<Attribute*> closure;
        weft::Array<Attribute*> found;
        net.manager.collectUpstream(attribute, closure);
        for (Attribute* upstream : closure) {
            const weft::Node* owner = upstream->parent();
            if (!upstream->isOutput() || owner->parent() != net.compound) continue;
            if (owner->className() == "For") found.append(upstream);
        }
        return net.namesOf(found);
    };
    std::mt19937 random(7);
    const auto pick = [&random](const auto& list) { return list[random() % list.size()]; };
    int seen = 0;
    for (int round = 0; round < 2000; ++round) {
        std::vector<Attribute*> targets(net.interface->refInputAttributes().begin(),
                                        net.interface->refInputAttributes().end());
        for (Through* node : inner) targets.insert(targets.end(), {node->in, node->in2});
        std::vector<Attribute*> sources;
        for (Through* node : inner) sources.push_back(node->out);
        for (FakeFor* loop : loops) sources.insert(sources.end(), {loop->index, loop->element});
        switch (random() % 3) {
        case 0:
            net.manager.connect(pick(sources), pick(targets), nullptr);
            break;
        case 1:
            pick(targets)->disconnectSource();
            break;
        default: {
            FakeFor* loop = pick(loops);
            loop->reparent(loop->parent() == net.root ? static_cast<weft::Node*>(net.compound)
                                                      : net.root);
        }
        }
        for (uint32_t i = 0; i < 3; ++i) {
            const std::string expected = afresh(net.exit(i));
            ASSERT_EQ(net.iteratorsOf(net.exit(i)), expected) << "round " << round;
            ASSERT_EQ(net.iteratorsOf(net.exit(i)), expected) << "round " << round;
            if (!expected.empty()) ++seen;
        }
    }
    EXPECT_GT(seen, 100);
}

TEST(Compound, DeletedIteratorIsForgotten) {
    CompoundNet net;
    FakeFor* loop = net.inside<FakeFor>("F");
    net.connect(loop->index, net.addExit());
    EXPECT_EQ(net.iteratorsOf(net.exit(0)), "F.index");
    loop->deleteIt();
    EXPECT_EQ(net.iteratorsOf(net.exit(0)), "");
    net.compound->doUpdate(net.exit(0));
    EXPECT_TRUE(net.exit(0)->isClean());
}

TEST(NodeCompound, AnswersForItsKind) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    EXPECT_TRUE(compound->isCompound());
    EXPECT_FALSE(compound->isInterface());
    EXPECT_FALSE(compound->isEvaluator());
    EXPECT_TRUE(compound->dynamicPinsAllowed());
    EXPECT_FALSE(compound->hasInputPins());
    EXPECT_FALSE(compound->hasOutputPins());
    EXPECT_EQ(compound->getType(), "Compound");
    EXPECT_EQ(compound->getCategory(), "Execution");
}

TEST(NodeCompound, AutoAffectsFollowWhatTheOutputsDependOn) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    net.add("CompoundInterface", "IO", compound);
    net.add("Add", "A", compound);
    net.wall("C.IO", true, "x");
    net.wall("C.IO", true, "unused");
    net.wall("C.IO", false, "y");
    net.link("C.IO.x", "C.A.in0");
    net.link("C.A.result", "C.IO.y");

    compound->setAutoAffects();

    const auto& affects = net.at("C.x")->affects();
    ASSERT_EQ(affects.size(), 1u);
    EXPECT_EQ(affects[0], net.at("C.y"));
    EXPECT_TRUE(net.at("C.unused")->affects().empty());
    compound->setAutoAffects();
    EXPECT_EQ(net.at("C.x")->affects().size(), 1u);
}

TEST(NodeCompound, IsFailedByTwoIteratorsInARun) {
    ControlScene net;
    Node* compound = net.add("Compound", "C");
    net.add("CompoundInterface", "IO", compound);
    net.enter(new GraphNodeOf<FakeKernel>("FakeKernel"), "K", compound);
    net.enter(new GraphNodeOf<Through>("Through"), "T", compound);
    net.add("Evaluator", "E");
    net.wall("C.IO", false, "y");
    net.link("C.K.index", "C.T.in");
    net.link("C.K.element", "C.T.in2");
    net.link("C.T.out", "C.IO.y");
    net.link("C.y", "E.evaluate");
    net.node("C.K")->clearMessages();
    net.scene.run();
    EXPECT_EQ(net.scene.lastOutcome(), RunOutcome::exception);
    EXPECT_EQ(net.messages("C"), "1 Only one iterator node is allowed per compound level.");
    ASSERT_FALSE(net.host.posts.empty());
    EXPECT_EQ(net.host.posts.back(),
              "2262|[root.C] Only one iterator node is allowed per compound level.");
}

} // namespace
} // namespace control_tests
