// SPDX-License-Identifier: Apache-2.0
// `sluice run --set PIN=@FILE`: curves from files, what pins show of them, and what is refused.
#include "tool/program.h"

namespace sluice_test {
namespace {

class CurveFileTest : public ProgramTest {
protected:
    CurveFileTest() {
        file("eval.xml", GraphText()
                             .node("Times", "Real", {{"in", "real", "1"}})
                             .node("Curve", "CurveEval")
                             .node("E", "Evaluator", {{"evaluate", "", ""}})
                             .link("Times.real", "Curve.time")
                             .link("Curve.result", "E.evaluate")
                             .text());
        file("keys.xml", GraphText()
                             .node("Keys", "GetCurveKeys")
                             .node("Info", "GetCurveProperties")
                             .node("Key", "GetKeyProperties")
                             .link("Keys.keys", "Key.key")
                             .text());
        file("line.json", R"({"keys": [{"x": 0, "y": 0, "type": "linear"},
                                       {"x": 2, "y": 10, "type": "linear"}]})");
    }

    // The values of `root.Curve.result` at these times for a curve.
    Json valuesAt(const std::string& times, const std::string& curve) {
        const Ended ended =
            sluice({"run", "eval.xml", "--json", "--set", "root.Times.in=" + times, "--set",
                    "root.Curve.curve=" + curve, "--get", "root.Curve.result"});
        EXPECT_EQ(ended.status, 0) << ended.err;
        const Json json = ended.json();
        return json.contains("pins") && !json["pins"].empty() ? json["pins"][0]["value"] : Json();
    }
    // What pins of keys.xml show for a curve.
    Json shown(const std::string& pin, const std::string& curve) {
        const Ended ended =
            sluice({"run", "keys.xml", "--json", "--set", "root.Keys.curve=" + curve, "--set",
                    "root.Info.curve=" + curve, "--pull", pin});
        EXPECT_EQ(ended.status, 0) << ended.err;
        const Json json = ended.json();
        return json.contains("pins") && !json["pins"].empty() ? json["pins"][0]["value"] : Json();
    }
    // What is said, after the file's name, about a file of this content.
    std::string refusal(const std::string& content) {
        file("bad.json", content);
        const Ended ended = sluice({"run", "eval.xml", "--set", "root.Curve.curve=@bad.json"});
        EXPECT_EQ(ended.status, 2) << content;
        EXPECT_EQ(ended.out, "");
        const std::string named = "\"bad.json\"";
        const std::size_t start = ended.err.find(named);
        EXPECT_NE(start, std::string::npos) << ended.err;
        if (start == std::string::npos) return ended.err;
        std::string said = ended.err.substr(start + named.size());
        return said.substr(0, said.find('\n'));
    }
};

TEST_F(CurveFileTest, CurveIsEvaluatedAtTheTimes) {
    EXPECT_EQ(valuesAt("[-1, 0, 0.5, 1, 2, 9]", "@line.json"), Json({0, 0, 2.5, 5, 10, 10}));
}

TEST_F(CurveFileTest, EveryFieldIsRead) {
    file("all.json", R"({"keys": [
        {"x": 0.5, "y": -1, "type": "bezier", "ease from": 1, "ease to": 2, "incoming": 3,
         "outgoing": 4, "t": 5, "c": 6, "b": 7, "unify tan": true},
        {"x": 1, "y": 2},
        {"x": 2, "y": 3, "type": "step"},
        {"x": 3, "y": 3, "type": 0}],
        "pre behaviour": "zero", "post behaviour": "loop-offset",
        "expression": "t + frame", "expression plus spline": true, "frame rate": 25})");
    const std::string all = "@all.json";
    EXPECT_EQ(shown("root.Key.x", all), Json({0.5, 1, 2, 3}));
    EXPECT_EQ(shown("root.Key.y", all), Json({-1, 2, 3, 3}));
    EXPECT_EQ(shown("root.Key.type", all), Json({2, 1, 3, 0}));
    EXPECT_EQ(shown("root.Key.ease from", all), Json({1, 0, 0, 0}));
    EXPECT_EQ(shown("root.Key.ease to", all), Json({2, 0, 0, 0}));
    EXPECT_EQ(shown("root.Key.incoming", all), Json({3, 0, 0, 0}));
    EXPECT_EQ(shown("root.Key.outgoing", all), Json({4, 0, 0, 0}));
    EXPECT_EQ(shown("root.Key.t", all), Json({5, 0, 0, 0}));
    EXPECT_EQ(shown("root.Key.c", all), Json({6, 0, 0, 0}));
    EXPECT_EQ(shown("root.Key.b", all), Json({7, 0, 0, 0}));
    EXPECT_EQ(shown("root.Key.unify tan", all), Json({true, false, false, false}));
    EXPECT_EQ(shown("root.Info.pre behaviour", all), Json({0}));
    EXPECT_EQ(shown("root.Info.post behaviour", all), Json({3}));
    EXPECT_EQ(shown("root.Info.expression", all), Json({"t + frame"}));
    EXPECT_EQ(shown("root.Info.expression plus spline", all), Json({true}));
    EXPECT_EQ(valuesAt("0", all), Json({0}));
    EXPECT_EQ(valuesAt("2.5", all), Json({2.5 + 62.5 + 3}));
}

