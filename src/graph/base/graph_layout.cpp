// SPDX-License-Identifier: Apache-2.0
// The layout store.
#include "graph/base/graph_layout.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace tidemark::graph {

namespace {

template <typename Value>
void overlayValue(Optional<Value>& value, const Optional<Value>& other) {
    if (other) value = other;
}

TM_String pairText(const Tuple2<float, float>& pair) {
    return "(" + text::shortest(pair.first) + ", " + text::shortest(pair.second) + ")";
}

TM_String valueText(const Tuple2<float, float>& pair) { return pairText(pair); }

TM_String valueText(const Color4<float>& color) {
    return "(" + text::shortest(color.r) + ", " + text::shortest(color.g) + ", " +
           text::shortest(color.b) + ", " + text::shortest(color.a) + ")";
}

TM_String valueText(bool value) { return value ? "true" : "false"; }

template <typename Value>
void printValue(TM_String& out, const char* label, const Optional<Value>& value) {
    if (value) out += TM_String(" ") + label + " " + valueText(*value);
}

} // namespace

// --- tables ------------------------------------------------------------------------------------

void GraphLayout::NodeEntry::overlay(const NodeEntry& other) {
    overlayValue(position, other.position);
    overlayValue(color, other.color);
    overlayValue(collapsed, other.collapsed);
    overlayValue(visible, other.visible);
    overlayValue(horizontalInputs, other.horizontalInputs);
    overlayValue(horizontalOutputs, other.horizontalOutputs);
}

void GraphLayout::ConnectionEntry::overlay(const ConnectionEntry& other) {
    overlayValue(visible, other.visible);
    overlayValue(bezier, other.bezier);
}

template <typename Entry>
GraphLayout::Table<Entry>& GraphLayout::Table<Entry>::operator=(const Table& other) {
    if (this != &other) {
        clear();
        overlay(other);
    }
    return *this;
}

template <typename Entry>
Entry& GraphLayout::Table<Entry>::refOrMake(const TM_String& name) {
    const auto found = places_.find(name);
    if (found != places_.end()) return *found->second;
    Entry& entry = entries.emplace_back();
    entry.name = name;
    places_.emplace(entry.name, std::prev(entries.end()));
    return entry;
}

template <typename Entry>
const Entry* GraphLayout::Table<Entry>::find(const TM_String& name) const {
    const auto found = places_.find(name);
    return found == places_.end() ? nullptr : &*found->second;
}

template <typename Entry>
bool GraphLayout::Table<Entry>::remove(const TM_String& name) {
    const auto found = places_.find(name);
    if (found == places_.end()) return false;
    const auto place = found->second;
    places_.erase(found);
    entries.erase(place);
    return true;
}

template <typename Entry>
void GraphLayout::Table<Entry>::overlay(const Table& other) {
    for (const Entry& entry : other.entries) refOrMake(entry.name).overlay(entry);
}

template <typename Entry>
void GraphLayout::Table<Entry>::rename(const std::function<TM_String(const TM_String&)>& renamed) {
    std::list<Entry> before;
    before.swap(entries);
    places_.clear();
    for (const Entry& entry : before) refOrMake(renamed(entry.name)).overlay(entry);
}

template <typename Entry>
void GraphLayout::Table<Entry>::clear() {
    places_.clear();
    entries.clear();
}

// --- reading -----------------------------------------------------------------------------------

GraphLayout::GraphLayout(const GraphLayout& other) = default;

GraphLayout& GraphLayout::operator=(const GraphLayout& other) {
    nodes_ = other.nodes_;
    connections_ = other.connections_;
    notes_ = other.notes_;
    return *this;
}

template <typename Value>
Optional<Value> GraphLayout::nodeValue(const TM_String& name,
                                       Optional<Value> NodeEntry::*member) const {
    const NodeEntry* entry = nodes_.find(name);
    return entry ? entry->*member : Optional<Value>();
}

Optional<GraphLayout::Position> GraphLayout::getPositionByNodeName(const TM_String& name) const {
    return nodeValue(name, &NodeEntry::position);
}

