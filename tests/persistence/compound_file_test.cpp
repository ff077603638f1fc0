// SPDX-License-Identifier: Apache-2.0
// Compounds in files of their own: the type that a path gives, placing one in a graph, and files
// that include themselves or each other.
#include "persistence/compound_file.h"

#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <filesystem>

#include "persistence/files.h"
#include "persistence/graph_parsing_helper.h"
#include "support/recording_host.h"
#include "support/scene_builder.h"

using namespace tidemark;
using namespace tidemark::sluice::graph;
using support::SceneBuilder;
using support::TemporaryFolder;
using Posts = std::vector<std::string>;

namespace {

class LibraryHost : public support::RecordingHost {
public:
    explicit LibraryHost(TM_String path) : path_(std::move(path)) {}
    TM_String graphLibraryPath() const override { return path_; }

private:
    TM_String path_;
};

std::string described(const TM_String& library, const TM_String& path) {
    const LibraryHost host(library);
    const RefToPathNodeFactory factory(path);
    const NodeDescriptor& descriptor = factory.getDescriptor();
    EXPECT_FALSE(descriptor.getBuiltIn());
    EXPECT_TRUE(factory.getInitialized());
    EXPECT_EQ(factory.getFilePath(), path);
    std::string text = descriptor.getTypeName() + " | " + descriptor.getCategoryName() + " |";
    for (const TM_String& category : descriptor.getAllowedCategories()) text += " " + category;
    return text;
}

TEST(CompoundFile, TakesTypeAndCategoryFromItsPath) {
    EXPECT_EQ(described("/lib", "/lib/Foam/Edge/Sharpen.xml"), "Sharpen | Foam | Foam.Edge");
    EXPECT_EQ(described("/lib", "/lib/Foam/Sharpen.v2.xml"), "Sharpen | Foam | Foam");
    EXPECT_EQ(described("/lib", "/lib/Sharpen.xml"), "Sharpen | User | User");
    EXPECT_EQ(described("/lib/", "/lib/Foam/Sharpen"), "Sharpen | Foam | Foam");
    EXPECT_EQ(described("/lib", "/li"), " | User | User");
    EXPECT_EQ(described("", "Sharpen.xml"), "Sharpen | User | User");
    EXPECT_EQ(described("/lib", "/lib/Foam.v2/Sharpen.xml"), "Foam | User | User");
    EXPECT_EQ(described("/lib.v2/x.y", "/lib.v2/x.y/Foam/Sharpen.xml"), " | User | User");
    EXPECT_EQ(described("", "/Foam/Sharpen.xml"), "Sharpen | Foam | Foam");
}

TEST(CompoundFile, MakesNoNodeByItself) {
    RefToPathNodeFactory factory;
    EXPECT_FALSE(factory.getInitialized());
    EXPECT_EQ(factory.createNode(), nullptr);
    EXPECT_EQ(factory.getNode(), nullptr);
}

// Files.

std::string node(const std::string& name, const std::string& type, const std::string& more = "") {
    return "<node><name>" + name + "</name><type>" + type + "</type>" + more + "</node>";
}
std::string wire(const std::string& from, const std::string& to) {
    return "<connection><source>" + from + "</source><target>" + to + "</target></connection>";
}
std::string document(const std::string& nodes, const std::string& connections = "",
                     const std::string& layout = "") {
    return "<scene><nodes><node><name>root</name><type/><nodes>" + nodes +
           "</nodes></node></nodes><connections>" + connections + "</connections>" + layout +
           "</scene>";
}
std::string pins(const char* list, const char* item, const std::string& name) {
    return std::string("<") + list + "><" + item + "><name>" + name + "</name></" + item + "></" +
           list + ">";
}

// y = x + x
std::string doubler(const std::string& name) {
    const std::string c = "root." + name;
    return document(node(name, "Compound",
                         "<nodes>" +
                             node("IO", "CompoundInterface",
                                  pins("inputs", "input", "y") + pins("outputs", "output", "x")) +
                             node("A", "Add") + "</nodes>"),
                    wire(c + ".IO.x", c + ".A.in0") + wire(c + ".IO.x", c + ".A.in1") +
                        wire(c + ".A.result", c + ".IO.y"),
                    "<layout><nodes><node><name>" + c +
                        ".A</name><position>10,20</position></node></nodes></layout>");
}

/// A library folder whose files are types while it lives.
class Library {
public:
    Library() : host(folder.path()) {}
    ~Library() {
        for (RefToPathNodeFactory* factory : factories_) {
            SceneManager::instance().unregisterNodeFactory(factory);
            delete factory;
        }
    }
    RefToPathNodeFactory* add(const std::string& file, const std::string& text) {
        const std::string path = folder.write(file, text);
        auto* factory = new RefToPathNodeFactory(path);
        factories_.push_back(factory);
        SceneManager::instance().registerNodeFactory(factory);
        return factory;
    }

