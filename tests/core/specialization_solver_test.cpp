// SPDX-License-Identifier: Apache-2.0
// Tests of how the types of connected attributes settle, against the narrowing search taken step by
// step as well.
#include "core/specialization_solver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "nodes/values/arithmetic.h"
#include "nodes/values/constants.h"
#include "support/callback_log.h"
#include "support/net.h"
#include "test_nodes.h"

using namespace weft;
using support::CallbackLog;
using support::Net;
using test_nodes::PassNode;
using test_nodes::ScriptNode;

namespace {

constexpr uint32_t always = 1000000; // search groups of any size
constexpr uint32_t never = 0;

SpecializationList afterLink(Net& net, SpecializationList first, SpecializationList second,
                             bool wantFirst) {
    auto* node = net.add<Node>("L");
    node->updateSpecializationLink(nullptr, nullptr, first, second);
    return wantFirst ? first : second;
}

// The search as it is told, on the network as it stands.
class LiteralSearch {
public:
    using Map = std::map<int32_t, SpecializationList>;

    explicit LiteralSearch(Attribute* start) : start_(start) {
        seed(start);
        links();
        Attribute* candidate = find();
        for (int round = 0; candidate; ++round) {
            if (round == 100) {
                settled = false;
                break;
            }
            visited_.clear();
            push(candidate, map[candidate->id()]);
            links();
            candidate = find();
        }
    }

    Map map;
    bool settled = true;

private:
    void seed(Attribute* a) {
        if (!a || map.count(a->id())) return;
        map[a->id()] = a->specializationOverride().empty() ? a->allowedSpecializations()
                                                           : a->specializationOverride();
        group_.push_back(a);
        for (const SpecializationLink& link : a->specializationLinks()) {
            seed(link.first);
            seed(link.second);
        }
        seed(a->source());
        for (Attribute* destination : a->destinations()) seed(destination);
    }
    void links() {
        for (Attribute* a : group_) {
            for (const SpecializationLink& link : a->specializationLinks()) {
                if (!a->parent()) continue;
                a->parent()->updateSpecializationLink(
                    link.first, link.second, map[link.first->id()], map[link.second->id()]);
            }
        }
    }
    Attribute* find() {
        visited_.clear();
        return find(start_, start_, false);
    }
    Attribute* find(Attribute* a, Attribute* previous, bool viaLink) {
        Attribute* candidate = nullptr;
        if (a != previous) {
            const SpecializationList& mine = map[a->id()];
            const SpecializationList& theirs = map[previous->id()];
            if (previous->isPassThrough() && theirs.empty()) {
                candidate = a;
            } else if (!viaLink && mine.hasNameInCommonWith(theirs) &&
                       mine.size() <= theirs.size() && !mine.isSameSet(theirs)) {
                candidate = a;
            }
        }
        if (!visited_.insert(a).second) return candidate;
        const auto look = [&](Attribute* next, bool overLink) {
            if (Attribute* found = find(next, a, overLink)) candidate = found;
        };
        for (const SpecializationLink& link : a->specializationLinks()) {
            if (link.first != a) look(link.first, true);
            if (link.second != a) look(link.second, true);
        }
        if (a->source()) look(a->source(), false);
        for (Attribute* destination : a->destinations()) look(destination, false);
        return candidate;
    }
    void push(Attribute* a, SpecializationList list) {
        SpecializationList& mine = map[a->id()];
        if (a->isPassThrough() && mine.empty()) {
            mine = list;
        } else if (list.hasNameInCommonWith(mine) && !(list == mine)) {
            mine = list.intersectedWith(mine);
        }
        if (!visited_.insert(a).second) return;
        if (a->source()) push(a->source(), map[a->id()]);
        for (Attribute* destination : a->destinations()) push(destination, map[a->id()]);
        if (!a->parent()) return;
        for (const SpecializationLink& link : a->specializationLinks()) {
            SpecializationList first = map[link.first->id()];
            SpecializationList second = map[link.second->id()];
            a->parent()->updateSpecializationLink(link.first, link.second, first, second);
            if (link.first != a) push(link.first, first);
            if (link.second != a) push(link.second, second);
        }
    }

