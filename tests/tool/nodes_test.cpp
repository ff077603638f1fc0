// SPDX-License-Identifier: Apache-2.0
// `sluice nodes` and `sluice describe`.
#include "tool/program.h"

#include <algorithm>
#include <fstream>

namespace sluice_test {
namespace {

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

const Json& allNodes() {
    static const Json nodes = run({"nodes", "--json"}).json()["nodes"];
    return nodes;
}

Json nodeOf(const std::string& type) {
    for (const Json& node : allNodes()) {
        if (node["type"] == type) return node;
    }
    return Json();
}

Json pinOf(const std::string& type, const char* side, const std::string& name) {
    const Json node = nodeOf(type);
    for (const Json& pin : node[side]) {
        if (pin["name"] == name) return pin;
    }
    return Json();
}

std::vector<std::string> typesOf(const Ended& ended) {
    std::vector<std::string> types;
    const Json json = ended.json();
    for (const Json& node : json["nodes"]) types.push_back(node["type"]);
    return types;
}

/// Type and main category of every type there is to be, in order.
std::vector<std::pair<std::string, std::string>> fullList() {
    std::ifstream stream(SLUICE_SOURCE_DIR "/src/graph/node_types/types.txt");
    std::vector<std::pair<std::string, std::string>> list;
    for (std::string line; std::getline(stream, line);) {
        if (line.empty() || line[0] == '#') continue;
        const std::size_t tab = line.find('\t');
        list.emplace_back(line.substr(0, tab), line.substr(tab + 1));
    }
    return list;
}

TEST(Nodes, DocumentNamesItsForm) {
    const Ended ended = run({"nodes", "--json"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.err, "");
    EXPECT_EQ(ended.json()["schema"], "sluice.nodes/1");
}

TEST(Nodes, OrderAndCategoriesAreThoseOfTheFullList) {
    const auto list = fullList();
    std::size_t at = 0;
    for (const Json& node : allNodes()) {
        while (at < list.size() && list[at].first != node["type"]) ++at;
        ASSERT_LT(at, list.size()) << node["type"] << " is not in the list, or out of order";
        EXPECT_EQ(list[at].second.rfind(node["category"], 0), 0u) << node["type"];
        EXPECT_EQ(node["allowedCategories"][0], node["category"]);
    }
}

TEST(Nodes, EveryEntryHasEveryField) {
    for (const Json& node : allNodes()) {
        EXPECT_TRUE(node["description"].is_string()) << node["type"];
        EXPECT_TRUE(node["dynamicPins"].is_boolean()) << node["type"];
        for (const char* side : {"inputs", "outputs"}) {
            for (const Json& pin : node[side]) {
                for (const char* field : {"name", "kind", "description"}) {
                    EXPECT_TRUE(pin[field].is_string()) << node["type"] << " " << field;
                }
                EXPECT_TRUE(pin["allowed"].is_array()) << node["type"];
                EXPECT_TRUE(pin["specializations"].is_array()) << node["type"];
                EXPECT_TRUE(pin["value"].is_array() || pin["value"].is_null()) << node["type"];
            }
        }
    }
}

TEST(Nodes, AddIsDescribed) {
    const Json add = nodeOf("Add");
    EXPECT_EQ(add["category"], "Math");
    EXPECT_EQ(add["dynamicPins"], false);
    ASSERT_EQ(add["inputs"].size(), 2u);
    EXPECT_EQ(add["inputs"][0]["name"], "in0");
    EXPECT_EQ(add["inputs"][0]["kind"], "NumericAttribute");
    EXPECT_EQ(add["inputs"][0]["description"], "First operator");
    EXPECT_EQ(add["inputs"][0]["allowed"],
              Json::parse(R"(["Integer", "Integer64", "Real", "Vector3", "Color4", "Quaternion",
                              "Matrix4"])"));
    EXPECT_TRUE(add["inputs"][0]["value"].is_null());
    EXPECT_FALSE(add["inputs"][0].contains("options"));
    EXPECT_EQ(add["outputs"][0]["name"], "result");
}

TEST(Nodes, DefaultsAreThoseOfAFreshNode) {
    EXPECT_EQ(pinOf("Real", "inputs", "in")["value"], Json::array({0.0}));
    EXPECT_EQ(pinOf("Integer", "inputs", "in")["value"], Json::array({0}));
    EXPECT_EQ(pinOf("Bit", "inputs", "in")["value"], Json::array({false}));
    EXPECT_EQ(pinOf("String", "inputs", "in")["value"], Json::array({""}));
    EXPECT_EQ(pinOf("Vector3", "inputs", "in")["value"], Json::parse("[[0.0, 0.0, 0.0]]"));
    EXPECT_EQ(pinOf("Color4", "inputs", "in")["value"], Json::parse("[[0.0, 0.0, 0.0, 1.0]]"));
    EXPECT_TRUE(pinOf("Sleep", "inputs", "in")["value"].is_null());
}

TEST(Nodes, DynamicPinsAreTold) {
    EXPECT_EQ(nodeOf("Evaluator")["dynamicPins"], true);
    EXPECT_EQ(nodeOf("Real")["dynamicPins"], false);
}

TEST(Nodes, CategoryTakesWhatLiesBelowToo) {
    for (const char* category : {"Math", "math"}) {
        const Ended ended = run({"nodes", "--json", "--category", category});
        EXPECT_EQ(ended.status, 0);
        const Json json = ended.json();
        EXPECT_FALSE(json["nodes"].empty());
        for (const Json& node : json["nodes"]) {
            const std::string main = node["category"];
            EXPECT_TRUE(main == "Math" || main.rfind("Math.", 0) == 0) << main;
        }
    }
}

TEST(Nodes, UnknownCategoryNamesTheNearest) {
    const Ended ended = run({"nodes", "--category", "Mth"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out, "");
    EXPECT_TRUE(holds(ended.err, "\"Math\"")) << ended.err;
}

TEST(Nodes, SearchLooksAtNamesAndDescriptions) {
    const auto found = typesOf(run({"nodes", "--json", "--search", "SUBSTRACTION"}));
    EXPECT_EQ(found, (std::vector<std::string>{"Sub"}));
    const auto names = typesOf(run({"nodes", "--json", "--search", "integer64"}));
    EXPECT_NE(std::find(names.begin(), names.end(), "Integer64"), names.end());
    EXPECT_TRUE(typesOf(run({"nodes", "--json", "--search", "no such word"})).empty());
}

TEST(Nodes, TextHasALinePerType) {
    const Ended ended = run({"nodes"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(static_cast<std::size_t>(std::count(ended.out.begin(), ended.out.end(), '\n')),
              allNodes().size());
    EXPECT_TRUE(holds(ended.out, "Computes the addition of the two input values"));
}

// --- describe ------------------------------------------------------------------------------------

TEST(Describe, DocumentHoldsTheNode) {
    const Ended ended = run({"describe", "Add", "--json"});
    EXPECT_EQ(ended.status, 0);
    const Json json = ended.json();
    EXPECT_EQ(json["schema"], "sluice.describe/1");
    EXPECT_EQ(json["node"], nodeOf("Add"));
}

TEST(Describe, TextTellsPinsTypesAndHelp) {
    const Ended ended = run({"describe", "Add"});
    EXPECT_EQ(ended.status, 0);
    for (const char* part : {"Add  (Math)", "Inputs", "in0", "First operator", "NumericAttribute",
                             "Quaternion", "Outputs", "result"}) {
        EXPECT_TRUE(holds(ended.out, part)) << part << "\n" << ended.out;
    }
    EXPECT_TRUE(holds(run({"describe", "Real"}).out, "default: [0.0]"));
    EXPECT_TRUE(holds(run({"describe", "Evaluator"}).out, "Pins can be added."));
}

TEST(Describe, EveryTypeCanBeDescribed) {
    for (const Json& node : allNodes()) {
        EXPECT_EQ(run({"describe", node["type"]}).status, 0) << node["type"];
    }
}

TEST(Describe, LetterCaseDoesNotMatter) {
    const Ended ended = run({"describe", "add", "--json"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.json()["node"]["type"], "Add");
    EXPECT_TRUE(holds(ended.err, "\"add\" is \"Add\""));
}

TEST(Describe, UnknownTypeNamesTheNearest) {
    const Ended ended = run({"describe", "Evaluater"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_TRUE(holds(ended.err, "did you mean \"Evaluator\"?")) << ended.err;
    EXPECT_EQ(run({"describe", "", "--json"}).status, 2);
}

} // namespace
} // namespace sluice_test
