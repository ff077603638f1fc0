// SPDX-License-Identifier: Apache-2.0
// Strings and paths, and the ports that carry them.
#pragma once

#include "core/attribute.h"
#include "core/stored_value.h"

namespace weft {

extern template class SLUICE_API StoredValue<TM_String>;

/// An array of strings; a fresh one holds one empty string.
class SLUICE_API StringValue : public StoredValue<TM_String> {
public:
    static const ValueKind kind;

    explicit StringValue(NetworkManager* manager) : StoredValue(manager, kind) {}

    /// The string as it is; several are joined by newlines.
    TM_String asString() const override;
    /// One element: the whole text.
    void fromString(const TM_String& text) override { setValue(text); }
    uint64_t estimatedSize() const override;
};

/// What the ports of strings have in common.
class SLUICE_API StringAttributeBase : public Attribute {
public:
    /// What a reader sees; one empty string when the source carries something else.
    const StringValue& strings() const;
    /// Element 0, empty when there is none.
    const TM_String& firstString() const { return strings().valueAt(0); }
    /// Where an output writes; null when that holds no strings.
    StringValue* stringsTarget() const { return valueAs<StringValue>(writeTarget()); }
    /// The attribute's own strings.
    StringValue& ownStrings() const { return *static_cast<StringValue*>(value()); }

protected:
    StringAttributeBase(NetworkManager* manager, const TM_String& name, Node* parent);
};

/// A port of the one type "String".
class SLUICE_API StringAttribute : public StringAttributeBase {
public:
    StringAttribute(NetworkManager* manager, const TM_String& name, Node* parent);
};

/// A port of strings for which the host offers a file dialog: "FilePath", but a "String" as well.
class SLUICE_API FilePathAttribute : public StringAttributeBase {
public:
    FilePathAttribute(NetworkManager* manager, const TM_String& name, Node* parent);

    /// True: the dialog asks for a file to write.
    bool hasSaveFileFlag() const { return hasSaveFileFlag_; }
    void setSaveFileFlag(bool save) { hasSaveFileFlag_ = save; }

private:
    bool hasSaveFileFlag_ = false;
};

/// A port of strings for which the host offers a folder dialog: "Folder", but a "String" as well.
class SLUICE_API FolderAttribute : public StringAttributeBase {
public:
    FolderAttribute(NetworkManager* manager, const TM_String& name, Node* parent);
};

} // namespace weft
