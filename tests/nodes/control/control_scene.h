// SPDX-License-Identifier: Apache-2.0
// Scenes for tests of control nodes, built by calls:
//
//     ControlScene net;
//     net.add("Integer", "S");
//     net.add("Evaluator", "E");
//     net.link("S.integer", "E.evaluate");
//     net.scene.run();
#pragma once

#include <gtest/gtest.h>

#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "bridge/host.h"
#include "core/bit_array.h"
#include "core/numeric.h"
#include "graph/graph_scene.h"
#include "graph/scene_manager.h"
#include "support/callback_log.h"

namespace control_tests {

using tidemark::Array;
using tidemark::TM_String;
using tidemark::graph::GraphConnection;
using tidemark::graph::GraphNodeBase;
using tidemark::graph::GraphNodePin;
using tidemark::graph::Message;
using tidemark::sluice::graph::Node;
using tidemark::sluice::graph::Pin;
using tidemark::sluice::graph::RunOutcome;
using tidemark::sluice::graph::SceneManager;
using tidemark::sluice::graph::SL_GraphScene;

/// Counts what the nodes ask of the application; installed as long as it lives.
class ControlHost : public tidemark::bridge::Host {
public:
    ControlHost() { tidemark::bridge::setHost(this); }
    ~ControlHost() override { tidemark::bridge::setHost(nullptr); }

    void post(int id, const Array<TM_String>& arguments) override {
        std::string line = std::to_string(id);
        for (const TM_String& argument : arguments) line += "|" + argument;
        const std::lock_guard<std::mutex> lock(mutex_); // workers post as well
        posts.push_back(line);
    }
    void stopSimulation() override { ++stops; }
    bool allowsSleep() const override { return sleeps; }

    std::vector<std::string> posts; // "id|first argument|second argument"
    int stops = 0;
    bool sleeps = true;

private:
    std::mutex mutex_;
};

/// Paths begin below the root: "C.A.in0".
class ControlScene {
public:
    /// A node of a registered type with exactly that name.
    Node* add(const char* type, const TM_String& name, GraphNodeBase* owner = nullptr) {
        auto* factory = SceneManager::instance().getNodeFactoryFromType(type);
        if (!factory) throw std::invalid_argument(std::string("no type ") + type);
        return enter(static_cast<Node*>(factory->createNode()), name, owner);
    }

    /// A node of a class of the test.
    Node* enter(Node* node, const TM_String& name, GraphNodeBase* owner = nullptr) {
        scene.addNodeToGraph(node);
        node->setNodeOwner(owner ? owner : scene.getRootNode());
        node->setName(name);
        return node;
    }

    Node* node(const TM_String& path) {
        GraphNodeBase* found = scene.getNodePtrByFullName("root." + path);
        if (!found) throw std::invalid_argument("no node " + path);
        return static_cast<Node*>(found);
    }
    Pin* pin(const TM_String& path) {
        GraphNodePin* found = scene.getPinPtrByFullName("root." + path);
        if (!found) throw std::invalid_argument("no pin " + path);
        return static_cast<Pin*>(found);
    }
    weft::Attribute* at(const TM_String& path) { return pin(path)->getWeftAttribute(); }

    void link(const TM_String& from, const TM_String& to) {
        EXPECT_NE(scene.connect("root." + from, "root." + to), nullptr) << from << " > " << to;
    }
    GraphConnection* connect(GraphNodePin* from, GraphNodePin* to) {
        return scene.connect(from, to, false);
    }
    void cut(const TM_String& from, const TM_String& to) {
        for (GraphConnection* connection : scene.connections()) {
            if (connection->getSourcePin() != pin(from)) continue;
            if (connection->getTargetPin() == pin(to)) {
                EXPECT_TRUE(scene.removeConnection(connection));
                return;
            }
        }
        ADD_FAILURE() << "no connection " << from << " > " << to;
    }

    /// A pin of the compound that owns the interface node, with its counterpart, both of that name.
    void wall(const TM_String& interfacePath, bool intoCompound, const TM_String& name) {
        GraphNodePin* inner = nullptr;
        GraphNodePin* outer = nullptr;
        const auto flag = intoCompound ? GraphNodePin::inputFlag : GraphNodePin::outputFlag;
        ASSERT_TRUE(scene.addCompoundInterfacePin(flag, node(interfacePath), inner, outer));
        ASSERT_TRUE(inner && outer);
        inner->setName(name);
        outer->setName(name);
    }

    /// What a reader of the pin sees, without pulling it.
    int integer(const TM_String& path) {
        const auto* number = weft::valueAs<weft::Numeric>(at(path)->currentValue());
        return number ? number->value<int32_t>() : -1;
    }

    std::string messages(const TM_String& path) {
        std::string text;
        for (const Message& message : node(path)->getMessages().messages()) {
            if (!text.empty()) text += "; ";
            text += std::to_string(message.level) + " " + message.text;
            if (!message.detail.empty()) text += " - " + message.detail;
        }
        return text;
    }

    /// Runs the scene; the updates in order, "node.attribute" separated by commas.
    std::string updatesOfRun() {
        support::CallbackLog log;
        weft::Callbacks::nobodyListens = nullptr;
        scene.run();
        std::string text;
        for (const std::string& line : log.lines) {
            const std::string word = "update ";
            if (line.rfind(word, 0) != 0) continue;
            std::string name = line.substr(word.size());
            name[name.find(' ')] = '.';
            text += (text.empty() ? "" : ", ") + name;
        }
        return text;
    }

    ControlHost host;
    SL_GraphScene scene;
};

/// The graph node of a logic class of the test.
template <typename Logic>
class GraphNodeOf : public Node {
public:
    explicit GraphNodeOf(const char* type) { setType(type); }
    void createWeftNode() override {
        auto* privatePart = getScenePrivatePtr();
        adoptWeftNode(new Logic(&privatePart->networkManager, getName(), &privatePart->rootNode));
    }
};

} // namespace control_tests
