// SPDX-License-Identifier: Apache-2.0
// From JSON to the values of pins.
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "core/bit_array.h"
#include "core/enum_value.h"
#include "core/numeric.h"
#include "core/string_value.h"
#include "graph/pin.h"
#include "nodes/values/curves/curve_attributes.h"
#include "tool/exit_status.h"
#include "tool/value_json.h"

namespace tidemark::tool {

namespace {

using sluice::graph::Pin;

[[noreturn]] void refuse(const Pin& pin, const std::string& why) {
    throw UsageError("pin \"" + pin.getFullName() + "\": " + why);
}

std::string quotedList(const Array<TM_String>& names) {
    std::string list;
    for (const TM_String& name : names) list += (list.empty() ? "\"" : ", \"") + name + "\"";
    return list;
}

std::string withNearest(const std::string& word, const Array<TM_String>& names) {
    const TM_String nearest = text::nearest(word, names);
    return nearest.empty() ? "" : " (did you mean \"" + nearest + "\"?)";
}

// --- elements ------------------------------------------------------------------------------------

template <typename T>
bool readInteger(const Json& json, T& out) {
    if (json.is_number_unsigned()) {
        const uint64_t number = json.get<uint64_t>();
        if (number > static_cast<uint64_t>(std::numeric_limits<T>::max())) return false;
        out = static_cast<T>(number);
        return true;
    }
    if (json.is_number_integer()) {
        const int64_t number = json.get<int64_t>();
        if (number < std::numeric_limits<T>::min() || number > std::numeric_limits<T>::max()) {
            return false;
        }
        out = static_cast<T>(number);
        return true;
    }
    if (!json.is_number_float()) return false;
    const double number = json.get<double>();
    constexpr double limit = 9007199254740992.0; // whole numbers up to here are exact
    if (number != std::floor(number) || std::fabs(number) > limit) return false;
    return readInteger(Json(static_cast<int64_t>(number)), out);
}

bool readElement(const Json& json, int32_t& out) { return readInteger(json, out); }
bool readElement(const Json& json, int64_t& out) { return readInteger(json, out); }

bool readElement(const Json& json, float& out) {
    if (json.is_number()) {
        const double number = json.get<double>();
        constexpr double largest = std::numeric_limits<float>::max();
        if (std::fabs(number) > largest) return false;
        out = static_cast<float>(number);
        return true;
    }
    if (!json.is_string()) return false;
    const auto& word = json.get_ref<const std::string&>();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    if (word == "inf") return out = infinity, true;
    if (word == "-inf") return out = -infinity, true;
    if (word == "nan") return out = std::numeric_limits<float>::quiet_NaN(), true;
    return false;
}

/// Reads exactly `count` floats.
bool readFloats(const Json& json, float* out, std::size_t count) {
    if (!json.is_array() || json.size() != count) return false;
    for (std::size_t i = 0; i < count; ++i) {
        if (!readElement(json[i], out[i])) return false;
    }
    return true;
}

bool readElement(const Json& json, Vector3<float>& out) { return readFloats(json, &out.x, 3); }

bool readElement(const Json& json, Color4<float>& out) {
    out.a = 1.0f;
    return readFloats(json, &out.r, 4) || readFloats(json, &out.r, 3);
}

bool readElement(const Json& json, Quaternion<float>& out) {
    float parts[4];
    if (!readFloats(json, parts, 4)) return false;
    out = Quaternion<float>{parts[0], parts[1], parts[2], parts[3]};
    return true;
}

bool readElement(const Json& json, Matrix4<float>& out) { return readFloats(json, &out[0][0], 16); }

constexpr std::size_t mostElements = 0x7fffffff; // of any array

template <typename T>
std::optional<Array<T>> readArray(const Json& json) {
    // A single vector is a list of numbers itself.
    T single{};
    if (readElement(json, single)) return Array<T>{single};
    if (!json.is_array()) return std::nullopt;
    Array<T> array;
    array.reserve(static_cast<uint32_t>(std::min<std::size_t>(json.size(), mostElements)));
    for (const Json& element : json) {
        T read{};
        if (!readElement(element, read)) return std::nullopt;
        array.append(read);
    }
    return array;
}

// --- numbers -------------------------------------------------------------------------------------

template <typename T>
bool storeNumbers(weft::Attribute& attribute, const Json& json, bool store) {
    const std::optional<Array<T>> array = readArray<T>(json);
    if (!array) return false;
    if (!store) return true;
    weft::valueAs<weft::Numeric>(attribute.value())->setValues<T>(*array);
    attribute.valueChanged();
    return true;
}

/// Whether values of `type` can hold `json`; with `store` it is written as well.
bool numbersFit(weft::Attribute& attribute, const TM_String& type, const Json& json, bool store) {
    switch (weft::numericTypeOf(type)) {
    case weft::NumericType::integer:
        return storeNumbers<int32_t>(attribute, json, store);
    case weft::NumericType::integer64:
        return storeNumbers<int64_t>(attribute, json, store);
    case weft::NumericType::real:
        return storeNumbers<float>(attribute, json, store);
    case weft::NumericType::vector3:
        return storeNumbers<Vector3<float>>(attribute, json, store);
    case weft::NumericType::color4:
        return storeNumbers<Color4<float>>(attribute, json, store);
    case weft::NumericType::quaternion:
        return storeNumbers<Quaternion<float>>(attribute, json, store);
    case weft::NumericType::matrix4:
        return storeNumbers<Matrix4<float>>(attribute, json, store);
    case weft::NumericType::none:
        break;
    }
    return false;
}

void chooseType(Pin& pin, const std::string& type) {
    const Array<TM_String>& allowed = pin.getAllowedSpecializations();
    if (!allowed.contains(type)) {
        refuse(pin, "may not be of type \"" + type + "\"" + withNearest(type, allowed) +
                        "; it may be " + quotedList(allowed));
    }
    pin.setSpecializationOverride(type);
    pin.updateSpecializations();
    if (pin.getFirstSpecialization() != type || !pin.isSpecialized()) {
        refuse(pin, "can not be of type \"" + type + "\" here: what it is connected to and the " +
                        "pins beside it leave " + quotedList(pin.getSpecializations()));
    }
}

/// Text such as "1,2,3" stands for the list of its parts.
Json listOfText(const Json& json) {
    if (!json.is_string()) return json;
    Json list = Json::parse("[" + json.get_ref<const std::string&>() + "]", nullptr, false);
    return list.is_discarded() || list.empty() ? json : list;
}

void setNumbers(Pin& pin, const Json& given) {
    weft::Attribute& attribute = *pin.getWeftAttribute();
    const Json json = listOfText(given);
    const Array<TM_String> types = pin.getSpecializations();
    for (const TM_String& type : types) {
        if (!numbersFit(attribute, type, json, false)) continue;
        if (types.size() > 1) chooseType(pin, type);
        numbersFit(attribute, type, json, true);
        return;
    }
    refuse(pin, "can not hold " + dumped(given) + "; its type may be " + quotedList(types));
}

// --- other values --------------------------------------------------------------------------------

/// The elements of a list, or the value itself as the only one.
std::vector<Json> elementsOf(const Json& json) {
    return json.is_array() ? std::vector<Json>(json.begin(), json.end()) : std::vector<Json>{json};
}

void setBits(Pin& pin, weft::BitArrayValue& bits, const Json& json) {
    const std::vector<Json> elements = elementsOf(json);
    std::vector<bool> read;
    for (const Json& element : elements) {
        const bool isTrue = element == true || element == 1 || element == "true";
        if (!isTrue && element != false && element != 0 && element != "false") {
            refuse(pin, "can not hold " + dumped(element) + "; write true or false");
        }
        read.push_back(isTrue);
    }
    bits.resize(static_cast<uint32_t>(read.size()), false);
    for (std::size_t i = 0; i < read.size(); ++i) bits.setBit(static_cast<uint32_t>(i), read[i]);
    pin.getWeftAttribute()->valueChanged();
}

std::string textOf(const Json& json) {
    return json.is_string() ? json.get<std::string>() : dumped(json);
}

void setStrings(Pin& pin, weft::StringValue& strings, const Json& json) {
    const std::vector<Json> elements = elementsOf(json);
    strings.setSize(static_cast<uint32_t>(elements.size()));
    for (std::size_t i = 0; i < elements.size(); ++i) {
        strings.setValueAt(static_cast<uint32_t>(i), textOf(elements[i]));
    }
    pin.getWeftAttribute()->valueChanged();
}

int32_t keyOf(const Pin& pin, const weft::Enum& list, const Json& json) {
    int32_t key = weft::Enum::noKey;
    if (readInteger(json, key) && list.options().count(key) != 0) return key;
    for (const auto& [candidate, label] : list.options()) {
        if (label == textOf(json)) return candidate;
    }
    Array<TM_String> labels;
    for (const auto& [candidate, label] : list.options()) labels.append(label);
    refuse(pin, "has no option " + dumped(json) + withNearest(textOf(json), labels) + "; it has " +
                    quotedList(labels));
}

void setKeys(Pin& pin, weft::Enum& list, const Json& json) {
    Array<int32_t> keys;
    for (const Json& element : elementsOf(json)) keys.append(keyOf(pin, list, element));
    list.refKeys() = keys;
    pin.getWeftAttribute()->valueChanged();
}

void setHostObjects(Pin& pin, const Json& json) {
    Array<TM_String> names;
    for (const Json& element : elementsOf(json)) names.append(textOf(element));
    pin.setSL_NodeValue(names);
    if (!pin.checkSL_NodeNamesIntegrity()) refuse(pin, "no such object: " + dumped(json));
}

/// "@FILE", an object, or null.
void appendCurves(const Pin& pin, const Json& json, Curves& curves, Array<ANIFloatBase*>& out) {
    if (json.is_null()) return out.append(nullptr);
    const std::size_t before = curves.size();
    if (json.is_object()) {
        addCurves(json, pin.getFullName(), curves);
    } else {
        const std::string name = textOf(json);
        if (name.size() < 2 || name[0] != '@') {
            refuse(pin, "can not hold " + dumped(json) + "; name a file with curves, \"@FILE\"");
        }
        addCurvesOfFile(name.substr(1), curves);
    }
    for (std::size_t i = before; i < curves.size(); ++i) out.append(curves[i].get());
}

void setCurves(Pin& pin, weft::CurveValue& value, const Json& json, Curves& curves) {
    Array<ANIFloatBase*> made;
    for (const Json& element : elementsOf(json)) appendCurves(pin, element, curves, made);
    value.setSize(0);
    for (ANIFloatBase* curve : made) value.append(curve);
    pin.getWeftAttribute()->valueChanged();
}

} // namespace

void setPinValue(Pin& pin, const std::string& type, const Json& json, Curves& curves) {
    weft::Attribute* attribute = pin.getWeftAttribute();
    if (!attribute || !attribute->isInput()) refuse(pin, "only inputs can be set");
    if (!type.empty()) chooseType(pin, type);
    weft::Value* value = attribute->value();
    if (!value) refuse(pin, "passes on what it is connected to and holds no value of its own");
    if (weft::valueAs<weft::Numeric>(value)) return setNumbers(pin, json);
    if (auto* bits = weft::valueAs<weft::BitArrayValue>(value)) return setBits(pin, *bits, json);
    if (auto* strings = weft::valueAs<weft::StringValue>(value)) {
        return setStrings(pin, *strings, json);
    }
    if (auto* list = weft::valueAs<weft::Enum>(value)) return setKeys(pin, *list, json);
    if (auto* list = weft::valueAs<weft::CurveValue>(value)) {
        return setCurves(pin, *list, json, curves);
    }
    if (pin.isSluiceNodeType()) return setHostObjects(pin, json);
    refuse(pin, "values of this kind can not be set");
}

} // namespace tidemark::tool
