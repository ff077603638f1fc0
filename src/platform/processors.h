// SPDX-License-Identifier: Apache-2.0
// What the processors can do, and what a number of threads means.
#pragma once

#include "core/export.h"

namespace tidemark::platform {

/// Number of threads to use when `wanted` were asked for: 0 or less stands for all processors that
/// the process may use. At least 1, at most 1,024.
SLUICE_API int threadCount(int wanted);

/// True when loops that were built for vectors of eight words run here (x86-64 processors with AVX2
/// and POPCNT, no others). The answer does not change.
SLUICE_API bool hasWideInstructions();

} // namespace tidemark::platform
