// SPDX-License-Identifier: Apache-2.0
// The process limits and the tests against them.
#include "core/limits.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <new>

namespace tidemark::limits {

namespace {

// The largest element, a matrix, has 64 bytes: this many of any kind stay below `largeRequest`.
constexpr uint64_t elementsInSmallRequest = largeRequest / 64;

Limits settings;
std::atomic<bool> hit{false};

[[noreturn]] void refuse() {
    hit = true;
    throw std::bad_alloc();
}

} // namespace

uint64_t untestedElements = elementsInSmallRequest;

const Limits& current() { return settings; }

void set(const Limits& limits) {
    settings = limits;
    hit = false;
    untestedElements = limits.maxElements ? std::min(limits.maxElements, elementsInSmallRequest)
                                          : elementsInSmallRequest;
}

bool wasHit() { return hit; }

void checkRequest(uint64_t count, uint64_t elementSize) {
    if (settings.maxElements && count > settings.maxElements) refuse();
    if (elementSize && count > UINT64_MAX / elementSize) refuse();
    const uint64_t bytes = count * elementSize;
    if (!settings.maxMemory || bytes < largeRequest) return;
    if (bytes > settings.maxMemory || residentBytes() + bytes > settings.maxMemory) refuse();
}

uint64_t residentBytes() {
    std::FILE* file = std::fopen("/proc/self/statm", "r");
    if (!file) return 0;
    unsigned long long total = 0;
    unsigned long long resident = 0;
    const int fields = std::fscanf(file, "%llu %llu", &total, &resident);
    std::fclose(file);
    if (fields != 2) return 0;
    return resident * static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
}

} // namespace tidemark::limits
