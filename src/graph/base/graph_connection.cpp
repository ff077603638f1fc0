// SPDX-License-Identifier: Apache-2.0
// Connections and their two ends.
#include "graph/base/graph_connection.h"

#include "graph/base/graph_node_pin.h"

namespace tidemark::graph {

GraphConnection& GraphConnection::operator=(const GraphConnection& other) {
    if (this == &other) return *this;
    source_ = other.source_;
    target_ = other.target_;
    flag_ = other.flag_;
    return *this;
}

GraphNodeBase* GraphConnection::getSourceNode() const {
    return source_ ? source_->getParentGraphNodePtr() : nullptr;
}

GraphNodeBase* GraphConnection::getTargetNode() const {
    return target_ ? target_->getParentGraphNodePtr() : nullptr;
}

void GraphConnection::detach() {
    if (source_) source_->removeOutputConnection(this);
    if (target_) target_->removeInputConnection(this);
    source_ = nullptr;
    target_ = nullptr;
}

} // namespace tidemark::graph
