// SPDX-License-Identifier: Apache-2.0
// Tests of the file form of pins: every type written and read, and values that are malformed.
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <map>
#include <sstream>

#include "core/bit_array.h"
#include "core/enum_value.h"
#include "core/evaluate_attribute.h"
#include "core/host_node_value.h"
#include "core/string_value.h"
#include "persistence/files.h"
#include "persistence/graph_parsing_helper.h"
#include "persistence/tree_access.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::LogicProbe;
using support::RecordingHost;
using support::SceneBuilder;
using weft::NumericAttribute;
using Posts = std::vector<std::string>;

namespace {

// References to host objects; "Box01" and "Box02" exist.
class FakeHostNodes : public weft::HostNodeValue {
public:
    static constexpr weft::ValueKind kind{"FakeHostNodes"};
    explicit FakeHostNodes(weft::NetworkManager* manager) : HostNodeValue(manager, kind) {}

    uint32_t size() const override { return names_.size(); }
    void copyFrom(const Value*) override {}
    void purge() override { names_.clear(); }
    uint64_t estimatedSize() const override { return 0; }
    void setNames(const Array<TM_String>& names) override { names_ = names; }
    Array<void*> pointers() override { return {}; }
    void forget(const void*) override {}
    Array<TM_String> names() const override { return names_; }
    TM_String asString() const override { return "[" + asStringForParameter() + "]"; }
    void fromString(const TM_String& text) override { names_ = text::split(text, " "); }
    TM_String asStringForParameter() const override {
        TM_String text;
        for (const TM_String& name : names_) text += (text.empty() ? "" : " ") + name;
        return text;
    }
    bool checkNamesIntegrity() override {
        ++integrityChecks;
        return true;
    }
    void markStale() override {}
    uint32_t classMask() const override { return 0; }

    int integrityChecks = 0;

private:
    Array<TM_String> names_;
};

class HostNodesAttribute : public weft::Attribute {
public:
    HostNodesAttribute(weft::NetworkManager* manager, const TM_String& name, weft::Node* parent)
        : Attribute(manager, name, parent) {
        initializeValue(new FakeHostNodes(manager));
        initializeSpecializations({"Object"});
    }
};

// One input of every kind, and an output to pass things on to.
void declareAllPins(LogicProbe& logic) {
    for (const char* type : {"Real", "Integer", "Integer64", "Vector3", "Color4"}) {
        logic.input<NumericAttribute>(type)->setAllowedSpecializations({type});
    }
    logic.input<weft::BitArrayAttribute>("Bit");
    logic.input<weft::StringAttribute>("String");
    logic.input<weft::FilePathAttribute>("FilePath");
    logic.input<weft::FolderAttribute>("Folder");
    logic.input<weft::EnumAttribute>("List")->setOptions({"first one", "second one"});
    logic.input<HostNodesAttribute>("Object");
    for (const char* type : {"Matrix4", "Quaternion", "Particles", "Box", "Mesh", "Condition",
                             "ParameterType", "Curve", "Image"}) {
        logic.input<weft::Attribute>(type)->setAllowedSpecializations({type});
    }
    logic.input<NumericAttribute>("Polymorphic");
    logic.output<weft::Attribute>("out");
    logic.output<weft::Attribute>("second");
}

class PinXml : public testing::Test {
protected:
    PinXml() { build.probe("Probe", "P", declareAllPins); }

    Pin& pin(const std::string& name) { return *build.pin("P." + name); }

    // "type|value", the value "-" when there is none.
    std::string written(const std::string& name) {
        PropertyTree tree;
        pin(name).write_toBoostPropertyTree(tree);
        EXPECT_EQ(tree::childText(tree, "name"), name);
        return tree::childText(tree, "type") + "|" +
               (tree::child(tree, "value") ? tree::childText(tree, "value") : "-");
    }

    bool read(const std::string& name, const std::string& type, const std::string& value) {
        PropertyTree tree;
        tree.put("type", type);
        tree.put("value", value);
        tree.put("internal-connections.output", "out");
        pin(name).refInternalConnectionsFromImport().clear();
        return pin(name).read_fromBoostPropertyTree(tree);
    }

    bool hasReadInternalConnections(const std::string& name) {
        return pin(name).getInternalConnectionsFromImport() == Array<TM_String>{"out"};
    }

    float real(const std::string& text) {
        EXPECT_TRUE(read("Real", "real", text));
        return pin("Real").getFloatValue();
    }

