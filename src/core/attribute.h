// SPDX-License-Identifier: Apache-2.0
// A named port of a logic node: it owns or borrows a value, is wired to other attributes, and knows
// whether it is clean. Evaluation is lazy: a change only marks what lies downstream as dirty, and
// nothing computes until somebody pulls.
//
//     in0->pull();                                    // up to date now, upstream included
//     const Numeric& a = in0->numeric();              // what the reader sees
//     result->numericTarget().setValue<float>(1.0f);  // where an output writes
//     result->valueChanged();
#pragma once

#include <memory>

#include "core/lazy.h"
#include "core/nested_object.h"
#include "core/specialization.h"
#include "core/timer.h"
#include "core/value.h"

namespace weft {

class Attribute;
class Node;

/// Says that two attributes of one node depend on each other's type; the node decides how, in
/// `Node::updateSpecializationLink`.
struct SpecializationLink {
    Attribute* first;
    Attribute* second;
    friend bool operator==(const SpecializationLink&, const SpecializationLink&) = default;
};

/// A help text: a literal that costs nothing, or a copy of its own.
class SLUICE_API HelpText {
public:
    HelpText() = default;
    ~HelpText();
    HelpText(const HelpText&) = delete;
    HelpText& operator=(const HelpText&) = delete;
    /// Keeps the view: for string literals.
    void setLiteral(const char* literal);
    void set(const TM_String& text);
    TM_String get() const { return data_ ? TM_String(data_) : TM_String(); }
    bool empty() const { return !data_ || !*data_; }

private:
    const char* data_ = nullptr;
    bool isOwned_ = false;
};

/// See the head of this file. The owner of an attribute is its node; all other links between
/// attributes are plain pointers that `deleteIt` clears.
class SLUICE_API Attribute : public NestedObject {
public:
    /// A name already in use in `parent` is changed as `uniqueName` does. The attribute joins the
    /// node's lists by `Node::addInputAttribute` or `addOutputAttribute`, not here.
    Attribute(NetworkManager* manager, const TM_String& name, Node* parent);
    ~Attribute() override;

    // Virtual operations, in the order that derived classes rely on.

    /// Outputs give up their value's memory; inputs keep theirs.
    virtual void purge();
    virtual uint64_t estimatedSize() const;
    virtual uint64_t checkSum() const;
    /// One line, "name type", of the network's script text.
    virtual TM_String asScript() const;
    /// Tears the attribute down: leaves its node, its connections, affects and links, releases its
    /// value. An attribute that only the node holds is gone afterwards.
    virtual void deleteIt();
    /// Called for every attribute of a dirty chain just after it was marked. A class that overrides
    /// it calls `listenToDirtied()` in its constructor; others are not asked.
    virtual void onDirtied() {}
    /// The current specializations have become `list`; a typed attribute reconfigures its value.
    virtual void specializationChanged(const SpecializationList& list) { (void)list; }
    virtual TM_String debugInfo() const;
    virtual TM_String getDescription() const { return description_.get(); }
    /// The types as a user reads them: `typeDescription` when set, else the allowed names in double
    /// quotes, separated by a comma and a blank.
    virtual TM_String allowedSpecializationsText() const;
    virtual TM_String getTypeDescription() const { return rare_.get().typeDescription; }
    virtual void setDescription(const TM_String& text) { description_.set(text); }
    virtual void setTypeDescription(const TM_String& text) { rare_.ref().typeDescription = text; }

    /// As `setDescription`, for literals: nothing is copied.
    void describe(const char* literal) { description_.setLiteral(literal); }

    /// Stores `uniqueName(name)`, then tells the rename callback.
    void setName(const TM_String& name) { renameTo(name); }

    // Reading, writing, changing.

    /// The reader's entry: makes the attribute clean, computing upstream as needed, and checks the
    /// element count. Afterwards `currentValue` is up to date. A clean attribute costs one test.
    void pull() {
        if (!isClean_) pullDirty();
    }
    /// The value to read; never cache it across a pull. Null for a pass-through without a source.
    Value* currentValue() const { return currentValue_; }
    /// The attribute's own value; null when it has none.
    Value* value() const { return value_; }
    /// Where an output writes: `currentValue` of a pass-through, else `value`.
    Value* writeTarget() const { return isPassThrough_ ? currentValue_ : value_; }

