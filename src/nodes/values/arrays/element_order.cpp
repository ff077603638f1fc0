// SPDX-License-Identifier: Apache-2.0
// Sorting: numbers by their digits to base 2048, everything else by comparisons of short keys.
#include "nodes/values/arrays/element_order.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <string_view>
#include <vector>

namespace tidemark::sluice::graph {

namespace {

// Unsigned keys in the order of the numbers.

uint32_t keyOf(int32_t number) { return static_cast<uint32_t>(number) ^ 0x80000000u; }
uint64_t keyOf(int64_t number) { return static_cast<uint64_t>(number) ^ 0x8000000000000000u; }
uint32_t keyOf(float number) {
    if (std::isnan(number)) return ~uint32_t(0);
    if (number == 0.0f) number = 0.0f; // -0 is no less
    const auto bits = std::bit_cast<uint32_t>(number);
    return bits >> 31 ? ~bits : bits | 0x80000000u;
}

constexpr unsigned digitBits = 11;
constexpr std::size_t digits = std::size_t(1) << digitBits;

template <typename Key>
struct Keyed {
    Key key;
    int32_t position;
};

// Least significant digit first (H. H. Seward, 1954): every pass keeps the order of equal digits.
template <typename Key>
void sortByDigits(std::vector<Keyed<Key>>& items, WorkMeter& meter) {
    constexpr unsigned passes = (sizeof(Key) * 8 + digitBits - 1) / digitBits;
    std::vector<std::array<uint32_t, digits>> counts(passes);
    for (auto& count : counts) count.fill(0);
    inPieces(items.size(), meter, [&](uint64_t first, uint64_t end) {
        for (uint64_t i = first; i < end; ++i) {
            for (unsigned pass = 0; pass < passes; ++pass) {
                ++counts[pass][items[i].key >> pass * digitBits & (digits - 1)];
            }
        }
    });
    std::vector<Keyed<Key>> other(items.size());
    for (unsigned pass = 0; pass < passes; ++pass) {
        auto& next = counts[pass];
        const unsigned shift = pass * digitBits;
        // All have the same digit.
        if (next[items[0].key >> shift & (digits - 1)] == items.size()) continue;
        uint32_t sum = 0;
        for (uint32_t& count : next) sum += std::exchange(count, sum);
        inPieces(items.size(), meter, [&](uint64_t first, uint64_t end) {
            for (uint64_t i = first; i < end; ++i) {
                other[next[items[i].key >> shift & (digits - 1)]++] = items[i];
            }
        });
        items.swap(other);
    }
}

// Below this a sort by comparisons is faster than passes over all digits.
constexpr std::size_t worthDigits = 512;

template <typename Item>
void sortByKey(std::vector<Item>& items) {
    std::sort(items.begin(), items.end(), [](const Item& a, const Item& b) {
        return a.key != b.key ? a.key < b.key : a.position < b.position;
    });
}

template <typename Item>
void writeOrder(const std::vector<Item>& items, Array<int32_t>& order) {
    order.resizeForOverwrite(static_cast<uint32_t>(items.size()));
    for (std::size_t i = 0; i < items.size(); ++i) order[i] = items[i].position;
}

template <typename T>
void orderNumbers(std::span<const T> elements, Array<int32_t>& order, WorkMeter& meter) {
    using Key = decltype(keyOf(T()));
    std::vector<Keyed<Key>> items(elements.size());
    inPieces(items.size(), meter, [&](uint64_t first, uint64_t end) {
        for (uint64_t i = first; i < end; ++i) {
            items[i] = {keyOf(elements[i]), static_cast<int32_t>(i)};
        }
    });
    if (items.size() < worthDigits) {
        sortByKey(items);
    } else {
        sortByDigits(items, meter);
    }
    writeOrder(items, order);
}

// Most elements differ in what the key holds; the rest is looked at when they do not.
template <typename Key, typename Less>
void orderByKeys(std::vector<Keyed<Key>>& items, Array<int32_t>& order, WorkMeter& meter,
                 Less restIsLess) {
    std::sort(items.begin(), items.end(), [&](const Keyed<Key>& a, const Keyed<Key>& b) {
        meter.add(1);
        if (a.key != b.key) return a.key < b.key;
        if (restIsLess(a.position, b.position)) return true;
        if (restIsLess(b.position, a.position)) return false;
        return a.position < b.position;
    });
    writeOrder(items, order);
}

template <typename T>
void orderTuples(std::span<const T> elements, Array<int32_t>& order, WorkMeter& meter) {
    constexpr std::size_t parts = sizeof(T) / sizeof(float);
    const auto* floats = reinterpret_cast<const float*>(elements.data());
    const auto part = [&](int32_t position, std::size_t k) {
        return keyOf(floats[static_cast<std::size_t>(position) * parts + k]);
    };
    std::vector<Keyed<uint64_t>> items(elements.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto position = static_cast<int32_t>(i);
        items[i] = {uint64_t(part(position, 0)) << 32 | part(position, 1), position};
    }
    orderByKeys(items, order, meter, [&](int32_t a, int32_t b) {
        for (std::size_t k = 2; k < parts; ++k) {
            if (part(a, k) != part(b, k)) return part(a, k) < part(b, k);
        }
        return false;
    });
}

// Eight bytes behind the first `skipped`, the first one in front; a shorter string is filled up
// with zeros.
uint64_t bytesOf(const TM_String& text, std::size_t skipped) {
    unsigned char bytes[8] = {};
    std::memcpy(bytes, text.data() + skipped, std::min(text.size() - skipped, sizeof bytes));
    uint64_t key = 0;
    for (const unsigned char byte : bytes) key = key << 8 | byte;
    return key;
}

// How many bytes all strings begin with.
std::size_t commonLength(std::span<const TM_String> strings, WorkMeter& meter) {
    std::size_t common = strings.empty() ? 0 : strings[0].size();
    for (const TM_String& string : strings) {
        meter.add(common);
        common = std::min(common, string.size());
        if (std::memcmp(string.data(), strings[0].data(), common) == 0) continue;
        common = static_cast<std::size_t>(
            std::mismatch(string.begin(), string.begin() + static_cast<std::ptrdiff_t>(common),
                          strings[0].begin())
                .first -
            string.begin());
    }
    return common;
}

} // namespace

void orderElements(std::span<const int32_t> elements, Array<int32_t>& order, WorkMeter& meter) {
    orderNumbers(elements, order, meter);
}
void orderElements(std::span<const int64_t> elements, Array<int32_t>& order, WorkMeter& meter) {
    orderNumbers(elements, order, meter);
}
void orderElements(std::span<const float> elements, Array<int32_t>& order, WorkMeter& meter) {
    orderNumbers(elements, order, meter);
}
void orderElements(std::span<const Vector3<float>> elements, Array<int32_t>& order,
                   WorkMeter& meter) {
    orderTuples(elements, order, meter);
}
void orderElements(std::span<const Color4<float>> elements, Array<int32_t>& order,
                   WorkMeter& meter) {
    orderTuples(elements, order, meter);
}
void orderElements(std::span<const Quaternion<float>> elements, Array<int32_t>& order,
                   WorkMeter& meter) {
    orderTuples(elements, order, meter);
}
void orderElements(std::span<const Matrix4<float>> elements, Array<int32_t>& order,
                   WorkMeter& meter) {
    orderTuples(elements, order, meter);
}

void orderElements(std::span<const TM_String> elements, Array<int32_t>& order, WorkMeter& meter) {
    using Item = Keyed<uint64_t>;
    const std::size_t skipped = commonLength(elements, meter);
    std::vector<Item> items(elements.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        items[i] = {bytesOf(elements[i], skipped), static_cast<int32_t>(i)};
    }
    if (items.size() < worthDigits) {
        sortByKey(items);
    } else {
        sortByDigits(items, meter);
    }
    // Where the keys are equal, what stands behind them decides.
    const auto isLess = [&](const Item& a, const Item& b) {
        const std::string_view first = elements[static_cast<std::size_t>(a.position)];
        const std::string_view second = elements[static_cast<std::size_t>(b.position)];
        meter.add(std::min(first.size(), second.size()));
        const int compared = first.substr(skipped).compare(second.substr(skipped));
        return compared != 0 ? compared < 0 : a.position < b.position;
    };
    for (auto begin = items.begin(); begin != items.end();) {
        const auto end = std::find_if(begin, items.end(),
                                      [&](const Item& item) { return item.key != begin->key; });
        if (end - begin > 1) std::sort(begin, end, isLess);
        begin = end;
    }
    writeOrder(items, order);
}

} // namespace tidemark::sluice::graph
