// SPDX-License-Identifier: Apache-2.0
// Places and sizes of nodes, the inner ones first.
#include "tool/picture.h"

#include <algorithm>
#include <cmath>

namespace tidemark::tool {

using sluice::graph::NodeBase;
using sluice::graph::Pin;
using tidemark::graph::GraphConnection;
using tidemark::graph::GraphNodeBase;
using namespace picture;

namespace {

double textWidth(const std::string& text, double perLetter) {
    const auto letters = std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xc0) != 0x80;
    });
    return static_cast<double>(std::min<std::ptrdiff_t>(letters, 40)) * perLetter;
}

double longestName(const Array<Pin*>& pins) {
    double longest = 0;
    for (const Pin* pin : pins) longest = std::max(longest, textWidth(pin->getName(), letterWidth));
    return longest;
}

/// Of the pin's middle, below the top of its box.
double pinHeight(const Pin& pin) {
    const auto* node = static_cast<const NodeBase*>(pin.getParentGraphNodePtr());
    const Array<Pin*>& pins = pin.isInput() ? node->getArrInputPin() : node->getArrOutputPin();
    const int64_t row = std::max<int64_t>(pins.indexOf(const_cast<Pin*>(&pin)), 0);
    return headHeight + static_cast<double>(row) * rowHeight + rowHeight / 2 + 3;
}

} // namespace

std::string headName(const NodeBase& node) { return node.getName(); }
std::string headType(const NodeBase& node) {
    return node.getType() == node.getName() ? std::string() : node.getType();
}

Picture::Picture(const sluice::graph::SL_GraphScene& scene, const graph::GraphLayout& layout)
    : layout_(layout) {
    addBoxes(*scene.getRootNode());
    boxes_[0].node = nullptr;
    addWires(scene);
    // Inner boxes come later in the list, and outer ones need their sizes.
    for (std::size_t box = boxes_.size(); box > 0; --box) arrange(box - 1);
    makeAbsolute();
}

const Box* Picture::boxOf(const GraphNodeBase* node) const {
    const auto found = places_.find(node);
    return found == places_.end() ? nullptr : &boxes_[found->second];
}

std::size_t Picture::addBoxes(const GraphNodeBase& top) {
    std::vector<std::pair<const GraphNodeBase*, std::size_t>> pending{{&top, 0}};
    for (std::size_t i = 0; i < pending.size(); ++i) {
        const auto [node, owner] = pending[i];
        const std::size_t place = boxes_.size();
        boxes_.emplace_back();
        boxes_[place].node = static_cast<const NodeBase*>(node);
        places_[node] = place;
        if (place != 0) boxes_[owner].inside.push_back(place);
        for (const GraphNodeBase* child : node->children()) pending.emplace_back(child, place);
    }
    return boxes_.size();
}

void Picture::addWires(const sluice::graph::SL_GraphScene& scene) {
    for (const GraphConnection* wire : scene.connections()) {
        const GraphNodeBase* source = wire->getSourceNode();
        const GraphNodeBase* target = wire->getTargetNode();
        if (!source || !target || source->getNodeOwner() != target->getNodeOwner()) continue;
        const auto owner = places_.find(source->getNodeOwner());
        if (owner != places_.end()) boxes_[owner->second].wires.push_back(wire);
    }
}

void Picture::measure(Box& box) const {
    if (!box.node) return;
    const double inputs = longestName(box.node->getArrInputPin());
    const double outputs = longestName(box.node->getArrOutputPin());
    const double head = textWidth(headName(*box.node), 7.4) +
                        textWidth(headType(*box.node), letterWidth) + 4 * padding;
    const uint32_t rows =
        std::max(box.node->getArrInputPin().size(), box.node->getArrOutputPin().size());
    const double pinsHeight = headHeight + rows * rowHeight + padding;
    const double pinsWidth = inputs + outputs + 4 * padding;
    if (box.inside.empty()) {
        box.width = std::max({head, pinsWidth, 90.0});
        box.height = pinsHeight;
        return;
    }
    double right = 0;
    double bottom = 0;
    for (const std::size_t child : box.inside) {
        right = std::max(right, boxes_[child].x + boxes_[child].width);
        bottom = std::max(bottom, boxes_[child].y + boxes_[child].height);
    }
    const double left = inputs + 2 * padding + frameMargin / 2;
    box.width = std::max(head, left + right + outputs + 2 * padding + frameMargin / 2);
    box.height = std::max(pinsHeight, headHeight + bottom + frameMargin);
}

