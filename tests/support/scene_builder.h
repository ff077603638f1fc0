// SPDX-License-Identifier: Apache-2.0
// Graph scenes in a few words:
//
//     SceneBuilder build;
//     build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
//     build.pin("R.in")->setFloatValue(2.5f);
//     build.scene.run();
//
// and nodes whose logic the test writes itself:
//
//     build.probe("Probe", "P", [](LogicProbe& logic) { logic.input<NumericAttribute>("in"); });
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/node.h"
#include "core/numeric.h"
#include "graph/graph_scene.h"
#include "graph/scene_manager.h"

namespace support {

using tidemark::TM_String;
using Names = std::vector<std::string>;

/// A logic node that counts what is asked of it. Its class name is "Probe".
class LogicProbe : public weft::Node {
public:
    LogicProbe(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : Node(manager, name, parent) {
        appendClass<"Probe">();
    }
    ~LogicProbe() override {
        if (destroyed) *destroyed = true;
    }

    void preUpdate() override {
        ++preUpdates;
        if (onPreUpdate) onPreUpdate();
    }
    void postUpdate() override { ++postUpdates; }
    void update(weft::Attribute* attribute) override {
        ++updates;
        if (onUpdate) onUpdate(attribute);
    }
    void updateNotCleaning() override { ++displays; }
    void setName(const TM_String& name) override {
        weft::Node::setName(onlyName.empty() ? name : onlyName);
    }

    template <typename A>
    A* input(const char* name) {
        return addInput<A>(name);
    }
    template <typename A>
    A* output(const char* name) {
        return addOutput<A>(name);
    }
    using weft::Node::addAttributeAllowedPassThrough;
    using weft::Node::addAttributePassThrough;
    using weft::Node::setAllowDynamicAttributes;

    std::function<void(weft::Attribute*)> onUpdate;
    std::function<void()> onPreUpdate;
    bool* destroyed = nullptr;
    TM_String onlyName; // the name that it settles on, whatever it is given
    int preUpdates = 0;
    int postUpdates = 0;
    int updates = 0;
    int displays = 0;
};

/// The graph node of a `LogicProbe`.
class ProbeNode : public tidemark::sluice::graph::Node {
public:
    using Declare = std::function<void(LogicProbe&)>;

    explicit ProbeNode(Declare declare = {}) : declare_(std::move(declare)) {}
    void createWeftNode() override {
        auto& scene = *getScenePrivatePtr();
        auto* logic = new LogicProbe(&scene.networkManager, getName(), &scene.rootNode);
        if (declare_) declare_(*logic);
        adoptWeftNode(logic);
    }
    LogicProbe& logic() const { return *static_cast<LogicProbe*>(getCoreNode()); }
    using Node::addDynamicInputAttribute;
    using Node::destroyWeftNode;

private:
    Declare declare_;
};

/// One scene. Paths begin below the root: "C.A.in0".
class SceneBuilder {
public:
    using GraphNode = tidemark::sluice::graph::Node;
    using Pin = tidemark::sluice::graph::Pin;

    /// A node of a registered type, with exactly that name unless a sibling has it. The path names
    /// its owner: "C.A".
    SceneBuilder& add(const char* type, const std::string& path) {
        auto* factory = manager().getNodeFactoryFromType(type);
        if (!factory) throw std::invalid_argument(std::string("no type ") + type);
        enter(static_cast<GraphNode*>(factory->createNode()), path);
        return *this;
    }

    ProbeNode* probe(const char* type, const std::string& path, ProbeNode::Declare declare = {}) {
        auto* node = new ProbeNode(std::move(declare));
        node->setType(type);
        enter(node, path);
        return node;
    }

    template <typename N>
    N* enter(N* node, const std::string& path) {
        const std::size_t point = path.rfind('.');
        const bool isInner = point != std::string::npos;
        scene.addNodeToGraph(node);
        node->setNodeOwner(isInner ? this->node(path.substr(0, point)) : scene.getRootNode());
        node->setName(isInner ? path.substr(point + 1) : path);
        return node;
    }

    SceneBuilder& connect(const std::string& from, const std::string& to) {
        EXPECT_NE(link(from, to), nullptr) << from << " > " << to;
        return *this;
    }
    /// Null when it is refused.
    tidemark::graph::GraphConnection* link(const std::string& from, const std::string& to) {
        return scene.connect(pin(from), pin(to), false);
    }

    GraphNode* node(const std::string& path) const {
        auto* found = dynamic_cast<GraphNode*>(scene.getNodePtrByFullName("root." + path));
        if (!found) throw std::invalid_argument("no node " + path);
        return found;
    }
    Pin* pin(const std::string& path) const {
        auto* found = dynamic_cast<Pin*>(scene.getPinPtrByFullName("root." + path));
        if (!found) throw std::invalid_argument("no pin " + path);
        return found;
    }
    weft::Attribute* at(const std::string& path) const { return pin(path)->getWeftAttribute(); }
    weft::Node* logic(const std::string& path) const { return node(path)->getCoreNode(); }

    /// What a reader of the pin sees, without pulling it.
    template <typename T>
    T seen(const std::string& path) const {
        const auto* number = weft::valueAs<weft::Numeric>(at(path)->currentValue());
        if (!number) throw std::invalid_argument("no number at " + path);
        return number->value<T>();
    }

    /// "level text" of each message, with " - detail" where there is one.
    Names messages(const std::string& path) const { return textsOf(node(path)->getMessages()); }
    static Names textsOf(const tidemark::graph::MessageHandler& handler) {
        Names texts;
        for (const auto& message : handler.messages()) {
            texts.push_back(std::to_string(message.level) + " " + message.text +
                            (message.detail.empty() ? "" : " - " + message.detail));
        }
        return texts;
    }

    /// Pins of a node that was not found by its path.
    template <typename Pins>
    static Names namesOf(const Pins& pins) {
        Names names;
        for (const auto* pin : pins) names.push_back(pin->getName());
        return names;
    }
    template <typename Pins>
    static Names fullNamesOf(const Pins& pins) {
        Names names;
        for (const auto* pin : pins) names.push_back(pin->getFullName().substr(5));
        return names;
    }
    /// "A.result>B.in0" for each connection of the scene, in its order.
    Names connections() const {
        Names names;
        for (const auto* connection : scene.connections()) {
            names.push_back(connection->getSourcePin()->getFullName().substr(5) + ">" +
                            connection->getTargetPin()->getFullName().substr(5));
        }
        return names;
    }

    static tidemark::sluice::graph::SceneManager& manager() {
        return tidemark::sluice::graph::SceneManager::instance();
    }

    tidemark::sluice::graph::SL_GraphScene scene;
};

} // namespace support
