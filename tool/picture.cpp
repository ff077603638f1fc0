// SPDX-License-Identifier: Apache-2.0
// Places of nodes. Along the connections: in layers by the longest way from a source, each layer in
// the order that crosses little (by the mean places of neighbours, a few sweeps to and fro), as in
// the layered method of Sugiyama, Tagawa and Toda (1981).
#include "tool/picture.h"

#include <algorithm>
#include <numeric>

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

// Editors draw nodes smaller or larger than this picture, so the places are spread if need be.
bool Picture::placeAsStored(const Box& box) {
    constexpr std::size_t mostCompared = 5000;
    std::vector<Tuple2<float, float>> stored;
    double left = 0;
    double top = 0;
    for (const std::size_t child : box.inside) {
        const auto position = layout_.getPositionByNodeName(boxes_[child].node->getFullName());
        if (!position) return false;
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

std::vector<std::vector<std::size_t>>
Picture::layersOf(const Box& box, std::vector<std::vector<std::size_t>>& before,
                  std::vector<std::vector<std::size_t>>& after) {
    const std::size_t count = box.inside.size();
    std::unordered_map<const GraphNodeBase*, std::size_t> numbers;
    for (std::size_t i = 0; i < count; ++i) numbers[boxes_[box.inside[i]].node] = i;
    before.assign(count, {});
    after.assign(count, {});
    for (const GraphConnection* wire : box.wires) {
        const std::size_t source = numbers[wire->getSourceNode()];
        const std::size_t target = numbers[wire->getTargetNode()];
        if (source == target) continue;
        after[source].push_back(target);
        before[target].push_back(source);
    }
    // A node comes after all that it reads. In a ring of nodes, the first one that is met begins.
    std::vector<std::size_t> waiting(count);
    std::vector<std::size_t> ready;
    std::vector<std::size_t> depth(count, 0);
    std::vector<bool> isDone(count, false);
    for (std::size_t i = 0; i < count; ++i) {
        waiting[i] = before[i].size();
        if (waiting[i] == 0) ready.push_back(i);
    }
    std::vector<std::size_t> order;
    std::size_t next = 0;
    while (order.size() < count) {
        if (ready.empty()) {
            while (isDone[next]) ++next;
            ready.push_back(next);
        }
        const std::size_t node = ready.back();
        ready.pop_back();
        if (isDone[node]) continue;
        isDone[node] = true;
        order.push_back(node);
        for (const std::size_t target : after[node]) {
            if (isDone[target]) continue;
            depth[target] = std::max(depth[target], depth[node] + 1);
            if (--waiting[target] == 0) ready.push_back(target);
        }
    }
    // What reads nothing stands beside its first reader.
    for (const std::size_t node : order) {
        if (!before[node].empty() || after[node].empty()) continue;
        std::size_t nearest = count;
        for (const std::size_t target : after[node]) nearest = std::min(nearest, depth[target]);
        if (nearest > 0 && nearest < count) depth[node] = nearest - 1;
    }
    std::vector<std::vector<std::size_t>> layers;
    for (std::size_t i = 0; i < count; ++i) {
        if (layers.size() <= depth[i]) layers.resize(depth[i] + 1);
        layers[depth[i]].push_back(i);
    }
    layers.erase(std::remove_if(layers.begin(), layers.end(),
                                [](const auto& layer) { return layer.empty(); }),
                 layers.end());
    return layers;
}

void Picture::untangle(std::vector<std::vector<std::size_t>>& layers,
                       const std::vector<std::vector<std::size_t>>& before,
                       const std::vector<std::vector<std::size_t>>& after) const {
    std::vector<double> place(before.size(), 0);
    const auto note = [&](const std::vector<std::size_t>& layer) {
        for (std::size_t i = 0; i < layer.size(); ++i) {
            place[layer[i]] = static_cast<double>(i) / static_cast<double>(layer.size());
        }
    };
    for (const auto& layer : layers) note(layer);
    const auto sort = [&](std::vector<std::size_t>& layer,
                          const std::vector<std::vector<std::size_t>>& neighbours) {
        std::vector<std::pair<double, std::size_t>> wanted;
        for (const std::size_t node : layer) {
            double sum = 0;
            for (const std::size_t other : neighbours[node]) sum += place[other];
            const auto count = static_cast<double>(neighbours[node].size());
            wanted.emplace_back(count > 0 ? sum / count : place[node], node);
        }
        std::stable_sort(wanted.begin(), wanted.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        for (std::size_t i = 0; i < layer.size(); ++i) layer[i] = wanted[i].second;
        note(layer);
    };
    constexpr int sweeps = 4;
    for (int sweep = 0; sweep < sweeps; ++sweep) {
        for (std::size_t i = 1; i < layers.size(); ++i) sort(layers[i], before);
        for (std::size_t i = layers.size() - 1; i > 0; --i) sort(layers[i - 1], after);
    }
}

void Picture::placeLayers(const Box& box, const std::vector<std::vector<std::size_t>>& layers,
                          const std::vector<std::vector<std::size_t>>& before) {
    double x = 0;
    double top = 0;
    for (std::size_t i = 0; i < layers.size(); ++i) {
        double width = 0;
        double bottom = -1e30;
        for (const std::size_t number : layers[i]) {
            Box& node = boxes_[box.inside[number]];
            width = std::max(width, node.width);
            // On the height of what it reads, if there is room.
            double wanted = bottom > -1e29 ? bottom + rowGap : 0;
            if (!before[number].empty()) {
                double sum = 0;
                for (const std::size_t other : before[number]) {
                    const Box& source = boxes_[box.inside[other]];
                    sum += source.y + source.height / 2;
                }
                wanted = sum / static_cast<double>(before[number].size()) - node.height / 2;
            }
            node.x = x;
            node.y = std::max(wanted, bottom + rowGap);
            bottom = node.y + node.height;
            top = std::min(top, node.y);
        }
        x += width + columnGap;
    }
    for (const std::size_t child : box.inside) boxes_[child].y -= top;
}

void Picture::placeAlongWires(const Box& box) {
    std::vector<std::vector<std::size_t>> before;
    std::vector<std::vector<std::size_t>> after;
    std::vector<std::vector<std::size_t>> layers = layersOf(box, before, after);
    untangle(layers, before, after);
    placeLayers(box, layers, before);
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
    }
}

Picture::Point Picture::pinPlace(const Pin& pin) const {
    const Box* box = boxOf(pin.getParentGraphNodePtr());
    if (!box) return {0, 0};
    const auto* node = static_cast<const NodeBase*>(pin.getParentGraphNodePtr());
    const Array<Pin*>& pins = pin.isInput() ? node->getArrInputPin() : node->getArrOutputPin();
    const auto row =
        static_cast<double>(std::max<int64_t>(pins.indexOf(const_cast<Pin*>(&pin)), 0));
    return {pin.isInput() ? box->x : box->x + box->width,
            box->y + headHeight + row * rowHeight + rowHeight / 2 + 3};
}

} // namespace tidemark::tool
