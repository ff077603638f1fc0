// SPDX-License-Identifier: Apache-2.0
// The array operations of numbers. Getting and setting elements, and constant arrays, are nodes of
// their own.
#include "nodes/values/arrays/array_nodes_impl.h"
#include "nodes/values/arrays/array_sort_impl.h"

namespace tidemark::sluice::graph {

using weft::Numeric;

SLUICE_INSTANTIATE_COMMON_ARRAY_NODES(NumericAttribute)
SLUICE_INSTANTIATE_ARRAY_NODE(ArraySort, NumericAttribute)

SLUICE_DEFINE_COMMON_ARRAY_NODES(Num, NumericAttribute, Numeric)
SLUICE_DEFINE_ARRAY_NODE(ArrayNumSort, ArraySortBase, NumericAttribute, Numeric)

} // namespace tidemark::sluice::graph
