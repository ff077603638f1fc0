// SPDX-License-Identifier: Apache-2.0
// Tests of typed access to the values of pins.
#include <map>

#include "core/bit_array.h"
#include "core/enum_value.h"
#include "core/host_node_value.h"
#include "core/string_value.h"
#include "graph/pin.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::LogicProbe;
using support::Names;
using support::SceneBuilder;
using weft::BitArrayAttribute;
using weft::EnumAttribute;
using weft::FilePathAttribute;
using weft::FolderAttribute;
using weft::NumericAttribute;
using weft::PassThroughAttribute;
using weft::StringAttribute;

namespace {

// References to host objects whose host is a map.
class FakeHostNodes : public weft::HostNodeValue {
public:
    static constexpr weft::ValueKind kind{"FakeHostNodes"};
    explicit FakeHostNodes(weft::NetworkManager* manager) : HostNodeValue(manager, kind) {}

    void setNames(const Array<TM_String>& names) override { names_ = names; }
    Array<void*> pointers() override {
        Array<void*> found;
        for (const TM_String& name : names_) found.append(scene[name]);
        return found;
    }
    void forget(const void* object) override { forgotten.append(object); }
    Array<TM_String> names() const override { return names_; }
    TM_String asString() const override { return "[" + asStringForParameter() + "]"; }
    void fromString(const TM_String& text) override { names_ = text::split(text, " "); }
    TM_String asStringForParameter() const override {
        TM_String text;
        for (const TM_String& name : names_) text += (text.empty() ? "" : " ") + name;
        return text;
    }
    bool checkNamesIntegrity() override {
        for (const TM_String& name : names_) {
            if (scene.count(name) == 0) return false;
        }
        return true;
    }
    void markStale() override { ++stale; }
    uint32_t classMask() const override { return 12; }

    std::map<TM_String, void*> scene;
    Array<const void*> forgotten;
    int stale = 0;

private:
    Array<TM_String> names_;
};

class HostNodeAttribute : public weft::Attribute {
public:
    HostNodeAttribute(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : Attribute(manager, name, parent) {
        appendClass<"HostNodeAttribute">();
        initializeValue(new FakeHostNodes(manager));
        initializeSpecializations({"Object", "Daemon"});
    }
    FakeHostNodes& own() const { return *static_cast<FakeHostNodes*>(value()); }
};

// A value with a text form and no other use.
class LabelValue : public weft::Value {
public:
    static constexpr weft::ValueKind kind{"LabelValue"};
    explicit LabelValue(weft::NetworkManager* manager) : Value(manager, kind) {}
    TM_String asString() const override { return "a label"; }
};

class LabelAttribute : public weft::Attribute {
public:
    LabelAttribute(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : Attribute(manager, name, parent) {
        initializeValue(new LabelValue(manager));
        initializeSpecializations({"ParameterType"});
    }
};

class PinValues : public testing::Test {
protected:
    template <typename A>
    Pin* input(const Array<TM_String>& types = {}) {
        const std::string node = "T" + std::to_string(++count_);
        build.probe("Probe", node, [](LogicProbe& logic) { logic.input<A>("in"); });
        Pin* pin = build.pin(node + ".in");
        if (!types.empty()) pin->setAllowedSpecializations(types);
        return pin;
    }
    static weft::Numeric& numberOf(const Pin* pin) {
        return static_cast<NumericAttribute*>(pin->getWeftAttribute())->ownNumeric();
    }
    static weft::Enum& listOf(const Pin* pin) {
        return static_cast<EnumAttribute*>(pin->getWeftAttribute())->ownEnum();
    }
    Pin* list() {
        Pin* pin = input<EnumAttribute>();
        static_cast<EnumAttribute*>(pin->getWeftAttribute())->setOptions({"up", "down", "left"});
        return pin;
    }
    // Calls `set` on a clean pin: true when the pin is dirty afterwards.
    template <typename Set>
    static bool dirties(Pin* pin, Set set) {
        pin->getWeftAttribute()->setClean(true);
        set();
        return pin->isDirty();
    }

