// SPDX-License-Identifier: Apache-2.0
// `sluice run`: values, messages, documents, statuses.
#include "tool/program.h"

namespace sluice_test {
namespace {

class RunTest : public ProgramTest {
protected:
    RunTest() {
        file("sum.xml", sumGraph());
        file("cancel.xml", cancelGraph(false));
        file("quiet.xml", cancelGraph(true));
        file("unknown.xml", GraphText().node("X", "NoSuchType").text());
    }

    static std::string cancelGraph(bool quiet) {
        return GraphText()
            .node("A", "Real", {{"in", "real", "1"}})
            .node("Stop", "GraphCancel",
                  {{"cancel", "bit", "true"}, {"quiet", "bit", quiet ? "true" : "false"}})
            .node("E", "Evaluator", {{"evaluate", "", ""}})
            .link("A.real", "Stop.in")
            .link("Stop.through", "E.evaluate")
            .text();
    }

    /// The value of one pin after a run with these further arguments.
    Json valueOf(const std::string& pin, Words arguments, const std::string& graph = "sum.xml") {
        arguments.insert(arguments.begin(), {"run", graph, "--json", "--get", pin});
        const Ended ended = sluice(Start{arguments});
        EXPECT_EQ(ended.status, 0) << ended.err;
        const Json json = ended.json();
        return json.contains("pins") && !json["pins"].empty() ? json["pins"][0]["value"] : Json();
    }
};

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(RunTest, PrintsTheSummaryOnStderrAndNothingElse) {
    const Ended ended = sluice({"run", "sum.xml"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out, "");
    EXPECT_TRUE(holds(ended.err, "4 nodes, 1 evaluator, ")) << ended.err;
}

TEST_F(RunTest, GetPrintsWhatAPinHolds) {
    const Ended ended =
        sluice({"run", "sum.xml", "--get", "root.Sum.result", "--get", "root.B.in"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out, "root.Sum.result = [5.5]\nroot.B.in = [3]\n");
}

TEST_F(RunTest, DocumentHasTheStatedForm) {
    const Ended ended = sluice({"run", "sum.xml", "--json", "--get", "root.Sum.result"});
    EXPECT_EQ(ended.status, 0);
    const Json json = ended.json();
    EXPECT_EQ(json["schema"], "sluice.run/1");
    EXPECT_EQ(json["graph"], "sum.xml");
    EXPECT_EQ(json["ok"], true);
    EXPECT_TRUE(json["seconds"].is_number());
    EXPECT_EQ(json["pins"], Json::parse(R"([{"pin": "root.Sum.result", "type": "Real", "size": 1,
                                             "value": [5.5]}])"));
    EXPECT_EQ(json["messages"], Json::array());
    EXPECT_EQ(json["host"], Json::array());
}

// --- setting pins --------------------------------------------------------------------------------

TEST_F(RunTest, SetTakesScalarsAndLists) {
    EXPECT_EQ(valueOf("root.Sum.result", {"--set", "root.A.in=7"}), Json::array({10.0}));
    EXPECT_EQ(valueOf("root.Sum.result", {"--set", "root.A.in=[1, 2.5]", "--set", "root.B.in=[1]"}),
              Json::array({2.0, 3.5}));
    EXPECT_EQ(valueOf("root.Sum.result", {"--set", "root.A.in=[]"}), Json::array());
}

TEST_F(RunTest, LaterSettingsWin) {
    EXPECT_EQ(valueOf("root.A.in", {"--set", "root.A.in=1", "--set", "root.A.in=2"}),
              Json::array({2.0}));
}

TEST_F(RunTest, SetTakesSpecialNumbers) {
    EXPECT_EQ(valueOf("root.A.in", {"--set", "root.A.in=[\"inf\", \"-inf\", \"nan\"]"}),
              Json::array({"inf", "-inf", "nan"}));
    EXPECT_EQ(valueOf("root.A.in", {"--set", "root.A.in=inf"}), Json::array({"inf"}));
}

TEST_F(RunTest, FloatsAreTheShortestThatReadBack) {
    const Ended ended = sluice(
        {"run", "sum.xml", "--set", "root.A.in=[0.1, 1e-7, 16777216]", "--get", "root.A.in"});
    EXPECT_EQ(ended.out, "root.A.in = [0.1, 1e-07, 16777216.0]\n");
}

TEST_F(RunTest, SetChoosesATypeByName) {
    file("free.xml", GraphText().node("Sum", "Add").text());
    const Words typed{"--set", "root.Sum.in0:Vector3=[[1,2,3],[4,5,6]]"};
    EXPECT_EQ(valueOf("root.Sum.in0", typed, "free.xml"),
              Json::parse("[[1.0,2.0,3.0],[4.0,5.0,6.0]]"));
    EXPECT_EQ(valueOf("root.Sum.in0", {"--set", "root.Sum.in0:Color4=[1,0,0.5]"}, "free.xml"),
              Json::parse("[[1.0,0.0,0.5,1.0]]"));
    EXPECT_EQ(valueOf("root.Sum.in0", {"--set", "root.Sum.in0:Quaternion=[0,0,1,0]"}, "free.xml"),
              Json::parse("[[0.0,0.0,1.0,0.0]]"));
    EXPECT_EQ(valueOf("root.Sum.in0",
                      {"--set", "root.Sum.in0:Matrix4=[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16]"},
                      "free.xml")[0]
                  .size(),
              16u);
    EXPECT_EQ(
        valueOf("root.Sum.in0", {"--set", "root.Sum.in0:Integer64=9007199254740993"}, "free.xml"),
        Json::array({9007199254740993}));
}

TEST_F(RunTest, SetWithoutATypeTakesTheFirstThatFits) {
    file("free.xml", GraphText().node("Sum", "Add").text());
    const auto typeOf = [this](const std::string& setting) {
        const Ended ended =
            sluice({"run", "free.xml", "--json", "--set", setting, "--get", "root.Sum.in0"});
        return ended.json()["pins"][0]["type"];
    };
    EXPECT_EQ(typeOf("root.Sum.in0=5"), "Integer");
    EXPECT_EQ(typeOf("root.Sum.in0=5000000000"), "Integer64");
    EXPECT_EQ(typeOf("root.Sum.in0=2.5"), "Real");
    EXPECT_EQ(typeOf("root.Sum.in0=[[1,2,3]]"), "Vector3");
}

TEST_F(RunTest, SetFillsStringsBitsAndVectors) {
    file("more.xml", GraphText()
                         .node("S", "String")
                         .node("B", "Bit")
                         .node("V", "Vector3")
                         .node("P", "StringFilePath")
                         .text());
    EXPECT_EQ(valueOf("root.S.in", {"--set", "root.S.in=some words"}, "more.xml"),
              Json::array({"some words"}));
    EXPECT_EQ(valueOf("root.S.in", {"--set", "root.S.in=5"}, "more.xml"), Json::array({"5"}));
    EXPECT_EQ(valueOf("root.S.in", {"--set", "root.S.in=[\"a\",\"b\"]"}, "more.xml"),
              Json::array({"a", "b"}));
    EXPECT_EQ(valueOf("root.B.in", {"--set", "root.B.in=true"}, "more.xml"), Json::array({true}));
    EXPECT_EQ(valueOf("root.B.in", {"--set", "root.B.in=[1,0,true]"}, "more.xml"),
              Json::array({true, false, true}));
    EXPECT_EQ(valueOf("root.V.in", {"--set", "root.V.in=1,2,3"}, "more.xml"),
              Json::parse("[[1.0,2.0,3.0]]"));
    EXPECT_EQ(valueOf("root.P.in", {"--set", "root.P.in=/tmp/x.png"}, "more.xml"),
              Json::array({"/tmp/x.png"}));
}

TEST_F(RunTest, ConditionsShowTheirComparisonAndRightSide) {
    file("conditions.xml", GraphText()
                               .node("A", "Real", {{"in", "real", "2.5"}})
                               .node("Below", "ConditionLessThan")
                               .node("Above", "ConditionGreaterThanConstant")
                               .node("F", "ConditionFilterBy")
                               .node("E", "Evaluator", {{"evaluate", "", ""}})
                               .link("A.real", "Below.value")
                               .link("A.real", "Above.value")
                               .link("A.real", "F.value")
                               .link("Above.condition", "F.condition")
                               .link("F.mask", "E.evaluate")
                               .text());
    const Words pull{"--pull", "root.Below.condition"};
    EXPECT_EQ(valueOf("root.Below.condition", pull, "conditions.xml"),
              Json::parse(R"([{"condition": "less than", "constant": false, "value": [2.5]}])"));
    EXPECT_EQ(valueOf("root.F.condition", {}, "conditions.xml"),
              Json::parse(R"([{"condition": "greater than", "constant": true, "value": [2.5]}])"));
    EXPECT_EQ(valueOf("root.Below.condition", {}, "conditions.xml"),
              Json::parse(R"([{"condition": "equal to", "constant": false, "value": null}])"));
    const Ended ended = sluice({"run", "conditions.xml", "--get", "root.F.condition"});
    EXPECT_EQ(ended.out,
              "root.F.condition = "
              "[{\"condition\": \"greater than\", \"constant\": true, \"value\": [2.5]}]\n");
}

TEST_F(RunTest, SetFileComesBeforeSet) {
    file("pins.json", R"({"root.A.in": [1, 2], "root.B.in:Integer": 10})");
    EXPECT_EQ(valueOf("root.Sum.result", {"--set", "root.B.in=20", "--set-file", "pins.json"}),
              Json::array({21.0, 22.0}));
}

TEST_F(RunTest, BadSettingsAreRefusedByName) {
    file("list.json", "[1]");
    file("nojson.json", "{");
    const std::vector<std::pair<Words, std::string>> cases{
        {{"--set", "root.A.in"}, "PIN=VALUE"},
        {{"--set", "=1"}, "PIN=VALUE"},
        {{"--set", "root.A.inn=1"}, "did you mean \"root.A.in\"?"},
        {{"--set", "root.Sam.in0=1"}, "did you mean \"root.Sum\"?"},
        {{"--set", "root.A.real=1"}, "only inputs"},
        {{"--set", "root.B.in=2.5"}, "root.B.in"},
        {{"--set", "root.B.in=3000000000"}, "root.B.in"},
        {{"--set", "root.A.in=words"}, "root.A.in"},
        {{"--set", "root.A.in=null"}, "root.A.in"},
        {{"--set", "root.A.in:Vectr=1"}, "Vectr"},
        {{"--set", "root.A.in:Integer=1"}, "may not be of type \"Integer\""},
        {{"--set-file", "missing.json"}, "missing.json"},
        {{"--set-file", "list.json"}, "list.json"},
        {{"--set-file", "nojson.json"}, "nojson.json"},
        {{"--get", "root.Sum.reslt"}, "did you mean \"root.Sum.result\"?"},
        {{"--pull", "root.Sum.in0"}, "only outputs"},
        {{"--pull", "nothing"}, "nothing"},
    };
    for (const auto& [arguments, told] : cases) {
        Words all{"run", "sum.xml"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Ended ended = sluice(Start{all});
        EXPECT_EQ(ended.status, 2) << told;
        EXPECT_TRUE(holds(ended.err, told)) << ended.err;
        EXPECT_EQ(ended.out, "");
    }
}

TEST_F(RunTest, SettingAConnectedPinWarns) {
    const Ended ended = sluice({"run", "sum.xml", "--set", "root.Sum.in0=9"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_TRUE(holds(ended.err, "is connected")) << ended.err;
}

// --- pulling -------------------------------------------------------------------------------------

TEST_F(RunTest, PullEvaluatesWhatNoEvaluatorReaches) {
    file("loose.xml", GraphText()
                          .node("A", "Real", {{"in", "real", "2"}})
                          .node("Sum", "Add")
                          .link("A.real", "Sum.in0")
                          .text());
    const Ended ended =
        sluice({"run", "loose.xml", "--pull", "root.Sum.result", "--pull", "root.A.real"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "root.Sum.result = [2.0]\nroot.A.real = [2.0]\n");
    EXPECT_TRUE(holds(ended.err, "2 nodes, 0 evaluators")) << ended.err;
}

TEST_F(RunTest, PullReachesIntoCompounds) {
    const std::string inner =
        "<node><name>C</name><type>Compound</type><inputs/><outputs/><nodes>"
        "<node><name>K</name><type>Integer</type><inputs><input><name>in</name>"
        "<type>integer</type><value>41</value></input></inputs></node>"
        "</nodes></node>";
    std::string text = GraphText().text();
    text.replace(text.find("</nodes></node></nodes>"), 0, inner);
    file("compound.xml", text);
    const Ended ended = sluice({"run", "compound.xml", "--pull", "root.C.K.integer"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.out, "root.C.K.integer = [41]\n");
}

TEST_F(RunTest, PullLeavesNoTraceInTheSavedFile) {
    ASSERT_EQ(sluice({"run", "sum.xml", "--save", "plain.xml"}).status, 0);
    ASSERT_EQ(sluice({"run", "sum.xml", "--pull", "root.A.real", "--save", "pulled.xml"}).status,
              0);
    EXPECT_EQ(read("pulled.xml"), read("plain.xml"));
    EXPECT_EQ(sluice({"run", "pulled.xml", "--json", "--pull", "root.A.real"}).json()["messages"],
              Json::array());
}

TEST_F(RunTest, WithoutAnEvaluatorThereIsAHint) {
    file("none.xml", GraphText().node("A", "Real").text());
    const Ended ended = sluice({"run", "none.xml"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_TRUE(holds(ended.err, "no evaluator")) << ended.err;
}

// --- failures ------------------------------------------------------------------------------------

TEST_F(RunTest, ReadingErrorsFailAtTheLevelOfErrors) {
    const Ended ended = sluice({"run", "unknown.xml", "--json"});
    EXPECT_EQ(ended.status, 1);
    const Json json = ended.json();
    EXPECT_EQ(json["ok"], false);
    EXPECT_EQ(json["host"][0]["id"], 2255);
    EXPECT_TRUE(holds(json["host"][0]["text"], "NoSuchType"));
    EXPECT_TRUE(holds(json["host"][0]["text"], "root.X"));
    EXPECT_EQ(sluice({"run", "unknown.xml", "--fail-on", "warning"}).status, 1);
    EXPECT_EQ(sluice({"run", "unknown.xml", "--fail-on", "critical"}).status, 0);
}

TEST_F(RunTest, LoudCancelFailsWithItsMessage) {
    const Ended ended = sluice({"run", "cancel.xml"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_TRUE(holds(ended.err, "critical [root.Stop] Execution cancelled by node\n"))
        << ended.err;
    const Json json = sluice({"run", "cancel.xml", "--json"}).json();
    EXPECT_EQ(json["ok"], false);
    EXPECT_EQ(json["messages"], Json::parse(R"([{"node": "root.Stop", "level": 1,
                               "text": "Execution cancelled by node", "detail": ""}])"));
    bool told = false;
    for (const Json& report : json["host"]) {
        told = told || (report["id"] == 2262 && holds(report["text"], "Graph execution cancelled"));
    }
    EXPECT_TRUE(told) << json["host"];
}

TEST_F(RunTest, QuietCancelIsNoFailure) {
    const Ended ended = sluice({"run", "quiet.xml", "--json"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.json()["messages"], Json::array());
    EXPECT_EQ(ended.json()["host"], Json::array());
}

TEST_F(RunTest, ExceptionFailsWhateverTheLevel) {
    EXPECT_EQ(sluice({"run", "cancel.xml", "--fail-on", "critical"}).status, 1);
}

TEST_F(RunTest, VerbosityHidesMessages) {
    const Ended ended = sluice({"run", "unknown.xml", "--verbosity", "1"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_FALSE(holds(ended.err, "NoSuchType")) << ended.err;
}

TEST_F(RunTest, VerbosityShowsInformation) {
    file("stop.xml", GraphText()
                         .node("A", "Real")
                         .node("Stop", "SimulationStop", {{"stop", "bit", "true"}})
                         .node("E", "Evaluator", {{"evaluate", "", ""}})
                         .link("A.real", "Stop.in")
                         .link("Stop.through", "E.evaluate")
                         .text());
    const std::string told = "info [root.Stop] Simulation stopped by node\n";
    EXPECT_FALSE(holds(sluice({"run", "stop.xml"}).err, told));
    EXPECT_TRUE(holds(sluice({"run", "stop.xml", "--verbosity", "4"}).err, told));
    const Json json = sluice({"run", "stop.xml", "--verbosity", "4", "--json"}).json();
    EXPECT_EQ(json["messages"][0]["level"], 4);
    EXPECT_EQ(json["ok"], true);
}

TEST_F(RunTest, RefusedConnectionIsAMessageOfTheScene) {
    file("twice.xml", GraphText()
                          .node("A", "Real")
                          .node("B", "Real")
                          .node("Sum", "Add")
                          .link("A.real", "Sum.in0")
                          .link("B.real", "Sum.in0")
                          .text());
    const Ended ended = sluice({"run", "twice.xml", "--json"});
    EXPECT_EQ(ended.status, 1);
    const Json messages = ended.json()["messages"];
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0]["node"], "scene");
    EXPECT_EQ(messages[0]["level"], 2);
    EXPECT_EQ(messages[0]["text"], "Unable to connect 'root.B.real' to 'root.Sum.in0'");
}

// --- saving --------------------------------------------------------------------------------------

TEST_F(RunTest, SaveWritesTheGraphWithWhatWasSet) {
    EXPECT_EQ(sluice({"run", "sum.xml", "--set", "root.A.in=0.125", "--save", "out.xml"}).status,
              0);
    EXPECT_EQ(valueOf("root.Sum.result", {}, "out.xml"), Json::array({3.125}));
}

TEST_F(RunTest, SaveThatCanNotBeMadeIsStatusTwo) {
    file("old.xml", "precious");
    EXPECT_EQ(sluice({"run", "sum.xml", "--save", "no/such/folder/out.xml"}).status, 2);
    EXPECT_EQ(sluice({"run", "sum.xml", "--save", "/dev/full"}).status, 2);
    EXPECT_EQ(sluice({"run", "sum.xml", "--save", "."}).status, 2);
    EXPECT_EQ(read("old.xml"), "precious");
}

TEST_F(RunTest, SaveDoesNotThrowAwayWhatCouldNotBeRead) {
    const std::string before = read("unknown.xml");
    const Ended ended = sluice({"run", "unknown.xml", "--save", "unknown.xml"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_EQ(read("unknown.xml"), before);
    EXPECT_EQ(sluice({"run", "unknown.xml", "--save", "other.xml"}).status, 1);
    EXPECT_TRUE(exists("other.xml"));
}

// --- the rest ------------------------------------------------------------------------------------

TEST_F(RunTest, DryRunListsEvaluatorsAndFirstPulls) {
    const Ended text = sluice({"run", "sum.xml", "--dry-run"});
    EXPECT_EQ(text.status, 0);
    EXPECT_EQ(text.out,
              "evaluators:\n  root.E\nfirst pulls:\n  root.E\n  root.Sum\n  root.A\n  root.B\n");
    const Json json = sluice({"run", "sum.xml", "--dry-run", "--json"}).json();
    EXPECT_EQ(json["schema"], "sluice.run/1");
    EXPECT_EQ(json["evaluators"], Json::array({"root.E"}));
    EXPECT_EQ(json["pulls"], Json::array({"root.E", "root.Sum", "root.A", "root.B"}));
}

TEST_F(RunTest, DryRunRunsNothing) {
    EXPECT_EQ(sluice({"run", "cancel.xml", "--dry-run"}).status, 0);
    EXPECT_EQ(sluice({"run", "unknown.xml", "--dry-run"}).status, 1);
    EXPECT_EQ(sluice({"run", "sum.xml", "--dry-run", "--save", "out.xml"}).status, 0);
    EXPECT_FALSE(exists("out.xml"));
}

TEST_F(RunTest, NoSleepReturnsAtOnce) {
    file("sleep.xml", sleepingGraph(60000));
    const Ended ended = sluice({"run", "sleep.xml", "--no-sleep", "--get", "root.Rest.through"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out, "root.Rest.through = [1.0]\n");
    EXPECT_LT(ended.seconds, 30.0);
}

TEST_F(RunTest, ThreadsComeFromOptionOrEnvironment) {
    EXPECT_EQ(sluice({"run", "sum.xml", "-j", "3"}).status, 0);
    EXPECT_EQ(sluice({"run", "sum.xml", "--threads", "0"}).status, 0);
    const auto withVariable = [this](const char* value) {
        return sluice(Start{.arguments = {"run", "sum.xml"},
                            .environment = {{"SLUICE_THREADS", value}}})
            .status;
    };
    EXPECT_EQ(withVariable("2"), 0);
    EXPECT_EQ(withVariable("lots"), 2);
}

TEST_F(RunTest, ProgressAsEvents) {
    const Ended ended = sluice({"run", "sum.xml", "--progress", "json", "-f", "1-2"});
    EXPECT_EQ(ended.status, 0);
    std::vector<std::string> names;
    std::size_t begin = 0;
    for (std::size_t end; (end = ended.err.find('\n', begin)) != std::string::npos;
         begin = end + 1) {
        const Json event = Json::parse(ended.err.substr(begin, end - begin), nullptr, false);
        if (event.is_object()) names.push_back(event["event"]);
    }
    EXPECT_EQ(names, (Words{"reading", "frame", "frame", "done"}));
}

TEST_F(RunTest, ProgressPlainAndNone) {
    EXPECT_TRUE(holds(sluice({"run", "sum.xml", "--progress", "plain"}).err, "reading sum.xml\n"));
    EXPECT_FALSE(holds(sluice({"run", "sum.xml", "--progress", "none", "-f", "1"}).err, "frame"));
    EXPECT_TRUE(holds(sluice({"run", "sum.xml", "-f", "7"}).err, "frame 7 (1 of 1): "));
}

TEST_F(RunTest, ResultsDoNotDependOnTheLocale) {
    const Ended ended = sluice(Start{.arguments = {"run", "sum.xml", "--set", "root.A.in=1.25",
                                                   "--get", "root.Sum.result", "--save", "out.xml"},
                                     .environment = {{"LC_ALL", "de_DE.UTF-8"}}});
    EXPECT_EQ(ended.out, "root.Sum.result = [4.25]\n");
    EXPECT_TRUE(holds(read("out.xml"), "<value>1.25</value>"));
}

// A repeatable option before the graph takes one word and no more.
TEST(RunOrder, GraphMayFollowAnyOption) {
    const std::string graph = SLUICE_EXAMPLES_DIR "/numbers.xml";
    for (const char* option : {"--get", "--pull"}) {
        const Ended ended = run({"run", option, "root.Position.result", graph, "--json"});
        EXPECT_EQ(ended.status, 0) << option << ": " << ended.err;
    }
}

} // namespace
} // namespace sluice_test