    SceneBuilder build;
    RecordingHost host;
};

} // namespace

TEST_F(PinXml, WritesTypeAndValueOfEveryKind) {
    pin("Real").setFloatValue(0.1f);
    pin("Integer").setIntValue(-7);
    pin("Integer64").setInt64Value(5000000000);
    pin("Vector3").setVector3Value({1, 0.5f, -2});
    pin("Color4").setColor4Value({1, 0.5f, 0, 0.25f});
    pin("Bit").setBitValue(true);
    pin("String").setStringValue(" a ");
    pin("FilePath").setStringValue("/a/b.png");
    pin("Folder").setStringValue("/a");
    pin("List").setEnumValue(1);
    pin("Object").setSL_NodeValue(Array<TM_String>{"Box01", "Box02"});
    const std::map<std::string, std::string> expected = {
        {"Real", "real|0.1"},
        {"Integer", "integer|-7"},
        {"Integer64", "integer64|5000000000"},
        {"FilePath", "file|/a/b.png"},
        {"Vector3", "vector3|1.000000,0.500000,-2.000000"},
        {"Matrix4", "matrix4|"},
        {"Quaternion", "quaternion|"},
        {"Color4", "color4|1.000000,0.500000,0.000000,0.250000"},
        {"Particles", "graph_particles|"},
        {"Box", "axis_aligned_box3|"},
        {"Mesh", "mesh|"},
        {"Folder", "folder|/a"},
        {"String", "string| a "},
        {"Condition", "condition|"},
        {"Bit", "bit|true"},
        {"List", "list|second one"},
        {"ParameterType", "parameter_type|"},
        {"Object", "sluice_node|Box01 Box02"},
        {"Polymorphic", "polymorphic|"},
        {"Curve", "|-"},
        {"Image", "|-"},
    };
    for (const auto& [name, text] : expected) EXPECT_EQ(written(name), text) << name;
}

TEST_F(PinXml, WritesRealsWithSevenDigits) {
    const std::map<float, std::string> texts = {
        {1.0f, "1"},
        {-0.5f, "-0.5"},
        {16777216.0f, "1.677722e+07"},
        {1234567.0f, "1234567"},
        {1e-5f, "1e-05"},
        {3.14159274f, "3.141593"},
        {3.4e38f, "3.4e+38"},
    };
    for (const auto& [number, text] : texts) {
        pin("Real").setFloatValue(number);
        EXPECT_EQ(written("Real"), "real|" + text);
    }
    pin("Real").setFloatValue(std::numeric_limits<float>::infinity());
    EXPECT_EQ(written("Real"), "real|inf");
}

TEST_F(PinXml, ReadsReals) {
    EXPECT_EQ(real("2.5"), 2.5f);
    EXPECT_EQ(real(" -1e3 rest"), -1000.0f);
    EXPECT_EQ(real("1,5"), 1.0f);
    EXPECT_EQ(real("1e999"), std::numeric_limits<float>::infinity());
    EXPECT_EQ(real("-1e-999"), 0.0f);
    EXPECT_EQ(real("inf"), std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(real("nan")));
    EXPECT_EQ(real("word"), 0.0f);
    EXPECT_EQ(real(""), 0.0f);
    EXPECT_TRUE(hasReadInternalConnections("Real"));
}

TEST_F(PinXml, ReadsIntegers) {
    const std::map<std::string, int> texts = {
        {"12", 12},        {" -7x", -7}, {"", 0},
        {"word", 0},       {"1.9", 1},   {"2147483647", 2147483647},
        {"4294967297", 1}, {"+3", 3},    {"99999999999999999999", -1},
    };
    for (const auto& [text, number] : texts) {
        EXPECT_TRUE(read("Integer", "integer", text));
        EXPECT_EQ(pin("Integer").getIntValue(), number) << text;
    }
}

TEST_F(PinXml, ReadsThirtyTwoBitsOfSixtyFour) {
    EXPECT_TRUE(read("Integer64", "integer64", "5000000000"));
    EXPECT_EQ(pin("Integer64").getInt64Value(), 705032704);
    EXPECT_TRUE(read("Integer64", "integer64", "-3"));
    EXPECT_EQ(pin("Integer64").getInt64Value(), -3);
}