    SceneBuilder build;

private:
    int count_ = 0;
};

} // namespace

// --- numbers -----------------------------------------------------------------------------------

TEST_F(PinValues, EachNumberIsWrittenAsOneElementAndDirties) {
    Pin* real = input<NumericAttribute>({"Real"});
    numberOf(real).resize(4);
    EXPECT_TRUE(dirties(real, [&] { real->setFloatValue(2.5f); }));
    EXPECT_EQ(real->getFloatValue(), 2.5f);
    EXPECT_EQ(numberOf(real).size(), 1u);
    Pin* integer = input<NumericAttribute>({"Integer"});
    EXPECT_TRUE(dirties(integer, [&] { integer->setIntValue(-7); }));
    EXPECT_EQ(integer->getIntValue(), -7);
    Pin* wide = input<NumericAttribute>({"Integer64"});
    EXPECT_TRUE(dirties(wide, [&] { wide->setInt64Value(5000000000); }));
    EXPECT_EQ(wide->getInt64Value(), 5000000000);
    Pin* vector = input<NumericAttribute>({"Vector3"});
    EXPECT_TRUE(dirties(vector, [&] { vector->setVector3Value({1.0f, 2.0f, 3.0f}); }));
    EXPECT_EQ(vector->getVector3Value(), Vector3<float>(1.0f, 2.0f, 3.0f));
    Pin* color = input<NumericAttribute>({"Color4"});
    EXPECT_TRUE(dirties(color, [&] { color->setColor4Value({0.1f, 0.2f, 0.3f, 0.4f}); }));
    EXPECT_EQ(color->getColor4Value(), Color4<float>(0.1f, 0.2f, 0.3f, 0.4f));
}

TEST_F(PinValues, SettersOnPinsOfAnotherTypeDoNothing) {
    Pin* integer = input<NumericAttribute>({"Integer"});
    Pin* real = input<NumericAttribute>({"Real"});
    EXPECT_FALSE(dirties(integer, [&] { integer->setFloatValue(1.0f); }));
    EXPECT_FALSE(dirties(integer, [&] { integer->setInt64Value(1); }));
    EXPECT_FALSE(dirties(integer, [&] { integer->setBitValue(true); }));
    EXPECT_FALSE(dirties(integer, [&] { integer->setStringValue("[1] 5"); }));
    EXPECT_FALSE(dirties(integer, [&] { integer->setEnumValue(0); }));
    EXPECT_FALSE(dirties(integer, [&] { integer->setEnumValue("up"); }));
    EXPECT_FALSE(dirties(integer, [&] { integer->setSL_NodeValue("a"); }));
    EXPECT_FALSE(dirties(real, [&] { real->setIntValue(1); }));
    EXPECT_EQ(integer->getIntValue(), 0);
    EXPECT_EQ(real->getFloatValue(), 0.0f);
    Pin* text = input<StringAttribute>();
    EXPECT_FALSE(dirties(text, [&] { text->setVector3Value({1.0f, 1.0f, 1.0f}); }));
    EXPECT_FALSE(dirties(text, [&] { text->setColor4Value({1.0f, 1.0f, 1.0f, 1.0f}); }));
}

TEST_F(PinValues, GettersOnPinsOfAnotherTypeAnswerEmpty) {
    Pin* integer = input<NumericAttribute>({"Integer"});
    numberOf(integer).refValues<float>()[0] = 3.0f;
    EXPECT_EQ(integer->getFloatValue(), 0.0f);
    EXPECT_FALSE(integer->getBitValue());
    EXPECT_EQ(integer->getEnumValueAsInt(), 0);
    EXPECT_EQ(integer->getEnumValueAsString(), "");
    EXPECT_EQ(integer->getSL_NodeValueAsString(), "");
    EXPECT_EQ(integer->getSL_NodeValueAsStringForParameter(), "");
    EXPECT_TRUE(integer->getSL_NodeValue().empty());
    EXPECT_FALSE(integer->checkSL_NodeNamesIntegrity());
    EXPECT_EQ(integer->getCompatibleSluiceNodeClasses(), 0u);
    Pin* text = input<StringAttribute>();
    EXPECT_EQ(text->getIntValue(), 0);
    EXPECT_EQ(text->getInt64Value(), 0);
    EXPECT_EQ(text->getVector3Value(), Vector3<float>(0.0f));
}

TEST_F(PinValues, APolymorphicPinTakesEveryAllowedType) {
    Pin* pin = input<NumericAttribute>({"Integer", "Real"});
    EXPECT_EQ(pin->getType(), 23);
    EXPECT_TRUE(dirties(pin, [&] { pin->setFloatValue(4.5f); }));
    EXPECT_EQ(pin->getFloatValue(), 4.5f);
    EXPECT_TRUE(dirties(pin, [&] { pin->setIntValue(3); }));
    EXPECT_EQ(pin->getIntValue(), 3);
    EXPECT_FALSE(dirties(pin, [&] { pin->setInt64Value(3); }));
}

TEST_F(PinValues, AnEmptyNumberReadsAsItsDefault) {
    Pin* real = input<NumericAttribute>({"Real"});
    numberOf(real).resize(0);
    EXPECT_EQ(real->getFloatValue(), 0.0f);
    Pin* color = input<NumericAttribute>({"Color4"});
    numberOf(color).resize(0);
    EXPECT_EQ(color->getColor4Value(), Color4<float>(0.0f, 0.0f, 0.0f, 1.0f));
}

TEST_F(PinValues, ASetterDirtiesWhatLiesDownstream) {
    build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
    for (const char* path : {"R.in", "R.real", "A.in0", "A.result"}) build.at(path)->setClean(true);
    build.pin("R.in")->setFloatValue(1.0f);
    for (const char* path : {"R.in", "R.real", "A.in0", "A.result"}) {
        EXPECT_TRUE(build.pin(path)->isDirty()) << path;
    }
}

TEST_F(PinValues, APassThroughPinReadsAndWritesWhatItForwards) {
    build.add("Real", "R").add("Add", "A").connect("R.real", "A.in0");
    build.pin("A.in0")->addInternalConnection(build.pin("A.result"));
    static_cast<NumericAttribute*>(build.at("R.real"))->ownNumeric().setValue<float>(8.0f);
    EXPECT_EQ(build.pin("A.in0")->getFloatValue(), 8.0f);
    EXPECT_EQ(build.pin("A.result")->getFloatValue(), 8.0f);
    build.pin("A.in0")->setFloatValue(9.0f);
    EXPECT_EQ(build.seen<float>("R.real"), 9.0f);
    EXPECT_EQ(build.pin("A.in0")->value(), build.at("R.real")->value());
}

TEST_F(PinValues, AConnectedPinReadsItsOwnConstant) {
    build.add("Real", "R").add("Real", "S");
    build.pin("S.in")->setFloatValue(1.0f);
    build.connect("R.real", "S.in");
    static_cast<NumericAttribute*>(build.at("R.real"))->ownNumeric().setValue<float>(8.0f);
    EXPECT_EQ(build.pin("S.in")->getFloatValue(), 1.0f);
}

// --- bits, strings, lists ----------------------------------------------------------------------

TEST_F(PinValues, BitIsOneElement) {
    Pin* pin = input<BitArrayAttribute>();
    auto& bits = static_cast<BitArrayAttribute*>(pin->getWeftAttribute())->ownBits();
    bits.resize(5, true);
    bits.setBit(0, true);
    EXPECT_TRUE(pin->getBitValue());
    EXPECT_TRUE(dirties(pin, [&] { pin->setBitValue(false); }));
    EXPECT_FALSE(pin->getBitValue());
    EXPECT_EQ(bits.size(), 1u);
    pin->setBitValue(true);
    EXPECT_EQ(bits.asString(), "1");
    bits.resize(0, false);
    EXPECT_FALSE(pin->getBitValue());
}

TEST_F(PinValues, StringsAreTheValuesText) {
    for (Pin* pin :
         {input<StringAttribute>(), input<FilePathAttribute>(), input<FolderAttribute>()}) {
        EXPECT_TRUE(dirties(pin, [&] { pin->setStringValue(" a b "); }));
        EXPECT_EQ(pin->getStringValue(), " a b ");
    }
    Pin* real = input<NumericAttribute>({"Real"});
    real->setFloatValue(2.0f);
    EXPECT_EQ(real->getStringValue(), numberOf(real).asString());
}

TEST_F(PinValues, ListIsSetByTextOrByKey) {
    Pin* pin = list();
    EXPECT_TRUE(dirties(pin, [&] { pin->setEnumValue("down"); }));
    EXPECT_EQ(pin->getEnumValueAsInt(), 1);
    EXPECT_EQ(pin->getEnumValueAsString(), "down");
    EXPECT_TRUE(dirties(pin, [&] { pin->setEnumValue(2); }));
    EXPECT_EQ(pin->getEnumValueAsString(), "left");
    EXPECT_TRUE(dirties(pin, [&] { pin->setIntValue(0); })); // turned into a choice
    EXPECT_EQ(pin->getEnumValueAsString(), "up");
    EXPECT_TRUE(dirties(pin, [&] { pin->setStringValue("down"); }));
    EXPECT_EQ(pin->getEnumValueAsInt(), 1);
    EXPECT_FALSE(dirties(pin, [&] { pin->setEnumValue("Down"); }));
    EXPECT_FALSE(dirties(pin, [&] { pin->setEnumValue(3); }));
    EXPECT_FALSE(dirties(pin, [&] { pin->setIntValue(-1); }));
    EXPECT_FALSE(dirties(pin, [&] { pin->setStringValue(""); }));
    EXPECT_EQ(pin->getEnumValueAsInt(), 1);
    Array<TM_String> options;
    pin->getEnumOptions(options);
    EXPECT_EQ(options, (Array<TM_String>{"up", "down", "left"}));
}

TEST_F(PinValues, ChoosingMakesTheListOneElement) {
    Pin* pin = list();
    listOf(pin).refKeys().resize(3);
    pin->setEnumValue("left");
    EXPECT_EQ(listOf(pin).size(), 1u);
    listOf(pin).refKeys().clear();
    EXPECT_EQ(pin->getEnumValueAsInt(), -1);
    EXPECT_EQ(pin->getEnumValueAsString(), "");
    EXPECT_EQ(pin->getValueAsString(false), "-1 : ");
}

// --- host objects ------------------------------------------------------------------------------

TEST_F(PinValues, HostObjectsAreSetByNamesAndReadAsPointers) {
    Pin* pin = input<HostNodeAttribute>();
    FakeHostNodes& nodes = static_cast<HostNodeAttribute*>(pin->getWeftAttribute())->own();
    int sphere = 0;
    nodes.scene["Sphere"] = &sphere;
    EXPECT_TRUE(pin->isSluiceNodeType());
    EXPECT_TRUE(dirties(pin, [&] { pin->setSL_NodeValue(Array<TM_String>{"Sphere", "Cube"}); }));
    EXPECT_EQ(nodes.stale, 1);
    EXPECT_FALSE(pin->checkSL_NodeNamesIntegrity());
    EXPECT_EQ(pin->getSL_NodeValueAsString(), "[Sphere Cube]");
    EXPECT_EQ(pin->getSL_NodeValueAsStringForParameter(), "Sphere Cube");
    EXPECT_TRUE(dirties(pin, [&] { pin->setSL_NodeValue("Sphere"); }));
    EXPECT_TRUE(pin->checkSL_NodeNamesIntegrity());
    EXPECT_EQ(pin->getSL_NodeValue(), (Array<void*>{&sphere}));
    EXPECT_EQ(pin->getCompatibleSluiceNodeClasses(), 12u);
}

TEST_F(PinValues, HostObjectsAreOutOfReachWhileTheTypeIsAnother) {
    Pin* pin = input<HostNodeAttribute>({"Real"});
    FakeHostNodes& nodes = static_cast<HostNodeAttribute*>(pin->getWeftAttribute())->own();
    EXPECT_FALSE(dirties(pin, [&] { pin->setSL_NodeValue("Sphere"); }));
    EXPECT_TRUE(nodes.names().empty());
    EXPECT_EQ(pin->getSL_NodeValueAsString(), "");
    EXPECT_EQ(pin->getCompatibleSluiceNodeClasses(), 12u); // which asks the value alone
}

TEST_F(PinValues, ReferencesToADeadHostObjectAreBlankedInAllScenes) {
    Pin* pin = input<HostNodeAttribute>();
    SceneBuilder other;
    other.probe("Probe", "P", [](LogicProbe& logic) { logic.input<HostNodeAttribute>("in"); });
    // A value of one scene that an attribute of the other shares.
    auto& shared = static_cast<HostNodeAttribute*>(other.at("P.in"))->own();
    int dead = 0;
    RemoveNodeReferenceFromAllGraphs(&dead);
    EXPECT_EQ(shared.forgotten.size(), 1u);
    EXPECT_TRUE(shared.forgotten.contains(&dead));
    pin->getWeftAttribute()->setValue(&shared);
    build.scene.removeAllReferencesToNodePointer(&build);
    EXPECT_TRUE(shared.forgotten.contains(&build));
}

namespace {

class MeshLikeAttribute : public LabelAttribute {
public:
    using LabelAttribute::LabelAttribute;
    void removeReferencesTo(const Array<void*>& pointers) { removed = pointers; }
    Array<void*> removed;
};

} // namespace

TEST_F(PinValues, ReferencesAreRemovedFromOneAttributeClassOnly) {
    Pin* pin = input<MeshLikeAttribute>();
    input<LabelAttribute>();
    int a = 0;
    int b = 0;
    auto* attribute = static_cast<MeshLikeAttribute*>(pin->getWeftAttribute());
    build.scene.removeAllReferencesToPointer<MeshLikeAttribute>(&a);
    EXPECT_EQ(attribute->removed, (Array<void*>{&a}));
    SceneBuilder::manager().removeAllReferencesToPointers<MeshLikeAttribute>({&a, &b});
    EXPECT_EQ(attribute->removed, (Array<void*>{&a, &b}));
}

// --- tooltips ----------------------------------------------------------------------------------

TEST_F(PinValues, TextFormOfEveryType) {
    const auto number = [&](const char* type) { return input<NumericAttribute>({type}); };
    Pin* pin = number("Real");
    pin->setFloatValue(2.5f);
    EXPECT_EQ(pin->getValueAsString(false), "2.500000");
    pin = number("Integer");
    pin->setIntValue(-3);
    EXPECT_EQ(pin->getValueAsString(false), "-3");
    pin = number("Integer64");
    pin->setInt64Value(5000000000); // the low 32 bits
    EXPECT_EQ(pin->getValueAsString(false), "705032704");
    pin = number("Vector3");
    pin->setVector3Value({1.0f, 2.0f, 0.5f});
    EXPECT_EQ(pin->getValueAsString(false), "1.000000 2.000000 0.500000");
    pin = number("Color4");
    pin->setColor4Value({0.25f, 0.5f, 0.75f, 1.0f});
    EXPECT_EQ(pin->getValueAsString(false), "0.250000 0.500000 0.750000 1.000000");
    pin = number("Quaternion");
    numberOf(pin).setValue(Quaternion<float>{1.0f, 2.0f, 3.0f, 4.0f});
    EXPECT_EQ(pin->getValueAsString(false), "1.000000 2.000000 3.000000 4.000000");
    pin = number("Matrix4");
    EXPECT_EQ(pin->getValueAsString(false),
              "1.000000 0.000000 0.000000 0.000000, 0.000000 1.000000 0.000000 0.000000, "
              "0.000000 0.000000 1.000000 0.000000, 0.000000 0.000000 0.000000 1.000000");
    EXPECT_EQ(pin->getValueAsString(true),
              "1.000000 0.000000 0.000000 0.000000\n0.000000 1.000000 0.000000 0.000000\n"
              "0.000000 0.000000 1.000000 0.000000\n0.000000 0.000000 0.000000 1.000000");
    pin = input<BitArrayAttribute>();
    EXPECT_EQ(pin->getValueAsString(false), "false");
    pin->setBitValue(true);
    EXPECT_EQ(pin->getValueAsString(false), "true");
    pin = list();
    pin->setEnumValue("left");
    EXPECT_EQ(pin->getValueAsString(false), "2 : left");
    for (Pin* text :
         {input<StringAttribute>(), input<FilePathAttribute>(), input<FolderAttribute>()}) {
        text->setStringValue("some text");
        EXPECT_EQ(text->getValueAsString(false), "some text");
    }
    EXPECT_EQ(input<LabelAttribute>()->getValueAsString(false), "a label");
    EXPECT_EQ(input<LabelAttribute>({"Mesh"})->getValueAsString(false), "");
    EXPECT_EQ(input<HostNodeAttribute>()->getValueAsString(false), "");
}

TEST_F(PinValues, TextFormFollowsTheOnlyCurrentType) {
    Pin* pin = input<NumericAttribute>({"Integer", "Real"});
    numberOf(pin).refValues<float>()[0] = 1.5f;
    EXPECT_EQ(pin->getValueAsString(false), ""); // open
    pin->setSpecializationOverride("Real");
    EXPECT_EQ(pin->getValueAsString(false), "1.500000");
    // A list that is fed by a number shows the number.
    build.add("Integer", "I");
    Pin* fed = list();
    build.pin("I.integer");
    build.scene.connect(build.pin("I.integer"), fed, false);
    static_cast<NumericAttribute*>(build.at("I.integer"))->ownNumeric().setValue<int32_t>(2);
    EXPECT_EQ(fed->getValueAsString(false), "2");
}

TEST_F(PinValues, TextFormOfAnInputIsWhatItSees) {
    build.add("Real", "R").add("Real", "S").connect("R.real", "S.in");
    build.pin("S.in")->setFloatValue(1.0f);
    static_cast<NumericAttribute*>(build.at("R.real"))->ownNumeric().setValue<float>(8.0f);
    EXPECT_EQ(build.pin("S.in")->getValueAsString(false), "8.000000");
    EXPECT_EQ(build.pin("R.real")->getValueAsString(false), "8.000000");
    EXPECT_EQ(build.pin("S.real")->getValueAsString(false), "0.000000");
}

TEST_F(PinValues, TextFormOfAPassThroughIsThatOfItsFirstRealSource) {
    build.add("Real", "R").add("GraphCancel", "C").add("GraphCancel", "D");
    EXPECT_EQ(build.pin("C.in")->getValueAsString(false), "");
    EXPECT_EQ(build.pin("C.through")->getValueAsString(false), "");
    build.connect("C.through", "D.in");
    EXPECT_EQ(build.pin("D.through")->getValueAsString(false), "");
    build.connect("R.real", "C.in");
    static_cast<NumericAttribute*>(build.at("R.real"))->ownNumeric().setValue<float>(8.0f);
    for (const char* path : {"C.in", "C.through", "D.in", "D.through"}) {
        EXPECT_EQ(build.pin(path)->getValueAsString(false), "8.000000") << path;
    }
    // Names that no path leads by are no obstacle.
    build.node("R")->setName("with.point");
    EXPECT_EQ(build.pin("D.through")->getValueAsString(false), "8.000000");
}

TEST_F(PinValues, AnInternallyConnectedPinWithoutSourceHasNoTextForm) {
    build.add("Add", "A");
    Pin* pin = build.pin("A.in0");
    pin->setFloatValue(3.0f);
    pin->setSpecializationOverride("Real");
    pin->addInternalConnection(build.pin("A.result"));
    EXPECT_EQ(pin->getValueAsString(false), "");
    EXPECT_EQ(pin->getFloatValue(), 3.0f);
}

TEST_F(PinValues, EmptyNumbersHaveATextForm) {
    Pin* pin = input<NumericAttribute>({"Real"});
    numberOf(pin).resize(0);
    EXPECT_EQ(pin->getValueAsString(false), "0.000000");
    Pin* bits = input<BitArrayAttribute>();
    static_cast<BitArrayAttribute*>(bits->getWeftAttribute())->ownBits().resize(0, false);
    EXPECT_EQ(bits->getValueAsString(false), "false");
}