    /// Makes this attribute clean without testing the element count.
    void clean();
    /// Asked of the attribute that supplies data: lets its node compute it when it is dirty.
    void computeNow();
    /// What every setter calls: marks what lies downstream dirty and tells the node. Nothing on a
    /// pass-through attribute or while a scene runs.
    void valueChanged();
    /// Marks the dirty chain; with `force` also when this attribute is dirty already.
    void markDirty(bool force);
    /// Warns on the node and answers false when the rule "exactly one element" is broken.
    bool checkElementCount();
    /// Makes `newValue` the own value and forwards it to all readers. Retains it.
    void setValue(Value* newValue);
    /// Follows the source again: `currentValue` becomes the source's, or the own value.
    void refreshCurrentValue();

    // Connections. Callers go through `NetworkManager::connect`.

    /// False when the types of the group do not settle; the connection stands all the same.
    bool connectTo(Attribute* destination, ErrorObject* error);
    void disconnectSource();
    void removeDestination(Attribute* destination);
    Attribute* source() const { return source_; }
    /// In order of connection.
    const SmallList<Attribute*>& destinations() const { return destinations_; }

    // Affects and pass-throughs. Null and unknown arguments are ignored.

    void addAffect(Attribute* output);
    void removeAffect(Attribute* output);
    const SmallList<Attribute*>& affects() const { return affects_; }
    const SmallList<Attribute*>& affectedBy() const { return affectedBy_; }
    void addAllowedPassThrough(Attribute* other);
    void addPassThrough(Attribute* other);
    void removePassThrough(Attribute* other);
    const SmallList<Attribute*>& allowedPassThroughs() const { return allowedPassThroughs_; }
    const SmallList<Attribute*>& passThroughs() const { return passThroughs_; }

    // Specializations.

    /// What it may ever be.
    const SpecializationList& allowedSpecializations() const { return allowed_; }
    /// What it may be now; one entry means specialized.
    const SpecializationList& specializations() const { return specializations_; }
    /// Normally empty; the one name chosen by the user.
    const SpecializationList& specializationOverride() const { return rare_.get().chosenType; }
    bool isSpecialized() const { return specializations_.size() == 1; }
    /// The only current specialization, or empty.
    TM_String specialization() const { return isSpecialized() ? specializations_[0] : TM_String(); }
    /// Sets what it may be and what it is, and tells `specializationChanged`.
    void setAllowedSpecializations(const SpecializationList& list);
    /// Chooses `name`. Neighbours follow at the next `updateSpecializations`.
    void setSpecializationOverride(const TM_String& name);
    void clearSpecializationOverride();
    /// Stores the list, tells value and node, and walks the dirty chain.
    void applySpecializations(const SpecializationList& list);
    /// Settles the types of the whole connected group anew, beginning here. Connections stand
    /// whatever the answer.
    bool updateSpecializations(ErrorObject* error);
    void addSpecializationLink(Attribute* other);
    const SmallList<SpecializationLink>& specializationLinks() const { return links_; }

    // State.

    bool isClean() const { return isClean_; }
    /// The flag alone: no walk, no callback.
    void setClean(bool clean);
    bool isInput() const { return isInput_; }
    bool isOutput() const { return isOutput_; }
    bool isPassThrough() const { return isPassThrough_; }
    void setPassThrough(bool passThrough) { isPassThrough_ = passThrough; }
    /// True while its node computes it.
    bool isCleaning() const { return isCleaning_; }
    /// False: a pin offers no editing of the value.
    bool isEditable() const { return isEditable_; }
    void setEditable(bool editable) { isEditable_ = editable; }
    /// Whether this output is wanted in the current run.
    bool toBeEvaluated() const { return toBeEvaluated_; }
    void setToBeEvaluated(bool wanted) { toBeEvaluated_ = wanted; }
    bool notifiesDirty() const { return notifiesDirty_; }
    void setNotifiesDirty(bool notify);
    /// 1: takes exactly one element. No other value has an effect.
    void setElementCountRule(int rule) { elementCountRule_ = rule; }
    int elementCountRule() const { return elementCountRule_; }
    /// Seconds spent in this attribute's updates since the last reset.
    double accumulatedTime() const { return Timer::seconds(accumulatedTicks_); }
    void resetAccumulatedTime() { accumulatedTicks_ = 0; }
    /// True for the class "PassThroughAttribute", which has no value or type of its own.
    bool isPurePassThrough() const { return classNameView() == "PassThroughAttribute"; }

