// SPDX-License-Identifier: Apache-2.0
// Base of every computation. A node declares itself in its constructor (attributes, affects, links,
// pass-through permissions, descriptions) and computes in `update`:
//
//     Doubler::Doubler(NetworkManager* manager, const TM_String& name, Node* parent)
//         : Node(manager, name, parent) {
//         appendClass<"Doubler">();
//         in_  = addInput<NumericAttribute>("in", "What to double.");
//         out_ = addOutput<NumericAttribute>("out", "Twice the input.");
//         setAttributeAffect(in_, out_);
//         addAttributeSpecializationLink(in_, out_);
//     }
#pragma once

#include <map>
#include <memory>

#include "core/attribute.h"
#include "core/message_handler.h"
#include "core/name_index.h"
#include "core/network_manager.h"

namespace tidemark {
class TM_Exception;
namespace sluice::graph {
class Exception;
class GenericGraphException;
} // namespace sluice::graph
} // namespace tidemark

namespace weft {

/// Owns its attributes and child nodes (one reference each). One thread at a time.
class SLUICE_API Node : public NestedObject {
public:
    /// A name already in use in `parent` is changed as `uniqueName` does. The node joins the parent
    /// by `parent->addNode(node)`.
    Node(NetworkManager* manager, const TM_String& name, Node* parent);
    ~Node() override;

    // Virtual operations, in the order that derived classes rely on.

    virtual TM_String asScript() const;
    /// Called by the scene before and after a run.
    virtual void preUpdate() {}
    virtual void postUpdate() {}
    virtual void setName(const TM_String& name) { renameTo(name); }
    /// Tears the node down: leaves its parent, lets go of child nodes and attributes.
    virtual void deleteIt();
    /// Computes `attribute`, an output: pulls what it needs, writes the write targets.
    virtual void update(Attribute* attribute) { (void)attribute; }
    /// Called on an iterator instead of computing a compound's output.
    virtual void iterate(Attribute* attribute) { (void)attribute; }
    /// For nodes that show something without cleaning anything.
    virtual void updateNotCleaning() {}
    /// Narrows the lists of two linked attributes; by default the wider becomes the narrower when
    /// one holds the other. An empty first list narrows nothing.
    virtual void updateSpecializationLink(Attribute* first, Attribute* second,
                                          SpecializationList& firstList,
                                          SpecializationList& secondList);
    virtual void attributeConnectionChanged(Attribute* attribute) { (void)attribute; }
    /// The types of an attribute have settled or widened: the place to choose a routine.
    virtual void attributeSpecializationChanged(Attribute* attribute) { (void)attribute; }
    virtual TM_String debugInfo() const;
    /// Notes a listed attribute as dynamic; nothing when the node does not allow them.
    virtual void addDynamicAttribute(Attribute* attribute);
    /// A value was set on an attribute outside a run.
    virtual void onValueChanged(Attribute* attribute) { (void)attribute; }
    virtual void purge();
    virtual uint64_t estimatedSize() const;
    virtual uint64_t checkSum() const;
    virtual TM_String getDescription() const { return description_.get(); }
    virtual void setDescription(const TM_String& text) { description_.set(text); }

    // Structure.

    /// Takes the attribute over from another node if need be. Nothing when it is listed already.
    void addInputAttribute(Attribute* attribute);
    void addOutputAttribute(Attribute* attribute);
    /// Takes it out of the lists and releases it.
    void removeAttribute(Attribute* attribute);
    void addNode(Node* node);
    void removeNode(Node* node);
    void reparent(Node* newParent);
    /// Null when there is none of that name.
    Node* findNode(std::string_view name) const;
    Attribute* findAttribute(std::string_view name) const;
    Node* nodeAt(uint32_t index) const { return nodes_[index]; }
    Attribute* inputAttributeAt(uint32_t index) const { return inputs_[index]; }
    Attribute* outputAttributeAt(uint32_t index) const { return outputs_[index]; }
    const SmallList<Attribute*>& refInputAttributes() const { return inputs_; }
    const SmallList<Attribute*>& refOutputAttributes() const { return outputs_; }
    const SmallList<Attribute*>& refDynamicAttributes() const {
        return rare_.get().dynamicAttributes;
    }
    const SmallList<Node*>& refNodes() const { return nodes_; }
    void inputAttributes(Array<Attribute*>& out) const;
    void outputAttributes(Array<Attribute*>& out) const;
    void dynamicAttributes(Array<Attribute*>& out) const;
    void nodes(Array<Node*>& out) const;
    /// Inputs, then outputs.
    void attributes(Array<Attribute*>& out) const;
    bool containsNode(const Node* node) const { return node && node->parent() == this; }
    bool isRoot() const { return !parent(); }

