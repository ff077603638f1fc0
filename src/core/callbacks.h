// SPDX-License-Identifier: Apache-2.0
// Slots by which a layer above follows what happens in the network. All are null at start; they
// fire only while the manager's `monitoring` is on and not for objects that are torn down.
#pragma once

#include "core/array.h"
#include "core/export.h"
#include "core/text.h"

namespace weft {

class Attribute;
class Node;
class Object;

/// Set on one thread before networks run; a slot may be called on the worker that evaluates a
/// private network only when that network monitors, which such networks do not.
struct SLUICE_API Callbacks {
    static void (*_attributeConnectedCallback)(Attribute* source, Attribute* destination);
    static void (*_attributeDisconnectedCallback)(Attribute*);
    static void (*_attributeDeletedCallback)(Attribute*);
    static void (*_attributeSpecializationCallback)(Attribute*);
    /// Only for attributes with `notifiesDirty`.
    static void (*_attributeDirtiedCallback)(Attribute*);
    /// The clean state has changed, in either direction.
    static void (*_attributeCleanCallback)(Attribute*);
    static void (*_objectRenamedCallback)(Object*, const TM_String& newName);
    /// Replace the built-in reference counting when set.
    static void (*_objectRetainCallback)(Object*);
    static void (*_objectReleaseCallback)(Object*);

    static void (*_addNodeCallback)(Node* parent, Node* node);
    static void (*_removeNodeCallback)(Node* parent, Node* node);
    static void (*_addInputAttributeCallback)(Node*, Attribute*);
    static void (*_addOutputAttributeCallback)(Node*, Attribute*);
    static void (*_removeAttributeCallback)(Node*, Attribute*);
    static void (*_deleteItCallback)(Node*);
    static void (*_connectionChangedCallback)(Node*, Attribute*);
    /// `seconds`: the node's time since its timer was reset.
    static void (*_updateCallback)(Node*, Attribute*, double seconds);

    /// Each is called once, with the attribute where it began, when a dirty chain has been walked;
    /// the list is empty afterwards.
    static tidemark::Array<void (*)(Attribute*)> pendingDirtyHooks;

    /// Tells that `_attributeCleanCallback` and `_updateCallback`, though set, have nobody behind
    /// them, so that repeated notifications may be left out. Null: every set slot is heard.
    static bool (*nobodyListens)();
};

} // namespace weft
