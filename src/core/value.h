// SPDX-License-Identifier: Apache-2.0
// The payload of attributes.
#pragma once

#include "core/object.h"

namespace weft {

class BitArrayValue;

/// Tells value classes apart without a run-time cast; one static tag per class.
struct ValueKind {
    const char* name;
};

/// A typed payload: an array of elements of one kind. A value may be read by many attributes and
/// belongs to none of them: it lives as long as somebody holds a reference.
class SLUICE_API Value : public Object {
public:
    Value(NetworkManager* manager, const ValueKind& kind) : Object(manager), kind_(&kind) {}
    ~Value() override = default;

    /// Number of elements.
    virtual uint32_t size() const { return 1; }
    /// Takes over the content of a value of the same class; anything else changes nothing.
    virtual void copyFrom(const Value* other) { (void)other; }
    virtual TM_String asString() const { return {}; }
    virtual void fromString(const TM_String& text) { (void)text; }
    /// Gives memory back and returns to the default content.
    virtual void purge() {}
    /// Bytes held.
    virtual uint64_t estimatedSize() const { return 0; }
    virtual uint64_t checkSum() const { return size(); }
    /// Pinned: the value may be used by several threads as long as no two of them write the same
    /// element. What would move its elements to other memory, `purge` included, throws
    /// `tidemark::PinnedArray`. Classes without elements of their own ignore it.
    virtual void pin(bool pinned) { (void)pinned; }
    virtual bool isPinned() const { return false; }
    /// Resizes `mask` to `size()` bits and sets a bit for each null element.
    virtual void nullMask(BitArrayValue& mask) const;

    bool isKind(const ValueKind& kind) const { return kind_ == &kind; }

private:
    const ValueKind* kind_;
};

/// `value` as a `T`, or null when it is null or of another class. `T::kind` is the class's tag.
template <typename T>
T* valueAs(Value* value) {
    return value && value->isKind(T::kind) ? static_cast<T*>(value) : nullptr;
}
template <typename T>
const T* valueAs(const Value* value) {
    return value && value->isKind(T::kind) ? static_cast<const T*>(value) : nullptr;
}

} // namespace weft
