// SPDX-License-Identifier: Apache-2.0
// The editable face of one logic attribute: its type for an editor, access to its value, the test
// whether a connection may be made, and its form in files.
#pragma once

#include "core/attribute.h"
#include "core/lazy.h"
#include "core/types.h"
#include "graph/base/graph_node_pin.h"
#include "graph/property_tree_fwd.h"

namespace weft {
class Enum;
class HostNodeValue;
class Numeric;
} // namespace weft

namespace tidemark::sluice::graph {

using tidemark::graph::GraphNodeBase;
using tidemark::graph::GraphNodePin;
using tidemark::graph::PinFlags;

/// A pin shares its attribute's id and does not own it; when the attribute is torn down first, the
/// pin goes on without one and answers as a pin without value. Where "the value" is spoken of it is
/// what a pass-through attribute forwards, and the attribute's own value otherwise.
///
/// Typed setters on a pin of another type do nothing; typed getters give 0, false or an empty text.
class SLUICE_API Pin : public GraphNodePin {
public:
    Pin(GraphNodeBase* node, const unsigned& id, const PinFlags& flags);

    // What the generic pin asks.

    bool isDirty() const override;
    bool isUpdating() const override;
    bool isDynamic() const override;
    bool isEditable() const override;
    bool allowsConnectionFrom(const GraphNodePin* source) const override;
    /// Links this interface pin and the compound's pin, both ways, in place of the pins that either
    /// was linked with; null unlinks.
    void setParentGraphNodePinPtr(GraphNodePin* pin) override;
    /// Renames the attribute as well, which may settle on another name; the pin keeps `name`.
    void setName(const TM_String& name) override;
    bool isConnected() const override;
    /// Lets the node compute the attribute, clean or not, unless the node's updates are disabled.
    void update() override;
    Color4<float> getBorderColor() const override { return getColor(); }
    /// The type's colour, greyed for a single value and more for an empty one.
    Color4<float> getColor() const override;
    /// The tooltip: name, element count and types, then value, time and memory.
    TM_String getInfo() const override;
    TM_String getDescription() const override;
    /// A table of this pin alone, headed by its direction.
    TM_String asHTML() const override;
    bool allowsInternalConnections() const override;
    bool hasInternalConnections() const override;
    bool allowsNewOrRemovalOfInternalConnections() const override;
    void allowedInternalConnections(ArrayOfPtr<GraphNodePin>& out) const override;
    void internalConnections(ArrayOfPtr<GraphNodePin>& out) const override;
    GraphNodePin* forcedInternalConnection() const override;
    void forcedInternalConnections(ArrayOfPtr<GraphNodePin>& out) const override;
    bool removeInternalConnection(GraphNodePin* pin) override;
    bool addInternalConnection(GraphNodePin* pin) override;

    /// A table row for the manual. Long lists of types fold: by classes of the page with
    /// `expander`, by the wiki's macro without.
    virtual TM_String asConfluenceHTML(const bool& expander) const;
    /// The pin's type number; see `weft::TypeNumber`.
    virtual int getType() const;
    /// Some allowed specialization has that number.
    virtual bool hasType(const int& type) const;

    /// Null once the attribute has been torn down.
    weft::Attribute* getWeftAttribute() const { return attribute_; }
    /// Takes name and id over.
    void setWeftAttribute(weft::Attribute* attribute);
    void forgetWeftAttribute() { attribute_.hold(nullptr); }

    // State.

    bool isSpecializable() const;
    bool isSpecialized() const;
    bool isPassThrough() const;
    bool isPurePassThrough() const;
    /// A pure pass-through, or one that may be of two types or more.
    bool isPolymorphic() const;
    TM_String getFirstSpecialization() const;
    TM_String getAttributeClassName() const;
    const Array<TM_String>& getAllowedSpecializations() const;
    const Array<TM_String>& getSpecializations() const;
    /// What it may be and what it is.
    void setAllowedSpecializations(const Array<TM_String>& list);
    void setSpecializationOverride(const TM_String& name);
    void updateSpecializations();
    /// At least one current specialization, and none, or all, of them arrays by their names.
    bool areAllSpecializationsSingle() const;
    bool areAllSpecializationsArray() const;
    /// Mask of the host classes that the pin's value takes; 0 for values of another kind.
    uint32_t getCompatibleSluiceNodeClasses() const;
    /// A file path that a node writes to.
    bool hasSaveFileFlag() const;
    bool isEnumType() const;
    bool isSluiceNodeType() const;
    /// No editor control shows values of the type.
    bool typeIsComplex() const;

