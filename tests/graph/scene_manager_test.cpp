// SPDX-License-Identifier: Apache-2.0
// Tests of the manager: scenes and layouts, node types, callbacks and settings.
#include "graph/scene_manager.h"

#include <memory>
#include <thread>

#include "core/callbacks.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::LogicProbe;
using support::Names;
using support::ProbeNode;
using support::RecordingHost;
using support::SceneBuilder;
using tidemark::graph::GraphLayout;
using weft::NumericAttribute;

namespace {

SceneManager& manager() { return SceneManager::instance(); }

class FactoryProbe : public NodeFactory {
public:
    FactoryProbe(const char* type, std::initializer_list<const char*> categories)
        : NodeFactory(type, categories) {}
    ~FactoryProbe() override { ++deleted; }
    NodeBase* createNode() override { return prepare(new ProbeNode); }

    static inline int deleted = 0;
};

// A factory that leaves the manager with the test.
class Registered {
public:
    Registered(const char* type, std::initializer_list<const char*> categories)
        : factory(new FactoryProbe(type, categories)) {
        manager().registerNodeFactory(factory);
    }
    ~Registered() {
        manager().unregisterNodeFactory(factory);
        delete factory;
    }
    FactoryProbe* const factory;
};

template <typename Map>
bool anyEntryHolds(const Map& map, NodeFactory* factory) {
    for (const auto& [category, factories] : map) {
        if (factories.contains(factory)) return true;
    }
    return false;
}

} // namespace

// --- scenes and layouts ------------------------------------------------------------------------

TEST(SceneManager, KnowsEveryScene) {
    EXPECT_TRUE(manager().hasScene(&SL_GraphScene::mainGraph_));
    EXPECT_FALSE(manager().hasScene(nullptr));
    SL_GraphScene scene;
    EXPECT_TRUE(manager().hasScene(&scene));
    scene.unregisterFromSceneManager();
    EXPECT_FALSE(manager().hasScene(&scene));
    scene.registerAtSceneManager();
    EXPECT_TRUE(manager().hasScene(&scene));
    manager().addScene(nullptr);
    manager().removeScene(nullptr);
}

TEST(SceneManager, NotesALayoutForEveryScene) {
    SL_GraphScene scene;
    EXPECT_EQ(manager().getLayout(&scene), &scene.refXmlImportedLayout());
    EXPECT_EQ(manager().getLayout(nullptr), nullptr);
    GraphLayout mine;
    manager().setLayout(&scene, &mine);
    EXPECT_EQ(manager().getLayout(&scene), &mine);
    manager().addScene(&scene);
    EXPECT_EQ(manager().getLayout(&scene), &mine);
    scene.unregisterFromSceneManager();
    EXPECT_EQ(manager().getLayout(&scene), nullptr);
    manager().setLayout(&scene, &mine);
    EXPECT_EQ(manager().getLayout(&scene), nullptr);
}

TEST(SceneManager, ReadLayoutsAreCopiedAndApplied) {
    SL_GraphScene scene;
    SL_GraphScene unread;
    GraphLayout shown;
    GraphLayout untouched;
    untouched.insertNodeVisible("root.B", true);
    manager().setLayout(&scene, &shown);
    manager().setLayout(&unread, &untouched);
    GraphLayout read;
    read.insertNodePosition("root.A", Tuple2<float, float>{1.0f, 2.0f});
    manager().addReadLayout(&scene, read);
    manager().addReadLayout(nullptr, read);
    read.clear();
    EXPECT_TRUE(manager().getReadLayout(&scene).getPositionByNodeName("root.A").has_value());
    Array<TM_String> names;
    manager().getReadLayout(&unread).getAllNodeNames(names);
    manager().getReadLayout(nullptr).getAllNodeNames(names);
    EXPECT_TRUE(names.empty());
    manager().applyReadLayouts();
    EXPECT_EQ(shown.getPositionByNodeName("root.A"), (Tuple2<float, float>{1.0f, 2.0f}));
    EXPECT_TRUE(untouched.getVisibleByNodeName("root.B").has_value());
    manager().setLayout(&scene, nullptr);
    manager().applyReadLayouts();
    scene.unregisterFromSceneManager();
    scene.registerAtSceneManager();
    EXPECT_FALSE(manager().getReadLayout(&scene).getPositionByNodeName("root.A").has_value());
}

TEST(SceneManager, ShowsTheDisplayNodesOfAllScenes) {
    SceneBuilder a;
    SceneBuilder b;
    auto* first = a.probe("Probe", "P");
    auto* second = b.probe("Probe", "P");
    auto* other = b.probe("Probe", "Q");
    first->setCategory("Display");
    second->setCategory("Display");
    other->setCategory("display");
    manager().display();
    EXPECT_TRUE(manager().getDisplayEnabled());
    manager().setDisplayEnabled(false);
    manager().display();
    manager().setDisplayEnabled(true);
    EXPECT_EQ(first->logic().displays, 1);
    EXPECT_EQ(second->logic().displays, 1);
    EXPECT_EQ(other->logic().displays, 0);
}

