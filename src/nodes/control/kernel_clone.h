// SPDX-License-Identifier: Apache-2.0
// The private copy of a graph that one thread of a kernel runs.
#pragma once

#include <set>
#include <vector>

#include "nodes/control/kernel_plan.h"
#include "nodes/control/kernel_vars.h"

namespace weft {

class Evaluator;

/// The elements that one thread works on: `count` of them from `first`, counted as the indices are,
/// without a sign.
struct KernelShare {
    uint32_t thread;
    uint32_t first;
    uint32_t count;
};

/// Built and destroyed on the thread that evaluates the kernel; in between used by one worker.
class KernelClone {
public:
    /// `alone`: no other thread runs at the same time, so the copy works on all values at the
    /// compound's walls themselves. Otherwise see `stands` and `sharedValues`.
    KernelClone(const KernelPlan& plan, const KernelShare& share, bool alone);
    ~KernelClone();

    /// Runs the elements of the share, until an interrupt. Throws nothing; what goes wrong with an
    /// element is reported, and the next one follows.
    void run(const Numeric& array);

    /// A value of the outside, and what stands for it in this copy.
    struct Stand {
        Value* outside;
        Value* inside;
        bool isResult; ///< computed anew for each element, not written in place
    };
    const std::vector<Stand>& stands() const { return stands_; }
    /// An output of the outside that has no value of its own, but shows the object that was handed
    /// on last, and what stands for it in this copy.
    struct Handover {
        Attribute* outside;
        const Attribute* inside;
    };
    const std::vector<Handover>& handovers() const { return handovers_; }
    /// Values of the outside that this copy uses beside others.
    const std::vector<Value*>& sharedValues() const { return sharedValues_; }

    /// The messages of the copy's nodes, each once, by the node's place in the plan.
    using Reports = std::vector<std::pair<uint32_t, tidemark::graph::Message>>;
    const Reports& reports() const { return reports_; }
    /// The node that an interrupt ended, as a node of the plan; null when it was none of them.
    KernelPlan::GraphNode* interruptedNode() const;

private:
    using GraphNode = KernelPlan::GraphNode;
    using Pin = tidemark::sluice::graph::Pin;

    void readNodes();
    void pairNodes(const GraphNode& original, const tidemark::graph::GraphNodeBase& parent,
                   uint32_t& next, uint32_t& place);
    void setVariables();
    void connect();
    Pin* pinAt(const KernelPlan::End& end, bool isInput) const;
    const Attribute* writerInPlace(const Attribute& copy) const;
    Value* privateCopy(const Attribute& near, const Value& outside) const;
    void shareVariable(const Attribute& variable, Attribute& copy);
    void shareOutlet(const KernelPlan::Outlet& outlet);
    const Stand* standFor(const Value& outside) const;
    template <typename T>
    void runElements(const Array<T>& elements);
    void runElement(uint32_t index);
    void collectReports();

    const KernelPlan& plan_;
    const KernelShare share_;
    const bool alone_;
    tidemark::sluice::graph::SL_GraphScene scene_;
    std::vector<GraphNode*> nodes_; // by the places of the plan; null where none was read
    GraphNode* varsNode_ = nullptr;
    GraphNode* evaluatorNode_ = nullptr;
    KernelVars* vars_ = nullptr;
    std::vector<Stand> stands_;
    std::vector<Handover> handovers_;
    std::vector<Value*> sharedValues_;
    Reports reports_;
    std::set<std::pair<uint32_t, TM_String>> reported_;
};

} // namespace weft
