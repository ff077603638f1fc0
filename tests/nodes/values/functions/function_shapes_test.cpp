// SPDX-License-Identifier: Apache-2.0
// What holds for every node that applies a formula, in each of its types: components go one by one,
// shorter inputs repeat their last element, nothing in gives nothing out, and the output may be an
// input.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

#include "core/conversion.h"
#include "nodes/values/element_map.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;

// A node type, the type of its first number and that of the others.
struct Formula {
    const char* type;
    const char* first;
    const char* others;
};
void PrintTo(const Formula& formula, std::ostream* out) {
    *out << formula.type << " of " << formula.first << " " << formula.others;
}

const Formula formulas[] = {
    {"Abs", "Integer", ""},
    {"Abs", "Integer64", ""},
    {"Abs", "Real", ""},
    {"Abs", "Vector3", ""},
    {"Sin", "Real", ""},
    {"Cos", "Real", ""},
    {"Tan", "Real", ""},
    {"TrigonometricFunctions", "Real", ""},
    {"Exp", "Real", ""},
    {"Log", "Real", ""},
    {"Log10", "Real", ""},
    {"Sqrt", "Real", ""},
    {"Sqrt", "Integer", ""},
    {"Pow", "Real", "Real"},
    {"Atan2", "Real", "Real"},
    {"Floor", "Real", ""},
    {"Floor", "Vector3", ""},
    {"Ceil", "Real", ""},
    {"Ceil", "Vector3", ""},
    {"Round", "Real", ""},
    {"Round", "Vector3", ""},
    {"Radians", "Real", ""},
    {"Radians", "Vector3", ""},
    {"Degrees", "Real", ""},
    {"Degrees", "Vector3", ""},
    {"Clamp", "Real", "Real"},
    {"Clamp", "Integer", "Integer"},
    {"Mod", "Integer", "Integer"},
    {"Mod", "Real", "Real"},
    {"Mod", "Vector3", "Vector3"},
    {"Mod", "Vector3", "Real"},
    {"Mod", "Color4", "Color4"},
    {"Mod", "Color4", "Real"},
    {"NumMapRange", "Real", "Real"},
    {"NumMapRange", "Vector3", "Vector3"},
    {"NumMapRange", "Color4", "Color4"},
};

// Elements as lists of their components.
using Elements = std::vector<std::vector<double>>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// The number of input `pin`, element `index` and component `part`; all kinds of numbers.
double sample(uint32_t pin, uint32_t index, uint32_t part) {
    static const double samples[] = {1.5,  -2.5,     0.49999997, -0.0,      7,   -0.5,
                                     3.25, infinity, 0.25,       -100,      nan, 180,
                                     2.5,  -1000000, 1e30,       -infinity, 0,   90};
    return samples[(pin * 7 + index * 5 + part * 3) % std::size(samples)];
}

template <typename T>
uint32_t partsOf() {
    if constexpr (std::is_integral_v<T>) return 1;
    return sizeof(T) / sizeof(float);
}

// One node as "n", of the types of a formula.
class FormulaNode {
public:
    explicit FormulaNode(const Formula& formula) : FormulaNode(formula, formula.first) {}
    FormulaNode(const Formula& formula, const TM_String& first)
        : node_(net_.add(formula.type, "n")) {
        for (Attribute* input : node_.refInputAttributes()) {
            if (!valueAs<Numeric>(input->value())) continue;
            const bool isFirst = numbers_.empty();
            numbers_.push_back(input);
            const TM_String type = isFirst || first != formula.first ? first : formula.others;
            if (!input->isSpecialized()) net_.type("n." + input->name(), type);
        }
    }
    LogicNet& net() { return net_; }
    Node& node() { return node_; }
    const std::vector<Attribute*>& numbers() const { return numbers_; }
    Numeric& own(std::size_t input) { return *valueAs<Numeric>(numbers_[input]->value()); }