TEST(SceneManager, LayoutsMayBeAskedForOnWorkers) {
    SL_GraphScene& scene = SL_GraphScene::mainGraph_;
    GraphLayout* const layout = manager().getLayout(&scene);
    const auto work = [&] {
        for (int i = 0; i < 200; ++i) {
            manager().setLayout(&scene, layout);
            manager().addReadLayout(&scene, GraphLayout());
            EXPECT_EQ(manager().getLayout(&scene), layout);
        }
    };
    std::thread worker(work);
    work();
    worker.join();
}

// --- node types --------------------------------------------------------------------------------

TEST(NodeDescriptor, HoldsWhatItIsGiven) {
    NodeDescriptor descriptor;
    EXPECT_FALSE(descriptor.getBuiltIn());
    descriptor.setTypeName("T");
    descriptor.setCategoryName("C");
    descriptor.setAllowedCategories({"C.D", "E"});
    descriptor.refAllowedCategories().append("F");
    descriptor.setBuiltIn(true);
    EXPECT_EQ(descriptor.getTypeName(), "T");
    EXPECT_EQ(descriptor.getCategoryName(), "C");
    EXPECT_EQ(descriptor.getAllowedCategories(), (Array<TM_String>{"C.D", "E", "F"}));
    EXPECT_TRUE(descriptor.getBuiltIn());
    descriptor.setSingleAllowedCategory("G.H");
    EXPECT_EQ(descriptor.getAllowedCategories(), (Array<TM_String>{"G.H"}));
    EXPECT_EQ(descriptor.getCategoryName(), "C");
}

TEST(NodeFactory, CutsTheMainCategoryAtItsFirstPoint) {
    FactoryProbe factory("Test", {"Geometry.Array.Mesh", "Field"});
    const NodeDescriptor& descriptor = factory.getDescriptor();
    EXPECT_EQ(descriptor.getTypeName(), "Test");
    EXPECT_EQ(descriptor.getCategoryName(), "Geometry");
    EXPECT_EQ(descriptor.getAllowedCategories(),
              (Array<TM_String>{"Geometry.Array.Mesh", "Field"}));
    EXPECT_TRUE(descriptor.getBuiltIn());
    const std::unique_ptr<NodeBase> node(factory.createNode());
    EXPECT_EQ(node->getName(), "Test");
    EXPECT_EQ(node->getType(), "Test");
    EXPECT_EQ(node->getCategory(), "Geometry");
    NodeDescriptor changed = descriptor;
    changed.setTypeName("Other");
    factory.setDescriptor(changed);
    EXPECT_EQ(factory.getDescriptor().getTypeName(), "Other");
}

TEST(SceneManager, AFactoryStandsInEveryTable) {
    const uint32_t before = manager().getArrNodeFactory().size();
    {
        const Registered test("TestType", {"Test.Deep.Down", "Math"});
        EXPECT_EQ(manager().getArrNodeFactory().size(), before + 1);
        EXPECT_EQ(manager().getArrNodeFactory().back(), test.factory);
        EXPECT_EQ(manager().getNodeFactoryFromType("TestType"), test.factory);
        EXPECT_EQ(manager().getMapCategoryToFactories().at("Test").back(), test.factory);
        EXPECT_EQ(manager().getMapLongCategoryToFactories().at("Test.Deep.Down").back(),
                  test.factory);
        EXPECT_EQ(manager().getMapLongCategoryToFactories().at("Math").back(), test.factory);
        EXPECT_FALSE(manager().getMapCategoryToFactories().at("Math").contains(test.factory));
        EXPECT_EQ(manager().getCategoryFromType("TestType"), "Test");
        SceneBuilder build;
        build.add("TestType", "T");
        EXPECT_EQ(build.node("T")->getCategory(), "Test");
    }
    EXPECT_EQ(manager().getArrNodeFactory().size(), before);
    EXPECT_EQ(manager().getNodeFactoryFromType("TestType"), nullptr);
    EXPECT_EQ(manager().getNodeFactoryFromTypeIgnoringCase("TestType"), nullptr);
    EXPECT_EQ(manager().getMapCategoryToFactories().count("Test"), 0u);
    EXPECT_EQ(manager().getMapLongCategoryToFactories().count("Test.Deep.Down"), 0u);
    EXPECT_EQ(manager().getCategoryFromType("TestType"), "");
}

