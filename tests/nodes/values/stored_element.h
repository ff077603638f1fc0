// SPDX-License-Identifier: Apache-2.0
// An element type of the tests, held by value, as docs/values.md tells an extension to write one.
// With stored_element.cpp it is all that the type takes, but for the rows.
#pragma once

#include <functional>

#include "nodes/values/arrays/array_nodes.h"

namespace sluice_tests {

/// Not trivial, without an order, and with a neutral element that is not all zeros.
struct Tag {
    tidemark::TM_String word = "none";
    friend bool operator==(const Tag&, const Tag&) = default;
};

class TagValue : public weft::StoredValue<Tag> {
public:
    static const weft::ValueKind kind;
    explicit TagValue(weft::NetworkManager* manager) : StoredValue(manager, kind) {}
};

class TagAttribute : public weft::Attribute {
public:
    TagAttribute(weft::NetworkManager* manager, const tidemark::TM_String& name, weft::Node* parent)
        : Attribute(manager, name, parent) {
        appendClass<"TagAttribute">();
        initializeValue(new TagValue(manager));
        initializeSpecializations(weft::SpecializationList::single("Tag"));
    }
    /// One neutral element when the source carries something else.
    const TagValue& tags() const {
        static const TagValue* const neutral = new TagValue(nullptr);
        const TagValue* value = weft::valueAs<TagValue>(currentValue());
        return value ? *value : *neutral;
    }
    TagValue* tagsTarget() const { return weft::valueAs<TagValue>(writeTarget()); }
};

} // namespace sluice_tests

template <>
struct std::hash<sluice_tests::Tag> {
    std::size_t operator()(const sluice_tests::Tag& tag) const {
        return std::hash<tidemark::TM_String>()(tag.word);
    }
};

template <>
struct tidemark::sluice::graph::ArrayPort<sluice_tests::TagAttribute> {
    using Value = sluice_tests::TagValue;
    static const Value& read(const sluice_tests::TagAttribute& port) { return port.tags(); }
    static Value* target(const sluice_tests::TagAttribute& port) { return port.tagsTarget(); }
};
