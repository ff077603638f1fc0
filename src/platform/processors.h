// SPDX-License-Identifier: Apache-2.0
// The one place that decides what a number of threads means.
#pragma once

#include "core/export.h"

namespace tidemark::platform {

/// Number of threads to use when `wanted` were asked for: 0 or less stands for all processors that
/// the process may use. At least 1, at most 1,024.
SLUICE_API int threadCount(int wanted);

} // namespace tidemark::platform
