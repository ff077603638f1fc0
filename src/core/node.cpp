// SPDX-License-Identifier: Apache-2.0
// Nodes: structure, declaration, evaluation, presets and teardown.
#include "core/node.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>

#include "bridge/host.h"
#include "core/callbacks.h"
#include "core/update_scope.h"

namespace weft {

namespace {

// Nodes with more children than this look names up in an index.
constexpr uint32_t mostChildrenSearched = 16;

struct ChildTraits {
    static std::string_view name(const NestedObject& child) { return child.name(); }
    static uint32_t order(const NestedObject& child) { return child.childOrder(); }
};

// A name that `NestedObject::nextName` counts up without touching its stem.
struct NumberedName {
    TM_String stem;
    uint64_t number;
};

std::optional<NumberedName> numbered(const TM_String& name) {
    constexpr std::size_t mostDigits = 18; // fit the number
    std::size_t length = name.size();
    while (length > 0 && name[length - 1] >= '0' && name[length - 1] <= '9') --length;
    const std::size_t digits = name.size() - length;
    // "Add05" and "Add100" are in the series of "Add", "Add5" and "Add005" are not.
    if (digits < 2 || digits > mostDigits || (digits > 2 && name[length] == '0')) return {};
    TM_String stem = name.substr(0, length);
    if (stem.find_first_of("0123456789") != TM_String::npos) return {};
    return NumberedName{std::move(stem), std::stoull(name.substr(length))};
}

TM_String nameOf(const TM_String& stem, uint64_t number) {
    const TM_String digits = std::to_string(number);
    return stem + (digits.size() < 2 ? "0" : "") + digits;
}

const TM_String noPreset = "none";

template <typename T>
void fill(const SmallList<T>& list, Array<T>& out) {
    out.clear();
    out.reserve(list.size());
    for (const T& entry : list) out.append(entry);
}

} // namespace

// The index of a large parent's children, and for each stem that was counted up which of its
// numbers are known to be taken: from `first` up to but not including `next`.
struct Node::ChildNames {
    struct Taken {
        uint64_t first;
        uint64_t next;
    };
    tidemark::NameIndex<NestedObject, ChildTraits> index;
    std::unordered_map<std::string, Taken> takenByStem;

