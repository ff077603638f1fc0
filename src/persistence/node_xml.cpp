// SPDX-License-Identifier: Apache-2.0
// The file form of a node: name, type, the values of its inputs, and what a compound holds.
#include <boost/property_tree/ptree.hpp>
#include <unordered_set>

#include "bridge/host.h"
#include "graph/graph_node.h"
#include "persistence/tree_access.h"

namespace tidemark::sluice::graph {

namespace {

PropertyTree& append(PropertyTree& tree, const char* name) {
    return tree.push_back({name, PropertyTree()})->second;
}

void appendText(PropertyTree& tree, const char* name, const TM_String& text) {
    tree.push_back({name, PropertyTree(text)});
}

// The file holds the pins themselves where they do not come with the type, and no values of them.
bool hasPinsOfItsOwn(const Node& node) { return node.isCompound() || node.dynamicPinsAllowed(); }

void writeInputs(const Node& node, PropertyTree& inputs) {
    const bool shortForm = hasPinsOfItsOwn(node);
    for (const Pin* pin : node.getArrInputPin()) {
        if (shortForm) {
            PropertyTree& input = append(inputs, "input");
            appendText(input, "name", pin->getName());
            pin->writeInternalConnections_toBoostPropertyTree(input);
        } else if (!pin->isConnected() || pin->hasInternalConnections()) {
            pin->write_toBoostPropertyTree(append(inputs, "input"));
        }
    }
}

void reportUnknownPin(const Node& node, const TM_String& pinName) {
    Array<TM_String> names;
    for (const Pin* pin : node.getArrInputPin()) names.append(pin->getName());
    bridge::CCallbackCenter::Instance().Post(
        bridge::message::unknownPin, node.getName() + "." + pinName, text::nearest(pinName, names));
}

} // namespace

void Node::write(PropertyTree& tree, const ArrayOfPtr<GraphNodeBase>* nodes) const {
    PropertyTree& element = append(tree, "node");
    appendText(element, "name", getName());
    appendText(element, "type", getType());
    writeInputs(*this, append(element, "inputs"));
    if (hasPinsOfItsOwn(*this)) {
        PropertyTree& outputs = append(element, "outputs");
        for (const Pin* pin : getArrOutputPin()) {
            appendText(append(outputs, "output"), "name", pin->getName());
        }
    }
    if (!isCompound()) return;
    PropertyTree& content = append(element, "nodes");
    std::unordered_set<const GraphNodeBase*> wanted;
    if (nodes) wanted.insert(nodes->begin(), nodes->end());
    for (const GraphNodeBase* child : children()) {
        if (nodes && wanted.count(child) == 0) continue;
        static_cast<const NodeBase*>(child)->write_toBoostPropertyTree(content);
    }
}

void Node::write_toBoostPropertyTree(PropertyTree& tree, const ArrayOfPtr<GraphNodeBase>& nodes,
                                     bool filtered) const {
    write(tree, filtered ? &nodes : nullptr);
}

void Node::write_toBoostPropertyTree(PropertyTree& tree) const { write(tree, nullptr); }

bool Node::readInputs_fromBoostPropertyTree(const PropertyTree& tree) {
    tree::forEachNamed(tree, "inputs", "input",
                       [&](const TM_String& name, const PropertyTree& input) {
                           if (Pin* pin = getInputPinPtrByName(name)) {
                               pin->read_fromBoostPropertyTree(input);
                           } else {
                               reportUnknownPin(*this, name);
                           }
                       });
    return true;
}

} // namespace tidemark::sluice::graph
