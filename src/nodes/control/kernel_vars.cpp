// SPDX-License-Identifier: Apache-2.0
// The stand-in of a kernel.
#include "nodes/control/kernel_vars.h"

#include "graph/define_node.h"
#include "graph/graph_scene.h"
#include "graph/node_types.h"
#include "persistence/tree_access.h"

namespace weft {

KernelVars::KernelVars(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"KernelVars">();
    setAllowDynamicAttributes(true);
    describe("This node takes the place of a Kernel node in the copies of a graph that the threads "
             "of the kernel run. It has one more output for each value that enters the compound of "
             "the kernel.");
    element = addOutput<NumericAttribute>("element", "The element that the thread works on.");
    threadId = addOutput<NumericAttribute>("thread id", "The number of the thread, from 0.");
    index = addOutput<NumericAttribute>("index", "The index of the element in the array.");
    setAttributeAllowedSpecialization(threadId, "Integer");
    setAttributeAllowedSpecialization(index, "Integer");
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::KernelVars;

bool Node_KernelVars::readOutputs_fromBoostPropertyTree(const PropertyTree& tree) {
    tree::forEachNamed(tree, "outputs", "output", [&](const TM_String& name, const PropertyTree&) {
        if (getCoreNode()->findAttribute(name)) return;
        if (GraphNodePin* pin = addDynamicOutputPin()) pin->setName(name);
    });
    return true;
}

SLUICE_DEFINE_GRAPH_NODE(KernelVars, KernelVars)

} // namespace tidemark::sluice::graph
