// SPDX-License-Identifier: Apache-2.0
// Interface nodes: pulling across the wall of a compound, and reading the pins of both sides.
#include "nodes/control/compound_interface.h"

#include "graph/define_node.h"
#include "graph/graph_scene.h"
#include "graph/node_types.h"
#include "persistence/tree_access.h"

namespace weft {

CompoundInterface::CompoundInterface(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"CompoundInterface">();
    setAllowDynamicAttributes(true);
    describe("This node acts as an interface between a compound and its containing graphs.\n"
             "The CompoundInterface node allows the creation of dynamic input/output pins with "
             "user-defined names.\n"
             "If a pin is added to the CompoundInterface node, a pin with the same name is created "
             "in its parent compound.\n"
             "When a pin is added to the Compound, an equivalent interface node is created in its "
             "contained graph.");
}

Attribute* CompoundInterface::addDynamicInputAttribute() {
    const TM_String name = tidemark::text::format("in%02u", refInputAttributes().size());
    auto* attribute = new PassThroughAttribute(networkManager(), name, this);
    addInputAttribute(attribute);
    addDynamicAttribute(attribute);
    return attribute;
}

Attribute* CompoundInterface::addDynamicOutputAttribute() {
    const TM_String name = tidemark::text::format("out%02u", refOutputAttributes().size());
    auto* attribute = new PassThroughAttribute(networkManager(), name, this);
    addOutputAttribute(attribute);
    addDynamicAttribute(attribute);
    return attribute;
}

void CompoundInterface::update(Attribute* attribute) {
    if (!parent() || !parent()->parent()) {
        pushCritical("Compound Interface nodes cannot be at root level.");
    }
    if (attribute->isInput()) return attribute->pull();
    if (attribute->source()) attribute->source()->pull();
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::CompoundInterface;

// The interface pin gets the name as well: the connections of a file name either end by it.
void Node_CompoundInterface::addStoredPin(GraphNodePin* interfacePin, const TM_String& storedName) {
    SL_GraphScene* scene = getScene();
    GraphNodePin* compoundPin = scene->createCompoundPinForInterfacePin(interfacePin);
    if (!compoundPin) return interfacePin->setName(storedName);
    if (compoundPin->getName() == storedName) return;
    const TM_String compound = getNodeOwner()->getFullName();
    TM_String name = storedName;
    if (scene->getPinPtrByFullName(compound + "." + storedName)) {
        name = scene->getFreePinName(compound, storedName);
    }
    interfacePin->setName(name);
    compoundPin->setName(name);
}

bool Node_CompoundInterface::readInputs_fromBoostPropertyTree(const PropertyTree& tree) {
    tree::forEachNamed(tree, "inputs", "input", [&](const TM_String& name, const PropertyTree&) {
        addStoredPin(addDynamicInputPin(), name);
    });
    return true;
}

bool Node_CompoundInterface::readOutputs_fromBoostPropertyTree(const PropertyTree& tree) {
    tree::forEachNamed(tree, "outputs", "output", [&](const TM_String& name, const PropertyTree&) {
        addStoredPin(addDynamicOutputPin(), name);
    });
    return true;
}

void Node_CompoundInterface::onRemovingFromScene() {
    // A network that is thrown away as a whole takes the compound along anyway.
    const bool isAlone = getScene() && !getScene()->networkManager().isTearingDown();
    if (isAlone && getNodeOwner()) {
        removeCounterparts(getArrInputPin());
        removeCounterparts(getArrOutputPin());
    }
    Node::onRemovingFromScene();
}

void Node_CompoundInterface::removeCounterparts(const Array<Pin*>& pins) {
    for (uint32_t i = pins.size(); i > 0; --i) {
        GraphNodePin* const counterpart = pins[i - 1]->getParentGraphNodePinPtr();
        if (counterpart) counterpart->getParentGraphNodePtr()->removeNodePin(counterpart);
    }
}

SLUICE_DEFINE_GRAPH_NODE(CompoundInterface, CompoundInterface)

} // namespace tidemark::sluice::graph