    Attribute* start_;
    std::vector<Attribute*> group_;
    std::set<Attribute*> visited_;
};

// Types of every attribute as a set, by path. The order of a list that has not settled is left out.
std::map<std::string, std::set<std::string>> typesOf(const Net& net) {
    std::map<std::string, std::set<std::string>> types;
    for (const Attribute* a : net.all()) {
        const auto& names = a->specializations().names();
        types[Net::nameOf(a)] = std::set<std::string>(names.begin(), names.end());
    }
    return types;
}

enum class Family { addAndSub, mulToo, divToo };

// Constants, arithmetic and pass-throughs, the same in every network that is built from one seed.
class RandomGraph {
public:
    RandomGraph(unsigned seed, Family family, uint32_t limit) : random_(seed), family_(family) {
        net.manager.setSearchedGroupLimit(limit);
        const int count = 6 + static_cast<int>(random_() % 14);
        for (int i = 0; i < count; ++i) addNode("N" + std::to_string(i));
        paths_.clear();
        for (const Attribute* a : net.all()) paths_.push_back(Net::nameOf(a));
    }

    // What happened, or empty.
    std::string step() {
        const std::string a = paths_[random_() % paths_.size()];
        const std::string b = paths_[random_() % paths_.size()];
        if (random_() % 8 == 0) {
            if (!net.at(a)->source()) return {};
            changed = net.at(a);
            net.cut(a);
            return "cut " + a;
        }
        if (!net.refusal(a, b).empty()) return {};
        changed = net.at(a);
        result = net.manager.connect(net.at(a), net.at(b), nullptr);
        return a + " > " + b;
    }

    Net net;
    Attribute* changed = nullptr;
    bool result = true;

private:
    void addNode(const std::string& name) {
        const unsigned kind = random_() % 10;
        const unsigned operation = random_() % 4;
        if (kind == 0) {
            net.add<RealNode>(name);
        } else if (kind == 1) {
            net.add<IntegerNode>(name);
        } else if (kind == 2) {
            net.add<Vector3Node>(name);
        } else if (kind <= 4) {
            net.add<PassNode>(name);
        } else if (operation == 0 && family_ != Family::addAndSub) {
            net.add<MulNode>(name);
        } else if (operation == 1 && family_ == Family::divToo) {
            net.add<DivNode>(name);
        } else if (operation == 2) {
            net.add<SubNode>(name);
        } else {
            net.add<AddNode>(name);
        }
    }

    std::mt19937 random_;
    Family family_;
    std::vector<std::string> paths_;
};

struct Agreement {
    int steps = 0;
    int unequal = 0;       // networks that differ somewhere after a step
    int contradicting = 0; // both sides settled on one name, and not on the same
    int wider = 0;         // the propagation kept a name that the search dropped
};

// Searches and propagates the same random graphs side by side.
Agreement compare(Family family, unsigned seeds, int steps) {
    Agreement agreement;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        RandomGraph searched(seed, family, always);
        RandomGraph propagated(seed, family, never);
        for (int step = 0; step < steps; ++step) {
            const std::string done = searched.step();
            // From the first difference on the two may accept different connections.
            if (propagated.step() != done) break;
            if (done.empty()) continue;
            ++agreement.steps;
            const auto a = typesOf(searched.net);
            const auto b = typesOf(propagated.net);
            if (a == b) continue;
            ++agreement.unequal;
            for (const auto& [path, types] : a) {
                const std::set<std::string>& other = b.at(path);
                const bool bothSettled = types.size() == 1 && other.size() == 1;
                if (bothSettled && types != other) ++agreement.contradicting;
                if (!std::includes(types.begin(), types.end(), other.begin(), other.end())) {
                    ++agreement.wider;
                }
            }
            break;
        }
    }
    return agreement;
}

} // namespace

// The default link.

TEST(DefaultLink, TheWiderBecomesTheNarrower) {
    Net net;
    const SpecializationList narrow{"Real"};
    const SpecializationList wide{"Integer", "Real"};
    EXPECT_EQ(afterLink(net, narrow, wide, false), narrow);
    EXPECT_EQ(afterLink(net, wide, narrow, true), narrow);
}

TEST(DefaultLink, EqualSetsTakeTheOrderOfTheFirst) {
    Net net;
    const SpecializationList a{"Integer", "Real"};
    const SpecializationList b{"Real", "Integer"};
    EXPECT_EQ(afterLink(net, a, b, false), a);
}

