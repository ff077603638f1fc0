// SPDX-License-Identifier: Apache-2.0
// The scene's frame and time, as nodes read them.
#include <gtest/gtest.h>

#include "bridge/host.h"
#include "core/numeric.h"
#include "graph/graph_scene.h"
#include "graph/node_factory.h"
#include "graph/scene_manager.h"

namespace {

namespace graph = tidemark::sluice::graph;

class FrameHost : public tidemark::bridge::Host {
public:
    FrameHost() { tidemark::bridge::setHost(this); }
    ~FrameHost() override { tidemark::bridge::setHost(nullptr); }
    int currentFrame() const override { return frame; }
    float currentTime() const override { return 0.25f * static_cast<float>(frame); }
    int frame = 0;
};

TEST(GetCurrentFrameTime, TellsWhereTheSceneStands) {
    FrameHost host;
    graph::SL_GraphScene scene;
    graph::NodeBase* node =
        graph::SceneManager::instance().getNodeFactoryFromType("GetCurrentFrameTime")->createNode();
    scene.addNodeToGraph(node);
    weft::Attribute* time = node->getCoreNode()->findAttribute("time");
    weft::Attribute* frame = node->getCoreNode()->findAttribute("frame");
    host.frame = 10;
    time->computeNow();
    frame->computeNow();
    EXPECT_EQ(time->currentValue()->asString(), "[3] 2.5");
    EXPECT_EQ(frame->currentValue()->asString(), "[1] 10");
    host.frame = -3;
    time->setClean(false);
    time->computeNow();
    EXPECT_EQ(time->currentValue()->asString(), "[3] -0.75");
    EXPECT_EQ(frame->currentValue()->asString(), "[1] 10") << "not asked for";
}

} // namespace
