// SPDX-License-Identifier: Apache-2.0
// Global variables of numbers and strings.
#include "nodes/values/globals/global_variables.h"

#include "core/numeric.h"

namespace weft {

TM_String variableName(const StringAttribute& name) {
    TM_String variable = name.firstString();
    Node& node = *name.parent();
    if (variable.empty() && node.isVerbosityLevelAllowed(tidemark::graph::messageLevelError)) {
        node.pushError("Name left empty");
    }
    return variable;
}

} // namespace weft

namespace tidemark::sluice::graph {

SLUICE_DEFINE_GLOBAL_VARIABLE(Num, weft::NumericAttribute, SetGlobalVariableCopy)
SLUICE_DEFINE_GLOBAL_VARIABLE(String, weft::StringAttribute, SetGlobalVariableCopy)

} // namespace tidemark::sluice::graph
