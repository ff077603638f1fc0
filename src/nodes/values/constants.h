// SPDX-License-Identifier: Apache-2.0
// The constants of single values: what the user sets at the input is what the output gives.
#pragma once

#include "core/bit_array.h"
#include "core/node.h"
#include "core/numeric.h"

namespace weft {

/// A numeric constant of one type: input "in" and one output, each of one element.
class SLUICE_API NumericConstantNode : public Node {
public:
    void update(Attribute* attribute) override;

protected:
    NumericConstantNode(NetworkManager* manager, const TM_String& name, Node* parent,
                        NumericType type, const char* outputName);

private:
    NumericAttribute* in_;
    NumericAttribute* out_;
};

class SLUICE_API IntegerNode : public NumericConstantNode {
public:
    IntegerNode(NetworkManager* manager, const TM_String& name, Node* parent);
};

class SLUICE_API Integer64Node : public NumericConstantNode {
public:
    Integer64Node(NetworkManager* manager, const TM_String& name, Node* parent);
};

class SLUICE_API RealNode : public NumericConstantNode {
public:
    RealNode(NetworkManager* manager, const TM_String& name, Node* parent);
};

class SLUICE_API Vector3Node : public NumericConstantNode {
public:
    Vector3Node(NetworkManager* manager, const TM_String& name, Node* parent);
};

class SLUICE_API Color4Node : public NumericConstantNode {
public:
    Color4Node(NetworkManager* manager, const TM_String& name, Node* parent);
};

class SLUICE_API BitNode : public Node {
public:
    BitNode(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;

private:
    BitArrayAttribute* in_;
    BitArrayAttribute* out_;
};

} // namespace weft
