// SPDX-License-Identifier: Apache-2.0
// Names that node types bore in earlier versions: every one of them, held against legacy_types.txt.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "graph/scene_manager.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;

namespace {

struct Row {
    std::string old;
    std::string today;
};

std::vector<Row> rows() {
    std::ifstream file(SLUICE_TESTS_DIR "/graph/legacy_types.txt");
    std::vector<Row> list;
    for (Row row; file >> row.old >> row.today;) list.push_back(row);
    return list;
}

std::string documentWith(const std::string& type) {
    return "<scene><nodes><node><name>N</name><type>" + type + "</type></node></nodes></scene>";
}

TEST(LegacyTypes, AreAllKnown) {
    const std::vector<Row> all = rows();
    EXPECT_EQ(all.size(), 338u);
    std::set<std::string> keys;
    for (const Row& row : all) {
        EXPECT_EQ(SceneManager::instance().translateLegacyNodeType(row.old), row.today) << row.old;
        EXPECT_TRUE(keys.insert(row.old).second) << row.old;
    }
}

TEST(LegacyTypes, AreTheOnlyOnesThatChange) {
    std::set<std::string> keys;
    for (const Row& row : rows()) keys.insert(row.old);
    for (const NodeFactory* factory : SceneManager::instance().getArrNodeFactory()) {
        const TM_String& type = factory->getDescriptor().getTypeName();
        if (keys.count(type) == 0) {
            EXPECT_EQ(SceneManager::instance().translateLegacyNodeType(type), type);
        }
    }
    for (const char* type : {"", "NoSuchType", "arraynumconstant", "mul"}) {
        EXPECT_EQ(SceneManager::instance().translateLegacyNodeType(type), type);
    }
}

// Translated in one step: what the new name once meant is not looked up.
TEST(LegacyTypes, ReadAsTheTypesOfTodayOrAreReported) {
    unsigned made = 0;
    for (const Row& row : rows()) {
        support::RecordingHost host;
        support::SceneBuilder build;
        ASSERT_TRUE(build.scene.read_XML_fromString(documentWith(row.old)));
        const auto* node = build.scene.getNodePtrByFullName("root.N");
        // The name of today counts as it stands: a key of the dictionary leads no further.
        const NodeFactory* today = nullptr;
        for (const NodeFactory* factory : SceneManager::instance().getArrNodeFactory()) {
            if (factory->getDescriptor().getTypeName() == row.today) today = factory;
        }
        if (today) {
            ++made;
            ASSERT_NE(node, nullptr) << row.old;
            EXPECT_EQ(node->getType(), row.today) << row.old;
            EXPECT_TRUE(host.posts.empty()) << row.old;
        } else {
            EXPECT_EQ(node, nullptr) << row.old;
            ASSERT_EQ(host.posts.size(), 1u) << row.old;
            EXPECT_EQ(host.posts[0].rfind("2255|" + row.old + "|", 0), 0u) << host.posts[0];
        }
    }
    EXPECT_GE(made, 10u);
}

TEST(LegacyTypes, ThatLeadNowhereStayAsTheyAre) {
    for (const auto& [old, dead] : std::vector<std::pair<const char*, const char*>>{
             {"SaveMeshBin", "MeshSaveBin"},
             {"AxisAlignedBox3", "BoundingBox"},
             {"RangeMap", "MapRange"},
             {"StandardParticleChannel", "ParticleChannelStandard"},
             {"GridFluidDomainParticleChannel", "ParticleChannelGridFluidDomain"},
             {"StandardParticleProperty", "ParticlePropertyStandard"},
             {"GridFluidDomainParticleProperty", "ParticlePropertyGridFluidDomain"}}) {
        EXPECT_EQ(SceneManager::instance().translateLegacyNodeType(old), dead);
        support::RecordingHost host;
        support::SceneBuilder build;
        ASSERT_TRUE(build.scene.read_XML_fromString(documentWith(old)));
        ASSERT_EQ(host.posts.size(), 1u) << old;
        EXPECT_EQ(host.posts[0].rfind(std::string("2255|") + old, 0), 0u) << host.posts[0];
    }
}

} // namespace
