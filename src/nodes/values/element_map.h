// SPDX-License-Identifier: Apache-2.0
// A function applied to every element of numeric arrays, on threads; a shorter array repeats its
// last element:
//
//     const auto scale = [](const Vector3<float>& v, float f) { return v * f; };
//     mapNumbers<Vector3<float>>(*this, 1.5, result, scale,
//                                elementsOf<Vector3<float>>(vector), elementsOf<float>(factor));
//
// The function sees plain values and must not touch the network: everything was pulled before.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <tuple>
#include <type_traits>

#include "core/bit_array.h"
#include "core/numeric.h"
#include "core/words.h"
#include "nodes/values/components.h"
#include "nodes/values/element_loop.h"
#include "nodes/values/lanes.h"
#include "nodes/values/unfinished_output.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

/// How many elements a result has: none if any input is empty, else as many as the longest.
inline uint32_t resultCount(std::initializer_list<std::size_t> counts) {
    std::size_t most = 0;
    for (const std::size_t count : counts) {
        if (count == 0) return 0;
        most = std::max(most, count);
    }
    return static_cast<uint32_t>(most);
}

/// An input read block by block as if it went on for ever with its last element.
template <typename T>
class RepeatingReader {
public:
    static constexpr uint32_t blockLength = 256;

    static_assert(std::is_trivially_destructible_v<T>);

    explicit RepeatingReader(std::span<const T> elements) : elements_(elements) {}
    RepeatingReader(const RepeatingReader& other) : elements_(other.elements_) {}

    /// `count` elements from `first` on, at most `blockLength`; valid until the next call.
    const T* block(uint32_t first, uint32_t count) {
        const std::size_t size = elements_.size();
        if (std::size_t(first) + count <= size) return elements_.data() + first;
        T* const buffer = reinterpret_cast<T*>(bytes_);
        if (isTail_) return buffer;
        const uint32_t inside = first < size ? static_cast<uint32_t>(size) - first : 0;
        std::uninitialized_copy_n(elements_.data() + (inside > 0 ? first : 0), inside, buffer);
        std::uninitialized_fill(buffer + inside, buffer + blockLength, elements_.back());
        isTail_ = inside == 0;
        return buffer;
    }

private:
    std::span<const T> elements_;
    bool isTail_ = false;
    alignas(T) unsigned char bytes_[sizeof(T) * blockLength]; // set by `block` where needed
};

namespace element_map {

/// The caller writes every element.
template <typename T>
void sizeForWriting(Array<T>& array, uint32_t count) {
    if constexpr (std::is_trivially_copyable_v<T>) {
        array.resizeForOverwrite(count);
    } else {
        array.resize(count);
    }
}

/// Sets a stretch of `out` block by block with `writeBlock(out, length, in...)`.
template <typename R, typename WriteBlock, typename... A>
void stretch(R* out, uint32_t first, uint32_t count, WriteBlock& writeBlock,
             std::span<const A>... in) {
    std::tuple<RepeatingReader<A>...> readers{RepeatingReader<A>(in)...};
    constexpr uint32_t most = RepeatingReader<R>::blockLength;
    const uint32_t end = first + count;
    for (uint32_t i = first; i < end;) {
        const uint32_t length = std::min(most, end - i);
        std::apply(
            [&](auto&... reader) { writeBlock(out + i, length, reader.block(i, length)...); },
            readers);
        i += length;
    }
}

/// Makes the array of `R` in `result` as long as the longest of `in`, or empty when one of them is
/// empty, lets `writeBlock` set its elements, and sets the size of `result`. An input may be the
/// array that is written.
template <typename R, typename WriteBlock, typename... A>
void map(const weft::Node& node, double nanoseconds, weft::Numeric& result, WriteBlock writeBlock,
         std::span<const A>... in) {
    const uint32_t count = resultCount({in.size()...});
    Array<R>& array = result.refValues<R>();
    const void* written = array.data();
    const bool isReadElsewhere =
        ((static_cast<const void*>(in.data()) == written && in.size() != count) || ...);
    const auto compute = [&](R* out) {
        forEachElement(node, count, nanoseconds, [&](uint32_t first, uint32_t length) {
            stretch(out, first, length, writeBlock, in...);
        });
    };
    if (isReadElsewhere) {
        Array<R> made;
        sizeForWriting(made, count);
        compute(made.data());
        if (array.isPinned()) {
            array = made;
        } else {
            array = std::move(made);
        }
    } else {
        const bool isInPlace = ((static_cast<const void*>(in.data()) == written) || ...);
        const UnfinishedOutput unfinished(isInPlace ? nullptr : &result, {});
        sizeForWriting(array, count);
        compute(array.data());
    }
    result.setSize(count);
}

// The bits of up to 32 elements, the first one lowest.
template <typename Function, typename... A>
uint32_t wordOf(uint32_t count, Function& function, const A*... in) {
    uint32_t word = 0;
    for (uint32_t i = 0; i < count; ++i) word |= uint32_t(function(in[i]...)) << i;
    return word;
}

} // namespace element_map

