// SPDX-License-Identifier: Apache-2.0
// What the string nodes share: searching that stays linear, limits on long texts, and polling.
#pragma once

#include <limits>
#include <string_view>

#include "core/network_manager.h"
#include "core/string_value.h"

namespace tidemark::sluice::graph {

/// Offset of the first `wanted` in `text` at or behind `from`, or npos. Linear in the lengths,
/// whatever they hold. An empty `wanted` is found at `from`.
std::size_t findText(std::string_view text, std::string_view wanted, std::size_t from = 0);

/// A length or offset as an "Integer"; what does not fit is the largest one.
inline int32_t toInteger(std::size_t length) {
    constexpr std::size_t most = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(length < most ? length : most);
}

/// Throws `std::bad_alloc` when a text of that length would go beyond the process's memory limit.
void checkTextLength(uint64_t bytes);

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

/// The larger of two element counts.
inline uint32_t largerSize(const weft::Value& a, const weft::Value& b) {
    return a.size() > b.size() ? a.size() : b.size();
}

/// Copies what `in` shows to `out`, unless `out` shows it already.
void copyUnlessPassedThrough(const weft::Attribute& in, const weft::Attribute& out);

} // namespace tidemark::sluice::graph
