// SPDX-License-Identifier: Apache-2.0
// Every registered node type, fed with what no author had in mind: nothing may crash or hang, and
// afterwards plain input must give what a fresh node gives.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <set>

#include "core/conversion.h"
#include "core/exceptions.h"
#include "core/limits.h"
#include "core/pointer_value.h"
#include "graph/node_factory.h"
#include "graph/scene_manager.h"
#include "nodes/values/curves/curve_attributes.h"
#include "nodes/values/element_loop.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;
namespace limits = tidemark::limits;

// What an input may hold, by the class of its value.
struct Feed {
    const char* name;
    std::vector<double> numbers; // every component of every numeric type
    std::vector<const char*> strings;
    uint32_t bits; // as many, every third one set
    std::vector<int32_t> keys;
    uint32_t nulls;
};

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

const Feed plain = {"plain values", {1, 2, 1}, {"a", "b", "a,b"}, 3, {1}, 2};
const Feed empty = {"empty arrays", {}, {}, 0, {}, 0};
const Feed single = {"one element", {1}, {"a"}, 1, {0}, 1};
const Feed feeds[] = {
    plain,
    empty,
    single,
    {"unequal lengths", {4, 3, 2, 1, 0}, {"x", "y", "z", "x", "z", "zz"}, 40, {2, 1}, 5},
    {"not-a-number and infinities",
     {nan, infinity, -infinity, -0.0, nan},
     {"%n%s%d%"},
     33,
     {-1},
     1},
    {"extreme numbers",
     {2147483647, -2147483648.0, -1, 3.4e38, -3.4e38, 1e-45, 9.3e18, -9.3e18},
     {" ", "\t\n", ""},
     64,
     {2147483647, -2147483647 - 1},
     3},
    {"negative numbers", {-1, -7, -1000000}, {"-1"}, 2, {-5}, 1},
    {"huge numbers",
     {2147483647, 2147483647},
     {"\xc3\xa4\xe6\xbc\xa2\xf0\x9f\x8c\x8a"},
     31,
     {99},
     1},
    {"zeros", {0, 0}, {"", ""}, 65, {0, 0, 0}, 2},
};

template <typename T>
T elementOf(double number) {
    if constexpr (std::is_same_v<T, int32_t> || std::is_same_v<T, int64_t>) {
        return tidemark::truncateTo<T>(number);
    } else if constexpr (std::is_same_v<T, Matrix4<float>>) {
        T matrix;
        for (auto& row : matrix.x) std::fill(std::begin(row), std::end(row), float(number));
        return matrix;
    } else {
        const auto real = static_cast<float>(number);
        if constexpr (std::is_same_v<T, float>) return real;
        if constexpr (std::is_same_v<T, Vector3<float>>) return {real, real, real};
        if constexpr (std::is_same_v<T, Color4<float>>) return {real, real, real, real};
        if constexpr (std::is_same_v<T, Quaternion<float>>) return {real, real, real, real};
    }
}

void give(Attribute& input, const Feed& feed) {
    if (auto* number = valueAs<Numeric>(input.value())) {
        withElementType(number->type(), [&]<typename T>() {
            tidemark::Array<T> elements;
            for (const double each : feed.numbers) elements.append(elementOf<T>(each));
            number->setValues(elements);
        });
    } else if (auto* text = valueAs<StringValue>(input.value())) {
        text->setSize(0);
        for (const char* each : feed.strings) text->append(each);
    } else if (auto* bits = valueAs<BitArrayValue>(input.value())) {
        bits->resize(feed.bits, false);
        for (uint32_t i = 0; i < feed.bits; ++i) bits->setBit(i, i % 3 == 0);
    } else if (auto* choice = valueAs<Enum>(input.value())) {
        choice->refKeys().clear();
        for (const int32_t key : feed.keys) choice->refKeys().append(key);
    } else if (auto* pointers = dynamic_cast<PointerValueBase*>(input.value())) {
        pointers->setSize(0);
        for (uint32_t i = 0; i < feed.nulls; ++i) pointers->append(nullptr);
    }
    input.valueChanged();
}

void giveAll(Node& node, const Feed& feed) {
    for (Attribute* input : node.refInputAttributes()) give(*input, feed);
}

