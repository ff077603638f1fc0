// SPDX-License-Identifier: Apache-2.0
// Descriptors and the last steps of making a node.
#include "graph/node_factory.h"

#include "graph/graph_node.h"

namespace tidemark::sluice::graph {

NodeFactory::~NodeFactory() = default;

NodeFactory::NodeFactory(const char* type, std::initializer_list<const char*> categories) {
    const TM_String main = *categories.begin();
    for (const char* category : categories) descriptor_.refAllowedCategories().append(category);
    descriptor_.setCategoryName(main.substr(0, main.find('.')));
    descriptor_.setTypeName(type);
    descriptor_.setBuiltIn(true);
}

NodeBase* NodeFactory::prepare(NodeBase* node) const {
    node->setName(descriptor_.getTypeName());
    node->setType(descriptor_.getTypeName());
    node->setCategory(descriptor_.getCategoryName());
    return node;
}

} // namespace tidemark::sluice::graph
