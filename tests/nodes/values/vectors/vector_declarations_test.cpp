// SPDX-License-Identifier: Apache-2.0
// Pins, types, defaults and texts of the nodes over vectors, colours, quaternions and matrices.
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <vector>

#include "core/exceptions.h"
#include "nodes/values/declarations.h"
#include "nodes/values/logic_net.h"

namespace {

using sluice_tests::declared;
using sluice_tests::LogicNet;
using tidemark::TM_String;

struct Row {
    TM_String type;
    // "x:R=1, clamp!:B -> vector:V3": names, "!" for one element, types, defaults other than the
    // usual one.
    TM_String pins;
    TM_String description; // empty where any will do
};

const std::vector<Row> rows = {
    {"Vector3FromComponents", "x:R, y:R, z:R -> vector:V3", ""},
    {"Vector3ToComponents", "vector:V3 -> x:R, y:R, z:R", ""},
    {"Vector3Length", "vector:V3 -> result:R", ""},
    {"Vector3LengthSquared", "vector:V3 -> result:R", ""},
    {"Vector3Normalize", "vector:V3 -> result:V3", ""},
    {"Vector3Dot", "first:V3, second:V3 -> result:R", ""},
    {"Vector3Distance", "first:V3, second:V3 -> result:R", ""},
    {"Vector3Angle", "first:V3, second:V3 -> result:R", ""},
    {"Vector3Cross", "first:V3, second:V3 -> result:V3", ""},
    {"Vector3Project", "first:V3, second:V3 -> result:V3", ""},
    {"Vector3AreParallel", "first:V3, second:V3 -> result:B", ""},
    {"Vector3ArePerpendicular", "first:V3, second:V3 -> result:B",
     "Returns true, if both vectors are perpendicular, otherwise false."},
    {"Vector3Interpolate", "first:V3, second:V3=1, blend:R=0.5, clamp!:B -> result:V3", ""},
    {"Vector3Reorder", "vector:V3, reorder!:E -> result:V3", ""},
    {"Vector3ToColor4", "vector:V3 -> color:C4", ""},
    {"Color4ToVector3", "color:C4 -> vector:V3", ""},
    {"Color4FromComponents", "red:R, green:R, blue:R, alpha:R=1 -> color:C4", ""},
    {"Color4ToComponents", "color:C4 -> red:R, green:R, blue:R, alpha:R", ""},
    {"Color4RgbToHsv", "color:C4 -> hue:R, saturation:R, value:R", ""},
    {"Color4RgbFromHsv", "hue:R, saturation:R=1, value:R=1 -> color:C4", ""},
    {"Color4Info",
     "color:C4 -> red:R, green:R, blue:R, alpha:R, hue:R, saturation:R, value:R, vector rgb:V3, "
     "vector hsv:V3",
     ""},
    {"QuaternionFromComponents", "x:R, y:R, z:R, w:R=1 -> quaternion:Q", ""},
    {"QuaternionToComponents", "quaternion:Q -> x:R, y:R, z:R, w:R", ""},
    {"QuaternionFromAxisAngle", "axis:V3=(0,1,0), angle:R -> quaternion:Q", ""},
    {"QuaternionToAxisAngle", "quaternion:Q -> axis:V3, angle:R", ""},
    {"QuaternionNormalize", "quaternion:Q -> result:Q", ""},
    {"QuaternionConjugate", "quaternion:Q -> result:Q",
     "Computes the conjugate quaternion of the given quaternion."},
    {"QuaternionNegate", "quaternion:Q -> result:Q",
     "Computes the negative of the given quaternion."},
    {"QuaternionInverse", "quaternion:Q -> result:Q",
     "Computes the inverse of the given quaternion."},
    {"QuaternionDot", "first:Q, second:Q -> result:R",
     "Computes the dot-product of the given quaternions."},
    {"QuaternionSlerp", "first:Q, second:Q, parameter:R=0.5 -> result:Q",
     "Slerp-interpolation (spherical linear interpolation) between the two given input quaternions "
     "and the interpolation parameter (0..1)."},
    {"Matrix4FromComponents",
     "m00:R=1, m01:R, m02:R, m03:R, m10:R, m11:R=1, m12:R, m13:R, m20:R, m21:R, m22:R=1, m23:R, "
     "m30:R, m31:R, m32:R, m33:R=1 -> matrix:M4",
     ""},
    {"Matrix4ToComponents",
     "matrix:M4 -> m00:R, m01:R, m02:R, m03:R, m10:R, m11:R, m12:R, m13:R, m20:R, m21:R, m22:R, "
     "m23:R, m30:R, m31:R, m32:R, m33:R",
     "Extracts all 16 components of the input 'matrix' value"},
    {"Matrix4Inverse", "matrix:M4 -> result:M4", ""},
    {"Matrix4Transpose", "matrix:M4 -> result:M4", "Computes the transposed of the given matrix."},
    {"Matrix4Determinant", "matrix:M4 -> result:R",
     "Computes the determinant of the given matrix."},
    {"Matrix4CreateTranslation", "vector:V3 -> matrix:M4",
     "Set translation matrix according to input vector."},
    {"Matrix4CreateScale", "vector:V3=1 -> matrix:M4", ""},
    {"Matrix4CreateRotation", "vector:V3=(0,1,0), angle:R -> matrix:M4",
     "Set rotation matrix according to provided axis and angle given by input vector and input "
     "angle (in degrees)."},
    {"Matrix4CreateRotationEuler", "vector:V3 -> matrix:M4",
     "Set rotation matrix according to euler-angles given by input vector (in degrees)."},
    {"SetMatrix4FromComponents",
     "translation:V3, axis:V3=(0,1,0), angle:R, scale:V3=1 -> matrix:M4", ""},
    {"SetMatrix4FromQuaternion", "quaternion:Q -> matrix:M4", ""},
    {"Matrix4MulVector3", "matrix:M4, vector:V3 -> result:V3",
     "The vector is handled as four-dimensional vector (x,y,z,1)."},
    {"Matrix4GetEulerAngle", "matrix:M4 -> vector:V3",
     "Computes the Euler-angles of the given input matrix (in degrees)."},
};

struct Kind {
    TM_String text;
    TM_String usualDefault;
};

const Kind& kindOf(const TM_String& code) {
    const TM_String numeric = "NumericAttribute ";
    static const std::map<TM_String, Kind> kinds = {
        {"R", {numeric + "\"Real\"", "0"}},
        {"V3", {numeric + "\"Vector3\"", "0"}},
        {"C4", {numeric + "\"Color4\"", "(0,0,0,1)"}},
        {"Q", {numeric + "\"Quaternion\"", "(1,0,0,0)"}},
        {"M4", {numeric + "\"Matrix4\"", "(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)"}},
        {"B", {"BitArrayAttribute \"Bit\"", "0"}},
        {"E",
         {"EnumAttribute \"List\", \"Integer\", \"String\"",
          "[{0:\"XZY\",1:\"YXZ\",2:\"YZX\",3:\"ZXY\",4:\"ZYX\",},0"}},
    };
    return kinds.at(code);
}

std::vector<TM_String> pieces(const TM_String& text, const TM_String& separator) {
    std::vector<TM_String> found;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find(separator, start)) != TM_String::npos;) {
        found.push_back(text.substr(start, end - start));
        start = end + separator.size();
    }
    found.push_back(text.substr(start));
    return found;
}