// Computes every output. What an update may throw is a message or that memory is out.
void computeAll(Node& node, const TM_String& what) {
    for (Attribute* output : node.refOutputAttributes()) {
        try {
            output->computeNow();
            if (const Value* value = output->currentValue()) value->asString();
        } catch (const std::bad_alloc&) {
        } catch (const tidemark::sluice::graph::Exception&) {
        } catch (const std::exception& error) {
            ADD_FAILURE() << what << ": " << output->name() << " threw " << error.what();
        }
    }
    node.refMessages().clear();
}

TM_String outputsOf(Node& node) {
    TM_String all;
    for (Attribute* output : node.refOutputAttributes()) {
        all += output->name() + "=";
        try {
            output->computeNow();
            if (const Value* value = output->currentValue()) all += value->asString();
        } catch (const std::exception& error) {
            all += TM_String("threw ") + error.what();
        }
        all += "\n";
    }
    return all;
}

// The types that the first polymorphic input may be given, or one empty name.
std::vector<TM_String> choicesOf(Node& node) {
    for (const Attribute* input : node.refInputAttributes()) {
        if (!valueAs<Numeric>(input->value())) continue;
        if (input->allowedSpecializations().size() < 2) continue;
        const auto& names = input->allowedSpecializations().names();
        std::vector<TM_String> choices(names.begin(), names.end());
        choices.emplace_back();
        return choices;
    }
    return {TM_String()};
}

void choose(Node& node, const TM_String& type) {
    if (type.empty()) return;
    for (Attribute* input : node.refInputAttributes()) {
        const auto* number = valueAs<Numeric>(input->value());
        if (!number || input->isSpecialized()) continue;
        if (input->specializations().contains(type)) {
            input->setSpecializationOverride(type);
            input->updateSpecializations(nullptr);
        } else if (!input->specializations().empty()) {
            input->setSpecializationOverride(input->specializations()[0]);
            input->updateSpecializations(nullptr);
        }
    }
}

// While a type is open nothing is computed.
bool isOpen(const Node& node) {
    for (const Attribute* input : node.refInputAttributes()) {
        if (valueAs<Numeric>(input->value()) && !input->isSpecialized()) return true;
    }
    return false;
}

// Waits as long as it is told; the answer to interrupts has tests of its own.
const std::set<TM_String> waiting = {"Sleep"};

// What the same input gives depends on what was asked before, or on the state of the process.
const std::set<TM_String> remembering = {"GetGraphNumberOfThreads",   "MemoryUsageInfo",
                                         "GetAllGlobalVariableNames", "GetNumGlobalVariable",
                                         "GetStringGlobalVariable",   "GetCurveGlobalVariable",
                                         "GetKeyGlobalVariable"};

class EveryType : public ::testing::Test {
protected:
    void SetUp() override {
        before_ = limits::current();
        limits::Limits small;
        small.maxElements = 100'000;
        limits::set(small);
    }
    void TearDown() override { limits::set(before_); }

    // Calls `visit` with a net, its only node "n" and a description, for every type and choice.
    void forEach(const std::function<void(LogicNet&, Node&, const TM_String& type,
                                          const TM_String& choice)>& visit) {
        namespace graph = tidemark::sluice::graph;
        for (graph::NodeFactory* factory : graph::SceneManager::instance().getArrNodeFactory()) {
            const TM_String type = factory->getDescriptor().getTypeName();
            if (waiting.count(type)) continue;
            SCOPED_TRACE(type);
            std::vector<TM_String> choices;
            {
                LogicNet net;
                choices = choicesOf(net.add(type, "n"));
            }
            for (const TM_String& choice : choices) {
                LogicNet net;
                Node& node = net.add(type, "n");
                choose(node, choice);
                visit(net, node, type, choice);
            }
        }
    }

private:
    limits::Limits before_;
};

TEST_F(EveryType, SurvivesStrangeInput) {
    int visited = 0;
    forEach([&](LogicNet&, Node& node, const TM_String& type, const TM_String& choice) {
        ++visited;
        for (const Feed& feed : feeds) {
            const TM_String what = type + " " + choice + ", " + feed.name;
            giveAll(node, feed);
            computeAll(node, what);
            giveAll(node, plain);
            for (Attribute* input : node.refInputAttributes()) {
                give(*input, feed);
                computeAll(node, what + " on " + input->name());
                give(*input, plain);
            }
        }
    });
    EXPECT_GT(visited, 100);
}

