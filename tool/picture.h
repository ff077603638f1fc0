// SPDX-License-Identifier: Apache-2.0
// A graph as boxes with places, ready to be written as a picture.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "graph/base/graph_layout.h"
#include "graph/graph_scene.h"
#include "tool/layering.h"

namespace tidemark::tool {

/// Sizes, in the units of the picture.
namespace picture {
constexpr double headHeight = 24;
constexpr double rowHeight = 18;
constexpr double padding = 10;
constexpr double frameMargin = 36;  ///< round what a compound holds, beside its own pins
constexpr double letterWidth = 6.4; ///< of the pins' text, on average
} // namespace picture

/// A node, or a compound with what it holds. Places are those of the picture.
struct Box {
    const sluice::graph::NodeBase* node = nullptr; ///< null for the whole picture
    double x = 0, y = 0, width = 0, height = 0;
    std::vector<std::size_t> inside; ///< boxes of the children
    /// Connections between the children.
    std::vector<const tidemark::graph::GraphConnection*> wires;
};

/// Places all nodes: where the layout says when it knows the place of every node beside them and
/// these do not cover each other, otherwise from left to right along the connections.
class Picture {
public:
    Picture(const sluice::graph::SL_GraphScene& scene, const tidemark::graph::GraphLayout& layout);

    const std::vector<Box>& boxes() const { return boxes_; }
    const Box& whole() const { return boxes_[0]; }
    /// Null for a node that is not in the picture.
    const Box* boxOf(const tidemark::graph::GraphNodeBase* node) const;

    struct Point {
        double x, y;
    };
    /// Where connections of the pin end.
    Point pinPlace(const sluice::graph::Pin& pin) const;
    /// Where a connection passes between other nodes, from left to right; often nowhere.
    const std::vector<Stretch>& stretchesOf(const tidemark::graph::GraphConnection* wire) const;

private:
    std::size_t addBoxes(const tidemark::graph::GraphNodeBase& node);
    void addWires(const sluice::graph::SL_GraphScene& scene);
    void arrange(std::size_t box);
    void measure(Box& box) const;
    bool placeAsStored(const Box& box);
    void placeAlongWires(const Box& box);
    void makeAbsolute();

    const tidemark::graph::GraphLayout& layout_;
    std::vector<Box> boxes_; // each before those inside it
    std::unordered_map<const tidemark::graph::GraphNodeBase*, std::size_t> places_;
    std::unordered_map<const tidemark::graph::GraphConnection*, std::vector<Stretch>> stretches_;
};

/// The node's name and type as two texts for its head.
std::string headName(const sluice::graph::NodeBase& node);
std::string headType(const sluice::graph::NodeBase& node);

} // namespace tidemark::tool