TM_String pinLine(const TM_String& side, const TM_String& pin) {
    const std::size_t colon = pin.find(':');
    const std::vector<TM_String> type = pieces(pin.substr(colon + 1), "=");
    const Kind& kind = kindOf(type[0]);
    const TM_String start = side + " " + pin.substr(0, colon) + " " + kind.text;
    if (side == "out") return start + "\n";
    return start + " = " + (type.size() > 1 ? type[1] : kind.usualDefault) + "\n";
}

TM_String expected(const Row& row) {
    const std::vector<TM_String> sides = pieces(row.pins, " -> ");
    TM_String text = row.type + "\n";
    for (const TM_String& pin : pieces(sides[0], ", ")) text += pinLine("in", pin);
    for (const TM_String& pin : pieces(sides[1], ", ")) text += pinLine("out", pin);
    return text;
}

TEST(VectorDeclarations, PinsTypesAndDefaults) {
    for (const Row& row : rows) EXPECT_EQ(expected(row), declared(row.type));
}

TEST(VectorDeclarations, EverythingHasATextAndAffectsAll) {
    for (const Row& row : rows) {
        EXPECT_EQ("", sluice_tests::missingTexts(row.type)) << row.type;
        EXPECT_EQ("", sluice_tests::missingAffects(row.type)) << row.type;
    }
}

TEST(VectorDeclarations, Descriptions) {
    for (const Row& row : rows) {
        LogicNet net;
        const weft::Node& node = net.add(row.type, "n");
        if (!row.description.empty()) {
            EXPECT_EQ(row.description, node.getDescription());
        }
        EXPECT_EQ(2, node.getThreadingModeHint()) << row.type;
    }
}

TEST(VectorDeclarations, HelpTexts) {
    const char* helps[][3] = {
        {"Color4FromComponents", "red", "The red component"},
        {"Color4FromComponents", "green", "The green component"},
        {"Color4FromComponents", "blue", "The blue component"},
        {"Color4FromComponents", "alpha", "The alpha component"},
        {"Color4ToComponents", "red", "The red component"},
        {"Color4ToComponents", "alpha", "The alpha component"},
        {"Color4Info", "vector rgb", "The RGB-Values as a vector3"},
        {"Color4Info", "vector hsv", "The HSV-Values as a vector3"},
    };
    for (const auto& [type, pin, help] : helps) {
        LogicNet net;
        net.add(type, "n");
        EXPECT_EQ(help, net.pin(TM_String("n.") + pin).getDescription()) << type << " " << pin;
    }
}

// Sweeps over all of the nodes.

// Computes every output on its own.
void computeAll(weft::Node& node) {
    for (weft::Attribute* out : node.refOutputAttributes()) {
        for (weft::Attribute* other : node.refOutputAttributes()) other->setClean(false);
        EXPECT_NO_THROW(out->computeNow()) << node.className() << " " << out->name();
    }
}

