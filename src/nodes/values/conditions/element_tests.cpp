// SPDX-License-Identifier: Apache-2.0
// The loops behind conditions: 32 elements at a time without a branch, which the compiler turns
// into vector instructions, built for two instruction sets.
#include "nodes/values/conditions/element_tests.h"

#include <array>

#include "nodes/values/components.h"
#include "platform/processors.h"

namespace tidemark::sluice::graph {

namespace {

// Tests of two numbers.

struct Equal {
    static bool holds(int32_t a, int32_t b) { return a == b; }
    // Both orders are looked at, without a branch.
    static bool holds(float a, float b) {
        const bool isLess = a < b;
        const bool reachesUp = a + equalityTolerance >= b;
        const bool reachesDown = b + equalityTolerance >= a;
        return (isLess & reachesUp) | (!isLess & reachesDown);
    }
};
struct Less {
    template <typename T>
    static bool holds(T a, T b) {
        return a < b;
    }
};
struct LessOrEqual {
    template <typename T>
    static bool holds(T a, T b) {
        return a <= b;
    }
};
struct Greater {
    template <typename T>
    static bool holds(T a, T b) {
        return a > b;
    }
};
struct GreaterOrEqual {
    template <typename T>
    static bool holds(T a, T b) {
        return a >= b;
    }
};
struct Zero {
    template <typename T>
    static bool holds(T element, float tolerance) {
        const auto x = static_cast<float>(element);
        const bool isNegative = x < 0.0f;
        const bool reachesUp = x + tolerance >= 0.0f;
        const bool reachesDown = tolerance >= x;
        return (isNegative & reachesUp) | (!isNegative & reachesDown);
    }
};

// Tests of two elements.

template <typename Test, typename T, typename R>
[[gnu::always_inline]] inline bool allHold(const T& left, const R& right) {
    if constexpr (std::is_arithmetic_v<T>) {
        return Test::holds(left, right);
    } else {
        bool all = true;
        for (std::size_t i = 0; i < componentCount<T>; ++i) {
            // A number on the right stands for all components.
            if constexpr (std::is_arithmetic_v<R>) {
                all &= Test::holds(componentsOf(left)[i], right);
            } else {
                all &= Test::holds(componentsOf(left)[i], componentsOf(right)[i]);
            }
        }
        return all;
    }
}

// Tests of blocks.

constexpr std::array<uint32_t, bitsPerWord> bitOfLane = [] {
    std::array<uint32_t, bitsPerWord> bits{};
    for (uint32_t i = 0; i < bitsPerWord; ++i) bits[i] = uint32_t(1) << i;
    return bits;
}();

template <typename Test, typename T, typename R>
[[gnu::always_inline]] inline uint32_t word(const T* left, const R* right, std::size_t count) {
    uint32_t bits = 0;
    for (std::size_t i = 0; i < count; ++i) {
        // All ones or all zeros, not a branch: that would keep the loop from becoming vector
        // instructions.
        bits |= (0u - static_cast<uint32_t>(allHold<Test>(left[i], right[i]))) & bitOfLane[i];
    }
    return bits;
}

// One bit for each element, from one bit for each of its components: set when all are. `flat` is of
// 32 elements.

// Every third bit from bit 0 on, of the lower 24, moved together.
constexpr uint32_t everyThird(uint32_t bits) {
    bits &= 0x00249249u;
    bits = (bits | bits >> 2) & 0x000c30c3u;
    bits = (bits | bits >> 4) & 0x0000f00fu;
    return (bits | bits >> 8) & 0x000000ffu;
}

[[gnu::always_inline]] inline uint32_t folded(const std::array<uint32_t, 3>& flat) {
    const uint64_t low = flat[0] | uint64_t(flat[1]) << 32;
    const uint32_t quarters[] = {static_cast<uint32_t>(low), static_cast<uint32_t>(low >> 24),
                                 static_cast<uint32_t>(low >> 48) | flat[2] << 16, flat[2] >> 8};
    uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) {
        const uint32_t part = quarters[i];
        bits |= everyThird(part & part >> 1 & part >> 2) << 8 * i;
    }
    return bits;
}

[[gnu::always_inline]] inline uint32_t folded(const std::array<uint32_t, 4>& flat) {
    uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) {
        uint32_t part = flat[i] & flat[i] >> 1;
        part &= part >> 2;
        part &= 0x11111111u;
        part = (part | part >> 3) & 0x03030303u;
        part = (part | part >> 6) & 0x000f000fu;
        bits |= ((part | part >> 12) & 0xffu) << 8 * i;
    }
    return bits;
}