/// Makes the array of `R` in `result` as long as the longest of `in`, or empty when one of them is
/// empty, and sets each element to `function` of theirs; then the size of `result`. `nanoseconds`
/// is roughly what one element costs. An input may be the array that is written.
template <typename R, typename Function, typename... A>
void mapNumbers(const weft::Node& node, double nanoseconds, weft::Numeric& result,
                Function function, std::span<const A>... in) {
    element_map::map<R>(
        node, nanoseconds, result,
        [&](R* out, uint32_t count, const A*... block) {
            mapLanes(out, count, function, block...);
        },
        in...);
}

/// The same for inputs of one type that is made of floats, with a function of floats that is
/// applied to each component.
template <typename T, typename Function, typename... Same>
void mapComponents(const weft::Node& node, double nanoseconds, weft::Numeric& result,
                   Function function, std::span<const T> in, Same... more) {
    element_map::map<T>(
        node, nanoseconds, result,
        [&](T* out, uint32_t count, const auto*... block) {
            mapLanes(reinterpret_cast<float*>(out), count * componentCount<T>, function,
                     reinterpret_cast<const float*>(block)...);
        },
        in, more...);
}

/// The same for reals, with a function of whole blocks: `function(in..., out, count)`.
template <typename Function, typename... Same>
void mapBlocks(const weft::Node& node, double nanoseconds, weft::Numeric& result, Function function,
               std::span<const float> in, Same... more) {
    element_map::map<float>(
        node, nanoseconds, result,
        [&](float* out, uint32_t count, const auto*... block) { function(block..., out, count); },
        in, more...);
}

/// The same for a result of bits. Threads share the elements out by whole words, since two must not
/// write into one.
template <typename Function, typename... A>
void mapBits(const weft::Node& node, double nanoseconds, weft::BitArrayValue& result,
             Function function, std::span<const A>... in) {
    const uint32_t count = resultCount({in.size()...});
    result.resize(count, false);
    uint32_t* const words = result.wordData();
    const auto compute = [&](uint32_t firstWord, uint32_t wordCount) {
        std::tuple<RepeatingReader<A>...> readers{RepeatingReader<A>(in)...};
        for (uint32_t w = firstWord; w < firstWord + wordCount; ++w) {
            const uint32_t first = w * bitsPerWord;
            const uint32_t length = std::min(bitsPerWord, count - first);
            words[w] = std::apply(
                [&](auto&... reader) {
                    return element_map::wordOf(length, function, reader.block(first, length)...);
                },
                readers);
        }
    };
    const UnfinishedOutput unfinished(&result, {});
    forEachElement(node, result.words().size(), nanoseconds * bitsPerWord, compute);
}

} // namespace tidemark::sluice::graph
