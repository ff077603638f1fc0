// SPDX-License-Identifier: Apache-2.0
// Nodes on any chain that set and tell the number of threads of the compound they stand in.
#include "bridge/host.h"
#include "core/node.h"
#include "core/numeric.h"
#include "graph/define_node.h"

namespace weft {

class SetGraphNumberOfThreads : public Node {
public:
    SetGraphNumberOfThreads(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;

private:
    NumericAttribute* threads_;
    PassThroughAttribute* in_;
};

SetGraphNumberOfThreads::SetGraphNumberOfThreads(NetworkManager* manager, const TM_String& name,
                                                 Node* parent)
    : Node(manager, name, parent) {
    appendClass<"SetGraphNumberOfThreads">();
    describe("This node changes the number of threads used for the current compound and its "
             "children behind this nodes evaluation.");
    threads_ =
        addInput<NumericAttribute>("threads", "The desired number of threads. 0 for default.");
    in_ = addInput<PassThroughAttribute>("in", "The value that is passed on.");
    auto* through = addOutput<PassThroughAttribute>("through", "The value of 'in', unchanged.");
    setAttributeAllowedSpecialization(threads_, "Integer");
    setAttributeAffect(threads_, through);
    connectInternalAttributes(in_, through);
}

void SetGraphNumberOfThreads::update(Attribute*) {
    in_->pull();
    threads_->pull();
    const int32_t threads = threads_->numeric().value<int32_t>();
    if (threads < 0) return pushError("Input number of threads cannot be negative");
    if (parent()) parent()->setNumberOfThreads(threads);
}

class GetGraphNumberOfThreads : public Node {
public:
    GetGraphNumberOfThreads(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;

private:
    int actualThreads() const;

    PassThroughAttribute* in_;
    NumericAttribute* threads_;
    NumericAttribute* actual_;
};

GetGraphNumberOfThreads::GetGraphNumberOfThreads(NetworkManager* manager, const TM_String& name,
                                                 Node* parent)
    : Node(manager, name, parent) {
    appendClass<"GetGraphNumberOfThreads">();
    describe("This node returns the number of threads used for the excecution of the current "
             "compound and its children.");
    in_ = addInput<PassThroughAttribute>("in", "The value that is passed on.");
    threads_ =
        addOutput<NumericAttribute>("threads", "The current number of threads. 0 for default.");
    actual_ =
        addOutput<NumericAttribute>("actual threads", "The actual current number of threads.");
    auto* through = addOutput<PassThroughAttribute>("through", "The value of 'in', unchanged.");
    for (NumericAttribute* output : {threads_, actual_}) {
        setAttributeAllowedSpecialization(output, "Integer");
        setAttributeAffect(in_, output);
    }
    connectInternalAttributes(in_, through);
}

void GetGraphNumberOfThreads::update(Attribute* attribute) {
    in_->pull();
    const auto answer = [](NumericAttribute* output, int32_t threads) {
        if (Numeric* target = output->numericTarget()) target->setValue<int32_t>(threads);
    };
    if (attribute == threads_) answer(threads_, parent()->getStoredNumberOfThreads());
    if (attribute == actual_) answer(actual_, actualThreads());
}

int GetGraphNumberOfThreads::actualThreads() const {
    const int stored = parent()->getStoredNumberOfThreads();
    if (stored != 0) return stored;
    const Node* above = parent()->parent();
    return above ? above->getNumberOfThreadsToUse() : tidemark::bridge::host().numberOfThreads();
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::GetGraphNumberOfThreads;
using weft::SetGraphNumberOfThreads;

SLUICE_DEFINE_NODE(SetGraphNumberOfThreads)
SLUICE_DEFINE_NODE(GetGraphNumberOfThreads)

} // namespace tidemark::sluice::graph
