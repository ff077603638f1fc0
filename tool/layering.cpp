// SPDX-License-Identifier: Apache-2.0
// The layered method of Sugiyama, Tagawa and Toda ("Methods for Visual Understanding of
// Hierarchical System Structures", 1981): layers by the longest way from a source, in each the
// order that crosses little, by the mean places of neighbours. Heights then follow the wires as far
// as the order allows, by averaging of blocks as in isotonic regression.
#include "tool/layering.h"

#include <algorithm>
#include <cmath>

namespace tidemark::tool {

namespace {

constexpr double columnGap = 70; // between layers
constexpr double rowGap = 26;    // between items above each other
constexpr double wireGap = 10;   // round a wire that passes

/// A neighbour, and how much lower its end of the wire is than the own one.
struct Link {
    std::size_t other;
    double drop;
};
using Links = std::vector<std::vector<Link>>;
using Layers = std::vector<std::vector<std::size_t>>;

/// The work on one network. Spots are the items and, behind them, the places where wires pass.
class Layering {
public:
    Layering(std::vector<LayeredItem>& items, std::vector<LayeredWire>& wires)
        : items_(items), wires_(wires) {}

    void place() {
        findDepths();
        makeLayers();
        passLayers();
        for (std::size_t i = 0; i < depth_.size(); ++i) {
            place_.push_back(0);
            y_.push_back(0);
        }
        untangle();
        settle();
        answer();
    }

private:
    double heightOf(std::size_t spot) const {
        return spot < items_.size() ? items_[spot].height : 0;
    }
    double gapBetween(std::size_t a, std::size_t b) const {
        return a < items_.size() && b < items_.size() ? rowGap : wireGap;
    }
    void link(std::size_t source, std::size_t target, double sourceHeight, double targetHeight) {
        after_[source].push_back({target, targetHeight - sourceHeight});
        before_[target].push_back({source, sourceHeight - targetHeight});
    }

    void findDepths();
    void pullSources(const std::vector<std::size_t>& order);
    void makeLayers();
    void passLayers();
    void untangle();
    void sortLayer(std::vector<std::size_t>& layer, const Links& links);
    void notePlaces(const std::vector<std::size_t>& layer);
    void settle();
    void settleLayer(const std::vector<std::size_t>& layer, const Links& links);
    void answer();
    void placeLoose(double top, double width);

