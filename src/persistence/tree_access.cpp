// SPDX-License-Identifier: Apache-2.0
// Reading and making the elements of a graph file from its document model.
#include "persistence/tree_access.h"

#include <boost/property_tree/ptree.hpp>

namespace tidemark::sluice::graph::tree {

const TM_String& text(const PropertyTree& element) { return element.data(); }

// Elements have few children, and their order is that of the document: a scan beats the tree's
// index by name and always finds the first.
const PropertyTree* child(const PropertyTree& element, const char* key) {
    for (const auto& [name, subtree] : element) {
        if (name == key) return &subtree;
    }
    return nullptr;
}

const TM_String& childText(const PropertyTree& element, const char* key) {
    static const TM_String nothing;
    const PropertyTree* found = child(element, key);
    return found ? found->data() : nothing;
}

void forEach(const PropertyTree& element, const char* key, const ElementStep& step) {
    for (const auto& [name, subtree] : element) {
        if (name == key) step(subtree);
    }
}

bool forEachNamed(const PropertyTree& element, const char* list, const char* item,
                  const NamedStep& step) {
    const PropertyTree* items = child(element, list);
    if (!items) return false;
    forEach(*items, item,
            [&](const PropertyTree& found) { step(childText(found, "name"), found); });
    return true;
}

Document makeDocument() { return std::make_shared<PropertyTree>(); }

PropertyTree& append(PropertyTree& element, const char* key, const TM_String& text) {
    return element.push_back({key, PropertyTree(text)})->second;
}

PropertyTree* refChild(PropertyTree& element, const char* key) {
    return const_cast<PropertyTree*>(child(element, key));
}

} // namespace tidemark::sluice::graph::tree
