// SPDX-License-Identifier: Apache-2.0
// Random graphs of loops, kernels, compounds and routing: the same values with any number of
// threads, before and after a file, and under a comma-decimal locale.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "loop_scene.h"
#include "support/comma_locale.h"

namespace control_tests {
namespace {

using Values = std::map<std::string, std::string>;

/// Integers throughout, single and arrays, so that any output may feed any input.
class RandomLoops : public ControlScene {
public:
    explicit RandomLoops(unsigned seed) : random_(seed) {
        std::vector<TM_String> sources;
        for (unsigned i = 2 + below(3); i > 0; --i) sources.push_back(constant("", nullptr));
        sources.push_back(lengths());
        fill("", nullptr, sources, 0, false);
        add("Evaluator", "E");
        link(sources.back(), "E.evaluate");
        for (unsigned i = 0; i < 3; ++i) {
            const TM_String name = "E" + std::to_string(i);
            add("Evaluator", name);
            link(pick(sources), name + ".evaluate");
        }
    }
    unsigned loops = 0;
    unsigned kernels = 0;

private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    TM_String pick(const std::vector<TM_String>& sources) {
        return sources[below(static_cast<unsigned>(sources.size()))];
    }
    TM_String fresh(const char* stem) { return stem + std::to_string(++made_) + "x"; }

    TM_String constant(const TM_String& path, Node* owner) {
        const TM_String name = fresh("I");
        add("Integer", name, owner);
        pin(path + name + ".in")->setIntValue(static_cast<int>(below(9)) - 4);
        return path + name + ".integer";
    }
    // An array: the lengths of some words.
    TM_String lengths() {
        add("StringSplit", "Words");
        add("StringInfo", "Lengths");
        TM_String words = "word";
        for (unsigned i = below(6); i > 0; --i) words += "," + std::string(below(5), 'w');
        pin("Words.in")->setStringValue(words);
        pin("Words.separator")->setStringValue(",");
        link("Words.array", "Lengths.string");
        return "Lengths.length";
    }

    void fill(const TM_String& path, Node* owner, std::vector<TM_String>& sources, int depth,
              bool inKernel) {
        for (unsigned i = 2 + below(5); i > 0; --i) {
            switch (below(depth < 3 ? 8 : 5)) {
            case 0:
                sources.push_back(constant(path, owner));
                break;
            case 1:
            case 2:
                sources.push_back(sum(path, owner, sources, depth > 0 && !inKernel));
                break;
            case 3:
                sources.push_back(pass(path, owner, sources));
                break;
            case 4:
                addRouter(path, owner, sources);
                break;
            default:
                addCompound(path, owner, sources, depth, inKernel);
            }
        }
    }

    TM_String sum(const TM_String& path, Node* owner, const std::vector<TM_String>& sources,
                  bool mayAccumulate) {
        const char* const types[] = {"Add", "Sub", "Add"};
        const TM_String name = fresh("A");
        add(types[below(3)], name, owner);
        link(pick(sources), path + name + ".in0");
        link(pick(sources), path + name + ".in1");
        if (mayAccumulate && below(4) == 0) {
            pin(path + name + ".in0")->addInternalConnection(pin(path + name + ".result"));
        }
        return path + name + ".result";
    }

    TM_String pass(const TM_String& path, Node* owner, const std::vector<TM_String>& sources) {
        const TM_String name = fresh("P");
        add("Pass", name, owner);
        link(pick(sources), path + name + ".in");
        return path + name + ".through";
    }

    void addRouter(const TM_String& path, Node* owner, std::vector<TM_String>& sources) {
        const TM_String name = fresh("R");
        Node* router = add(below(2) == 0 ? "Selector" : "Concentrator", name, owner);
        for (unsigned i = below(3); i > 0; --i) router->addDynamicInputPin();
        for (unsigned i = below(2); i > 0; --i) router->addDynamicOutputPin();
        for (Pin* input : router->getArrInputPin()) {
            link(pick(sources), path + name + "." + input->getName());
        }
        const unsigned inputs = router->getArrInputPin().size();
        for (Pin* output : router->getArrOutputPin()) {
            router->getArrInputPin()[below(inputs)]->addInternalConnection(output);
            sources.push_back(path + name + "." + output->getName());
        }
    }

