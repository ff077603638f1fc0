// SPDX-License-Identifier: Apache-2.0
// Two graph files that share global variables.
#include <gtest/gtest.h>

#include <memory>

#include "core/string_value.h"
#include "graph/graph_scene.h"
#include "nodes/values/globals/common_storage.h"

namespace {

using tidemark::TM_String;
using tidemark::sluice::graph::Pin;
using tidemark::sluice::graph::SL_GraphScene;
using weft::CommonStorage;

class GlobalFiles : public testing::Test {
protected:
    GlobalFiles() { CommonStorage::instance().removeAll(); }
    ~GlobalFiles() override { CommonStorage::instance().removeAll(); }

    static std::unique_ptr<SL_GraphScene> read(const char* file) {
        auto scene = std::make_unique<SL_GraphScene>();
        EXPECT_TRUE(scene->read_XML(TM_String(SLUICE_EXAMPLES_DIR "/") + file));
        return scene;
    }
    static TM_String text(SL_GraphScene& scene, const char* pin) {
        auto* found = dynamic_cast<Pin*>(scene.getPinPtrByFullName(pin));
        return found ? found->getWeftAttribute()->currentValue()->asString() : "no pin";
    }
};

TEST_F(GlobalFiles, OneReadsWhatTheOtherSet) {
    const auto setting = read("globals_set.xml");
    const auto getting = read("globals_get.xml");
    getting->run();
    EXPECT_EQ(text(*getting, "root.Evaluator.evaluate"), "[3] 0");
    EXPECT_EQ(text(*getting, "root.Evaluator.title"), "");
    setting->run();
    EXPECT_EQ(text(*setting, "root.Evaluator.evaluate"), "[3] 12.5");
    EXPECT_EQ(text(*setting, "root.Evaluator.title"), "Ocean");
    EXPECT_EQ(text(*setting, "root.Evaluator.names"), "height");
    getting->run();
    EXPECT_EQ(text(*getting, "root.Evaluator.evaluate"), "[3] 25");
    EXPECT_EQ(text(*getting, "root.Evaluator.title"), "Ocean");
}

TEST_F(GlobalFiles, EachRunReadsAnew) {
    const auto setting = read("globals_set.xml");
    const auto getting = read("globals_get.xml");
    for (const float height : {1.0f, 4.0f}) {
        setting->setPinFloatValue("root.Height.in", height);
        setting->run();
        getting->run();
        EXPECT_FLOAT_EQ(getting->getPinFloatValue("root.Twice.result"), 2 * height);
    }
}

TEST_F(GlobalFiles, TheVariablesStayWhenTheirGraphIsClosed) {
    read("globals_set.xml")->run();
    const auto getting = read("globals_get.xml");
    getting->run();
    EXPECT_EQ(text(*getting, "root.Evaluator.evaluate"), "[3] 25");
    EXPECT_EQ(text(*getting, "root.Evaluator.title"), "Ocean");
    getting->purge();
    getting->clear();
    const auto again = read("globals_get.xml");
    again->run();
    EXPECT_EQ(text(*again, "root.Evaluator.evaluate"), "[3] 25");
}

} // namespace