    void becomesFree(const TM_String& name) {
        if (takenByStem.empty()) return;
        const std::optional<NumberedName> left = numbered(name);
        if (!left) return;
        const auto taken = takenByStem.find(left->stem);
        if (taken == takenByStem.end() || left->number < taken->second.first) return;
        taken->second.next = std::min(taken->second.next, left->number);
    }
};

Node::Node(NetworkManager* manager, const TM_String& name, Node* parent)
    : NestedObject(manager, parent) {
    appendClass<"Node">();
    initializeName(uniqueName(name));
}

Node::~Node() {
    if (!isDeleted()) {
        Node::purge();
        markDeleted(); // nobody is told of a node that is half gone
        tearDown();
    }
    // Children that were added as such alone, without standing in one of the lists.
    for (NestedObject* child : children_) {
        --child->holders_;
        child->release();
    }
}

TM_String Node::asScript() const { return name() + " " + className(); }

void Node::updateSpecializationLink(Attribute*, Attribute*, SpecializationList& firstList,
                                    SpecializationList& secondList) {
    if (!firstList.empty() && firstList.isSubsetOf(secondList)) {
        secondList = firstList;
    } else if (secondList.isSubsetOf(firstList)) {
        firstList = secondList;
    }
}

TM_String Node::debugInfo() const {
    const double seconds = getLastUpdateTime();
    TM_String text = "node: " + name() + "\n";
    text += tidemark::text::format("last update took: secs:%d, millisecs: %d\n",
                                   static_cast<int>(seconds),
                                   static_cast<int>(seconds * 1000.0) % 1000);
    text += "attributes:\n";
    for (const Attribute* input : inputs_) text += input->debugInfo();
    for (const Attribute* output : outputs_) text += output->debugInfo();
    return text;
}

void Node::purge() {
    for (Attribute* input : inputs_) input->purge();
    for (Attribute* output : outputs_) output->purge();
}

uint64_t Node::estimatedSize() const {
    uint64_t size = 0;
    for (const Attribute* input : inputs_) size += input->estimatedSize();
    for (const Attribute* output : outputs_) size += output->estimatedSize();
    return size;
}

uint64_t Node::checkSum() const {
    uint64_t sum = 0;
    for (const Attribute* output : outputs_) sum += output->checkSum();
    return sum;
}

// Names of children.

Node::ChildNames* Node::childNames() const {
    if (!childNames_ && children().size() > mostChildrenSearched) {
        childNames_ = std::make_unique<ChildNames>();
        for (NestedObject* child : children()) childNames_->index.insert(child);
    }
    return childNames_.get();
}

void Node::childAdded(NestedObject& child) {
    if (childNames_) childNames_->index.insert(&child);
}

void Node::childRemoving(NestedObject& child) {
    if (!childNames_) return;
    childNames_->becomesFree(child.name());
    childNames_->index.erase(&child);
}

void Node::renameChild(NestedObject& child, TM_String name) {
    if (!childNames_) {
        child.name_ = std::move(name);
        return;
    }
    childNames_->becomesFree(child.name());
    childNames_->index.rename(&child, [&] { child.name_ = std::move(name); });
}

bool Node::hasOtherChild(std::string_view name, NestedObject& except) const {
    ChildNames* const names = childNames();
    if (!names) {
        for (const NestedObject* child : children()) {
            if (child != &except && child->name() == name) return true;
        }
        return false;
    }
    const NestedObject* found = names->index.find(name);
    if (found != &except) return found != nullptr;
    names->index.rename(&except, [&] { found = names->index.find(name); });
    return found != nullptr;
}

TM_String Node::freeChildName(const TM_String& name, NestedObject& child) const {
    if (!hasOtherChild(name, child)) return name;
    TM_String candidate = NestedObject::nextName(name);
    ChildNames* const names = childNames();
    const std::optional<NumberedName> begin = numbered(candidate);
    if (names && begin) return freeNumberedName(*names, begin->stem, begin->number, child);
    while (hasOtherChild(candidate, child)) candidate = NestedObject::nextName(candidate);
    return candidate;
}

// The first name of the stem from `number` on that is free for the child. Not told from the start
// each time: many nodes of one type would cost the square of their number.
TM_String Node::freeNumberedName(ChildNames& names, const TM_String& stem, uint64_t number,
                                 NestedObject& child) const {
    ChildNames::Taken fresh{number, number};
    ChildNames::Taken& taken = names.takenByStem.try_emplace(stem, fresh).first->second;
    if (number < taken.first || number > taken.next) taken = fresh;
    const std::optional<NumberedName> own = numbered(child.name());
    const bool isOwnTaken = own && own->stem == stem && own->number >= number &&
                            own->number < taken.next && !hasOtherChild(child.name(), child);
    if (isOwnTaken) return child.name();
    TM_String candidate = nameOf(stem, taken.next);
    while (hasOtherChild(candidate, child)) candidate = nameOf(stem, ++taken.next);
    return candidate;
}

// Structure.

bool Node::addAttribute(Attribute* attribute, bool isInput) {
    SmallList<Attribute*>& list = isInput ? inputs_ : outputs_;
    const bool isMine = attribute->parent() == this && attribute->isListed_;
    if (isMine && list.contains(attribute)) return false;
    if (isMine) (isInput ? outputs_ : inputs_).remove(attribute); // changes sides
    const Retained<Attribute> kept(attribute);
    Node* const other = attribute->parent();
    if (other && other != this) other->removeAttribute(attribute);
    attribute->isInput_ = isInput;
    attribute->isOutput_ = !isInput;
    attribute->isListed_ = true;
    list.append(attribute);
    attribute->setParent(this);
    addChild(attribute);
    const auto callback =
        isInput ? Callbacks::_addInputAttributeCallback : Callbacks::_addOutputAttributeCallback;
    if (callback && networkManager()->monitoring() && !isDeleted()) callback(this, attribute);
    return true;
}

void Node::addInputAttribute(Attribute* attribute) { addAttribute(attribute, true); }

void Node::addOutputAttribute(Attribute* attribute) {
    if (!addAttribute(attribute, false)) return;
    if (attribute->classNameView() != "EvaluateAttribute") return;
    static const SpecializationList evaluate{"Evaluate"};
    attribute->setAllowedSpecializations(evaluate);
}

void Node::removeAttribute(Attribute* attribute) {
    const bool wasListed = inputs_.remove(attribute) || outputs_.remove(attribute);
    if (rare_.isUsed()) rare_.ref().dynamicAttributes.remove(attribute);
    if (attribute->parent() == this) attribute->setParent(nullptr);
    if (!wasListed) return;
    attribute->isListed_ = false;
    if (Callbacks::_removeAttributeCallback && networkManager() && networkManager()->monitoring() &&
        !isDeleted()) {
        Callbacks::_removeAttributeCallback(this, attribute);
    }
    removeChild(attribute);
}

void Node::addNode(Node* node) {
    if (node->holders_ > 0 && node->parent() == this && nodes_.contains(node)) return;
    nodes_.append(node);
    addChild(node);
    node->setParent(this);
    if (Callbacks::_addNodeCallback && networkManager()->monitoring() && !isDeleted()) {
        Callbacks::_addNodeCallback(this, node);
    }
}

void Node::removeNode(Node* node) {
    if (!nodes_.remove(node)) return;
    node->setParent(nullptr);
    if (Callbacks::_removeNodeCallback && networkManager() && networkManager()->monitoring() &&
        !isDeleted()) {
        Callbacks::_removeNodeCallback(this, node);
    }
    removeChild(node);
}

void Node::reparent(Node* newParent) {
    Node* const oldParent = parent();
    if (newParent == oldParent) return;
    if (newParent) newParent->addNode(this);
    if (oldParent) oldParent->removeNode(this);
    setParent(newParent);
}

Node* Node::findNode(std::string_view name) const {
    if (ChildNames* names = childNames()) {
        NestedObject* const found = names->index.find(name);
        if (!found) return nullptr;
        if (!found->isAttributeObject()) return static_cast<Node*>(found);
    }
    for (Node* node : nodes_) {
        if (node->name() == name) return node;
    }
    return nullptr;
}

Attribute* Node::findAttribute(std::string_view name) const {
    if (ChildNames* names = childNames()) {
        NestedObject* const found = names->index.find(name);
        if (!found) return nullptr;
        if (found->isAttributeObject()) return static_cast<Attribute*>(found);
    }
    for (Attribute* input : inputs_) {
        if (input->name() == name) return input;
    }
    for (Attribute* output : outputs_) {
        if (output->name() == name) return output;
    }
    return nullptr;
}

void Node::inputAttributes(Array<Attribute*>& out) const { fill(inputs_, out); }
void Node::outputAttributes(Array<Attribute*>& out) const { fill(outputs_, out); }
void Node::dynamicAttributes(Array<Attribute*>& out) const { fill(refDynamicAttributes(), out); }
void Node::nodes(Array<Node*>& out) const { fill(nodes_, out); }

void Node::attributes(Array<Attribute*>& out) const {
    fill(inputs_, out);
    for (Attribute* output : outputs_) out.append(output);
}

void Node::addDynamicAttribute(Attribute* attribute) {
    if (!allowDynamicAttributes_) return;
    if (attribute->parent() != this || !attribute->isListed_) return;
    SmallList<Attribute*>& list = rare_.ref().dynamicAttributes;
    if (!list.contains(attribute)) list.append(attribute);
}

// Declaration.

void Node::setAttributeAffect(Attribute* in, Attribute* out) {
    const auto isMine = [this](const Attribute* a) {
        return a && a->parent() == this && a->isListed_;
    };
    const bool areMine = isMine(in) && isMine(out);
    if (!areMine || !out->isOutput_ || out->affectedBy_.contains(in)) return;
    if (networkManager()->isUpstream(in, out)) return;
    in->addAffect(out);
}

void Node::setAttributeAffectedByAllInputs(Attribute* out) {
    const SmallList<Attribute*> inputs = inputs_;
    for (Attribute* in : inputs) setAttributeAffect(in, out);
}

void Node::setAttributeAffectsAllOutputs(Attribute* in) {
    const SmallList<Attribute*> outputs = outputs_;
    for (Attribute* out : outputs) setAttributeAffect(in, out);
}

void Node::setAttributeAffectAllOutputsByAllInputs() {
    const SmallList<Attribute*> outputs = outputs_;
    for (Attribute* out : outputs) setAttributeAffectedByAllInputs(out);
}

void Node::setAttributeIsClean(Attribute* attribute, bool clean) {
    if (attribute && attribute->parent() == this) attribute->setClean(clean);
}

void Node::setAttributeCleanAndChangeValue(Attribute* attribute) {
    attribute->setClean(true);
    attribute->valueChanged();
}

void Node::setAttributeAllowedSpecialization(Attribute* attribute, const TM_String& name) {
    setAttributeAllowedSpecializations(attribute, SpecializationList::single(name));
}

void Node::setAttributeAllowedSpecializations(Attribute* attribute,
                                              const SpecializationList& list) {
    attribute->setAllowedSpecializations(list);
}

// Evaluation.

void Node::doUpdate(Attribute* attribute) {
    if (networkManager()->monitoring_) {
        updateTimed(attribute, Timer::now());
        return;
    }
    UpdateScope scope(*this);
    update(attribute);
    scope.done();
}

// `time` as in `Attribute::computeTimed`.
Timer::Ticks Node::updateTimed(Attribute* attribute, Timer::Ticks time) {
    UpdateScope scope(*this);
    if (timerNeedsStart_) {
        nodeTimer_.startAt(time);
        timerNeedsStart_ = false;
    } else {
        nodeTimer_.resumeAt(time);
    }
    update(attribute);
    scope.done();
    time = Timer::now();
    nodeTimer_.stopAt(time);
    lastUpdateTicks_ = nodeTimer_.ticks(time);
    if (Callbacks::_updateCallback && !isDeleted() &&
        !(Callbacks::nobodyListens && Callbacks::nobodyListens())) {
        Callbacks::_updateCallback(this, attribute, getLastUpdateTime());
        time = Timer::now();
    }
    return time;
}

bool Node::updateAttributeSpecialization(Attribute* attribute) {
    const Retained<ErrorObject> error(new ErrorObject(networkManager()));
    return attribute->updateSpecializations(error.get());
}

bool Node::connectInternalAttributes(Attribute* in, Attribute* out) {
    in->setPassThrough(true);
    out->setPassThrough(true);
    setAttributeAffect(in, out);
    const Retained<ErrorObject> error(new ErrorObject(networkManager()));
    networkManager()->connect(in, out, error.get());
    if (error->message().empty()) return true;
    pushError(error->message());
    return false;
}

void Node::connectionChanged(Attribute* attribute) {
    const LifeWatch self(this);
    const LifeWatch changed(attribute);
    attributeConnectionChanged(attribute);
    if (self.isGone() || changed.isGone()) return;
    if (Callbacks::_connectionChangedCallback && networkManager()->monitoring() && !isDeleted()) {
        Callbacks::_connectionChangedCallback(this, attribute);
    }
}

bool Node::checkSpecialization(const Attribute* attribute) {
    if (attribute->isSpecialized()) return true;
    if (isVerbosityLevelAllowed(tidemark::graph::messageLevelError)) {
        pushError(tidemark::text::format("input '%s' not specialized", attribute->name().c_str()));
    }
    return false;
}

// Presets.

void Node::setSpecializationPreset(const TM_String& preset, const Attribute* attribute,
                                   const TM_String& specialization) {
    rare_.ref().presets[preset][attribute->id()] = specialization;
}

const TM_String& Node::enabledSpecializationPreset() const { return rare_.get().enabledPreset; }

void Node::specializationPresets(Array<TM_String>& out) const {
    out.clear();
    for (const auto& [name, choices] : rare_.get().presets) out.append(name);
    out.append(noPreset);
}

void Node::enableSpecializationPreset(const TM_String& name) {
    const bool isPreset = rare_.get().presets.count(name) > 0;
    if (name != noPreset && (!isPreset || name == enabledSpecializationPreset())) return;
    rare_.ref().enabledPreset = name;
    Array<Attribute*> all;
    attributes(all);
    for (Attribute* attribute : all) {
        if (name == noPreset) {
            attribute->clearSpecializationOverride();
            attribute->applySpecializations(attribute->allowedSpecializations());
            continue;
        }
        const auto& choices = rare_.get().presets.at(name);
        const auto choice = choices.find(attribute->id());
        if (choice != choices.end()) attribute->setSpecializationOverride(choice->second);
    }
    if (!propagatesPresets_) return;
    for (Attribute* attribute : all) updateAttributeSpecialization(attribute);
}

// Threads and validity.

int Node::getNumberOfThreadsToUse() const {
    for (const Node* node = this; node; node = node->parent()) {
        if (node->numberOfThreads_ != 0) return node->numberOfThreads_;
    }
    return tidemark::bridge::host().numberOfThreads();
}

void Node::setIsInvalid(bool invalid, const TM_String& text) {
    isInvalid_ = invalid;
    if (rare_.isUsed() || !text.empty()) rare_.ref().invalidityMessage = text;
}

const TM_String& Node::invalidityMessage() const { return rare_.get().invalidityMessage; }

// Teardown.

void Node::deleteIt() {
    if (isDeleted()) return;
    // One that no parent holds is its maker's to delete.
    if (holders_ == 0) {
        tearDown();
        return markDeleted();
    }
    // The parent may hold the only reference, which the teardown gives up on its way.
    const Retained<Node> self(this);
    tearDown();
    markDeleted();
}

// In order where somebody is told; otherwise from the end, where nothing has to move up.
void Node::tearDown() {
    const NetworkManager* const manager = networkManager();
    const bool isTold = manager && manager->monitoring() && !isDeleted();
    if (Callbacks::_deleteItCallback && isTold) Callbacks::_deleteItCallback(this);
    if (parent()) parent()->removeNode(this);
    const bool isInOrder = isTold && !manager->isTearingDown();
    const SmallList<Node*> nodes = nodes_;
    const uint32_t nodeCount = nodes.size();
    const bool areNodesTold = isInOrder && Callbacks::_removeNodeCallback;
    for (uint32_t i = 0; i < nodeCount; ++i) {
        removeNode(nodes[areNodesTold ? i : nodeCount - 1 - i]);
    }
    Array<Attribute*> all;
    attributes(all);
    if (!isInOrder) std::reverse(all.begin(), all.end());
    const SurvivingList survivors(manager, all);
    for (uint32_t i = 0; i < all.size(); ++i) {
        if (!survivors.holds(i)) continue;
        all[i]->setParent(nullptr);
        removeAttribute(all[i]);
    }
}

} // namespace weft
