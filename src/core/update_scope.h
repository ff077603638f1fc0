// SPDX-License-Identifier: Apache-2.0
// What is set while a node computes an attribute, and put back however that ends.
#pragma once

#include "core/network_manager.h"
#include "core/node.h"
#include "core/update_observer.h"

namespace weft {

/// While a node runs, so does its parent. A scope that is left by an exception tells the network
/// which node it was; the innermost scope is left first.
class Node::UpdateScope {
public:
    explicit UpdateScope(Node& node)
        : node_(node), parent_(node.parent()), wasUpdating_(node.isUpdating_),
          wasParentUpdating_(parent_ && parent_->isUpdating_),
          observer_(UpdateObserver::installed_) {
        node_.isUpdating_ = true;
        if (parent_) parent_->isUpdating_ = true;
        if (observer_) [[unlikely]]
            observer_->updateBegins(node_);
    }
    ~UpdateScope() {
        if (observer_) [[unlikely]]
            observer_->updateEnds();
        if (!isDone_) [[unlikely]]
            noteFailure();
        node_.isUpdating_ = wasUpdating_;
        if (parent_) parent_->isUpdating_ = wasParentUpdating_;
    }
    UpdateScope(const UpdateScope&) = delete;
    UpdateScope& operator=(const UpdateScope&) = delete;

    /// The node came to its end.
    void done() { isDone_ = true; }

private:
    [[gnu::cold, gnu::noinline]] void noteFailure() {
        node_.networkManager()->noteFailure(&node_);
        node_.nodeTimer_.stop(); // or it would count until the next update
    }

    Node& node_;
    Node* const parent_;
    const bool wasUpdating_;
    const bool wasParentUpdating_;
    UpdateObserver* const observer_;
    bool isDone_ = false;
};

} // namespace weft
