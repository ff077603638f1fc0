// SPDX-License-Identifier: Apache-2.0
// The right side of comparisons, block by block: elements of an array whose last one repeats, of
// another type if need be, or one constant.
#pragma once

#include <array>

#include "core/numeric.h"
#include "nodes/values/conditions/element_conversion.h"
#include "nodes/values/conditions/element_tests.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

/// What elements of type `T` are compared with. A new one is the default element of `T`.
///
/// Blocks are asked for in rising order, each but the last of one length.
template <typename T>
class RightSide {
public:
    void setConstant(const T& constant) {
        constant_ = constant;
        fill_ = nullptr;
        direct_ = 0;
        isRepeating_ = false;
    }

    /// The elements of `number`, which stays as it is while this is used. False when they cannot be
    /// compared with `T`.
    bool setNumeric(const weft::Numeric& number) {
        bool isCompatible = false;
        weft::withElementType(number.type(), [&]<typename From>() {
            if constexpr (isConvertible<T, From>) {
                isCompatible = true;
                setElements<From>(number);
            }
        });
        return isCompatible;
    }

    /// The elements that `number` has of type `T`, whichever its type is.
    void setElementsOf(const weft::Numeric& number) { setElements<T>(number); }

    /// `count` elements, at most `mostPerBlock`, from index `first` on; good until the next call.
    const T* block(uint32_t first, uint32_t count) {
        if (first + uint64_t(count) <= direct_) return elements_ + first;
        if (!isRepeating_) {
            if (fill_) {
                fill_(*number_, first, count, buffer_.data());
            } else {
                std::fill_n(buffer_.begin(), count, constant_);
            }
            isRepeating_ = !fill_ || first >= last_;
        }
        return buffer_.data();
    }

private:
    using Fill = void (*)(const weft::Numeric& number, uint32_t first, uint32_t count, T* out);

    template <typename From>
    void setElements(const weft::Numeric& number) {
        const uint32_t count = elementCount<From>(number);
        if (count <= 1) return setConstant(convertedTo<T>(number.valueAt<From>(0)));
        number_ = &number;
        fill_ = fillFrom<From>;
        last_ = count - 1;
        isRepeating_ = false;
        if constexpr (std::is_same_v<T, From>) {
            elements_ = number.values<T>().data();
            direct_ = count;
        }
    }

    template <typename From>
    static void fillFrom(const weft::Numeric& number, uint32_t first, uint32_t count, T* out) {
        const From* elements = number.values<From>().data();
        const uint32_t last = elementCount<From>(number) - 1;
        for (uint32_t i = 0; i < count; ++i) {
            out[i] = convertedTo<T>(elements[std::min(first + i, last)]);
        }
    }

    T constant_ = ElementDefault<T>::value();
    Fill fill_ = nullptr; // null: the constant
    const weft::Numeric* number_ = nullptr;
    const T* elements_ = nullptr; // to be read in place
    uint32_t direct_ = 0;         // how many of them
    uint32_t last_ = 0;           // the index of the element that repeats
    bool isRepeating_ = false;    // the buffer holds what all further blocks are
    std::array<T, mostPerBlock<T>> buffer_;
};

} // namespace tidemark::sluice::graph