TEST(DefaultLink, OverlapAloneChangesNothing) {
    Net net;
    const SpecializationList a{"Integer", "Real"};
    const SpecializationList b{"Real", "Mesh"};
    EXPECT_EQ(afterLink(net, a, b, true), a);
    EXPECT_EQ(afterLink(net, a, b, false), b);
}

TEST(DefaultLink, EmptyFirstNarrowsNothingEmptySecondEmptiesTheFirst) {
    Net net;
    const SpecializationList some{"Real"};
    EXPECT_EQ(afterLink(net, SpecializationList{}, some, false), some);
    EXPECT_EQ(afterLink(net, SpecializationList{}, some, true), SpecializationList{});
    EXPECT_EQ(afterLink(net, some, SpecializationList{}, true), SpecializationList{});
}

// Settling.

namespace {

// R.real > N.in, N.in linked to N.out, three types allowed.
struct Linked : Net {
    explicit Linked(uint32_t limit = 64) {
        manager.setSearchedGroupLimit(limit);
        add<RealNode>("R");
        node = add<ScriptNode>("N")->ports({"in"}, {"out"});
        for (const char* path : {"N.in", "N.out"}) {
            node->setAttributeAllowedSpecializations(
                at(path), SpecializationList{"Integer", "Real", "Vector3"});
        }
        node->addAttributeSpecializationLink(at("N.in"), at("N.out"));
    }
    ScriptNode* node;
};

NumericType typeOfValue(const Net& net, const char* path) {
    return static_cast<NumericAttribute*>(net.at(path))->ownNumeric().type();
}

} // namespace

class Settling : public ::testing::TestWithParam<uint32_t> {};
INSTANTIATE_TEST_SUITE_P(BySearchAndPropagation, Settling, ::testing::Values(always, never));

TEST_P(Settling, ConnectionLeavesItsTypeOnTheInputAndTheLinkedOutput) {
    Linked net(GetParam());
    EXPECT_TRUE(net.link("R.real", "N.in"));
    EXPECT_EQ(net.types("N.in"), "Real");
    EXPECT_EQ(net.types("N.out"), "Real");
    EXPECT_EQ(typeOfValue(net, "N.in"), NumericType::real);
    EXPECT_EQ(typeOfValue(net, "N.out"), NumericType::real);
    EXPECT_EQ(net.at("N.in")->specialization(), "Real");
    EXPECT_TRUE(net.at("N.in")->isSpecialized());
}

TEST_P(Settling, RemovingTheConnectionGivesBackAllNames) {
    Linked net(GetParam());
    net.link("R.real", "N.in");
    net.cut("N.in");
    EXPECT_EQ(net.types("N.in"), "Integer Real Vector3");
    EXPECT_EQ(net.types("N.out"), "Integer Real Vector3");
    EXPECT_EQ(typeOfValue(net, "N.in"), NumericType::none);
    EXPECT_EQ(typeOfValue(net, "N.out"), NumericType::none);
    EXPECT_EQ(net.types("R.real"), "Real");
    EXPECT_EQ(net.at("N.in")->specialization(), "");
}

TEST_P(Settling, GoingBackToATypeFindsWhatItHeld) {
    Linked net(GetParam());
    net.link("R.real", "N.in");
    static_cast<NumericAttribute*>(net.at("N.out"))->ownNumeric().setValue<float>(6.0f);
    net.cut("N.in");
    net.link("R.real", "N.in");
    EXPECT_EQ(net.seen<float>("N.out"), 6.0f);
}

TEST_P(Settling, OverrideHoldsAgainstTheConnection) {
    Linked net(GetParam());
    net.at("N.in")->setSpecializationOverride("Vector3");
    EXPECT_EQ(net.types("N.in"), "Vector3");
    EXPECT_EQ(net.types("N.out"), "Integer Real Vector3");          // neighbours follow later
    net.manager.connect(net.at("R.real"), net.at("N.in"), nullptr); // refused: no name in common
    EXPECT_EQ(net.at("N.in")->source(), nullptr);
    net.at("R.real")->connectTo(net.at("N.in"), nullptr);
    EXPECT_EQ(net.types("N.in"), "Vector3");
    EXPECT_EQ(net.types("R.real"), "Real");
    EXPECT_EQ(net.types("N.out"), "Vector3");
}

