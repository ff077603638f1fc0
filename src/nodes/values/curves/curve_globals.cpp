// SPDX-License-Identifier: Apache-2.0
// Global variables of curves and keys. A curve has an owner elsewhere and is not copied.
#include "nodes/values/curves/curve_attributes.h"
#include "nodes/values/globals/global_variables.h"

namespace tidemark::sluice::graph {

SLUICE_DEFINE_GLOBAL_VARIABLE(Key, weft::KeyAttribute, SetGlobalVariableCopy)
SLUICE_DEFINE_GLOBAL_VARIABLE(Curve, weft::CurveAttribute, SetGlobalVariableBase)

} // namespace tidemark::sluice::graph
