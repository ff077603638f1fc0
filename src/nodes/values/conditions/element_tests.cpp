// SPDX-License-Identifier: Apache-2.0
// The loops behind conditions: 32 elements at a time without a branch, which the compiler turns
// into vector instructions, built for two instruction sets.
#include "nodes/values/conditions/element_tests.h"

#include <array>

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

template <typename T>
constexpr std::size_t componentsOf = sizeof(T) / sizeof(float);

// A number stands for all components.
inline float component(float number, std::size_t) { return number; }
template <typename T>
float component(const T& element, std::size_t index) {
    static_assert(sizeof(T) % sizeof(float) == 0 && alignof(T) == alignof(float));
    return reinterpret_cast<const float*>(&element)[index];
}

template <typename Test>
struct OfAllComponents {
    template <typename T, typename R>
    [[gnu::always_inline]] static bool holds(const T& left, const R& right) {
        if constexpr (std::is_arithmetic_v<T>) {
            return Test::holds(left, right);
        } else {
            bool all = true;
            for (std::size_t i = 0; i < componentsOf<T>; ++i) {
                all &= Test::holds(component(left, i), component(right, i));
            }
            return all;
        }
    }
};

template <typename Test>
struct Not {
    template <typename T, typename R>
    [[gnu::always_inline]] static bool holds(const T& left, const R& right) {
        return !Test::holds(left, right);
    }
};

// Tests of blocks.

constexpr std::array<uint32_t, testsPerWord> bitOfLane = [] {
    std::array<uint32_t, testsPerWord> bits{};
    for (uint32_t i = 0; i < testsPerWord; ++i) bits[i] = uint32_t(1) << i;
    return bits;
}();

// All ones or all zeros, not a branch, which would keep the loop from becoming vector instructions.
template <typename Test, typename T, typename R>
[[gnu::always_inline]] inline uint32_t lane(const T& left, const R& right, std::size_t i) {
    return (0u - static_cast<uint32_t>(Test::holds(left, right))) & bitOfLane[i];
}

template <typename Test, typename T, typename R>
[[gnu::always_inline]] inline void testBlock(const T* left, const R* right, uint32_t count,
                                             uint32_t* words) {
    for (; count >= testsPerWord; count -= testsPerWord) {
        uint32_t word = 0;
        for (std::size_t i = 0; i < testsPerWord; ++i) word |= lane<Test>(left[i], right[i], i);
        *words++ = word;
        left += testsPerWord;
        right += testsPerWord;
    }
    if (count == 0) return;
    uint32_t word = 0;
    for (std::size_t i = 0; i < count; ++i) word |= lane<Test>(left[i], right[i], i);
    *words = word;
}

template <typename Test, typename T, typename R>
void plainTest(const T* left, const R* right, uint32_t count, uint32_t* words) {
    testBlock<Test>(left, right, count, words);
}

#if defined(__x86_64__)
template <typename Test, typename T, typename R>
[[gnu::target("avx2")]] void wideTest(const T* left, const R* right, uint32_t count,
                                      uint32_t* words) {
    testBlock<Test>(left, right, count, words);
}
bool hasWideInstructions() {
    static const bool answer = __builtin_cpu_supports("avx2");
    return answer;
}
#endif

template <typename Test, typename T, typename R = T>
BlockTest<T, R> testOf() {
#if defined(__x86_64__)
    if (hasWideInstructions()) return wideTest<Test, T, R>;
#endif
    return plainTest<Test, T, R>;
}

} // namespace

template <typename T>
BlockTest<T> blockTest(Comparison comparison) {
    switch (comparison) {
    case Comparison::equalTo:
        return testOf<OfAllComponents<Equal>, T>();
    case Comparison::notEqualTo:
        return testOf<Not<OfAllComponents<Equal>>, T>();
    case Comparison::lessThan:
        return testOf<OfAllComponents<Less>, T>();
    case Comparison::lessOrEqual:
        return testOf<OfAllComponents<LessOrEqual>, T>();
    case Comparison::greaterThan:
        return testOf<OfAllComponents<Greater>, T>();
    case Comparison::greaterOrEqual:
        return testOf<OfAllComponents<GreaterOrEqual>, T>();
    }
    return nullptr;
}

template <typename T>
BlockTest<T, float> zeroTest() {
    return testOf<OfAllComponents<Zero>, T, float>();
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
