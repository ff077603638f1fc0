// SPDX-License-Identifier: Apache-2.0
// Tests of the list of node types, of the rows of the registered ones against it, and a sweep over
// every registered type.
#include "graph/node_types.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>

#include "core/bit_array.h"
#include "core/string_value.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::Names;
using support::SceneBuilder;
using weft::NumericAttribute;

namespace {

const std::string folder = SLUICE_SOURCE_DIR "/src/graph/node_types/";

struct TypeRow {
    std::string type;
    std::vector<std::string> categories;
};

std::vector<std::string> linesOf(const std::string& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

// All types, in the order in which they are to be registered.
const std::vector<TypeRow>& allTypes() {
    static const std::vector<TypeRow> rows = [] {
        std::vector<TypeRow> read;
        for (const std::string& line : linesOf(folder + "types.txt")) {
            TypeRow row;
            std::istringstream words(line);
            std::getline(words, row.type, '\t');
            for (std::string word; std::getline(words, word, '\t');) row.categories.push_back(word);
            read.push_back(row);
        }
        return read;
    }();
    return rows;
}

const TypeRow* rowOf(const std::string& type) {
    for (const TypeRow& row : allTypes()) {
        if (row.type == type) return &row;
    }
    return nullptr;
}

Names split(const std::string& text) {
    std::istringstream words(text);
    Names names;
    for (std::string word; words >> word;) names.push_back(word);
    return names;
}

// Types whose graph class is named with "Node" behind the type.
bool hasClassSuffix(const std::string& type) {
    static const Names list = split(
        "Add Bit Color4 Color4FromComponents Color4ToComponents Div Integer Integer64 "
        "Matrix4FromComponents Matrix4ToComponents Mul QuaternionFromAxisAngle "
        "QuaternionFromComponents QuaternionToAxisAngle QuaternionToComponents Real Sub Vector3 "
        "Vector3ToComponents");
    EXPECT_EQ(list.size(), 19u);
    return std::find(list.begin(), list.end(), type) != list.end();
}

class AwakeHost : public support::RecordingHost {
public:
    bool allowsSleep() const override { return false; }
};

} // namespace

// --- the list ----------------------------------------------------------------------------------

TEST(NodeTypes, ListHolds725DifferentTypes) {
    EXPECT_EQ(allTypes().size(), 725u);
    std::set<std::string> names;
    for (const TypeRow& row : allTypes()) {
        EXPECT_TRUE(names.insert(row.type).second) << row.type;
        EXPECT_FALSE(row.categories.empty()) << row.type;
    }
}

TEST(NodeTypes, ListHasItsCountPerCategory) {
    const std::vector<std::pair<std::string, int>> stated{
        {"Bit", 37},
        {"Condition", 22},
        {"Constant", 7},
        {"Conversion", 25},
        {"Curve", 16},
        {"Curve.Array", 32},
        {"Display", 6},
        {"Execution", 18},
        {"Execution.Global Variable", 1},
        {"Field", 27},
        {"Field.Array.Distance", 16},
        {"Field.Array.Real", 16},
        {"Field.Array.Vector3", 16},
        {"Geometry", 37},
        {"Geometry.Array.Box", 16},
        {"Geometry.Array.Mesh", 16},
        {"Geometry.Array.MeshVoxelization", 16},
        {"Geometry.Array.ObjectMesh", 16},
        {"Geometry.Array.SwellMesh", 16},
        {"Image", 29},
        {"Image.Array", 16},
        {"Import-Export", 13},
        {"Math", 87},
        {"Particle", 14},
        {"Scene", 52},
        {"Scene Node", 109},
        {"Scene Node.Array", 16},
        {"String", 16},
        {"String.Array", 17},
    };
    std::vector<std::pair<std::string, int>> counted; // categories stand together, in this order
    for (const TypeRow& row : allTypes()) {
        if (counted.empty() || counted.back().first != row.categories[0]) {
            counted.emplace_back(row.categories[0], 0);
        }
        ++counted.back().second;
    }
    EXPECT_EQ(counted, stated);
}

TEST(NodeTypes, FortyTwoTypesHaveASecondCategory) {
    std::map<std::string, Names> bySecond;
    int globals = 0;
    for (const TypeRow& row : allTypes()) {
        ASSERT_LE(row.categories.size(), 2u) << row.type;
        const bool isGlobal = std::regex_match(row.type, std::regex("(Set|Get).*GlobalVariable"));
        if (isGlobal) {
            ++globals;
            ASSERT_EQ(row.categories.size(), 2u) << row.type;
            EXPECT_EQ(row.categories[1], "Execution.Global Variable") << row.type;
        } else if (row.categories.size() == 2) {
            bySecond[row.categories[1]].push_back(row.type);
        }
    }
    EXPECT_EQ(globals, 24);
    const std::map<std::string, Names> stated{
        {"Bit", split("ArrayBitToString ArrayBitFromString ArrayBitToInteger ArrayBitToInteger64 "
                      "IntegerToArrayBit")},
        {"Geometry", {"MeshLoad", "MeshSave"}},
        {"Particle", {"ParticleSave", "ParticleLoad"}},
        {"Scene Node", {"NodeDataReload", "NodeDataExport"}},
        {"Field", {"FieldSave", "FieldRealLoad", "FieldVector3Load"}},
        {"Image", {"ImageLoad", "ImageSave"}},
        {"Scene", {"SceneLoad", "SceneSave"}},
    };
    EXPECT_EQ(bySecond, stated);
}

TEST(NodeTypes, UnregisteredClassesAreNotInTheList) {
    for (const char* type : {"Root",
                             "ArrayParticlesConcat",
                             "ArrayParticlesConstant",
                             "ArrayParticlesFilterByMask",
                             "ArrayParticlesFindAllElementIndices",
                             "ArrayParticlesFindElement",
                             "ArrayParticlesInsertElement",
                             "ArrayParticlesMix",
                             "ArrayParticlesPushElement",
                             "ArrayParticlesRemoveElement",
                             "ArrayParticlesRemoveIndex",
                             "ArrayParticlesRemoveRepeatedElements",
                             "ArrayParticlesResize",
                             "ArrayParticlesReverse",
                             "ArrayParticlesSlice",
                             "GetArrayParticlesElement",
                             "SetArrayParticlesElement",
                             "GetParticlesGlobalVariable",
                             "SetParticlesGlobalVariable",
                             "ParticlesCopy"}) {
        EXPECT_EQ(rowOf(type), nullptr) << type;
        EXPECT_EQ(SceneBuilder::manager().getNodeFactoryFromType(type), nullptr) << type;
    }
}

// --- the rows ----------------------------------------------------------------------------------

TEST(NodeTypes, RegisteredRowsAgreeWithTheList) {
    std::size_t place = 0;
    EXPECT_GE(SceneBuilder::manager().getArrNodeFactory().size(), 30u);
    for (const NodeFactory* factory : SceneBuilder::manager().getArrNodeFactory()) {
        const NodeDescriptor& descriptor = factory->getDescriptor();
        const TypeRow* row = rowOf(descriptor.getTypeName());
        ASSERT_NE(row, nullptr) << descriptor.getTypeName();
        Names categories;
        for (const TM_String& category : descriptor.getAllowedCategories()) {
            categories.push_back(category);
        }
        EXPECT_EQ(categories, row->categories) << row->type;
        EXPECT_EQ(descriptor.getCategoryName(),
                  row->categories[0].substr(0, row->categories[0].find('.')));
        EXPECT_TRUE(descriptor.getBuiltIn()) << row->type;
        // What is registered follows the order of the list.
        const auto found = static_cast<std::size_t>(row - allTypes().data());
        EXPECT_GE(found, place) << row->type;
        place = found;
    }
}

TEST(NodeTypes, EveryTableKnowsEveryType) {
    const SceneManager& manager = SceneBuilder::manager();
    for (NodeFactory* factory : manager.getArrNodeFactory()) {
        const NodeDescriptor& descriptor = factory->getDescriptor();
        const TM_String& type = descriptor.getTypeName();
        EXPECT_EQ(manager.getNodeFactoryFromType(type), factory);
        EXPECT_EQ(manager.getNodeFactoryFromTypeIgnoringCase(text::toUpper(type)), factory);
        EXPECT_EQ(manager.getCategoryFromType(type), descriptor.getCategoryName());
        EXPECT_EQ(manager.translateLegacyNodeType(type), type);
        EXPECT_TRUE(
            manager.getMapCategoryToFactories().at(descriptor.getCategoryName()).contains(factory));
        for (const TM_String& category : descriptor.getAllowedCategories()) {
            EXPECT_TRUE(manager.getMapLongCategoryToFactories().at(category).contains(factory));
        }
    }
}

TEST(NodeTypes, ClassesAreNamedAfterTheirTypes) {
    const std::regex row(R"(NODE(?:_WITH_GRAPH_CLASS)?\((\w+), (\w+), .*\))");
    int rows = 0;
    for (const std::string& include : linesOf(folder + "all.def")) {
        std::smatch match;
        if (!std::regex_match(include, match, std::regex(R"(#include "graph/node_types/(.*)\")"))) {
            continue;
        }
        for (const std::string& line : linesOf(folder + match[1].str())) {
            std::smatch parts;
            if (!std::regex_match(line, parts, row)) continue;
            const std::string type = parts[1];
            EXPECT_EQ(parts[2], type + (hasClassSuffix(type) ? "Node" : ""));
            ++rows;
        }
    }
    EXPECT_EQ(rows, static_cast<int>(SceneBuilder::manager().getArrNodeFactory().size()));
}

// --- the sweep ---------------------------------------------------------------------------------

namespace {

class EveryType : public testing::TestWithParam<const char*> {
protected:
    Node* enter(SL_GraphScene& scene) const {
        NodeFactory* factory = SceneBuilder::manager().getNodeFactoryFromType(GetParam());
        if (!factory) return nullptr;
        auto* node = static_cast<Node*>(factory->createNode());
        scene.addNodeToGraph(node);
        node->setNodeOwner(scene.getRootNode());
        return node;
    }
    AwakeHost host_;
};

std::vector<const char*> registeredTypes() {
    std::vector<const char*> types;
    for (const NodeFactory* factory : SceneBuilder::manager().getArrNodeFactory()) {
        types.push_back(factory->getDescriptor().getTypeName().c_str());
    }
    return types;
}

// Runs the node by itself, then each of its pins. Whatever it makes of its inputs, it ends.
void computeAll(SL_GraphScene& scene, Node* node) {
    scene.runNode(node);
    for (Pin* pin : node->getArrOutputPin()) scene.runPin(pin);
    for (Pin* pin : node->getArrInputPin()) scene.runPin(pin);
    node->update_notCleaning();
    for (const Pin* pin : node->getArrOutputPin()) pin->getValueAsString(true);
}

} // namespace

TEST_P(EveryType, CanBeMadeAndAdded) {
    SL_GraphScene scene;
    const Node* node = enter(scene);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getType(), GetParam());
    EXPECT_EQ(node->getName(), GetParam());
    EXPECT_EQ(node->getCategory(), SceneBuilder::manager().getCategoryFromType(GetParam()));
    ASSERT_NE(node->getCoreNode(), nullptr);
    EXPECT_EQ(node->getCoreNode()->className(), GetParam());
    EXPECT_FALSE(node->hasMessages());
    EXPECT_EQ(scene.getNodePtrByFullName("root." + TM_String(GetParam())), node);
}

