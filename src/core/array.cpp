// SPDX-License-Identifier: Apache-2.0
// What a pinned array answers.
#include "core/array.h"

#include "platform/large_pages.h"

namespace tidemark {

const char* PinnedArray::what() const noexcept {
    return "an array that the threads of a kernel share cannot change its size";
}

namespace {

std::align_val_t blockAlignment(std::size_t bytes, std::size_t alignment) {
    const bool isLarge = bytes >= platform::worthLargePages;
    return std::align_val_t(isLarge ? platform::largePageBytes : alignment);
}

} // namespace

void* allocateElements(std::size_t bytes, std::size_t alignment) {
    void* block = ::operator new(bytes, blockAlignment(bytes, alignment));
    if (bytes >= platform::worthLargePages) platform::preferLargePages(block, bytes);
    return block;
}

void freeElements(void* block, std::size_t bytes, std::size_t alignment) noexcept {
    ::operator delete(block, blockAlignment(bytes, alignment));
}

} // namespace tidemark
