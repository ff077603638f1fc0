// SPDX-License-Identifier: Apache-2.0
// A recorded run as a file in the trace-event format of Chrome's tracing page and of other viewers:
// one complete event per computation, with times in microseconds, one row per thread.
#pragma once

#include <string>

#include "tool/update_recorder.h"

namespace tidemark::tool {

/// More would be too much for the viewers.
constexpr uint64_t mostTraceEvents = 1'000'000;

/// Writes the file, whole or not at all. Throws `UsageError` when it could not.
void writeTrace(const UpdateRecorder& recorder, const std::string& graph, const std::string& path);

} // namespace tidemark::tool
