// SPDX-License-Identifier: Apache-2.0
// Comparing two scenes: nodes are paired along the tree, then what the pairs hold is compared.
#include "tool/graph_diff.h"

#include <unordered_map>

#include "tool/layout_diff.h"
#include "tool/value_json.h"

namespace tidemark::tool {

namespace {

using sluice::graph::NodeBase;
using sluice::graph::Pin;
using sluice::graph::SL_GraphScene;
using tidemark::graph::GraphConnection;
using tidemark::graph::GraphNodeBase;
using tidemark::graph::GraphNodePin;

const NodeBase& nodeBase(const GraphNodeBase* node) { return *static_cast<const NodeBase*>(node); }

std::size_t countBelow(const NodeBase& node) {
    ArrayOfPtr<GraphNodeBase> below;
    if (!node.children().empty()) node.getNodesRecursively(below);
    return below.size();
}

Json nodeJson(const NodeBase& node) {
    Json json{{"type", node.getType()}};
    if (const std::size_t count = countBelow(node)) json["nodes"] = count;
    return json;
}

Json storedValue(const Pin& pin) {
    const weft::Attribute* attribute = pin.getWeftAttribute();
    return {{"type", attribute ? attribute->specialization() : std::string()},
            {"value", valueJson(pin)}};
}

Json internalEnds(const Pin& pin) {
    Json names = Json::array();
    if (!pin.hasInternalConnections()) return names;
    ArrayOfPtr<GraphNodePin> ends;
    pin.internalConnections(ends);
    for (const GraphNodePin* end : ends) names.push_back(end->getName());
    return names;
}

std::string connectionName(const GraphConnection& connection) {
    return connection.getSourcePin()->getFullName() + " > " +
           connection.getTargetPin()->getFullName();
}

const Pin* pinLike(const GraphNodePin& pin, const NodeBase& node) {
    return pin.isInput() ? node.getInputPinPtrByName(pin.getName())
                         : node.getOutputPinPtrByName(pin.getName());
}

/// Nodes of one graph and those they are paired with in the other.
class Partners {
public:
    void put(const GraphNodeBase* node, const NodeBase* partner) { partners_[node] = partner; }
    const NodeBase* of(const GraphNodeBase* node) const {
        const auto found = partners_.find(node);
        return found == partners_.end() ? nullptr : found->second;
    }
    /// The pin of the same name and direction on the partner of the pin's node; null without one.
    const Pin* of(const GraphNodePin* pin) const {
        const NodeBase* node = of(pin->getParentGraphNodePtr());
        return node ? pinLike(*pin, *node) : nullptr;
    }

private:
    std::unordered_map<const GraphNodeBase*, const NodeBase*> partners_;
};

class GraphComparison {
public:
    GraphComparison(const Graph& a, const Graph& b) : a_(a), b_(b) {}

    std::vector<Difference> compare(bool withLayout) {
        compareNodes();
        compareConnections();
        if (withLayout) {
            const auto isOfBoth = [this](const std::string& name) { return isOfBothGraphs(name); };
            compareLayouts(a_.layout, b_.layout, isOfBoth, found_);
        }
        return std::move(found_);
    }

private:
    void compareNodes();
    void compareNode(const NodeBase& a, const NodeBase& b);
    void comparePins(const Array<Pin*>& a, const Array<Pin*>& b, const NodeBase& nodeOfA,
                     const NodeBase& nodeOfB);
    void compareInputs(const Pin& a, const Pin& b);
    std::vector<const NodeBase*> pairChildren(const NodeBase& a, const NodeBase& b);
    void compareOrder(const NodeBase& a, const std::vector<const NodeBase*>& paired,
                      const NodeBase& b);
    void compareConnections();
    void listUnpaired(const SL_GraphScene& scene, const Partners& partners, bool removed);
    bool isOfBothGraphs(const std::string& nodeName) const;
    Difference& add(const char* kind, std::string name) {
        return found_.emplace_back(Difference{kind, std::move(name), {}});
    }

