// SPDX-License-Identifier: Apache-2.0
// Pins: state, type, connections and upstream.
#include "graph/pin.h"

#include "core/enum_value.h"
#include "core/host_node_value.h"
#include "core/network_manager.h"
#include "core/node.h"
#include "core/string_value.h"
#include "graph/graph_node.h"
#include "graph/graph_scene.h"
#include "graph/scene_manager.h"

namespace tidemark::sluice::graph {

namespace {

const Array<TM_String> noNames;

} // namespace

Pin::Pin(GraphNodeBase* node, const unsigned& id, const PinFlags& flags)
    : GraphNodePin(node, id, flags) {}

void Pin::SeenAttribute::hold(weft::Attribute* attribute) {
    if (attribute) attribute->retain();
    if (attribute_) attribute_->release();
    attribute_ = attribute;
}

void Pin::setWeftAttribute(weft::Attribute* attribute) {
    attribute_.hold(attribute);
    if (!attribute) return;
    storeName(attribute->name());
    setId(static_cast<unsigned>(attribute->id()));
}

void Pin::setName(const TM_String& name) {
    storeName(name);
    if (attribute_) attribute_->renameTo(name);
}

void Pin::setParentGraphNodePinPtr(GraphNodePin* pin) {
    GraphNodePin* const before = getParentGraphNodePinPtr();
    if (before && before->getChildGraphNodePinPtr() == this) {
        before->setChildGraphNodePinPtr(nullptr);
    }
    GraphNodePin::setParentGraphNodePinPtr(pin);
    if (!pin) return;
    GraphNodePin* const replaced = pin->getChildGraphNodePinPtr();
    if (replaced && replaced != this) replaced->setParentGraphNodePinPtr(nullptr);
    pin->setChildGraphNodePinPtr(this);
}

// State.

bool Pin::isDirty() const { return attribute_ && !attribute_->isClean(); }
bool Pin::isUpdating() const { return attribute_ && attribute_->isCleaning(); }

bool Pin::isConnected() const {
    if (!attribute_) return false;
    if (isInput()) return attribute_->source() != nullptr;
    return isOutput() && !attribute_->destinations().empty();
}

bool Pin::isDynamic() const {
    const weft::Node* node = attribute_ ? attribute_->parent() : nullptr;
    return node && node->refDynamicAttributes().contains(attribute_);
}

bool Pin::isSpecializable() const {
    return attribute_ && attribute_->allowedSpecializations().size() > 1;
}
bool Pin::isSpecialized() const { return attribute_ && attribute_->isSpecialized(); }
bool Pin::isPassThrough() const { return attribute_ && attribute_->isPassThrough(); }
bool Pin::isPurePassThrough() const { return attribute_ && attribute_->isPurePassThrough(); }
bool Pin::isPolymorphic() const { return isPurePassThrough() || isSpecializable(); }

TM_String Pin::getFirstSpecialization() const {
    const Array<TM_String>& names = getSpecializations();
    return names.empty() ? TM_String() : names[0];
}

TM_String Pin::getAttributeClassName() const {
    return attribute_ ? attribute_->className() : TM_String();
}

const Array<TM_String>& Pin::getAllowedSpecializations() const {
    return attribute_ ? attribute_->allowedSpecializations().names() : noNames;
}

const Array<TM_String>& Pin::getSpecializations() const {
    return attribute_ ? attribute_->specializations().names() : noNames;
}

void Pin::setAllowedSpecializations(const Array<TM_String>& list) {
    if (attribute_) attribute_->setAllowedSpecializations(weft::SpecializationList(list));
}

void Pin::setSpecializationOverride(const TM_String& name) {
    if (attribute_) attribute_->setSpecializationOverride(name);
}

void Pin::updateSpecializations() {
    if (attribute_) attribute_->updateSpecializations(nullptr);
}

bool Pin::areAllSpecializationsSingle() const {
    const Array<TM_String>& names = getSpecializations();
    for (const TM_String& name : names) {
        if (name.find("Array") != TM_String::npos) return false;
    }
    return !names.empty();
}

bool Pin::areAllSpecializationsArray() const {
    const Array<TM_String>& names = getSpecializations();
    for (const TM_String& name : names) {
        if (name.find("Array") == TM_String::npos) return false;
    }
    return !names.empty();
}

uint32_t Pin::getCompatibleSluiceNodeClasses() const {
    const auto* nodes = dynamic_cast<const weft::HostNodeValue*>(value());
    return nodes ? nodes->classMask() : 0;
}

bool Pin::hasSaveFileFlag() const {
    const auto* path = dynamic_cast<const weft::FilePathAttribute*>(getWeftAttribute());
    return path && path->hasSaveFileFlag();
}

// Type.

int Pin::getType() const {
    if (!attribute_) return weft::typeNone;
    const std::string_view kind = attribute_->classNameView();
    if (kind == "FilePathAttribute") return weft::typeFilePath;
    if (kind == "FolderAttribute") return weft::typeFolder;
    if (kind == "EnumAttribute") return weft::typeList;
    if (isPolymorphic()) return weft::typePolymorphic;
    return weft::typeNumber(getFirstSpecialization());
}

bool Pin::hasType(const int& type) const {
    for (const TM_String& name : getAllowedSpecializations()) {
        if (weft::typeNumber(name) == type) return true;
    }
    return false;
}

bool Pin::isEnumType() const { return getType() == weft::typeList; }

bool Pin::isSluiceNodeType() const {
    if (!isPolymorphic()) return weft::isHostNodeType(getType());
    const Array<TM_String>& names = getSpecializations();
    for (const TM_String& name : names) {
        if (!weft::isHostNodeType(weft::typeNumber(name))) return false;
    }
    return !names.empty();
}

bool Pin::typeIsComplex() const {
    switch (getType()) {
    case weft::typeInteger:
    case weft::typeInteger64:
    case weft::typeReal:
    case weft::typeBit:
    case weft::typeColor4:
    case weft::typeList:
    case weft::typeVector3:
    case weft::typeFilePath:
    case weft::typeFolder:
    case weft::typeString:
        return false;
    default:
        return !isSluiceNodeType();
    }
}

bool Pin::isEditable() const {
    if (!attribute_ || (isInput() && attribute_->source())) return false;
    if (isCompoundPin() || isInterfacePin() || isPurePassThrough()) return false;
    const std::string_view kind = attribute_->classNameView();
    if (kind == "AnyAttribute" || kind == "EvaluateAttribute") return false;
    // A type that is still open is not complex by itself; what it may be decides below.
    const bool isOpen = isPolymorphic();
    if (!attribute_->isEditable() || (!isOpen && typeIsComplex())) return false;
    if (!isOpen || isSluiceNodeType() || isSpecialized()) return true;
    const int type = getType();
    return type == weft::typeList || type == weft::typeFilePath || type == weft::typeFolder;
}

// Connections.

bool Pin::allowsConnectionFrom(const GraphNodePin* source) const {
    if (!GraphNodePin::allowsConnectionFrom(source) || isConnected()) return false;
    const auto* from = dynamic_cast<const Pin*>(source);
    if (!from || !from->attribute_ || !attribute_) return false;
    weft::NetworkManager* const network = attribute_->networkManager();
    // A connection between two scenes would outlive one of them.
    if (from->attribute_->networkManager() != network) return false;
    return network->canConnect(from->attribute_, attribute_, nullptr);
}

void Pin::update() {
    weft::Node* node = attribute_ ? attribute_->parent() : nullptr;
    if (node && node->updateEnabled()) node->doUpdate(attribute_);
}

void Pin::getUpstreamPins(ArrayOfPtr<Pin>& out) const {
    const GraphScene* scene = getParentGraphScenePtr();
    if (!attribute_ || !scene) return;
    Array<weft::Attribute*> upstream;
    attribute_->networkManager()->collectUpstream(attribute_, upstream);
    for (const weft::Attribute* attribute : upstream) {
        GraphNodePin* found = scene->getPinPtrById(static_cast<unsigned>(attribute->id()));
        if (auto* pin = dynamic_cast<Pin*>(found)) out.append(pin);
    }
}

// The flags alone: a walk would mark this attribute too.
void Pin::setDirtyUpstream(const bool& mark) {
    if (!attribute_) return;
    Array<weft::Attribute*> upstream;
    attribute_->networkManager()->collectUpstream(attribute_, upstream);
    for (weft::Attribute* attribute : upstream) {
        if (attribute == attribute_) continue;
        attribute->setClean(false);
        if (mark) attribute->setToBeEvaluated(true);
    }
}

// Looks.

Color4<float> Pin::getColorForPinType(int type) {
    return SceneManager::instance().getColorForPinType(type);
}

Color4<float> Pin::getColor() const {
    TM_String name = getFirstSpecialization();
    if (name.empty() && !getAllowedSpecializations().empty()) name = getAllowedSpecializations()[0];
    const Color4<float> color = getColorForPinType(weft::typeNumber(name));
    if (!attribute_) return color;
    const bool isForwarded = attribute_->isInput() || attribute_->isPassThrough();
    const weft::Value* shown = isForwarded ? attribute_->currentValue() : attribute_->value();
    if (!shown || shown->size() > 1) return color;
    const float towardsGrey = shown->size() == 1 ? 0.5f : 0.8f;
    const float grey = (color.r + color.g + color.b) / 3.0f;
    const auto mixed = [&](float channel) { return channel + (grey - channel) * towardsGrey; };
    return Color4<float>(mixed(color.r), mixed(color.g), mixed(color.b), color.a);
}

TM_String Pin::getDescription() const {
    return attribute_ ? attribute_->getDescription() : TM_String();
}

// Internal connections.

Pin* Pin::pinOfSameNode(const weft::Attribute* attribute) const {
    const auto* node = dynamic_cast<const Node*>(getParentGraphNodePtr());
    if (!node || !attribute || !attribute_ || attribute->parent() != attribute_->parent()) {
        return nullptr;
    }
    return node->getPinForAttribute(attribute);
}

void Pin::appendPinsOf(const weft::SmallList<weft::Attribute*>& attributes,
                       ArrayOfPtr<GraphNodePin>& out) const {
    for (const weft::Attribute* attribute : attributes) {
        if (Pin* pin = pinOfSameNode(attribute)) out.append(pin);
    }
}

bool Pin::allowsInternalConnections() const {
    return attribute_ && !attribute_->allowedPassThroughs().empty();
}

bool Pin::hasInternalConnections() const {
    return attribute_ && !attribute_->passThroughs().empty();
}

bool Pin::allowsNewOrRemovalOfInternalConnections() const {
    if (!attribute_) return false;
    if (hasInternalConnections()) return true;
    for (const weft::Attribute* other : attribute_->allowedPassThroughs()) {
        if (other->passThroughs().empty()) return true;
    }
    return false;
}

void Pin::allowedInternalConnections(ArrayOfPtr<GraphNodePin>& out) const {
    if (attribute_) appendPinsOf(attribute_->allowedPassThroughs(), out);
}

void Pin::internalConnections(ArrayOfPtr<GraphNodePin>& out) const {
    if (attribute_) appendPinsOf(attribute_->passThroughs(), out);
}

GraphNodePin* Pin::forcedInternalConnection() const {
    if (!attribute_) return nullptr;
    if (!attribute_->isInput()) return pinOfSameNode(attribute_->source());
    const auto& targets = attribute_->destinations();
    return targets.empty() ? nullptr : pinOfSameNode(targets[0]);
}

void Pin::forcedInternalConnections(ArrayOfPtr<GraphNodePin>& out) const {
    if (!attribute_) return;
    if (attribute_->isInput()) return appendPinsOf(attribute_->destinations(), out);
    if (Pin* pin = pinOfSameNode(attribute_->source())) out.append(pin);
}

bool Pin::addInternalConnection(GraphNodePin* pin) {
    auto* other = dynamic_cast<Pin*>(pin);
    if (!attribute_ || !other || !other->attribute_) return false;
    attribute_->addPassThrough(other->attribute_);
    return attribute_->passThroughs().contains(other->attribute_);
}

bool Pin::removeInternalConnection(GraphNodePin* pin) {
    auto* other = dynamic_cast<Pin*>(pin);
    if (!attribute_ || !other || !other->attribute_) return false;
    const bool existed = attribute_->passThroughs().contains(other->attribute_);
    attribute_->removePassThrough(other->attribute_);
    return existed;
}

} // namespace tidemark::sluice::graph
