// SPDX-License-Identifier: Apache-2.0
// Collecting and printing what a run has to say.
#include "tool/run_report.h"

#include <algorithm>

#include "tool/console.h"
#include "tool/pins.h"
#include "tool/value_json.h"

namespace tidemark::tool {

using sluice::graph::Node;
using sluice::graph::NodeBase;
using sluice::graph::SL_GraphScene;
using tidemark::graph::Message;
using tidemark::graph::MessageHandler;

std::vector<NodeMessage> collectMessages(const SL_GraphScene& scene, const Node* hidden) {
    std::vector<NodeMessage> messages;
    const auto append = [&messages](const std::string& node, const MessageHandler& handler) {
        for (const Message& message : handler.messages()) messages.push_back({node, message});
    };
    append("scene", scene.getMessages());
    for (const NodeBase* node : nodesInTreeOrder(scene)) {
        const MessageHandler& handler = node->getMessages();
        if (node != hidden && !handler.isEmpty()) append(node->getFullName(), handler);
    }
    return messages;
}

void clearMessages(SL_GraphScene& scene) {
    scene.clearMessages();
    for (NodeBase* node : nodesInTreeOrder(scene)) node->clearMessages();
}

void keepMessagesUpTo(SL_GraphScene& scene, int level) {
    if (level <= tidemark::graph::messageLevelWarning) return; // kept by every node from the start
    const auto raise = [level](MessageHandler& handler) {
        handler.setVerbosityLevel(std::max(handler.verbosityLevel(), level));
    };
    raise(scene.refMessages());
    for (NodeBase* node : nodesInTreeOrder(scene)) raise(node->refMessages());
}

void printMessages(const std::vector<NodeMessage>& messages, int verbosity) {
    for (const NodeMessage& entry : messages) {
        if (entry.message.level > verbosity) continue;
        std::string line = "[" + entry.node + "] " + entry.message.text;
        if (!entry.message.detail.empty()) line += " - " + entry.message.detail;
        console::report(entry.message.level, line);
    }
}

Json messagesJson(const std::vector<NodeMessage>& messages, int verbosity) {
    Json list = Json::array();
    for (const NodeMessage& entry : messages) {
        if (entry.message.level > verbosity) continue;
        list.push_back({{"node", entry.node},
                        {"level", entry.message.level},
                        {"text", entry.message.text},
                        {"detail", entry.message.detail}});
    }
    return list;
}

Json pinsJson(const SL_GraphScene& scene, const std::vector<std::string>& pins) {
    Json list = Json::array();
    for (const std::string& name : pins) list.push_back(pinJson(findPin(scene, name), name));
    return list;
}

void printPins(const Json& pins, const std::string& prefix) {
    for (const Json& pin : pins) {
        console::out(prefix + pin["pin"].get<std::string>() + " = " + dumped(pin["value"]) + "\n");
    }
}

} // namespace tidemark::tool