TEST_F(PinXml, ReadsBits) {
    for (const char* yes : {"true", "1", "Enable", "ENABLED", "yes", "no", "No"}) {
        pin("Bit").setBitValue(false);
        EXPECT_TRUE(read("Bit", "bit", yes));
        EXPECT_TRUE(pin("Bit").getBitValue()) << yes;
    }
    for (const char* no : {"false", "0", "disable", "Disabled", "on", "off", "2", "", " true"}) {
        pin("Bit").setBitValue(true);
        EXPECT_TRUE(read("Bit", "bit", no));
        EXPECT_FALSE(pin("Bit").getBitValue()) << no;
    }
}

TEST_F(PinXml, ReadsTexts) {
    const std::map<std::string, std::string> types = {
        {"String", "string"}, {"FilePath", "file"}, {"Folder", "folder"}};
    for (const auto& [name, type] : types) {
        EXPECT_TRUE(read(name, type, " a,b \n"));
        EXPECT_EQ(pin(name).getStringValue(), " a,b \n") << name;
        EXPECT_TRUE(hasReadInternalConnections(name));
    }
    EXPECT_TRUE(read("FilePath", "string", "x"));
    EXPECT_EQ(pin("FilePath").getStringValue(), "x");
}

TEST_F(PinXml, ReadsTheOptionOfAList) {
    EXPECT_TRUE(read("List", "list", "second one"));
    EXPECT_EQ(pin("List").getEnumValueAsInt(), 1);
    for (const char* unknown : {"first", "0", "", "Second one"}) {
        EXPECT_TRUE(read("List", "list", unknown));
        EXPECT_EQ(pin("List").getEnumValueAsInt(), 1) << unknown;
    }
    EXPECT_TRUE(read("List", "string", "first one"));
    EXPECT_EQ(pin("List").getEnumValueAsInt(), 0);
    EXPECT_TRUE(read("List", "integer", "1"));
    EXPECT_EQ(pin("List").getEnumValueAsInt(), 1);
}

TEST_F(PinXml, ReadsVectorsOfExactlyThreeParts) {
    EXPECT_TRUE(read("Vector3", "vector3", "1, -2.5,x"));
    EXPECT_EQ(pin("Vector3").getVector3Value(), Vector3<float>(1, -2.5f, 0));
    EXPECT_TRUE(hasReadInternalConnections("Vector3"));
    for (const char* bad : {"", "7", "7,8", "7,8,9,10", "7;8;9"}) {
        EXPECT_FALSE(read("Vector3", "vector3", bad)) << bad;
        EXPECT_EQ(pin("Vector3").getVector3Value(), Vector3<float>(1, -2.5f, 0)) << bad;
        EXPECT_FALSE(hasReadInternalConnections("Vector3")) << bad;
    }
}

TEST_F(PinXml, ReadsColoursOfThreePartsAndMore) {
    EXPECT_TRUE(read("Color4", "color4", "1,0.5,0"));
    EXPECT_EQ(pin("Color4").getColor4Value(), Color4<float>(1, 0.5f, 0, 1));
    EXPECT_TRUE(read("Color4", "color4", "1,0.5,0,0.25"));
    EXPECT_EQ(pin("Color4").getColor4Value(), Color4<float>(1, 0.5f, 0, 0.25f));
    EXPECT_TRUE(read("Color4", "color4", "0,0,0,0.5,9"));
    EXPECT_EQ(pin("Color4").getColor4Value(), Color4<float>(0, 0, 0, 0.5f));
    EXPECT_TRUE(hasReadInternalConnections("Color4"));
    for (const char* bad : {"", "7", "7,8"}) {
        EXPECT_FALSE(read("Color4", "color4", bad)) << bad;
        EXPECT_EQ(pin("Color4").getColor4Value(), Color4<float>(0, 0, 0, 0.5f)) << bad;
        EXPECT_FALSE(hasReadInternalConnections("Color4")) << bad;
    }
}

TEST_F(PinXml, ReadsNamesOfHostObjects) {
    EXPECT_TRUE(read("Object", "sluice_node", "Box02 Box01"));
    EXPECT_EQ(pin("Object").getSL_NodeValueAsStringForParameter(), "Box02 Box01");
    EXPECT_EQ(static_cast<FakeHostNodes*>(pin("Object").value())->integrityChecks, 1);
    EXPECT_TRUE(read("Real", "sluice_node", "Box01"));
    EXPECT_EQ(pin("Real").getFloatValue(), 0.0f);
}

