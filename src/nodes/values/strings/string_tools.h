// SPDX-License-Identifier: Apache-2.0
// What the string nodes share: searching that stays linear, and limits on long texts.
#pragma once

#include <limits>
#include <string_view>

#include "core/string_value.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

/// Offset of the first `wanted` in `text` at or behind `from`, or npos. Linear in the lengths,
/// whatever they hold; answers interrupts. An empty `wanted` is found at `from`.
std::size_t findText(std::string_view text, std::string_view wanted, std::size_t from,
                     WorkMeter& meter);

/// A length or offset as an "Integer"; what does not fit is the largest one.
inline int32_t toInteger(std::size_t length) {
    constexpr std::size_t most = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(length < most ? length : most);
}

/// Throws `std::bad_alloc` when a text of that length would go beyond the process's memory limit.
void checkTextLength(uint64_t bytes);

} // namespace tidemark::sluice::graph
