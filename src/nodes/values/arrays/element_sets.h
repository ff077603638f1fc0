// SPDX-License-Identifier: Apache-2.0
// Looking for elements in arrays, in linear time: hashes, sets, and positions by element.
//
// Elements are equal as `==` says: not-a-number equals nothing, and 0 equals -0.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "core/text.h"
#include "core/types.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

/// How many floats an element is made of; 0 when it is made of something else.
template <typename T>
constexpr unsigned floatsIn = 0;
template <>
inline constexpr unsigned floatsIn<float> = 1;
template <>
inline constexpr unsigned floatsIn<Vector3<float>> = 3;
template <>
inline constexpr unsigned floatsIn<Color4<float>> = 4;
template <>
inline constexpr unsigned floatsIn<Quaternion<float>> = 4;
template <>
inline constexpr unsigned floatsIn<Matrix4<float>> = 16;
template <>
inline constexpr unsigned floatsIn<Box3<float>> = 6;

/// Spreads every bit of `bits` over the whole word: the finalizer of SplitMix64 (G. Steele, D. Lea,
/// C. Flood: Fast Splittable Pseudorandom Number Generators, 2014).
inline uint64_t mixedBits(uint64_t bits) {
    bits = (bits ^ bits >> 30) * 0xbf58476d1ce4e5b9u;
    bits = (bits ^ bits >> 27) * 0x94d049bb133111ebu;
    return bits ^ bits >> 31;
}

/// Equal elements have equal hashes.
template <typename T>
uint64_t hashOf(const T& element) {
    if constexpr (floatsIn<T> != 0) {
        const auto* floats = reinterpret_cast<const float*>(&element);
        uint64_t hash = 0;
        for (unsigned i = 0; i < floatsIn<T>; ++i) {
            const float number = floats[i] == 0.0f ? 0.0f : floats[i];
            hash = mixedBits(hash ^ std::bit_cast<uint32_t>(number));
        }
        return hash;
    } else if constexpr (std::is_integral_v<T>) {
        return mixedBits(static_cast<uint64_t>(element));
    } else if constexpr (std::is_pointer_v<T>) {
        return mixedBits(reinterpret_cast<std::uintptr_t>(element));
    } else {
        return std::hash<T>()(element);
    }
}

/// A set of the elements of one array, each standing for its first occurrence. The array must
/// outlive the set.
template <typename T>
class ElementSet {
public:
    static constexpr uint32_t none = ~uint32_t(0);

    /// Empty, for at most `capacity` elements.
    ElementSet(const T* elements, uint32_t capacity)
        : elements_(elements), slots_(std::bit_ceil(uint64_t(capacity) * 2 + 2), none),
          mask_(slots_.size() - 1) {}

    /// All elements of `elements`.
    ElementSet(std::span<const T> elements, WorkMeter& meter)
        : ElementSet(elements.data(), static_cast<uint32_t>(elements.size())) {
        for (uint32_t i = 0; i < elements.size(); ++i) {
            add(i);
            meter.add(workOf(elements[i]));
        }
    }

    /// The position of the member equal to `element`, or `none`.
    uint32_t find(const T& element) const {
        for (uint64_t slot = hashOf(element) & mask_;; slot = (slot + 1) & mask_) {
            const uint32_t position = slots_[slot];
            if (position == none || elements_[position] == element) return position;
        }
    }
    bool contains(const T& element) const { return find(element) != none; }

    /// Makes the element at `position` a member, unless an equal one is: the position of the
    /// member. An element that does not equal itself is told and not kept.
    uint32_t add(uint32_t position) {
        const T& element = elements_[position];
        if (!(element == element)) return position;
        for (uint64_t slot = hashOf(element) & mask_;; slot = (slot + 1) & mask_) {
            const uint32_t found = slots_[slot];
            if (found == none) return slots_[slot] = position;
            if (elements_[found] == element) return found;
        }
    }

private:
    const T* elements_;
    std::vector<uint32_t> slots_;
    uint64_t mask_;
};

/// Whether elements belong to a set that is often small.
template <typename T>
class Membership {
public:
    Membership(std::span<const T> members, WorkMeter& meter)
        : members_(members), set_(members.data(), 0) {
        if (members.size() > fewMembers) set_ = ElementSet<T>(members, meter);
    }
    bool contains(const T& element) const {
        if (members_.size() > fewMembers) return set_.contains(element);
        for (const T& member : members_) {
            if (member == element) return true;
        }
        return false;
    }

private:
    static constexpr std::size_t fewMembers = 4;

    std::span<const T> members_;
    ElementSet<T> set_;
};

/// Finds the first element equal to a given one from any start.
template <typename T>
class ElementFinder {
public:
    /// `searches` is how many will be made: a few look at the array itself. The meter must outlive
    /// the finder.
    ElementFinder(std::span<const T> array, std::size_t searches, WorkMeter& meter)
        : array_(array), isIndexed_(searches > fewSearches), set_(array.data(), 0), meter_(meter) {
        if (isIndexed_) buildIndex();
    }

    /// -1 when there is none at or behind `start`.
    int64_t find(const T& element, uint32_t start) {
        if (start >= array_.size()) return -1;
        return isIndexed_ ? findIndexed(element, start) : findPlainly(element, start);
    }

private:
    static constexpr std::size_t fewSearches = 4;

    int64_t findPlainly(const T& element, uint32_t start) {
        for (std::size_t i = start; i < array_.size(); ++i) {
            if (array_[i] == element) return static_cast<int64_t>(i);
            meter_.add(workOf(array_[i]));
        }
        return -1;
    }
    // The positions of equal elements are linked in ascending order.
    void buildIndex() {
        const auto count = static_cast<uint32_t>(array_.size());
        set_ = ElementSet<T>(array_.data(), count);
        begins_.assign(count + std::size_t(1), 0);
        std::vector<uint32_t> first(count);
        for (uint32_t i = 0; i < count; ++i) {
            first[i] = set_.add(i);
            ++begins_[first[i] + 1];
            meter_.add(workOf(array_[i]));
        }
        for (uint32_t i = 0; i < count; ++i) begins_[i + 1] += begins_[i];
        std::vector<uint32_t> next(begins_.begin(), begins_.end() - 1);
        positions_.resize(count);
        for (uint32_t i = 0; i < count; ++i) {
            positions_[next[first[i]]++] = i;
            meter_.add(0);
        }
    }
    int64_t findIndexed(const T& element, uint32_t start) const {
        const uint32_t member = set_.find(element);
        if (member == ElementSet<T>::none) return -1;
        const auto begin = positions_.begin() + begins_[member];
        const auto end = positions_.begin() + begins_[member + 1];
        const auto found = std::lower_bound(begin, end, start);
        return found == end ? -1 : int64_t(*found);
    }

    std::span<const T> array_;
    bool isIndexed_;
    ElementSet<T> set_;
    WorkMeter& meter_;
    std::vector<uint32_t> begins_;    // by first position: where its equals begin in `positions_`
    std::vector<uint32_t> positions_; // grouped by equality, ascending in each group
};

} // namespace tidemark::sluice::graph
