// SPDX-License-Identifier: Apache-2.0
// Which element types a condition converts into one another, and how.
#pragma once

#include "core/conversion.h"
#include "core/types.h"

namespace tidemark::sluice::graph {

template <typename T>
constexpr bool isPlainNumber = std::is_arithmetic_v<T>;
template <typename T>
constexpr bool isVectorOrColor =
    std::is_same_v<T, Vector3<float>> || std::is_same_v<T, Color4<float>>;

/// Numbers go into numbers, vectors and colours into one another, everything into its own type.
template <typename To, typename From>
constexpr bool isConvertible = std::is_same_v<To, From> ||
                               (isPlainNumber<To> && isPlainNumber<From>) ||
                               (isVectorOrColor<To> && isVectorOrColor<From>);

/// A real goes into an integer cut towards zero, 64 bits into 32 by their low half, a colour into a
/// vector without its alpha, a vector into a colour with alpha 1.
template <typename To, typename From>
To convertedTo(const From& element) {
    static_assert(isConvertible<To, From>);
    if constexpr (std::is_same_v<To, From>) {
        return element;
    } else if constexpr (std::is_integral_v<To> && std::is_floating_point_v<From>) {
        return truncateTo<To>(element);
    } else if constexpr (isPlainNumber<To>) {
        return static_cast<To>(element);
    } else if constexpr (std::is_same_v<To, Vector3<float>>) {
        return To(element.r, element.g, element.b);
    } else {
        return To(element.x, element.y, element.z, 1.0f);
    }
}

} // namespace tidemark::sluice::graph
