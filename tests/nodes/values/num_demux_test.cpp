// SPDX-License-Identifier: Apache-2.0
// NumDemux: one value, read as the type that is asked for.
#include <gtest/gtest.h>

#include "nodes/values/declarations.h"
#include "nodes/values/globals/common_storage.h"
#include "nodes/values/logic_net.h"

namespace {

using namespace weft;
using sluice_tests::LogicNet;
using tidemark::TM_String;

TEST(NumDemux, DeclaresItsPins) {
    EXPECT_EQ(sluice_tests::declared("NumDemux"),
              "NumDemux\n"
              "in input NumericAttribute \"Integer\", \"Integer64\", \"Real\", \"Vector3\", "
              "\"Color4\", \"Quaternion\", \"Matrix4\" = Integer:0 Integer64:0 Real:0 Vector3:0 "
              "Color4:(0,0,0,1) Quaternion:(1,0,0,0) Matrix4:(1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)\n"
              "out integer NumericAttribute \"Integer\"\n"
              "out integer64 NumericAttribute \"Integer64\"\n"
              "out real NumericAttribute \"Real\"\n"
              "out vector3 NumericAttribute \"Vector3\"\n"
              "out color4 NumericAttribute \"Color4\"\n"
              "out matrix4 NumericAttribute \"Matrix4\"\n"
              "out quaternion NumericAttribute \"Quaternion\"\n");
    EXPECT_EQ(sluice_tests::missingTexts("NumDemux"), "");
    EXPECT_EQ(sluice_tests::missingAffects("NumDemux"), "");
    LogicNet net;
    EXPECT_EQ(net.add("NumDemux", "d").getDescription(),
              "This node separates all possible components of a numeric value.\nIt is intended to "
              "be used when the specialization of the pin is too generic but the user knows the "
              "real type of the stored value of the input.");
}

/// A constant into a demux: c > d.input.
class DemuxNet : public LogicNet {
public:
    DemuxNet(const char* type, const char* output) {
        add(type, "c");
        add("NumDemux", "d");
        EXPECT_TRUE(link(TM_String("c.") + output, "d.input"));
    }
};

TEST(NumDemux, SharesTheValueOfItsType) {
    DemuxNet net("Real", "real");
    net.numbers<float>("c.in", {1.5f, 2.5f});
    EXPECT_EQ(net.text("d.real"), "[3] 1.5,2.5");
    EXPECT_EQ(net.pin("d.real").currentValue(), net.pin("c.real").value());
    EXPECT_TRUE(net.pin("d.real").isClean());
}

TEST(NumDemux, EveryOutputReadsItsOwnType) {
    const std::pair<const char*, const char*> rows[] = {
        {"integer", "[1] 0"},
        {"integer64", "[2] 0"},
        {"real", "[3] 1.5"},
        {"vector3", "[4] (0,0,0)"},
        {"color4", "[5] (0,0,0,1)"},
        {"quaternion", "[6] (1,0,0,0)"},
        {"matrix4", "[7] (1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1)"},
    };
    for (const auto& [output, text] : rows) {
        DemuxNet net("Real", "real");
        net.numbers<float>("c.in", {1.5f});
        EXPECT_EQ(net.text(TM_String("d.") + output), text);
    }
}

TEST(NumDemux, TheTypeReachesTheSourceAndTheLastOutputWins) {
    DemuxNet net("Real", "real");
    net.numbers<float>("c.in", {1.5f, 2.5f});
    EXPECT_EQ(net.text("d.real"), "[3] 1.5,2.5");
    EXPECT_EQ(net.text("d.integer"), "[1] 0");
    EXPECT_EQ(net.pin("c.real").currentValue()->asString(), "[1] 0");
    EXPECT_EQ(net.pin("d.real").currentValue()->asString(), "[1] 0");
    net.pin("d.real").markDirty(true);
    EXPECT_EQ(net.text("d.real"), "[3] 1.5,2.5");
}

TEST(NumDemux, WithoutASourceTheOutputIsNamed) {
    LogicNet net;
    Node& demux = net.add("NumDemux", "d");
    for (const char* output :
         {"integer", "integer64", "real", "vector3", "color4", "matrix4", "quaternion"}) {
        Attribute& pin = net.pin(TM_String("d.") + output);
        const TM_String before = pin.currentValue()->asString();
        demux.refMessages().clear();
        demux.doUpdate(&pin);
        EXPECT_EQ(net.messages("d"),
                  TM_String("[error] Output pin '") + output + "' has no associated input\n");
        EXPECT_EQ(pin.currentValue()->asString(), before);
        EXPECT_FALSE(pin.isClean());
    }
}

TEST(NumDemux, AQuietNodeSaysNothing) {
    LogicNet net;
    Node& demux = net.add("NumDemux", "d");
    demux.refMessages().setVerbosityLevel(1);
    demux.doUpdate(&net.pin("d.real"));
    EXPECT_EQ(net.messages("d"), "");
    EXPECT_FALSE(net.pin("d.real").isClean());
}

TEST(NumDemux, ReadsAVariableWhoseTypeTheGraphDoesNotKnow) {
    CommonStorage::instance().removeAll();
    LogicNet net;
    net.add("Vector3", "v");
    net.add("SetNumGlobalVariable", "s");
    net.add("GetNumGlobalVariable", "g");
    net.add("NumDemux", "d");
    net.link("v.vector", "s.in");
    net.link("g.out", "d.input");
    net.strings("s.name", {"wind"});
    net.strings("g.name", {"wind"});
    net.numbers<Vector3<float>>("v.in", {{1, 2, 3}, {4, 5, 6}});
    net.refresh("s.through");
    EXPECT_EQ(net.pin("d.input").specializations().size(), 7u);
    EXPECT_EQ(net.text("d.vector3"), "[4] (1,2,3),(4,5,6)");
    CommonStorage::instance().removeAll();
}

TEST(NumDemux, APurgeLeavesTheSourceAlone) {
    DemuxNet net("Real", "real");
    net.numbers<float>("c.in", {1.5f});
    net.refresh("d.real");
    net.node("d").purge();
    EXPECT_EQ(net.text("c.real"), "[3] 1.5");
    EXPECT_NE(net.pin("d.real").currentValue(), net.pin("c.real").currentValue());
}

TEST(NumDemux, EmptyArraysAndValuesOfAnotherClass) {
    DemuxNet net("Real", "real");
    net.numbers<float>("c.in", {});
    EXPECT_EQ(net.text("d.real"), "[3] ");
    EXPECT_EQ(net.text("d.integer"), "[1] 0");
    Retained<StringValue> other(new StringValue(&net.manager()));
    net.pin("c.real").setValue(other.get());
    net.pin("d.real").markDirty(true);
    net.refresh("d.real");
    EXPECT_EQ(net.messages("d"), "");
}

} // namespace