TEST_P(Settling, OverrideMadeLaterIsSeenByTheNextConnection) {
    Linked net(GetParam());
    auto* m = net.add<ScriptNode>("M")->ports({"in"}, {"out"});
    for (const char* path : {"M.in", "M.out"}) {
        m->setAttributeAllowedSpecializations(net.at(path),
                                              SpecializationList{"Integer", "Real", "Vector3"});
    }
    m->addAttributeSpecializationLink(net.at("M.in"), net.at("M.out"));
    auto* k = net.add<ScriptNode>("K")->ports({"x", "y"}, {});
    k->setAttributeAllowedSpecializations(net.at("K.x"), SpecializationList{"Integer", "Real"});
    k->setAttributeAllowedSpecializations(net.at("K.y"), SpecializationList{"Integer", "Real"});
    net.link("N.out", "M.in");
    net.link("M.out", "K.x");
    EXPECT_EQ(net.types("N.in"), "Integer Real");
    net.at("N.in")->setSpecializationOverride("Integer");
    EXPECT_EQ(net.types("M.out"), "Integer Real");
    net.link("M.out", "K.y");
    EXPECT_EQ(net.types("M.out"), "Integer");
    EXPECT_EQ(net.types("K.x"), "Integer");
    net.at("N.in")->clearSpecializationOverride();
    EXPECT_TRUE(net.at("N.in")->updateSpecializations(nullptr));
    EXPECT_EQ(net.types("M.out"), "Integer Real");
}

TEST_P(Settling, LinksOfTheNewNodeCountThoughItsPortKeepsItsTypes) {
    Net net;
    net.manager.setSearchedGroupLimit(GetParam());
    net.add<RealNode>("R");
    auto* node = net.add<ScriptNode>("N")->ports({"in"}, {"mid", "out"});
    node->setAttributeAllowedSpecializations(net.at("N.in"), test_nodes::realOnly());
    node->addAttributeSpecializationLink(net.at("N.in"), net.at("N.mid"));
    node->addAttributeSpecializationLink(net.at("N.mid"), net.at("N.out"));
    net.link("R.real", "N.in");
    EXPECT_EQ(net.types("N.mid"), "Real");
    EXPECT_EQ(net.types("N.out"), "Real");
}

TEST_P(Settling, ChangedDeclarationIsSeenByTheNextConnection) {
    Linked net(GetParam());
    auto* k = net.add<ScriptNode>("K")->ports({"x", "y"}, {});
    net.link("N.out", "K.x");
    EXPECT_EQ(net.types("K.x"), "Integer Real Vector3");
    net.node->setAttributeAllowedSpecialization(net.at("N.in"), "Integer");
    net.link("N.out", "K.y");
    EXPECT_EQ(net.types("K.x"), "Integer");
    k->addAttributeSpecializationLink(net.at("K.x"), net.at("K.y"));
    net.cut("K.y");
    EXPECT_EQ(net.types("K.y"), "Integer"); // by its link to K.x
}

TEST_P(Settling, TwoEmptyPassThroughsStayEmptyAndTakeAnything) {
    Net net;
    net.manager.setSearchedGroupLimit(GetParam());
    net.add<PassNode>("P");
    net.add<PassNode>("Q");
    const bool settled = net.link("P.out", "Q.in");
    EXPECT_EQ(settled, GetParam() == never); // the search tries a hundred times
    for (const char* path : {"P.in", "P.out", "Q.in", "Q.out"}) EXPECT_EQ(net.types(path), "");
    net.add<RealNode>("R");
    net.add<Vector3Node>("V");
    net.add<ScriptNode>("B")->ports({"in"}, {});
    EXPECT_EQ(net.refusal("R.real", "P.in"), "");
    EXPECT_EQ(net.refusal("V.vector", "P.in"), "");
    EXPECT_EQ(net.refusal("Q.out", "B.in"), "");
    EXPECT_EQ(net.at("Q.in")->source(), net.at("P.out")); // the connection stands
}

