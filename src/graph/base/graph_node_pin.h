// SPDX-License-Identifier: Apache-2.0
// A pin: a named place of a node where connections end.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "core/array.h"
#include "core/export.h"
#include "core/small_list.h"
#include "core/text.h"
#include "core/types.h"
#include "graph/base/graph_connection.h"
#include "graph/base/graph_flags.h"
#include "graph/base/tm_class.h"

namespace tidemark::graph {

class GraphNodeBase;
class GraphScene;

/// What a view keeps with a pin: 32 bytes of its own and a mutex that guards them.
struct PinViewState {
    std::mutex mutex;
    unsigned char bytes[32] = {};
};

/// An input or an output of a node. The node that lists a pin decides when it is deleted; a pin
/// knows its node, its connections and, between a compound and its interface node, its counterpart.
/// An input holds at most one connection, an output any number.
///
/// The base knows no values: everything about them answers no, and is overridden where values live.
class SLUICE_API GraphNodePin : public TM_Class {
public:
    using Connections = SmallList<GraphConnection*>;

    static constexpr PinFlags inputFlag{1u};
    static constexpr PinFlags outputFlag{2u};

    /// `id` must be unique among the pins of the scene by the time the pin enters it.
    GraphNodePin(GraphNodeBase* node, const unsigned& id, const PinFlags& flags);

    /// Copies everything but the mutex. The copy names the same connections without standing in
    /// them, so it serves as a description and must not outlive what it names.
    GraphNodePin(const GraphNodePin& other);
    GraphNodePin& operator=(const GraphNodePin& other);
    ~GraphNodePin() override;

    // What kind of node the pin belongs to; false without node.
    virtual bool isCompoundPin() const;
    virtual bool isInterfacePin() const;
    virtual bool isEvaluatorPin() const;
    virtual bool isPassThroughPin() const;

    virtual bool isDirty() const { return false; }
    virtual bool isUpdating() const { return false; }
    /// Added by the user, not by the type of the node.
    virtual bool isDynamic() const { return false; }
    /// An editor may offer a control for the value.
    virtual bool isEditable() const { return false; }

    /// Whether a connection from `source` to this pin may be made. False unless `source` is an
    /// output, this an input without connection, and the two belong to different nodes.
    virtual bool allowsConnectionFrom(const GraphNodePin* source) const;
    /// `target->allowsConnectionFrom(this)`; false for null.
    virtual bool allowsConnectionTo(const GraphNodePin* target) const;

    virtual GraphNodeBase* getParentGraphNodePtr() const { return node_; }
    virtual void setParentGraphNodePtr(GraphNodeBase* node) { node_ = node; }

    /// On a compound's pin: its counterpart on the interface node inside. Setting one end does not
    /// set the other; a pin that dies takes itself out of its counterpart.
    virtual GraphNodePin* getChildGraphNodePinPtr() const { return childPin_; }
    virtual void setChildGraphNodePinPtr(GraphNodePin* pin) { childPin_ = pin; }
    /// The node of the child pin; null without one.
    virtual GraphNodeBase* getChildInterfaceNodePtr() const;
    /// On an interface node's pin: its counterpart on the compound.
    virtual GraphNodePin* getParentGraphNodePinPtr() const { return parentPin_; }
    virtual void setParentGraphNodePinPtr(GraphNodePin* pin) { parentPin_ = pin; }

    /// The scene of the node; null without node or scene.
    virtual GraphScene* getParentGraphScenePtr() const;

    virtual const TM_String& getName() const { return name_; }
    /// The node's full name, a point, the own name; without node the own name.
    virtual TM_String getFullName() const;
    virtual void setName(const TM_String& name) { storeName(name); }

    /// A description for tools of an editor; empty in the base.
    virtual TM_String toXml() const { return TM_String(); }

    virtual bool isConnected() const;
    /// An input that holds a connection.
    virtual bool isFull() const;
    /// Brings the value up to date.
    virtual void update() {}

    /// A view leaves the pin out.
    virtual bool isHidden() const { return false; }
    virtual Color4<float> getBorderColor() const;
    virtual Color4<float> getColor() const;
    /// A view draws the pin marked, or as picked by the user.
    virtual bool isHighlighted() const { return false; }
    virtual bool isSelected() const { return false; }
    virtual TM_String getInfo() const { return TM_String(); }
    virtual TM_String getDescription() const { return TM_String(); }
    virtual TM_String asHTML() const { return TM_String(); }

    // The pin's own lists. Adding does not test for a repetition, removing one that is not there
    // gives false.
    virtual void addInputConnection(GraphConnection* connection);
    virtual void addOutputConnection(GraphConnection* connection);
    virtual bool removeInputConnection(GraphConnection* connection);
    virtual bool removeOutputConnection(GraphConnection* connection);

    // Connections inside a node, from one of its inputs to one of its outputs. Lists are appended
    // to.
    virtual bool allowsInternalConnections() const { return false; }
    virtual bool hasInternalConnections() const { return false; }
    virtual bool allowsNewOrRemovalOfInternalConnections() const { return false; }
    virtual void allowedInternalConnections(ArrayOfPtr<GraphNodePin>&) const {}
    virtual void internalConnections(ArrayOfPtr<GraphNodePin>&) const {}
    virtual GraphNodePin* forcedInternalConnection() const { return nullptr; }
    virtual void forcedInternalConnections(ArrayOfPtr<GraphNodePin>&) const {}
    virtual bool removeInternalConnection(GraphNodePin*) { return false; }
    virtual bool addInternalConnection(GraphNodePin*) { return false; }

    unsigned getId() const { return id_; }
    /// Only while the pin is in no scene's map.
    void setId(unsigned id) { id_ = id; }

    const PinFlags& getFlags() const { return flags_; }
    bool isInput() const { return static_cast<bool>(flags_ & inputFlag); }
    bool isOutput() const { return static_cast<bool>(flags_ & outputFlag); }

    /// In the order they were made.
    const Connections& inputConnections() const { return inputs_; }
    const Connections& outputConnections() const { return outputs_; }

    /// Made when first asked for, from any thread.
    PinViewState& viewState();

    /// A word that the views of a pin may use; copied with it.
    uint32_t userWord() const { return userWord_; }
    void setUserWord(uint32_t word) { userWord_ = word; }

protected:
    /// Stores the name, and tells the node that finds its pins by it.
    void storeName(const TM_String& name);

private:
    friend class GraphNodeBase;

    void copyViewState(const GraphNodePin& other);

    unsigned id_;
    uint32_t userWord_ = 0;
    GraphNodeBase* node_;
    PinFlags flags_;
    uint32_t order_ = 0; // rises along the node's list of pins
    GraphNodePin* childPin_ = nullptr;
    GraphNodePin* parentPin_ = nullptr;
    TM_String name_;
    std::atomic<PinViewState*> view_{nullptr};
    Connections inputs_;
    Connections outputs_;
};

} // namespace tidemark::graph
