// SPDX-License-Identifier: Apache-2.0
// Reading and making elements of a graph file's document model, without that model's headers.
//
//     tree::forEachNamed(node, "inputs", "input",
//                        [&](const TM_String& name, const PropertyTree& input) { ... });
#pragma once

#include <functional>
#include <memory>

#include "core/export.h"
#include "core/text.h"
#include "graph/property_tree_fwd.h"

namespace tidemark::sluice::graph::tree {

/// Called with one element.
using ElementStep = std::function<void(const PropertyTree& element)>;
/// Called with one element and the text of its child "name".
using NamedStep = std::function<void(const TM_String& name, const PropertyTree& element)>;

/// The element's own text. Valid while the tree lives.
SLUICE_API const TM_String& text(const PropertyTree& element);

/// The first child of that name; null when there is none. The key is one name, not a path.
SLUICE_API const PropertyTree* child(const PropertyTree& element, const char* key);

/// The text of the first child of that name; the empty text when there is none. Valid while the
/// tree lives.
SLUICE_API const TM_String& childText(const PropertyTree& element, const char* key);

/// Calls `step` with every child named `key`, in document order.
SLUICE_API void forEach(const PropertyTree& element, const char* key, const ElementStep& step);

/// Calls `step` with every element `item` below the first child `list`, in document order. False
/// when there is no such list.
SLUICE_API bool forEachNamed(const PropertyTree& element, const char* list, const char* item,
                             const NamedStep& step);

/// A document of its own, held by who does not know the model's headers.
using Document = std::shared_ptr<PropertyTree>;

SLUICE_API Document makeDocument();

/// Adds an element at the end. Valid until the next one is added beside it.
SLUICE_API PropertyTree& append(PropertyTree& element, const char* key, const TM_String& text = {});

/// As `child`, to add to what is there.
SLUICE_API PropertyTree* refChild(PropertyTree& element, const char* key);

} // namespace tidemark::sluice::graph::tree
