// SPDX-License-Identifier: Apache-2.0
// Keeping elements by the bits of a mask.
#include "nodes/values/packing.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using tidemark::wordsFor;
using namespace tidemark::sluice::graph;

// Of which few, many and all are kept.
std::vector<uint32_t> randomWords(uint32_t count, std::mt19937& random) {
    std::vector<uint32_t> words(wordsFor(count));
    for (uint32_t& word : words) {
        const uint32_t kinds[] = {0, ~uint32_t(0), 1u << random() % 32,
                                  static_cast<uint32_t>(random())};
        word = kinds[random() % 4];
    }
    return words;
}

template <typename T>
std::vector<T> numbered(uint32_t count) {
    std::vector<T> elements(count);
    for (uint32_t i = 0; i < count; ++i) elements[i] = static_cast<T>(i + 1);
    return elements;
}

template <typename T>
std::vector<T> keptBy(const std::vector<T>& elements, const std::vector<uint32_t>& words,
                      bool whenSet) {
    std::vector<T> kept;
    for (uint32_t i = 0; i < elements.size(); ++i) {
        if ((words[i / 32] >> i % 32 & 1) == whenSet) kept.push_back(elements[i]);
    }
    return kept;
}

template <typename T>
class Packing : public testing::Test {};
using ElementTypes = testing::Types<int32_t, float, int64_t, long double>;
TYPED_TEST_SUITE(Packing, ElementTypes);

TYPED_TEST(Packing, KeepsWhatIsSetInOrder) {
    std::mt19937 random(3);
    for (const uint32_t count : {0u, 1u, 31u, 32u, 33u, 64u, 95u, 1000u}) {
        const auto words = randomWords(count, random);
        const auto elements = numbered<TypeParam>(count);
        std::vector<TypeParam> out(count);
        const auto* end = packPlain(elements.data(), count, words.data(), 0, out.data());
        out.resize(static_cast<std::size_t>(end - out.data()));
        EXPECT_EQ(keptBy(elements, words, true), out) << count;
    }
}

TYPED_TEST(Packing, MayWriteOverWhatItReads) {
    std::mt19937 random(4);
    for (const uint32_t count : {1u, 31u, 32u, 33u, 1000u}) {
        for (const bool whenSet : {true, false}) {
            const auto words = randomWords(count, random);
            auto elements = numbered<TypeParam>(count);
            const auto expected = keptBy(elements, words, whenSet);
            const uint32_t flip = whenSet ? 0 : ~uint32_t(0);
            const auto* end =
                packPlain(elements.data(), count, words.data(), flip, elements.data());
            elements.resize(static_cast<std::size_t>(end - elements.data()));
            EXPECT_EQ(expected, elements) << count;
        }
    }
}

} // namespace
