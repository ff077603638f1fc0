// SPDX-License-Identifier: Apache-2.0
// Help, versions, and command lines that are wrong.
#include "tool/program.h"

#include <unistd.h>

namespace sluice_test {
namespace {

const Words commands{"run", "nodes", "describe", "check", "convert", "diff", "completion"};

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// A command line, what has to stand in the refusal.
struct Refusal {
    Words arguments;
    std::string told;
};

class Refused : public ProgramTest, public testing::WithParamInterface<Refusal> {};

TEST(CommandLine, HelpOfTheProgramNamesAllCommandsAndStatuses) {
    for (const char* option : {"--help", "-h"}) {
        const Ended ended = run({option});
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(ended.err, "");
        for (const std::string& command : commands) EXPECT_TRUE(holds(ended.out, "  " + command));
        for (const char* status : {"0  ", "1  ", "2  ", "3  ", "124", "130"}) {
            EXPECT_TRUE(holds(ended.out, std::string("\n  ") + status)) << status;
        }
    }
}

TEST(CommandLine, EveryCommandHasHelpWithStatuses) {
    for (const std::string& command : commands) {
        const Ended ended = run({command, "--help"});
        EXPECT_EQ(ended.status, 0) << command;
        EXPECT_TRUE(holds(ended.out, "Exit status")) << command;
        EXPECT_TRUE(holds(ended.out, "--version")) << command;
    }
}

TEST(CommandLine, EveryOptionOfRunIsInItsHelp) {
    const Ended ended = run({"run", "--help"});
    for (const char* option :
         {"--set ",         "--set-file",   "--get",     "--pull",     "-f,--frames",
          "--keep-going",   "-j,--threads", "--save",    "--json",     "--verbosity",
          "--fail-on",      "--progress",   "--dry-run", "--timeout",  "--max-memory",
          "--max-elements", "--no-sleep",   "--root",    "--no-write", "--trust",
          "--no-color"}) {
        EXPECT_TRUE(holds(ended.out, option)) << option;
    }
}

TEST(CommandLine, VersionWorksAtEveryLevel) {
    const Ended program = run({"--version"});
    EXPECT_EQ(program.status, 0);
    EXPECT_EQ(program.out.rfind("sluice ", 0), 0u) << program.out;
    for (const std::string& command : commands) {
        const Ended ended = run({command, "--version"});
        EXPECT_EQ(ended.status, 0) << command;
        EXPECT_EQ(ended.out, program.out) << command;
    }
}

TEST_P(Refused, WithStatusTwoAndAReason) {
    const Ended ended = sluice(Start{GetParam().arguments});
    EXPECT_EQ(ended.status, 2);
    EXPECT_EQ(ended.out, "");
    EXPECT_TRUE(holds(ended.err, GetParam().told)) << ended.err;
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, Refused,
    testing::Values(
        Refusal{{}, "subcommand is required"}, Refusal{{"rnu"}, "did you mean \"run\"?"},
        Refusal{{"nodse"}, "did you mean \"nodes\"?"},
        Refusal{{"--hlep"}, "did you mean \"--help\"?"}, Refusal{{"run"}, "GRAPH is required"},
        Refusal{{"run", "g.xml", "h.xml"}, "unexpected argument \"h.xml\""},
        Refusal{{"run", "g.xml", "--jsno"}, "did you mean \"--json\"?"},
        Refusal{{"run", "g.xml", "--ste", "a=1"}, "did you mean \"--set\"?"},
        Refusal{{"run", "g.xml", "--frame=1-2"}, "did you mean \"--frames\"?"},
        Refusal{{"nodes", "--serch", "x"}, "did you mean \"--search\"?"},
        Refusal{{"check", "g.xml", "--fail-no", "x"}, "did you mean \"--fail-on\"?"},
        Refusal{{"run", "g.xml", "--set"}, "--set"},
        Refusal{{"run", "g.xml", "--frames", "1-x"}, "\"1-x\""},
        Refusal{{"run", "g.xml", "--frames", "1-9x0"}, "\"1-9x0\""},
        Refusal{{"run", "g.xml", "--frames", "1,,2"}, "\"\""},
        Refusal{{"run", "g.xml", "--frames", "99999999999"}, "99999999999"},
        Refusal{{"run", "g.xml", "--threads", "many"}, "many"},
        Refusal{{"run", "g.xml", "--verbosity", "0"}, "--verbosity"},
        Refusal{{"run", "g.xml", "--verbosity", "6"}, "--verbosity"},
        Refusal{{"run", "g.xml", "--fail-on", "eror"}, "did you mean \"error\"?"},
        Refusal{{"run", "g.xml", "--progress", "jsn"}, "did you mean \"json\"?"},
        Refusal{{"run", "g.xml", "--timeout", "0"}, "above 0"},
        Refusal{{"run", "g.xml", "--timeout", "-1"}, "above 0"},
        Refusal{{"run", "g.xml", "--timeout", "soon"}, "soon"},
        Refusal{{"run", "g.xml", "--max-memory", "3Q"}, "\"3Q\""},
        Refusal{{"run", "g.xml", "--max-memory", "0"}, "\"0\""},
        Refusal{{"run", "g.xml", "--max-memory", "99999999999999G"}, "99999999999999G"},
        Refusal{{"run", "g.xml", "--max-elements", "0"}, "above 0"},
        Refusal{{"run", "g.xml", "--root", ".", "--trust"}, "excludes"},
        Refusal{{"describe"}, "TYPE is required"}, Refusal{{"convert", "a.xml"}, "OUT is required"},
        Refusal{{"diff", "a.xml"}, "B is required"}, Refusal{{"completion"}, "bash or zsh"},
        Refusal{{"completion", "fish"}, "fish"}));

// --- files that are no graphs --------------------------------------------------------------------

class NoGraph : public ProgramTest, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        file("empty.xml", "");
        file("broken.xml", "<scene><nodes>");
        file("other.xml", "<?xml version=\"1.0\"?><other/>");
        file("binary.xml", std::string("\0\1\2<scene>\xff\xfe", 13));
        std::string deep;
        for (int i = 0; i < 1000000; ++i) deep += "<a>";
        file("deep.xml", deep);
        std::filesystem::create_directory(folder_ / "folder.xml");
    }
};