    /// What a change here marks dirty, itself first. For inspection; walks do not copy.
    Array<Attribute*> dirtyChain() const;

protected:
    /// Takes over the reference on `value` and makes it the value to read.
    void initializeValue(Value* value);
    void initializeSpecializations(const SpecializationList& list) {
        allowed_ = specializations_ = list;
    }
    /// Asks for `onDirtied` calls.
    void listenToDirtied();

private:
    friend class NetworkManager;
    friend class SpecializationSolver;
    friend class Node;

    struct Edge {
        Attribute* end;
        uint32_t born;
        uint32_t died;
    };
    // Whether the types of its group were settled with its own declaration as it is now.
    enum class TypeState : uint8_t { fresh, settled, changed };
    struct ChainCache {
        uint32_t epoch;
        Array<Attribute*> chain;
    };
    struct Rare {
        SpecializationList chosenType; // the override; empty without one
        TM_String typeDescription;
        std::unique_ptr<ChainCache> chainCache;
    };

    void pullDirty();
    void cleanPlain(NetworkManager& manager);
    void cleanTimed(NetworkManager& manager);
    void computePlain(NetworkManager& manager);
    Timer::Ticks computeTimed(NetworkManager& manager, Timer::Ticks time);
    void tearDown();
    void leaveConnections();
    void leaveRelations();
    void adoptContentSeenByOthers(Attribute* newDestination);
    void becomeSourceOf(Attribute* destination);
    void noteTypeChange();

    // First what pulls and walks touch, so that it lies on one cache line.
    bool isClean_ = false;
    bool isOutput_ = false;
    bool isInput_ = false;
    bool isPassThrough_ = false;
    bool notifiesDirty_ = false;
    bool isCleaning_ = false;
    bool isEditable_ = true;
    bool toBeEvaluated_ = true;
    bool isListed_ = false;  // in its parent's inputs or outputs
    bool hasVertex_ = false; // ever had an edge
    bool listens_ = false;   // overrides onDirtied
    TypeState typeState_ = TypeState::fresh;
    int32_t elementCountRule_ = 0;
    uint32_t mark_ = 0; // of the manager's latest traversal that saw it
    Value* value_ = nullptr;
    Value* currentValue_ = nullptr;
    Attribute* source_ = nullptr;
    uint32_t walkedEpoch_ = 0; // topology epoch of the last walk that began here
    uint32_t chainEpoch_;  // topology that the chain shows; `NetworkManager::liveEpoch`: today's
    uint32_t scratch_ = 0; // index in the group that a solver works on
    uint32_t lastCleanKiloTicks_ = 0; // of 1,024 ticks
    SmallList<Attribute*> destinations_;
    SmallList<Attribute*> affects_;
    SmallList<Attribute*> affectedBy_;
    SmallList<Attribute*> allowedPassThroughs_;
    SmallList<Attribute*> passThroughs_;
    SmallList<SpecializationLink> links_;
    SmallList<Edge> successors_;
    SmallList<Edge> predecessors_;
    SpecializationList allowed_;
    SpecializationList specializations_;
    Timer::Ticks accumulatedTicks_ = 0;
    HelpText description_;
    tidemark::Lazy<Rare> rare_;
};

/// A port without value and type of its own: it shows what its source shows.
class SLUICE_API PassThroughAttribute : public Attribute {
public:
    PassThroughAttribute(NetworkManager* manager, const TM_String& name, Node* parent);
    /// As an output with a source the source's text, else "All".
    TM_String allowedSpecializationsText() const override;
};

} // namespace weft
