// SPDX-License-Identifier: Apache-2.0
// Large pages for large blocks of memory.
#pragma once

#include <cstddef>

namespace tidemark::platform {

/// What a large page holds, and the alignment of blocks that are to lie on such pages.
constexpr std::size_t largePageBytes = std::size_t(1) << 21;
/// Smaller blocks gain nothing.
constexpr std::size_t worthLargePages = std::size_t(1) << 22;

/// Asks the system for large pages under a block that begins at a multiple of `largePageBytes`. A
/// system without them does nothing.
void preferLargePages(void* block, std::size_t bytes);

} // namespace tidemark::platform