Optional<GraphLayout::Color> GraphLayout::getColorByNodeName(const TM_String& name) const {
    return nodeValue(name, &NodeEntry::color);
}

Optional<bool> GraphLayout::getCollapsedByNodeName(const TM_String& name) const {
    return nodeValue(name, &NodeEntry::collapsed);
}

Optional<bool> GraphLayout::getVisibleByNodeName(const TM_String& name) const {
    return nodeValue(name, &NodeEntry::visible);
}

Optional<bool> GraphLayout::getHorizontalInputsByNodeName(const TM_String& name) const {
    return nodeValue(name, &NodeEntry::horizontalInputs);
}

Optional<bool> GraphLayout::getHorizontalOutputsByNodeName(const TM_String& name) const {
    return nodeValue(name, &NodeEntry::horizontalOutputs);
}

Optional<bool> GraphLayout::getVisibleByConnectionName(const TM_String& name) const {
    const ConnectionEntry* entry = connections_.find(name);
    return entry ? entry->visible : Optional<bool>();
}

Optional<bool> GraphLayout::getBezierByConnectionName(const TM_String& name) const {
    const ConnectionEntry* entry = connections_.find(name);
    return entry ? entry->bezier : Optional<bool>();
}

Optional<GraphLayout::Position> GraphLayout::getTopLeftCorner() const {
    Optional<Position> corner;
    const auto include = [&corner](const Position& position) {
        if (!corner) corner = position;
        corner->first = std::min(corner->first, position.first);
        corner->second = std::min(corner->second, position.second);
    };
    for (const NodeEntry& entry : nodes_.entries) {
        if (entry.position) include(*entry.position);
    }
    for (const NoteDesc& note : notes_) include(note.position);
    return corner;
}

void GraphLayout::getInvolvedNodeNames(Array<TM_String>& names) const {
    getAllNodeNames(names);
    std::unordered_set<std::string_view> known;
    for (const NoteDesc& note : notes_) {
        if (nodes_.find(note.parentNode)) continue;
        if (known.insert(note.parentNode).second) names.append(note.parentNode);
    }
}

void GraphLayout::getAllNodeNames(Array<TM_String>& names) const {
    for (const NodeEntry& entry : nodes_.entries) names.append(entry.name);
}

void GraphLayout::getAllConnectionNames(Array<TM_String>& names) const {
    for (const ConnectionEntry& entry : connections_.entries) names.append(entry.name);
}

void GraphLayout::printValues(TM_String& out) const {
    for (const NodeEntry& entry : nodes_.entries) {
        out += "node " + entry.name;
        printValue(out, "position", entry.position);
        printValue(out, "color", entry.color);
        printValue(out, "collapsed", entry.collapsed);
        printValue(out, "visible", entry.visible);
        printValue(out, "horizontal_inputs", entry.horizontalInputs);
        printValue(out, "horizontal_outputs", entry.horizontalOutputs);
        out += '\n';
    }
    for (const ConnectionEntry& entry : connections_.entries) {
        out += "connection " + entry.name;
        printValue(out, "visible", entry.visible);
        printValue(out, "bezier", entry.bezier);
        out += '\n';
    }
    for (const NoteDesc& note : notes_) {
        out += "note " + note.parentNode + " position " + pairText(note.position) + " size " +
               pairText(note.size) + " " + note.content + '\n';
    }
}

// --- writing -----------------------------------------------------------------------------------

void GraphLayout::insertNode(const TM_String& name, const Position& position, bool collapsed,
                             bool visible, bool horizontalInputs, bool horizontalOutputs) {
    NodeEntry& entry = nodes_.refOrMake(name);
    entry.position = position;
    entry.collapsed = collapsed;
    entry.visible = visible;
    entry.horizontalInputs = horizontalInputs;
    entry.horizontalOutputs = horizontalOutputs;
}

