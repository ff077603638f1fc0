// SPDX-License-Identifier: Apache-2.0
// The payload of all number-like pins, and the polymorphic port that carries it.
#pragma once

#include "core/attribute.h"
#include "core/types.h"

namespace weft {

using tidemark::Color4;
using tidemark::Matrix4;
using tidemark::Quaternion;
using tidemark::Vector3;

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

/// One array per element type, side by side, and a selector of the one that counts. The arrays of
/// the other types stay: going back to a type finds what that type held. A value is single or
/// array only by its size.
///
/// A fresh value holds one default element per type without memory of its own for them.
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
    /// Reads what `asString` writes. Elements with a wrong number of parts are left out.
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
        if (array.isBorrowed()) own(array);
        return array;
    }
    template <typename T>
    const Array<T>& values() const {
        return const_cast<Numeric*>(this)->slot<T>();
    }
    /// Replaces the array of `T`; the size becomes its count, the selector stays.
    template <typename T>
    void setValues(const Array<T>& array) {
        refValues<T>() = array;
        size_ = array.size();
    }
    template <typename T>
    void setValue(const T& element) {
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

private:
    template <typename T>
    Array<T>& slot();
    template <typename T>
    T& refFirst() {
        Array<T>& array = refValues<T>();
        if (array.empty()) array.resize(1);
        return array[0];
    }
    /// Moves a shared default element into memory of this value.
    template <typename T>
    void own(Array<T>& array);
    template <typename T>
    void lendDefault(Array<T>& array);
    uint32_t selectedCount() const;

    Array<int32_t> integers_;
    Array<int64_t> integers64_;
    Array<float> reals_;
    Array<Vector3<float>> vectors_;
    Array<Color4<float>> colors_;
    Array<Quaternion<float>> quaternions_;
    Array<Matrix4<float>> matrices_;
    NumericType type_ = NumericType::none;
    uint32_t size_ = 1;
};

/// A numeric input or output. It may become any of the seven numeric types; once one name is left,
/// its value has that type.
class SLUICE_API NumericAttribute : public Attribute {
public:
    NumericAttribute(NetworkManager* manager, const TM_String& name, Node* parent);

    void specializationChanged(const SpecializationList& list) override;
    TM_String debugInfo() const override;

    /// What a reader sees; an empty default when the source carries something else.
    const Numeric& numeric() const;
    /// Where an output writes; null when that is not a number.
    Numeric* numericTarget() const { return valueAs<Numeric>(writeTarget()); }
    /// The attribute's own number.
    Numeric& ownNumeric() const { return *static_cast<Numeric*>(value()); }

    /// "Integer", "Integer64", "Real", "Vector3", "Color4", "Quaternion", "Matrix4".
    static const SpecializationList& allTypes();
};

} // namespace weft
