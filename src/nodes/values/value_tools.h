// SPDX-License-Identifier: Apache-2.0
// What the nodes over values share: declaring polymorphic pins, reading types and needs, polling.
#pragma once

#include <algorithm>
#include <span>
#include <type_traits>

#include "core/network_manager.h"
#include "core/node.h"
#include "core/numeric.h"

namespace tidemark::sluice::graph {

/// The selector that an attribute's own list settles on, or `none`: the value that it reads may not
/// have settled yet.
SLUICE_API weft::NumericType selectorOf(const weft::Attribute& attribute);

/// What the pin shows until it is connected or set: `number` in every component of every type that
/// the pin may have now, so call it after the allowed types were set. Integers take the integer
/// part; quaternions and matrices stay the identity.
SLUICE_API void setDefault(weft::NumericAttribute& pin, double number);

/// True when an update for `asked` has to compute `output`: it is the one asked for, or it is
/// wanted in this run.
inline bool isNeeded(const weft::Attribute& output, const weft::Attribute* asked) {
    return &output == asked || output.toBeEvaluated();
}

/// The larger of two element counts.
inline uint32_t largerSize(const weft::Value& a, const weft::Value& b) {
    return a.size() > b.size() ? a.size() : b.size();
}

/// How many elements of type `T` a reader of `number` sees, whichever type is selected.
template <typename T>
uint32_t elementCount(const weft::Numeric& number) {
    return std::min(number.size(), number.values<T>().size());
}

/// These elements.
template <typename T>
std::span<const T> elementsOf(const weft::Numeric& number) {
    return {number.values<T>().data(), elementCount<T>(number)};
}

/// Copies what `in` shows to `out`, unless `out` shows it already.
SLUICE_API void copyUnlessPassedThrough(const weft::Attribute& in, const weft::Attribute& out);

/// Lets long work answer interrupts: counts characters and elements, and asks now and then.
class WorkMeter {
public:
    explicit WorkMeter(const weft::NetworkManager& manager) : manager_(manager) {}
    /// Throws when the run was interrupted.
    void add(uint64_t work) {
        done_ += work + 1;
        if (done_ < workBetweenPolls) return;
        done_ = 0;
        manager_.pollInterrupt();
    }

private:
    static constexpr uint64_t workBetweenPolls = uint64_t(1) << 20;

    const weft::NetworkManager& manager_;
    uint64_t done_ = 0;
};

/// Calls `work(first, end)` for consecutive stretches of `count` elements, and answers interrupts
/// in between.
template <typename Count, typename Work>
void inPieces(Count count, WorkMeter& meter, Work work) {
    static_assert(std::is_unsigned_v<Count>);
    constexpr Count piece = Count(1) << 16;
    for (Count first = 0; first < count;) {
        const Count end = count - first < piece ? count : first + piece;
        work(first, end);
        meter.add(end - first);
        first = end;
    }
}

/// The same, with the meter of one call.
template <typename Count, typename Work>
void inPieces(const weft::Node& node, Count count, Work work) {
    WorkMeter meter(*node.networkManager());
    inPieces(count, meter, work);
}

/// What looking at an element costs beside a small constant, in the meter's units.
template <typename T>
uint64_t workOf(const T& element) {
    if constexpr (std::is_same_v<T, TM_String>) {
        return element.size();
    } else {
        return sizeof(T) / 16;
    }
}

} // namespace tidemark::sluice::graph
