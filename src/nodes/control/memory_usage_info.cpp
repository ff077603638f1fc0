// SPDX-License-Identifier: Apache-2.0
// A node on any chain that tells how much memory its neighbours hold.
#include <numeric>

#include "core/numeric.h"
#include "graph/define_node.h"
#include "graph/graph_scene.h"
#include "graph/node_types.h"
#include "nodes/control/scene_node.h"

namespace weft {

class MemoryUsageInfo : public SceneNode {
public:
    MemoryUsageInfo(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;

private:
    void answer(NumericAttribute* output, uint64_t bytes);
    uint64_t bytesOfGraph() const;

    PassThroughAttribute* in_;
    NumericAttribute* pin_;
    NumericAttribute* node_;
    NumericAttribute* graph_;
    PassThroughAttribute* through_;
};

MemoryUsageInfo::MemoryUsageInfo(NetworkManager* manager, const TM_String& name, Node* parent)
    : SceneNode(manager, name, parent) {
    appendClass<"MemoryUsageInfo">();
    describe("This node outputs the memory usage in kilobytes for the current state of the graph.");
    in_ = addInput<PassThroughAttribute>("in", "The pin to query the memory usage from.");
    pin_ = addOutput<NumericAttribute>(
        "pin kb", "Memory usage in kilobytes for the pin connected to 'input'.");
    node_ = addOutput<NumericAttribute>(
        "node kb", "Memory usage in kilobytes for the node which owns the pin connected to "
                   "'input'.");
    graph_ = addOutput<NumericAttribute>("graph kb",
                                         "Memory usage in kilobytes for the whole current graph.");
    through_ = addOutput<PassThroughAttribute>("through", "The value of 'in', unchanged.");
    for (NumericAttribute* output : {pin_, node_, graph_}) {
        setAttributeAllowedSpecialization(output, "Real");
        setAttributeAffect(in_, output);
    }
    connectInternalAttributes(in_, through_);
}

void MemoryUsageInfo::update(Attribute*) {
    in_->pull();
    if (const Attribute* source = in_->source()) {
        if (pin_->toBeEvaluated()) answer(pin_, source->estimatedSize());
        if (node_->toBeEvaluated() && source->parent()) {
            answer(node_, source->parent()->estimatedSize());
        }
    }
    if (graph_->toBeEvaluated()) answer(graph_, bytesOfGraph());
    if (through_->toBeEvaluated()) setAttributeIsClean(through_, true);
}

void MemoryUsageInfo::answer(NumericAttribute* output, uint64_t bytes) {
    constexpr float kilobytes = 0.0009765625f; // in a byte
    if (Numeric* target = output->numericTarget()) {
        target->setValue<float>(static_cast<float>(bytes) * kilobytes);
    }
    setAttributeIsClean(output, true);
}

uint64_t MemoryUsageInfo::bytesOfGraph() const {
    if (!scene()) return 0;
    Array<TM_String> namesByTime;
    Array<TM_String> namesBySize;
    Array<float> times;
    Array<uint64_t> sizes;
    scene()->computeTimeAndMemoryRank(namesByTime, times, namesBySize, sizes);
    return std::accumulate(sizes.begin(), sizes.end(), uint64_t(0));
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::MemoryUsageInfo;

SLUICE_DEFINE_SCENE_NODE(MemoryUsageInfo)

} // namespace tidemark::sluice::graph
