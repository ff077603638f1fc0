// SPDX-License-Identifier: Apache-2.0
// Loops and kernels of the program: they end soon after they are asked to, with the node named.
#include <fstream>
#include <sstream>

#include "tool/program.h"

namespace sluice_test {
namespace {

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string example(const std::string& name) {
    std::ifstream file(SLUICE_EXAMPLES_DIR "/" + name);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

std::string replaced(std::string text, const std::string& before, const std::string& after) {
    text.replace(text.find(before), before.size(), after);
    return text;
}

// Long enough for a loaded machine, and far below what the graphs would take.
constexpr double soon = 20.0;

class LoopsTest : public ProgramTest {
protected:
    LoopsTest() {
        file("endless.xml", example("loop.xml"));
        file("asleep.xml",
             replaced(replaced(example("kernel.xml"), "MessagePrint</type>", "Sleep</type>"),
                      "root.Each.Print.value", "root.Each.Print.in"));
    }
};

TEST_F(LoopsTest, LoopWithoutAnEndStopsAtTheTimeout) {
    const Ended ended =
        sluice({"run", "endless.xml", "--set", "root.Sum.Count.step=0", "--timeout", "0.3"});
    EXPECT_EQ(ended.status, 124);
    EXPECT_TRUE(holds(ended.err, "time limit hit in node \"root.Sum")) << ended.err;
    EXPECT_LT(ended.seconds, soon);
}

TEST_F(LoopsTest, SleepOfAnHourInAKernelStopsAtTheTimeout) {
    const Ended ended = sluice(
        {"run", "asleep.xml", "--set", "root.Each.Print.milisecs=3600000", "--timeout", "0.3"});
    EXPECT_EQ(ended.status, 124);
    EXPECT_TRUE(holds(ended.err, "time limit hit in node \"root.Each.Print\"")) << ended.err;
    EXPECT_LT(ended.seconds, soon);
}

TEST_F(LoopsTest, SleepOfAnHourInAKernelStopsAtASignal) {
    const Ended ended =
        sluice(Start{.arguments = {"run", "asleep.xml", "--set", "root.Each.Kernel.threads=2",
                                   "--set", "root.Each.Print.milisecs=3600000"},
                     .signal = 2,
                     .signalAfter = 0.5});
    EXPECT_EQ(ended.status, 130);
    EXPECT_TRUE(holds(ended.err, "interrupted in node \"root.Each.Print\"")) << ended.err;
    EXPECT_LT(ended.seconds, soon);
}

TEST_F(LoopsTest, ElementsPrintFromTheKernel) {
    const Ended ended = run({"run", SLUICE_EXAMPLES_DIR "/kernel.xml"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out, "Print: 30\nPrint: 50\nPrint: 60\n");
}

} // namespace
} // namespace sluice_test
