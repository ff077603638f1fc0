// SPDX-License-Identifier: Apache-2.0
// The part of a graph that a kernel repeats, ready to be copied once per thread.
#pragma once

#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "graph/graph_scene.h"

namespace weft {

class Kernel;

/// Made once per evaluation of the kernel. Nodes are known by their places, never by their names,
/// which need not be free of points.
class KernelPlan {
public:
    using GraphNode = tidemark::sluice::graph::Node;
    using PropertyTree = tidemark::sluice::graph::PropertyTree;

    /// A pin of a node of the copy.
    struct End {
        uint32_t node; ///< place in `nodes()`, or one of the two numbers below
        uint32_t pin;  ///< among the node's inputs or outputs
    };
    struct Wire {
        End source;
        End target;
    };
    /// What the compound's outputs are wired to, and its place in the copy.
    struct Outlet {
        Attribute* source;
        End end;
    };

    /// The stand-ins of the kernel and of the compound's outputs.
    static constexpr uint32_t vars = 0xfffffffeu;
    static constexpr uint32_t evaluator = 0xffffffffu;

    /// `attributes`: what the compound's outputs depend on. Throws on the compound when another
    /// kernel is among their owners.
    KernelPlan(const Kernel& kernel, const Array<Attribute*>& attributes);
    ~KernelPlan();

    const Kernel& kernel() const { return kernel_; }
    GraphNode* kernelNode() const;
    /// The document that the copies are read from: a node element per child of the compound, then
    /// the two stand-ins. Wires are kept apart.
    const PropertyTree& tree() const { return *tree_; }
    /// The children of the compound that are copied, in document order.
    const std::vector<GraphNode*>& roots() const { return roots_; }
    /// All nodes of the document but the stand-ins, each before its children, in document order.
    const std::vector<GraphNode*>& nodes() const { return nodes_; }
    /// Outputs of interface nodes: what comes in from outside the compound. The stand-in of the
    /// kernel has a pin for each, after its own three.
    const std::vector<Attribute*>& variables() const { return variables_; }
    const std::vector<Outlet>& outlets() const { return outlets_; }
    const std::vector<Wire>& wires() const { return wires_; }

private:
    void classify(Attribute& attribute);
    bool isWall(const Node& owner) const;
    void addVariable(Attribute* output);
    void addChildOf(const Node* owner);
    void addWhatNodesRead();
    void listNodes(GraphNode* node);
    void writeTree();
    void addInnerWires();
    void addOuterWires();
    void addOutlets();
    bool findEnd(const Attribute& attribute, End& end) const;

    const Kernel& kernel_;
    Node& compound_;
    std::shared_ptr<PropertyTree> tree_;
    std::vector<GraphNode*> roots_;
    std::vector<GraphNode*> nodes_;
    std::vector<Attribute*> variables_;
    std::vector<Attribute*>
        outletInputs_; // inputs of interface nodes, one pin of the evaluator each
    std::vector<Outlet> outlets_;
    std::vector<Wire> wires_;
    std::unordered_set<const Node*> children_; // of the compound, those that are copied
    std::unordered_map<const Attribute*, uint32_t> variablePlaces_;
    std::unordered_map<const Node*, uint32_t> nodePlaces_;
};

} // namespace weft