    // Declaration, public forms.

    void setAttributeAffectPublic(Attribute* in, Attribute* out) { setAttributeAffect(in, out); }
    void setAttributeIsCleanPublic(Attribute* a, bool clean) { setAttributeIsClean(a, clean); }
    void setAttributeAllowedSpecializationsPublic(Attribute* a, const SpecializationList& list) {
        setAttributeAllowedSpecializations(a, list);
    }
    void setUpdateEnabledPublic(bool enabled) { setUpdateEnabled(enabled); }

    // Evaluation.

    /// Runs `update` with timing. Called by attributes and pins.
    void doUpdate(Attribute* attribute);
    /// True while this node, or a node inside it, runs.
    bool isUpdating() const { return isUpdating_; }
    bool updateEnabled() const { return updateEnabled_; }
    bool updateAttributeSpecialization(Attribute* attribute);
    /// Ties an input to an output for good: the output carries the input's value. False, with an
    /// error on the node, when they may not be connected.
    bool connectInternalAttributes(Attribute* in, Attribute* out);
    /// True for exactly one specialization; otherwise reports "input '%s' not specialized".
    bool checkSpecialization(const Attribute* attribute);

    // Presets: named choices of specializations.

    /// A preset's name, or "none" to widen everything again; other names change nothing.
    void enableSpecializationPreset(const TM_String& name);
    const TM_String& enabledSpecializationPreset() const;
    /// Preset names in order, then "none".
    void specializationPresets(Array<TM_String>& out) const;
    void setSpecializationPreset(const TM_String& preset, const Attribute* attribute,
                                 const TM_String& specialization);

    // Messages. Levels: 1 critical, 2 error, 3 warning, 4 info, 5 debug.

    /// Kept on the node if its level is allowed; lines for the panel also go to the host.
    void pushMessage(int level, const TM_String& text, const TM_String& detail);
    void pushCriticalNoException(const TM_String& text, const TM_String& detail = {});
    void pushError(const TM_String& text, const TM_String& detail = {});
    void pushWarning(const TM_String& text, const TM_String& detail = {});
    void pushInfo(const TM_String& text, const TM_String& detail = {});
    void pushDebug(const TM_String& text, const TM_String& detail = {});
    /// The detail as printf makes it.
    void pushMessageFormatted(int level, const TM_String& text, const char* detailPattern, ...)
        __attribute__((format(printf, 4, 5)));
    /// Keeps the message at level 1 and throws a `GenericGraphException`, whatever is allowed.
    [[noreturn]] void pushCritical(const TM_String& text, const TM_String& detail = {});
    /// The same with an exception made by the caller.
    template <typename E>
    [[noreturn]] void pushCritical(const TM_String& text, const E& exception,
                                   const TM_String& detail) {
        pushMessage(1, text, detail);
        throw exception;
    }
    bool isVerbosityLevelAllowed(int level) const { return messages_.isLevelAllowed(level); }
    const tidemark::graph::MessageHandler& getMessages() const { return messages_; }
    tidemark::graph::MessageHandler& refMessages() { return messages_; }
    int getMessagePanelVerbosityLevel() const { return messagePanelVerbosityLevel_; }
    void setMessagePanelVerbosityLevel(int level) { messagePanelVerbosityLevel_ = level; }

    // Timers, seconds.

    void startNodeTimer();
    void resumeNodeTimer();
    /// Stores the time as the last update time if `store`; true if the timer was running.
    bool stopNodeTimer(bool store);
    void resetNodeTimer(bool alsoAttributes);
    void resetLastUpdateTime();
    double getLastUpdateTime() const { return Timer::seconds(lastUpdateTicks_); }
    void forgetLastUpdateTime() { lastUpdateTicks_ = 0; }
    /// The time spent in this node's outputs less what their sources took.
    float getIsolatedTime() const;
    int computeTimeSeconds() const { return 0; }
    int computeTimeMilliseconds() const { return 0; }
    int computeTimeTicks() const { return 0; }

    // Threads.

    /// Own setting, else the nearest ancestor's, else the host's.
    int getNumberOfThreadsToUse() const;
    int getStoredNumberOfThreads() const { return numberOfThreads_; }
    /// 0: inherit.
    void setNumberOfThreads(int threads) { numberOfThreads_ = threads; }
    int getThreadingModeHint() const { return threadingModeHint_; }
    void setThreadingModeHint(int hint) { threadingModeHint_ = static_cast<int8_t>(hint); }
    /// Threads inside its own algorithm.
    void setThreadingModeHintInternal() { setThreadingModeHint(1); }
    /// Threads by element.
    void setThreadingModeHintByElement() { setThreadingModeHint(2); }

