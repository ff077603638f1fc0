// SPDX-License-Identifier: Apache-2.0
// Formulas of several operands: bounds, ranges, powers and angles of coordinates.
#include <algorithm>
#include <cmath>

#include "graph/define_node.h"
#include "nodes/values/functions/function_node.h"
#include "nodes/values/functions/real_functions.h"

namespace tidemark::sluice::graph {

using weft::NetworkManager;
using weft::NumericType;

class Clamp : public NumericFunctionNode {
public:
    Clamp(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real", "Integer"},
                              {{"in", "The value to hold between the bounds.", 0},
                               {"max", "The upper bound. It wins over a lower bound above it.", 1},
                               {"min", "The lower bound.", 0}},
                              "The value between the bounds.") {
        appendClass<"Clamp">();
        describe("Clamps the input value according to the given min and max values.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<1, 3, float, int32_t>(
            type, [](auto in, auto max, auto min) { return std::min(std::max(in, min), max); });
    }
};

class NumMapRange : public NumericFunctionNode {
public:
    NumMapRange(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(
              manager, name, parent, {"Real", "Vector3", "Color4"},
              {{"value", "The value to map.", 0},
               {"in range min", "The value that becomes 'out range min'.", 0},
               {"in range max", "The value that becomes 'out range max'.", 1},
               {"out range min", "The lower end of the new range.", 0},
               {"out range max", "The upper end of the new range.", 1}},
              "The value in the new range. Values outside the old range are not held back.") {
        appendClass<"NumMapRange">();
        describe("Maps the input value from the input range to the output range.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<2, 5, float, Vector3<float>, Color4<float>>(
            type, [](float value, float inMin, float inMax, float outMin, float outMax) {
                return (value - inMin) / (inMax - inMin) * (outMax - outMin) + outMin;
            });
    }
};

class Pow : public NumericFunctionNode {
public:
    Pow(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real"},
                              {{"base", "Base", 1}, {"exponent", "Exponent", 1}}, "Power") {
        appendClass<"Pow">();
        describe("Computes the base raised to the power exponent.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return type == NumericType::real ? onBlocks<2, 2, real_functions::pow> : nullptr;
    }
};

class Atan2 : public NumericFunctionNode {
public:
    Atan2(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real"},
                              {{"y", "Y-Coordinate", 0}, {"x", "X-Coordinate", 1}},
                              "The angle in radians.") {
        appendClass<"Atan2">();
        describe("Computes the principal value of the arc tangent of y/x (in radians [-pi,+pi]).");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<20, 2, float>(type, [](float y, float x) { return std::atan2(y, x); });
    }
};

SLUICE_DEFINE_NODE(Clamp)
SLUICE_DEFINE_NODE(NumMapRange)
SLUICE_DEFINE_NODE(Pow)
SLUICE_DEFINE_NODE(Atan2)

} // namespace tidemark::sluice::graph