    TemporaryFolder folder;
    LibraryHost host;

private:
    std::vector<RefToPathNodeFactory*> factories_;
};

// S (3) > D.x, D.y > E.
std::string user(const std::string& type) {
    return document(
        node(
            "S", "Integer",
            "<inputs><input><name>in</name><type>integer</type><value>3</value></input></inputs>") +
            node("D", type) + node("E", "Evaluator"),
        wire("root.S.integer", "root.D.x") + wire("root.D.y", "root.E.evaluate"));
}

TEST(CompoundFile, StandsInAGraphLikeItsOwnNodes) {
    Library library;
    library.add("Twice.xml", doubler("Original"));
    SceneBuilder build;
    GraphLayout layout;
    const TM_String path = library.folder.write("user.graph", user("Twice"));
    ASSERT_TRUE(GraphParsingHelper::read_XML_base_static(true, path, build.scene, layout));
    EXPECT_EQ(library.host.posts, Posts());
    build.scene.run();
    EXPECT_EQ(build.seen<int>("E.evaluate"), 6);
    EXPECT_EQ(build.node("D")->getType(), "Compound");
    EXPECT_EQ(build.connections(),
              (support::Names{"D.IO.x>D.A.in0", "D.IO.x>D.A.in1", "D.A.result>D.IO.y",
                              "S.integer>D.x", "D.y>E.evaluate"}));
    ASSERT_TRUE(layout.getPositionByNodeName("root.D.A"));
    EXPECT_FALSE(layout.getPositionByNodeName("root.Original.A"));
    // What is saved stands for itself.
    TM_String text;
    ASSERT_TRUE(build.scene.write_XML_toString(text));
    EXPECT_EQ(text.find("Twice"), TM_String::npos);
}

TEST(CompoundFile, MayStandInsideACompoundAndTwice) {
    Library library;
    library.add("Twice.xml", doubler("Original"));
    const std::string inner =
        node("C", "Compound",
             "<nodes>" +
                 node("IO", "CompoundInterface",
                      pins("inputs", "input", "y") + pins("outputs", "output", "x")) +
                 node("D", "Twice") + node("D2", "Twice") + "</nodes>");
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(document(
        node(
            "S", "Integer",
            "<inputs><input><name>in</name><type>integer</type><value>3</value></input></inputs>") +
            inner + node("E", "Evaluator"),
        wire("root.S.integer", "root.C.x") + wire("root.C.IO.x", "root.C.D.x") +
            wire("root.C.D.y", "root.C.D2.x") + wire("root.C.D2.y", "root.C.IO.y") +
            wire("root.C.y", "root.E.evaluate"))));
    EXPECT_EQ(library.host.posts, Posts());
    build.scene.run();
    EXPECT_EQ(build.seen<int>("E.evaluate"), 12);
}

TEST(CompoundFile, LooseNodesAreWrappedIntoACompoundWithoutPins) {
    Library library;
    library.add("Loose.xml",
                document(node("A", "Real") + node("B", "Real"), wire("root.A.real", "root.B.in")));
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(document(node("D", "Loose"))));
    EXPECT_EQ(library.host.posts, Posts());
    EXPECT_EQ(build.node("D")->getArrInputPin().size(), 0u);
    EXPECT_EQ(build.connections(), (support::Names{"D.A.real>D.B.in"}));
}

TEST(CompoundFile, GivesCleanTrees) {
    Library library;
    RefToPathNodeFactory* factory = library.add("Twice.xml", doubler("Original"));
    ASSERT_TRUE(factory->updatePropertyTree());
    PropertyTree element;
    factory->getCleanNodePropertyTree(element);
    EXPECT_EQ(element.get<TM_String>("name"), "Original");
    PropertyTree nodes;
    PropertyTree connections;
    PropertyTree layout;
    factory->getCleanPropertyTree("Mine", "root.C.Mine", nodes, connections, layout);
    EXPECT_EQ(nodes.get<TM_String>("scene.nodes.node.name"), "Mine");
    EXPECT_EQ(nodes.get<TM_String>("scene.nodes.node.type"), "Compound");
    EXPECT_EQ(connections.get<TM_String>("scene.connections.connection.source"),
              "root.C.Mine.IO.x");
    EXPECT_EQ(layout.get<TM_String>("scene.layout.nodes.node.name"), "root.C.Mine.A");

    RefToPathNodeFactory* loose = library.add("Loose.xml", document(node("A", "Real")));
    ASSERT_TRUE(loose->updatePropertyTree());
    loose->getCleanNodePropertyTree(element);
    EXPECT_EQ(element.get<TM_String>("node.name"), "Loose");
    EXPECT_EQ(element.get<TM_String>("node.type"), "Compound");
    EXPECT_EQ(element.get<TM_String>("node.nodes.node.name"), "A");
}