    const Graph& a_;
    const Graph& b_;
    Partners inB_; // of the nodes of a
    Partners inA_; // of the nodes of b
    std::vector<Difference> found_;
};

// Without recursion: compounds may be nested deeply.
void GraphComparison::compareNodes() {
    std::vector<const NodeBase*> open{&nodeBase(a_.scene.getRootNode())};
    inB_.put(open.front(), &nodeBase(b_.scene.getRootNode()));
    inA_.put(b_.scene.getRootNode(), open.front());
    while (!open.empty()) {
        const NodeBase& a = *open.back();
        open.pop_back();
        const NodeBase& b = *inB_.of(&a);
        if (!a.isRoot()) compareNode(a, b);
        // What is inside of a locked node comes from another file.
        if (a.isLocked() && b.isLocked()) continue;
        const std::vector<const NodeBase*> paired = pairChildren(a, b);
        compareOrder(a, paired, b);
        open.insert(open.end(), paired.rbegin(), paired.rend());
    }
}

void GraphComparison::compareNode(const NodeBase& a, const NodeBase& b) {
    if (a.getType() != b.getType()) {
        Difference& type = add("type", a.getFullName());
        type.a = a.getType();
        type.b = b.getType();
    }
    comparePins(a.getArrInputPin(), b.getArrInputPin(), a, b);
    comparePins(a.getArrOutputPin(), b.getArrOutputPin(), a, b);
}

void GraphComparison::comparePins(const Array<Pin*>& a, const Array<Pin*>& b,
                                  const NodeBase& nodeOfA, const NodeBase& nodeOfB) {
    // Pins of another type are no news, and those of an interface stand on the compound as well.
    const auto isTold = [&](const Pin& pin) {
        return nodeOfA.getType() == nodeOfB.getType() && !pin.getParentGraphNodePinPtr();
    };
    const auto side = [](const Pin& pin) { return pin.isInput() ? "input" : "output"; };
    for (const Pin* pin : a) {
        const Pin* partner = pinLike(*pin, nodeOfB);
        if (partner) {
            compareInputs(*pin, *partner);
        } else if (isTold(*pin)) {
            add("pin", pin->getFullName()).a = side(*pin);
        }
    }
    for (const Pin* pin : b) {
        if (!pinLike(*pin, nodeOfA) && isTold(*pin)) add("pin", pin->getFullName()).b = side(*pin);
    }
}

// A connected input shows what its source holds.
void GraphComparison::compareInputs(const Pin& a, const Pin& b) {
    if (!a.isInput()) return;
    Json endsOfA = internalEnds(a);
    Json endsOfB = internalEnds(b);
    if (endsOfA != endsOfB) {
        Difference& ends = add("internal connection", a.getFullName());
        if (!endsOfA.empty()) ends.a = std::move(endsOfA);
        if (!endsOfB.empty()) ends.b = std::move(endsOfB);
    }
    if (a.isConnected() || b.isConnected()) return;
    Json valueOfA = storedValue(a);
    Json valueOfB = storedValue(b);
    if (valueOfA == valueOfB) return;
    Difference& value = add("value", a.getFullName());
    value.a = std::move(valueOfA);
    value.b = std::move(valueOfB);
}

/// The children of `a` that `b` has as well.
std::vector<const NodeBase*> GraphComparison::pairChildren(const NodeBase& a, const NodeBase& b) {
    std::vector<const NodeBase*> paired;
    for (const GraphNodeBase* child : a.children()) {
        const GraphNodeBase* partner = b.findChild(child->getName());
        if (partner && !inA_.of(partner)) {
            inB_.put(child, &nodeBase(partner));
            inA_.put(partner, &nodeBase(child));
            paired.push_back(&nodeBase(child));
        } else {
            add("node", child->getFullName()).a = nodeJson(nodeBase(child));
        }
    }
    for (const GraphNodeBase* child : b.children()) {
        if (!inA_.of(child)) add("node", child->getFullName()).b = nodeJson(nodeBase(child));
    }
    return paired;
}

// The order of evaluators is the order in which they run.
void GraphComparison::compareOrder(const NodeBase& a, const std::vector<const NodeBase*>& paired,
                                   const NodeBase& b) {
    std::vector<const NodeBase*> inOrderOfB;
    for (const GraphNodeBase* child : b.children()) {
        if (const NodeBase* partner = inA_.of(child)) inOrderOfB.push_back(partner);
    }
    std::size_t first = 0;
    while (first < paired.size() && paired[first] == inOrderOfB[first]) ++first;
    if (first == paired.size()) return;
    Difference& order = add("order", a.getFullName());
    order.a = {{"index", first}, {"node", paired[first]->getName()}};
    order.b = {{"index", first}, {"node", inOrderOfB[first]->getName()}};
}

void GraphComparison::compareConnections() {
    listUnpaired(a_.scene, inB_, true);
    listUnpaired(b_.scene, inA_, false);
}

/// The connections of one graph that the other does not have.
void GraphComparison::listUnpaired(const SL_GraphScene& scene, const Partners& partners,
                                   bool removed) {
    for (const GraphConnection* connection : scene.connections()) {
        const Pin* source = partners.of(connection->getSourcePin());
        const Pin* target = partners.of(connection->getTargetPin());
        bool isThere = false;
        if (source && target) {
            for (const GraphConnection* other : target->inputConnections()) {
                isThere = isThere || other->getSourcePin() == source;
            }
        }
        // Inside of a compound that is told as a whole.
        const GraphNodeBase* compound = connection->getTargetNode()->getNodeOwner();
        if (isThere || (compound && !partners.of(compound))) continue;
        Json ends{{"source", connection->getSourcePin()->getFullName()},
                  {"target", connection->getTargetPin()->getFullName()}};
        Difference& difference = add("connection", connectionName(*connection));
        (removed ? difference.a : difference.b) = std::move(ends);
    }
}

/// Also true for a name that neither graph has a node of.
bool GraphComparison::isOfBothGraphs(const std::string& nodeName) const {
    const GraphNodeBase* a = a_.scene.getNodePtrByFullName(nodeName);
    const GraphNodeBase* b = b_.scene.getNodePtrByFullName(nodeName);
    return (a != nullptr) == (b != nullptr);
}

std::string sideText(const Difference& difference, const Json& side) {
    const std::string_view kind = difference.kind;
    if (kind == "value") {
        const std::string type = side["type"].get<std::string>();
        return (type.empty() ? "" : type + " ") + dumped(side["value"]);
    }
    if (kind == "order") {
        return side["node"].get<std::string>() + " at " +
               std::to_string(side["index"].get<std::size_t>());
    }
    return side.is_string() ? side.get<std::string>() : dumped(side);
}

/// What only one graph has, behind its name.
std::string aloneText(const Difference& difference, const Json& side) {
    const std::string_view kind = difference.kind;
    if (kind == "connection") return "";
    if (kind != "node") return ": " + sideText(difference, side);
    std::string text = " (" + side["type"].get<std::string>();
    if (side.contains("nodes")) {
        const auto count = side["nodes"].get<std::size_t>();
        text += ", " + std::to_string(count) + (count == 1 ? " node" : " nodes");
    }
    return text + ")";
}

} // namespace

const char* Difference::change() const {
    if (b.is_null()) return "removed";
    return a.is_null() ? "added" : "changed";
}

std::vector<Difference> compareGraphs(const Graph& a, const Graph& b, bool withLayout) {
    return GraphComparison(a, b).compare(withLayout);
}

std::string differenceText(const Difference& difference) {
    const bool removed = difference.b.is_null();
    const bool added = difference.a.is_null();
    std::string text = removed ? "- " : added ? "+ " : "~ ";
    text += std::string(difference.kind) + " " + difference.name;
    if (!difference.what.empty()) text += " " + difference.what;
    if (removed || added)
        return text + aloneText(difference, removed ? difference.a : difference.b);
    return text + ": " + sideText(difference, difference.a) + " -> " +
           sideText(difference, difference.b);
}

Json differenceJson(const Difference& difference) {
    Json json{
        {"kind", difference.kind}, {"change", difference.change()}, {"name", difference.name}};
    if (!difference.what.empty()) json["what"] = difference.what;
    if (!difference.a.is_null()) json["a"] = difference.a;
    if (!difference.b.is_null()) json["b"] = difference.b;
    return json;
}

} // namespace tidemark::tool