    void addCompound(const TM_String& path, Node* owner, std::vector<TM_String>& sources, int depth,
                     bool inKernel) {
        const TM_String name = fresh("C");
        const TM_String inside = path + name + ".";
        Node* compound = add("Compound", name, owner);
        add("CompoundInterface", "IO", compound);
        std::vector<TM_String> inner;
        for (unsigned i = 1 + below(3); i > 0; --i) {
            const TM_String wallName = fresh("w");
            wall(inside + "IO", true, wallName);
            link(pick(sources), inside + wallName);
            inner.push_back(inside + "IO." + wallName);
        }
        const unsigned kind = below(3);
        TM_String index;
        if (kind == 1) {
            ++loops;
            add("For", "F", compound);
            pin(inside + "F.start")->setIntValue(static_cast<int>(below(3)) - 1);
            pin(inside + "F.stop")->setIntValue(static_cast<int>(below(4)));
            pin(inside + "F.step")->setIntValue(1 + static_cast<int>(below(2)));
            index = inside + "F.current index";
        } else if (kind == 2) {
            ++kernels;
            add("Kernel", "K", compound);
            link(pick(inner), inside + "K.array");
            index = inside + (below(2) == 0 ? "K.index" : "K.element");
        }
        if (kind != 0) inner.push_back(index);
        fill(inside, compound, inner, depth + 1, inKernel || kind == 2);
        // Nothing goes straight through the interface node.
        std::erase_if(inner, [&](const TM_String& p) { return p.rfind(inside + "IO.", 0) == 0; });
        for (unsigned i = 1 + below(2); i > 0; --i) {
            const TM_String wallName = fresh("y");
            wall(inside + "IO", false, wallName);
            link(i == 1 ? inner.back() : pick(inner), inside + "IO." + wallName);
            sources.push_back(path + name + "." + wallName);
        }
    }

    std::mt19937 random_;
    unsigned made_ = 0;
};

std::string textOf(SL_GraphScene& scene) {
    TM_String text;
    EXPECT_TRUE(scene.write_XML_toString(text));
    return text;
}

// What every pin shows after one run.
Values valuesOf(SL_GraphScene& scene, int threads) {
    static_cast<Node*>(scene.getRootNode())->getCoreNode()->setNumberOfThreads(threads);
    scene.run();
    Values values;
    values["outcome"] = std::to_string(static_cast<int>(scene.lastOutcome()));
    for (const auto entry : scene.pinsById()) {
        const auto* pin = static_cast<const Pin*>(entry.value);
        const weft::Attribute* attribute = pin->getWeftAttribute();
        const weft::Value* value = attribute ? attribute->currentValue() : nullptr;
        values[pin->getFullName()] = value ? value->asString() : "none";
    }
    return values;
}

Values valuesOfText(const std::string& text, int threads) {
    SL_GraphScene scene;
    EXPECT_TRUE(scene.read_XML_fromString(text));
    EXPECT_EQ(textOf(scene), text);
    return valuesOf(scene, threads);
}

class RandomLoopGraphs : public testing::TestWithParam<unsigned> {};

TEST_P(RandomLoopGraphs, GiveTheSameValuesHoweverTheyAreRun) {
    constexpr unsigned seedsPerTest = 250;
    unsigned loops = 0;
    unsigned kernels = 0;
    for (unsigned i = 0; i < seedsPerTest && !HasFailure(); ++i) {
        const unsigned seed = GetParam() * seedsPerTest + i;
        SCOPED_TRACE(seed);
        RandomLoops graph(seed);
        loops += graph.loops;
        kernels += graph.kernels;
        const std::string text = textOf(graph.scene);
        const Values values = valuesOf(graph.scene, 1);
        EXPECT_EQ(graph.scene.lastOutcome(), RunOutcome::finished);
        EXPECT_EQ(valuesOfText(text, 1), values);
        EXPECT_EQ(valuesOfText(text, 8), values);
        if (i % 5 != 0) continue;
        const support::CommaLocale comma;
        ASSERT_TRUE(comma.isSet());
        EXPECT_EQ(valuesOfText(text, 3), values);
    }
    EXPECT_GT(loops, seedsPerTest / 4);
    EXPECT_GT(kernels, seedsPerTest / 4);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomLoopGraphs, testing::Range(0u, 8u));

} // namespace
} // namespace control_tests
