// SPDX-License-Identifier: Apache-2.0
// Logic nodes by type name: made in a scene, as users make them, and then spoken to directly.
#include "nodes/values/logic_net.h"

#include <map>
#include <stdexcept>

#include "graph/graph_scene.h"
#include "graph/node_factory.h"
#include "graph/scene_manager.h"

namespace sluice_tests {

namespace graph = tidemark::sluice::graph;

struct LogicNet::Private {
    graph::SL_GraphScene scene;
    std::map<TM_String, weft::Node*> nodes;
};

LogicNet::LogicNet() : private_(std::make_unique<Private>()) {}
LogicNet::~LogicNet() = default;

weft::NetworkManager& LogicNet::manager() { return private_->scene.networkManager(); }

weft::Node& LogicNet::add(const TM_String& type, const TM_String& name) {
    graph::NodeFactory* factory = graph::SceneManager::instance().getNodeFactoryFromType(type);
    if (!factory) throw std::invalid_argument("no type " + type);
    graph::NodeBase* made = factory->createNode();
    made->setName(name);
    private_->scene.addNodeToGraph(made);
    weft::Node* logic = made->getCoreNode();
    private_->nodes[name] = logic;
    return *logic;
}

weft::Node& LogicNet::node(const TM_String& name) { return *private_->nodes.at(name); }

weft::Attribute& LogicNet::pin(const TM_String& pin) {
    const std::size_t point = pin.find('.');
    weft::Attribute* found = node(pin.substr(0, point)).findAttribute(pin.substr(point + 1));
    if (!found) throw std::invalid_argument("no pin " + pin);
    return *found;
}

} // namespace sluice_tests
