// SPDX-License-Identifier: Apache-2.0
// The gate to files: allowed folders, "..", links.
#include "host/file_gate.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using tidemark::host::FileGate;
using tidemark::host::resolvedPath;

// A folder with "in/" (allowed), "out/" (not allowed), and the process standing in "in/".
class FileGateTest : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "sluice_gate_XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        top_ = fs::canonical(pattern);
        fs::create_directories(top_ / "in" / "deep");
        fs::create_directories(top_ / "out");
        std::ofstream(top_ / "out" / "secret") << "text";
        std::ofstream(top_ / "in" / "own") << "text";
        before_ = fs::current_path();
        fs::current_path(top_ / "in");
    }
    void TearDown() override {
        fs::current_path(before_);
        fs::remove_all(top_);
    }
    std::string in(const std::string& name) const { return (top_ / "in" / name).string(); }
    std::string out(const std::string& name) const { return (top_ / "out" / name).string(); }

    fs::path top_;
    fs::path before_;
};

TEST_F(FileGateTest, NewGateLetsEverythingPass) {
    const FileGate gate;
    EXPECT_TRUE(gate.mayRead(out("secret")));
    EXPECT_TRUE(gate.mayWrite(out("new")));
}

TEST_F(FileGateTest, WritingBelowReadsAnywhere) {
    const FileGate gate = FileGate::writingBelow(".");
    EXPECT_TRUE(gate.mayRead(out("secret")));
    EXPECT_TRUE(gate.mayWrite("new"));
    EXPECT_TRUE(gate.mayWrite(in("deep/er/new")));
    EXPECT_FALSE(gate.mayWrite(out("new")));
}

TEST_F(FileGateTest, ConfinedReadsAndWritesOnlyBelow) {
    const FileGate gate = FileGate::confinedTo(top_ / "in");
    EXPECT_TRUE(gate.mayRead("own"));
    EXPECT_TRUE(gate.mayWrite("deep/new"));
    EXPECT_FALSE(gate.mayRead(out("secret")));
    EXPECT_FALSE(gate.mayWrite(out("new")));
    EXPECT_FALSE(gate.mayRead("/etc/hostname"));
}

TEST_F(FileGateTest, TheFolderItselfIsAllowed) {
    const FileGate gate = FileGate::confinedTo(top_ / "in");
    EXPECT_TRUE(gate.mayRead((top_ / "in").string()));
    EXPECT_TRUE(gate.mayRead((top_ / "in" / "").string()));
    EXPECT_FALSE(gate.mayRead(top_.string()));
}

TEST_F(FileGateTest, SiblingWithTheSameBeginningIsOutside) {
    fs::create_directories(top_ / "inside");
    const FileGate gate = FileGate::confinedTo(top_ / "in");
    EXPECT_FALSE(gate.mayRead((top_ / "inside" / "x").string()));
}

TEST_F(FileGateTest, ParentFoldersAreFollowed) {
    const FileGate gate = FileGate::confinedTo(".");
    EXPECT_FALSE(gate.mayRead("../out/secret"));
    EXPECT_FALSE(gate.mayWrite("deep/../../out/new"));
    EXPECT_FALSE(gate.mayWrite("missing/../../out/new"));
    EXPECT_TRUE(gate.mayRead("deep/../own"));
    EXPECT_TRUE(gate.mayRead("../in/own"));
}

TEST_F(FileGateTest, LinksAreFollowed) {
    fs::create_symlink(top_ / "out", top_ / "in" / "door");
    fs::create_symlink("../out/secret", top_ / "in" / "file");
    fs::create_symlink("deep", top_ / "in" / "fine");
    const FileGate gate = FileGate::confinedTo(".");
    EXPECT_FALSE(gate.mayRead("door/secret"));
    EXPECT_FALSE(gate.mayRead("file"));
    EXPECT_TRUE(gate.mayWrite("fine/new"));
    EXPECT_FALSE(gate.mayWrite("fine/../door/new"));
}

TEST_F(FileGateTest, LinkToWhatDoesNotExistYetIsFollowed) {
    fs::create_symlink(top_ / "out" / "new", top_ / "in" / "dangling");
    const FileGate gate = FileGate::writingBelow(".");
    EXPECT_FALSE(gate.mayWrite("dangling"));
}

TEST_F(FileGateTest, CircleOfLinksIsRefused) {
    fs::create_symlink("b", top_ / "in" / "a");
    fs::create_symlink("a", top_ / "in" / "b");
    const FileGate gate = FileGate::confinedTo(".");
    EXPECT_FALSE(gate.mayRead("a"));
    EXPECT_FALSE(resolvedPath("a").has_value());
}

TEST_F(FileGateTest, LinkedRootAllowsWhereItLeads) {
    fs::create_symlink(top_ / "in", top_ / "alias");
    const FileGate gate = FileGate::confinedTo(top_ / "alias");
    EXPECT_TRUE(gate.mayRead(in("own")));
    EXPECT_TRUE(gate.mayRead((top_ / "alias" / "own").string()));
    EXPECT_FALSE(gate.mayRead(out("secret")));
}

TEST_F(FileGateTest, UnreachableRootAllowsNothing) {
    fs::create_symlink("loop", top_ / "in" / "loop");
    const FileGate gate = FileGate::confinedTo("loop");
    EXPECT_FALSE(gate.mayRead("own"));
    EXPECT_FALSE(gate.mayRead("/etc/hostname"));
}

TEST_F(FileGateTest, ForbiddenWritingBeatsAllElse) {
    FileGate gate;
    gate.forbidWriting();
    EXPECT_FALSE(gate.mayWrite("new"));
    EXPECT_TRUE(gate.mayRead("own"));
}

TEST_F(FileGateTest, EmptyPathsAndNulBytesAreRefused) {
    const FileGate gate = FileGate::writingBelow(".");
    EXPECT_FALSE(gate.mayRead(""));
    EXPECT_FALSE(gate.mayWrite(std::string("own\0/x", 6)));
}

} // namespace
