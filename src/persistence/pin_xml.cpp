// SPDX-License-Identifier: Apache-2.0
// The file form of a pin: the type text and the value text of an input, and its internal
// connections.
#include <boost/property_tree/ptree.hpp>

#include "bridge/host.h"
#include "core/specialization.h"
#include "graph/graph_node.h"
#include "graph/pin.h"
#include "persistence/tree_access.h"

namespace tidemark::sluice::graph {

namespace {

namespace message = bridge::message;

// Nothing of a real beyond the seventh digit is kept, as files have always been written.
constexpr int realPrecision = 7;

TM_String vectorText(const Vector3<float>& vector) {
    return text::format("%f,%f,%f", vector.x, vector.y, vector.z);
}

TM_String colorText(const Color4<float>& color) {
    return text::format("%f,%f,%f,%f", color.r, color.g, color.b, color.a);
}

// Unlike the rule of layouts: "no" counts as true, and what is no word for either as false.
bool bitFromText(const TM_String& value) {
    const TM_String word = text::toLower(value);
    for (const char* yes : {"true", "1", "enable", "enabled", "yes", "no"}) {
        if (word == yes) return true;
    }
    return false;
}

// The type text of an input, and its value text where there is one.
struct StoredValue {
    const char* type = "";
    Optional<TM_String> value;
};

StoredValue numberOf(const Pin& pin, int type) {
    switch (type) {
    case weft::typeReal:
        return {"real", text::general(pin.getFloatValue(), realPrecision)};
    case weft::typeInteger:
        return {"integer", std::to_string(pin.getIntValue())};
    case weft::typeInteger64:
        return {"integer64", std::to_string(pin.getInt64Value())};
    case weft::typeVector3:
        return {"vector3", vectorText(pin.getVector3Value())};
    case weft::typeColor4:
        return {"color4", colorText(pin.getColor4Value())};
    case weft::typeBit:
        return {"bit", pin.getBitValue() ? "true" : "false"};
    default:
        return {};
    }
}

// Types whose name is all that a file holds of them.
StoredValue bareTypeOf(int type) {
    const TM_String empty;
    switch (type) {
    case weft::typeMatrix4:
        return {"matrix4", empty};
    case weft::typeQuaternion:
        return {"quaternion", empty};
    case weft::typeParticles:
        return {"graph_particles", empty};
    case weft::typeBox:
        return {"axis_aligned_box3", empty};
    case weft::typeMesh:
        return {"mesh", empty};
    case weft::typeCondition:
        return {"condition", empty};
    case weft::typeParameterType:
        return {"parameter_type", empty};
    case weft::typePolymorphic:
        return {"polymorphic", empty};
    default:
        return {};
    }
}

StoredValue storedValueOf(const Pin& pin) {
    const int type = pin.getType();
    if (StoredValue number = numberOf(pin, type); number.value) return number;
    if (type == weft::typeFilePath) return {"file", pin.getStringValue()};
    if (type == weft::typeFolder) return {"folder", pin.getStringValue()};
    if (type == weft::typeString) return {"string", pin.getStringValue()};
    if (type == weft::typeList) return {"list", pin.getEnumValueAsString()};
    if (pin.isSluiceNodeType()) return {"sluice_node", pin.getSL_NodeValueAsStringForParameter()};
    return bareTypeOf(type);
}

// The readers answer false when the text has too few parts.

bool readVector(Pin& pin, const TM_String& value) {
    const Array<TM_String> parts = text::split(value, ",");
    if (parts.size() != 3) return false;
    pin.setVector3Value(
        {text::toFloat(parts[0]), text::toFloat(parts[1]), text::toFloat(parts[2])});
    return true;
}

bool readColor(Pin& pin, const TM_String& value) {
    const Array<TM_String> parts = text::split(value, ",");
    if (parts.size() < 3) return false;
    const float alpha = parts.size() > 3 ? text::toFloat(parts[3]) : 1.0f;
    pin.setColor4Value(
        {text::toFloat(parts[0]), text::toFloat(parts[1]), text::toFloat(parts[2]), alpha});
    return true;
}

void readHostNodes(Pin& pin, const TM_String& value) {
    if (pin.isSluiceNodeType()) pin.setSL_NodeValue(text::split(value, " "));
    pin.checkSL_NodeNamesIntegrity();
}

bool isTypeWithoutValue(const TM_String& type) {
    return type.empty() || type == "graph_particles" || type == "axis_aligned_box3" ||
           type == "polymorphic";
}

void reportUnknownType(const Pin& pin, const TM_String& type) {
    const GraphNodeBase* node = pin.getParentGraphNodePtr();
    const TM_String name = node ? node->getName() + "." + pin.getName() : pin.getName();
    bridge::CCallbackCenter::Instance().Post(message::unknownPinType, name, type);
}

// Numbers of 64 bits are read with 32, as files have always been read.
int64_t shortened(const TM_String& value) { return text::toInt32(value); }

bool readValue(Pin& pin, const TM_String& type, const TM_String& value) {
    if (type == "real") {
        pin.setFloatValue(text::toFloat(value));
    } else if (type == "bit") {
        pin.setBitValue(bitFromText(value));
    } else if (type == "integer") {
        pin.setIntValue(text::toInt32(value));
    } else if (type == "integer64") {
        pin.setInt64Value(shortened(value));
    } else if (type == "file" || type == "folder" || type == "string") {
        pin.setStringValue(value);
    } else if (type == "list") {
        pin.setEnumValue(value);
    } else if (type == "vector3") {
        return readVector(pin, value);
    } else if (type == "color4") {
        return readColor(pin, value);
    } else if (type == "sluice_node") {
        readHostNodes(pin, value);
    } else if (!isTypeWithoutValue(type)) {
        reportUnknownType(pin, type);
    }
    return true;
}

} // namespace

void Pin::write_toBoostPropertyTree(PropertyTree& tree) const {
    const StoredValue stored = storedValueOf(*this);
    tree.push_back({"name", PropertyTree(getName())});
    tree.push_back({"type", PropertyTree(stored.type)});
    if (stored.value) tree.push_back({"value", PropertyTree(*stored.value)});
    writeInternalConnections_toBoostPropertyTree(tree);
}

bool Pin::read_fromBoostPropertyTree(const PropertyTree& tree) {
    if (!readValue(*this, tree::childText(tree, "type"), tree::childText(tree, "value"))) {
        return false;
    }
    readInternalConnections_fromBoostPropertyTree(tree);
    return true;
}

void Pin::writeInternalConnections_toBoostPropertyTree(PropertyTree& tree) const {
    if (!hasInternalConnections()) return;
    ArrayOfPtr<GraphNodePin> outputs;
    internalConnections(outputs);
    PropertyTree& list = tree.push_back({"internal-connections", PropertyTree()})->second;
    for (const GraphNodePin* output : outputs) {
        list.push_back({"output", PropertyTree(output->getName())});
    }
}

void Pin::readInternalConnections_fromBoostPropertyTree(const PropertyTree& tree) {
    if (!isInput()) return;
    imported_.reset();
    const PropertyTree* list = tree::child(tree, "internal-connections");
    if (!list) return;
    tree::forEach(*list, "output",
                  [&](const PropertyTree& output) { imported_.ref().append(tree::text(output)); });
}

} // namespace tidemark::sluice::graph
