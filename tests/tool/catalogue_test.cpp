// SPDX-License-Identifier: Apache-2.0
// What `nodes --json` tells of every node type, held against the text in catalogue.txt: order,
// categories, descriptions, and each pin's kind, types, default, options and help.
#include <fstream>
#include <sstream>

#include "tool/program.h"

namespace sluice_test {
namespace {

std::string joined(const Json& words) {
    std::string text;
    for (const Json& word : words) text += (text.empty() ? "" : ",") + word.get<std::string>();
    return text;
}

// A list too long for one line is told by its length.
std::string types(const Json& words) {
    constexpr std::size_t longest = 8;
    if (words.size() > longest) return std::to_string(words.size()) + " types";
    return joined(words);
}

void tellPin(std::ostream& out, const char* side, const Json& pin) {
    out << "  " << side << ' ' << pin["name"].dump() << ' ' << pin["kind"].get<std::string>()
        << " [" << types(pin["allowed"]) << "] [" << types(pin["specializations"]) << "] "
        << (pin.contains("defaults") ? pin["defaults"] : pin["value"]).dump();
    if (pin.contains("options")) out << " of " << pin["options"].dump();
    out << ' ' << pin["description"].dump() << '\n';
}

std::string told(const Json& catalogue) {
    std::ostringstream out;
    for (const Json& node : catalogue["nodes"]) {
        out << node["type"].get<std::string>() << " | " << node["category"].get<std::string>()
            << " | " << joined(node["allowedCategories"]) << " | "
            << (node["dynamicPins"].get<bool>() ? "dynamic pins" : "fixed pins") << '\n';
        out << "  " << node["description"].dump() << '\n';
        for (const Json& pin : node["inputs"]) tellPin(out, "in ", pin);
        for (const Json& pin : node["outputs"]) tellPin(out, "out", pin);
    }
    return out.str();
}

TEST(Catalogue, TellsEveryTypeAsListed) {
    const Ended ended = run({"nodes", "--json"});
    ASSERT_EQ(ended.status, 0) << ended.err;
    const Json catalogue = ended.json();
    EXPECT_EQ(catalogue["schema"], "sluice.nodes/1");
    std::ifstream file(SLUICE_TESTS_DIR "/tool/catalogue.txt");
    std::stringstream listed;
    listed << file.rdbuf();
    std::istringstream found(told(catalogue));
    std::string expectedLine;
    std::string line;
    while (std::getline(listed, expectedLine)) {
        ASSERT_TRUE(std::getline(found, line)) << "missing: " << expectedLine;
        EXPECT_EQ(line, expectedLine);
    }
    EXPECT_FALSE(std::getline(found, line)) << "not listed: " << line;
}

// What the examples promise in their opening comments.
struct Example {
    const char* file;
    int status;
    const char* pin;
    const char* value;
};

class Examples : public testing::TestWithParam<Example> {};

TEST_P(Examples, DoWhatTheySay) {
    const Example& example = GetParam();
    const std::string path = std::string(SLUICE_EXAMPLES_DIR "/") + example.file;
    const Ended ended = run({"run", path, "--json", "--get", example.pin});
    EXPECT_EQ(ended.status, example.status) << ended.err;
    EXPECT_EQ(ended.json()["pins"][0]["value"].dump(), example.value);
}

INSTANTIATE_TEST_SUITE_P(
    All, Examples,
    testing::Values(Example{"numbers.xml", 0, "root.Position.result", "[[3.0,10.0,0.0]]"},
                    Example{"sequence_names.xml", 0, "root.Evaluator.evaluate",
                            "[\"/renders/ocean/ocean_0008.png\"]"},
                    Example{"nested_compounds.xml", 0, "root.Statistics.mean", "[5.0]"},
                    Example{"loop.xml", 0, "root.Evaluator.evaluate", "[55]"},
                    Example{"kernel.xml", 0, "root.Evaluator.evaluate", "[60]"},
                    Example{"million.xml", 0, "root.Average.average", "[0.74989223]"},
                    Example{"ramp.xml", 0, "root.Positions.array",
                            "[0.0,0.125,0.25,0.375,0.5,0.625,0.75,0.875,1.0]"},
                    Example{"routing.xml", 0, "root.Evaluator.chosen", "[20]"},
                    Example{"globals_set.xml", 0, "root.Evaluator.names", "[\"height\"]"},
                    Example{"globals_get.xml", 0, "root.Evaluator.evaluate", "[0.0]"},
                    Example{"cancelled.xml", 1, "root.Guard.cancel", "[true]"},
                    Example{"reading_failures.xml", 1, "root.Sum.result", "[5]"}),
    [](const testing::TestParamInfo<Example>& info) {
        const std::string file = info.param.file;
        return file.substr(0, file.find('.'));
    });

TEST(ExampleOfACurve, FollowsTheFramesOfTheHost) {
    const Ended ended = run({"run", SLUICE_EXAMPLES_DIR "/curve.xml", "--frames", "0-60x15",
                             "--json", "--get", "root.Height.result", "--set",
                             "root.Height.curve=@" SLUICE_EXAMPLES_DIR "/curve.json"});
    EXPECT_EQ(ended.status, 0) << ended.err;
    std::string heights;
    for (const Json document = ended.json(); const Json& frame : document["frames"]) {
        heights += frame["frame"].dump() + ":" + frame["pins"][0]["value"].dump() + " ";
    }
    EXPECT_EQ(heights, "0:[2.0] 15:[0.0] 30:[1.0] 45:[0.0] 60:[0.0] ");
}

// The colours run in equal steps from end to end.
TEST(ExampleOfARamp, MixesBothColours) {
    const Ended ended =
        run({"run", SLUICE_EXAMPLES_DIR "/ramp.xml", "--json", "--get", "root.Mix.result"});
    const Json document = ended.json();
    const Json& colors = document["pins"][0]["value"];
    ASSERT_EQ(colors.size(), 9u);
    const double first[] = {0.05, 0.1, 0.5, 1.0};
    const double last[] = {1.0, 0.9, 0.3, 1.0};
    for (int step = 0; step < 9; ++step) {
        for (int part = 0; part < 4; ++part) {
            const double mixed = first[part] + (last[part] - first[part]) * step / 8.0;
            EXPECT_NEAR(colors[step][part].get<double>(), mixed, 1e-6);
        }
    }
}

TEST(ExamplesOfFailures, ReportOneOfEachReadingFailure) {
    const Ended ended = run({"run", SLUICE_EXAMPLES_DIR "/reading_failures.xml", "--json"});
    const Json document = ended.json();
    std::string ids;
    for (const Json& report : document["host"]) ids += report["id"].dump() + " ";
    EXPECT_EQ(ids, "2256 2261 2264 2255 2260 2266 2267 ");
}

} // namespace
} // namespace sluice_test
