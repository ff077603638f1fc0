// SPDX-License-Identifier: Apache-2.0
// Number of threads from a wish and the processors at hand; their instructions.
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

bool hasWideInstructions() {
#if defined(__x86_64__)
    static const bool answer =
        __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("popcnt") != 0;
    return answer;
#else
    return false;
#endif
}

} // namespace tidemark::platform
