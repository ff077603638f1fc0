// SPDX-License-Identifier: Apache-2.0
// How the element type that is held by value joins the families of nodes.
#include "nodes/values/stored_element.h"

#include "nodes/values/arrays/array_nodes_impl.h"
#include "nodes/values/copies/copy_nodes.h"
#include "nodes/values/globals/global_variables.h"

const weft::ValueKind sluice_tests::TagValue::kind{"TagValue"};

namespace tidemark::sluice::graph {

using sluice_tests::TagAttribute;

SLUICE_INSTANTIATE_ARRAY_NODES(TagAttribute)
SLUICE_DEFINE_ARRAY_NODES(Tag, TagAttribute, sluice_tests::TagValue)
SLUICE_DEFINE_COPY(TagCopy, weft::Copy<TagAttribute>)
SLUICE_DEFINE_GLOBAL_VARIABLE(Tag, TagAttribute, SetGlobalVariableCopy)

} // namespace tidemark::sluice::graph
