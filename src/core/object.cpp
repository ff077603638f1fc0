// SPDX-License-Identifier: Apache-2.0
// Identity and lifetime of logic objects.
#include "core/object.h"

#include "core/callbacks.h"
#include "core/network_manager.h"

namespace weft {

Object::Object(NetworkManager* manager) : id_(NetworkManager::nextId()), networkManager_(manager) {
    if (networkManager_) networkManager_->enter(this);
}

Object::~Object() {
    if (networkManager_) networkManager_->leave(this);
}

void Object::retain() {
    if (Callbacks::_objectRetainCallback && networkManager_ && networkManager_->monitoring()) {
        return Callbacks::_objectRetainCallback(this);
    }
    refCount_.fetch_add(1, std::memory_order_relaxed);
}

void Object::release() {
    if (Callbacks::_objectReleaseCallback && networkManager_ && networkManager_->monitoring()) {
        return Callbacks::_objectReleaseCallback(this);
    }
    if (refCount_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

} // namespace weft