TEST(VectorSweep, AnEmptyArrayMakesAnEmptyResult) {
    for (const Row& row : rows) {
        LogicNet probe;
        const uint32_t inputs = probe.add(row.type, "n").refInputAttributes().size();
        for (uint32_t emptied = 0; emptied < inputs; ++emptied) {
            LogicNet net;
            weft::Node& node = net.add(row.type, "n");
            weft::Value* value = node.refInputAttributes()[emptied]->value();
            if (auto* number = weft::valueAs<weft::Numeric>(value)) number->resize(0);
            if (auto* bits = weft::valueAs<weft::BitArrayValue>(value)) bits->purge();
            if (auto* keys = weft::valueAs<weft::Enum>(value)) keys->refKeys().clear();
            computeAll(node);
            const uint32_t size = weft::valueAs<weft::Numeric>(value) ? 0 : 1;
            for (const weft::Attribute* out : node.refOutputAttributes()) {
                EXPECT_EQ(size, out->value()->size()) << row.type << " " << out->name();
            }
        }
    }
}

TEST(VectorSweep, SourcesOfAnotherClassAreSafe) {
    for (const Row& row : rows) {
        LogicNet net;
        weft::Node& node = net.add(row.type, "n");
        net.add("Bit", "b");
        net.add("Real", "r");
        for (weft::Attribute* in : node.refInputAttributes()) {
            weft::Attribute& wrong =
                in->className() == "BitArrayAttribute" ? net.pin("r.real") : net.pin("b.bit");
            wrong.connectTo(in, nullptr);
            ASSERT_EQ(wrong.value(), in->currentValue()) << row.type;
        }
        computeAll(node);
        for (const weft::Attribute* out : node.refOutputAttributes()) {
            EXPECT_EQ(1u, out->value()->size()) << row.type;
        }
    }
}

// Numbers of another type than the pin's: what the array of the pin's type holds counts.
TEST(VectorSweep, SourcesOfAnotherNumericTypeAreSafe) {
    for (const Row& row : rows) {
        LogicNet net;
        weft::Node& node = net.add(row.type, "n");
        net.add("Integer", "i");
        net.numbers("i.in", {1, 2, 3});
        for (weft::Attribute* in : node.refInputAttributes()) {
            net.pin("i.integer").connectTo(in, nullptr);
        }
        net.refresh("i.integer");
        computeAll(node);
    }
}

template <typename T>
void fill(weft::Numeric& number, std::initializer_list<float> values) {
    constexpr std::size_t parts = sizeof(T) / sizeof(float);
    tidemark::Array<T> elements(static_cast<uint32_t>(values.size()));
    uint32_t i = 0;
    for (const float value : values) {
        auto* components = reinterpret_cast<float*>(&elements[i++]);
        std::fill(components, components + parts, value);
    }
    number.setValues(elements);
}

TEST(VectorSweep, OddNumbersAreSafe) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const Row& row : rows) {
        LogicNet net;
        weft::Node& node = net.add(row.type, "n");
        for (weft::Attribute* in : node.refInputAttributes()) {
            auto* number = weft::valueAs<weft::Numeric>(in->value());
            if (!number) continue;
            weft::withElementType(number->type(), [&]<typename T>() {
                if constexpr (!std::is_integral_v<T>) {
                    fill<T>(*number, {std::nanf(""), infinity, -infinity, -0.0f, 3e38f, 1e-45f});
                }
            });
        }
        computeAll(node);
        for (const weft::Attribute* out : node.refOutputAttributes()) {
            EXPECT_EQ(6u, out->value()->size()) << row.type << " " << out->name();
        }
    }
}

// What was not computed is not shown, and the node goes on afterwards.
TEST(VectorSweep, AnInterruptedResultIsEmpty) {
    for (const Row& row : rows) {
        LogicNet net;
        weft::Node& node = net.add(row.type, "n");
        node.setNumberOfThreads(1);
        // More than is done between two questions for an interrupt.
        const bool givesBits = node.refOutputAttributes()[0]->className() == "BitArrayAttribute";
        const uint32_t count = givesBits ? 2'100'000 : 300'000;
        weft::Attribute& in = *node.inputAttributeAt(0);
        weft::valueAs<weft::Numeric>(in.value())->resize(count);
        net.manager().setEvaluating(true);
        for (weft::Attribute* out : node.refOutputAttributes()) {
            for (weft::Attribute* other : node.refOutputAttributes()) {
                other->setToBeEvaluated(other == out);
            }
            net.manager().requestInterrupt();
            EXPECT_THROW(node.update(out), tidemark::TM_Exception) << row.type;
            net.manager().clearInterrupt();
            EXPECT_EQ(0u, out->value()->size()) << row.type << " " << out->name();
            EXPECT_NO_THROW(node.update(out)) << row.type;
            EXPECT_EQ(count, out->value()->size()) << row.type << " " << out->name();
        }
        net.manager().setEvaluating(false);
    }
}

} // namespace
