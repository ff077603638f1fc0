// SPDX-License-Identifier: Apache-2.0
// A graph as boxes with places, ready to be written as a picture.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "graph/base/graph_layout.h"
#include "graph/graph_scene.h"

namespace tidemark::tool {

/// Sizes, in the units of the picture.
namespace picture {
constexpr double headHeight = 24;
constexpr double rowHeight = 18;
constexpr double padding = 10;
constexpr double frameMargin = 36;  ///< round what a compound holds, beside its own pins
constexpr double letterWidth = 6.4; ///< of the pins' text, on average
constexpr double columnGap = 70;    ///< between nodes that follow each other
constexpr double rowGap = 26;       ///< between nodes above each other
} // namespace picture

/// A node, or a compound with what it holds. Places are those of the picture.
struct Box {
    const sluice::graph::NodeBase* node = nullptr; ///< null for the whole picture
    double x = 0, y = 0, width = 0, height = 0;
    std::vector<std::size_t> inside; ///< boxes of the children
    /// Connections between the children: places of source and target in the scene's list.
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

private:
    std::size_t addBoxes(const tidemark::graph::GraphNodeBase& node);
    void addWires(const sluice::graph::SL_GraphScene& scene);
    void arrange(std::size_t box);
    void measure(Box& box) const;
    bool placeAsStored(const Box& box);
    void placeAlongWires(const Box& box);
    std::vector<std::vector<std::size_t>> layersOf(const Box& box,
                                                   std::vector<std::vector<std::size_t>>& before,
                                                   std::vector<std::vector<std::size_t>>& after);
    void untangle(std::vector<std::vector<std::size_t>>& layers,
                  const std::vector<std::vector<std::size_t>>& before,
                  const std::vector<std::vector<std::size_t>>& after) const;
    void placeLayers(const Box& box, const std::vector<std::vector<std::size_t>>& layers,
                     const std::vector<std::vector<std::size_t>>& before);
    void makeAbsolute();

    const tidemark::graph::GraphLayout& layout_;
    std::vector<Box> boxes_; // each before those inside it
    std::unordered_map<const tidemark::graph::GraphNodeBase*, std::size_t> places_;
};

/// The node's name and type as two texts for its head.
std::string headName(const sluice::graph::NodeBase& node);
std::string headType(const sluice::graph::NodeBase& node);

} // namespace tidemark::tool
