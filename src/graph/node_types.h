// SPDX-License-Identifier: Apache-2.0
// Graph classes and factories of the registered node types, generated from the rows of
// node_types/*.def. A row `NODE(Type, Class, categories...)` gives `Node_Class`, whose logic node
// is made by the function that `SLUICE_DEFINE_NODE(Class)` defines, and `NodeTypeFactory`. A row
// `NODE_WITH_GRAPH_CLASS(Type, Class, categories...)` gives the factory only: `Node_Class` and the
// factory's `createNode` are written by hand beside the logic class.
#pragma once

#include "graph/graph_node.h"
#include "graph/node_factory.h"

namespace tidemark::sluice::graph {

#define NODE(Type, Class, ...)                                                                     \
    weft::Node* create_##Class(weft::NetworkManager*, const TM_String&, weft::Node*);              \
    class SLUICE_API Node_##Class : public Node {                                                  \
    public:                                                                                        \
        void createWeftNode() override;                                                            \
    };                                                                                             \
    NODE_WITH_GRAPH_CLASS(Type, Class, __VA_ARGS__)

#define NODE_WITH_GRAPH_CLASS(Type, Class, ...)                                                    \
    class SLUICE_API Node##Type##Factory : public NodeFactory {                                    \
    public:                                                                                        \
        Node##Type##Factory() : NodeFactory(#Type, {__VA_ARGS__}) {}                               \
        NodeBase* createNode() override;                                                           \
    };

#include "graph/node_types/all.def"

#undef NODE
#undef NODE_WITH_GRAPH_CLASS

} // namespace tidemark::sluice::graph
