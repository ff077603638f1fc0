// SPDX-License-Identifier: Apache-2.0
// The payload of all number-like pins, and the polymorphic port that carries it.
#pragma once

#include <type_traits>

#include "core/attribute.h"
#include "core/types.h"

namespace weft {

/// The numeric type selector: which of a `Numeric`'s arrays counts. Not the type numbers of pins.
enum class NumericType : int32_t {
    none = 0,
    integer = 1,
    integer64 = 2,
    real = 3,
    vector3 = 4,
    color4 = 5,
    quaternion = 6,
    matrix4 = 7,
};

/// The selector of a specialization name, compared whole; `none` for any other name.
SLUICE_API NumericType numericTypeOf(std::string_view specialization);
/// The specialization name of a selector; empty for `none`.
SLUICE_API const TM_String& nameOf(NumericType type);

/// The selector of an element type.
template <typename T>
constexpr NumericType numericTypeFor = NumericType::none;
template <>
inline constexpr NumericType numericTypeFor<int32_t> = NumericType::integer;
template <>
inline constexpr NumericType numericTypeFor<int64_t> = NumericType::integer64;
template <>
inline constexpr NumericType numericTypeFor<float> = NumericType::real;
template <>
inline constexpr NumericType numericTypeFor<Vector3<float>> = NumericType::vector3;
template <>
inline constexpr NumericType numericTypeFor<Color4<float>> = NumericType::color4;
template <>
inline constexpr NumericType numericTypeFor<Quaternion<float>> = NumericType::quaternion;
template <>
inline constexpr NumericType numericTypeFor<Matrix4<float>> = NumericType::matrix4;

/// Calls `visit.template operator()<T>()` with the element type of `type`; does nothing for `none`.
///
///     withElementType(number.type(), [&]<typename T>() { number.refValues<T>().clear(); });
template <typename Visit>
void withElementType(NumericType type, Visit visit) {
    switch (type) {
    case NumericType::none:
        return;
    case NumericType::integer:
        return visit.template operator()<int32_t>();
    case NumericType::integer64:
        return visit.template operator()<int64_t>();
    case NumericType::real:
        return visit.template operator()<float>();
    case NumericType::vector3:
        return visit.template operator()<Vector3<float>>();
    case NumericType::color4:
        return visit.template operator()<Color4<float>>();
    case NumericType::quaternion:
        return visit.template operator()<Quaternion<float>>();
    case NumericType::matrix4:
        return visit.template operator()<Matrix4<float>>();
    }
}

/// One array per element type, side by side, and a selector of the one that counts. The arrays of
/// the other types stay: going back to a type finds what that type held. A value is single or
/// array only by its size.
///
/// A fresh value holds one default element per type without memory of its own for them: each array
/// borrows an element that all values share, until it is written for the first time. Then it moves
/// into the small buffer inside this object if that is free and large enough, or else to the heap.
class SLUICE_API Numeric : public Value {
public:
    static const ValueKind kind;

    explicit Numeric(NetworkManager* manager);
    ~Numeric() override;

    // Value.

    uint32_t size() const override { return size_; }
    void copyFrom(const Value* other) override;
    /// "[selector] elements"; empty without a selector. Numbers print bare, the rest in
    /// parentheses; a quaternion with w first; a newline after every twentieth element.
    TM_String asString() const override;
    /// Reads what `asString` writes. Elements with a wrong number of parts are left out; a text
    /// that does not begin with a selector of 1 to 7 changes nothing.
    void fromString(const TM_String& text) override;
    void purge() override;
    uint64_t estimatedSize() const override;
    uint64_t checkSum() const override;

    // Type and size.

    NumericType type() const { return type_; }
    void setType(NumericType type);
    /// Elements of the selected array: existing ones kept, new ones default. Nothing without a
    /// selector.
    void resize(uint32_t count);
    /// Takes the size of the selected array over, after it was changed through `refValues`.
    void updateSize();

    // Typed access. `T` is int32_t, int64_t, float, or a Vector3, Color4, Quaternion or Matrix4 of
    // float, whichever type is selected.

