// SPDX-License-Identifier: Apache-2.0
// The last line of every node type's source: ties its logic class to its row in node_types/*.def.
#pragma once

#include "core/node.h"

/// Inside namespace tidemark::sluice::graph, after the logic class `Class`, whose constructor takes
/// (NetworkManager*, const TM_String& name, Node* parent). A row without this is a link error that
/// names `create_Class`.
#define SLUICE_DEFINE_NODE(Class)                                                                  \
    weft::Node* create_##Class(weft::NetworkManager* manager, const TM_String& name,               \
                               weft::Node* parent) {                                               \
        return new Class(manager, name, parent);                                                   \
    }

/// The same for a row `NODE_WITH_GRAPH_CLASS(Type, Class, ...)`, whose graph class `Node_Class` is
/// declared by hand: defines its `createWeftNode` and the factory's `createNode`. The source
/// includes "graph/node_types.h" and "graph/graph_scene.h".
#define SLUICE_DEFINE_GRAPH_NODE(Type, Class)                                                      \
    void Node_##Class::createWeftNode() {                                                          \
        ScenePrivate& scene = *getScenePrivatePtr();                                               \
        adoptWeftNode(new Class(&scene.networkManager, getName(), &scene.rootNode));               \
    }                                                                                              \
    NodeBase* Node##Type##Factory::createNode() { return prepare(new Node_##Class); }
