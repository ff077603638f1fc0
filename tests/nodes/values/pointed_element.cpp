// SPDX-License-Identifier: Apache-2.0
// How the element type that is held by pointers joins the families of nodes.
#include "nodes/values/pointed_element.h"

#include "nodes/values/arrays/array_nodes.h"
#include "nodes/values/copies/copy_nodes.h"
#include "nodes/values/globals/global_variables.h"

weft::AnchorAttribute::AnchorAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : PointerAttribute(manager, name, parent, new AnchorValue(manager), AnchorValue::kind) {
    appendClass<"AnchorAttribute">();
    initializeSpecializations(SpecializationList::single("Anchor"));
}

namespace tidemark::sluice::graph {

SLUICE_DEFINE_ARRAY_NODES(Anchor, weft::AnchorAttribute, weft::AnchorValue)
SLUICE_DEFINE_COPY(AnchorCopy, weft::CopyPtr<weft::AnchorAttribute>)
SLUICE_DEFINE_GLOBAL_VARIABLE(Anchor, weft::AnchorAttribute, SetGlobalVariableCopy)

} // namespace tidemark::sluice::graph
