// SPDX-License-Identifier: Apache-2.0
// A program that embeds the library: it installs a host of its own, builds a graph by calls,
// follows the evaluation through the callbacks, runs the graph, changes a value and runs it again.
#include <cstdio>

#include "bridge/host.h"
#include "graph/graph_scene.h"
#include "graph/scene_manager.h"

namespace {

using namespace tidemark::sluice::graph;
using tidemark::Array;
using tidemark::TM_String;

// What the library has to say goes where this program wants it.
class PrintingHost : public tidemark::bridge::Host {
public:
    void post(int id, const Array<TM_String>& arguments) override {
        std::printf("host message %d:", id);
        for (const TM_String& argument : arguments) std::printf(" %s", argument.c_str());
        std::printf("\n");
    }
};

Node* add(SL_GraphScene& scene, const char* type, const char* name) {
    auto* node =
        static_cast<Node*>(SceneManager::instance().getNodeFactoryFromType(type)->createNode());
    scene.addNodeToGraph(node); // the scene owns it from here on
    node->setNodeOwner(scene.getRootNode());
    node->setName(name);
    return node;
}

void connect(SL_GraphScene& scene, const char* source, const char* target) {
    if (!scene.connect(TM_String(source), TM_String(target))) {
        std::printf("cannot connect %s to %s\n", source, target);
    }
}

int updates = 0;

} // namespace

int main() {
    PrintingHost host;
    tidemark::bridge::setHost(&host);
    SceneManager::node_updateCallback_ = [](const TM_String& node) {
        ++updates;
        std::printf("  updated %s\n", node.c_str());
    };

    //  Width --+
    //          Mul (area) --+
    //  Height -+            Div (per tile) -- End
    //             Tiles ----+
    SL_GraphScene scene;
    add(scene, "Real", "Width");
    add(scene, "Real", "Height");
    add(scene, "Integer", "Tiles");
    add(scene, "Mul", "Area");
    Node* perTile = add(scene, "Div", "PerTile");
    add(scene, "Evaluator", "End");
    connect(scene, "root.Width.real", "root.Area.in0");
    connect(scene, "root.Height.real", "root.Area.in1");
    connect(scene, "root.Area.result", "root.PerTile.in0");
    connect(scene, "root.Tiles.integer", "root.PerTile.in1");
    connect(scene, "root.PerTile.result", "root.End.evaluate");
    connect(scene, "root.PerTile.result", "root.Area.in1"); // taken, and a cycle: refused

    scene.setPinFloatValue("root.Width.in", 4.0f);
    scene.setPinFloatValue("root.Height.in", 2.5f);
    scene.setPinIntValue("root.Tiles.in", 4);
    std::printf("first run\n");
    scene.run();
    const float first = scene.getPinFloatValue("root.PerTile.result");
    std::printf("area per tile: %.2f\n", first);

    scene.setPinFloatValue("root.Height.in", 5.0f);
    std::printf("second run\n");
    scene.run();
    const float second = scene.getPinFloatValue("root.PerTile.result");
    std::printf("area per tile: %.2f\n", second);
    for (const auto& message : perTile->getMessages().messages()) {
        std::printf("%s\n", message.asString().c_str());
    }

    SceneManager::node_updateCallback_ = nullptr;
    scene.clear();
    tidemark::bridge::setHost(nullptr);
    const bool asExpected = first == 2.5f && second == 5.0f && updates > 0;
    return asExpected ? 0 : 1;
}