TEST_P(Settling, PassThroughsTakeOnWhatTheirNeighboursHave) {
    Net net;
    net.manager.setSearchedGroupLimit(GetParam());
    net.add<PassNode>("P");
    net.add<PassNode>("Q");
    net.add<RealNode>("R");
    net.link("P.out", "Q.in");
    EXPECT_TRUE(net.link("R.real", "P.in"));
    for (const char* path : {"P.in", "P.out", "Q.in", "Q.out"}) EXPECT_EQ(net.types(path), "Real");
    net.cut("P.in");
    for (const char* path : {"P.in", "P.out", "Q.in", "Q.out"}) EXPECT_EQ(net.types(path), "");
}

TEST_P(Settling, EmptyPassThroughsOnAWayBackTakeTypesFromTheReader) {
    Net net;
    net.manager.setSearchedGroupLimit(GetParam());
    net.add<PassNode>("P");
    auto* b = net.add<ScriptNode>("B")->ports({"in"}, {});
    b->setAttributeAllowedSpecializations(net.at("B.in"), SpecializationList{"Mesh", "Box"});
    net.link("P.out", "B.in");
    EXPECT_EQ(net.types("P.in"), "Mesh Box");
    net.add<RealNode>("R");
    EXPECT_EQ(net.refusal("R.real", "P.in"), "types don't match");
}

TEST_P(Settling, TypesOfAddFollowItsFirstOperand) {
    Net net;
    net.manager.setSearchedGroupLimit(GetParam());
    net.add<RealNode>("R");
    net.add<IntegerNode>("I");
    net.add<Vector3Node>("V");
    net.add<AddNode>("A");
    net.link("R.real", "A.in0");
    EXPECT_EQ(net.types("A.in0"), "Real");
    EXPECT_EQ(net.types("A.result"), "Real");
    EXPECT_EQ(net.types("A.in1"), "Real Integer Integer64");
    EXPECT_EQ(net.refusal("V.vector", "A.in1"), "types don't match");
    net.link("I.integer", "A.in1");
    EXPECT_EQ(net.types("A.in1"), "Integer");
    net.cut("A.in0");
    EXPECT_EQ(net.types("A.in1"), "Integer");
    EXPECT_EQ(net.types("A.in0"), "Integer Integer64 Real");
    EXPECT_EQ(net.types("A.result"), "Integer Integer64 Real");
    net.cut("A.in1");
    EXPECT_EQ(net.at("A.in0")->specializations().size(), 7u);
}

TEST_P(Settling, ResultConnectedFirstTypesTheOperands) {
    Net net;
    net.manager.setSearchedGroupLimit(GetParam());
    net.add<AddNode>("A");
    auto* b = net.add<ScriptNode>("B")->ports({"in"}, {});
    b->setAttributeAllowedSpecializations(net.at("B.in"), SpecializationList{"Vector3"});
    net.link("A.result", "B.in");
    EXPECT_EQ(net.types("A.in0"), "Vector3");
    EXPECT_EQ(net.types("A.in1"), "Vector3");
}

TEST_P(Settling, EveryAttributeOfTheGroupIsAppliedOnceInOrderOfId) {
    std::string order;
    Linked net(GetParam());
    net.setAllClean(true);
    CallbackLog log;
    net.node->onTypesChanged = [&](Attribute* a) { order += Net::nameOf(a) + " "; };
    net.link("R.real", "N.in");
    EXPECT_EQ(log.take("types"), "R.real, N.in, N.out");
    EXPECT_EQ(order, "N.in N.out ");
    EXPECT_EQ(net.clean(), "R.in");
    // Unchanged ones as well.
    net.setAllClean(true);
    auto* k = net.add<ScriptNode>("K")->ports({"in"}, {});
    k->setAttributeAllowedSpecializations(net.at("K.in"), test_nodes::realOnly());
    log.takeAll();
    net.link("N.out", "K.in");
    EXPECT_EQ(log.take("types"), "R.real, N.in, N.out, K.in");
    EXPECT_EQ(net.clean(), "R.in");
}

TEST_P(Settling, EveryCleanAttributeOfTheGroupGoesDirtyUnheardToo) {
    Linked net(GetParam());
    net.link("R.real", "N.in");
    net.add<ScriptNode>("K")->ports({"in", "other"}, {});
    net.setAllClean(true);
    net.link("N.out", "K.in");
    EXPECT_EQ(net.clean(), "R.in K.other");
}

