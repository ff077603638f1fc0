// SPDX-License-Identifier: Apache-2.0
// Identity and lifetime: every logic object has an id, a manager and a reference count.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

#include "core/export.h"
#include "core/text.h"

namespace weft {

class NetworkManager;

/// Base of every logic object. It enters itself in its manager's table and deletes itself when its
/// last reference is released. A new object has no reference yet.
///
/// Reference counts and ids may be touched from worker threads; everything else belongs to the
/// thread that evaluates the manager's network.
class SLUICE_API Object {
public:
    explicit Object(NetworkManager* manager);
    virtual ~Object();
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    void retain();
    /// May delete the object.
    void release();
    int32_t refCount() const { return refCount_.load(std::memory_order_relaxed); }

    /// Positive, rising, unique in the process and never used again.
    int32_t id() const { return id_; }

    /// Null once the manager is gone, which a value that outlives its scene may see.
    NetworkManager* networkManager() const { return networkManager_; }

    bool isAttributeObject() const { return isAttributeObject_; }

    /// True from the end of the object's teardown on; late notifications test it.
    bool isDeleted() const { return isDeleted_; }

protected:
    void markDeleted() { isDeleted_ = true; }

    bool isAttributeObject_ = false;
    uint8_t holders_ = 0; // parents that list a nested object as their child; stands here for room

private:
    friend class NetworkManager;

    friend class NestedObject;

    bool isDeleted_ = false;
    std::atomic<int32_t> refCount_{0};
    int32_t id_;
    uint32_t childOrder_ = 0; // of nested objects; stands here for room
    NetworkManager* networkManager_;
};

/// Out-parameter of connection checks: empty, or the reason of a refusal.
class SLUICE_API ErrorObject : public Object {
public:
    explicit ErrorObject(NetworkManager* manager) : Object(manager) {}
    const TM_String& message() const { return message_; }
    void setMessage(TM_String text) { message_ = std::move(text); }

private:
    TM_String message_;
};

/// Holds one reference on an object for a scope: `Retained<ErrorObject> error(new ErrorObject(m));`
template <typename T>
class Retained {
public:
    explicit Retained(T* object) : object_(object) { object_->retain(); }
    ~Retained() { object_->release(); }
    Retained(const Retained&) = delete;
    Retained& operator=(const Retained&) = delete;
    T* get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }

private:
    T* object_;
};

} // namespace weft
