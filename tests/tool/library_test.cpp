// SPDX-License-Identifier: Apache-2.0
// `--library`: graph files below a folder serve as node types.
#include "tool/program.h"

namespace sluice_test {
namespace {

class LibraryTest : public ProgramTest {
protected:
    LibraryTest() {
        std::filesystem::create_directories(path("lib.v1/Sums/Small"));
        file("lib.v1/Sums/Small/Triple.xml", triple);
        file("user.xml", user);
    }
    static constexpr const char* triple =
        "<scene><nodes><node><name>root</name><type/><nodes>"
        "<node><name>T</name><type>Compound</type><nodes>"
        "<node><name>IO</name><type>CompoundInterface</type>"
        "<inputs><input><name>y</name></input></inputs>"
        "<outputs><output><name>x</name></output></outputs></node>"
        "<node><name>A</name><type>Add</type></node><node><name>B</name><type>Add</type></node>"
        "</nodes></node></nodes></node></nodes><connections>"
        "<connection><source>root.T.IO.x</source><target>root.T.A.in0</target></connection>"
        "<connection><source>root.T.IO.x</source><target>root.T.A.in1</target></connection>"
        "<connection><source>root.T.A.result</source><target>root.T.B.in0</target></connection>"
        "<connection><source>root.T.IO.x</source><target>root.T.B.in1</target></connection>"
        "<connection><source>root.T.B.result</source><target>root.T.IO.y</target></connection>"
        "</connections></scene>";
    static constexpr const char* user =
        "<scene><nodes><node><name>root</name><type/><nodes>"
        "<node><name>S</name><type>Integer</type><inputs><input><name>in</name>"
        "<type>integer</type><value>7</value></input></inputs></node>"
        "<node><name>D</name><type>Triple</type></node>"
        "<node><name>E</name><type>Evaluator</type></node></nodes></node></nodes><connections>"
        "<connection><source>root.S.integer</source><target>root.D.x</target></connection>"
        "<connection><source>root.D.y</source><target>root.E.evaluate</target></connection>"
        "</connections></scene>";
};

TEST_F(LibraryTest, RunsGraphsThatUseItsTypes) {
    const Ended without = sluice({"run", "user.xml"});
    EXPECT_EQ(without.status, 1);
    EXPECT_NE(without.err.find("Triple"), std::string::npos);
    const Ended with =
        sluice({"run", "--library", "lib.v1", "user.xml", "--json", "--get", "root.E.evaluate"});
    EXPECT_EQ(with.status, 0) << with.err;
    EXPECT_EQ(with.json()["pins"][0]["value"].dump(), "[21]");
}

TEST_F(LibraryTest, ListsAndDescribesThem) {
    const Ended listed = sluice({"nodes", "--library", "lib.v1/", "--category", "Sums", "--json"});
    ASSERT_EQ(listed.status, 0) << listed.err;
    ASSERT_EQ(listed.json()["nodes"].size(), 1u);
    EXPECT_EQ(listed.json()["nodes"][0]["type"], "Triple");
    EXPECT_EQ(listed.json()["nodes"][0]["category"], "Sums.Small");
    const Ended described = sluice({"describe", "Triple", "--library=lib.v1", "--json"});
    ASSERT_EQ(described.status, 0) << described.err;
    EXPECT_EQ(described.json()["node"]["inputs"][0]["name"], "x") << described.out;
    EXPECT_EQ(described.json()["node"]["outputs"][0]["name"], "y");
}

TEST_F(LibraryTest, IsReadByEveryCommandThatReadsGraphs) {
    EXPECT_EQ(sluice({"check", "user.xml", "--library", "lib.v1"}).status, 0);
    EXPECT_EQ(sluice({"convert", "--library", "lib.v1", "user.xml", "out.xml"}).status, 0);
    const Ended converted = sluice({"run", "out.xml", "--json", "--get", "root.E.evaluate"});
    EXPECT_EQ(converted.json()["pins"][0]["value"].dump(), "[21]") << "it stands for itself";
    EXPECT_EQ(sluice({"diff", "--library", "lib.v1", "user.xml", "out.xml"}).status, 0);
}

TEST_F(LibraryTest, MayBeGivenMoreThanOnce) {
    std::filesystem::create_directories(path("more"));
    file("more/Quadruple.xml", triple);
    const Ended listed =
        sluice({"nodes", "--library", "lib.v1", "--library", "more", "--category", "User"});
    EXPECT_NE(listed.out.find("Quadruple"), std::string::npos) << listed.out << listed.err;
}

TEST_F(LibraryTest, TypeThatExistsIsReportedAndLeftOut) {
    file("lib.v1/Sums/Add.xml", triple);
    const Ended ended = sluice({"describe", "Add", "--library", "lib.v1"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_NE(ended.err.find("Add"), std::string::npos) << ended.err;
    EXPECT_NE(ended.out.find("(Math)"), std::string::npos);
}

TEST_F(LibraryTest, HiddenFilesAndFoldersAreNoTypes) {
    std::filesystem::create_directories(path("lib.v1/.history/Sums"));
    file("lib.v1/.history/Sums/Older.xml", triple);
    file("lib.v1/.Triple.xml", triple);
    file("lib.v1/Sums/.Draft.xml", triple);
    file("lib.v1/Sums/Shown.xml", triple);
    const Ended listed = sluice({"nodes", "--library", "lib.v1", "--json"});
    ASSERT_EQ(listed.status, 0) << listed.err;
    EXPECT_EQ(listed.err, "");
    std::vector<std::string> fromFiles;
    const Json all = listed.json();
    for (const Json& node : all["nodes"]) {
        const std::string category = node["category"];
        if (category.rfind("Sums", 0) == 0 || category == "User") fromFiles.push_back(node["type"]);
    }
    EXPECT_EQ(fromFiles, (std::vector<std::string>{"Shown", "Triple"}));
}

TEST_F(LibraryTest, FolderThatIsNoneIsRefused) {
    const Ended ended = sluice({"run", "user.xml", "--library", "nowhere"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_NE(ended.err.find("the library folder \"nowhere\" cannot be listed"), std::string::npos)
        << ended.err;
}

TEST_F(LibraryTest, CheckTellsOldTypesAndTroubleInsideItsFiles) {
    file("lib.v1/Old.xml",
         "<scene><nodes><node><name>M</name><type>Matrix4Mul</type></node>"
         "<node><name>X</name><type>NoSuchType</type></node></nodes><connections/></scene>");
    file("old.xml", "<scene><nodes><node><name>O</name><type>Old</type></node></nodes>"
                    "<connections/></scene>");
    const Ended ended = sluice({"check", "old.xml", "--library", "lib.v1"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_NE(ended.out.find("old type \"Matrix4Mul\" has become \"Mul\" in \"lib.v1/Old.xml\""),
              std::string::npos)
        << ended.out;
    EXPECT_NE(ended.out.find("error 2255: lib.v1/Old.xml: Unknown node type \"NoSuchType\" of node "
                             "\"root.O.X\": skipped"),
              std::string::npos)
        << ended.out;
}

TEST_F(LibraryTest, FileThatIncludesItselfIsReported) {
    file("lib.v1/Sums/Ring.xml",
         "<scene><nodes><node><name>root</name><type/><nodes>"
         "<node><name>Inner</name><type>Ring</type></node></nodes></node></nodes></scene>");
    file("ring.xml", "<scene><nodes><node><name>root</name><type/><nodes>"
                     "<node><name>R</name><type>Ring</type></node></nodes></node></nodes>"
                     "<connections/></scene>");
    const Ended ended = sluice({"check", "ring.xml", "--library", "lib.v1", "--json"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_NE(ended.out.find("the file includes itself, node \\\"root.R.Inner\\\" is left out"),
              std::string::npos)
        << ended.out;
}

} // namespace
} // namespace sluice_test
