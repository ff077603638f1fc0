// SPDX-License-Identifier: Apache-2.0
// Storage of the network's callback slots.
#include "core/callbacks.h"

namespace weft {

void (*Callbacks::_attributeConnectedCallback)(Attribute*, Attribute*) = nullptr;
void (*Callbacks::_attributeDisconnectedCallback)(Attribute*) = nullptr;
void (*Callbacks::_attributeDeletedCallback)(Attribute*) = nullptr;
void (*Callbacks::_attributeSpecializationCallback)(Attribute*) = nullptr;
void (*Callbacks::_attributeDirtiedCallback)(Attribute*) = nullptr;
void (*Callbacks::_attributeCleanCallback)(Attribute*) = nullptr;
void (*Callbacks::_objectRenamedCallback)(Object*, const TM_String&) = nullptr;
void (*Callbacks::_objectRetainCallback)(Object*) = nullptr;
void (*Callbacks::_objectReleaseCallback)(Object*) = nullptr;
void (*Callbacks::_addNodeCallback)(Node*, Node*) = nullptr;
void (*Callbacks::_removeNodeCallback)(Node*, Node*) = nullptr;
void (*Callbacks::_addInputAttributeCallback)(Node*, Attribute*) = nullptr;
void (*Callbacks::_addOutputAttributeCallback)(Node*, Attribute*) = nullptr;
void (*Callbacks::_removeAttributeCallback)(Node*, Attribute*) = nullptr;
void (*Callbacks::_deleteItCallback)(Node*) = nullptr;
void (*Callbacks::_connectionChangedCallback)(Node*, Attribute*) = nullptr;
void (*Callbacks::_updateCallback)(Node*, Attribute*, double) = nullptr;
tidemark::Array<void (*)(Attribute*)> Callbacks::pendingDirtyHooks;
bool (*Callbacks::nobodyListens)() = nullptr;

} // namespace weft
