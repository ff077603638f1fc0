// SPDX-License-Identifier: Apache-2.0
// Logic nodes that look after the scene they stand in.
#pragma once

#include "core/node.h"
#include "graph/graph_node.h"

namespace tidemark::sluice::graph {
class SL_GraphScene;
}

namespace weft {

/// Knows its scene, which owns the graph node that made it; null for one that stands in a network
/// without a scene.
class SceneNode : public Node {
public:
    using Node::Node;
    void setScene(tidemark::sluice::graph::SL_GraphScene* scene) { scene_ = scene; }
    tidemark::sluice::graph::SL_GraphScene* scene() const { return scene_; }

private:
    tidemark::sluice::graph::SL_GraphScene* scene_ = nullptr;
};

} // namespace weft

/// Inside namespace tidemark::sluice::graph, after the logic class `Class`, which derives from
/// `SceneNode`: its graph class and its factory, for a row `NODE_WITH_GRAPH_CLASS(Class, Class,
/// ...)`. The source includes "graph/node_types.h" and "graph/graph_scene.h".
#define SLUICE_DEFINE_SCENE_NODE(Class)                                                            \
    namespace {                                                                                    \
    class Node_##Class : public Node {                                                             \
    public:                                                                                        \
        void createWeftNode() override {                                                           \
            ScenePrivate& scene = *getScenePrivatePtr();                                           \
            auto* const node = new Class(&scene.networkManager, getName(), &scene.rootNode);       \
            node->setScene(getScene());                                                            \
            adoptWeftNode(node);                                                                   \
        }                                                                                          \
    };                                                                                             \
    }                                                                                              \
    NodeBase* Node##Class##Factory::createNode() { return prepare(new Node_##Class); }