TEST_P(EveryType, HasAPinForEveryAttributeInOrder) {
    SL_GraphScene scene;
    const Node* node = enter(scene);
    const auto expectPins = [&](const Array<Pin*>& pins, const auto& attributes) {
        ASSERT_EQ(pins.size(), attributes.size());
        for (uint32_t i = 0; i < pins.size(); ++i) {
            EXPECT_EQ(pins[i]->getWeftAttribute(), attributes[i]);
            EXPECT_EQ(pins[i]->getName(), attributes[i]->name());
            EXPECT_EQ(scene.getPinPtrById(static_cast<unsigned>(attributes[i]->id())), pins[i]);
        }
    };
    expectPins(node->getArrInputPin(), node->getCoreNode()->refInputAttributes());
    expectPins(node->getArrOutputPin(), node->getCoreNode()->refOutputAttributes());
    for (const Pin* pin : node->getArrInputPin()) EXPECT_TRUE(pin->isInput());
    for (const Pin* pin : node->getArrOutputPin()) EXPECT_TRUE(pin->isOutput());
}

TEST_P(EveryType, ExplainsItselfAndItsPins) {
    SL_GraphScene scene;
    const Node* node = enter(scene);
    EXPECT_NE(node->getDescription(), "");
    for (const auto* pin : node->pins()) EXPECT_NE(pin->getDescription(), "") << pin->getName();
}