[[gnu::always_inline]] inline uint32_t folded(const std::array<uint32_t, 16>& flat) {
    uint32_t bits = 0;
    for (int i = 0; i < 16; ++i) {
        bits |= uint32_t((flat[i] & 0xffffu) == 0xffffu) << 2 * i;
        bits |= uint32_t(flat[i] >> 16 == 0xffffu) << (2 * i + 1);
    }
    return bits;
}

// Structured elements as the numbers that they are made of.
template <typename Test, typename T>
[[gnu::always_inline]] inline uint32_t fullWordOfComponents(const T* left, const T* right) {
    std::array<uint32_t, componentCount<T>> flat;
    for (std::size_t i = 0; i < flat.size(); ++i) {
        flat[i] = word<Test>(componentsOf(*left) + i * bitsPerWord,
                             componentsOf(*right) + i * bitsPerWord, bitsPerWord);
    }
    return folded(flat);
}

template <typename Test, typename T, typename R>
[[gnu::always_inline]] inline uint32_t fullWord(const T* left, const R* right) {
    if constexpr (!std::is_arithmetic_v<T> && std::is_same_v<T, R>) {
        return fullWordOfComponents<Test>(left, right);
    } else {
        return word<Test>(left, right, bitsPerWord);
    }
}

/// With `flip` all ones the outcomes are the opposite ones.
template <typename Test, uint32_t flip, typename T, typename R>
[[gnu::always_inline]] inline void testBlock(const T* left, const R* right, uint32_t count,
                                             uint32_t* words) {
    for (; count >= bitsPerWord; count -= bitsPerWord) {
        *words++ = fullWord<Test>(left, right) ^ flip;
        left += bitsPerWord;
        right += bitsPerWord;
    }
    if (count == 0) return;
    *words = (word<Test>(left, right, count) ^ flip) & lowBits(count);
}

template <typename Test, uint32_t flip, typename T, typename R>
void plainTest(const T* left, const R* right, uint32_t count, uint32_t* words) {
    testBlock<Test, flip>(left, right, count, words);
}

#if defined(__x86_64__)
template <typename Test, uint32_t flip, typename T, typename R>
[[gnu::target("avx2")]] void wideTest(const T* left, const R* right, uint32_t count,
                                      uint32_t* words) {
    testBlock<Test, flip>(left, right, count, words);
}
#endif

template <typename Test, typename T, typename R = T, uint32_t flip = 0>
BlockTest<T, R> testOf() {
#if defined(__x86_64__)
    if (platform::hasWideInstructions()) return wideTest<Test, flip, T, R>;
#endif
    return plainTest<Test, flip, T, R>;
}

} // namespace

template <typename T>
BlockTest<T> blockTest(Comparison comparison) {
    switch (comparison) {
    case Comparison::equalTo:
        return testOf<Equal, T>();
    case Comparison::notEqualTo:
        return testOf<Equal, T, T, ~uint32_t(0)>();
    case Comparison::lessThan:
        return testOf<Less, T>();
    case Comparison::lessOrEqual:
        return testOf<LessOrEqual, T>();
    case Comparison::greaterThan:
        return testOf<Greater, T>();
    case Comparison::greaterOrEqual:
        return testOf<GreaterOrEqual, T>();
    }
    return nullptr;
}

template <typename T>
BlockTest<T, float> zeroTest() {
    return testOf<Zero, T, float>();
}

template BlockTest<int32_t> blockTest<int32_t>(Comparison);
template BlockTest<float> blockTest<float>(Comparison);
template BlockTest<Vector3<float>> blockTest<Vector3<float>>(Comparison);
template BlockTest<Color4<float>> blockTest<Color4<float>>(Comparison);
template BlockTest<Matrix4<float>> blockTest<Matrix4<float>>(Comparison);
template BlockTest<int32_t, float> zeroTest<int32_t>();
template BlockTest<float, float> zeroTest<float>();
template BlockTest<Vector3<float>, float> zeroTest<Vector3<float>>();
template BlockTest<Color4<float>, float> zeroTest<Color4<float>>();
template BlockTest<Matrix4<float>, float> zeroTest<Matrix4<float>>();

} // namespace tidemark::sluice::graph
