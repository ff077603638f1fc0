// SPDX-License-Identifier: Apache-2.0
// Testing and filtering whole arrays: what the filters of conditions share.
#pragma once

#include <vector>

#include "core/bit_array.h"
#include "nodes/values/conditions/right_side.h"
#include "nodes/values/packing.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

/// Where a filter writes; what is null is not computed.
struct FilterTargets {
    weft::Numeric* result = nullptr;
    weft::BitArrayValue* mask = nullptr;
    /// The result is also what is filtered or compared with.
    bool isResultRead = false;
    /// The result gets the elements that fail.
    bool keepsFailing = false;
};

/// Calls `visit(first, count, words)` with the outcomes of `test` for each block of elements. A
/// null test holds for none.
template <typename T, typename R, typename Visit>
void testInBlocks(const T* elements, uint32_t count, RightSide<R>& right, BlockTest<T, R> test,
                  Visit visit) {
    constexpr uint32_t most = std::min(mostPerBlock<T>, mostPerBlock<R>);
    std::array<uint32_t, wordsFor(most)> words{};
    for (uint32_t first = 0; first < count; first += most) {
        const uint32_t length = std::min(most, count - first);
        if (test) test(elements + first, right.block(first, length), length, words.data());
        visit(first, length, words.data());
    }
}

/// Writes the outcomes for all elements to `mask`, which has room for them.
template <typename T, typename R>
void testAll(const T* elements, uint32_t count, RightSide<R>& right, BlockTest<T, R> test,
             uint32_t* mask, const weft::NetworkManager& manager) {
    WorkMeter meter(manager);
    testInBlocks(elements, count, right, test,
                 [&](uint32_t first, uint32_t length, const uint32_t* words) {
                     std::copy_n(words, wordsFor(length), mask + first / bitsPerWord);
                     meter.add(length);
                 });
}

/// Moves nothing before everything was tested.
template <typename T>
void filterInSteps(const weft::Numeric& values, RightSide<T>& right, BlockTest<T> test,
                   const FilterTargets& targets, const weft::NetworkManager& manager) {
    const uint32_t count = elementCount<T>(values);
    std::vector<uint32_t> own(targets.mask ? 0 : wordsFor(count));
    uint32_t* const words = targets.mask ? targets.mask->wordData() : own.data();
    testAll(values.values<T>().data(), count, right, test, words, manager);
    Array<T>& array = targets.result->refValues<T>();
    if (targets.result == &values) {
        const uint32_t flip = targets.keepsFailing ? allOnes : 0;
        const T* end = pack(array.data(), count, words, flip, array.data());
        array.resize(static_cast<uint32_t>(end - array.data()));
    } else {
        array.resize(isPackedAtOnce<T> ? count : countSetBits(words, count));
        const T* end = pack(values.values<T>().data(), count, words, 0, array.data());
        array.resize(static_cast<uint32_t>(end - array.data()));
    }
    targets.result->updateSize();
}

/// Each block is tested and moved while it is at hand.
template <typename T>
void filterByBlocks(const weft::Numeric& values, RightSide<T>& right, BlockTest<T> test,
                    const FilterTargets& targets, const weft::NetworkManager& manager) {
    const uint32_t count = elementCount<T>(values);
    const T* const elements = values.values<T>().data();
    uint32_t* const mask = targets.mask ? targets.mask->wordData() : nullptr;
    KeptElements<T> kept(*targets.result, count);
    WorkMeter meter(manager);
    testInBlocks(elements, count, right, test,
                 [&](uint32_t first, uint32_t length, const uint32_t* words) {
                     if (mask) std::copy_n(words, wordsFor(length), mask + first / bitsPerWord);
                     kept.add(elements + first, length, words);
                     meter.add(length);
                 });
}

/// Tests every element of `values` and writes the outcomes and the elements that hold to `targets`.
template <typename T>
void filterElements(const weft::Numeric& values, RightSide<T>& right, BlockTest<T> test,
                    const FilterTargets& targets, const weft::NetworkManager& manager) {
    const uint32_t count = elementCount<T>(values);
    if (targets.mask) targets.mask->resize(count, false);
    if (!targets.result) {
        if (!targets.mask) return;
        const T* elements = values.values<T>().data();
        return testAll(elements, count, right, test, targets.mask->wordData(), manager);
    }
    if constexpr (isPackedAtOnce<T>) {
        if (!targets.isResultRead) return filterByBlocks(values, right, test, targets, manager);
    }
    filterInSteps(values, right, test, targets, manager);
}

} // namespace tidemark::sluice::graph
