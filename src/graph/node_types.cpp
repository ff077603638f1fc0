// SPDX-License-Identifier: Apache-2.0
// What the rows of node_types/*.def stand for.
#include "graph/node_types.h"

#include "graph/graph_scene.h"
#include "graph/scene_manager.h"

namespace tidemark::sluice::graph {

#define NODE(Type, Class, ...)                                                                     \
    void Node_##Class::createWeftNode() {                                                          \
        ScenePrivate& scene = *getScenePrivatePtr();                                               \
        adoptWeftNode(create_##Class(&scene.networkManager, getName(), &scene.rootNode));          \
    }                                                                                              \
    NodeBase* Node##Type##Factory::createNode() { return prepare(new Node_##Class); }
#define NODE_WITH_GRAPH_CLASS(Type, Class, ...)

#include "graph/node_types/all.def"

#undef NODE
#undef NODE_WITH_GRAPH_CLASS

void SceneManager::registerNodeFactories() {
#define NODE(Type, Class, ...) registerNodeFactory(new Node##Type##Factory);
#define NODE_WITH_GRAPH_CLASS(Type, Class, ...) NODE(Type, Class, __VA_ARGS__)
#include "graph/node_types/all.def"
#undef NODE
#undef NODE_WITH_GRAPH_CLASS
}

} // namespace tidemark::sluice::graph
