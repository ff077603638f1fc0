// SPDX-License-Identifier: Apache-2.0
// What a process may use while it evaluates: one settable record, unlimited unless set.
#pragma once

#include <cstdint>

#include "core/export.h"

namespace tidemark::limits {

/// Process-wide limits; 0 means none. A program sets them before it reads a graph and leaves them
/// alone while one runs. Time is not here: a deadline is kept by whoever runs a scene, with
/// `SL_GraphScene::requestInterrupt`.
struct Limits {
    uint64_t maxElements = 0; ///< elements that one array may hold
    uint64_t maxMemory = 0;   ///< bytes that the process may hold; a single request is refused
                              ///< when it would go beyond, gradual growth is the watcher's to end
    uint64_t maxNodes = 0;    ///< graph nodes that reading a file may create
};

SLUICE_API const Limits& current();
SLUICE_API void set(const Limits& limits);

/// True when `checkElements` refused a request since the last `set`.
SLUICE_API bool wasHit();

/// Requests of this many bytes and more are held against `maxMemory`.
constexpr uint64_t largeRequest = uint64_t(1) << 20;

/// The full test behind `checkElements`; throws `std::bad_alloc` when the request goes too far.
SLUICE_API void checkRequest(uint64_t count, uint64_t elementSize);

/// Requests for no more elements than this need no test. Kept by `set`.
extern SLUICE_API uint64_t untestedElements;

/// Called before an array of values allocates: throws `std::bad_alloc` for a request beyond the
/// limits.
inline void checkElements(uint64_t count, uint64_t elementSize) {
    if (count > untestedElements) checkRequest(count, elementSize);
}

/// Bytes of memory that the process holds now (resident), 0 where the system does not tell.
SLUICE_API uint64_t residentBytes();

} // namespace tidemark::limits