    /// For writing elements or count; the caller calls `updateSize` or `setSize` when it changed
    /// the count.
    template <typename T>
    Array<T>& refValues() {
        Array<T>& array = slot<T>();
        if (isShared(array)) own(array);
        return array;
    }
    template <typename T>
    const Array<T>& values() const {
        return const_cast<Numeric*>(this)->slot<T>();
    }
    /// Replaces the array of `T`; the size becomes its count, the selector stays.
    template <typename T>
    void setValues(const Array<T>& array) {
        assign(array);
        size_ = array.size();
    }
    /// One element of the selected type, then element 0 of `T`'s array.
    template <typename T>
    void setValue(const T& element) {
        if (type_ == numericTypeFor<T>) {
            Array<T>& array = refValues<T>();
            if (array.size() != 1) array.resize(1);
            array[0] = element;
            size_ = 1;
            return;
        }
        resize(1);
        if (size_ != 0) refFirst<T>() = element;
    }
    /// A larger index is ignored.
    template <typename T>
    void setValueAt(uint32_t index, const T& element) {
        Array<T>& array = refValues<T>();
        if (index < size_ && index < array.size()) array[index] = element;
    }
    /// Element `index`; beyond the end the last one, of an empty value a default.
    template <typename T>
    T valueAt(uint32_t index) const {
        const Array<T>& array = values<T>();
        const uint32_t count = size_ < array.size() ? size_ : array.size();
        if (count == 0) return tidemark::ElementDefault<T>::value();
        return array[index < count ? index : count - 1];
    }
    template <typename T>
    T value() const {
        return valueAt<T>(0);
    }
    template <typename T>
    T valueChecking() const {
        return valueAt<T>(0);
    }
    void setSize(uint32_t count) { size_ = count; }
    void pin(bool pinned) override;
    bool isPinned() const override { return integers_.isPinned(); }

private:
    static constexpr std::size_t inlineBytes = 16;

    template <typename T>
    Array<T>& slot() {
        if constexpr (std::is_same_v<T, int32_t>)
            return integers_;
        else if constexpr (std::is_same_v<T, int64_t>)
            return integers64_;
        else if constexpr (std::is_same_v<T, float>)
            return reals_;
        else if constexpr (std::is_same_v<T, Vector3<float>>)
            return vectors_;
        else if constexpr (std::is_same_v<T, Color4<float>>)
            return colors_;
        else if constexpr (std::is_same_v<T, Quaternion<float>>)
            return quaternions_;
        else {
            static_assert(std::is_same_v<T, Matrix4<float>>, "not an element type of numbers");
            return matrices_;
        }
    }
    template <typename Visit>
    void eachSlot(Visit visit);
    template <typename T>
    T& refFirst() {
        Array<T>& array = refValues<T>();
        if (array.empty()) array.resize(1);
        return array[0];
    }
    template <typename T>
    bool isInline(const Array<T>& array) const {
        return static_cast<const void*>(array.data()) == inline_;
    }
    /// True while the array reads the element that all values share.
    template <typename T>
    bool isShared(const Array<T>& array) const {
        return array.isBorrowed() && !isInline(array);
    }
    bool isInlineFree();
    /// Moves a shared default element into memory of this value.
    template <typename T>
    void own(Array<T>& array);
    template <typename T>
    void lendDefault(Array<T>& array);
    template <typename T>
    void assign(const Array<T>& array) {
        // What does not fit into the shared element leaves it without an own one in between.
        Array<T>& mine = slot<T>();
        if (isShared(mine) && array.size() <= mine.capacity()) own(mine);
        mine = array;
    }
    template <typename T>
    void copySlot(const Numeric& other);

    // First what single numbers touch.
    NumericType type_ = NumericType::none;
    uint32_t size_ = 1;
    alignas(8) unsigned char inline_[inlineBytes];
    Array<float> reals_;
    Array<int32_t> integers_;
    Array<int64_t> integers64_;
    Array<Vector3<float>> vectors_;
    Array<Color4<float>> colors_;
    Array<Quaternion<float>> quaternions_;
    Array<Matrix4<float>> matrices_;
};

/// A numeric input or output. It may become any of the seven numeric types; once one name is left,
/// its value has that type.
class SLUICE_API NumericAttribute : public Attribute {
public:
    NumericAttribute(NetworkManager* manager, const TM_String& name, Node* parent);

    void specializationChanged(const SpecializationList& list) override;
    TM_String debugInfo() const override;

    /// What a reader sees; a fresh value without a type when the source carries something else.
    const Numeric& numeric() const {
        const Numeric* number = valueAs<Numeric>(currentValue());
        return number ? *number : fallback();
    }
    /// Where an output writes; null when that is not a number.
    Numeric* numericTarget() const { return valueAs<Numeric>(writeTarget()); }
    /// The attribute's own number.
    Numeric& ownNumeric() const { return *static_cast<Numeric*>(value()); }

    /// "Integer", "Integer64", "Real", "Vector3", "Color4", "Quaternion", "Matrix4".
    static const SpecializationList& allTypes();

private:
    static const Numeric& fallback();
};

} // namespace weft
