// SPDX-License-Identifier: Apache-2.0
// Advice to the system about memory.
#include "platform/large_pages.h"

#include <sys/mman.h>

namespace tidemark::platform {

void preferLargePages(void* block, std::size_t bytes) {
#ifdef MADV_HUGEPAGE
    // An answer that says no changes nothing for the caller.
    static_cast<void>(madvise(block, bytes, MADV_HUGEPAGE));
#else
    static_cast<void>(block);
    static_cast<void>(bytes);
#endif
}

} // namespace tidemark::platform
