// SPDX-License-Identifier: Apache-2.0
// The stable ascending order of elements.
//
// Numbers go by `<`, vectors, colours, quaternions and matrices by their components in storage
// order, strings by their bytes. Not-a-number goes last.
#pragma once

#include <span>

#include "core/text.h"
#include "core/types.h"
#include "nodes/values/value_tools.h"

namespace tidemark::sluice::graph {

/// `order[k]` becomes the position of the element that is number `k` in ascending order; equal
/// elements keep their order. Throws when `meter` says that the run was interrupted.
SLUICE_API void orderElements(std::span<const int32_t> elements, Array<int32_t>& order,
                              WorkMeter& meter);
SLUICE_API void orderElements(std::span<const int64_t> elements, Array<int32_t>& order,
                              WorkMeter& meter);
SLUICE_API void orderElements(std::span<const float> elements, Array<int32_t>& order,
                              WorkMeter& meter);
SLUICE_API void orderElements(std::span<const Vector3<float>> elements, Array<int32_t>& order,
                              WorkMeter& meter);
SLUICE_API void orderElements(std::span<const Color4<float>> elements, Array<int32_t>& order,
                              WorkMeter& meter);
SLUICE_API void orderElements(std::span<const Quaternion<float>> elements, Array<int32_t>& order,
                              WorkMeter& meter);
SLUICE_API void orderElements(std::span<const Matrix4<float>> elements, Array<int32_t>& order,
                              WorkMeter& meter);
SLUICE_API void orderElements(std::span<const TM_String> elements, Array<int32_t>& order,
                              WorkMeter& meter);

} // namespace tidemark::sluice::graph
