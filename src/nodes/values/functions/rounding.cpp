// SPDX-License-Identifier: Apache-2.0
// Rounding, absolute values, and degrees and radians.
#include <cmath>

#include "core/conversion.h"
#include "graph/define_node.h"
#include "nodes/values/functions/function_node.h"

namespace tidemark::sluice::graph {

using weft::NetworkManager;
using weft::NumericType;

namespace {

constexpr float pi = 3.14159274f;
constexpr float halfTurn = 180.0f; // degrees

} // namespace

class Abs : public NumericFunctionNode {
public:
    Abs(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Integer", "Integer64", "Real", "Vector3"},
                              {{"in", "The value whose sign is dropped.", 0}},
                              "The absolute value, component by component.") {
        appendClass<"Abs">();
        describe("Computes the absolute value of the input.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<1, 1, int32_t, int64_t, float, Vector3<float>>(type, [](auto x) {
            if constexpr (std::is_integral_v<decltype(x)>)
                return x < 0 ? wrappingSub(decltype(x)(0), x) : x;
            else
                return std::fabs(x);
        });
    }
};

class Floor : public NumericFunctionNode {
public:
    Floor(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real", "Vector3"},
                              {{"in", "The value to round down.", 0}},
                              "The largest whole number that is not above the input.") {
        appendClass<"Floor">();
        describe("Computes the floor value of the input. Examples: floor(2.3)=2; floor(-1.3)=-2");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<1, 1, float, Vector3<float>>(type,
                                                          [](float x) { return std::floor(x); });
    }
};

class Ceil : public NumericFunctionNode {
public:
    Ceil(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real", "Vector3"},
                              {{"in", "The value to round up.", 0}},
                              "The smallest whole number that is not below the input.") {
        appendClass<"Ceil">();
        describe("Computes the ceil value of the input. Examples: ceil(2.3)=3; ceil(-1.3)=-1");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<1, 1, float, Vector3<float>>(type,
                                                          [](float x) { return std::ceil(x); });
    }
};

class Round : public NumericFunctionNode {
public:
    Round(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real", "Vector3"},
                              {{"in", "The value to round. Halves go up: -2.5 becomes -2.", 0}},
                              "The nearest whole number.") {
        appendClass<"Round">();
        describe("Computes the round value of the input. Example: round(2.3)=2; round(2.7)=3");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<1, 1, float, Vector3<float>>(
            type, [](float x) { return std::floor(x + 0.5f); });
    }
};

class Radians : public NumericFunctionNode {
public:
    Radians(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real", "Vector3"},
                              {{"in", "The angle in degrees.", 0}}, "The angle in radians.") {
        appendClass<"Radians">();
        describe("Converts the input angle from degrees to radians.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<1, 1, float, Vector3<float>>(
            type, [](float x) { return x * pi / halfTurn; });
    }
};

class Degrees : public NumericFunctionNode {
public:
    Degrees(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real", "Vector3"},
                              {{"in", "The angle in radians.", 0}}, "The angle in degrees.") {
        appendClass<"Degrees">();
        describe("Converts the input angle from radians to degrees.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<1, 1, float, Vector3<float>>(
            type, [](float x) { return x * halfTurn / pi; });
    }
};

SLUICE_DEFINE_NODE(Abs)
SLUICE_DEFINE_NODE(Floor)
SLUICE_DEFINE_NODE(Ceil)
SLUICE_DEFINE_NODE(Round)
SLUICE_DEFINE_NODE(Radians)
SLUICE_DEFINE_NODE(Degrees)

} // namespace tidemark::sluice::graph
