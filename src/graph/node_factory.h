// SPDX-License-Identifier: Apache-2.0
// What makes and describes the nodes of one type.
#pragma once

#include <initializer_list>

#include "core/array.h"
#include "core/export.h"
#include "core/text.h"

namespace tidemark::sluice::graph {

class NodeBase;

/// A type's name and its places in the menu. The long category "Geometry.Array.Mesh" has the short
/// form "Geometry".
class SLUICE_API NodeDescriptor {
public:
    void setTypeName(const TM_String& name) { typeName_ = name; }
    const TM_String& getTypeName() const { return typeName_; }
    /// The short category.
    void setCategoryName(const TM_String& name) { categoryName_ = name; }
    const TM_String& getCategoryName() const { return categoryName_; }
    /// Long categories, the main one first.
    void setAllowedCategories(const Array<TM_String>& list) { allowedCategories_ = list; }
    const Array<TM_String>& getAllowedCategories() const { return allowedCategories_; }
    Array<TM_String>& refAllowedCategories() { return allowedCategories_; }
    void setSingleAllowedCategory(const TM_String& category) { allowedCategories_ = {category}; }
    /// False for types that come from a file.
    void setBuiltIn(bool builtIn) { builtIn_ = builtIn; }
    bool getBuiltIn() const { return builtIn_; }

private:
    TM_String typeName_;
    TM_String categoryName_;
    Array<TM_String> allowedCategories_;
    bool builtIn_ = false;
};

/// Owned by the scene manager once it is registered.
class SLUICE_API NodeFactory {
public:
    virtual ~NodeFactory();
    /// A new node with name, type and category set and no logic node; the caller owns it. Null when
    /// the type is not built in.
    virtual NodeBase* createNode() = 0;
    const NodeDescriptor& getDescriptor() const { return descriptor_; }
    void setDescriptor(const NodeDescriptor& descriptor) { descriptor_ = descriptor; }

protected:
    NodeFactory() = default;
    /// A built-in type; the main category first.
    NodeFactory(const char* type, std::initializer_list<const char*> categories);
    /// The last steps of `createNode`.
    NodeBase* prepare(NodeBase* node) const;

private:
    NodeDescriptor descriptor_;
};

} // namespace tidemark::sluice::graph
