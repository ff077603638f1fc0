// SPDX-License-Identifier: Apache-2.0
// Constants of numbers, vectors, colours and bits.
#include "nodes/values/constants.h"

#include <array>

#include "graph/define_node.h"

namespace weft {

namespace {

const SpecializationList& listOf(NumericType type) {
    static const std::array<SpecializationList, 8> lists = [] {
        std::array<SpecializationList, 8> made;
        for (std::size_t i = 1; i < made.size(); ++i) {
            made[i] = SpecializationList::single(nameOf(static_cast<NumericType>(i)));
        }
        return made;
    }();
    return lists[static_cast<std::size_t>(type)];
}

void copyThrough(Attribute& in, Attribute& out) {
    in.pull();
    if (Value* target = out.writeTarget()) target->copyFrom(in.currentValue());
    out.valueChanged();
}

} // namespace

NumericConstantNode::NumericConstantNode(NetworkManager* manager, const TM_String& name,
                                         Node* parent, NumericType type, const char* outputName)
    : Node(manager, name, parent) {
    in_ = addInput<NumericAttribute>("in", "The constant's value.");
    out_ = addOutput<NumericAttribute>(outputName, "The value set at the input.");
    setAttributeAllowedSpecializations(in_, listOf(type));
    setAttributeAllowedSpecializations(out_, listOf(type));
    in_->ownNumeric().resize(1);
    out_->ownNumeric().resize(1);
    setAttributeAffect(in_, out_);
}

void NumericConstantNode::update(Attribute*) { copyThrough(*in_, *out_); }

IntegerNode::IntegerNode(NetworkManager* manager, const TM_String& name, Node* parent)
    : NumericConstantNode(manager, name, parent, NumericType::integer, "integer") {
    appendClass<"Integer">();
    describe("An integer constant. Suitable for direct user input.");
}

Integer64Node::Integer64Node(NetworkManager* manager, const TM_String& name, Node* parent)
    : NumericConstantNode(manager, name, parent, NumericType::integer64, "integer64") {
    appendClass<"Integer64">();
    describe("A 64 bit integer constant. Suitable for direct user input. The interface accepts "
             "values of the 32 bit range only.");
}

RealNode::RealNode(NetworkManager* manager, const TM_String& name, Node* parent)
    : NumericConstantNode(manager, name, parent, NumericType::real, "real") {
    appendClass<"Real">();
    describe("A float constant. Suitable for direct user input.");
}

Vector3Node::Vector3Node(NetworkManager* manager, const TM_String& name, Node* parent)
    : NumericConstantNode(manager, name, parent, NumericType::vector3, "vector") {
    appendClass<"Vector3">();
    describe("A three component float vector constant.\nSuitable for direct user input.");
}

Color4Node::Color4Node(NetworkManager* manager, const TM_String& name, Node* parent)
    : NumericConstantNode(manager, name, parent, NumericType::color4, "color") {
    appendClass<"Color4">();
    describe("A four component float color constant. Component values vary from 0.0 to 1.0.\n"
             "Suitable for direct user input.");
}

BitNode::BitNode(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"Bit">();
    describe("A bit constant. Suitable for direct user input.");
    in_ = addInput<BitArrayAttribute>("in", "The constant's value.");
    out_ = addOutput<BitArrayAttribute>("bit", "The value set at the input.");
    setAttributeAffect(in_, out_);
}

void BitNode::update(Attribute*) { copyThrough(*in_, *out_); }

} // namespace weft

namespace tidemark::sluice::graph {

using weft::BitNode;
using weft::Color4Node;
using weft::Integer64Node;
using weft::IntegerNode;
using weft::RealNode;
using weft::Vector3Node;

SLUICE_DEFINE_NODE(RealNode)
SLUICE_DEFINE_NODE(IntegerNode)
SLUICE_DEFINE_NODE(Integer64Node)
SLUICE_DEFINE_NODE(BitNode)
SLUICE_DEFINE_NODE(Vector3Node)
SLUICE_DEFINE_NODE(Color4Node)

} // namespace tidemark::sluice::graph
