// SPDX-License-Identifier: Apache-2.0
// Number of threads from a wish and the processors at hand.
#include "platform/processors.h"

#include <algorithm>
#include <thread>

namespace tidemark::platform {

namespace {
constexpr int mostThreads = 1024;
}

int threadCount(int wanted) {
    // Counts the processors of the affinity mask, not those of the machine.
    if (wanted <= 0) wanted = static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(wanted, 1, mostThreads);
}

} // namespace tidemark::platform