TEST_P(EveryType, PinNamesDiffer) {
    SL_GraphScene scene;
    std::set<TM_String> names;
    for (const auto* pin : enter(scene)->pins()) {
        EXPECT_TRUE(names.insert(pin->getName()).second) << pin->getName();
    }
}

TEST_P(EveryType, ComputesUnconnected) {
    SL_GraphScene scene;
    Node* node = enter(scene);
    computeAll(scene, node);
    EXPECT_NE(scene.lastOutcome(), RunOutcome::outOfMemory);
    EXPECT_FALSE(scene.networkManager().evaluating());
}

TEST_P(EveryType, ComputesEmptyAndLongValues) {
    for (const uint32_t count : {0u, 3u}) {
        SL_GraphScene scene;
        Node* node = enter(scene);
        for (const Pin* pin : node->getArrInputPin()) {
            weft::Value* value = pin->value();
            if (auto* number = weft::valueAs<weft::Numeric>(value)) number->resize(count);
            if (auto* bits = weft::valueAs<weft::BitArrayValue>(value)) bits->resize(count, true);
            if (auto* text = weft::valueAs<weft::StringValue>(value)) text->setSize(count);
        }
        computeAll(scene, node);
        EXPECT_FALSE(scene.networkManager().evaluating());
    }
}

