// SPDX-License-Identifier: Apache-2.0
// Arrays of pointers to objects that live elsewhere, and the ports that carry them.
//
//     struct Anchor { float depth; };
//     using AnchorValue = PointerValue<Anchor>;
//     AnchorValue* anchors = new AnchorValue(manager); // one null element
//     anchors->setValue(&anchor);
//     anchors->at(0)->depth;
#pragma once

#include "core/attribute.h"
#include "core/stored_value.h"

namespace weft {

extern template class SLUICE_API StoredValue<void*>;

/// An array of pointers that it does not own: they are copied freely, and the objects live with
/// whatever made them (the host, a node, a global variable). An element may be null; a fresh value
/// holds one null element. Two elements are equal when they are the same pointer.
///
/// What works alike for every class of object is written once over this base, whatever `T` is:
/// elements are seen as `void*`, exactly as they were converted from `T*`. The operations are those
/// of `StoredValue<void*>`; an index beyond the end reads the last element, of an empty value null.
class SLUICE_API PointerValueBase : public StoredValue<void*> {
public:
    /// One bit per element, set for a null one.
    void nullMask(BitArrayValue& mask) const override;

    /// Blanks every element that is one of `pointers`; the size stays. Null entries of `pointers`
    /// find nothing new to blank. For whoever is about to free these objects.
    virtual void removeReferencesTo(const Array<void*>& pointers);

protected:
    using StoredValue<void*>::StoredValue;
};

/// Pointers to `T`. A class of the library that is used from outside gets an
/// `extern template class SLUICE_API PointerValue<T>;` in its header and the instantiation in its
/// source, so that everybody agrees on `kind`.
template <typename T>
class PointerValue : public PointerValueBase {
public:
    static const ValueKind kind;

    explicit PointerValue(NetworkManager* manager) : PointerValueBase(manager, kind) {}

    /// `valueAt` with the type of the objects.
    T* at(uint32_t index) const { return static_cast<T*>(valueAt(index)); }
};

template <typename T>
const ValueKind PointerValue<T>::kind{"PointerValue"};

/// What the ports of pointers have in common.
class SLUICE_API PointerAttribute : public Attribute {
public:
    /// What a reader sees; one null element when the source carries something else.
    virtual const PointerValueBase& pointers() const;
    /// Element 0, null when there is none.
    void* firstPointer() const { return pointers().valueAt(0); }
    /// Where an output writes; null when that holds no pointers of this port's class.
    PointerValueBase* pointersTarget() const;
    /// The attribute's own pointers.
    PointerValueBase& ownPointers() const { return *static_cast<PointerValueBase*>(value()); }
    /// Blanks the pointers in the port's own value. Nothing is marked dirty: a reader finds null.
    void removeReferencesTo(const Array<void*>& pointers);

protected:
    /// Takes over the reference on `value`, which is of the kind `kind`.
    PointerAttribute(NetworkManager* manager, const TM_String& name, Node* parent,
                     PointerValueBase* value, const ValueKind& kind);

private:
    const ValueKind* kind_;
};

/// `attribute.pointers()` for a port that is known to carry pointers to `T`.
template <typename T>
T* pointerAt(const PointerAttribute& attribute, uint32_t index) {
    return static_cast<T*>(attribute.pointers().valueAt(index));
}

} // namespace weft
