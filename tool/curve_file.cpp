// SPDX-License-Identifier: Apache-2.0
// Reading curves from JSON, field by field.
#include "tool/curve_file.h"

#include <functional>
#include <limits>
#include <map>

#include "core/text.h"
#include "tool/exit_status.h"
#include "tool/text_file.h"

namespace tidemark::tool {

namespace {

// A place in a document, for what is said about it.
struct Place {
    std::string source;
    std::string path;

    [[noreturn]] void refuse(const std::string& why) const {
        throw UsageError("\"" + source + "\": " + (path.empty() ? "" : path + ": ") + why);
    }
    Place field(const std::string& name) const {
        return {source, path + (path.empty() ? "" : ".") + name};
    }
    Place element(std::size_t index) const {
        return {source, path + "[" + std::to_string(index) + "]"};
    }
};

std::string hint(const std::string& word, const Array<TM_String>& known) {
    const TM_String nearest = text::nearest(word, known);
    if (!nearest.empty()) return " (did you mean \"" + nearest + "\"?)";
    std::string list;
    for (const TM_String& name : known) list += (list.empty() ? "\"" : ", \"") + name + "\"";
    return "; known are " + list;
}

double number(const Json& json, const Place& place) {
    if (!json.is_number()) place.refuse("not a number: " + dumped(json));
    return json.get<double>();
}

bool truth(const Json& json, const Place& place) {
    if (!json.is_boolean()) place.refuse("neither true nor false: " + dumped(json));
    return json.get<bool>();
}

std::string word(const Json& json, const Place& place) {
    if (!json.is_string()) place.refuse("not a text: " + dumped(json));
    return json.get<std::string>();
}

// The number of one of `names`, which are numbered from 0, or any 32-bit number.
int32_t choice(const Json& json, const Place& place, const Array<TM_String>& names) {
    if (json.is_string()) {
        const std::string given = json.get<std::string>();
        const int64_t index = names.indexOf(given);
        if (index < 0) place.refuse("unknown: \"" + given + "\"" + hint(given, names));
        return static_cast<int32_t>(index);
    }
    using Limits = std::numeric_limits<int32_t>;
    const bool fits = json.is_number_integer() && !(json.is_number_unsigned() &&
                                                    json.get<uint64_t>() > uint64_t(Limits::max()));
    if (!fits || json.get<int64_t>() < Limits::min() || json.get<int64_t>() > Limits::max()) {
        place.refuse("neither a name nor a whole number: " + dumped(json));
    }
    return json.get<int32_t>();
}

// How each field of an object is read into a `T`.
template <typename T>
using Fields = std::map<std::string, std::function<void(T&, const Json&, const Place&)>>;

template <typename T>
void readFields(const Json& json, const Place& place, const Fields<T>& fields, T& out) {
    if (!json.is_object()) place.refuse("not an object: " + dumped(json));
    for (const auto& [name, value] : json.items()) {
        const auto found = fields.find(name);
        if (found == fields.end()) {
            Array<TM_String> known;
            for (const auto& field : fields) known.append(field.first);
            place.refuse("unknown field \"" + name + "\"" + hint(name, known));
        }
        found->second(out, value, place.field(name));
    }
}

// --- keys ----------------------------------------------------------------------------------------

Array<TM_String> typeNames() {
    Array<TM_String> names;
    for (int32_t type = tm_spline::linear; type <= tm_spline::step; ++type) {
        names.append(tm_spline::nameOf(type));
    }
    return names;
}

template <void (PointInfo::*write)(double)>
void setReal(PointInfo& key, const Json& json, const Place& place) {
    (key.*write)(number(json, place));
}

const Fields<PointInfo>& keyFields() {
    static const Fields<PointInfo> fields = {
        {"x", setReal<&PointInfo::setX>},
        {"y", setReal<&PointInfo::setY>},
        {"ease from", setReal<&PointInfo::setEaseFrom>},
        {"ease to", setReal<&PointInfo::setEaseTo>},
        {"incoming", setReal<&PointInfo::setIncoming>},
        {"outgoing", setReal<&PointInfo::setOutgoing>},
        {"t", setReal<&PointInfo::setTension>},
        {"c", setReal<&PointInfo::setContinuity>},
        {"b", setReal<&PointInfo::setBias>},
        {"type", [](PointInfo& key, const Json& json,
                    const Place& place) { key.setType(choice(json, place, typeNames())); }},
        {"unify tan", [](PointInfo& key, const Json& json,
                         const Place& place) { key.setUnifiesTangents(truth(json, place)); }},
    };
    return fields;
}

void addKeys(ANIFloatBase& curve, const Json& json, const Place& place) {
    if (!json.is_array()) place.refuse("not a list of keys: " + dumped(json));
    std::vector<PointInfo> keys(json.size());
    Array<const PointInfo*> pointers;
    pointers.reserve(static_cast<uint32_t>(keys.size()));
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const Place here = place.element(i);
        readFields(json[i], here, keyFields(), keys[i]);
        for (const char* needed : {"x", "y"}) {
            if (!json[i].contains(needed)) {
                here.refuse("the key has no \"" + std::string(needed) + "\"");
            }
        }
        pointers.append(&keys[i]);
    }
    curve.refSpline().addPoints(pointers);
}

// --- curves --------------------------------------------------------------------------------------

// Of `CurveBehaviour`, in the order of the numbers.
Array<TM_String> namesBefore() { return {"zero", "constant"}; }
Array<TM_String> namesAfter() { return {"zero", "constant", "loop", "loop-offset"}; }

const Fields<ANIFloatBase>& curveFields() {
    static const Fields<ANIFloatBase> fields = {
        {"keys", addKeys},
        {"pre behaviour",
         [](ANIFloatBase& curve, const Json& json, const Place& place) {
             curve.setPreBehaviour(choice(json, place, namesBefore()));
         }},
        {"post behaviour",
         [](ANIFloatBase& curve, const Json& json, const Place& place) {
             curve.setPostBehaviour(choice(json, place, namesAfter()));
         }},
        {"expression",
         [](ANIFloatBase& curve, const Json& json, const Place& place) {
             if (!curve.setExpression(word(json, place))) place.refuse(curve.expressionMessage());
         }},
        {"expression plus spline",
         [](ANIFloatBase& curve, const Json& json, const Place& place) {
             curve.setExpressionPlusSpline(truth(json, place));
         }},
        {"frame rate",
         [](ANIFloatBase& curve, const Json& json, const Place& place) {
             const double rate = number(json, place);
             if (!(rate > 0.0)) place.refuse("not above 0: " + dumped(json));
             curve.setFrameRate(rate);
         }},
    };
    return fields;
}

std::unique_ptr<ANIFloatBase> readCurve(const Json& json, const Place& place) {
    auto curve = std::make_unique<ANIFloatBase>();
    readFields(json, place, curveFields(), *curve);
    return curve;
}

} // namespace

void addCurves(const Json& json, const std::string& source, Curves& curves) {
    const Place whole{source, ""};
    Curves read;
    if (json.is_array()) {
        for (std::size_t i = 0; i < json.size(); ++i) {
            read.push_back(readCurve(json[i], whole.element(i)));
        }
    } else {
        read.push_back(readCurve(json, whole));
    }
    for (std::unique_ptr<ANIFloatBase>& curve : read) curves.push_back(std::move(curve));
}

void addCurvesOfFile(const std::string& file, Curves& curves) {
    addCurves(jsonOfFile(file), file, curves);
}

} // namespace tidemark::tool