TEST_P(EveryType, ComputesWhateverIsWiredToIt) {
    for (const char* kind : {"Real", "Integer64", "Vector3", "Color4", "String", "Bit"}) {
        SceneBuilder build;
        build.add(kind, "Source");
        Node* node = enter(build.scene);
        weft::Attribute* source = build.logic("Source")->outputAttributeAt(0);
        // Past all tests of types, as a file or a host could not.
        for (const Pin* pin : node->getArrInputPin()) {
            source->connectTo(pin->getWeftAttribute(), nullptr);
        }
        computeAll(build.scene, node);
        EXPECT_FALSE(build.scene.networkManager().evaluating());
        build.scene.removeNodeFromGraph(build.node("Source"));
        computeAll(build.scene, node);
    }
}

TEST_P(EveryType, ChoosesEveryTypeThatItsPinsMayBe) {
    SL_GraphScene scene;
    Node* node = enter(scene);
    for (uint32_t i = 0; i < node->getArrInputPin().size(); ++i) {
        Pin* pin = node->getArrInputPin()[i];
        const Array<TM_String> allowed = pin->getAllowedSpecializations();
        if (allowed.size() > 20) continue; // takes everything
        for (const TM_String& type : allowed) {
            pin->setSpecializationOverride(type);
            pin->updateSpecializations();
            computeAll(scene, node);
        }
    }
    EXPECT_FALSE(scene.networkManager().evaluating());
}

TEST_P(EveryType, LeavesNothingBehind) {
    SL_GraphScene scene;
    const uint32_t objects = scene.networkManager().objects().size();
    Node* node = enter(scene);
    computeAll(scene, node);
    EXPECT_TRUE(scene.removeNodeFromGraph(node));
    EXPECT_EQ(scene.networkManager().objects().size(), objects);
    EXPECT_TRUE(scene.nodesById().empty() && scene.pinsById().empty());
    EXPECT_TRUE(scene.getArrUpdateNodes().empty());
    enter(scene);
    scene.clear();
    EXPECT_EQ(scene.networkManager().objects().size(), objects);
}

TEST_P(EveryType, HasAUniqueNameForASecondOne) {
    SL_GraphScene scene;
    enter(scene);
    const Node* second = enter(scene);
    EXPECT_EQ(second->getName(), weft::NestedObject::nextName(GetParam()));
    EXPECT_EQ(second->getCoreNode()->name(), second->getName());
}

INSTANTIATE_TEST_SUITE_P(Registered, EveryType, testing::ValuesIn(registeredTypes()),
                         [](const auto& type) { return std::string(type.param); });