    // Validity, shown by the graph layer.

    void setIsInvalid(bool invalid, const TM_String& text);
    bool isInvalid() const { return isInvalid_; }
    bool isValid() const { return !isInvalid_; }
    const TM_String& invalidityMessage() const;

    bool allowDynamicAttributes() const { return allowDynamicAttributes_; }

protected:
    class UpdateScope; // core/update_scope.h

    virtual void initializeClassName() {}

    /// Creates an input of type `A`, adds it, and gives it a help text.
    template <typename A>
    A* addInput(const char* name, const char* help = "") {
        A* attribute = new A(networkManager(), name, this);
        addInputAttribute(attribute);
        attribute->describe(help);
        return attribute;
    }
    template <typename A>
    A* addOutput(const char* name, const char* help = "") {
        A* attribute = new A(networkManager(), name, this);
        addOutputAttribute(attribute);
        attribute->describe(help);
        return attribute;
    }
    void describe(const char* literal) { description_.setLiteral(literal); }

    /// `out` follows the dirtiness of `in`. Nothing when that is so already, when either is not of
    /// this node, when `out` is no output, or when it would close a cycle.
    void setAttributeAffect(Attribute* in, Attribute* out);
    void setAttributeAffectedByAllInputs(Attribute* out);
    void setAttributeAffectsAllOutputs(Attribute* in);
    void setAttributeAffectAllOutputsByAllInputs();
    void setAttributeIsClean(Attribute* attribute, bool clean);
    void setAttributeCleanAndChangeValue(Attribute* attribute);
    void addAttributeSpecializationLink(Attribute* a, Attribute* b) { a->addSpecializationLink(b); }
    void addAttributeAllowedPassThrough(Attribute* a, Attribute* b) { a->addAllowedPassThrough(b); }
    void addAttributePassThrough(Attribute* a, Attribute* b) { a->addPassThrough(b); }
    void removeAttributePassThrough(Attribute* a, Attribute* b) { a->removePassThrough(b); }
    void setAttributeAllowedSpecialization(Attribute* attribute, const TM_String& name);
    void setAttributeAllowedSpecializations(Attribute* attribute, const SpecializationList& list);
    void setAllowDynamicAttributes(bool allow) { allowDynamicAttributes_ = allow; }
    void setUpdateEnabled(bool enabled) { updateEnabled_ = enabled; }
    void setPropagatesPresets(bool propagates) { propagatesPresets_ = propagates; }

    SmallList<NestedObject*>& childList() override { return children_; }
    void childAdded(NestedObject& child) override;
    void childRemoving(NestedObject& child) override;

private:
    friend class Attribute;
    friend class NestedObject;

    using Presets = std::map<TM_String, std::map<int32_t, TM_String>>;
    struct ChildNames;
    struct Rare {
        SmallList<Attribute*> dynamicAttributes;
        Presets presets;
        TM_String enabledPreset = "none";
        TM_String invalidityMessage;
    };

    bool addAttribute(Attribute* attribute, bool isInput);
    void connectionChanged(Attribute* attribute);
    Timer::Ticks updateTimed(Attribute* attribute, Timer::Ticks time);
    ChildNames* childNames() const;
    bool hasOtherChild(std::string_view name, NestedObject& except) const;
    TM_String freeChildName(const TM_String& name, NestedObject& child) const;
    TM_String freeNumberedName(ChildNames& names, const TM_String& stem, uint64_t number,
                               NestedObject& child) const;
    void renameChild(NestedObject& child, TM_String name);
    void tearDown();

    // First what an update touches, so that it lies on one cache line.
    bool isUpdating_ = false;
    bool updateEnabled_ = true;
    bool timerNeedsStart_ = true;
    bool isInvalid_ = false;
    bool allowDynamicAttributes_ = false;
    bool propagatesPresets_ = false;
    int8_t threadingModeHint_ = 0;
    Timer nodeTimer_;
    Timer::Ticks lastUpdateTicks_ = 0;
    SmallList<Attribute*> outputs_;
    SmallList<Attribute*> inputs_;
    SmallList<Node*> nodes_;
    SmallList<NestedObject*> children_;
    tidemark::Lazy<Rare> rare_;
    mutable std::unique_ptr<ChildNames> childNames_;
    HelpText description_;
    tidemark::graph::MessageHandler messages_{3};
    int32_t numberOfThreads_ = 0;
    int32_t messagePanelVerbosityLevel_ = 2;
};

} // namespace weft