// Children are placed from 0, 0.
void Picture::arrange(std::size_t index) {
    Box& box = boxes_[index];
    if (!box.inside.empty() && !placeAsStored(box)) placeAlongWires(box);
    if (box.node) return measure(box);
    for (const std::size_t child : box.inside) {
        box.width = std::max(box.width, boxes_[child].x + boxes_[child].width);
        box.height = std::max(box.height, boxes_[child].y + boxes_[child].height);
    }
}

namespace {

bool anyCovers(std::vector<const Box*> boxes) {
    std::sort(boxes.begin(), boxes.end(), [](const Box* a, const Box* b) { return a->x < b->x; });
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const Box& a = *boxes[i];
        for (std::size_t k = i + 1; k < boxes.size() && boxes[k]->x < a.x + a.width; ++k) {
            const Box& b = *boxes[k];
            if (a.y < b.y + b.height && b.y < a.y + a.height) return true;
        }
    }
    return false;
}

} // namespace

namespace {

/// A place that a picture can hold: files may say anything.
bool isSane(float coordinate) {
    constexpr float farthest = 1e6f;
    return std::isfinite(coordinate) && std::abs(coordinate) <= farthest;
}

} // namespace

// Editors draw nodes smaller or larger than this picture, so the places are spread if need be.
bool Picture::placeAsStored(const Box& box) {
    constexpr std::size_t mostCompared = 5000;
    std::vector<Tuple2<float, float>> stored;
    double left = 0;
    double top = 0;
    for (const std::size_t child : box.inside) {
        const auto position = layout_.getPositionByNodeName(boxes_[child].node->getFullName());
        if (!position || !isSane(position->first) || !isSane(position->second)) return false;
        left = stored.empty() ? position->first : std::min<double>(left, position->first);
        top = stored.empty() ? position->second : std::min<double>(top, position->second);
        stored.push_back(*position);
    }
    for (const double spread : {1.0, 1.5, 2.0, 3.0}) {
        std::vector<const Box*> placed;
        for (std::size_t i = 0; i < stored.size(); ++i) {
            Box& child = boxes_[box.inside[i]];
            child.x = (stored[i].first - left) * spread;
            child.y = (stored[i].second - top) * spread;
            placed.push_back(&child);
        }
        if (placed.size() > mostCompared || !anyCovers(placed)) return true;
    }
    return false;
}

void Picture::placeAlongWires(const Box& box) {
    std::vector<LayeredItem> items;
    std::unordered_map<const GraphNodeBase*, std::size_t> numbers;
    for (const std::size_t child : box.inside) {
        numbers[boxes_[child].node] = items.size();
        items.push_back({boxes_[child].width, boxes_[child].height});
    }
    std::vector<LayeredWire> wires;
    for (const GraphConnection* wire : box.wires) {
        const auto* source = static_cast<const Pin*>(wire->getSourcePin());
        const auto* target = static_cast<const Pin*>(wire->getTargetPin());
        wires.push_back({numbers[wire->getSourceNode()], numbers[wire->getTargetNode()],
                         pinHeight(*source), pinHeight(*target)});
    }
    placeInLayers(items, wires);
    for (std::size_t i = 0; i < items.size(); ++i) {
        boxes_[box.inside[i]].x = items[i].x;
        boxes_[box.inside[i]].y = items[i].y;
    }
    for (std::size_t i = 0; i < wires.size(); ++i) {
        if (!wires[i].stretches.empty()) stretches_[box.wires[i]] = std::move(wires[i].stretches);
    }
}

void Picture::makeAbsolute() {
    boxes_[0].x = boxes_[0].y = 0;
    for (const Box& box : boxes_) {
        const double left =
            box.node ? longestName(box.node->getArrInputPin()) + 2 * padding + frameMargin / 2 : 0;
        const double top = box.node ? headHeight + frameMargin / 2 : 0;
        for (const std::size_t child : box.inside) {
            boxes_[child].x += box.x + left;
            boxes_[child].y += box.y + top;
        }
        if (stretches_.empty()) continue;
        for (const GraphConnection* wire : box.wires) {
            const auto found = stretches_.find(wire);
            if (found == stretches_.end()) continue;
            for (Stretch& stretch : found->second) {
                stretch.x += box.x + left;
                stretch.y += box.y + top;
            }
        }
    }
}

Picture::Point Picture::pinPlace(const Pin& pin) const {
    const Box* box = boxOf(pin.getParentGraphNodePtr());
    if (!box) return {0, 0};
    return {pin.isInput() ? box->x : box->x + box->width, box->y + pinHeight(pin)};
}

const std::vector<Stretch>& Picture::stretchesOf(const GraphConnection* wire) const {
    static const std::vector<Stretch> none;
    const auto found = stretches_.find(wire);
    return found == stretches_.end() ? none : found->second;
}

} // namespace tidemark::tool