    // Values.

    void setFloatValue(float value);
    float getFloatValue() const;
    void setIntValue(int value);
    int getIntValue() const;
    void setInt64Value(int64_t value);
    int64_t getInt64Value() const;
    void setBitValue(bool value);
    bool getBitValue() const;
    void setVector3Value(const Vector3<float>& value);
    Vector3<float> getVector3Value() const;
    void setColor4Value(const Color4<float>& value);
    Color4<float> getColor4Value() const;
    void setStringValue(const TM_String& text);
    TM_String getStringValue() const;
    /// Chooses an option by its text or its key; anything else changes nothing.
    void setEnumValue(const TM_String& option);
    void setEnumValue(int key);
    void getEnumOptions(Array<TM_String>& out) const;
    /// The key; -1 when there is none.
    int getEnumValueAsInt() const;
    TM_String getEnumValueAsString() const;
    void setSL_NodeValue(const Array<TM_String>& names);
    void setSL_NodeValue(const TM_String& text);
    /// Host objects, resolved by name when need be.
    Array<void*> getSL_NodeValue() const;
    TM_String getSL_NodeValueAsString() const;
    TM_String getSL_NodeValueAsStringForParameter() const;
    bool checkSL_NodeNamesIntegrity() const;
    /// For tooltips; a matrix over four lines when `multiLine`.
    TM_String getValueAsString(const bool& multiLine) const;
    /// The value itself; null when there is none.
    weft::Value* value() const;

    // Upstream.

    /// Appends the pins of all attributes upstream, this one first; attributes without pin are left
    /// out.
    void getUpstreamPins(ArrayOfPtr<Pin>& out) const;
    /// Marks every upstream attribute but this one dirty, and as wanted when `mark`.
    void setDirtyUpstream(const bool& mark);

    static Color4<float> getColorForPinType(int type);

    // Files: see persistence.

    void write_toBoostPropertyTree(PropertyTree& tree) const;
    /// False when a malformed value ended the read early.
    bool read_fromBoostPropertyTree(const PropertyTree& tree);
    void writeInternalConnections_toBoostPropertyTree(PropertyTree& tree) const;
    void readInternalConnections_fromBoostPropertyTree(const PropertyTree& tree);
    const Array<TM_String>& getInternalConnectionsFromImport() const { return imported_.get(); }
    Array<TM_String>& refInternalConnectionsFromImport() { return imported_.ref(); }
    void setInternalConnectionsFromImport(const Array<TM_String>& names) {
        imported_.ref() = names;
    }

private:
    // Keeps the attribute's memory, so that its end can be seen, without keeping it alive.
    class SeenAttribute {
    public:
        SeenAttribute() = default;
        SeenAttribute(const SeenAttribute& other) { hold(other.attribute_); }
        SeenAttribute& operator=(const SeenAttribute& other) {
            hold(other.attribute_);
            return *this;
        }
        ~SeenAttribute() { hold(nullptr); }
        void hold(weft::Attribute* attribute);
        operator weft::Attribute*() const {
            return attribute_ && !attribute_->isDeleted() ? attribute_ : nullptr;
        }
        weft::Attribute* operator->() const { return attribute_; }

    private:
        weft::Attribute* attribute_ = nullptr;
    };

    void appendPinsOf(const weft::SmallList<weft::Attribute*>& attributes,
                      ArrayOfPtr<GraphNodePin>& out) const;
    Pin* pinOfSameNode(const weft::Attribute* attribute) const;
    weft::Numeric* numeric() const;
    weft::Enum* enumeration() const;
    weft::HostNodeValue* hostNodes() const;
    template <typename T>
    void setNumber(const T& value);
    template <typename T>
    T getNumber() const;
    TM_String passThroughValueAsString(bool multiLine) const;

    SeenAttribute attribute_;
    Lazy<Array<TM_String>> imported_;
};

} // namespace tidemark::sluice::graph
