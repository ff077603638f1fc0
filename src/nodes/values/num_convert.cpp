// SPDX-License-Identifier: Apache-2.0
// NumConvert: numbers as numbers of other types, and as strings.
#include <algorithm>
#include <array>
#include <span>

#include "core/conversion.h"
#include "core/numeric.h"
#include "core/string_value.h"
#include "graph/define_node.h"
#include "nodes/values/arrays/array_elements.h"

namespace tidemark::sluice::graph {

using weft::Attribute;
using weft::NetworkManager;
using weft::Numeric;
using weft::NumericAttribute;
using weft::NumericType;
using weft::SpecializationList;
using weft::StringAttribute;
using weft::StringValue;

namespace {

// Integers stand for the values of an image of 16 bits.
constexpr int64_t highestShade = 65535;

const SpecializationList& convertibleTypes() {
    static const SpecializationList list{"Integer", "Integer64", "Real", "Vector3", "Color4"};
    return list;
}

float unit(float number) { return std::clamp(number, 0.0f, 1.0f); }

// One overload per pair of types, in the loops below a few instructions each.

template <typename To>
struct Convert;

template <typename Integer>
struct ConvertToInteger {
    static Integer of(int32_t number) { return number; }
    static Integer of(int64_t number) { return static_cast<Integer>(number); }
    static Integer of(float number) { return truncateTo<Integer>(number); }
    static Integer of(const Vector3<float>& vector) { return of(vector.x); }
    static Integer of(const Color4<float>& color) {
        return of(color.r * static_cast<float>(highestShade));
    }
};
template <>
struct Convert<int32_t> : ConvertToInteger<int32_t> {};
template <>
struct Convert<int64_t> : ConvertToInteger<int64_t> {};

template <>
struct Convert<float> {
    static float of(int32_t number) { return static_cast<float>(number); }
    static float of(int64_t number) { return static_cast<float>(number); }
    static float of(float number) { return number; }
    static float of(const Vector3<float>& vector) { return vector.x; }
    static float of(const Color4<float>& color) { return color.r; }
};

template <>
struct Convert<Vector3<float>> {
    static Vector3<float> of(auto number) { return Vector3<float>(Convert<float>::of(number)); }
    static Vector3<float> of(const Vector3<float>& vector) { return vector; }
    static Vector3<float> of(const Color4<float>& color) { return {color.r, color.g, color.b}; }
};

template <>
struct Convert<Color4<float>> {
    static Color4<float> grey(float shade) { return {shade, shade, shade, 1.0f}; }
    static Color4<float> of(int64_t number) {
        const int64_t shade = std::clamp<int64_t>(number, 0, highestShade);
        return grey(static_cast<float>(shade) / static_cast<float>(highestShade));
    }
    static Color4<float> of(int32_t number) { return of(int64_t(number)); }
    static Color4<float> of(float number) { return grey(unit(number)); }
    static Color4<float> of(const Vector3<float>& vector) {
        return {unit(vector.x), unit(vector.y), unit(vector.z), 1.0f};
    }
    static Color4<float> of(const Color4<float>& color) { return color; }
};

template <>
struct Convert<TM_String> {
    static TM_String of(int32_t number) { return std::to_string(number); }
    static TM_String of(int64_t number) { return std::to_string(number); }
    static TM_String of(float number) { return text::format("%f", double(number)); }
    static TM_String of(const Vector3<float>& v) {
        return text::format("%f %f %f", double(v.x), double(v.y), double(v.z));
    }
    static TM_String of(const Color4<float>& c) {
        return text::format("%f %f %f %f", double(c.r), double(c.g), double(c.b), double(c.a));
    }
};

// Calls `visit.template operator()<From>()` with the element type of `type`, if it is convertible.
template <typename Visit>
void withConvertibleType(NumericType type, Visit visit) {
    weft::withElementType(type, [&]<typename From>() {
        if constexpr (requires(From element) { Convert<float>::of(element); }) {
            visit.template operator()<From>();
        }
    });
}

} // namespace

class NumConvert : public weft::Node {
public:
    NumConvert(NetworkManager* manager, const TM_String& name, Node* parent);
    void update(Attribute* attribute) override;

    virtual void toInteger() { toNumber<int32_t>(*integer_); }
    virtual void toInteger64() { toNumber<int64_t>(*integer64_); }
    virtual void toReal() { toNumber<float>(*real_); }
    virtual void toVector3() { toNumber<Vector3<float>>(*vector3_); }
    virtual void toColor4() { toNumber<Color4<float>>(*color4_); }
    virtual void toString();

private:
    NumericAttribute* addNumber(const char* name, const char* help, const char* type);
    template <typename To>
    void toNumber(const NumericAttribute& output);
    template <typename From, typename To>
    void convert(const Array<From>& from, uint32_t count, Array<To>& to) const;