TEST_F(EveryType, GivesWhatAFreshNodeGivesAfterwards) {
    forEach([&](LogicNet&, Node& node, const TM_String& type, const TM_String& choice) {
        if (remembering.count(type)) return;
        for (const Feed& feed : feeds) {
            giveAll(node, feed);
            computeAll(node, type);
        }
        giveAll(node, plain);
        LogicNet other;
        Node& fresh = other.add(type, "n");
        choose(fresh, choice);
        giveAll(fresh, plain);
        computeAll(fresh, type);
        giveAll(fresh, plain);
        EXPECT_EQ(outputsOf(node), outputsOf(fresh)) << choice;
    });
}

// Sources of every class of values: those of pointers point to something, so that who takes one
// for another does harm.
class WrongSources {
public:
    explicit WrongSources(LogicNet& net) {
        for (const auto& [type, pin] :
             {std::pair("Bit", "bit"), std::pair("Real", "real"), std::pair("String", "out"),
              std::pair("ArrayCurveConstant", "out array"),
              std::pair("ArrayKeyConstant", "out array"),
              std::pair("ConditionEqualTo", "condition")}) {
            net.add(type, TM_String("wrong") + type);
            pins_.push_back(&net.pin(TM_String("wrong") + type + "." + pin));
        }
        point(net, "wrongArrayCurveConstant.constant", &curve_);
        point(net, "wrongArrayKeyConstant.constant", &key_);
    }
    const std::vector<Attribute*>& pins() const { return pins_; }

private:
    static void point(LogicNet& net, const TM_String& pin, void* object) {
        net.as<PointerAttribute>(pin).ownPointers().setValueAt(0, object);
        net.pin(pin).valueChanged();
    }

    tidemark::ANIFloatBase curve_;
    tidemark::PointInfo key_;
    std::vector<Attribute*> pins_;
};

// Each input in turn from a source whose value is of another class.
TEST_F(EveryType, ReadsSourcesOfAnotherClassSafely) {
    forEach([&](LogicNet& net, Node& node, const TM_String& type, const TM_String&) {
        const WrongSources wrong(net);
        for (Attribute* input : node.refInputAttributes()) {
            for (Attribute* source : wrong.pins()) {
                if (source->className() == input->className()) continue;
                source->connectTo(input, nullptr);
                computeAll(node, type + " with a wrong " + input->name());
                input->disconnectSource();
            }
        }
    });
}

// Every loop over elements on threads of its own, however few they are.
TEST_F(EveryType, GivesTheSameOnThreads) {
    const auto outputs = [](const TM_String& type, const TM_String& choice, const Feed& feed,
                            int threads) {
        LogicNet net;
        Node& node = net.add(type, "n");
        choose(node, choice);
        node.setNumberOfThreads(threads);
        giveAll(node, feed);
        tidemark::sluice::graph::setThreadForEveryRecord(threads > 1);
        const TM_String found = outputsOf(node);
        tidemark::sluice::graph::setThreadForEveryRecord(false);
        return found;
    };
    forEach([&](LogicNet&, Node&, const TM_String& type, const TM_String& choice) {
        if (remembering.count(type)) return;
        for (const Feed& feed : feeds) {
            EXPECT_EQ(outputs(type, choice, feed, 3), outputs(type, choice, feed, 1))
                << choice << ", " << feed.name;
        }
    });
}

TEST_F(EveryType, TakesLongStrings) {
    limits::set({});
    const TM_String longText = [] {
        TM_String text;
        while (text.size() < 10'000'000) text += "word,\xc3\xa4 ";
        return text;
    }();
    forEach([&](LogicNet&, Node& node, const TM_String& type, const TM_String& choice) {
        if (!choice.empty()) return;
        for (Attribute* input : node.refInputAttributes()) {
            auto* text = valueAs<StringValue>(input->value());
            if (!text || type == "MessagePrint") continue;
            text->setValue(longText);
            input->valueChanged();
            computeAll(node, type + " with a long " + input->name());
            text->setValue("a");
            input->valueChanged();
        }
    });
}

// After a purge everything is computed anew, to the same result.
TEST_F(EveryType, ComputesTheSameAfterAPurge) {
    forEach([&](LogicNet&, Node& node, const TM_String& type, const TM_String&) {
        if (remembering.count(type) || isOpen(node)) return;
        giveAll(node, plain);
        computeAll(node, type);
        giveAll(node, plain);
        const TM_String before = outputsOf(node);
        node.purge();
        for (Attribute* output : node.refOutputAttributes()) output->setClean(false);
        giveAll(node, plain);
        EXPECT_EQ(outputsOf(node), before);
    });
}

} // namespace