    std::vector<LayeredItem>& items_;
    std::vector<LayeredWire>& wires_;
    Links before_, after_;
    std::vector<bool> isWired_;
    std::vector<std::size_t> depth_;
    Layers layers_;
    std::vector<double> place_; // in its layer, from 0 to 1
    std::vector<double> y_;
    std::vector<std::vector<std::size_t>> passing_; // spots of each wire
};

// An item comes after all that it reads. In a ring, the first one that is met begins.
void Layering::findDepths() {
    const std::size_t count = items_.size();
    before_.assign(count, {});
    after_.assign(count, {});
    isWired_.assign(count, false);
    for (const LayeredWire& wire : wires_) {
        if (wire.source == wire.target) continue;
        link(wire.source, wire.target, 0, 0);
        isWired_[wire.source] = isWired_[wire.target] = true;
    }
    depth_.assign(count, 0);
    std::vector<std::size_t> waiting(count);
    std::vector<std::size_t> ready;
    std::vector<bool> isDone(count, false);
    for (std::size_t i = count; i > 0; --i) {
        waiting[i - 1] = before_[i - 1].size();
        if (waiting[i - 1] == 0) ready.push_back(i - 1);
    }
    std::vector<std::size_t> order;
    for (std::size_t next = 0; order.size() < count;) {
        if (ready.empty()) {
            while (isDone[next]) ++next;
            ready.push_back(next);
        }
        const std::size_t item = ready.back();
        ready.pop_back();
        if (isDone[item]) continue;
        isDone[item] = true;
        order.push_back(item);
        for (const Link& reader : after_[item]) {
            if (isDone[reader.other]) continue;
            depth_[reader.other] = std::max(depth_[reader.other], depth_[item] + 1);
            if (--waiting[reader.other] == 0) ready.push_back(reader.other);
        }
    }
    pullSources(order);
}

// What reads nothing stands beside its first reader.
void Layering::pullSources(const std::vector<std::size_t>& order) {
    for (const std::size_t item : order) {
        if (!before_[item].empty() || after_[item].empty()) continue;
        std::size_t nearest = items_.size();
        for (const Link& reader : after_[item]) nearest = std::min(nearest, depth_[reader.other]);
        if (nearest > 0) depth_[item] = nearest - 1;
    }
}

void Layering::makeLayers() {
    for (std::size_t item = 0; item < items_.size(); ++item) {
        if (!isWired_[item]) continue;
        if (layers_.size() <= depth_[item]) layers_.resize(depth_[item] + 1);
        layers_[depth_[item]].push_back(item);
    }
    std::vector<std::size_t> numbers(layers_.size(), 0);
    std::size_t used = 0;
    for (std::size_t i = 0; i < layers_.size(); ++i)
        numbers[i] = layers_[i].empty() ? used : used++;
    for (std::size_t item = 0; item < items_.size(); ++item) {
        if (isWired_[item]) depth_[item] = numbers[depth_[item]];
    }
    layers_.erase(std::remove_if(layers_.begin(), layers_.end(),
                                 [](const auto& layer) { return layer.empty(); }),
                  layers_.end());
}

/// Gives wires that skip layers a spot in each of them, and links the heights of their ends.
void Layering::passLayers() {
    std::size_t spots = 0;
    for (const LayeredWire& wire : wires_) {
        if (depth_[wire.target] > depth_[wire.source]) {
            spots += depth_[wire.target] - depth_[wire.source] - 1;
        }
    }
    const bool tooMany = spots > 4 * items_.size() + 1000;
    before_.assign(items_.size(), {});
    after_.assign(items_.size(), {});
    passing_.assign(wires_.size(), {});
    for (std::size_t i = 0; i < wires_.size(); ++i) {
        const LayeredWire& wire = wires_[i];
        if (depth_[wire.target] <= depth_[wire.source]) continue; // leads back
        std::size_t from = wire.source;
        double height = wire.sourceHeight;
        for (std::size_t d = depth_[wire.source] + 1; !tooMany && d < depth_[wire.target]; ++d) {
            const std::size_t spot = depth_.size();
            depth_.push_back(d);
            before_.emplace_back();
            after_.emplace_back();
            layers_[d].push_back(spot);
            passing_[i].push_back(spot);
            link(from, spot, height, 0);
            from = spot;
            height = 0;
        }
        link(from, wire.target, height, wire.targetHeight);
    }
}

void Layering::notePlaces(const std::vector<std::size_t>& layer) {
    for (std::size_t i = 0; i < layer.size(); ++i) {
        place_[layer[i]] = static_cast<double>(i) / static_cast<double>(layer.size());
    }
}

void Layering::sortLayer(std::vector<std::size_t>& layer, const Links& links) {
    // A wire's place is its item's, finer by how far down the item it ends.
    constexpr double perUnit = 1e-6;
    std::vector<std::pair<double, std::size_t>> wanted;
    wanted.reserve(layer.size());
    for (const std::size_t spot : layer) {
        double sum = 0;
        for (const Link& link : links[spot]) sum += place_[link.other] + link.drop * perUnit;
        const auto count = static_cast<double>(links[spot].size());
        wanted.emplace_back(count > 0 ? sum / count : place_[spot], spot);
    }
    std::stable_sort(wanted.begin(), wanted.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (std::size_t i = 0; i < layer.size(); ++i) layer[i] = wanted[i].second;
    notePlaces(layer);
}

void Layering::untangle() {
    constexpr int sweeps = 4;
    for (const auto& layer : layers_) notePlaces(layer);
    for (int sweep = 0; sweep < sweeps; ++sweep) {
        for (std::size_t i = 1; i < layers_.size(); ++i) sortLayer(layers_[i], before_);
        for (std::size_t i = layers_.size(); i > 1; --i) sortLayer(layers_[i - 2], after_);
    }
    for (std::size_t i = 1; i < layers_.size(); ++i) sortLayer(layers_[i], before_);
}

/// Each spot as near to the mean height of its neighbours as the order and the gaps allow: spots
/// that would overlap move together, as one block.
void Layering::settleLayer(const std::vector<std::size_t>& layer, const Links& links) {
    struct Block {
        double sum;
        double count;
        std::size_t first;
    };
    std::vector<Block> blocks;
    std::vector<double> offset(layer.size(), 0); // in a layer packed from the top
    for (std::size_t i = 0; i < layer.size(); ++i) {
        const std::size_t spot = layer[i];
        if (i > 0) {
            offset[i] = offset[i - 1] + heightOf(layer[i - 1]) + gapBetween(layer[i - 1], spot);
        }
        double wanted = 0;
        for (const Link& link : links[spot]) wanted += y_[link.other] + link.drop;
        const auto count = static_cast<double>(links[spot].size());
        wanted = count > 0 ? wanted / count : y_[spot];
        blocks.push_back({wanted - offset[i], 1, i});
        while (blocks.size() > 1) {
            Block& above = blocks[blocks.size() - 2];
            const Block& last = blocks.back();
            if (above.sum / above.count <= last.sum / last.count) break;
            above.sum += last.sum;
            above.count += last.count;
            blocks.pop_back();
        }
    }
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        const std::size_t end = b + 1 < blocks.size() ? blocks[b + 1].first : layer.size();
        for (std::size_t i = blocks[b].first; i < end; ++i) {
            y_[layer[i]] = blocks[b].sum / blocks[b].count + offset[i];
        }
    }
}

void Layering::settle() {
    constexpr int rounds = 3;
    for (const auto& layer : layers_) {
        double y = 0;
        for (const std::size_t spot : layer) {
            y_[spot] = y;
            y += heightOf(spot) + rowGap;
        }
    }
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = layers_.size(); i > 1; --i) settleLayer(layers_[i - 2], after_);
        for (std::size_t i = 1; i < layers_.size(); ++i) settleLayer(layers_[i], before_);
    }
    // Sources stand where their readers are; the others have followed already.
    for (std::size_t i = layers_.size(); i > 1; --i) settleLayer(layers_[i - 2], after_);
}

