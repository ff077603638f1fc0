// SPDX-License-Identifier: Apache-2.0
// The array operations of strings.
#include "nodes/values/arrays/array_nodes_impl.h"
#include "nodes/values/arrays/array_sort_impl.h"

namespace tidemark::sluice::graph {

using weft::StringAttribute;
using weft::StringValue;

SLUICE_INSTANTIATE_ARRAY_NODES(StringAttribute)
SLUICE_INSTANTIATE_ARRAY_NODE(ArraySort, StringAttribute)

SLUICE_DEFINE_ARRAY_NODES(String, StringAttribute, StringValue)
SLUICE_DEFINE_ARRAY_NODE(ArrayStringSort, ArraySortBase, StringAttribute, StringValue)

} // namespace tidemark::sluice::graph
