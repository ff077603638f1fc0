// SPDX-License-Identifier: Apache-2.0
// What a pinned array answers.
#include "core/array.h"

namespace tidemark {

const char* PinnedArray::what() const noexcept {
    return "an array that the threads of a kernel share cannot change its size";
}

} // namespace tidemark
