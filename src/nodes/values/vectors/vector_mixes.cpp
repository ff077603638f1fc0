// SPDX-License-Identifier: Apache-2.0
// Vectors between vectors, and vectors with their components in another order.
#include <algorithm>
#include <array>

#include "core/enum_value.h"
#include "graph/define_node.h"
#include "nodes/values/vectors/element_nodes.h"
#include "nodes/values/vectors/vector_math.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::BitArrayAttribute;
using weft::EnumAttribute;
using weft::NetworkManager;
using weft::NumericAttribute;

class Vector3Interpolate : public vectors::ElementNode {
public:
    Vector3Interpolate(NetworkManager* manager, const TM_String& name, Node* parent)
        : ElementNode(manager, name, parent) {
        appendClass<"Vector3Interpolate">();
        describe("Interpolates linearly between the given vectors.");
        first_ = addNumbers<Vector3<float>>({"first", "The vector at blend 0."});
        second_ = addNumbers<Vector3<float>>({"second", "The vector at blend 1.", {1, 1, 1}});
        blend_ = addNumbers<float>(
            {"blend", "How far to go from the first vector to the second one.", 0.5f});
        clamp_ = addInput<BitArrayAttribute>(
            "clamp", "If true, a blend below 0 counts as 0 and one above 1 as 1.");
        clamp_->setElementCountRule(1);
        result_ = addResults<Vector3<float>>({"result", "The interpolated vector."});
        setAttributeAffectedByAllInputs(result_);
    }

    void update(Attribute*) override {
        first_->pull();
        second_->pull();
        blend_->pull();
        clamp_->pull();
        if (vectors::doSizesDiffer(*first_, *second_)) {
            pushError(text::format("[%s] input attributes size differs. (%d, %d)", name().c_str(),
                                   static_cast<int>(first_->numeric().size()),
                                   static_cast<int>(second_->numeric().size())));
        }
        if (clamp_->lastBit()) {
            interpolate([](const Vector3<float>& first, const Vector3<float>& second, float blend) {
                return vectors::interpolated(first, second, std::clamp(blend, 0.0f, 1.0f));
            });
        } else {
            interpolate([](const Vector3<float>& first, const Vector3<float>& second, float blend) {
                return vectors::interpolated(first, second, blend);
            });
        }
    }

private:
    template <typename Function>
    void interpolate(Function function) {
        write<Vector3<float>>(*result_, 1, function, elementsOf<Vector3<float>>(first_->numeric()),
                              elementsOf<Vector3<float>>(second_->numeric()),
                              elementsOf<float>(blend_->numeric()));
    }

    NumericAttribute* first_;
    NumericAttribute* second_;
    NumericAttribute* blend_;
    BitArrayAttribute* clamp_;
    NumericAttribute* result_;
};

class Vector3Reorder : public vectors::ElementNode {
public:
    Vector3Reorder(NetworkManager* manager, const TM_String& name, Node* parent)
        : ElementNode(manager, name, parent) {
        appendClass<"Vector3Reorder">();
        describe("Changes the order of the components of the given vector.");
        vector_ = addNumbers<Vector3<float>>({"vector", "The vector to reorder."});
        reorder_ = addInput<EnumAttribute>(
            "reorder", "The new order: which component becomes the first, second and third one. A "
                       "number that is none of the options leaves the vector as it is.");
        reorder_->setOptions({"XZY", "YXZ", "YZX", "ZXY", "ZYX"});
        reorder_->setElementCountRule(1);
        result_ = addResults<Vector3<float>>({"result", "The reordered vector."});
        setAttributeAffectedByAllInputs(result_);
    }

    void update(Attribute*) override {
        vector_->pull();
        reorder_->pull();
        const Order order = orderOf(reorder_->enumValue(0));
        write<Vector3<float>>(
            *result_, 0.6,
            [order](const Vector3<float>& v) {
                return Vector3<float>(v[order[0]], v[order[1]], v[order[2]]);
            },
            elementsOf<Vector3<float>>(vector_->numeric()));
    }

private:
    using Order = std::array<int, 3>;

    static Order orderOf(int32_t key) {
        constexpr std::array<Order, 5> orders = {
            {{0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}}};
        const auto index = static_cast<uint32_t>(key);
        return index < orders.size() ? orders[index] : Order{0, 1, 2};
    }

    NumericAttribute* vector_;
    EnumAttribute* reorder_;
    NumericAttribute* result_;
};

SLUICE_DEFINE_NODE(Vector3Interpolate)
SLUICE_DEFINE_NODE(Vector3Reorder)

} // namespace tidemark::sluice::graph
