// SPDX-License-Identifier: Apache-2.0
// Looking pins up and setting them from texts and files.
#include "tool/pins.h"

#include "graph/graph_scene.h"
#include "tool/console.h"
#include "tool/exit_status.h"
#include "tool/text_file.h"
#include "tool/value_json.h"

namespace tidemark::tool {

namespace {

using sluice::graph::NodeBase;
using sluice::graph::Pin;
using sluice::graph::SL_GraphScene;
using tidemark::graph::GraphNodeBase;
using tidemark::graph::GraphNodePin;

Pin* pinNamed(const SL_GraphScene& scene, const std::string& name) {
    return dynamic_cast<Pin*>(scene.getPinPtrByFullName(name));
}

/// What "no such pin" adds: the nearest pin of the node, or the nearest node.
std::string hintFor(const SL_GraphScene& scene, const std::string& name) {
    const std::size_t point = name.rfind('.');
    const std::string nodeName = name.substr(0, point == std::string::npos ? 0 : point);
    Array<TM_String> candidates;
    if (GraphNodeBase* node = scene.getNodePtrByFullName(nodeName)) {
        const std::string pinName = name.substr(point + 1);
        for (const GraphNodePin* pin : node->pins()) candidates.append(pin->getName());
        const TM_String nearest = text::nearest(pinName, candidates);
        if (!nearest.empty()) return " (did you mean \"" + nodeName + "." + nearest + "\"?)";
        return "; node \"" + nodeName + "\" has no pin of that name";
    }
    for (const NodeBase* node : nodesInTreeOrder(scene)) candidates.append(node->getFullName());
    const TM_String nearest = text::nearest(nodeName, candidates);
    if (nearest.empty()) return "; pins are named like \"root.Add_01.in0\"";
    return "; there is no node \"" + nodeName + "\" (did you mean \"" + nearest + "\"?)";
}

void warnWhenConnected(const Pin& pin) {
    const weft::Attribute* attribute = pin.getWeftAttribute();
    if (!attribute || !attribute->source()) return;
    console::report(tidemark::graph::messageLevelWarning,
                    "pin \"" + pin.getFullName() +
                        "\" is connected: the value set is not what its node reads");
}

void set(Pin& pin, const std::string& type, const Json& value, Curves& curves) {
    setPinValue(pin, type, value, curves);
    warnWhenConnected(pin);
}

/// Sets the pin that `target` names, which may end in ":TYPE".
void setTarget(const SL_GraphScene& scene, const std::string& target, const Json& value,
               Curves& curves) {
    if (Pin* pin = pinNamed(scene, target)) return set(*pin, "", value, curves);
    const std::size_t colon = target.rfind(':');
    if (colon == std::string::npos) return set(findPin(scene, target), "", value, curves);
    set(findPin(scene, target.substr(0, colon)), target.substr(colon + 1), value, curves);
}

} // namespace

Pin& findPin(const SL_GraphScene& scene, const std::string& name) {
    if (Pin* pin = pinNamed(scene, name)) return *pin;
    throw UsageError("no pin \"" + name + "\"" + hintFor(scene, name));
}

std::vector<NodeBase*> nodesInTreeOrder(const SL_GraphScene& scene) {
    std::vector<NodeBase*> order;
    std::vector<GraphNodeBase*> open;
    const auto openChildren = [&open](const GraphNodeBase& node) {
        const auto& children = node.children();
        for (uint32_t i = children.size(); i > 0; --i) open.push_back(children[i - 1]);
    };
    openChildren(*scene.getRootNode());
    while (!open.empty()) {
        auto* node = static_cast<NodeBase*>(open.back());
        open.pop_back();
        order.push_back(node);
        openChildren(*node);
    }
    return order;
}

void applySetting(const SL_GraphScene& scene, const std::string& setting, Curves& curves) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw UsageError("\"" + setting + "\" does not have the form PIN=VALUE");
    }
    setTarget(scene, setting.substr(0, equals), jsonOrText(setting.substr(equals + 1)), curves);
}

void applySettingFile(const SL_GraphScene& scene, const std::string& file, Curves& curves) {
    const Json json = Json::parse(contentOf(file), nullptr, false);
    if (!json.is_object()) {
        throw UsageError("\"" + file + "\" holds no JSON object of pin names and values");
    }
    for (const auto& [name, value] : json.items()) setTarget(scene, name, value, curves);
}

} // namespace tidemark::tool
