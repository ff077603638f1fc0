// SPDX-License-Identifier: Apache-2.0
// What a node declares, as text that a test can hold against a table:
//
//     EXPECT_EQ(declared("Clamp"),
//               "Clamp\n"
//               "in in NumericAttribute \"Real\", \"Integer\" = 0\n"
//               "in max NumericAttribute \"Real\", \"Integer\" = 1\n"
//               "in min NumericAttribute \"Real\", \"Integer\" = 0\n"
//               "out result NumericAttribute \"Real\", \"Integer\"\n");
#pragma once

#include "core/node.h"

namespace sluice_tests {

/// The class name, then a line for every pin: side, name, "!" behind a name that takes one element,
/// class, allowed types, and the default of an input. A default that is not the same number in all
/// types and components is told for each allowed type.
tidemark::TM_String declared(const tidemark::TM_String& type);

/// Names of pins without a help text, and "description" when the node has none.
tidemark::TM_String missingTexts(const tidemark::TM_String& type);

/// Pairs "in->out" of inputs that do not affect an output.
tidemark::TM_String missingAffects(const tidemark::TM_String& type);

} // namespace sluice_tests