TEST_P(Settling, DirtyOnesOfTheGroupStartNoWalk) {
    Linked net(GetParam());
    net.link("R.real", "N.in");
    // N.out's affect lies beyond a dirty member of the group.
    auto* k = net.add<ScriptNode>("K")->ports({"in"}, {"out"});
    net.add<ScriptNode>("L")->ports({"in"}, {});
    net.link("N.out", "K.in");
    net.setAllClean(true);
    net.at("K.in")->setClean(false);
    net.at("N.out")->setClean(false);
    net.at("N.in")->setClean(false);
    net.at("R.real")->setClean(false);
    net.link("N.out", "L.in");
    EXPECT_TRUE(net.at("K.out")->isClean());
    (void)k;
}

TEST_P(Settling, AttributesThatDieWhileTypesAreAppliedAreLeftOut) {
    Linked net(GetParam());
    net.node->onTypesChanged = [&](Attribute* a) {
        if (a->name() != "in") return;
        if (Attribute* out = net.node->findAttribute("out")) out->deleteIt();
    };
    CallbackLog log;
    net.link("R.real", "N.in");
    EXPECT_EQ(net.node->findAttribute("out"), nullptr);
    EXPECT_EQ(net.types("N.in"), "Real");
}

TEST_P(Settling, AnAttributeMayDieByItsOwnTypes) {
    Linked net(GetParam());
    net.node->onTypesChanged = [&](Attribute* a) {
        if (a->name() == "in") a->deleteIt();
    };
    CallbackLog log;
    net.link("R.real", "N.in");
    EXPECT_EQ(net.node->findAttribute("in"), nullptr);
    EXPECT_EQ(net.at("R.real")->destinations().size(), 0u);
}

TEST_P(Settling, LinksThatContradictThemselvesStopWithAFalseResult) {
    // The link widens again what the connection narrowed.
    const SpecializationList wide{"Integer", "Real", "Mesh"};
    int looks = 0;
    Net net;
    net.manager.setSearchedGroupLimit(GetParam());
    auto* m = net.add<ScriptNode>("M")->ports({}, {"out", "other"});
    m->setAttributeAllowedSpecializations(net.at("M.out"), wide);
    m->onLink = [&](Attribute*, Attribute*, SpecializationList& first, SpecializationList&) {
        ++looks;
        first = wide;
    };
    m->addAttributeSpecializationLink(net.at("M.out"), net.at("M.other"));
    auto* n = net.add<ScriptNode>("N")->ports({"in"}, {});
    n->setAttributeAllowedSpecializations(net.at("N.in"), test_nodes::realOnly());
    EXPECT_FALSE(net.link("M.out", "N.in"));
    EXPECT_GT(looks, 100);
    EXPECT_EQ(net.at("N.in")->source(), net.at("M.out"));
    EXPECT_EQ(net.types("N.in"), "Real");
    EXPECT_NE(net.types("M.out"), "");
}

TEST_P(Settling, NothingInCommonLeavesBothSidesAlone) {
    Net net;
    net.manager.setSearchedGroupLimit(GetParam());
    net.add<RealNode>("R");
    auto* b = net.add<ScriptNode>("B")->ports({"in"}, {});
    b->setAttributeAllowedSpecializations(net.at("B.in"), SpecializationList{"Mesh"});
    EXPECT_TRUE(net.at("R.real")->connectTo(net.at("B.in"), nullptr)); // not asked canConnect
    EXPECT_EQ(net.types("R.real"), "Real");
    EXPECT_EQ(net.types("B.in"), "Mesh");
}

TEST_P(Settling, TearingDownSettlesNothing) {
    Linked net(GetParam());
    net.link("R.real", "N.in");
    net.manager.setTearingDown(true);
    EXPECT_TRUE(net.at("N.in")->updateSpecializations(nullptr));
    net.cut("N.in");
    EXPECT_EQ(net.types("N.in"), "Real");
}

// Random graphs.

