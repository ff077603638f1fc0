// SPDX-License-Identifier: Apache-2.0
// From values to JSON, by the kind of value.
#include "tool/value_json.h"

#include <charconv>
#include <cmath>

#include "core/bit_array.h"
#include "core/enum_value.h"
#include "core/host_node_value.h"
#include "core/numeric.h"
#include "core/string_value.h"
#include "graph/pin.h"
#include "nodes/values/conditions/condition_value.h"
#include "nodes/values/curves/curve_attributes.h"

namespace tidemark::tool {

namespace {

using sluice::graph::Pin;

Json toJson(int32_t number) { return number; }
Json toJson(int64_t number) { return number; }

Json toJson(float number) { return floatJson(number); }

Json toJson(const Vector3<float>& v) { return {toJson(v.x), toJson(v.y), toJson(v.z)}; }
Json toJson(const Color4<float>& c) { return {toJson(c.r), toJson(c.g), toJson(c.b), toJson(c.a)}; }
Json toJson(const Quaternion<float>& q) {
    return {toJson(q.x), toJson(q.y), toJson(q.z), toJson(q.w)};
}
Json toJson(const Matrix4<float>& matrix) {
    Json list = Json::array();
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) list.push_back(toJson(matrix[row][column]));
    }
    return list;
}

template <typename T>
Json elementsOf(const weft::Numeric& numeric) {
    Json list = Json::array();
    for (uint32_t i = 0; i < numeric.size(); ++i) list.push_back(toJson(numeric.valueAt<T>(i)));
    return list;
}

Json bitsJson(const weft::BitArrayValue& bits) {
    Json list = Json::array();
    for (uint32_t i = 0; i < bits.size(); ++i) list.push_back(bits.testBit(i));
    return list;
}

Json stringsJson(const weft::StringValue& strings) {
    Json list = Json::array();
    for (uint32_t i = 0; i < strings.size(); ++i) list.push_back(strings.valueAt(i));
    return list;
}

/// A list pin shows labels also when its keys come from a connected integer or string.
Json labelsJson(const weft::EnumAttribute& attribute, const weft::Value& value) {
    Json list = Json::array();
    for (uint32_t i = 0; i < value.size(); ++i) {
        const int32_t key = attribute.enumValue(i);
        const auto& options = attribute.ownEnum().options();
        const auto option = options.find(key);
        if (option != options.end()) {
            list.push_back(option->second);
        } else {
            list.push_back(nullptr);
        }
    }
    return list;
}

Json hostObjectsJson(const weft::HostNodeValue& value) {
    Json list = Json::array();
    for (const TM_String& name : value.names()) {
        list.push_back(name.empty() ? Json(nullptr) : Json(name));
    }
    return list;
}

/// "value" is the right side as a list of numbers, null when there is none.
Json conditionJson(const sluice::graph::ConditionValue& condition) {
    Json value = nullptr;
    if (condition.isConstant()) {
        weft::Numeric constant(condition.networkManager());
        condition.copyConstantTo(constant);
        value = numericJson(constant);
    } else if (const weft::Numeric* number = condition.getNumericValue()) {
        value = numericJson(*number);
    }
    Json json;
    json["condition"] = condition.comparisonName();
    json["constant"] = condition.isConstant();
    json["value"] = std::move(value);
    return json;
}

Json doubleJson(double number) {
    return std::isfinite(number) ? Json(number) : floatJson(static_cast<float>(number));
}

Json curvesJson(const weft::CurveValue& value) {
    Json list = Json::array();
    for (uint32_t i = 0; i < value.size(); ++i) {
        const ANIFloatBase* curve = value.at(i);
        if (!curve) {
            list.push_back(nullptr);
            continue;
        }
        list.push_back(
            {{"keys", curve->spline().points().size()}, {"expression", curve->getExpression()}});
    }
    return list;
}

Json keysJson(const weft::KeyValue& value) {
    Json list = Json::array();
    for (uint32_t i = 0; i < value.size(); ++i) {
        const PointInfo* key = value.at(i);
        if (!key) {
            list.push_back(nullptr);
            continue;
        }
        list.push_back({{"type", tm_spline::nameOf(key->type())},
                        {"x", doubleJson(key->x())},
                        {"y", doubleJson(key->y())}});
    }
    return list;
}

} // namespace

Json numericJson(const weft::Numeric& numeric) {
    switch (numeric.type()) {
    case weft::NumericType::integer:
        return elementsOf<int32_t>(numeric);
    case weft::NumericType::integer64:
        return elementsOf<int64_t>(numeric);
    case weft::NumericType::real:
        return elementsOf<float>(numeric);
    case weft::NumericType::vector3:
        return elementsOf<Vector3<float>>(numeric);
    case weft::NumericType::color4:
        return elementsOf<Color4<float>>(numeric);
    case weft::NumericType::quaternion:
        return elementsOf<Quaternion<float>>(numeric);
    case weft::NumericType::matrix4:
        return elementsOf<Matrix4<float>>(numeric);
    case weft::NumericType::none:
        break;
    }
    return Json::array();
}

Json floatJson(float number) {
    if (std::isnan(number)) return "nan";
    if (std::isinf(number)) return number < 0 ? "-inf" : "inf";
    // The shortest digits of the float, read as a double, print as the same digits.
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof(digits), number).ptr;
    double shown = 0.0;
    std::from_chars(digits, end, shown);
    return shown;
}

Json valueJson(const Pin& pin) {
    const weft::Attribute* attribute = pin.getWeftAttribute();
    weft::Value* value = attribute ? attribute->currentValue() : nullptr;
    if (!value) return Json::array();
    if (attribute->classNameView() == "EnumAttribute") {
        return labelsJson(*static_cast<const weft::EnumAttribute*>(attribute), *value);
    }
    if (const auto* numeric = weft::valueAs<weft::Numeric>(value)) return numericJson(*numeric);
    if (const auto* bits = weft::valueAs<weft::BitArrayValue>(value)) return bitsJson(*bits);
    if (const auto* strings = weft::valueAs<weft::StringValue>(value)) return stringsJson(*strings);
    if (const auto* condition = weft::valueAs<sluice::graph::ConditionValue>(value)) {
        return Json::array({conditionJson(*condition)});
    }
    if (const auto* curves = weft::valueAs<weft::CurveValue>(value)) return curvesJson(*curves);
    if (const auto* keys = weft::valueAs<weft::KeyValue>(value)) return keysJson(*keys);
    if (const auto* hosts = dynamic_cast<weft::HostNodeValue*>(value)) {
        return hostObjectsJson(*hosts);
    }
    return Json::array();
}

Json pinJson(const Pin& pin, const std::string& name) {
    const weft::Attribute* attribute = pin.getWeftAttribute();
    Json value = valueJson(pin);
    Json json;
    json["pin"] = name;
    json["type"] = attribute ? attribute->specialization() : std::string();
    json["size"] = value.size();
    json["value"] = std::move(value);
    return json;
}

Json jsonOrText(const std::string& text) {
    Json json = Json::parse(text, nullptr, false);
    return json.is_discarded() ? Json(text) : json;
}

} // namespace tidemark::tool
