// SPDX-License-Identifier: Apache-2.0
// Ports of curves and keys, and the end of references to what is freed.
#include "nodes/values/curves/curve_attributes.h"

#include "graph/scene_manager.h"

namespace weft {

template class PointerValue<tidemark::ANIFloatBase>;
template class PointerValue<tidemark::PointInfo>;

namespace {

template <typename Attr>
void blankReferences(const Array<void*>& objects) {
    using tidemark::sluice::graph::SceneManager;
    SceneManager::instance().removeAllReferencesToPointers<Attr>(objects);
}

} // namespace

CurveAttribute::CurveAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : PointerAttribute(manager, name, parent, new CurveValue(manager), CurveValue::kind) {
    appendClass<"CurveAttribute">();
    static const SpecializationList types{"Curve"};
    initializeSpecializations(types);
    tidemark::setCurveReleaseHook(blankReferences<CurveAttribute>);
}

KeyAttribute::KeyAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : PointerAttribute(manager, name, parent, new KeyValue(manager), KeyValue::kind) {
    appendClass<"KeyAttribute">();
    static const SpecializationList types{"Key"};
    initializeSpecializations(types);
    tidemark::setKeyReleaseHook(blankReferences<KeyAttribute>);
}

} // namespace weft