TEST(Search, EqualsTheStepByStepSearchOnRandomGraphs) {
    for (const Family family : {Family::addAndSub, Family::mulToo, Family::divToo}) {
        int compared = 0;
        for (unsigned seed = 1; seed <= 60; ++seed) {
            RandomGraph graph(seed, family, always);
            for (int step = 0; step < 80; ++step) {
                const std::string done = graph.step();
                if (done.empty() || done.rfind("cut", 0) == 0) continue;
                const LiteralSearch literal(graph.changed);
                ASSERT_EQ(graph.result, literal.settled) << "seed " << seed << " " << done;
                for (const auto& [id, list] : literal.map) {
                    auto* a = static_cast<Attribute*>(graph.net.manager.findObject(id));
                    ASSERT_EQ(a->specializations(), list)
                        << "seed " << seed << " " << done << " " << Net::nameOf(a);
                }
                ++compared;
            }
        }
        EXPECT_GT(compared, 300);
    }
}

TEST(Propagation, HasTheSetsOfTheSearchForConstantsAddSubAndPassThroughs) {
    const Agreement agreement = compare(Family::addAndSub, 400, 80);
    EXPECT_GT(agreement.steps, 3000);
    EXPECT_EQ(agreement.unequal, 0);
}

// The search may stop where links could narrow further; the propagation goes on.
TEST(Propagation, IsNarrowerThanTheSearchInOneOfAHundredStepsWithMulAtMost) {
    const Agreement agreement = compare(Family::mulToo, 400, 80);
    EXPECT_GT(agreement.steps, 3000);
    EXPECT_LT(agreement.unequal * 100, agreement.steps);
    EXPECT_EQ(agreement.wider, 0);
    EXPECT_EQ(agreement.contradicting, 0);
}

TEST(Propagation, IsNarrowerThanTheSearchInOneOfTwentyStepsWithDivAtMost) {
    const Agreement agreement = compare(Family::divToo, 400, 80);
    EXPECT_GT(agreement.steps, 2000);
    EXPECT_LT(agreement.unequal * 20, agreement.steps);
    EXPECT_EQ(agreement.wider, 0);
    EXPECT_EQ(agreement.contradicting, 0);
}

namespace {

// R.real > A0 > A1 > ..., far beyond what is searched; connected from the front or from the back.
void buildChain(Net& net, int length, bool fromTheFront) {
    std::vector<AddNode*> nodes;
    net.add<RealNode>("R");
    for (int i = 0; i < length; ++i) {
        auto* node = new AddNode(&net.manager, "", nullptr);
        net.root->addNode(node);
        nodes.push_back(node);
    }
    for (int i = 0; i < length; ++i) {
        const int at = fromTheFront ? i : length - 1 - i;
        Attribute* from = at == 0 ? net.at("R.real") : nodes[at - 1]->outputAttributeAt(0);
        ASSERT_TRUE(net.manager.connect(from, nodes[at]->inputAttributeAt(0), nullptr));
    }
    for (const AddNode* node : nodes) {
        ASSERT_EQ(node->outputAttributeAt(0)->specialization(), "Real");
    }
}

} // namespace

TEST(Propagation, LongChainsSettleInTimeInEitherOrder) {
    for (const bool fromTheFront : {true, false}) {
        Net net;
        net.manager.setMonitoring(false);
        buildChain(net, 20000, fromTheFront);
        net.manager.setTearingDown(true);
    }
}

// Each connection looks at the new reader, not at all that were connected before.
TEST(Propagation, ManyReadersOfOneOutputSettleInTime) {
    Net net;
    net.manager.setMonitoring(false);
    RealNode* source = net.add<RealNode>("source");
    for (int i = 0; i < 30000; ++i) {
        AddNode* reader = net.add<AddNode>("reader");
        ASSERT_TRUE(net.manager.connect(source->outputAttributeAt(0), reader->inputAttributeAt(0),
                                        nullptr));
    }
    for (const Attribute* input : source->outputAttributeAt(0)->destinations()) {
        ASSERT_EQ(input->specialization(), "Real");
    }
    net.manager.setTearingDown(true);
}

// What was evaluated before must not cost the square of what is built afterwards.
TEST(Propagation, LongChainsSettleInTimeAfterOthersWereEvaluatedAndRemoved) {
    Net net;
    net.manager.setMonitoring(false);
    for (int turn = 0; turn < 2; ++turn) {
        buildChain(net, 20000, true);
        net.root->refNodes().back()->outputAttributeAt(0)->computeNow();
        net.manager.setTearingDown(true);
        while (!net.root->refNodes().empty()) net.root->removeNode(net.root->refNodes().back());
        net.manager.setTearingDown(false);
    }
    EXPECT_EQ(net.all().size(), 0u);
}