void Layering::answer() {
    double top = 1e300;
    double bottom = 0;
    for (const auto& layer : layers_) {
        for (const std::size_t spot : layer) top = std::min(top, y_[spot]);
    }
    std::vector<double> left(layers_.size());
    std::vector<double> width(layers_.size(), 0);
    double x = 0;
    for (std::size_t i = 0; i < layers_.size(); ++i) {
        left[i] = x;
        for (const std::size_t spot : layers_[i]) {
            y_[spot] -= top;
            bottom = std::max(bottom, y_[spot] + heightOf(spot));
            if (spot >= items_.size()) continue;
            width[i] = std::max(width[i], items_[spot].width);
            items_[spot].x = x;
            items_[spot].y = y_[spot];
        }
        x += width[i] + columnGap;
    }
    for (std::size_t i = 0; i < wires_.size(); ++i) {
        for (const std::size_t spot : passing_[i]) {
            wires_[i].stretches.push_back({left[depth_[spot]], y_[spot], width[depth_[spot]]});
        }
    }
    placeLoose(layers_.empty() ? 0 : bottom + rowGap, x - columnGap);
}

/// Rows about as wide as all the rest, or as they are high.
void Layering::placeLoose(double top, double width) {
    double area = 0;
    for (std::size_t item = 0; item < items_.size(); ++item) {
        if (isWired_[item]) continue;
        area += (items_[item].width + rowGap) * (items_[item].height + rowGap);
    }
    width = std::max(width, 1.3 * std::sqrt(area));
    double x = 0;
    double y = top;
    double rowHeight = 0;
    for (std::size_t item = 0; item < items_.size(); ++item) {
        if (isWired_[item]) continue;
        LayeredItem& loose = items_[item];
        if (x > 0 && x + loose.width > width) {
            x = 0;
            y += rowHeight + rowGap;
            rowHeight = 0;
        }
        loose.x = x;
        loose.y = y;
        x += loose.width + rowGap;
        rowHeight = std::max(rowHeight, loose.height);
    }
}

} // namespace

void placeInLayers(std::vector<LayeredItem>& items, std::vector<LayeredWire>& wires) {
    Layering(items, wires).place();
}

} // namespace tidemark::tool
