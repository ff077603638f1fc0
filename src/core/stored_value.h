// SPDX-License-Identifier: Apache-2.0
// Arrays of elements that a value holds itself, such as strings and boxes.
#pragma once

#include <cstddef>

#include "core/limits.h"
#include "core/value.h"

namespace weft {

/// An array of `T`, compared by `T`'s equality. A fresh value holds one default element, without a
/// heap block of its own for it when `T` is small.
///
/// A derived class names its kind and gives the text forms:
///
///     class BoxValue : public StoredValue<Box3<float>> {
///     public:
///         static const ValueKind kind;
///         explicit BoxValue(NetworkManager* manager) : StoredValue(manager, kind) {}
///     };
template <typename T>
class StoredValue : public Value {
public:
    uint32_t size() const override { return elements_.size(); }
    void copyFrom(const Value* other) override {
        if (!other || other == this || !other->isKind(*kind_)) return;
        const auto* stored = static_cast<const StoredValue*>(other);
        checkGrowth(stored->size());
        elements_ = stored->elements_;
    }
    void purge() override { becomeDefault(); }
    uint64_t estimatedSize() const override { return uint64_t(elements_.capacity()) * sizeof(T); }
    void pin(bool pinned) override { elements_.pin(pinned); }
    bool isPinned() const override { return elements_.isPinned(); }

    virtual const Array<T>& values() const { return elements_; }
    /// For writing. Who lets the array grow calls `limits::checkElements` before.
    virtual Array<T>& refValues() { return elements_; }
    /// Element `index`; beyond the end the last one, of an empty value a default.
    virtual const T& valueAt(uint32_t index) const {
        const uint32_t count = elements_.size();
        if (count == 0) return emptyElement();
        return elements_[index < count ? index : count - 1];
    }
    /// New elements are default; existing ones stay.
    virtual void setSize(uint32_t count) {
        checkGrowth(count);
        elements_.resize(count);
    }
    /// A larger index is ignored.
    virtual void setValueAt(uint32_t index, const T& element) {
        if (index < elements_.size()) elements_[index] = element;
    }
    /// The rest keep their order. A larger index is ignored.
    virtual void removeAt(uint32_t index) {
        if (index < elements_.size()) elements_.removeAt(index);
    }

    /// Makes `element` the only one.
    void setValue(const T& element) {
        T kept(element);
        setSize(1);
        elements_[0] = std::move(kept);
    }
    void append(T element) {
        if (elements_.size() == elements_.capacity()) checkGrowth(uint64_t(elements_.size()) + 1);
        elements_.append(std::move(element));
    }

protected:
    StoredValue(NetworkManager* manager, const ValueKind& kind)
        : Value(manager, kind), kind_(&kind) {
        becomeDefault();
    }

private:
    static constexpr std::size_t inlineBytes = sizeof(T) <= 32 ? sizeof(T) : 0;

    static const T& emptyElement() {
        static const T element = tidemark::ElementDefault<T>::value();
        return element;
    }
    void checkGrowth(uint64_t count) const {
        if (count > elements_.capacity()) tidemark::limits::checkElements(count, sizeof(T));
    }
    void becomeDefault() {
        elements_.reset();
        if constexpr (inlineBytes != 0) {
            elements_.borrow(new (inline_) T(tidemark::ElementDefault<T>::value()), 1, 1);
        } else {
            elements_.resize(1);
        }
    }

    const ValueKind* kind_;
    alignas(
        T) unsigned char inline_[inlineBytes != 0 ? inlineBytes : 1]; // outlives the array on it
    Array<T> elements_;
};

} // namespace weft