void GraphLayout::insertNode(const TM_String& name, const Position& position, const Color& color,
                             bool collapsed, bool visible, bool horizontalInputs,
                             bool horizontalOutputs) {
    insertNode(name, position, collapsed, visible, horizontalInputs, horizontalOutputs);
    insertNodeColor(name, color);
}

void GraphLayout::insertConnection(const TM_String& name, bool visible, bool bezier) {
    ConnectionEntry& entry = connections_.refOrMake(name);
    entry.visible = visible;
    entry.bezier = bezier;
}

void GraphLayout::insertNodePosition(const TM_String& name, const Position& position) {
    nodes_.refOrMake(name).position = position;
}

void GraphLayout::insertNodeColor(const TM_String& name, const Color& color) {
    nodes_.refOrMake(name).color = color;
}

void GraphLayout::insertNodeCollapsed(const TM_String& name, bool collapsed) {
    nodes_.refOrMake(name).collapsed = collapsed;
}

void GraphLayout::insertNodeVisible(const TM_String& name, bool visible) {
    nodes_.refOrMake(name).visible = visible;
}

void GraphLayout::insertNodeHorizontalInputs(const TM_String& name, bool horizontal) {
    nodes_.refOrMake(name).horizontalInputs = horizontal;
}

void GraphLayout::insertNodeHorizontalOutputs(const TM_String& name, bool horizontal) {
    nodes_.refOrMake(name).horizontalOutputs = horizontal;
}

void GraphLayout::insertConnectionVisible(const TM_String& name, bool visible) {
    connections_.refOrMake(name).visible = visible;
}

void GraphLayout::insertConnectionBezier(const TM_String& name, bool bezier) {
    connections_.refOrMake(name).bezier = bezier;
}

void GraphLayout::addNote(const TM_String& parentNode, const TM_String& content,
                          const Position& position, const Position& size, const Color& textColor,
                          const Color& backgroundColor) {
    addNote(NoteDesc{parentNode, content, position, size, textColor, backgroundColor});
}

void GraphLayout::addNote(const NoteDesc& note) { notes_.append(note); }

void GraphLayout::updateWithOther(const GraphLayout& other) {
    if (this == &other) return;
    nodes_.overlay(other.nodes_);
    connections_.overlay(other.connections_);
    for (const NoteDesc& note : other.notes_) addNote(note);
}

void GraphLayout::offset(const Position& delta) {
    const auto shift = [&delta](Position& position) {
        position.first += delta.first;
        position.second += delta.second;
    };
    for (NodeEntry& entry : nodes_.entries) {
        if (entry.position) shift(*entry.position);
    }
    for (NoteDesc& note : notes_) shift(note.position);
}

void GraphLayout::rename(const std::function<TM_String(const TM_String&)>& renamed) {
    nodes_.rename(renamed);
    connections_.rename(renamed);
    for (NoteDesc& note : notes_) note.parentNode = renamed(note.parentNode);
}

void GraphLayout::applyDictionary(const NameMap& names) {
    rename([&names](const TM_String& name) {
        const auto found = names.find(name);
        return found == names.end() ? name : found->second;
    });
}

void GraphLayout::replaceTxtInNames(const TM_String& before, const TM_String& after) {
    rename([&](const TM_String& name) { return text::replaceAll(name, before, after); });
}

void GraphLayout::replacePrefixInNames(const TM_String& before, const TM_String& after) {
    rename([&](const TM_String& name) {
        return name.starts_with(before) ? after + name.substr(before.size()) : name;
    });
}

void GraphLayout::moveNotes(const Array<NoteDesc>& notes, const TM_String& parent) {
    for (NoteDesc& note : notes_) {
        if (notes.contains(note)) note.parentNode = parent;
    }
}

bool GraphLayout::removeNode(const TM_String& name) { return nodes_.remove(name); }

bool GraphLayout::isEmpty() const {
    return nodes_.entries.empty() && connections_.entries.empty() && notes_.empty();
}

void GraphLayout::clear() {
    nodes_.clear();
    connections_.clear();
    notes_.reset();
}

} // namespace tidemark::graph
