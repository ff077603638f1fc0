// SPDX-License-Identifier: Apache-2.0
// Arithmetic on the components of an element, whatever its type:
//
//     const auto plus = [](float a, float b) { return a + b; };
//     Vector3<float> sum = combineComponents(plus, v, w);
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "core/types.h"

namespace tidemark::sluice::graph {

/// The number that a component of an element is: the element itself when it is a plain number.
template <typename T>
using Component = std::conditional_t<std::is_arithmetic_v<T>, T, float>;

/// 1 for plain numbers; 3, 4, 4 and 16 for vectors, colours, quaternions and matrices.
template <typename T>
constexpr std::size_t componentCount = sizeof(T) / sizeof(Component<T>);

/// The components of an element in storage order.
template <typename T>
const Component<T>* componentsOf(const T& element) {
    return reinterpret_cast<const Component<T>*>(&element);
}
template <typename T>
Component<T>* componentsOf(T& element) {
    return reinterpret_cast<Component<T>*>(&element);
}

/// Calls `visit(k)` for the index `k` of every component, as a constant: what is kept per component
/// then needs no memory.
template <typename T, typename Visit>
[[gnu::always_inline]] inline void eachComponent(Visit visit) {
    [&]<std::size_t... k>(std::index_sequence<k...>) {
        (visit(std::integral_constant<std::size_t, k>()), ...);
    }
    (std::make_index_sequence<componentCount<T>>());
}

/// The element whose components are `function` of those of `first` and `others`.
template <typename T, typename Function, typename... Others>
[[gnu::always_inline]] inline T combineComponents(Function function, const T& first,
                                                  const Others&... others) {
    static_assert((std::is_same_v<T, Others> && ...));
    if constexpr (std::is_arithmetic_v<T>) {
        return function(first, others...);
    } else {
        T result(first);
        eachComponent<T>([&](auto k) {
            componentsOf(result)[k] = function(componentsOf(first)[k], componentsOf(others)[k]...);
        });
        return result;
    }
}

/// The element with `number` in every component.
template <typename T>
T filledElement(Component<T> number) {
    return combineComponents([number](Component<T>) { return number; }, ElementDefault<T>::value());
}

} // namespace tidemark::sluice::graph
