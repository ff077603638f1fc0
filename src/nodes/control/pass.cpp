// SPDX-License-Identifier: Apache-2.0
// Pass, Concentrator and Selector: what they compute, and their pins in files.
#include "nodes/control/pass.h"

#include <unordered_set>

#include "graph/define_node.h"
#include "graph/graph_scene.h"
#include "graph/node_types.h"
#include "persistence/tree_access.h"

namespace weft {

namespace {

constexpr char withoutInput[] = "Output pin '%s' has no associated input for pass through.";

} // namespace

Pass::Pass(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"Pass">();
    setAllowDynamicAttributes(true);
    describe("This node acts as a passthrough node. The output value is exactly the same as the "
             "input. No copy is performed.\nA common use of Pass nodes is the reduction of graph "
             "cluttering.");
    auto* in = addInput<PassThroughAttribute>("in", "The value that is passed on.");
    auto* through = addOutput<PassThroughAttribute>("through", "The value of 'in', unchanged.");
    addAttributeAllowedPassThrough(in, through);
    setAttributeAffect(in, through);
    addAttributePassThrough(in, through);
}

void Pass::update(Attribute* attribute) {
    if (attribute->source()) attribute->source()->pull();
}

Concentrator::Concentrator(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"Concentrator">();
    setAllowDynamicAttributes(true);
    describe("This node acts as a passthrough node for as many inputs as desired. However, ALL "
             "inputs are ALWAYS evaluated. Evaluation order of the inputs is top to bottom.Take "
             "care, that all outputs have an associated input to avoid evaluation time errors.");
    auto* in = addInput<PassThroughAttribute>("in", "A value that is computed, and passed on if it "
                                                    "is wired to an output.");
    auto* out = addOutput<PassThroughAttribute>("out", "The value of the input that it is wired "
                                                       "to.");
    addAttributeAllowedPassThrough(in, out);
    setAttributeAffect(in, out);
}

void Concentrator::update(Attribute* attribute) {
    if (!attribute->source()) {
        pushError(tidemark::text::format(withoutInput, attribute->name().c_str()));
    }
    Array<Attribute*> inputs;
    inputAttributes(inputs);
    const SurvivingList surviving(networkManager(), inputs);
    for (uint32_t i = 0; i < inputs.size(); ++i) {
        if (surviving.holds(i)) inputs[i]->pull();
    }
}

Selector::Selector(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"Selector">();
    setAllowDynamicAttributes(true);
    describe("This node allows the user to freely connect its passthrough inputs to its "
             "passthrough outputs. Keep in mind that all outputs should have an associated input "
             "to avoid evaluation time errors.");
    auto* in = addInput<PassThroughAttribute>("in", "A value that is passed on if it is wired to "
                                                    "an output.");
    auto* out = addOutput<PassThroughAttribute>("out", "The value of the input that it is wired "
                                                       "to.");
    addAttributeAllowedPassThrough(in, out);
}

void Selector::update(Attribute* attribute) {
    if (attribute->source()) return attribute->source()->pull();
    pushWarning(tidemark::text::format(withoutInput, attribute->name().c_str()));
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::Concentrator;
using weft::Pass;
using weft::Selector;

namespace {

// Pins may have been given equal names: each `input` of a file is a pin of its own, and only the
// first of a name can be one that the node has already. Calls `read(pin, input, isNew)`.
template <typename Read>
void readEachInput(Node& node, const PropertyTree& tree, Read read) {
    std::unordered_set<TM_String> seen;
    tree::forEachNamed(
        tree, "inputs", "input", [&](const TM_String& name, const PropertyTree& input) {
            Pin* const known = seen.insert(name).second ? node.getInputPinPtrByName(name) : nullptr;
            if (known) return read(*known, input, false);
            auto* const added = dynamic_cast<Pin*>(node.addDynamicInputPin());
            if (!added) return;
            added->setName(name);
            read(*added, input, true);
        });
}

} // namespace

bool Node_Pass::readInputs_fromBoostPropertyTree(const PropertyTree& tree) {
    readEachInput(*this, tree, [](Pin& pin, const PropertyTree& input, bool) {
        pin.readInternalConnections_fromBoostPropertyTree(input);
    });
    return true;
}

bool Node_Pass::readOutputs_fromBoostPropertyTree(const PropertyTree& tree) {
    uint32_t index = 0;
    tree::forEachNamed(tree, "outputs", "output", [&](const TM_String& name, const PropertyTree&) {
        if (index < getArrOutputPin().size()) {
            getArrOutputPin()[index]->setName(name);
        } else {
            getCoreNode()->pushError(
                "Number of read outputs is larger that number of outputs in node.");
        }
        ++index;
    });
    for (const Pin* pin : getArrInputPin()) {
        if (!pin->getInternalConnectionsFromImport().empty()) return true;
    }
    if (getArrInputPin().empty() || getArrOutputPin().empty()) return true;
    getArrInputPin()[0]->setInternalConnectionsFromImport({getArrOutputPin()[0]->getName()});
    return true;
}

GraphNodePin* Node_Selector::addDynamicInputPin() {
    GraphNodePin* const added = Node::addDynamicInputPin();
    const auto* pin = dynamic_cast<const Pin*>(added);
    if (!pin) return added;
    for (weft::Attribute* output : getCoreNode()->refOutputAttributes()) {
        pairAdded(pin->getWeftAttribute(), output);
    }
    return added;
}

GraphNodePin* Node_Selector::addDynamicOutputPin() {
    GraphNodePin* const added = Node::addDynamicOutputPin();
    const auto* pin = dynamic_cast<const Pin*>(added);
    if (!pin) return added;
    for (weft::Attribute* input : getCoreNode()->refInputAttributes()) {
        pairAdded(input, pin->getWeftAttribute());
    }
    return added;
}

void Node_Selector::pairAdded(weft::Attribute* input, weft::Attribute* output) {
    input->addAllowedPassThrough(output);
}

void Node_Concentrator::pairAdded(weft::Attribute* input, weft::Attribute* output) {
    Node_Selector::pairAdded(input, output);
    getCoreNode()->setAttributeAffectPublic(input, output);
}

bool Node_Selector::readInputs_fromBoostPropertyTree(const PropertyTree& tree) {
    readEachInput(*this, tree, [](Pin& pin, const PropertyTree& input, bool isNew) {
        if (!isNew) pin.read_fromBoostPropertyTree(input);
        if (isNew) pin.readInternalConnections_fromBoostPropertyTree(input);
    });
    return true;
}

bool Node_Selector::readOutputs_fromBoostPropertyTree(const PropertyTree& tree) {
    uint32_t index = 0;
    tree::forEachNamed(tree, "outputs", "output", [&](const TM_String& name, const PropertyTree&) {
        const uint32_t position = index++;
        GraphNodePin* pin = position < getArrOutputPin().size() ? getArrOutputPin()[position]
                                                                : addDynamicOutputPin();
        if (pin) pin->setName(name);
    });
    return true;
}

SLUICE_DEFINE_GRAPH_NODE(Pass, Pass)
SLUICE_DEFINE_GRAPH_NODE(Concentrator, Concentrator)
SLUICE_DEFINE_GRAPH_NODE(Selector, Selector)

} // namespace tidemark::sluice::graph
