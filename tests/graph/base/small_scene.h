// SPDX-License-Identifier: Apache-2.0
// A scene of plain nodes for tests, built by a few words.
#pragma once

#include <string>
#include <vector>

#include "graph/base/graph_scene_base.h"

namespace tidemark::graph::test {

/// Pins are given as "in0 in1 > result": inputs, then outputs.
class SmallScene : public GraphScene {
public:
    GraphNodeBase* add(const TM_String& name, const TM_String& pins = TM_String(),
                       GraphNodeBase* owner = nullptr) {
        auto* node = new GraphNodeBase();
        node->setName(name);
        addNodeToGraph(node);
        node->setNodeOwner(owner ? owner : getRootNode());
        PinFlags side = GraphNodePin::inputFlag;
        for (const TM_String& word : text::split(pins, " ")) {
            if (word == ">") side = GraphNodePin::outputFlag;
            if (word != ">" && !word.empty()) createNewPin(node, side, word);
        }
        return node;
    }

    GraphNodeBase* addCompound(const TM_String& name, GraphNodeBase* owner = nullptr) {
        GraphNodeBase* node = add(name, "", owner);
        node->setCompound(true);
        return node;
    }

    GraphConnection* link(const TM_String& source, const TM_String& target) {
        return connect("root." + source, "root." + target);
    }

    using GraphScene::allowsCompounds_;
    using GraphScene::graphKind_;
    using GraphScene::setColorForNodeType;
    using GraphScene::setRootNode;
};

inline std::vector<TM_String> namesOf(const GraphScene::Nodes& nodes) {
    std::vector<TM_String> names;
    for (const GraphNodeBase* node : nodes) names.push_back(node->getName());
    return names;
}

inline std::vector<TM_String> namesOf(const GraphScene::Pins& pins) {
    std::vector<TM_String> names;
    for (const GraphNodePin* pin : pins) names.push_back(pin->getName());
    return names;
}

/// "a.out>b.in" without the leading "root.".
inline TM_String textOf(const GraphConnection* connection) {
    return connection->getSourcePin()->getFullName().substr(5) + ">" +
           connection->getTargetPin()->getFullName().substr(5);
}

inline std::vector<TM_String> textsOf(const GraphScene::Connections& connections) {
    std::vector<TM_String> texts;
    for (const GraphConnection* connection : connections) texts.push_back(textOf(connection));
    return texts;
}

using Names = std::vector<TM_String>;

} // namespace tidemark::graph::test
