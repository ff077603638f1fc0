// SPDX-License-Identifier: Apache-2.0
// Numbers: the seven arrays side by side, and the port that gives them a type.
#include "core/numeric.h"

#include <array>

namespace weft {

namespace {

const std::array<TM_String, 8>& names() {
    static const std::array<TM_String, 8> table = {"",        "Integer", "Integer64",  "Real",
                                                   "Vector3", "Color4",  "Quaternion", "Matrix4"};
    return table;
}

// Read by all values and written by none: `refValues` moves an array away before it can be.
template <typename T>
T* sharedDefault() {
    static T element = tidemark::ElementDefault<T>::value();
    return &element;
}

} // namespace

NumericType numericTypeOf(std::string_view specialization) {
    for (std::size_t selector = 1; selector < names().size(); ++selector) {
        if (names()[selector] == specialization) return static_cast<NumericType>(selector);
    }
    return NumericType::none;
}

const TM_String& nameOf(NumericType type) { return names()[static_cast<std::size_t>(type)]; }

const ValueKind Numeric::kind{"Numeric"};

Numeric::Numeric(NetworkManager* manager) : Value(manager, kind) {
    eachSlot([this](auto& array) { lendDefault(array); });
}

Numeric::~Numeric() = default;

template <typename Visit>
void Numeric::eachSlot(Visit visit) {
    visit(integers_);
    visit(integers64_);
    visit(reals_);
    visit(vectors_);
    visit(colors_);
    visit(quaternions_);
    visit(matrices_);
}

template <typename T>
void Numeric::lendDefault(Array<T>& array) {
    array.borrow(sharedDefault<T>(), 1, 1);
}

bool Numeric::isInlineFree() {
    bool isFree = true;
    eachSlot([&](auto& array) { isFree = isFree && !isInline(array); });
    return isFree;
}

template <typename T>
void Numeric::own(Array<T>& array) {
    if constexpr (sizeof(T) <= inlineBytes) {
        if (isInlineFree()) {
            array.borrow(new (inline_) T(*sharedDefault<T>()), 1, 1);
            return;
        }
    }
    array = Array<T>(1);
}

template void Numeric::own(Array<int32_t>&);
template void Numeric::own(Array<int64_t>&);
template void Numeric::own(Array<float>&);
template void Numeric::own(Array<Vector3<float>>&);
template void Numeric::own(Array<Color4<float>>&);
template void Numeric::own(Array<Quaternion<float>>&);
template void Numeric::own(Array<Matrix4<float>>&);

template <typename T>
void Numeric::copySlot(const Numeric& other) {
    const Array<T>& theirs = other.values<T>();
    if (!other.isShared(theirs)) {
        assign(theirs);
    } else if (!isShared(slot<T>())) {
        lendDefault(slot<T>());
    }
}

void Numeric::copyFrom(const Value* other) {
    const Numeric* number = valueAs<Numeric>(other);
    if (!number || number == this) return;
    copySlot<int32_t>(*number);
    copySlot<int64_t>(*number);
    copySlot<float>(*number);
    copySlot<Vector3<float>>(*number);
    copySlot<Color4<float>>(*number);
    copySlot<Quaternion<float>>(*number);
    copySlot<Matrix4<float>>(*number);
    type_ = number->type_;
    size_ = number->size_;
}

void Numeric::purge() {
    eachSlot([this](auto& array) { lendDefault(array); });
    size_ = 1;
}

void Numeric::pin(bool pinned) {
    // Elements that are still shared with other values get memory of their own first.
    if (pinned) withElementType(type_, [this]<typename T>() { refValues<T>(); });
    eachSlot([pinned](auto& array) { array.pin(pinned); });
}

uint64_t Numeric::estimatedSize() const {
    uint64_t bytes = 0;
    const_cast<Numeric*>(this)->eachSlot(
        [&](const auto& array) { bytes += uint64_t(array.capacity()) * sizeof(array[0]); });
    return bytes;
}

uint64_t Numeric::checkSum() const { return static_cast<uint32_t>(size() + 256u); }

void Numeric::setType(NumericType type) {
    if (type == type_) return;
    type_ = type;
    updateSize();
}

void Numeric::resize(uint32_t count) {
    withElementType(type_, [&]<typename T>() {
        Array<T>& array = slot<T>();
        if (isShared(array) && count < array.size()) own(array);
        array.resize(count);
        size_ = count;
    });
}

void Numeric::updateSize() {
    withElementType(type_, [&]<typename T>() { size_ = values<T>().size(); });
}

NumericAttribute::NumericAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : Attribute(manager, name, parent) {
    appendClass<"NumericAttribute">();
    initializeValue(new Numeric(manager));
    initializeSpecializations(allTypes());
}

void NumericAttribute::specializationChanged(const SpecializationList& list) {
    Numeric* number = numericTarget();
    if (!number) return;
    number->setType(list.size() == 1 ? numericTypeOf(list[0]) : NumericType::none);
}

TM_String NumericAttribute::debugInfo() const {
    return Attribute::debugInfo() + tidemark::text::format("array size: %u\n", numeric().size());
}

const SpecializationList& NumericAttribute::allTypes() {
    static const SpecializationList list{"Integer", "Integer64",  "Real",   "Vector3",
                                         "Color4",  "Quaternion", "Matrix4"};
    return list;
}

const Numeric& NumericAttribute::fallback() {
    // Never destroyed: attributes of static objects may still read it.
    static const Numeric* const number = new Numeric(nullptr);
    return *number;
}

} // namespace weft
