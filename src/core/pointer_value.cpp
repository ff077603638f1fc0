// SPDX-License-Identifier: Apache-2.0
// Pointers to objects that live elsewhere, as values.
#include "core/pointer_value.h"

#include <algorithm>

#include "core/bit_array.h"

namespace weft {

template class StoredValue<void*>;

namespace {

// Below this many pointers a plain search is faster than a sorted copy.
constexpr uint32_t sortedFrom = 4;

// What a port shows whose source carries something else. Never destroyed: attributes of static
// objects may still read it.
const PointerValueBase& nothing() {
    static const PointerValueBase* const fallback = new PointerValue<void>(nullptr);
    return *fallback;
}

} // namespace

void PointerValueBase::nullMask(BitArrayValue& mask) const {
    const Array<void*>& elements = values();
    mask.resize(elements.size(), false);
    for (uint32_t i = 0; i < elements.size(); ++i) mask.setBit(i, elements[i] == nullptr);
}

void PointerValueBase::removeReferencesTo(const Array<void*>& pointers) {
    if (pointers.empty()) return;
    Array<void*> sorted;
    if (pointers.size() >= sortedFrom) {
        sorted = pointers;
        std::sort(sorted.begin(), sorted.end(), std::less<>());
    }
    const auto isListed = [&](void* element) {
        if (sorted.empty()) return pointers.contains(element);
        return std::binary_search(sorted.begin(), sorted.end(), element, std::less<>());
    };
    for (uint32_t i = 0; i < values().size(); ++i) {
        if (isListed(values()[i])) setValueAt(i, nullptr);
    }
}

PointerAttribute::PointerAttribute(NetworkManager* manager, const TM_String& name, Node* parent,
                                   PointerValueBase* value, const ValueKind& kind)
    : Attribute(manager, name, parent), kind_(&kind) {
    initializeValue(value);
}

const PointerValueBase& PointerAttribute::pointers() const {
    const Value* shown = currentValue();
    if (!shown || !shown->isKind(*kind_)) return nothing();
    return *static_cast<const PointerValueBase*>(shown);
}

void PointerAttribute::removeReferencesTo(const Array<void*>& pointers) {
    // It may have been given a value of another class.
    if (value() && value()->isKind(*kind_)) ownPointers().removeReferencesTo(pointers);
}

PointerValueBase* PointerAttribute::pointersTarget() const {
    Value* target = writeTarget();
    if (!target || !target->isKind(*kind_)) return nullptr;
    return static_cast<PointerValueBase*>(target);
}

} // namespace weft