TEST_F(PinXml, TypesWithoutValueAreReadSilently) {
    for (const char* type : {"graph_particles", "axis_aligned_box3", "polymorphic", ""}) {
        EXPECT_TRUE(read("Real", type, "5")) << type;
        EXPECT_EQ(pin("Real").getFloatValue(), 0.0f) << type;
        EXPECT_TRUE(hasReadInternalConnections("Real")) << type;
    }
    EXPECT_EQ(host.posts, Posts());
}

TEST_F(PinXml, UnknownTypesAreReportedAndKeepTheDefault) {
    const char* const types[] = {"matrix4",        "quaternion", "mesh", "condition",
                                 "parameter_type", "Real",       "text"};
    Posts expected;
    for (const char* type : types) {
        EXPECT_TRUE(read("Real", type, "5")) << type;
        EXPECT_EQ(pin("Real").getFloatValue(), 0.0f) << type;
        EXPECT_TRUE(hasReadInternalConnections("Real")) << type;
        expected.push_back(std::string("2264|P.Real|") + type);
    }
    EXPECT_EQ(host.posts, expected);
}

TEST_F(PinXml, ValuesOfAnotherTypeAreNotStored) {
    EXPECT_TRUE(read("Integer", "real", "5"));
    EXPECT_EQ(pin("Integer").getIntValue(), 0);
    EXPECT_TRUE(read("Real", "integer", "5"));
    EXPECT_EQ(pin("Real").getFloatValue(), 0.0f);
    EXPECT_TRUE(read("String", "bit", "true"));
    EXPECT_EQ(pin("String").getStringValue(), "");
    for (const char* type : {"real", "bit", "integer", "integer64", "string", "file", "folder",
                             "list", "vector3", "color4", "sluice_node"}) {
        for (const char* name : {"Matrix4", "Mesh", "Curve", "Polymorphic", "Bit", "Object"}) {
            read(name, type, "1,2,3");
        }
    }
    EXPECT_EQ(host.posts, Posts());
}

TEST_F(PinXml, MissingElementsReadAsEmptyTexts) {
    pin("Real").setFloatValue(4);
    const PropertyTree nothing;
    EXPECT_TRUE(pin("Real").read_fromBoostPropertyTree(nothing));
    EXPECT_EQ(pin("Real").getFloatValue(), 4.0f);
    PropertyTree typeAlone;
    typeAlone.put("type", "real");
    EXPECT_TRUE(pin("Real").read_fromBoostPropertyTree(typeAlone));
    EXPECT_EQ(pin("Real").getFloatValue(), 0.0f);
}

TEST_F(PinXml, ReadsInternalConnectionsOfInputsOnly) {
    PropertyTree tree;
    tree.add("internal-connections.output", "out");
    tree.add("internal-connections.output", "second");
    tree.add("internal-connections.other", "no");
    pin("Real").refInternalConnectionsFromImport() = {"old"};
    pin("Real").readInternalConnections_fromBoostPropertyTree(tree);
    EXPECT_EQ(pin("Real").getInternalConnectionsFromImport(), (Array<TM_String>{"out", "second"}));
    pin("Real").readInternalConnections_fromBoostPropertyTree(PropertyTree());
    EXPECT_TRUE(pin("Real").getInternalConnectionsFromImport().empty());
    pin("out").readInternalConnections_fromBoostPropertyTree(tree);
    EXPECT_TRUE(pin("out").getInternalConnectionsFromImport().empty());
}

TEST_F(PinXml, WritesInternalConnectionsWhereThereAreAny) {
    auto& logic = static_cast<support::ProbeNode*>(build.node("P"))->logic();
    logic.addAttributeAllowedPassThrough(build.at("P.Mesh"), build.at("P.out"));
    logic.addAttributeAllowedPassThrough(build.at("P.Mesh"), build.at("P.second"));
    PropertyTree before;
    pin("Mesh").write_toBoostPropertyTree(before);
    EXPECT_EQ(tree::child(before, "internal-connections"), nullptr);
    build.at("P.Mesh")->addPassThrough(build.at("P.out"));
    build.at("P.Mesh")->addPassThrough(build.at("P.second"));
    PropertyTree after;
    pin("Mesh").write_toBoostPropertyTree(after);
    PropertyTree expected;
    ASSERT_TRUE(GraphParsingHelper::XML_stringToPropertyTree(
        "<name>Mesh</name><type>mesh</type><value/><internal-connections><output>out</output>"
        "<output>second</output></internal-connections>",
        expected));
    EXPECT_EQ(after, expected);
}
