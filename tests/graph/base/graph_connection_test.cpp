// SPDX-License-Identifier: Apache-2.0
// Tests of connections by themselves.
#include "graph/base/graph_connection.h"

#include <gtest/gtest.h>

#include "small_scene.h"

using namespace tidemark::graph;
using namespace tidemark::graph::test;

TEST(GraphConnection, WithoutPinsHasNoNodes) {
    GraphConnection connection;
    EXPECT_EQ(connection.getSourcePin(), nullptr);
    EXPECT_EQ(connection.getTargetPin(), nullptr);
    EXPECT_EQ(connection.getSourceNode(), nullptr);
    EXPECT_EQ(connection.getTargetNode(), nullptr);
    connection.detach();
    EXPECT_EQ(connection.indexInScene(), GraphConnection::unlisted);
}

TEST(GraphConnection, ByValueOnlyDescribes) {
    SmallScene scene;
    GraphNodeBase* a = scene.add("a", "> out");
    GraphNodeBase* b = scene.add("b", "in");
    const GraphConnection connection(a->findPin("out"), b->findPin("in"));
    EXPECT_EQ(connection.getSourceNode(), a);
    EXPECT_EQ(connection.getTargetNode(), b);
    EXPECT_TRUE(scene.connections().empty());
    EXPECT_FALSE(b->findPin("in")->isConnected());
}

TEST(GraphConnection, ACopyIsNotListed) {
    SmallScene scene;
    scene.add("a", "> out");
    scene.add("b", "in");
    GraphConnection* listed = scene.connect("root.a.out", "root.b.in", true);
    ASSERT_NE(listed, nullptr);
    EXPECT_TRUE(listed->flag());
    EXPECT_EQ(listed->indexInScene(), 0u);
    GraphConnection copy(*listed);
    EXPECT_EQ(copy.getTargetPin(), listed->getTargetPin());
    EXPECT_TRUE(copy.flag());
    EXPECT_EQ(copy.indexInScene(), GraphConnection::unlisted);
    EXPECT_FALSE(scene.removeConnection(&copy));
    GraphConnection assigned;
    assigned = *listed;
    EXPECT_EQ(assigned.getSourcePin(), listed->getSourcePin());
    EXPECT_EQ(assigned.indexInScene(), GraphConnection::unlisted);
    EXPECT_EQ(scene.connections().size(), 1u);
}
