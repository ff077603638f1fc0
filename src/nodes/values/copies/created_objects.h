// SPDX-License-Identifier: Apache-2.0
// The objects that a node, or a global variable, made for itself: deep copies of what pointers in a
// value point to, and whatever else a node creates.
#pragma once

#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/pointer_value.h"
#include "graph/scene_manager.h"

namespace weft {

/// Thrown when there is no memory for the copy of the element at `position`. What was copied
/// before is the thrower's, which goes back to a defined state by its `purge`.
struct CopyFailure {
    uint32_t position;
};

/// Purges the node and ends the run with the message of a copy that failed.
[[noreturn]] SLUICE_API void failCopy(Node& node, const CopyFailure& failure);

/// The objects behind the pointers that ports of class `Attr` carry, and how they are copied: with
/// `clone()` where they have it, else by their copy constructor. `Attr` names their class as
/// `Pointee`; a class of ports that cannot specializes this.
template <typename Attr>
struct ObjectsOf {};
template <typename Attr>
requires requires { typename Attr::Pointee; }
struct ObjectsOf<Attr> {
    using Object = typename Attr::Pointee;
    static Object* copy(const Object& object) {
        if constexpr (requires { object.clone(); }) {
            return object.clone();
        } else {
            return new Object(object);
        }
    }
};

/// Ports whose values hold pointers to objects that can be copied.
template <typename Attr>
concept HoldsObjects = std::is_base_of_v<PointerAttribute, Attr> && requires {
    typename ObjectsOf<Attr>::Object;
};

/// Blanks `pointers` in all values of class `Attr`: those of `network`, which may be null, of the
/// global variables and, with `everywhere`, of all scenes. On a kernel's thread other scenes belong
/// to other threads.
template <typename Attr>
void removePointers(const NetworkManager* network, const Array<void*>& pointers, bool everywhere) {
    using namespace tidemark::sluice::graph;
    const auto remove = [&](Object& object) {
        auto* const attribute = dynamic_cast<Attr*>(&object);
        if (attribute && attribute->value()) attribute->removeReferencesTo(pointers);
    };
    // It may be no registered scene's, or no longer. One that is thrown away takes its values
    // along.
    if (network && !network->isTearingDown()) {
        for (const auto entry : network->objects()) remove(*entry.value);
    }
    CommonAttributes::visitAll(remove);
    if (everywhere) SceneManager::instance().removeAllReferencesToPointers<Attr>(pointers);
}

/// Owns objects whose pointers travel in values of class `Attr`. Before an object is freed every
/// reference to it is blanked.
template <typename Attr>
class CreatedObjects {
public:
    using Object = typename ObjectsOf<Attr>::Object;

    /// The owner frees them by `freeAll` before it goes.
    CreatedObjects() = default;
    CreatedObjects(const CreatedObjects&) = delete;
    CreatedObjects& operator=(const CreatedObjects&) = delete;

    bool isEmpty() const { return objects_.empty(); }
    /// Takes the object over.
    Object* keep(std::unique_ptr<Object> object) {
        objects_.push_back(std::move(object));
        return objects_.back().get();
    }
    /// Makes `to` point to copies of what `from` points to, null for null. Throws `CopyFailure`,
    /// and what ends a run of `running` that is interrupted; the caller then frees what was copied.
    void copyAll(const PointerValueBase& from, PointerValueBase& to,
                 const NetworkManager& running) {
        // Before the first copy, so that no position is to blame but the first.
        uint32_t position = 0;
        try {
            objects_.reserve(objects_.size() + from.size());
            to.setSize(from.size());
            for (; position < from.size(); ++position) {
                running.pollInterrupt();
                const auto* object = static_cast<const Object*>(from.valueAt(position));
                Object* copy = object
                                   ? keep(std::unique_ptr<Object>(ObjectsOf<Attr>::copy(*object)))
                                   : nullptr;
                to.setValueAt(position, copy);
            }
        } catch (const std::bad_alloc&) {
            throw CopyFailure{position};
        }
    }
    /// `network` is the owner's; see `removePointers`.
    void freeAll(const NetworkManager* network, bool everywhere) {
        if (objects_.empty()) return;
        Array<void*> pointers;
        pointers.reserve(static_cast<uint32_t>(objects_.size()));
        for (const auto& object : objects_) pointers.append(object.get());
        removePointers<Attr>(network, pointers, everywhere);
        objects_.clear();
    }

private:
    std::vector<std::unique_ptr<Object>> objects_;
};

} // namespace weft
