// SPDX-License-Identifier: Apache-2.0
// A node on any chain that prints what passes.
#include "bridge/host.h"
#include "core/node.h"
#include "core/numeric.h"
#include "core/string_value.h"
#include "graph/define_node.h"

namespace weft {

class MessagePrint : public Node {
public:
    MessagePrint(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;

private:
    TM_String line() const;
    TM_String lineOfNumber(const Numeric& number) const;

    PassThroughAttribute* value_;
};

MessagePrint::MessagePrint(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"MessagePrint">();
    describe("This node prints a standard Sluice message in the MessageWindow, using a string "
             "representation of the provided input 'value'");
    value_ = addInput<PassThroughAttribute>("value", "What to print.");
    auto* through = addOutput<PassThroughAttribute>("through", "The value, unchanged.");
    connectInternalAttributes(value_, through);
}

void MessagePrint::update(Attribute*) {
    value_->pull();
    tidemark::bridge::CCallbackCenter::Instance().Message(line());
}

TM_String MessagePrint::line() const {
    const char* const node = name().c_str();
    const TM_String type = value_->specialization();
    const Value* value = value_->currentValue();
    if (!value) return name() + ": ";
    if (type.empty()) return name() + ": " + value->asString();
    const auto* number = valueAs<Numeric>(value);
    if (number && numericTypeOf(type) != NumericType::none) return lineOfNumber(*number);
    if (type == "String" || type == "ParameterType") {
        const auto* strings = valueAs<StringValue>(value);
        return name() + ": " + (strings ? strings->valueAt(0) : value->asString());
    }
    return tidemark::text::format("%s: uknown representation for %s", node, type.c_str());
}

TM_String MessagePrint::lineOfNumber(const Numeric& number) const {
    using tidemark::text::format;
    const TM_String begin = name() + ": ";
    switch (numericTypeOf(value_->specialization())) {
    case NumericType::none:
        return begin;
    case NumericType::integer:
        return begin + format("%d", number.value<int32_t>());
    case NumericType::integer64:
        // Cut to 32 bits, as it has always been printed.
        return begin + format("%d", static_cast<int32_t>(number.value<int64_t>()));
    case NumericType::real:
        return begin + format("%f", number.value<float>());
    case NumericType::vector3: {
        const auto v = number.value<Vector3<float>>();
        return begin + format("(%f, %f, %f)", v.x, v.y, v.z);
    }
    case NumericType::color4: {
        const auto c = number.value<Color4<float>>();
        return begin + format("(%f, %f, %f, %f)", c.r, c.g, c.b, c.a);
    }
    case NumericType::quaternion: {
        // w first, as everywhere in texts.
        const auto q = number.value<Quaternion<float>>();
        return begin + format("(%f, %f, %f, %f)", q.w, q.x, q.y, q.z);
    }
    case NumericType::matrix4: {
        const auto m = number.value<Matrix4<float>>();
        return begin + format("( %f %f %f %f, %f %f %f %f, %f %f %f %f, %f %f %f %f )", m[0][0],
                              m[0][1], m[0][2], m[0][3], m[1][0], m[1][1], m[1][2], m[1][3],
                              m[2][0], m[2][1], m[2][2], m[2][3], m[3][0], m[3][1], m[3][2],
                              m[3][3]);
    }
    }
    return begin;
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::MessagePrint;

SLUICE_DEFINE_NODE(MessagePrint)

} // namespace tidemark::sluice::graph
