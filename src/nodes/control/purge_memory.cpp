// SPDX-License-Identifier: Apache-2.0
// Nodes on any chain that give memory back: of a pin, of a node, of the whole scene.
#include "graph/define_node.h"
#include "graph/graph_scene.h"
#include "graph/node_types.h"
#include "nodes/control/scene_node.h"

namespace weft {

/// A wire with a side effect that comes after its input is computed.
class PurgeNode : public SceneNode {
public:
    void update(Attribute*) override {
        in_->pull();
        purgeWhat(in_->source());
    }

protected:
    PurgeNode(NetworkManager* manager, const TM_String& name, Node* parent)
        : SceneNode(manager, name, parent) {
        in_ = addInput<PassThroughAttribute>("in", "The value that is passed on.");
        auto* through = addOutput<PassThroughAttribute>("through", "The value of 'in'.");
        connectInternalAttributes(in_, through);
    }
    /// `source` is what "in" is connected to; null for nothing.
    virtual void purgeWhat(Attribute* source) = 0;
    Value* seenValue() const { return in_->currentValue(); }

private:
    PassThroughAttribute* in_;
};

class PinPurgeMemory : public PurgeNode {
public:
    PinPurgeMemory(NetworkManager* manager, const TM_String& name, Node* parent)
        : PurgeNode(manager, name, parent) {
        appendClass<"PinPurgeMemory">();
        describe("This node purges the data stored in the connected 'input' pin.Basic types (like "
                 "Integer or String) store their values in the pins.");
    }

private:
    void purgeWhat(Attribute* source) override {
        if (source && seenValue()) seenValue()->purge();
    }
};

class NodePurgeMemory : public PurgeNode {
public:
    NodePurgeMemory(NetworkManager* manager, const TM_String& name, Node* parent)
        : PurgeNode(manager, name, parent) {
        appendClass<"NodePurgeMemory">();
        describe("This node purges the data stored in the owner of the connected 'input' pin."
                 "Nodes that allocate big data structures (like all the Copy nodes) store their "
                 "data inside the node.");
    }

private:
    void purgeWhat(Attribute* source) override {
        if (source && source->parent()) source->parent()->purge();
    }
};

class GraphPurgeMemory : public PurgeNode {
public:
    GraphPurgeMemory(NetworkManager* manager, const TM_String& name, Node* parent)
        : PurgeNode(manager, name, parent) {
        appendClass<"GraphPurgeMemory">();
        describe("This node clears the memory, messages and timing data stored in the current "
                 "graph scene nodes and pins.");
    }

private:
    void purgeWhat(Attribute*) override {
        if (scene()) scene()->purge();
    }
};

} // namespace weft

namespace tidemark::sluice::graph {

using weft::GraphPurgeMemory;
using weft::NodePurgeMemory;
using weft::PinPurgeMemory;

SLUICE_DEFINE_NODE(PinPurgeMemory)
SLUICE_DEFINE_NODE(NodePurgeMemory)
SLUICE_DEFINE_SCENE_NODE(GraphPurgeMemory)

} // namespace tidemark::sluice::graph