    void give(std::size_t input, const Elements& elements) {
        Numeric& number = own(input);
        withElementType(number.type(), [&]<typename T>() {
            tidemark::Array<T> made;
            for (const auto& parts : elements) made.append(elementOf<T>(parts));
            number.setValues(made);
        });
        numbers_[input]->valueChanged();
    }
    // As many samples as are asked for, made longer by its last element.
    void giveSamples(std::size_t input, uint32_t count, uint32_t length = 0) {
        Elements elements;
        withElementType(own(input).type(), [&]<typename T>() {
            for (uint32_t i = 0; i < std::max(count, length); ++i) {
                std::vector<double>& parts = elements.emplace_back();
                for (uint32_t k = 0; k < partsOf<T>(); ++k) {
                    parts.push_back(
                        sample(static_cast<uint32_t>(input), std::min(i, count - 1), k));
                }
            }
        });
        give(input, elements);
    }
    Elements result() {
        net_.refresh("n.result");
        return elementsOf(*valueAs<Numeric>(net_.pin("n.result").currentValue()));
    }
    static Elements elementsOf(const Numeric& number) {
        Elements elements;
        withElementType(number.type(), [&]<typename T>() {
            for (uint32_t i = 0; i < number.size(); ++i) {
                elements.push_back(partsIn(number.valueAt<T>(i)));
            }
        });
        return elements;
    }

private:
    template <typename T>
    static T elementOf(const std::vector<double>& parts) {
        if constexpr (std::is_integral_v<T>) {
            return tidemark::truncateTo<T>(parts[0]);
        } else {
            T element{};
            auto* floats = reinterpret_cast<float*>(&element);
            for (std::size_t k = 0; k < parts.size(); ++k) floats[k] = static_cast<float>(parts[k]);
            return element;
        }
    }
    template <typename T>
    static std::vector<double> partsIn(const T& element) {
        if constexpr (std::is_integral_v<T>) {
            return {static_cast<double>(element)};
        } else {
            const auto* floats = reinterpret_cast<const float*>(&element);
            return {floats, floats + partsOf<T>()};
        }
    }

    LogicNet net_;
    Node& node_;
    std::vector<Attribute*> numbers_;
};

// Not-a-number agrees with itself, 0 not with -0.
void expectSame(const Elements& found, const Elements& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_EQ(found[i].size(), expected[i].size());
        for (std::size_t k = 0; k < found[i].size(); ++k) {
            const double a = found[i][k];
            const double b = expected[i][k];
            if (std::isnan(a) && std::isnan(b)) continue;
            EXPECT_EQ(a, b) << "element " << i << ", component " << k;
            EXPECT_EQ(std::signbit(a), std::signbit(b)) << "element " << i << ", component " << k;
        }
    }
}

class Formulas : public testing::TestWithParam<Formula> {};

TEST_P(Formulas, EmptyInputGivesAnEmptyResult) {
    const std::size_t inputs = FormulaNode(GetParam()).numbers().size();
    for (std::size_t empty = 0; empty < inputs; ++empty) {
        FormulaNode n(GetParam());
        for (std::size_t i = 0; i < inputs; ++i) n.giveSamples(i, 3);
        EXPECT_EQ(n.result().size(), 3u);
        n.give(empty, {});
        EXPECT_EQ(n.result().size(), 0u) << n.numbers()[empty]->name();
        EXPECT_EQ(n.net().messages("n"), "");
    }
}

// Every input short in turn, and all of different lengths, against inputs made longer by hand.
TEST_P(Formulas, ShorterInputsRepeatTheirLastElement) {
    const std::size_t inputs = FormulaNode(GetParam()).numbers().size();
    constexpr uint32_t longest = 300; // more than what is done at a time
    for (std::size_t turn = 0; turn < inputs; ++turn) {
        for (const uint32_t shortest : {1u, 2u, 257u}) {
            FormulaNode unequal(GetParam());
            FormulaNode equal(GetParam());
            for (std::size_t i = 0; i < inputs; ++i) {
                const auto count =
                    i == turn ? longest : shortest + static_cast<uint32_t>(i > turn ? i - turn : 0);
                unequal.giveSamples(i, count);
                equal.giveSamples(i, count, longest);
            }
            expectSame(unequal.result(), equal.result());
        }
    }
}

TEST_P(Formulas, ComponentsGoOneByOne) {
    const Formula& formula = GetParam();
    FormulaNode n(formula);
    for (std::size_t i = 0; i < n.numbers().size(); ++i) n.giveSamples(i, 40);
    const Elements found = n.result();
    ASSERT_EQ(found.size(), 40u);
    if (found[0].size() == 1) return; // the reals themselves are held against known values
    for (std::size_t k = 0; k < found[0].size(); ++k) {
        FormulaNode real(formula, "Real");
        for (std::size_t i = 0; i < n.numbers().size(); ++i) {
            Elements parts = FormulaNode::elementsOf(n.own(i));
            for (auto& element : parts) element = {element.size() == 1 ? element[0] : element[k]};
            real.give(i, parts);
        }
        Elements component;
        for (const auto& element : found) component.push_back({element[k]});
        expectSame(component, real.result());
    }
}

