// SPDX-License-Identifier: Apache-2.0
// The array operations of all types whose elements are pointers.
#include "nodes/values/arrays/array_nodes_impl.h"

namespace tidemark::sluice::graph {

SLUICE_INSTANTIATE_ARRAY_NODES(weft::PointerAttribute)

} // namespace tidemark::sluice::graph