TEST(SceneManager, ADuplicateIsReportedAndTheFirstFactoryStays) {
    RecordingHost host;
    const uint32_t before = manager().getArrNodeFactory().size();
    NodeFactory* const known = manager().getNodeFactoryFromType("Add");
    const int deleted = FactoryProbe::deleted;
    auto* duplicate = new FactoryProbe("Add", {"Other.Category"});
    manager().registerNodeFactory(duplicate);
    EXPECT_EQ(host.posts, (Names{"2275|Add|Math"}));
    EXPECT_EQ(FactoryProbe::deleted, deleted + 1);
    EXPECT_EQ(manager().getArrNodeFactory().size(), before);
    EXPECT_EQ(manager().getNodeFactoryFromType("Add"), known);
    EXPECT_EQ(manager().getMapCategoryToFactories().count("Other"), 0u);
    EXPECT_EQ(manager().getMapLongCategoryToFactories().count("Other.Category"), 0u);
    int inMath = 0;
    for (NodeFactory* factory : manager().getMapCategoryToFactories().at("Math")) {
        if (factory->getDescriptor().getTypeName() == "Add") ++inMath;
    }
    EXPECT_EQ(inMath, 1);
    manager().registerNodeFactory(nullptr);
}

TEST(SceneManager, UnregisteringForgetsAFactoryWhateverItSaysByThen) {
    auto* factory = new FactoryProbe("TestType", {"Test.Deep", "Math"});
    manager().registerNodeFactory(factory);
    NodeDescriptor changed;
    changed.setTypeName("Renamed");
    factory->setDescriptor(changed);
    manager().unregisterNodeFactory(factory);
    EXPECT_FALSE(anyEntryHolds(manager().getMapCategoryToFactories(), factory));
    EXPECT_FALSE(anyEntryHolds(manager().getMapLongCategoryToFactories(), factory));
    EXPECT_FALSE(manager().getArrNodeFactory().contains(factory));
    EXPECT_EQ(manager().getNodeFactoryFromType("TestType"), nullptr);
    manager().unregisterNodeFactory(factory); // unknown by now
    delete factory;
}

TEST(SceneManager, LegacyNamesLeadToTheFactoryOfToday) {
    ASSERT_EQ(manager().translateLegacyNodeType("AddNode"), "AddNode");
    const Registered today("MeshClipByDistanceField", {"Geometry"});
    EXPECT_EQ(manager().translateLegacyNodeType("ClipByDistanceField"), "MeshClipByDistanceField");
    EXPECT_EQ(manager().getNodeFactoryFromType("ClipByDistanceField"), today.factory);
    EXPECT_EQ(manager().getNodeFactoryFromTypeIgnoringCase("ClipByDistanceField"), nullptr);
    EXPECT_EQ(manager().getCategoryFromType("ClipByDistanceField"), "");
    EXPECT_EQ(manager().getNodeFactoryFromType("clipbydistancefield"), nullptr);
}

TEST(SceneManager, ATypeThatIsALegacyNameIsTranslatedFirst) {
    const Registered today("MeshClipByDistanceField", {"Geometry"});
    RecordingHost host;
    manager().registerNodeFactory(new FactoryProbe("ClipByDistanceField", {"Geometry"}));
    EXPECT_EQ(host.posts, (Names{"2275|ClipByDistanceField|Geometry"}));
}

TEST(SceneManager, IgnoringCaseTheFirstNameInOrderWins) {
    EXPECT_EQ(manager().getNodeFactoryFromTypeIgnoringCase("aDD"),
              manager().getNodeFactoryFromType("Add"));
    EXPECT_EQ(manager().getNodeFactoryFromType("aDD"), nullptr);
    const Registered lower("zebra", {"Test"});
    const Registered upper("ZEBRA", {"Test"});
    EXPECT_EQ(manager().getNodeFactoryFromTypeIgnoringCase("Zebra"), upper.factory);
    EXPECT_EQ(manager().getNodeFactoryFromTypeIgnoringCase(""), nullptr);
}

TEST(SceneManager, UnknownTypesHaveNoFactory) {
    EXPECT_EQ(manager().getNodeFactoryFromType("NoSuchNode"), nullptr);
    EXPECT_EQ(manager().getNodeFactoryFromType(""), nullptr);
    EXPECT_EQ(manager().nearestNodeType("Evaluater"), "Evaluator");
    EXPECT_EQ(manager().nearestNodeType("Qqqqqqqqqqqqqqqqqq"), "");
}

// --- callbacks ---------------------------------------------------------------------------------

namespace {

// Puts the host's slots and those of the logic layer back.
class SlotGuard {
public:
    ~SlotGuard() {
        SceneManager::forNode_iterationCompletedCallback_ = nullptr;
        SceneManager::node_updateCallback_ = nullptr;
        SceneManager::node_renamedCallback_ = nullptr;
        SceneManager::attribute_cleanCallback_ = nullptr;
        manager().setupCallbacks();
    }
};

Names heard;

} // namespace

