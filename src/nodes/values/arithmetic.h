// SPDX-License-Identifier: Apache-2.0
// The four basic arithmetic nodes. The result has the type of the first operand; which loop
// computes it is decided once, when the types settle.
#pragma once

#include "core/node.h"
#include "core/numeric.h"
#include "nodes/values/arithmetic_kernels.h"

namespace weft {

/// "in0" op "in1" gives "result", element by element; see `ArithmeticKernel`. While the type of
/// "in0" is open nothing is computed, while only that of "in1" is, the result is a copy of "in0".
class SLUICE_API ArithmeticNode : public Node {
public:
    void update(Attribute* attribute) override;
    /// "in0" and "result" are of one type; "in1" and "result" keep the names that occur in some
    /// allowed pair.
    void updateSpecializationLink(Attribute* first, Attribute* second,
                                  SpecializationList& firstList,
                                  SpecializationList& secondList) override;
    void attributeSpecializationChanged(Attribute* attribute) override;

protected:
    ArithmeticNode(NetworkManager* manager, const TM_String& name, Node* parent, Arithmetic code);

private:
    NumericAttribute* in0_ = nullptr;
    NumericAttribute* in1_ = nullptr;
    NumericAttribute* result_ = nullptr;
    ArithmeticKernel operation_ = nullptr;
    Arithmetic code_;
};

class SLUICE_API AddNode : public ArithmeticNode {
public:
    AddNode(NetworkManager* manager, const TM_String& name, Node* parent);
};

class SLUICE_API SubNode : public ArithmeticNode {
public:
    SubNode(NetworkManager* manager, const TM_String& name, Node* parent);
};

class SLUICE_API MulNode : public ArithmeticNode {
public:
    MulNode(NetworkManager* manager, const TM_String& name, Node* parent);
};

/// A 64-bit integer division by 0 ends the run.
class SLUICE_API DivNode : public ArithmeticNode {
public:
    DivNode(NetworkManager* manager, const TM_String& name, Node* parent);
};

} // namespace weft
