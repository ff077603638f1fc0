// SPDX-License-Identifier: Apache-2.0
// What a fresh node of a type looks like.
#include "tool/node_json.h"

#include "core/enum_value.h"
#include "core/numeric.h"
#include "graph/scene_manager.h"
#include "persistence/tree_access.h"
#include "tool/exit_status.h"
#include "tool/value_json.h"

namespace tidemark::tool {

namespace {

using sluice::graph::NodeBase;
using sluice::graph::NodeFactory;
using sluice::graph::Pin;
using sluice::graph::SceneManager;

Json namesJson(const Array<TM_String>& names) {
    Json list = Json::array();
    for (const TM_String& name : names) list.push_back(name);
    return list;
}

/// Null for a pin without a value, and while the type of a number is not settled.
Json defaultJson(const Pin& pin) {
    const weft::Value* value = pin.value();
    const auto* numeric = weft::valueAs<weft::Numeric>(value);
    const bool unsettled = numeric && numeric->type() == weft::NumericType::none;
    return value && !unsettled ? valueJson(pin) : Json(nullptr);
}

/// What a number shows in each type that it may be of, by the type's name.
Json defaultsByType(const Pin& pin, const weft::Numeric& numeric) {
    Json defaults = Json::object();
    weft::Numeric shown(nullptr);
    shown.copyFrom(&numeric);
    for (const TM_String& name : pin.getAllowedSpecializations()) {
        const weft::NumericType type = weft::numericTypeOf(name);
        if (type == weft::NumericType::none) continue;
        shown.setType(type);
        defaults[name] = numericJson(shown);
    }
    return defaults;
}

Json describePin(const Pin& pin) {
    Json json;
    json["name"] = pin.getName();
    json["kind"] = pin.getAttributeClassName();
    json["allowed"] = namesJson(pin.getAllowedSpecializations());
    json["specializations"] = namesJson(pin.getSpecializations());
    json["description"] = pin.getDescription();
    json["value"] = defaultJson(pin);
    const auto* numeric = weft::valueAs<weft::Numeric>(pin.value());
    if (numeric && numeric->type() == weft::NumericType::none && pin.isInput()) {
        json["defaults"] = defaultsByType(pin, *numeric);
    }
    const auto* list = weft::valueAs<weft::Enum>(pin.value());
    if (!list) return json;
    Json options = Json::array();
    for (const auto& [key, label] : list->options()) options.push_back(label);
    json["options"] = std::move(options);
    return json;
}

Json describePins(const Array<Pin*>& pins) {
    Json list = Json::array();
    for (const Pin* pin : pins) list.push_back(describePin(*pin));
    return list;
}

} // namespace

std::string mainCategory(const NodeFactory& factory) {
    const auto& descriptor = factory.getDescriptor();
    const Array<TM_String>& categories = descriptor.getAllowedCategories();
    return categories.empty() ? descriptor.getCategoryName() : categories[0];
}

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

NodeFactory& factoryOf(const std::string& type) {
    SceneManager& manager = SceneManager::instance();
    if (NodeFactory* factory = manager.getNodeFactoryFromType(type)) return *factory;
    if (NodeFactory* factory = manager.getNodeFactoryFromTypeIgnoringCase(type)) return *factory;
    const TM_String nearest = manager.nearestNodeType(type);
    throw UsageError("no node type \"" + type + "\"" +
                     (nearest.empty() ? "" : " (did you mean \"" + nearest + "\"?)"));
}

// A type that is a file is made by reading a graph that names it.
NodeBase* TypeExplorer::makeNode(NodeFactory& factory) {
    const TM_String& type = factory.getDescriptor().getTypeName();
    if (NodeBase* node = factory.createNode()) {
        scene_.addNodeToGraph(node);
        node->setNodeOwner(scene_.getRootNode());
        return node;
    }
    namespace tree = sluice::graph::tree;
    const tree::Document element = tree::makeDocument();
    tree::append(*element, "name", type);
    tree::append(*element, "type", type);
    const Optional<NodeBase*> read =
        scene_.readNode_fromBoostPropertyTree(*element, "root", nullptr);
    return read ? *read : nullptr;
}

Json TypeExplorer::describe(NodeFactory& factory) {
    NodeBase* node = makeNode(factory);
    if (!node)
        throw UsageError("no node of type \"" + factory.getDescriptor().getTypeName() +
                         "\" can be made");
    Json json;
    json["type"] = factory.getDescriptor().getTypeName();
    json["category"] = mainCategory(factory);
    json["allowedCategories"] = namesJson(factory.getDescriptor().getAllowedCategories());
    json["description"] = node->getDescription();
    json["dynamicPins"] = node->dynamicPinsAllowed();
    json["inputs"] = describePins(node->getArrInputPin());
    json["outputs"] = describePins(node->getArrOutputPin());
    scene_.removeNodeFromGraph(node);
    return json;
}

std::string TypeExplorer::page(NodeFactory& factory, bool wiki) {
    auto* const node = dynamic_cast<sluice::graph::Node*>(makeNode(factory));
    if (!node) return {};
    const std::string text = wiki ? node->asConfluenceHTML(false) : node->asHTML();
    scene_.removeNodeFromGraph(node);
    return text;
}

} // namespace tidemark::tool