TEST(SceneManager, TellsTheHostOfUpdatesAndCleanStates) {
    const SlotGuard guard;
    SceneBuilder build;
    build.add("Real", "R").add("Evaluator", "E").connect("R.real", "E.evaluate");
    heard.clear();
    SceneManager::node_updateCallback_ = [](const TM_String& name) {
        heard.push_back("u " + name);
    };
    build.scene.run();
    EXPECT_EQ(heard, (Names{"u R", "u E"})); // in the order they finish
    heard.clear();
    SceneManager::node_updateCallback_ = nullptr;
    SceneManager::attribute_cleanCallback_ = [](const TM_String& name) {
        heard.push_back("c " + name);
    };
    build.scene.run();
    // Two for each attribute of the closure before the run, one for each that becomes clean.
    EXPECT_EQ(heard, (Names{"c evaluate", "c evaluate", "c real", "c real", "c in", "c in", "c in",
                            "c real", "c evaluate"}));
}

TEST(SceneManager, ConnectsAndDisconnectsTheThreeSlots) {
    const SlotGuard guard;
    static int iterations;
    iterations = 0;
    EXPECT_EQ(SceneManager::iterationCompletedSlot(), nullptr);
    SceneManager::forNode_iterationCompletedCallback_ = [](const int& i) { iterations += i; };
    EXPECT_EQ(SceneManager::iterationCompletedSlot(), nullptr); // noted by the set-up only
    manager().setupCallbacks();
    ASSERT_NE(SceneManager::iterationCompletedSlot(), nullptr);
    SceneManager::iterationCompletedSlot()(3);
    EXPECT_EQ(iterations, 3);
    EXPECT_NE(weft::Callbacks::_updateCallback, nullptr);
    EXPECT_NE(weft::Callbacks::_attributeCleanCallback, nullptr);
    manager().disconnectCallbacks();
    EXPECT_EQ(SceneManager::iterationCompletedSlot(), nullptr);
    EXPECT_EQ(weft::Callbacks::_updateCallback, nullptr);
    EXPECT_EQ(weft::Callbacks::_attributeCleanCallback, nullptr);
    EXPECT_EQ(weft::Callbacks::nobodyListens, nullptr);
}

TEST(SceneManager, ClearingASceneSetsTheSlotsUpAgain) {
    const SlotGuard guard;
    manager().disconnectCallbacks();
    SceneManager::forNode_iterationCompletedCallback_ = [](const int&) {};
    SL_GraphScene scene;
    scene.clear();
    EXPECT_NE(SceneManager::iterationCompletedSlot(), nullptr);
    EXPECT_NE(weft::Callbacks::_attributeCleanCallback, nullptr);
}

TEST(SceneManager, NobodyListensOnlyWhileTheHostHasNoCallback) {
    const SlotGuard guard;
    manager().setupCallbacks();
    ASSERT_NE(weft::Callbacks::nobodyListens, nullptr);
    EXPECT_TRUE(weft::Callbacks::nobodyListens());
    SceneManager::attribute_cleanCallback_ = [](const TM_String&) {};
    EXPECT_FALSE(weft::Callbacks::nobodyListens());
    SceneManager::attribute_cleanCallback_ = nullptr;
    SceneManager::node_updateCallback_ = [](const TM_String&) {};
    EXPECT_FALSE(weft::Callbacks::nobodyListens());
    SceneManager::node_updateCallback_ = nullptr;
    weft::Callbacks::_updateCallback = [](weft::Node*, weft::Attribute*, double) {};
    EXPECT_FALSE(weft::Callbacks::nobodyListens());
}

// --- settings ----------------------------------------------------------------------------------

TEST(SceneManager, SettingsStartAsTheEditors) {
    const tidemark::graph::GraphSettings& settings = *manager().getSettings();
    EXPECT_EQ(settings.gridColor, Color4<float>(0.6f, 0.6f, 0.6f, 1.0f));
    EXPECT_EQ(settings.zoomFactor, 1.0f);
    EXPECT_TRUE(settings.showGrid);
    EXPECT_FALSE(settings.snapToGrid);
    EXPECT_TRUE(settings.antialiasing);
    EXPECT_FALSE(settings.horizontalInputs);
    EXPECT_FALSE(settings.horizontalOutputs);
    EXPECT_FALSE(settings.bezierConnections); // the library's silent host prefers straight ones
}

TEST(SceneManager, SettingsAreReplacedAsAWhole) {
    const tidemark::graph::GraphSettings before = *manager().getSettings();
    tidemark::graph::GraphSettings changed = before;
    changed.zoomFactor = 2.0f;
    manager().setSettings(changed);
    EXPECT_EQ(manager().getSettings()->zoomFactor, 2.0f);
    manager().setSettings(before);
}
