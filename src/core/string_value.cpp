// SPDX-License-Identifier: Apache-2.0
// Strings as values.
#include "core/string_value.h"

namespace weft {

template class StoredValue<TM_String>;

const ValueKind StringValue::kind{"StringValue"};

TM_String StringValue::asString() const {
    TM_String text;
    for (uint32_t i = 0; i < size(); ++i) {
        if (i > 0) text += '\n';
        text += values()[i];
    }
    return text;
}

uint64_t StringValue::estimatedSize() const {
    static const std::size_t charactersInside = TM_String().capacity();
    uint64_t bytes = StoredValue::estimatedSize();
    for (const TM_String& string : values()) {
        if (string.capacity() > charactersInside) bytes += string.capacity() + 1;
    }
    return bytes;
}

StringAttributeBase::StringAttributeBase(NetworkManager* manager, const TM_String& name,
                                         Node* parent)
    : Attribute(manager, name, parent) {
    initializeValue(new StringValue(manager));
}

const StringValue& StringAttributeBase::strings() const {
    // Never destroyed: attributes of static objects may still read it.
    static const StringValue* const fallback = new StringValue(nullptr);
    const StringValue* strings = valueAs<StringValue>(currentValue());
    return strings ? *strings : *fallback;
}

StringAttribute::StringAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : StringAttributeBase(manager, name, parent) {
    appendClass<"StringAttribute">();
    static const SpecializationList types{"String"};
    initializeSpecializations(types);
}

FilePathAttribute::FilePathAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : StringAttributeBase(manager, name, parent) {
    appendClass<"FilePathAttribute">();
    static const SpecializationList types{"FilePath", "String"};
    initializeSpecializations(types);
}

FolderAttribute::FolderAttribute(NetworkManager* manager, const TM_String& name, Node* parent)
    : StringAttributeBase(manager, name, parent) {
    appendClass<"FolderAttribute">();
    static const SpecializationList types{"Folder", "String"};
    initializeSpecializations(types);
}

} // namespace weft
