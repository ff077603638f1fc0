// SPDX-License-Identifier: Apache-2.0
// A node on any chain that ends the run when its condition holds.
#include "core/bit_array.h"
#include "core/exceptions.h"
#include "core/node.h"
#include "graph/define_node.h"

namespace weft {

class GraphCancel : public Node {
public:
    GraphCancel(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;

private:
    [[noreturn]] void cancel(bool quiet);

    BitArrayAttribute* cancel_;
    BitArrayAttribute* quiet_;
    PassThroughAttribute* in_;
    PassThroughAttribute* through_;
};

GraphCancel::GraphCancel(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"GraphCancel">();
    describe("This node stops the execution of the current graph, if the input 'condition' is "
             "'true'.");
    cancel_ = addInput<BitArrayAttribute>("cancel", "True to cancel the graph execution.");
    quiet_ = addInput<BitArrayAttribute>("quiet", "Set to 'true' to cancel graph execution without "
                                                  "showing any error.");
    in_ = addInput<PassThroughAttribute>("in", "The value that is passed on.");
    through_ = addOutput<PassThroughAttribute>("through", "The value of 'in', unchanged.");
    cancel_->setElementCountRule(1);
    quiet_->setElementCountRule(1);
    setAttributeAffect(cancel_, through_);
    connectInternalAttributes(in_, through_);
}

void GraphCancel::update(Attribute*) {
    cancel_->pull();
    const bool isCancelled = cancel_->firstBit();
    quiet_->pull();
    const bool isQuiet = quiet_->firstBit();
    if (isCancelled) cancel(isQuiet);
    in_->pull();
}

void GraphCancel::cancel(bool quiet) {
    using tidemark::sluice::graph::cancelExceptionCode;
    using tidemark::sluice::graph::CancelGraphException;
    using tidemark::sluice::graph::GenericGraphException;
    const TM_String text = "Graph execution cancelled";
    if (quiet) throw CancelGraphException(text, cancelExceptionCode, true);
    pushCritical("Execution cancelled by node", GenericGraphException(text, cancelExceptionCode),
                 TM_String());
}

} // namespace weft

namespace tidemark::sluice::graph {

using weft::GraphCancel;

SLUICE_DEFINE_NODE(GraphCancel)

} // namespace tidemark::sluice::graph