TEST_P(NoGraph, IsRefusedWithItsName) {
    for (const char* command : {"run", "check"}) {
        const Ended ended = sluice({command, GetParam()});
        EXPECT_EQ(ended.status, 2) << command;
        EXPECT_TRUE(holds(ended.out + ended.err, GetParam())) << command << ended.err;
    }
}

TEST_P(NoGraph, StillGivesOneDocument) {
    const Ended ended = sluice({"run", GetParam(), "--json"});
    EXPECT_EQ(ended.status, 2);
    const Json json = ended.json();
    EXPECT_EQ(json["ok"], false);
    EXPECT_EQ(json["graph"], GetParam());
    ASSERT_EQ(json["host"].size(), 1u);
    EXPECT_EQ(json["host"][0]["id"], 2263);
    EXPECT_TRUE(holds(json["host"][0]["text"], GetParam()));
}

TEST_P(NoGraph, ConvertsToNothing) {
    file("out.xml", "precious");
    EXPECT_EQ(sluice({"convert", GetParam(), "out.xml"}).status, 2);
    EXPECT_EQ(sluice({"diff", GetParam(), GetParam()}).status, 2);
    EXPECT_EQ(read("out.xml"), "precious");
}

INSTANTIATE_TEST_SUITE_P(CommandLine, NoGraph,
                         testing::Values("missing.xml", "empty.xml", "broken.xml", "other.xml",
                                         "binary.xml", "deep.xml", "folder.xml"));

TEST_F(ProgramTest, GraphThatMayNotBeReadIsRefused) {
    if (geteuid() == 0) {
        // For the system's administrator no file is unreadable; a device is no graph for anyone.
        EXPECT_EQ(sluice({"run", "/dev/zero"}).status, 2);
        return;
    }
    file("g.xml", sumGraph());
    std::filesystem::permissions(path("g.xml"), std::filesystem::perms::none);
    EXPECT_EQ(sluice({"run", "g.xml"}).status, 2);
}

TEST_F(ProgramTest, FullStandardOutputIsAFailure) {
    file("g.xml", sumGraph());
    const Ended ended =
        sluice(Start{.arguments = {"run", "g.xml", "--json"}, .outFile = "/dev/full"});
    EXPECT_EQ(ended.status, 2);
    EXPECT_TRUE(holds(ended.err, "standard output")) << ended.err;
}

TEST_F(ProgramTest, NothingIsColouredAwayFromATerminal) {
    file("g.xml", GraphText().node("X", "NoSuchType").text());
    const Ended ended = sluice({"run", "g.xml"});
    EXPECT_EQ(ended.err.find('\033'), std::string::npos);
    EXPECT_EQ(ended.err.find('\r'), std::string::npos);
}

TEST_F(ProgramTest, TerminalShowsColoursUnlessForbidden) {
    file("g.xml", GraphText().node("X", "NoSuchType").text());
    const auto errors = [this](Words arguments, const char* noColor) {
        arguments.insert(arguments.begin(), {"run", "g.xml"});
        return sluice(Start{.arguments = arguments,
                            .environment = {{"NO_COLOR", noColor}},
                            .terminal = true})
            .err;
    };
    const std::string colour = "\033[1;31merror\033[0m: ";
    EXPECT_TRUE(holds(errors({}, ""), colour)) << errors({}, "");
    EXPECT_FALSE(holds(errors({}, "1"), colour));
    EXPECT_FALSE(holds(errors({"--no-color"}, ""), colour));
}

TEST_F(ProgramTest, TerminalShowsOneRewrittenLineOfProgress) {
    file("sleep.xml", sleepingGraph(1500));
    const auto errors = [this](const char* form) {
        return sluice(Start{.arguments = {"run", "sleep.xml", "--progress", form, "-f", "7"},
                            .terminal = true})
            .err;
    };
    const std::string shown = errors("auto");
    EXPECT_TRUE(holds(shown, "\r\033[Kframe 7 (1 of 1), ")) << shown;
    EXPECT_TRUE(holds(shown, "\r\033[K3 nodes, 1 evaluator")) << shown;
    EXPECT_FALSE(holds(errors("none"), "frame 7"));
}

TEST_F(ProgramTest, ControlCharactersOfAGraphDoNotReachTheTerminal) {
    file("g.xml", GraphText().node("X", "bad\x1b[31mtype").text());
    const Ended ended = sluice({"run", "g.xml"});
    EXPECT_EQ(ended.err.find('\033'), std::string::npos) << ended.err;
}

} // namespace
} // namespace sluice_test