TEST(CompoundFile, ChangeOnDiskIsSeenAtTheNextReading) {
    Library library;
    library.add("Twice.xml", document(node("A", "Real")));
    SceneBuilder before;
    ASSERT_TRUE(before.scene.read_XML_fromString(document(node("D", "Twice"))));
    library.folder.write("Twice.xml", doubler("Changed"));
    SceneBuilder after;
    ASSERT_TRUE(after.scene.read_XML_fromString(user("Twice")));
    after.scene.run();
    EXPECT_EQ(after.seen<int>("E.evaluate"), 6);
    EXPECT_EQ(library.host.posts, Posts());
}

// What cannot be read.

TEST(CompoundFile, UnreadableFileIsReportedAndGivesAnEmptyCompound) {
    Library library;
    library.add("Broken.xml", "<scene><nodes>");
    library.add("Empty.xml", "");
    RefToPathNodeFactory* gone = library.add("Gone.xml", "<scene/>");
    std::filesystem::remove(gone->getFilePath());
    for (const char* type : {"Broken", "Empty", "Gone"}) {
        library.host.posts.clear();
        SceneBuilder build;
        ASSERT_TRUE(build.scene.read_XML_fromString(document(node("D", type) + node("R", "Real"))));
        ASSERT_EQ(library.host.posts.size(), 1u) << type;
        EXPECT_EQ(library.host.posts[0].rfind("2263|" + library.folder.path() + "/" + type, 0), 0u)
            << library.host.posts[0];
        EXPECT_EQ(build.node("D")->children().size(), 0u);
        EXPECT_NE(build.scene.getNodePtrByFullName("root.R"), nullptr) << "the rest is read";
    }
}

TEST(CompoundFile, UnknownTypeInsideIsReportedWithItsPlace) {
    Library library;
    library.add("Odd.xml", document(node("A", "NoSuchType")));
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(document(node("D", "Odd"))));
    ASSERT_EQ(library.host.posts.size(), 1u);
    EXPECT_EQ(library.host.posts[0].rfind("2255|NoSuchType|root.D.A", 0), 0u);
    EXPECT_NE(library.host.posts[0].find("/Odd.xml"), std::string::npos) << "and with its file";
}

TEST(CompoundFile, MissingPinInsideIsReportedWithItsFile) {
    Library library;
    library.add("Odd.xml", document(node("A", "Real"), wire("root.A.real", "root.A.nothing")));
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(document(node("D", "Odd"))));
    ASSERT_EQ(library.host.posts.size(), 1u);
    EXPECT_EQ(library.host.posts[0].rfind("2260|root.D.A.nothing", 0), 0u);
    EXPECT_NE(library.host.posts[0].find("/Odd.xml"), std::string::npos);
}

TEST(CompoundFile, OldNamesInsideAreTranslated) {
    Library library;
    library.add("Old.xml", document(node("A", "Matrix4Mul")));
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(document(node("D", "Old"))));
    EXPECT_EQ(library.host.posts, Posts());
    EXPECT_EQ(build.node("D.A")->getType(), "Mul");
}

TEST(CompoundFile, FileThatIncludesItselfIsNotFollowed) {
    Library library;
    library.add("Self.xml", document(node("A", "Real") + node("Again", "Self")));
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(document(node("D", "Self"))));
    ASSERT_EQ(library.host.posts.size(), 1u);
    EXPECT_NE(library.host.posts[0].find("Self.xml"), std::string::npos);
    EXPECT_NE(
        library.host.posts[0].find("the file includes itself, node \"root.D.Again\" is left out"),
        std::string::npos)
        << library.host.posts[0];
    EXPECT_NE(build.scene.getNodePtrByFullName("root.D.A"), nullptr);
    EXPECT_EQ(build.scene.getNodePtrByFullName("root.D.Again"), nullptr);
}