    NumericAttribute* input_;
    NumericAttribute* integer_;
    NumericAttribute* integer64_;
    NumericAttribute* real_;
    NumericAttribute* vector3_;
    NumericAttribute* color4_;
    StringAttribute* string_;
};

NumConvert::NumConvert(NetworkManager* manager, const TM_String& name, Node* parent)
    : Node(manager, name, parent) {
    appendClass<"NumConvert">();
    describe("This node converts the elements of the input to other types.\nIntegers converted to "
             "colors are clamped to 0..65535 and normalized to 0.0..1.0. The choice of 65535 is "
             "related to the direct input of 16 bit displacement image data. Reals and vectors "
             "converted to colors are clamped to 0.0..1.0.\nReals converted to integers lose their "
             "decimal part. Vectors and colors converted to numbers give their first component, "
             "which of a color converted to an integer is multiplied by 65535.");
    input_ = addInput<NumericAttribute>("input", "Input value to convert");
    setAttributeAllowedSpecializations(input_, convertibleTypes());
    integer_ = addNumber("integer", "Input converted to Integer", "Integer");
    integer64_ = addNumber("integer64", "Input converted to Integer64", "Integer64");
    real_ = addNumber("real", "Input converted to Real", "Real");
    vector3_ = addNumber("vector3", "Input converted to Vector3", "Vector3");
    color4_ = addNumber("color4", "Input converted to Color4", "Color4");
    string_ = addOutput<StringAttribute>("string", "Input converted to String");
    setAttributeAffectsAllOutputs(input_);
}

NumericAttribute* NumConvert::addNumber(const char* name, const char* help, const char* type) {
    auto* const output = addOutput<NumericAttribute>(name, help);
    setAttributeAllowedSpecialization(output, type);
    return output;
}

void NumConvert::update(Attribute* attribute) {
    if (!checkSpecialization(input_)) return;
    if (attribute == integer_) toInteger();
    if (attribute == integer64_) toInteger64();
    if (attribute == real_) toReal();
    if (attribute == vector3_) toVector3();
    if (attribute == color4_) toColor4();
    if (attribute == string_) toString();
    attribute->valueChanged();
    setAttributeIsClean(attribute, true);
}

// The value may be of another type than the pin: then what it holds of the pin's type is repeated,
// as every reader sees it.
template <typename From, typename To>
void NumConvert::convert(const Array<From>& from, uint32_t count, Array<To>& to) const {
    constexpr uint32_t elementsBetweenPolls = uint32_t(1) << 16;
    const uint32_t held = std::min(count, from.size());
    for (uint32_t begin = 0; begin < held; begin += elementsBetweenPolls) {
        const uint32_t end =
            held - begin > elementsBetweenPolls ? begin + elementsBetweenPolls : held;
        const From* const in = from.data();
        To* const out = to.data();
        for (uint32_t i = begin; i < end; ++i) out[i] = Convert<To>::of(in[i]);
        networkManager()->pollInterrupt();
    }
    if (held == count) return;
    const To last = Convert<To>::of(held > 0 ? from[held - 1] : ElementDefault<From>::value());
    std::fill(to.begin() + held, to.begin() + count, last);
}

template <typename To>
void NumConvert::toNumber(const NumericAttribute& output) {
    input_->pull();
    Numeric* const target = output.numericTarget();
    if (!target) return;
    const Numeric& number = input_->numeric();
    withConvertibleType(selectorOf(*input_), [&]<typename From>() {
        writeElements<To>(*target, {&number}, [&](Array<To>& to) {
            element_map::sizeForWriting(to, number.size());
            convert(number.values<From>(), number.size(), to);
        });
    });
}

void NumConvert::toString() {
    input_->pull();
    StringValue* const target = string_->stringsTarget();
    if (!target) return;
    const Numeric& number = input_->numeric();
    withConvertibleType(selectorOf(*input_), [&]<typename From>() {
        writeElements<TM_String>(*target, {}, [&](Array<TM_String>& to) {
            target->setSize(number.size());
            convert(number.values<From>(), number.size(), to);
        });
    });
}

SLUICE_DEFINE_NODE(NumConvert)

} // namespace tidemark::sluice::graph
