// SPDX-License-Identifier: Apache-2.0
// Which types two operands may have together, for nodes whose result has the type of the first.
#pragma once

#include <span>

#include "core/numeric.h"

namespace weft {

/// The types that a second operand may have beside a first one of type `first`.
using TypePairs = std::span<const NumericType> (*)(NumericType first);

/// Leaves in both lists the names that occur in an allowed pair, in the order in which they are
/// first seen with the result's list as the outer loop. The result stands for the first operand.
void filterPairs(TypePairs pairs, SpecializationList& secondList, SpecializationList& resultList);

} // namespace weft
