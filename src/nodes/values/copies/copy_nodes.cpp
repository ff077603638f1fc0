// SPDX-License-Identifier: Apache-2.0
// Copies of numbers and strings.
#include "nodes/values/copies/copy_nodes.h"

#include "core/numeric.h"
#include "core/string_value.h"

namespace tidemark::sluice::graph {

SLUICE_DEFINE_COPY(NumCopy, weft::Copy<weft::NumericAttribute>)
SLUICE_DEFINE_COPY(StringCopy, weft::Copy<weft::StringAttribute>)

} // namespace tidemark::sluice::graph
