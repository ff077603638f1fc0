// SPDX-License-Identifier: Apache-2.0
// `sluice completion`: the scripts, and the bash one at work.
#include <cstdio>
#include <sstream>

#include "tool/program.h"

namespace sluice_test {
namespace {

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class CompletionTest : public ProgramTest {
protected:
    /// What bash offers when the last of `words` is being typed.
    std::vector<std::string> offered(const Words& words) {
        file("script.bash", run({"completion", "bash"}).out);
        std::string command = "cd '" + folder_.string() + "' && PATH='" +
                              std::filesystem::path(SLUICE_PROGRAM).parent_path().string() +
                              "':$PATH bash --norc -c 'source ./script.bash; COMP_WORDS=(sluice";
        for (const std::string& word : words) command += " \"" + word + "\"";
        command += "); COMP_CWORD=" + std::to_string(words.size()) +
                   "; _sluice; printf \"%s\\n\" \"${COMPREPLY[@]}\"' 2>&1";
        std::string out;
        if (std::FILE* pipe = popen(command.c_str(), "r")) {
            char buffer[4096];
            while (std::fgets(buffer, sizeof(buffer), pipe)) out += buffer;
            pclose(pipe);
        }
        std::vector<std::string> lines;
        std::istringstream stream(out);
        for (std::string line; std::getline(stream, line);) lines.push_back(line);
        return lines;
    }
};

TEST_F(CompletionTest, ScriptsKnowCommandsOptionsAndTypes) {
    for (const char* shell : {"bash", "zsh"}) {
        const Ended ended = run({"completion", shell});
        EXPECT_EQ(ended.status, 0);
        EXPECT_EQ(ended.err, "");
        for (const char* word :
             {"run", "nodes", "describe", "check", "convert", "diff", "completion", "--set-file",
              "--max-memory", "--fail-on", "Evaluator", "StringConcat2"}) {
            EXPECT_TRUE(holds(ended.out, word)) << shell << " " << word;
        }
        EXPECT_FALSE(holds(ended.out, "@OPTIONS@")) << shell;
    }
}

TEST_F(CompletionTest, BashCompletesCommands) {
    EXPECT_EQ(offered({"co"}), (Words{"convert", "completion"}));
    EXPECT_EQ(offered({"--v"}), (Words{"--version"}));
}

TEST_F(CompletionTest, BashCompletesOptionsAndTheirValues) {
    EXPECT_EQ(offered({"run", "--ma"}), (Words{"--max-memory", "--max-elements"}));
    EXPECT_EQ(offered({"check", "g.xml", "--fail-on", "c"}), (Words{"critical"}));
    EXPECT_EQ(offered({"run", "--progress", "j"}), (Words{"json"}));
}

TEST_F(CompletionTest, BashCompletesNodeTypes) {
    EXPECT_EQ(offered({"describe", "Evalu"}), (Words{"Evaluator"}));
}

TEST_F(CompletionTest, BashCompletesPinsOfTheGraph) {
    file("g.xml", sumGraph());
    EXPECT_EQ(offered({"run", "g.xml", "--get", "root.Sum.in"}),
              (Words{"root.Sum.in0", "root.Sum.in1"}));
    EXPECT_EQ(offered({"run", "g.xml", "--pull", "root.Sum."}), (Words{"root.Sum.result"}));
}

TEST_F(CompletionTest, PinsOfAGraphAreListed) {
    file("g.xml", sumGraph());
    const Ended all = sluice({"completion", "--pins", "g.xml"});
    EXPECT_EQ(all.status, 0);
    EXPECT_TRUE(holds(all.out, "root.Sum.in0\n"));
    const Ended outputs = sluice({"completion", "--pins", "g.xml", "--outputs"});
    EXPECT_EQ(outputs.out, "root.A.real\nroot.B.integer\nroot.Sum.result\n");
    EXPECT_EQ(sluice({"completion", "--pins", "missing.xml"}).status, 2);
}

} // namespace
} // namespace sluice_test
