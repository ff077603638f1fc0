// SPDX-License-Identifier: Apache-2.0
// The array operations of curves and keys.
#include "nodes/values/arrays/array_nodes.h"
#include "nodes/values/curves/curve_attributes.h"

namespace tidemark::sluice::graph {

SLUICE_DEFINE_ARRAY_NODES(Curve, weft::CurveAttribute, weft::CurveValue)
SLUICE_DEFINE_ARRAY_NODES(Key, weft::KeyAttribute, weft::KeyValue)

} // namespace tidemark::sluice::graph
