// SPDX-License-Identifier: Apache-2.0
// Pins: typed access to values.
#include "core/bit_array.h"
#include "core/enum_value.h"
#include "core/host_node_value.h"
#include "core/numeric.h"
#include "core/string_value.h"
#include "graph/graph_scene.h"
#include "graph/pin.h"

namespace tidemark::sluice::graph {

using weft::BitArrayValue;
using weft::Enum;
using weft::HostNodeValue;
using weft::Numeric;
using weft::StringValue;
using weft::Value;

Value* Pin::value() const { return attribute_ ? attribute_->writeTarget() : nullptr; }

Numeric* Pin::numeric() const { return weft::valueAs<Numeric>(value()); }
Enum* Pin::enumeration() const {
    return hasType(weft::typeList) ? weft::valueAs<Enum>(value()) : nullptr;
}
HostNodeValue* Pin::hostNodes() const {
    return isSluiceNodeType() ? dynamic_cast<HostNodeValue*>(value()) : nullptr;
}

template <typename T>
void Pin::setNumber(const T& number) {
    Numeric* target = numeric();
    if (!target) return;
    target->setValue<T>(number);
    attribute_->valueChanged();
}

template <typename T>
T Pin::getNumber() const {
    const Numeric* target = numeric();
    return target ? target->value<T>() : ElementDefault<T>::value();
}

void Pin::setFloatValue(float value) {
    if (hasType(weft::typeReal)) setNumber(value);
}
float Pin::getFloatValue() const { return hasType(weft::typeReal) ? getNumber<float>() : 0.0f; }

void Pin::setIntValue(int value) {
    if (getType() == weft::typeList) return setEnumValue(value);
    if (hasType(weft::typeInteger)) setNumber<int32_t>(value);
}
int Pin::getIntValue() const { return getNumber<int32_t>(); }

void Pin::setInt64Value(int64_t value) {
    if (hasType(weft::typeInteger64)) setNumber(value);
}
int64_t Pin::getInt64Value() const { return getNumber<int64_t>(); }

void Pin::setVector3Value(const Vector3<float>& value) { setNumber(value); }
Vector3<float> Pin::getVector3Value() const { return getNumber<Vector3<float>>(); }
void Pin::setColor4Value(const Color4<float>& value) { setNumber(value); }
Color4<float> Pin::getColor4Value() const { return getNumber<Color4<float>>(); }

void Pin::setBitValue(bool bit) {
    auto* bits = hasType(weft::typeBit) ? weft::valueAs<BitArrayValue>(value()) : nullptr;
    if (!bits) return;
    bits->resize(1, bit);
    bits->setBit(0, bit);
    attribute_->valueChanged();
}

bool Pin::getBitValue() const {
    const auto* bits = hasType(weft::typeBit) ? weft::valueAs<BitArrayValue>(value()) : nullptr;
    return bits && bits->size() > 0 && bits->testBit(0);
}

void Pin::setStringValue(const TM_String& text) {
    if (getType() == weft::typeList) return setEnumValue(text);
    auto* strings = weft::valueAs<StringValue>(value());
    if (!strings) return;
    strings->fromString(text);
    attribute_->valueChanged();
}

TM_String Pin::getStringValue() const {
    const Value* target = value();
    return target ? target->asString() : TM_String();
}

// Lists.

void Pin::setEnumValue(const TM_String& option) {
    const Enum* list = enumeration();
    if (list) setEnumValue(list->keyOf(option));
}

void Pin::setEnumValue(int key) {
    Enum* list = enumeration();
    if (!list || list->options().count(key) == 0) return;
    list->setKey(key);
    attribute_->valueChanged();
}

void Pin::getEnumOptions(Array<TM_String>& out) const {
    out.clear();
    const Enum* list = enumeration();
    if (!list) return;
    for (const auto& [key, label] : list->options()) out.append(label);
}

int Pin::getEnumValueAsInt() const {
    if (!hasType(weft::typeList)) return 0;
    const Enum* list = enumeration();
    return list ? list->keyAt(0) : Enum::noKey;
}

TM_String Pin::getEnumValueAsString() const {
    const Enum* list = enumeration();
    return list ? list->label(list->keyAt(0)) : TM_String();
}

// References to host objects.

void Pin::setSL_NodeValue(const Array<TM_String>& names) {
    HostNodeValue* nodes = hostNodes();
    if (!nodes) return;
    nodes->setNames(names);
    nodes->markStale();
    attribute_->valueChanged();
}

void Pin::setSL_NodeValue(const TM_String& text) {
    HostNodeValue* nodes = hostNodes();
    if (!nodes) return;
    nodes->fromString(text);
    attribute_->valueChanged();
}

Array<void*> Pin::getSL_NodeValue() const {
    HostNodeValue* nodes = hostNodes();
    return nodes ? nodes->pointers() : Array<void*>();
}

TM_String Pin::getSL_NodeValueAsString() const {
    const HostNodeValue* nodes = hostNodes();
    return nodes ? nodes->asString() : TM_String();
}

TM_String Pin::getSL_NodeValueAsStringForParameter() const {
    const HostNodeValue* nodes = hostNodes();
    return nodes ? nodes->asStringForParameter() : TM_String();
}

bool Pin::checkSL_NodeNamesIntegrity() const {
    HostNodeValue* nodes = hostNodes();
    return nodes && nodes->checkNamesIntegrity();
}

// Tooltips.

namespace {

TM_String matrixAsString(const Matrix4<float>& matrix, const char* separator) {
    TM_String rows;
    for (int row = 0; row < 4; ++row) {
        if (row > 0) rows += separator;
        const float* m = matrix[row];
        rows += text::format("%f %f %f %f", m[0], m[1], m[2], m[3]);
    }
    return rows;
}

TM_String numericAsString(const Numeric& number, int type, bool multiLine) {
    switch (type) {
    case weft::typeReal:
        return text::format("%f", number.value<float>());
    case weft::typeInteger:
        return text::format("%d", number.value<int32_t>());
    case weft::typeInteger64:
        return text::format("%d", static_cast<int32_t>(number.value<int64_t>()));
    case weft::typeVector3: {
        const auto v = number.value<Vector3<float>>();
        return text::format("%f %f %f", v.x, v.y, v.z);
    }
    case weft::typeColor4: {
        const auto c = number.value<Color4<float>>();
        return text::format("%f %f %f %f", c.r, c.g, c.b, c.a);
    }
    case weft::typeQuaternion: {
        const auto q = number.value<Quaternion<float>>();
        return text::format("%f %f %f %f", q.x, q.y, q.z, q.w);
    }
    case weft::typeMatrix4:
        return matrixAsString(number.value<Matrix4<float>>(), multiLine ? "\n" : ", ");
    default:
        return TM_String();
    }
}

} // namespace

TM_String Pin::passThroughValueAsString(bool multiLine) const {
    const weft::Attribute* origin = attribute_->source();
    while (origin && origin->isPassThrough()) origin = origin->source();
    const GraphScene* scene = getParentGraphScenePtr();
    if (!origin || !scene) return TM_String();
    const auto id = static_cast<unsigned>(origin->id());
    const auto* pin = dynamic_cast<const Pin*>(scene->getPinPtrById(id));
    return pin ? pin->getValueAsString(multiLine) : TM_String();
}

TM_String Pin::getValueAsString(const bool& multiLine) const {
    if (!attribute_) return TM_String();
    if (attribute_->isPassThrough()) return passThroughValueAsString(multiLine);
    const Value* shown = attribute_->isOutput() ? attribute_->value() : attribute_->currentValue();
    if (!shown) return TM_String();
    const int type = isSpecialized() ? weft::typeNumber(getFirstSpecialization()) : getType();
    switch (type) {
    case weft::typeFilePath:
    case weft::typeFolder:
    case weft::typeString:
    case weft::typeParameterType:
        return shown->asString();
    case weft::typeList: {
        const Enum* list = weft::valueAs<Enum>(shown);
        if (!list) return TM_String();
        const int key = list->keyAt(0);
        return text::format("%d : %s", key, list->label(key).c_str());
    }
    case weft::typeBit: {
        const auto* bits = weft::valueAs<BitArrayValue>(shown);
        return bits && bits->valueAt(0) ? "true" : "false";
    }
    default:
        const Numeric* number = weft::valueAs<Numeric>(shown);
        return number ? numericAsString(*number, type, multiLine) : TM_String();
    }
}

} // namespace tidemark::sluice::graph