TEST_F(CurveFileTest, AnEmptyObjectIsACurveWithoutKeys) {
    EXPECT_EQ(valuesAt("[1, 2]", "{}"), Json({0, 0}));
    EXPECT_EQ(shown("root.Info.key count", "{}"), Json({0}));
    EXPECT_EQ(shown("root.Info.pre behaviour", "{}"), Json({1}));
    EXPECT_EQ(shown("root.Info.post behaviour", "{}"), Json({1}));
}

TEST_F(CurveFileTest, OneFileMayHoldSeveralCurvesAndOnePinTakeSeveralFiles) {
    file("two.json", R"([{"expression": "t"}, {"expression": "-t"}])");
    EXPECT_EQ(shown("root.Info.expression", "@two.json"), Json({"t", "-t"}));
    EXPECT_EQ(shown("root.Info.key count", R"(["@line.json", "@two.json"])"), Json({2, 0, 0}));
    EXPECT_EQ(shown("root.Info.key count", "[]"), Json::array());
}

TEST_F(CurveFileTest, SettingFilesNameCurveFilesAsWell) {
    file("settings.json", R"({"root.Curve.curve": "@line.json", "root.Times.in": 1})");
    const Ended ended =
        sluice({"run", "eval.xml", "--set-file", "settings.json", "--get", "root.Curve.result"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "root.Curve.result = [5.0]\n");
}

TEST_F(CurveFileTest, PinsShowASummary) {
    file("two.json", R"([{"keys": [{"x": 1, "y": 2.5}]}, {"expression": "t"}])");
    const Ended text = sluice({"run", "eval.xml", "--set", "root.Curve.curve=[\"@two.json\",null]",
                               "--get", "root.Curve.curve"});
    EXPECT_EQ(text.out, "root.Curve.curve = [{\"keys\": 1, \"expression\": \"\"}, "
                        "{\"keys\": 0, \"expression\": \"t\"}, null]\n");
    const Ended json = sluice({"run", "eval.xml", "--json", "--set", "root.Curve.curve=@two.json",
                               "--get", "root.Curve.curve"});
    const Json pin = json.json()["pins"][0];
    EXPECT_EQ(pin["type"], "Curve");
    EXPECT_EQ(pin["size"], 2);
    EXPECT_EQ(pin["value"], Json::parse(R"([{"keys": 1, "expression": ""},
                                            {"keys": 0, "expression": "t"}])"));
    EXPECT_EQ(shown("root.Keys.keys", "@two.json"),
              Json::parse(R"([{"x": 1, "y": 2.5, "type": "tcb"}])"));
}

TEST_F(CurveFileTest, PinsWithoutACurveShowNull) {
    const Ended ended = sluice({"run", "eval.xml", "--get", "root.Curve.curve"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.out, "root.Curve.curve = [null]\n");
    EXPECT_NE(ended.err.find("Input Curve is null"), std::string::npos) << ended.err;
}

TEST_F(CurveFileTest, CurvesChangeFromFrameToFrame) {
    file("frames.xml", GraphText()
                           .node("Add", "CurveAddKey")
                           .node("Key", "Key")
                           .node("Info", "GetCurveProperties")
                           .node("E", "Evaluator", {{"evaluate", "", ""}})
                           .link("Key.key", "Add.key")
                           .link("Add.out curve", "Info.curve")
                           .link("Info.key count", "E.evaluate")
                           .text());
    const Ended ended =
        sluice({"run", "frames.xml", "-f", "1-3", "--set", "root.Add.curve=@line.json", "--get",
                "root.Info.key count", "--progress", "none"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_NE(ended.out.find("[3]"), std::string::npos) << ended.out;
    EXPECT_NE(ended.out.find("[5]"), std::string::npos) << ended.out;
}

TEST_F(CurveFileTest, BadFilesAreRefusedByFileAndField) {
    EXPECT_NE(refusal("{").find("is no JSON document: parse error at line 1"), std::string::npos);
    EXPECT_EQ(refusal("3"), ": not an object: 3");
    EXPECT_EQ(refusal("[{}, null]"), ": [1]: not an object: null");
    EXPECT_EQ(refusal(R"({"keyz": []})"), ": unknown field \"keyz\" (did you mean \"keys\"?)");
    EXPECT_EQ(refusal(R"({"keys": {}})"), ": keys: not a list of keys: {}");
    EXPECT_EQ(refusal(R"({"keys": [{"x": 0, "y": 0}, {"y": 0}]})"),
              ": keys[1]: the key has no \"x\"");
    EXPECT_EQ(refusal(R"({"keys": [{"x": 0}]})"), ": keys[0]: the key has no \"y\"");
    EXPECT_EQ(refusal(R"({"keys": [{"x": "0", "y": 0}]})"), ": keys[0].x: not a number: \"0\"");
    EXPECT_EQ(refusal(R"({"keys": [{"x": 0, "y": 0, "type": "beziér"}]})")
                  .find(": keys[0].type: unknown: \"beziér\""),
              0u);
    EXPECT_EQ(refusal(R"({"keys": [{"x": 0, "y": 0, "type": 1.5}]})"),
              ": keys[0].type: neither a name nor a whole number: 1.5");
    EXPECT_EQ(refusal(R"({"keys": [{"x": 0, "y": 0, "type": 4294967296}]})"),
              ": keys[0].type: neither a name nor a whole number: 4294967296");
    EXPECT_EQ(refusal(R"({"keys": [{"x": 0, "y": 0, "unify tan": 1}]})"),
              ": keys[0].unify tan: neither true nor false: 1");
    EXPECT_EQ(refusal(R"({"pre behaviour": "loop"})"),
              ": pre behaviour: unknown: \"loop\"; known are \"zero\", \"constant\"");
    EXPECT_EQ(refusal(R"({"post behaviour": "loops"})"),
              ": post behaviour: unknown: \"loops\" (did you mean \"loop\"?)");
    EXPECT_EQ(refusal(R"({"expression": 1})"), ": expression: not a text: 1");
    EXPECT_EQ(refusal(R"({"expression": "sin("})").find(": expression: "), 0u);
    EXPECT_EQ(refusal(R"([{}, {"expression": "t,t"}])"),
              ": [1].expression: The expression gives more than one value");
    EXPECT_EQ(refusal(R"({"frame rate": 0})"), ": frame rate: not above 0: 0");
    EXPECT_NE(refusal(R"({"frame rate": 1e999})").find("is no JSON document"), std::string::npos);
}

TEST_F(CurveFileTest, WhatIsNoCurveIsRefusedByPin) {
    const auto said = [&](const std::string& value) {
        const Ended ended = sluice({"run", "eval.xml", "--set", "root.Curve.curve=" + value});
        EXPECT_EQ(ended.status, 2) << value;
        return ended.err;
    };
    EXPECT_NE(said("3").find("pin \"root.Curve.curve\": can not hold 3"), std::string::npos);
    EXPECT_NE(said("line.json").find("name a file with curves, \"@FILE\""), std::string::npos);
    EXPECT_NE(said("@").find("can not hold"), std::string::npos);
    EXPECT_NE(said("@missing.json").find("can not read \"missing.json\""), std::string::npos);
    EXPECT_NE(said("@.").find("can not read \".\""), std::string::npos);
    EXPECT_NE(said(R"({"keys": 1})").find("\"root.Curve.curve\": keys: not a list"),
              std::string::npos);
    const Ended key = sluice({"run", "keys.xml", "--set", "root.Key.key=@line.json"});
    EXPECT_EQ(key.status, 2);
    EXPECT_NE(key.err.find("values of this kind can not be set"), std::string::npos) << key.err;
}

TEST_F(CurveFileTest, OtherPinsTakeAnAtSignAsText) {
    file("text.xml", GraphText().node("S", "String").text());
    const Ended ended =
        sluice({"run", "text.xml", "--set", "root.S.in=@line.json", "--get", "root.S.in"});
    EXPECT_EQ(ended.out, "root.S.in = [\"@line.json\"]\n");
}

TEST_F(CurveFileTest, GraphsWithCurvesSurviveConversion) {
    const Ended first = sluice({"convert", "keys.xml", "out.xml"});
    EXPECT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(first.err, "");
    EXPECT_EQ(sluice({"diff", "keys.xml", "out.xml"}).status, 0);
}

} // namespace
} // namespace sluice_test