TEST(CompoundFile, GraphThatIsAlsoATypeDoesNotIncludeItself) {
    Library library;
    const RefToPathNodeFactory* self =
        library.add("Self.xml", document(node("A", "Real") + node("Again", "Self")));
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML(self->getFilePath()));
    EXPECT_EQ(library.host.posts.size(), 1u);
    EXPECT_EQ(build.scene.getNodePtrByFullName("root.Again"), nullptr);
}

TEST(CompoundFile, FilesThatIncludeEachOtherAreNotFollowed) {
    Library library;
    library.add("Egg.xml", document(node("Hatches", "Hen") + node("Also", "Hen")));
    library.add("Hen.xml", document(node("Lays", "Egg") + node("R", "Real")));
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(document(node("D", "Egg"))));
    EXPECT_EQ(library.host.posts.size(), 2u);
    EXPECT_NE(build.scene.getNodePtrByFullName("root.D.Hatches.R"), nullptr);
    EXPECT_NE(build.scene.getNodePtrByFullName("root.D.Also.R"), nullptr);
    EXPECT_EQ(build.scene.getNodePtrByFullName("root.D.Also.Lays"), nullptr);
}

TEST(CompoundFile, LongChainsOfFilesEnd) {
    Library library;
    for (int i = 0; i < 150; ++i) {
        const std::string next = "F" + std::to_string(i + 1) + "x";
        library.add("F" + std::to_string(i) + "x.xml", document(node("N", next)));
    }
    library.add("F150x.xml", document(node("R", "Real")));
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(document(node("D", "F0x"))));
    ASSERT_EQ(library.host.posts.size(), 1u);
    EXPECT_NE(library.host.posts[0].find("files include files too deep"), std::string::npos);
}

// `depth` compounds in each other, the innermost holding `inner`.
std::string nested(int depth, std::string inner) {
    for (int i = 0; i < depth; ++i) inner = node("C", "Compound", "<nodes>" + inner + "</nodes>");
    return inner;
}

// Every file is as deep as files may be; together they would be a hundred times as deep.
TEST(CompoundFile, NodesOfAllFilesTogetherAreNoDeeperThanAFileMayBe) {
    Library library;
    for (int i = 0; i < 90; ++i) {
        const std::string next = "P" + std::to_string(i + 1) + "x";
        library.add("P" + std::to_string(i) + "x.xml", document(nested(400, node("N", next))));
    }
    library.add("P90x.xml", document(node("R", "Real")));
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(document(node("D", "P0x"))));
    ASSERT_EQ(library.host.posts.size(), 1u);
    EXPECT_NE(library.host.posts[0].find("P1x.xml|the nodes are nested too deep"),
              std::string::npos)
        << library.host.posts[0].substr(0, 200);
    TM_String text;
    ASSERT_TRUE(build.scene.write_XML_toString(text));
    SceneBuilder again;
    EXPECT_TRUE(again.scene.read_XML_fromString(text));
    EXPECT_EQ(library.host.posts.size(), 1u);
}

// Each file names the next one eight times, 8^20 nodes in all.
TEST(CompoundFile, FilesThatGrowWithoutAnEndAreLeftOut) {
    Library library;
    for (int i = 0; i < 20; ++i) {
        const std::string next = "B" + std::to_string(i + 1) + "x";
        std::string nodes;
        for (int k = 0; k < 8; ++k) nodes += node("N" + std::to_string(k), next);
        library.add("B" + std::to_string(i) + "x.xml", document(nodes));
    }
    library.add("B20x.xml", document(node("R", "Real")));
    SceneBuilder build;
    ASSERT_TRUE(build.scene.read_XML_fromString(document(node("D", "B0x"))));
    EXPECT_GT(library.host.posts.size(), 0u);
    EXPECT_LT(library.host.posts.size(), 8u * 20u);
    for (const std::string& post : library.host.posts) {
        EXPECT_NE(post.find("files include files without an end"), std::string::npos) << post;
    }
}

// Each file names the next one twice.
TEST(CompoundFile, LimitOnNodesHoldsForAllFilesTogether) {
    Library library;
    for (int i = 0; i < 40; ++i) {
        const std::string next = "G" + std::to_string(i + 1) + "x";
        library.add("G" + std::to_string(i) + "x.xml", document(node("A", next) + node("B", next)));
    }
    library.add("G40x.xml", document(node("R", "Real")));
    limits::Limits limited;
    limited.maxNodes = 1000;
    limits::set(limited);
    SceneBuilder build;
    EXPECT_FALSE(build.scene.read_XML_fromString(document(node("D", "G0x"))));
    limits::set({});
    EXPECT_FALSE(library.host.posts.empty());
}

} // namespace
