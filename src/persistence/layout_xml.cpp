// SPDX-License-Identifier: Apache-2.0
// Layouts in files: text forms, readers and writers.
#include <boost/property_tree/ptree.hpp>

#include "bridge/host.h"
#include "graph/base/graph_node_base.h"
#include "persistence/graph_parsing_helper.h"
#include "persistence/scene_files.h"
#include "persistence/tree_access.h"
#include "persistence/xml_document.h"

namespace tidemark::sluice::graph {

using tidemark::graph::GraphNodeBase;
using tidemark::graph::NoteDesc;
using Helper = GraphParsingHelper;
using Position = Tuple2<float, float>;

// Text forms.

TM_String GraphParsingHelper::tuple2_FLOAT_asString(const Position& value) {
    return text::format("%f,%f", value.first, value.second);
}

Optional<Position> GraphParsingHelper::convertTo_Tuple2_FLOAT(const TM_String& text) {
    const Array<TM_String> parts = text::split(text, ",");
    if (parts.size() != 2) return {};
    return Position{text::toFloat(parts[0]), text::toFloat(parts[1])};
}

TM_String GraphParsingHelper::color4F_asString3(const Color4<float>& color) {
    return text::format("%f,%f,%f", color.r, color.g, color.b);
}

TM_String GraphParsingHelper::color4F_asString4(const Color4<float>& color) {
    return text::format("%f,%f,%f,%f", color.r, color.g, color.b, color.a);
}

Optional<Color4<float>> GraphParsingHelper::convertTo_Color4F(const TM_String& text, int count) {
    const Array<TM_String> parts = text::split(text, ",");
    if (count < 3 || parts.size() != static_cast<uint32_t>(count)) return {};
    const float alpha = count == 4 ? text::toFloat(parts[3]) : 1.0f;
    return Color4<float>(text::toFloat(parts[0]), text::toFloat(parts[1]), text::toFloat(parts[2]),
                         alpha);
}

TM_String GraphParsingHelper::bool_asString(bool value) { return value ? "true" : "false"; }

Optional<bool> GraphParsingHelper::convertTo_Bool(const TM_String& text) {
    const TM_String word = text::toLower(text);
    for (const char* yes : {"true", "yes", "enable", "enabled", "on", "1"}) {
        if (word == yes) return true;
    }
    for (const char* no : {"false", "no", "disabled", "off", "0"}) {
        if (word == no) return false;
    }
    return {};
}

// Children of an element.

namespace {

void reportBadValue(const TM_String& key, const TM_String& context) {
    bridge::CCallbackCenter& center = bridge::CCallbackCenter::Instance();
    if (context.empty()) {
        center.Post(bridge::message::badLayoutValue, key);
    } else {
        center.Post(bridge::message::badLayoutValueOf, context, key);
    }
}

template <typename Convert>
auto readChild(const PropertyTree& element, const TM_String& key, const TM_String& context,
               Convert convert) -> decltype(convert(key)) {
    const PropertyTree* child = tree::child(element, key.c_str());
    if (!child) return {};
    auto value = convert(tree::text(*child));
    if (!value) reportBadValue(key, context);
    return value;
}

} // namespace

Optional<Position> GraphParsingHelper::readTuple2_FLOAT_fromBoostPropertyTree(
    const PropertyTree& element, const TM_String& key, const TM_String& context) {
    return readChild(element, key, context, convertTo_Tuple2_FLOAT);
}

Optional<bool> GraphParsingHelper::readBool_fromBoostPropertyTree(const PropertyTree& element,
                                                                  const TM_String& key,
                                                                  const TM_String& context) {
    return readChild(element, key, context, convertTo_Bool);
}

Optional<TM_String> GraphParsingHelper::readStr_fromBoostPropertyTree(const PropertyTree& element,
                                                                      const TM_String& key,
                                                                      const TM_String& context) {
    return readChild(element, key, context,
                     [](const TM_String& text) { return Optional<TM_String>(text); });
}

Optional<Color4<float>> GraphParsingHelper::readColor_fromBoostPropertyTree(
    const PropertyTree& element, const TM_String& key, int count, const TM_String& context) {
    return readChild(element, key, context,
                     [&](const TM_String& text) { return convertTo_Color4F(text, count); });
}

// Readers.

namespace {

const PropertyTree* layoutList(const PropertyTree& document, const char* list) {
    const PropertyTree* scene = tree::child(document, "scene");
    const PropertyTree* layout = scene ? tree::child(*scene, "layout") : nullptr;
    return layout ? tree::child(*layout, list) : nullptr;
}

void readNode(const PropertyTree& node, GraphLayout& layout) {
    const TM_String& name = tree::childText(node, "name");
    if (name.empty()) return;
    if (const auto value = Helper::readTuple2_FLOAT_fromBoostPropertyTree(node, "position", name)) {
        layout.insertNodePosition(name, *value);
    }
    if (const auto value = Helper::readColor_fromBoostPropertyTree(node, "color", 3, name)) {
        layout.insertNodeColor(name, *value);
    }
    if (const auto value = Helper::readBool_fromBoostPropertyTree(node, "collapsed", name)) {
        layout.insertNodeCollapsed(name, *value);
    }
    if (const auto value =
            Helper::readBool_fromBoostPropertyTree(node, "horizontal_inputs", name)) {
        layout.insertNodeHorizontalInputs(name, *value);
    }
    if (const auto value =
            Helper::readBool_fromBoostPropertyTree(node, "horizontal_outputs", name)) {
        layout.insertNodeHorizontalOutputs(name, *value);
    }
}

// "bezier" goes where "visible" goes, as files have always been read.
void readConnection(const PropertyTree& connection, GraphLayout& layout) {
    const TM_String& name = tree::childText(connection, "name");
    if (name.empty()) return;
    for (const char* key : {"visible", "bezier"}) {
        if (const auto value = Helper::readBool_fromBoostPropertyTree(connection, key, name)) {
            layout.insertConnectionVisible(name, *value);
        }
    }
}

void readNote(const PropertyTree& element, GraphLayout& layout) {
    const TM_String none;
    NoteDesc note;
    note.parentNode = tree::childText(element, "parentNode");
    note.content = tree::childText(element, "content");
    const auto position = Helper::readTuple2_FLOAT_fromBoostPropertyTree(element, "position", none);
    const auto size = Helper::readTuple2_FLOAT_fromBoostPropertyTree(element, "size", none);
    const auto textColor = Helper::readColor_fromBoostPropertyTree(element, "textColor", 3, none);
    const auto background =
        Helper::readColor_fromBoostPropertyTree(element, "backgroundColor", 4, none);
    note.position = position.value_or(note.position);
    note.size = size.value_or(note.size);
    note.textColor = textColor.value_or(note.textColor);
    note.backgroundColor = background.value_or(note.backgroundColor);
    layout.addNote(note);
}

template <typename Read>
bool readList(const PropertyTree& document, const char* list, const char* item, GraphLayout& layout,
              Read read) {
    const PropertyTree* elements = layoutList(document, list);
    if (!elements) return false;
    tree::forEach(*elements, item, [&](const PropertyTree& element) { read(element, layout); });
    return true;
}

} // namespace

bool GraphParsingHelper::readNodesLayout_fromBoostPropertyTree(const PropertyTree& document,
                                                               GraphLayout& layout) {
    return readList(document, "nodes", "node", layout, readNode);
}

bool GraphParsingHelper::readConnectionsLayout_fromBoostPropertyTree(const PropertyTree& document,
                                                                     GraphLayout& layout) {
    return readList(document, "connections", "connection", layout, readConnection);
}

bool GraphParsingHelper::readNotesLayout_fromBoostPropertyTree(const PropertyTree& document,
                                                               GraphLayout& layout) {
    return readList(document, "notes", "note", layout, readNote);
}

bool GraphParsingHelper::readLayout_XML(const PropertyTree& document, GraphLayout& layout) {
    const bool nodes = readNodesLayout_fromBoostPropertyTree(document, layout);
    const bool connections = readConnectionsLayout_fromBoostPropertyTree(document, layout);
    const bool notes = readNotesLayout_fromBoostPropertyTree(document, layout);
    return nodes || connections || notes;
}

bool GraphParsingHelper::readLayout_XML(const TM_String& path, GraphLayout& layout) {
    PropertyTree document;
    return XML_fileToPropertyTree(path, document) && readLayout_XML(document, layout);
}

bool GraphParsingHelper::readLayout_XML_fromString(const TM_String& text, GraphLayout& layout) {
    PropertyTree document;
    return XML_stringToPropertyTree(text, document) && readLayout_XML(document, layout);
}

void GraphParsingHelper::readLayoutOf(const PropertyTree& document, const SL_GraphScene& scene,
                                      GraphLayout& layout) {
    layout.clear();
    readLayout_XML(document, layout);
    layout.updateWithOther(scene.getXmlImportedLayout());
    layout.applyDictionary(scene.getXmlToImportedName());
}

// Writers.

namespace {

PropertyTree& append(PropertyTree& tree, const char* name) {
    return tree.push_back({name, PropertyTree()})->second;
}

void appendText(PropertyTree& tree, const char* name, const TM_String& text) {
    tree.push_back({name, PropertyTree(text)});
}

void appendBool(PropertyTree& tree, const char* name, const Optional<bool>& value) {
    if (value) appendText(tree, name, Helper::bool_asString(*value));
}

// Nothing when the layout has no value for the node.
void appendNode(PropertyTree& list, const GraphLayout& layout, const TM_String& name,
                const TM_String& writtenName) {
    PropertyTree values;
    if (const auto position = layout.getPositionByNodeName(name)) {
        appendText(values, "position", Helper::tuple2_FLOAT_asString(*position));
    }
    if (const auto color = layout.getColorByNodeName(name)) {
        appendText(values, "color", Helper::color4F_asString3(*color));
    }
    appendBool(values, "collapsed", layout.getCollapsedByNodeName(name));
    appendBool(values, "horizontal_inputs", layout.getHorizontalInputsByNodeName(name));
    appendBool(values, "horizontal_outputs", layout.getHorizontalOutputsByNodeName(name));
    if (values.empty()) return;
    values.push_front({"name", PropertyTree(writtenName)});
    append(list, "node").swap(values);
}

} // namespace

void GraphParsingHelper::writeNodeLayout_toBoostPropertyTree(PropertyTree& element,
                                                             const ArrayOfPtr<GraphNodeBase>& nodes,
                                                             const GraphLayout& layout) {
    PropertyTree& list = append(element, "nodes");
    for (const GraphNodeBase* top : nodes) {
        const GraphNodeBase* owner = top->getNodeOwner();
        const TM_String above = owner ? owner->getFullName() : TM_String("root");
        ArrayOfPtr<GraphNodeBase> below;
        top->getNodesRecursively(below);
        const TM_String topName = top->getFullName();
        appendNode(list, layout, topName, relativeName(topName, above));
        for (const GraphNodeBase* node : below) {
            const TM_String name = node->getFullName();
            appendNode(list, layout, name, relativeName(name, above));
        }
    }
}

void GraphParsingHelper::writeNodesLayoutBasic_toBoostPropertyTree(PropertyTree& element,
                                                                   const GraphLayout& layout) {
    PropertyTree& list = append(element, "nodes");
    Array<TM_String> names;
    layout.getAllNodeNames(names);
    for (const TM_String& name : names) appendNode(list, layout, name, name);
}

void GraphParsingHelper::writeConnectionsLayoutBasic_toBoostPropertyTree(
    PropertyTree& element, const GraphLayout& layout) {
    PropertyTree& list = append(element, "connections");
    Array<TM_String> names;
    layout.getAllConnectionNames(names);
    for (const TM_String& name : names) appendText(append(list, "connection"), "name", name);
}

void GraphParsingHelper::writeNotesLayoutBasic_toBoostPropertyTree(PropertyTree& element,
                                                                   const GraphLayout& layout) {
    PropertyTree& list = append(element, "notes");
    for (const NoteDesc& note : layout.notes()) {
        PropertyTree& written = append(list, "note");
        appendText(written, "parentNode", note.parentNode);
        appendText(written, "content", note.content);
        appendText(written, "position", tuple2_FLOAT_asString(note.position));
        appendText(written, "size", tuple2_FLOAT_asString(note.size));
        appendText(written, "textColor", color4F_asString3(note.textColor));
        appendText(written, "backgroundColor", color4F_asString4(note.backgroundColor));
    }
}

void GraphParsingHelper::writeNotesLayout_toBoostPropertyTree(PropertyTree& element,
                                                              const GraphLayout& layout) {
    writeNotesLayoutBasic_toBoostPropertyTree(element, layout);
}

void GraphParsingHelper::writeLayout_toBoostPropertyTree(PropertyTree& scene,
                                                         const SL_GraphScene& graph,
                                                         const GraphLayout& layout) {
    PropertyTree& element = append(scene, "layout");
    writeNodeLayout_toBoostPropertyTree(element, {graph.getRootNode()}, layout);
    writeNotesLayout_toBoostPropertyTree(element, layout);
}

void GraphParsingHelper::writeLayoutBasic_toBoostPropertyTree(PropertyTree& scene,
                                                              const GraphLayout& layout) {
    PropertyTree& element = append(scene, "layout");
    writeNodesLayoutBasic_toBoostPropertyTree(element, layout);
    writeConnectionsLayoutBasic_toBoostPropertyTree(element, layout);
    writeNotesLayoutBasic_toBoostPropertyTree(element, layout);
}

} // namespace tidemark::sluice::graph