TEST_P(Formulas, OutputMayBeAnInput) {
    const std::size_t inputs = FormulaNode(GetParam()).numbers().size();
    for (std::size_t inside = 0; inside < inputs; ++inside) {
        for (const uint32_t count : {1u, 3u, 400u}) {
            FormulaNode aside(GetParam());
            FormulaNode inPlace(GetParam());
            if (aside.own(inside).type() !=
                valueAs<Numeric>(aside.net().pin("n.result").value())->type())
                continue;
            ASSERT_TRUE(inPlace.node().connectInternalAttributes(inPlace.numbers()[inside],
                                                                 &inPlace.net().pin("n.result")));
            for (std::size_t i = 0; i < inputs; ++i) {
                const uint32_t own = i == inside ? count : 3;
                aside.giveSamples(i, own);
                inPlace.giveSamples(i, own);
            }
            expectSame(inPlace.result(), aside.result());
            EXPECT_EQ(inPlace.net().pin("n.result").currentValue(), &inPlace.own(inside));
        }
    }
}

// A type that the formula does not have, on each input: what was shown stays, without a word.
TEST_P(Formulas, OtherTypesComputeNothing) {
    const std::size_t inputs = FormulaNode(GetParam()).numbers().size();
    for (std::size_t other = 0; other < inputs; ++other) {
        for (const char* pin : {"q.quaternion", "s.out"}) {
            FormulaNode n(GetParam());
            LogicNet& net = n.net();
            for (std::size_t i = 0; i < inputs; ++i) n.giveSamples(i, 3);
            const Elements before = n.result();
            net.add("QuaternionFromComponents", "q");
            net.add("String", "s");
            // Past all tests of types, as a file or a host could not.
            net.pin(pin).connectTo(n.numbers()[other], nullptr);
            net.pin("n.result").markDirty(true);
            expectSame(n.result(), before);
            EXPECT_EQ(net.messages("n"), "");
        }
    }
}

TEST_P(Formulas, UpdatesLeaveTheOutputToItsReaderToClean) {
    FormulaNode n(GetParam());
    n.node().doUpdate(&n.net().pin("n.result"));
    EXPECT_FALSE(n.net().pin("n.result").isClean());
    n.net().refresh("n.result");
    EXPECT_TRUE(n.net().pin("n.result").isClean());
}

// The elements stay where they are, or nothing changes.
TEST_P(Formulas, OutputThatMayNotMoveIsRefusedOrStays) {
    const std::size_t inputs = FormulaNode(GetParam()).numbers().size();
    for (const uint32_t others : {1u, 3u, 5u, 400u}) {
        if (inputs == 1 && others != 1) continue;
        FormulaNode aside(GetParam());
        FormulaNode n(GetParam());
        Numeric& own = n.own(0);
        if (own.type() != valueAs<Numeric>(n.net().pin("n.result").value())->type()) continue;
        ASSERT_TRUE(n.node().connectInternalAttributes(n.numbers()[0], &n.net().pin("n.result")));
        for (std::size_t i = 0; i < inputs; ++i) {
            aside.giveSamples(i, i == 0 ? 3 : others);
            n.giveSamples(i, i == 0 ? 3 : others);
        }
        const void* place = nullptr;
        uint32_t room = 0;
        withElementType(own.type(), [&]<typename T>() {
            own.refValues<T>().reserve(5);
            place = own.values<T>().data();
            room = own.values<T>().capacity();
        });
        const Elements before = FormulaNode::elementsOf(own);
        own.pin(true);
        if (others <= room) {
            n.node().update(&n.net().pin("n.result"));
            expectSame(FormulaNode::elementsOf(own), aside.result());
        } else {
            EXPECT_THROW(n.node().update(&n.net().pin("n.result")), tidemark::PinnedArray);
            expectSame(FormulaNode::elementsOf(own), before);
        }
        withElementType(own.type(),
                        [&]<typename T>() { EXPECT_EQ(own.values<T>().data(), place); });
        own.pin(false);
    }
}

INSTANTIATE_TEST_SUITE_P(EveryType, Formulas, testing::ValuesIn(formulas), [](const auto& each) {
    return TM_String(each.param.type) + "Of" + each.param.first + each.param.others;
});

} // namespace
