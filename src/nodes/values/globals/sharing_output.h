// SPDX-License-Identifier: Apache-2.0
// An output that may show a value of somebody else as its own: a global variable, an array that its
// node's input holds. What would change an output's own value, its types and its purge, lets go of
// such a value instead of changing it.
#pragma once

#include "core/network_manager.h"

namespace weft {

template <typename Attr>
class SharingOutput : public Attr {
public:
    SharingOutput(NetworkManager* manager, const TM_String& name, Node* parent)
        : Attr(manager, name, parent), own_(this->value()) {
        own_->retain();
    }
    ~SharingOutput() override { own_->release(); }

    /// Readers see `shared` from now on. On a kernel's thread, where values are others' to read or
    /// write, they see a copy.
    void show(Value* shared) {
        if (this->networkManager()->isPrivate()) {
            this->writeTarget()->copyFrom(shared);
        } else if (shared != this->value()) {
            own_->purge();
            shared_ = shared;
            this->setValue(shared);
        }
    }
    bool isSharing() const { return shared_ && this->value() == shared_; }
    void letGo() {
        if (isSharing()) this->setValue(own_);
        shared_ = nullptr;
    }

    void purge() override {
        if (isSharing()) {
            letGo();
        } else {
            Attr::purge();
        }
    }
    void specializationChanged(const SpecializationList& list) override {
        letGo();
        Attr::specializationChanged(list);
    }

private:
    Value* const own_;
    const Value* shared_ = nullptr; // compared only; the attribute holds the reference
};

} // namespace weft
