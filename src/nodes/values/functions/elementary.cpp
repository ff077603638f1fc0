// SPDX-License-Identifier: Apache-2.0
// Elementary functions of reals: trigonometry, exponentials, logarithms and roots.
#include <cmath>

#include "graph/define_node.h"
#include "nodes/values/functions/function_node.h"
#include "nodes/values/functions/real_functions.h"

namespace tidemark::sluice::graph {

using weft::NetworkManager;
using weft::NumericType;

namespace {

void rootsOfIntegers(const weft::Node& node, const NumericFunctionNode::Inputs& in,
                     weft::Numeric& result) {
    mapNumbers<float>(
        node, 2, result, [](int32_t x) { return std::sqrt(static_cast<float>(x)); },
        elementsOf<int32_t>(*in[0]));
}

} // namespace

class Sin : public NumericFunctionNode {
public:
    Sin(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real"}, {{"in", "The angle in radians.", 0}},
                              "The sine of the angle.") {
        appendClass<"Sin">();
        describe("Evaluates the sin-function.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return type == NumericType::real ? onBlocks<1, 1, real_functions::sin> : nullptr;
    }
};

class Cos : public NumericFunctionNode {
public:
    Cos(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real"}, {{"in", "The angle in radians.", 0}},
                              "The cosine of the angle.") {
        appendClass<"Cos">();
        describe("Evaluates the cos-function.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return type == NumericType::real ? onBlocks<1, 1, real_functions::cos> : nullptr;
    }
};

class Tan : public NumericFunctionNode {
public:
    Tan(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real"}, {{"in", "The angle in radians.", 0}},
                              "The tangent of the angle.") {
        appendClass<"Tan">();
        describe("Evaluates the tan-function.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<20, 1, float>(type, [](float x) { return std::tan(x); });
    }
};

class Exp : public NumericFunctionNode {
public:
    Exp(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real"}, {{"in", "The exponent.", 0}},
                              "e raised to the power of the input.") {
        appendClass<"Exp">();
        describe("Computes the base-e exponential of the input value.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return type == NumericType::real ? onBlocks<1, 1, real_functions::exp> : nullptr;
    }
};

class Log : public NumericFunctionNode {
public:
    Log(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real"},
                              {{"in",
                                "The value whose logarithm is taken. 0 gives minus infinity, a "
                                "negative one not-a-number.",
                                1}},
                              "The natural logarithm.") {
        appendClass<"Log">();
        describe("Computes the natural logarithm of the input value.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return type == NumericType::real ? onBlocks<1, 1, real_functions::log> : nullptr;
    }
};

class Log10 : public NumericFunctionNode {
public:
    Log10(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(manager, name, parent, {"Real"},
                              {{"in",
                                "The value whose logarithm is taken. 0 gives minus infinity, a "
                                "negative one not-a-number.",
                                1}},
                              "The logarithm to base 10.") {
        appendClass<"Log10">();
        describe("Computes the base-10 logarithm of the input value.");
    }

protected:
    Routine routineFor(NumericType type) const override {
        return componentwise<8, 1, float>(type, [](float x) { return std::log10(x); });
    }
};

class Sqrt : public NumericFunctionNode {
public:
    Sqrt(NetworkManager* manager, const TM_String& name, Node* parent)
        : NumericFunctionNode(
              manager, name, parent, {"Real", "Integer"},
              {{"in", "The value whose root is taken. A negative one gives not-a-number.", 0}},
              "The square root, a real.") {
        appendClass<"Sqrt">();
        describe("Computes the square root of the input value.");
        setResultType("Real");
    }
    // The result is a real whatever the input is.
    void updateSpecializationLink(weft::Attribute*, weft::Attribute*, weft::SpecializationList&,
                                  weft::SpecializationList&) override {}

protected:
    Routine routineFor(NumericType type) const override {
        if (type == NumericType::integer) return rootsOfIntegers;
        return componentwise<2, 1, float>(type, [](float x) { return std::sqrt(x); });
    }
};

SLUICE_DEFINE_NODE(Sin)
SLUICE_DEFINE_NODE(Cos)
SLUICE_DEFINE_NODE(Tan)
SLUICE_DEFINE_NODE(Exp)
SLUICE_DEFINE_NODE(Log)
SLUICE_DEFINE_NODE(Log10)
SLUICE_DEFINE_NODE(Sqrt)

} // namespace tidemark::sluice::graph
